#pragma once

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace brindlewort::fuzz {

/// Doubles that no market has; a letter each, from 'a' on.
inline constexpr double kWildNumbers[] = {
    0.0,
    -0.0,
    std::numeric_limits<double>::quiet_NaN(),
    -std::numeric_limits<double>::quiet_NaN(),
    std::numeric_limits<double>::infinity(),
    -std::numeric_limits<double>::infinity(),
    std::numeric_limits<double>::max(),
    -std::numeric_limits<double>::max(),
    std::numeric_limits<double>::min(),
    std::numeric_limits<double>::denorm_min(),
    -987654321.0,  // the null value
    -987654320.0,
    2147483647.0,
    2147483648.0,
    -2147483648.0,
    4294967296.0,
    9007199254740993.0,
    9223372036854775808.0,
    -9223372036854775808.0,
    1e15,
    1e-10,
    0.00005,
    99.95,
    -1.0,
    2444239.5,  // the date of a filler bar
    2488069.5,  // the last date that is written
};
inline constexpr int kWildCount = sizeof kWildNumbers / sizeof kWildNumbers[0];

/// The arguments of a call as a line of the input writes them: numbers and letters between commas, and a text
/// last. What is missing reads as 0 or "".
class Line {
 public:
  explicit Line(std::string_view text) : left_(text) {}

  /// A decimal number, or a letter for a wild one.
  double number() {
    const std::string_view token = next();
    if (token.size() == 1 && token[0] >= 'a' && token[0] <= 'z')
      return kWildNumbers[(token[0] - 'a') % kWildCount];
    char digits[32];
    const std::size_t length = token.copy(digits, sizeof digits - 1);
    digits[length] = '\0';
    return std::strtod(digits, nullptr);
  }
  std::int32_t integer() {
    const double value = number();
    if (!(value > -2147483648.0)) return value != value ? 0 : std::numeric_limits<std::int32_t>::min();
    return value < 2147483647.0 ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::max();
  }
  /// A number of 0 to `count` - 1, `count` being above 0.
  std::size_t choice(std::size_t count) { return static_cast<std::uint32_t>(integer()) % count; }
  /// All that is left.
  std::string text() { return std::string(std::exchange(left_, {})); }

 private:
  std::string_view next() {
    const std::size_t comma = left_.find(',');
    const std::string_view token = left_.substr(0, comma);
    left_.remove_prefix(comma == std::string_view::npos ? left_.size() : comma + 1);
    return token;
  }

  std::string_view left_;
};

}  // namespace brindlewort::fuzz
