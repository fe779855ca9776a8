#include "indicators/volume.hpp"
#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

BatchOperation flowIndex(Count p) {
  return [=](const Prices& prices, Out out) { CFeedkit::MoneyFlowIndex(prices, p, out); };
}
Operation resumedFlowIndex(Count p) {
  return [=](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::MoneyFlowIndex(prices, p, out);
  };
}
BatchOperation chaikin(Count p) {
  return [=](const Prices& prices, Out out) { CFeedkit::ChaikinMoneyFlow(prices, p, out); };
}
Operation resumedChaikin(Count p) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::ChaikinMoneyFlow(store, prices, p, out);
  };
}

// ---- Slow twins ---------------------------------------------------------------------------------------

Rows flowIndexTwin(const PriceRows& b, Count p, bool batchForm) {
  const Count n = static_cast<Count>(b.close.size());
  Rows out(b.close.size(), kNull);
  if (p < 1 || (batchForm ? p >= n : p > n)) return out;
  const auto tp = [&](Count j) { return (b.high[j] + b.low[j] + b.close[j]) / 3; };
  for (Count i = batchForm ? p + 1 : p; i < n; ++i) {
    double pos = 0, neg = 0;
    for (Count j = i - p + 1; j <= i; ++j) {
      double v = b.volume[j];
      if (v < 1) v = 1;
      if (tp(j - 1) < tp(j)) pos += tp(j) * v;
      if (tp(j - 1) > tp(j)) neg += tp(j) * v;
    }
    if (pos != 0 && neg != 0) {
      const double ratio = pos / neg;
      out[i] = 100 - 100 / (1 + ratio);
    } else if (!batchForm) {
      out[i] = 100 - 100 / (1 + 0.0);
    }
  }
  return out;
}

/// One multiplier for the whole call, every window walked from its newest row to its oldest.
Rows chaikinBatchTwin(const PriceRows& b, Count p) {
  const Count n = static_cast<Count>(b.close.size());
  Rows out(b.close.size(), kNull);
  if (p < 1 || p >= n) return out;
  double m = 1;
  for (Count i = p + 1; i < n; ++i) {
    double sumMFV = 0, sumV = 0;
    for (Count j = i; j > i - p; --j) {
      const double a_ = (b.close[j] - b.low[j]) - (b.high[j] - b.close[j]);
      const double b_ = b.high[j] - b.low[j];
      if (a_ == 0 || b_ == 0) m = a_ / b_;
      sumMFV += b.volume[j] * m;
      sumV += b.volume[j];
    }
    if (sumV != 0) out[i] = sumMFV / sumV;
  }
  return out;
}

/// Zero at four decimals.
bool isZeroRounded(double x) {
  const double biased = x > 0 ? x + 1e-10 : x < 0 ? x - 1e-10 : x;
  return std::trunc(biased * 10000) == 0;
}

Rows chaikinResumableTwin(const PriceRows& b, Count p) {
  const Count n = static_cast<Count>(b.close.size());
  Rows out(b.close.size(), kNull), m(b.close.size());
  if (p < 1 || p > n) return out;
  for (Count i = 0; i < n; ++i) {
    const double a_ = (b.close[i] - b.low[i]) - (b.high[i] - b.close[i]);
    const double b_ = b.high[i] - b.low[i];
    if (!isZeroRounded(a_) || !isZeroRounded(b_)) {
      m[i] = i == 0 ? 1 : m[i - 1];
    } else {
      m[i] = a_ / b_;
    }
  }
  for (Count i = p - 1; i < n; ++i) {
    double sumMFV = 0, sumV = 0;
    for (Count j = i - p + 1; j <= i; ++j) {
      sumMFV += b.volume[j] * m[j];
      sumV += b.volume[j];
    }
    out[i] = sumV == 0 ? 0 : sumMFV / sumV;
  }
  return out;
}

// ---- Money flow index ---------------------------------------------------------------------------------

TEST(MoneyFlowIndex, ByHand) {
  const PriceRows bars = pointPrices({3, 3, 6, 5, 6}, {1, 1, 5, 6, 15});
  // Rows 2 and 3: 6 * 5 = 30 in, 5 * 6 = 30 out. Rows 3 and 4: 90 in, 30 out. Rows 1 and 2 have no outflow.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 50, 75}, runBatch(bars, flowIndex(2))));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 0, 50, 75}, runResumable(bars, resumedFlowIndex(2))));
}

TEST(MoneyFlowIndex, VolumeBelowOneCountsAsOne) {
  const PriceRows bars = pointPrices({3, 3, 6, 4, 4}, {1, 1, 0, 0.5, -7});
  // 6 * 1 in, 4 * 1 out: 100 - 100 / (1 + 6 / 4)
  EXPECT_EQ(runBatch(bars, flowIndex(2))[3], 60);
  EXPECT_EQ(runResumable(bars, resumedFlowIndex(2))[3], 60);
}

TEST(MoneyFlowIndex, WithoutInflowOrOutflowBatchIsNullAndResumableIsZero) {
  const PriceRows rising = makePrices(Shape::kRising, 8);
  EXPECT_TRUE(sameRows(Rows(8, kNull), runBatch(pointPrices(rising.close), flowIndex(3))));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 0, 0, 0, 0, 0},
                       runResumable(pointPrices(rising.close), resumedFlowIndex(3))));
}

TEST(MoneyFlowIndex, EqualTypicalPricesAddToNeither) {
  const PriceRows bars = pointPrices({3, 3, 6, 6, 3}, {9, 9, 1, 9, 2});
  EXPECT_EQ(runBatch(bars, flowIndex(3))[4], 50);  // 6 * 1 in, 3 * 2 out
}

// ---- Chaikin's money flow, batch ----------------------------------------------------------------------

/// A bar as (high, low, close). The close stands in the middle where a is 0; b is 0 without a range.
struct Bar3 {
  double high, low, close;
};
constexpr Bar3 kPlain = {12, 8, 11};        // a = 2, b = 4: m stays
constexpr Bar3 kMiddle = {12, 8, 10};       // a = 0, b = 4: m becomes 0
constexpr Bar3 kPointAbove = {10, 10, 11};  // a = 2, b = 0: m becomes infinite

PriceRows barsOf(const std::vector<Bar3>& bars, const Rows& volume) {
  PriceRows out;
  for (const Bar3& bar : bars) {
    out.open.push_back(bar.close);
    out.high.push_back(bar.high);
    out.low.push_back(bar.low);
    out.close.push_back(bar.close);
  }
  out.volume = volume;
  return out;
}

TEST(ChaikinMoneyFlow, WhereNeitherTermIsEverZeroEveryBatchRowIsOne) {
  const PriceRows bars = barsOf(std::vector<Bar3>(9, kPlain), {1, 2, 3, 4, 5, 6, 7, 8, 9});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 1, 1, 1, 1, 1}, runBatch(bars, chaikin(3))));
}

TEST(ChaikinMoneyFlow, BatchMultiplierIsReplacedAtAZeroTermAndCarriedOn) {
  // Windows of two rows. Row 4 makes m 0 for itself, for row 3 behind it, and for all that follows.
  const PriceRows bars = barsOf({kPlain, kPlain, kPlain, kPlain, kMiddle, kPlain, kPlain}, Rows(7, 1));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 1, 0, 0, 0}, runBatch(bars, chaikin(2))));
}

TEST(ChaikinMoneyFlow, BatchWindowsAreWalkedFromTheNewestRow) {
  // The window of row 4 ends on row 3, where m becomes infinite; row 5 enters with that, and only behind it
  // row 4 makes m 0 again. Row 6 enters with 0.
  const PriceRows bars = barsOf({kPlain, kPlain, kPlain, kPointAbove, kMiddle, kPlain, kPlain}, Rows(7, 1));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kInf, kInf, kInf, 0}, runBatch(bars, chaikin(2))));
}

TEST(ChaikinMoneyFlow, BatchRowWithoutVolumeIsNull) {
  const PriceRows bars = barsOf(std::vector<Bar3>(5, kPlain), {1, 0, 0, 0, 6});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 1}, runBatch(bars, chaikin(2))));
}

/// Plain bars with a zero term here and there, each kind of it, and volumes whose sums round.
PriceRows mixedBars(int n, int oneIn, std::uint64_t seed) {
  const Bar3 kinds[] = {kMiddle, kPointAbove, {10, 10, 9}, {8, 12, 10}, {10, 10, 10}};
  Random random(seed);
  std::vector<Bar3> bars;
  Rows volume;
  for (int i = 0; i < n; ++i) {
    // The last kind, which leaves no number, is rare: nothing after it shows the order any more.
    bars.push_back(random.below(oneIn) != 0 ? kPlain : kinds[random.below(60) == 0 ? 4 : random.below(4)]);
    volume.push_back(random.unit() * 100 - (random.below(10) == 0 ? 60 : 0));
  }
  return barsOf(bars, volume);
}

TEST(ChaikinMoneyFlow, BatchEqualsTheWalkOverOverlappingWindowsBitForBit) {
  for (int oneIn : {2, 5, 17, 60}) {
    for (std::uint64_t seed = 1; seed <= 10; ++seed) {
      const PriceRows bars = mixedBars(90, oneIn, seed);
      for (Count p : {1, 2, 3, 7, 8, 9, 30, 88, 89}) {
        EXPECT_TRUE(sameRows(chaikinBatchTwin(bars, p), runBatch(bars, chaikin(p))))
            << "one in " << oneIn << ", seed " << seed << ", p " << p;
      }
    }
  }
}

// ---- Chaikin's money flow, resumable ------------------------------------------------------------------

TEST(ChaikinMoneyFlow, ResumedMultiplierIsOneUntilBothTermsAreZero) {
  // A middle close leaves b, so m stays 1; only a bar without any extent takes a / b, here no number.
  const PriceRows bars = barsOf({kPlain, kMiddle, kPointAbove, {10, 10, 10}, kPlain}, Rows(5, 2));
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 1, kNaN, kNaN}, runResumable(bars, resumedChaikin(2))));
}

TEST(ChaikinMoneyFlow, ResumedTermsCountAsZeroBelowFourDecimals) {
  // High 0.00008, low 0, close 0.00006: a = 0.00004 and b = 0.00008 are 0 at four decimals, a / b is 1/2.
  const double tiny = 0x1p-14;  // 0.000061
  const PriceRows bars = barsOf({kPlain, {tiny, 0, tiny * 0.75}, kPlain}, {1, 1, 1});
  EXPECT_TRUE(sameRows(Rows{1, 0.5, 0.5}, runResumable(bars, resumedChaikin(1))));
  // Twice the height is a term again.
  const PriceRows higher = barsOf({kPlain, {2 * tiny, 0, tiny * 1.5}, kPlain}, {1, 1, 1});
  EXPECT_TRUE(sameRows(Rows{1, 1, 1}, runResumable(higher, resumedChaikin(1))));
}

TEST(ChaikinMoneyFlow, ResumedByHandWeighsTheVolume) {
  const double tiny = 0x1p-14;
  const PriceRows bars = barsOf({kPlain, {tiny, 0, tiny * 0.75}, kPlain}, {3, 1, 2});
  // m is 1, 1/2, 1/2: (3 + 0.5) / 4, (0.5 + 1) / 3
  EXPECT_TRUE(sameRows(Rows{kNull, 0.875, 0.5}, runResumable(bars, resumedChaikin(2))));
}

TEST(ChaikinMoneyFlow, ResumedRowWithoutVolumeIsZero) {
  const PriceRows bars = barsOf({kPlain, kPlain, kPlain}, {0, 0, 3});
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 1}, runResumable(bars, resumedChaikin(2))));
}

TEST(ChaikinMoneyFlow, WorkSeriesHoldMultiplierAndFlow) {
  const PriceRows bars = barsOf({kPlain, kPlain}, {3, 5});
  TestStore store(2);
  const PriceSources p = sourcesOf(bars, 2);
  Rows out(2, kNull);
  std::int32_t slot = -1;
  EXPECT_EQ(resumedChaikin(2)(store, p, {out, &slot}), kDone);
  const WorkField m = store.field("CMF_Temp", {p.high, p.low, p.close});
  const WorkField flow = store.field("CMF_MFV", {p.high, p.low, p.close, p.volume});
  EXPECT_TRUE(sameRows(Rows{1, 1}, m.rows));
  EXPECT_TRUE(sameRows(Rows{3, 5}, flow.rows));
  EXPECT_EQ(*m.slot, 2);
  EXPECT_EQ(*flow.slot, 2);
}

// ---- Both ---------------------------------------------------------------------------------------------

TEST(MoneyFlow, EqualsTheTwins) {
  forEachShortSeries(20, [](const PriceRows& bars) {
    for (Count p = 1; p <= 4; ++p) {
      SCOPED_TRACE(p);
      EXPECT_TRUE(sameRows(flowIndexTwin(bars, p, true), runBatch(bars, flowIndex(p))));
      EXPECT_TRUE(sameRows(flowIndexTwin(bars, p, false), runResumable(bars, resumedFlowIndex(p))));
      EXPECT_TRUE(sameRows(chaikinBatchTwin(bars, p), runBatch(bars, chaikin(p))));
      EXPECT_TRUE(sameRows(chaikinResumableTwin(bars, p), runResumable(bars, resumedChaikin(p))));
    }
  });
}

TEST(MoneyFlow, PeriodsAtTheEdgesOfTheRange) {
  const PriceRows bars = makePrices(Shape::kWalk, 12);
  for (Count p : {11, 12}) {
    EXPECT_TRUE(sameRows(Rows(12, kNull), runBatch(bars, flowIndex(p))));
    EXPECT_TRUE(sameRows(Rows(12, kNull), runBatch(bars, chaikin(p))));
  }
  EXPECT_TRUE(sameRows(flowIndexTwin(bars, 11, false), runResumable(bars, resumedFlowIndex(11))));
  EXPECT_TRUE(sameRows(chaikinResumableTwin(bars, 12), runResumable(bars, resumedChaikin(12))));
  // A window of all rows has no row before it to compare with.
  expectNothingDone(bars, resumedFlowIndex(12));
}

TEST(MoneyFlow, PeriodsOutOfRangeGiveNothing) {
  const PriceRows bars = makePrices(Shape::kWalk, 12);
  for (Count p : {Count{0}, Count{-3}, Count{13}, Count{INT32_MIN}, Count{INT32_MAX}}) {
    SCOPED_TRACE(p);
    EXPECT_TRUE(sameRows(Rows(12, kNull), runBatch(bars, flowIndex(p))));
    EXPECT_TRUE(sameRows(Rows(12, kNull), runBatch(bars, chaikin(p))));
    expectNothingDone(bars, resumedFlowIndex(p));
    expectNothingDone(bars, resumedChaikin(p));
    expectNothingDone({}, resumedChaikin(p));
  }
}

TEST(MoneyFlow, StreamsLikeOneCall) {
  for (Count p : {1, 2, 5}) {
    expectStreamsOverAllShapes(resumedFlowIndex(p));
    expectStreamsOverAllShapes(resumedChaikin(p));
  }
}

}  // namespace
}  // namespace brindlewort
