#pragma once

/// Rounding of single values as scripts see it. Every result but 0.0 and an exact multiple keeps 1e-10 away
/// from zero on purpose, so that the next cut does not fall one unit short. "Integer part" is taken in
/// doubles, toward zero. All three give NULL_VALUE for the NULL_VALUE, an infinity and a non-number.
namespace brindlewort {

enum class RoundMode {
  kUp = 1,    ///< away from zero
  kDown = 2,  ///< toward zero
  kNearest = 3,
};

/// `value` cut to `digits` decimals, plus 1e-10 away from zero. 0.0 when nothing is left.
double TruncateValue(double value, int digits);

/// `value`, cut to four decimals first, rounded to `digits` decimals, plus 1e-10 away from zero. 0.0 when the
/// cut leaves nothing.
double RoundValue(double value, int digits, RoundMode mode);

/// `value`, cut to four decimals first, brought to a multiple of `multiple`, plus 1e-10 away from zero; an
/// exact multiple (at four decimals) is returned as the cut left it. For a negative value and a positive
/// multiple the size of the remainder does not matter: kUp stays at the multiple nearer to zero, the
/// other modes go to the one further from zero.
double RoundToMultiple(double value, double multiple, RoundMode mode);

}  // namespace brindlewort
