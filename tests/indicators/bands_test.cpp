#include "indicators/bands.hpp"

#include <gtest/gtest.h>

#include "indicators/band_twins.hpp"
#include "indicators/moving_averages.hpp"

namespace brindlewort {
namespace {

using namespace testing;

// ---- Highest high, lowest low ----------------------------------------------------------------------------

Rows highest(const Rows& in, Count p) {
  Rows out(in.size(), kNull);
  CFeedkit::HighestHighValue(in, p, out);
  return out;
}

Rows lowest(const Rows& in, Count p) {
  Rows out(in.size(), kNull);
  CFeedkit::LowestLowValue(in, p, out);
  return out;
}

Operation resumableHighest(Count p) {
  return [p](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::HighestHighValue(prices.high, p, out);
  };
}

Operation resumableLowest(Count p) {
  return [p](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::LowestLowValue(prices.low, p, out);
  };
}

/// The plain scan of the p rows before each row, from `first`.
Rows extremeTwin(const Rows& in, Count p, Count first, bool high) {
  Rows out(in.size(), kNull);
  for (Count i = first; i < rowsOf(in); ++i) {
    double best = in[i - p];
    for (Count j = i - p + 1; j <= i - 1; ++j) {
      if (high ? in[j] > best : in[j] < best) best = in[j];
    }
    out[i] = best;
  }
  return out;
}

Rows batchExtremeTwin(const Rows& in, Count p, bool high) {
  return p >= 1 && p < rowsOf(in) ? extremeTwin(in, p, p + 1, high) : Rows(in.size(), kNull);
}

Rows resumableExtremeTwin(const Rows& in, Count p, bool high) {
  return p >= 1 && p <= rowsOf(in) ? extremeTwin(in, p, p, high) : Rows(in.size(), kNull);
}

const Rows kSmall = {9, 3, 5, 4, 8, 1};

TEST(HighestHighBatch, TakesTheRowsBeforeTheRowItself) {
  // Row 3: rows 1 and 2; row 4: rows 2 and 3; row 5: rows 3 and 4.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 5, 5, 8}, highest(kSmall, 2)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 3, 4, 4}, lowest(kSmall, 2)));
}

TEST(HighestHighResumable, StartsAtRowPAndSeesRow0) {
  const PriceRows prices = barsOf(kSmall, kSmall);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 9, 5, 5, 8}, runAtOnce(prices, resumableHighest(2)).rows));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 3, 3, 4, 4}, runAtOnce(prices, resumableLowest(2)).rows));
}

TEST(HighestHigh, OverOnePeriodIsThePreviousRow) {
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 3, 5, 4, 8}, highest(kSmall, 1)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 3, 5, 4, 8}, lowest(kSmall, 1)));
  const PriceRows prices = barsOf(kSmall, kSmall);
  EXPECT_TRUE(sameRows(Rows{kNull, 9, 3, 5, 4, 8}, runAtOnce(prices, resumableHighest(1)).rows));
}

TEST(HighestHigh, NullRowsAreValuesLikeAnyOther) {
  const Rows in = {1, -5, kNull, -7, 2, 3};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, -5, -7, 2}, highest(in, 2)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, kNull, -7}, lowest(in, 2)));
}

TEST(HighestHigh, ANonNumberCountsOnlyInTheOldestRowOfItsWindow) {
  const Rows in = {1, 5, kNaN, 4, 3, 2, 1};
  // Windows of 3 from row 4: (5, NaN, 4), (NaN, 4, 3), (4, 3, 2).
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 5, kNaN, 4}, highest(in, 3)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 4, kNaN, 2}, lowest(in, 3)));
}

TEST(HighestHigh, OfEqualValuesTheOldestStands) {
  const Rows in = {1, -0.0, 0.0, -0.0, 0.0, 5};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, -0.0, 0.0, -0.0}, highest(in, 2)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, -0.0, 0.0, -0.0}, lowest(in, 2)));
}

TEST(HighestHigh, AreThePlainScanForEveryShapeAndLength) {
  for (Count p : kSmallPeriods) {
    forShortSeries(p, [p](const PriceRows& prices) {
      EXPECT_TRUE(sameRows(batchExtremeTwin(prices.high, p, true), highest(prices.high, p)));
      EXPECT_TRUE(sameRows(batchExtremeTwin(prices.low, p, false), lowest(prices.low, p)));
      EXPECT_TRUE(
          sameRows(resumableExtremeTwin(prices.high, p, true), runAtOnce(prices, resumableHighest(p)).rows));
      EXPECT_TRUE(
          sameRows(resumableExtremeTwin(prices.low, p, false), runAtOnce(prices, resumableLowest(p)).rows));
    });
  }
}

TEST(HighestHigh, AreThePlainScanOverMixturesOfOddValues) {
  const Rows odd = {kNaN, kInf, -kInf, kNull, 0.0, -0.0, 1.0, 2.0, -3.0};
  Random random(5);
  for (int round = 0; round < 400; ++round) {
    Rows in(static_cast<std::size_t>(random.below(40)));
    for (double& x : in) x = odd[static_cast<std::size_t>(random.below(static_cast<int>(odd.size())))];
    const Count p = 1 + random.below(9);
    ASSERT_TRUE(sameRows(batchExtremeTwin(in, p, true), highest(in, p))) << "p " << p;
    ASSERT_TRUE(sameRows(batchExtremeTwin(in, p, false), lowest(in, p))) << "p " << p;
  }
}

TEST(HighestHigh, APeriodOutOfRangeDoesNothing) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  for (Count p : kBadPeriods) {
    EXPECT_TRUE(sameRows(Rows(60, kNull), highest(prices.high, p))) << p;
    EXPECT_TRUE(sameRows(Rows(60, kNull), lowest(prices.low, p))) << p;
    // A period of all rows is in range, but no row has that many before it.
    expectNothingDone(prices, resumableHighest(p));
    expectNothingDone(prices, resumableLowest(p));
  }
  EXPECT_TRUE(sameRows(Rows(60, kNull), highest(prices.high, 59)));
  EXPECT_EQ(kDone, runAtOnce(prices, resumableHighest(59)).status);
}

TEST(HighestHighResumable, ALeadingNullRunDoesNotShiftTheRows) {
  const Rows in = {kNull, kNull, kNull, 4, 3};
  const PriceRows prices = barsOf(in, in);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 4}, runAtOnce(prices, resumableHighest(2)).rows));
  EXPECT_EQ(5, runAtOnce(prices, resumableHighest(2)).slot);
}

TEST(HighestHighResumable, StreamsLikeOneCall) {
  for (Count p : {1, 2, 9}) {
    expectStreams(resumableHighest(p));
    expectStreams(resumableLowest(p));
  }
  expectRepeatable(makePrices(Shape::kWalk, 30), resumableHighest(5));
}

TEST(HighestHighResumable, AGrownPeriodNeverReachesBeforeTheFirstRow) {
  const PriceRows prices = makePrices(Shape::kWalk, 12);
  TestStore store(12);
  Rows out(12, kNull);
  std::int32_t slot = -1;
  ASSERT_EQ(kDone, resumableHighest(2)(store, sourcesOf(prices, 4), {out, &slot}));
  ASSERT_EQ(kDone, resumableHighest(8)(store, sourcesOf(prices, 12), {out, &slot}));
  EXPECT_TRUE(isNull(out[7]));
  EXPECT_EQ(*std::max_element(prices.high.begin(), prices.high.begin() + 8), out[8]);
}

// ---- Standard deviations ---------------------------------------------------------------------------------

Rows deviations(const Rows& in, Count p, double d, Count maType) {
  Rows out(in.size(), kNull);
  CFeedkit::StandardDeviations(in, p, d, maType, out);
  return out;
}

Operation resumableDeviations(Count p, double d, Count maType) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::StandardDeviations(store, prices.close, p, d, maType, out);
  };
}

Rows batchDeviationsTwin(const Rows& in, Count p, double d, Count maType) {
  Rows out(in.size(), kNull), m(in.size(), kNull);
  if (p < 1 || p >= rowsOf(in)) return out;
  CFeedkit::movingAverageByType(in, p, maType, m);
  double sum = 0, sumSquares = 0;
  for (Count i = p + 1; i < rowsOf(in); ++i) {
    if (i == p + 1) {
      for (Count j = 2; j <= p + 1; ++j) {
        sum = sum + nz(in[j]);
        sumSquares = sumSquares + nz(in[j]) * nz(in[j]);
      }
    } else {
      sum = sum - nz(in[i - p]);
      sum = sum + nz(in[i]);
      sumSquares = sumSquares - nz(in[i - p]) * nz(in[i - p]);
      sumSquares = sumSquares + nz(in[i]) * nz(in[i]);
    }
    const double var = sumSquares / static_cast<double>(p) - nz(m[i]) * nz(m[i]);
    out[i] = std::sqrt(var) * d;
  }
  return out;
}

Rows resumableDeviationsTwin(const PriceRows& prices, Count p, double d, Count maType) {
  const Rows& in = prices.close;
  Rows out(in.size(), kNull);
  if (p < 1 || p > rowsOf(in)) return out;
  const Rows m = runAtOnce(prices, [=](WorkStore& store, const PriceSources& sources, Target target) {
                   return CTechnicalFunctions::movingAverageByType(store, sources.close, p, maType, target);
                 }).rows;
  const Count first = std::max(firstValueIndex(in), firstValueIndex(m));
  for (Count i = first; i < rowsOf(in); ++i) {
    double sum = 0;
    for (Count j = i - p + 1; j <= i; ++j) sum = sum + (nz(in[j]) - nz(m[i])) * (nz(in[j]) - nz(m[i]));
    out[i] = std::sqrt(sum / static_cast<double>(p)) * d;
  }
  return out;
}

TEST(StandardDeviationsBatch, ByHand) {
  // Row 3 holds 3 and 5: (9 + 25) / 2 - 4 * 4 = 1. Row 4 holds 5 and 7: (25 + 49) / 2 - 6 * 6 = 1.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 2, 2}, deviations({0, 1, 3, 5, 7}, 2, 2.0, kSimple)));
}

TEST(StandardDeviationsBatch, TheMeanIsTheChosenAverageAndMayLeaveANonNumber) {
  // The exponential average (k = 2/3) comes down from 100: 67, 23, 25/3. In row 4 the window holds 1 and 1,
  // so that the difference is 1 - (25/3)^2.
  const Rows out = deviations({0, 100, 100, 1, 1}, 2, 1.0, kExponential);
  EXPECT_NEAR(std::sqrt((10000.0 + 1.0) / 2 - 23.0 * 23.0), out[3], 1e-9);
  EXPECT_TRUE(std::isnan(out[4]));
}

TEST(StandardDeviationsBatch, TheSumSlidesSoANonFiniteValueStays) {
  // The weighted average adds its windows afresh and is 1 again in row 4; the sum of squares is not.
  const Rows out = deviations({0, 1, kInf, 1, 1, 1, 1}, 2, 1.0, kWeighted);
  for (std::size_t i = 4; i < out.size(); ++i) EXPECT_TRUE(std::isnan(out[i])) << i;
}

TEST(StandardDeviationsBatch, NullsCountAsZero) {
  EXPECT_TRUE(sameRows(deviations({0, 1, 0, 5, 7, 0}, 2, 1.0, kSimple),
                       deviations({0, 1, kNull, 5, 7, kNull}, 2, 1.0, kSimple)));
}

TEST(StandardDeviationsResumable, ByHand) {
  // The window's own mean is 2 in row 1, 4 in row 2, 6 in row 3: each row is 1 away from it.
  const PriceRows prices = closesOf({1, 3, 5, 7});
  EXPECT_TRUE(sameRows(Rows{kNull, 2, 2, 2}, runAtOnce(prices, resumableDeviations(2, 2.0, kSimple)).rows));
}

TEST(StandardDeviationsResumable, RowsStartAtTheHigherLead) {
  const PriceRows prices = closesOf({kNull, kNull, 1, 3, 5});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 1, 1},
                       runAtOnce(prices, resumableDeviations(2, 1.0, kSimple)).rows));
}

TEST(StandardDeviations, AreTheSlowTwinForEveryShapeLengthAndAverage) {
  for (Count p : kSmallPeriods) {
    forShortSeries(p, [p](const PriceRows& prices) {
      for (Count type = 0; type <= 9; ++type) {
        EXPECT_TRUE(
            sameRows(batchDeviationsTwin(prices.close, p, 2.0, type), deviations(prices.close, p, 2.0, type)))
            << "batch, type " << type;
        EXPECT_TRUE(sameRows(resumableDeviationsTwin(prices, p, 2.0, type),
                             runAtOnce(prices, resumableDeviations(p, 2.0, type)).rows))
            << "resumable, type " << type;
      }
    });
  }
}

TEST(StandardDeviations, APeriodOutOfRangeDoesNothing) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  for (Count p : kBadPeriods) {
    EXPECT_TRUE(sameRows(Rows(60, kNull), deviations(prices.close, p, 1.0, kSimple))) << p;
    if (p != 60) expectNothingDone(prices, resumableDeviations(p, 1.0, kSimple));
  }
  EXPECT_FALSE(isNull(runAtOnce(prices, resumableDeviations(60, 1.0, kSimple)).rows[59]));
}

TEST(StandardDeviations, DeviationsAreAPlainFactor) {
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  for (double d : {-2.0, 0.0, 1e300}) {
    EXPECT_TRUE(
        sameRows(batchDeviationsTwin(prices.close, 4, d, kSimple), deviations(prices.close, 4, d, kSimple)));
    EXPECT_TRUE(sameRows(resumableDeviationsTwin(prices, 4, d, kSimple),
                         runAtOnce(prices, resumableDeviations(4, d, kSimple)).rows));
  }
}

TEST(StandardDeviationsResumable, StreamsLikeOneCall) {
  for (Count type = 1; type <= 8; ++type) {
    SCOPED_TRACE(::testing::Message() << "type " << type);
    expectStreams(resumableDeviations(5, 2.0, type));
  }
  expectRepeatable(makePrices(Shape::kWalk, 30), resumableDeviations(5, 2.0, kSimple));
}

}  // namespace
}  // namespace brindlewort
