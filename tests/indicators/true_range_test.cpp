#include "indicators/true_range.hpp"

#include "indicators/average_twins.hpp"
#include "indicators/moving_averages.hpp"
#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

const BatchOperation kBatchRange = [](const Prices& p, Out out) { CFeedkit::TrueRange(p, out); };
const Operation kResumableRange = [](WorkStore&, const PriceSources& p, Target out) {
  return CTechnicalFunctions::TrueRange(p, out);
};

BatchOperation batchAverage(Count p, Count type) {
  return [=](const Prices& prices, Out out) { CFeedkit::AverageTrueRange(prices, p, type, out); };
}
Operation resumableAverage(Count p, Count type) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::AverageTrueRange(store, prices, p, type, out);
  };
}

/// The greatest of the three distances from row `first` on; `fromZero` starts the comparison at 0.
Rows literalRange(const PriceRows& p, Count first, bool fromZero) {
  Rows out(p.close.size(), kNull);
  for (Count i = first; i < rowsOf(p.close); ++i) {
    const double distances[] = {p.high[i] - p.low[i], std::fabs(p.high[i] - p.close[i - 1]),
                                std::fabs(p.close[i - 1] - p.low[i])};
    double greatest = fromZero ? 0.0 : distances[0];
    for (double d : distances) {
      if (d > greatest) greatest = d;
    }
    out[i] = greatest;
  }
  return out;
}

Rows literalReach(const PriceRows& p, Count first) {
  Rows out(p.close.size(), kNull);
  for (Count i = first; i < rowsOf(p.close); ++i) {
    const double top = p.high[i] < p.close[i - 1] ? p.close[i - 1] : p.high[i];
    const double bottom = p.close[i - 1] < p.low[i] ? p.close[i - 1] : p.low[i];
    out[i] = top - bottom;
  }
  return out;
}

//                                    gap up: |H - C1|   gap down: |C1 - L|   inside: H - L
const PriceRows kThreeKinds = {
    {5, 5, 5, 5, 5}, {9, 9, 14, 8, 9}, {4, 4, 12, 5, 7}, {6, 8, 13, 7.5, 8}, {1, 1, 1, 1, 1}};

TEST(TrueRange, ByHandAndBatchLeavesRowOneNull) {
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 6, 8, 2}, runBatch(kThreeKinds, kBatchRange)));
  EXPECT_TRUE(sameRows(Rows{kNull, 5, 6, 8, 2}, runResumable(kThreeKinds, kResumableRange)));
}

TEST(TrueRange, IsTheGreatestOfThreeDistances) {
  forEachShortSeries(8, [](const PriceRows& prices) {
    EXPECT_TRUE(sameRows(literalRange(prices, 2, false), runBatch(prices, kBatchRange)));
    EXPECT_TRUE(sameRows(literalRange(prices, 1, true), runResumable(prices, kResumableRange)));
  });
}

TEST(TrueRange, ResumableStartsItsComparisonFromZero) {
  // High and low are swapped and the close before is no number: no distance is above 0.
  const PriceRows prices = {{1, 1, 1}, {1, 1, 1}, {2, 2, 2}, {kNaN, kNaN, kNaN}, {1, 1, 1}};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, -1}, runBatch(prices, kBatchRange)));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0}, runResumable(prices, kResumableRange)));
}

TEST(TrueRange, NullPricesAreReadAsTheyStand) {
  const PriceRows prices = {{1, 1, 1}, {5, 5, 5}, {4, 4, 4}, {4, kNull, 4}, {1, 1, 1}};
  EXPECT_EQ(5 - kNull, runBatch(prices, kBatchRange)[2]);
  EXPECT_EQ(5 - kNull, runResumable(prices, kResumableRange)[2]);
}

TEST(TrueRange, StreamsLikeOneCall) {
  expectStreamsOverAllShapes(kResumableRange);
}

TEST(TrueRange, OneBarHasNoRange) {
  expectNothingDone(makePrices(Shape::kWalk, 1), kResumableRange);
  expectNothingDone({}, kResumableRange);
}

TEST(AverageTrueRange, TypedBatchIsTheAverageOfTheReach) {
  for (Count type = 0; type <= 9; ++type) {
    for (Count p : {1, 3}) {
      forEachShortSeries(static_cast<int>(5 * p), [=](const PriceRows& prices) {
        Rows expected(prices.close.size(), kNull);
        CFeedkit::movingAverageByType(literalReach(prices, 2), p, type, expected);
        EXPECT_TRUE(sameRows(expected, runBatch(prices, batchAverage(p, type))));
      });
    }
  }
}

TEST(AverageTrueRange, TypedResumableIsTheAverageOfTheReach) {
  for (Count type = 0; type <= 9; ++type) {
    for (Count p : {1, 3}) {
      forEachShortSeries(static_cast<int>(5 * p), [=](const PriceRows& prices) {
        PriceRows reach;
        reach.close = literalReach(prices, 1);
        const auto average = [=](WorkStore& store, const PriceSources& x, Target out) {
          return CTechnicalFunctions::movingAverageByType(store, x.close, p, type, out);
        };
        reach.open = reach.high = reach.low = reach.volume = reach.close;
        EXPECT_TRUE(sameRows(runResumable(reach, average), runResumable(prices, resumableAverage(p, type))));
      });
    }
  }
}

TEST(AverageTrueRange, WilderBatchSeedsWithTheSimpleAverageAtRowPPlusOne) {
  for (Count p : {1, 2, 5}) {
    forEachShortSeries(static_cast<int>(5 * p), [=](const PriceRows& prices) {
      const Count n = rowsOf(prices.close);
      const Rows range = literalRange(prices, 2, false);
      const Rows simple = literalSimpleBatch(range, p);
      Rows expected(prices.close.size(), kNull);
      for (Count i = p + 1; i < n; ++i) {
        const double periods = static_cast<double>(p);
        expected[i] = i == p + 1 ? simple[i] : ((periods - 1) * expected[i - 1] + range[i]) / periods;
      }
      EXPECT_TRUE(sameRows(expected, runBatch(prices, batchAverage(p, kWilderRange))));
      EXPECT_TRUE(sameRows(expected, runBatch(prices, batchAverage(p, -7))));
    });
  }
}

TEST(AverageTrueRange, WilderResumableSeedsWithTheSimpleAverageAtRowP) {
  for (Count p : {1, 2, 5}) {
    forEachShortSeries(static_cast<int>(5 * p), [=](const PriceRows& prices) {
      const Count n = rowsOf(prices.close);
      const Rows range = literalRange(prices, 1, true);
      Rows expected(prices.close.size(), kNull);
      for (Count i = p; i < n; ++i) {
        const double periods = static_cast<double>(p);
        double sum = 0;
        for (Count j = p; j >= 1; --j) sum += range[j];  // newest row first, as simple averages add
        expected[i] = i == p ? sum / periods : ((periods - 1) * expected[i - 1] + range[i]) / periods;
      }
      const RunResult result = runAtOnce(prices, resumableAverage(p, kWilderRange));
      EXPECT_TRUE(sameRows(expected, result.rows));
      EXPECT_EQ(result.status, p < n ? kDone : kNothingDone);
    });
  }
}

// Ranges of the rows from 1: 5, 6, 8, 2. Batch seed at row 3: (6 + 8) / 2; resumable seed at row 2: (5 + 6)
// / 2.
TEST(AverageTrueRange, WilderByHand) {
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 7, (1 * 7 + 2) / 2.0},
                       runBatch(kThreeKinds, batchAverage(2, kWilderRange))));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 5.5, (1 * 5.5 + 8) / 2, (1 * 6.75 + 2) / 2},
                       runResumable(kThreeKinds, resumableAverage(2, kWilderRange))));
}

TEST(AverageTrueRange, PeriodOutOfRange) {
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  for (Count type : {kWilderRange, Count{kSimple}, Count{kExponential}, Count{99}}) {
    for (Count p : {Count{INT32_MIN}, Count{-1}, Count{0}, Count{10}, Count{INT32_MAX}}) {
      EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(prices, batchAverage(p, type))));
      expectNothingDone(prices, resumableAverage(p, type));  // p = 10 passes the test but has no row
    }
    EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(prices, batchAverage(9, type == 2 ? 1 : type))));
  }
}

// Without null prices: read as they stand, those make ranges of a billion, whose rounding a sliding sum keeps
// and a sum formed afresh does not.
TEST(AverageTrueRange, StreamsLikeOneCall) {
  for (Shape shape :
       {Shape::kWalk, Shape::kFlat, Shape::kRising, Shape::kZeros, Shape::kNegative, Shape::kSteps}) {
    for (Count type : {-1, 1, 2, 3, 5, 6, 8}) {
      for (Count p : {2, 5}) expectStreamsLikeOneCall(makePrices(shape, 40), resumableAverage(p, type));
    }
  }
}

TEST(AverageTrueRange, ResumedCallWithALongerPeriodSeedsAgain) {
  const PriceRows prices = makePrices(Shape::kWalk, 12);
  TestStore store(12);
  Rows rows(12, kNull);
  std::int32_t slot = 4;  // rows of a shorter period stood here
  ASSERT_EQ(kDone, CTechnicalFunctions::AverageTrueRange(store, sourcesOf(prices, 12), 8, kWilderRange,
                                                         {rows, &slot}));
  EXPECT_TRUE(sameRows(runResumable(prices, resumableAverage(8, kWilderRange)), rows));
}

}  // namespace
}  // namespace brindlewort
