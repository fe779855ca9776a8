#include "indicators/extremes.hpp"

#include "support/series_checks.hpp"

namespace brindlewort::testing {
namespace {

/// The scan that a rolling extreme stands for.
template <class Beats>
double scan(const Rows& in, Count p, Count i, double best) {
  for (Count j = i - p + 1; j <= i; ++j) {
    if (Beats{}(in[j], best)) best = in[j];
  }
  return best;
}

/// Series with many equal rows, both zeros, non-numbers and infinities.
Rows mixedSeries(int rows, std::uint64_t seed) {
  constexpr double kChoices[] = {1, 2, 3, 0.0, -0.0, -1, 2, kNaN, kInf, -kInf, kNull, 2.5};
  Random random(seed);
  Rows out;
  for (int i = 0; i < rows; ++i) out.push_back(kChoices[random.below(12)]);
  return out;
}

TEST(RollingExtreme, IsThePlainScanOfEachWindow) {
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    const Rows in = mixedSeries(60, seed);
    for (Count p : {1, 2, 3, 7, 60}) {
      RollingHigh<> high(in, p, p - 1);
      RollingLow<> low(in, p, p - 1);
      for (Count i = p - 1; i < 60; ++i) {
        high.slideTo(i);
        low.slideTo(i);
        ASSERT_TRUE(sameBits(scan<std::greater<>>(in, p, i, in[i - p + 1]), high.fromOldest()));
        ASSERT_TRUE(sameBits(scan<std::less<>>(in, p, i, in[i - p + 1]), low.fromOldest()));
        for (double seedValue : {0.0, -0.0, 2.0, kNaN, kInf, in[i]}) {
          ASSERT_TRUE(sameBits(scan<std::greater<>>(in, p, i, seedValue), high.from(seedValue)));
          ASSERT_TRUE(sameBits(scan<std::less<>>(in, p, i, seedValue), low.from(seedValue)));
        }
      }
    }
  }
}

TEST(RollingExtreme, IsThePlainScanWhereWindowsAreFormedAgainAndAgain) {
  const int rows = 1500;  // several times as many as are formed together
  const Rows in = mixedSeries(rows, 77);
  for (Count p : {1, 2, 5, 8, 14, 64, 255, 256, 257, 700}) {
    RollingHigh<nz> high(in, p, p - 1);
    RollingLow<> low(in, p, p - 1);
    for (Count i = p - 1; i < rows; ++i) {
      high.slideTo(i);
      low.slideTo(i);
      double highest = 0.0;
      for (Count j = i - p + 1; j <= i; ++j) highest = nz(in[j]) > highest ? nz(in[j]) : highest;
      ASSERT_TRUE(sameBits(highest, high.from(0.0))) << p << " row " << i;
      ASSERT_TRUE(sameBits(scan<std::less<>>(in, p, i, in[i - p + 1]), low.fromOldest()))
          << p << " row " << i;
    }
  }
}

TEST(RollingExtreme, StartsAtAnyRowAndMaySkipRows) {
  const Rows in = mixedSeries(60, 5);
  RollingHigh<> high(in, 4, 30);
  for (Count i : {30, 33, 34, 50, 59}) {
    high.slideTo(i);
    EXPECT_TRUE(sameBits(scan<std::greater<>>(in, 4, i, in[i - 3]), high.fromOldest())) << i;
  }
}

TEST(RollingExtreme, ReadsThroughItsReader) {
  const Rows in = {kNull, 3, kNull};
  RollingLow<nz> low(in, 2, 1);
  low.slideTo(1);
  EXPECT_EQ(low.fromOldest(), 0.0);
  low.slideTo(2);
  EXPECT_EQ(low.fromOldest(), 0.0);
}

}  // namespace
}  // namespace brindlewort::testing
