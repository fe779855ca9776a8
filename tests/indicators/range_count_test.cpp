#include "indicators/range_count.hpp"

#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

/// Both directions: the operations, and what makes a step count.
struct Direction {
  void (*batch)(View, Count, Out);
  Status (*resumable)(WorkStore&, Source, Count, Target);
  bool (*counts)(double now, double before);
  Count firstBatchStep;
};
const Direction kDirections[] = {
    {CFeedkit::RANGEUPCOUNT, CTechnicalFunctions::RANGEUPCOUNT,
     [](double now, double before) { return now > before; }, 1},
    {CFeedkit::RANGEDOWNCOUNT, CTechnicalFunctions::RANGEDOWNCOUNT,
     [](double now, double before) { return now < before; }, 2},
};

BatchOperation batch(const Direction& d, Count p) {
  return [=](const Prices& prices, Out out) { d.batch(prices.close, p, out); };
}
Operation resumable(const Direction& d, Count p) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return d.resumable(store, prices.close, p, out);
  };
}

/// Counts each window afresh.
Rows literalCount(View in, Count p, const Direction& d, Count firstStep, Count firstRow) {
  Rows out(in.size(), kNull);
  for (Count i = firstRow; i < rowsOf(in); ++i) {
    double sum = 0;
    for (Count j = i - p + 1; j <= i; ++j) {
      if (j >= firstStep && d.counts(nz(in[j]), nz(in[j - 1]))) sum += 1;
    }
    out[i] = sum;
  }
  return out;
}

TEST(RangeCount, BatchIsTheRule) {
  for (const Direction& d : kDirections) {
    for (Count p : {1, 2, 5}) {
      forEachShortSeries(static_cast<int>(5 * p), [&](const PriceRows& prices) {
        const Count n = rowsOf(prices.close);
        const Rows expected = p < n ? literalCount(prices.close, p, d, d.firstBatchStep, p) : Rows(n, kNull);
        EXPECT_TRUE(sameRows(expected, runBatch(prices, batch(d, p))));
      });
    }
  }
}

TEST(RangeCount, FirstResumableCallIsTheRule) {
  for (const Direction& d : kDirections) {
    for (Count p : {1, 2, 5}) {
      forEachShortSeries(static_cast<int>(5 * p), [&](const PriceRows& prices) {
        const Count n = rowsOf(prices.close);
        const Count lead = firstValueIndex(prices.close);
        const RunResult result = runAtOnce(prices, resumable(d, p));
        EXPECT_TRUE(sameRows(literalCount(prices.close, p, d, lead + 1, lead + p), result.rows));
        EXPECT_EQ(result.status, lead + p < n ? kDone : kNothingDone);
      });
    }
  }
}

TEST(RangeCount, ByHand) {
  // Steps:                         up down flat up  up  down
  const PriceRows prices = pointPrices({5, 6, 4, 4, 7, 8, 1});
  const auto& [up, down] = kDirections;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 1, 1, 2, 2}, runBatch(prices, batch(up, 3))));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 1, 1, 0, 1}, runBatch(prices, batch(down, 3))));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 1, 1, 2, 2}, runResumable(prices, resumable(up, 3))));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 1, 1, 0, 1}, runResumable(prices, resumable(down, 3))));
}

TEST(RangeCount, BatchNeverCountsAFallIntoRowOne) {
  const PriceRows prices = pointPrices({9, 5, 4});
  const auto& [up, down] = kDirections;
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 1}, runBatch(prices, batch(down, 1))));
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 1}, runResumable(prices, resumable(down, 1))));
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 1}, runBatch(pointPrices({4, 5, 9}), batch(up, 1))));
}

TEST(RangeCount, ConstantSeriesCountsNothing) {
  const PriceRows prices = makePrices(Shape::kFlat, 12);
  const Rows expected = {kNull, kNull, kNull, kNull, 0, 0, 0, 0, 0, 0, 0, 0};
  for (const Direction& d : kDirections) {
    EXPECT_TRUE(sameRows(expected, runBatch(prices, batch(d, 4))));
    EXPECT_TRUE(sameRows(expected, runResumable(prices, resumable(d, 4))));
  }
}

TEST(RangeCount, PeriodOutOfRange) {
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  for (const Direction& d : kDirections) {
    for (Count p : {Count{INT32_MIN}, Count{-1}, Count{0}, Count{10}, Count{INT32_MAX}}) {
      EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(prices, batch(d, p))));
      expectNothingDone(prices, resumable(d, p));  // p = 10 passes the test but has no row
    }
  }
}

TEST(RangeCount, StreamsLikeOneCall) {
  for (const Direction& d : kDirections) {
    for (Count p : {1, 2, 6}) expectStreamsOverAllShapes(resumable(d, p));
  }
}

}  // namespace
}  // namespace brindlewort
