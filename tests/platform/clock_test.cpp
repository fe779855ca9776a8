#include "platform/clock.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <thread>

namespace brindlewort::platform {
namespace {

TEST(Clock, TicksAreMilliseconds) {
  const std::uint32_t start = tickMilliseconds();
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  const std::uint32_t elapsed = tickMilliseconds() - start;
  EXPECT_GE(elapsed, 40u);  // the counter moves in steps
  EXPECT_LT(elapsed, 30'000u);
}

TEST(Clock, TicksNeverGoBack) {
  const std::uint32_t start = tickMilliseconds();
  std::uint32_t last = 0;
  for (int i = 0; i < 100'000; ++i) {
    const std::uint32_t elapsed = tickMilliseconds() - start;
    ASSERT_GE(elapsed, last);
    last = elapsed;
  }
}

TEST(Clock, SecondsCountFrom1970) {
  const std::int64_t before = std::time(nullptr);
  const std::int64_t now = secondsSince1970();
  EXPECT_GE(now, before - 1);
  EXPECT_LE(now, std::time(nullptr) + 1);
}

}  // namespace
}  // namespace brindlewort::platform
