#include "indicators/directional.hpp"

#include "indicators/average_twins.hpp"
#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

constexpr DirectionalLine kLines[] = {DirectionalLine::kAdx,     DirectionalLine::kAdxr,
                                      DirectionalLine::kDx,      DirectionalLine::kTrSum,
                                      DirectionalLine::kDiMinus, DirectionalLine::kDiPlus};

/// The periods as a script gives them; 0 for an absent one.
struct Periods {
  Count first, second, third;
};
const Periods kPeriods[] = {{1, 0, 0}, {3, 0, 0}, {3, 2, 5}, {2, 4, 0}, {4, 0, 2}};

BatchOperation batch(Periods p, DirectionalLine line) {
  return [=](const Prices& prices, Out out) {
    CFeedkit::DirectionalMovement(prices, p.first, p.second, p.third, line, out);
  };
}
Operation resumable(Periods p, DirectionalLine line) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::DirectionalMovement(store, prices, p.first, p.second, p.third, line, "ADX(3)",
                                                    out);
  };
}

double greatestDistance(const PriceRows& p, Count i, double start) {
  for (double d :
       {p.high[i] - p.low[i], std::fabs(p.high[i] - p.close[i - 1]), std::fabs(p.close[i - 1] - p.low[i])}) {
    if (d > start) start = d;
  }
  return start;
}

bool periodsFit(Periods p, Count n) {
  const auto fits = [n](Count x) { return 1 <= x && x <= n; };
  return fits(p.first) && (p.second == 0 || fits(p.second)) && (p.third == 0 || fits(p.third));
}

/// All lines, step by step.
struct Lines {
  Rows trSum, plus, minus, dx, adx, adxr;
  explicit Lines(std::size_t n)
      : trSum(n, kNull), plus(n, kNull), minus(n, kNull), dx(n, kNull), adx(n, kNull), adxr(n, kNull) {}
  const Rows& operator[](DirectionalLine line) const {
    switch (line) {
      case DirectionalLine::kAdx:
        return adx;
      case DirectionalLine::kAdxr:
        return adxr;
      case DirectionalLine::kDx:
        return dx;
      case DirectionalLine::kTrSum:
        return trSum;
      case DirectionalLine::kDiMinus:
        return minus;
      case DirectionalLine::kDiPlus:
        return plus;
    }
    return trSum;
  }
};

Lines literalBatch(const PriceRows& prices, Periods periods) {
  const Count n = rowsOf(prices.close);
  Lines out(prices.close.size());
  if (!periodsFit(periods, n)) return out;
  const Count upPeriods = periods.third == 0 ? periods.first : periods.third;
  const Count downPeriods = periods.second == 0 ? periods.first : periods.second;
  Rows range(prices.close.size(), kNull), upMove = range, downMove = range;
  for (Count i = 2; i < n; ++i) range[i] = greatestDistance(prices, i, prices.high[i] - prices.low[i]);
  for (Count i = 2; i < n; ++i) {
    double up = prices.high[i] - prices.high[i - 1];
    double dn = prices.low[i - 1] - prices.low[i];
    if (up < 0) up = 0;
    if (dn < 0) dn = 0;
    if (up == dn) up = dn = 0;
    if (up > dn) upMove[i] = up;
    if (dn > up) downMove[i] = dn;
  }
  out.trSum = literalWilderBatch(range, periods.first);
  const Rows upSum = literalWilderBatch(upMove, upPeriods), dnSum = literalWilderBatch(downMove, downPeriods);
  for (Count i = 2; i < n; ++i) {
    if (nz(out.trSum[i]) == 0) continue;
    out.plus[i] = nz(upSum[i]) * 100 / nz(out.trSum[i]);
    out.minus[i] = nz(dnSum[i]) * 100 / nz(out.trSum[i]);
    if (out.plus[i] + out.minus[i] == 0) continue;
    out.dx[i] = std::fabs(out.plus[i] - out.minus[i]) / (out.plus[i] + out.minus[i]) * 100;
  }
  const double p = static_cast<double>(periods.first);
  for (Count i = periods.first + 1; i < n; ++i)
    out.adx[i] = (nz(out.adx[i - 1]) * (p - 1) + nz(out.dx[i])) / p;
  for (Count i = periods.first + 1; i < n; ++i) out.adxr[i] = (nz(out.adx[i]) + nz(out.adx[i - 1])) / 2;
  return out;
}

Lines literalResumable(const PriceRows& prices, Periods periods) {
  const Count n = rowsOf(prices.close);
  Lines out(prices.close.size());
  if (!periodsFit(periods, n)) return out;
  const Count upPeriods = periods.second == 0 ? periods.first : periods.second;
  const Count downPeriods = periods.third == 0 ? periods.first : periods.third;
  Rows range(prices.close.size(), kNull), upMove = range, downMove = range;
  for (Count i = 1; i < n; ++i) range[i] = greatestDistance(prices, i, 0);
  for (Count i = 1; i < n; ++i) {
    const double up = prices.high[i] - prices.high[i - 1];
    const double dn = prices.low[i - 1] - prices.low[i];
    const double rawUp = up > 0 && up > dn ? up : 0;
    const double rawDown = dn > 0 && dn > up ? dn : 0;
    upMove[i] = rawUp > rawDown ? rawUp : 0;
    downMove[i] = rawDown > rawUp ? rawDown : 0;
  }
  out.trSum = literalWilderResumable(range, periods.first);
  const Rows upSum = literalWilderResumable(upMove, upPeriods);
  const Rows dnSum = literalWilderResumable(downMove, downPeriods);
  const Count first = std::max(firstValueIndex(upSum), firstValueIndex(dnSum));
  for (Count i = first; i < n; ++i) {
    const double divisor = nz(out.trSum[i]);
    out.plus[i] = divisor == 0 ? 0 : nz(upSum[i]) * 100 / divisor;
    out.minus[i] = divisor == 0 ? 0 : nz(dnSum[i]) * 100 / divisor;
    const double sum = out.plus[i] + out.minus[i];
    out.dx[i] = sum == 0 ? 0 : std::fabs(out.plus[i] - out.minus[i]) * 100 / sum;
  }
  const double p = static_cast<double>(periods.first);
  const Count seedRow = firstValueIndex(out.dx) + periods.first - 1;
  if (seedRow >= n) return out;
  double sum = 0;
  for (Count j = seedRow - periods.first + 1; j <= seedRow; ++j) sum += nz(out.dx[j]);
  out.adx[seedRow] = sum / p;
  for (Count i = seedRow + 1; i < n; ++i) out.adx[i] = (nz(out.adx[i - 1]) * (p - 1) + nz(out.dx[i])) / p;
  for (Count i = seedRow; i < n; ++i) out.adxr[i] = (nz(out.adx[i]) + nz(out.adx[i - 1])) / 2;
  return out;
}

TEST(DirectionalMovement, BatchIsTheRule) {
  for (Periods p : kPeriods) {
    forEachShortSeries(25, [p](const PriceRows& prices) {
      const Lines expected = literalBatch(prices, p);
      for (DirectionalLine line : kLines) {
        EXPECT_TRUE(sameRows(expected[line], runBatch(prices, batch(p, line)))) << static_cast<int>(line);
      }
    });
  }
}

TEST(DirectionalMovement, FirstResumableCallIsTheRule) {
  for (Periods p : kPeriods) {
    forEachShortSeries(25, [p](const PriceRows& prices) {
      const Lines expected = literalResumable(prices, p);
      for (DirectionalLine line : kLines) {
        const RunResult result = runAtOnce(prices, resumable(p, line));
        EXPECT_TRUE(sameRows(expected[line], result.rows)) << static_cast<int>(line);
        const bool computed = firstValueIndex(expected[line]) < rowsOf(prices.close);
        EXPECT_EQ(computed ? kDone : kNothingDone, result.status);
      }
    });
  }
}

// Bars of range 4, that first rise by 1, then fall by 3.  Smoothing over 1 is the row itself.
const PriceRows kRiseAndFall = {{0, 0, 0, 0}, {10, 10, 11, 8}, {6, 6, 7, 4}, {8, 8, 9, 6}, {0, 0, 0, 0}};

TEST(DirectionalMovement, BatchByHand) {
  const auto at = [](Periods p, DirectionalLine line, std::size_t row) {
    return runBatch(kRiseAndFall, batch(p, line))[row];
  };
  EXPECT_EQ(4.0, at({1, 0, 0}, DirectionalLine::kTrSum, 2));
  EXPECT_EQ(5.0, at({1, 0, 0}, DirectionalLine::kTrSum, 3));  // from the close of 9 down to 4
  EXPECT_EQ(1 * 100 / 4.0, at({1, 0, 0}, DirectionalLine::kDiPlus, 2));
  EXPECT_EQ(0.0, at({1, 0, 0}, DirectionalLine::kDiMinus, 2));
  EXPECT_EQ(3 * 100 / 5.0, at({1, 0, 0}, DirectionalLine::kDiMinus, 3));
  EXPECT_EQ(100.0, at({1, 0, 0}, DirectionalLine::kDx, 3));
  EXPECT_EQ(100.0, at({1, 0, 0}, DirectionalLine::kAdx, 2));
  EXPECT_EQ(50.0, at({1, 0, 0}, DirectionalLine::kAdxr, 2));  // the first has no row before it
  EXPECT_EQ(100.0, at({1, 0, 0}, DirectionalLine::kAdxr, 3));
  // Over 2 rows, without a seed: ranges 2, 3.5; up 0.5, 0.25; down 0, 1.5.
  EXPECT_EQ(3.5, at({2, 0, 0}, DirectionalLine::kTrSum, 3));
  EXPECT_EQ(0.25 * 100 / 3.5, at({2, 0, 0}, DirectionalLine::kDiPlus, 3));
  EXPECT_EQ(1.5 * 100 / 3.5, at({2, 0, 0}, DirectionalLine::kDiMinus, 3));
  EXPECT_DOUBLE_EQ(1.25 / 1.75 * 100, at({2, 0, 0}, DirectionalLine::kDx, 3));
  EXPECT_DOUBLE_EQ(1.25 / 1.75 * 100 / 2, at({2, 0, 0}, DirectionalLine::kAdx, 3));
}

TEST(DirectionalMovement, ResumableByHand) {
  // Rows 1, 2, 3: ranges 4, 4, 5; up 0, 1, 0; down 0, 0, 3. Over 2 rows: ranges (4 + 4) / 2 = 4, then 4.5;
  // up (0 + 1) / 2 = 0.5, then 0.25; down 0, then 1.5.
  const auto rows = [](DirectionalLine line) {
    return runResumable(kRiseAndFall, resumable({2, 0, 0}, line));
  };
  const double dx = std::fabs(25.0 - 150) * 100 / (25.0 + 150);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 4, 4.5}, rows(DirectionalLine::kTrSum)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 50 / 4.0, 25 / 4.5}, rows(DirectionalLine::kDiPlus)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 0, 150 / 4.5}, rows(DirectionalLine::kDiMinus)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 100, dx}, rows(DirectionalLine::kDx), nearlySame));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, (100 + dx) / 2}, rows(DirectionalLine::kAdx), nearlySame));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, (100 + dx) / 4}, rows(DirectionalLine::kAdxr), nearlySame));
}

TEST(DirectionalMovement, SecondPeriodSmoothsTheDownSideInBatchAndTheUpSideInTheResumableForm) {
  const PriceRows prices = makePrices(Shape::kWalk, 40);
  const Periods equal{5, 0, 0}, second{5, 4, 0}, third{5, 0, 4};
  const auto batchMoves = [&](Periods p, DirectionalLine side) {
    return !sameRows(runBatch(prices, batch(equal, side)), runBatch(prices, batch(p, side)));
  };
  EXPECT_TRUE(batchMoves(second, DirectionalLine::kDiMinus));
  EXPECT_FALSE(batchMoves(second, DirectionalLine::kDiPlus));
  EXPECT_TRUE(batchMoves(third, DirectionalLine::kDiPlus));
  EXPECT_FALSE(batchMoves(third, DirectionalLine::kDiMinus));
  const auto resumableMoves = [&](Periods p, DirectionalLine side) {
    return !sameRows(runResumable(prices, resumable(equal, side)), runResumable(prices, resumable(p, side)));
  };
  EXPECT_TRUE(resumableMoves(second, DirectionalLine::kDiPlus));
  EXPECT_FALSE(resumableMoves(second, DirectionalLine::kDiMinus));
  EXPECT_TRUE(resumableMoves(third, DirectionalLine::kDiMinus));
  EXPECT_FALSE(resumableMoves(third, DirectionalLine::kDiPlus));
}

// Prices of one point that rise by 1 each bar: DX is 100, and k rows of ADX come to 100 * (1 - (13 / 14)^k).
TEST(DirectionalMovement, BatchAdxIsBiasedLowForALongRun) {
  const PriceRows prices = pointPrices(makeSeries(Shape::kRising, 80));
  const Rows dx = runBatch(prices, batch({14, 0, 0}, DirectionalLine::kDx));
  const Rows adx = runBatch(prices, batch({14, 0, 0}, DirectionalLine::kAdx));
  for (std::size_t i = 2; i < 80; ++i) EXPECT_EQ(100.0, dx[i]);
  EXPECT_TRUE(isNull(adx[14]));
  for (std::size_t i = 15; i < 80; ++i) EXPECT_NEAR(100 * (1 - std::pow(13 / 14.0, i - 14.0)), adx[i], 1e-9);
  EXPECT_EQ(100.0, runResumable(prices, resumable({14, 0, 0}, DirectionalLine::kAdx))[27]);
}

TEST(DirectionalMovement, EqualMovesBothWaysCountOnNeitherSide) {
  // An outside bar: one up and one down.
  const PriceRows prices = {{0, 0, 0}, {10, 10, 11}, {6, 6, 5}, {8, 8, 8}, {0, 0, 0}};
  for (DirectionalLine side : {DirectionalLine::kDiPlus, DirectionalLine::kDiMinus}) {
    EXPECT_EQ(0.0, runBatch(prices, batch({1, 0, 0}, side))[2]);
    EXPECT_EQ(0.0, runResumable(prices, resumable({1, 0, 0}, side))[2]);
  }
}

TEST(DirectionalMovement, NoRangeLeavesBatchRowsNullAndResumableRowsZero) {
  const PriceRows prices = makePrices(Shape::kFlat, 8);
  for (DirectionalLine line : {DirectionalLine::kDiPlus, DirectionalLine::kDiMinus, DirectionalLine::kDx}) {
    EXPECT_TRUE(sameRows(Rows(8, kNull), runBatch(prices, batch({2, 0, 0}, line))));
    EXPECT_TRUE(
        sameRows(Rows{kNull, kNull, 0, 0, 0, 0, 0, 0}, runResumable(prices, resumable({2, 0, 0}, line))));
  }
}

TEST(DirectionalMovement, ResumableIndexStartsWithTheSidesEvenWhereTheRangeIsStillNull) {
  const PriceRows prices = makePrices(Shape::kRising, 10);
  const Rows plus = runResumable(prices, resumable({6, 2, 2}, DirectionalLine::kDiPlus));
  for (std::size_t i = 2; i < 6; ++i) EXPECT_EQ(0.0, plus[i]);
  EXPECT_GT(plus[6], 0.0);
}

TEST(DirectionalMovement, PeriodsOutOfRange) {
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  for (Count bad : {Count{INT32_MIN}, Count{-1}, Count{11}, Count{INT32_MAX}}) {
    for (Periods p : {Periods{bad, 2, 2}, Periods{2, bad, 2}, Periods{2, 2, bad}}) {
      for (DirectionalLine line : kLines) {
        EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(prices, batch(p, line))));
        expectNothingDone(prices, resumable(p, line));
      }
    }
  }
  expectNothingDone(prices, resumable({0, 2, 2}, DirectionalLine::kTrSum));
  EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(prices, batch({0, 2, 2}, DirectionalLine::kTrSum))));
}

// Without null prices: read as they stand, those make moves of a billion, which drown the digits of the rest.
TEST(DirectionalMovement, StreamsLikeOneCall) {
  for (Shape shape :
       {Shape::kWalk, Shape::kFlat, Shape::kRising, Shape::kZeros, Shape::kNegative, Shape::kSteps}) {
    for (Periods p : kPeriods) {
      for (DirectionalLine line : kLines) expectStreamsLikeOneCall(makePrices(shape, 30), resumable(p, line));
    }
  }
}

TEST(DirectionalMovement, CallsWithTheSameArgumentsShareTheirWorkSeries) {
  const PriceRows prices = makePrices(Shape::kWalk, 30);
  TestStore store(30);
  const auto run = [&](std::string_view call, DirectionalLine line) {
    RunResult result{Rows(30, kNull)};
    CTechnicalFunctions::DirectionalMovement(store, sourcesOf(prices, 30), 3, 4, 5, line, call,
                                             {result.rows, &result.slot});
    return result.rows;
  };
  const Rows adx = run("ADX(3,4,5)", DirectionalLine::kAdx);
  EXPECT_EQ(30, *store.field("DX", {KeyPart(std::string_view("3,4,5"))}).slot);
  EXPECT_TRUE(sameRows(runResumable(prices, resumable({3, 4, 5}, DirectionalLine::kDx)),
                       run("DX(3,4,5)", DirectionalLine::kDx)));
  EXPECT_TRUE(sameRows(adx, run("ADX(3,4,5)", DirectionalLine::kAdx)));
}

}  // namespace
}  // namespace brindlewort
