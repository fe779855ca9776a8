#include "indicators/percent_swing.hpp"

#include <gtest/gtest.h>

#include "support/streaming.hpp"

namespace brindlewort {
namespace {

using namespace testing;

constexpr SwingLine kAllLines[] = {SwingLine::kLine, SwingLine::kDirection, SwingLine::kTop,
                                   SwingLine::kBottom};
constexpr Shape kStreamedShapes[] = {Shape::kWalk,     Shape::kFlat,  Shape::kRising,   Shape::kNullHead,
                                     Shape::kNullGaps, Shape::kZeros, Shape::kNegative, Shape::kSteps};

Rows batch(const PriceRows& p, double percent, Count number, SwingLine line) {
  Rows out(p.close.size(), kNull);
  CFeedkit::PercentSwing({p.open, p.high, p.low, p.close, p.volume}, percent, number, line, out);
  return out;
}

Operation resumable(double percent, Count number, SwingLine line) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::PercentSwing(store, prices, percent, number, line, out);
  };
}

PriceRows bars(Rows high, Rows low) {
  PriceRows p;
  p.open = p.close = p.volume = low;
  p.high = std::move(high);
  p.low = std::move(low);
  return p;
}

// ---- A slow twin: the seven stages one after the other ------------------------------------------------

struct Twin {
  Rows line, code, turnRow, turnCode, pivots, list, direction;
  Count n;

  Twin(const PriceRows& p, double percent) : n(static_cast<Count>(p.high.size())) {
    line = code = turnRow = turnCode = pivots = direction = Rows(n, kNull);
    if (n < 2) return;
    drawLine(p.high, p.low, percent);
    code[1] = direction[1] = 1;
    for (Count i = 2; i < n; ++i) {
      code[i] = line[i - 1] == line[i] ? 3 : line[i] > line[i - 1] ? 1 : 2;
      direction[i] = code[i] == 3 ? direction[i - 1] : code[i];
    }
    turnRow[1] = turnCode[1] = 1;
    for (Count i = 2; i < n; ++i) {
      turnRow[i] = code[i] != 3 ? static_cast<double>(i) : turnRow[i - 1];
      turnCode[i] = code[i] != 3 ? code[i] : turnCode[i - 1];
    }
    markPivots(p.high, p.low);
    for (double x : pivots) {
      if (!isNull(x)) list.push_back(x);
    }
    if (!list.empty()) list.erase(list.begin());
  }

  void drawLine(const Rows& H, const Rows& L, double percent) {
    int d = 1;
    double last = H[1];
    line[1] = last;
    for (Count i = 2; i < n; ++i) {
      const double x = d == 1 ? H[i] : L[i];
      if (d == 1 ? last > x : last < x) {
        const double threshold = (d == 1 ? 100 - percent : 100 + percent) / 100 * last;
        if (d == 1 ? threshold > x : threshold < x) {
          last = d == 1 ? L[i] : H[i];
          d = 3 - d;
        }
        line[i] = last;
      } else {
        if (last == x) {
          Count j = i - 1;
          while (j >= 1 && line[j] == x) --j;
          if (j >= 1) {
            for (Count k = i - 1; k > j; --k) line[k] = line[j];
          }
        }
        line[i] = last = x;
      }
    }
  }

  void markPivots(const Rows& H, const Rows& L) {
    pivots[1] = L[1];
    int want = 2;
    for (Count i = 2; i < n; ++i) {
      const Count a = static_cast<Count>(turnRow[i - 1]), b = static_cast<Count>(turnRow[i]);
      if (want == turnCode[i]) {
        const Rows& ended = want == 1 ? L : H;
        const Rows& begun = want == 1 ? H : L;
        want = 3 - want;
        if (a != 1) pivots[a] = ended[a];
        if (b + 1 < n && b + 1 < i) pivots[b + 1] = begun[b];
      } else {
        pivots[i] = kNull;
      }
    }
    const Count last = static_cast<Count>(turnRow[n - 1]);
    pivots[last] = turnCode[n - 1] == 1 ? H[last] : L[last];
  }

  double at(Count k) const { return k >= 0 && k < static_cast<Count>(list.size()) ? list[k] : kNull; }

  Rows levels(Count s, bool top) const {
    Rows out(n, kNull);
    if (n < 2) return out;
    Count skip = 2 * (s + 1) - 1;
    if (top && at(0) < at(1)) ++skip;
    if (!top && at(0) > at(1)) ++skip;
    Count k = skip % 2 != 0 ? 0 : 1, held = -1, passed = 0;
    bool active = false;
    for (Count i = 0; i < n; ++i) {
      if (skip < passed && !active) active = true;
      if (!isNull(pivots[i])) ++passed;
      if (active) {
        if (i > 0 && direction[i] == (top ? 2 : 1) && direction[i - 1] == (top ? 1 : 2)) {
          out[i] = at(k);
          held = k;
        } else if (held > -1) {
          out[i] = at(held);
        }
        if (!isNull(pivots[i]) && (skip - (passed - 1)) % 2 == 0) {
          if (!isNull(at(k + 2))) held = k;
          k += 2;
        }
      }
    }
    return out;
  }

  Rows result(SwingLine wanted, Count s) const {
    switch (wanted) {
      case SwingLine::kLine:
        return pivots;
      case SwingLine::kDirection:
        return direction;
      case SwingLine::kTop:
        return levels(s, true);
      case SwingLine::kBottom:
        return levels(s, false);
    }
    return {};
  }
};

// ---- One swing up, one down, one up, worked by hand with 10 percent
// -----------------------------------------
//   row                 1    2    3    4   5   6    7    8    9   10
//   the line          100  110  110   90  88  88  105  112  112   94
//   Row 3: 105 is not below 0.9 * 110 = 99, no turn.   Row 4: 98 is below 99, the line turns to the low, 90.
//   Row 6: 92 is not above 1.1 * 88 = 96.8.            Row 7: 99 is above it, the line turns to the high,
//   105. Row 9: 101 is not below 0.9 * 112 = 100.8.         Row 10: 100 is, the line turns to the low, 94.
//   The directions end at rows 2 (high 110), 5 (low 88) and 8 (high 112); row 1 opens with its low, 98, and
//   the last step, at row 10, closes with its low, 94.

PriceRows handMade() {
  return bars({0, 100, 110, 105, 98, 95, 100, 105, 112, 101, 100},
              {0, 98, 105, 101, 90, 88, 92, 99, 104, 95, 94});
}

TEST(PercentSwingBatch, DirectionWorkedByHand) {
  EXPECT_TRUE(
      sameRows(Rows{kNull, 1, 1, 1, 2, 2, 2, 1, 1, 1, 2}, batch(handMade(), 10, 0, SwingLine::kDirection)));
}

TEST(PercentSwingBatch, TheLatestTopIsHeldFromTheBarAtWhichTheTurnShows) {
  const Rows expected = {kNull, kNull, kNull, kNull, 110, 110, 110, 110, 110, 110, 112};
  EXPECT_TRUE(sameRows(expected, batch(handMade(), 10, 0, SwingLine::kTop)));
}

TEST(PercentSwingBatch, TheTopBeforeTheLatestAppearsWithTheLatest) {
  const Rows expected = {kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull, 110};
  EXPECT_TRUE(sameRows(expected, batch(handMade(), 10, 1, SwingLine::kTop)));
}

TEST(PercentSwingBatch, TheLatestBottomIsHeldFromTheBarAtWhichTheTurnShows) {
  const Rows expected = {kNull, kNull, kNull, kNull, kNull, kNull, kNull, 88, 88, 88, 88};
  EXPECT_TRUE(sameRows(expected, batch(handMade(), 10, 0, SwingLine::kBottom)));
}

TEST(PercentSwingBatch, TheLineItselfHasNoValuesInThisForm) {
  EXPECT_TRUE(sameRows(Rows(11, kNull), batch(handMade(), 10, 0, SwingLine::kLine)));
}

TEST(PercentSwingResumable, TheLineIsAnsweredWithThePivots) {
  const Rows expected = {kNull, 98, 110, kNull, kNull, 88, kNull, kNull, 112, kNull, 94};
  EXPECT_TRUE(sameRows(expected, runAtOnce(handMade(), resumable(10, 0, SwingLine::kLine)).rows));
}

TEST(PercentSwingResumable, DirectionAndLevelsAreThoseOfTheBatchForm) {
  for (SwingLine line : {SwingLine::kDirection, SwingLine::kTop, SwingLine::kBottom}) {
    const RunResult result = runAtOnce(handMade(), resumable(10, 0, line));
    EXPECT_TRUE(sameRows(batch(handMade(), 10, 0, line), result.rows));
    EXPECT_EQ(kDone, result.status);
    EXPECT_EQ(11, result.slot);
  }
}

// ---- Edges -----------------------------------------------------------------------------------------------

TEST(PercentSwing, OnRisingBarsTheDirectionIsOneFromRow1) {
  Rows expected(40, 1.0);
  expected[0] = kNull;
  const PriceRows prices = makePrices(Shape::kRising, 40);
  PriceRows rising = prices;
  for (int i = 0; i < 40; ++i) rising.high[i] = (rising.low[i] = 10.0 + i) + 1.0;
  EXPECT_TRUE(sameRows(expected, batch(rising, 5, 0, SwingLine::kDirection)));
  EXPECT_TRUE(sameRows(expected, runAtOnce(rising, resumable(5, 0, SwingLine::kDirection)).rows));
  EXPECT_TRUE(sameRows(Rows(40, kNull), batch(rising, 5, 0, SwingLine::kTop)));
}

TEST(PercentSwing, AHighEqualToTheRunningExtremeMovesThePivotToTheLaterBar) {
  // The line is 100, 110, 110 (105 is above 99), then 110 is reached again: rows 2 and 3 take the 100 of row
  // 1 and the step up stands at row 4, which is thus the top when row 5 turns the line down.
  const PriceRows p = bars({0, 100, 110, 105, 110, 95}, {0, 98, 104, 101, 103, 90});
  const Rows pivots = runAtOnce(p, resumable(10, 0, SwingLine::kLine)).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, 98, kNull, kNull, 110, 90}, pivots));
}

TEST(PercentSwing, ALowEqualToTheRunningExtremeMovesThePivotToTheLaterBar) {
  // Falling from row 2 on (80 is below 90): 70, then 70 held by row 3 and reached again in row 4; row 5
  // turns.
  const PriceRows p = bars({0, 100, 80, 76, 75, 95}, {0, 98, 70, 71, 70, 90});
  const Rows pivots = runAtOnce(p, resumable(10, 0, SwingLine::kLine)).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, 98, kNull, kNull, 70, 95}, pivots));
}

TEST(PercentSwing, ALineThatHasStoodAtOneLevelFromItsStartKeepsItsRows) {
  const PriceRows p = bars({0, 100, 100, 100, 120}, {0, 99, 99, 99, 110});
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 1, 1, 1}, batch(p, 10, 0, SwingLine::kDirection)));
  // The only step after row 1 is row 4, which closes the list.
  EXPECT_TRUE(
      sameRows(Rows{kNull, 99, kNull, kNull, 120}, runAtOnce(p, resumable(10, 0, SwingLine::kLine)).rows));
}

TEST(PercentSwing, ATurnAwayFromRow1IsNoPivot) {
  // Row 2 turns down at once, row 3 up: the bottom of row 2 is the first of the list, row 3 closes it.
  const PriceRows p = bars({0, 100, 80, 100, 130}, {0, 98, 70, 95, 120});
  EXPECT_TRUE(
      sameRows(Rows{kNull, 98, 70, kNull, 130}, runAtOnce(p, resumable(10, 0, SwingLine::kLine)).rows));
  // A list that opens with a bottom shows that bottom to %SWINGPBOT without skipping one more, but it is
  // active only from the row after: the turn in row 3 is that row.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 70, 70}, batch(p, 10, 0, SwingLine::kBottom)));
  EXPECT_TRUE(sameRows(Rows(5, kNull), batch(p, 10, 0, SwingLine::kTop)));
}

TEST(PercentSwing, TheListThatOpensWithABottomSkipsItForTops) {
  // Line: 100, 70 (down), 100 and 130 (up), 90 (down). Tops start with the 130 of row 4.
  const PriceRows p = bars({0, 100, 80, 100, 130, 100, 99}, {0, 98, 70, 95, 120, 90, 95});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, kNull, 130, 130}, batch(p, 10, 0, SwingLine::kTop)));
}

TEST(PercentSwing, TwoRowsHaveOnlyTheOpeningRow) {
  const PriceRows p = bars({0, 100}, {0, 98});
  EXPECT_TRUE(sameRows(Rows{kNull, 1}, batch(p, 10, 0, SwingLine::kDirection)));
  EXPECT_TRUE(sameRows(Rows{kNull, 100},
                       runAtOnce(p, resumable(10, 0, SwingLine::kLine)).rows));  // closes on its high
  EXPECT_TRUE(sameRows(Rows{kNull, kNull}, batch(p, 10, 0, SwingLine::kTop)));
}

TEST(PercentSwing, FewerThanTwoRowsHaveNoValues) {
  for (int n : {0, 1}) {
    for (SwingLine line : kAllLines) {
      const PriceRows p = makePrices(Shape::kWalk, n);
      EXPECT_TRUE(sameRows(Rows(n, kNull), batch(p, 5, 0, line)));
      const RunResult result = runAtOnce(p, resumable(5, 0, line));
      EXPECT_EQ(kNothingDone, result.status);
      EXPECT_EQ(-1, result.slot);
    }
  }
}

TEST(PercentSwing, EqualsTheSlowTwinForEveryShapeAndLength) {
  for (Shape shape : kAllShapes) {
    for (int n : {0, 1, 2, 3, 4, 5, 6, 7, 10, 25, 60, 200}) {
      for (double percent : {0.0, 0.5, 1.0, 2.0, 5.0, 50.0, 99.99}) {
        for (std::uint64_t seed : {1, 2, 3}) {
          const PriceRows prices = makePrices(shape, n, seed);
          const Twin twin(prices, percent);
          for (Count number : {0, 1, 2, 10}) {
            for (SwingLine line : kAllLines) {
              const Rows expected = twin.result(line, number);
              ASSERT_TRUE(sameRows(expected, runAtOnce(prices, resumable(percent, number, line)).rows))
                  << "shape " << static_cast<int>(shape) << " n " << n << " percent " << percent << " number "
                  << number << " line " << static_cast<int>(line);
              if (line == SwingLine::kLine) continue;
              ASSERT_TRUE(sameRows(expected, batch(prices, percent, number, line)));
            }
          }
        }
      }
    }
  }
}

TEST(PercentSwing, AnyPercentAndSwingNumberGiveADefinedResult) {
  for (Shape shape : kAllShapes) {
    const PriceRows prices = makePrices(shape, 30);
    for (double percent : {-50.0, 150.0, 1e300, -kInf, kInf, kNaN, kNull}) {
      for (Count number : {Count{-1}, Count{-2}, Count{INT32_MIN}, Count{INT32_MAX}}) {
        const Twin twin(prices, percent);
        for (SwingLine line : {SwingLine::kDirection, SwingLine::kTop, SwingLine::kBottom}) {
          ASSERT_TRUE(sameRows(twin.result(line, number), batch(prices, percent, number, line)));
          ASSERT_TRUE(
              sameRows(twin.result(line, number), runAtOnce(prices, resumable(percent, number, line)).rows));
        }
      }
    }
  }
}

TEST(PercentSwing, ALongFlatSeriesIsNotWalkedBackForEachBar) {
  const int n = 1'000'000;  // walked back from every row this would take minutes
  const Rows flat(n, 42.0);
  const PriceRows p = bars(flat, flat);
  EXPECT_EQ(1.0, batch(p, 5, 0, SwingLine::kDirection)[n - 1]);
}

TEST(PercentSwingResumable, BarsFedOneByOneGiveTheSeriesOfOneCall) {
  // The last pivot moves with the bars that come, so every call writes all rows again; the end is the same.
  for (Shape shape : kStreamedShapes) {
    const PriceRows prices = makePrices(shape, 60);
    for (SwingLine line : kAllLines) expectStreamsLikeOneCall(prices, resumable(1.0, 0, line));
    expectStreamsLikeOneCall(prices, resumable(1.0, 1, SwingLine::kTop));
  }
}

TEST(PercentSwingResumable, ALaterBarTakesBackAPivotOfAnEarlierCall) {
  PriceRows p = handMade();
  const Operation run = resumable(10, 0, SwingLine::kLine);
  const std::size_t n = p.close.size();
  TestStore store(n);
  Rows out(n, kNull);
  std::int32_t slot = -1;
  run(store, sourcesOf(p, n - 2), {Out(out).first(n - 2), &slot});
  EXPECT_EQ(112, out[8]);  // the last step so far: the high of row 8
  p.high[9] = 120;         // the line goes on to row 9
  run(store, sourcesOf(p, n - 1), {Out(out).first(n - 1), &slot});
  EXPECT_TRUE(isNull(out[8]));
  EXPECT_EQ(120, out[9]);
}

TEST(PercentSwingResumable, TheNumberOfRowsIsCappedByTheOutput) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  PriceRows head = makePrices(Shape::kWalk, 60);
  for (Rows* rows : {&head.open, &head.high, &head.low, &head.close, &head.volume}) rows->resize(40);
  for (SwingLine line : kAllLines) {
    TestStore store(60);
    Rows out(40, kNull);
    std::int32_t slot = -1;
    EXPECT_EQ(kDone, resumable(1, 0, line)(store, sourcesOf(prices, 60), {out, &slot}));
    EXPECT_EQ(40, slot);
    EXPECT_TRUE(sameRows(runAtOnce(head, resumable(1, 0, line)).rows, out));
  }
}

}  // namespace
}  // namespace brindlewort
