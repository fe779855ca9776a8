#include "indicators/price_bases.hpp"

#include "indicators/source_rows.hpp"

namespace brindlewort {

namespace {

double median(double high, double low) {
  return (high + low) / 2.0;
}
double typical(double high, double low, double close) {
  return (high + low + close) / 3.0;
}
double height(double high, double low) {
  return high - low;
}
double weightedClose(double high, double low, double close) {
  return (close + close + high + low) / 4.0;
}

/// Row 0 is the filler bar: whole series are formed from row 1.
template <class Formula>
void fillFromRowOne(Count n, Out out, Formula formula) {
  for (Count i = 1; i < n; ++i) out[i] = formula(i);
}

template <class Formula>
Status resume(Count first, Count n, const Target& out, Formula formula) {
  const Count start = startRow(out, first);
  if (start >= n) return kNothingDone;
  for (Count i = start; i < n; ++i) out.rows[i] = formula(i);
  return finish(out, n);
}

/// Combines two series from the row in which both have begun.
template <class Formula>
Status combine(View a, View b, const Target& out, Formula formula) {
  return resume(higherLead(a, b), commonRows(a, {b, out.rows}), out,
                [=](Count i) { return formula(NullToZero(a[i]), NullToZero(b[i])); });
}

}  // namespace

namespace CFeedkit {

void MEDIANPRICE(const Prices& prices, Out out) {
  fillFromRowOne(prices.rows(), out, [&](Count i) { return median(prices.high[i], prices.low[i]); });
}

void TypicalPrice(const Prices& prices, Out out) {
  fillFromRowOne(prices.rows(), out,
                 [&](Count i) { return typical(prices.high[i], prices.low[i], prices.close[i]); });
}

void HIGHMINUSLOW(const Prices& prices, Out out) {
  fillFromRowOne(prices.rows(), out, [&](Count i) { return height(prices.high[i], prices.low[i]); });
}

void WeightedClose(const Prices& prices, Out out) {
  fillFromRowOne(prices.rows(), out,
                 [&](Count i) { return weightedClose(prices.high[i], prices.low[i], prices.close[i]); });
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status MEDIANPRICE(const PriceSources& prices, Target out) {
  const View high = prices.high.rows, low = prices.low.rows;
  return resume(0, commonRows(high, {low, out.rows}), out, [=](Count i) { return median(high[i], low[i]); });
}

Status TypicalPrice(const PriceSources& prices, Target out) {
  const View high = prices.high.rows, low = prices.low.rows, close = prices.close.rows;
  return resume(0, commonRows(high, {low, close, out.rows}), out,
                [=](Count i) { return typical(high[i], low[i], close[i]); });
}

Status HIGHMINUSLOW(const PriceSources& prices, Target out) {
  const View high = prices.high.rows, low = prices.low.rows;
  return resume(0, commonRows(high, {low, out.rows}), out, [=](Count i) { return height(high[i], low[i]); });
}

Status WeightedClose(const PriceSources& prices, Target out) {
  const View high = prices.high.rows, low = prices.low.rows, close = prices.close.rows;
  return resume(0, commonRows(high, {low, close, out.rows}), out,
                [=](Count i) { return weightedClose(high[i], low[i], close[i]); });
}

Status SPREAD(Source a, Source b, Target out) {
  return combine(a.rows, b.rows, out, [](double x, double y) { return x - y; });
}

Status COMPOSITE(Source a, Source b, double x, double y, Target out) {
  return combine(a.rows, b.rows, out, [=](double u, double v) { return u * x + v * y; });
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
