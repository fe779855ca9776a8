#include "indicators/true_range.hpp"

#include <algorithm>
#include <cmath>

#include "indicators/compute_rows.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/seeded_recursion.hpp"
#include "indicators/source_rows.hpp"

namespace brindlewort {
namespace {

inline double greater(double x, double best) {
  return x > best ? x : best;
}

inline double trueRange(double high, double low, double closeBefore) {
  return greater(std::fabs(closeBefore - low), greater(std::fabs(high - closeBefore), high - low));
}

/// The same as a comparison that starts from 0, as the resumable form has it: a non-number is passed over.
inline double trueRangeFromZero(double high, double low, double closeBefore) {
  const double range = greater(high - low, 0.0);
  return greater(std::fabs(closeBefore - low), greater(std::fabs(high - closeBefore), range));
}

/// The range as the typed averages take it.
inline double reach(double high, double low, double closeBefore) {
  return std::max(high, closeBefore) - std::min(low, closeBefore);
}

inline double wilderStep(double before, double range, double p) {
  return ((p - 1.0) * before + range) / p;
}

}  // namespace

namespace CFeedkit {

void TrueRange(const Prices& prices, Out out) {
  const Count n = prices.rows();
  for (Count i = 2; i < n; ++i) out[i] = trueRange(prices.high[i], prices.low[i], prices.close[i - 1]);
}

namespace {

void wilderAverage(const Prices& prices, Count p, Out out) {
  const Count n = prices.rows();
  const Count seedRow = p + 1;
  if (seedRow >= n) return;
  std::vector<double> range = nullRows(prices.close.size());
  TrueRange(prices, range);
  // Only the first row of the simple average is wanted, and it depends on no later row.
  std::vector<double> average = nullRows(static_cast<std::size_t>(seedRow + 1));
  SimpleMovingAverage(View(range).first(average.size()), p, average);
  out[seedRow] = average[seedRow];
  for (Count i = seedRow + 1; i < n; ++i) out[i] = wilderStep(out[i - 1], range[i], static_cast<double>(p));
}

}  // namespace

void AverageTrueRange(const Prices& prices, Count p, Count maType, Out out) {
  const Count n = prices.rows();
  if (!batchRange(p, n)) return;
  if (maType < 0) return wilderAverage(prices, p, out);
  std::vector<double> range = nullRows(prices.close.size());
  for (Count i = 2; i < n; ++i) range[i] = reach(prices.high[i], prices.low[i], prices.close[i - 1]);
  movingAverageByType(range, p, maType, out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {
namespace {

Count readableRows(const PriceSources& prices, const Target& out) {
  return commonRows(out.rows, {prices.high.rows, prices.low.rows, prices.close.rows});
}

Status wilderAverage(WorkStore& store, const PriceSources& prices, Count p, Count n, Target out) {
  const WorkField range = store.field("TR", {prices.high, prices.low, prices.close});
  TrueRange(prices, range);
  const WorkField average = store.field("SMA", {range, p});
  SimpleMovingAverage(range, p, average);
  const Count seedRow = firstValueIndex(average.rows);
  return resumeRecursion(
      out, n, seedRow, [&] { return average.rows[seedRow]; },
      [&](Count i, double before) { return wilderStep(before, range.rows[i], static_cast<double>(p)); });
}

}  // namespace

Status TrueRange(const PriceSources& prices, Target out) {
  const View high = prices.high.rows, low = prices.low.rows, close = prices.close.rows;
  return computeRows(out, 1, readableRows(prices, out),
                     [=](Count i) { return trueRangeFromZero(high[i], low[i], close[i - 1]); });
}

Status AverageTrueRange(WorkStore& store, const PriceSources& prices, Count p, Count maType, Target out) {
  const Count n = readableRows(prices, out);
  if (!resumableRange(p, n)) return kNothingDone;
  if (maType < 0) return wilderAverage(store, prices, p, n, out);
  const View high = prices.high.rows, low = prices.low.rows, close = prices.close.rows;
  const WorkField range = store.field("ATRfield1", {prices.high, prices.low, prices.close});
  computeRows(range, 1, n, [=](Count i) { return reach(high[i], low[i], close[i - 1]); });
  return movingAverageByType(store, range, p, maType, out);
}

}  // namespace CTechnicalFunctions
}  // namespace brindlewort
