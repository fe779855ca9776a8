#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace brindlewort {

/// Whether a number cut toward zero is a 32-bit integer.
inline bool fitsInt32(double x) {
  return x > -2147483649.0 && x < 2147483648.0;
}
/// Truncation toward zero to a 32-bit integer; out of range or not a number gives the most negative one.
inline std::int32_t toInt32(double x) {
  return fitsInt32(x) ? static_cast<std::int32_t>(x) : INT32_MIN;
}
inline std::int64_t toInt64(double x) {
  return x >= -9223372036854775808.0 && x < 9223372036854775808.0 ? static_cast<std::int64_t>(x) : INT64_MIN;
}

/// |x|, formed wider than its argument so that it is never negative.
inline std::int64_t magnitude(std::int32_t x) {
  return x < 0 ? -static_cast<std::int64_t>(x) : x;
}

/// A value as all comparisons of the language see it: trunc((x + 1e-10) * 10000) for a positive x,
/// trunc((x - 1e-10) * 10000) for a negative one, as a 64-bit integer. Two values that differ by less
/// than 1/10000 may thus be equal.
inline std::int64_t QuantizeForCompare(double x) {
  if (x == 0.0) return 0;
  return toInt64((x > 0.0 ? x + 1e-10 : x - 1e-10) * 10000.0);
}

/// Fixed notation, correctly rounded to `precision` decimals (0 to 60). "0" for an infinity or a non-number.
std::string FormatFixed(double value, int precision);
void appendFixed(std::string& text, double value, int precision);

/// What is left of a value written with FormatFixed(value, 20) and read again: the value itself, unless it is
/// smaller than some 1e-3 or no finite number.
double throughText(double value);

/// The short number form of output rows: 1e-10 is added away from zero, the value is written with 20
/// decimals and cut (not rounded) after `decimals` (at least 1). "-987654321" for the NULL_VALUE, an
/// infinity or a non-number; "0" for exactly 0.0.
std::string FormatTruncated(double value, int decimals);
void appendTruncated(std::string& text, double value, int decimals);

/// Number at the head of the text, in the manner of the C library's strtod restricted to decimal
/// notation: leading white space, a sign, digits, a point, an exponent. Stops at the first character
/// it cannot use; 0.0 when there is no number.
double parseDouble(std::string_view text);

/// Integer at the head of the text (white space, sign, digits); 0 when there is none, the most
/// negative integer when out of range.
std::int32_t parseInt32(std::string_view text);

}  // namespace brindlewort
