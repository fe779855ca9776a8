#include "indicators/moving_averages.hpp"
#include "indicators/volume.hpp"
#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

// ---- The operations -------------------------------------------------------------------------------------

BatchOperation oscillator(Count shortP, Count longP, Count type, Count mode) {
  return
      [=](const Prices& p, Out out) { CFeedkit::VolumeOscillator(p.volume, shortP, longP, type, mode, out); };
}
Operation resumedOscillator(Count shortP, Count longP, Count type, Count mode) {
  return [=](WorkStore& store, const PriceSources& p, Target out) {
    return CTechnicalFunctions::VolumeOscillator(store, p.volume, shortP, longP, type, mode, out);
  };
}
BatchOperation volatility(Count p, Count rate, Count type) {
  return [=](const Prices& prices, Out out) { CFeedkit::ChaikinVolatility(prices, p, rate, type, out); };
}
Operation resumedVolatility(Count p, Count rate, Count type) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::ChaikinVolatility(store, prices, p, rate, type, out);
  };
}
BatchOperation change(Count p) {
  return [=](const Prices& prices, Out out) { CFeedkit::PriceRateOfChange(prices.close, p, out); };
}
Operation resumedChange(Count p) {
  return [=](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::PriceRateOfChange(prices.close, p, out);
  };
}
BatchOperation ease(Count p, Count type = kSimple) {
  return [=](const Prices& prices, Out out) { CFeedkit::EaseOfMovement(prices, p, type, out); };
}
Operation resumedEase(Count p, Count type = kSimple) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::EaseOfMovement(store, prices, p, type, out);
  };
}

// ---- Slow twins, on the moving averages as they are -------------------------------------------------------

bool within(Count p, Count n, bool batchForm) {
  return 1 <= p && (batchForm ? p < n : p <= n);
}

Rows averageOf(const Rows& in, Count p, Count type, bool batchForm) {
  Rows out(in.size(), kNull);
  if (batchForm) {
    CFeedkit::movingAverageByType(in, p, type, out);
  } else {
    TestStore store(in.size());
    std::int32_t slot = -1;
    CTechnicalFunctions::movingAverageByType(store, {in, "in"}, p, type, {out, &slot});
  }
  return out;
}

Rows oscillatorTwin(const Rows& volume, Count shortP, Count longP, Count type, Count mode, bool batchForm) {
  const Count n = static_cast<Count>(volume.size());
  Rows out(volume.size(), kNull);
  if (!within(shortP, n, batchForm) || !within(longP, n, batchForm)) return out;
  const Rows s = averageOf(volume, std::min(shortP, longP), type, batchForm);
  const Rows l = averageOf(volume, std::max(shortP, longP), type, batchForm);
  if (batchForm) {
    for (Count i = 1; i < n; ++i) {
      if (mode == 1) out[i] = nz(s[i]) - nz(l[i]);
      if (mode == 2 && nz(l[i]) != 0) out[i] = (nz(s[i]) - nz(l[i])) / nz(l[i]) * 100;
    }
  } else if (mode == 1 || mode == 2) {
    for (Count i = std::max(firstValueIndex(s), firstValueIndex(l)); i < n; ++i) {
      out[i] = nz(s[i]) == 0 ? 0 : (nz(s[i]) - nz(l[i])) / nz(s[i]) * (mode == 2 ? 100.0 : 1.0);
    }
  }
  return out;
}

Rows volatilityTwin(const PriceRows& p, Count periods, Count r, Count type, bool batchForm) {
  const Count n = static_cast<Count>(p.close.size());
  Rows out(p.close.size(), kNull), d(p.close.size(), kNull);
  if (!within(periods, n, batchForm) || !within(r, n, batchForm)) return out;
  for (Count i = batchForm ? 1 : 0; i < n; ++i) d[i] = p.high[i] - p.low[i];
  const Rows m = averageOf(d, periods, type, batchForm);
  for (Count i = batchForm ? r + 1 : firstValueIndex(m) + r; i < n; ++i) {
    const double a = nz(m[i - r]), b = nz(m[i]);
    if (a != 0 && (b != 0 || !batchForm)) {
      out[i] = (a - b) / a * -100;
    } else if (!batchForm) {
      out[i] = 0;
    }
  }
  return out;
}

Rows changeTwin(const Rows& in, Count p, bool batchForm) {
  const Count n = static_cast<Count>(in.size());
  Rows out(in.size(), kNull);
  if (!within(p, n, batchForm)) return out;
  const Count lead = firstValueIndex(in);
  for (Count i = batchForm ? p + 1 : lead == 0 ? p : lead + p; i < n; ++i) {
    const double base = nz(in[i - p]);
    if (batchForm ? base > 0 : base != 0) {
      out[i] = (nz(in[i]) - base) / base * 100;
    } else if (!batchForm) {
      out[i] = 0;
    }
  }
  return out;
}

Rows easeTwin(const PriceRows& b, Count p, bool batchForm) {
  const Count n = static_cast<Count>(b.close.size());
  Rows e(b.close.size(), kNull);
  if (!within(p, n, batchForm)) return e;
  double box = 0, move = 0;
  for (Count i = batchForm ? 2 : 1; i < n; ++i) {
    const double mid = (b.high[i] + b.low[i]) / 2 - (b.high[i - 1] + b.low[i - 1]) / 2;
    const double range = b.high[i] - b.low[i];
    if (range != 0) {
      box = b.volume[i] / range;
    } else if (!batchForm) {
      box = 0;
    }
    if (box != 0) {
      move = mid / box;
    } else if (!batchForm) {
      move = 0;
    }
    e[i] = move * 10000;
  }
  return averageOf(e, p, kSimple, batchForm);
}

// ---- Volume oscillator --------------------------------------------------------------------------------

TEST(VolumeOscillator, ByHand) {
  const PriceRows bars = pointPrices(Rows(5, 1), {50, 10, 20, 40, 20});
  // Batch: the short average of 1 row begins at row 2, the long one of 2 rows at row 3 with 30, 30.
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 20, 10, -10}, runBatch(bars, oscillator(1, 2, kSimple, kPoints))));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 10.0 / 30 * 100, -10.0 / 30 * 100},
                       runBatch(bars, oscillator(1, 2, kSimple, kPercent))));
  // Resumable: both divide by the short average; the long one is 30, 15, 30, 30 from row 1.
  EXPECT_TRUE(sameRows(Rows{kNull, -2, 0.25, 0.25, -0.5},
                       runResumable(bars, resumedOscillator(1, 2, kSimple, kPoints))));
  EXPECT_TRUE(sameRows(Rows{kNull, -200, 25, 25, -50},
                       runResumable(bars, resumedOscillator(1, 2, kSimple, kPercent))));
}

TEST(VolumeOscillator, PeriodsAreSwappedWhenTheFirstIsTheGreater) {
  const PriceRows bars = makePrices(Shape::kWalk, 30);
  for (Count mode : {1, 2}) {
    EXPECT_TRUE(sameRows(runBatch(bars, oscillator(3, 8, kSimple, mode)),
                         runBatch(bars, oscillator(8, 3, kSimple, mode))));
    EXPECT_TRUE(sameRows(runResumable(bars, resumedOscillator(3, 8, kSimple, mode)),
                         runResumable(bars, resumedOscillator(8, 3, kSimple, mode))));
  }
}

TEST(VolumeOscillator, AModeOtherThanPointsOrPercentWritesNoRows) {
  const PriceRows bars = makePrices(Shape::kWalk, 10);
  for (Count mode : {0, 3, -1}) {
    EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(bars, oscillator(2, 3, kSimple, mode))));
    EXPECT_TRUE(sameRows(Rows(10, kNull), runResumable(bars, resumedOscillator(2, 3, kSimple, mode))));
  }
}

TEST(VolumeOscillator, ADivisorOfZeroIsNullInBatchAndZeroResumed) {
  const PriceRows bars = pointPrices(Rows(5, 1), Rows(5, 0));
  EXPECT_TRUE(sameRows(Rows(5, kNull), runBatch(bars, oscillator(1, 2, kSimple, kPercent))));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 0, 0}, runBatch(bars, oscillator(1, 2, kSimple, kPoints))));
  for (Count mode : {1, 2}) {
    EXPECT_TRUE(
        sameRows(Rows{kNull, 0, 0, 0, 0}, runResumable(bars, resumedOscillator(1, 2, kSimple, mode))));
  }
}

TEST(VolumeOscillator, WorkSeriesCarryTheModeInTheirKey) {
  const PriceRows bars = makePrices(Shape::kWalk, 10);
  TestStore store(10);
  const PriceSources p = sourcesOf(bars, 10);
  Rows out(10, kNull);
  std::int32_t slot = -1;
  EXPECT_EQ(resumedOscillator(5, 2, kSimple, kPercent)(store, p, {out, &slot}), kDone);
  const auto slotOf = [&](std::string_view name, std::string_view mode) {
    return *store.field(name, {p.volume, Count{2}, Count{5}, KeyPart::maType(kSimple), mode}).slot;
  };
  EXPECT_EQ(slotOf("VO_MAField1", "PERCENT"), 10);
  EXPECT_EQ(slotOf("VO_MAField2", "PERCENT"), 10);
  EXPECT_EQ(slotOf("VO_MAField1", "POINTS"), -1);
}

// ---- Chaikin's volatility -----------------------------------------------------------------------------

/// Bars of these heights.
PriceRows barsOfHeight(const Rows& heights) {
  PriceRows bars = pointPrices(Rows(heights.size(), 10));
  for (std::size_t i = 0; i < heights.size(); ++i) bars.high[i] += heights[i];
  return bars;
}

TEST(ChaikinVolatility, ByHand) {
  const PriceRows bars = barsOfHeight({2, 1, 4, 2, 3});
  // Batch averages of one row begin at row 2, so row 2 has no base: (4 - 2) / 4 * -100, (2 - 3) / 2 * -100.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, -50, 50}, runBatch(bars, volatility(1, 1, kSimple))));
  EXPECT_TRUE(sameRows(Rows{kNull, -50, 300, -50, 50}, runResumable(bars, resumedVolatility(1, 1, kSimple))));
}

TEST(ChaikinVolatility, AZeroOnEitherSideIsNullInBatchAndAZeroBaseIsZeroResumed) {
  const PriceRows bars = barsOfHeight({2, 2, 4, 0, 5});
  EXPECT_TRUE(sameRows(Rows(5, kNull), runBatch(bars, volatility(1, 1, kSimple))));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 100, -100, 0}, runResumable(bars, resumedVolatility(1, 1, kSimple)),
                       nearlySame));
}

TEST(ChaikinVolatility, BothPeriodsPassTheRange) {
  const PriceRows bars = makePrices(Shape::kWalk, 10);
  for (Count bad : {Count{0}, Count{-1}, Count{11}, Count{INT32_MAX}, Count{INT32_MIN}}) {
    EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(bars, volatility(bad, 2, kSimple))));
    EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(bars, volatility(2, bad, kSimple))));
    expectNothingDone(bars, resumedVolatility(bad, 2, kSimple));
    expectNothingDone(bars, resumedVolatility(2, bad, kSimple));
  }
}

// ---- Rates of change ----------------------------------------------------------------------------------

TEST(PriceRateOfChange, ByHand) {
  const PriceRows bars = pointPrices({8, 10, 0, 20, 5});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, -100, kNull, -75}, runBatch(bars, change(1))));
  EXPECT_TRUE(sameRows(Rows{kNull, 25, -100, 0, -75}, runResumable(bars, resumedChange(1))));
}

TEST(PriceRateOfChange, ANegativeBaseIsNullInBatchAndCountsResumed) {
  const PriceRows bars = pointPrices({-10, -10, -5});
  EXPECT_TRUE(sameRows(Rows(3, kNull), runBatch(bars, change(1))));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, -50}, runResumable(bars, resumedChange(1)), nearlySame));
}

TEST(PriceRateOfChange, ResumableWaitsForTheLead) {
  const PriceRows bars = pointPrices({kNull, 10, 20, 15, 40});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 50, 100}, runResumable(bars, resumedChange(2))));
}

TEST(VolumeRateOfChange, IsTheSameComputation) {
  const Rows volume = makeSeries(Shape::kZeros, 30);
  Rows price(30, kNull), rate(30, kNull);
  CFeedkit::PriceRateOfChange(volume, 4, price);
  CFeedkit::VolumeRateOfChange(volume, 4, rate);
  EXPECT_TRUE(sameRows(changeTwin(volume, 4, true), rate));
  EXPECT_TRUE(sameRows(price, rate));
  std::int32_t slot = -1;
  rate.assign(30, kNull);
  EXPECT_EQ(CTechnicalFunctions::VolumeRateOfChange({volume, "VOLUME"}, 4, {rate, &slot}), kDone);
  EXPECT_TRUE(sameRows(changeTwin(volume, 4, false), rate));
  EXPECT_EQ(slot, 30);
}

// ---- Ease of movement ---------------------------------------------------------------------------------

TEST(EaseOfMovement, ByHand) {
  // Middles 9, 10, 12, 13, 14, 16; ranges 4 but on row 3, which has none; no volume on row 4.
  const PriceRows bars = {
      Rows(6, 0), {11, 12, 14, 13, 16, 18}, {7, 8, 10, 13, 12, 14}, Rows(6, 0), {8, 8, 8, 8, 0, 16}};
  // Boxes 2 and 4: 2 / 2, then 1 / the box before, then (box 0) the move before, then 2 / 4.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 10000, 5000, 5000, 5000}, runBatch(bars, ease(1))));
  // Resumable: rows without box are 0; row 1 is 1 / 2.
  EXPECT_TRUE(sameRows(Rows{kNull, 5000, 10000, 0, 0, 5000}, runResumable(bars, resumedEase(1))));
}

TEST(EaseOfMovement, BoxAndMoveStartAsZero) {
  const PriceRows bars = pointPrices({1, 2, 3, 4});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 0, 0}, runBatch(bars, ease(1))));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 0}, runResumable(bars, resumedEase(1))));
}

TEST(EaseOfMovement, TheMovingAverageTypeEntersOnlyTheKey) {
  const PriceRows bars = makePrices(Shape::kWalk, 30);
  for (Count type : {2, 6, 8, 99}) {
    EXPECT_TRUE(sameRows(runBatch(bars, ease(5)), runBatch(bars, ease(5, type))));
    EXPECT_TRUE(sameRows(runResumable(bars, resumedEase(5)), runResumable(bars, resumedEase(5, type))));
  }
}

// ---- All of them --------------------------------------------------------------------------------------

TEST(VolumeRates, EqualTheirTwins) {
  forEachShortSeries(20, [](const PriceRows& bars) {
    for (Count p = 0; p <= 4; ++p) {
      SCOPED_TRACE(p);
      EXPECT_TRUE(sameRows(changeTwin(bars.close, p, true), runBatch(bars, change(p))));
      EXPECT_TRUE(sameRows(changeTwin(bars.close, p, false), runResumable(bars, resumedChange(p))));
      EXPECT_TRUE(sameRows(easeTwin(bars, p, true), runBatch(bars, ease(p))));
      EXPECT_TRUE(sameRows(easeTwin(bars, p, false), runResumable(bars, resumedEase(p))));
      for (Count other : {1, 3}) {
        for (Count type : {1, 2}) {
          EXPECT_TRUE(sameRows(volatilityTwin(bars, p, other, type, true),
                               runBatch(bars, volatility(p, other, type))));
          EXPECT_TRUE(sameRows(volatilityTwin(bars, p, other, type, false),
                               runResumable(bars, resumedVolatility(p, other, type))));
          for (Count mode : {1, 2}) {
            EXPECT_TRUE(sameRows(oscillatorTwin(bars.volume, p, other, type, mode, true),
                                 runBatch(bars, oscillator(p, other, type, mode))));
            EXPECT_TRUE(sameRows(oscillatorTwin(bars.volume, p, other, type, mode, false),
                                 runResumable(bars, resumedOscillator(p, other, type, mode))));
          }
        }
      }
    }
  });
}

TEST(VolumeRates, EveryMovingAverageTypeIsPassedOn) {
  const PriceRows bars = makePrices(Shape::kWalk, 50);
  for (Count type = 0; type <= 9; ++type) {
    SCOPED_TRACE(type);
    EXPECT_TRUE(sameRows(oscillatorTwin(bars.volume, 3, 7, type, kPoints, true),
                         runBatch(bars, oscillator(3, 7, type, kPoints))));
    EXPECT_TRUE(sameRows(oscillatorTwin(bars.volume, 3, 7, type, kPoints, false),
                         runResumable(bars, resumedOscillator(3, 7, type, kPoints))));
    EXPECT_TRUE(sameRows(volatilityTwin(bars, 4, 3, type, true), runBatch(bars, volatility(4, 3, type))));
    EXPECT_TRUE(
        sameRows(volatilityTwin(bars, 4, 3, type, false), runResumable(bars, resumedVolatility(4, 3, type))));
  }
}

/// Whole volumes, with nulls where the shape has them. A sliding sum of whole numbers is exact, so that a
/// window of nothing sums to 0 on every path; of fractions it may keep a last bit there, which a ratio to it
/// blows up.
PriceRows wholeVolumes(Shape shape) {
  PriceRows bars = makePrices(shape, 40);
  bars.volume = makeSeries(shape, 40, 5);
  for (double& v : bars.volume) v = std::round(v);
  return bars;
}

TEST(VolumeRates, StreamLikeOneCall) {
  for (Count p : {1, 3}) {
    SCOPED_TRACE(p);
    expectStreamsOverAllShapes(resumedChange(p));
    for (Count type = kSimple; type <= kWilder; ++type) {
      SCOPED_TRACE(type);
      expectStreamsOverAllShapes(resumedVolatility(p, 2, type));
      for (Shape shape : kStreamedShapes) {
        SCOPED_TRACE(static_cast<int>(shape));
        for (Count mode : {kPoints, kPercent}) {
          expectStreamsLikeOneCall(makePrices(shape, 40), resumedOscillator(p, 4, type, mode));
          expectStreamsLikeOneCall(wholeVolumes(shape), resumedOscillator(p, 4, type, mode));
        }
      }
    }
  }
}

TEST(EaseOfMovement, StreamsLikeOneCall) {
  for (Count p : {1, 3}) {
    for (Shape shape : kStreamedShapes) {
      if (shape == Shape::kNullHead || shape == Shape::kNullGaps) continue;
      SCOPED_TRACE(static_cast<int>(shape));
      expectStreamsLikeOneCall(makePrices(shape, 40), resumedEase(p));
      expectStreamsLikeOneCall(wholeVolumes(shape), resumedEase(p));
    }
  }
}

TEST(EaseOfMovement, NullPricesStreamToTheLastBitsOfTheirSize) {
  // A null price is read as the number it is, so that moves into and out of a gap are huge; the sliding
  // average keeps last bits of them which a sum formed anew on a later call does not have.
  for (Shape shape : {Shape::kNullHead, Shape::kNullGaps}) {
    const PriceRows bars = makePrices(shape, 40);
    const Rows once = runResumable(bars, resumedEase(3));
    double largest = 0.0;
    for (double x : once) largest = std::max(largest, isNull(x) ? 0.0 : std::fabs(x));
    for (bool edits : {false, true}) {
      const Rows streamed = runStreamed(bars, resumedEase(3), edits).rows;
      for (std::size_t i = 0; i < once.size(); ++i) {
        EXPECT_EQ(isNull(once[i]), isNull(streamed[i])) << "row " << i;
        EXPECT_NEAR(once[i], streamed[i], 1e-12 * largest) << "row " << i;
      }
    }
  }
}

TEST(VolumeRates, PeriodsOutOfRangeGiveNothing) {
  const PriceRows bars = makePrices(Shape::kWalk, 10);
  for (Count bad : {Count{0}, Count{-1}, Count{11}, Count{INT32_MAX}, Count{INT32_MIN}}) {
    SCOPED_TRACE(bad);
    EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(bars, change(bad))));
    EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(bars, ease(bad))));
    EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(bars, oscillator(bad, 3, kSimple, kPoints))));
    EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(bars, oscillator(3, bad, kSimple, kPoints))));
    expectNothingDone(bars, resumedChange(bad));
    expectNothingDone(bars, resumedEase(bad));
    expectNothingDone(bars, resumedOscillator(bad, 3, kSimple, kPoints));
    expectNothingDone(bars, resumedOscillator(3, bad, kSimple, kPoints));
    expectNothingDone({}, resumedEase(bad));
  }
}

TEST(VolumeRates, APeriodOfAllRowsPassesOnlyTheResumableRange) {
  const PriceRows bars = makePrices(Shape::kWalk, 10);
  EXPECT_TRUE(sameRows(Rows(10, kNull), runBatch(bars, oscillator(2, 10, kSimple, kPoints))));
  EXPECT_FALSE(isNull(runResumable(bars, resumedOscillator(2, 10, kSimple, kPoints))[9]));
  expectNothingDone(bars, resumedChange(10));
}

}  // namespace
}  // namespace brindlewort
