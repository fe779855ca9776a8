#include <cmath>

#include "indicators/moving_averages_checks.hpp"
#include "indicators/oscillators.hpp"
#include "indicators/regression.hpp"

// Time series, variable, VIDYA and adaptive averages, and the choice of an average by its type.
namespace brindlewort {
namespace {

using namespace testing;

double meanTwin(View in, Count first, Count p) {
  double sum = 0.0;
  for (Count j = first; j < first + p; ++j) sum += at(in, j);
  return sum / static_cast<double>(p);
}

// ---- TimeSeriesMovingAverage --------------------------------------------------------------------------

TEST(TimeSeriesMovingAverage, IsTheForecastOfTheRegressionInBothForms) {
  for (Count p : {1, 2, 3, 7}) {
    forShortSeries(p, [p](View in) {
      Rows forecast = allNull(rowsOf(in)), ofFunction = allNull(rowsOf(in));
      CFeedkit::LinearRegression(in, p, RegressionLine::kForecast, forecast);
      CFeedkit::TIMESERIESFORECAST(in, p, ofFunction);
      const Rows average = runBatch(in, batch(CFeedkit::TimeSeriesMovingAverage, p));
      EXPECT_TRUE(sameRows(forecast, average));
      EXPECT_TRUE(sameRows(ofFunction, average));

      const RunResult expected = runOnCloses(in, resumable(CTechnicalFunctions::TIMESERIESFORECAST, p));
      const RunResult actual = runOnCloses(in, resumable(CTechnicalFunctions::TimeSeriesMovingAverage, p));
      EXPECT_TRUE(sameRows(expected.rows, actual.rows));
      EXPECT_EQ(expected.status, actual.status);
    });
  }
}

TEST(TimeSeriesMovingAverage, BatchByHand) {
  // Window 2, 4, 9 at x = 1, 2, 3: Sxy = 37, Sx = 6, Sy = 15, Sxx = 14; slope (37 - 30) / (14 - 12).
  const double slope = 7 / 2.0, intercept = 1 / 3.0 * 15 - 1 * slope;
  EXPECT_EQ(3 * slope + intercept,
            runBatch(Rows{7, 2, 4, 9}, batch(CFeedkit::TimeSeriesMovingAverage, 3))[3]);
}

TEST(TimeSeriesMovingAverage, ResumableByHand) {
  const double slope = 7 / 2.0, intercept = 15 / 3.0 - 3 * slope / 2;
  EXPECT_TRUE(
      sameRows(Rows{kNull, kNull, 3 * slope + intercept},
               runOnCloses(Rows{2, 4, 9}, resumable(CTechnicalFunctions::TimeSeriesMovingAverage, 3)).rows));
}

// ---- VariableMovingAverage ----------------------------------------------------------------------------

/// (ups - downs) / (ups + downs) * 100 over the p moves up to row i.
double momentumTwin(View in, Count p, Count i) {
  double up = 0.0, down = 0.0;
  for (Count j = i - p + 1; j <= i; ++j) {
    const double move = at(in, j) - at(in, j - 1);
    if (move > 0) up += move;
    if (move < 0) down += -move;
  }
  return up + down == 0 ? 0.0 : (up - down) / (up + down) * 100;
}

TEST(VariableMovingAverage, BatchByHand) {
  // Nine moves up and one row more: the oscillator reads 100 from row 10, so the average jumps from 0 to the
  // row itself; row 11 falls by 9 against 8 up, so (8 - 9) / 17.
  const Rows in{1, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 1};
  const Rows out = runBatch(in, batch(CFeedkit::VariableMovingAverage, 5));
  EXPECT_TRUE(isNull(out[0]) && isNull(out[1]));
  for (int i = 2; i < 10; ++i) EXPECT_EQ(0.0, out[static_cast<std::size_t>(i)]) << i;
  EXPECT_EQ(10.0, out[10]);
  const double a = std::fabs((8.0 - 9.0) / 17.0 * 100 / 100);
  EXPECT_TRUE(nearlySame(a * 1 + (1 - a) * 10, out[11]));
}

TEST(VariableMovingAverage, ThePeriodHasNoEffectInBatchButItsRange) {
  const Rows in = makeSeries(Shape::kWalk, 40);
  const Rows expected = runBatch(in, batch(CFeedkit::VariableMovingAverage, 9));
  for (Count p : {1, 2, 20, 39}) {
    EXPECT_TRUE(sameRows(expected, runBatch(in, batch(CFeedkit::VariableMovingAverage, p)))) << p;
  }
}

TEST(VariableMovingAverage, BatchAgreesWithItsTwin) {
  for (Count p : {1, 3, 12}) {
    expectBatch(p, batch(CFeedkit::VariableMovingAverage, p), [p](View in) {
      const Count n = rowsOf(in);
      Rows out = allNull(n), c = allNull(n);
      if (p >= n) return out;
      CFeedkit::ChandeMomentumOscillator(in, 9, c);
      for (Count i = 2; i < n; ++i) {
        const double a = std::fabs(at(View(c), i) / 100);
        at(out, i) = a * at(in, i) + (1 - a) * at(View(out), i - 1);
      }
      return out;
    });
  }
}

TEST(VariableMovingAverage, ResumableByHand) {
  // p = 2: the oscillator has rows from 2; the seed, at row 1, is the mean of rows 0 and 1.
  const Rows in{2, 4, 6, 5, 5};
  const double row1 = (2 + 4) / 2.0, row2 = 1.0 * 6 + 0.0 * row1;
  const double a3 = std::fabs((2 - 1) / 3.0 * 100 / 100), row3 = a3 * 5 + (1 - a3) * row2;
  const RunResult result = runOnCloses(in, resumable(CTechnicalFunctions::VariableMovingAverage, 2));
  EXPECT_EQ(kDone, result.status);
  EXPECT_TRUE(sameRows(Rows{kNull, row1, row2, row3, 1.0 * 5 + 0.0 * row3}, result.rows, nearlySame));
}

TEST(VariableMovingAverage, ResumableNeedsPRowsBehindTheFirst) {
  // The oscillator of period 2 starts at row 2, and 2 + 2 < n is required.
  const RunResult result =
      runOnCloses(Rows{2, 4, 6, 5}, resumable(CTechnicalFunctions::VariableMovingAverage, 2));
  EXPECT_EQ(kNothingDone, result.status);
  EXPECT_EQ(-1, result.slot);
  EXPECT_TRUE(sameRows(allNull(4), result.rows));
}

TEST(VariableMovingAverage, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    expectFirstCall(
        p, resumable(CTechnicalFunctions::VariableMovingAverage, p), [p](View in) -> std::optional<Rows> {
          const Count n = rowsOf(in), lead = firstValueIndex(in);
          if (p > n) return std::nullopt;
          const Rows c = runOnCloses(in, resumable(CTechnicalFunctions::ChandeMomentumOscillator, p)).rows;
          const Count start = firstValueIndex(c);
          if (start + p >= n) return std::nullopt;
          Rows out = allNull(n);
          at(out, start - 1) = meanTwin(in, lead, p);
          for (Count i = start; i < n; ++i) {
            const double a = std::fabs(at(View(c), i) / 100);
            at(out, i) = a * at(in, i) + (1 - a) * at(View(out), i - 1);
          }
          return out;
        });
  }
}

TEST(VariableMovingAverage, TheOscillatorIsWhatTheTwinSays) {
  const Rows in = makeSeries(Shape::kWalk, 30);
  const Rows c = runOnCloses(in, resumable(CTechnicalFunctions::ChandeMomentumOscillator, 5)).rows;
  for (Count i = 5; i < 30; ++i) EXPECT_TRUE(nearlySame(momentumTwin(in, 5, i), at(View(c), i))) << i;
  Rows nine = allNull(30);
  CFeedkit::ChandeMomentumOscillator(in, 9, nine);
  for (Count i = 10; i < 30; ++i) EXPECT_TRUE(nearlySame(momentumTwin(in, 9, i), at(View(nine), i))) << i;
}

TEST(VariableMovingAverage, AResumedCallGoesBackOverPPlusOneRows) {
  expectRecomputes(5 + 1, resumable(CTechnicalFunctions::VariableMovingAverage, 5));
  const PriceRows prices = makePrices(Shape::kWalk, 40);
  TestStore store(40);
  RunResult result{allNull(40)};
  const Operation operation = resumable(CTechnicalFunctions::VariableMovingAverage, 5);
  ASSERT_EQ(kDone, operation(store, sourcesOf(prices, 40), {result.rows, &result.slot}));
  const Rows before = result.rows;
  for (std::size_t i = 34; i < 40; ++i) result.rows[i] = 1.0;  // the last p + 1 rows
  ASSERT_EQ(kDone, operation(store, sourcesOf(prices, 40), {result.rows, &result.slot}));
  EXPECT_TRUE(sameRows(before, result.rows));
}

TEST(VariableMovingAverage, AResumedCallAfterALongPauseStartsAtTheLastRowComputed) {
  // More than p bars have come: all of them are computed, and nothing before the last row computed.
  const Operation operation = resumable(CTechnicalFunctions::VariableMovingAverage, 3);
  const PriceRows prices = makePrices(Shape::kWalk, 40);
  TestStore store(20);
  RunResult result{allNull(20)};
  ASSERT_EQ(kDone, operation(store, sourcesOf(prices, 20), {result.rows, &result.slot}));
  Rows expected = runAtOnce(prices, operation).rows;
  for (std::size_t i = 0; i < 18; ++i) expected[i] = result.rows[i] = 12345.0;
  for (int i = 0; i < 20; ++i) store.appendRow();
  result.rows.resize(40, kNull);
  ASSERT_EQ(kDone, operation(store, sourcesOf(prices, 40), {result.rows, &result.slot}));
  EXPECT_TRUE(sameRows(expected, result.rows, nearlySame));
}

// ---- VIDYA --------------------------------------------------------------------------------------------

TEST(Vidya, BatchByHand) {
  // Rows 1 to 3 lie on a line, so rsquared is 1 at row 3 and a the scale; before, a is 0.
  const Rows in{7, 2, 4, 6};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 4 * 0.0 + 1 * 2.0, 6 * 0.25 + 0.75 * 4},
                       runBatch(in, batch(CFeedkit::VIDYA, 3, 0.25)), nearlySame));
}

TEST(Vidya, ResumableByHandReadsTheInputRowBefore) {
  const Rows in{kNull, 2, 4, 6, 8, 10};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 8 * 0.25 + 0.75 * 6, 10 * 0.25 + 0.75 * 8},
                       runOnCloses(in, resumable(CTechnicalFunctions::VIDYA, 3, 0.25)).rows, nearlySame));
}

TEST(Vidya, PeriodOneIsTheInputOfTheRowBefore) {
  EXPECT_TRUE(
      sameRows(Rows{kNull, kNull, 5, 4, 9}, runBatch(Rows{7, 5, 4, 9, 2}, batch(CFeedkit::VIDYA, 1, 0.65))));
  EXPECT_TRUE(
      sameRows(Rows{kNull, 7, 5, 4, 9},
               runOnCloses(Rows{7, 5, 4, 9, 2}, resumable(CTechnicalFunctions::VIDYA, 1, 0.65)).rows));
}

TEST(Vidya, BatchAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    for (double s : {0.65, -3.0}) {
      expectBatch(p, batch(CFeedkit::VIDYA, p, s), [p, s](View in) {
        const Count n = rowsOf(in);
        Rows out = allNull(n), r = allNull(n);
        if (p >= n) return out;
        CFeedkit::LinearRegression(in, p, RegressionLine::kRSquared, r);
        for (Count i = 2; i < n; ++i) {
          const double a = at(View(r), i) * s;
          at(out, i) = at(in, i) * a + (1 - a) * at(in, i - 1);
        }
        return out;
      });
    }
  }
}

TEST(Vidya, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    expectFirstCall(p, resumable(CTechnicalFunctions::VIDYA, p, 0.65), [p](View in) -> std::optional<Rows> {
      const Count n = rowsOf(in);
      if (p > n) return std::nullopt;
      const Rows r =
          runOnCloses(in, resumable(CTechnicalFunctions::LinearRegression, p, RegressionLine::kRSquared))
              .rows;
      const Count first = std::max(firstValueIndex(in), firstValueIndex(r)) + 1;
      if (first >= n) return std::nullopt;
      Rows out = allNull(n);
      for (Count i = first; i < n; ++i) {
        const double a = at(View(r), i) * 0.65;
        at(out, i) = at(in, i) * a + (1 - a) * at(in, i - 1);
      }
      return out;
    });
  }
}

// ---- ADAPTIVEMOVINGAVERAGE ----------------------------------------------------------------------------

TEST(AdaptiveAverage, BatchByHand) {
  // p = 2: the way made spans one row, the way walked two. fast = 2 / 3, slow = 2 / 5.
  const Rows in{9, 1, 3, 6, 5};
  const double fast = 2.0 / 3, slow = 2.0 / 5;
  const double seed = (1 + 3) / 2.0;
  const double ssc3 = (6.0 - 3) / (2 + 3) * (fast - slow) + slow, row3 = seed + ssc3 * ssc3 * (6 - seed);
  const double ssc4 = (5.0 - 6) / (3 + 1) * (fast - slow) + slow, row4 = row3 + ssc4 * ssc4 * (5 - row3);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, seed, row3, row4},
                       runBatch(in, batch(CFeedkit::ADAPTIVEMOVINGAVERAGE, 2, 2, 4)), nearlySame));
}

TEST(AdaptiveAverage, ResumableByHand) {
  // p = 2: here the way made spans two rows.
  const Rows in{1, 3, 6, 5};
  const double fast = 2.0 / 3, slow = 2.0 / 5;
  const double seed = (1 + 3) / 2.0;
  const double ssc2 = (6.0 - 1) / (2 + 3) * (fast - slow) + slow, row2 = seed + ssc2 * ssc2 * (6 - seed);
  const double ssc3 = (5.0 - 3) / (3 + 1) * (fast - slow) + slow, row3 = row2 + ssc3 * ssc3 * (5 - row2);
  EXPECT_TRUE(sameRows(Rows{kNull, seed, row2, row3},
                       runOnCloses(in, resumable(CTechnicalFunctions::ADAPTIVEMOVINGAVERAGE, 2, 2, 4)).rows,
                       nearlySame));
}

TEST(AdaptiveAverage, TheSignOfTheWayIsKept) {
  // A straight fall: the efficiency is -1, so the weight is (2 * slow - fast)^2, not fast^2.
  const double fast = 2.0 / 3, slow = 2.0 / 11, weight = (2 * slow - fast) * (2 * slow - fast);
  const Rows out =
      runOnCloses(Rows{9, 8, 7}, resumable(CTechnicalFunctions::ADAPTIVEMOVINGAVERAGE, 2, 2, 10)).rows;
  EXPECT_TRUE(nearlySame(8.5 + weight * (7 - 8.5), out[2]));
}

TEST(AdaptiveAverage, WithoutMovementTheEfficiencyCountsAsZero) {
  // Nothing moves in the window of the last row: its weight is slow^2.
  const double slow = 2.0 / 11, weight = slow * slow;
  const Rows in{1, 2, 8, 8, 8};
  for (const Rows& out :
       {runBatch(in, batch(CFeedkit::ADAPTIVEMOVINGAVERAGE, 2, 2, 10)),
        runOnCloses(in, resumable(CTechnicalFunctions::ADAPTIVEMOVINGAVERAGE, 2, 2, 10)).rows}) {
    EXPECT_LT(out[3], 7.9);
    EXPECT_TRUE(nearlySame(out[3] + weight * (8 - out[3]), out[4]));
  }
}

Rows adaptiveBatchTwin(View in, Count p, Count fastPeriods, Count slowPeriods) {
  const Count n = rowsOf(in);
  Rows out = allNull(n);
  if (p < 1 || p >= n) return out;
  const double fast = 2 / static_cast<double>(fastPeriods + 1),
               slow = 2 / static_cast<double>(slowPeriods + 1);
  Rows directive = allNull(n), sum = allNull(n), volatility = allNull(n), efficiency = allNull(n),
       ssc = allNull(n), c = allNull(n);
  for (Count i = p; i < n; ++i) at(directive, i) = at(in, i) - at(in, i - p + 1);
  for (Count i = 2; i < n; ++i) at(sum, i) = std::fabs(at(in, i) - at(in, i - 1));
  for (Count i = p + 1; i < n; ++i) {
    double total = 0.0;
    for (Count j = i - p + 1; j <= i; ++j) total += at(View(sum), j);
    at(volatility, i) = total;
  }
  for (Count i = p; i < n; ++i) {
    if (at(View(volatility), i) != 0) at(efficiency, i) = at(View(directive), i) / at(View(volatility), i);
  }
  for (Count i = p; i < n; ++i) at(ssc, i) = at(View(efficiency), i) * (fast - slow) + slow;
  for (Count i = p; i < n; ++i) at(c, i) = at(View(ssc), i) * at(View(ssc), i);
  at(out, p) = meanTwin(in, 1, p);
  for (Count i = p + 1; i < n; ++i) {
    const double before = at(View(out), i - 1);
    at(out, i) = before + at(View(c), i) * (at(in, i) - before);
  }
  return out;
}

std::optional<Rows> adaptiveFirstCallTwin(View in, Count p, Count fastPeriods, Count slowPeriods) {
  const Count n = rowsOf(in), lead = firstValueIndex(in), start = lead + p;
  if (p < 1 || p > n || start >= n) return std::nullopt;
  const double fast = 2 / static_cast<double>(fastPeriods + 1),
               slow = 2 / static_cast<double>(slowPeriods + 1);
  Rows out = allNull(n), sum = allNull(n), c = allNull(n);
  for (Count i = lead + 1; i < n; ++i) at(sum, i) = std::fabs(at(in, i) - at(in, i - 1));
  for (Count i = start; i < n; ++i) {
    const double directive = at(in, i) - at(in, i - p);
    double volatility = 0.0;
    for (Count j = i - p + 1; j <= i; ++j) volatility += at(View(sum), j);
    const double efficiency = volatility == 0 ? 0.0 : directive / volatility;
    const double ssc = efficiency * (fast - slow) + slow;
    at(c, i) = ssc * ssc;
  }
  at(out, start - 1) = meanTwin(in, start - p, p);
  for (Count i = start; i < n; ++i) {
    const double before = at(View(out), i - 1);
    at(out, i) = before + at(View(c), i) * (at(in, i) - before);
  }
  return out;
}

/// Fast and slow periods have no range of their own: -1 divides by zero, others turn the sign.
constexpr std::pair<Count, Count> kFastAndSlow[] = {{2, 30}, {30, 2},         {0, 0},
                                                    {-1, 5}, {-4, INT32_MAX}, {INT32_MIN, 1}};

TEST(AdaptiveAverage, BatchAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    for (auto [fast, slow] : kFastAndSlow) {
      expectBatch(p, batch(CFeedkit::ADAPTIVEMOVINGAVERAGE, p, fast, slow),
                  [p, f = fast, s = slow](View in) { return adaptiveBatchTwin(in, p, f, s); });
    }
  }
}

TEST(AdaptiveAverage, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    for (auto [fast, slow] : kFastAndSlow) {
      expectFirstCall(p, resumable(CTechnicalFunctions::ADAPTIVEMOVINGAVERAGE, p, fast, slow),
                      [p, f = fast, s = slow](View in) { return adaptiveFirstCallTwin(in, p, f, s); });
    }
  }
}

TEST(AdaptiveAverage, BatchPeriodOfAllRowsButOneGivesTheSeedAlone) {
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, (4 + 7 + 5) / 3.0},
                       runBatch(Rows{3, 4, 7, 5}, batch(CFeedkit::ADAPTIVEMOVINGAVERAGE, 3, 2, 30))));
}

TEST(AdaptiveAverage, ResumablePeriodOfAllRowsHasNoRowBehindItsSeed) {
  const RunResult result =
      runOnCloses(Rows{3, 4, 7}, resumable(CTechnicalFunctions::ADAPTIVEMOVINGAVERAGE, 3, 2, 30));
  EXPECT_EQ(kNothingDone, result.status);
  EXPECT_TRUE(sameRows(allNull(3), result.rows));
}

TEST(AdaptiveAverage, WorkSeriesStandInTheStoreWithTheirSlotsSet) {
  const Rows in{1, 3, 6, 5};
  TestStore store(4);
  Rows out = allNull(4);
  std::int32_t slot = -1;
  const Source close{in, "CLOSE"};
  ASSERT_EQ(kDone, CTechnicalFunctions::ADAPTIVEMOVINGAVERAGE(store, close, 2, 2, 4, {out, &slot}));
  const auto work = [&](std::string_view name) {
    const WorkField field = store.field(name, {close, Count{2}, Count{2}, Count{4}});
    EXPECT_EQ(4, *field.slot) << name;
    return Rows(field.rows.begin(), field.rows.end());
  };
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 5, 2}, work("AMA_DIRECTIVE")));
  EXPECT_TRUE(sameRows(Rows{kNull, 2, 3, 1}, work("AMA_SUM")));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 5, 4}, work("AMA_VOL")));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 1, 0.5}, work("AMA_EFFI")));
  const double range = 2.0 / 3 - 2.0 / 5, slow = 2.0 / 5;
  const Rows ssc{kNull, kNull, 1 * range + slow, 0.5 * range + slow};
  EXPECT_TRUE(sameRows(ssc, work("AMA_SSC")));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, ssc[2] * ssc[2], ssc[3] * ssc[3]}, work("AMA_C")));
}

// ---- movingAverageByType ------------------------------------------------------------------------------

struct TypedAverage {
  Count type;
  Batch (*batch)(Count p);
  Operation (*operation)(Count p);
};

const TypedAverage kTypes[] = {
    {1, [](Count p) { return batch(CFeedkit::SimpleMovingAverage, p); },
     [](Count p) { return resumable(CTechnicalFunctions::SimpleMovingAverage, p); }},
    {2, [](Count p) { return batch(CFeedkit::ExponentialMovingAverage, p); },
     [](Count p) { return resumable(CTechnicalFunctions::ExponentialMovingAverage, p); }},
    {3, [](Count p) { return batch(CFeedkit::TimeSeriesMovingAverage, p); },
     [](Count p) { return resumable(CTechnicalFunctions::TimeSeriesMovingAverage, p); }},
    {4, [](Count p) { return batch(CFeedkit::VariableMovingAverage, p); },
     [](Count p) { return resumable(CTechnicalFunctions::VariableMovingAverage, p); }},
    {5, [](Count p) { return batch(CFeedkit::TriangularMovingAverage, p); },
     [](Count p) { return resumable(CTechnicalFunctions::TriangularMovingAverage, p); }},
    {6, [](Count p) { return batch(CFeedkit::WeightedMovingAverage, p); },
     [](Count p) { return resumable(CTechnicalFunctions::WeightedMovingAverage, p); }},
    {7, [](Count p) { return batch(CFeedkit::VIDYA, p, 0.65); },
     [](Count p) { return resumable(CTechnicalFunctions::VIDYA, p, 0.65); }},
    {8, [](Count p) { return batch(CFeedkit::WellesWilderSmoothing, p); },
     [](Count p) { return resumable(CTechnicalFunctions::WellesWilderSmoothing, p); }},
};

TEST(MovingAverageByType, ServesTheEightTypesInBothForms) {
  const Rows in = makeSeries(Shape::kWalk, 40);
  for (const TypedAverage& average : kTypes) {
    EXPECT_TRUE(sameRows(runBatch(in, average.batch(6)),
                         runBatch(in, batch(CFeedkit::movingAverageByType, 6, average.type))))
        << average.type;
    EXPECT_TRUE(
        sameRows(runOnCloses(in, average.operation(6)).rows,
                 runOnCloses(in, resumable(CTechnicalFunctions::movingAverageByType, 6, average.type)).rows))
        << average.type;
  }
}

TEST(MovingAverageByType, EveryOtherNumberIsSimpleNineAndTenToo) {
  const Rows in = makeSeries(Shape::kWalk, 40);
  const Rows simple = runBatch(in, batch(CFeedkit::SimpleMovingAverage, 6));
  const Rows simpleResumable = runOnCloses(in, resumable(CTechnicalFunctions::SimpleMovingAverage, 6)).rows;
  for (Count type : {Count{9}, Count{10}, Count{0}, Count{-1}, Count{INT32_MIN}, Count{INT32_MAX}}) {
    EXPECT_TRUE(sameRows(simple, runBatch(in, batch(CFeedkit::movingAverageByType, 6, type)))) << type;
    EXPECT_TRUE(sameRows(simpleResumable,
                         runOnCloses(in, resumable(CTechnicalFunctions::movingAverageByType, 6, type)).rows))
        << type;
  }
}

TEST(MovingAverageByType, BarsOneByOneGiveTheSeriesOfOneCallForEveryType) {
  for (Count type = 0; type <= 9; ++type) {
    SCOPED_TRACE(type);
    expectStreams(resumable(CTechnicalFunctions::movingAverageByType, 4, type));
  }
}

// ---- All of them --------------------------------------------------------------------------------------

struct Named {
  const char* name;
  Operation (*operation)(Count p);
};

const Named kAdaptiveAverages[] = {
    {"time series", [](Count p) { return resumable(CTechnicalFunctions::TimeSeriesMovingAverage, p); }},
    {"variable", [](Count p) { return resumable(CTechnicalFunctions::VariableMovingAverage, p); }},
    {"VIDYA", [](Count p) { return resumable(CTechnicalFunctions::VIDYA, p, 0.65); }},
    {"adaptive", [](Count p) { return resumable(CTechnicalFunctions::ADAPTIVEMOVINGAVERAGE, p, 2, 30); }},
};

TEST(AdaptiveAverages, RangeOfThePeriod) {
  expectRange(CFeedkit::TimeSeriesMovingAverage, [](WorkStore&, Source in, Count p, Target out) {
    return CTechnicalFunctions::TimeSeriesMovingAverage(in, p, out);
  });
  expectRange(CFeedkit::VariableMovingAverage, CTechnicalFunctions::VariableMovingAverage);
  expectRange([](View in, Count p, Out out) { CFeedkit::VIDYA(in, p, 0.65, out); },
              [](WorkStore& store, Source in, Count p, Target out) {
                return CTechnicalFunctions::VIDYA(store, in, p, 0.65, out);
              });
  expectRange([](View in, Count p, Out out) { CFeedkit::ADAPTIVEMOVINGAVERAGE(in, p, 2, 30, out); },
              [](WorkStore& store, Source in, Count p, Target out) {
                return CTechnicalFunctions::ADAPTIVEMOVINGAVERAGE(store, in, p, 2, 30, out);
              });
}

TEST(AdaptiveAverages, BarsOneByOneGiveTheSeriesOfOneCall) {
  for (const Named& average : kAdaptiveAverages) {
    for (Count p : {1, 2, 5, 9}) {
      SCOPED_TRACE(::testing::Message() << average.name << ", p " << p);
      expectStreams(average.operation(p));
    }
  }
}

TEST(AdaptiveAverages, AResumedCallRecomputesTheLastRowOnly) {
  for (const Named& average : kAdaptiveAverages) {
    SCOPED_TRACE(average.name);
    if (average.name != std::string_view("variable")) expectRecomputes(1, average.operation(5));
  }
}

TEST(AdaptiveAverages, ARowBeforeTheStartThatWasNeverWrittenMeansASeed) {
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  for (const Named& average : {kAdaptiveAverages[1], kAdaptiveAverages[3]}) {
    TestStore store(20);
    RunResult result{allNull(20), 18};  // rows are said to be computed, but none is there
    ASSERT_EQ(kDone, average.operation(4)(store, sourcesOf(prices, 20), {result.rows, &result.slot}));
    EXPECT_TRUE(sameRows(runAtOnce(prices, average.operation(4)).rows, result.rows)) << average.name;
  }
}

TEST(AdaptiveAverages, AnInputWithoutRowsDoesNothing) {
  for (const Named& average : kAdaptiveAverages) {
    EXPECT_EQ(kNothingDone, runOnCloses({}, average.operation(1)).status) << average.name;
  }
}

TEST(AdaptiveAverages, RowsAreCappedByThoseOfTheOutput) {
  const Rows in = makeSeries(Shape::kWalk, 30);
  for (const Named& average : kAdaptiveAverages) {
    TestStore store(20);
    Rows out = allNull(20);
    std::int32_t slot = -1;
    const Source source{in, "CLOSE"};
    EXPECT_EQ(kDone, average.operation(4)(store, {source, source, source, source, source}, {out, &slot}));
    EXPECT_EQ(20, slot) << average.name;
    EXPECT_TRUE(sameRows(runOnCloses(View(in).first(20), average.operation(4)).rows, out)) << average.name;
  }
}

}  // namespace
}  // namespace brindlewort
