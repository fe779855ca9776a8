#pragma once

#include "values/twin_frame.hpp"

/// Twins of the moving averages, and of the regression and the momentum that some of them rest on.
namespace brindlewort::testing {

enum class Fit { kSlope, kIntercept, kForecast, kRSquared };
enum Type {
  kTypeSimple = 1,
  kTypeExponential,
  kTypeTimeSeries,
  kTypeVariable,
  kTypeTriangular,
  kTypeWeighted,
  kTypeVidya,
  kTypeWilder
};

/// A line through the p rows that end at row i, x going from 1 to p. `half` is what the intercept takes as
/// the middle.
inline double fitOf(const Rows& in, int p, int i, double half, Fit fit) {
  double Sx = 0, Sxx = 0, Sy = 0, Syy = 0, Sxy = 0;
  for (int x = 1; x <= p; ++x) {
    const double y = nz(in[i - p + x]);
    Sx += x, Sxx += x * x, Sy += y, Syy += y * y, Sxy += x * y;
  }
  const double a = Sxy - Sx * Sy / p, b = Sxx - Sx * Sx / p, c = Syy - Sy * Sy / p;
  const double slope = a / b, intercept = Sy / p - half * slope;
  switch (fit) {
    case Fit::kSlope:
      return slope;
    case Fit::kIntercept:
      return intercept;
    case Fit::kForecast:
      return p * slope + intercept;
    case Fit::kRSquared:
      return b * c != 0 ? a * a / (b * c) : 0.0;
  }
  return 0;
}

inline double chandeOf(const Rows& in, int p, int i) {
  double up = 0, down = 0;
  for (int j = i - p + 1; j <= i; ++j) {
    const double move = nz(in[j]) - nz(in[j - 1]);
    (move > 0 ? up : down) += std::fabs(move);
  }
  return up + down == 0 ? 0.0 : (up - down) / (up + down) * 100;
}

namespace whole {

inline Rows sma(const Rows& in, int p) {
  Rows out = nulls(in);
  for (int i = p + 1; i < countOf(in); ++i) out[i] = sumOf(in, i - p + 1, i) / p;
  return out;
}
inline Rows ema(const Rows& in, int p) {
  const double k = 2.0 / (p + 1);
  Rows out = nulls(in);
  double sum = 0;
  int counted = 0;
  for (int j = 1; j <= p; ++j) {
    if (nz(in[j]) != 0) sum += in[j], ++counted;
  }
  const double seed = sum > 0 && counted > 0 ? sum / counted : in[p];
  out[p] = nz(in[p + 1]) * (1 - k) + seed * k;  // the row behind, and the weights the other way round
  for (int i = p + 1; i < countOf(in); ++i) out[i] = nz(out[i - 1]) * (1 - k) + nz(in[i]) * k;
  return out;
}
inline Rows regression(const Rows& in, int p, Fit fit) {
  Rows out = nulls(in);
  for (int i = p; i < countOf(in); ++i) out[i] = fitOf(in, p, i, p / 2, fit);
  return out;
}
inline Rows tsma(const Rows& in, int p) {
  return regression(in, p, Fit::kForecast);
}
inline Rows cmo(const Rows& in, int p) {
  Rows out = nulls(in);
  for (int i = p + 1; i < countOf(in); ++i) out[i] = chandeOf(in, p, i);
  return out;
}
/// The momentum is one of 9 rows, whatever the period.
inline Rows vma(const Rows& in, int) {
  const Rows c = cmo(in, 9);
  Rows out = nulls(in);
  for (int i = 2; i < countOf(in); ++i) {
    const double a = std::fabs(nz(c[i]) / 100);
    out[i] = a * nz(in[i]) + (1 - a) * nz(out[i - 1]);
  }
  return out;
}
inline Rows tma(const Rows& in, int p) {
  const int w1 = p % 2 != 0 ? p / 2 + 1 : p / 2, w2 = p % 2 != 0 ? w1 : w1 + 1;
  Rows once = nulls(in), out = nulls(in);
  for (int i = p + 1; i < countOf(in); ++i) once[i] = sumOf(in, i - w1 + 1, i) / w1;
  for (int i = p + 1; i < countOf(in); ++i) out[i] = sumOf(once, i - w2 + 1, i) / w2;
  return out;
}
inline Rows weightedFrom(const Rows& in, int p, int first) {
  Rows out = nulls(in);
  for (int i = first; i < countOf(in); ++i) {
    double sum = 0, weights = 0;
    for (int j = 0; j < p; ++j) sum += nz(in[i - j]) * (p - j), weights += p - j;
    out[i] = sum / weights;
  }
  return out;
}
inline Rows wma(const Rows& in, int p) {
  return weightedFrom(in, p, p + 1);
}
inline Rows wws(const Rows& in, int p) {
  Rows out = nulls(in);
  for (int i = 2; i < countOf(in); ++i) out[i] = nz(out[i - 1]) + (nz(in[i]) - nz(out[i - 1])) * (1.0 / p);
  return out;
}
inline Rows vidya(const Rows& in, int p, double scale) {
  const Rows r = regression(in, p, Fit::kRSquared);
  Rows out = nulls(in);
  for (int i = 2; i < countOf(in); ++i) {
    const double a = nz(r[i]) * scale;
    out[i] = nz(in[i]) * a + (1 - a) * nz(in[i - 1]);
  }
  return out;
}
/// Seeded at row p + 1 with the mean of rows 2 to p + 1, then in[i] * f + out[i - 1] * (1 - f).
inline Rows seeded(const Rows& in, int p, double f) {
  Rows out = nulls(in);
  out[p + 1] = sumOf(in, 2, p + 1) / p;
  for (int i = p + 2; i < countOf(in); ++i) out[i] = nz(out[i - 1]) * (1 - f) + nz(in[i]) * f;
  return out;
}
inline Rows fa(const Rows& in, double f, int p) {
  return seeded(in, p, f);
}
inline Rows zlema(const Rows& in, int p) {
  const int lag = (p - 1) / 2;
  const double k = 2.0 / (p + 1);
  Rows out = nulls(in);
  out[p + 1] = sumOf(in, 2, p + 1) / p;
  for (int i = p + 2; i < countOf(in); ++i)
    out[i] = (2 * nz(in[i]) - nz(in[i - lag])) * k + nz(out[i - 1]) * (1 - k);
  return out;
}
inline Rows ha(const Rows& in, int p) {
  const Rows a = wma(in, p / 2), b = wma(in, p);
  Rows c = nulls(in), out = nulls(in);
  for (int i = 0; i < countOf(in); ++i) c[i] = 2 * nz(a[i]) - nz(b[i]);
  const Rows d = wma(c, static_cast<int>(std::sqrt(p)));
  for (int i = p + 1; i < countOf(in); ++i) out[i] = nz(d[i]);
  return out;
}
inline Rows ama(const Rows& in, int p, int fastPeriods, int slowPeriods) {
  const double fast = 2.0 / (fastPeriods + 1), slow = 2.0 / (slowPeriods + 1);
  Rows step = nulls(in), out = nulls(in);
  for (int i = 2; i < countOf(in); ++i) step[i] = std::fabs(nz(in[i]) - nz(in[i - 1]));
  out[p] = sumOf(in, 1, p) / p;
  for (int i = p + 1; i < countOf(in); ++i) {
    const double volatility = sumOf(step, i - p + 1, i);
    const double efficiency = volatility == 0 ? 0 : (nz(in[i]) - nz(in[i - p + 1])) / volatility;
    const double ssc = efficiency * (fast - slow) + slow;
    out[i] = nz(out[i - 1]) + ssc * ssc * (nz(in[i]) - nz(out[i - 1]));
  }
  return out;
}
inline Rows vaa(const Rows& in, const Rows& weight, int p) {
  Rows out = nulls(in);
  double before = 0;
  for (int i = p + 1; i < countOf(in); ++i) {
    double sum = 0, weights = 0;
    for (int j = i - p + 1; j <= i; ++j) sum += nz(in[j]) * nz(weight[j]), weights += nz(weight[j]);
    out[i] = before = weights == 0 ? before : sum / weights;
  }
  return out;
}
inline Rows cavg(const Rows& in) {
  Rows out = nulls(in);
  for (int i = 1; i < countOf(in); ++i) out[i] = sumOf(in, 1, i) / i;
  return out;
}
inline Rows average(const Rows& in, int p, int type) {
  switch (type) {
    case kTypeExponential:
      return ema(in, p);
    case kTypeTimeSeries:
      return tsma(in, p);
    case kTypeVariable:
      return vma(in, p);
    case kTypeTriangular:
      return tma(in, p);
    case kTypeWeighted:
      return wma(in, p);
    case kTypeVidya:
      return vidya(in, p, 0.65);
    case kTypeWilder:
      return wws(in, p);
    default:
      return sma(in, p);
  }
}

}  // namespace whole

namespace living {

inline Rows sma(const Rows& in, int p) {
  Rows out = nulls(in);
  for (int i = leadOf(in) + p - 1; i < countOf(in); ++i) out[i] = sumOf(in, i - p + 1, i) / p;
  return out;
}
/// Seeded with the mean of the first p rows, which stands at the last of them.
inline Rows seeded(const Rows& in, int p, double f) {
  const int seed = leadOf(in) + p - 1;
  Rows out = nulls(in);
  if (seed >= countOf(in)) return out;
  out[seed] = sumOf(in, seed - p + 1, seed) / p;
  for (int i = seed + 1; i < countOf(in); ++i) out[i] = nz(out[i - 1]) * (1 - f) + nz(in[i]) * f;
  return out;
}
inline Rows ema(const Rows& in, int p) {
  return seeded(in, p, 2.0 / (p + 1));
}
inline Rows wws(const Rows& in, int p) {
  return seeded(in, p, 1.0 / p);
}
inline Rows regression(const Rows& in, int p, Fit fit) {
  Rows out = nulls(in);
  for (int i = leadOf(in) + p - 1; i < countOf(in); ++i) out[i] = fitOf(in, p, i, p / 2.0, fit);
  return out;
}
inline Rows tsma(const Rows& in, int p) {
  return regression(in, p, Fit::kForecast);
}
inline Rows cmo(const Rows& in, int p) {
  Rows out = nulls(in);
  for (int i = leadOf(in) + p; i < countOf(in); ++i) out[i] = chandeOf(in, p, i);
  return out;
}
inline Rows vma(const Rows& in, int p) {
  const Rows c = cmo(in, p);
  const int start = leadOf(c), lead = leadOf(in);
  Rows out = nulls(in);
  if (start + p >= countOf(in)) return out;
  out[start - 1] = sumOf(in, lead, lead + p - 1) / p;
  for (int i = start; i < countOf(in); ++i) {
    const double a = std::fabs(nz(c[i]) / 100);
    out[i] = a * nz(in[i]) + (1 - a) * nz(out[i - 1]);
  }
  return out;
}
inline Rows tma(const Rows& in, int p) {
  const int w1 = p % 2 != 0 ? p / 2 + 1 : p / 2, w2 = p % 2 != 0 ? w1 : w1 + 1;
  Rows once = nulls(in), out = nulls(in);
  for (int i = leadOf(in) + w1 - 1; i < countOf(in); ++i) once[i] = sumOf(in, i - w1 + 1, i) / w1;
  for (int i = leadOf(once) + w2 - 1; i < countOf(in); ++i) out[i] = sumOf(once, i - w2 + 1, i) / w2;
  return out;
}
inline Rows wma(const Rows& in, int p) {
  return whole::weightedFrom(in, p, leadOf(in) + p - 1);
}
inline Rows vidya(const Rows& in, int p, double scale) {
  const Rows r = regression(in, p, Fit::kRSquared);
  Rows out = nulls(in);
  for (int i = std::max(leadOf(in), leadOf(r)) + 1; i < countOf(in); ++i) {
    const double a = nz(r[i]) * scale;
    out[i] = nz(in[i]) * a + (1 - a) * nz(in[i - 1]);
  }
  return out;
}
inline Rows fa(const Rows& in, double f, int p) {
  const int seed = leadOf(in) + p - 1;
  Rows out = nulls(in);
  out[seed] = sumOf(in, leadOf(in), p - 1) / p;
  for (int i = seed + 1; i < countOf(in); ++i) out[i] = nz(out[i - 1]) * (1 - f) + nz(in[i]) * f;
  return out;
}
inline Rows zlema(const Rows& in, int p) {
  const int lag = (p - 1) / 2, seed = leadOf(in) + p - 1;
  const double k = 2.0 / (p + 1);
  Rows out = nulls(in);
  out[seed] = sumOf(in, 0, seed) / p;
  for (int i = seed + 1; i < countOf(in); ++i)
    out[i] = (2 * nz(in[i]) - nz(in[i - lag])) * k + nz(out[i - 1]) * (1 - k);
  return out;
}
inline Rows ha(const Rows& in, int p) {
  const Rows a = wma(in, p / 2), b = wma(in, p);
  Rows c = nulls(in);
  for (int i = std::max(leadOf(a), leadOf(b)); i < countOf(in); ++i) c[i] = 2 * nz(a[i]) - nz(b[i]);
  return wma(c, static_cast<int>(std::sqrt(p)));
}
inline Rows ama(const Rows& in, int p, int fastPeriods, int slowPeriods) {
  const double fast = 2.0 / (fastPeriods + 1), slow = 2.0 / (slowPeriods + 1);
  const int lead = leadOf(in), start = lead + p;
  Rows step = nulls(in), out = nulls(in);
  for (int i = lead + 1; i < countOf(in); ++i) step[i] = std::fabs(nz(in[i]) - nz(in[i - 1]));
  out[start - 1] = sumOf(in, start - p, start - 1) / p;
  for (int i = start; i < countOf(in); ++i) {
    const double volatility = sumOf(step, i - p + 1, i);
    const double efficiency = volatility == 0 ? 0 : (nz(in[i]) - nz(in[i - p])) / volatility;
    const double ssc = efficiency * (fast - slow) + slow;
    out[i] = nz(out[i - 1]) + ssc * ssc * (nz(in[i]) - nz(out[i - 1]));
  }
  return out;
}
inline Rows vaa(const Rows& in, const Rows& weight, int p) {
  Rows out = nulls(in);
  for (int i = std::max(leadOf(in), leadOf(weight)) + p - 1; i < countOf(in); ++i) {
    double sum = 0, weights = 0;
    for (int j = i - p + 1; j <= i; ++j) sum += nz(in[j]) * nz(weight[j]), weights += nz(weight[j]);
    out[i] = weights == 0 ? 0 : sum / weights;
  }
  return out;
}
inline Rows cavg(const Rows& in) {
  Rows out = nulls(in);
  for (int i = 0; i < countOf(in); ++i) out[i] = sumOf(in, 0, i) / (i + 1);
  return out;
}
inline Rows average(const Rows& in, int p, int type) {
  switch (type) {
    case kTypeExponential:
      return ema(in, p);
    case kTypeTimeSeries:
      return tsma(in, p);
    case kTypeVariable:
      return vma(in, p);
    case kTypeTriangular:
      return tma(in, p);
    case kTypeWeighted:
      return wma(in, p);
    case kTypeVidya:
      return vidya(in, p, 0.65);
    case kTypeWilder:
      return wws(in, p);
    default:
      return sma(in, p);
  }
}

}  // namespace living

}  // namespace brindlewort::testing
