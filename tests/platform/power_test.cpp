#include "platform/power.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace brindlewort::platform {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Worked out when the program runs.
double powerOf(double base, double exponent) {
  const volatile double b = base, e = exponent;
  return power(b, e);
}

TEST(Power, OfTenIsTheDoubleNextToTheDecimal) {
  for (int digits = -22; digits <= 22; ++digits) {
    EXPECT_EQ(powerOf(10.0, digits), std::strtod(("1e" + std::to_string(digits)).c_str(), nullptr)) << digits;
  }
}

TEST(Power, OfTwoIsExact) {
  for (int exponent = -1074; exponent <= 1023; ++exponent) {
    EXPECT_EQ(powerOf(2.0, exponent), std::ldexp(1.0, exponent)) << exponent;
  }
}

TEST(Power, FractionsAreRoots) {
  EXPECT_EQ(powerOf(9.0, 0.5), 3.0);
  EXPECT_EQ(powerOf(16.0, -0.25), 0.5);
  EXPECT_DOUBLE_EQ(powerOf(2.0, 0.5), 1.4142135623730951);
  EXPECT_DOUBLE_EQ(powerOf(2.0, 1.0 / 12), 1.0594630943592953);
}

TEST(Power, EveryPairOfNumbersIsDefined) {
  EXPECT_EQ(powerOf(0.0, 0.0), 1.0);
  EXPECT_EQ(powerOf(kNaN, 0.0), 1.0);
  EXPECT_EQ(powerOf(1.0, kNaN), 1.0);
  EXPECT_EQ(powerOf(-2.0, 3.0), -8.0);
  EXPECT_TRUE(std::isnan(powerOf(-8.0, 1.0 / 3)));
  EXPECT_TRUE(std::isnan(powerOf(kNaN, 1.0)));
  EXPECT_EQ(powerOf(0.0, -1.0), kInf);
  EXPECT_EQ(powerOf(-0.0, -1.0), -kInf);
  EXPECT_EQ(powerOf(10.0, 309.0), kInf);
  EXPECT_EQ(powerOf(-10.0, 309.0), -kInf);
  EXPECT_EQ(powerOf(10.0, -400.0), 0.0);
  EXPECT_EQ(powerOf(kInf, -1.0), 0.0);
  EXPECT_EQ(powerOf(0.5, kInf), 0.0);
}

}  // namespace
}  // namespace brindlewort::platform
