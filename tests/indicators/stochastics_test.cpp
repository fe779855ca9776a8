#include "indicators/stochastics.hpp"

#include "indicators/oscillator_twins.hpp"

namespace brindlewort::testing {
namespace {

/// Bars told by high, low and close alone.
PriceRows barsOf(const Rows& high, const Rows& low, const Rows& close) {
  return {close, high, low, close, Rows(close.size(), 1.0)};
}

double highestOf(const Rows& in, Count first, Count last) {
  double best = in[first];
  for (Count j = first; j <= last; ++j) {
    if (in[j] > best) best = in[j];
  }
  return best;
}
double lowestOf(const Rows& in, Count first, Count last) {
  double best = in[first];
  for (Count j = first; j <= last; ++j) {
    if (in[j] < best) best = in[j];
  }
  return best;
}

bool allWithin(std::initializer_list<Count> periods, Count n) {
  for (Count p : periods) {
    if (p < 1 || p > n) return false;
  }
  return true;
}

// ---- Stochastic oscillator ----------------------------------------------------------------------------

Operation livingK(Count k, Count slowing, Count d, Count type) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::SOPK(store, prices, k, slowing, d, type, out);
  };
}
Operation livingD(Count k, Count slowing, Count d, Count type) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::SOPD(store, prices, k, slowing, d, type, out);
  };
}
Rows batchK(const PriceRows& prices, Count k, Count slowing, Count d, Count type) {
  return batchRows(prices.close.size(),
                   [&](Out out) { CFeedkit::SOPK(viewsOf(prices), k, slowing, d, type, out); });
}
Rows batchD(const PriceRows& prices, Count k, Count slowing, Count d, Count type) {
  return batchRows(prices.close.size(),
                   [&](Out out) { CFeedkit::SOPD(viewsOf(prices), k, slowing, d, type, out); });
}

Rows rawTwin(const PriceRows& prices, Count p, Count first, double withoutRange) {
  Rows raw(prices.close.size(), kNull);
  for (Count i = first; i < countOf(prices.close); ++i) {
    const double hh = highestOf(prices.high, i - p + 1, i), ll = lowestOf(prices.low, i - p + 1, i);
    raw[i] = hh - ll == 0.0 ? withoutRange : (prices.close[i] - ll) / (hh - ll) * 100.0;
  }
  return raw;
}

const PriceRows& handBars() {
  static const PriceRows kBars =
      barsOf({9, 10, 12, 14, 13, 13}, {9, 8, 9, 10, 11, 13}, {9, 9, 11, 13, 12, 13});
  return kBars;
}

TEST(StochasticOscillator, BatchByHand) {
  // Windows of 2 rows from row 3: highest 14, lowest 9, close 13: 4 / 5. Row 4: 14, 10, 12: 2 / 4. Row 5: 13,
  // 11, 13: 2 / 2.
  const double row3 = 4.0 / 5.0 * 100.0;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, row3, 50, 100}, batchK(handBars(), 2, 1, 1, kSimple)));
  // %D over 2 rows of %K: the average begins at row 3, where row 2 counts 0.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, row3 / 2, 65, 75}, batchD(handBars(), 2, 1, 2, kSimple)));
  // Slowed over 2 rows, %K is what %D was.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, row3 / 2, 65, 75}, batchK(handBars(), 2, 2, 1, kSimple)));
}

TEST(StochasticOscillator, ResumableByHand) {
  // Raw from row 1: 10, 8, 9: 1 / 2; row 2: 12, 8, 11: 3 / 4; then 80, 50, 100. Averages of 2 from row 2.
  const Rows k = runAtOnce(handBars(), livingK(2, 2, 1, kSimple)).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 62.5, 77.5, 65, 75}, k, nearlySame));
  const Rows d = runAtOnce(handBars(), livingD(2, 2, 2, kSimple)).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 70, 71.25, 70}, d, nearlySame));
}

TEST(StochasticOscillator, ResumableSlowingOfOneIsAllNull) {
  const PriceRows prices = makePrices(Shape::kWalk, 30);
  EXPECT_TRUE(allNull(runAtOnce(prices, livingK(5, 1, 3, kSimple)).rows));
  EXPECT_TRUE(allNull(runAtOnce(prices, livingD(5, 1, 3, kSimple)).rows));
  EXPECT_FALSE(allNull(batchK(prices, 5, 1, 3, kSimple)));
}

TEST(StochasticOscillator, WindowWithoutRangeIsNullInBatchAndZeroResumable) {
  const PriceRows flat = makePrices(Shape::kFlat, 12);
  EXPECT_TRUE(allNull(batchK(flat, 3, 1, 1, kSimple)));
  const Rows living = runAtOnce(flat, livingK(3, 2, 1, kSimple)).rows;
  EXPECT_TRUE(isNull(living[2]));
  for (std::size_t i = 3; i < 12; ++i) EXPECT_EQ(living[i], 0.0);
}

TEST(StochasticOscillator, IsTheRuleOnAllInputs) {
  forAllPrices({1, 2, 3, 5}, [](const PriceRows& prices, Count p) {
    const Count n = countOf(prices.close);
    for (Count type : {1, 2, 6, 9}) {
      for (Count slowing : {1, 3}) {
        Rows k(prices.close.size(), kNull), d = k, livingOfK = k, livingOfD = k;
        if (allWithin({p, slowing, 2}, n)) {
          k = rawTwin(prices, p, p + 1, kNull);
          if (slowing > 1) k = batchAverage(k, slowing, type);
          d = batchAverage(k, 2, type);
          if (slowing > 1) {
            livingOfK = livingAverage(rawTwin(prices, p, p - 1, 0.0), slowing, type);
            livingOfD = livingAverage(livingOfK, 2, type);
          }
        }
        EXPECT_TRUE(sameRows(k, batchK(prices, p, slowing, 2, type)));
        EXPECT_TRUE(sameRows(d, batchD(prices, p, slowing, 2, type)));
        EXPECT_TRUE(sameRows(livingOfK, runAtOnce(prices, livingK(p, slowing, 2, type)).rows));
        EXPECT_TRUE(sameRows(livingOfD, runAtOnce(prices, livingD(p, slowing, 2, type)).rows));
      }
    }
  });
}

TEST(StochasticOscillator, AllThreePeriodsMayBeAllRowsButNotMore) {
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  EXPECT_FALSE(allNull(batchK(prices, 3, 1, 10, kSimple)));
  EXPECT_TRUE(allNull(batchK(prices, 3, 1, 11, kSimple)));
  EXPECT_EQ(runAtOnce(prices, livingK(3, 2, 10, kSimple)).status, kDone);
  expectNothingDone(runAtOnce(prices, livingK(3, 2, 11, kSimple)));
  for (Count p : kHopelessPeriods) {
    SCOPED_TRACE(p);
    EXPECT_TRUE(allNull(batchK(prices, p, 1, 1, kSimple)));
    EXPECT_TRUE(allNull(batchK(prices, 3, p, 1, kSimple)));
    EXPECT_TRUE(allNull(batchK(prices, 3, 1, p, kSimple)));
    EXPECT_TRUE(allNull(batchD(prices, 3, 1, p, kSimple)));
    expectNothingDone(runAtOnce(prices, livingK(p, 2, 1, kSimple)));
    expectNothingDone(runAtOnce(prices, livingK(3, p, 1, kSimple)));
    expectNothingDone(runAtOnce(prices, livingD(3, 2, p, kSimple)));
  }
}

TEST(StochasticOscillator, Streams) {
  for (Count type : kAllTypes) {
    SCOPED_TRACE(type);
    expectStreams(livingK(5, 3, 4, type));
    expectStreams(livingD(5, 3, 4, type));
  }
}

// ---- Stochastic momentum index ------------------------------------------------------------------------

struct MomentumPeriods {
  Count k, smooth, twice, d, maType, dMaType;
};

Operation livingMomentumK(const MomentumPeriods& p) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::SMIK(store, prices, p.k, p.smooth, p.twice, p.d, p.maType, p.dMaType, out);
  };
}
Operation livingMomentumD(const MomentumPeriods& p) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::SMID(store, prices, p.k, p.smooth, p.twice, p.d, p.maType, p.dMaType, out);
  };
}
Rows batchMomentumK(const PriceRows& prices, const MomentumPeriods& p) {
  return batchRows(prices.close.size(), [&](Out out) {
    CFeedkit::SMIK(viewsOf(prices), p.k, p.smooth, p.twice, p.d, p.maType, p.dMaType, out);
  });
}
Rows batchMomentumD(const PriceRows& prices, const MomentumPeriods& p) {
  return batchRows(prices.close.size(), [&](Out out) {
    CFeedkit::SMID(viewsOf(prices), p.k, p.smooth, p.twice, p.d, p.maType, p.dMaType, out);
  });
}

Count atLeastExponential(Count type) {
  return type < 1 ? 2 : type;
}

Rows batchMomentumTwin(const PriceRows& prices, const MomentumPeriods& p) {
  const Count n = countOf(prices.close);
  Rows out(prices.close.size(), kNull), den = out, num = out;
  if (!allWithin({p.k, p.smooth, p.twice, p.d}, n)) return out;
  for (Count i = p.k + 1; i < n; ++i) {  // the present row is no part of the range
    const double hh = highestOf(prices.high, i - p.k, i - 1), ll = lowestOf(prices.low, i - p.k, i - 1);
    den[i] = nz(hh) - nz(ll);
    num[i] = prices.close[i] - (nz(hh) + nz(ll)) * 0.5;
  }
  const Count type = atLeastExponential(p.maType);
  for (Rows* rows : {&den, &num}) {
    *rows = batchAverage(*rows, p.smooth + 1, type);
    if (p.twice > 1) *rows = batchAverage(*rows, p.twice, type);
  }
  for (Count i = p.k + 1; i < n; ++i) {
    if (nz(den[i]) * 0.5 != 0.0) out[i] = nz(num[i]) / (nz(den[i]) * 0.5) * 100.0;
  }
  return out;
}

Rows livingMomentumTwin(const PriceRows& prices, const MomentumPeriods& p) {
  const Count n = countOf(prices.close);
  Rows out(prices.close.size(), kNull), den = out, num = out, hh = out, ll = out;
  if (!allWithin({p.k, p.smooth, p.twice, p.d}, n)) return out;
  for (Count i = firstValueIndex(prices.high) + p.k - 1; i < n; ++i)
    hh[i] = highestOf(prices.high, i - p.k + 1, i);
  for (Count i = firstValueIndex(prices.low) + p.k - 1; i < n; ++i)
    ll[i] = lowestOf(prices.low, i - p.k + 1, i);
  for (Count i = std::max(firstValueIndex(hh), firstValueIndex(ll)); i < n; ++i) {
    den[i] = nz(hh[i]) - nz(ll[i]);
    num[i] = prices.close[i] - (nz(hh[i]) + nz(ll[i])) * 0.5;
  }
  const Count type = atLeastExponential(p.dMaType);
  for (Rows* rows : {&den, &num}) {
    if (p.smooth > 1) *rows = livingAverage(*rows, p.smooth, type);
    if (p.twice > 1) *rows = livingAverage(*rows, p.twice, type);
  }
  for (Count i = std::max(firstValueIndex(num), firstValueIndex(den)); i < n; ++i) {
    out[i] = nz(den[i]) * 0.5 == 0.0 ? 0.0 : nz(num[i]) / (nz(den[i]) * 0.5) * 100.0;
  }
  return out;
}

TEST(StochasticMomentumIndex, ResumableByHand) {
  // Unsmoothed, windows of 2 rows. Row 1: range 10 to 8, close 9 in the middle. Row 2: 12 to 8: (11 - 10)
  // / 2. Row 3: 14 to 9: (13 - 11.5) / 2.5. Row 4: 14 to 10: 0. Row 5: 13 to 11: 1 / 1.
  const Rows k = runAtOnce(handBars(), livingMomentumK({2, 1, 1, 1, kSimple, kSimple})).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 50, 1.5 / 2.5 * 100.0, 0, 100}, k));
  const Rows d = runAtOnce(handBars(), livingMomentumD({2, 1, 1, 2, kSimple, kSimple})).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 25, 55, 30, 50}, d, nearlySame));
}

TEST(StochasticMomentumIndex, BatchByHandLeavesThePresentRowOut) {
  // One period, always smoothed over one row more than asked: 2. From row 2: range 10 to 8, close 11: num 2,
  // den 2. Row 3: 12 to 9, 13: 2.5, 3. Row 4: 14 to 10, 12: 0, 4. Row 5: 13 to 11, 13: 1, 2. Averages from
  // row 3.
  const Rows k = batchMomentumK(handBars(), {1, 1, 1, 1, kSimple, kSimple});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 4.5 / 2.5 * 100.0, 2.5 / 3.5 * 100.0, 0.5 / 1.5 * 100.0}, k,
                       nearlySame));
}

TEST(StochasticMomentumIndex, TypesStandTheOtherWayRoundInTheTwoForms) {
  const PriceRows prices = makePrices(Shape::kWalk, 40);
  const MomentumPeriods simpleThenWeighted = {4, 3, 2, 3, kSimple, kWeighted};
  const MomentumPeriods simpleThenSimple = {4, 3, 2, 3, kSimple, kSimple};
  const MomentumPeriods weightedThenSimple = {4, 3, 2, 3, kWeighted, kSimple};
  // Batch %K hears the first type only, resumable %K the second only.
  EXPECT_TRUE(sameRows(batchMomentumK(prices, simpleThenWeighted), batchMomentumK(prices, simpleThenSimple)));
  EXPECT_FALSE(
      sameRows(batchMomentumK(prices, weightedThenSimple), batchMomentumK(prices, simpleThenSimple)));
  EXPECT_TRUE(sameRows(runAtOnce(prices, livingMomentumK(weightedThenSimple)).rows,
                       runAtOnce(prices, livingMomentumK(simpleThenSimple)).rows));
  EXPECT_FALSE(sameRows(runAtOnce(prices, livingMomentumK(simpleThenWeighted)).rows,
                        runAtOnce(prices, livingMomentumK(simpleThenSimple)).rows));
}

TEST(StochasticMomentumIndex, SignalOverOneRowIsNull) {
  const PriceRows prices = makePrices(Shape::kWalk, 40);
  EXPECT_TRUE(allNull(batchMomentumD(prices, {4, 3, 2, 1, kSimple, kSimple})));
  expectNothingDone(runAtOnce(prices, livingMomentumD({4, 3, 2, 1, kSimple, kSimple})));
}

TEST(StochasticMomentumIndex, WithoutRangeIsNullInBatchAndZeroResumable) {
  const PriceRows flat = makePrices(Shape::kFlat, 20);
  EXPECT_TRUE(allNull(batchMomentumK(flat, {3, 2, 2, 2, kSimple, kSimple})));
  EXPECT_EQ(runAtOnce(flat, livingMomentumK({3, 2, 2, 2, kSimple, kSimple})).rows[19], 0.0);
}

TEST(StochasticMomentumIndex, IsTheRuleOnAllInputs) {
  forAllPrices({1, 2, 3, 5}, [](const PriceRows& prices, Count p) {
    const MomentumPeriods cases[] = {
        {p, 1, 1, 2, kSimple, kSimple}, {p, 3, 2, 2, 0, kWeighted}, {p, 2, p, p, kWilder, -5}};
    for (const MomentumPeriods& periods : cases) {
      const Rows k = batchMomentumTwin(prices, periods), living = livingMomentumTwin(prices, periods);
      EXPECT_TRUE(sameRows(k, batchMomentumK(prices, periods)));
      EXPECT_TRUE(sameRows(living, runAtOnce(prices, livingMomentumK(periods)).rows));
      Rows d(k.size(), kNull), livingOfD(k.size(), kNull);
      if (periods.d > 1 && allWithin({periods.k, periods.smooth, periods.twice, periods.d}, countOf(k))) {
        d = batchAverage(k, periods.d, atLeastExponential(periods.dMaType));
        livingOfD = livingAverage(living, periods.d, atLeastExponential(periods.maType));
      }
      EXPECT_TRUE(sameRows(d, batchMomentumD(prices, periods)));
      EXPECT_TRUE(sameRows(livingOfD, runAtOnce(prices, livingMomentumD(periods)).rows));
    }
  });
}

TEST(StochasticMomentumIndex, PeriodsOutOfRangeGiveNothing) {
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  for (Count p : kHopelessPeriods) {
    SCOPED_TRACE(p);
    const MomentumPeriods cases[] = {{p, 2, 2, 2, kSimple, kSimple},
                                     {2, p, 2, 2, kSimple, kSimple},
                                     {2, 2, p, 2, kSimple, kSimple},
                                     {2, 2, 2, p, kSimple, kSimple}};
    for (const MomentumPeriods& periods : cases) {
      EXPECT_TRUE(allNull(batchMomentumK(prices, periods)));
      EXPECT_TRUE(allNull(batchMomentumD(prices, periods)));
      expectNothingDone(runAtOnce(prices, livingMomentumK(periods)));
      expectNothingDone(runAtOnce(prices, livingMomentumD(periods)));
    }
  }
}

TEST(StochasticMomentumIndex, Streams) {
  for (Count type : kAllTypes) {
    SCOPED_TRACE(type);
    // A null low is the lowest as it stands, a billion below the rest: the sums of a regression lose to it
    // the digits that count, and which ones depends on the row where they were formed.
    const bool regression = type == kTimeSeries || type == kVidya;
    const std::vector<Shape> exceptions(regression ? 1 : 0, Shape::kNullGaps);
    expectStreams(livingMomentumK({5, 3, 2, 4, type, type}), exceptions);
    expectStreams(livingMomentumD({5, 3, 2, 4, type, type}), exceptions);
  }
}

// ---- Williams' %R -------------------------------------------------------------------------------------

Operation livingWilliams(Count p) {
  return [p](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::WilliamsPctR(prices, p, out);
  };
}
Rows batchWilliams(const PriceRows& prices, Count p) {
  return batchRows(prices.close.size(), [&](Out out) { CFeedkit::WilliamsPctR(viewsOf(prices), p, out); });
}

/// Rows from `first`; `stop` is where the scan before the first window is taken to have stopped.
Rows williamsTwin(const PriceRows& prices, Count p, Count first, Count stop, double withoutRange) {
  const Count n = countOf(prices.close);
  Rows out(prices.close.size(), kNull);
  for (Count i = first; i < n; ++i) {
    double hh = 0.0, ll = stop < n ? prices.low[stop] : 0.0;
    Count j = i - p + 1;
    for (; j <= i; ++j) {
      if (prices.high[j] > hh) hh = prices.high[j];
      if (prices.low[j] < ll) ll = prices.low[j];
    }
    stop = j;
    out[i] = hh - ll == 0.0 ? withoutRange : (hh - prices.close[i]) / (hh - ll) * -100.0;
  }
  return out;
}

TEST(WilliamsPctR, ByHand) {
  // Windows of 2 rows. Row 3: highest 14, lowest 9, close 13: 1 / 5. Row 4: 14, 10, 12: 2 / 4. Row 5: 13, 11:
  // 0.
  const double row3 = 1.0 / 5.0 * -100.0;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, row3, -50, -0.0}, batchWilliams(handBars(), 2)));
  // Row 1: 10, 8, 9: 1 / 2. Row 2: 12, 8, 11: 1 / 4.
  EXPECT_TRUE(
      sameRows(Rows{kNull, -50, -25, row3, -50, -0.0}, runAtOnce(handBars(), livingWilliams(2)).rows));
}

TEST(WilliamsPctR, BatchLowOfTheFirstWindowStartsFromTheRowBehindIt) {
  // Window of row 2, 1 row: high 12, low 10, but row 3's low of 4 counts as well.
  const PriceRows bars = barsOf({9, 9, 12, 12}, {9, 9, 10, 4}, {9, 9, 11, 8});
  EXPECT_EQ(batchWilliams(bars, 1)[2], (12.0 - 11.0) / (12.0 - 4.0) * -100.0);
  // Without a row behind it, 0 counts.
  const PriceRows shorter = barsOf({9, 9, 12}, {9, 9, 10}, {9, 9, 11});
  EXPECT_EQ(batchWilliams(shorter, 1)[2], (12.0 - 11.0) / 12.0 * -100.0);
}

TEST(WilliamsPctR, HighestIsAtLeastZero) {
  const PriceRows bars = barsOf({-1, -1, -1, -1}, {-3, -3, -3, -3}, {-2, -2, -2, -2});
  EXPECT_EQ(runAtOnce(bars, livingWilliams(2)).rows[3], (0.0 - -2.0) / (0.0 - -3.0) * -100.0);
}

TEST(WilliamsPctR, ResumableBeginsWhereThePricesHaveAllBegun) {
  // Each of the three in turn begins in row 2, so that the first window of 2 rows ends in row 3.
  const Rows late = {kNull, kNull, 10, 12}, early = {9, 9, 10, 12};
  for (const PriceRows& bars :
       {barsOf(late, early, early), barsOf(early, late, early), barsOf(early, early, late)}) {
    const Rows rows = runAtOnce(bars, livingWilliams(2)).rows;
    EXPECT_TRUE(sameRows(Rows(3, kNull), Rows(rows.begin(), rows.begin() + 3)));
    EXPECT_EQ(rows[3], (12.0 - 12.0) / (12.0 - 10.0) * -100.0);
  }
}

TEST(WilliamsPctR, WithoutRangeIsNullInBatchAndZeroResumable) {
  const PriceRows flat = makePrices(Shape::kFlat, 12);
  EXPECT_TRUE(allNull(batchWilliams(flat, 3)));
  EXPECT_EQ(runAtOnce(flat, livingWilliams(3)).rows[11], 0.0);
}

TEST(WilliamsPctR, IsTheRuleOnAllInputs) {
  forAllPrices({1, 2, 3, 5}, [](const PriceRows& prices, Count p) {
    const Count lead =
        std::max({firstValueIndex(prices.high), firstValueIndex(prices.low), firstValueIndex(prices.close)});
    const Count n = countOf(prices.close), first = lead + p - 1;
    const Rows none(prices.close.size(), kNull);
    EXPECT_TRUE(
        sameRows(p < n ? williamsTwin(prices, p, p + 1, p + 2, kNull) : none, batchWilliams(prices, p)));
    EXPECT_TRUE(sameRows(p <= n ? williamsTwin(prices, p, first, first, 0.0) : none,
                         runAtOnce(prices, livingWilliams(p)).rows));
  });
}

TEST(WilliamsPctR, PeriodsOutOfRangeGiveNothing) {
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  for (Count p : kHopelessPeriods) {
    SCOPED_TRACE(p);
    EXPECT_TRUE(allNull(batchWilliams(prices, p)));
    expectNothingDone(runAtOnce(prices, livingWilliams(p)));
  }
}

TEST(WilliamsPctR, Streams) {
  expectStreams(livingWilliams(5));
}

}  // namespace
}  // namespace brindlewort::testing
