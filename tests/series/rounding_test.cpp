#include "series/rounding.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "platform/power.hpp"
#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::kInf;
using testing::kNaN;
using testing::kNull;
using testing::Random;
using testing::sameBits;

constexpr RoundMode kModes[] = {RoundMode::kUp, RoundMode::kDown, RoundMode::kNearest};

/// The arithmetic step by step, with the power computed each time.
struct Literal {
  static double truncate(double value, int digits) {
    if (value == -987654321.0 || std::isnan(value) || std::isinf(value)) return -987654321.0;
    if (value == 0.0) return 0.0;
    double s = -1.0;
    if (value > 0.0) s = 1.0;
    value += s * 1e-10;
    double t = std::trunc(value * platform::power(10, digits));
    t = t / platform::power(10, digits);
    if (t == 0.0) return 0.0;
    return t + s * 1e-10;
  }

  static double round(double value, int digits, int mode) {
    if (value == -987654321.0 || std::isnan(value) || std::isinf(value)) return -987654321.0;
    const double v = truncate(value, 4);
    if (v == 0.0) return 0.0;
    const double s = v < 0.0 ? -1.0 : 1.0;
    const double a = std::fabs(v) + 1e-10;
    const double scaled = a * platform::power(10, digits);
    const double f = scaled - std::trunc(scaled);
    double bump = 1.0;
    if (std::trunc(f * 10000) == 0.0) bump = 0.0;
    if ((f >= 0.5 && mode != 2) || mode == 1) {
      return (std::trunc(bump + scaled) / platform::power(10, digits) + 1e-10) * s;
    }
    return (std::trunc(scaled) / platform::power(10, digits) + 1e-10) * s;
  }

  static double toMultiple(double value, double multiple, int mode) {
    if (value == -987654321.0 || std::isnan(value) || std::isinf(value)) return -987654321.0;
    const double v = truncate(value, 4);
    if (v == 0.0) return 0.0;
    const double s = v < 0.0 ? -1.0 : 1.0;
    const double q = std::trunc(v / multiple);
    const double r = std::fmod(v, multiple);
    if (std::trunc(r * 10000) == 0.0) return v;
    bool flag = true;
    if (2 * r > multiple && mode != 2) flag = false;
    if (mode == 1) flag = false;
    if (v < 0.0) flag = !flag;
    if (flag) return q * multiple + s * 1e-10;
    return q * multiple + s * multiple + s * 1e-10;
  }
};

double round(double value, int digits) {
  return RoundValue(value, digits, RoundMode::kNearest);
}
double roundUp(double value, int digits) {
  return RoundValue(value, digits, RoundMode::kUp);
}
double roundDown(double value, int digits) {
  return RoundValue(value, digits, RoundMode::kDown);
}

TEST(TruncateValue, CutsAndKeepsATinyBitAwayFromZero) {
  EXPECT_EQ(TruncateValue(2.34567, 2), 2.34 + 1e-10);
  EXPECT_EQ(TruncateValue(-2.34567, 2), -2.34 - 1e-10);
  EXPECT_EQ(TruncateValue(7.0, 4), 7.0 + 1e-10);
  EXPECT_EQ(TruncateValue(1234.5, -2), 1200.0 + 1e-10);
}

TEST(TruncateValue, NothingLeftIsZero) {
  EXPECT_EQ(TruncateValue(0.0, 4), 0.0);
  EXPECT_EQ(TruncateValue(0.00009, 4), 0.0);
  EXPECT_EQ(TruncateValue(-0.00009, 4), 0.0);
  EXPECT_EQ(TruncateValue(5e-324, 4), 0.0);
}

TEST(TruncateValue, AValueJustBelowADecimalReachesIt) {
  // 0.29 * 100 is 28.999999999999996 in doubles.
  EXPECT_EQ(TruncateValue(0.29, 2), 0.29 + 1e-10);
  EXPECT_EQ(TruncateValue(0.3 - 5e-11, 1), 0.3 + 1e-10);
}

TEST(Rounding, WhatIsNoValueStaysNull) {
  for (const double value : {kNull, kNaN, kInf, -kInf}) {
    EXPECT_EQ(TruncateValue(value, 4), kNull);
    for (const RoundMode mode : kModes) {
      EXPECT_EQ(RoundValue(value, 2, mode), kNull);
      EXPECT_EQ(RoundToMultiple(value, 5.0, mode), kNull);
    }
  }
}

TEST(RoundValue, GoesByWayOfTheCutToFourDecimals) {
  EXPECT_EQ(round(2.345, 2), 2.35 + 1e-10);
  EXPECT_EQ(round(2.34499, 2), 2.34 + 1e-10);
  EXPECT_EQ(round(0.00001, 2), 0.0);
  EXPECT_EQ(roundUp(0.00009, 2), 0.0);
  EXPECT_EQ(roundUp(0.0001, 2), 0.01 + 1e-10);
}

TEST(RoundValue, DownIsTowardZero) {
  EXPECT_EQ(roundDown(-1.29, 1), -(1.2 + 1e-10));
  EXPECT_EQ(roundDown(1.29, 1), 1.2 + 1e-10);
  EXPECT_EQ(roundDown(1.2, 1), 1.2 + 1e-10);
}

TEST(RoundValue, UpIsAwayFromZero) {
  EXPECT_EQ(roundUp(1.21, 1), 1.3 + 1e-10);
  EXPECT_EQ(roundUp(-1.21, 1), -(1.3 + 1e-10));
}

TEST(RoundValue, UpKeepsALevelWhoseFractionVanishesAtFourDecimals) {
  EXPECT_EQ(roundUp(1.5, 1), 1.5 + 1e-10);
  EXPECT_EQ(roundUp(3.0, 2), 3.0 + 1e-10);
  EXPECT_EQ(roundUp(-3.0, 2), -(3.0 + 1e-10));
  EXPECT_EQ(roundUp(1.20001, 1), 1.2 + 1e-10);
}

TEST(RoundValue, HalfGoesAwayFromZero) {
  EXPECT_EQ(round(2.5, 0), 3.0 + 1e-10);
  EXPECT_EQ(round(-2.5, 0), -(3.0 + 1e-10));
  EXPECT_EQ(round(2.4999, 0), 2.0 + 1e-10);
}

TEST(RoundValue, RoundedTwiceIsRoundedOnce) {
  for (int i = 1; i < 20'000; ++i) {
    const double once = round(i * 0.0137, 2);
    ASSERT_EQ(round(once, 2), once) << i;
  }
}

TEST(RoundToMultiple, PositiveValues) {
  EXPECT_EQ(RoundToMultiple(7.0, 5.0, RoundMode::kNearest), 5.0 + 1e-10);
  EXPECT_EQ(RoundToMultiple(7.0, 5.0, RoundMode::kUp), 10.0 + 1e-10);
  EXPECT_EQ(RoundToMultiple(7.0, 5.0, RoundMode::kDown), 5.0 + 1e-10);
  EXPECT_EQ(RoundToMultiple(8.0, 5.0, RoundMode::kNearest), 10.0 + 1e-10);
  EXPECT_EQ(RoundToMultiple(8.0, 5.0, RoundMode::kDown), 5.0 + 1e-10);
}

TEST(RoundToMultiple, OfANegativeValueTheRemainderDoesNotMatter) {
  EXPECT_EQ(RoundToMultiple(-7.0, 5.0, RoundMode::kNearest), -10.0 - 1e-10);
  EXPECT_EQ(RoundToMultiple(-7.0, 5.0, RoundMode::kUp), -5.0 - 1e-10);
  EXPECT_EQ(RoundToMultiple(-7.0, 5.0, RoundMode::kDown), -10.0 - 1e-10);
  EXPECT_EQ(RoundToMultiple(-5.1, 5.0, RoundMode::kNearest), -10.0 - 1e-10);
  EXPECT_EQ(RoundToMultiple(-9.9, 5.0, RoundMode::kUp), -5.0 - 1e-10);
}

TEST(RoundToMultiple, AnExactMultipleComesBackAsTheCutValue) {
  for (const RoundMode mode : kModes) {
    EXPECT_EQ(RoundToMultiple(10.0, 5.0, mode), 10.0 + 1e-10);
    EXPECT_EQ(RoundToMultiple(10.00009, 5.0, mode), TruncateValue(10.00009, 4));
    EXPECT_EQ(RoundToMultiple(-10.0, 5.0, mode), -10.0 - 1e-10);
    EXPECT_EQ(RoundToMultiple(0.00001, 5.0, mode), 0.0);
  }
}

TEST(RoundToMultiple, AMultipleOfZeroIsDefined) {
  for (const RoundMode mode : kModes) EXPECT_TRUE(std::isnan(RoundToMultiple(7.0, 0.0, mode)));
}

TEST(Rounding, PowersOfTenThatADoubleHoldsAreExact) {
  // These are looked up instead of computed.
  for (int digits = 0; digits <= 22; ++digits) {
    EXPECT_EQ(platform::power(10, digits), std::strtod(("1e" + std::to_string(digits)).c_str(), nullptr))
        << digits;
  }
}

TEST(Rounding, AnyNumberOfDigitsIsDefined) {
  constexpr int kLow = std::numeric_limits<int>::min(), kHigh = std::numeric_limits<int>::max();
  for (const int digits : {kLow, -400, -5, 0, 23, 308, 309, 400, kHigh}) {
    for (const double value : {1.5, -1.5, 1e-5, 1e300, -1e300}) {
      EXPECT_TRUE(sameBits(TruncateValue(value, digits), Literal::truncate(value, digits))) << digits;
      for (const RoundMode mode : kModes) {
        EXPECT_TRUE(
            sameBits(RoundValue(value, digits, mode), Literal::round(value, digits, static_cast<int>(mode))))
            << digits;
      }
    }
  }
}

TEST(Rounding, FollowsTheStepsToTheLastBit) {
  Random random(11);
  for (int i = 0; i < 100'000; ++i) {
    const double scale = std::pow(10.0, random.below(9) - 4);
    double value = (random.unit() - 0.4) * scale;
    if (i % 3 == 0) value = std::round(value * 1e4) / 1e4;  // on or beside a step of the cut
    if (i % 3 == 1) value = std::nextafter(std::round(value * 100.0) / 100.0, random.below(2) ? kInf : -kInf);
    const int digits = random.below(10) - 2;
    const double multiple = (random.below(400) - 100) * 0.05;
    ASSERT_TRUE(sameBits(TruncateValue(value, digits), Literal::truncate(value, digits))) << value;
    for (const RoundMode mode : kModes) {
      const int number = static_cast<int>(mode);
      ASSERT_TRUE(sameBits(RoundValue(value, digits, mode), Literal::round(value, digits, number))) << value;
      ASSERT_TRUE(
          sameBits(RoundToMultiple(value, multiple, mode), Literal::toMultiple(value, multiple, number)))
          << value << " " << multiple;
    }
  }
}

/// Where value and multiple are far apart, the remainder is not the library's own.
TEST(RoundToMultiple, HugeValuesFollowTheStepsToTheLastBit) {
  Random random(12);
  for (int i = 0; i < 200'000; ++i) {
    const double value = std::ldexp(random.unit() + 0.5, random.below(1024)) * (random.below(2) ? 1.0 : -1.0);
    double multiple = std::ldexp(random.unit() + 0.5, random.below(1100) - 1070);  // the least are subnormal
    if (i % 4 == 0) multiple = (random.below(400) - 100) * 0.05;
    if (i % 4 == 1) multiple = std::ldexp(1.0, random.below(120) - 60);
    for (const RoundMode mode : kModes) {
      ASSERT_TRUE(sameBits(RoundToMultiple(value, multiple, mode),
                           Literal::toMultiple(value, multiple, static_cast<int>(mode))))
          << value << " " << multiple;
    }
  }
}

/// At this size a double has no digits for the guards, so that a half is exactly one.
TEST(RoundValue, AHalfGoesAwayFromZero) {
  EXPECT_EQ(RoundValue(1073741824.5, 0, RoundMode::kNearest), 1073741825.0);
  EXPECT_EQ(RoundValue(-1073741824.5, 0, RoundMode::kNearest), -1073741825.0);
  EXPECT_EQ(RoundValue(1073741824.5, 0, RoundMode::kDown), 1073741824.0);
}

TEST(RoundToMultiple, AHalfStaysAtTheMultipleNearerToZero) {
  EXPECT_EQ(RoundToMultiple(1073741824.5, 1.0, RoundMode::kNearest), 1073741824.0);
  EXPECT_EQ(RoundToMultiple(1073741824.75, 1.0, RoundMode::kNearest), 1073741825.0);
}

}  // namespace
}  // namespace brindlewort
