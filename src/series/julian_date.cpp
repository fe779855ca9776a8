#include "series/julian_date.hpp"

#include <cmath>

#include "platform/local_time.hpp"
#include "platform/locale_text.hpp"
#include "series/null_value.hpp"

namespace brindlewort {

namespace {

/// The day numbers that are split: from the start of the Gregorian calendar to past the last year that any
/// formatter accepts. Dates outside have no text, whatever calendar they are read by.
constexpr double kFirstSplitDate = 2299161.0;
constexpr double kEndOfSplitDates = 13'000'000.0;

/// The date's share is exact: every term is a whole number far below 2^53.
double julianDate(std::int32_t nYear, std::int32_t nMonth, std::int32_t nDay, double timeFraction) {
  const double year = nYear;
  const double month = nMonth;
  const double a = std::floor((month + 9.0) / 12.0);
  const double n = 367.0 * year - std::floor(7.0 * (year + a) / 4.0) + std::floor(275.0 * month / 9.0) + nDay;
  const double s = 100.0 * year + month - 190002.5;  // ends in .5, so it is never 0
  return n + timeFraction + 1721013.5 - 0.5 * s / std::fabs(s) + 0.5;
}

/// Date and time of day. Days are counted in integers, with the constants 36524.25, 365.25, 122.1 and 30.6001
/// multiplied out: no quotient is so near to an integer that floating point would floor it differently. The
/// time of day is the bits of double arithmetic.
std::optional<CivilTime> splitJulianDay(double JDate) {
  if (!(JDate >= kFirstSplitDate && JDate < kEndOfSplitDates)) return std::nullopt;
  const std::int32_t Z = static_cast<std::int32_t>(JDate);
  const std::int32_t alpha = (4 * Z - (4 * 1867216 + 1)) / 146097;
  std::int32_t A = Z + 1 + alpha - alpha / 4;
  double f = JDate - Z + 0.5;
  if (f >= 1.0) {
    f = f - 1.0;
    A = A + 1;
  }
  const std::int32_t B = A + 1524;
  const std::int32_t C = (20 * (B - 2439870) - 2442 + 6680 * 7305) / 7305;
  const std::int32_t D = C * 1461 / 4;
  const std::int32_t E = (B - D) * 10000 / 306001;
  CivilTime civil;
  civil.day = B - D - E * 306001 / 10000;
  civil.month = E > 13 ? E - 13 : E - 1;
  civil.year = civil.month > 2 ? C - 4716 : C - 4715;

  civil.hour = static_cast<std::int32_t>(f * 24.0);
  civil.minute = static_cast<std::int32_t>((f * 24.0 - civil.hour) * 60.0);
  const double seconds = ((f * 24.0 - civil.hour) * 60.0 - civil.minute) * 60.0;
  civil.second = static_cast<std::int32_t>(seconds);
  if (seconds - civil.second > 0.5) civil.second += 1;
  if (civil.second > 59) {
    civil.second -= 60;
    civil.minute += 1;
  }
  if (civil.minute > 59) {
    civil.minute -= 60;
    civil.hour += 1;
  }
  if (civil.hour == 24) civil.hour = civil.minute = civil.second = 0;  // the day is not moved on
  return civil;
}

bool isInDateRange(double JDate) {
  return JDate >= kFirstDate && JDate <= kLastDate;
}

/// Nothing, or what the formatter refuses, reads as kNoDateTime.
void appendCivilTime(std::string& text, const std::optional<CivilTime>& civil) {
  char formatted[platform::kDateTimeTextRoom + 1 + platform::kDateTimeTextRoom];
  char* at = civil ? platform::writeShortDate(formatted, *civil) : formatted;
  if (at == formatted) {
    text += kNoDateTime;
    return;
  }
  *at++ = ' ';
  at = platform::writeTimeOfDay(at, *civil);
  text.append(formatted, static_cast<std::size_t>(at - formatted));
}

std::int64_t momentOf(double date) {
  const std::optional<CivilTime> civil = SplitJulianDate(date);
  return civil ? platform::momentOfLocalTime(*civil) : 0;
}

}  // namespace

double ToJulianDate(std::int32_t nYear, std::int32_t nMonth, std::int32_t nDay, std::int32_t nHour,
                    std::int32_t nMinute, std::int32_t nSecond) {
  return julianDate(nYear, nMonth, nDay, (nHour + (nMinute + nSecond / 60.0) / 60.0) / 24.0);
}

double ToJulianDateWithMilliseconds(std::int32_t nYear, std::int32_t nMonth, std::int32_t nDay,
                                    std::int32_t nHour, std::int32_t nMinute, std::int32_t nSecond,
                                    std::int32_t nMillisecond) {
  return julianDate(nYear, nMonth, nDay,
                    (nHour + nMinute / 60.0 + nSecond / 3600.0 + nMillisecond / 3'600'000.0) / 24.0);
}

std::optional<CivilTime> SplitJulianDate(double JDate) {
  if (!isInDateRange(JDate)) return std::nullopt;
  return splitJulianDay(JDate);
}

std::string FromJulianDate(double JDate) {
  std::string text;
  appendCivilTime(text, splitJulianDay(JDate));
  return text;
}

void appendDateTimeText(std::string& text, double JDate) {
  appendCivilTime(text, SplitJulianDate(JDate));
}

std::string DateTimeText(double JDate) {
  std::string text;
  appendDateTimeText(text, JDate);
  return text;
}

double DatePartOf(double date, std::int32_t part) {
  if (date <= 1.0 || part < kSecondPart || part > kYearPart) return NULL_VALUE;
  const CivilTime unknown{0, 0, 0, -1, -1, -1};
  const CivilTime local = platform::localTimeOf(momentOf(date)).value_or(unknown);
  switch (part) {
    case kSecondPart:
      return local.second;
    case kMinutePart:
      return local.minute;
    case kHourPart:
      return local.hour;
    case kDayPart:
      return local.day;
    case kMonthPart:
      return local.month;
    default:
      return local.year;
  }
}

double DateDifference(double first, double second, std::int32_t unit) {
  static constexpr std::int64_t kSecondsPerUnit[] = {1, 60, 3600, 86400};
  const auto hasNoMoment = [](double date) {
    return date <= 1.0 || date == kFirstDummyDate || date == kSecondDummyDate;
  };
  if (hasNoMoment(first) || hasNoMoment(second)) return NULL_VALUE;
  if (unit < kSecondPart || unit > kDayPart) return 0.0;
  return static_cast<double>((momentOf(first) - momentOf(second)) / kSecondsPerUnit[unit - 1]);
}

}  // namespace brindlewort
