#include "bar_date.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <string>

namespace brindlewort::tool {
namespace {

constexpr double kEpoch = 2440587.5;           // 1970-01-01, midnight
constexpr double kAugust19th2004 = 2453236.5;  // 12,649 days later
constexpr double kHalfPastNine = (9 + 30 / 60.0) / 24;

void expectDate(std::string_view field, double date) {
  const std::optional<double> parsed = parseBarDate(field);
  ASSERT_TRUE(parsed.has_value()) << field;
  EXPECT_NEAR(*parsed, date, 1e-9) << field;
}

TEST(BarDate, DaysArePlainIsoDates) {
  EXPECT_EQ(parseBarDate("1980-01-01"), 2444239.5);
  EXPECT_EQ(parseBarDate("1980-01-02"), 2444240.5);
  EXPECT_EQ(parseBarDate("2004-08-19"), kAugust19th2004);
}

TEST(BarDate, EveryDayOf1801To2099CountsOn) {
  namespace chrono = std::chrono;
  const chrono::sys_days epoch{};
  for (chrono::sys_days day{chrono::year{1801} / 1 / 1}; day < chrono::sys_days{chrono::year{2100} / 1 / 1};
       day += chrono::days{1}) {
    const chrono::year_month_day date{day};
    char text[16];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    ASSERT_EQ(parseBarDate(text), kEpoch + static_cast<double>((day - epoch).count())) << text;
  }
}

TEST(BarDate, TheTimeOfDayFollowsABlankOrAT) {
  expectDate("2004-08-19 09:30", kAugust19th2004 + kHalfPastNine);
  expectDate("2004-08-19T09:30", kAugust19th2004 + kHalfPastNine);
  expectDate("2004-08-19 09:30:00", kAugust19th2004 + kHalfPastNine);
  expectDate("2004-08-19T23:59:59", kAugust19th2004 + 86399 / 86400.0);
  EXPECT_EQ(parseBarDate("2004-08-19 06:00:00"), kAugust19th2004 + 0.25);
  EXPECT_EQ(parseBarDate("2004-08-19 00:00"), kAugust19th2004);
}

TEST(BarDate, AFractionOfTheSecondsAndAZAreCut) {
  for (const char* field : {"2004-08-19 06:00:00.999", "2004-08-19T06:00:00.5Z", "2004-08-19T06:00:00Z",
                            "2004-08-19T06:00Z", "2004-08-19 06:00:00.000000"}) {
    EXPECT_EQ(parseBarDate(field), kAugust19th2004 + 0.25) << field;
  }
  EXPECT_EQ(parseBarDate("2004-08-19Z"), kAugust19th2004);
}

TEST(BarDate, EightDigitsAreADateWithoutDashes) {
  EXPECT_EQ(parseBarDate("20040819"), kAugust19th2004);
  EXPECT_EQ(parseBarDate("20040819 06:00"), kAugust19th2004 + 0.25);
  // No calendar date, so seconds: 20040832 / 86400 = 231 days and 82,432 seconds.
  expectDate("20040832", kEpoch + 231 + 82432 / 86400.0);
}

TEST(BarDate, SecondsCountFrom1970) {
  EXPECT_EQ(parseBarDate("0"), kEpoch);
  EXPECT_EQ(parseBarDate("1092873600"), kAugust19th2004);  // 12,649 * 86,400
  expectDate("1092907800", kAugust19th2004 + kHalfPastNine);
  EXPECT_EQ(parseBarDate("-86400"), kEpoch - 1);
  expectDate("-1", kEpoch - 1 / 86400.0);
  expectDate("1092873600.9", kAugust19th2004);
  EXPECT_EQ(parseBarDate("1.0928736e9"), kAugust19th2004);
}

TEST(BarDate, LargerNumbersAreMilliseconds) {
  EXPECT_EQ(parseBarDate("1092873600000"), kAugust19th2004);
  expectDate("1092907800123", kAugust19th2004 + kHalfPastNine);
  EXPECT_EQ(parseBarDate("10000000000"), kEpoch + 115 + 64000 / 86400.0);  // 10,000,000 seconds
  EXPECT_EQ(parseBarDate("-5333126400000"), 2378861.5);                    // the first of 1801
}

TEST(BarDate, JulianDaysAreTakenAsTheyAre) {
  EXPECT_EQ(parseBarDate("2453236.5"), kAugust19th2004);
  EXPECT_EQ(parseBarDate("2453236.8958333335"), 2453236.8958333335);
  EXPECT_EQ(parseBarDate("2378861.5"), 2378861.5);
  EXPECT_EQ(parseBarDate("2488069.25"), 2488069.25);
}

TEST(BarDate, NumbersBesideTheJulianDaysAreSeconds) {
  expectDate("2378861", kEpoch + 2378861 / 86400.0);
  expectDate("2488069.5", kEpoch + 2488069 / 86400.0);
}

TEST(BarDate, WhatIsNoDateIsRefused) {
  for (const char* field : {"",
                            " ",
                            "x",

                            "2004-08",
                            "2004-8-19",
                            "2004-08-9",
                            "2004-0819",
                            "200408-19",
                            "2004/08/19",
                            "19.08.2004",
                            "2004-08-32",
                            "2004-02-30",
                            "2003-02-29",
                            "1900-02-29",
                            "2004-13-01",
                            "2004-00-01",
                            "2004-01-00",
                            "2004-08-19 ",
                            "2004-08-19 9:30",
                            "2004-08-19 24:00",
                            "2004-08-19 09:60",
                            "2004-08-19 09:30:60",
                            "2004-08-19 09:30:00.",
                            "2004-08-19 09:30:",
                            "2004-08-19  09:30",
                            "2004-08-19t09:30",
                            "2004-08-19 09:30+02:00",
                            "2004-08-19ZZ",
                            "2004-08-19 09:30:00.5x",
                            "2004-08-19x",
                            "1e",
                            "1 2",
                            "nan",
                            "inf",
                            "-inf",
                            "1e308",
                            "-1e308",
                            "0x10",
                            "+5"}) {
    EXPECT_FALSE(parseBarDate(field).has_value()) << field;
  }
}

TEST(BarDate, YearsOutside1801To2099AreRefused) {
  EXPECT_TRUE(parseBarDate("1801-01-01").has_value());
  EXPECT_TRUE(parseBarDate("2099-12-31 23:59:59").has_value());
  for (const char* field : {"1800-12-31", "2100-01-01", "0000-01-01", "9999-12-31", "4102444800",
                            "4102444800000", "-5333126400001", "9999999999", "99999999999999"}) {
    EXPECT_FALSE(parseBarDate(field).has_value()) << field;
  }
  EXPECT_TRUE(parseBarDate("4102444799").has_value());
}

}  // namespace
}  // namespace brindlewort::tool
