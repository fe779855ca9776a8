#include "series/rounding.hpp"

#include <cmath>
#include <iterator>

#include "platform/power.hpp"
#include "series/null_value.hpp"

namespace brindlewort {

namespace {

constexpr double kGuard = 1e-10;
constexpr int kScriptDigits = 4;  // the decimals that scripts see of a value

bool hasNoValue(double x) {
  return isNull(x) || !IsFiniteDouble(x);
}

double signOf(double x) {
  return x > 0.0 ? 1.0 : -1.0;
}

/// pow(10, digits). The powers that a double holds exactly are looked up: a call per row would cost more
/// than the rounding.
double powerOfTen(int digits) {
  static constexpr double kExact[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                      1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  if (digits >= 0 && digits < static_cast<int>(std::size(kExact))) return kExact[digits];
  return platform::power(10.0, digits);
}

}  // namespace

double TruncateValue(double value, int digits) {
  if (hasNoValue(value)) return NULL_VALUE;
  if (value == 0.0) return 0.0;
  const double s = signOf(value);
  const double power = powerOfTen(digits);
  value += s * kGuard;
  const double t = std::trunc(value * power) / power;
  return t == 0.0 ? 0.0 : t + s * kGuard;
}

double RoundValue(double value, int digits, RoundMode mode) {
  if (hasNoValue(value)) return NULL_VALUE;
  const double v = TruncateValue(value, kScriptDigits);
  if (v == 0.0) return 0.0;
  const double s = signOf(v);
  const double power = powerOfTen(digits);
  const double scaled = (std::fabs(v) + kGuard) * power;
  const double f = scaled - std::trunc(scaled);
  // A fraction that vanishes at four decimals lifts nothing, not even upward.
  const double bump = std::trunc(f * 10000.0) == 0.0 ? 0.0 : 1.0;
  const bool awayFromZero = (f >= 0.5 && mode != RoundMode::kDown) || mode == RoundMode::kUp;
  const double whole = awayFromZero ? std::trunc(bump + scaled) : std::trunc(scaled);
  return (whole / power + kGuard) * s;
}

double RoundToMultiple(double value, double multiple, RoundMode mode) {
  if (hasNoValue(value)) return NULL_VALUE;
  const double v = TruncateValue(value, kScriptDigits);
  if (v == 0.0) return 0.0;
  const double s = signOf(v);
  const double q = std::trunc(v / multiple);
  const double r = std::fmod(v, multiple);
  if (std::trunc(r * 10000.0) == 0.0) return v;
  bool nearerToZero = !((2.0 * r > multiple && mode != RoundMode::kDown) || mode == RoundMode::kUp);
  if (v < 0.0) nearerToZero = !nearerToZero;
  return nearerToZero ? q * multiple + s * kGuard : q * multiple + s * multiple + s * kGuard;
}

}  // namespace brindlewort
