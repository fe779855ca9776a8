#include "series/numbers.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "series/null_value.hpp"
#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::kInf;
using testing::kNaN;
using testing::kNull;
using testing::Random;
using testing::sameBits;

// --- The null value and whole numbers ---

TEST(NullValue, OnlyTheExactNullReadsAsZero) {
  EXPECT_EQ(NullToZero(-987654321.0), 0.0);
  EXPECT_EQ(NullToZero(-987654321.5), -987654321.5);
  EXPECT_EQ(nz(3.25), 3.25);
  EXPECT_TRUE(std::isnan(nz(kNaN)));
}

TEST(NullValue, FiniteUpToTheLargestDouble) {
  constexpr double kLargest = 1.7976931348623157e+308;
  EXPECT_TRUE(IsFiniteDouble(kLargest));
  EXPECT_TRUE(IsFiniteDouble(-kLargest));
  EXPECT_TRUE(IsFiniteDouble(kNull));
  EXPECT_FALSE(IsFiniteDouble(kInf));
  EXPECT_FALSE(IsFiniteDouble(-kInf));
  EXPECT_FALSE(IsFiniteDouble(kNaN));
}

TEST(WholeNumbers, AreCutTowardZero) {
  EXPECT_EQ(toInt32(2.9), 2);
  EXPECT_EQ(toInt32(-2.9), -2);
  EXPECT_EQ(toInt32(2147483647.9), 2147483647);
  EXPECT_EQ(toInt32(-2147483648.9), INT32_MIN);
  EXPECT_EQ(toInt64(-2.9), -2);
  EXPECT_EQ(toInt64(-9223372036854775808.0), INT64_MIN);
}

TEST(WholeNumbers, OutOfRangeIsTheMostNegativeOne) {
  for (const double x : {2147483648.0, -2147483649.0, 1e300, -1e300, kInf, -kInf, kNaN}) {
    EXPECT_EQ(toInt32(x), INT32_MIN) << x;
  }
  for (const double x : {9223372036854775808.0, -9223372036854777856.0, 1e300, kInf, -kInf, kNaN}) {
    EXPECT_EQ(toInt64(x), INT64_MIN) << x;
  }
}

TEST(WholeNumbers, AMagnitudeIsNeverNegative) {
  EXPECT_EQ(magnitude(-5), 5);
  EXPECT_EQ(magnitude(INT32_MIN), 2147483648ll);
  EXPECT_EQ(magnitude(INT32_MAX), 2147483647ll);
}

TEST(QuantizeForCompare, SeesFourDecimals) {
  EXPECT_EQ(QuantizeForCompare(1.00001), QuantizeForCompare(1.00002));
  EXPECT_EQ(QuantizeForCompare(0.0), 0);
  EXPECT_EQ(QuantizeForCompare(-0.0), 0);
  EXPECT_EQ(QuantizeForCompare(0.00009), 0);
  EXPECT_EQ(QuantizeForCompare(-0.00009), 0);
  EXPECT_EQ(QuantizeForCompare(1.2345), 12345);
  EXPECT_EQ(QuantizeForCompare(-1.2345), -12345);
  EXPECT_EQ(QuantizeForCompare(0.0001 - 5e-11), 1);  // 1e-10 lifts it to the decimal
}

TEST(QuantizeForCompare, AnyValueIsDefined) {
  for (const double x : {kInf, -kInf, kNaN, 1e300, -1e300, 1e15}) {
    EXPECT_EQ(QuantizeForCompare(x), INT64_MIN) << x;
  }
  EXPECT_EQ(QuantizeForCompare(5e-324), 0);
}

// --- Numbers to text ---

TEST(FormatTruncated, CutsAndDoesNotRound) {
  EXPECT_EQ(FormatTruncated(1.23456, 4), "1.2345");
  EXPECT_EQ(FormatTruncated(1.99999, 4), "1.9999");
  EXPECT_EQ(FormatTruncated(-1.23456, 4), "-1.2345");
  EXPECT_EQ(FormatTruncated(12.0, 4), "12.0000");
  EXPECT_EQ(FormatTruncated(12.0, 1), "12.0");
}

TEST(FormatTruncated, ZeroHasNoDecimals) {
  EXPECT_EQ(FormatTruncated(0.0, 4), "0");
  EXPECT_EQ(FormatTruncated(-0.0, 4), "0");
}

TEST(FormatTruncated, WhatIsNoValueReadsAsTheNull) {
  for (const double x : {kNull, kNaN, kInf, -kInf}) EXPECT_EQ(FormatTruncated(x, 4), "-987654321");
  EXPECT_EQ(FormatTruncated(-987654321.5, 4), "-987654321.5000");
}

TEST(FormatTruncated, AValueJustBelowADecimalReachesIt) {
  EXPECT_EQ(FormatTruncated(1.1, 4), "1.1000");
  EXPECT_EQ(FormatTruncated(0.3 - 5e-11, 4), "0.3000");
  EXPECT_EQ(FormatTruncated(0.3 - 2e-10, 4), "0.2999");
}

TEST(FormatTruncated, ANegativeValueThatIsCutToNothingKeepsItsSign) {
  EXPECT_EQ(FormatTruncated(-1e-12, 4), "-0.0000");
  EXPECT_EQ(FormatTruncated(-0.00001, 4), "-0.0000");
  EXPECT_EQ(FormatTruncated(1e-12, 4), "0.0000");
  EXPECT_EQ(FormatTruncated(-5e-324, 4), "-0.0000");
}

TEST(FormatTruncated, RoundingAtTheTwentiethDecimalReachesTheKeptOnes) {
  // The double below 1e-5 is 0.0876e-20 short of it: with 20 decimals it reads 0.00001000000000000000.
  const double below = std::nextafter(1e-5, 0.0);
  const double value = below - 1e-10;
  ASSERT_EQ(value + 1e-10, below);
  EXPECT_EQ(FormatTruncated(value, 5), "0.00001");
  EXPECT_EQ(FormatTruncated(value, 20), "0.00001000000000000000");
  EXPECT_EQ(FormatTruncated(-value, 5), "-0.00001");
}

TEST(FormatTruncated, HugeValuesAreWrittenOut) {
  EXPECT_EQ(FormatTruncated(9007199254740992.0, 2), "9007199254740992.00");
  EXPECT_EQ(FormatTruncated(18446744073709551616.0, 2), "18446744073709551616.00");
  EXPECT_EQ(FormatTruncated(18446744073709549568.0, 2), "18446744073709549568.00");
  EXPECT_EQ(FormatTruncated(-1e22, 4), "-10000000000000000000000.0000");
  EXPECT_EQ(FormatTruncated(std::numeric_limits<double>::max(), 4).size(), 309u + 1 + 4);
}

TEST(FormatTruncated, DecimalsAreBetweenOneAndTwenty) {
  EXPECT_EQ(FormatTruncated(0.5, 0), "0.5");
  EXPECT_EQ(FormatTruncated(0.5, INT32_MIN), "0.5");
  EXPECT_EQ(FormatTruncated(0.5, 21), FormatTruncated(0.5, 20));
  EXPECT_EQ(FormatTruncated(0.5, INT32_MAX), "0.50000000010000000827");  // 0.5 + 1e-10 as a double
}

TEST(FormatFixed, RoundsCorrectly) {
  EXPECT_EQ(FormatFixed(1.005, 2), "1.00");  // the double is below 1.005
  EXPECT_EQ(FormatFixed(0.125, 2), "0.12");  // a tie goes to the even digit
  EXPECT_EQ(FormatFixed(0.375, 2), "0.38");
  EXPECT_EQ(FormatFixed(2.5, 0), "2");
  EXPECT_EQ(FormatFixed(-1234.5678, 3), "-1234.568");
  EXPECT_EQ(FormatFixed(14.0, 20), "14.00000000000000000000");
  EXPECT_EQ(FormatFixed(0.1, 20), "0.10000000000000000555");
}

TEST(FormatFixed, ATieAtTheTwentiethDecimalGoesToTheEvenDigit) {
  // 1 / 2^21 = 0.000000476837158203125: 21 decimals.
  EXPECT_EQ(FormatFixed(0x1p-21, 20), "0.00000047683715820312");
  EXPECT_EQ(FormatFixed(0x3p-21, 20), "0.00000143051147460938");  // ...937|5 goes up
}

TEST(FormatFixed, EveryExponentAtEveryPrecisionInUse) {
  // Against the C library's text: each power of two, and each with the least, an odd and the greatest
  // mantissa.
  char text[400];
  for (int exponent = -1074; exponent <= 1023; ++exponent) {
    for (double mantissa : {1.0, 1.0 + 0x1p-52, 1.6, 0x1.fffffffffffffp0}) {
      for (double sign : {1.0, -1.0}) {
        const double value = std::ldexp(sign * mantissa, exponent);
        for (int precision : {0, 4, 20}) {
          std::snprintf(text, sizeof text, "%.*f", precision, value);
          ASSERT_EQ(FormatFixed(value, precision), text) << exponent << " " << precision;
        }
      }
    }
  }
}

TEST(FormatFixed, InfinitiesAndNonNumbersAreZero) {
  for (const double x : {kNaN, kInf, -kInf}) {
    EXPECT_EQ(FormatFixed(x, 20), "0");
    EXPECT_EQ(FormatFixed(x, 4), "0");
  }
}

TEST(FormatFixed, ZeroAndTheNullAreNumbers) {
  EXPECT_EQ(FormatFixed(0.0, 2), "0.00");
  EXPECT_EQ(FormatFixed(-0.0, 2), "-0.00");
  EXPECT_EQ(FormatFixed(0.0, 20), "0.00000000000000000000");
  EXPECT_EQ(FormatFixed(-0.001, 2), "-0.00");
  EXPECT_EQ(FormatFixed(kNull, 4), "-987654321.0000");
}

TEST(FormatFixed, PrecisionIsBetweenZeroAndSixty) {
  EXPECT_EQ(FormatFixed(1.5, -1), "2");
  EXPECT_EQ(FormatFixed(0.5, INT32_MAX), FormatFixed(0.5, 60));
  EXPECT_EQ(FormatFixed(std::numeric_limits<double>::lowest(), 60).size(), 1u + 309 + 1 + 60);
}

TEST(NumberTexts, AreAppended) {
  std::string text = "A: ";
  appendFixed(text, 2.0, 1);
  appendTruncated(text += ',', 3.25, 1);
  appendTruncated(text += ',', 0.0, 4);
  EXPECT_EQ(text, "A: 2.0,3.2,0");
}

// --- Against the slow rule: the C library's text of 20 decimals, cut ---

/// Compares both forms of a value and of its negative: the guarded value written out with FormatFixed, the
/// value with FormatTruncated.
class SlowRule {
 public:
  int tried() const { return tried_; }
  /// Values whose rounding at the 20th decimal reached the kept ones.
  int carried() const { return carried_; }

  ::testing::AssertionResult holdsFor(double x, int decimals) {
    if (x == 0.0) return ::testing::AssertionSuccess();  // has a text of its own
    const double value = std::fabs(x);
    char text[400] = "-";
    const int length = std::snprintf(text + 1, sizeof text - 1, "%.20f", value + 1e-10);
    const std::string_view negative(text, static_cast<std::size_t>(length) + 1);
    if (!agrees(-value, -value - 1e-10, negative, decimals) ||
        !agrees(value, value + 1e-10, negative.substr(1), decimals)) {
      return ::testing::AssertionFailure() << negative << " is written " << fixed_ << " and cut " << cut_;
    }
    tried_ += 2;
    if (parseDouble(cut_) > value + 1e-10) carried_ += 2;
    return ::testing::AssertionSuccess();
  }

 private:
  bool agrees(double value, double guarded, std::string_view full, int decimals) {
    fixed_.clear();
    appendFixed(fixed_, guarded, 20);
    cut_.clear();
    appendTruncated(cut_, value, decimals);
    return fixed_ == full && cut_ == full.substr(0, full.size() - 20 + static_cast<std::size_t>(decimals));
  }

  std::string fixed_, cut_;
  int tried_ = 0;
  int carried_ = 0;
};

double neighbour(double x, int steps) {
  for (; steps > 0; --steps) x = std::nextafter(x, kInf);
  for (; steps < 0; ++steps) x = std::nextafter(x, -kInf);
  return x;
}

TEST(NumberTexts, AreTheCharactersOfTheSlowRuleForTypicalPrices) {
  Random random(1);
  SlowRule rule;
  for (int i = 0; i < 150'000; ++i) {
    const int ticks = random.below(10'000'000) + 1;
    ASSERT_TRUE(rule.holdsFor(ticks / 100.0, 4));                   // prices in cents
    ASSERT_TRUE(rule.holdsFor(ticks * 0.0001 * random.unit(), 4));  // averages
    ASSERT_TRUE(rule.holdsFor((random.unit() - 0.5) * 20.0, 4));    // oscillators
  }
  EXPECT_EQ(rule.tried(), 900'000);
}

TEST(NumberTexts, AreTheCharactersOfTheSlowRuleNearTheDecimalsThatAreKept) {
  Random random(2);
  SlowRule rule;
  for (int i = 0; i < 250'000; ++i) {
    const int decimals = 1 + random.below(i % 2 ? 20 : 6);
    const double onDecimal = (1 + random.below(1 << random.below(28))) / std::pow(10.0, decimals);
    const double guardedThere = onDecimal - (i % 4 == 0 ? 0.0 : 1e-10);
    ASSERT_TRUE(rule.holdsFor(neighbour(guardedThere, random.below(9) - 4), decimals));
  }
  EXPECT_GT(rule.tried(), 490'000);
  EXPECT_GT(rule.carried(), 1000) << "the rounding that reaches the kept decimals was not met";
}

TEST(NumberTexts, AreTheCharactersOfTheSlowRuleForTiesAndIntegers) {
  Random random(3);
  SlowRule rule;
  for (int i = 0; i < 100'000; ++i) {
    ASSERT_TRUE(rule.holdsFor(static_cast<double>(random.next() >> random.below(64)), 1 + random.below(20)));
    // Odd multiples of 2^-21 are ties at 20 decimals; the value is chosen so that its guarded form is one.
    const double tie = (2.0 * random.below(1 << random.below(30)) + 1.0) * 0x1p-21;
    ASSERT_TRUE(rule.holdsFor(neighbour(tie - 1e-10, random.below(5) - 2), 1 + random.below(20)));
    ASSERT_EQ((FormatFixed(tie, 20).back() - '0') % 2, 0) << tie;
  }
  EXPECT_GT(rule.tried(), 390'000);
}

TEST(NumberTexts, AreTheCharactersOfTheSlowRuleForEveryExponent) {
  Random random(4);
  SlowRule rule;
  for (std::uint64_t exponent = 0; exponent < 2047; ++exponent) {
    for (int i = 0; i < 15; ++i) {
      const std::uint64_t mantissa = i == 0 ? 0 : i == 1 ? (1ull << 52) - 1 : random.next() >> 12;
      const double x = std::bit_cast<double>(exponent << 52 | mantissa);
      ASSERT_TRUE(rule.holdsFor(x, 1 + random.below(20)));
    }
  }
  EXPECT_GE(rule.tried(), 2046 * 30);
}

TEST(FormatFixed, IsTheCLibrarysTextAtEveryPrecision) {
  Random random(5);
  for (int i = 0; i < 70'000; ++i) {
    double x = std::bit_cast<double>(random.next());
    if (i % 3 != 0) x = (random.unit() - 0.5) * std::pow(10.0, random.below(24) - 12);
    if (i % 3 == 2) x = std::round(x * 64.0) / 64.0;  // ties at few decimals
    if (!IsFiniteDouble(x)) continue;
    const int precision = random.below(i % 2 ? 61 : 7);
    char text[400];
    std::snprintf(text, sizeof text, "%.*f", precision, x);
    ASSERT_EQ(FormatFixed(x, precision), text);
  }
}

// --- Text to numbers ---

TEST(ParseDouble, ReadsTheNumberAtTheHead) {
  EXPECT_EQ(parseDouble("14"), 14.0);
  EXPECT_EQ(parseDouble("2.5"), 2.5);
  EXPECT_EQ(parseDouble(".5"), 0.5);
  EXPECT_EQ(parseDouble("5."), 5.0);
  EXPECT_EQ(parseDouble("-2.5e3"), -2500.0);
  EXPECT_EQ(parseDouble("1E-2"), 0.01);
  EXPECT_EQ(parseDouble(" \t\r\n\v\f+7"), 7.0);
}

TEST(ParseDouble, StopsAtTheFirstCharacterItCannotUse) {
  EXPECT_EQ(parseDouble("12abc"), 12.0);
  EXPECT_EQ(parseDouble("1.2.3"), 1.2);
  EXPECT_EQ(parseDouble("1e"), 1.0);
  EXPECT_EQ(parseDouble("1e+"), 1.0);
  EXPECT_EQ(parseDouble("1e5e5"), 1e5);
  EXPECT_EQ(parseDouble("3-4"), 3.0);
  EXPECT_EQ(parseDouble("1,5"), 1.0);
  EXPECT_EQ(parseDouble(std::string_view("1\0002", 3)), 1.0);
}

TEST(ParseDouble, WhatIsNoNumberIsZero) {
  for (const char* text : {"", " ", "+", "-", ".", "-.", "e5", ".e5", "+-5", "-+5", "--5", "- 5", "CLOSE",
                           "inf", "-inf", "INFINITY", "nan", "NAN", "nan(1)"}) {
    EXPECT_EQ(parseDouble(text), 0.0) << text;
  }
}

TEST(ParseDouble, HexadecimalNotationIsNotRead) {
  EXPECT_EQ(parseDouble("0x10"), 0.0);
  EXPECT_EQ(parseDouble("0x1p4"), 0.0);
}

TEST(ParseDouble, WhatNoDoubleHoldsIsInfiniteOrZero) {
  EXPECT_EQ(parseDouble("1e309"), kInf);
  EXPECT_EQ(parseDouble("-1e309"), -kInf);
  EXPECT_EQ(parseDouble("1.8e308"), kInf);
  EXPECT_EQ(parseDouble(std::string(400, '9')), kInf);
  EXPECT_EQ(parseDouble("0." + std::string(400, '0') + "1e900"), kInf);
  EXPECT_EQ(parseDouble("1e99999999999999999999999"), kInf);
  EXPECT_EQ(parseDouble("1e309rest 1e-5"), kInf);
  EXPECT_EQ(parseDouble("1e-400"), 0.0);
  EXPECT_EQ(parseDouble("1" + std::string(400, '0') + "e-900"), 0.0);
  EXPECT_EQ(parseDouble("0." + std::string(400, '0') + "1"), 0.0);
  EXPECT_EQ(parseDouble("1e-99999999999999999999999"), 0.0);
  EXPECT_EQ(parseDouble("0e99999999999999999999999"), 0.0);
  EXPECT_TRUE(sameBits(parseDouble("-1e-400"), -0.0));
}

TEST(ParseDouble, ReadsTheSmallestNumbers) {
  EXPECT_EQ(parseDouble("4.9406564584124654e-324"), 5e-324);
  EXPECT_EQ(parseDouble("2.2250738585072011e-308"), 2.2250738585072011e-308);
  EXPECT_TRUE(sameBits(parseDouble("-0"), -0.0));
}

TEST(ParseDouble, AgreesWithTheCLibraryOnDecimalTexts) {
  Random random(6);
  const std::string alphabet = "0123456789012345678901234567890123456789..--++eE  x";
  for (int i = 0; i < 200'000; ++i) {
    std::string text;
    for (int n = random.below(14); n > 0; --n) {
      text += alphabet[static_cast<std::size_t>(random.below(static_cast<int>(alphabet.size())))];
    }
    if (text.find('x') != std::string::npos && text.find("0x") != std::string::npos) continue;
    char* end = nullptr;
    const double read = std::strtod(text.c_str(), &end);
    // Where there is no number, some libraries give the sign that they met.
    const double expected = end == text.c_str() ? 0.0 : read;
    ASSERT_TRUE(sameBits(parseDouble(text), expected)) << "'" << text << "'";
  }
  for (int i = 0; i < 100'000; ++i) {
    const double x = std::bit_cast<double>(random.next());
    if (!IsFiniteDouble(x)) continue;
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", x);
    ASSERT_TRUE(sameBits(parseDouble(text), x)) << text;
  }
}

TEST(ParseInt32, ReadsTheIntegerAtTheHead) {
  EXPECT_EQ(parseInt32("14"), 14);
  EXPECT_EQ(parseInt32(" \t+14"), 14);
  EXPECT_EQ(parseInt32("-14abc"), -14);
  EXPECT_EQ(parseInt32("14.9"), 14);
  EXPECT_EQ(parseInt32("1e5"), 1);
  EXPECT_EQ(parseInt32("007"), 7);
}

TEST(ParseInt32, WhatIsNoIntegerIsZero) {
  for (const char* text : {"", " ", "-", "+", "+-5", "--5", "- 5", ".5", "CLOSE"}) {
    EXPECT_EQ(parseInt32(text), 0) << text;
  }
}

TEST(ParseInt32, OutOfRangeIsTheMostNegativeInteger) {
  EXPECT_EQ(parseInt32("2147483647"), 2147483647);
  EXPECT_EQ(parseInt32("-2147483647"), -2147483647);
  EXPECT_EQ(parseInt32("-2147483648"), INT32_MIN);
  EXPECT_EQ(parseInt32("2147483648"), INT32_MIN);
  EXPECT_EQ(parseInt32("-2147483649"), INT32_MIN);
  EXPECT_EQ(parseInt32("18446744073709551617"), INT32_MIN);
  EXPECT_EQ(parseInt32(std::string(500, '9')), INT32_MIN);
}

}  // namespace
}  // namespace brindlewort
