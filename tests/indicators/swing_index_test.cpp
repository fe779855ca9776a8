#include "indicators/swing_index.hpp"

#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

constexpr double kLimits[] = {3.0, 0.5, -2.0, 0.0, kNaN, kInf};

BatchOperation swing(double limit) {
  return [=](const Prices& p, Out out) { CFeedkit::SwingIndex(p, limit, out); };
}
BatchOperation accumulated(double limit) {
  return [=](const Prices& p, Out out) { CFeedkit::AccumulativeSwingIndex(p, limit, out); };
}
Operation resumedSwing(double limit) {
  return [=](WorkStore& store, const PriceSources& p, Target out) {
    return CTechnicalFunctions::SwingIndex(store, p, limit, out);
  };
}
Operation resumedAccumulated(double limit) {
  return [=](WorkStore& store, const PriceSources& p, Target out) {
    return CTechnicalFunctions::AccumulativeSwingIndex(store, p, limit, out);
  };
}

// ---- A slow twin --------------------------------------------------------------------------------------

double swingTwin(const PriceRows& p, double m, std::size_t i) {
  const double O1 = p.open[i - 1], C1 = p.close[i - 1];
  const double a = std::fabs(p.high[i] - C1);
  const double b = std::fabs(p.low[i] - C1);
  const double c = std::fabs(p.high[i] - p.low[i]);
  const double body = std::fabs(C1 - O1);
  const double largest = std::max({a, b, c});
  double r = 0;
  if (largest == a) {
    r = a - b * 0.5 + body * 0.25;
  } else if (largest == b) {
    r = b - a * 0.5 + body * 0.25;
  } else {
    r = c + body * 0.25;
  }
  if (r == 0 || m == 0) return 0;
  const double k = a > b ? a : b;
  const double top = (p.close[i] - C1) + (p.close[i] - p.open[i]) * 0.5 + (C1 - O1) * 0.25;
  return top / r * 50 * k / m;
}

Rows swingsTwin(const PriceRows& p, double m, std::size_t first) {
  Rows out(p.close.size(), kNull);
  for (std::size_t i = first; i < out.size(); ++i) out[i] = swingTwin(p, m, i);
  return out;
}

Rows sumTwin(const Rows& swings, std::size_t first) {
  Rows out(swings.size(), kNull);
  for (std::size_t i = first; i < out.size(); ++i) out[i] = nz(swings[i]) + nz(out[i - 1]);
  return out;
}

// ---- By hand ------------------------------------------------------------------------------------------

/// Two filler bars (the last with open 10 and close 12, so |C1 - O1| * 0.25 = 0.5) and the bar to judge.
PriceRows after(double open, double high, double low, double close) {
  return {{10, 10, open}, {12, 12, high}, {10, 10, low}, {12, 12, close}, {0, 0, 0}};
}

TEST(SwingIndex, TheHighIsFarthestFromTheCloseBefore) {
  // a = 4, b = 1, c = 3: r = 4 - 0.5 + 0.5 = 4; (3 + 1 + 0.5) / 4 * 50 * 4 / 2
  EXPECT_EQ(runBatch(after(13, 16, 13, 15), swing(2))[2], 112.5);
  EXPECT_EQ(runResumable(after(13, 16, 13, 15), resumedSwing(2))[2], 112.5);
}

TEST(SwingIndex, TheLowIsFarthestFromTheCloseBefore) {
  // a = 1, b = 4, c = 3: r = 4 - 0.5 + 0.5 = 4; (-3 - 0.5 + 0.5) / 4 * 50 * 4 / 2
  EXPECT_EQ(runBatch(after(10, 11, 8, 9), swing(2))[2], -75);
  EXPECT_EQ(runResumable(after(10, 11, 8, 9), resumedSwing(2))[2], -75);
}

TEST(SwingIndex, TheRangeIsTheLargest) {
  // a = 2, b = 1.5, c = 3.5: r = 3.5 + 0.5 = 4; (1 + 0.5 + 0.5) / 4 * 50 * 2 / 2
  EXPECT_EQ(runBatch(after(12, 14, 10.5, 13), swing(2))[2], 25);
  EXPECT_EQ(runResumable(after(12, 14, 10.5, 13), resumedSwing(2))[2], 25);
}

TEST(SwingIndex, BatchBeginsAtRowTwoResumableAtRowOne) {
  const PriceRows bars = after(13, 16, 13, 15);
  // Row 1: C1 = 12, O1 = 10, high 12, low 10: a = 0, b = 2, c = 2: b first among equals, r = 2 + 0.5;
  // (0 + 1 + 0.5) / 2.5 * 50 * 2 / 2 = 30
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 112.5}, runBatch(bars, swing(2))));
  EXPECT_TRUE(sameRows(Rows{kNull, 30, 112.5}, runResumable(bars, resumedSwing(2)), nearlySame));
}

TEST(SwingIndex, NoMoveAtAllIsZero) {
  const PriceRows bars = pointPrices({7, 7, 7});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 0}, runBatch(bars, swing(2))));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0}, runResumable(bars, resumedSwing(2))));
}

TEST(SwingIndex, ALimitOfZeroIsNullInBatchAndZeroResumed) {
  const PriceRows bars = after(13, 16, 13, 15);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull}, runBatch(bars, swing(0))));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0}, runResumable(bars, resumedSwing(0))));
}

TEST(SwingIndex, TheWorkSeriesHoldsZeroOnRowZero) {
  const PriceRows bars = after(13, 16, 13, 15);
  TestStore store(3);
  const PriceSources p = sourcesOf(bars, 3);
  Rows out(3, kNull);
  std::int32_t slot = -1;
  EXPECT_EQ(CTechnicalFunctions::SwingIndex(store, p, 2.0, {out, &slot}), kDone);
  const WorkField work = store.field("SWINGI_Temp", {p.open, p.high, p.low, p.close, 2.0});
  EXPECT_EQ(*work.slot, 3);
  EXPECT_EQ(work.rows[0], 0.0);
  EXPECT_EQ(work.rows[2], 112.5);
  EXPECT_TRUE(isNull(out[0]));
}

TEST(AccumulativeSwingIndex, ByHandTheSumOfTheSwings) {
  const PriceRows bars = {
      {10, 10, 13, 10}, {12, 12, 16, 15}, {10, 10, 13, 10}, {12, 12, 15, 12}, {0, 0, 0, 0}};
  // Row 3: C1 = 15, O1 = 13: a = 0, b = 5, c = 5: r = 5 + 0.5; (-3 + 1 + 0.5) / 5.5 * 50 * 5 / 2
  const double third = -1.5 / 5.5 * 50 * 5 / 2;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 112.5, 112.5 + third}, runBatch(bars, accumulated(2)), nearlySame));
  EXPECT_TRUE(
      sameRows(Rows{kNull, 30, 142.5, 142.5 + third}, runResumable(bars, resumedAccumulated(2)), nearlySame));
}

TEST(AccumulativeSwingIndex, ALimitOfZeroSumsToZero) {
  const PriceRows bars = after(13, 16, 13, 15);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 0}, runBatch(bars, accumulated(0))));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0}, runResumable(bars, resumedAccumulated(0))));
}

// ---- Against the twin, and streamed -------------------------------------------------------------------

TEST(SwingIndex, EqualsTheTwin) {
  forEachShortSeries(12, [](const PriceRows& p) {
    for (double limit : kLimits) {
      SCOPED_TRACE(limit);
      const Rows none(p.close.size(), kNull);
      const Rows fromTwo = limit == 0 ? none : swingsTwin(p, limit, 2);
      const Rows fromOne = swingsTwin(p, limit, 1);
      EXPECT_TRUE(sameRows(fromTwo, runBatch(p, swing(limit))));
      EXPECT_TRUE(sameRows(fromOne, runResumable(p, resumedSwing(limit))));
      EXPECT_TRUE(sameRows(sumTwin(fromTwo, 2), runBatch(p, accumulated(limit))));
      EXPECT_TRUE(sameRows(sumTwin(fromOne, 1), runResumable(p, resumedAccumulated(limit))));
    }
  });
}

TEST(SwingIndex, StreamsLikeOneCall) {
  for (double limit : {3.0, -2.0, 0.0}) {
    expectStreamsOverAllShapes(resumedSwing(limit));
    expectStreamsOverAllShapes(resumedAccumulated(limit));
  }
}

TEST(SwingIndex, OneBarHasNoSwing) {
  expectNothingDone(makePrices(Shape::kWalk, 1), resumedSwing(2));
  expectNothingDone(makePrices(Shape::kWalk, 1), resumedAccumulated(2));
  expectNothingDone({}, resumedAccumulated(2));
}

TEST(SwingIndex, BothOperationsMayShareTheirWorkSeriesInOneRun) {
  const PriceRows bars = makePrices(Shape::kWalk, 20);
  const Operation both = [](WorkStore& store, const PriceSources& p, Target out) {
    const WorkField plain = store.field("plain", {2.0});
    CTechnicalFunctions::SwingIndex(store, p, 2.0, plain);
    return CTechnicalFunctions::AccumulativeSwingIndex(store, p, 2.0, out);
  };
  EXPECT_TRUE(sameRows(runResumable(bars, resumedAccumulated(2)), runResumable(bars, both)));
  expectStreamsLikeOneCall(bars, both);
}

}  // namespace
}  // namespace brindlewort
