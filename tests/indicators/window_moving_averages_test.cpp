#include <cmath>

#include "indicators/moving_averages_checks.hpp"

// Simple, triangular, weighted, Hull and volume adjusted averages, and the mean of all rows.
namespace brindlewort {
namespace {

using namespace testing;

// ---- SimpleMovingAverage ------------------------------------------------------------------------------

Rows slideTwin(View in, Count p, Count first) {
  Rows out = allNull(rowsOf(in));
  double sum = 0.0;
  for (Count i = first; i < rowsOf(in); ++i) {
    if (i == first) {
      for (Count j = i; j > i - p; --j) sum += at(in, j);
    } else {
      sum = sum - at(in, i - p);
      sum = sum + at(in, i);
    }
    at(out, i) = sum / static_cast<double>(p);
  }
  return out;
}

TEST(SimpleMovingAverage, BatchByHand) {
  const Rows in{9, 1, 2, 3, 4, 8, 6};
  EXPECT_TRUE(
      sameRows(Rows{kNull, kNull, kNull, kNull, (2 + 3 + 4) / 3.0, (3 + 4 + 8) / 3.0, (4 + 8 + 6) / 3.0},
               runBatch(in, batch(CFeedkit::SimpleMovingAverage, 3))));
}

TEST(SimpleMovingAverage, ResumableByHand) {
  const Rows in{9, 1, 2, 3, 4, 8};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 12 / 3.0, 6 / 3.0, 9 / 3.0, 15 / 3.0},
                       runOnCloses(in, resumable(CTechnicalFunctions::SimpleMovingAverage, 3)).rows));
}

TEST(SimpleMovingAverage, BatchAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    expectBatch(p, batch(CFeedkit::SimpleMovingAverage, p), [p](View in) {
      return batchRange(p, rowsOf(in)) ? slideTwin(in, p, p + 1) : allNull(rowsOf(in));
    });
  }
}

TEST(SimpleMovingAverage, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    expectFirstCall(p, resumable(CTechnicalFunctions::SimpleMovingAverage, p),
                    [p](View in) -> std::optional<Rows> {
                      const Count n = rowsOf(in), first = firstValueIndex(in) + p - 1;
                      if (p > n || first >= n) return std::nullopt;
                      return slideTwin(in, p, first);
                    });
  }
}

TEST(SimpleMovingAverage, PeriodOneBatchGivesTheInputFromRowTwo) {
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 7, 5},
                       runBatch(Rows{3, 4, 7, 5}, batch(CFeedkit::SimpleMovingAverage, 1))));
}

TEST(SimpleMovingAverage, PeriodOfAllRowsButOneLeavesBatchAllNull) {
  const Rows in{3, 4, 7, 5};
  EXPECT_TRUE(sameRows(allNull(4), runBatch(in, batch(CFeedkit::SimpleMovingAverage, 3))));
}

TEST(SimpleMovingAverage, PeriodOfAllRowsIsNullInBatchAndOneRowInResumable) {
  const Rows in{3, 4, 7, 6};
  EXPECT_TRUE(sameRows(allNull(4), runBatch(in, batch(CFeedkit::SimpleMovingAverage, 4))));
  const RunResult result = runOnCloses(in, resumable(CTechnicalFunctions::SimpleMovingAverage, 4));
  EXPECT_EQ(kDone, result.status);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 20 / 4.0}, result.rows));
}

TEST(SimpleMovingAverage, PeriodOfAllRowsFailsBehindANullHead) {
  const RunResult result =
      runOnCloses(Rows{kNull, 4, 7, 6}, resumable(CTechnicalFunctions::SimpleMovingAverage, 4));
  EXPECT_EQ(kNothingDone, result.status);
  EXPECT_EQ(-1, result.slot);
}

TEST(SimpleMovingAverage, NullHeadShiftsResumableButNotBatch) {
  const Rows in{kNull, kNull, 2, 4, 6, 8};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 6 / 2.0, 10 / 2.0, 14 / 2.0},
                       runOnCloses(in, resumable(CTechnicalFunctions::SimpleMovingAverage, 2)).rows));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 6 / 2.0, 10 / 2.0, 14 / 2.0},
                       runBatch(in, batch(CFeedkit::SimpleMovingAverage, 2))));
  const Rows longer{kNull, kNull, kNull, 2, 4, 6};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 2 / 2.0, 6 / 2.0, 10 / 2.0},
                       runBatch(longer, batch(CFeedkit::SimpleMovingAverage, 2))));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 6 / 2.0, 10 / 2.0},
                       runOnCloses(longer, resumable(CTechnicalFunctions::SimpleMovingAverage, 2)).rows));
}

TEST(SimpleMovingAverage, ANullInsideCountsAsZero) {
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 5 / 2.0, 4 / 2.0},
                       runBatch(Rows{1, 2, 5, kNull, 4}, batch(CFeedkit::SimpleMovingAverage, 2))));
}

TEST(SimpleMovingAverage, FirstWindowIsAddedNewestRowFirst) {
  // Newest first 1 + 1 + 1e16 keeps both ones; oldest first would lose them.
  const Rows in{0, 0, 1e16, 1, 1};
  EXPECT_EQ((1e16 + 2.0) / 3.0, runBatch(in, batch(CFeedkit::SimpleMovingAverage, 3))[4]);
  EXPECT_EQ((1e16 + 2.0) / 3.0,
            runOnCloses(View(in).subspan(2), resumable(CTechnicalFunctions::SimpleMovingAverage, 3)).rows[2]);
}

TEST(SimpleMovingAverage, TheSumLosesTheOldRowBeforeItGainsTheNew) {
  // 1e16 + 1 - 1e16 would be 0.
  EXPECT_EQ(1.0, runBatch(Rows{0, 0, 1e16, 1}, batch(CFeedkit::SimpleMovingAverage, 1))[3]);
}

TEST(SimpleMovingAverage, AResumedCallFormsItsWindowAgain) {
  // Row 3: the sum that slid past 1e16 has lost the one of row 2 and holds only that of row 3.
  const Rows in{1, 1e16, 1, 1, 1};
  const Operation operation = resumable(CTechnicalFunctions::SimpleMovingAverage, 2);
  EXPECT_EQ(1 / 2.0, runOnCloses(in, operation).rows[3]);
  EXPECT_EQ(2 / 2.0, runStreamed(closesOnly(in), operation, false).rows[3]);
}

TEST(SimpleMovingAverage, ASumThatMetANonFiniteValueRecoversOnlyInAResumedCall) {
  const Rows in{1, kInf, 1, 1, 1};
  const Operation operation = resumable(CTechnicalFunctions::SimpleMovingAverage, 2);
  EXPECT_TRUE(std::isnan(runOnCloses(in, operation).rows[4]));
  EXPECT_EQ(1.0, runStreamed(closesOnly(in), operation, false).rows[4]);
}

// ---- TriangularMovingAverage --------------------------------------------------------------------------

Rows windowMeanTwin(View in, Count w, Count first) {
  Rows out = allNull(rowsOf(in));
  for (Count i = first; i < rowsOf(in); ++i) {
    double sum = 0.0;
    for (Count j = i; j > i - w; --j) sum += at(in, j);
    at(out, i) = sum / static_cast<double>(w);
  }
  return out;
}

std::pair<Count, Count> triangularWindows(Count p) {
  if (p % 2 != 0) return {p / 2 + 1, p / 2 + 1};
  return {p / 2, p / 2 + 1};
}

TEST(TriangularMovingAverage, BatchByHand) {
  // Windows 2 and 2, both from row 4, so the second stage's first row has half its window only.
  const Rows in{9, 1, 2, 4, 6, 10, 12};
  const double stageOne[] = {(4 + 6) / 2.0, (6 + 10) / 2.0, (10 + 12) / 2.0};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, (0 + stageOne[0]) / 2,
                            (stageOne[0] + stageOne[1]) / 2, (stageOne[1] + stageOne[2]) / 2},
                       runBatch(in, batch(CFeedkit::TriangularMovingAverage, 3))));
}

TEST(TriangularMovingAverage, ResumableByHandWithAnEvenPeriod) {
  // Windows 2 and 3: stage one from row 1, stage two from row 3.
  const Rows in{2, 4, 6, 10, 12};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, (3 + 5 + 8) / 3.0, (5 + 8 + 11) / 3.0},
                       runOnCloses(in, resumable(CTechnicalFunctions::TriangularMovingAverage, 4)).rows));
}

TEST(TriangularMovingAverage, BatchAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 4, 7, 8}) {
    expectBatch(p, batch(CFeedkit::TriangularMovingAverage, p), [p](View in) {
      if (!batchRange(p, rowsOf(in))) return allNull(rowsOf(in));
      const auto [w1, w2] = triangularWindows(p);
      return windowMeanTwin(windowMeanTwin(in, w1, p + 1), w2, p + 1);
    });
  }
}

TEST(TriangularMovingAverage, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 4, 7, 8}) {
    expectFirstCall(p, resumable(CTechnicalFunctions::TriangularMovingAverage, p),
                    [p](View in) -> std::optional<Rows> {
                      const Count n = rowsOf(in);
                      if (p > n) return std::nullopt;
                      const auto [w1, w2] = triangularWindows(p);
                      const Rows stageOne = windowMeanTwin(in, w1, firstValueIndex(in) + w1 - 1);
                      const Count first = firstValueIndex(stageOne) + w2 - 1;
                      if (first >= n) return std::nullopt;
                      return windowMeanTwin(stageOne, w2, first);
                    });
  }
}

TEST(TriangularMovingAverage, StageOneStandsInAFieldOfItsOwnWithItsSlotSet) {
  const Rows in{2, 4, 6, 10, 12};
  TestStore store(5);
  Rows out = allNull(5);
  std::int32_t slot = -1;
  ASSERT_EQ(kDone, CTechnicalFunctions::TriangularMovingAverage(store, {in, "CLOSE"}, 4, {out, &slot}));
  const WorkField stageOne = store.field("TMAfield1", {Source{in, "CLOSE"}, Count{4}});
  EXPECT_TRUE(sameRows(Rows{kNull, 3, 5, 8, 11}, stageOne.rows));
  EXPECT_EQ(5, *stageOne.slot);
}

// ---- WeightedMovingAverage ----------------------------------------------------------------------------

Rows weightedTwin(View in, Count p, Count first) {
  Rows out = allNull(rowsOf(in));
  double divisor = 0.0;
  for (Count j = 1; j <= p; ++j) divisor += static_cast<double>(j);
  for (Count i = first; i < rowsOf(in); ++i) {
    double sum = 0.0;
    for (Count j = 0; j < p; ++j) sum += at(in, i - j) * static_cast<double>(p - j);
    at(out, i) = sum / divisor;
  }
  return out;
}

Rows weightedBatchTwin(View in, Count p) {
  return batchRange(p, rowsOf(in)) ? weightedTwin(in, p, p + 1) : allNull(rowsOf(in));
}

std::optional<Rows> weightedFirstCallTwin(View in, Count p) {
  const Count first = firstValueIndex(in) + p - 1;
  if (!resumableRange(p, rowsOf(in)) || first >= rowsOf(in)) return std::nullopt;
  return weightedTwin(in, p, first);
}

TEST(WeightedMovingAverage, BatchByHand) {
  const Rows in{9, 1, 2, 3, 7, 4};
  EXPECT_TRUE(
      sameRows(Rows{kNull, kNull, kNull, kNull, (7 * 3 + 3 * 2 + 2 * 1) / 6.0, (4 * 3 + 7 * 2 + 3 * 1) / 6.0},
               runBatch(in, batch(CFeedkit::WeightedMovingAverage, 3))));
}

TEST(WeightedMovingAverage, ResumableByHandBehindANullHead) {
  const Rows in{kNull, 1, 2, 3, 7};
  EXPECT_TRUE(
      sameRows(Rows{kNull, kNull, (2 * 2 + 1 * 1) / 3.0, (3 * 2 + 2 * 1) / 3.0, (7 * 2 + 3 * 1) / 3.0},
               runOnCloses(in, resumable(CTechnicalFunctions::WeightedMovingAverage, 2)).rows));
}

TEST(WeightedMovingAverage, BatchAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7, 9}) {
    expectBatch(p, batch(CFeedkit::WeightedMovingAverage, p),
                [p](View in) { return weightedBatchTwin(in, p); });
  }
}

TEST(WeightedMovingAverage, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7, 9}) {
    expectFirstCall(p, resumable(CTechnicalFunctions::WeightedMovingAverage, p),
                    [p](View in) { return weightedFirstCallTwin(in, p); });
  }
}

TEST(WeightedMovingAverage, RowsSideBySideHaveTheBitsOfSingleRows) {
  // A resumed call computes one row, a first call blocks of them: the bits must not tell which.
  const Operation operation = resumable(CTechnicalFunctions::WeightedMovingAverage, 14);
  for (Shape shape : kStreamedShapes) {
    const PriceRows prices = makePrices(shape, 90);
    EXPECT_TRUE(sameRows(runAtOnce(prices, operation).rows, runStreamed(prices, operation, false).rows));
  }
}

// ---- HA -----------------------------------------------------------------------------------------------

Count rootPeriod(Count p) {
  return static_cast<Count>(std::trunc(std::sqrt(static_cast<double>(p))));
}

TEST(HullAverage, BatchByHand) {
  // p = 4: WMA(2) - twice - less WMA(4), then WMA(2).
  const Rows in{9, 1, 2, 3, 5, 8, 4};
  const double half5 = (8 * 2 + 5) / 3.0, half6 = (4 * 2 + 8) / 3.0, half4 = (5 * 2 + 3) / 3.0;
  const double whole5 = (8 * 4 + 5 * 3 + 3 * 2 + 2) / 10.0, whole6 = (4 * 4 + 8 * 3 + 5 * 2 + 3) / 10.0;
  const double c4 = 2 * half4 - 0, c5 = 2 * half5 - whole5, c6 = 2 * half6 - whole6;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, kNull, (c5 * 2 + c4 * 1) / 3, (c6 * 2 + c5 * 1) / 3},
                       runBatch(in, batch(CFeedkit::HA, 4))));
}

TEST(HullAverage, ResumableByHand) {
  // p = 4: both averages from row 3, so the result from row 4.
  const Rows in{1, 2, 3, 5, 8};
  const double c3 = 2 * ((5 * 2 + 3) / 3.0) - (5 * 4 + 3 * 3 + 2 * 2 + 1) / 10.0;
  const double c4 = 2 * ((8 * 2 + 5) / 3.0) - (8 * 4 + 5 * 3 + 3 * 2 + 2) / 10.0;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, (c4 * 2 + c3 * 1) / 3},
                       runOnCloses(in, resumable(CTechnicalFunctions::HA, 4)).rows));
}

TEST(HullAverage, BatchAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 4, 5, 9}) {
    expectBatch(p, batch(CFeedkit::HA, p), [p](View in) {
      Rows out = allNull(rowsOf(in));
      if (!batchRange(p, rowsOf(in))) return out;
      const Rows a = weightedBatchTwin(in, p / 2), b = weightedBatchTwin(in, p);
      Rows c = allNull(rowsOf(in));
      for (Count i = 0; i < rowsOf(in); ++i) at(c, i) = 2 * at(View(a), i) - at(View(b), i);
      const Rows d = weightedBatchTwin(c, rootPeriod(p));
      for (Count i = p + 1; i < rowsOf(in); ++i) at(out, i) = at(View(d), i);
      return out;
    });
  }
}

TEST(HullAverage, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 4, 5, 9}) {
    expectFirstCall(p, resumable(CTechnicalFunctions::HA, p), [p](View in) -> std::optional<Rows> {
      const Count n = rowsOf(in);
      if (p > n) return std::nullopt;
      const Rows a = weightedFirstCallTwin(in, p / 2).value_or(allNull(n));
      const Rows b = weightedFirstCallTwin(in, p).value_or(allNull(n));
      Rows c = allNull(n);
      for (Count i = std::max(firstValueIndex(a), firstValueIndex(b)); i < n; ++i) {
        at(c, i) = 2 * at(View(a), i) - at(View(b), i);
      }
      return weightedFirstCallTwin(c, rootPeriod(p));
    });
  }
}

TEST(HullAverage, PeriodOneIsTheInputWithItsSignTurnedInBatch) {
  // The half period is 0, whose average is null throughout: 2 * 0 - in.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, -7, -5}, runBatch(Rows{3, 4, 7, 5}, batch(CFeedkit::HA, 1))));
}

TEST(HullAverage, ABatchRowOfExactlyTheNullValueIsZero) {
  // p = 4, with 15 * u and 15 * v in the last two rows: c4 = 10u * 2 - 0 = 20u (no whole average yet) and
  // c5 = (10v + 5u) * 2 - (6v + 4.5u) = 14v + 5.5u, so the last row is (28v + 31u) / 3.
  const double u = 11, v = -105820118;
  ASSERT_EQ(NULL_VALUE, (28 * v + 31 * u) / 3);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, kNull, 0.0},
                       runBatch(Rows{0, 0, 0, 0, 15 * u, 15 * v}, batch(CFeedkit::HA, 4))));
}

TEST(HullAverage, PeriodOneGivesNoRowInResumable) {
  const RunResult result = runOnCloses(Rows{3, 4, 7, 5}, resumable(CTechnicalFunctions::HA, 1));
  EXPECT_EQ(kNothingDone, result.status);
  EXPECT_TRUE(sameRows(allNull(4), result.rows));
}

// ---- VAA ----------------------------------------------------------------------------------------------

void volumeAdjusted(View in, View weights, Count p, Out out) {
  CFeedkit::VAA(in, weights, p, out);
}

Operation volumeAdjusted(Count p) {
  return [p](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::VAA(prices.close, prices.volume, p, out);
  };
}

Rows volumeAdjustedTwin(View in, View weights, Count p, Count first, bool repeatPrevious) {
  Rows out = allNull(rowsOf(in));
  double previous = 0.0;
  for (Count i = first; i < rowsOf(in); ++i) {
    double products = 0.0, total = 0.0;
    for (Count j = 0; j < p; ++j) {
      products += at(in, i - j) * at(weights, i - j);
      total += at(weights, i - j);
    }
    at(out, i) = total != 0.0 ? products / total : repeatPrevious ? previous : 0.0;
    previous = at(out, i);
  }
  return out;
}

/// Weights that are 0 for whole windows, and null here and there.
Rows patchyWeights(std::size_t n) {
  Rows weights = makeSeries(Shape::kZeros, static_cast<int>(n), 5);
  for (std::size_t i = 0; i < n; ++i) {
    if (i % 9 > 3) weights[i] = 0.0;
    if (i % 11 == 10) weights[i] = kNull;
  }
  return weights;
}

TEST(VolumeAdjustedAverage, BatchByHandRepeatsTheAverageWhereTheWeightsAreZero) {
  const Rows in{9, 9, 9, 4, 6, 8, 5}, weights{1, 1, 0, 0, 3, 0, 0};
  Rows out = allNull(7);
  volumeAdjusted(in, weights, 2, out);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 0, 18 / 3.0, 18 / 3.0, 18 / 3.0}, out));
}

TEST(VolumeAdjustedAverage, ResumableByHandIsZeroWhereTheWeightsAreZero) {
  const Rows in{9, 4, 6, 8, 5}, weights{1, 3, 0, 0, 2};
  Rows out = allNull(5);
  std::int32_t slot = -1;
  EXPECT_EQ(kDone, CTechnicalFunctions::VAA({in, "CLOSE"}, {weights, "VOLUME"}, 2, {out, &slot}));
  EXPECT_TRUE(sameRows(Rows{kNull, (4 * 3 + 9 * 1) / 4.0, 12 / 3.0, 0, 10 / 2.0}, out));
  EXPECT_EQ(5, slot);
}

TEST(VolumeAdjustedAverage, StartsBehindTheLongerNullHead) {
  const Rows in{kNull, 4, 6, 8, 5}, weights{kNull, kNull, kNull, 1, 1};
  Rows out = allNull(5);
  std::int32_t slot = -1;
  EXPECT_EQ(kDone, CTechnicalFunctions::VAA({in, "CLOSE"}, {weights, "VOLUME"}, 2, {out, &slot}));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 13 / 2.0}, out));
}

TEST(VolumeAdjustedAverage, BatchAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    forShortSeries(p, [&](View in) {
      const Rows weights = patchyWeights(in.size());
      Rows out = allNull(rowsOf(in));
      volumeAdjusted(in, weights, p, out);
      EXPECT_TRUE(sameRows(
          batchRange(p, rowsOf(in)) ? volumeAdjustedTwin(in, weights, p, p + 1, true) : allNull(rowsOf(in)),
          out));
    });
  }
}

TEST(VolumeAdjustedAverage, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    forShortSeries(p, [&](View in) {
      const Rows weights = patchyWeights(in.size());
      const Count n = rowsOf(in);
      const Count first = std::max(firstValueIndex(in), firstValueIndex(weights)) + p - 1;
      const bool done = p <= n && first < n;
      Rows out = allNull(n);
      std::int32_t slot = -1;
      EXPECT_EQ(done ? kDone : kNothingDone,
                CTechnicalFunctions::VAA({in, "A"}, {weights, "B"}, p, {out, &slot}));
      EXPECT_TRUE(sameRows(done ? volumeAdjustedTwin(in, weights, p, first, false) : allNull(n), out));
    });
  }
}

TEST(VolumeAdjustedAverage, WeightsWithFewerRowsThanTheInput) {
  const Rows in{1, 2, 3, 4, 5}, weights{1, 1, 1};
  Rows out = allNull(5);
  volumeAdjusted(in, weights, 1, out);
  EXPECT_TRUE(sameRows(allNull(5), out)) << "batch: nothing is read outside a series";
  std::int32_t slot = -1;
  EXPECT_EQ(kDone, CTechnicalFunctions::VAA({in, "A"}, {weights, "B"}, 1, {out, &slot}));
  EXPECT_TRUE(sameRows(Rows{1, 2, 3, kNull, kNull}, out)) << "resumable: the rows that both have";
  EXPECT_EQ(3, slot);
}

TEST(VolumeAdjustedAverage, RangeOfThePeriod) {
  expectRange(
      [](View in, Count p, Out out) { volumeAdjusted(in, in, p, out); },
      [](WorkStore&, Source in, Count p, Target out) { return CTechnicalFunctions::VAA(in, in, p, out); });
}

// ---- CUMULATIVEAVERAGE --------------------------------------------------------------------------------

/// Every row adds its whole prefix again.
double prefixMeanTwin(View in, Count from, Count i) {
  double sum = 0.0;
  for (Count j = from; j <= i; ++j) sum += at(in, j);
  return sum / static_cast<double>(i - from + 1);
}

Operation cumulative() {
  return [](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::CUMULATIVEAVERAGE(prices.close, out);
  };
}

TEST(CumulativeAverage, BatchByHandLeavesOutTheFillerBar) {
  EXPECT_TRUE(sameRows(Rows{kNull, 1, (1 + 4) / 2.0, (1 + 4 + 0) / 3.0, (1 + 4 + 0 + 9) / 4.0},
                       runBatch(Rows{7, 1, 4, kNull, 9}, CFeedkit::CUMULATIVEAVERAGE)));
}

TEST(CumulativeAverage, ResumableByHandCountsRowZero) {
  EXPECT_TRUE(
      sameRows(Rows{7, 8 / 2.0, 12 / 3.0, 12 / 4.0}, runOnCloses(Rows{7, 1, 4, kNull}, cumulative()).rows));
}

TEST(CumulativeAverage, ResumableStartsBehindTheNullHeadWhoseRowsCount) {
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 6 / 3.0, 8 / 4.0},
                       runOnCloses(Rows{kNull, kNull, 6, 2}, cumulative()).rows));
}

TEST(CumulativeAverage, ResumableRowZeroIsTheValueItself) {
  EXPECT_TRUE(std::signbit(runOnCloses(Rows{-0.0, 1}, cumulative()).rows[0]));
  EXPECT_TRUE(sameRows(Rows{kNull, 0.0}, runBatch(Rows{3, -0.0}, CFeedkit::CUMULATIVEAVERAGE)));
}

TEST(CumulativeAverage, BatchAgreesWithItsTwin) {
  expectBatch(12, CFeedkit::CUMULATIVEAVERAGE, [](View in) {
    Rows out = allNull(rowsOf(in));
    for (Count i = 1; i < rowsOf(in); ++i) at(out, i) = prefixMeanTwin(in, 1, i);
    return out;
  });
}

TEST(CumulativeAverage, FirstCallAgreesWithItsTwin) {
  expectFirstCall(12, cumulative(), [](View in) -> std::optional<Rows> {
    const Count n = rowsOf(in), start = firstValueIndex(in);
    if (start >= n) return std::nullopt;
    Rows out = allNull(n);
    if (start == 0) at(out, 0) = at(in, 0);
    for (Count i = std::max<Count>(start, 1); i < n; ++i) at(out, i) = prefixMeanTwin(in, 0, i);
    return out;
  });
}

TEST(CumulativeAverage, AResumedCallHasTheBitsOfTheWholePrefix) {
  for (Shape shape : kAllShapes) {
    const PriceRows prices = makePrices(shape, 60);
    EXPECT_TRUE(sameRows(runAtOnce(prices, cumulative()).rows, runStreamed(prices, cumulative(), true).rows));
  }
}

// ---- All of them --------------------------------------------------------------------------------------

struct Named {
  const char* name;
  Batch (*batch)(Count p);
  Operation (*resumable)(Count p);
};

const Named kPeriodAverages[] = {
    {"simple", [](Count p) { return batch(CFeedkit::SimpleMovingAverage, p); },
     [](Count p) { return resumable(CTechnicalFunctions::SimpleMovingAverage, p); }},
    {"triangular", [](Count p) { return batch(CFeedkit::TriangularMovingAverage, p); },
     [](Count p) { return resumable(CTechnicalFunctions::TriangularMovingAverage, p); }},
    {"weighted", [](Count p) { return batch(CFeedkit::WeightedMovingAverage, p); },
     [](Count p) { return resumable(CTechnicalFunctions::WeightedMovingAverage, p); }},
    {"Hull", [](Count p) { return batch(CFeedkit::HA, p); },
     [](Count p) { return resumable(CTechnicalFunctions::HA, p); }},
};

TEST(WindowAverages, RangeOfThePeriod) {
  for (const Named& average : kPeriodAverages) {
    SCOPED_TRACE(average.name);
    expectRange([&](View in, Count p, Out out) { average.batch(p)(in, out); },
                [&](WorkStore& store, Source in, Count p, Target out) {
                  return average.resumable(p)(store, {in, in, in, in, in}, out);
                });
  }
}

TEST(WindowAverages, BarsOneByOneGiveTheSeriesOfOneCall) {
  for (const Named& average : kPeriodAverages) {
    for (Count p : {1, 2, 5, 9}) {
      SCOPED_TRACE(::testing::Message() << average.name << ", p " << p);
      expectStreams(average.resumable(p));
    }
  }
  for (Count p : {1, 2, 5, 9}) expectStreams(volumeAdjusted(p));
  expectStreams(cumulative());
}

TEST(WindowAverages, AResumedCallRecomputesTheLastRowOnly) {
  for (const Named& average : kPeriodAverages) {
    SCOPED_TRACE(average.name);
    expectRecomputes(1, average.resumable(5));
  }
  expectRecomputes(1, volumeAdjusted(5));
  expectRecomputes(1, cumulative());
}

TEST(WindowAverages, APeriodThatHasGrownStartsWhereItsFirstRowIs) {
  for (const Named& average : kPeriodAverages) {
    SCOPED_TRACE(average.name);
    const PriceRows prices = makePrices(Shape::kWalk, 20);
    TestStore store(20);
    RunResult result{allNull(20)};
    ASSERT_EQ(kDone, average.resumable(3)(store, sourcesOf(prices, 20), {result.rows, &result.slot}));
    result.slot = 5;
    ASSERT_EQ(kDone, average.resumable(16)(store, sourcesOf(prices, 20), {result.rows, &result.slot}));
    const Rows fresh = runAtOnce(prices, average.resumable(16)).rows;
    EXPECT_TRUE(sameRows(View(fresh).last(2), View(result.rows).last(2), nearlySame));
  }
}

TEST(WindowAverages, AnInputWithoutRowsDoesNothing) {
  EXPECT_EQ(kNothingDone, runOnCloses({}, cumulative()).status);
  for (const Named& average : kPeriodAverages) {
    EXPECT_EQ(kNothingDone, runOnCloses({}, average.resumable(1)).status) << average.name;
  }
}

TEST(WindowAverages, RowsAreCappedByThoseOfTheOutput) {
  const Rows in = makeSeries(Shape::kWalk, 30);
  for (const Named& average : kPeriodAverages) {
    TestStore store(20);
    Rows out = allNull(20);
    std::int32_t slot = -1;
    const Source source{in, "CLOSE"};
    EXPECT_EQ(kDone, average.resumable(4)(store, {source, source, source, source, source}, {out, &slot}));
    EXPECT_EQ(20, slot) << average.name;
    EXPECT_TRUE(sameRows(runOnCloses(View(in).first(20), average.resumable(4)).rows, out)) << average.name;
  }
}

}  // namespace
}  // namespace brindlewort
