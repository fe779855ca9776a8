#include "indicators/cycles.hpp"

#include <array>

#include "indicators/oscillator_twins.hpp"

namespace brindlewort::testing {
namespace {

PriceRows barsOf(const Rows& high, const Rows& low) {
  return {low, high, low, low, Rows(low.size(), 1.0)};
}

// ---- Fractal chaos ------------------------------------------------------------------------------------

Operation livingFractal(Count p = 5) {
  return [p](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::FractalChaosOscillator(prices, p, out);
  };
}
Rows batchFractal(const PriceRows& prices, Count p = 5) {
  return batchRows(prices.close.size(),
                   [&](Out out) { CFeedkit::FractalChaosOscillator(viewsOf(prices), p, out); });
}

TEST(FractalChaosOscillator, TopAndBottomByHand) {
  // Rows 1 to 5 have their top in the middle, rows 4 to 8 their bottom; row 0 is not looked at.
  const PriceRows bars = barsOf({9, 3, 4, 6, 5, 4, 3, 4, 5}, {8, 1, 1, 1, 2, 2, 1, 2, 2});
  EXPECT_TRUE(sameRows(Rows{0, 0, 0, 0, 0, 1, 0, 0, -1}, batchFractal(bars)));
  EXPECT_TRUE(
      sameRows(Rows{kNull, kNull, kNull, kNull, 0, 1, 0, 0, -1}, runAtOnce(bars, livingFractal()).rows));
}

TEST(FractalChaosOscillator, EqualRowsBehindTheMiddleStillMakeATopThoseBeforeItDoNot) {
  const Rows low = {0, 1, 1, 1, 1, 1};
  EXPECT_EQ(batchFractal(barsOf({9, 3, 4, 6, 6, 6}, low))[5], 1.0);
  EXPECT_EQ(batchFractal(barsOf({9, 3, 6, 6, 5, 4}, low))[5], 0.0);
  EXPECT_EQ(batchFractal(barsOf({9, 6, 3, 6, 5, 4}, low))[5], 0.0);
}

TEST(FractalChaosOscillator, RowThatIsBothIsABottomInBatchAndATopResumable) {
  const PriceRows bars = barsOf({9, 3, 4, 6, 5, 4}, {9, 3, 2, 1, 2, 3});
  EXPECT_EQ(batchFractal(bars)[5], -1.0);
  EXPECT_EQ(runAtOnce(bars, livingFractal()).rows[5], 1.0);
}

TEST(FractalChaosOscillator, BatchStartsAtZeroNotNull) {
  for (std::size_t n = 0; n <= 5; ++n) {
    EXPECT_TRUE(sameRows(Rows(n, 0.0), batchFractal(makePrices(Shape::kWalk, static_cast<int>(n)))));
  }
  EXPECT_EQ(runAtOnce(makePrices(Shape::kWalk, 4), livingFractal()).status, kNothingDone);
}

TEST(FractalChaosOscillator, PeriodHasNoEffect) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  for (Count p : kHopelessPeriods) {
    EXPECT_TRUE(sameRows(batchFractal(prices, 3), batchFractal(prices, p)));
    EXPECT_TRUE(sameRows(runAtOnce(prices, livingFractal(3)).rows, runAtOnce(prices, livingFractal(p)).rows));
  }
}

TEST(FractalChaosOscillator, IsTheRuleOnAllInputs) {
  forAllPrices({8}, [](const PriceRows& prices, Count) {
    const Count n = countOf(prices.close);
    Rows batch(prices.close.size(), 0.0), living(prices.close.size(), kNull);
    for (Count i = 4; i < n; ++i) {
      const auto h = [&](Count back) { return nz(prices.high[i - back]); };
      const auto raw = [&](Count back) { return prices.low[i - back]; };
      const auto l = [&](Count back) { return nz(raw(back)); };
      const bool top = h(4) < h(2) && h(3) < h(2) && h(1) <= h(2) && h(0) <= h(2);
      if (i >= 5 && top) batch[i] = 1.0;
      if (i >= 5 && raw(4) > raw(2) && raw(3) > raw(2) && raw(1) >= raw(2) && raw(0) >= raw(2))
        batch[i] = -1.0;
      living[i] = 0.0;
      if (top) {
        living[i] = 1.0;
      } else if (l(4) > l(2) && l(3) > l(2) && l(1) >= l(2) && l(0) >= l(2)) {
        living[i] = -1.0;
      }
    }
    EXPECT_TRUE(sameRows(batch, batchFractal(prices)));
    EXPECT_TRUE(sameRows(living, runAtOnce(prices, livingFractal()).rows));
  });
}

TEST(FractalChaosOscillator, Streams) {
  expectStreams(livingFractal());
}

// ---- Prime numbers ------------------------------------------------------------------------------------

Operation livingPrimes() {
  return [](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::PrimeNumberOscillator(prices.close, out);
  };
}
Rows batchPrimes(const Rows& in) {
  return batchRows(in.size(), [&](Out out) { CFeedkit::PrimeNumberOscillator(in, out); });
}

bool isPrimeByDivision(std::int64_t v) {
  for (std::int64_t divisor = 2; v > 3 && divisor * divisor <= v; ++divisor) {
    if (v % divisor == 0) return false;
  }
  return true;
}

/// The formula step by step, for values of moderate size.
Rows primesTwin(const Rows& in, bool living) {
  Rows out(in.size(), kNull);
  double lower = 0.0, upper = 0.0;
  for (Count i = living ? firstValueIndex(in) : 1; i < countOf(in); ++i) {
    double v = nz(in[i]);
    if (!living) v = std::trunc(v);
    if (v < 10.0) v = living ? v * 10.0 : v * v;
    if (living && std::isnan(v)) out[i] = v;
    if (!(std::fabs(v) < 9007199254740992.0)) continue;
    const auto start = static_cast<std::int64_t>(v);
    const double last = living ? 2.0 * v : static_cast<double>(2 * start);
    for (std::int64_t q = start; q >= 1; --q) {
      if (isPrimeByDivision(q)) {
        lower = static_cast<double>(q);
        break;
      }
    }
    for (std::int64_t q = start; static_cast<double>(q) <= last; ++q) {
      if (isPrimeByDivision(q)) {
        upper = static_cast<double>(q);
        break;
      }
    }
    const double a = v - upper, b = v - lower;
    out[i] = std::fabs(b) > std::fabs(a) ? a : b;
  }
  return out;
}

TEST(PrimeNumberOscillator, SevenIsTestedAroundItsSquareInBatchAndAroundSeventyResumable) {
  // 49 lies between 47 and 53; 70 between 67 and 71.
  EXPECT_EQ(batchPrimes({7, 7})[1], 49.0 - 47.0);
  EXPECT_EQ(runLiving({7.0}, livingPrimes()).rows[0], 70.0 - 71.0);
}

TEST(PrimeNumberOscillator, OnATieTheLowerPrimeCounts) {
  EXPECT_EQ(batchPrimes({0, 12})[1], 12.0 - 11.0);  // between 11 and 13
  EXPECT_EQ(runLiving({12}, livingPrimes()).rows[0], 12.0 - 11.0);
}

TEST(PrimeNumberOscillator, FractionIsCutInBatchAndKeptResumable) {
  EXPECT_EQ(batchPrimes({0, 10.75})[1], 10.0 - 11.0);
  EXPECT_EQ(runLiving({10.75}, livingPrimes()).rows[0], 10.75 - 11.0);
  EXPECT_EQ(runLiving({1.25}, livingPrimes()).rows[0], 12.5 - 13.0) << "12.5 lies between 11 and 13";
}

TEST(PrimeNumberOscillator, ScanThatFindsNothingLeavesThePreviousPrime) {
  // Row 1: 20 lies between 19 and 23. Row 2: 0 finds 0 above and keeps 19 below.
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 0}, batchPrimes({0, 20, 0})));
  // Resumable, -3 becomes -30, for which neither scan finds one: 19 and 23 stay, and 19 is nearer.
  EXPECT_TRUE(sameRows(Rows{1, -49}, runLiving({20, -3}, livingPrimes()).rows));
  EXPECT_TRUE(sameRows(Rows{-30}, runLiving({-3}, livingPrimes()).rows)) << "at first the primes are 0";
  EXPECT_TRUE(sameRows(Rows{kNull, 9.0 - 7.0}, batchPrimes({0, -3}))) << "the square of -3 is tested";
}

TEST(PrimeNumberOscillator, AFractionBelowZeroHasNoPrimeAboveIt) {
  // -0.05 becomes -0.5: the scan from 0 ends at -1, before its first value. 19 and 23, of the 20 before,
  // stay.
  EXPECT_TRUE(sameRows(Rows{1, -19.5, 1}, runLiving({2, -0.05, 2}, livingPrimes()).rows));
  EXPECT_TRUE(sameRows(Rows{1, -19.5, -19.25},
                       runStreamed(closesOnly({2, -0.05, -0.025}), livingPrimes(), true).rows));
  // A fraction above 0, and 0 itself, find 0; below it nothing, so that 19 stays.
  EXPECT_TRUE(sameRows(Rows{1, 0.5, 0}, runLiving({2, 0.05, 0}, livingPrimes()).rows));
}

TEST(PrimeNumberOscillator, ResumedCallFindsTheEarlierPrimesAgain) {
  const PriceRows prices = closesOnly({20, -3, -4, -5});
  EXPECT_TRUE(sameRows(Rows{1, -49, -59, -69}, runStreamed(prices, livingPrimes(), false).rows));
}

TEST(PrimeNumberOscillator, APrimeThatIsNoDoubleIsSubtractedAsAnInteger) {
  // The primes about 2^53 are 9007199254740881 and 9007199254740997; the upper one is odd above 2^53.
  EXPECT_EQ(batchPrimes({0, 9007199254740991.0})[1], -6.0);
  EXPECT_EQ(batchPrimes({0, 9007199254740990.0})[1], -7.0);
  EXPECT_EQ(runLiving({9007199254740991.0}, livingPrimes()).rows[0], -6.0);
}

TEST(PrimeNumberOscillator, ValuesFromTwoToTheFiftyThirdOnStayNull) {
  const double limit = 9007199254740992.0;
  // 94906266 squared is past the limit; -94906265 squared is not.
  const Rows batch = batchPrimes({0, limit, -94906266, kInf, -kInf, kNaN, -1e300, 1e300, 20});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, kNull, kNull, kNull, kNull, 1}, batch));
  EXPECT_FALSE(isNull(batchPrimes({0, -94906265})[1]));
  EXPECT_FALSE(isNull(batchPrimes({0, limit - 1})[1]));
  const Rows living = runLiving({limit, -limit / 10, kInf, -kInf, -1e300, 20}, livingPrimes()).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, kNull, 1}, living));
}

TEST(PrimeNumberOscillator, WhatIsNoNumberStaysNoneInTheResumableForm) {
  // The primes found before stay: -30 has none of its own.
  EXPECT_TRUE(sameRows(Rows{1, kNaN, -49}, runLiving({20, kNaN, -3}, livingPrimes()).rows));
  EXPECT_TRUE(
      sameRows(Rows{1, kNaN, -49}, runStreamed(closesOnly({20, kNaN, -3}), livingPrimes(), false).rows));
}

TEST(PrimeNumberOscillator, IsTheRuleOnAllInputs) {
  forAllSeries({8}, [](const Rows& in, Count) {
    EXPECT_TRUE(sameRows(primesTwin(in, false), batchPrimes(in)));
    EXPECT_TRUE(sameRows(primesTwin(in, true), runLiving(in, livingPrimes()).rows));
  });
  Random random(3);
  Rows spread;
  for (int i = 0; i < 2000; ++i) spread.push_back((random.unit() - 0.3) * std::pow(10.0, random.below(7)));
  EXPECT_TRUE(sameRows(primesTwin(spread, false), batchPrimes(spread)));
  EXPECT_TRUE(sameRows(primesTwin(spread, true), runLiving(spread, livingPrimes()).rows));
}

TEST(PrimeNumberOscillator, WithoutRowsGivesNothing) {
  EXPECT_TRUE(batchPrimes({}).empty());
  expectNothingDone(runLiving({}, livingPrimes()));
  expectNothingDone(runLiving({kNull, kNull}, livingPrimes()));
}

TEST(PrimeNumberOscillator, Streams) {
  expectStreams(livingPrimes());
}

// ---- Rainbow ------------------------------------------------------------------------------------------

Operation livingRainbow(Count levels, Count type) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::RainbowOscillator(store, prices.close, levels, type, out);
  };
}
Rows batchRainbow(const Rows& in, Count levels, Count type) {
  return batchRows(in.size(), [&](Out out) { CFeedkit::RainbowOscillator(in, levels, type, out); });
}

TEST(RainbowOscillator, ByHand) {
  // Averages of 3 rows: batch from row 4 (4), resumable from row 2 (2, 3, 4 of rows 2 to 4). Twice the
  // distance is divided by 3; rows of the batch form without an average count all of the input.
  const Rows in = {1, 2, 3, 4, 5};
  EXPECT_TRUE(sameRows(Rows{kNull, 4.0 / 3.0, 2, 8.0 / 3.0, 2.0 / 3.0}, batchRainbow(in, 3, kSimple)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 2.0 / 3.0, 2.0 / 3.0, 2.0 / 3.0},
                       runLiving(in, livingRainbow(3, kSimple)).rows));
}

TEST(RainbowOscillator, OneLevelIsZeroFromRowOne) {
  const Rows in = makeSeries(Shape::kWalk, 5);
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 0, 0}, batchRainbow(in, 1, kSimple)));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 0, 0}, runLiving(in, livingRainbow(1, kSimple)).rows));
}

TEST(RainbowOscillator, FiftyOneLevelsAreTooMany) {
  const Rows in = makeSeries(Shape::kWalk, 80);
  for (Count levels : {51, 0, -1, INT32_MIN, INT32_MAX}) {
    EXPECT_TRUE(allNull(batchRainbow(in, levels, kSimple))) << levels;
    expectNothingDone(runLiving(in, livingRainbow(levels, kSimple)));
  }
  EXPECT_FALSE(allNull(batchRainbow(in, 50, kSimple)));
  EXPECT_EQ(runLiving(in, livingRainbow(50, kSimple)).status, kDone);
}

TEST(RainbowOscillator, BatchWithFewerRowsThanLevelsCountsTheInputAlone) {
  EXPECT_TRUE(sameRows(Rows{kNull, 8.0 * 3.0 / 4.0, 4.0 * 3.0 / 4.0}, batchRainbow({1, 8, 4}, 4, kSimple)));
}

TEST(RainbowOscillator, IsTheRuleOnAllInputs) {
  forAllSeries({1, 2, 3, 5, 12}, [](const Rows& in, Count levels) {
    for (Count type : {1, 2, 6}) {
      Rows batch(in.size(), kNull), living(in.size(), kNull);
      const Rows m = batchAverage(in, levels, type), e = livingAverage(in, levels, type);
      for (Count i = 1; i < countOf(in); ++i) {
        batch[i] = 0.0;
        for (Count level = 2; level <= levels; ++level) batch[i] += nz(in[i]) - nz(m[i]);
        batch[i] /= static_cast<double>(levels);
      }
      for (Count i = std::max<Count>(firstValueIndex(e), 1); i < countOf(in); ++i) {
        living[i] = 0.0;
        for (Count level = 2; level <= levels; ++level) living[i] += nz(in[i]) - nz(e[i]);
        living[i] /= static_cast<double>(levels);
      }
      EXPECT_TRUE(sameRows(batch, batchRainbow(in, levels, type)));
      EXPECT_TRUE(sameRows(living, runLiving(in, livingRainbow(levels, type)).rows));
    }
  });
}

TEST(RainbowOscillator, ResumedCallAddsOntoTheRowItRecomputesAndDividesAgain) {
  // So bars fed one by one do not give the series of one call. Averages of 2 rows lie 0.5 below row 1, 1
  // below row 2. Row 1 reads 0.5 / 2 at first; the call for row 2 makes it (0.25 + 0.5) / 2 and leaves 1 / 2
  // in row 2.
  const PriceRows prices = closesOnly({1, 2, 4});
  EXPECT_TRUE(sameRows(Rows{kNull, 0.25, 0.5}, runAtOnce(prices, livingRainbow(2, kSimple)).rows));
  EXPECT_TRUE(sameRows(Rows{kNull, 0.375, 0.5}, runStreamed(prices, livingRainbow(2, kSimple), false).rows));
  // Rows that a call does not recompute keep their value.
  const Rows more = runStreamed(closesOnly({1, 2, 4, 4, 4}), livingRainbow(2, kSimple), false).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, 0.375, 0.75, 0, 0}, more));
}

// ---- Ultimate oscillator ------------------------------------------------------------------------------

Operation livingUltimate(Count a, Count b, Count c) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::ULTIMATEOSCILLATOR(store, prices, a, b, c, out);
  };
}
Rows batchUltimate(const PriceRows& prices, Count a, Count b, Count c) {
  return batchRows(prices.close.size(),
                   [&](Out out) { CFeedkit::ULTIMATEOSCILLATOR(viewsOf(prices), a, b, c, out); });
}

struct Pressure {
  double s = 0.0, t = 0.0;
};
Pressure pressureTwin(const PriceRows& p, Count cycle, Count i) {
  Pressure sum;
  for (Count j = i - cycle + 1; j <= i; ++j) {
    const double before = p.close[j - 1];
    double trueLow = p.low[j];
    if (before < trueLow) trueLow = before;
    double range = p.high[j] - p.low[j];
    if (p.high[j] - before > range) range = p.high[j] - before;
    if (before - p.low[j] > range) range = before - p.low[j];
    sum.s += p.close[j] - trueLow;
    sum.t += range;
  }
  return sum;
}

TEST(UltimateOscillator, ByHand) {
  // Row 1: low 8 below the close before, 9: pressure 10 - 8 = 2, range 11 - 8 = 3. Row 2: the close before,
  // 10, is the true low: 12 - 10 = 2, range 13 - 10 = 3 above 13 - 11. Row 3: 7 - 6 = 1, range 12 - 6 = 6.
  const PriceRows bars = {Rows(4, 0.0), {9, 11, 13, 8}, {9, 8, 11, 6}, {9, 10, 12, 7}, Rows(4, 1.0)};
  const double row2 = 2.0 / 3.0 * 4.0 + 4.0 / 6.0 * 2.0 + 2.0 / 3.0;
  const double row3 = 1.0 / 6.0 * 4.0 + 3.0 / 9.0 * 2.0 + 1.0 / 6.0;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, row3 / 7.0 * 100.0}, batchUltimate(bars, 1, 2, 1)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, row2 * 100.0 / 7.0, row3 * 100.0 / 7.0},
                       runAtOnce(bars, livingUltimate(1, 2, 1)).rows));
}

TEST(UltimateOscillator, RangeOfZeroIsNullInBatchAndZeroResumable) {
  const PriceRows flat = makePrices(Shape::kFlat, 10);
  EXPECT_TRUE(allNull(batchUltimate(flat, 2, 3, 4)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 0, 0, 0, 0, 0, 0},
                       runAtOnce(flat, livingUltimate(2, 3, 4)).rows));
}

TEST(UltimateOscillator, IsTheRuleOnAllInputs) {
  forAllPrices({1, 2, 4}, [](const PriceRows& prices, Count p) {
    for (const auto& [a, b, c] : {std::array<Count, 3>{p, p + 1, p + 3}, std::array<Count, 3>{p + 2, 1, p}}) {
      const Count n = countOf(prices.close), longest = std::max({a, b, c});
      Rows batch(prices.close.size(), kNull), living(prices.close.size(), kNull);
      for (Count i = longest; i < n; ++i) {
        const Pressure x = pressureTwin(prices, a, i), y = pressureTwin(prices, b, i),
                       z = pressureTwin(prices, c, i);
        const bool whole = x.t != 0.0 && y.t != 0.0 && z.t != 0.0;
        living[i] = whole ? (x.s / x.t * 4 + y.s / y.t * 2 + z.s / z.t) * 100 / 7 : 0.0;
        if (i > longest && whole) batch[i] = (x.s / x.t * 4 + y.s / y.t * 2 + z.s / z.t) / 7 * 100;
      }
      EXPECT_TRUE(sameRows(batch, batchUltimate(prices, a, b, c)));
      EXPECT_TRUE(sameRows(living, runAtOnce(prices, livingUltimate(a, b, c)).rows));
    }
  });
}

TEST(UltimateOscillator, CyclesOutOfRangeGiveNothing) {
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  for (Count p : kHopelessPeriods) {
    SCOPED_TRACE(p);
    EXPECT_TRUE(allNull(batchUltimate(prices, p, 3, 4)));
    EXPECT_TRUE(allNull(batchUltimate(prices, 3, p, 4)));
    EXPECT_TRUE(allNull(batchUltimate(prices, 3, 4, p)));
    expectNothingDone(runAtOnce(prices, livingUltimate(p, 3, 4)));
    expectNothingDone(runAtOnce(prices, livingUltimate(3, p, 4)));
    expectNothingDone(runAtOnce(prices, livingUltimate(3, 4, p)));
  }
}

TEST(UltimateOscillator, Streams) {
  expectStreams(livingUltimate(3, 5, 8));
}

// ---- Comparative relative strength --------------------------------------------------------------------

Operation livingComparison(const Rows& b) {
  return [&b](WorkStore&, const PriceSources& prices, Target out) {
    const Source other{View(b).first(prices.close.rows.size()), "B"};
    return CTechnicalFunctions::ComparativeRelativeStrength(prices.close, other, out);
  };
}
Rows batchComparison(const Rows& a, const Rows& b) {
  return batchRows(a.size(), [&](Out out) { CFeedkit::ComparativeRelativeStrength(a, b, out); });
}

TEST(ComparativeRelativeStrength, ByHand) {
  const Rows a = {1, 6, 5, 3, kNull, 8, 4, 6};
  const Rows b = {2, 4, 5, 0, 2, kNull, -2, 3};
  // Batch: rows from 1; 5 / 5 is null, so is a divisor of 0; a null divisor, not being 0, divides by 0.
  EXPECT_TRUE(sameRows(Rows{kNull, 1.5, kNull, kNull, 0, kInf, -2, 2}, batchComparison(a, b)));
  // Resumable: 5 / 5 is kept; divisors not above 0 give 0; a null on either side is null.
  EXPECT_TRUE(sameRows(Rows{0.5, 1.5, 1, 0, kNull, kNull, 0, 2}, runLiving(a, livingComparison(b)).rows));
}

TEST(ComparativeRelativeStrength, SeriesOfDifferentLengthsGiveNothing) {
  EXPECT_TRUE(allNull(batchComparison({1, 2, 3}, {1, 2})));
  const Rows a = {1, 2, 3}, b = {1, 2};
  Rows out(3, kNull);
  std::int32_t slot = -1;
  EXPECT_EQ(CTechnicalFunctions::ComparativeRelativeStrength({a, "A"}, {b, "B"}, {out, &slot}), kNothingDone);
  EXPECT_TRUE(allNull(out));
  EXPECT_EQ(slot, -1);
  EXPECT_EQ(CTechnicalFunctions::ComparativeRelativeStrength({{}, "A"}, {{}, "B"}, {out, &slot}),
            kNothingDone);
}

TEST(ComparativeRelativeStrength, IsTheRuleOnAllInputs) {
  for (Shape shape : kAllShapes) {
    for (Shape other : kAllShapes) {
      const Rows a = makeSeries(shape, 30, 1), b = makeSeries(other, 30, 2);
      Rows batch(30, kNull), living(30, kNull);
      for (Count i = 1; i < 30; ++i) {
        if (b[i] != 0.0) batch[i] = nz(a[i]) / nz(b[i]);
        if (batch[i] == 1.0) batch[i] = kNull;
      }
      for (Count i = std::max(firstValueIndex(a), firstValueIndex(b)); i < 30; ++i) {
        living[i] = nz(b[i]) > 0.0 ? nz(a[i]) / nz(b[i]) : 0.0;
        if (isNull(a[i]) || isNull(b[i])) living[i] = kNull;
      }
      EXPECT_TRUE(sameRows(batch, batchComparison(a, b)));
      EXPECT_TRUE(sameRows(living, runLiving(a, livingComparison(b)).rows));
    }
  }
}

TEST(ComparativeRelativeStrength, Streams) {
  const Rows b = makeSeries(Shape::kNullGaps, 48, 9);
  expectStreams(livingComparison(b));
}

// ---- Fisher transform ---------------------------------------------------------------------------------

Operation livingFisher(Count p) {
  return [p](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::FISHERTRANSFORM(store, prices.close, p, out);
  };
}
Rows batchFisher(const Rows& in, Count p) {
  return batchRows(in.size(), [&](Out out) { CFeedkit::FISHERTRANSFORM(in, p, out); });
}

Rows fisherTwin(const Rows& in, Count p, Count first, bool living) {
  const Count n = countOf(in);
  Rows value(in.size(), kNull), fisher(in.size(), kNull);
  for (Count i = first; i < n; ++i) {
    double max = nz(in[i - p + 1]), min = max;
    for (Count j = i - p + 1; j <= i; ++j) {
      if (nz(in[j]) > max) max = nz(in[j]);
      if (nz(in[j]) < min) min = nz(in[j]);
    }
    double raw = ((nz(in[i]) - min) / (max - min) - 0.5) * 2 * 0.33;
    if (max == min) raw = -0.33;
    value[i] = i == first ? raw : raw + 0.67 * nz(value[i - 1]);
    if (max == min && !living) value[i] = i == first ? 0.0 : value[i - 1];
    const double condition = value[i] > 0.99 ? 0.999 : value[i] < -0.99 ? -0.999 : value[i];
    fisher[i] = 0.5 * std::log10((condition + 1) / (1 - condition));
    if (i > first) fisher[i] += 0.5 * nz(fisher[i - 1]);
  }
  return fisher;
}

TEST(FisherTransform, ByHand) {
  // Windows of 2 rows. Rising: the row is the highest, raw (1 - 0.5) * 2 * 0.33 = 0.33; falling -0.33.
  const Rows in = {5, 1, 2, 1};
  const double f2 = 0.5 * std::log10(1.33 / 0.67);
  const double v3 = -0.33 + 0.67 * 0.33;
  const double f3 = 0.5 * std::log10((1 + v3) / (1 - v3)) + 0.5 * f2;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, f2, f3}, batchFisher(in, 2), nearlySame));
  // Resumable from row 1, where the series falls.
  const double f1 = 0.5 * std::log10(0.67 / 1.33);
  const double v2 = 0.33 - 0.67 * 0.33;
  const double l2 = 0.5 * std::log10((1 + v2) / (1 - v2)) + 0.5 * f1;
  const double w3 = -0.33 + 0.67 * v2;
  const double l3 = 0.5 * std::log10((1 + w3) / (1 - w3)) + 0.5 * l2;
  EXPECT_TRUE(sameRows(Rows{kNull, f1, l2, l3}, runLiving(in, livingFisher(2)).rows, nearlySame));
}

TEST(FisherTransform, FlatWindowKeepsTheValueInBatchAndTakesTheLowestRawResumable) {
  const Rows flat = makeSeries(Shape::kFlat, 6);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 0, 0, 0, 0}, batchFisher(flat, 2)));
  EXPECT_EQ(runLiving(flat, livingFisher(2)).rows[1], 0.5 * std::log10((-0.33 + 1) / (1 - -0.33)));
}

TEST(FisherTransform, ValueBeyondItsBoundsIsHeldAt999Thousandths) {
  // A rising series: values 0.33, 0.5511, ... up to 0.33 / 0.33 = 1 at last.
  const Rows fisher = batchFisher(makeSeries(Shape::kRising, 60), 3);
  EXPECT_NEAR(fisher[59], std::log10(1.999 / 0.001), 1e-9) << "half the logarithm and half of itself again";
}

TEST(FisherTransform, IsTheRuleOnAllInputs) {
  forAllSeries({1, 2, 3, 5}, [](const Rows& in, Count p) {
    const Count n = countOf(in);
    const Rows none(in.size(), kNull);
    EXPECT_TRUE(sameRows(p < n ? fisherTwin(in, p, p, false) : none, batchFisher(in, p)));
    EXPECT_TRUE(sameRows(p <= n ? fisherTwin(in, p, firstValueIndex(in) + p - 1, true) : none,
                         runLiving(in, livingFisher(p)).rows));
  });
}

TEST(FisherTransform, PeriodsOutOfRangeGiveNothing) {
  const Rows in = makeSeries(Shape::kWalk, 20);
  for (Count p : kHopelessPeriods) {
    SCOPED_TRACE(p);
    EXPECT_TRUE(allNull(batchFisher(in, p)));
    expectNothingDone(runLiving(in, livingFisher(p)));
  }
}

TEST(FisherTransform, ResumedCallWithoutTheRowBeforeBeginsAgainFromTheSeed) {
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  TestStore store(20);
  Rows out(20, kNull);
  std::int32_t slot = 19;
  EXPECT_EQ(livingFisher(4)(store, sourcesOf(prices, 20), {out, &slot}), kDone);
  EXPECT_TRUE(sameRows(fisherTwin(prices.close, 4, 3, true), out));
}

TEST(FisherTransform, Streams) {
  expectStreams(livingFisher(5));
}

}  // namespace
}  // namespace brindlewort::testing
