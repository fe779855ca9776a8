#include "services/backtest/performance_stats.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <new>
#include <vector>

#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using namespace brindlewort::testing;
namespace stats = PerformanceStats;

// ---- Growth.

TEST(PerformanceStats, VamiIsTheProductTimesAThousand) {
  EXPECT_EQ(stats::VAMI(Rows{}), 1000.0);
  EXPECT_EQ(stats::VAMI(Rows{0.5}), 1500.0);
  EXPECT_EQ(stats::VAMI(Rows{0.5, -0.5, 1.0}), 1500.0);  // 1000 x 1.5 x 0.5 x 2
}

TEST(PerformanceStats, CompoundRateIsTheRootOfTheGrowth) {
  EXPECT_EQ(stats::CompoundRate(Rows{}), 0.0);
  EXPECT_EQ(stats::CompoundRate(Rows{0.5}), 0.5);
  EXPECT_EQ(stats::CompoundRate(Rows{1.25, 0.0}), 0.5);               // 2.25 to the power 1/2, less 1
  EXPECT_DOUBLE_EQ(stats::CompoundRate(Rows{2.375, 0.0, 0.0}), 0.5);  // 3.375 = 1.5 x 1.5 x 1.5
}

TEST(PerformanceStats, TotalCompoundIsTheGrowthAgain) {
  EXPECT_EQ(stats::TotalCompound(Rows{}), 0.0);
  EXPECT_EQ(stats::TotalCompound(Rows{1.25, 0.0}), 1.25);
  EXPECT_EQ(stats::TotalCompound(Rows{-0.5}), -0.5);  // may be negative
}

TEST(PerformanceStats, ANegativeProductHasNoRoot) {
  const Rows values = {-1.5, 0.0};  // product -0.5
  EXPECT_EQ(stats::VAMI(values), -500.0);
  EXPECT_TRUE(std::isnan(stats::CompoundRate(values)));
  EXPECT_TRUE(std::isnan(stats::TotalCompound(values)));
  EXPECT_TRUE(std::isnan(stats::CalmarRatio(values)));
}

// ---- Deviations.

TEST(PerformanceStats, StandardDeviationDividesByTheCount) {
  EXPECT_EQ(stats::StandardDeviation(Rows{}), 0.0);
  EXPECT_EQ(stats::StandardDeviation(Rows{7.0}), 0.0);
  EXPECT_EQ(stats::StandardDeviation(Rows{1.0, 3.0}), 1.0);  // mean 2, (1 + 1) / 2
  // mean 40 / 8 = 5, squares 9 + 1 + 1 + 1 + 0 + 0 + 4 + 16 = 32, 32 / 8 = 4
  EXPECT_EQ(stats::StandardDeviation(Rows{2, 4, 4, 4, 5, 5, 7, 9}), 2.0);
}

TEST(PerformanceStats, AnnualizedMeansTimesTheRootOfTheCount) {
  EXPECT_EQ(stats::AnnualizedStandardDeviation(Rows{}), 0.0);
  EXPECT_EQ(stats::AnnualizedStandardDeviation(Rows{1, 3, 1, 3}), 2.0);  // deviation 1, root of 4
}

TEST(PerformanceStats, DownsideDeviationCountsAllValues) {
  EXPECT_EQ(stats::DownsideDeviation(Rows{}, 1.0), 0.0);
  EXPECT_EQ(stats::DownsideDeviation(Rows{-3, 5, 5, 5}, 1.0), 2.0);  // (-3 - 1)^2 / 4 = 4
  EXPECT_EQ(stats::DownsideDeviation(Rows{1, 2}, 1.0), 0.0);         // at the bar is not below it
}

// ---- Ratios.

TEST(PerformanceStats, SharpeRatioIsTheExcessByTheDeviation) {
  EXPECT_EQ(stats::SharpeRatio(Rows{}, 0.5), 0.0);
  EXPECT_EQ(stats::SharpeRatio(Rows{7.0}, 0.5), 0.0);
  EXPECT_EQ(stats::SharpeRatio(Rows{7.0, 7.0}, 0.5), 0.0);              // no deviation
  EXPECT_EQ(stats::SharpeRatio(Rows{1.0, 3.0}, 0.5), 1.5);              // (2 - 0.5) / 1
  EXPECT_EQ(stats::AnnualizedSharpeRatio(Rows{1, 3, 1, 3}, 0.5), 3.0);  // times the root of 4
}

TEST(PerformanceStats, SortinoAndSterlingRatiosAreTheExcessByTheDownside) {
  // Growth 2.25, so 1.25; downside of 0.25: (0 - 0.25)^2 / 2 = 0.03125, root 0.25 / root of 2.
  const Rows values = {1.25, 0.0};
  const double expected = (1.25 - 0.25) / (0.25 / std::sqrt(2.0));
  EXPECT_DOUBLE_EQ(stats::SortinoRatio(values, 0.25), expected);
  EXPECT_DOUBLE_EQ(stats::SterlingRatio(values, 0.25), expected);
  EXPECT_DOUBLE_EQ(stats::AnnualizedSortinoRatio(values, 0.25), 8.0);  // times the root of 2: 2 / 0.25
}

TEST(PerformanceStats, WithoutADownsideTheRatiosAreZero) {
  for (const Rows& values : {Rows{}, Rows{0.5, 1.0}}) {
    EXPECT_EQ(stats::SortinoRatio(values, 0.25), 0.0);
    EXPECT_EQ(stats::AnnualizedSortinoRatio(values, 0.25), 0.0);
    EXPECT_EQ(stats::SterlingRatio(values, 0.25), 0.0);
  }
}

TEST(PerformanceStats, OneValueIsItsOwnYear) {
  const Rows values = {-0.25};  // (-0.25 - 0.25) / 0.5
  EXPECT_EQ(stats::SortinoRatio(values, 0.25), -1.0);
  EXPECT_EQ(stats::AnnualizedSortinoRatio(values, 0.25), stats::SortinoRatio(values, 0.25));
}

TEST(PerformanceStats, SortinoIsZeroBeyondItsLimitAndSterlingIsNot) {
  // The downside is one bit of 0.25, 2^-55, by the root of 2; the excess 2 x 1.25 - 1 - 0.25 = 1.25.
  const Rows values = {1.0, std::nextafter(0.25, 0.0)};
  EXPECT_EQ(stats::SortinoRatio(values, 0.25), 0.0);
  EXPECT_DOUBLE_EQ(stats::SterlingRatio(values, 0.25), 1.25 * std::ldexp(1.0, 55) * std::sqrt(2.0));
  // The same below zero: growth 0, so (-1 - 0.25) by the same.
  const Rows losing = {-1.0, 0.25};
  EXPECT_DOUBLE_EQ(stats::SterlingRatio(losing, 0.25), -1.25 / (1.25 / std::sqrt(2.0)));
}

TEST(PerformanceStats, CalmarRatioIsTheGrowthByTheDrawdown) {
  EXPECT_EQ(stats::CalmarRatio(Rows{}), 0.0);
  EXPECT_EQ(stats::CalmarRatio(Rows{0.5, 0.5}), 0.0);            // no drawdown
  EXPECT_EQ(stats::CalmarRatio(Rows{-0.5, 3.5}), 2.5);           // growth 0.5 x 4.5 = 2.25, 1.25 / 0.5
  EXPECT_EQ(stats::CalmarRatio(Rows{-1e-17, 1.0}), 0.0);         // 1 / 1e-17 is beyond the limit
  EXPECT_EQ(stats::CalmarRatio(Rows{-1e-17, 1.0, -0.75}), 0.0);  // -0.5 / 1e-17 is beyond it, too
  EXPECT_NEAR(stats::CalmarRatio(Rows{-1e-15, 0.5, 0.0}), 5e14, 100.0);  // 5e14 is not
}

// ---- Drawdowns.

TEST(PerformanceStats, MaximumDrawdownIsTheLowestRunningSum) {
  EXPECT_EQ(stats::MaximumDrawdown(Rows{}), 0.0);
  EXPECT_EQ(stats::MaximumDrawdown(Rows{3, 2}), 0.0);
  EXPECT_EQ(stats::MaximumDrawdown(Rows{3, -5, -1, 10, -2}), -3.0);  // 3, -2, -3, 7, 5
  EXPECT_EQ(stats::MaximumDrawdown(Rows{10, -4}), 0.0);              // a loss of profits is none
}

double monteCarlo(const Rows& values, std::int64_t seed) {
  platform::Random15 random(seed);
  return stats::MonteCarloDrawdown(values, random);
}

TEST(PerformanceStats, MonteCarloOfAShuffleWorkedByHand) {
  // The draws of seed 1 begin 41, 18467, 6334, 26500, 19169, two for each shuffle of three values. The first
  // of a shuffle is divided by 32767 / 2 = 16383: 0 leaves the first value, 1 exchanges it with the second.
  // The shuffles give 0 (41), 0 (6334), 1 (19169): the third one begins with the loss.
  EXPECT_EQ(monteCarlo({3, -2, 10}, 1), -2.0);
  EXPECT_EQ(stats::MaximumDrawdown(Rows{3, -2, 10}), 0.0);
}

TEST(PerformanceStats, MonteCarloOfFewOrEqualValues) {
  EXPECT_EQ(monteCarlo({}, 1), 0.0);
  EXPECT_EQ(monteCarlo({-4}, 1), -4.0);
  EXPECT_EQ(monteCarlo({4}, 1), 0.0);
  EXPECT_EQ(monteCarlo({-1, -1, -1}, 1), -3.0);
  EXPECT_EQ(monteCarlo({1, 1, 1}, 1), 0.0);
}

/// The shuffles one by one, without any short cut.
double plainMonteCarlo(const Rows& values, std::int64_t seed) {
  platform::Random15 random(seed);
  const int n = static_cast<int>(values.size());
  double worst = 0.0;
  for (int run = 0; run < 100; ++run) {
    Rows work = values;
    int j = 0;
    for (int i = 0; i <= n - 2; ++i) {
      const int r = n - i - 1;
      if (32767 / r > 0) j = random.next() / (32767 / r) + i;
      if (i < j && j < n) std::swap(work[static_cast<std::size_t>(i)], work[static_cast<std::size_t>(j)]);
    }
    double sum = 0.0;
    double lowest = 0.0;
    for (const double x : work) {
      sum += x;
      if (sum < lowest) lowest = sum;
    }
    if (lowest < worst) worst = lowest;
  }
  return worst;
}

/// A shuffle of n rows draws n - 1 numbers, and there are a hundred shuffles.
TEST(PerformanceStats, MonteCarloShufflesAHundredTimes) {
  const Rows values = {3, -1, -4, 1, -5};
  platform::Random15 random(7), counted(7);
  stats::MonteCarloDrawdown(values, random);
  for (int i = 0; i < 100 * 4; ++i) counted.next();
  for (int i = 0; i < 8; ++i) EXPECT_EQ(random.next(), counted.next());
}

TEST(PerformanceStats, MonteCarloGivesTheBitsOfThePlainShuffles) {
  Random random(6);
  for (int n : {2, 3, 10, 181, 1'000, 16'384, 32'767, 32'768, 32'769, 33'000, 70'000}) {
    Rows values;
    for (int i = 0; i < n; ++i) values.push_back(random.unit() - 0.5);
    for (std::int64_t seed : {1, 1'234'567'890}) {
      EXPECT_TRUE(sameBits(monteCarlo(values, seed), plainMonteCarlo(values, seed))) << n;
    }
  }
}

// ---- Months.

TEST(PerformanceStats, BinsAreThirtyDaysFromTheFirstDate) {
  std::int32_t perMonth = -1;
  // 65 / 30 = 2.1: three bins. Four trades by three: 1.
  EXPECT_EQ(stats::BinByMonth(Rows{1, 2, 4, 8}, Rows{100, 129.5, 130, 165}, perMonth), (Rows{3, 4, 8}));
  EXPECT_EQ(perMonth, 1);
}

TEST(PerformanceStats, AMonthWithoutATradeIsZero) {
  std::int32_t perMonth = -1;
  EXPECT_EQ(stats::BinByMonth(Rows{1, 2}, Rows{100, 199}, perMonth), (Rows{1, 0, 0, 2}));
  EXPECT_EQ(perMonth, 0);  // 2 / 4
}

TEST(PerformanceStats, OneTradeIsOneBin) {
  std::int32_t perMonth = -1;
  EXPECT_EQ(stats::BinByMonth(Rows{5}, Rows{100}, perMonth), (Rows{5}));
  EXPECT_EQ(perMonth, 1);
}

TEST(PerformanceStats, DatesOutsideTheBinsDoNotCount) {
  std::int32_t perMonth = -1;
  EXPECT_EQ(stats::BinByMonth(Rows{1, 2, 4, 8}, Rows{100, 99, 5'000, 110}, perMonth), (Rows{9}));
  EXPECT_EQ(perMonth, 2);
}

TEST(PerformanceStats, NoDatesLeaveTheCount) {
  std::int32_t perMonth = 7;
  EXPECT_TRUE(stats::BinByMonth(Rows{}, Rows{}, perMonth).empty());
  EXPECT_EQ(perMonth, 7);
}

TEST(PerformanceStats, FallingDatesHaveNoBins) {
  for (double last : {99.0, 70.0, -1e300, kNaN}) {
    std::int32_t perMonth = 7;
    EXPECT_TRUE(stats::BinByMonth(Rows{1, 2}, Rows{100, last}, perMonth).empty());
    EXPECT_EQ(perMonth, 0);
  }
}

TEST(PerformanceStats, AMillionYearsAreTooMany) {
  std::int32_t perMonth = 0;
  EXPECT_EQ(stats::BinByMonth(Rows{1, 2}, Rows{0, 365.25e5}, perMonth).size(), 1'217'501u);
  EXPECT_THROW(stats::BinByMonth(Rows{1, 2}, Rows{0, 1e10}, perMonth), std::bad_alloc);
  EXPECT_THROW(stats::BinByMonth(Rows{1, 2}, Rows{0, kInf}, perMonth), std::bad_alloc);
}

}  // namespace
}  // namespace brindlewort
