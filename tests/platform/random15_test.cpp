#include "platform/random15.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace brindlewort::platform {
namespace {

/// The recurrence in wide integers: state = state * 214013 + 2531011 modulo 2^32, bits 16 to 30 of it.
class SlowRandom {
 public:
  explicit SlowRandom(std::uint64_t seed) : state_(seed % 4294967296ull) {}
  std::int32_t next() {
    state_ = (state_ * 214013 + 2531011) % 4294967296ull;
    return static_cast<std::int32_t>(state_ / 65536 % 32768);
  }

 private:
  std::uint64_t state_;
};

TEST(Random15, FirstDrawsWorkedByHand) {
  // Seed 0: state 2531011 = 38 * 65536 + 40643.
  EXPECT_EQ(Random15(0).next(), 38);
  // Seed 1: state 214013 + 2531011 = 2745024 = 41 * 65536 + 58048.
  EXPECT_EQ(Random15(1).next(), 41);
}

TEST(Random15, FollowsTheRecurrence) {
  for (const std::int64_t seed : {0ll, 1ll, 42ll, 1'700'000'000ll, 4294967295ll}) {
    Random15 random(seed);
    SlowRandom slow(static_cast<std::uint64_t>(seed));
    for (int i = 0; i < 20'000; ++i) ASSERT_EQ(random.next(), slow.next()) << seed << " draw " << i;
  }
}

TEST(Random15, DrawsFillTheRangeOfFifteenBits) {
  Random15 random(7);
  std::int32_t lowest = Random15::kMax, highest = 0;
  for (int i = 0; i < 1'000'000; ++i) {
    const std::int32_t draw = random.next();
    lowest = std::min(lowest, draw);
    highest = std::max(highest, draw);
  }
  EXPECT_EQ(lowest, 0);
  EXPECT_EQ(highest, 32767);
}

TEST(Random15, OnlyTheLow32BitsOfASeedCount) {
  EXPECT_EQ(Random15(-1).next(), Random15(4294967295ll).next());
  EXPECT_EQ(Random15(5).next(), Random15(5 + 4294967296ll).next());
}

}  // namespace
}  // namespace brindlewort::platform
