#include "indicators/primes.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

namespace brindlewort {
namespace {

/// By division: 2 and 3 are tried above 3, then 5, 7, 11, 13, ... up to the root and one more.
bool isPrimeByDivision(std::int64_t v) {
  if (v > 3 && (v % 2 == 0 || v % 3 == 0)) return false;
  if (v <= 3) return true;
  const auto last = static_cast<std::int64_t>(std::sqrt(static_cast<double>(v))) + 1;
  for (std::int64_t divisor = 5, step = 2; divisor <= last; divisor += step, step = 6 - step) {
    if (v % divisor == 0) return false;
  }
  return true;
}

TEST(Primes, EveryValueOfThreeOrLessReportsPrime) {
  for (std::int64_t v : {3, 2, 1, 0, -1, -4, INT32_MIN}) EXPECT_TRUE(isPrime(v)) << v;
  EXPECT_TRUE(isPrime(INT64_MIN));
}

TEST(Primes, AreThoseOfTrialDivision) {
  for (std::int64_t v = -10; v <= 30'000; ++v) ASSERT_EQ(isPrime(v), isPrimeByDivision(v)) << v;
  // Around the places where the method changes: 41 * 41 and the reach of the first four witnesses.
  for (std::int64_t v = 41 * 41 - 50; v <= 41 * 41 + 50; ++v)
    ASSERT_EQ(isPrime(v), isPrimeByDivision(v)) << v;
  for (std::int64_t v = 3'215'031'700; v <= 3'215'031'800; ++v) {
    ASSERT_EQ(isPrime(v), isPrimeByDivision(v)) << v;
  }
  for (std::int64_t v = 4'294'967'250; v <= 4'294'967'350; ++v) {
    ASSERT_EQ(isPrime(v), isPrimeByDivision(v)) << v;
  }
}

TEST(Primes, ProductsOfThreePrimesThatFoolManyWitnessesAreNoPrimes) {
  constexpr std::int64_t kFoolsTwoToSeven = std::int64_t{151} * 751 * 28351;
  constexpr std::int64_t kFoolsTwoToTwentyThree = std::int64_t{149491} * 747451 * 34233211;
  EXPECT_FALSE(isPrime(kFoolsTwoToSeven));
  EXPECT_FALSE(isPrime(kFoolsTwoToTwentyThree));
  EXPECT_FALSE(isPrime(std::int64_t{94906249} * 94906249));  // a square close to 2^53
}

TEST(Primes, LargeValuesAreToldAtOnce) {
  constexpr std::int64_t kMersenne = (std::int64_t{1} << 61) - 1;
  EXPECT_TRUE(isPrime(kMersenne));
  EXPECT_FALSE(isPrime(INT64_MAX));  // 2^63 - 1 is divisible by 7
  // The prime about 2^53 is told by division, once.
  const std::int64_t below = primeAtOrBelow((std::int64_t{1} << 53) - 1);
  EXPECT_TRUE(isPrimeByDivision(below));
  EXPECT_EQ(below, (std::int64_t{1} << 53) - 111);
}

TEST(Primes, ScanDownIncludesItsStartAndOne) {
  EXPECT_EQ(primeAtOrBelow(49), 47);
  EXPECT_EQ(primeAtOrBelow(47), 47);
  EXPECT_EQ(primeAtOrBelow(4), 3);
  EXPECT_EQ(primeAtOrBelow(1), 1);
  EXPECT_EQ(primeAtOrBelow(0), 0);
  EXPECT_EQ(primeAtOrBelow(-7), 0);
  EXPECT_EQ(primeAtOrBelow(INT64_MIN), 0);
}

TEST(Primes, ScanUpIncludesItsStartAndTwiceTheValue) {
  EXPECT_EQ(primeAtOrAbove(49), 53);
  EXPECT_EQ(primeAtOrAbove(53), 53);
  EXPECT_EQ(primeAtOrAbove(1), 1);
  EXPECT_EQ(primeAtOrAbove(0), 0);
  EXPECT_EQ(primeAtOrAbove(-7), 0);
  EXPECT_EQ(primeAtOrAbove(INT64_MIN), 0);
  EXPECT_EQ(primeAtOrAbove(INT64_MAX), 0);
}

TEST(Primes, ScansFindWhatAStepByStepSearchFinds) {
  for (std::int64_t v = 1; v <= 5'000; ++v) {
    std::int64_t lower = v, upper = v;
    while (lower >= 1 && !isPrimeByDivision(lower)) --lower;
    while (upper <= 2 * v && !isPrimeByDivision(upper)) ++upper;
    ASSERT_EQ(primeAtOrBelow(v), lower);
    ASSERT_EQ(primeAtOrAbove(v), upper);
  }
}

}  // namespace
}  // namespace brindlewort
