#include "series/julian_date.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

#include "series/null_value.hpp"
#include "support/date_texts.hpp"
#include "support/series_checks.hpp"
#include "support/time_zone.hpp"

namespace brindlewort {
namespace {

using testing::kInf;
using testing::kNaN;
using testing::kNull;
using testing::kSummerTimeZone;
using testing::kUniversalZone;
using testing::localDates;
using testing::Random;
using testing::sameBits;
using testing::ScopedTimeZone;

constexpr std::int32_t kLow = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHigh = std::numeric_limits<std::int32_t>::max();

/// The arithmetic written down step by step in doubles, for any date. Fields stay doubles.
struct LiteralTime {
  double year, month, day, hour, minute, second;

  explicit LiteralTime(double JDate) {
    const double Z = std::floor(JDate), F = JDate - Z;
    double A = Z;
    if (Z >= 2299161) {
      const double alpha = std::floor((Z - 1867216 - 0.25) / 36524.25);
      A = Z + 1 + alpha - std::floor(0.25 * alpha);
    }
    double f = F + 0.5;
    if (f >= 1) f = f - 1, A = A + 1;
    const double B = A + 1524;
    const double C = std::floor((B - 2439870 - 122.1) / 365.25 + 6680);
    const double D = std::floor(C * 365.25);
    const double E = std::floor((B - D) / 30.6001);
    day = std::floor(B - D - std::floor(E * 30.6001));
    month = std::floor(E - 1);
    if (month > 12) month -= 12;
    year = std::floor(C - 4715);
    if (month > 2) year -= 1;
    if (year <= 0) year -= 1;
    hour = std::floor(f * 24);
    minute = std::floor((f * 24 - hour) * 60);
    const double seconds = ((f * 24 - hour) * 60 - minute) * 60;
    second = std::floor(seconds);
    if (seconds - second > 0.5) second += 1;
    if (second > 59) second -= 60, minute += 1;
    if (minute > 59) minute -= 60, hour += 1;
    if (hour == 24) hour = 0, minute = 0, second = 0;
  }

  bool isEqualTo(const CivilTime& time) const {
    return year == time.year && month == time.month && day == time.day && hour == time.hour &&
           minute == time.minute && second == time.second;
  }
};

/// The text of the literal arithmetic, refused for years and days out of range.
std::string literalText(double JDate) {
  const LiteralTime time(JDate);
  if (!(time.year >= 1601 && time.year <= 30827)) return "No Date Time";
  const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(time.year)),
                                         std::chrono::month(static_cast<unsigned>(time.month)),
                                         std::chrono::day(static_cast<unsigned>(time.day))};
  if (!date.ok()) return "No Date Time";
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", static_cast<int>(time.year),
                static_cast<int>(time.month), static_cast<int>(time.day), static_cast<int>(time.hour),
                static_cast<int>(time.minute), static_cast<int>(time.second));
  return localDates(text);
}

/// Julian date of midnight: 1 January 1970 is 2440587.5.
double midnightOf(std::chrono::sys_days day) {
  return 2440587.5 + day.time_since_epoch().count();
}

/// The centuries are counted up to the day number as it stands before noon, a day late for the half day in
/// which the first century without a leap day moves on.
bool isMorningOfMarch1900(double JDate) {
  return JDate >= 2415079.5 && JDate < 2415080.0;
}

constexpr std::chrono::sys_days kFirstDay{std::chrono::year{1900} / 1 / 1};
constexpr std::chrono::sys_days kLastDay{std::chrono::year{2100} / 1 / 1};

// --- To a Julian date ---

TEST(ToJulianDate, ReferencePoints) {
  EXPECT_EQ(ToJulianDate(1980, 1, 1, 0, 0, 0), 2444239.5);
  EXPECT_EQ(ToJulianDate(1980, 1, 2, 0, 0, 0), 2444240.5);
  EXPECT_EQ(ToJulianDate(1980, 1, 1, 12, 0, 0), 2444240.0);
  EXPECT_EQ(ToJulianDateWithMilliseconds(1980, 1, 1, 0, 0, 0, 0), 2444239.5);
}

TEST(ToJulianDate, EveryDayFrom1801To2099IsOneMoreThanTheDayBefore) {
  using namespace std::chrono;
  for (sys_days day{year{1801} / 1 / 1}; day < sys_days{year{2100} / 1 / 1}; day += days{1}) {
    const year_month_day date{day};
    const double julian = ToJulianDate(int{date.year()}, static_cast<int>(unsigned{date.month()}),
                                       static_cast<int>(unsigned{date.day()}), 0, 0, 0);
    ASSERT_EQ(julian, midnightOf(day)) << int{date.year()} << "-" << unsigned{date.month()};
  }
}

TEST(ToJulianDate, TheTwoFormsAddTheTimeOfDayInTheirOwnOrder) {
  const double nested = (13 + (37 + 41 / 60.0) / 60.0) / 24.0;
  const double flat = (13 + 37 / 60.0 + 41 / 3600.0 + 0 / 3600000.0) / 24.0;
  // Day count and the terms behind it, for 15 June 2003: 367 * 2003 - floor(7 * 2004 / 4) + floor(275 * 6 /
  // 9) + 15.
  const double day = 735101.0 - 3507.0 + 183.0 + 15.0;
  EXPECT_EQ(ToJulianDate(2003, 6, 15, 13, 37, 41), day + nested + 1721013.5 - 0.5 + 0.5);
  EXPECT_EQ(ToJulianDateWithMilliseconds(2003, 6, 15, 13, 37, 41, 0), day + flat + 1721013.5 - 0.5 + 0.5);
  const double withMilliseconds = (13 + 37 / 60.0 + 41 / 3600.0 + 999 / 3600000.0) / 24.0;
  EXPECT_EQ(ToJulianDateWithMilliseconds(2003, 6, 15, 13, 37, 41, 999),
            day + withMilliseconds + 1721013.5 - 0.5 + 0.5);
}

TEST(ToJulianDate, BeforeMarch1900TheLastTermsAddADay) {
  // Without that step 28 February and 1 March 1900 would be two days apart: the formula counts a leap day.
  EXPECT_EQ(ToJulianDate(1900, 2, 28, 0, 0, 0), 2415078.5);
  EXPECT_EQ(ToJulianDate(1900, 3, 1, 0, 0, 0), 2415079.5);
}

TEST(ToJulianDate, MonthsBelowOneAreFloored) {
  // Month -10: (-10 + 9) / 12 floors to -1, 275 * -10 / 9 = -305.6 to -306.
  const double n = 367.0 * 1980 - std::floor(7 * (1980 - 1) / 4.0) + -306.0 + 1;
  EXPECT_EQ(ToJulianDate(1980, -10, 1, 0, 0, 0), n + 0.0 + 1721013.5 - 0.5 + 0.5);
}

/// The steps in doubles, the month's floor as a division of doubles.
double literalJulianDate(double nYear, double nMonth, double nDay, double time) {
  const double a = std::floor((nMonth + 9) / 12);
  const double n = 367 * nYear - std::floor(7 * (nYear + a) / 4) + std::floor(275 * nMonth / 9) + nDay;
  const double s = 100 * nYear + nMonth - 190002.5;
  return n + time + 1721013.5 - 0.5 * s / std::fabs(s) + 0.5;
}

TEST(ToJulianDate, AnyIntegersGiveTheNumberOfTheSameSteps) {
  const std::int32_t extremes[] = {kLow, -1, 0, 1, kHigh};
  for (const std::int32_t a : extremes) {
    for (const std::int32_t b : extremes) {
      for (const std::int32_t c : extremes) {
        const double nested = (c + (b + a / 60.0) / 60.0) / 24;
        EXPECT_EQ(ToJulianDate(a, b, c, c, b, a), literalJulianDate(a, b, c, nested));
        const double flat = (c + b / 60.0 + a / 3600.0 + c / 3600000.0) / 24;
        EXPECT_EQ(ToJulianDateWithMilliseconds(a, b, c, c, b, a, c), literalJulianDate(a, b, c, flat));
      }
    }
  }
}

// --- From a Julian date ---

TEST(DateTimeText, ReferencePoints) {
  EXPECT_EQ(DateTimeText(2444239.5), localDates("1980-01-01 00:00:00"));
  EXPECT_EQ(DateTimeText(2444240.0), localDates("1980-01-01 12:00:00"));
  EXPECT_EQ(DateTimeText(2444240.5), localDates("1980-01-02 00:00:00"));
  EXPECT_EQ(FromJulianDate(2444239.5), localDates("1980-01-01 00:00:00"));
}

TEST(DateTimeText, TheLimitsAreAllowed) {
  EXPECT_EQ(DateTimeText(2415020.5), localDates("1900-01-01 00:00:00"));
  EXPECT_EQ(DateTimeText(2488069.5), localDates("2100-01-01 00:00:00"));
  EXPECT_EQ(DateTimeText(std::nextafter(2415020.5, 0.0)), "No Date Time");
  EXPECT_EQ(DateTimeText(std::nextafter(2488069.5, kInf)), "No Date Time");
}

TEST(FromJulianDate, HasNoRangeTest) {
  EXPECT_EQ(FromJulianDate(2415020.5 - 1.0), localDates("1899-12-31 00:00:00"));
  EXPECT_EQ(FromJulianDate(2488069.5 + 1.0), localDates("2100-01-02 00:00:00"));
}

TEST(FromJulianDate, WritesTheYearsThatTheFormatterAccepts) {
  using namespace std::chrono;
  const double first = midnightOf(sys_days{year{1601} / 1 / 1});
  const double last = midnightOf(sys_days{year{30827} / 12 / 31});
  EXPECT_EQ(FromJulianDate(first), localDates("1601-01-01 00:00:00"));
  EXPECT_EQ(FromJulianDate(first - 0.25), "No Date Time");
  EXPECT_EQ(FromJulianDate(last + 0.75), localDates("30827-12-31 18:00:00"));
  EXPECT_EQ(FromJulianDate(last + 1.0), "No Date Time");
}

TEST(FromJulianDate, IsTheTextOfTheStepsInDoubles) {
  Random random(21);
  for (int i = 0; i < 200'000; ++i) {
    const double JDate = i % 2 ? random.unit() * 20e6 - 3e6 : 2.2e6 + random.unit() * 0.4e6;
    ASSERT_EQ(FromJulianDate(JDate), literalText(JDate)) << JDate;
  }
  for (double JDate : {-1.0, -0.0, 0.0, 1.0, -1e-20, 1721423.5, 2299160.5, 2299161.0, 1e15, -1e15, 1e300,
                       -1e300, 5e-324, kNull, kNaN, kInf, -kInf}) {
    EXPECT_EQ(FromJulianDate(JDate), literalText(JDate)) << JDate;
  }
}

TEST(DateTimeText, TheLastHalfSecondOfADayIsItsMidnight) {
  EXPECT_EQ(DateTimeText(ToJulianDateWithMilliseconds(2004, 8, 19, 23, 59, 59, 700)),
            localDates("2004-08-19 00:00:00"));
  EXPECT_EQ(DateTimeText(ToJulianDateWithMilliseconds(2004, 8, 19, 23, 59, 59, 300)),
            localDates("2004-08-19 23:59:59"));
}

TEST(DateTimeText, SecondsRoundAndCarry) {
  EXPECT_EQ(DateTimeText(ToJulianDateWithMilliseconds(2004, 8, 19, 10, 20, 29, 600)),
            localDates("2004-08-19 10:20:30"));
  EXPECT_EQ(DateTimeText(ToJulianDateWithMilliseconds(2004, 8, 19, 10, 20, 59, 700)),
            localDates("2004-08-19 10:21:00"));
  EXPECT_EQ(DateTimeText(ToJulianDateWithMilliseconds(2004, 8, 19, 10, 59, 59, 700)),
            localDates("2004-08-19 11:00:00"));
}

TEST(DateTimeText, IsAppended) {
  std::string text = "on ";
  appendDateTimeText(text, 2444239.5);
  appendDateTimeText(text, 0.0);
  EXPECT_EQ(text, localDates("on 1980-01-01 00:00:00No Date Time"));
}

TEST(DateTimeText, DatesThatCannotBeWritten) {
  for (const double JDate : {0.0, -1.0, 1.0, 2415020.0, 2488070.0, 1e300, -1e300, kNull, kNaN, kInf, -kInf}) {
    EXPECT_EQ(DateTimeText(JDate), "No Date Time") << JDate;
    EXPECT_EQ(SplitJulianDate(JDate), std::nullopt) << JDate;
  }
  EXPECT_EQ(FromJulianDate(0.0), "No Date Time");
}

TEST(SplitJulianDate, EveryDayOfTheRangeIsTheCalendarsDay) {
  using namespace std::chrono;
  int count = 0;
  for (sys_days day = kFirstDay; day <= kLastDay; day += days{1}, ++count) {
    const year_month_day date{day};
    for (const double time : {0.0, 0.25, 0.5, 0.75}) {
      const double JDate = midnightOf(day) + time;
      if (JDate > kLastDate || isMorningOfMarch1900(JDate)) continue;
      const CivilTime expected{int{date.year()},
                               static_cast<std::int32_t>(unsigned{date.month()}),
                               static_cast<std::int32_t>(unsigned{date.day()}),
                               static_cast<std::int32_t>(time * 24),
                               0,
                               0};
      ASSERT_EQ(SplitJulianDate(JDate), expected) << JDate;
    }
  }
  EXPECT_EQ(count, 73'050);
}

TEST(SplitJulianDate, IsWhatTheStepsInDoublesGive) {
  Random random(22);
  for (int i = 0; i < 400'000; ++i) {
    double JDate = kFirstDate + random.unit() * (kLastDate - kFirstDate);
    if (i % 2) JDate = std::floor(JDate) + (random.below(86'400) * 1000 + random.below(1000)) / 86'400'000.0;
    if (JDate < kFirstDate || JDate > kLastDate) continue;
    ASSERT_TRUE(LiteralTime(JDate).isEqualTo(SplitJulianDate(JDate).value())) << JDate;
  }
}

TEST(SplitJulianDate, WholeSecondsComeBack) {
  Random random(23);
  for (int i = 0; i < 200'000; ++i) {
    const CivilTime time{1901 + random.below(198), 1 + random.below(12), 1 + random.below(28),
                         random.below(24),         random.below(60),     random.below(60)};
    const double JDate = ToJulianDate(time.year, time.month, time.day, time.hour, time.minute, time.second);
    ASSERT_EQ(SplitJulianDate(JDate), time);
  }
}

TEST(SplitJulianDate, TheMorningOfTheFirstOfMarch1900IsTheLeapDayThatTheYearLacks) {
  for (const double JDate : {2415079.5, 2415079.75, std::nextafter(2415080.0, 0.0)}) {
    ASSERT_TRUE(isMorningOfMarch1900(JDate));
    EXPECT_TRUE(LiteralTime(JDate).isEqualTo(SplitJulianDate(JDate).value()));
    EXPECT_EQ(SplitJulianDate(JDate)->month, 2);
    EXPECT_EQ(SplitJulianDate(JDate)->day, 29);
    EXPECT_EQ(DateTimeText(JDate), "No Date Time");
  }
  EXPECT_EQ(SplitJulianDate(2415080.0), (CivilTime{1900, 3, 1, 12, 0, 0}));
}

// --- Parts and differences by the local time zone ---

TEST(DatePartOf, GivesEachPart) {
  ScopedTimeZone zone(kSummerTimeZone);
  const double date = ToJulianDate(2004, 8, 19, 10, 20, 30);
  EXPECT_EQ(DatePartOf(date, kSecondPart), 30.0);
  EXPECT_EQ(DatePartOf(date, kMinutePart), 20.0);
  EXPECT_EQ(DatePartOf(date, kHourPart), 10.0);
  EXPECT_EQ(DatePartOf(date, kDayPart), 19.0);
  EXPECT_EQ(DatePartOf(date, kMonthPart), 8.0);
  EXPECT_EQ(DatePartOf(date, kYearPart), 2004.0);
}

TEST(DatePartOf, PartsAreNumberedAsScriptsNumberThem) {
  EXPECT_EQ(kSecondPart, 1);
  EXPECT_EQ(kMinutePart, 2);
  EXPECT_EQ(kHourPart, 3);
  EXPECT_EQ(kDayPart, 4);
  EXPECT_EQ(kMonthPart, 5);
  EXPECT_EQ(kYearPart, 6);
}

TEST(DatePartOf, IsNullOutsideTheDatesAndTheParts) {
  const double date = ToJulianDate(2004, 8, 19, 10, 20, 30);
  EXPECT_EQ(DatePartOf(date, 7), kNull);
  EXPECT_EQ(DatePartOf(date, 0), kNull);
  EXPECT_EQ(DatePartOf(date, -1), kNull);
  EXPECT_EQ(DatePartOf(date, kLow), kNull);
  EXPECT_EQ(DatePartOf(date, kHigh), kNull);
  for (const double none : {1.0, 0.0, -1.0, kNull, -kInf}) EXPECT_EQ(DatePartOf(none, kYearPart), kNull);
}

TEST(DatePartOf, ADateOutOfRangeStandsForTheStartOf1970) {
  ScopedTimeZone zone(kUniversalZone);
  for (const double date : {1.5, 2415020.0, 2488070.0, 1e300, kInf, kNaN}) {
    EXPECT_EQ(DatePartOf(date, kYearPart), 1970.0) << date;
    EXPECT_EQ(DatePartOf(date, kMonthPart), 1.0) << date;
    EXPECT_EQ(DatePartOf(date, kDayPart), 1.0) << date;
    EXPECT_EQ(DatePartOf(date, kHourPart), 0.0) << date;
  }
}

TEST(DatePartOf, ATimeThatTheClocksSkipIsShownAnHourLater) {
  ScopedTimeZone zone(kSummerTimeZone);
  EXPECT_EQ(DatePartOf(ToJulianDate(2021, 3, 14, 2, 30, 0), kHourPart), 3.0);
  EXPECT_EQ(DatePartOf(ToJulianDate(2021, 3, 14, 1, 30, 0), kHourPart), 1.0);
}

/// The first day whose parts the system can tell.
#ifdef _WIN32
constexpr std::chrono::sys_days kFirstBrokenDown{std::chrono::year{1970} / 1 / 1};
#else
constexpr std::chrono::sys_days kFirstBrokenDown = kFirstDay;
#endif

TEST(DatePartOf, EveryDayKeepsItsParts) {
  using namespace std::chrono;
  ScopedTimeZone zone(kSummerTimeZone);
  for (sys_days day = kFirstBrokenDown; day < kLastDay; day += days{7}) {
    const year_month_day date{day};
    const double noon = midnightOf(day) + 0.5;
    ASSERT_EQ(DatePartOf(noon, kYearPart), int{date.year()});
    ASSERT_EQ(DatePartOf(noon, kMonthPart), unsigned{date.month()});
    ASSERT_EQ(DatePartOf(noon, kDayPart), unsigned{date.day()});
    ASSERT_EQ(DatePartOf(noon, kHourPart), 12.0);
  }
}

#ifdef _WIN32

TEST(DatePartOf, BeforeTheClocksOfWindowsADateHasNoParts) {
  ScopedTimeZone zone(kSummerTimeZone);
  for (const double date : {ToJulianDate(1900, 6, 1, 10, 20, 30), ToJulianDate(1969, 12, 31, 18, 0, 0)}) {
    for (const DatePartId part : {kDayPart, kMonthPart, kYearPart}) EXPECT_EQ(DatePartOf(date, part), 0.0);
    for (const DatePartId part : {kSecondPart, kMinutePart, kHourPart})
      EXPECT_EQ(DatePartOf(date, part), -1.0);
  }
  EXPECT_EQ(DatePartOf(ToJulianDate(1969, 12, 31, 19, 0, 0), kYearPart), 1969.0);  // 1970, universal time
}

TEST(DateDifference, BeforeTheClocksOfWindowsADateIsTheSecondBefore1970) {
  ScopedTimeZone zone(kUniversalZone);
  const double date = ToJulianDate(1970, 1, 2, 0, 0, 0);
  for (const double before : {ToJulianDate(1900, 6, 1, 0, 0, 0), ToJulianDate(1969, 12, 31, 23, 0, 0)}) {
    EXPECT_EQ(DateDifference(date, before, 1), 86'401.0);
    EXPECT_EQ(DateDifference(before, before, 1), 0.0);
  }
}

#endif

TEST(DateDifference, InEachUnitCutTowardZero) {
  ScopedTimeZone zone(kUniversalZone);
  const double later = ToJulianDate(2004, 8, 21, 11, 22, 33), earlier = ToJulianDate(2004, 8, 19, 12, 0, 0);
  const double seconds = 2 * 86400 - 37 * 60 - 27;  // two days less 00:37:27
  EXPECT_EQ(DateDifference(later, earlier, 1), seconds);
  EXPECT_EQ(DateDifference(later, earlier, 2), std::trunc(seconds / 60));
  EXPECT_EQ(DateDifference(later, earlier, 3), 47.0);
  EXPECT_EQ(DateDifference(later, earlier, 4), 1.0);
  EXPECT_EQ(DateDifference(earlier, later, 1), -seconds);
  EXPECT_EQ(DateDifference(earlier, later, 2), -std::trunc(seconds / 60));
  EXPECT_EQ(DateDifference(earlier, later, 3), -47.0);
  EXPECT_EQ(DateDifference(earlier, later, 4), -1.0);
  EXPECT_TRUE(sameBits(DateDifference(later, later, 4), 0.0));
}

TEST(DateDifference, DummyBarsAndMissingDatesAreNull) {
  const double date = ToJulianDate(2004, 8, 19, 0, 0, 0);
  for (const double none : {2444239.5, 2444240.5, 1.0, 0.0, -1.0, kNull, -kInf}) {
    for (std::int32_t unit = 0; unit <= 5; ++unit) {
      EXPECT_EQ(DateDifference(none, date, unit), kNull);
      EXPECT_EQ(DateDifference(date, none, unit), kNull);
      EXPECT_EQ(DateDifference(none, none, unit), kNull);
    }
  }
  EXPECT_NE(DateDifference(2444239.75, date, 4), kNull);
}

TEST(DateDifference, AnyOtherUnitIsZero) {
  const double date = ToJulianDate(2004, 8, 19, 0, 0, 0);
  for (const std::int32_t unit : {kLow, -1, 0, 5, 6, kHigh}) {
    EXPECT_EQ(DateDifference(date, date - 10.0, unit), 0.0) << unit;
  }
}

TEST(DateDifference, ADayIsAsLongAsTheClocksMakeIt) {
  ScopedTimeZone zone(kSummerTimeZone);
  const double spring = ToJulianDate(2021, 3, 14, 0, 0, 0), autumn = ToJulianDate(2021, 11, 7, 0, 0, 0);
  EXPECT_EQ(DateDifference(spring + 1.0, spring, 3), 23.0);
  EXPECT_EQ(DateDifference(spring + 1.0, spring, 4), 0.0);
  EXPECT_EQ(DateDifference(autumn + 1.0, autumn, 3), 25.0);
  EXPECT_EQ(DateDifference(autumn + 1.0, autumn, 4), 1.0);
}

TEST(DateDifference, ADateOutOfRangeStandsForTheStartOf1970) {
  ScopedTimeZone zone(kUniversalZone);
  const double date = ToJulianDate(1970, 1, 2, 0, 0, 0);
  for (const double outside : {1.5, 2415020.0, 2488070.0, 1e300, kInf, kNaN}) {
    EXPECT_EQ(DateDifference(date, outside, 3), 24.0) << outside;
  }
}

}  // namespace
}  // namespace brindlewort
