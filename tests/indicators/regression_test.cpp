#include "indicators/regression.hpp"

#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

constexpr RegressionLine kLines[] = {RegressionLine::kSlope, RegressionLine::kIntercept,
                                     RegressionLine::kForecast, RegressionLine::kRSquared};

/// The rows from `first` on.
Rows from(Count first, const Rows& rows) {
  return {rows.begin() + first, rows.end()};
}

BatchOperation batch(Count p, RegressionLine line) {
  return [=](const Prices& prices, Out out) { CFeedkit::LinearRegression(prices.close, p, line, out); };
}

Operation resumable(Count p, RegressionLine line) {
  return [=](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::LinearRegression(prices.close, p, line, out);
  };
}

double batchIntercept(double Sy, double p, double slope) {
  return (1 / p) * Sy - std::trunc(p / 2) * slope;
}
double resumableIntercept(double Sy, double p, double slope) {
  return Sy / p - p * slope / 2;
}

/// The sums step by step, with a working array y[1..p] whose first element is erased for each new row.
Rows literalRegression(View in, Count periods, Count first, RegressionLine line,
                       double (*interceptRule)(double, double, double)) {
  const Count n = rowsOf(in);
  const double p = static_cast<double>(periods);
  Rows out(in.size(), kNull), y{0.0};
  double Sx = 0, Sxx = 0, Sy = 0, Syy = 0, Sxy = 0;
  for (Count i = first; i < n; ++i) {
    if (i == first) {
      for (Count k = 1; k <= periods; ++k) {
        const double x = static_cast<double>(k);
        y.push_back(nz(in[i - periods + k]));
        Sx += x;
        Sxx += x * x;
        Sy += y[k];
        Syy += y[k] * y[k];
        Sxy += x * y[k];
      }
    } else {
      Sy -= y[1];
      Syy -= y[1] * y[1];
      Sxy -= y[1] * 1 + Sy;
      y.erase(y.begin() + 1);
      y.push_back(nz(in[i]));
      Sy += y[periods];
      Syy += y[periods] * y[periods];
      Sxy += p * y[periods];
    }
    const double a = Sxy - Sx * Sy / p, b = Sxx - Sx * Sx / p, c = Syy - Sy * Sy / p;
    const double slope = a / b;
    const double intercept = interceptRule(Sy, p, slope);
    switch (line) {
      case RegressionLine::kSlope:
        out[i] = slope;
        break;
      case RegressionLine::kIntercept:
        out[i] = intercept;
        break;
      case RegressionLine::kForecast:
        out[i] = p * slope + intercept;
        break;
      case RegressionLine::kRSquared:
        out[i] = b * c != 0 ? a * a / (b * c) : 0;
        break;
    }
  }
  return out;
}

TEST(LinearRegression, BatchIsTheRuleBitForBit) {
  for (Count p : {1, 2, 3, 4, 7}) {
    forEachShortSeries(static_cast<int>(5 * p), [p](const PriceRows& prices) {
      for (RegressionLine line : kLines) {
        EXPECT_TRUE(sameRows(literalRegression(prices.close, p, p, line, batchIntercept),
                             runBatch(prices, batch(p, line))));
      }
    });
  }
}

TEST(LinearRegression, FirstResumableCallIsTheRuleBitForBit) {
  for (Count p : {1, 2, 3, 4, 7}) {
    forEachShortSeries(static_cast<int>(5 * p), [p](const PriceRows& prices) {
      const Count first = firstValueIndex(prices.close) + p - 1;
      for (RegressionLine line : kLines) {
        const Rows expected = literalRegression(prices.close, p, first, line, resumableIntercept);
        const RunResult result = runAtOnce(prices, resumable(p, line));
        EXPECT_TRUE(sameRows(expected, result.rows));
        EXPECT_EQ(result.status, first < rowsOf(prices.close) ? kDone : kNothingDone);
      }
    });
  }
}

// Window 1, 3, 4: Sx 6, Sxx 14, Sy 8, Syy 26, Sxy 1 + 6 + 12 = 19; a = 19 - 16 = 3, b = 14 - 12 = 2,
// c = 26 - 64 / 3 = 14 / 3.
TEST(LinearRegression, ByHandOverThreeRows) {
  const PriceRows prices = pointPrices({9, 1, 3, 4});
  const auto lastBatch = [&](RegressionLine line) { return runBatch(prices, batch(3, line))[3]; };
  EXPECT_DOUBLE_EQ(1.5, lastBatch(RegressionLine::kSlope));
  EXPECT_DOUBLE_EQ(8.0 / 3 - 1 * 1.5, lastBatch(RegressionLine::kIntercept));
  EXPECT_DOUBLE_EQ(3 * 1.5 + 8.0 / 3 - 1.5, lastBatch(RegressionLine::kForecast));
  EXPECT_DOUBLE_EQ(3 * 3 / (2 * 14.0 / 3), lastBatch(RegressionLine::kRSquared));

  const auto lastResumable = [&](RegressionLine line) { return runResumable(prices, resumable(3, line))[3]; };
  EXPECT_DOUBLE_EQ(1.5, lastResumable(RegressionLine::kSlope));
  EXPECT_DOUBLE_EQ(8.0 / 3 - 2.25, lastResumable(RegressionLine::kIntercept));
  EXPECT_DOUBLE_EQ(3 * 1.5 + 8.0 / 3 - 2.25, lastResumable(RegressionLine::kForecast));
  EXPECT_DOUBLE_EQ(27.0 / 28, lastResumable(RegressionLine::kRSquared));
}

TEST(LinearRegression, BatchStartsAtRowPAndResumableAtLeadPlusPMinusOne) {
  const PriceRows prices = pointPrices({kNull, kNull, 1, 2, 3, 4});
  const Rows fromNullsAsZeros = runBatch(prices, batch(3, RegressionLine::kSlope));
  // Batch windows: (0, 1, 2), (1, 2, 3), (2, 3, 4); nulls shift nothing.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 1, 1, 1}, fromNullsAsZeros));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 1, 1},
                       runResumable(prices, resumable(3, RegressionLine::kSlope))));
}

TEST(LinearRegression, ConstantSeriesHasSlopeZeroAndRSquaredZeroByTheGuard) {
  const PriceRows prices = makePrices(Shape::kFlat, 20);
  for (Count p : {2, 5}) {
    const Rows zeros(20 - p, 0.0);
    EXPECT_TRUE(sameRows(zeros, from(p, runBatch(prices, batch(p, RegressionLine::kSlope)))));
    EXPECT_TRUE(sameRows(zeros, from(p, runBatch(prices, batch(p, RegressionLine::kRSquared)))));
    EXPECT_TRUE(sameRows(zeros, from(p, runResumable(prices, resumable(p, RegressionLine::kSlope)))));
    EXPECT_TRUE(sameRows(zeros, from(p, runResumable(prices, resumable(p, RegressionLine::kRSquared)))));
  }
}

// y = 2 * x over an even p of 4: slope 2, mean 5, intercept 5 - 2 * 2 = 1, forecast 9 = last row + half a
// slope.
TEST(LinearRegression, PerfectLineWithEvenPForecastsHalfASlopeAboveTheLastRow) {
  const PriceRows prices = pointPrices({0, 2, 4, 6, 8});
  EXPECT_EQ(2.0, runBatch(prices, batch(4, RegressionLine::kSlope))[4]);
  EXPECT_EQ(1.0, runBatch(prices, batch(4, RegressionLine::kIntercept))[4]);
  EXPECT_EQ(9.0, runBatch(prices, batch(4, RegressionLine::kForecast))[4]);
  EXPECT_EQ(1.0, runBatch(prices, batch(4, RegressionLine::kRSquared))[4]);
}

TEST(LinearRegression, FormsDifferInTheInterceptOfAnOddPOnly) {
  const PriceRows prices = makePrices(Shape::kRising, 30);  // whole numbers: every sum is exact
  for (Count p : {2, 4, 8}) {
    EXPECT_EQ(runBatch(prices, batch(p, RegressionLine::kIntercept))[29],
              runResumable(prices, resumable(p, RegressionLine::kIntercept))[29]);
  }
  for (Count p : {3, 5, 9}) {  // by half a slope, and the slope is 1
    EXPECT_NEAR(0.5,
                runBatch(prices, batch(p, RegressionLine::kIntercept))[29] -
                    runResumable(prices, resumable(p, RegressionLine::kIntercept))[29],
                1e-12);
  }
}

TEST(LinearRegression, PeriodOfOneHasNoSlopeAndRSquaredZero) {
  const PriceRows prices = makePrices(Shape::kWalk, 6);
  const Rows nothing(5, kNaN), zeros(5, 0.0);
  for (RegressionLine line :
       {RegressionLine::kSlope, RegressionLine::kIntercept, RegressionLine::kForecast}) {
    EXPECT_TRUE(sameRows(nothing, from(1, runBatch(prices, batch(1, line)))));
    EXPECT_TRUE(sameRows(nothing, from(1, runResumable(prices, resumable(1, line)))));
  }
  EXPECT_TRUE(sameRows(zeros, from(1, runBatch(prices, batch(1, RegressionLine::kRSquared)))));
  EXPECT_TRUE(sameRows(zeros, from(1, runResumable(prices, resumable(1, RegressionLine::kRSquared)))));
}

TEST(LinearRegression, PeriodOutOfRangeHasNoSeries) {
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  Rows out(10, kNull);
  for (Count p : {Count{INT32_MIN}, Count{-1}, Count{0}, Count{11}, Count{INT32_MAX}}) {
    for (RegressionLine line : kLines) {
      EXPECT_FALSE(CFeedkit::LinearRegression(prices.close, p, line, out));
      EXPECT_TRUE(sameRows(Rows(10, kNull), out));
      expectNothingDone(prices, resumable(p, line));
    }
  }
  EXPECT_FALSE(CFeedkit::LinearRegression({}, 1, RegressionLine::kSlope, {}));
}

TEST(LinearRegression, PeriodOfAllRowsIsInRangeAndOnlyTheResumableFormHasARow) {
  const PriceRows prices = pointPrices({1, 3, 4});
  Rows out(3, kNull);
  EXPECT_TRUE(CFeedkit::LinearRegression(prices.close, 3, RegressionLine::kSlope, out));
  EXPECT_TRUE(sameRows(Rows(3, kNull), out));
  const Rows rows = runResumable(prices, resumable(3, RegressionLine::kSlope));
  EXPECT_TRUE(isNull(rows[1]));
  EXPECT_DOUBLE_EQ(1.5, rows[2]);
}

TEST(LinearRegression, StreamsLikeOneCall) {
  for (Count p : {1, 2, 5}) {
    for (RegressionLine line : kLines) {
      // Two rows always lie on a line: the quotient of R2 cancels down to the last digits of the sums, which
      // differ between a window that slid and one summed afresh.
      if (line == RegressionLine::kRSquared && p == 2) continue;
      expectStreamsOverAllShapes(resumable(p, line));
    }
  }
}

TEST(LinearRegression, ResumedCallSumsItsFirstWindowAfresh) {
  const PriceRows prices = makePrices(Shape::kWalk, 30);
  const PriceSources sources = sourcesOf(prices, 30);
  Rows rows(30, kNull);
  std::int32_t slot = 30;
  ASSERT_EQ(kDone,
            CTechnicalFunctions::LinearRegression(sources.close, 5, RegressionLine::kSlope, {rows, &slot}));
  // The row alone, as the first and only row of a call over its own window.
  const Rows fresh =
      literalRegression(View(prices.close).subspan(25), 5, 4, RegressionLine::kSlope, resumableIntercept);
  EXPECT_TRUE(sameBits(fresh[4], rows[29]));
  EXPECT_TRUE(isNull(rows[28]));
}

TEST(LinearRegression, ResumedCallWithALongerPeriodStartsAtItsFirstRow) {
  const PriceRows prices = makePrices(Shape::kRising, 10);
  Rows rows(10, kNull);
  std::int32_t slot = 6;
  ASSERT_EQ(kDone, CTechnicalFunctions::LinearRegression({prices.close, "CLOSE"}, 9, RegressionLine::kSlope,
                                                         {rows, &slot}));
  EXPECT_TRUE(isNull(rows[7]));
  EXPECT_DOUBLE_EQ(1.0, rows[8]);
  EXPECT_EQ(10, slot);
}

TEST(TimeSeriesForecast, IsTheForecastOfTheRegression) {
  const PriceRows prices = makePrices(Shape::kWalk, 30);
  const Operation forecast = [](WorkStore&, const PriceSources& p, Target out) {
    return CTechnicalFunctions::TIMESERIESFORECAST(p.close, 6, out);
  };
  EXPECT_TRUE(sameRows(
      literalRegression(prices.close, 6, 6, RegressionLine::kForecast, batchIntercept),
      runBatch(prices, [](const Prices& p, Out out) { CFeedkit::TIMESERIESFORECAST(p.close, 6, out); })));
  EXPECT_TRUE(sameRows(literalRegression(prices.close, 6, 5, RegressionLine::kForecast, resumableIntercept),
                       runResumable(prices, forecast)));
  expectStreamsOverAllShapes(forecast);
}

TEST(TimeSeriesForecast, PeriodOutOfRangeIsAllNull) {
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  for (Count p : {Count{INT32_MIN}, Count{0}, Count{11}}) {
    EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(prices, [p](const Prices& x, Out out) {
                           CFeedkit::TIMESERIESFORECAST(x.close, p, out);
                         })));
    expectNothingDone(prices, [p](WorkStore&, const PriceSources& x, Target out) {
      return CTechnicalFunctions::TIMESERIESFORECAST(x.close, p, out);
    });
  }
}

}  // namespace
}  // namespace brindlewort
