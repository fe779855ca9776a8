#include "indicators/swing_index.hpp"

#include <cmath>

#include "indicators/source_rows.hpp"

namespace brindlewort {

namespace {

/// The swing of row i >= 1 against the row before. 0 where there is nothing to divide by.
double swing(const Prices& prices, double limitMove, Count i) {
  const double O = prices.open[i], H = prices.high[i], L = prices.low[i], C = prices.close[i];
  const double O1 = prices.open[i - 1], C1 = prices.close[i - 1];
  const double a = std::fabs(H - C1), b = std::fabs(L - C1), c = std::fabs(H - L);
  const double k = std::max(a, b);
  const double bodyBefore = std::fabs(C1 - O1) * 0.25;

  double r;
  if (a >= b && a >= c) {
    r = a - b * 0.5 + bodyBefore;
  } else if (b >= c) {
    r = b - a * 0.5 + bodyBefore;
  } else {
    r = c + bodyBefore;
  }
  if (r == 0.0 || limitMove == 0.0) return 0.0;
  return ((C - C1) + (C - O) * 0.5 + (C1 - O1) * 0.25) / r * 50.0 * k / limitMove;
}

/// Rows [first, last) of the running sum; `before` is the sum up to the row before `first`.
void accumulate(View swings, double before, Count first, Count last, Out out) {
  for (Count i = first; i < last; ++i) {
    out[i] = nz(swings[i]) + nz(before);
    before = out[i];
  }
}

Prices viewsOf(const PriceSources& prices) {
  return {prices.open.rows, prices.high.rows, prices.low.rows, prices.close.rows, prices.volume.rows};
}

}  // namespace

namespace CFeedkit {

void SwingIndex(const Prices& prices, double limitMove, Out out) {
  if (limitMove == 0.0) return;
  for (Count i = 2; i < prices.rows(); ++i) out[i] = swing(prices, limitMove, i);
}

void AccumulativeSwingIndex(const Prices& prices, double limitMove, Out out) {
  std::vector<double> swings = nullRows(prices.close.size());
  SwingIndex(prices, limitMove, swings);
  accumulate(swings, NULL_VALUE, 2, prices.rows(), out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status SwingIndex(WorkStore& store, const PriceSources& prices, double limitMove, Target out) {
  const Prices views = viewsOf(prices);
  const Count n = commonRows(views.open, {views.high, views.low, views.close, out.rows});
  const Count start = startRow(out, 1);
  if (start >= n) return kNothingDone;

  const WorkField swings =
      store.field("SWINGI_Temp", {prices.open, prices.high, prices.low, prices.close, limitMove});
  // Row 0 has no bar before it: no swing.
  swings.rows[0] = 0.0;
  for (Count i = startRow(swings, 1); i < n; ++i) swings.rows[i] = swing(views, limitMove, i);
  finish(swings, n);

  std::copy(swings.rows.begin() + start, swings.rows.begin() + n, out.rows.begin() + start);
  return finish(out, n);
}

Status AccumulativeSwingIndex(WorkStore& store, const PriceSources& prices, double limitMove, Target out) {
  const Prices views = viewsOf(prices);
  const Count n = commonRows(views.open, {views.high, views.low, views.close, out.rows});
  const Count first = 1, start = startRow(out, first);
  if (start >= n) return kNothingDone;

  const WorkField swings =
      store.field("ASI_SI", {prices.open, prices.high, prices.low, prices.close, limitMove});
  SwingIndex(store, prices, limitMove, swings);
  accumulate(swings.rows, start == first ? NULL_VALUE : out.rows[start - 1], start, n, out.rows);
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
