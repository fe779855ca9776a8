#include "indicators/macd.hpp"

#include "indicators/oscillator_twins.hpp"

namespace brindlewort::testing {
namespace {

constexpr MacdLine kDifference = MacdLine::kDifference;
constexpr MacdLine kSignal = MacdLine::kSignal;

struct Cycles {
  Count shortCycle, longCycle, signal, type;
};

Operation livingMacd(const Cycles& c, MacdLine line) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::MACD(store, prices, c.shortCycle, c.longCycle, c.signal, c.type, line, out);
  };
}
Operation livingHistogram(const Cycles& c) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::MACDHISTOGRAM(store, prices, c.shortCycle, c.longCycle, c.signal, c.type,
                                              out);
  };
}
Rows batchMacd(const PriceRows& prices, const Cycles& c, MacdLine line) {
  return batchRows(prices.close.size(), [&](Out out) {
    CFeedkit::MACD(viewsOf(prices), c.shortCycle, c.longCycle, c.signal, c.type, line, out);
  });
}

bool inRange(const Cycles& c, Count last) {
  for (Count p : {c.shortCycle, c.longCycle, c.signal}) {
    if (p < 1 || p > last) return false;
  }
  return true;
}

struct Lines {
  Rows difference, signal;
};

Lines batchTwin(const Rows& close, Cycles c) {
  const Count n = countOf(close);
  Lines lines{Rows(close.size(), kNull), Rows(close.size(), kNull)};
  if (!inRange(c, n - 1)) return lines;
  if (c.signal == c.shortCycle) c.signal += 1;
  if (c.type < 1) c.type = kExponential;
  const Rows s = batchAverage(close, c.shortCycle, c.type), l = batchAverage(close, c.longCycle, c.type);
  for (Count i = 1; i < n; ++i) lines.difference[i] = nz(s[i]) - nz(l[i]);
  lines.signal = batchAverage(lines.difference, c.signal, c.type);
  for (Count i = 1; i < n; ++i) {
    if (i <= c.longCycle) lines.difference[i] = 0.0;
    if (i < c.longCycle * 2.25 + 1) lines.signal[i] = 0.0;
  }
  return lines;
}

struct LivingLines {
  Rows difference, signal, histogram;
};

LivingLines livingTwin(const Rows& close, Cycles c) {
  const Count n = countOf(close);
  const Rows none(close.size(), kNull);
  LivingLines lines{none, none, none};
  if (!inRange(c, n)) return lines;
  if (c.type < 1) c.type = kExponential;
  const Rows s = livingAverage(close, c.shortCycle, c.type), l = livingAverage(close, c.longCycle, c.type);
  for (Count i = std::max(firstValueIndex(s), firstValueIndex(l)); i < n; ++i) {
    lines.difference[i] = nz(s[i]) - nz(l[i]);
  }
  lines.signal = livingAverage(lines.difference, c.signal, c.type);
  for (Count i = std::max(firstValueIndex(lines.difference), firstValueIndex(lines.signal)); i < n; ++i) {
    lines.histogram[i] = lines.difference[i] - lines.signal[i];
  }
  return lines;
}

TEST(MACD, ResumableByHand) {
  // Averages of 1 and 2 rows: the difference is half the last step, from row 1; its average over 2 from
  // row 2.
  const PriceRows prices = closesOnly({2, 4, 10, 6});
  const Cycles cycles = {1, 2, 2, kSimple};
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 3, -2}, runAtOnce(prices, livingMacd(cycles, kDifference)).rows));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 2, 0.5}, runAtOnce(prices, livingMacd(cycles, kSignal)).rows));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 1, -2.5}, runAtOnce(prices, livingHistogram(cycles)).rows));
}

TEST(MACD, BatchByHand) {
  // Half the last step again, from row 3. Rows 1 and 2 are set to 0; the signal over 2 rows is 0 below
  // 2 * 2.25 + 1, that is up to row 5.
  const PriceRows prices = closesOnly({9, 9, 2, 4, 10, 6, 6, 8});
  const Cycles cycles = {1, 2, 2, kSimple};
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 1, 3, -2, 0, 1}, batchMacd(prices, cycles, kDifference)));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 0, 0, 0, -1, 0.5}, batchMacd(prices, cycles, kSignal), nearlySame));
}

TEST(MACD, SignalEqualToShortCycleIsRaisedInBatchOnly) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  EXPECT_TRUE(sameRows(batchMacd(prices, {5, 9, 6, kSimple}, kSignal),
                       batchMacd(prices, {5, 9, 5, kSimple}, kSignal)));
  const Rows five = runAtOnce(prices, livingMacd({5, 9, 5, kSimple}, kSignal)).rows;
  EXPECT_TRUE(sameRows(livingTwin(prices.close, {5, 9, 5, kSimple}).signal, five));
  EXPECT_FALSE(sameRows(livingTwin(prices.close, {5, 9, 6, kSimple}).signal, five));
}

TEST(MACD, SignalIsTestedBeforeItIsRaised) {
  // Of 10 rows a signal of 9 passes; raised to 10 its average is empty, and only the zeros of its head stand.
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 0, kNull, kNull, kNull, kNull, kNull, kNull},
                       batchMacd(prices, {9, 1, 9, kSimple}, kSignal)));
  EXPECT_TRUE(allNull(batchMacd(prices, {9, 1, 10, kSimple}, kSignal)));
  EXPECT_TRUE(allNull(batchMacd(prices, {9, 1, 10, kSimple}, kDifference)));
}

TEST(MACD, SignalIsTakenBeforeTheHeadOfTheDifferenceIsSetToZero) {
  // Long cycle 2, exponential: the difference at rows 1 and 2 is not 0 before, and the signal carries it on.
  const PriceRows prices = closesOnly({1, 50, 60, 70, 70, 70, 70, 70, 70});
  const Cycles cycles = {1, 2, 3, kExponential};
  const Lines twin = batchTwin(prices.close, cycles);
  const Rows zeroed = batchAverage(batchMacd(prices, cycles, kDifference), 3, kExponential);
  EXPECT_TRUE(sameRows(twin.signal, batchMacd(prices, cycles, kSignal)));
  EXPECT_NE(zeroed[8], batchMacd(prices, cycles, kSignal)[8]);
}

TEST(MACD, TypeBelowOneIsExponential) {
  const PriceRows prices = makePrices(Shape::kWalk, 40);
  for (Count type : {0, -1, INT32_MIN}) {
    EXPECT_TRUE(
        sameRows(batchMacd(prices, {3, 6, 4, 2}, kSignal), batchMacd(prices, {3, 6, 4, type}, kSignal)));
    EXPECT_TRUE(sameRows(runAtOnce(prices, livingHistogram({3, 6, 4, 2})).rows,
                         runAtOnce(prices, livingHistogram({3, 6, 4, type})).rows));
  }
}

TEST(MACD, IsTheRuleOnAllInputs) {
  forAllPrices({1, 2, 3, 5}, [](const PriceRows& prices, Count p) {
    for (Count type : {0, 1, 2, 6, 8}) {
      for (const Cycles& cycles : {Cycles{p, p + 2, 3, type}, Cycles{p + 2, p, 2, type}}) {
        const Lines lines = batchTwin(prices.close, cycles);
        EXPECT_TRUE(sameRows(lines.difference, batchMacd(prices, cycles, kDifference)));
        EXPECT_TRUE(sameRows(lines.signal, batchMacd(prices, cycles, kSignal)));
        const LivingLines living = livingTwin(prices.close, cycles);
        EXPECT_TRUE(sameRows(living.difference, runAtOnce(prices, livingMacd(cycles, kDifference)).rows));
        EXPECT_TRUE(sameRows(living.signal, runAtOnce(prices, livingMacd(cycles, kSignal)).rows));
        EXPECT_TRUE(sameRows(living.histogram, runAtOnce(prices, livingHistogram(cycles)).rows));
      }
    }
  });
}

TEST(MACD, CyclesOutOfRangeGiveNothing) {
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  for (Count p : kHopelessPeriods) {
    SCOPED_TRACE(p);
    for (const Cycles& c : {Cycles{p, 5, 3, 1}, Cycles{3, p, 3, 1}, Cycles{3, 5, p, 1}}) {
      for (MacdLine line : {kDifference, kSignal}) {
        EXPECT_TRUE(allNull(batchMacd(prices, c, line)));
        expectNothingDone(runAtOnce(prices, livingMacd(c, line)));
      }
      expectNothingDone(runAtOnce(prices, livingHistogram(c)));
    }
  }
}

TEST(MACD, Streams) {
  for (Count type : kAllTypes) {
    SCOPED_TRACE(type);
    const Cycles cycles = {3, 6, 4, type};
    expectStreams(livingMacd(cycles, kDifference));
    expectStreams(livingMacd(cycles, kSignal));
    expectStreams(livingHistogram(cycles));
  }
}

}  // namespace
}  // namespace brindlewort::testing
