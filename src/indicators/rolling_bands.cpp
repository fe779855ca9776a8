#include <cmath>
#include <functional>
#include <limits>

#include "indicators/bands.hpp"
#include "indicators/compute_rows.hpp"
#include "indicators/formed_rows.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/true_range.hpp"
#include "indicators/windows.hpp"

namespace brindlewort {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kHighLowScale = 0.8;

// ---- Rolling extremes ---------------------------------------------------------------------------------

/// For each row i of [first, last) the extreme of the p rows before it, p <= first: what a scan gives that
/// holds the oldest row and lets each later row that `beats` it take its place. `worst` is beaten by every
/// other number.
///
/// The rows are cut into blocks of p rows. Each window is then the tail of one block and the head of the
/// next, and both grow by one comparison a row, whatever the period.
template <class Beats>
void rollingExtremes(View in, Count p, Count first, Count last, double worst, Beats beats, Out out) {
  const auto held = [beats](double older, double newer) { return beats(newer, older) ? newer : older; };
  std::vector<double> tails(static_cast<std::size_t>(std::min(p, last - first)));
  for (Count block = first - p; block + p < last; block += p) {
    const Count windows = std::min(p, last - (block + p));
    double tail = worst;
    for (Count k = p - 1; k >= 0; --k) {
      const double window = held(in[block + k], tail);
      if (!std::isnan(window)) tail = window;  // a non-number is held by the window that it begins only
      if (k < windows) tails[k] = window;
    }
    double head = worst;
    for (Count k = 0; k < windows; ++k) {
      const Count i = block + p + k;
      out[i] = held(tails[k], head);
      head = held(head, in[i]);
    }
  }
}

void highestBefore(View in, Count p, Count first, Count last, Out out) {
  rollingExtremes(in, p, first, last, -kInfinity, std::greater<>(), out);
}

void lowestBefore(View in, Count p, Count first, Count last, Out out) {
  rollingExtremes(in, p, first, last, kInfinity, std::less<>(), out);
}

using ExtremesBefore = void (*)(View in, Count p, Count first, Count last, Out out);

void batchExtremes(ExtremesBefore extremes, View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n) || p + 1 >= n) return;
  extremes(in, p, p + 1, n, out);
}

Status resumableExtremes(ExtremesBefore extremes, Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count start = startRow(out, p);
  if (start >= n) return kNothingDone;
  extremes(in.rows, p, start, n, out.rows);
  return finish(out, n);
}

// ---- Bands around a moving average --------------------------------------------------------------------

bool withinPercent(double x) {
  return 0.0 <= x && x <= 100.0;
}

/// Both forms of the envelope have the same ranges.
bool hasEnvelope(Count n, Count p, Count maType, double shift, Band band) {
  return band != Band::kMiddle && resumableRange(p, n) && maType >= 0 && withinPercent(shift);
}

double bandLine(Band band, double middle, double width) {
  return band == Band::kTop ? middle + width : middle - width;
}

/// For each row i of [first, last): emit(i, nz(m[i]), sqrt(mean of (in - m[i])^2 over the p rows ending at i)
/// * d).
template <class Emit>
void deviationsAround(View in, View m, Count p, double d, Count first, Count last, Emit emit) {
  if (first >= last) return;
  const FormedRows rowsOfIn(first - p + 1, last, [in](Count j) { return nz(in[j]); });
  const FormedRows middle(first, last, [m](Count i) { return nz(m[i]); });
  const auto squaredGap = [&](Count j, Count k) {
    const double gap = rowsOfIn[j] - middle[j + k];
    return gap * gap;
  };
  const double rows = static_cast<double>(p);
  sumWindows<WindowOrder::kOldestFirst>(first, last, p, squaredGap, [&](Count i, double total) {
    emit(i, middle[i], std::sqrt(total / rows) * d);
  });
}

void clearBefore(Count first, Out out) {
  std::fill(out.begin(), out.begin() + std::min(first, rowsOf(out)), NULL_VALUE);
}

/// Makes an average into what is drawn around it: out[i] = row(i, nz(out[i])) from `first`, null before.
template <class Row>
void drawAround(Out out, Count first, Row row) {
  for (Count i = first; i < rowsOf(out); ++i) out[i] = row(i, nz(out[i]));
  clearBefore(first, out);
}

}  // namespace

namespace CFeedkit {

void HighestHighValue(View in, Count p, Out out) {
  batchExtremes(highestBefore, in, p, out);
}
void LowestLowValue(View in, Count p, Out out) {
  batchExtremes(lowestBefore, in, p, out);
}

void StandardDeviations(View in, Count p, double deviations, Count maType, Out out) {
  const Count first = p + 1;
  if (!batchRange(p, rowsOf(in)) || first >= rowsOf(in)) return;
  const auto square = [in](Count j) { return nz(in[j]) * nz(in[j]); };
  const double rows = static_cast<double>(p);
  double squares = 0.0;
  for (Count j = first - p + 1; j <= first; ++j) squares += square(j);

  movingAverageByType(in, p, maType, out);
  drawAround(out, first, [&](Count i, double middle) {
    if (i > first) {  // the sum slides: the row that leaves goes first
      squares -= square(i - p);
      squares += square(i);
    }
    return std::sqrt(squares / rows - middle * middle) * deviations;
  });
}

bool BollingerBands(View in, Count p, double deviations, Count maType, Band band, Out out) {
  const Count n = rowsOf(in);
  if (!resumableRange(p, n) || maType < 0 || !withinPercent(deviations)) return false;
  movingAverageByType(in, p, maType, out);
  if (band == Band::kMiddle) return true;
  const Count first = p + 1;
  deviationsAround(in, out, p, deviations, first, n,
                   [&](Count i, double middle, double width) { out[i] = bandLine(band, middle, width); });
  clearBefore(first, out);
  return true;
}

void KeltnerChannel(const Prices& prices, Count p, Count maType, double factor, Band band, Out out) {
  if (!resumableRange(p, prices.rows()) || maType < 0 || factor < 0.0) return;
  movingAverageByType(prices.close, p, maType, out);
  if (band == Band::kMiddle) return;
  std::vector<double> range = nullRows(out.size());
  AverageTrueRange(prices, p, maType, range);
  drawAround(out, p + 1,
             [&](Count i, double middle) { return bandLine(band, middle, nz(range[i]) * factor); });
}

bool MovingAverageEnvelope(View in, Count p, Count maType, double shift, Band band, Out out) {
  if (!hasEnvelope(rowsOf(in), p, maType, shift, band)) return false;
  movingAverageByType(in, p, maType, out);
  const double k = shift / 100.0;
  drawAround(out, 1, [=](Count, double middle) { return bandLine(band, middle, middle * k); });
  return true;
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status HighestHighValue(Source in, Count p, Target out) {
  return resumableExtremes(highestBefore, in, p, out);
}

Status LowestLowValue(Source in, Count p, Target out) {
  return resumableExtremes(lowestBefore, in, p, out);
}

Status StandardDeviations(WorkStore& store, Source in, Count p, double deviations, Count maType, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const WorkField m = store.field("SDMAField", {in, p, deviations, KeyPart::maType(maType)});
  movingAverageByType(store, in, p, maType, m);
  const Count start = startRow(out, higherLead(in.rows, m.rows));
  if (start >= n || start < p - 1) return kNothingDone;
  deviationsAround(in.rows, m.rows, p, deviations, start, n,
                   [&](Count i, double, double deviation) { out.rows[i] = deviation; });
  return finish(out, n);
}

Status BollingerBands(WorkStore& store, Source in, Count p, double deviations, Count maType, Band band,
                      Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const WorkField m = store.field("BBM _MEDIAN", {in, p, deviations, KeyPart::maType(maType)});
  movingAverageByType(store, in, p, maType, m);
  const Count first = higherLead(in.rows, m.rows);
  if (band == Band::kMiddle) return copyRows(m.rows, first, n, out);
  const Count start = startRow(out, first);
  if (start >= n || start < p - 1) return kNothingDone;
  deviationsAround(in.rows, m.rows, p, deviations, start, n, [&](Count i, double middle, double width) {
    out.rows[i] = bandLine(band, middle, width);
  });
  return finish(out, n);
}

Status KeltnerChannel(WorkStore& store, const PriceSources& prices, Count p, Count maType, double factor,
                      Band band, Target out) {
  const Count n = commonRows(out.rows, {prices.high.rows, prices.low.rows, prices.close.rows});
  if (!resumableRange(p, n)) return kNothingDone;
  const WorkField range = store.field("KC_ATR", {p, KeyPart::maType(maType), factor});
  const WorkField m = store.field("KC_MEDIAN", {p, KeyPart::maType(maType), factor});
  AverageTrueRange(store, prices, p, maType, range);
  movingAverageByType(store, prices.close, p, maType, m);
  const Count first = higherLead(range.rows, m.rows);
  if (band == Band::kMiddle) return copyRows(m.rows, first, n, out);
  return computeRows(out, first, n,
                     [=](Count i) { return bandLine(band, nz(m.rows[i]), nz(range.rows[i]) * factor); });
}

Status MovingAverageEnvelope(WorkStore& store, Source in, Count p, Count maType, double shift, Band band,
                             Target out) {
  const Count n = rowsOf(in, out);
  if (!hasEnvelope(n, p, maType, shift, band)) return kNothingDone;
  const WorkField m = store.field("MAEField1", {in, p, KeyPart::maType(maType), shift});
  movingAverageByType(store, in, p, maType, m);
  const double k = shift / 100.0;
  return computeRows(out, firstValueIndex(m.rows), n,
                     [=](Count i) { return bandLine(band, nz(m.rows[i]), nz(m.rows[i]) * k); });
}

Status HighLowBands(WorkStore& store, const PriceSources& prices, Count p, Band band, Target out) {
  const auto average = [&](const Source& in, Count periods) {
    return resumableRange(p, rowsOf(in, out)) ? VIDYA(store, in, periods, kHighLowScale, out) : kNothingDone;
  };
  switch (band) {
    case Band::kTop:
      return average(prices.high, p);
    case Band::kMiddle:
      return average(prices.close, p / 2);
    case Band::kBottom:
      return average(prices.low, p);
  }
  return kNothingDone;
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
