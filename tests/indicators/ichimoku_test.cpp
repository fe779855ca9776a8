#include "indicators/ichimoku.hpp"

#include <gtest/gtest.h>

#include "support/streaming.hpp"

namespace brindlewort {
namespace {

using namespace testing;

constexpr IchimokuLine kBatchLines[] = {IchimokuLine::kTenkan, IchimokuLine::kKijun, IchimokuLine::kSpanA,
                                        IchimokuLine::kSpanB};
constexpr IchimokuLine kAllLines[] = {IchimokuLine::kTenkan, IchimokuLine::kKijun, IchimokuLine::kSpanA,
                                      IchimokuLine::kSpanB, IchimokuLine::kChikou};
constexpr Shape kStreamedShapes[] = {Shape::kWalk,     Shape::kFlat,  Shape::kRising,   Shape::kNullHead,
                                     Shape::kNullGaps, Shape::kZeros, Shape::kNegative, Shape::kSteps};

struct Periods {
  Count tenkan = 0, kijun = 0, spanA = 0, spanB = 0, chikou = 0;
};

Prices viewsOf(const PriceRows& p) {
  return {p.open, p.high, p.low, p.close, p.volume};
}

Rows batch(const PriceRows& prices, const Periods& p, IchimokuLine line) {
  Rows out(prices.close.size(), kNull);
  CFeedkit::Ichimoku(viewsOf(prices), p.tenkan, p.kijun, p.spanA, p.spanB, line, out);
  return out;
}

Operation resumable(const Periods& p, IchimokuLine line) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::Ichimoku(store, prices, p.tenkan, p.kijun, p.spanA, p.spanB, p.chikou, line,
                                         out);
  };
}

// ---- A slow twin: every step into a series of its own, every window searched from its newest row ----------

Rows middleTwin(const PriceRows& prices, Count p) {
  const Count n = static_cast<Count>(prices.close.size());
  Rows highest(n, kNull), lowest(n, kNull), line(n, kNull);
  for (Count i = p; i < n; ++i) {
    highest[i] = nz(prices.high[i]);
    lowest[i] = nz(prices.low[i]);
    for (Count j = i; j >= i - p + 1; --j) {
      if (nz(prices.high[j]) > highest[i]) highest[i] = nz(prices.high[j]);
      if (nz(prices.low[j]) < lowest[i]) lowest[i] = nz(prices.low[j]);
    }
    line[i] = (nz(highest[i]) + nz(lowest[i])) / 2;
  }
  return line;
}

/// `batchForm` tells the range: below all rows, or up to all rows.
Rows twin(const PriceRows& prices, const Periods& p, IchimokuLine line, bool batchForm) {
  const Count n = static_cast<Count>(prices.close.size());
  const auto bad = [&](Count period) { return period < 1 || (batchForm ? period >= n : period > n); };
  Rows out(n, kNull);
  switch (line) {
    case IchimokuLine::kTenkan:
      return bad(p.tenkan) ? out : middleTwin(prices, p.tenkan);
    case IchimokuLine::kKijun:
      return bad(p.kijun) ? out : middleTwin(prices, p.kijun);
    case IchimokuLine::kSpanA: {
      if (bad(p.tenkan) || bad(p.kijun) || bad(p.spanA)) return out;
      const Rows tenkan = middleTwin(prices, p.tenkan), kijun = middleTwin(prices, p.kijun);
      Rows set(n, kNull);
      for (Count i = p.kijun; i < n; ++i) set[i] = (nz(tenkan[i]) + nz(kijun[i])) / 2;
      for (Count i = p.spanA + p.kijun; i < n; ++i) out[i] = nz(set[i - p.spanA]);
      return out;
    }
    case IchimokuLine::kSpanB: {
      if (bad(p.spanB)) return out;
      const Rows set = middleTwin(prices, 52);
      for (Count i = p.spanB + 52; i < n; ++i) out[i] = nz(set[i - p.spanB]);
      return out;
    }
    case IchimokuLine::kChikou: {
      if (bad(p.chikou)) return out;
      double value = kNull;
      for (Count i = 0; i < n; ++i) {
        if (i + p.chikou < n) value = prices.close[i + p.chikou];
        out[i] = value;
      }
      return out;
    }
  }
  return out;
}

PriceRows risingBars(int n) {
  PriceRows p;
  for (int i = 0; i < n; ++i) {
    p.open.push_back(100.0 + i);
    p.high.push_back(102.0 + i);
    p.low.push_back(99.0 + i);
    p.close.push_back(101.0 + i);
    p.volume.push_back(1.0);
  }
  return p;
}

// ---- Batch form ----------------------------------------------------------------------------------------

TEST(IchimokuBatch, TenkanIsTheMiddleOfItsWindowAndStartsAtItsPeriod) {
  PriceRows p;
  p.high = {900, 10, 14, 11, 13};  // the filler bar's 900 is never seen
  p.low = {1, 8, 9, 7, 10};
  p.open = p.close = p.volume = Rows(5, 5.0);
  // Rows 1 and 2: (14 + 8) / 2; rows 2 and 3: (14 + 7) / 2; rows 3 and 4: (13 + 7) / 2.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 11.0, 10.5, 10.0}, batch(p, {.tenkan = 2}, IchimokuLine::kTenkan)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 11.0, 10.5, 10.0}, batch(p, {.kijun = 2}, IchimokuLine::kKijun)));
}

TEST(IchimokuBatch, Tenkan9HasItsFirstValueAtRow9OverRows1To9) {
  const Rows line = batch(risingBars(30), {.tenkan = 9}, IchimokuLine::kTenkan);
  for (int i = 0; i < 9; ++i) EXPECT_TRUE(isNull(line[i])) << i;
  EXPECT_EQ((111.0 + 100.0) / 2, line[9]);  // the high of row 9, the low of row 1
}

TEST(IchimokuBatch, SpanA_9_26_26HasItsFirstValueAtRow52) {
  const PriceRows p = risingBars(80);
  const Rows line = batch(p, {.tenkan = 9, .kijun = 26, .spanA = 26}, IchimokuLine::kSpanA);
  for (int i = 0; i < 52; ++i) EXPECT_TRUE(isNull(line[i])) << i;
  // Row 26: TENKAN has the high of row 26 and the low of row 18, KIJUN that high and the low of row 1.
  EXPECT_EQ(((128.0 + 117.0) / 2 + (128.0 + 100.0) / 2) / 2, line[52]);
}

TEST(IchimokuBatch, SpanATakesAMissingTenkanAsZero) {
  // TENKAN starts at row 4, KIJUN at row 2, so rows 2 and 3 (seen one row later) are half of KIJUN alone.
  const PriceRows p = risingBars(6);
  const Rows line = batch(p, {.tenkan = 4, .kijun = 2, .spanA = 1}, IchimokuLine::kSpanA);
  EXPECT_TRUE(isNull(line[2]));
  EXPECT_EQ((0.0 + (104.0 + 100.0) / 2) / 2, line[3]);
  EXPECT_EQ((0.0 + (105.0 + 101.0) / 2) / 2, line[4]);
  EXPECT_EQ(((106.0 + 100.0) / 2 + (106.0 + 102.0) / 2) / 2, line[5]);
}

TEST(IchimokuBatch, SpanBIsAllNullWithFewerThan53Bars) {
  EXPECT_TRUE(sameRows(Rows(52, kNull), batch(risingBars(52), {.spanB = 1}, IchimokuLine::kSpanB)));
  EXPECT_TRUE(sameRows(Rows(53, kNull), batch(risingBars(53), {.spanB = 1}, IchimokuLine::kSpanB)));
  const Rows line = batch(risingBars(54), {.spanB = 1}, IchimokuLine::kSpanB);
  EXPECT_TRUE(isNull(line[52]));
  EXPECT_EQ((154.0 + 100.0) / 2, line[53]);  // row 52: the high of row 52, the low of row 1
}

TEST(IchimokuBatch, NullPricesReadAsZero) {
  PriceRows p = risingBars(4);
  p.low[2] = kNull;
  p.high[3] = kNull;
  const Rows line = batch(p, {.tenkan = 2}, IchimokuLine::kTenkan);
  EXPECT_EQ((104.0 + 0.0) / 2, line[2]);
  EXPECT_EQ((104.0 + 0.0) / 2, line[3]);
}

TEST(IchimokuBatch, ANonNumberStandsOnlyInItsOwnRow) {
  PriceRows p = risingBars(5);
  p.high[2] = kNaN;
  const Rows line = batch(p, {.tenkan = 2}, IchimokuLine::kTenkan);
  EXPECT_TRUE(std::isnan(line[2]));
  EXPECT_EQ((105.0 + 101.0) / 2, line[3]);  // the search from row 3 passes over row 2's high
}

TEST(IchimokuBatch, TheLaggingLineIsAnsweredWithSpanB) {
  const PriceRows p = makePrices(Shape::kWalk, 90);
  const Periods periods = {.spanB = 26, .chikou = 26};
  EXPECT_TRUE(sameRows(batch(p, periods, IchimokuLine::kSpanB), batch(p, periods, IchimokuLine::kChikou)));
}

TEST(IchimokuBatch, OnlyThePeriodsOfTheWantedLineAreRead) {
  const PriceRows p = makePrices(Shape::kWalk, 90);
  for (IchimokuLine line : {IchimokuLine::kTenkan, IchimokuLine::kKijun, IchimokuLine::kSpanB}) {
    const bool tenkan = line == IchimokuLine::kTenkan, kijun = line == IchimokuLine::kKijun;
    const Periods onlyItsOwn = {tenkan ? 9 : 0, kijun ? 9 : 0, 0, tenkan || kijun ? 0 : 9};
    EXPECT_TRUE(sameRows(batch(p, {9, 9, 9, 9}, line), batch(p, onlyItsOwn, line)));
  }
}

TEST(IchimokuBatch, APeriodOutOfRangeLeavesAllRowsNull) {
  const PriceRows p = makePrices(Shape::kWalk, 60);
  for (Count bad : {Count{0}, Count{-1}, Count{INT32_MIN}, Count{60}, Count{INT32_MAX}}) {
    for (IchimokuLine line : kBatchLines) {
      EXPECT_TRUE(sameRows(Rows(60, kNull), batch(p, {bad, bad, bad, bad}, line))) << bad;
    }
    EXPECT_TRUE(sameRows(Rows(60, kNull), batch(p, {bad, 3, 3, 3}, IchimokuLine::kSpanA))) << bad;
    EXPECT_TRUE(sameRows(Rows(60, kNull), batch(p, {3, bad, 3, 3}, IchimokuLine::kSpanA))) << bad;
    EXPECT_TRUE(sameRows(Rows(60, kNull), batch(p, {3, 3, bad, 3}, IchimokuLine::kSpanA))) << bad;
  }
}

TEST(IchimokuBatch, EqualsTheSlowTwinForEveryShapeAndLength) {
  for (Shape shape : kAllShapes) {
    for (Count p : {1, 2, 3, 7}) {
      for (int n = 0; n <= 5 * p; ++n) {
        const PriceRows prices = makePrices(shape, n);
        for (const Periods& periods : {Periods{p, p + 1, 2, p}, Periods{p + 2, p, p, 1}}) {
          for (IchimokuLine line : kBatchLines) {
            ASSERT_TRUE(sameRows(twin(prices, periods, line, true), batch(prices, periods, line)))
                << "shape " << static_cast<int>(shape) << " line " << static_cast<int>(line) << " p " << p;
          }
        }
      }
    }
    for (int n : {51, 52, 53, 54, 60, 130}) {
      const PriceRows prices = makePrices(shape, n);
      for (Count p : {1, 26}) {
        ASSERT_TRUE(sameRows(twin(prices, {9, 26, 26, p}, IchimokuLine::kSpanB, true),
                             batch(prices, {9, 26, 26, p}, IchimokuLine::kSpanB)));
        ASSERT_TRUE(sameRows(twin(prices, {9, 26, p, 0}, IchimokuLine::kSpanA, true),
                             batch(prices, {9, 26, p, 0}, IchimokuLine::kSpanA)));
      }
    }
  }
}

TEST(IchimokuBatch, NarrowAndWideWindowsEqualTheSlowTwinOverManyRows) {
  for (Shape shape : kAllShapes) {
    for (int n : {64, 65, 130, 200}) {
      const PriceRows prices = makePrices(shape, n);
      for (Count p : {1, 9, 15, 16, 17, 40, 63}) {
        ASSERT_TRUE(sameRows(twin(prices, {.tenkan = p}, IchimokuLine::kTenkan, true),
                             batch(prices, {.tenkan = p}, IchimokuLine::kTenkan)))
            << "shape " << static_cast<int>(shape) << " n " << n << " p " << p;
      }
    }
  }
}

// ---- Resumable form ------------------------------------------------------------------------------------

TEST(IchimokuResumable, HasTheRowsOfTheBatchForm) {
  const PriceRows prices = makePrices(Shape::kWalk, 120);
  const Periods p = {9, 26, 26, 26};
  for (IchimokuLine line : kBatchLines) {
    EXPECT_TRUE(sameRows(batch(prices, p, line), runAtOnce(prices, resumable(p, line)).rows));
  }
}

TEST(IchimokuResumable, Chikou26On100BarsEndsWithTheLastCloseOnItsLast26Rows) {
  const PriceRows prices = risingBars(100);
  const RunResult result = runAtOnce(prices, resumable({.chikou = 26}, IchimokuLine::kChikou));
  EXPECT_EQ(127.0, result.rows[0]);  // the close of row 26
  EXPECT_EQ(200.0, result.rows[73]);
  for (int i = 74; i < 100; ++i) EXPECT_EQ(200.0, result.rows[i]) << i;  // the close of row 99
  EXPECT_EQ(kDone, result.status);
  EXPECT_EQ(100, result.slot);
}

TEST(IchimokuResumable, ChikouWithNoRowSoFarAheadStaysNull) {
  for (int n : {1, 5, 26}) {
    EXPECT_TRUE(sameRows(Rows(n, kNull),
                         runAtOnce(risingBars(n), resumable({.chikou = 26}, IchimokuLine::kChikou)).rows));
  }
  EXPECT_TRUE(sameRows(Rows(27, 127.0),
                       runAtOnce(risingBars(27), resumable({.chikou = 26}, IchimokuLine::kChikou)).rows));
}

TEST(IchimokuResumable, ChikouTakesTheCloseAsItStands) {
  PriceRows prices = risingBars(4);
  prices.close[2] = kNull;
  const Rows line = runAtOnce(prices, resumable({.chikou = 2}, IchimokuLine::kChikou)).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, 104.0, 104.0, 104.0}, line));
}

TEST(IchimokuResumable, EqualsTheSlowTwinForEveryShapeAndLength) {
  for (Shape shape : kAllShapes) {
    for (Count p : {1, 2, 3, 7}) {
      for (int n = 0; n <= 5 * p; ++n) {
        const PriceRows prices = makePrices(shape, n);
        for (const Periods& periods : {Periods{p, p + 1, 2, p, p}, Periods{p + 2, p, p, 1, p}}) {
          for (IchimokuLine line : kAllLines) {
            const RunResult result = runAtOnce(prices, resumable(periods, line));
            ASSERT_TRUE(sameRows(twin(prices, periods, line, false), result.rows))
                << "shape " << static_cast<int>(shape) << " line " << static_cast<int>(line) << " p " << p;
            ASSERT_EQ(kDone, result.status);
          }
        }
      }
    }
    const PriceRows prices = makePrices(shape, 130);
    const Periods usual = {9, 26, 26, 26, 26};
    for (IchimokuLine line : kAllLines) {
      ASSERT_TRUE(sameRows(twin(prices, usual, line, false), runAtOnce(prices, resumable(usual, line)).rows));
    }
  }
}

TEST(IchimokuResumable, SucceedsForEveryLineWhateverThePeriodsAndThenLeavesTheOutputAlone) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  for (IchimokuLine line : kAllLines) {
    for (Count bad : {Count{0}, Count{-7}, Count{INT32_MIN}, Count{61}, Count{INT32_MAX}}) {
      const RunResult result = runAtOnce(prices, resumable({bad, bad, bad, bad, bad}, line));
      EXPECT_EQ(kDone, result.status);
      EXPECT_EQ(-1, result.slot);
      EXPECT_TRUE(sameRows(Rows(60, kNull), result.rows));
    }
    EXPECT_EQ(kDone, runAtOnce({}, resumable({9, 26, 26, 26, 26}, line)).status);
  }
}

TEST(IchimokuResumable, AnUnknownLineDoesNothing) {
  const RunResult result =
      runAtOnce(makePrices(Shape::kWalk, 60), resumable({9, 26, 26, 26, 26}, static_cast<IchimokuLine>(9)));
  EXPECT_EQ(kNothingDone, result.status);
  EXPECT_EQ(-1, result.slot);
}

TEST(IchimokuResumable, TheNumberOfRowsIsCappedByTheOutput) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  for (IchimokuLine line : kAllLines) {
    TestStore store(60);
    Rows out(40, kNull);
    std::int32_t slot = -1;
    EXPECT_EQ(kDone, resumable({3, 5, 2, 2, 4}, line)(store, sourcesOf(prices, 60), {out, &slot}));
    EXPECT_EQ(40, slot);
  }
}

TEST(IchimokuResumable, BarsFedOneByOneGiveTheSeriesOfOneCall) {
  for (Shape shape : kStreamedShapes) {
    const PriceRows prices = makePrices(shape, 100);
    for (const Periods& periods : {Periods{9, 26, 26, 26, 26}, Periods{30, 4, 3, 1, 1}}) {
      for (IchimokuLine line : kAllLines) expectStreamsLikeOneCall(prices, resumable(periods, line));
    }
  }
}

TEST(IchimokuResumable, ASecondCallWithoutANewBarChangesNothing) {
  const PriceRows prices = makePrices(Shape::kWalk, 100);
  for (IchimokuLine line : kAllLines) {
    TestStore store(100);
    Rows out(100, kNull);
    std::int32_t slot = -1;
    const Operation run = resumable({9, 26, 26, 26, 26}, line);
    run(store, sourcesOf(prices, 100), {out, &slot});
    const Rows first = out;
    EXPECT_EQ(kDone, run(store, sourcesOf(prices, 100), {out, &slot}));
    EXPECT_TRUE(sameRows(first, out));
  }
}

}  // namespace
}  // namespace brindlewort
