// Value cases of the oscillators of one series.

#include "values/average_twins.hpp"
#include "values/range_twins.hpp"
#include "values/value_case.hpp"

namespace brindlewort::testing {
namespace {

using B = const Bars&;

double strength(double gain, double loss) {
  if (loss == 0) loss = gain;
  return 100 - 100 / (1 + (gain == 0 ? 0 : gain / loss));
}
/// The averages are seeded over the p moves that end at row `seed`.
Rows rsiFrom(const Rows& in, int p, int seed, bool seedShows) {
  Rows out = nulls(in);
  double gain = 0, loss = 0;
  const auto up = [&](int j) { return std::max(nz(in[j]) - nz(in[j - 1]), 0.0); };
  const auto down = [&](int j) { return std::max(nz(in[j - 1]) - nz(in[j]), 0.0); };
  for (int j = seed - p + 1; j <= seed; ++j) gain += up(j) / p, loss += down(j) / p;
  if (seedShows) out[seed] = 100 - 100 / (1 + (loss == 0 ? 0 : gain / loss));
  for (int i = seed + 1; i < countOf(in); ++i) {
    gain = (gain * (p - 1) + up(i)) / p;
    loss = (loss * (p - 1) + down(i)) / p;
    out[i] = strength(gain, loss);
  }
  return out;
}

Rows momentumFrom(const Rows& in, int p, int first) {
  Rows out = nulls(in);
  for (int i = first; i < countOf(in); ++i) {
    const double base = nz(in[i - p]);
    out[i] = base == 0 ? 0 : (nz(in[i]) - base) / base * 100 + 100;
  }
  return out;
}

Rows wholePo(const Rows& in, int shortP, int longP, int type) {
  const Rows s = whole::average(in, shortP, type), l = whole::average(in, longP, type);
  Rows out = nulls(in);
  for (int i = longP + 1; i < countOf(in); ++i) {
    if (nz(l[i]) != 0) out[i] = (nz(s[i]) - nz(l[i])) / nz(l[i]) * 100;
  }
  return out;
}
/// Divides by the short average.
Rows livingPo(const Rows& in, int shortP, int longP, int type) {
  const Rows s = living::average(in, shortP, type), l = living::average(in, longP, type);
  Rows out = nulls(in);
  for (int i = std::max({leadOf(in), leadOf(s), leadOf(l)}); i < countOf(in); ++i)
    out[i] = nz(l[i]) == 0 ? 0 : (nz(s[i]) - nz(l[i])) / nz(s[i]) * 100;
  return out;
}

Rows wholeDpo(const Rows& in, int p, int type) {
  const Rows m = whole::average(in, p, type);
  const int shift = p / 2 + 1;
  Rows out = nulls(in);
  for (int i = shift; i < countOf(in); ++i) out[i] = nz(in[i]) - nz(m[i - shift]);
  return out;
}
/// The loop runs over all rows once there is a row to compute.
Rows livingDpo(const Rows& in, int p, int type) {
  const Rows m = living::average(in, p, type);
  const int shift = p / 2 + 1;
  Rows out = nulls(in);
  for (int i = shift; i < countOf(in); ++i) out[i] = nz(in[i]) - nz(m[i - shift]);
  return out;
}

Rows wholeTrix(const Rows& in, int p) {
  const Rows e = whole::ema(whole::ema(whole::ema(in, p), p), p);
  Rows out = nulls(in);
  for (int i = p + 2; i < countOf(in); ++i) {
    if (nz(e[i - 1]) != 0) out[i] = (nz(e[i]) - nz(e[i - 1])) / nz(e[i - 1]) * 100;
  }
  return out;
}
Rows livingTrix(const Rows& in, int p) {
  const Rows e = living::ema(living::ema(living::ema(in, p), p), p);
  Rows out = nulls(in);
  for (int i = leadOf(e) + 1; i < countOf(in); ++i)
    out[i] = nz(e[i - 1]) == 0 ? 0 : (nz(e[i]) - nz(e[i - 1])) / nz(e[i - 1]) * 100;
  return out;
}

/// The low of a window starts from the row where the scan of the window before it stopped, which is the row
/// behind its last one; `stop` is that of the first window. The high starts from 0.
Rows vhfFrom(const Rows& in, int p, int first, int stop) {
  Rows out = nulls(in);
  for (int i = first; i < countOf(in); ++i) {
    double high = 0, low = nz(in[stop]), path = 0;
    for (int j = i - p + 1; j <= i; ++j) {
      if (nz(in[j]) < low) {
        low = nz(in[j]);
      } else if (nz(in[j]) > high) {
        high = nz(in[j]);
      }
      if (j > 0) path += std::fabs(nz(in[j]) - nz(in[j - 1]));
    }
    out[i] = std::fabs(path != 0 ? (high - low) / path : 0.0);
    stop = i + 1;
  }
  return out;
}

Rows wholePno(const Rows& in) {
  Rows out = nulls(in);
  double lower = 0, upper = 0;
  for (int i = 1; i < countOf(in); ++i) {
    double v = std::trunc(nz(in[i]));
    if (v < 10) v = v * v;
    lower = primeBelow(static_cast<long long>(v), lower);
    upper = primeAbove(static_cast<long long>(v), upper);
    const double a = v - upper, b = v - lower;
    out[i] = std::fabs(b) > std::fabs(a) ? a : b;
  }
  return out;
}
Rows livingPno(const Rows& in) {
  Rows out = nulls(in);
  double lower = 0, upper = 0;
  for (int i = leadOf(in); i < countOf(in); ++i) {
    double v = nz(in[i]);
    if (v < 10) v = v * 10;
    lower = primeBelow(static_cast<long long>(v), lower);
    // Upwards from the whole part as far as twice the value itself.
    for (long long q = static_cast<long long>(v); static_cast<double>(q) <= 2 * v; ++q) {
      if (!isPrimeTwin(q)) continue;
      upper = static_cast<double>(q);
      break;
    }
    const double a = v - upper, b = v - lower;
    out[i] = std::fabs(b) > std::fabs(a) ? a : b;
  }
  return out;
}

/// All levels take the same average, whose period is the number of levels.
Rows rainbowFrom(const Rows& in, const Rows& m, int levels, int first) {
  Rows out = nulls(in);
  for (int i = first; i < countOf(in); ++i) {
    double sum = 0;
    for (int level = 2; level <= levels; ++level) sum += nz(in[i]) - nz(m[i]);
    out[i] = sum / levels;
  }
  return out;
}
Rows livingRbo(const Rows& in, int levels, int type) {
  const Rows m = living::average(in, levels, type);
  return rainbowFrom(in, m, levels, std::max(leadOf(m), 1));
}

/// A ratio of exactly 1 is no value over the whole history.
Rows wholeCrsi(const Rows& a, const Rows& b) {
  Rows out = nulls(a);
  for (int i = 1; i < countOf(a); ++i) {
    if (b[i] != 0) out[i] = nz(a[i]) / nz(b[i]);
    if (out[i] == 1.0) out[i] = kNull;
  }
  return out;
}
Rows livingCrsi(const Rows& a, const Rows& b) {
  Rows out = nulls(a);
  for (int i = std::max(leadOf(a), leadOf(b)); i < countOf(a); ++i) {
    out[i] = nz(b[i]) > 0 ? nz(a[i]) / nz(b[i]) : 0;
    if (isNull(a[i]) || isNull(b[i])) out[i] = kNull;
  }
  return out;
}

Rows fisherFrom(const Rows& in, int p, int first, bool flatKeeps) {
  Rows out = nulls(in);
  double value = 0, fisher = 0;
  for (int i = first; i < countOf(in); ++i) {
    double high = nz(in[i]), low = high;
    for (int j = i - p + 1; j <= i; ++j) high = std::max(high, nz(in[j])), low = std::min(low, nz(in[j]));
    const double raw = high == low ? -0.33 : ((nz(in[i]) - low) / (high - low) - 0.5) * 2 * 0.33;
    if (high != low || !flatKeeps) value = i == first ? raw : raw + 0.67 * value;
    const double condition = value > 0.99 ? 0.999 : value < -0.99 ? -0.999 : value;
    fisher = 0.5 * std::log10((condition + 1) / (1 - condition)) + (i == first ? 0 : 0.5 * fisher);
    out[i] = fisher;
  }
  return out;
}

Rows performanceFrom(const Rows& in, int base) {
  Rows out = nulls(in);
  if (nz(in[base]) == 0) return out;
  for (int i = base + 1; i < countOf(in); ++i) out[i] = (nz(in[i]) - nz(in[base])) / nz(in[base]) * 100;
  return out;
}

const Family kOscillators{{
    {{"RSI", "RELATIVESTRENGTHINDEX"},
     "HIGH, 5",
     [](B b) { return rsiFrom(b.high, 5, 6, false); },
     [](B b) { return rsiFrom(b.high, 5, 5, true); }},
    {{"MO", "MOMENTUMOSCILLATOR"},
     "LOW, 4",
     [](B b) { return momentumFrom(b.low, 4, 6); },
     [](B b) { return momentumFrom(b.low, 4, 4); }},
    {{"CMO", "CHANDEMOMENTUMOSCILLATOR"},
     "OPEN, 4",
     [](B b) { return whole::cmo(b.open, 4); },
     [](B b) { return living::cmo(b.open, 4); }},
    {{"PO", "PRICEOSCILLATOR"},
     "HIGH, 3, 6, SIMPLE",
     [](B b) { return wholePo(b.high, 3, 6, kTypeSimple); },
     [](B b) { return livingPo(b.high, 3, 6, kTypeSimple); }},
    {{"PO"},
     "LOW, 7, 4, WEIGHTED",
     [](B b) { return wholePo(b.low, 4, 7, kTypeWeighted); },
     [](B b) { return livingPo(b.low, 4, 7, kTypeWeighted); }},
    {{"DPO", "DETRENDEDPRICEOSCILLATOR"},
     "LOW, 5, SIMPLE",
     [](B b) { return wholeDpo(b.low, 5, kTypeSimple); },
     [](B b) { return livingDpo(b.low, 5, kTypeSimple); }},
    {{"DPO"},
     "HIGH, 4, EXPONENTIAL",
     [](B b) { return wholeDpo(b.high, 4, kTypeExponential); },
     [](B b) { return livingDpo(b.high, 4, kTypeExponential); }},
    {{"TRIX"},
     "HIGH, 3",
     [](B b) { return wholeTrix(b.high, 3); },
     [](B b) { return livingTrix(b.high, 3); }},
    {{"VHF", "VERTICALHORIZONTALFILTER"},
     "HIGH, 4",
     [](B b) { return vhfFrom(b.high, 4, 5, 6); },
     [](B b) { return vhfFrom(b.high, 4, 3, 3); }},
    {{"PNO", "PRIMENUMBEROSCILLATOR"},
     "HIGH",
     [](B b) { return wholePno(b.high); },
     [](B b) { return livingPno(b.high); }},
    {{"PNO"}, "", [](B b) { return wholePno(b.close); }, [](B b) { return livingPno(b.close); }},
    {{"RBO", "RAINBOWOSCILLATOR"},
     "LOW, 4, SIMPLE",
     [](B b) { return rainbowFrom(b.low, whole::sma(b.low, 4), 4, 1); },
     [](B b) { return livingRbo(b.low, 4, kTypeSimple); },
     false},
    {{"RBO"},
     "HIGH, 3, WILDER",
     [](B b) { return rainbowFrom(b.high, whole::wws(b.high, 3), 3, 1); },
     [](B b) { return livingRbo(b.high, 3, kTypeWilder); },
     false},
    {{"CRSI", "COMPARATIVERELATIVESTRENGTHINDEX"},
     "HIGH, LOW",
     [](B b) { return wholeCrsi(b.high, b.low); },
     [](B b) { return livingCrsi(b.high, b.low); }},
    {{"CRSI"},
     "LOW",
     [](B b) { return wholeCrsi(b.low, b.open); },
     [](B b) { return livingCrsi(b.low, b.close); }},
    {{"CRSI"},
     "",
     [](B b) { return wholeCrsi(b.close, b.open); },
     [](B b) { return livingCrsi(b.close, b.close); }},
    {{"FST", "FISHERTRANSFORM"},
     "LOW, 4",
     [](B b) { return fisherFrom(b.low, 4, 4, true); },
     [](B b) { return fisherFrom(b.low, 4, 3, false); }},
    {{"PFI", "PERFORMANCEINDEX"},
     "OPEN",
     [](B b) { return performanceFrom(b.open, 1); },
     [](B b) { return performanceFrom(b.open, 0); }},
    {{"PFI"},
     "",
     [](B b) { return performanceFrom(b.close, 1); },
     [](B b) { return performanceFrom(b.close, 0); }},
}};

}  // namespace
}  // namespace brindlewort::testing
