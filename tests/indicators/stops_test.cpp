#include "indicators/stops.hpp"

#include <gtest/gtest.h>

#include "indicators/band_twins.hpp"
#include "indicators/true_range.hpp"

namespace brindlewort {
namespace {

using namespace testing;

// ---- Parabolic stop --------------------------------------------------------------------------------------

Rows parabolic(const PriceRows& prices, double minAF, double maxAF) {
  Rows out(prices.close.size(), kNull);
  CFeedkit::ParabolicSAR(viewsOf(prices), minAF, maxAF, out);
  return out;
}

Operation resumableParabolic(double minAF, double maxAF) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::ParabolicSAR(store, prices, minAF, maxAF, out);
  };
}

Rows batchParabolicTwin(const PriceRows& prices, double min, double max) {
  const Rows &H = prices.high, &L = prices.low;
  Rows out(H.size(), kNull);
  if (H.size() < 3) return out;
  double epHigh = H[1], epLow = L[1], sar, af = min;
  bool isLong;
  if (L[2] - L[1] <= H[2] - H[1]) {
    isLong = true;
    sar = L[1];
  } else {
    isLong = false;
    sar = H[1];
  }
  for (std::size_t i = 2; i < H.size(); ++i) {
    const double prevSar = sar, prevAf = af, prevEpHigh = epHigh, prevEpLow = epLow;
    if (isLong) {
      if (H[i] > epHigh) {
        epHigh = H[i];
        if (max > af) af = af + min;
      }
      sar = (prevEpHigh - prevSar) * prevAf + prevSar;
      if (sar > L[i]) {
        isLong = false;
        af = min;
        sar = prevEpHigh;
        epHigh = 0;
        epLow = L[i];
      }
    } else {
      if (L[i] < epLow) {
        epLow = L[i];
        if (max > af) af = af + min;
      }
      sar = (prevEpLow - prevSar) * prevAf + prevSar;
      if (sar < H[i]) {
        isLong = true;
        af = min;
        sar = prevEpLow;
        epLow = 0;
        epHigh = H[i];
      }
    }
    out[i] = sar;
  }
  return out;
}

Rows resumableParabolicTwin(const PriceRows& prices, double min, double max) {
  const Rows &H = prices.high, &L = prices.low;
  const std::size_t n = H.size();
  Rows out(n, kNull), Pos = out, CurrSAR = out, EP = out, AF = out, EPmax = out, EPmin = out;
  if (n < 2) return out;
  AF[0] = min;
  EPmax[0] = max;
  Pos[0] = Pos[1] = 1;
  EP[1] = CurrSAR[1] = L[1];
  AF[1] = min;
  EPmax[1] = H[0];
  EPmin[1] = L[0];
  out[1] = (EP[1] - CurrSAR[1]) * AF[1] + CurrSAR[1];
  for (std::size_t i = 2; i < n; ++i) {
    if (L[i] < out[i - 1] && Pos[i - 1] == 1) {
      Pos[i] = 0;
    } else if (H[i] > out[i - 1] && Pos[i - 2] == 0) {
      Pos[i] = 1;
    } else {
      Pos[i] = Pos[i - 1];
    }
    const bool toLong = Pos[i - 1] == 0 && Pos[i] == 1;
    const bool toShort = Pos[i - 1] == 1 && Pos[i] == 0;
    CurrSAR[i] = toLong ? EPmin[i - 1] : toShort ? EPmax[i - 1] : out[i - 1];
    if (toLong || toShort) {
      EPmax[i] = H[i];
      EPmin[i] = L[i];
    } else {
      EPmax[i] = EPmax[i - 1] > H[i] ? EPmax[i - 1] : H[i];
      EPmin[i] = EPmin[i - 1] < L[i] ? EPmin[i - 1] : L[i];
    }
    AF[i] = AF[i - 1];
    if (toLong || toShort) {
      AF[i] = AF[0];
    } else if ((Pos[i - 1] == 1 && EPmax[i] != EPmax[i - 1]) ||
               (Pos[i - 1] == 0 && EPmin[i] != EPmin[i - 1])) {
      if (!(AF[i - 1] + AF[0] > EPmax[0])) AF[i] = AF[i - 1] + AF[0];
    }
    EP[i] = Pos[i] == 0 ? EPmin[i] : EPmax[i];
    out[i] = (EP[i] - CurrSAR[i]) * AF[i] + CurrSAR[i];
  }
  return out;
}

TEST(ParabolicSARBatch, ByHand) {
  const PriceRows prices = barsOf({0, 10, 11, 12, 9, 9, 10.5}, {0, 9, 10, 11, 8.5, 8, 9});
  const Rows expected = {
      kNull, kNull,
      9.5,    // starts long at 9, high 10: (10 - 9) * 0.5 + 9; the new high 11 raises the AF to 1
      11,     // (11 - 9.5) * 1 + 9.5
      12,     // (12 - 11) * 1 + 11 = 12 lies above the low: short at the last high, AF 0.5
      10.25,  // (8.5 - 12) * 0.5 + 12; the new low 8 raises the AF to 1
      8,      // (8 - 10.25) * 1 + 10.25 = 8 lies below the high: long at the last low
  };
  EXPECT_TRUE(sameRows(expected, parabolic(prices, 0.5, 1.0)));
}

TEST(ParabolicSARBatch, StartsShortWhenTheLowRisesMoreThanTheHigh) {
  // Short from the high 10: (8 - 10) * 0.5 + 10 = 9, which lies above the high of row 2.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 9}, parabolic(barsOf({0, 10, 8.9}, {0, 8, 8.5}), 0.5, 1.0)));
}

TEST(ParabolicSARBatch, ATurnOnARowWithANewExtremeResetsTheAF) {
  // Row 2 has a new high, but (10 - 9) * 0.5 + 9 = 9.5 lies above its low 9: short at 10 with AF 0.5, so
  // that row 3 goes half the way from 10 to 9, where an AF of 1 would go all of it.
  const PriceRows prices = barsOf({0, 10, 12, 8}, {0, 9, 9, 7});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 10, 9.5}, parabolic(prices, 0.5, 1.0)));
}

TEST(ParabolicSARBatch, TheAFMayPassItsMaximumByOneStep) {
  // AF 0.5, then 1 (0.75 was above 0.5), then no more: from row 3 on the stop is the last high.
  const PriceRows prices = barsOf({0, 10, 12, 16, 20}, {0, 9, 11, 15, 19});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 9.5, 12, 16}, parabolic(prices, 0.5, 0.75)));
}

TEST(ParabolicSARBatch, FewerThan3RowsAreAllNull) {
  for (int n = 0; n < 3; ++n) {
    EXPECT_TRUE(sameRows(Rows(static_cast<std::size_t>(n), kNull),
                         parabolic(makePrices(Shape::kWalk, n), 0.02, 0.2)));
  }
}

TEST(ParabolicSARResumable, ByHand) {
  const PriceRows prices = barsOf({10, 11, 12, 13, 9, 11, 11}, {9, 10, 11, 12, 7, 8, 9});
  const Rows expected = {
      kNull,
      10,   // long at the low
      12,   // the new high 12 raises the AF to 1: (12 - 10) * 1 + 10
      13,   // an AF of 1.5 would pass the maximum: (13 - 12) * 1 + 12
      10,   // the low 7 turns: short from the high 13, AF 0.5: (7 - 13) * 0.5 + 13
      8.5,  // the high 11 lies above 10, but two rows back was long: (7 - 10) * 0.5 + 10
      9,    // the high 11 lies above 8.5: long from the low 7: (11 - 7) * 0.5 + 7
  };
  EXPECT_TRUE(sameRows(expected, runAtOnce(prices, resumableParabolic(0.5, 1.0)).rows));
}

TEST(ParabolicSARResumable, Row0OfTheStateHoldsTheParameters) {
  const PriceRows prices = makePrices(Shape::kWalk, 5);
  TestStore store(5);
  Rows out(5, kNull);
  std::int32_t slot = -1;
  ASSERT_EQ(kDone, resumableParabolic(0.02, 0.2)(store, sourcesOf(prices, 5), {out, &slot}));
  EXPECT_EQ(0.02, store.field("AF", {0.02, 0.2}).rows[0]);
  EXPECT_EQ(0.2, store.field("EPmax", {0.02, 0.2}).rows[0]);
  for (const char* name : {"Pos", "CurrSAR", "EP", "AF", "EPmax", "EPmin"}) {
    EXPECT_EQ(5, *store.field(name, {0.02, 0.2}).slot) << name;
  }
}

TEST(ParabolicSARResumable, NeedsTwoRows) {
  expectNothingDone({}, resumableParabolic(0.02, 0.2));
  expectNothingDone(makePrices(Shape::kWalk, 1), resumableParabolic(0.02, 0.2));
  const PriceRows prices = makePrices(Shape::kWalk, 2);
  EXPECT_TRUE(sameRows(Rows{kNull, prices.low[1]}, runAtOnce(prices, resumableParabolic(0.02, 0.2)).rows));
}

TEST(ParabolicSAR, IsTheSlowTwinForEveryShapeLengthAndLimits) {
  struct Limits {
    double min, max;
  };
  for (const Limits& af : {Limits{0.02, 0.2}, Limits{0.3, 0.4}, Limits{1.0, 2.5}, Limits{0.0, 0.0},
                           Limits{-0.5, 0.5}, Limits{0.2, 0.02}, Limits{kNaN, kInf}}) {
    forShortSeries(12, [af](const PriceRows& prices) {
      EXPECT_TRUE(sameRows(batchParabolicTwin(prices, af.min, af.max), parabolic(prices, af.min, af.max)));
      EXPECT_TRUE(sameRows(resumableParabolicTwin(prices, af.min, af.max),
                           runAtOnce(prices, resumableParabolic(af.min, af.max)).rows));
    });
  }
}

TEST(ParabolicSARResumable, StreamsLikeOneCall) {
  expectStreams(resumableParabolic(0.02, 0.2));
  expectStreams(resumableParabolic(0.3, 0.4));
  expectRepeatable(makePrices(Shape::kWalk, 30), resumableParabolic(0.02, 0.2));
  expectRepeatable(makePrices(Shape::kWalk, 2), resumableParabolic(0.02, 0.2));
}

TEST(ParabolicSARResumable, ARepeatedCallRecomputesTheLastTwoRows) {
  // So a change of the bar before the last is seen too (row 1 is seeded again), one before that is not.
  for (int n : {3, 4, 20}) {
    PriceRows prices = makePrices(Shape::kWalk, n);
    const std::size_t last = prices.close.size() - 1;
    TestStore store(last + 1);
    Rows out(last + 1, kNull);
    std::int32_t slot = -1;
    const auto call = [&] {
      return resumableParabolic(0.02, 0.2)(store, sourcesOf(prices, last + 1), {out, &slot});
    };
    ASSERT_EQ(kDone, call());
    prices.low[last - 1] -= 50.0;
    ASSERT_EQ(kDone, call());
    EXPECT_TRUE(sameRows(runAtOnce(prices, resumableParabolic(0.02, 0.2)).rows, out)) << n;
    const Rows before = out;
    prices.low[last - 2] -= 50.0;
    ASSERT_EQ(kDone, call());
    if (n > 4) {
      EXPECT_TRUE(sameRows(before, out));
    }
  }
}

TEST(ParabolicSARResumable, OtherLimitsBeginAgainWithAStateOfTheirOwn) {
  const PriceRows prices = makePrices(Shape::kWalk, 40);
  TestStore store(40);
  Rows out(40, kNull);
  std::int32_t slot = -1;
  ASSERT_EQ(kDone, resumableParabolic(0.02, 0.2)(store, sourcesOf(prices, 39), {out, &slot}));
  ASSERT_EQ(kDone, resumableParabolic(0.05, 0.5)(store, sourcesOf(prices, 40), {out, &slot}));
  EXPECT_TRUE(sameRows(runAtOnce(prices, resumableParabolic(0.05, 0.5)).rows, out));
}

// ---- Super trend -----------------------------------------------------------------------------------------

constexpr double kInactive = 99999999999999.0;

Rows superTrend(const PriceRows& prices, Count p, double factor) {
  Rows out(prices.close.size(), kNull);
  CFeedkit::SUPERTREND(viewsOf(prices), p, factor, out);
  return out;
}

Operation resumableSuperTrend(Count p, double factor) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::SUPERTREND(store, prices, p, factor, out);
  };
}

double maxTwin(double x, double low) {
  return isNull(low) ? x : low > x ? low : x;
}
double minTwin(double x, double high) {
  return high < x ? high : x;
}

/// `first`: the first row of the recursion; the row before it has trend 1 and the stops given.
Rows superTrendTwin(const PriceRows& prices, const Rows& a, double factor, Count first, Rows low, Rows high) {
  const Count n = rowsOf(prices.close);
  const Rows& C = prices.close;
  Rows out(C.size(), kNull);
  int trend = 1;
  bool everFlipped = false;
  for (Count i = first; i < n; ++i) {
    const double r = a[i] * factor;
    const double mp = (prices.high[i] + prices.low[i]) / 2;
    if (trend == 1) {
      if (low[i - 1] <= C[i]) {
        low[i] = maxTwin(mp - r, low[i - 1]);
        high[i] = kInactive;
      } else {
        trend = 2;
        high[i] = everFlipped ? minTwin(mp + r, high[i - 1]) : mp + r;
        everFlipped = true;
      }
    } else if (high[i - 1] < C[i]) {
      trend = 1;
      low[i] = maxTwin(mp - r, low[i - 1]);
      high[i] = kInactive;
    } else {
      high[i] = minTwin(mp + r, high[i - 1]);
    }
    out[i] = trend == 1 ? low[i] : high[i];
  }
  return out;
}

Rows batchSuperTrendTwin(const PriceRows& prices, Count p, double factor) {
  const Count n = rowsOf(prices.close);
  Rows none(prices.close.size(), kNull);
  if (p < 1 || p >= n || p + 1 >= n) return none;
  Rows a = none, low = none, high = none;
  CFeedkit::AverageTrueRange(viewsOf(prices), p, -1, a);
  low[p + 1] = (prices.high[p + 1] + prices.low[p + 1]) / 2 - a[p + 1] * factor;
  high[p + 1] = kInactive;
  Rows out = superTrendTwin(prices, a, factor, p + 2, low, high);
  out[p + 1] = low[p + 1];
  return out;
}

Rows resumableSuperTrendTwin(const PriceRows& prices, Count p, double factor) {
  const Rows none(prices.close.size(), kNull);
  if (p < 1 || p >= rowsOf(prices.close)) return none;
  const Rows a = runAtOnce(prices, [=](WorkStore& store, const PriceSources& sources, Target out) {
                   return CTechnicalFunctions::AverageTrueRange(store, sources, p, -1, out);
                 }).rows;
  return superTrendTwin(prices, a, factor, firstValueIndex(a), none, none);
}

/// A trend that rises, turns down in row 5 and up again in row 7. The close is the middle of each bar.
const PriceRows kTurns = barsOf({11, 11, 11, 12, 11.5, 9, 10, 13}, {9, 9, 9, 10, 9.5, 7, 8, 11});

TEST(SuperTrendBatch, ByHand) {
  // With a period of 1 the average true range is the true range: 2, 2, 2, 3.5, 2, 4 from row 2 on.
  const Rows expected = {
      kNull, kNull,
      8,     // 10 - 2
      9,     // 11 - 2
      9,     // 10.5 - 2 would be lower
      11.5,  // the close 8 lies below 9: 8 + 3.5
      11,    // 9 + 2
      8,     // the close 12 lies above 11: 12 - 4
  };
  EXPECT_TRUE(sameRows(expected, superTrend(kTurns, 1, 1.0)));
}

TEST(SuperTrendResumable, StartsOneRowEarlierBecauseTheRangeDoes) {
  const Rows expected = {kNull, 8, 8, 9, 9, 11.5, 11, 8};
  EXPECT_TRUE(sameRows(expected, runAtOnce(kTurns, resumableSuperTrend(1, 1.0)).rows));
}

TEST(SuperTrend, TheFirstTurnDownIsNotHeldByTheInactiveStopAndLaterOnesAre) {
  // Prices above the mark of the inactive stop. All bars have no range but their gaps.
  const double e = 1e15;
  const Rows closes = {e, e, e, e, e / 2, 9e14, 9.5e14, 4e14, 3e14};
  const PriceRows prices = closesOf(closes);
  const Rows batch = superTrend(prices, 1, 0.5);
  // Row 4: range 5e14, stop 5e14 + 2.5e14. Row 5 closes above it: up. Row 7 turns down again: 4e14 +
  // 2.75e14 lies above the mark, so the mark it is.
  EXPECT_EQ(7.5e14, batch[4]);
  EXPECT_EQ(9e14 - 2e14, batch[5]);
  EXPECT_EQ(kInactive, batch[7]);
  const Rows resumable = runAtOnce(prices, resumableSuperTrend(1, 0.5)).rows;
  EXPECT_EQ(7.5e14, resumable[4]);
  EXPECT_EQ(kInactive, resumable[7]);
  expectStreamsLikeOneCall(prices, resumableSuperTrend(1, 0.5));
}

TEST(SuperTrend, ANullLowStopLosesToAnyPrice) {
  // The turn up in row 5 is far below the number that marks a null.
  const double far = -3e9;
  const PriceRows prices = closesOf({0, 0, 0, far, far, far + 1e9, far + 1e9});
  const Rows batch = superTrend(prices, 1, 0.25);
  // Row 3: down, range 3e9, stop -3e9 + 7.5e8. Row 4: range 0, stop -3e9. Row 5: up, range 1e9.
  EXPECT_EQ(-2.25e9, batch[3]);
  EXPECT_EQ(-3e9, batch[4]);
  EXPECT_EQ(-2e9 - 2.5e8, batch[5]);
  EXPECT_EQ(-2e9, batch[6]);
  EXPECT_EQ(-2.25e9, runAtOnce(prices, resumableSuperTrend(1, 0.25)).rows[5]);
}

TEST(SuperTrendResumable, ANullLowStopLosesToAnyPriceInTheFirstRowToo) {
  // Ranges of 1e8, times 99, below the middle at 5e7: far below the number that marks a null.
  const Rows high(4, 1e8), low(4, 0.0);
  const PriceRows prices = barsOf(high, low);
  EXPECT_TRUE(
      sameRows(Rows{kNull, -9.85e9, -9.85e9, -9.85e9}, runAtOnce(prices, resumableSuperTrend(1, 99)).rows));
}

TEST(SuperTrend, IsTheSlowTwinForEveryShapeAndLength) {
  for (Count p : kSmallPeriods) {
    for (double factor : {0.0, 0.3, 1.0, 3.0, -1.0}) {
      forShortSeries(p, [p, factor](const PriceRows& prices) {
        EXPECT_TRUE(sameRows(batchSuperTrendTwin(prices, p, factor), superTrend(prices, p, factor)));
        EXPECT_TRUE(sameRows(resumableSuperTrendTwin(prices, p, factor),
                             runAtOnce(prices, resumableSuperTrend(p, factor)).rows));
      });
    }
  }
}

TEST(SuperTrend, IsTheSlowTwinOverManyTurns) {
  const PriceRows prices = makePrices(Shape::kWalk, 2000);
  const Rows batch = superTrend(prices, 10, 0.8);
  EXPECT_TRUE(sameRows(batchSuperTrendTwin(prices, 10, 0.8), batch));
  EXPECT_TRUE(sameRows(resumableSuperTrendTwin(prices, 10, 0.8),
                       runAtOnce(prices, resumableSuperTrend(10, 0.8)).rows));
  int turns = 0;
  for (std::size_t i = 12; i < batch.size(); ++i) {
    turns += (batch[i] > prices.close[i]) != (batch[i - 1] > prices.close[i - 1]);
  }
  EXPECT_GT(turns, 20);
}

TEST(SuperTrend, APeriodOutOfRangeDoesNothing) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  for (Count p : kBadPeriods) {
    EXPECT_TRUE(sameRows(Rows(60, kNull), superTrend(prices, p, 2.0))) << p;
    expectNothingDone(prices, resumableSuperTrend(p, 2.0));  // a period of all rows is out of range here too
  }
  EXPECT_TRUE(sameRows(Rows(60, kNull), superTrend(prices, 59, 2.0)));
  EXPECT_FALSE(isNull(runAtOnce(prices, resumableSuperTrend(59, 2.0)).rows[59]));
  expectNothingDone({}, resumableSuperTrend(1, 2.0));
}

TEST(SuperTrendResumable, StreamsLikeOneCall) {
  for (Count p : {1, 2, 7}) {
    for (double factor : {0.5, 2.0}) expectStreams(resumableSuperTrend(p, factor));
  }
  expectRepeatable(makePrices(Shape::kWalk, 30), resumableSuperTrend(5, 1.0));
}

TEST(SuperTrendResumable, AnotherPeriodBeginsAgainWithAStateOfItsOwn) {
  const PriceRows prices = makePrices(Shape::kWalk, 40);
  TestStore store(40);
  Rows out(40, kNull);
  std::int32_t slot = -1;
  ASSERT_EQ(kDone, resumableSuperTrend(3, 1.0)(store, sourcesOf(prices, 39), {out, &slot}));
  ASSERT_EQ(kDone, resumableSuperTrend(8, 1.0)(store, sourcesOf(prices, 40), {out, &slot}));
  const Rows once = runAtOnce(prices, resumableSuperTrend(8, 1.0)).rows;
  for (std::size_t i = 8; i < 40; ++i) EXPECT_EQ(once[i], out[i]) << i;
}

}  // namespace
}  // namespace brindlewort
