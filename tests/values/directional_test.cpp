// Value cases of ranges, directional movement, Aroon and range counts.

#include "values/average_twins.hpp"
#include "values/range_twins.hpp"
#include "values/value_case.hpp"

namespace brindlewort::testing {
namespace {

using B = const Bars&;

struct Movement {
  Rows trSum, plus, minus, dx, adx, adxr;
};

Movement wholeMovement(B b, int p, int downPeriods, int upPeriods) {
  Rows up = nulls(b.close), down = up;
  for (int i = 2; i < b.count(); ++i) {
    const double u = std::max(b.high[i] - b.high[i - 1], 0.0), d = std::max(b.low[i - 1] - b.low[i], 0.0);
    if (u > d) up[i] = u;
    if (d > u) down[i] = d;
  }
  const Rows upSum = whole::wws(up, upPeriods), downSum = whole::wws(down, downPeriods);
  Movement m{whole::wws(trueRangeFrom(b, 2), p), nulls(up), nulls(up), nulls(up), nulls(up), nulls(up)};
  for (int i = 2; i < b.count(); ++i) {
    if (nz(m.trSum[i]) == 0) continue;
    m.plus[i] = nz(upSum[i]) * 100 / m.trSum[i];
    m.minus[i] = nz(downSum[i]) * 100 / m.trSum[i];
    if (m.plus[i] + m.minus[i] != 0)
      m.dx[i] = std::fabs(m.plus[i] - m.minus[i]) / (m.plus[i] + m.minus[i]) * 100;
  }
  for (int i = p + 1; i < b.count(); ++i) {
    m.adx[i] = (nz(m.adx[i - 1]) * (p - 1) + nz(m.dx[i])) / p;
    m.adxr[i] = (nz(m.adx[i]) + nz(m.adx[i - 1])) / 2;
  }
  return m;
}

/// The second of the script's periods smooths the up side here.
Movement livingMovement(B b, int p, int upPeriods, int downPeriods) {
  Rows up = nulls(b.close), down = up;
  for (int i = 1; i < b.count(); ++i) {
    const double u = b.high[i] - b.high[i - 1], d = b.low[i - 1] - b.low[i];
    up[i] = u > 0 && u > d ? u : 0;
    down[i] = d > 0 && d > u ? d : 0;
  }
  const Rows upSum = living::wws(up, upPeriods), downSum = living::wws(down, downPeriods);
  Movement m{living::wws(trueRangeFrom(b, 1), p), nulls(up), nulls(up), nulls(up), nulls(up), nulls(up)};
  for (int i = std::max({leadOf(upSum), leadOf(downSum), leadOf(m.trSum)}); i < b.count(); ++i) {
    const double range = nz(m.trSum[i]);
    m.plus[i] = range == 0 ? 0 : nz(upSum[i]) * 100 / range;
    m.minus[i] = range == 0 ? 0 : nz(downSum[i]) * 100 / range;
    const double sum = m.plus[i] + m.minus[i];
    m.dx[i] = sum == 0 ? 0 : std::fabs(m.plus[i] - m.minus[i]) * 100 / sum;
  }
  const int seed = leadOf(m.dx) + p - 1;
  m.adx[seed] = sumOf(m.dx, seed - p + 1, seed) / p;
  for (int i = seed + 1; i < b.count(); ++i) m.adx[i] = (nz(m.adx[i - 1]) * (p - 1) + nz(m.dx[i])) / p;
  for (int i = leadOf(m.adx); i < b.count(); ++i) m.adxr[i] = (nz(m.adx[i]) + nz(m.adx[i - 1])) / 2;
  return m;
}

/// How far back of p rows the extreme is, in hundredths from p. `older` rows are looked at besides the
/// present one.
double since(const Rows& in, int i, int p, int older, bool newestFirst, double sign) {
  int at = i;
  for (int k = 1; k <= older; ++k) {
    const int j = newestFirst ? i - k : i - older - 1 + k;
    if (sign * in[j] > sign * in[at]) at = j;
  }
  return static_cast<double>(p - (i - at)) / p * 100;
}
Rows wholeAroon(B b, const Rows& in, int p, double sign) {
  return eachBar(b, p + 1, [&](int i) { return since(in, i, p, p, false, sign); });
}
Rows livingAroon(B b, const Rows& in, int p, double sign) {
  return eachBar(b, p - 1, [&](int i) { return since(in, i, p, p - 1, true, sign); });
}

/// Steps from row `firstStep` on that go the way of `sign`.
Rows stepsOf(const Rows& in, int p, double sign, int firstStep, int first) {
  Rows out = nulls(in);
  for (int i = first; i < countOf(in); ++i) {
    out[i] = 0;
    for (int j = i - p + 1; j <= i; ++j) {
      if (j >= firstStep && sign * nz(in[j]) > sign * nz(in[j - 1])) ++out[i];
    }
  }
  return out;
}

const Family kDirectional{{
    {{"TR", "TRUERANGE"},
     "",
     [](B b) { return trueRangeFrom(b, 2); },
     [](B b) { return trueRangeFrom(b, 1); }},
    {{"ATR", "AVERAGETRUERANGE"},
     "5",
     [](B b) { return whole::atr(b, 5); },
     [](B b) { return living::atr(b, 5); }},
    {{"ADX"},
     "4",
     [](B b) { return wholeMovement(b, 4, 4, 4).adx; },
     [](B b) { return livingMovement(b, 4, 4, 4).adx; }},
    {{"ADX"},
     "4, 6, 3",
     [](B b) { return wholeMovement(b, 4, 6, 3).adx; },
     [](B b) { return livingMovement(b, 4, 6, 3).adx; }},
    {{"ADX"},
     "4, 6",
     [](B b) { return wholeMovement(b, 4, 6, 4).adx; },
     [](B b) { return livingMovement(b, 4, 6, 4).adx; }},
    {{"ADXR"},
     "4, 6, 3",
     [](B b) { return wholeMovement(b, 4, 6, 3).adxr; },
     [](B b) { return livingMovement(b, 4, 6, 3).adxr; }},
    {{"DX"},
     "5, 3, 7",
     [](B b) { return wholeMovement(b, 5, 3, 7).dx; },
     [](B b) { return livingMovement(b, 5, 3, 7).dx; }},
    {{"DIP"},
     "4, 6, 3",
     [](B b) { return wholeMovement(b, 4, 6, 3).plus; },
     [](B b) { return livingMovement(b, 4, 6, 3).plus; }},
    {{"DIN"},
     "4, 6, 3",
     [](B b) { return wholeMovement(b, 4, 6, 3).minus; },
     [](B b) { return livingMovement(b, 4, 6, 3).minus; }},
    {{"TRSUM"}, "4, 6, 3", [](B b) { return wholeMovement(b, 4, 6, 3).trSum; }, kUnknown},
    {{"AROONUP"},
     "5",
     [](B b) { return wholeAroon(b, b.high, 5, 1); },
     [](B b) { return livingAroon(b, b.high, 5, 1); }},
    {{"AROONDOWN"},
     "5",
     [](B b) { return wholeAroon(b, b.low, 5, -1); },
     [](B b) { return livingAroon(b, b.low, 5, -1); }},
    {{"AROSC"},
     "5",
     kUnknown,
     [](B b) {
       return eachBar(
           b, 4, [&](int i) { return since(b.high, i, 5, 4, true, 1) - since(b.low, i, 5, 4, true, -1); });
     }},
    {{"RUPCOUNT", "RANGEUPCOUNT"},
     "LOW, 4",
     [](B b) { return stepsOf(b.low, 4, 1, 1, 4); },
     [](B b) { return stepsOf(b.low, 4, 1, 1, 4); }},
    {{"RDNCOUNT", "RANGEDOWNCOUNT"},
     "HIGH, 4",
     [](B b) { return stepsOf(b.high, 4, -1, 2, 4); },
     [](B b) { return stepsOf(b.high, 4, -1, 1, 4); }},
}};

}  // namespace
}  // namespace brindlewort::testing
