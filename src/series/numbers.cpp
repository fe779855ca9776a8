#include "series/numbers.hpp"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <optional>
#include <system_error>

#include "series/null_value.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

constexpr int kFullDecimals = 20;  // what the short number form is cut from
constexpr int kMostDecimals = 60;
constexpr double kTruncationGuard = 1e-10;
constexpr std::string_view kNullText = "-987654321";

/// Room for the largest double in fixed notation: sign, 309 digits, point, decimals.
constexpr std::size_t kLongestNumber = 1 + 309 + 1 + kMostDecimals;

constexpr std::uint32_t kPowersOfTen[] = {1,       10,        100,        1'000,       10'000,
                                          100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000};

/// What stands behind the point of a number, exactly: a fraction of 128 bits.
class BinaryFraction {
 public:
  static constexpr int kBits = 128;

  BinaryFraction() = default;  // 0
  /// mantissa / 2^bits, for 1 to 127 bits; the mantissa is below 2^bits.
  BinaryFraction(std::uint64_t mantissa, int bits) {
    if (bits <= 64) {
      high_ = mantissa << (64 - bits);
    } else {
      high_ = mantissa >> (bits - 64);
      low_ = mantissa << (kBits - bits);
    }
  }

  /// Takes the next decimals, at most nine, off the front.
  std::uint32_t take(int decimals) {
    const std::uint64_t scale = kPowersOfTen[decimals];
    std::uint64_t carry = 0;
    if (low_ != 0) carry = multiply(low_, scale, 0);
    return static_cast<std::uint32_t>(multiply(high_, scale, carry));
  }

  /// False when the rest is too far below 1 to become 1 by rounding at ten or more decimals.
  bool isNearlyOne() const { return high_ >> 32 == 0xFFFFFFFF; }

  bool isAtLeastHalf() const { return high_ >= kHalf; }
  bool isHalf() const { return high_ == kHalf && low_ == 0; }

 private:
  static constexpr std::uint64_t kHalf = 1ull << 63;

  /// part = part * scale + carry; what no longer fits (below 2^32) is the result.
  static std::uint64_t multiply(std::uint64_t& part, std::uint64_t scale, std::uint64_t carry) {
    constexpr std::uint64_t kLow32 = 0xFFFFFFFF;
    const std::uint64_t lower = (part & kLow32) * scale + carry;
    const std::uint64_t upper = (part >> 32) * scale + (lower >> 32);
    part = upper << 32 | (lower & kLow32);
    return upper >> 32;
  }

  std::uint64_t high_ = 0;
  std::uint64_t low_ = 0;
};

/// The size of a double of a common magnitude.
struct SplitNumber {
  std::uint64_t whole;
  BinaryFraction fraction;
};

/// Nothing for a size below 2^-75 (0 included), or of 2^64 and above.
std::optional<SplitNumber> splitCommon(double value) {
  constexpr int kMantissaBits = 52;
  constexpr int kExponentBias = 1023 + kMantissaBits;
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
  const int exponent = static_cast<int>(bits >> kMantissaBits & 0x7FF) - kExponentBias;
  if (exponent <= -BinaryFraction::kBits || exponent > 63 - kMantissaBits) return std::nullopt;
  const std::uint64_t mantissa = (bits & ((1ull << kMantissaBits) - 1)) | 1ull << kMantissaBits;
  if (exponent >= 0) return SplitNumber{mantissa << exponent, BinaryFraction()};
  if (exponent <= -64) return SplitNumber{0, BinaryFraction(mantissa, -exponent)};
  const std::uint64_t whole = mantissa >> -exponent;
  return SplitNumber{whole, BinaryFraction(mantissa - (whole << -exponent), -exponent)};
}

/// Writes a number from its end to its front.
class BackwardWriter {
 public:
  void digits(std::uint32_t value, int count) {
    for (; count >= 2; count -= 2, value /= 100) pair(value % 100);
    if (count == 1) *--at_ = static_cast<char>('0' + value % 10);
  }
  void pointAndWhole(std::uint64_t value, bool negative) {
    *--at_ = '.';
    for (; value >= 100; value /= 100) pair(static_cast<std::uint32_t>(value % 100));
    digits(static_cast<std::uint32_t>(value), value >= 10 ? 2 : 1);
    if (negative) *--at_ = '-';
  }
  /// Appends what was written, but for the last characters.
  void appendTo(std::string& text, int dropped) {
    text.append(at_, static_cast<std::size_t>(std::end(buffer_) - dropped - at_));
  }

 private:
  void pair(std::uint32_t value) {
    static constexpr char kPairs[] =
        "00010203040506070809101112131415161718192021222324"
        "25262728293031323334353637383940414243444546474849"
        "50515253545556575859606162636465666768697071727374"
        "75767778798081828384858687888990919293949596979899";
    at_ -= 2;
    std::memcpy(at_, kPairs + 2 * value, 2);
  }

  char buffer_[1 + 20 + 1 + kFullDecimals];  // a sign and the largest whole part take 21
  char* at_ = std::end(buffer_);
};

/// appendDecimals for numbers of a common magnitude. False, with nothing appended, for all others.
bool appendCommon(std::string& text, double value, int decimals) {
  std::optional<SplitNumber> number = splitCommon(value);
  if (!number) return false;
  BackwardWriter writer;
  if (decimals <= 9) {
    BinaryFraction rest = number->fraction;
    const std::uint32_t kept = rest.take(decimals);
    if (!rest.isNearlyOne()) {  // else the rounding at the 20th decimal may reach the kept ones
      writer.digits(kept, decimals);
      writer.pointAndWhole(number->whole, std::signbit(value));
      writer.appendTo(text, 0);
      return true;
    }
  }
  BinaryFraction& rest = number->fraction;
  std::uint32_t first = rest.take(9), second = rest.take(9), last = rest.take(2);
  if (rest.isAtLeastHalf() && !(rest.isHalf() && last % 2 == 0)) ++last;
  if (last == kPowersOfTen[2]) last = 0, ++second;
  if (second == kPowersOfTen[9]) second = 0, ++first;
  if (first == kPowersOfTen[9]) first = 0, ++number->whole;
  writer.digits(last, 2);
  writer.digits(second, 9);
  writer.digits(first, 9);
  writer.pointAndWhole(number->whole, std::signbit(value));
  writer.appendTo(text, kFullDecimals - decimals);
  return true;
}

/// The fixed notation of numbers of a common magnitude with 1 to 9 decimals. False, with nothing appended,
/// for all others.
bool appendCommonRounded(std::string& text, double value, int decimals) {
  std::optional<SplitNumber> number = splitCommon(value);
  if (!number) return false;
  BinaryFraction& rest = number->fraction;
  std::uint32_t kept = rest.take(decimals);
  if (rest.isAtLeastHalf() && !(rest.isHalf() && kept % 2 == 0)) ++kept;
  if (kept == kPowersOfTen[decimals]) kept = 0, ++number->whole;
  BackwardWriter writer;
  writer.digits(kept, decimals);
  writer.pointAndWhole(number->whole, std::signbit(value));
  writer.appendTo(text, 0);
  return true;
}

/// A finite value written with 20 decimals, correctly rounded (a tie to the even digit), and cut after
/// `decimals` of them (1 to 20).
void appendDecimals(std::string& text, double value, int decimals) {
  if (appendCommon(text, value, decimals)) return;
  char buffer[kLongestNumber];
  char* const end =
      std::to_chars(buffer, std::end(buffer), value, std::chars_format::fixed, kFullDecimals).ptr;
  text.append(buffer, end - (kFullDecimals - decimals));
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Takes white space and one sign off the front. True for a minus.
bool takeSign(std::string_view& text) {
  while (!text.empty() && isWhiteSpace(text.front())) text.remove_prefix(1);
  if (text.empty() || (text.front() != '+' && text.front() != '-')) return false;
  const bool negative = text.front() == '-';
  text.remove_prefix(1);
  return negative;
}

/// For an unsigned number that no double holds: true when it is too large, false when too small. `number`
/// holds nothing but the number.
bool isHuge(std::string_view number) {
  const std::size_t e = number.find_first_of("eE");
  const std::string_view digits = number.substr(0, e);
  const std::size_t firstDigit = digits.find_first_not_of("0.");
  if (firstDigit == std::string_view::npos) return false;
  const std::size_t point = std::min(digits.find('.'), digits.size());
  if (e == std::string_view::npos) return firstDigit < point;

  std::string_view exponentText = number.substr(e + 1);
  const bool negative = takeSign(exponentText);
  std::int64_t exponent = 0;
  const auto read = std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
  if (read.ec == std::errc::result_out_of_range) return !negative;
  if (negative) exponent = -exponent;
  return exponent > static_cast<std::int64_t>(firstDigit) - static_cast<std::int64_t>(point);
}

}  // namespace

void appendFixed(std::string& text, double value, int precision) {
  if (!IsFiniteDouble(value)) {
    text += '0';
    return;
  }
  if (precision == kFullDecimals && appendCommon(text, value, kFullDecimals)) return;
  if (precision >= 1 && precision <= 9 && appendCommonRounded(text, value, precision)) return;
  char buffer[kLongestNumber];
  const int decimals = std::clamp(precision, 0, kMostDecimals);
  text.append(buffer, std::to_chars(buffer, std::end(buffer), value, std::chars_format::fixed, decimals).ptr);
}

std::string FormatFixed(double value, int precision) {
  std::string text;
  appendFixed(text, value, precision);
  return text;
}

void appendTruncated(std::string& text, double value, int decimals) {
  if (isNull(value) || !IsFiniteDouble(value)) {
    text += kNullText;
  } else if (value == 0.0) {
    text += '0';
  } else {
    const double guarded = value > 0.0 ? value + kTruncationGuard : value - kTruncationGuard;
    appendDecimals(text, guarded, std::clamp(decimals, 1, kFullDecimals));
  }
}

std::string FormatTruncated(double value, int decimals) {
  std::string text;
  appendTruncated(text, value, decimals);
  return text;
}

double parseDouble(std::string_view text) {
  const bool negative = takeSign(text);
  const bool isNumber =
      !text.empty() && (isDigit(text[0]) || (text[0] == '.' && text.size() > 1 && isDigit(text[1])));
  if (!isNumber) return 0.0;  // the words for infinities and non-numbers included
  double value = 0.0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (read.ec == std::errc::result_out_of_range) {
    const std::string_view number = text.substr(0, static_cast<std::size_t>(read.ptr - text.data()));
    value = isHuge(number) ? std::numeric_limits<double>::infinity() : 0.0;
  }
  return negative ? -value : value;
}

std::int32_t parseInt32(std::string_view text) {
  const bool negative = takeSign(text);
  std::uint64_t size = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), size);
  const std::uint64_t largest = std::numeric_limits<std::int32_t>::max();
  if (read.ec == std::errc::result_out_of_range || size > largest) return INT32_MIN;
  return negative ? -static_cast<std::int32_t>(size) : static_cast<std::int32_t>(size);
}

double throughText(double value) {
  // From 1e-3 on, 20 decimals are 17 significant digits or more, from which the same double is read.
  const double size = std::fabs(value);
  if (size >= 1e-3 && size <= std::numeric_limits<double>::max()) return value;
  if (value == 0.0) return value;
  return parseDouble(FormatFixed(value, 20));
}

}  // namespace brindlewort
