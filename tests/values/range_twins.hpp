#pragma once

#include "values/average_twins.hpp"
#include "values/value_case.hpp"

/// Twins of the price bases, ranges and rolling extremes that other functions rest on.
namespace brindlewort::testing {

/// f of each bar from row `first` on.
template <class F>
Rows eachBar(const Bars& b, int first, F f) {
  Rows out = nulls(b.close);
  for (int i = first; i < b.count(); ++i) out[i] = f(i);
  return out;
}
inline Rows typicalFrom(const Bars& b, int first) {
  return eachBar(b, first, [&](int i) { return (b.high[i] + b.low[i] + b.close[i]) / 3; });
}
inline Rows medianFrom(const Bars& b, int first) {
  return eachBar(b, first, [&](int i) { return (b.high[i] + b.low[i]) / 2; });
}
inline Rows heightFrom(const Bars& b, int first) {
  return eachBar(b, first, [&](int i) { return b.high[i] - b.low[i]; });
}
inline double trueRangeOf(const Bars& b, int i) {
  return std::max(
      {b.high[i] - b.low[i], std::fabs(b.high[i] - b.close[i - 1]), std::fabs(b.close[i - 1] - b.low[i])});
}
inline Rows trueRangeFrom(const Bars& b, int first) {
  return eachBar(b, first, [&](int i) { return trueRangeOf(b, i); });
}
/// Seeded with the row of the simple average, then ((p - 1) * before + range) / p.
inline Rows wilderRange(const Rows& range, const Rows& simple, int p, int first) {
  Rows out = nulls(range);
  if (first < countOf(range)) out[first] = simple[first];
  for (int i = first + 1; i < countOf(range); ++i) out[i] = ((p - 1) * out[i - 1] + range[i]) / p;
  return out;
}
/// max(H, C1) - min(L, C1).
inline Rows reachFrom(const Bars& b, int first) {
  return eachBar(b, first, [&](int i) {
    return std::max(b.high[i], b.close[i - 1]) - std::min(b.low[i], b.close[i - 1]);
  });
}
/// The p rows before row i, raw.
inline Rows highestBefore(const Rows& in, int p, int first) {
  Rows out = nulls(in);
  for (int i = first; i < countOf(in); ++i) out[i] = greatestOf(in, i - p, i - 1);
  return out;
}
inline Rows lowestBefore(const Rows& in, int p, int first) {
  Rows out = nulls(in);
  for (int i = first; i < countOf(in); ++i) out[i] = leastOf(in, i - p, i - 1);
  return out;
}
inline bool isPrimeTwin(long long v) {
  for (long long d = 2; v > 3 && d * d <= v; ++d) {
    if (v % d == 0) return false;
  }
  return true;
}
/// The next prime from v down to 1, or from v up to 2 v; what was before when there is none.
inline double primeBelow(long long v, double before) {
  for (long long q = v; q >= 1; --q) {
    if (isPrimeTwin(q)) return static_cast<double>(q);
  }
  return before;
}
inline double primeAbove(long long v, double before) {
  for (long long q = v; q <= 2 * v; ++q) {
    if (isPrimeTwin(q)) return static_cast<double>(q);
  }
  return before;
}

namespace whole {
inline Rows atr(const Bars& b, int p) {
  const Rows range = trueRangeFrom(b, 2);
  return wilderRange(range, sma(range, p), p, p + 1);
}
}  // namespace whole
namespace living {
inline Rows atr(const Bars& b, int p) {
  const Rows range = trueRangeFrom(b, 1), simple = sma(range, p);
  return wilderRange(range, simple, p, leadOf(simple));
}
}  // namespace living

}  // namespace brindlewort::testing
