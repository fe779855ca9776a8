#include "series/rounding.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

#include "platform/power.hpp"
#include "series/null_value.hpp"

namespace brindlewort {

namespace {

__extension__ using Wide = unsigned __int128;

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

/// std::fmod(v, multiple), which C libraries work out bit by bit where the two are far apart: a thousand
/// steps for one row. Here the whole number that v is of the multiple's last place is reduced by powers of
/// two, squared as often as their exponent has bits. Exact, as any remainder is.
double remainderOf(double v, double multiple) {
  constexpr double kNear = 0x1.0p60;
  const double m = std::fabs(multiple);
  if (!(std::fabs(v) >= m * kNear) || !(m >= std::numeric_limits<double>::min()) || !IsFiniteDouble(v)) {
    return std::fmod(v, multiple);
  }
  int valueExponent = 0, multipleExponent = 0;
  constexpr double kWhole = 0x1.0p53;
  const auto value = static_cast<std::uint64_t>(std::frexp(std::fabs(v), &valueExponent) * kWhole);
  const auto modulus = static_cast<std::uint64_t>(std::frexp(m, &multipleExponent) * kWhole);
  const auto times = [modulus](std::uint64_t a, std::uint64_t b) {
    return static_cast<std::uint64_t>(static_cast<Wide>(a) * b % modulus);
  };
  // Two to the power of the distance, from its leading bits on: what they say is squared for each further
  // bit.
  const int distance = valueExponent - multipleExponent;
  int open = std::max(0, static_cast<int>(std::bit_width(static_cast<unsigned>(distance))) - 5);
  std::uint64_t power = (std::uint64_t{1} << (distance >> open)) % modulus;
  while (open-- > 0) {
    power = times(power, power);
    if (distance >> open & 1) power = 2 * power % modulus;
  }
  const std::uint64_t rest = times(value, power);
  return std::copysign(std::ldexp(static_cast<double>(rest), multipleExponent - 53), v);
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
  const double r = remainderOf(v, multiple);
  if (std::trunc(r * 10000.0) == 0.0) return v;
  bool nearerToZero = !((2.0 * r > multiple && mode != RoundMode::kDown) || mode == RoundMode::kUp);
  if (v < 0.0) nearerToZero = !nearerToZero;
  return nearerToZero ? q * multiple + s * kGuard : q * multiple + s * multiple + s * kGuard;
}

}  // namespace brindlewort
