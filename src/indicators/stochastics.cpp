#include "indicators/stochastics.hpp"

#include "indicators/bands.hpp"
#include "indicators/compute_rows.hpp"
#include "indicators/extremes.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/source_rows.hpp"

namespace brindlewort {
namespace {

/// The period test of the batch stochastics, which a period of all rows passes as well.
bool allWithin(std::initializer_list<Count> periods, Count n) {
  return std::all_of(periods.begin(), periods.end(), [n](Count p) { return 1 <= p && p <= n; });
}

// ---- Stochastic oscillator ----------------------------------------------------------------------------

/// Rows [first, last) of raw %K; a row without a range gets `withoutRange`.
void rawStochastic(View high, View low, View close, Count p, Count first, Count last, double withoutRange,
                   Out out) {
  RollingHigh<> highest(high, p, first);
  RollingLow<> lowest(low, p, first);
  for (Count i = first; i < last; ++i) {
    highest.slideTo(i);
    lowest.slideTo(i);
    const double hh = highest.fromOldest();
    const double ll = lowest.fromOldest();
    out[i] = hh - ll == 0.0 ? withoutRange : (close[i] - ll) / (hh - ll) * 100.0;
  }
}

/// The batch %K, null but for the rows that the average gives.
void stochasticK(const Prices& prices, Count kPeriods, Count kSlowing, Count maType, Out out) {
  const Count n = prices.rows();
  const auto raw = [&](Out rows) {
    if (kPeriods + 1 < n) {
      rawStochastic(prices.high, prices.low, prices.close, kPeriods, kPeriods + 1, n, NULL_VALUE, rows);
    }
  };
  if (kSlowing <= 1) {
    raw(out);
    return;
  }
  std::vector<double> rows = nullRows(prices.close.size());
  raw(rows);
  CFeedkit::movingAverageByType(rows, kSlowing, maType, out);
}

/// The rows of the highs, lows and closes that an operation may touch.
Count rangeRows(const PriceSources& prices, const Target& out) {
  return commonRows(prices.high.rows, {prices.low.rows, prices.close.rows, out.rows});
}

/// The living %K. It stays all null for a slowing of 1 or less: the unslowed series is not taken over.
WorkField livingStochasticK(WorkStore& store, const PriceSources& prices, Count n, Count kPeriods,
                            Count kSlowing, Count maType) {
  const WorkField raw = store.field("SOPD_RAW", {prices.high, prices.low, prices.close, kPeriods});
  const WorkField k = store.field("SOPD_FIELD", {raw, kSlowing, KeyPart::maType(maType)});
  const Count start = startRow(raw, kPeriods - 1);
  if (start < n) {
    rawStochastic(prices.high.rows, prices.low.rows, prices.close.rows, kPeriods, start, n, 0.0, raw.rows);
    finish(raw, n);
  }
  if (kSlowing > 1) CTechnicalFunctions::movingAverageByType(store, raw, kSlowing, maType, k);
  return k;
}

// ---- Stochastic momentum index ------------------------------------------------------------------------

Count momentumMaType(Count type) {
  return type < 1 ? Count{kExponential} : type;
}

/// %K where the range is not 0, else `withoutRange`.
double momentumValue(double num, double den, double withoutRange) {
  const double halfRange = nz(den) * 0.5;
  return halfRange == 0.0 ? withoutRange : nz(num) / halfRange * 100.0;
}

/// The batch smoothing: over smooth + 1 rows, then over twice rows if above 1.
std::vector<double> smoothedTwice(std::vector<double> in, Count smooth, Count twice, Count maType) {
  for (Count p : {smooth + 1, twice}) {
    if (p <= 1) continue;
    std::vector<double> out = nullRows(in.size());
    CFeedkit::movingAverageByType(in, p, maType, out);
    in.swap(out);
  }
  return in;
}

/// The batch %K.
void momentumK(const Prices& prices, Count p, Count smooth, Count twice, Count maType, Out out) {
  const Count n = prices.rows();
  const std::size_t rows = prices.close.size();
  std::vector<double> hh = nullRows(rows), ll = nullRows(rows);
  CFeedkit::HighestHighValue(prices.high, p, hh);
  CFeedkit::LowestLowValue(prices.low, p, ll);
  std::vector<double> num = nullRows(rows), den = nullRows(rows);
  for (Count i = p + 1; i < n; ++i) {
    den[i] = nz(hh[i]) - nz(ll[i]);
    num[i] = prices.close[i] - (nz(hh[i]) + nz(ll[i])) * 0.5;
  }
  den = smoothedTwice(std::move(den), smooth, twice, maType);
  num = smoothedTwice(std::move(num), smooth, twice, maType);
  for (Count i = p + 1; i < n; ++i) out[i] = momentumValue(num[i], den[i], NULL_VALUE);
}

/// The living extreme of the p rows up to the present one.
template <class Extreme>
WorkField livingExtreme(WorkStore& store, std::string_view name, Source in, Count p) {
  const WorkField out = store.field(name, {in, p});
  const Count first = firstValueIndex(in.rows) + p - 1;
  Extreme extreme(in.rows, p, startRow(out, first));
  computeRows(out, first, rowsOf(in, out), [&](Count i) {
    extreme.slideTo(i);
    return extreme.fromOldest();
  });
  return out;
}

/// The living smoothing of one series: a pass over 1 row or less is left out.
WorkField smoothed(WorkStore& store, std::string_view name, const WorkField& in, Count p, Count maType) {
  if (p <= 1) return in;
  const WorkField out = store.field(name, {in, p, KeyPart::maType(maType)});
  CTechnicalFunctions::movingAverageByType(store, in, p, maType, out);
  return out;
}

/// The living %K.
WorkField livingMomentumK(WorkStore& store, const PriceSources& prices, Count n, Count p, Count smooth,
                          Count twice, Count maType) {
  const WorkField hh = livingExtreme<RollingHigh<>>(store, "SMI_MAX", prices.high, p);
  const WorkField ll = livingExtreme<RollingLow<>>(store, "SMI_MIN", prices.low, p);
  WorkField den = store.field("SMI_KDEN", {hh, ll});
  WorkField num = store.field("SMI_KNUM", {prices.close, hh, ll});
  const Count first = higherLead(hh.rows, ll.rows);
  computeRows(den, first, n, [&](Count i) { return nz(hh.rows[i]) - nz(ll.rows[i]); });
  computeRows(num, first, n,
              [&](Count i) { return prices.close.rows[i] - (nz(hh.rows[i]) + nz(ll.rows[i])) * 0.5; });
  den = smoothed(store, "KSMOOTHDEN", den, smooth, maType);
  den = smoothed(store, "KDBLSMOOTHDEN", den, twice, maType);
  num = smoothed(store, "KSMOOTHNUM", num, smooth, maType);
  num = smoothed(store, "KDBLSMOOTHNUM", num, twice, maType);

  const WorkField k = store.field("SMIK", {num, den});
  computeRows(k, higherLead(den.rows, num.rows), n,
              [&](Count i) { return momentumValue(num.rows[i], den.rows[i], 0.0); });
  return k;
}

// ---- Williams' %R -------------------------------------------------------------------------------------

/// Rows [first, last) of %R. The lowest of a window starts from the low of the row where the scan of the
/// window before it stopped: its own newest row, save for the first window, which starts from `seed`.
void williamsRows(View high, View low, View close, Count p, Count first, Count last, double seed,
                  double withoutRange, Out out) {
  RollingHigh<> highest(high, p, first);
  RollingLow<> lowest(low, p, first);
  for (Count i = first; i < last; ++i) {
    highest.slideTo(i);
    lowest.slideTo(i);
    const double hh = highest.from(0.0);
    const double ll = lowest.from(i == first ? seed : low[i]);
    out[i] = hh - ll == 0.0 ? withoutRange : (hh - close[i]) / (hh - ll) * -100.0;
  }
}

}  // namespace

namespace CFeedkit {

void SOPK(const Prices& prices, Count kPeriods, Count kSlowing, Count dPeriods, Count maType, Out out) {
  if (!allWithin({kPeriods, kSlowing, dPeriods}, prices.rows())) return;
  stochasticK(prices, kPeriods, kSlowing, maType, out);
}

void SOPD(const Prices& prices, Count kPeriods, Count kSlowing, Count dPeriods, Count maType, Out out) {
  if (!allWithin({kPeriods, kSlowing, dPeriods}, prices.rows())) return;
  std::vector<double> k = nullRows(prices.close.size());
  stochasticK(prices, kPeriods, kSlowing, maType, k);
  movingAverageByType(k, dPeriods, maType, out);
}

void SMIK(const Prices& prices, Count kPeriods, Count kSmooth, Count kDouble, Count dPeriods, Count maType,
          Count, Out out) {
  if (!allWithin({kPeriods, kSmooth, kDouble, dPeriods}, prices.rows())) return;
  momentumK(prices, kPeriods, kSmooth, kDouble, momentumMaType(maType), out);
}

void SMID(const Prices& prices, Count kPeriods, Count kSmooth, Count kDouble, Count dPeriods, Count maType,
          Count dMaType, Out out) {
  if (!allWithin({kPeriods, kSmooth, kDouble, dPeriods}, prices.rows()) || dPeriods <= 1) return;
  std::vector<double> k = nullRows(prices.close.size());
  momentumK(prices, kPeriods, kSmooth, kDouble, momentumMaType(maType), k);
  movingAverageByType(k, dPeriods, momentumMaType(dMaType), out);
}

void WilliamsPctR(const Prices& prices, Count p, Out out) {
  const Count n = prices.rows();
  const Count first = p + 1;
  if (!batchRange(p, n) || first >= n) return;
  const double seed = first + 1 < n ? prices.low[first + 1] : 0.0;
  williamsRows(prices.high, prices.low, prices.close, p, first, n, seed, NULL_VALUE, out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status SOPK(WorkStore& store, const PriceSources& prices, Count kPeriods, Count kSlowing, Count dPeriods,
            Count maType, Target out) {
  const Count n = rangeRows(prices, out);
  if (!allWithin({kPeriods, kSlowing, dPeriods}, n)) return kNothingDone;
  const WorkField k = livingStochasticK(store, prices, n, kPeriods, kSlowing, maType);
  return copyRows(k.rows, firstValueIndex(k.rows), n, out);
}

Status SOPD(WorkStore& store, const PriceSources& prices, Count kPeriods, Count kSlowing, Count dPeriods,
            Count maType, Target out) {
  const Count n = rangeRows(prices, out);
  if (!allWithin({kPeriods, kSlowing, dPeriods}, n)) return kNothingDone;
  const WorkField k = livingStochasticK(store, prices, n, kPeriods, kSlowing, maType);
  return movingAverageByType(store, k, dPeriods, maType, out);
}

// The types stand the other way round than in the batch form: dMaType smooths, maType makes %D.

Status SMIK(WorkStore& store, const PriceSources& prices, Count kPeriods, Count kSmooth, Count kDouble,
            Count dPeriods, Count, Count dMaType, Target out) {
  const Count n = rangeRows(prices, out);
  if (!allWithin({kPeriods, kSmooth, kDouble, dPeriods}, n)) return kNothingDone;
  const Count smoothing = momentumMaType(dMaType);
  const WorkField k = livingMomentumK(store, prices, n, kPeriods, kSmooth, kDouble, smoothing);
  return copyRows(k.rows, firstValueIndex(k.rows), n, out);
}

Status SMID(WorkStore& store, const PriceSources& prices, Count kPeriods, Count kSmooth, Count kDouble,
            Count dPeriods, Count maType, Count dMaType, Target out) {
  const Count n = rangeRows(prices, out);
  if (!allWithin({kPeriods, kSmooth, kDouble, dPeriods}, n) || dPeriods <= 1) return kNothingDone;
  const Count smoothing = momentumMaType(dMaType);
  const WorkField k = livingMomentumK(store, prices, n, kPeriods, kSmooth, kDouble, smoothing);
  return movingAverageByType(store, k, dPeriods, momentumMaType(maType), out);
}

Status WilliamsPctR(const PriceSources& prices, Count p, Target out) {
  const Count n = rangeRows(prices, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count lead =
      std::max(higherLead(prices.high.rows, prices.low.rows), firstValueIndex(prices.close.rows));
  const Count start = startRow(out, lead + p - 1);
  if (start >= n) return kNothingDone;
  williamsRows(prices.high.rows, prices.low.rows, prices.close.rows, p, start, n, prices.low.rows[start], 0.0,
               out.rows);
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
