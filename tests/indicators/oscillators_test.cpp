#include "indicators/oscillators.hpp"

#include "indicators/oscillator_twins.hpp"
#include "indicators/price_bases.hpp"

namespace brindlewort::testing {
namespace {

// ---- Relative strength index --------------------------------------------------------------------------

Operation livingRsi(Count p) {
  return [p](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::RelativeStrengthIndex(store, prices.close, p, out);
  };
}
Rows batchRsi(const Rows& in, Count p) {
  return batchRows(in.size(), [&](Out out) { CFeedkit::RelativeStrengthIndex(in, p, out); });
}

/// The formula step by step; `living` picks the form.
Rows rsiTwin(const Rows& in, Count p, bool living) {
  const Count n = countOf(in);
  Rows out(in.size(), kNull);
  const Count block = living ? firstValueIndex(in) + p : p + 1;
  if (p < 1 || (living ? p > n : p >= n) || block >= n) return out;
  double gain = 0.0, loss = 0.0;
  const auto addMove = [&](Count j, double& up, double& down) {
    const double now = nz(in[j]), before = nz(in[j - 1]);
    if (now > before) up += now - before;
    if (now < before) down += before - now;
  };
  for (Count j = block - p + 1; j <= block; ++j) addMove(j, gain, loss);
  gain /= static_cast<double>(p);
  loss /= static_cast<double>(p);
  if (living) out[block] = 100.0 - 100.0 / (1.0 + (loss == 0.0 ? 0.0 : gain / loss));
  for (Count i = block + 1; i < n; ++i) {
    double up = 0.0, down = 0.0;
    addMove(i, up, down);
    gain = (gain * static_cast<double>(p - 1) + up) / static_cast<double>(p);
    loss = (loss * static_cast<double>(p - 1) + down) / static_cast<double>(p);
    double ratioLoss = loss;
    if (ratioLoss == 0.0) ratioLoss = gain;
    const double rs = gain == 0.0 ? 0.0 : gain / ratioLoss;
    out[i] = 100.0 - 100.0 / (1.0 + rs);
  }
  return out;
}

TEST(RelativeStrengthIndex, BatchByHand) {
  // Rows 2 and 3 move +2 and -1: averages 1 and 0.5 at row 3, which stays null. Row 4 moves +3: averages
  // (1 * 1 + 3) / 2 = 2 and 0.25, ratio 8. Row 5 moves -1: averages 1 and 0.625, ratio 1.6.
  const Rows expected = {kNull, kNull, kNull, kNull, 100.0 - 100.0 / 9.0, 100.0 - 100.0 / 2.6};
  EXPECT_TRUE(sameRows(expected, batchRsi({0, 10, 12, 11, 14, 13}, 2)));
}

TEST(RelativeStrengthIndex, ResumableByHandStoresTheBlockRow) {
  // Rows 1 and 2 move +2 and -1: ratio 2 at row 2. Row 3 moves +3: averages 2 and 0.25, ratio 8.
  const RunResult result = runLiving({10, 12, 11, 14}, livingRsi(2));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 100.0 - 100.0 / 3.0, 100.0 - 100.0 / 9.0}, result.rows));
}

TEST(RelativeStrengthIndex, IsTheRuleOnAllInputs) {
  forAllSeries({1, 2, 3, 5}, [](const Rows& in, Count p) {
    EXPECT_TRUE(sameRows(rsiTwin(in, p, false), batchRsi(in, p)));
    EXPECT_TRUE(sameRows(rsiTwin(in, p, true), runLiving(in, livingRsi(p)).rows));
  });
}

TEST(RelativeStrengthIndex, RisingSeriesReadsFiftyOnAllRecursiveRows) {
  const Rows rising = makeSeries(Shape::kRising, 30);
  const Rows batch = batchRsi(rising, 5);
  for (std::size_t i = 7; i < 30; ++i) EXPECT_EQ(batch[i], 50.0) << i;
  const Rows living = runLiving(rising, livingRsi(5)).rows;
  EXPECT_EQ(living[5], 0.0) << "the block row has no ratio without a loss";
  for (std::size_t i = 6; i < 30; ++i) EXPECT_EQ(living[i], 50.0) << i;
}

TEST(RelativeStrengthIndex, FlatSeriesReadsZero) {
  const Rows flat = makeSeries(Shape::kFlat, 20);
  EXPECT_EQ(batchRsi(flat, 4)[6], 0.0);
  EXPECT_EQ(runLiving(flat, livingRsi(4)).rows[19], 0.0);
}

TEST(RelativeStrengthIndex, SlotBecomesTheLastWrittenRow) {
  EXPECT_EQ(runLiving(makeSeries(Shape::kWalk, 20), livingRsi(4)).slot, 19);
}

TEST(RelativeStrengthIndex, SlotOfAllRowsTakesTheRowBeforeTheLastAsBase) {
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  TestStore store(20);
  RunResult result{Rows(20, kNull)};
  livingRsi(4)(store, sourcesOf(prices, 20), {result.rows, &result.slot});
  const Rows once = result.rows;
  result.rows[19] = kNull;
  result.slot = 20;
  EXPECT_EQ(livingRsi(4)(store, sourcesOf(prices, 20), {result.rows, &result.slot}), kDone);
  EXPECT_TRUE(sameRows(once, result.rows));
  EXPECT_EQ(result.slot, 20) << "a higher slot is left";
  result.slot = 25;
  EXPECT_EQ(livingRsi(4)(store, sourcesOf(prices, 20), {result.rows, &result.slot}), kNothingDone);
}

TEST(RelativeStrengthIndex, BaseWithoutAveragesIsAFirstCall) {
  // The output resumes, but the averages of this period were never formed.
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  TestStore store(20);
  RunResult result{Rows(20, kNull)};
  result.slot = 19;
  EXPECT_EQ(livingRsi(4)(store, sourcesOf(prices, 20), {result.rows, &result.slot}), kDone);
  EXPECT_TRUE(sameRows(rsiTwin(prices.close, 4, true), result.rows));
}

TEST(RelativeStrengthIndex, Streams) {
  expectStreams(livingRsi(5));
}

// ---- Momentum -----------------------------------------------------------------------------------------

Operation livingMomentum(Count p) {
  return [p](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::MomentumOscillator(prices.close, p, out);
  };
}
Rows batchMomentum(const Rows& in, Count p) {
  return batchRows(in.size(), [&](Out out) { CFeedkit::MomentumOscillator(in, p, out); });
}

TEST(MomentumOscillator, ByHand) {
  // (12 - 8) / 8 * 100 + 100 = 150; a base of 0 gives 0; (6 - 12) / 12 * 100 + 100 = 50.
  const Rows in = {5, 5, 8, 0, 12, 7, 6};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 150, 0, 50}, batchMomentum(in, 2)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 160, 0, 150, 0, 50}, runLiving(in, livingMomentum(2)).rows));
}

TEST(MomentumOscillator, IsTheRuleOnAllInputs) {
  forAllSeries({1, 2, 3, 5}, [](const Rows& in, Count p) {
    const Count n = countOf(in), lead = firstValueIndex(in);
    Rows batch(in.size(), kNull), living(in.size(), kNull);
    for (Count i = 0; i < n; ++i) {
      if (i < p) continue;
      const double base = nz(in[i - p]);
      const double value = base == 0.0 ? 0.0 : (nz(in[i]) - base) / base * 100.0 + 100.0;
      if (p < n && i >= p + 2) batch[i] = value;
      if (p <= n && i >= lead + p) living[i] = value;
    }
    EXPECT_TRUE(sameRows(batch, batchMomentum(in, p)));
    EXPECT_TRUE(sameRows(living, runLiving(in, livingMomentum(p)).rows));
  });
}

TEST(MomentumOscillator, Streams) {
  expectStreams(livingMomentum(5));
}

// ---- Chande momentum ----------------------------------------------------------------------------------

Operation livingChande(Count p) {
  return [p](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::ChandeMomentumOscillator(prices.close, p, out);
  };
}
Rows batchChande(const Rows& in, Count p) {
  return batchRows(in.size(), [&](Out out) { CFeedkit::ChandeMomentumOscillator(in, p, out); });
}

double chandeTwin(const Rows& in, Count p, Count i) {
  double up = 0.0, down = 0.0;
  for (Count j = i - p + 1; j <= i; ++j) {
    const double now = nz(in[j]), before = nz(in[j - 1]);
    if (now > before) up += now - before;
    if (now < before) down += before - now;
  }
  return up + down == 0.0 ? 0.0 : (up - down) / (up + down) * 100.0;
}

TEST(ChandeMomentumOscillator, ByHand) {
  // Row 3: +2 and -1 give (2 - 1) / 3 * 100. Row 4: -1 and -3 give -100. Row 5: -3 and 0 the same; row 6:
  // none.
  const Rows in = {7, 10, 12, 11, 8, 8, 8};
  const double third = 1.0 / 3.0 * 100.0;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, third, -100, -100, 0}, batchChande(in, 2)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 100, third, -100, -100, 0}, runLiving(in, livingChande(2)).rows));
}

TEST(ChandeMomentumOscillator, IsTheRuleOnAllInputs) {
  forAllSeries({1, 2, 3, 5, 9}, [](const Rows& in, Count p) {
    const Count n = countOf(in), lead = firstValueIndex(in);
    Rows batch(in.size(), kNull), living(in.size(), kNull);
    for (Count i = p; i < n; ++i) {
      if (i >= p + 1) batch[i] = chandeTwin(in, p, i);
      if (i >= lead + p) living[i] = chandeTwin(in, p, i);
    }
    EXPECT_TRUE(sameRows(batch, batchChande(in, p)));
    EXPECT_TRUE(sameRows(living, runLiving(in, livingChande(p)).rows));
  });
}

TEST(ChandeMomentumOscillator, Streams) {
  expectStreams(livingChande(5));
}

// ---- Price oscillator ---------------------------------------------------------------------------------

Operation livingPriceOscillator(Count a, Count b, Count type) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::PriceOscillator(store, prices.close, a, b, type, out);
  };
}
Rows batchPriceOscillator(const Rows& in, Count a, Count b, Count type) {
  return batchRows(in.size(), [&](Out out) { CFeedkit::PriceOscillator(in, a, b, type, out); });
}

TEST(PriceOscillator, TheTwoFormsDivideByDifferentAverages) {
  // Averages of 1 and 3 rows. Row 4 of the batch form: short 8, long (2 + 5 + 8) / 3 = 5: 3 / 5 * 100 = 60.
  const Rows in = {1, 9, 2, 5, 8};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, (8.0 - 5.0) / 5.0 * 100.0},
                       batchPriceOscillator(in, 1, 3, kSimple)));
  // Resumable: row 2: short 2, long 4: -2 / 2; row 3: short 5, long 16 / 3; row 4: short 8, long 5: 3 / 8.
  const double row3 = (5.0 - 16.0 / 3.0) / 5.0 * 100.0;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, -100, row3, 37.5},
                       runLiving(in, livingPriceOscillator(1, 3, kSimple)).rows, nearlySame));
}

TEST(PriceOscillator, SwapsPeriodsThatStandTheOtherWayRound) {
  const Rows in = makeSeries(Shape::kWalk, 30);
  EXPECT_TRUE(sameRows(batchPriceOscillator(in, 3, 7, kWeighted), batchPriceOscillator(in, 7, 3, kWeighted)));
  EXPECT_TRUE(sameRows(runLiving(in, livingPriceOscillator(3, 7, kWeighted)).rows,
                       runLiving(in, livingPriceOscillator(7, 3, kWeighted)).rows));
}

TEST(PriceOscillator, ResumableShortAverageOfZeroGivesAnInfinity) {
  // Row 2: short average (1 row) 0, long average (3 rows) 1.
  const Rows rows = runLiving({1, 2, 0}, livingPriceOscillator(1, 3, kSimple)).rows;
  EXPECT_EQ(rows[2], -kInf);
}

TEST(PriceOscillator, LongAverageOfZeroIsNullInBatchAndZeroResumable) {
  const Rows in = {1, 0, 0, 0, 0, 0};
  EXPECT_TRUE(allNull(batchPriceOscillator(in, 1, 2, kSimple)));
  EXPECT_TRUE(
      sameRows(Rows{kNull, -kInf, 0, 0, 0, 0}, runLiving(in, livingPriceOscillator(1, 2, kSimple)).rows));
}

TEST(PriceOscillator, IsTheRuleOnAllInputs) {
  forAllSeries({1, 2, 4}, [](const Rows& in, Count p) {
    for (Count type : {kSimple, kExponential, kWeighted, kWilder}) {
      const Count n = countOf(in), shortPeriods = p, longPeriods = p + 2;
      Rows batch(in.size(), kNull), living(in.size(), kNull);
      if (longPeriods < n) {
        const Rows s = batchAverage(in, shortPeriods, type), l = batchAverage(in, longPeriods, type);
        for (Count i = longPeriods + 1; i < n; ++i) {
          if (nz(l[i]) != 0.0) batch[i] = (nz(s[i]) - nz(l[i])) / nz(l[i]) * 100.0;
        }
      }
      if (longPeriods <= n) {
        const Rows s = livingAverage(in, shortPeriods, type), l = livingAverage(in, longPeriods, type);
        for (Count i = std::max({firstValueIndex(in), firstValueIndex(s), firstValueIndex(l)}); i < n; ++i) {
          living[i] = nz(l[i]) == 0.0 ? 0.0 : (nz(s[i]) - nz(l[i])) / nz(s[i]) * 100.0;
        }
      }
      EXPECT_TRUE(sameRows(batch, batchPriceOscillator(in, shortPeriods, longPeriods, type)));
      EXPECT_TRUE(
          sameRows(living, runLiving(in, livingPriceOscillator(longPeriods, shortPeriods, type)).rows));
    }
  });
}

TEST(PriceOscillator, Streams) {
  // Over windows of zeros the short average, which is the divisor, is 0 or what the last bits of a slid sum
  // leave of it, depending on the row where the sum was formed.
  for (Count type : kAllTypes) expectStreams(livingPriceOscillator(3, 6, type), {Shape::kZeros});
}

// ---- Detrended price oscillator -----------------------------------------------------------------------

Operation livingDetrended(Count p, Count type) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::DetrendedPriceOscillator(store, prices.close, p, type, out);
  };
}
Rows batchDetrended(const Rows& in, Count p, Count type) {
  return batchRows(in.size(), [&](Out out) { CFeedkit::DetrendedPriceOscillator(in, p, type, out); });
}

TEST(DetrendedPriceOscillator, ByHand) {
  // Averages of 2 rows, shifted by 2. Batch: the first average, (2 + 6) / 2 = 4, stands at row 3.
  const Rows in = {9, 2, 2, 6, 8, 20};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 2, 6, 8, 20.0 - 4.0}, batchDetrended(in, 2, kSimple)));
  // Resumable: averages 5.5, 2, 4, 7 from row 1; rows from 2, where the average of row 0 counts 0.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 2, 0.5, 6, 16}, runLiving(in, livingDetrended(2, kSimple)).rows));
}

TEST(DetrendedPriceOscillator, BatchWithFewerThanTwicePeriodsRowsIsZeroNotNull) {
  const Rows in = makeSeries(Shape::kWalk, 9);
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 0, 0, 0, 0, 0, 0}, batchDetrended(in, 5, kSimple)));
  EXPECT_NE(batchDetrended(makeSeries(Shape::kWalk, 10), 5, kSimple)[9], 0.0);
}

TEST(DetrendedPriceOscillator, IsTheRuleOnAllInputs) {
  forAllSeries({1, 2, 3, 5}, [](const Rows& in, Count p) {
    for (Count type : {kSimple, kExponential, kWeighted}) {
      const Count n = countOf(in), shift = p / 2 + 1;
      Rows batch(in.size(), kNull), living(in.size(), kNull);
      if (p < n) {
        const Rows m = batchAverage(in, p, type);
        for (Count i = 1; i < n; ++i) {
          if (i - shift >= 0) batch[i] = nz(in[i]) - nz(m[i - shift]);
        }
        for (Count i = 1; i < n && n < 2 * p; ++i) batch[i] = 0.0;
      }
      if (p <= n) {
        const Rows m = livingAverage(in, p, type);
        const Count first = std::max(firstValueIndex(in), firstValueIndex(m)) + shift;
        for (Count i = shift; i < n && first < n; ++i) living[i] = nz(in[i]) - nz(m[i - shift]);
      }
      EXPECT_TRUE(sameRows(batch, batchDetrended(in, p, type)));
      EXPECT_TRUE(sameRows(living, runLiving(in, livingDetrended(p, type)).rows));
    }
  });
}

TEST(DetrendedPriceOscillator, AResumedCallWritesFromTheLastRowOn) {
  Rows in = {9, 2, 2, 6, 8, 20};
  TestStore store(in.size());
  Rows out(in.size(), kNull);
  std::int32_t slot = -1;
  const Operation operation = livingDetrended(2, kSimple);
  operation(store, sourcesOf(closesOnly(in), in.size()), {out, &slot});
  // Averages of rows that are computed stay, and so do the rows of the result in front of the last one.
  for (double& x : in) x += 100.0;
  operation(store, sourcesOf(closesOnly(in), in.size()), {out, &slot});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 2, 0.5, 6, 116}, out));
}

TEST(DetrendedPriceOscillator, Streams) {
  for (Count type : kAllTypes) expectStreams(livingDetrended(6, type));
}

// ---- TRIX ---------------------------------------------------------------------------------------------

Operation livingTrix(Count p) {
  return [p](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::TRIX(store, prices.close, p, out);
  };
}
Rows batchTrix(const Rows& in, Count p) {
  return batchRows(in.size(), [&](Out out) { CFeedkit::TRIX(in, p, out); });
}

TEST(TRIX, PeriodOneIsTheChangeOfTheSeries) {
  // An average over 1 row is the row itself: (12 - 10) / 10 * 100 = 20, and so on.
  EXPECT_TRUE(sameRows(Rows{kNull, 20, -50, -100, 0}, runLiving({10, 12, 6, 0, 5}, livingTrix(1)).rows));
}

TEST(TRIX, PreviousValueOfZeroIsNullInBatchAndZeroResumable) {
  const Rows in(12, 0.0);
  EXPECT_TRUE(allNull(batchTrix(in, 2)));
  const Rows living = runLiving(in, livingTrix(2)).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 0, 0, 0, 0, 0, 0, 0, 0}, living));
}

TEST(TRIX, IsTheRuleOnAllInputs) {
  forAllSeries({1, 2, 3, 5}, [](const Rows& in, Count p) {
    const Count n = countOf(in);
    Rows batch(in.size(), kNull), living(in.size(), kNull);
    const Rows e =
        batchAverage(batchAverage(batchAverage(in, p, kExponential), p, kExponential), p, kExponential);
    for (Count i = p + 2; i < n; ++i) {
      const double before = nz(e[i - 1]);
      if (before != 0.0) batch[i] = (nz(e[i]) - before) / before * 100.0;
    }
    if (p <= n) {
      const Rows m =
          livingAverage(livingAverage(livingAverage(in, p, kExponential), p, kExponential), p, kExponential);
      for (Count i = firstValueIndex(m) + 1; i < n; ++i) {
        const double before = nz(m[i - 1]);
        living[i] = before == 0.0 ? 0.0 : (nz(m[i]) - before) / before * 100.0;
      }
    }
    EXPECT_TRUE(sameRows(batch, batchTrix(in, p)));
    EXPECT_TRUE(sameRows(living, runLiving(in, livingTrix(p)).rows));
  });
}

TEST(TRIX, Streams) {
  expectStreams(livingTrix(4));
}

// ---- Vertical horizontal filter -----------------------------------------------------------------------

Operation livingFilter(Count p) {
  return [p](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::VerticalHorizontalFilter(prices.close, p, out);
  };
}
Rows batchFilter(const Rows& in, Count p) {
  return batchRows(in.size(), [&](Out out) { CFeedkit::VerticalHorizontalFilter(in, p, out); });
}

/// Rows from `first`; `stop` is where the scan before the first window is taken to have stopped.
Rows filterTwin(const Rows& in, Count p, Count first, Count stop, bool stepIntoRowZero) {
  const Count n = countOf(in);
  Rows out(in.size(), kNull);
  for (Count i = first; i < n; ++i) {
    double high = 0.0, low = stop < n ? nz(in[stop]) : 0.0, path = 0.0;
    Count j = i - p + 1;
    for (; j <= i; ++j) {
      const double x = nz(in[j]);
      if (x < low) {
        low = x;
      } else if (x > high) {
        high = x;
      }
      if (j > 0 || stepIntoRowZero) path += std::fabs(x - nz(in[j - 1]));
    }
    stop = j;
    out[i] = std::fabs(path != 0.0 ? (high - low) / path : 0.0);
  }
  return out;
}

TEST(VerticalHorizontalFilter, ByHand) {
  // Batch, windows of 2 rows. Row 3: rows 2 and 3 are 4, 6; the low starts from row 4, which is 5, so 4
  // lowers it; path |4 - 1| + 2 = 5: (6 - 4) / 5. Row 4: 6, 5 with path 3: 1 / 3.
  const Rows in = {1, 1, 4, 6, 5};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 2.0 / 5.0, 1.0 / 3.0}, batchFilter(in, 2)));
  // Resumable from row 1: rows 0, 1 do not move: 0. Row 2: (4 - 1) / 3. Row 3: (6 - 4) / 5. Row 4: 1 / 3.
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 1, 2.0 / 5.0, 1.0 / 3.0}, runLiving(in, livingFilter(2)).rows));
}

TEST(VerticalHorizontalFilter, RowThatLowersTheLowIsNotTestedForTheHigh) {
  // The first batch window, rows 2 and 3, falls 9, 8 below the 10 of row 4: both lower the low, the high
  // stays 0.
  EXPECT_EQ(batchFilter({1, 9, 9, 8, 10}, 2)[3], std::fabs((0.0 - 8.0) / 1.0));
  // Without a row 4 the low starts from 0: (9 - 0) / 1.
  EXPECT_EQ(batchFilter({1, 9, 9, 8}, 2)[3], 9.0);
}

TEST(VerticalHorizontalFilter, HighOfASeriesBelowZeroIsZero) {
  // Rows 3, 4: low -5, high 0, path 1 + 1.
  EXPECT_EQ(batchFilter({-1, -2, -3, -4, -5}, 2)[4], std::fabs((0.0 - -5.0) / 2.0));
}

TEST(VerticalHorizontalFilter, ResumableStepIntoTheFirstValueCountsOnlyBehindALead) {
  // Lead 0: rows 0, 1 have the one step 5 -> 7. Lead 1: the step from the null, read as 0, into 5 counts as
  // well.
  EXPECT_EQ(runLiving({5, 7}, livingFilter(2)).rows[1], 1.0);
  EXPECT_EQ(runLiving({kNull, 5, 7}, livingFilter(2)).rows[2], 2.0 / 7.0);
}

TEST(VerticalHorizontalFilter, IsTheRuleOnAllInputs) {
  forAllSeries({1, 2, 3, 5}, [](const Rows& in, Count p) {
    const Count n = countOf(in), first = firstValueIndex(in) + p - 1;
    const Rows none(in.size(), kNull);
    EXPECT_TRUE(sameRows(p < n ? filterTwin(in, p, p + 1, p + 2, true) : none, batchFilter(in, p)));
    EXPECT_TRUE(sameRows(p <= n ? filterTwin(in, p, first, first, false) : none,
                         runLiving(in, livingFilter(p)).rows));
  });
}

TEST(VerticalHorizontalFilter, IsTheRuleOverManyRows) {
  // More rows, and a window of more rows, than are worked together.
  for (Shape shape : {Shape::kWalk, Shape::kNullGaps, Shape::kSteps, Shape::kNegative}) {
    const Rows in = makePrices(shape, 5000).close;
    for (Count p : {1, 14, 2100}) {
      const Count first = firstValueIndex(in) + p - 1;
      EXPECT_TRUE(sameRows(filterTwin(in, p, p + 1, p + 2, true), batchFilter(in, p))) << p;
      EXPECT_TRUE(sameRows(filterTwin(in, p, first, first, false), runLiving(in, livingFilter(p)).rows)) << p;
    }
  }
}

TEST(VerticalHorizontalFilter, Streams) {
  expectStreams(livingFilter(5));
}

// ---- Commodity channel index --------------------------------------------------------------------------

Operation livingChannel(Count p, Count type) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::CommodityChannelIndex(store, prices, p, type, out);
  };
}
Rows batchChannel(const PriceRows& prices, Count p, Count type) {
  return batchRows(prices.close.size(),
                   [&](Out out) { CFeedkit::CommodityChannelIndex(viewsOf(prices), p, type, out); });
}

TEST(CommodityChannelIndex, ResumableByHand) {
  // Typical prices 3, 6, 6, 12. Row 1: average 4.5, distances 1.5 and 1.5. Row 2: no distance. Row 3:
  // average 9.
  const Rows rows = runLiving({3, 6, 6, 12}, livingChannel(2, kSimple)).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, 1.5 / (1.5 * 0.015), 0, 3.0 / (3.0 * 0.015)}, rows));
}

TEST(CommodityChannelIndex, BatchAddsOneRowMoreEachFromItsOwnAverage) {
  // Typical prices 3, 3, 6, 6, 12 over 2 rows: averages from row 3: (6 + 6) / 2 = 6, 9. Row 3 adds |3 - 0|,
  // |6 - 0| and 0, divided by 2; row 4 adds 6, 0 and 3.
  const Rows rows = batchChannel(closesOnly({3, 3, 6, 6, 12}), 2, kSimple);
  EXPECT_TRUE(isNull(rows[2]) || rows[2] > 0.0);
  EXPECT_EQ(rows[3], 0.0 / (4.5 * 0.015));
  EXPECT_EQ(rows[4], 3.0 / (4.5 * 0.015));
}

TEST(CommodityChannelIndex, FlatPricesReadZeroOnceAllRowsHaveAverages) {
  const PriceRows flat = makePrices(Shape::kFlat, 30);
  EXPECT_EQ(batchChannel(flat, 4, kSimple)[29], 0.0);
  EXPECT_EQ(runAtOnce(flat, livingChannel(4, kSimple)).rows[29], 0.0);
}

TEST(CommodityChannelIndex, IsTheRuleOnAllInputs) {
  forAllPrices({1, 2, 3, 5}, [](const PriceRows& prices, Count p) {
    for (Count type : {kSimple, kExponential, kWeighted, kWilder}) {
      const Count n = countOf(prices.close);
      const double periods = static_cast<double>(p);
      Rows batch(prices.close.size(), kNull), living(prices.close.size(), kNull);
      if (p < n) {
        const Rows tp =
            batchRows(prices.close.size(), [&](Out out) { CFeedkit::TypicalPrice(viewsOf(prices), out); });
        const Rows m = batchAverage(tp, p, type);
        for (Count i = static_cast<Count>(periods * 1.5); i < n; ++i) {
          double sum = 0.0, distance = 0.0;
          for (Count j = i - p; j <= i; ++j) {
            distance = std::fabs(nz(tp[j]) - nz(m[j]));
            sum += distance;
          }
          const double deviation = sum / periods;
          batch[i] = deviation == 0.0 ? distance : (nz(tp[i]) - nz(m[i])) / (deviation * 0.015);
        }
      }
      if (p <= n) {
        const Rows tp = runAtOnce(prices, [](WorkStore&, const PriceSources& sources, Target out) {
                          return CTechnicalFunctions::TypicalPrice(sources, out);
                        }).rows;
        const Rows m = livingAverage(tp, p, type);
        for (Count i = std::max(firstValueIndex(tp), firstValueIndex(m)); i < n; ++i) {
          double sum = 0.0;
          for (Count j = i - p + 1; j <= i; ++j) sum += std::fabs(nz(m[i]) - nz(tp[j]));
          const double deviation = sum / periods;
          living[i] = deviation == 0.0 ? 0.0 : (nz(tp[i]) - nz(m[i])) / (deviation * 0.015);
        }
      }
      EXPECT_TRUE(sameRows(batch, batchChannel(prices, p, type)));
      EXPECT_TRUE(sameRows(living, runAtOnce(prices, livingChannel(p, type)).rows));
    }
  });
}

TEST(CommodityChannelIndex, Streams) {
  for (Count type : kAllTypes) expectStreams(livingChannel(5, type));
}

// ---- Ranges -------------------------------------------------------------------------------------------

TEST(Oscillators, PeriodsOutOfRangeGiveNothing) {
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  for (Count p : kHopelessPeriods) {
    SCOPED_TRACE(p);
    EXPECT_TRUE(allNull(batchRsi(prices.close, p)));
    EXPECT_TRUE(allNull(batchMomentum(prices.close, p)));
    EXPECT_TRUE(allNull(batchChande(prices.close, p)));
    EXPECT_TRUE(allNull(batchPriceOscillator(prices.close, 3, p, kSimple)));
    EXPECT_TRUE(allNull(batchPriceOscillator(prices.close, p, 3, kSimple)));
    EXPECT_TRUE(allNull(batchDetrended(prices.close, p, kSimple)));
    EXPECT_TRUE(allNull(batchTrix(prices.close, p)));
    EXPECT_TRUE(allNull(batchFilter(prices.close, p)));
    EXPECT_TRUE(allNull(batchChannel(prices, p, kSimple)));
    for (const Operation& operation :
         {livingRsi(p), livingMomentum(p), livingChande(p), livingPriceOscillator(p, 3, kSimple),
          livingPriceOscillator(3, p, kSimple), livingDetrended(p, kSimple), livingTrix(p), livingFilter(p),
          livingChannel(p, kSimple)}) {
      expectNothingDone(runAtOnce(prices, operation));
    }
  }
}

TEST(Oscillators, InputWithoutRowsGivesNothing) {
  for (const Operation& operation :
       {livingRsi(1), livingMomentum(1), livingChande(1), livingPriceOscillator(1, 2, kSimple),
        livingDetrended(1, kSimple), livingTrix(1), livingFilter(1), livingChannel(1, kSimple)}) {
    expectNothingDone(runAtOnce(makePrices(Shape::kWalk, 0), operation));
  }
}

TEST(Oscillators, PeriodOfAllRowsIsTakenByTheResumableFormOnly) {
  const Rows in = makeSeries(Shape::kWalk, 10);
  EXPECT_TRUE(allNull(batchFilter(in, 10)));
  EXPECT_EQ(runLiving(in, livingFilter(10)).status, kDone);
  EXPECT_EQ(runLiving(in, livingFilter(10)).slot, 10);
  EXPECT_EQ(runLiving(in, livingChande(10)).status, kNothingDone) << "its first row would be row 10";
}

}  // namespace
}  // namespace brindlewort::testing
