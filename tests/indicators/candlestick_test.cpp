#include "indicators/candlestick.hpp"

#include <gtest/gtest.h>

#include "indicators/candle_twin.hpp"
#include "support/streaming.hpp"

// How the recogniser picks its bars, what it takes for a long body, and how rows are judged. The patterns
// themselves are tested beside this file.

namespace brindlewort {
namespace {

using namespace testing;

constexpr int kLongBodyId = 1, kDojiId = 2, kHammerId = 3, kEngulfingId = 10;

Prices viewsOf(const PriceRows& p) {
  return {p.open, p.high, p.low, p.close, p.volume};
}
int batchType(const PriceRows& p, int id) {
  return CFeedkit::CandlestickPattern(viewsOf(p), id);
}

Rows batchRows(const PriceRows& p, int id) {
  Rows out(p.close.size(), kNull);
  CFeedkit::CandlestickPatternRows(viewsOf(p), id, out);
  return out;
}

Operation resumable(int id) {
  return [id](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::CandlestickPattern(store, prices, id, out);
  };
}

void add(PriceRows& p, const Bar4& bar, int times = 1) {
  for (int i = 0; i < times; ++i) {
    p.open.push_back(bar.O);
    p.high.push_back(bar.H);
    p.low.push_back(bar.L);
    p.close.push_back(bar.C);
    p.volume.push_back(1000);
  }
}

PriceRows firstRows(const PriceRows& p, std::size_t n) {
  PriceRows cut = p;
  for (Rows* rows : {&cut.open, &cut.high, &cut.low, &cut.close, &cut.volume}) rows->resize(n);
  return cut;
}

constexpr Bar4 kLong = {100, 104, 99.8, 103.9};
constexpr Bar4 kUnusable = {100, 0, 0, 0};

/// Bars of every shape, some of them unusable.
PriceRows mixedPrices(Shape shape, int n, std::uint64_t seed = 1) {
  PriceRows p = makePrices(shape, n, seed);
  Random random(seed + 5);
  for (int i = 0; i < n; ++i) {
    if (random.below(6) == 0) (random.below(2) ? p.high : p.close)[i] = 0.0;
  }
  return p;
}

// ---- What is a long body
// -----------------------------------------------------------------------------------

TEST(CandlestickBatch, ALongBodyIsAboveTheAverageTrueRangeNotAtIt) {
  for (double body : {1.0, 1.25}) {
    PriceRows p;
    add(p, kQuiet, 20);  // true range 1
    add(p, {100, 102, 99, 100 + body});
    EXPECT_EQ(body > 1.0 ? 1 : 0, batchType(p, kLongBodyId));
  }
}

TEST(CandlestickBatch, TheAverageIsThatOfTheBarBefore) {
  PriceRows p;
  add(p, kQuiet, 20);
  add(p, {100, 120, 80, 102});  // with its own range the average would be (14 + 40) / 15 = 3.6
  EXPECT_EQ(1, batchType(p, kLongBodyId));
  add(p, {100, 103, 99, 102});  // now it is
  EXPECT_EQ(0, batchType(p, kLongBodyId));
  add(p, {100, 104.2, 99, 104});  // (13 + 40 + 4) / 15 = 3.8
  EXPECT_EQ(1, batchType(p, kLongBodyId));
}

TEST(CandlestickBatch, TheAverageSeesTheLast20UsableBarsOnly) {
  // A wild bar far back is in no average; the window of the bar before the newest reaches 15 ranges back.
  PriceRows p;
  add(p, {100, 200, 50, 100});
  add(p, kQuiet, 19);
  add(p, {100, 102, 99, 101.5});
  EXPECT_EQ(1, batchType(p, kLongBodyId));
}

TEST(CandlestickBatch, WithFewerThan18UsableBarsTheBodyIsComparedWithItsOwnRangeAndTheOtherBars) {
  for (int quiet : {16, 17}) {
    PriceRows p;
    add(p, kQuiet, quiet);
    add(p, {100, 101, 99, 101.2});  // a body of 1.2, above the average 1, and 0.6 of its range
    EXPECT_EQ(1, batchType(p, kLongBodyId)) << quiet;
    PriceRows q;
    add(q, kQuiet, quiet);
    add(q, {100, 102, 99, 101.2});  // 0.4 of its range: long only by the average, which 18 bars have
    EXPECT_EQ(quiet == 17 ? 1 : 0, batchType(q, kLongBodyId)) << quiet;
  }
}

TEST(CandlestickBatch, WithoutAnAverageTheRangeMustBeAtLeastTwoFifthsOfTheWayToTheGreatest) {
  // Ranges 0, 10 and r: a bar that is all body is long when r is 4 or more.
  for (double r : {3.9, 4.0}) {
    PriceRows p;
    add(p, {100, 100, 100, 100}, 2);
    add(p, {100, 105, 95, 100});
    add(p, {100, 100 + r, 100, 100 + r});
    EXPECT_EQ(r < 4 ? 0 : 1, batchType(p, kLongBodyId)) << r;
  }
  PriceRows equal;  // equal ranges count as the greatest
  add(equal, {100, 101, 100, 101}, 4);
  EXPECT_EQ(1, batchType(equal, kLongBodyId));
}

TEST(CandlestickBatch, AFlatAverageOf0IsNoAverage) {
  PriceRows p;
  add(p, {100, 100, 100, 100}, 20);
  add(p, {100, 102, 100, 100.5});  // above the average 0, but a quarter of its range
  EXPECT_EQ(0, batchType(p, kLongBodyId));
  EXPECT_EQ(0.0, runAtOnce(p, resumable(kLongBodyId)).rows.back());
}

// ---- Which bars are looked at
// --------------------------------------------------------------------------------

TEST(CandlestickBatch, BarsWithoutHighLowOrCloseAreSkipped) {
  for (Bar4 unusable : {Bar4{100, 0, 99, 100}, Bar4{100, 101, 0, 100}, Bar4{100, 101, 99, 0}}) {
    PriceRows p = barsWith({kQuiet, {100, 101, 99.5, 100.5}, {99, 103.2, 98.8, 103}});
    add(p, unusable, 30);
    EXPECT_EQ(kEngulfingId, batchType(p, kEngulfingId));
    EXPECT_EQ(1.0, batchRows(p, kEngulfingId).back());
  }
  PriceRows gap = barsWith({kQuiet, kQuiet, {100, 101, 99.5, 100.5}});
  add(gap, kUnusable, 30);
  add(gap, {99, 103.2, 98.8, 103});
  EXPECT_EQ(kEngulfingId, batchType(gap, kEngulfingId));
}

TEST(CandlestickBatch, ABarWithoutAnOpenOrWithNullPricesIsUsable) {
  PriceRows p = barsWith({kQuiet, kQuiet, {101.8, 102, 99, 101.9}});
  EXPECT_EQ(kHammerId, batchType(p, kHammerId));
  add(p, {0, 102, 99, 101.9});  // an open far below: no hammer, but the newest bar
  EXPECT_EQ(0, batchType(p, kHammerId));
  add(p, {kNull, kNull, kNull, kNull});  // no range: a doji of equal prices
  EXPECT_EQ(2, batchType(p, kDojiId));
}

TEST(CandlestickBatch, MoreThanThreeRowsAreNeeded) {
  PriceRows p;
  add(p, kQuiet, 3);
  EXPECT_EQ(0, batchType(p, kDojiId));
  EXPECT_TRUE(sameRows(Rows(3, 0.0), batchRows(p, kDojiId)));
  add(p, kQuiet);
  EXPECT_EQ(2, batchType(p, kDojiId));
  EXPECT_TRUE(sameRows(Rows{0, 0, 0, 1}, batchRows(p, kDojiId)));
  EXPECT_EQ(0, batchType({}, kDojiId));
}

TEST(CandlestickBatch, MissingCandlesKeepZeroFields) {
  // One usable bar: the missing ones have a range of 0, so its own is the greatest, and its body is 0.75 of
  // it.
  PriceRows p;
  add(p, kUnusable, 5);
  add(p, {98.5, 102, 98, 101.5});
  EXPECT_EQ(1, batchType(p, kLongBodyId));
  // Two, of ranges 10 and 3: the third range, 0, makes 3 of them the 0.3 of the way, which is too little.
  PriceRows two;
  add(two, kUnusable, 4);
  add(two, {100, 105, 95, 100});
  add(two, {100, 103, 100, 103});
  EXPECT_EQ(0, batchType(two, kLongBodyId));
  // None at all: the missing candle has equal shares, which is a doji, and nothing else.
  PriceRows none;
  add(none, kUnusable, 6);
  for (int id = 1; id <= 29; ++id) {
    const bool dojiRuns = id == 2 || id == 6 || id == 14 || id == 17;
    EXPECT_EQ(dojiRuns ? 2 : 0, batchType(none, id)) << id;
  }
}

// ---- Batch form against the slow twin, and row by row -----------------------------------------------------

TEST(CandlestickBatch, EqualsTheSlowTwinForEveryShapeLengthAndId) {
  for (Shape shape : kAllShapes) {
    for (int n : {0, 1, 2, 3, 4, 5, 6, 16, 17, 18, 19, 20, 21, 22, 23, 24, 40}) {
      for (std::uint64_t seed : {1, 2}) {
        const PriceRows plain = makePrices(shape, n, seed), mixed = mixedPrices(shape, n, seed);
        for (int id = -1; id <= 31; ++id) {
          ASSERT_EQ(batchTwin(plain, plain.close.size(), id), batchType(plain, id))
              << "id " << id << " n " << n;
          ASSERT_EQ(batchTwin(mixed, mixed.close.size(), id), batchType(mixed, id))
              << "id " << id << " n " << n;
        }
      }
    }
  }
}

void expectRowsAreJudgedLikeTheirBars(const PriceRows& p) {
  for (int id = -1; id <= 30; ++id) {
    const Rows rows = batchRows(p, id);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      ASSERT_EQ(batchTwin(p, i + 1, id) == id ? 1.0 : 0.0, rows[i]) << "id " << id << " row " << i;
    }
  }
}

TEST(CandlestickBatch, ARowIsJudgedAsTheBarsUpToItAre) {
  for (Shape shape : kAllShapes) {
    expectRowsAreJudgedLikeTheirBars(makePrices(shape, 71));
    expectRowsAreJudgedLikeTheirBars(mixedPrices(shape, 70));
  }
}

/// A bar of the made-up candles, shifted, or one of prices that no market has.
Bar4 wildBar(Random& random, bool usable) {
  constexpr double kWild[] = {kNull, 1e308, -1e308, 5e-324, 100, 100.5, INFINITY, -INFINITY, NAN, -0.0, 0.0};
  constexpr int kUsable = 9;
  Bar4 bar =
      kFiring[static_cast<std::size_t>(random.below(static_cast<int>(kFiring.size())))].bars[random.below(3)];
  for (double* x : {&bar.O, &bar.H, &bar.L, &bar.C}) {
    if (random.below(12) == 0) *x = kWild[random.below(usable ? kUsable : kUsable + 2)];
  }
  if (random.below(8) == 0) bar.O = bar.H = bar.L = bar.C;
  return bar;
}

TEST(CandlestickBatch, RowsOfWildPricesAreJudgedAsTheBarsUpToThemAre) {
  Random random(20);
  for (int round = 0; round < 40; ++round) {
    PriceRows p;
    // Usable bars alone, also with a pair's second row missing at the end, and mixed with others.
    for (int i = 0; i < 60 + round % 2; ++i) add(p, wildBar(random, round % 4 < 2));
    expectRowsAreJudgedLikeTheirBars(p);
  }
}

TEST(CandlestickBatch, EveryPatternStandsAtTheRowWhereItIsMade) {
  for (const MadeUp& made : kFiring) {
    for (int quiet : {0, 1, 2, 17, 18, 19, 20, 21}) {
      PriceRows p;
      add(p, kQuiet, quiet);
      for (const Bar4& bar : made.bars) add(p, bar);
      add(p, kQuiet, 2);
      expectRowsAreJudgedLikeTheirBars(p);
    }
  }
}

TEST(CandlestickBatch, LongRunsOfUnusableBarsAreNotScannedForEachRow) {
  PriceRows p = barsWith({kQuiet, kQuiet, kLong});
  add(p, kUnusable, 400'000);  // looking back over them from each row would take minutes
  const Rows rows = batchRows(p, kLongBodyId);
  EXPECT_EQ(1.0, rows[20]);
  EXPECT_EQ(1.0, rows.back());
  EXPECT_EQ(1.0, runAtOnce(p, resumable(kLongBodyId)).rows.back());
}

// ---- Resumable form --------------------------------------------------------------------------------------

TEST(CandlestickResumable, RowsHoldTheTypeFromTheThirdRowOn) {
  PriceRows p;
  add(p, kQuiet, 2);
  EXPECT_EQ(kNothingDone, runAtOnce(p, resumable(kDojiId)).status);
  add(p, kQuiet);
  const RunResult three = runAtOnce(p, resumable(kDojiId));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 2}, three.rows));
  EXPECT_EQ(kDone, three.status);
  EXPECT_EQ(3, three.slot);
  add(p, kLong);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 2, 0}, runAtOnce(p, resumable(kDojiId)).rows));
  EXPECT_EQ(kNothingDone, runAtOnce({}, resumable(kDojiId)).status);
}

TEST(CandlestickResumable, ARowWithoutAUsableBarHoldsTheTypeOfTheLastOneBeforeIt) {
  PriceRows p = barsWith({kQuiet, kQuiet, {101.8, 102, 99, 101.9}});
  add(p, kUnusable, 2);
  const Rows rows = runAtOnce(p, resumable(kHammerId)).rows;
  EXPECT_EQ(0.0, rows[19]);
  for (int i : {20, 21, 22}) EXPECT_EQ(3.0, rows[i]) << i;
}

TEST(CandlestickResumable, TheAverageTrueRangeSeesAllRowsUnusableOnesToo) {
  // The batch form leaves the unusable bar out; here it is a range of 100 at its row and the next.
  PriceRows p;
  add(p, kQuiet, 15);
  add(p, kUnusable);
  add(p, kQuiet, 10);
  add(p, kLong);
  EXPECT_EQ(1, batchType(p, kLongBodyId));
  EXPECT_EQ(0.0, runAtOnce(p, resumable(kLongBodyId)).rows.back());
}

TEST(CandlestickResumable, TheAverageOfRow15IsTheFirst) {
  // Row 16 is long by the average of row 15 alone; row 15 has none before it.
  for (int quiet : {15, 16}) {
    PriceRows p;
    add(p, kQuiet, quiet);
    add(p, {100, 102, 99, 101.2});
    EXPECT_EQ(quiet == 16 ? 1.0 : 0.0, runAtOnce(p, resumable(kLongBodyId)).rows.back()) << quiet;
  }
}

TEST(CandlestickResumable, EqualsTheSlowTwinForEveryShapeLengthAndId) {
  for (Shape shape : kAllShapes) {
    for (int n : {3, 4, 5, 14, 15, 16, 17, 18, 60}) {
      const PriceRows plain = makePrices(shape, n), mixed = mixedPrices(shape, n);
      for (int id = -1; id <= 31; ++id) {
        ASSERT_TRUE(sameRows(resumableTwin(plain, id), runAtOnce(plain, resumable(id)).rows)) << "id " << id;
        ASSERT_TRUE(sameRows(resumableTwin(mixed, id), runAtOnce(mixed, resumable(id)).rows)) << "id " << id;
      }
    }
  }
}

TEST(CandlestickResumable, BarsFedOneByOneGiveTheSeriesOfOneCall) {
  for (Shape shape : {Shape::kWalk, Shape::kFlat, Shape::kRising, Shape::kNullHead, Shape::kNullGaps,
                      Shape::kZeros, Shape::kNegative, Shape::kSteps}) {
    const PriceRows p = makePrices(shape, 50), mixed = mixedPrices(shape, 50);
    for (int id = 1; id <= 29; ++id) {
      expectStreamsLikeOneCall(p, resumable(id));
      expectStreamsLikeOneCall(mixed, resumable(id));
    }
  }
}

TEST(CandlestickResumable, ALaterCallWritesFromThreeRowsBeforeTheNewOnes) {
  const PriceRows p = makePrices(Shape::kWalk, 40);
  TestStore store(40);
  std::int32_t slot = 30;
  Rows out(40, 77.0);
  EXPECT_EQ(kDone, resumable(kDojiId)(store, sourcesOf(p, 40), {out, &slot}));
  for (int i = 0; i < 40; ++i) EXPECT_EQ(i < 27, out[i] == 77.0) << i;
  EXPECT_EQ(40, slot);
}

TEST(CandlestickResumable, TheNumberOfRowsIsCappedByTheOutput) {
  const PriceRows p = makePrices(Shape::kWalk, 60);
  for (int id : {kLongBodyId, kHammerId}) {
    TestStore store(60);
    Rows out(40, kNull);
    std::int32_t slot = -1;
    EXPECT_EQ(kDone, resumable(id)(store, sourcesOf(p, 60), {out, &slot}));
    EXPECT_EQ(40, slot);
    EXPECT_TRUE(sameRows(resumableTwin(firstRows(p, 40), id), out));
  }
}

}  // namespace
}  // namespace brindlewort
