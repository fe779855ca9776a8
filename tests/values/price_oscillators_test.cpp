// Value cases of the oscillators of the bars' prices.

#include "values/average_twins.hpp"
#include "values/range_twins.hpp"
#include "values/value_case.hpp"

namespace brindlewort::testing {
namespace {

using B = const Bars&;

/// The deviation over p + 1 rows, each from its own average.
Rows wholeCci(B b, int p, int type) {
  const Rows tp = typicalFrom(b, 1), m = whole::average(tp, p, type);
  Rows out = nulls(tp);
  for (int i = static_cast<int>(p * 1.5); i < b.count(); ++i) {
    double deviation = 0;
    for (int j = i - p; j <= i; ++j) deviation += std::fabs(nz(tp[j]) - nz(m[j])) / p;
    out[i] = deviation == 0 ? 0 : (nz(tp[i]) - nz(m[i])) / (deviation * 0.015);
  }
  return out;
}
/// The deviation over p rows, all from the present average.
Rows livingCci(B b, int p, int type) {
  const Rows tp = typicalFrom(b, 0), m = living::average(tp, p, type);
  Rows out = nulls(tp);
  for (int i = std::max(leadOf(tp), leadOf(m)); i < b.count(); ++i) {
    double deviation = 0;
    for (int j = i - p + 1; j <= i; ++j) deviation += std::fabs(nz(m[i]) - nz(tp[j])) / p;
    out[i] = deviation == 0 ? 0 : (nz(tp[i]) - nz(m[i])) / (deviation * 0.015);
  }
  return out;
}

Rows rawK(B b, int p, int first, double withoutRange) {
  return eachBar(b, first, [&](int i) {
    const double hh = greatestOf(b.high, i - p + 1, i), ll = leastOf(b.low, i - p + 1, i);
    return hh - ll == 0 ? withoutRange : (b.close[i] - ll) / (hh - ll) * 100;
  });
}
Rows wholeK(B b, int p, int slowing, int type) {
  return whole::average(rawK(b, p, p + 1, kNull), slowing, type);
}
Rows livingK(B b, int p, int slowing, int type) {
  return living::average(rawK(b, p, p - 1, 0.0), slowing, type);
}

/// `type` smooths.
Rows wholeSmi(B b, int p, int smooth, int twice, int type) {
  const Rows hh = highestBefore(b.high, p, p + 1), ll = lowestBefore(b.low, p, p + 1);
  Rows height = nulls(hh), distance = nulls(hh), out = nulls(hh);
  for (int i = p + 1; i < b.count(); ++i) {
    height[i] = hh[i] - ll[i];
    distance[i] = b.close[i] - (hh[i] + ll[i]) * 0.5;
  }
  height = whole::average(whole::average(height, smooth + 1, type), twice, type);
  distance = whole::average(whole::average(distance, smooth + 1, type), twice, type);
  for (int i = p + 1; i < b.count(); ++i) {
    if (nz(height[i]) != 0) out[i] = nz(distance[i]) / (nz(height[i]) * 0.5) * 100;
  }
  return out;
}
/// The present row is part of the range. Rows begin with the later of the two averages.
Rows livingSmi(B b, int p, int smooth, int twice, int type) {
  Rows height = nulls(b.close), distance = height, out = height;
  for (int i = p - 1; i < b.count(); ++i) {
    const double hh = greatestOf(b.high, i - p + 1, i), ll = leastOf(b.low, i - p + 1, i);
    height[i] = hh - ll;
    distance[i] = b.close[i] - (hh + ll) * 0.5;
  }
  height = living::average(living::average(height, smooth, type), twice, type);
  distance = living::average(living::average(distance, smooth, type), twice, type);
  for (int i = std::max(leadOf(height), leadOf(distance)); i < b.count(); ++i)
    out[i] = nz(height[i]) == 0 ? 0 : nz(distance[i]) / (nz(height[i]) * 0.5) * 100;
  return out;
}

/// The highest of a window starts from 0, the lowest from the row where the scan before stopped, which is the
/// row behind its last one; `stop` is that of the first window.
Rows williamsFrom(B b, int p, int first, int stop, double withoutRange) {
  return eachBar(b, first, [&](int i) {
    const double hh = std::max(0.0, greatestOf(b.high, i - p + 1, i));
    const double ll = std::min(b.low[stop], leastOf(b.low, i - p + 1, i));
    stop = i + 1;
    return hh - ll == 0 ? withoutRange : (hh - b.close[i]) / (hh - ll) * -100;
  });
}

struct Macd {
  Rows difference, signal;
};
Macd wholeMacd(B b, int shortP, int longP, int signalP, int type) {
  if (signalP == shortP) ++signalP;
  const Rows s = whole::average(b.close, shortP, type), l = whole::average(b.close, longP, type);
  Macd macd{nulls(s), {}};
  for (int i = 1; i < b.count(); ++i) macd.difference[i] = nz(s[i]) - nz(l[i]);
  macd.signal = whole::average(macd.difference, signalP, type);
  for (int i = 1; i < b.count(); ++i) {
    if (i <= longP) macd.difference[i] = 0;
    if (i < longP * 2.25 + 1) macd.signal[i] = 0;
  }
  return macd;
}
Macd livingMacd(B b, int shortP, int longP, int signalP, int type) {
  const Rows s = living::average(b.close, shortP, type), l = living::average(b.close, longP, type);
  Macd macd{nulls(s), {}};
  for (int i = std::max(leadOf(s), leadOf(l)); i < b.count(); ++i) macd.difference[i] = nz(s[i]) - nz(l[i]);
  macd.signal = living::average(macd.difference, signalP, type);
  return macd;
}
Rows histogram(B b, int shortP, int longP, int signalP, int type) {
  const Macd macd = livingMacd(b, shortP, longP, signalP, type);
  Rows out = nulls(b.close);
  for (int i = std::max(leadOf(macd.difference), leadOf(macd.signal)); i < b.count(); ++i)
    out[i] = nz(macd.difference[i]) - nz(macd.signal[i]);
  return out;
}

/// Tops and bottoms two rows back. Over the whole history row 5 is the first whose four rows before are
/// known; a bottom is found before a top.
Rows wholeFco(B b) {
  Rows out(b.close.size(), 0.0);
  for (int i = 5; i < b.count(); ++i) {
    const Rows &H = b.high, &L = b.low;
    const double h3 = H[i - 2], l3 = L[i - 2];
    if (H[i - 4] < h3 && H[i - 3] < h3 && H[i - 1] <= h3 && H[i] <= h3) out[i] = 1;
    if (L[i - 4] > l3 && L[i - 3] > l3 && L[i - 1] >= l3 && L[i] >= l3) out[i] = -1;
  }
  return out;
}
Rows livingFco(B b) {
  return eachBar(b, 4, [&](int i) {
    const Rows &H = b.high, &L = b.low;
    const double h3 = H[i - 2], l3 = L[i - 2];
    if (H[i - 4] < h3 && H[i - 3] < h3 && H[i - 1] <= h3 && H[i] <= h3) return 1.0;
    return L[i - 4] > l3 && L[i - 3] > l3 && L[i - 1] >= l3 && L[i] >= l3 ? -1.0 : 0.0;
  });
}

Rows ultimate(B b, int first, int second, int third) {
  Rows pressure = nulls(b.close), range = nulls(b.close);
  for (int i = 1; i < b.count(); ++i) {
    pressure[i] = b.close[i] - std::min(b.low[i], b.close[i - 1]);
    range[i] = std::max({b.high[i] - b.low[i], b.high[i] - b.close[i - 1], b.close[i - 1] - b.low[i]});
  }
  return eachBar(b, std::max({first, second, third}), [&](int i) {
    const auto s = [&](int p) { return sumOf(pressure, i - p + 1, i); };
    const auto t = [&](int p) { return sumOf(range, i - p + 1, i); };
    if (t(first) == 0 || t(second) == 0 || t(third) == 0) return 0.0;
    return (s(first) / t(first) * 4 + s(second) / t(second) * 2 + s(third) / t(third)) * 100 / 7;
  });
}

const Family kPriceOscillators{{
    {{"CCI", "COMMODITYCHANNELINDEX"},
     "5, SIMPLE",
     [](B b) { return wholeCci(b, 5, kTypeSimple); },
     [](B b) { return livingCci(b, 5, kTypeSimple); }},
    {{"CCI"},
     "4, TIME_SERIES",
     [](B b) { return wholeCci(b, 4, kTypeTimeSeries); },
     [](B b) { return livingCci(b, 4, kTypeTimeSeries); }},
    {{"SOPK", "STOCHASTICOSCILLATORPCTK"},
     "5, 3, 4, SIMPLE",
     [](B b) { return wholeK(b, 5, 3, kTypeSimple); },
     [](B b) { return livingK(b, 5, 3, kTypeSimple); }},
    {{"SOPD", "STOCHASTICOSCILLATORPCTD"},
     "5, 3, 4, WEIGHTED",
     [](B b) { return whole::wma(wholeK(b, 5, 3, kTypeWeighted), 4); },
     [](B b) { return living::wma(livingK(b, 5, 3, kTypeWeighted), 4); }},
    // The third period has no effect; the second stands in for it.
    {{"SMIK"},
     "6, 3, 5, 4, SIMPLE, WEIGHTED",
     [](B b) { return wholeSmi(b, 6, 3, 3, kTypeSimple); },
     [](B b) { return livingSmi(b, 6, 3, 3, kTypeWeighted); }},
    {{"SMID"},
     "6, 3, 5, 4, SIMPLE, WEIGHTED",
     [](B b) { return whole::wma(wholeSmi(b, 6, 3, 3, kTypeSimple), 4); },
     [](B b) { return living::sma(livingSmi(b, 6, 3, 3, kTypeWeighted), 4); }},
    {{"WPR", "WILLIAMSPCTR"},
     "4",
     [](B b) { return williamsFrom(b, 4, 5, 6, kNull); },
     [](B b) { return williamsFrom(b, 4, 3, 3, 0.0); }},
    {{"MACD"},
     "3, 7, 4, SIMPLE",
     [](B b) { return wholeMacd(b, 3, 7, 4, kTypeSimple).difference; },
     [](B b) { return livingMacd(b, 3, 7, 4, kTypeSimple).difference; }},
    {{"MACDSIGNAL", "MACDS"},
     "3, 7, 4, EXPONENTIAL",
     [](B b) { return wholeMacd(b, 3, 7, 4, kTypeExponential).signal; },
     [](B b) { return livingMacd(b, 3, 7, 4, kTypeExponential).signal; }},
    // A signal as long as the short cycle is one longer over the whole history.
    {{"MACDS"},
     "4, 7, 4, WEIGHTED",
     [](B b) { return wholeMacd(b, 4, 7, 5, kTypeWeighted).signal; },
     [](B b) { return livingMacd(b, 4, 7, 4, kTypeWeighted).signal; }},
    {{"MACDHISTOGRAM", "MACDH"},
     "3, 7, 4, SIMPLE",
     kUnknown,
     [](B b) { return histogram(b, 3, 7, 4, kTypeSimple); }},
    {{"FCO", "FRACTALCHAOSOSCILLATOR"}, "5", wholeFco, livingFco},
    {{"ULTOSC", "ULTIMATEOSCILLATOR"}, "3, 6, 9", kUnknown, [](B b) { return ultimate(b, 3, 6, 9); }},
}};

}  // namespace
}  // namespace brindlewort::testing
