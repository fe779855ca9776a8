#include "indicators/point_figure.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "series/rounding.hpp"
#include "support/streaming.hpp"

namespace brindlewort {
namespace {

using namespace testing;

constexpr PointFigureLine kAllLines[] = {PointFigureLine::kX, PointFigureLine::kO,
                                         PointFigureLine::kDirection};

Rows smooth(const Rows& source, double boxSize, Count reversal) {
  Rows out(source.size(), kNull);
  CFeedkit::PointFigureSmooth(source, boxSize, reversal, out);
  return out;
}

/// Over the close alone, or over high and low.
Operation chartOf(double boxSize, Count reversal, PointFigureLine line, bool highLow = false) {
  return [=](WorkStore& store, const PriceSources& p, Target out) {
    return CTechnicalFunctions::PointFigure(store, highLow ? p.high : p.close, highLow ? p.low : p.close,
                                            boxSize, reversal, line, out);
  };
}

PriceRows closes(const Rows& rows) {
  return {rows, rows, rows, rows, rows};
}

Rows chart(const Rows& rows, double boxSize, Count reversal, PointFigureLine line) {
  return runAtOnce(closes(rows), chartOf(boxSize, reversal, line)).rows;
}

Rows chart(const Rows& high, const Rows& low, double boxSize, Count reversal, PointFigureLine line) {
  return runAtOnce({low, high, low, low, low}, chartOf(boxSize, reversal, line, true)).rows;
}

// ---- A slow twin: the machine written as its list of steps ----------------------------------------------

Rows twin(const Rows& first, const Rows& second, double boxSize, Count reversal, PointFigureLine line) {
  Rows out(first.size(), kNull);
  if (!(boxSize > 0) || first.empty()) return out;
  const auto q = [](double x) { return QuantizeForCompare(x); };
  const auto round = [](double x) { return RoundValue(x, 4, RoundMode::kNearest); };
  const auto box = [&](double x) { return std::trunc(x / boxSize) * boxSize; };
  double countX = 0, countO = 0, trend = -1;
  const double reverseBy = static_cast<double>(reversal) * boxSize;
  double base = box(nz(first[0])), top = base, bottom = base, peak = base;
  for (std::size_t i = 0; i < first.size(); ++i) {
    const double h = nz(first[i]), l = nz(second[i]);
    bool goOn = true;
    if (trend == 1 || trend == -1) {
      if (q(h) > q(top)) {
        const double cnt = std::trunc(round(h - base) / boxSize);
        if (q(cnt) > q(countX)) {
          countX = cnt;
          trend = 1;
          top = box(h);
        }
      } else if (q(l) < q(top) && trend == 1) {
        const double r = round(top - l);
        if (q(r) >= q(reverseBy)) {
          countO = std::trunc(r / boxSize);
          trend = 0;
          peak = top;
          bottom = box(l);
          if (q(l - bottom) > 0) bottom += boxSize;
          goOn = false;
        }
      }
    }
    if (goOn && (trend == 0 || trend == -1)) {
      if (q(l) < q(bottom)) {
        const double cnt = std::trunc(round(peak - l) / boxSize);
        if (q(cnt) > q(countO)) {
          countO = cnt;
          trend = 0;
          bottom = box(l);
          if (q(l - bottom) > 0) bottom += boxSize;
        }
      } else if (q(h) > q(bottom) && trend == 0) {
        const double r = round(h - bottom);
        if (q(r) >= q(reverseBy)) {
          countX = std::trunc(r / boxSize);
          trend = 1;
          base = bottom;
          top = box(h);
        }
      }
    }
    if (line == PointFigureLine::kX) out[i] = countX;
    if (line == PointFigureLine::kO) out[i] = countO;
    if (line == PointFigureLine::kDirection && i > 0 && trend != -1) out[i] = trend;
  }
  return out;
}

// ---- Batch form: the smoothing -------------------------------------------------------------------------

TEST(PointFigureSmooth, SeedsWithTheMeanOfRows2ToReversalPlus1AndSmoothsFromThere) {
  // Box size 0.5, reversal 3: rows up to 3 are null, row 4 is (4 + 8 + 6) / 3 = 6, then halves.
  EXPECT_TRUE(
      sameRows(Rows{kNull, kNull, kNull, kNull, 6.0, 8.0, 5.0}, smooth({100, 100, 4, 8, 6, 10, 2}, 0.5, 3)));
}

TEST(PointFigureSmooth, NullRowsReadAsZero) {
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 2.0, 1.0, 3.0}, smooth({1, 1, kNull, 4, kNull, 5}, 0.5, 2)));
}

TEST(PointFigureSmooth, TheSeedRowMustExist) {
  const Rows source = makeSeries(Shape::kWalk, 6);
  EXPECT_FALSE(isNull(smooth(source, 0.5, 4)[5]));
  for (Count reversal :
       {Count{5}, Count{6}, Count{99}, Count{0}, Count{-1}, Count{INT32_MIN}, Count{INT32_MAX}}) {
    EXPECT_TRUE(sameRows(Rows(6, kNull), smooth(source, 0.5, reversal))) << reversal;
  }
}

TEST(PointFigureSmooth, EqualsTheSlowTwinForEveryShapeAndLength) {
  for (Shape shape : kAllShapes) {
    for (int reversal : {1, 2, 3, 7}) {
      for (int n = 0; n <= 5 * reversal; ++n) {
        for (double boxSize : {0.005, 0.5, 1.0, 3.0, -2.0, 0.0}) {
          const Rows source = makeSeries(shape, n);
          Rows expected(n, kNull);
          if (reversal + 1 < n) {
            double sum = 0.0;
            for (int j = 2; j <= reversal + 1; ++j) sum += nz(source[j]);
            expected[reversal + 1] = sum / reversal;
            for (int i = reversal + 2; i < n; ++i) {
              expected[i] = nz(source[i]) * boxSize + nz(expected[i - 1]) * (1 - boxSize);
            }
          }
          ASSERT_TRUE(sameRows(expected, smooth(source, boxSize, reversal)));
        }
      }
    }
  }
}

// ---- Resumable form: the chart -------------------------------------------------------------------------

TEST(PointFigure, RisingClosesCountUpByWholeBoxes) {
  const Rows rising = {100, 101, 102.5, 103, 103.9, 106};
  EXPECT_TRUE(sameRows(Rows{0, 1, 2, 3, 3, 6}, chart(rising, 1, 3, PointFigureLine::kX)));
  EXPECT_TRUE(sameRows(Rows(6, 0.0), chart(rising, 1, 3, PointFigureLine::kO)));
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 1, 1, 1, 1}, chart(rising, 1, 3, PointFigureLine::kDirection)));
}

TEST(PointFigure, AFallOfExactlyTheReversalTurnsTheColumn) {
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 0}, chart({100, 103, 100}, 1, 3, PointFigureLine::kDirection)));
  EXPECT_TRUE(sameRows(Rows{0, 0, 3}, chart({100, 103, 100}, 1, 3, PointFigureLine::kO)));
  EXPECT_TRUE(
      sameRows(Rows{0, 3, 3}, chart({100, 103, 100}, 1, 3, PointFigureLine::kX)));  // kept while falling
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 1}, chart({100, 103, 100.0001}, 1, 3, PointFigureLine::kDirection)));
}

TEST(PointFigure, ColumnsGrowAndTurnWorkedByHand) {
  // Up to 103; down to 100 (3 boxes from 103); 98.5 is 4.5 below 103: 4 boxes, the column ends at 99; 98.9
  // adds none; 101.9 is 2.9 above 99, 102 is 3: the column turns up with 3 boxes; 103.5 is 4.5 above 99: 4
  // boxes.
  const Rows price = {100, 103, 100, 98.5, 98.9, 101.9, 102, 103.5};
  EXPECT_TRUE(sameRows(Rows{0, 3, 3, 3, 3, 3, 3, 4}, chart(price, 1, 3, PointFigureLine::kX)));
  EXPECT_TRUE(sameRows(Rows{0, 0, 3, 4, 4, 4, 4, 4}, chart(price, 1, 3, PointFigureLine::kO)));
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 0, 0, 0, 0, 1, 1}, chart(price, 1, 3, PointFigureLine::kDirection)));
}

TEST(PointFigure, TheFirstColumnMayFall) {
  const Rows price = {100, 99.5, 98, 97};
  // 99.5 is half a box; 98 is two boxes below the first close.
  EXPECT_TRUE(sameRows(Rows{0, 0, 2, 3}, chart(price, 1, 3, PointFigureLine::kO)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 0, 0}, chart(price, 1, 3, PointFigureLine::kDirection)));
}

TEST(PointFigure, ABarThatRisesAboveTheColumnNeverTurnsIt) {
  // Row 2 falls far, but its high is above the top: 104 adds a box, 103.2 adds none, and neither turns.
  for (double high : {104.0, 103.2}) {
    EXPECT_TRUE(sameRows(Rows{kNull, 1, 1},
                         chart({100, 103, high}, {100, 103, 90}, 1, 3, PointFigureLine::kDirection)));
  }
  EXPECT_TRUE(
      sameRows(Rows{kNull, 1, 0}, chart({100, 103, 103}, {100, 103, 90}, 1, 3, PointFigureLine::kDirection)));
}

TEST(PointFigure, OfAFirstBarThatReachesBothWaysTheRiseStands) {
  EXPECT_TRUE(sameRows(Rows{kNull, 1}, chart({100, 102}, {100, 95}, 1, 3, PointFigureLine::kDirection)));
  EXPECT_TRUE(sameRows(Rows{0, 0}, chart({100, 102}, {100, 95}, 1, 3, PointFigureLine::kO)));
}

TEST(PointFigure, Row0CountsButHasNoDirection) {
  // The chart starts at the box of the first high; the first low is four boxes below it.
  EXPECT_TRUE(sameRows(Rows{4, 4}, chart({105, 105}, {101, 101}, 1, 9, PointFigureLine::kO)));
  EXPECT_TRUE(sameRows(Rows{kNull, 0}, chart({105, 105}, {101, 101}, 1, 9, PointFigureLine::kDirection)));
}

TEST(PointFigure, PricesCompareAtFourDecimals) {
  // A box of some 0.0000076: a rise of 0.00009 is eleven boxes, but is not seen; 0.0001 is thirteen.
  const double boxSize = 0x1p-17;
  EXPECT_TRUE(sameRows(Rows{0, 0, 13}, chart({1, 1.00009, 1.0001}, boxSize, 3, PointFigureLine::kX)));
}

TEST(PointFigure, ABoxSizeOf0OrBelowDoesNothing) {
  for (double boxSize : {0.0, -0.0, -1.0, -kInf, kNaN, kNull}) {
    for (PointFigureLine line : kAllLines) {
      const RunResult result = runAtOnce(makePrices(Shape::kWalk, 9), chartOf(boxSize, 3, line));
      EXPECT_EQ(kNothingDone, result.status);
      EXPECT_EQ(-1, result.slot);
      EXPECT_TRUE(sameRows(Rows(9, kNull), result.rows));
    }
  }
}

TEST(PointFigure, AnEmptySeriesDoesNothing) {
  EXPECT_EQ(kNothingDone, runAtOnce({}, chartOf(1, 3, PointFigureLine::kX)).status);
}

TEST(PointFigure, EqualsTheSlowTwinForEveryShapeAndLength) {
  for (Shape shape : kAllShapes) {
    for (int n : {1, 2, 3, 5, 20, 80}) {
      const PriceRows p = makePrices(shape, n);
      for (double boxSize : {0.005, 0.1, 0.5, 1.0, 99999.9999, 1e-300, kInf}) {
        for (Count reversal :
             {Count{1}, Count{2}, Count{3}, Count{99}, Count{0}, Count{-4}, Count{INT32_MIN}}) {
          for (PointFigureLine line : kAllLines) {
            ASSERT_TRUE(sameRows(twin(p.close, p.close, boxSize, reversal, line),
                                 runAtOnce(p, chartOf(boxSize, reversal, line)).rows));
            const RunResult highLow = runAtOnce(p, chartOf(boxSize, reversal, line, true));
            ASSERT_TRUE(sameRows(twin(p.high, p.low, boxSize, reversal, line), highLow.rows));
            ASSERT_EQ(kDone, highLow.status);
            ASSERT_EQ(n, highLow.slot);
          }
        }
      }
    }
  }
}

TEST(PointFigure, BarsFedOneByOneGiveTheSeriesOfOneCall) {
  for (Shape shape : {Shape::kWalk, Shape::kFlat, Shape::kRising, Shape::kNullHead, Shape::kNullGaps,
                      Shape::kZeros, Shape::kNegative, Shape::kSteps}) {
    const PriceRows prices = makePrices(shape, 80);
    for (PointFigureLine line : kAllLines) {
      expectStreamsLikeOneCall(prices, chartOf(0.5, 2, line));
      expectStreamsLikeOneCall(prices, chartOf(0.5, 2, line, true));
    }
  }
}

TEST(PointFigure, AResumedCallWritesFromTheLastComputedRow) {
  const PriceRows p = makePrices(Shape::kWalk, 40);
  TestStore store(40);
  std::int32_t slot = 30;
  Rows out(40, 7.0);
  chartOf(0.5, 2, PointFigureLine::kX)(store, sourcesOf(p, 40), {out, &slot});
  const Rows whole = twin(p.close, p.close, 0.5, 2, PointFigureLine::kX);
  for (std::size_t i = 0; i < 40; ++i) EXPECT_EQ(i < 29 ? 7.0 : whole[i], out[i]) << i;
}

TEST(PointFigure, TheNumberOfRowsIsThatOfTheShortestSeries) {
  const PriceRows p = makePrices(Shape::kWalk, 40);
  TestStore store(40);
  Rows out(40, kNull);
  std::int32_t slot = -1;
  const Source high = {View(p.high).first(20), "HIGH"}, low = {View(p.low).first(10), "LOW"};
  EXPECT_EQ(kDone,
            CTechnicalFunctions::PointFigure(store, high, low, 1, 3, PointFigureLine::kX, {out, &slot}));
  EXPECT_EQ(10, slot);
  EXPECT_TRUE(isNull(out[10]));
}

}  // namespace
}  // namespace brindlewort
