#include "bar_date.hpp"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>

#include "series/julian_date.hpp"

namespace brindlewort::tool {
namespace {

constexpr int kFirstYear = 1801;  // the arithmetic of Julian dates holds from here
constexpr int kLastYear = 2099;   // to here
constexpr double kFirstJulianDay = 2378861.5;
constexpr double kEndJulianDay = 2488069.5;
constexpr double kFirstMilliseconds = 1e10;
constexpr std::int64_t kSecondsPerDay = 86400;

struct CivilTime {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

/// Reads fixed pieces off the front of a text.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  bool done() const { return rest_.empty(); }
  bool take(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }
  /// Exactly `count` decimal digits.
  bool digits(std::size_t count, int& number) {
    if (rest_.size() < count) return false;
    int value = 0;
    for (const char c : rest_.substr(0, count)) {
      if (!isDigit(c)) return false;
      value = value * 10 + (c - '0');
    }
    rest_.remove_prefix(count);
    number = value;
    return true;
  }
  bool skipDigits() {
    const std::size_t before = rest_.size();
    while (!rest_.empty() && isDigit(rest_.front())) rest_.remove_prefix(1);
    return rest_.size() < before;
  }

 private:
  static bool isDigit(char c) { return c >= '0' && c <= '9'; }

  std::string_view rest_;
};

bool isCalendarTime(const CivilTime& t) {
  namespace chrono = std::chrono;
  const chrono::year_month_day date{chrono::year{t.year}, chrono::month(static_cast<unsigned>(t.month)),
                                    chrono::day(static_cast<unsigned>(t.day))};
  return t.year >= kFirstYear && t.year <= kLastYear && date.ok() && t.hour < 24 && t.minute < 60 &&
         t.second < 60;
}

bool scanTime(Scanner& in, CivilTime& t) {
  if (!in.digits(2, t.hour) || !in.take(':') || !in.digits(2, t.minute)) return false;
  if (!in.take(':')) return true;
  if (!in.digits(2, t.second)) return false;
  return !in.take('.') || in.skipDigits();
}

std::optional<CivilTime> parseIso(std::string_view field) {
  Scanner in(field);
  CivilTime t;
  if (!in.digits(4, t.year)) return std::nullopt;
  const bool dashes = in.take('-');
  if (!in.digits(2, t.month) || in.take('-') != dashes || !in.digits(2, t.day)) return std::nullopt;
  if ((in.take(' ') || in.take('T')) && !scanTime(in, t)) return std::nullopt;
  in.take('Z');
  if (!in.done() || !isCalendarTime(t)) return std::nullopt;
  return t;
}

CivilTime civilFromEpoch(std::int64_t seconds) {
  namespace chrono = std::chrono;
  std::int64_t days = seconds / kSecondsPerDay;
  std::int64_t rest = seconds % kSecondsPerDay;
  if (rest < 0) {
    rest += kSecondsPerDay;
    --days;
  }
  const chrono::year_month_day date{chrono::sys_days{chrono::days{days}}};
  return {static_cast<int>(date.year()),
          static_cast<int>(static_cast<unsigned>(date.month())),
          static_cast<int>(static_cast<unsigned>(date.day())),
          static_cast<int>(rest / 3600),
          static_cast<int>(rest / 60 % 60),
          static_cast<int>(rest % 60)};
}

double julianDate(const CivilTime& t) {
  return ToJulianDate(t.year, t.month, t.day, t.hour, t.minute, t.second);
}

std::optional<double> parseNumericDate(std::string_view field) {
  double number = 0.0;
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
  if (error != std::errc() || end != field.data() + field.size() || !std::isfinite(number))
    return std::nullopt;

  if (number >= kFirstJulianDay && number < kEndJulianDay) return number;
  const double seconds = std::floor(std::abs(number) < kFirstMilliseconds ? number : number / 1000.0);
  if (std::abs(seconds) >= kFirstMilliseconds) return std::nullopt;  // beyond the year 2286
  const CivilTime t = civilFromEpoch(static_cast<std::int64_t>(seconds));
  if (!isCalendarTime(t)) return std::nullopt;
  return julianDate(t);
}

}  // namespace

std::optional<double> parseBarDate(std::string_view field) {
  if (const std::optional<CivilTime> civil = parseIso(field)) return julianDate(*civil);
  return parseNumericDate(field);
}

}  // namespace brindlewort::tool
