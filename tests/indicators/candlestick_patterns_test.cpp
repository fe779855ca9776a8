#include <gtest/gtest.h>

#include <iterator>

#include "indicators/candle_twin.hpp"
#include "indicators/candlestick.hpp"
#include "support/streaming.hpp"

// Each pattern by hand-made candles, in all forms, and the patterns that can never stand.

namespace brindlewort {
namespace {

using namespace testing;

Prices viewsOf(const PriceRows& p) {
  return {p.open, p.high, p.low, p.close, p.volume};
}

/// What the batch form answers for the newest bar.
int batchType(const PriceRows& p, int id) {
  return CFeedkit::CandlestickPattern(viewsOf(p), id);
}

/// What the resumable form holds in its last row.
double resumableType(const PriceRows& p, int id) {
  return runAtOnce(p,
                   [id](WorkStore& store, const PriceSources& prices, Target out) {
                     return CTechnicalFunctions::CandlestickPattern(store, prices, id, out);
                   })
      .rows.back();
}

double batchRow(const PriceRows& p, int id) {
  Rows out(p.close.size(), kNull);
  CFeedkit::CandlestickPatternRows(viewsOf(p), id, out);
  return out.back();
}

TEST(CandlePatterns, EachHandMadePatternIsRecognisedInEveryForm) {
  for (const MadeUp& made : kFiring) {
    const PriceRows p = barsWith(made.bars);
    EXPECT_EQ(made.id, batchType(p, made.id)) << made.what;
    EXPECT_EQ(1.0, batchRow(p, made.id)) << made.id << ", " << made.what;
    EXPECT_EQ(made.id, resumableType(p, made.id)) << made.what;
  }
}

TEST(CandlePatterns, OnQuietBarsNothingButTheDojiStands) {
  const PriceRows p = barsWith({kQuiet, kQuiet, kQuiet});
  for (int id = 1; id <= 29; ++id) {
    // The doji test runs for these four, and a quiet bar is one.
    const bool dojiRuns = id == 2 || id == 6 || id == 14 || id == 17;
    EXPECT_EQ(dojiRuns ? 2 : 0, batchType(p, id)) << id;
    EXPECT_EQ(dojiRuns ? 2 : 0, resumableType(p, id)) << id;
  }
}

TEST(CandlePatterns, EveryIdIsEitherFiredHereOrNamedAsOneThatCannot) {
  std::set<int> ids = {6, 13, 18, 21};
  for (const MadeUp& made : kFiring) ids.insert(made.id);
  EXPECT_EQ(29u, ids.size());
}

/// Three candles, changed at random: prices moved or made equal to each other, bodies turned round, bars
/// lifted, all of it made small.
void shake(Bar4 (&bars)[3], Random& random) {
  for (Bar4& bar : bars) {
    double* prices[] = {&bar.O, &bar.H, &bar.L, &bar.C};
    for (double* x : prices) {
      if (random.below(3) == 0) *x += (random.below(41) - 20) / 20.0 * (random.below(2) ? 2.0 : 0.3);
    }
    if (random.below(6) == 0) *prices[random.below(4)] = *prices[random.below(4)];
    if (random.below(6) == 0) std::swap(bar.O, bar.C);
    const double lift = random.below(6) == 0 ? random.below(17) - 8.0 : 0.0;
    for (double* x : prices) *x += lift;
  }
  const double scale = random.below(5) == 0 ? 0.2 : 1.0;
  for (Bar4& bar : bars) {
    for (double* x : {&bar.O, &bar.H, &bar.L, &bar.C}) *x = 100 + (*x - 100) * scale;
  }
}

TEST(CandlePatterns, ShakenCandlesGiveTheAnswersOfTheSlowTwin) {
  Random random(4711);
  for (const MadeUp& made : kFiring) {
    int fired = 0, missed = 0;
    for (int round = 0; round < 2500; ++round) {
      MadeUp shaken = made;
      shake(shaken.bars, random);
      const PriceRows p = barsWith(shaken.bars);
      const int expected = batchTwin(p, p.close.size(), made.id);
      ASSERT_EQ(expected, batchType(p, made.id)) << made.what << " round " << round;
      if (round % 10 == 0) {
        ASSERT_EQ(resumableTwin(p, made.id).back(), resumableType(p, made.id))
            << made.what << " round " << round;
      }
      ++(expected == made.id ? fired : missed);
    }
    EXPECT_GT(fired, 0) << made.what;
    EXPECT_GT(missed, 0) << made.what;
  }
}

// ---- What a pattern is made of also counts
// -----------------------------------------------------------------

TEST(CandlePatterns, ATypeThatThePatternIsMadeOfIsAnsweredWhenThePatternDoesNotStand) {
  const PriceRows longBody = barsWith({kQuiet, kQuiet, {100, 104, 99.8, 103.9}});
  for (int id : {5, 9, 10, 12, 14, 17, 19, 28, 29}) {
    EXPECT_EQ(1, batchType(longBody, id)) << id;
    EXPECT_EQ(0.0, batchRow(longBody, id)) << id;
  }
  const PriceRows hammer = barsWith({kQuiet, kQuiet, {101.8, 102, 99, 101.9}});
  for (int id : {11, 15, 23}) EXPECT_EQ(3, batchType(hammer, id)) << id;
  const PriceRows doji = barsWith({kQuiet, kQuiet, {100, 102, 98, 100.1}});
  for (int id : {6, 14, 17}) EXPECT_EQ(2, batchType(doji, id)) << id;
}

TEST(CandlePatterns, SingleTestsRunOnlyForTheirOwnRequests) {
  const PriceRows longBody = barsWith({kQuiet, kQuiet, {100, 104, 99.8, 103.9}});
  for (int id : {2, 3, 4, 6, 7, 8, 11, 13, 15, 16, 18, 20, 21, 22, 23, 24, 25, 26, 27}) {
    EXPECT_EQ(0, batchType(longBody, id)) << id;
  }
}

TEST(CandlePatterns, TheDojiTestOverwritesALongBody) {
  // A body of 2 is long, and less than a twentieth of a range of 60.
  EXPECT_EQ(2, batchType(barsWith({kQuiet, kQuiet, {100, 130, 70, 102}}), 14));
  EXPECT_EQ(1, batchType(barsWith({kQuiet, kQuiet, {100, 130, 70, 102}}), 12));
}

TEST(CandlePatterns, HaramiAfterAFallMarksTheCandleBeforeAndIsNotSeen) {
  const PriceRows p = barsWith({kQuiet, {105, 105.2, 99.8, 100}, {102, 103.5, 101.5, 103}});
  EXPECT_EQ(0, batchType(p, 4));
  EXPECT_EQ(0.0, resumableType(p, 4));
}

TEST(CandlePatterns, BullishEngulfingNeedsARisingOrFlatBarBeforeIt) {
  EXPECT_EQ(10, batchType(barsWith({kQuiet, {100, 101, 99.5, 100}, {99, 103.2, 98.8, 103}}), 10));
  EXPECT_EQ(1, batchType(barsWith({kQuiet, {100.5, 101, 99.5, 100}, {99, 103.2, 98.8, 103}}), 10));
}

TEST(CandlePatterns, AHammerNeedsABodyOfLessThanAQuarterOfTheRangeOnlyWhenItFalls) {
  // Falling bodies of 0.7 and 0.8 in a range of 3; a rising body of 0.85.
  EXPECT_EQ(3, batchType(barsWith({kQuiet, kQuiet, {101.9, 102, 99, 101.2}}), 3));
  EXPECT_EQ(0, batchType(barsWith({kQuiet, kQuiet, {102, 102, 99, 101.2}}), 3));
  EXPECT_EQ(3, batchType(barsWith({kQuiet, kQuiet, {101.15, 102, 99, 102}}), 3));
}

// ---- The patterns that never stand ------------------------------------------------------------------------

/// Many candles of all kinds, wild ones included. None may be answered with `id`.
void expectNeverAnswered(int id) {
  Random random(static_cast<std::uint64_t>(id));
  for (int round = 0; round < 10000; ++round) {
    Bar4 bars[3];
    if (round % 2 == 0) {
      std::copy_n(kFiring[static_cast<std::size_t>(random.below(static_cast<int>(kFiring.size())))].bars, 3,
                  bars);
      shake(bars, random);
    } else {
      for (Bar4& bar : bars) {
        for (double* x : {&bar.O, &bar.H, &bar.L, &bar.C}) *x = 95 + random.below(21) * 0.5;
      }
    }
    const PriceRows p = barsWith(bars);
    ASSERT_NE(id, batchType(p, id)) << "round " << round;
    if (round % 10 == 0) {
      ASSERT_NE(id, resumableType(p, id)) << "round " << round;
    }
  }
}

TEST(CandlePatterns, DojiStarNeverStandsBecauseAStarNeedsALongBodyBeforeItWhichIsNotTestedForThisRequest) {
  // A candle that is a doji and also lies above a long body as a star does: open 0.97, close 0.93 of its
  // range.
  const PriceRows p = barsWith({kQuiet, {100, 103, 99.8, 102.8}, {104.94, 105, 103, 104.86}});
  EXPECT_EQ(5, batchType(p, 5));  // asked for a star, it is one
  EXPECT_EQ(2, batchType(p, 2));  // asked for a doji, it is one
  EXPECT_EQ(2, batchType(p, 6));
  EXPECT_EQ(2.0, resumableType(p, 6));
  expectNeverAnswered(6);
}

TEST(CandlePatterns, BearishEngulfingNeverStandsBecauseTheLongBodyItNeedsIsNotTestedForThisRequest) {
  const PriceRows p = barsWith({kQuiet, {100, 101, 99.5, 100.5}, {102, 102.2, 98.3, 98.5}});
  EXPECT_EQ(1, batchType(p, 1));  // long it is
  EXPECT_EQ(0, batchType(p, 13));
  EXPECT_EQ(0.0, resumableType(p, 13));
  expectNeverAnswered(13);
}

TEST(CandlePatterns,
     BullishTristarNeverStandsBecauseTheOldestCandleIsNeverAStarAndStarsAreNotTestedForThisRequest) {
  const PriceRows p = barsWith({{100, 103, 99.8, 102.8}, {104.9, 105, 103, 104.2}, {106.9, 107, 105, 106.2}});
  EXPECT_EQ(0, batchType(p, 18));
  EXPECT_EQ(0.0, resumableType(p, 18));
  expectNeverAnswered(18);
}

TEST(CandlePatterns, AbandonedBabyNeverStandsBecauseTheDojiItNeedsIsNotTestedForThisRequest) {
  // A faller, a doji gapped below both, a riser; and the mirror of it.
  const PriceRows below =
      barsWith({{108, 108.2, 104.8, 105}, {101, 102, 100, 101}, {105, 108.2, 104.8, 108}});
  const PriceRows above = barsWith({{98, 101.2, 97.8, 101}, {105, 106, 104, 105}, {101, 101.2, 97.8, 98}});
  for (const PriceRows* p : {&below, &above}) {
    EXPECT_EQ(0, batchType(*p, 21));
    EXPECT_EQ(0.0, resumableType(*p, 21));
  }
  expectNeverAnswered(21);
}

TEST(CandlePatterns, BullishBeltHoldNeverStandsOnSoundPricesBecauseOpenLessHighIsNeverPositive) {
  Random random(27);
  for (int round = 0; round < 20000; ++round) {
    Bar4 bars[3];
    for (Bar4& bar : bars) {
      bar.L = 95 + random.below(11);
      bar.H = bar.L + random.below(5);
      bar.O = random.below(2) ? bar.L : bar.L + (bar.H - bar.L) * random.unit();
      bar.C = random.below(2) ? bar.H : bar.L + (bar.H - bar.L) * random.unit();
    }
    ASSERT_EQ(0, batchType(barsWith(bars), 27));
  }
}

TEST(CandlePatterns, BearishBeltHoldHoldsWhenTheCloseIsTheLow) {
  // The quotient is then an infinity.
  EXPECT_EQ(26, batchType(barsWith({kQuiet, kQuiet, {104, 104, 100, 100}}), 26));
  EXPECT_EQ(0, batchType(barsWith({kQuiet, kQuiet, {100, 100, 100, 100}}), 26));  // 0 / 0 is none
}

TEST(CandlePatterns, AnUnknownRequestIsAnsweredWithNothing) {
  for (int id : {0, -1, 30, 31, 32, 33, 64, INT32_MIN, INT32_MAX}) {
    for (const MadeUp& made : kFiring) {
      const PriceRows p = barsWith(made.bars);
      EXPECT_EQ(0, batchType(p, id)) << id;
      EXPECT_EQ(0.0, resumableType(p, id)) << id;
    }
  }
}

}  // namespace
}  // namespace brindlewort
