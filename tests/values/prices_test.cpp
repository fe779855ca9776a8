// Value cases of price bases, pivots, swing and mass indexes, and Ichimoku lines.

#include "values/average_twins.hpp"
#include "values/range_twins.hpp"
#include "values/value_case.hpp"

namespace brindlewort::testing {
namespace {

using B = const Bars&;

Rows weightedFrom(B b, int first) {
  return eachBar(b, first, [&](int i) { return (b.close[i] + b.close[i] + b.high[i] + b.low[i]) / 4; });
}

/// value(pivot, range, high, low) of the row before.
template <class Value>
Rows level(B b, int first, Value value) {
  return eachBar(b, first, [&](int i) {
    const double h = b.high[i - 1], l = b.low[i - 1];
    return value((h + l + b.close[i - 1]) / 3, h - l, h, l);
  });
}
/// A case of both ways, which begin with different rows.
template <class Value>
ValueCase levelCase(const char* name, Value value) {
  return {
      {name}, "", [value](B b) { return level(b, 2, value); }, [value](B b) { return level(b, 1, value); }};
}

Rows swingIndex(B b, double limit, int first) {
  return eachBar(b, first, [&](int i) {
    const double O1 = b.open[i - 1], C1 = b.close[i - 1], C = b.close[i], O = b.open[i];
    const double x = std::fabs(b.high[i] - C1), y = std::fabs(b.low[i] - C1),
                 z = std::fabs(b.high[i] - b.low[i]);
    const double body = std::fabs(C1 - O1) * 0.25;
    const double r = x >= y && x >= z ? x - y * 0.5 + body : y >= z ? y - x * 0.5 + body : z + body;
    if (r == 0) return 0.0;
    return ((C - C1) + (C - O) * 0.5 + (C1 - O1) * 0.25) / r * 50 * std::max(x, y) / limit;
  });
}
Rows runningSum(const Rows& in, int first) {
  Rows out = nulls(in);
  for (int i = first; i < countOf(in); ++i) out[i] = nz(in[i]) + nz(out[i - 1]);
  return out;
}
Rows massOf(const Rows& e1, const Rows& e2, int p, int first) {
  Rows out = nulls(e1);
  for (int i = first; i < countOf(e1); ++i) {
    out[i] = 0;
    for (int j = i - p + 1; j <= i; ++j) out[i] += nz(e2[j]) != 0 ? nz(e1[j]) / nz(e2[j]) : 0;
  }
  return out;
}

/// The middle of the p rows that end at a row, from row p on.
Rows middle(B b, int p, int first) {
  return eachBar(
      b, first, [&](int i) { return (greatestOf(b.high, i - p + 1, i) + leastOf(b.low, i - p + 1, i)) / 2; });
}
Rows spanA(B b, int tenkan, int kijun, int shift) {
  const Rows t = middle(b, tenkan, tenkan), k = middle(b, kijun, kijun);
  return eachBar(b, shift + kijun, [&](int i) { return (nz(t[i - shift]) + nz(k[i - shift])) / 2; });
}
Rows spanB(B b, int shift) {
  const Rows m = middle(b, 52, 52);
  return eachBar(b, shift + 52, [&](int i) { return m[i - shift]; });
}
Rows chikou(B b, int p) {
  return eachBar(b, 0, [&](int i) { return b.close[std::min(i + p, b.count() - 1)]; });
}

ValueCase both(std::vector<std::string> names, const char* arguments, Expected rows) {
  return {std::move(names), arguments, rows, rows};
}

const Family kPrices{{
    {{"MP", "MEDIANPRICE"}, "", [](B b) { return medianFrom(b, 1); }, [](B b) { return medianFrom(b, 0); }},
    {{"TP", "TYPICALPRICE"},
     "",
     [](B b) { return typicalFrom(b, 1); },
     [](B b) { return typicalFrom(b, 0); }},
    {{"HML", "HIGHMINUSLOW"}, "", [](B b) { return heightFrom(b, 1); }, [](B b) { return heightFrom(b, 0); }},
    {{"WC", "WEIGHTEDCLOSE"},
     "",
     [](B b) { return weightedFrom(b, 1); },
     [](B b) { return weightedFrom(b, 0); }},
    {{"SPREAD"},
     "HIGH, VOLUME",
     kUnknown,
     [](B b) { return eachBar(b, 0, [&](int i) { return b.high[i] - b.volume[i]; }); }},
    {{"SPREAD"},
     "HIGH",
     kUnknown,
     [](B b) { return eachBar(b, 0, [&](int i) { return b.high[i] - b.close[i]; }); }},
    {{"SPREAD"}, "", kUnknown, [](B b) { return eachBar(b, 0, [](int) { return 0.0; }); }},
    {{"COMPOSITE"},
     "HIGH, VOLUME, 2.5, 0.25",
     kUnknown,
     [](B b) { return eachBar(b, 0, [&](int i) { return b.high[i] * 2.5 + b.volume[i] * 0.25; }); }},
    levelCase("PIVOT", [](double P, double, double, double) { return P; }),
    levelCase("RES1", [](double P, double, double, double l) { return 2 * P - l; }),
    levelCase("RES2", [](double P, double R, double, double) { return P + R; }),
    levelCase("RES3", [](double P, double R, double, double) { return 2 * R + P; }),
    levelCase("RES4", [](double P, double R, double, double) { return 3 * R + P; }),
    levelCase("SUP1", [](double P, double, double h, double) { return 2 * P - h; }),
    levelCase("SUP2", [](double P, double R, double, double) { return P - R; }),
    levelCase("SUP3", [](double P, double R, double, double) { return P - 2 * R; }),
    levelCase("SUP4", [](double P, double R, double, double) { return P - 3 * R; }),
    {{"SI", "SWINGINDEX"},
     "2.5",
     [](B b) { return swingIndex(b, 2.5, 2); },
     [](B b) { return swingIndex(b, 2.5, 1); }},
    {{"ASI", "ACCUMULATIVESWINGINDEX"},
     "0.5",
     [](B b) { return runningSum(swingIndex(b, 0.5, 2), 2); },
     [](B b) { return runningSum(swingIndex(b, 0.5, 1), 1); }},
    {{"MI", "MASSINDEX"},
     "5",
     [](B b) {
       const Rows e1 = whole::ema(heightFrom(b, 1), 9), e2 = whole::ema(e1, 9);
       return massOf(e1, e2, 5, 10);
     },
     [](B b) {
       const Rows e1 = living::ema(heightFrom(b, 0), 9), e2 = living::ema(e1, 9);
       return massOf(e1, e2, 5, std::max(leadOf(e1), leadOf(e2)) + 5);
     }},
    both({"TENKAN"}, "5", [](B b) { return middle(b, 5, 5); }),
    both({"KIJUN"}, "6", [](B b) { return middle(b, 6, 6); }),
    both({"SPANA"}, "3, 7, 4", [](B b) { return spanA(b, 3, 7, 4); }),
    both({"SPANB"}, "6", [](B b) { return spanB(b, 6); }),
    {{"CHIKOU"}, "6", kUnknown, [](B b) { return chikou(b, 6); }},
}};

}  // namespace
}  // namespace brindlewort::testing
