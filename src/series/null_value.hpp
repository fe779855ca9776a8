#pragma once

#include <limits>

namespace brindlewort {

/// Marks a row without a value: warm-up rows of an indicator, values that could not be computed. A plain
/// number in every series; only nz(), IsFiniteDouble() users and the output texts know it.
inline constexpr double NULL_VALUE = -987654321.0;

inline bool isNull(double x) {
  return x == NULL_VALUE;
}

/// 0.0 for exactly the NULL_VALUE, else x. Written nz in the formulas.
inline double nz(double x) {
  return x == NULL_VALUE ? 0.0 : x;
}
inline double NullToZero(double x) {
  return nz(x);
}

/// False for a non-number and for both infinities.
inline bool IsFiniteDouble(double x) {
  return x >= -std::numeric_limits<double>::max() && x <= std::numeric_limits<double>::max();
}

}  // namespace brindlewort
