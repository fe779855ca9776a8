#include "platform/local_time.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <thread>
#include <vector>

#include "support/time_zone.hpp"

namespace brindlewort::platform {
namespace {

using testing::kEasternSummerTimeZone;
using testing::kSummerTimeZone;
using testing::kUniversalZone;
using testing::ScopedTimeZone;

constexpr std::int64_t kHour = 3600;
constexpr std::int64_t kDay = 24 * kHour;

// Days from the start of 1970: thirty years of which 1972 to 1996 are seven leap years, to the start of 2000.
constexpr std::int64_t kStartOf2000 = (30 * 365 + 7) * kDay;
// 2021 starts after six leap years more (2000 to 2020).
constexpr std::int64_t kStartOf2021 = kStartOf2000 + (21 * 365 + 6) * kDay;
constexpr std::int64_t kMarch14 = kStartOf2021 + (31 + 28 + 13) * kDay;             // summer time starts
constexpr std::int64_t kNovember7 = kStartOf2021 + (365 - 31 - 30 + 7 - 1) * kDay;  // summer time ends

TEST(LocalTime, UniversalTimeIsCountedFromTheStartOf1970) {
  ScopedTimeZone zone(kUniversalZone);
  EXPECT_EQ(momentOfLocalTime({1970, 1, 1, 0, 0, 0}), 0);
  EXPECT_EQ(momentOfLocalTime({1970, 1, 2, 3, 4, 5}), kDay + 3 * kHour + 4 * 60 + 5);
  EXPECT_EQ(momentOfLocalTime({2000, 1, 1, 0, 0, 0}), kStartOf2000);
  EXPECT_EQ(localTimeOf(0), (CivilTime{1970, 1, 1, 0, 0, 0}));
  EXPECT_EQ(localTimeOf(kStartOf2000 + 59 * kDay), (CivilTime{2000, 2, 29, 0, 0, 0}));
}

TEST(LocalTime, AZoneIsItsOffsetAway) {
  ScopedTimeZone zone(kSummerTimeZone);
  EXPECT_EQ(momentOfLocalTime({2021, 1, 1, 12, 0, 0}), kStartOf2021 + 17 * kHour);
  EXPECT_EQ(momentOfLocalTime({2021, 7, 1, 12, 0, 0}),
            kStartOf2021 + (31 + 28 + 31 + 30 + 31 + 30) * kDay + 16 * kHour);
  EXPECT_EQ(localTimeOf(kStartOf2021), (CivilTime{2020, 12, 31, 19, 0, 0}));
}

TEST(LocalTime, ATimeThatTheClocksSkipIsReadAsIfTheyHadNotBeenSetForward) {
  ScopedTimeZone zone(kSummerTimeZone);
  const std::int64_t moment = momentOfLocalTime({2021, 3, 14, 2, 30, 0});
  EXPECT_EQ(moment, kMarch14 + 2 * kHour + 1800 + 5 * kHour);
  EXPECT_EQ(localTimeOf(moment), (CivilTime{2021, 3, 14, 3, 30, 0}));
  EXPECT_EQ(momentOfLocalTime({2021, 3, 14, 1, 59, 59}), kMarch14 + 2 * kHour - 1 + 5 * kHour);
  EXPECT_EQ(momentOfLocalTime({2021, 3, 14, 3, 0, 0}), kMarch14 + 2 * kHour + 5 * kHour);
}

TEST(LocalTime, OfATimeThatTheClocksShowTwiceTheFirstIsTaken) {
  ScopedTimeZone zone(kSummerTimeZone);
  const std::int64_t first = kNovember7 + kHour + 1800 + 4 * kHour;
  EXPECT_EQ(momentOfLocalTime({2021, 11, 7, 1, 30, 0}), first);
  EXPECT_EQ(localTimeOf(first), localTimeOf(first + kHour));
  EXPECT_EQ(momentOfLocalTime({2021, 11, 7, 2, 0, 0}), kNovember7 + 2 * kHour + 5 * kHour);
}

#ifndef _WIN32  // whose C library knows other rules of summer time from zone files only

TEST(LocalTime, EastOfUniversalTimeTheSameHolds) {
  ScopedTimeZone zone(kEasternSummerTimeZone);
  const std::int64_t march28 = kMarch14 + 14 * kDay, october31 = kNovember7 - 7 * kDay;
  EXPECT_EQ(momentOfLocalTime({2021, 3, 28, 1, 59, 59}), march28 + kHour - 1);
  EXPECT_EQ(momentOfLocalTime({2021, 3, 28, 2, 30, 0}), march28 + kHour + 1800);  // skipped
  EXPECT_EQ(momentOfLocalTime({2021, 3, 28, 3, 0, 0}), march28 + kHour);
  EXPECT_EQ(momentOfLocalTime({2021, 10, 31, 2, 30, 0}), october31 + 1800);  // shown twice
  EXPECT_EQ(momentOfLocalTime({2021, 10, 31, 3, 0, 0}), october31 + 2 * kHour);
}

#endif

TEST(LocalTime, TheAnswerDoesNotDependOnEarlierQuestions) {
  ScopedTimeZone zone(kSummerTimeZone);
  const CivilTime twice{2021, 11, 7, 1, 30, 0}, skipped{2021, 3, 14, 2, 30, 0};
  for (const CivilTime& earlier : {CivilTime{2021, 7, 1, 0, 0, 0}, CivilTime{2021, 12, 1, 0, 0, 0}}) {
    momentOfLocalTime(earlier);
    EXPECT_EQ(momentOfLocalTime(twice), kNovember7 + kHour + 1800 + 4 * kHour);
    momentOfLocalTime(earlier);
    EXPECT_EQ(momentOfLocalTime(skipped), kMarch14 + 2 * kHour + 1800 + 5 * kHour);
  }
}

TEST(LocalTime, EveryHourOfAYearComesBackFromItsMoment) {
  for (const char* name :
       {kUniversalZone, kSummerTimeZone, kEasternSummerTimeZone, "XST-13:45", "YST11:30"}) {
    ScopedTimeZone zone(name);
    for (std::int64_t moment = kStartOf2021; moment < kStartOf2021 + 365 * kDay; moment += kHour) {
      const std::int64_t again = momentOfLocalTime(localTimeOf(moment).value());
      // Only the hour that is shown twice gives an earlier moment.
      ASSERT_TRUE(again == moment || (again == moment - kHour && localTimeOf(again) == localTimeOf(moment)))
          << name << " " << moment;
    }
  }
}

TEST(LocalTime, FieldsBeyondTheirRangeCountOn) {
  ScopedTimeZone zone(kSummerTimeZone);
  EXPECT_EQ(momentOfLocalTime({2021, 2, 29, 0, 0, 0}), momentOfLocalTime({2021, 3, 1, 0, 0, 0}));
  EXPECT_EQ(momentOfLocalTime({2020, 13, 1, 0, 0, 0}), momentOfLocalTime({2021, 1, 1, 0, 0, 0}));
  EXPECT_EQ(momentOfLocalTime({2021, 0, 31, 0, 0, 0}), momentOfLocalTime({2020, 12, 31, 0, 0, 0}));
  EXPECT_EQ(momentOfLocalTime({2023, -23, 1, 0, 0, 0}), momentOfLocalTime({2021, 1, 1, 0, 0, 0}));
  EXPECT_EQ(momentOfLocalTime({2021, 1, 0, 0, 0, 0}), momentOfLocalTime({2020, 12, 31, 0, 0, 0}));
  EXPECT_EQ(momentOfLocalTime({2020, 12, 31, 24, -60, 3600}), momentOfLocalTime({2021, 1, 1, 0, 0, 0}));
}

TEST(LocalTime, ATimeBeyondAllCalendarsHasNoMoment) {
  ScopedTimeZone zone(kSummerTimeZone);
  constexpr std::int32_t kLow = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t kHigh = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(momentOfLocalTime({kLow, kLow, kLow, kLow, kLow, kLow}), -1);
  EXPECT_EQ(momentOfLocalTime({kHigh, kHigh, kHigh, kHigh, kHigh, kHigh}), -1);
  EXPECT_EQ(momentOfLocalTime({2021, kLow, 1, 0, 0, 0}), -1);
  for (const std::int32_t any : {kLow, kHigh}) {  // some moment, without overflow
    EXPECT_NE(momentOfLocalTime({2021, 1, any, any, any, any}), 0);
  }
}

#ifdef _WIN32

TEST(LocalTime, TheClocksOfWindowsGoFrom1970To3000) {
  ScopedTimeZone zone(kSummerTimeZone);
  EXPECT_EQ(localTimeOf(-1), std::nullopt);
  EXPECT_EQ(localTimeOf(0), (CivilTime{1969, 12, 31, 19, 0, 0}));
  EXPECT_EQ(momentOfLocalTime({1969, 12, 31, 19, 0, 0}), 0);
  EXPECT_EQ(momentOfLocalTime({1969, 12, 31, 18, 59, 59}), -1);
  EXPECT_EQ(momentOfLocalTime({1900, 1, 1, 0, 0, 0}), -1);
  EXPECT_EQ(momentOfLocalTime({3000, 12, 31, 0, 0, 0}),
            kStartOf2000 + (1001 * 365 + 243 - 1) * kDay + 5 * kHour);
  EXPECT_EQ(momentOfLocalTime({3001, 2, 1, 0, 0, 0}), -1);
}

#endif

TEST(LocalTime, AMomentThatNoYearHoldsHasNoLocalTime) {
  EXPECT_EQ(localTimeOf(std::numeric_limits<std::int64_t>::max()), std::nullopt);
  EXPECT_EQ(localTimeOf(std::numeric_limits<std::int64_t>::min()), std::nullopt);
}

TEST(LocalTime, ThreadsDoNotDisturbEachOther) {
  ScopedTimeZone zone(kSummerTimeZone);
  const auto work = [](std::int64_t start, int* wrong) {
    for (std::int64_t moment = start; moment < start + 2000 * kDay; moment += kDay) {
      if (momentOfLocalTime(localTimeOf(moment).value()) != moment) ++*wrong;
    }
  };
  int wrong[2] = {0, 0};
  std::thread other(work, kStartOf2000 + kHour * 12, &wrong[0]);
  work(kStartOf2000 + 3000 * kDay + kHour * 12, &wrong[1]);
  other.join();
  EXPECT_EQ(wrong[0] + wrong[1], 0);
}

}  // namespace
}  // namespace brindlewort::platform
