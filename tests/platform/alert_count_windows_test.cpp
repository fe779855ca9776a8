#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <thread>
#include <vector>

#include "platform/alert_count.hpp"
#include "support/windows/child_program.hpp"
#include "support/windows/image_sections.hpp"

namespace brindlewort::platform {
namespace {

using testing::ChildProgram;
using testing::imageSection;

constexpr std::int32_t kMany = 1000;

TEST(AlertCountOfWindows, IsOneNumberThatProcessesShare) {
  const testing::ImageSection alerts = imageSection(nullptr, "Alerts");
  ASSERT_TRUE(alerts.found);
  EXPECT_EQ(alerts.bytes, sizeof(std::int32_t));
  EXPECT_TRUE(alerts.isWritable);
  EXPECT_TRUE(alerts.isShared);
  EXPECT_FALSE(imageSection(nullptr, ".data").isShared);
}

TEST(AlertCountOfWindows, TheLimitIsJudgedBeforeEntering) {
  AlertCount count("");
  const std::int32_t before = count.live(kMany);
  EXPECT_FALSE(count.enter(before + 2));
  EXPECT_FALSE(count.enter(before + 2));
  EXPECT_TRUE(count.enter(before + 2));  // and counts all the same
  EXPECT_TRUE(count.enter(before + 3));
  EXPECT_EQ(count.live(kMany), before + 4);
  EXPECT_EQ(count.live(before + 3), before + 3);
  for (int i = 0; i < 4; ++i) count.leave();
  EXPECT_EQ(count.live(kMany), before);
}

TEST(AlertCountOfWindows, CountsWithoutANameAreOneCount) {
  AlertCount one(""), other("");
  const std::int32_t before = one.live(kMany);
  const AlertSeat first(one, kMany), second(other, kMany), third(AlertCount::ofThisMachine(), kMany);
  EXPECT_EQ(one.live(kMany), before + 3);
  EXPECT_EQ(other.live(kMany), before + 3);
  EXPECT_EQ(AlertCount::ofThisMachine().live(kMany), before + 3);
  AlertCount named("/a/name");
  EXPECT_EQ(named.live(kMany), 0);
}

TEST(AlertCountOfWindows, ManyThreadsShareTheCount) {
  AlertCount count("");
  const std::int32_t before = count.live(kMany);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 1000; ++i) count.enter(std::numeric_limits<std::int32_t>::max());
      for (int i = 0; i < 950; ++i) count.leave();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(count.live(kMany), before + 200);
  for (int i = 0; i < 200; ++i) count.leave();
}

/// The other process of the two tests below.
TEST(DISABLED_AlertCountOfWindows, HoldsThreeSeats) {
  AlertCount& count = AlertCount::ofThisMachine();
  EXPECT_EQ(count.live(kMany), 2);
  const AlertSeat first(count, kMany), second(count, kMany), third(count, kMany);
  ChildProgram::waitForTheEnd();
  EXPECT_EQ(count.live(kMany), 6);
}

TEST(AlertCountOfWindows, TwoProcessesShareTheCount) {
  AlertCount& count = AlertCount::ofThisMachine();
  ASSERT_EQ(count.live(kMany), 0);
  const AlertSeat first(count, kMany), second(count, kMany);
  ChildProgram child("DISABLED_AlertCountOfWindows.HoldsThreeSeats");
  ASSERT_TRUE(child.isReady());
  EXPECT_EQ(count.live(kMany), 5);
  {
    const AlertSeat beyond(count, 5);
    EXPECT_TRUE(beyond.beyondLimit());
    EXPECT_TRUE(child.end());
  }
  EXPECT_EQ(count.live(kMany), 2);
}

TEST(AlertCountOfWindows, WhatAKilledProcessCountedStaysWhileTheLibraryIsLoaded) {
  AlertCount& count = AlertCount::ofThisMachine();
  ASSERT_EQ(count.live(kMany), 0);
  const AlertSeat first(count, kMany), second(count, kMany);
  ChildProgram child("DISABLED_AlertCountOfWindows.HoldsThreeSeats");
  ASSERT_TRUE(child.isReady());
  child.killNow();
  EXPECT_EQ(count.live(kMany), 5);
  for (int i = 0; i < 3; ++i) count.leave();
}

}  // namespace
}  // namespace brindlewort::platform
