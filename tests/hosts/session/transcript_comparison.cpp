#include "transcript_comparison.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>

namespace brindlewort::session {

namespace {

constexpr double kTolerance = 1.001e-4;
constexpr double kRelativeTolerance = 1e-12;
constexpr std::string_view kRandomLine = "Maximum Drawdown (Monte Carlo): ";

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isWordCharacter(char c) {
  return isDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

/// Reads a text from the front; what is not there is not taken.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  std::size_t taken() const { return taken_; }
  bool take(char c) {
    const bool there = taken_ < text_.size() && text_[taken_] == c;
    if (there) ++taken_;
    return there;
  }
  std::optional<int> digits(std::size_t fewest, std::size_t most) {
    std::size_t end = taken_;
    int value = 0;
    while (end < text_.size() && end - taken_ < most && isDigit(text_[end]))
      value = value * 10 + (text_[end++] - '0');
    if (end - taken_ < fewest) return std::nullopt;
    taken_ = end;
    return value;
  }

 private:
  std::string_view text_;
  std::size_t taken_ = 0;
};

/// A date and time, and how many characters they are; year, month, day, hour, minute, second.
struct Date {
  std::array<int, 6> parts;
  std::size_t length;
};

/// A part of a date: how many digits it has, and the character behind it.
struct Part {
  std::size_t fewest;
  std::size_t most;
  char behind;
};
using Format = std::array<Part, 6>;
constexpr char kNothing = '\0';
constexpr Format kFixed = {
    {{4, 4, '-'}, {2, 2, '-'}, {2, 2, ' '}, {2, 2, ':'}, {2, 2, ':'}, {2, 2, kNothing}}};
constexpr Format kLocale = {{{1, 2, '/'}, {1, 2, '/'}, {4, 4, ' '}, {1, 2, ':'}, {2, 2, ':'}, {2, 2, ' '}}};

std::optional<std::array<int, 6>> partsOf(Reader& reader, const Format& format) {
  std::array<int, 6> parts{};
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const auto part = reader.digits(format[i].fewest, format[i].most);
    if (!part || (format[i].behind != kNothing && !reader.take(format[i].behind))) return std::nullopt;
    parts[i] = *part;
  }
  return parts;
}

std::optional<Date> fixedDate(std::string_view text) {
  Reader reader(text);
  const auto parts = partsOf(reader, kFixed);
  if (!parts) return std::nullopt;
  return Date{*parts, reader.taken()};
}

std::optional<Date> localeDate(std::string_view text) {
  Reader reader(text);
  const auto parts = partsOf(reader, kLocale);
  if (!parts) return std::nullopt;
  const bool isAfternoon = reader.take('P');
  if (!isAfternoon && !reader.take('A')) return std::nullopt;
  if (!reader.take('M')) return std::nullopt;
  const auto& [month, day, year, hour, minute, second] = *parts;
  return Date{{year, month, day, hour % 12 + (isAfternoon ? 12 : 0), minute, second}, reader.taken()};
}

std::optional<Date> dateOf(std::string_view text) {
  const auto fixed = fixedDate(text);
  return fixed ? fixed : localeDate(text);
}

/// A number at the front of a text.
struct Number {
  double value;
  std::size_t decimals;
  std::size_t length;
};

std::optional<Number> numberOf(std::string_view text) {
  std::size_t end = !text.empty() && text[0] == '-' ? 1 : 0;
  const std::size_t whole = end;
  while (end < text.size() && isDigit(text[end])) ++end;
  if (end == whole) return std::nullopt;
  std::size_t decimals = 0;
  if (end + 1 < text.size() && text[end] == '.' && isDigit(text[end + 1])) {
    const std::size_t point = end++;
    while (end < text.size() && isDigit(text[end])) ++end;
    decimals = end - point - 1;
  }
  return Number{std::strtod(std::string(text.substr(0, end)).c_str(), nullptr), decimals, end};
}

bool isSameNumber(const Number& one, const Number& other) {
  const double difference = std::fabs(one.value - other.value);
  return one.decimals == other.decimals &&
         difference <= std::max(kTolerance, kRelativeTolerance * std::fabs(one.value));
}

}  // namespace

bool isSame(std::string_view one, std::string_view other) {
  bool isRandom = false;
  bool isInWord = false;  // digits behind a letter belong to a name
  while (!one.empty() && !other.empty()) {
    const auto date = isInWord ? std::nullopt : dateOf(one);
    const auto otherDate = isInWord ? std::nullopt : dateOf(other);
    if (date && otherDate) {
      if (date->parts != otherDate->parts) return false;
      one.remove_prefix(date->length);
      other.remove_prefix(otherDate->length);
      isInWord = true;
      continue;
    }
    const auto number = isInWord ? std::nullopt : numberOf(one);
    const auto otherNumber = isInWord ? std::nullopt : numberOf(other);
    if (number && otherNumber) {
      if (!isRandom && !isSameNumber(*number, *otherNumber)) return false;
      isRandom = false;
      one.remove_prefix(number->length);
      other.remove_prefix(otherNumber->length);
      isInWord = true;
      continue;
    }
    if (one.front() != other.front()) return false;
    isInWord = isWordCharacter(one.front());
    if (one.starts_with(kRandomLine) && other.starts_with(kRandomLine)) {
      isRandom = true;
      one.remove_prefix(kRandomLine.size() - 1);
      other.remove_prefix(kRandomLine.size() - 1);
      isInWord = false;
    }
    one.remove_prefix(1);
    other.remove_prefix(1);
  }
  return one.empty() && other.empty();
}

}  // namespace brindlewort::session
