#include <utility>

#include "indicators/moving_averages.hpp"
#include "indicators/price_bases.hpp"
#include "indicators/row_pairs.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/volume.hpp"

/// Rates of change and distances of averages: volume oscillator, Chaikin's volatility, rates of change, ease
/// of movement.
namespace brindlewort {

namespace {

/// The change of a value in percent of its base.
template <class X>
X percentOf(X base, X value) {
  return (value - base) / base * 100.0;
}

double middle(View high, View low, Count i) {
  return (high[i] + low[i]) / 2.0;
}
/// How far the middle of bar i lies above the middle of the bar before.
double middleMove(View high, View low, Count i) {
  return middle(high, low, i) - middle(high, low, i - 1);
}

constexpr double kEaseScale = 10000.0;

}  // namespace

namespace CFeedkit {

void VolumeOscillator(View volume, Count shortPeriods, Count longPeriods, Count maType, Count pointsOrPercent,
                      Out out) {
  const Count n = rowsOf(volume);
  if (shortPeriods > longPeriods) std::swap(shortPeriods, longPeriods);
  if (!batchRange(shortPeriods, n) || !batchRange(longPeriods, n)) return;

  std::vector<double> s = nullRows(volume.size()), l = nullRows(volume.size());
  movingAverageByType(volume, shortPeriods, maType, s);
  movingAverageByType(volume, longPeriods, maType, l);
  if (pointsOrPercent == kPoints) {
    for (Count i = 1; i < n; ++i) out[i] = nz(s[i]) - nz(l[i]);
  } else if (pointsOrPercent == kPercent) {
    for (Count i = 1; i < n; ++i) {
      if (nz(l[i]) != 0.0) out[i] = percentOf(nz(l[i]), nz(s[i]));
    }
  }
}

void ChaikinVolatility(const Prices& prices, Count p, Count rateOfChange, Count maType, Out out) {
  const Count n = prices.rows();
  if (!batchRange(p, n) || !batchRange(rateOfChange, n)) return;

  std::vector<double> heights = nullRows(prices.close.size()), m = heights;
  HIGHMINUSLOW(prices, heights);
  movingAverageByType(heights, p, maType, m);
  for (Count i = rateOfChange + 1; i < n; ++i) {
    const double a = nz(m[i - rateOfChange]), b = nz(m[i]);
    if (a != 0.0 && b != 0.0) out[i] = (a - b) / a * -100.0;
  }
}

void PriceRateOfChange(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  fillRows(p + 1, n, out, [=]<class X>(RowReader<X> at) {
    const X base = nz(at(in, p));
    const X change = percentOf(base, nz(at(in)));
    return base > 0.0 ? change : spread<X>(NULL_VALUE);
  });
}

void VolumeRateOfChange(View in, Count p, Out out) {
  PriceRateOfChange(in, p, out);
}

void EaseOfMovement(const Prices& prices, Count p, Count /*maType*/, Out out) {
  const Count n = prices.rows();
  if (!batchRange(p, n)) return;

  std::vector<double> ease = nullRows(prices.close.size());
  double box = 0.0, e = 0.0;
  for (Count i = 2; i < n; ++i) {
    const double range = prices.high[i] - prices.low[i];
    if (range != 0.0) box = prices.volume[i] / range;
    if (box != 0.0) e = middleMove(prices.high, prices.low, i) / box;
    ease[i] = e * kEaseScale;
  }
  SimpleMovingAverage(ease, p, out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status VolumeOscillator(WorkStore& store, Source volume, Count shortPeriods, Count longPeriods, Count maType,
                        Count pointsOrPercent, Target out) {
  if (shortPeriods > longPeriods) std::swap(shortPeriods, longPeriods);
  const Count n = rowsOf(volume, out);
  if (!resumableRange(shortPeriods, n) || !resumableRange(longPeriods, n)) return kNothingDone;

  const KeyPart type = KeyPart::maType(maType);
  const std::string_view mode = pointsOrPercent == kPoints ? "POINTS" : "PERCENT";
  const WorkField s = store.field("VO_MAField1", {volume, shortPeriods, longPeriods, type, mode});
  const WorkField l = store.field("VO_MAField2", {volume, shortPeriods, longPeriods, type, mode});
  movingAverageByType(store, volume, shortPeriods, maType, s);
  movingAverageByType(store, volume, longPeriods, maType, l);
  const Count start = startRow(out, higherLead(s.rows, l.rows));
  if (start >= n) return kNothingDone;
  if (pointsOrPercent != kPoints && pointsOrPercent != kPercent) return finish(out, n);
  for (Count i = start; i < n; ++i) {
    const double divisor = nz(s.rows[i]), distance = divisor - nz(l.rows[i]);
    double share = divisor == 0.0 ? 0.0 : distance / divisor;
    if (pointsOrPercent == kPercent) share *= 100.0;
    out.rows[i] = share;
  }
  return finish(out, n);
}

Status ChaikinVolatility(WorkStore& store, const PriceSources& prices, Count p, Count rateOfChange,
                         Count maType, Target out) {
  const Count n = commonRows(prices.high.rows, {prices.low.rows, out.rows});
  if (!resumableRange(p, n) || !resumableRange(rateOfChange, n)) return kNothingDone;

  const WorkField heights = store.field("CVMADField", {prices.high, prices.low});
  const WorkField m = store.field("CVMASField", {heights, p, rateOfChange, KeyPart::maType(maType)});
  HIGHMINUSLOW(prices, heights);
  movingAverageByType(store, heights, p, maType, m);
  const Count start = startRow(out, firstValueIndex(m.rows) + rateOfChange);
  if (start >= n) return kNothingDone;
  for (Count i = start; i < n; ++i) {
    const double a = nz(m.rows[i - rateOfChange]), b = nz(m.rows[i]);
    out.rows[i] = a == 0.0 ? 0.0 : (a - b) / a * -100.0;
  }
  return finish(out, n);
}

Status PriceRateOfChange(Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count start = startRow(out, firstValueIndex(in.rows) + p);
  if (start >= n) return kNothingDone;
  fillRows(start, n, out.rows, [=]<class X>(RowReader<X> at) {
    const X base = nz(at(in.rows, p));
    const X change = percentOf(base, nz(at(in.rows)));
    return base == 0.0 ? X() : change;
  });
  return finish(out, n);
}

Status VolumeRateOfChange(Source in, Count p, Target out) {
  return PriceRateOfChange(in, p, out);
}

Status EaseOfMovement(WorkStore& store, const PriceSources& prices, Count p, Count maType, Target out) {
  const View high = prices.high.rows, low = prices.low.rows, volume = prices.volume.rows;
  const Count n = commonRows(high, {low, volume, out.rows});
  if (!resumableRange(p, n)) return kNothingDone;

  const WorkField ease =
      store.field("EOMField1", {prices.high, prices.low, prices.volume, p, KeyPart::maType(maType)});
  for (Count i = startRow(ease, 1); i < n; ++i) {
    const double range = high[i] - low[i];
    const double box = range == 0.0 ? 0.0 : volume[i] / range;
    const double e = box == 0.0 ? 0.0 : middleMove(high, low, i) / box;
    ease.rows[i] = e * kEaseScale;
  }
  finish(ease, n);
  return SimpleMovingAverage(ease, p, out);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
