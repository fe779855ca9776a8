#include "indicators/oscillators.hpp"

#include <cmath>
#include <utility>

#include "indicators/compute_rows.hpp"
#include "indicators/extremes.hpp"
#include "indicators/formed_rows.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/price_bases.hpp"
#include "indicators/row_pairs.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/windows.hpp"

namespace brindlewort {
namespace {

/// The size of the step into row j when it goes up, else 0. Nulls read as 0.
inline double rise(View in, Count j) {
  const double step = nz(in[j]) - nz(in[j - 1]);
  return step > 0.0 ? step : 0.0;
}
/// The size of the step into row j when it goes down, else 0.
inline double fall(View in, Count j) {
  const double step = nz(in[j - 1]) - nz(in[j]);
  return step > 0.0 ? step : 0.0;
}

// ---- Relative strength --------------------------------------------------------------------------------

struct Moves {
  double gain = 0.0;
  double loss = 0.0;
};

/// The mean moves into the p rows that end at `last`.
Moves meanMoves(View in, Count last, Count p) {
  Moves sum;
  for (Count j = last - p + 1; j <= last; ++j) {
    sum.gain += rise(in, j);
    sum.loss += fall(in, j);
  }
  return {sum.gain / static_cast<double>(p), sum.loss / static_cast<double>(p)};
}

Moves smoothedMoves(const Moves& before, View in, Count i, Count p) {
  const auto rows = static_cast<double>(p);
  return {(before.gain * (rows - 1.0) + rise(in, i)) / rows,
          (before.loss * (rows - 1.0) + fall(in, i)) / rows};
}

double strengthIndex(double rs) {
  return 100.0 - 100.0 / (1.0 + rs);
}

/// A loss of 0 is taken as large as the gain: rises alone read 50, no move at all 0.
double strengthIndex(const Moves& average) {
  const double loss = average.loss == 0.0 ? average.gain : average.loss;
  return strengthIndex(average.gain == 0.0 ? 0.0 : average.gain / loss);
}

// ---- Shared by both forms -----------------------------------------------------------------------------

/// Rows [first, last) of the momentum oscillator.
void momentumRows(View in, Count p, Count first, Count last, Out out) {
  fillRows(first, last, out, [=]<class X>(RowReader<X> at) {
    const X base = nz(at(in, p));
    const X momentum = (nz(at(in)) - base) / base * 100.0 + 100.0;
    return base == 0.0 ? X() : momentum;
  });
}

/// Rows [first, last) of Chande's oscillator.
void chandeRows(View in, Count p, Count first, Count last, Out out) {
  constexpr auto kOrder = WindowOrder::kOldestFirst;
  const FormedRows rises(first - p + 1, last, [in](Count j) { return rise(in, j); });
  const FormedRows falls(first - p + 1, last, [in](Count j) { return fall(in, j); });
  sumWindows<kOrder>(
      first, last, p, [&](Count j, Count) { return rises[j]; }, [out](Count i, double up) { out[i] = up; });
  sumWindows<kOrder>(
      first, last, p, [&](Count j, Count) { return falls[j]; },
      [out](Count i, double down) {
        const double up = out[i];
        out[i] = up + down == 0.0 ? 0.0 : (up - down) / (up + down) * 100.0;
      });
}

Count detrendShift(Count p) {
  return p / 2 + 1;
}

/// The channel index of a row; `deviation` is not 0.
double channelIndex(double tp, double average, double deviation) {
  return (tp - average) / (deviation * 0.015);
}

// ---- Vertical horizontal filter -----------------------------------------------------------------------

double verticalHorizontal(double high, double low, double path) {
  return std::fabs(path != 0.0 ? (high - low) / path : 0.0);
}

struct Range {
  double high = 0.0;
  double low;
};

/// The range of rows [first, last], the low starting from `seed`: a row that lowers the low is not tested for
/// the high.
Range scannedRange(View in, Count first, Count last, double seed) {
  Range range{.low = seed};
  for (Count j = first; j <= last; ++j) {
    const double x = nz(in[j]);
    if (x < range.low) {
      range.low = x;
    } else if (x > range.high) {
      range.high = x;
    }
  }
  return range;
}

/// Rows [first, last) of the filter, of which the low of the first window starts from `seed`, that of any
/// other from its own newest row. The path has `steps` steps.
void filterBlock(View in, Count p, Count first, Count last, Count steps, double seed, Out out) {
  RollingHigh<nz> high(in, p, first);
  RollingLow<nz> low(in, p, first);
  const FormedRows step(first - steps + 1, last,
                        [in](Count j) { return std::fabs(nz(in[j]) - nz(in[j - 1])); });
  sumWindows<WindowOrder::kOldestFirst>(
      first, last, steps, [&](Count j, Count) { return step[j]; },
      [&](Count i, double path) {
        high.slideTo(i);
        low.slideTo(i);
        const Range range = i == first ? scannedRange(in, i - p + 1, i, seed)
                                       // Where the seed is a row of the window, no row that lowers the low
                                       // can be the highest: two plain scans give the same. (A window
                                       // with a row that is no number has no path either.)
                                       : Range{high.from(0.0), low.from(nz(in[i]))};
        out[i] = verticalHorizontal(range.high, range.low, path);
      });
}

/// Rows [first, last) of the filter. The low of a window starts from the row where the scan of the window
/// before it stopped: its own newest row, save for the first window, which starts from `seed`. The path has
/// `steps` steps: p, or p - 1 where none leads into the oldest row. Worked in blocks, whose steps stay in the
/// processor's cache.
void filterRows(View in, Count p, Count first, Count last, Count steps, double seed, Out out) {
  const Count block = std::max<Count>(2048, p);
  for (Count i = first; i < last; i += block) {
    filterBlock(in, p, i, std::min(i + block, last), steps, i == first ? seed : nz(in[i]), out);
  }
}

}  // namespace

namespace CFeedkit {

void RelativeStrengthIndex(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n) || p + 1 >= n) return;
  Moves average = meanMoves(in, p + 1, p);
  for (Count i = p + 2; i < n; ++i) {
    average = smoothedMoves(average, in, i, p);
    out[i] = strengthIndex(average);
  }
}

void MomentumOscillator(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (batchRange(p, n)) momentumRows(in, p, p + 2, n, out);
}

void ChandeMomentumOscillator(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (batchRange(p, n)) chandeRows(in, p, p + 1, n, out);
}

void PriceOscillator(View in, Count shortPeriods, Count longPeriods, Count maType, Out out) {
  const Count n = rowsOf(in);
  if (shortPeriods >= longPeriods) std::swap(shortPeriods, longPeriods);
  if (!batchRange(shortPeriods, n) || !batchRange(longPeriods, n)) return;
  std::vector<double> s = nullRows(in.size());
  std::vector<double> l = nullRows(in.size());
  movingAverageByType(in, shortPeriods, maType, s);
  movingAverageByType(in, longPeriods, maType, l);
  for (Count i = longPeriods + 1; i < n; ++i) {
    if (nz(l[i]) != 0.0) out[i] = (nz(s[i]) - nz(l[i])) / nz(l[i]) * 100.0;
  }
}

void DetrendedPriceOscillator(View in, Count p, Count maType, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  if (n < 2 * p) {  // too short to take a trend out
    for (Count i = 1; i < n; ++i) out[i] = 0.0;
    return;
  }
  std::vector<double> m = nullRows(in.size());
  movingAverageByType(in, p, maType, m);
  const Count shift = detrendShift(p);
  for (Count i = shift; i < n; ++i) out[i] = nz(in[i]) - nz(m[i - shift]);
}

void TRIX(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  std::vector<double> once = nullRows(in.size());
  std::vector<double> twice = nullRows(in.size());
  std::vector<double> e = nullRows(in.size());
  ExponentialMovingAverage(in, p, once);
  ExponentialMovingAverage(once, p, twice);
  ExponentialMovingAverage(twice, p, e);
  for (Count i = p + 2; i < n; ++i) {
    const double before = nz(e[i - 1]);
    if (before != 0.0) out[i] = (nz(e[i]) - before) / before * 100.0;
  }
}

void VerticalHorizontalFilter(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  const Count first = p + 1;
  if (!batchRange(p, n) || first >= n) return;
  filterRows(in, p, first, n, p, first + 1 < n ? nz(in[first + 1]) : 0.0, out);
}

void CommodityChannelIndex(const Prices& prices, Count p, Count maType, Out out) {
  const Count n = prices.rows();
  if (!batchRange(p, n)) return;
  std::vector<double> tp = nullRows(prices.close.size());
  std::vector<double> m = nullRows(prices.close.size());
  TypicalPrice(prices, tp);
  movingAverageByType(tp, p, maType, m);
  const FormedRows distance(0, n, [&](Count j) { return std::fabs(nz(tp[j]) - nz(m[j])); });
  sumWindows<WindowOrder::kOldestFirst>(
      p * 3 / 2, n, p + 1, [&](Count j, Count) { return distance[j]; },
      [&](Count i, double sum) {
        const double deviation = sum / static_cast<double>(p);
        out[i] =
            deviation == 0.0 ? std::fabs(nz(tp[i]) - nz(m[i])) : channelIndex(nz(tp[i]), nz(m[i]), deviation);
      });
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status RelativeStrengthIndex(WorkStore& store, Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count block = firstValueIndex(in.rows) + p;
  if (block >= n) return kNothingDone;
  const WorkField gains = store.field("AuField", {in, p});
  const WorkField losses = store.field("AdField", {in, p});

  // The row whose averages the next one is formed from. A call leaves its slot at the last row written, so
  // that a slot of n comes only from outside.
  Count base = *out.slot == n ? *out.slot - 2 : *out.slot - 1;
  if (base + 1 >= n) return kNothingDone;
  Moves average;
  if (base < block || isNull(gains.rows[base])) {
    base = block;
    average = meanMoves(in.rows, block, p);
    gains.rows[block] = average.gain;
    losses.rows[block] = average.loss;
    out.rows[block] = strengthIndex(average.loss == 0.0 ? 0.0 : average.gain / average.loss);
  } else {
    average = {gains.rows[base], losses.rows[base]};
  }
  for (Count i = base + 1; i < n; ++i) {
    average = smoothedMoves(average, in.rows, i, p);
    gains.rows[i] = average.gain;
    losses.rows[i] = average.loss;
    out.rows[i] = strengthIndex(average);
  }
  finish(gains, n);
  finish(losses, n);
  return finish(out, std::max<Count>(*out.slot, n - 1));
}

Status MomentumOscillator(Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count start = startRow(out, firstValueIndex(in.rows) + p);
  if (start >= n) return kNothingDone;
  momentumRows(in.rows, p, start, n, out.rows);
  return finish(out, n);
}

Status ChandeMomentumOscillator(Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count start = startRow(out, firstValueIndex(in.rows) + p);
  if (start >= n) return kNothingDone;
  chandeRows(in.rows, p, start, n, out.rows);
  return finish(out, n);
}

Status PriceOscillator(WorkStore& store, Source in, Count shortPeriods, Count longPeriods, Count maType,
                       Target out) {
  const Count n = rowsOf(in, out);
  if (shortPeriods >= longPeriods) std::swap(shortPeriods, longPeriods);
  if (!resumableRange(shortPeriods, n) || !resumableRange(longPeriods, n)) return kNothingDone;
  const WorkField s = store.field("POSHORT_MA", {in, shortPeriods, KeyPart::maType(maType)});
  const WorkField l = store.field("POLONG_MA", {in, longPeriods, KeyPart::maType(maType)});
  movingAverageByType(store, in, shortPeriods, maType, s);
  movingAverageByType(store, in, longPeriods, maType, l);
  const Count first = std::max(firstValueIndex(in.rows), higherLead(s.rows, l.rows));
  return computeRows(out, first, n, [&](Count i) {
    const double shortNow = nz(s.rows[i]);
    const double longNow = nz(l.rows[i]);
    return longNow == 0.0 ? 0.0 : (shortNow - longNow) / shortNow * 100.0;
  });
}

Status DetrendedPriceOscillator(WorkStore& store, Source in, Count p, Count maType, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const WorkField m = store.field("DPO_MA", {in, p, KeyPart::maType(maType)});
  movingAverageByType(store, in, p, maType, m);
  const Count shift = detrendShift(p);
  const Count first = higherLead(in.rows, m.rows) + shift;
  if (startRow(out, first) >= n) return kNothingDone;
  // The rows before `first` are written as well, as soon as that row exists.
  for (Count i = startRow(out, shift); i < n; ++i) out.rows[i] = nz(in.rows[i]) - nz(m.rows[i - shift]);
  return finish(out, n);
}

Status TRIX(WorkStore& store, Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const WorkField once = store.field("TRIX_EMA", {in, p});
  const WorkField twice = store.field("TRIX_EMA", {once, p});
  const WorkField e = store.field("TRIX_EMA", {twice, p});
  ExponentialMovingAverage(in, p, once);
  ExponentialMovingAverage(once, p, twice);
  ExponentialMovingAverage(twice, p, e);
  return computeRows(out, firstValueIndex(e.rows) + 1, n, [&](Count i) {
    const double before = nz(e.rows[i - 1]);
    return before == 0.0 ? 0.0 : (nz(e.rows[i]) - before) / before * 100.0;
  });
}

Status VerticalHorizontalFilter(Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  Count start = startRow(out, firstValueIndex(in.rows) + p - 1);
  if (start >= n) return kNothingDone;
  if (start == p - 1) {  // the window begins at row 0, into which no step leads
    filterRows(in.rows, p, start, start + 1, p - 1, nz(in.rows[start]), out.rows);
    ++start;
  }
  if (start < n) filterRows(in.rows, p, start, n, p, nz(in.rows[start]), out.rows);
  return finish(out, n);
}

Status CommodityChannelIndex(WorkStore& store, const PriceSources& prices, Count p, Count maType,
                             Target out) {
  const Count n = commonRows(prices.high.rows, {prices.low.rows, prices.close.rows, out.rows});
  if (!resumableRange(p, n)) return kNothingDone;
  const WorkField tp = store.field("TP", {prices.high, prices.low, prices.close});
  const WorkField m = store.field("CCIMedian", {tp, p, KeyPart::maType(maType)});
  TypicalPrice(prices, tp);
  movingAverageByType(store, tp, p, maType, m);
  const Count start = startRow(out, higherLead(tp.rows, m.rows));
  if (start >= n || start < p - 1) return kNothingDone;
  const FormedRows typical(start - p + 1, n, [&](Count j) { return nz(tp.rows[j]); });
  const FormedRows average(start, n, [&](Count i) { return nz(m.rows[i]); });
  sumWindows<WindowOrder::kOldestFirst>(
      start, n, p, [&](Count j, Count k) { return std::fabs(average[j + k] - typical[j]); },
      [&](Count i, double sum) {
        const double deviation = sum / static_cast<double>(p);
        out.rows[i] = deviation == 0.0 ? 0.0 : channelIndex(nz(tp.rows[i]), nz(m.rows[i]), deviation);
      });
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
