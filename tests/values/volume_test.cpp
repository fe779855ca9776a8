// Value cases of volume, money flow and rates of change.

#include "values/average_twins.hpp"
#include "values/range_twins.hpp"
#include "values/value_case.hpp"

namespace brindlewort::testing {
namespace {

using B = const Bars&;

/// `first` is the first step; a seed stands before it on the incremental way.
Rows balance(const Rows& in, const Rows& V, int first, bool seeded) {
  Rows out = nulls(in);
  if (seeded) out[first - 1] = V[first - 1];
  for (int i = first; i < countOf(in); ++i) {
    const double move = nz(in[i]) - nz(in[i - 1]);
    out[i] = move > 0 ? nz(out[i - 1]) + V[i] : move < 0 ? nz(out[i - 1]) - V[i] : out[i - 1];
  }
  return out;
}
Rows volumeTrend(const Rows& in, const Rows& V, int first) {
  Rows out = nulls(in);
  for (int i = first; i < countOf(in); ++i)
    out[i] = nz(out[i - 1]) + (nz(in[i]) - nz(in[i - 1])) / nz(in[i - 1]) * V[i];
  return out;
}
/// The index moves with the price where the volume rises (sign 1) or falls (-1).
Rows volumeIndex(const Rows& in, const Rows& V, int seed, double sign) {
  Rows out = nulls(in);
  out[seed] = 1;
  for (int i = seed + 1; i < countOf(in); ++i) {
    out[i] = out[i - 1];
    if (sign * V[i] > sign * V[i - 1])
      out[i] = out[i - 1] * (nz(in[i]) - nz(in[i - 1])) / nz(in[i - 1]) + out[i - 1];
  }
  return out;
}
Rows tradeVolume(const Rows& in, const Rows& V, double tick, int first) {
  Rows out = nulls(in);
  double direction = 0, total = 0;
  for (int i = first; i < countOf(in); ++i) {
    const double move = nz(in[i]) - nz(in[i - 1]);
    if (move > tick) direction = 1;
    if (move < -tick) direction = -1;
    out[i] = total += direction * V[i];
  }
  return out;
}
Rows moneyFlow(B b, int p, int first, double without) {
  const Rows tp = typicalFrom(b, 0);
  return eachBar(b, first, [&](int i) {
    double in = 0, out = 0;
    for (int j = i - p + 1; j <= i; ++j) {
      const double flow = tp[j] * std::max(b.volume[j], 1.0);
      if (tp[j] > tp[j - 1]) in += flow;
      if (tp[j] < tp[j - 1]) out += flow;
    }
    return in == 0 || out == 0 ? without : 100 - 100 / (1 + in / out);
  });
}
double accumulated(B b, int j) {
  return (b.close[j] - b.low[j]) - (b.high[j] - b.close[j]);
}
/// One multiplier for the whole call, each window walked from its newest row.
Rows wholeCmf(B b, int p) {
  double m = 1;
  return eachBar(b, p + 1, [&](int i) {
    double flow = 0, volume = 0;
    for (int j = i; j > i - p; --j) {
      const double a = accumulated(b, j), height = b.high[j] - b.low[j];
      if (a == 0 || height == 0) m = a / height;
      flow += b.volume[j] * m, volume += b.volume[j];
    }
    return flow / volume;
  });
}
/// A multiplier a row; one that is formed, of a bar without a range, is no number and stays.
Rows livingCmf(B b, int p) {
  Rows m(b.close.size(), 1.0);
  for (int i = 0; i < b.count(); ++i) {
    const double a = accumulated(b, i), height = b.high[i] - b.low[i];
    m[i] = std::fabs(a) >= 0.0001 || std::fabs(height) >= 0.0001 ? (i == 0 ? 1.0 : m[i - 1]) : a / height;
  }
  return eachBar(b, p - 1, [&](int i) {
    double flow = 0, volume = 0;
    for (int j = i - p + 1; j <= i; ++j) flow += b.volume[j] * m[j], volume += b.volume[j];
    return flow / volume;
  });
}

Rows wholeVo(B b, int shortP, int longP, int type, bool percent) {
  const Rows s = whole::average(b.volume, shortP, type), l = whole::average(b.volume, longP, type);
  return eachBar(b, 1, [&](int i) {
    const double difference = nz(s[i]) - nz(l[i]);
    if (!percent) return difference;
    return nz(l[i]) != 0 ? difference / nz(l[i]) * 100 : kNull;
  });
}
/// Both modes divide by the short average.
Rows livingVo(B b, int shortP, int longP, int type, bool percent) {
  const Rows s = living::average(b.volume, shortP, type), l = living::average(b.volume, longP, type);
  return eachBar(b, std::max(leadOf(s), leadOf(l)), [&](int i) {
    return nz(s[i]) == 0 ? 0.0 : (nz(s[i]) - nz(l[i])) / nz(s[i]) * (percent ? 100 : 1);
  });
}

Rows wholeCv(B b, int p, int r, int type) {
  const Rows m = whole::average(heightFrom(b, 1), p, type);
  return eachBar(b, r + 1, [&](int i) {
    const double before = nz(m[i - r]), now = nz(m[i]);
    return before != 0 && now != 0 ? (before - now) / before * -100 : kNull;
  });
}
Rows livingCv(B b, int p, int r, int type) {
  const Rows m = living::average(heightFrom(b, 0), p, type);
  return eachBar(b, leadOf(m) + r, [&](int i) {
    const double before = nz(m[i - r]), now = nz(m[i]);
    return before != 0 ? (before - now) / before * -100 : 0.0;
  });
}

Rows rateOfChange(const Rows& in, int p, int first) {
  Rows out = nulls(in);
  for (int i = first; i < countOf(in); ++i) {
    const double base = nz(in[i - p]);
    out[i] = base != 0 ? (nz(in[i]) - base) / base * 100 : 0;
    if (base <= 0) out[i] = kNull;
  }
  return out;
}

/// Over the whole history a bar without a range leaves the box and the move as they were.
Rows ease(B b, int first, bool keeps) {
  double box = 0, move = 0;
  return eachBar(b, first, [&](int i) {
    const double mid = (b.high[i] + b.low[i]) / 2 - (b.high[i - 1] + b.low[i - 1]) / 2;
    const double height = b.high[i] - b.low[i];
    box = height != 0 ? b.volume[i] / height : keeps ? box : 0;
    move = box != 0 ? mid / box : keeps ? move : 0;
    return move * 10000;
  });
}

Rows distribution(B b, int first) {
  double total = 0;
  return eachBar(b, first, [&](int i) {
    const double before = b.close[i - 1];
    if (b.close[i] > before) total += b.close[i] - std::min(b.low[i], before);
    if (b.close[i] < before) total += b.close[i] - std::max(b.high[i], before);
    return total;
  });
}

const Family kVolume{{
    {{"OBV", "ONBALANCEVOLUME"},
     "HIGH",
     [](B b) { return balance(b.high, b.volume, 2, false); },
     [](B b) { return balance(b.high, b.volume, 1, true); }},
    {{"OBV"},
     "",
     [](B b) { return balance(b.close, b.volume, 2, false); },
     [](B b) { return balance(b.close, b.volume, 1, true); }},
    {{"PVT", "PRICEVOLUMETREND"},
     "LOW",
     [](B b) { return volumeTrend(b.low, b.volume, 2); },
     [](B b) { return volumeTrend(b.low, b.volume, 1); }},
    {{"PVT"},
     "",
     [](B b) { return volumeTrend(b.close, b.volume, 2); },
     [](B b) { return volumeTrend(b.close, b.volume, 1); }},
    {{"PVI", "POSITIVEVOLUMEINDEX"},
     "HIGH",
     [](B b) { return volumeIndex(b.high, b.volume, 1, 1); },
     [](B b) { return volumeIndex(b.high, b.volume, 0, 1); }},
    {{"PVI"},
     "",
     [](B b) { return volumeIndex(b.close, b.volume, 1, 1); },
     [](B b) { return volumeIndex(b.close, b.volume, 0, 1); }},
    // The long name is written short as the other index over the whole history.
    {{"NEGATIVEVOLUMEINDEX"},
     "HIGH",
     [](B b) { return volumeIndex(b.high, b.volume, 1, 1); },
     [](B b) { return volumeIndex(b.high, b.volume, 0, -1); }},
    {{"NVI"},
     "HIGH",
     [](B b) { return volumeIndex(b.high, b.volume, 1, -1); },
     [](B b) { return volumeIndex(b.high, b.volume, 0, -1); }},
    {{"NVI"},
     "",
     [](B b) { return volumeIndex(b.close, b.volume, 1, -1); },
     [](B b) { return volumeIndex(b.close, b.volume, 0, -1); }},
    {{"TVI", "TRADEVOLUMEINDEX"},
     "LOW, 0.75",
     [](B b) { return tradeVolume(b.low, b.volume, 0.75, 2); },
     [](B b) { return tradeVolume(b.low, b.volume, 0.75, 1); }},
    {{"MFI", "MONEYFLOWINDEX"},
     "4",
     [](B b) { return moneyFlow(b, 4, 5, kNull); },
     [](B b) { return moneyFlow(b, 4, 4, 0.0); }},
    {{"CMF", "CHAIKINMONEYFLOW"},
     "4",
     [](B b) { return wholeCmf(b, 4); },
     [](B b) { return livingCmf(b, 4); },
     true,
     false},
    {{"VO", "VOLUMEOSCILLATOR"},
     "3, 6, SIMPLE, POINTS",
     [](B b) { return wholeVo(b, 3, 6, kTypeSimple, false); },
     [](B b) { return livingVo(b, 3, 6, kTypeSimple, false); }},
    {{"VO"},
     "7, 4, WEIGHTED, PERCENT",
     [](B b) { return wholeVo(b, 4, 7, kTypeWeighted, true); },
     [](B b) { return livingVo(b, 4, 7, kTypeWeighted, true); }},
    {{"CV", "CHAIKINVOLATILITY"},
     "5, 3, EXPONENTIAL",
     [](B b) { return wholeCv(b, 5, 3, kTypeExponential); },
     [](B b) { return livingCv(b, 5, 3, kTypeExponential); }},
    {{"PROC", "PRICERATEOFCHANGE"},
     "HIGH, 4",
     [](B b) { return rateOfChange(b.high, 4, 5); },
     [](B b) { return rateOfChange(b.high, 4, 4); }},
    {{"VROC", "VOLUMERATEOFCHANGE"},
     "VOLUME, 3",
     [](B b) { return rateOfChange(b.volume, 3, 4); },
     [](B b) { return rateOfChange(b.volume, 3, 3); }},
    // The source is bound and not read.
    {{"EOM", "EASEOFMOVEMENT"},
     "VOLUME, 4",
     [](B b) { return whole::sma(ease(b, 2, true), 4); },
     [](B b) { return living::sma(ease(b, 1, false), 4); }},
    {{"WAD", "WILLIAMSACCUMULATIONDISTRIBUTION"},
     "",
     [](B b) { return distribution(b, 2); },
     [](B b) { return distribution(b, 1); }},
}};

}  // namespace
}  // namespace brindlewort::testing
