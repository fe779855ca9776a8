#include "indicators/average_twins.hpp"
#include "indicators/bands.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/regression.hpp"
#include "support/price_forms.hpp"

// Correlation, historical volatility and the trend classifiers.
namespace brindlewort {
namespace {

using namespace testing;

const Count kFarOut[] = {INT32_MIN, INT32_MIN + 1, -1, INT32_MAX};

// ---- CORRELATIONANALYSIS ----------------------------------------------------------------------------

double literalCorrelation(const Rows& a, const Rows& b) {
  if (a.size() != b.size() || a.empty()) return 0;
  double sum = 0;
  for (std::size_t i = 2; i < a.size(); ++i) {
    const double da = std::fabs(nz(a[i]) - nz(a[i - 1]));
    const double db = std::fabs(nz(b[i]) - nz(b[i - 1]));
    sum += da * db;
  }
  return 1 - sum / (static_cast<double>(a.size()) - 2);
}

// Steps from row 2 on: 3 and 1 of a, 2 and 5 of b: 1 - (3 * 2 + 1 * 5) / 2.
TEST(Correlation, ByHandWithoutTheStepIntoRowOne) {
  const Rows a = {90, 1, 4, 3}, b = {70, 5, 3, 8};
  EXPECT_EQ(1 - 11 / 2.0, CFeedkit::CORRELATIONANALYSIS(a, b));
}

TEST(Correlation, IsTheRule) {
  for (Shape one : kAllShapes) {
    for (Shape other : kAllShapes) {
      for (int n = 0; n < 12; ++n) {
        const Rows a = makeSeries(one, n, 1), b = makeSeries(other, n, 2);
        EXPECT_TRUE(sameBits(literalCorrelation(a, b), CFeedkit::CORRELATIONANALYSIS(a, b)));
      }
    }
  }
}

TEST(Correlation, SizesThatDifferOrNoRowsGiveZero) {
  const Rows two = {1, 2}, three = {1, 2, 3};
  EXPECT_EQ(0.0, CFeedkit::CORRELATIONANALYSIS(two, three));
  EXPECT_EQ(0.0, CFeedkit::CORRELATIONANALYSIS({}, {}));
}

TEST(Correlation, TwoRowsDivideByZero) {
  const Rows two = {1, 2};
  EXPECT_TRUE(std::isnan(CFeedkit::CORRELATIONANALYSIS(two, two)));
}

TEST(Correlation, ResumableWritesNoRowAndSetsTheSlot) {
  const Rows a = makeSeries(Shape::kWalk, 9), b = makeSeries(Shape::kNullHead, 9);
  Rows out(9, kNull);
  std::int32_t slot = -1;
  EXPECT_EQ(kDone, CTechnicalFunctions::CORRELATIONANALYSIS({a, "A"}, {b, "B"}, {out, &slot}));
  EXPECT_EQ(9, slot);
  EXPECT_TRUE(sameRows(Rows(9, kNull), out));
}

TEST(Correlation, ResumableNeedsARowBehindTheHigherLead) {
  const Rows a = {1, 2, 3}, b = {kNull, kNull, 3};
  Rows out(3, kNull);
  std::int32_t slot = -1;
  EXPECT_EQ(kNothingDone, CTechnicalFunctions::CORRELATIONANALYSIS({a, "A"}, {b, "B"}, {out, &slot}));
  EXPECT_EQ(kNothingDone, CTechnicalFunctions::CORRELATIONANALYSIS({a, "A"}, {{}, "9"}, {out, &slot}));
  EXPECT_EQ(-1, slot);
}

// ---- HistoricalVolatilityIndex ----------------------------------------------------------------------

BatchOperation batchVolatility(Count p, Count barHistory, double deviations) {
  return [=](const Prices& prices, Out out) {
    CFeedkit::HistoricalVolatilityIndex(prices.close, p, barHistory, deviations, out);
  };
}
Operation resumableVolatility(Count p, Count barHistory, double deviations) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::HistoricalVolatilityIndex(store, prices.close, p, barHistory, deviations,
                                                          out);
  };
}

// Returns of rows 2 and 3: log10(10) = 1 and log10(1000) = 3, deviation 1; times 1.5 * sqrt(4) * 100.
TEST(HistoricalVolatility, BatchByHandInLogarithmsToBaseTen) {
  const Rows out = runBatch(pointPrices({7, 2, 20, 20000}), batchVolatility(2, 4, 1.5));
  EXPECT_TRUE(isNull(out[0]) && isNull(out[1]));
  EXPECT_EQ(0.0, out[2]);  // the deviation has no value yet
  EXPECT_DOUBLE_EQ(300.0, out[3]);
}

// Returns of rows 1 and 2: 1 and 3 in natural logarithms, so the same deviation one row earlier.
TEST(HistoricalVolatility, ResumableByHandInNaturalLogarithms) {
  const Rows out =
      runResumable(pointPrices({2, 2 * std::exp(1.0), 2 * std::exp(4.0)}), resumableVolatility(2, 4, 1.5));
  EXPECT_TRUE(isNull(out[0]) && isNull(out[1]));
  EXPECT_NEAR(300.0, out[2], 1e-9);
}

TEST(HistoricalVolatility, BatchIsTheRule) {
  for (Count p : {1, 3}) {
    forEachShortSeries(static_cast<int>(5 * p), [p](const PriceRows& prices) {
      const std::size_t n = prices.close.size();
      Rows returns(n, kNull), deviation(n, kNull), expected(n, kNull);
      for (std::size_t i = 2; i < n; ++i)
        returns[i] = std::log10(nz(prices.close[i]) / nz(prices.close[i - 1]));
      CFeedkit::StandardDeviations(returns, p, 2.0, kSimple, deviation);
      for (std::size_t i = 2; i < n && p <= rowsOf(prices.close); ++i) {
        expected[i] = nz(deviation[i]) * std::sqrt(250.0) * 100;
      }
      EXPECT_TRUE(sameRows(expected, runBatch(prices, batchVolatility(p, 250, 2.0))));
    });
  }
}

TEST(HistoricalVolatility, FirstResumableCallIsTheRule) {
  for (Count p : {1, 3}) {
    forEachShortSeries(static_cast<int>(5 * p), [p](const PriceRows& prices) {
      const std::size_t n = prices.close.size();
      PriceRows returns = prices;
      returns.close.assign(n, kNull);
      for (std::size_t i = 1; i < n; ++i) {
        const double before = nz(prices.close[i - 1]);
        returns.close[i] = before > 0 ? std::log(nz(prices.close[i]) / before) : 0.0;
      }
      const Rows deviation = runResumable(returns, [p](WorkStore& store, const PriceSources& x, Target out) {
        return CTechnicalFunctions::StandardDeviations(store, x.close, p, 2.0, kSimple, out);
      });
      Rows expected(n, kNull);
      for (std::size_t i = static_cast<std::size_t>(firstValueIndex(deviation)); i < n; ++i) {
        expected[i] = nz(deviation[i]) * std::sqrt(250.0) * 100;
      }
      EXPECT_TRUE(sameRows(expected, runResumable(prices, resumableVolatility(p, 250, 2.0))));
    });
  }
}

TEST(HistoricalVolatility, ResumableGuardsThePreviousValueAndBatchDoesNot) {
  const PriceRows prices = pointPrices({0, 0, 5, 5, 5, 5});
  const Rows guarded = runResumable(prices, resumableVolatility(2, 1, 1.0));
  EXPECT_EQ(0.0, guarded[5]);
  EXPECT_TRUE(std::isnan(
      runBatch(prices, batchVolatility(2, 1, 1.0))[5]));  // the infinity of row 2 stays in the sums
}

TEST(HistoricalVolatility, ArgumentsOutOfRange) {
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  const auto expectNothing = [&](Count p, Count barHistory, double deviations) {
    EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(prices, batchVolatility(p, barHistory, deviations))));
    expectNothingDone(prices, resumableVolatility(p, barHistory, deviations));
  };
  for (Count p : kFarOut) expectNothing(p, 1, 1.0);
  expectNothing(0, 1, 1.0);
  expectNothing(11, 1, 1.0);
  expectNothing(3, -1, 1.0);
  expectNothing(3, INT32_MIN, 1.0);
  expectNothing(3, 1, -0.001);
  expectNothing(3, 1, 100.001);
  expectNothing(3, 1, kNaN);
}

TEST(HistoricalVolatility, BoundsOfTheRangesAreIncluded) {
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  EXPECT_EQ(0.0, runBatch(prices, batchVolatility(3, 0, 100.0))[9]);
  EXPECT_EQ(0.0, runBatch(prices, batchVolatility(3, 1, 0.0))[9]);
  EXPECT_EQ(0.0, runBatch(prices, batchVolatility(10, 1, 1.0))[9]);  // no deviation, but rows from 2
  EXPECT_EQ(0.0, runResumable(prices, resumableVolatility(3, 0, 100.0))[9]);
}

TEST(HistoricalVolatility, StreamsLikeOneCall) {
  // Positive series: where a step falls to 0 or below, the logarithm is not finite.
  for (Shape shape : {Shape::kWalk, Shape::kFlat, Shape::kRising, Shape::kSteps}) {
    for (Count p : {1, 2, 5})
      expectStreamsLikeOneCall(makePrices(shape, 40), resumableVolatility(p, 250, 1.0));
  }
}

// ---- TREND ------------------------------------------------------------------------------------------

BatchOperation batchTrend(Count p) {
  return [=](const Prices& prices, Out out) { CFeedkit::TREND(prices.close, p, out); };
}
Operation resumableTrend(Count p) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::TREND(store, prices.close, p, out);
  };
}

double literalDirection(double v, double b) {
  if (b * 1.005 < v) return 1;
  if (b * 0.995 <= v) return 3;
  return 2;
}

Rows literalBatchTrend(const Rows& in, Count p) {
  const Count n = rowsOf(in);
  const Rows m = literalSimpleBatch(in, p);
  Rows out(in.size(), kNull);
  for (Count i = 1; i <= p && i < n; ++i) out[i] = literalDirection(nz(in[i]), nz(in[1]));
  for (Count i = p + 1; i < n; ++i) out[i] = literalDirection(nz(m[i]), nz(m[i - p]));
  return out;
}

/// Compares each step of each window.
Rows literalResumableTrend(const Rows& in, Count p) {
  Rows out(in.size(), kNull);
  for (Count i = firstValueIndex(in) + p - 1; i < rowsOf(in); ++i) {
    bool up = true, down = true;
    for (Count j = i; j >= i - p + 2; --j) {
      up = up && in[j] > in[j - 1];
      down = down && in[j] < in[j - 1];
    }
    out[i] = up ? 1 : down ? 2 : 3;
  }
  return out;
}

TEST(Trend, BatchIsTheRule) {
  for (Count p : {1, 2, 5}) {
    forEachShortSeries(static_cast<int>(5 * p), [p](const PriceRows& prices) {
      EXPECT_TRUE(sameRows(literalBatchTrend(prices.close, p), runBatch(prices, batchTrend(p))));
    });
  }
}

TEST(Trend, FirstResumableCallIsTheRule) {
  for (Count p : {1, 2, 3, 5}) {
    forEachShortSeries(static_cast<int>(5 * p), [p](const PriceRows& prices) {
      EXPECT_TRUE(sameRows(literalResumableTrend(prices.close, p), runResumable(prices, resumableTrend(p))));
    });
  }
}

// Up to row p against row 1; then the averages of two rows against those two rows before, the first of which
// are still null and read as 0.
TEST(Trend, BatchByHand) {
  const Rows close = {9, 100, 102, 101, 104, 90, 90};
  // Averages over 2:    null null null  101.5 102.5  97  90
  EXPECT_TRUE(sameRows(Rows{kNull, 3, 1, 1, 1, 2, 2}, runBatch(pointPrices(close), batchTrend(2))));
}

TEST(Trend, ResumableByHand) {
  const Rows close = {1, 2, 3, 3, 2, 1, 4};
  EXPECT_TRUE(
      sameRows(Rows{kNull, kNull, 1, 3, 3, 2, 3}, runResumable(pointPrices(close), resumableTrend(3))));
}

TEST(Trend, HalfAPercentAsDoublesHoldItReadsSideways) {
  const auto second = [](double base, double value) {
    return runBatch(pointPrices({0, base, value}), batchTrend(2))[2];
  };
  EXPECT_EQ(3.0, second(100, 100 * 1.005));
  EXPECT_EQ(1.0, second(100, std::nextafter(100 * 1.005, 200)));
  EXPECT_EQ(1.0, second(200, 201));  // 200 * 1.005 is a trifle below 201
  EXPECT_EQ(3.0, second(200, 199));
  EXPECT_EQ(2.0, second(200, std::nextafter(199.0, 0.0)));
}

TEST(Trend, BatchReadsANonNumberAsDown) {
  EXPECT_EQ(2.0, runBatch(pointPrices({1, 2, kNaN, 3}), batchTrend(3))[2]);
}

TEST(Trend, BatchHasNoRangeOfItsOwn) {
  const PriceRows prices = makePrices(Shape::kRising, 6);
  // No average: every row is set against row 1, which is 11; row 1 itself is sideways.
  const Rows raw = {kNull, 3, 1, 1, 1, 1};
  EXPECT_TRUE(sameRows(raw, runBatch(prices, batchTrend(6))));
  EXPECT_TRUE(sameRows(raw, runBatch(prices, batchTrend(INT32_MAX))));
  // Nothing against nothing.
  EXPECT_TRUE(sameRows(Rows{kNull, 3, 3, 3, 3, 3}, runBatch(prices, batchTrend(0))));
  // A base ahead of its row would lie outside the series.
  EXPECT_TRUE(sameRows(Rows(6, kNull), runBatch(prices, batchTrend(-1))));
  EXPECT_TRUE(sameRows(Rows(6, kNull), runBatch(prices, batchTrend(INT32_MIN))));
}

TEST(Trend, ResumablePeriodOutOfRange) {
  for (Count p : kFarOut) expectNothingDone(makePrices(Shape::kWalk, 10), resumableTrend(p));
  expectNothingDone(makePrices(Shape::kWalk, 10), resumableTrend(0));
  expectNothingDone(makePrices(Shape::kWalk, 10), resumableTrend(11));
  EXPECT_EQ(1.0, runResumable(makePrices(Shape::kRising, 10), resumableTrend(10))[9]);
}

TEST(Trend, WindowOfOneRowHasNoStepsAndIsUp) {
  EXPECT_TRUE(sameRows(Rows{1, 1, 1}, runResumable(pointPrices({3, 2, 1}), resumableTrend(1))));
}

TEST(Trend, StreamsLikeOneCall) {
  for (Count p : {1, 2, 4}) expectStreamsOverAllShapes(resumableTrend(p));
}

// ---- TRENDSCORE -------------------------------------------------------------------------------------

BatchOperation batchScore(Count p, Count count) {
  return [=](const Prices& prices, Out out) { CFeedkit::TRENDSCORE(prices.close, p, count, out); };
}
Operation resumableScore(Count p, Count count) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::TRENDSCORE(store, prices.close, p, count, out);
  };
}

Rows literalScore(const Rows& in, Count p, Count c) {
  const Count n = rowsOf(in);
  const Count lead = firstValueIndex(in);
  Rows out(in.size(), kNull), state(in.size(), kNull);
  if (p < 1 || p > n || c < 2 || c > n || lead + p + c >= n) return out;
  for (Count i = lead + p; i < n; ++i) {
    const double x = nz(in[i]), before = nz(in[i - p]);
    state[i] = x > before ? 1 : x < before ? -1 : i == lead + p ? 1 : state[i - 1];
  }
  for (Count i = lead + p + c - 1; i < n; ++i) {
    double sum = 0;
    for (Count j = i - c + 1; j <= i; ++j) sum += state[j];
    out[i] = sum;
  }
  return out;
}

TEST(TrendScore, BothFormsAreTheRule) {
  for (Count p : {1, 3}) {
    for (Count count : {2, 5}) {
      forEachShortSeries(20, [=](const PriceRows& prices) {
        const Rows expected = literalScore(prices.close, p, count);
        EXPECT_TRUE(sameRows(expected, runBatch(prices, batchScore(p, count))));
        EXPECT_TRUE(sameRows(expected, runResumable(prices, resumableScore(p, count))));
      });
    }
  }
}

TEST(TrendScore, ByHandWithEqualRowsRepeatingTheStateBefore) {
  // States:                   1 (equal) -1 -1 (equal) 1
  const PriceRows prices = pointPrices({5, 5, 4, 4, 6});
  const Rows expected = {kNull, kNull, 0, -2, 0};
  EXPECT_TRUE(sameRows(expected, runBatch(prices, batchScore(1, 2))));
  EXPECT_TRUE(sameRows(expected, runResumable(prices, resumableScore(1, 2))));
}

TEST(TrendScore, FirstCallNeedsARowMoreThanItsPeriods) {
  const PriceRows prices = makePrices(Shape::kRising, 6);
  EXPECT_TRUE(sameRows(Rows(6, kNull), runBatch(prices, batchScore(4, 2))));
  expectNothingDone(prices, resumableScore(4, 2));
  EXPECT_EQ(2.0, runBatch(prices, batchScore(3, 2))[5]);
  EXPECT_EQ(2.0, runResumable(prices, resumableScore(3, 2))[5]);
}

TEST(TrendScore, ArgumentsOutOfRange) {
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  const auto expectNothing = [&](Count p, Count count) {
    EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(prices, batchScore(p, count))));
    expectNothingDone(prices, resumableScore(p, count));
  };
  for (Count x : kFarOut) {
    expectNothing(x, 2);
    expectNothing(2, x);
  }
  expectNothing(0, 2);
  expectNothing(2, 1);
  expectNothing(11, 2);
  expectNothing(2, 11);
}

TEST(TrendScore, StreamsLikeOneCall) {
  for (Count p : {1, 3}) {
    for (Count count : {2, 6}) expectStreamsOverAllShapes(resumableScore(p, count));
  }
}

TEST(TrendScore, EqualFirstRowTakesOneOnResumedCallsToo) {
  // The first state stands at row 1; the last bar is computed anew while it is that row.
  const PriceRows prices = pointPrices({5, 5});
  TestStore store(2);
  WorkField states = store.field("TrendScore", {Source{prices.close, "CLOSE"}, Count{1}, Count{2}});
  *states.slot = 2;
  states.rows[1] = -1;
  Rows out(2, kNull);
  std::int32_t slot = 2;
  CTechnicalFunctions::TRENDSCORE(store, {prices.close, "CLOSE"}, 1, 2, {out, &slot});
  EXPECT_EQ(1.0, store.field("TrendScore", {Source{prices.close, "CLOSE"}, Count{1}, Count{2}}).rows[1]);
}

}  // namespace
}  // namespace brindlewort
