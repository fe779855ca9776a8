#include "platform/clock.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>

namespace brindlewort::platform {
namespace {

// The clock alone is held against the system's; what depends on it gets its time from the test.

TEST(Clock, TicksAreMilliseconds) {
  using Clock = std::chrono::steady_clock;
  const auto milliseconds = [](Clock::duration time) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
  };
  constexpr std::int64_t kStep = 20;  // in which the counter may move
  const Clock::time_point outerStart = Clock::now();
  const std::uint32_t start = tickMilliseconds();
  const Clock::time_point innerStart = Clock::now();
  std::uint32_t elapsed = 0;
  Clock::time_point innerEnd;
  do {
    innerEnd = Clock::now();
    elapsed = tickMilliseconds() - start;
  } while (elapsed < 3 * kStep);
  // However long this took, the two agree.
  EXPECT_GE(elapsed + kStep, milliseconds(innerEnd - innerStart));
  EXPECT_LE(elapsed, milliseconds(Clock::now() - outerStart) + kStep);
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
