#include "platform/locale_text.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

#include "support/date_texts.hpp"

namespace brindlewort::platform {
namespace {

std::string shortDate(const CivilTime& date) {
  char text[kDateTimeTextRoom];
  return {text, writeShortDate(text, date)};
}

std::string timeOfDay(const CivilTime& time) {
  char text[kDateTimeTextRoom];
  return {text, writeTimeOfDay(text, time)};
}

CivilTime day(std::int32_t year, std::int32_t month, std::int32_t dayOfMonth) {
  return {year, month, dayOfMonth, 0, 0, 0};
}

CivilTime clock(std::int32_t hour, std::int32_t minute, std::int32_t second) {
  return {2000, 1, 1, hour, minute, second};
}

constexpr std::int32_t kLow = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHigh = std::numeric_limits<std::int32_t>::max();

#ifndef _WIN32

TEST(LocaleText, FixedDateFormat) {
  EXPECT_EQ(shortDate(day(1980, 1, 1)), "1980-01-01");
  EXPECT_EQ(shortDate(day(2004, 12, 31)), "2004-12-31");
}

TEST(LocaleText, FixedTimeFormat) {
  EXPECT_EQ(timeOfDay(clock(0, 0, 0)), "00:00:00");
  EXPECT_EQ(timeOfDay(clock(9, 5, 7)), "09:05:07");
  EXPECT_EQ(timeOfDay(clock(23, 59, 59)), "23:59:59");
}

TEST(LocaleText, YearsFrom1601To30827) {
  EXPECT_EQ(shortDate(day(1600, 12, 31)), "");
  EXPECT_EQ(shortDate(day(1601, 1, 1)), "1601-01-01");
  EXPECT_EQ(shortDate(day(9999, 12, 31)), "9999-12-31");
  EXPECT_EQ(shortDate(day(10000, 1, 1)), "10000-01-01");
  EXPECT_EQ(shortDate(day(30827, 12, 31)), "30827-12-31");
  EXPECT_EQ(shortDate(day(30828, 1, 1)), "");
}

#else

TEST(LocaleText, IsWhatTheUserHasChosen) {
  for (const CivilTime& time : {CivilTime{1980, 1, 1, 0, 0, 0}, CivilTime{2004, 12, 31, 23, 59, 59},
                                CivilTime{2004, 2, 29, 9, 5, 7}, CivilTime{30827, 12, 31, 12, 0, 0}}) {
    char iso[40];
    std::snprintf(iso, sizeof iso, "%04d-%02d-%02d %02d:%02d:%02d", time.year, time.month, time.day,
                  time.hour, time.minute, time.second);
    EXPECT_EQ(shortDate(time) + " " + timeOfDay(time), testing::localDates(iso));
  }
}

TEST(LocaleText, OfTheUnitedStates) {
  if (testing::localDates("2004-08-09 15:06:07") != "8/9/2004 3:06:07 PM") {
    GTEST_SKIP() << "the user has chosen other formats";
  }
  EXPECT_EQ(shortDate(day(1980, 1, 1)), "1/1/1980");
  EXPECT_EQ(timeOfDay(clock(0, 0, 0)), "12:00:00 AM");
  EXPECT_EQ(shortDate(day(2004, 12, 31)), "12/31/2004");
  EXPECT_EQ(timeOfDay(clock(23, 59, 59)), "11:59:59 PM");
}

TEST(LocaleText, ATimeNeedsNoDate) {
  EXPECT_EQ(timeOfDay({0, 0, 0, 9, 5, 7}), timeOfDay(clock(9, 5, 7)));
  EXPECT_EQ(shortDate({2004, 8, 19, -1, 99, 1 << 20}), shortDate(day(2004, 8, 19)));
}

#endif

TEST(LocaleText, RefusesYearsOutOfRange) {
  for (const std::int32_t year : {kLow, -1980, -1, 0, 1, 1600, 30828, 65536 + 1980, kHigh}) {
    EXPECT_EQ(shortDate(day(year, 1, 1)), "") << year;
  }
}

TEST(LocaleText, RefusesMonthsOutside1To12) {
  for (const std::int32_t month : {kLow, -1, 0, 13, 65536 + 1, kHigh}) {
    EXPECT_EQ(shortDate(day(1980, month, 1)), "") << month;
  }
}

TEST(LocaleText, RefusesDaysThatTheGregorianCalendarLacks) {
  for (const std::int32_t dayOfMonth : {kLow, -1, 0, 32, 65536 + 1, kHigh}) {
    EXPECT_EQ(shortDate(day(1980, 1, dayOfMonth)), "") << dayOfMonth;
  }
  EXPECT_EQ(shortDate(day(1980, 4, 31)), "");
  EXPECT_NE(shortDate(day(1980, 4, 30)), "");
  EXPECT_EQ(shortDate(day(1981, 2, 29)), "");
  EXPECT_NE(shortDate(day(1980, 2, 29)), "");
  EXPECT_EQ(shortDate(day(1980, 2, 30)), "");
  EXPECT_EQ(shortDate(day(1900, 2, 29)), "");
  EXPECT_NE(shortDate(day(2000, 2, 29)), "");
}

TEST(LocaleText, RefusesWhatIsNoTimeOfDay) {
  for (const std::int32_t wrong : {kLow, -1, 60, kHigh}) {
    EXPECT_EQ(timeOfDay(clock(wrong, 0, 0)), "") << wrong;
    EXPECT_EQ(timeOfDay(clock(0, wrong, 0)), "") << wrong;
    EXPECT_EQ(timeOfDay(clock(0, 0, wrong)), "") << wrong;
  }
  EXPECT_EQ(timeOfDay(clock(24, 0, 0)), "");
}

}  // namespace
}  // namespace brindlewort::platform
