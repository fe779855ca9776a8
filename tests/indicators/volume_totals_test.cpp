#include "indicators/volume.hpp"
#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

constexpr double kTicks[] = {0.0, 0.5, 3.0, kInf, kNaN};

// ---- The operations, of the close -----------------------------------------------------------------------

void balance(const Prices& p, Out out) {
  CFeedkit::OnBalanceVolume(p.close, p.volume, out);
}
void trend(const Prices& p, Out out) {
  CFeedkit::PriceVolumeTrend(p.close, p.volume, out);
}
BatchOperation trades(double tick) {
  return [=](const Prices& p, Out out) { CFeedkit::TradeVolumeIndex(p.close, p.volume, tick, out); };
}

Status resumedBalance(WorkStore&, const PriceSources& p, Target out) {
  return CTechnicalFunctions::OnBalanceVolume(p.close, p.volume, out);
}
Status resumedTrend(WorkStore& store, const PriceSources& p, Target out) {
  return CTechnicalFunctions::PriceVolumeTrend(store, p.close, p.volume, out);
}
Operation resumedTrades(double tick) {
  return [=](WorkStore& store, const PriceSources& p, Target out) {
    return CTechnicalFunctions::TradeVolumeIndex(store, p.close, p.volume, tick, out);
  };
}
Status resumedDistribution(WorkStore&, const PriceSources& p, Target out) {
  return CTechnicalFunctions::WilliamsAccumulationDistribution(p, out);
}

Count leadOf(const PriceRows& p) {
  return std::max(firstValueIndex(p.close), firstValueIndex(p.volume));
}

// ---- Slow twins ---------------------------------------------------------------------------------------

Rows balanceTwin(const PriceRows& p, bool batchForm) {
  const Rows &in = p.close, &V = p.volume;
  const Count n = static_cast<Count>(in.size());
  Rows out(in.size(), kNull);
  const Count first = batchForm ? 2 : leadOf(p) + 1;
  if (first >= n) return out;
  if (!batchForm) out[first - 1] = V[first - 1];
  for (Count i = first; i < n; ++i) {
    if (nz(in[i]) > nz(in[i - 1])) {
      out[i] = nz(out[i - 1]) + V[i];
    } else if (nz(in[i]) < nz(in[i - 1])) {
      out[i] = nz(out[i - 1]) - V[i];
    } else {
      out[i] = out[i - 1];
    }
  }
  return out;
}

Rows trendTwin(const PriceRows& p, bool batchForm) {
  const Rows &in = p.close, &V = p.volume;
  const Count n = static_cast<Count>(in.size());
  Rows out(in.size(), kNull);
  const Count first = batchForm ? 2 : leadOf(p) + 1;
  for (Count i = first; i < n; ++i) {
    double t = (nz(in[i]) - nz(in[i - 1])) / nz(in[i - 1]) * V[i];
    if (!batchForm && nz(in[i - 1]) == 0) t = 0;
    out[i] = nz(out[i - 1]) + t;
  }
  return out;
}

Rows tradesTwin(const PriceRows& p, double t, bool batchForm) {
  const Rows &in = p.close, &V = p.volume;
  const Count n = static_cast<Count>(in.size());
  Rows out(in.size(), kNull);
  double direction = 0, total = 0;
  for (Count i = batchForm ? 2 : leadOf(p) + 1; i < n; ++i) {
    const double d = nz(in[i]) - nz(in[i - 1]);
    if (!batchForm) total = nz(total);  // read back from a row, where a null total is 0
    if (d > t) direction = 1;
    if (d < -t) direction = -1;
    if (direction == 1) total = total + V[i];
    if (direction == -1) total = total - V[i];
    if (direction == 0 && !batchForm) total = 0;
    out[i] = total;
  }
  return out;
}

Rows distributionTwin(const PriceRows& p, Count first) {
  const Count n = static_cast<Count>(p.close.size());
  Rows out(p.close.size(), kNull);
  for (Count i = first; i < n; ++i) {
    const double trh = std::max(p.high[i], p.close[i - 1]), trl = std::min(p.low[i], p.close[i - 1]);
    double ad = 0;
    if (p.close[i] > p.close[i - 1]) ad = p.close[i] - trl;
    if (p.close[i] < p.close[i - 1]) ad = p.close[i] - trh;
    out[i] = nz(out[i - 1]) + ad;
  }
  return out;
}

/// Equal but for the sign of a zero: the resumable trend keeps a first term of -0.0, the twin's sum does not.
bool sameNumbers(double a, double b) {
  return sameBits(a, b) || a == b;
}

// ---- On-balance volume --------------------------------------------------------------------------------

TEST(OnBalanceVolume, ByHand) {
  const PriceRows bars = pointPrices({9, 10, 11, 10, 10, 12}, {50, 100, 200, 300, 400, 500});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 200, -100, -100, 400}, runBatch(bars, balance)));
  EXPECT_TRUE(sameRows(Rows{50, 150, 350, 50, 50, 550}, runResumable(bars, resumedBalance)));
}

TEST(OnBalanceVolume, StaysNullInBatchUntilThePriceMoves) {
  const PriceRows bars = pointPrices({9, 10, 10, 10, 12}, {50, 100, 200, 300, 400});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 400}, runBatch(bars, balance)));
}

TEST(OnBalanceVolume, ResumableSeedsTheHigherLeadWithItsVolume) {
  const PriceRows bars = pointPrices({kNull, 10, 11, 12}, {kNull, kNull, 200, 300});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 200, 500}, runResumable(bars, resumedBalance)));
  // The seed row alone is no row to compute.
  expectNothingDone(pointPrices({kNull, 10}, {kNull, 100}), resumedBalance);
}

TEST(OnBalanceVolume, ANullVolumeIsANumberLikeAnyOther) {
  const PriceRows bars = pointPrices({9, 10, 11}, {50, 100, kNull});
  EXPECT_EQ(runBatch(bars, balance)[2], kNull);
  EXPECT_EQ(runResumable(bars, resumedBalance)[2], 150 + kNull);
}

TEST(OnBalanceVolume, IsTheRuleOverWildRows) {
  constexpr double kWild[] = {kNull, kNaN, kInf, -kInf, 0.0, -0.0, 1, 2, 3, -1, kNull, 2};
  Random random(8);
  for (int round = 0; round < 200; ++round) {
    PriceRows bars = pointPrices(Rows(41, 1.0), Rows(41, 1.0));
    for (double& x : bars.close) x = kWild[random.below(12)];
    // Mostly numbers: after a non-number or an infinity the total says little.
    for (double& x : bars.volume) x = kWild[random.below(8) == 0 ? random.below(12) : 4 + random.below(6)];
    ASSERT_TRUE(sameRows(balanceTwin(bars, true), runBatch(bars, balance))) << "round " << round;
    ASSERT_TRUE(sameRows(balanceTwin(bars, false), runResumable(bars, resumedBalance))) << "round " << round;
  }
}

// ---- Price volume trend -------------------------------------------------------------------------------

TEST(PriceVolumeTrend, ByHand) {
  const PriceRows bars = pointPrices({4, 8, 12, 9, 9}, {10, 20, 200, 300, 400});
  // 4/8 * 200 = 100, -3/12 * 300 = -75, 0; resumable before that 4/4 * 20 = 20
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 100, 25, 25}, runBatch(bars, trend)));
  EXPECT_TRUE(sameRows(Rows{kNull, 20, 120, 45, 45}, runResumable(bars, resumedTrend)));
}

TEST(PriceVolumeTrend, APriceOfZeroIsUnguardedInBatchAndAddsNothingResumed) {
  const PriceRows bars = pointPrices({4, 8, 0, 4, 6}, {1, 1, 1, 1, 1});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, -1, kInf, kInf}, runBatch(bars, trend)));
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 0, 0, 0.5}, runResumable(bars, resumedTrend)));
}

TEST(PriceVolumeTrend, TheWorkSeriesHoldsTheTermsAndTheFirstRowIsItsTermAlone) {
  const PriceRows bars = pointPrices({8, 6, 9}, {1, 4, 4});
  TestStore store(3);
  const PriceSources p = sourcesOf(bars, 3);
  Rows out = {kNull, kNull, kNull};
  std::int32_t slot = -1;
  EXPECT_EQ(resumedTrend(store, p, {out, &slot}), kDone);
  EXPECT_TRUE(sameRows(Rows{kNull, -1, 1}, out));  // -2/8 * 4 = -1, then + 3/6 * 4 = 2
  const WorkField terms = store.field("PVT_CAL", {p.close, p.volume});
  EXPECT_TRUE(sameRows(Rows{kNull, -1, 2}, terms.rows));
  EXPECT_EQ(*terms.slot, 3);
}

TEST(PriceVolumeTrend, TheFirstResumedRowKeepsTheSignOfAZeroTerm) {
  // -2/8 * 0 is a negative zero, which a sum from 0 would lose.
  const Rows out = runResumable(pointPrices({8, 6, 6}, {1, 0, 5}), resumedTrend);
  EXPECT_TRUE(sameRows(Rows{kNull, -0.0, 0}, out));
}

// ---- Trade volume index -------------------------------------------------------------------------------

TEST(TradeVolumeIndex, ByHand) {
  const PriceRows bars = pointPrices({10, 10, 10.25, 11, 11.25, 10, 10}, {1, 2, 4, 8, 16, 32, 64});
  // Within the tick of 0.5 at first: no direction; up, held, down, held.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 0, 8, 24, -8, -72}, runBatch(bars, trades(0.5))));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 8, 24, -8, -72}, runResumable(bars, resumedTrades(0.5))));
}

TEST(TradeVolumeIndex, WithATickOfZeroAFlatRowKeepsTheDirection) {
  const PriceRows bars = pointPrices({10, 10, 11, 11, 10, 10}, {1, 2, 4, 8, 16, 32});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 4, 12, -4, -36}, runBatch(bars, trades(0))));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 4, 12, -4, -36}, runResumable(bars, resumedTrades(0))));
}

TEST(TradeVolumeIndex, ANegativeTickGivesNothing) {
  const PriceRows bars = makePrices(Shape::kWalk, 6);
  EXPECT_TRUE(sameRows(Rows(6, kNull), runBatch(bars, trades(-0.001))));
  expectNothingDone(bars, resumedTrades(-0.001));
}

TEST(TradeVolumeIndex, ResumesFromTheStoredDirectionAndTotal) {
  const PriceRows bars = pointPrices({10, 11, 11, 11}, {1, 2, 4, 8});
  TestStore store(4);
  const PriceSources p = sourcesOf(bars, 4);
  const WorkField direction = store.field("TVI_DIR", {p.close, p.volume, 0.5});
  direction.rows[1] = -1.0;
  *direction.slot = 3;
  Rows out = {kNull, 100, kNull, kNull};
  std::int32_t slot = 3;
  EXPECT_EQ(resumedTrades(0.5)(store, p, {out, &slot}), kDone);
  EXPECT_TRUE(sameRows(Rows{kNull, 100, 96, 88}, out));
  EXPECT_TRUE(sameRows(Rows{kNull, -1, -1, -1}, direction.rows));
}

TEST(TradeVolumeIndex, AResumedTotalReadsANullAsZeroAndNoDirectionResetsIt) {
  const PriceRows bars = pointPrices({10, 10, 10, 12}, {1, 2, 4, 8});
  TestStore store(4);
  const PriceSources p = sourcesOf(bars, 4);
  *store.field("TVI_DIR", {p.close, p.volume, 0.5}).slot = 3;
  Rows out = {kNull, kNull, kNull, kNull};
  std::int32_t slot = 3;
  EXPECT_EQ(resumedTrades(0.5)(store, p, {out, &slot}), kDone);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 0, 8}, out));
  out = {kNull, 77, kNull, kNull};
  slot = 3;
  EXPECT_EQ(resumedTrades(0.5)(store, p, {out, &slot}), kDone);
  EXPECT_TRUE(sameRows(Rows{kNull, 77, 0, 8}, out));
}

// ---- Williams' accumulation and distribution ----------------------------------------------------------

TEST(WilliamsAccumulationDistribution, ByHand) {
  const PriceRows bars = {
      {0, 0, 0, 0, 0}, {11, 12, 15, 13, 13}, {9, 9, 13, 10, 10}, {10, 11, 14, 11, 11}, {0, 0, 0, 0, 0}};
  // Row 1 up: 11 - min(9, 10) = 2; row 2 up, low 13 above the close before: 14 - 11 = 3;
  // row 3 down, high 13 below the close before: 11 - 14 = -3; row 4 unchanged.
  EXPECT_TRUE(
      sameRows(Rows{kNull, kNull, 3, 0, 0}, runBatch(bars, CFeedkit::WilliamsAccumulationDistribution)));
  EXPECT_TRUE(sameRows(Rows{kNull, 2, 5, 2, 2}, runResumable(bars, resumedDistribution)));
}

// ---- All of them --------------------------------------------------------------------------------------

TEST(VolumeTotals, EqualTheirTwins) {
  forEachShortSeries(14, [](const PriceRows& p) {
    EXPECT_TRUE(sameRows(balanceTwin(p, true), runBatch(p, balance)));
    EXPECT_TRUE(sameRows(balanceTwin(p, false), runResumable(p, resumedBalance)));
    EXPECT_TRUE(sameRows(trendTwin(p, true), runBatch(p, trend)));
    EXPECT_TRUE(sameRows(trendTwin(p, false), runResumable(p, resumedTrend), sameNumbers));
    for (double tick : kTicks) {
      EXPECT_TRUE(sameRows(tradesTwin(p, tick, true), runBatch(p, trades(tick)))) << "tick " << tick;
      EXPECT_TRUE(sameRows(tradesTwin(p, tick, false), runResumable(p, resumedTrades(tick))))
          << "tick " << tick;
    }
    EXPECT_TRUE(sameRows(distributionTwin(p, 2), runBatch(p, CFeedkit::WilliamsAccumulationDistribution)));
    EXPECT_TRUE(sameRows(distributionTwin(p, 1), runResumable(p, resumedDistribution)));
  });
}

TEST(VolumeTotals, StreamLikeOneCall) {
  expectStreamsOverAllShapes(resumedBalance);
  expectStreamsOverAllShapes(resumedTrend);
  for (double tick : {0.0, 0.5, 3.0}) expectStreamsOverAllShapes(resumedTrades(tick));
  expectStreamsOverAllShapes(resumedDistribution);
}

TEST(VolumeTotals, SeriesOfDifferentLengthsGiveNothing) {
  const PriceRows bars = pointPrices({1, 2, 3, 4}, {1, 2, 3});
  for (const BatchOperation& operation : {BatchOperation(balance), BatchOperation(trend), trades(0)}) {
    EXPECT_TRUE(sameRows(Rows(4, kNull), runBatch(bars, operation)));
  }
  PriceSources uneven = sourcesOf(bars, 3);
  uneven.close.rows = bars.close;
  for (const Operation& operation : {Operation(resumedBalance), Operation(resumedTrend), resumedTrades(0)}) {
    TestStore store(4);
    Rows out(4, kNull);
    std::int32_t slot = -1;
    EXPECT_EQ(operation(store, uneven, {out, &slot}), kNothingDone);
    EXPECT_EQ(slot, -1);
    EXPECT_TRUE(sameRows(Rows(4, kNull), out));
  }
}

TEST(VolumeTotals, NoRowsGiveNothing) {
  for (const Operation& operation : {Operation(resumedBalance), Operation(resumedTrend), resumedTrades(0),
                                     Operation(resumedDistribution)}) {
    expectNothingDone({}, operation);
    expectNothingDone(makePrices(Shape::kWalk, 1), operation);
  }
}

}  // namespace
}  // namespace brindlewort
