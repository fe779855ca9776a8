#pragma once

#include <cmath>

namespace brindlewort::platform {

/// `base` to the power of `exponent`, as exact as the C libraries of other systems give it: that of MinGW
/// multiplies rounded reciprocals, and ten to the power of -2 is not 0.01 there. Its wider form is exact
/// enough to be rounded.
inline double power(double base, double exponent) {
#ifdef __MINGW32__
  return static_cast<double>(std::pow(static_cast<long double>(base), static_cast<long double>(exponent)));
#else
  return std::pow(base, exponent);
#endif
}

}  // namespace brindlewort::platform
