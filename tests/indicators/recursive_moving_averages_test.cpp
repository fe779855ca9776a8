#include <cmath>

#include "indicators/moving_averages_checks.hpp"

// Exponential, Wilder, factor and zero-lag averages.
namespace brindlewort {
namespace {

using namespace testing;

// ---- ExponentialMovingAverage -------------------------------------------------------------------------

TEST(ExponentialMovingAverage, BatchByHand) {
  // p = 3, k = 0.5. The zero of row 2 is not counted in the seed, and row 3 reads row 4.
  const Rows in{9, 4, 0, 8, 10, 6, 2};
  const double seed = (4 + 8) / 2.0, row3 = 10 * 0.5 + seed * 0.5, row4 = row3 * 0.5 + 10 * 0.5;
  const double row5 = row4 * 0.5 + 6 * 0.5, row6 = row5 * 0.5 + 2 * 0.5;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, row3, row4, row5, row6},
                       runBatch(in, batch(CFeedkit::ExponentialMovingAverage, 3))));
}

TEST(ExponentialMovingAverage, BatchFirstRowSwapsTheWeights) {
  // p = 1, k = 1: out[1] = in[2] * 0 + in[1] * 1, from there out[i] = in[i].
  EXPECT_TRUE(sameRows(Rows{kNull, 5, 7, 6},
                       runBatch(Rows{3, 5, 7, 6}, batch(CFeedkit::ExponentialMovingAverage, 1))));
  // p = 7, k = 0.25: the row ahead gets 0.75 and the seed 0.25.
  const Rows in{0, 4, 4, 4, 4, 4, 4, 4, 8};
  EXPECT_EQ(8 * 0.75 + 4 * 0.25, runBatch(in, batch(CFeedkit::ExponentialMovingAverage, 7))[7]);
}

TEST(ExponentialMovingAverage, BatchSeedOfAnAllZeroHeadIsRowP) {
  // p = 3: rows 1 to 3 add up to 0, so the seed is in[3] = 0.
  const Rows in{9, 0, kNull, 0, 10, 6};
  EXPECT_EQ(10 * 0.5 + 0 * 0.5, runBatch(in, batch(CFeedkit::ExponentialMovingAverage, 3))[3]);
}

TEST(ExponentialMovingAverage, BatchSeedOfANegativeSumIsRowP) {
  const Rows in{9, -4, 1, -3, 10, 6};
  EXPECT_EQ(10 * 0.5 + -3 * 0.5, runBatch(in, batch(CFeedkit::ExponentialMovingAverage, 3))[3]);
}

TEST(ExponentialMovingAverage, BatchSeedOfANegativeSumReadsANullRowPAsZero) {
  const Rows in{9, -4, 1, kNull, 10, 6};
  EXPECT_EQ(10 * 0.5 + 0 * 0.5, runBatch(in, batch(CFeedkit::ExponentialMovingAverage, 3))[3]);
}

TEST(ExponentialMovingAverage, BatchIsAllNullWithoutARowBehindTheSeed) {
  EXPECT_TRUE(sameRows(allNull(4), runBatch(Rows{3, 4, 7, 5}, batch(CFeedkit::ExponentialMovingAverage, 3))));
}

TEST(ExponentialMovingAverage, BatchAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    expectBatch(p, batch(CFeedkit::ExponentialMovingAverage, p), [p](View in) {
      const Count n = rowsOf(in);
      Rows out = allNull(n);
      if (p < 1 || p >= n) return out;
      const double k = 2.0 / static_cast<double>(p + 1);
      double sum = 0.0;
      int count = 0;
      for (Count j = 1; j <= p; ++j) {
        if (at(in, j) != 0.0) {
          sum += at(in, j);
          count += 1;
        }
      }
      double seed = 0.0;
      if (sum > 0.0 && count > 0) {
        seed = sum / count;
      } else {
        seed = at(in, p);
      }
      if (p + 1 < n) at(out, p) = at(in, p + 1) * (1 - k) + seed * k;
      for (Count i = p + 1; i < n; ++i) at(out, i) = at(View(out), i - 1) * (1 - k) + at(in, i) * k;
      return out;
    });
  }
}

TEST(ExponentialMovingAverage, ResumableByHand) {
  const Rows in{9, 4, 2, 8, 10};
  const double seed = (9 + 4 + 2) / 3.0, row3 = seed * 0.5 + 8 * 0.5;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, seed, row3, row3 * 0.5 + 10 * 0.5},
                       runOnCloses(in, resumable(CTechnicalFunctions::ExponentialMovingAverage, 3)).rows));
}

TEST(ExponentialMovingAverage, NullHeadShiftsResumableButNotBatch) {
  const Rows in{kNull, kNull, kNull, 4, 2, 8};
  const double seed = (4 + 2) / 2.0, k = 2.0 / 3;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, seed, seed * (1 - k) + 8 * k},
                       runOnCloses(in, resumable(CTechnicalFunctions::ExponentialMovingAverage, 2)).rows));
  const double row2 = 4 * (1 - k) + 0 * k, row3 = row2 * (1 - k) + 4 * k, row4 = row3 * (1 - k) + 2 * k;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, row2, row3, row4, row4 * (1 - k) + 8 * k},
                       runBatch(in, batch(CFeedkit::ExponentialMovingAverage, 2))));
}

TEST(ExponentialMovingAverage, TheSeedRowAloneIsASuccess) {
  const RunResult result =
      runOnCloses(Rows{kNull, 4, 6}, resumable(CTechnicalFunctions::ExponentialMovingAverage, 2));
  EXPECT_EQ(kDone, result.status);
  EXPECT_EQ(3, result.slot);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 10 / 2.0}, result.rows));
}

TEST(ExponentialMovingAverage, OneRowLessThanTheSeedNeedsIsNothingDone) {
  const RunResult result =
      runOnCloses(Rows{kNull, kNull, 4, 6}, resumable(CTechnicalFunctions::ExponentialMovingAverage, 3));
  EXPECT_EQ(kNothingDone, result.status);
  EXPECT_EQ(-1, result.slot);
}

/// The mean of the p rows from `first`, oldest row first.
double meanTwin(View in, Count first, Count p) {
  double sum = 0.0;
  for (Count j = first; j < first + p; ++j) sum += at(in, j);
  return sum / static_cast<double>(p);
}

TEST(ExponentialMovingAverage, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    expectFirstCall(p, resumable(CTechnicalFunctions::ExponentialMovingAverage, p),
                    [p](View in) -> std::optional<Rows> {
                      const Count n = rowsOf(in), lead = firstValueIndex(in);
                      if (p > n || lead + p > n) return std::nullopt;
                      const double k = 2.0 / static_cast<double>(p + 1);
                      Rows out = allNull(n);
                      at(out, lead + p - 1) = meanTwin(in, lead, p);
                      for (Count i = lead + p; i < n; ++i) {
                        at(out, i) = at(View(out), i - 1) * (1 - k) + at(in, i) * k;
                      }
                      return out;
                    });
  }
}

// ---- WellesWilderSmoothing ----------------------------------------------------------------------------

TEST(WilderSmoothing, BatchStartsFromZeroWhateverThePeriod) {
  const Rows in{9, 9, 8, 4, 6, 6};
  const double row2 = 0 + (8 - 0) * 0.25, row3 = row2 + (4 - row2) * 0.25, row4 = row3 + (6 - row3) * 0.25;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, row2, row3, row4, row4 + (6 - row4) * 0.25},
                       runBatch(in, batch(CFeedkit::WellesWilderSmoothing, 4))));
}

TEST(WilderSmoothing, ResumableByHandBehindANullHead) {
  const Rows in{kNull, 9, 3, 4, 6};
  const double row2 = (9 + 3) / 2.0, row3 = row2 + (4 - row2) * 0.5;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, row2, row3, row3 + (6 - row3) * 0.5},
                       runOnCloses(in, resumable(CTechnicalFunctions::WellesWilderSmoothing, 2)).rows));
}

TEST(WilderSmoothing, BatchAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    expectBatch(p, batch(CFeedkit::WellesWilderSmoothing, p), [p](View in) {
      Rows out = allNull(rowsOf(in));
      if (p >= rowsOf(in)) return out;
      for (Count i = 2; i < rowsOf(in); ++i) {
        const double before = at(View(out), i - 1);
        at(out, i) = before + (at(in, i) - before) * (1 / static_cast<double>(p));
      }
      return out;
    });
  }
}

TEST(WilderSmoothing, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    expectFirstCall(p, resumable(CTechnicalFunctions::WellesWilderSmoothing, p),
                    [p](View in) -> std::optional<Rows> {
                      const Count n = rowsOf(in), seedRow = firstValueIndex(in) + p - 1;
                      if (p > n || seedRow >= n) return std::nullopt;
                      Rows out = allNull(n);
                      at(out, seedRow) = meanTwin(in, seedRow - p + 1, p);
                      for (Count i = seedRow + 1; i < n; ++i) {
                        const double before = at(View(out), i - 1);
                        at(out, i) = before + (at(in, i) - before) * (1 / static_cast<double>(p));
                      }
                      return out;
                    });
  }
}

// ---- FACTORAVERAGE ------------------------------------------------------------------------------------

TEST(FactorAverage, BatchByHand) {
  // The seed is the mean of rows 2 and 3, at row 3.
  const Rows in{9, 9, 8, 4, 6, 10};
  const double row3 = (8 + 4) / 2.0, row4 = row3 * 0.75 + 6 * 0.25;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, row3, row4, row4 * 0.75 + 10 * 0.25},
                       runBatch(in, batch(CFeedkit::FACTORAVERAGE, 0.25, 2))));
}

TEST(FactorAverage, ResumableByHand) {
  const Rows in{9, 3, 8, 4};
  const double row1 = (9 + 3) / 2.0, row2 = row1 * 0.75 + 8 * 0.25;
  EXPECT_TRUE(sameRows(Rows{kNull, row1, row2, row2 * 0.75 + 4 * 0.25},
                       runOnCloses(in, resumable(CTechnicalFunctions::FACTORAVERAGE, 0.25, 2)).rows));
}

TEST(FactorAverage, ResumableSeedBehindANullHeadIsLow) {
  // Seed row 1 + 3 - 1; only rows 1 and 2 are added, and still divided by 3.
  const RunResult result =
      runOnCloses(Rows{kNull, 9, 3, 8, 4}, resumable(CTechnicalFunctions::FACTORAVERAGE, 0.5, 3));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, (9 + 3) / 3.0, 4.0 * 0.5 + 4 * 0.5}, result.rows));
}

TEST(FactorAverage, ResumableSeedBehindANullHeadOfThePeriodIsZero) {
  const RunResult result =
      runOnCloses(Rows{kNull, kNull, 9, 3, 8}, resumable(CTechnicalFunctions::FACTORAVERAGE, 0.5, 2));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 0, 0 * 0.5 + 8 * 0.5}, result.rows));
}

TEST(FactorAverage, BatchIsAllNullWithoutARowForTheSeed) {
  const Rows in{1, 2, 3, 4};
  EXPECT_EQ((3.0 + 4.0) / 2, runBatch(in, batch(CFeedkit::FACTORAVERAGE, 0.5, 2))[3]);
  for (Count p : {Count{3}, Count{4}, Count{INT32_MAX}, Count{-2}, Count{INT32_MIN}}) {
    EXPECT_TRUE(sameRows(allNull(4), runBatch(in, batch(CFeedkit::FACTORAVERAGE, 0.5, p)))) << p;
  }
}

TEST(FactorAverage, BatchPeriodZeroDividesByZeroWithoutATest) {
  const Rows out = runBatch(Rows{1, 2, 3}, batch(CFeedkit::FACTORAVERAGE, 0.5, 0));
  EXPECT_TRUE(sameRows(Rows{kNull, kNaN, kNaN}, out));
}

TEST(FactorAverage, BatchAgreesWithItsTwin) {
  for (Count p : {0, 1, 2, 3, 7}) {
    for (double f : {0.3, 0.0, 1.0, -2.0}) {
      expectBatch(p, batch(CFeedkit::FACTORAVERAGE, f, p), [p, f](View in) {
        const Count n = rowsOf(in);
        Rows out = allNull(n);
        if (p + 1 >= n) return out;
        const double g = 1 - f;
        double sum = 0.0;
        for (Count j = 2; j <= p + 1; ++j) sum += at(in, j);
        at(out, p + 1) = sum / static_cast<double>(p);
        for (Count i = p + 2; i < n; ++i) at(out, i) = at(View(out), i - 1) * g + at(in, i) * f;
        return out;
      });
    }
  }
}

TEST(FactorAverage, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7}) {
    for (double f : {0.3, -2.0}) {
      expectFirstCall(p, resumable(CTechnicalFunctions::FACTORAVERAGE, f, p),
                      [p, f](View in) -> std::optional<Rows> {
                        const Count n = rowsOf(in), lead = firstValueIndex(in), seedRow = lead + p - 1;
                        if (p > n || seedRow >= n) return std::nullopt;
                        const double g = 1 - f;
                        Rows out = allNull(n);
                        double sum = 0.0;
                        for (Count j = lead; j < p; ++j) sum += at(in, j);
                        at(out, seedRow) = sum / static_cast<double>(p);
                        for (Count i = seedRow + 1; i < n; ++i) {
                          at(out, i) = at(View(out), i - 1) * g + at(in, i) * f;
                        }
                        return out;
                      });
    }
  }
}

// ---- ZEROLAGEXPONENTIALMOVINGAVERAGE ------------------------------------------------------------------

constexpr auto* kZeroLagBatch = CFeedkit::ZEROLAGEXPONENTIALMOVINGAVERAGE;
constexpr auto* kZeroLagResumable = CTechnicalFunctions::ZEROLAGEXPONENTIALMOVINGAVERAGE;

TEST(ZeroLagAverage, BatchByHand) {
  // p = 3: k = 0.5, lag 1. The seed is the mean of rows 2 to 4, at row 4.
  const Rows in{9, 9, 8, 4, 6, 10, 2};
  const double row4 = (8 + 4 + 6) / 3.0, row5 = (2 * 10 - 6) * 0.5 + row4 * 0.5;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, row4, row5, (2 * 2 - 10) * 0.5 + row5 * 0.5},
                       runBatch(in, batch(kZeroLagBatch, 3))));
}

TEST(ZeroLagAverage, ResumableByHand) {
  const Rows in{9, 8, 4, 6, 10};
  const double row2 = (4 + 8 + 9) / 3.0, row3 = (2 * 6 - 4) * 0.5 + row2 * 0.5;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, row2, row3, (2 * 10 - 6) * 0.5 + row3 * 0.5},
                       runOnCloses(in, resumable(kZeroLagResumable, 3)).rows));
}

TEST(ZeroLagAverage, TheLagOfAnEvenPeriodIsRoundedDown) {
  // p = 4: lag trunc(3 / 2) = 1, k = 0.4.
  const Rows in{1, 2, 3, 4, 7};
  EXPECT_EQ((2 * 7.0 - 4) * (2.0 / 5) + (10 / 4.0) * (1 - 2.0 / 5),
            runOnCloses(in, resumable(kZeroLagResumable, 4)).rows[4]);
}

TEST(ZeroLagAverage, ResumableSeedIsAddedNewestRowFirst) {
  EXPECT_EQ((1e16 + 2.0) / 3, runOnCloses(Rows{1e16, 1, 1}, resumable(kZeroLagResumable, 3)).rows[2]);
}

TEST(ZeroLagAverage, ResumableSeedAddsEveryRowBackToRowZero) {
  // Row 0 is not null and row 1 is: with a lead of 1 the seed, at row 2, has three rows but the divisor 2.
  // A first value of -1 is the mark of "no value yet", so the null behind it still counts.
  const Rows in{-1, kNull, 5, 9};
  ASSERT_EQ(1, firstValueIndex(in));
  EXPECT_EQ((5 + 0 - 1) / 2.0, runOnCloses(in, resumable(kZeroLagResumable, 2)).rows[2]);
}

TEST(ZeroLagAverage, BatchIsAllNullWithoutARowForTheSeed) {
  const Rows in{1, 2, 3, 4};
  EXPECT_EQ((3.0 + 4.0) / 2, runBatch(in, batch(kZeroLagBatch, 2))[3]);
  for (Count p : {Count{3}, Count{4}, Count{INT32_MAX}, Count{-1}, Count{-2}, Count{INT32_MIN}}) {
    EXPECT_TRUE(sameRows(allNull(4), runBatch(in, batch(kZeroLagBatch, p)))) << p;
  }
}

TEST(ZeroLagAverage, BatchSeedOfPeriodZeroIsZero) {
  // k = 2, lag 0: out[2] = (2 * 3 - 3) * 2 + 0 * (1 - 2).
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 6, 4 * 2 - 6}, runBatch(Rows{1, 2, 3, 4}, batch(kZeroLagBatch, 0))));
}

TEST(ZeroLagAverage, BatchAgreesWithItsTwin) {
  for (Count p : {0, 1, 2, 3, 7, 8}) {
    expectBatch(p, batch(kZeroLagBatch, p), [p](View in) {
      const Count n = rowsOf(in);
      Rows out = allNull(n);
      if (p + 1 >= n) return out;
      const double k = 2.0 / static_cast<double>(p + 1);
      const Count lag = static_cast<Count>(std::trunc(static_cast<double>(p - 1) / 2));
      double sum = 0.0;
      for (Count j = 2; j <= p + 1; ++j) sum += at(in, j);
      at(out, p + 1) = p != 0 ? sum / static_cast<double>(p) : 0.0;
      for (Count i = p + 2; i < n; ++i) {
        at(out, i) = (2 * at(in, i) - at(in, i - lag)) * k + at(View(out), i - 1) * (1 - k);
      }
      return out;
    });
  }
}

TEST(ZeroLagAverage, FirstCallAgreesWithItsTwin) {
  for (Count p : {1, 2, 3, 7, 8}) {
    expectFirstCall(p, resumable(kZeroLagResumable, p), [p](View in) -> std::optional<Rows> {
      const Count n = rowsOf(in), seedRow = firstValueIndex(in) + p - 1;
      if (p > n || seedRow >= n) return std::nullopt;
      const double k = 2.0 / static_cast<double>(p + 1);
      const Count lag = (p - 1) / 2;
      Rows out = allNull(n);
      double sum = 0.0;
      for (Count j = seedRow; j >= 0; --j) sum += at(in, j);
      at(out, seedRow) = sum / static_cast<double>(p);
      for (Count i = seedRow + 1; i < n; ++i) {
        at(out, i) = (2 * at(in, i) - at(in, i - lag)) * k + at(View(out), i - 1) * (1 - k);
      }
      return out;
    });
  }
}

// ---- All of them --------------------------------------------------------------------------------------

struct Named {
  const char* name;
  Operation (*operation)(Count p);
};

const Named kRecursiveAverages[] = {
    {"exponential", [](Count p) { return resumable(CTechnicalFunctions::ExponentialMovingAverage, p); }},
    {"Wilder", [](Count p) { return resumable(CTechnicalFunctions::WellesWilderSmoothing, p); }},
    {"factor", [](Count p) { return resumable(CTechnicalFunctions::FACTORAVERAGE, 0.2, p); }},
    {"zero-lag", [](Count p) { return resumable(kZeroLagResumable, p); }},
};

TEST(RecursiveAverages, RangeOfThePeriod) {
  expectRange(CFeedkit::ExponentialMovingAverage, [](WorkStore&, Source in, Count p, Target out) {
    return CTechnicalFunctions::ExponentialMovingAverage(in, p, out);
  });
  expectRange(CFeedkit::WellesWilderSmoothing, [](WorkStore&, Source in, Count p, Target out) {
    return CTechnicalFunctions::WellesWilderSmoothing(in, p, out);
  });
  // Two batch forms without a range test of their own have tests above.
  for (Count p : kPeriodsOutOfRange) {
    for (const Named& average : kRecursiveAverages) {
      EXPECT_EQ(kNothingDone, runOnCloses(makeSeries(Shape::kWalk, 100), average.operation(p)).status)
          << average.name << ", p " << p;
    }
  }
}

TEST(RecursiveAverages, PeriodOfAllRowsGivesTheSeedRowAlone) {
  for (const Named& average : kRecursiveAverages) {
    const RunResult result = runOnCloses(Rows{3, 4, 8}, average.operation(3));
    EXPECT_EQ(kDone, result.status) << average.name;
    EXPECT_TRUE(sameRows(Rows{kNull, kNull, 15 / 3.0}, result.rows)) << average.name;
  }
}

TEST(RecursiveAverages, BarsOneByOneGiveTheSeriesOfOneCall) {
  for (const Named& average : kRecursiveAverages) {
    for (Count p : {1, 2, 5, 9}) {
      SCOPED_TRACE(::testing::Message() << average.name << ", p " << p);
      expectStreams(average.operation(p));
    }
  }
}

TEST(RecursiveAverages, AResumedCallRecomputesTheLastRowOnly) {
  for (const Named& average : kRecursiveAverages) {
    SCOPED_TRACE(average.name);
    expectRecomputes(1, average.operation(5));
  }
}

TEST(RecursiveAverages, TheSeedBelongsToItsRowNotToTheCall) {
  // The bar of the seed row is edited, and the call comes again.
  for (const Named& average : kRecursiveAverages) {
    TestStore store(3);
    RunResult result{allNull(3)};
    PriceRows prices = closesOnly(Rows{3, 4, 8});
    ASSERT_EQ(kDone, average.operation(3)(store, sourcesOf(prices, 3), {result.rows, &result.slot}));
    prices.close[2] = 2;
    ASSERT_EQ(kDone, average.operation(3)(store, sourcesOf(prices, 3), {result.rows, &result.slot}));
    EXPECT_EQ((3 + 4 + 2) / 3.0, result.rows[2]) << average.name;
  }
}

TEST(RecursiveAverages, APeriodThatHasGrownMeansASeedAtItsOwnRow) {
  // The call starts at the seed row of the longer period, behind rows that the shorter one has written.
  const PriceRows prices = makePrices(Shape::kWalk, 12);
  for (const Named& average : kRecursiveAverages) {
    TestStore store(12);
    RunResult result{allNull(12)};
    ASSERT_EQ(kDone, average.operation(2)(store, sourcesOf(prices, 12), {result.rows, &result.slot}));
    result.slot = 5;
    ASSERT_EQ(kDone, average.operation(8)(store, sourcesOf(prices, 12), {result.rows, &result.slot}));
    const Rows fresh = runAtOnce(prices, average.operation(8)).rows;
    EXPECT_TRUE(sameRows(View(fresh).subspan(7), View(result.rows).subspan(7))) << average.name;
  }
}

TEST(RecursiveAverages, ARowBeforeTheStartThatWasNeverWrittenMeansASeed) {
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  for (const Named& average : kRecursiveAverages) {
    TestStore store(20);
    RunResult result{allNull(20), 12};  // 12 rows are said to be computed, but none is there
    ASSERT_EQ(kDone, average.operation(4)(store, sourcesOf(prices, 20), {result.rows, &result.slot}));
    EXPECT_TRUE(sameRows(runAtOnce(prices, average.operation(4)).rows, result.rows)) << average.name;
  }
}

TEST(RecursiveAverages, AnInputWithoutRowsDoesNothing) {
  for (const Named& average : kRecursiveAverages) {
    EXPECT_EQ(kNothingDone, runOnCloses({}, average.operation(1)).status) << average.name;
  }
}

TEST(RecursiveAverages, RowsAreCappedByThoseOfTheOutput) {
  const Rows in = makeSeries(Shape::kWalk, 30);
  for (const Named& average : kRecursiveAverages) {
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
