#include "indicators/mass_index.hpp"

#include "indicators/moving_averages.hpp"
#include "indicators/price_bases.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/windows.hpp"

namespace brindlewort {

namespace {

constexpr Count kSmoothing = 9;

/// Rows [first, last): the sum of e1 / e2 over the p rows ending there. Windows must begin at row 0 or later.
void sumRatios(View e1, View e2, Count p, Count first, Count last, Out out) {
  if (first >= last) return;
  // Each ratio is formed once, though p windows add it.
  const Count oldest = first - p + 1;
  std::vector<double> ratio(static_cast<std::size_t>(last - oldest));
  for (Count j = oldest; j < last; ++j) {
    const double divisor = nz(e2[j]);
    ratio[j - oldest] = divisor == 0.0 ? 0.0 : nz(e1[j]) / divisor;
  }
  sumWindows<WindowOrder::kOldestFirst>(
      first, last, p, [&](Count j, Count) { return ratio[j - oldest]; },
      [&](Count i, double total) { out[i] = total; });
}

}  // namespace

namespace CFeedkit {

void MassIndex(const Prices& prices, Count p, Out out) {
  const Count n = prices.rows();
  if (!batchRange(p, n)) return;
  std::vector<double> heights = nullRows(n), e1 = nullRows(n), e2 = nullRows(n);
  HIGHMINUSLOW(prices, heights);
  ExponentialMovingAverage(heights, kSmoothing, e1);
  ExponentialMovingAverage(e1, kSmoothing, e2);
  sumRatios(e1, e2, p, 2 * p, n, out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status MassIndex(WorkStore& store, const PriceSources& prices, Count p, Target out) {
  const Count n = commonRows(prices.high.rows, {prices.low.rows, out.rows});
  if (!batchRange(p, n)) return kNothingDone;

  const WorkField heights = store.field("MI_HML", {prices.high, prices.low});
  const WorkField e1 = store.field("MI_EMA1", {heights, kSmoothing});
  const WorkField e2 = store.field("MI_EMA2", {e1, kSmoothing});
  HIGHMINUSLOW(prices, heights);
  ExponentialMovingAverage(heights, kSmoothing, e1);
  ExponentialMovingAverage(e1, kSmoothing, e2);
  const Count start = startRow(out, higherLead(e1.rows, e2.rows) + p);
  if (start >= n) return kNothingDone;
  sumRatios(e1.rows, e2.rows, p, start, n, out.rows);
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
