#include "indicators/pivots.hpp"

#include "indicators/source_rows.hpp"

namespace brindlewort {

namespace {

struct PriceViews {
  View high, low, close;
};

/// A level from the bar before: its high and low, its typical price P and its range R.
template <PivotLevel level>
double levelOf(double high, double low, double P, double R) {
  switch (level) {
    case PivotLevel::kPivot:
      return P;
    case PivotLevel::kRes1:
      return 2.0 * P - low;
    case PivotLevel::kRes2:
      return P + R;
    case PivotLevel::kRes3:
      return 2.0 * R + P;
    case PivotLevel::kRes4:
      return 3.0 * R + P;
    case PivotLevel::kSup1:
      return 2.0 * P - high;
    case PivotLevel::kSup2:
      return P - R;
    case PivotLevel::kSup3:
      return P - 2.0 * R;
    case PivotLevel::kSup4:
      return P - 3.0 * R;
  }
  return NULL_VALUE;
}

/// Writes rows [first, last).
template <PivotLevel level>
void fillLevel(const PriceViews& prices, Count first, Count last, Out out) {
  for (Count i = first; i < last; ++i) {
    const double high = prices.high[i - 1], low = prices.low[i - 1];
    const double P = (high + low + prices.close[i - 1]) / 3.0;
    const double R = high - low;
    out[i] = levelOf<level>(high, low, P, R);
  }
}

/// A loop of its own for each level, in the order of PivotLevel.
constexpr decltype(&fillLevel<PivotLevel::kPivot>) kFillLevel[] = {
    fillLevel<PivotLevel::kPivot>, fillLevel<PivotLevel::kRes1>, fillLevel<PivotLevel::kRes2>,
    fillLevel<PivotLevel::kRes3>,  fillLevel<PivotLevel::kRes4>, fillLevel<PivotLevel::kSup1>,
    fillLevel<PivotLevel::kSup2>,  fillLevel<PivotLevel::kSup3>, fillLevel<PivotLevel::kSup4>,
};

void fill(const PriceViews& prices, PivotLevel level, Count first, Count last, Out out) {
  kFillLevel[static_cast<std::size_t>(level)](prices, first, last, out);
}

}  // namespace

namespace CFeedkit {

void PIVOT(const Prices& prices, PivotLevel level, Out out) {
  fill({prices.high, prices.low, prices.close}, level, 2, prices.rows(), out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status PIVOT(const PriceSources& prices, PivotLevel level, Target out) {
  const PriceViews views = {prices.high.rows, prices.low.rows, prices.close.rows};
  const Count n = commonRows(views.high, {views.low, views.close, out.rows});
  const Count start = startRow(out, 1);
  if (start >= n) return kNothingDone;
  fill(views, level, start, n, out.rows);
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
