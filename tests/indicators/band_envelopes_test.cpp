#include <gtest/gtest.h>

#include "indicators/band_twins.hpp"
#include "indicators/bands.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/true_range.hpp"

namespace brindlewort {
namespace {

using namespace testing;

constexpr Band kLines[] = {Band::kTop, Band::kMiddle, Band::kBottom};

Rows average(const Rows& in, Count p, Count maType) {
  Rows out(in.size(), kNull);
  CFeedkit::movingAverageByType(in, p, maType, out);
  return out;
}

Rows resumableAverage(const PriceRows& prices, Count p, Count maType) {
  return runAtOnce(prices,
                   [=](WorkStore& store, const PriceSources& sources, Target out) {
                     return CTechnicalFunctions::movingAverageByType(store, sources.close, p, maType, out);
                   })
      .rows;
}

/// The three lines of a band: rows of `middle` and of `width` from `first`; `whole` keeps the middle line
/// whole.
Rows linesTwin(const Rows& middle, const Rows& width, Count first, Band band, bool whole) {
  Rows out(middle.size(), kNull);
  if (band == Band::kMiddle && whole) return middle;
  for (Count i = first; i < rowsOf(out); ++i) {
    if (band == Band::kTop) out[i] = nz(middle[i]) + width[i];
    if (band == Band::kMiddle) out[i] = middle[i];
    if (band == Band::kBottom) out[i] = nz(middle[i]) - width[i];
  }
  return out;
}

// ---- Bollinger bands -------------------------------------------------------------------------------------

Rows bollinger(const Rows& in, Count p, double d, Count maType, Band band) {
  Rows out(in.size(), kNull);
  CFeedkit::BollingerBands(in, p, d, maType, band, out);
  return out;
}

bool hasBollinger(const Rows& in, Count p, double d, Count maType, Band band = Band::kTop) {
  Rows out(in.size(), kNull);
  const bool exists = CFeedkit::BollingerBands(in, p, d, maType, band, out);
  EXPECT_TRUE(exists || sameRows(Rows(in.size(), kNull), out));
  return exists;
}

Operation resumableBollinger(Count p, double d, Count maType, Band band) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::BollingerBands(store, prices.close, p, d, maType, band, out);
  };
}

Rows widthTwin(const Rows& in, const Rows& m, Count p, double d, Count first) {
  Rows width(in.size(), kNull);
  for (Count i = first; i < rowsOf(in); ++i) {
    double sum = 0;
    for (Count j = i - p + 1; j <= i; ++j) sum = sum + (nz(in[j]) - nz(m[i])) * (nz(in[j]) - nz(m[i]));
    width[i] = std::sqrt(sum / static_cast<double>(p)) * d;
  }
  return width;
}

Rows batchBollingerTwin(const Rows& in, Count p, double d, Count maType, Band band) {
  if (p < 1 || p > rowsOf(in)) return Rows(in.size(), kNull);
  const Rows m = average(in, p, maType);
  return linesTwin(m, widthTwin(in, m, p, d, p + 1), p + 1, band, true);
}

Rows resumableBollingerTwin(const PriceRows& prices, Count p, double d, Count maType, Band band) {
  const Rows& in = prices.close;
  if (p < 1 || p > rowsOf(in)) return Rows(in.size(), kNull);
  const Rows m = resumableAverage(prices, p, maType);
  const Count first = std::max(firstValueIndex(in), firstValueIndex(m));
  return linesTwin(m, widthTwin(in, m, p, d, first), first, band, false);
}

TEST(BollingerBandsBatch, ByHand) {
  // Row 3: average of 3 and 5 is 4, each is 1 away; row 4: average of 5 and 9 is 7, each is 2 away.
  const Rows in = {0, 1, 3, 5, 9};
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 6, 11}, bollinger(in, 2, 2.0, kSimple, Band::kTop)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 4, 7}, bollinger(in, 2, 2.0, kSimple, Band::kMiddle)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 2, 3}, bollinger(in, 2, 2.0, kSimple, Band::kBottom)));
}

TEST(BollingerBandsResumable, ByHand) {
  // Row 1: average of 0 and 1 is 0.5, each is 0.5 away; row 2: average of 1 and 3 is 2, each is 1 away.
  const PriceRows prices = closesOf({0, 1, 3, 5, 9});
  EXPECT_TRUE(sameRows(Rows{kNull, 1.5, 4, 6, 11},
                       runAtOnce(prices, resumableBollinger(2, 2.0, kSimple, Band::kTop)).rows));
  EXPECT_TRUE(sameRows(Rows{kNull, 0.5, 2, 4, 7},
                       runAtOnce(prices, resumableBollinger(2, 2.0, kSimple, Band::kMiddle)).rows));
  EXPECT_TRUE(sameRows(Rows{kNull, -0.5, 0, 2, 3},
                       runAtOnce(prices, resumableBollinger(2, 2.0, kSimple, Band::kBottom)).rows));
}

TEST(BollingerBands, With0DeviationsTopAndBottomEqualTheMiddleLine) {
  const PriceRows prices = makePrices(Shape::kWalk, 40);
  const Rows m = bollinger(prices.close, 5, 0.0, kExponential, Band::kMiddle);
  for (Band band : {Band::kTop, Band::kBottom}) {
    const Rows line = bollinger(prices.close, 5, 0.0, kExponential, band);
    for (std::size_t i = 6; i < 40; ++i) EXPECT_EQ(m[i], line[i]) << i;
    EXPECT_TRUE(isNull(line[5]));  // the average itself begins one row earlier
    EXPECT_FALSE(isNull(m[5]));
    EXPECT_TRUE(sameRows(runAtOnce(prices, resumableBollinger(5, 0.0, kExponential, Band::kMiddle)).rows,
                         runAtOnce(prices, resumableBollinger(5, 0.0, kExponential, band)).rows));
  }
}

TEST(BollingerBandsBatch, ArgumentsOutOfRangeGiveNoSeries) {
  const Rows in = makeSeries(Shape::kWalk, 60);
  for (Band band : kLines) {
    EXPECT_TRUE(hasBollinger(in, 1, 0.0, 0, band));
    EXPECT_TRUE(hasBollinger(in, 60, 100.0, kWilder, band));
    EXPECT_FALSE(hasBollinger(in, 61, 2.0, kSimple, band));
    EXPECT_FALSE(hasBollinger(in, 0, 2.0, kSimple, band));
    EXPECT_FALSE(hasBollinger(in, INT32_MIN, 2.0, kSimple, band));
    EXPECT_FALSE(hasBollinger(in, 5, 2.0, -1, band));
    EXPECT_FALSE(hasBollinger(in, 5, -0.001, kSimple, band));
    EXPECT_FALSE(hasBollinger(in, 5, 100.001, kSimple, band));
    EXPECT_FALSE(hasBollinger(in, 5, kNaN, kSimple, band));
    EXPECT_FALSE(hasBollinger({}, 1, 2.0, kSimple, band));
  }
}

TEST(BollingerBandsBatch, APeriodOfAllRowsIsInRangeButHasNoRow) {
  const Rows in = makeSeries(Shape::kWalk, 10);
  for (Band band : kLines) EXPECT_TRUE(sameRows(Rows(10, kNull), bollinger(in, 10, 2.0, kSimple, band)));
}

TEST(BollingerBandsResumable, OnlyThePeriodIsTested) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  for (Count p : {Count{0}, Count{-1}, Count{61}, Count{INT32_MIN}, Count{INT32_MAX}}) {
    for (Band band : kLines) expectNothingDone(prices, resumableBollinger(p, 2.0, kSimple, band));
  }
  for (Band band : kLines) {
    EXPECT_TRUE(sameRows(resumableBollingerTwin(prices, 5, 150.0, kSimple, band),
                         runAtOnce(prices, resumableBollinger(5, 150.0, kSimple, band)).rows));
  }
}

TEST(BollingerBands, AreTheSlowTwinForEveryShapeLengthAndAverage) {
  for (Count p : kSmallPeriods) {
    forShortSeries(p, [p](const PriceRows& prices) {
      for (Count type = 0; type <= 9; ++type) {
        for (Band band : kLines) {
          EXPECT_TRUE(sameRows(batchBollingerTwin(prices.close, p, 2.5, type, band),
                               bollinger(prices.close, p, 2.5, type, band)))
              << "batch, type " << type;
          EXPECT_TRUE(sameRows(resumableBollingerTwin(prices, p, 2.5, type, band),
                               runAtOnce(prices, resumableBollinger(p, 2.5, type, band)).rows))
              << "resumable, type " << type;
        }
      }
    });
  }
}

TEST(BollingerBands, RowsSideBySideHaveTheBitsOfRowsAlone) {
  const Rows in = makeSeries(Shape::kWalk, 1000);
  for (Band band : kLines) {
    EXPECT_TRUE(
        sameRows(batchBollingerTwin(in, 50, 2.0, kWeighted, band), bollinger(in, 50, 2.0, kWeighted, band)));
  }
}

TEST(BollingerBandsResumable, StreamsLikeOneCall) {
  for (Count type = 1; type <= 8; ++type) {
    SCOPED_TRACE(::testing::Message() << "type " << type);
    for (Band band : kLines) expectStreams(resumableBollinger(5, 2.0, type, band));
  }
  expectRepeatable(makePrices(Shape::kWalk, 30), resumableBollinger(5, 2.0, kSimple, Band::kTop));
}

// ---- Keltner channel -------------------------------------------------------------------------------------

Rows keltner(const PriceRows& prices, Count p, Count maType, double factor, Band band) {
  Rows out(prices.close.size(), kNull);
  CFeedkit::KeltnerChannel(viewsOf(prices), p, maType, factor, band, out);
  return out;
}

Operation resumableKeltner(Count p, Count maType, double factor, Band band) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::KeltnerChannel(store, prices, p, maType, factor, band, out);
  };
}

Rows scaled(Rows range, double factor) {
  for (double& x : range) x = nz(x) * factor;
  return range;
}

Rows batchKeltnerTwin(const PriceRows& prices, Count p, Count maType, double factor, Band band) {
  const Count n = rowsOf(prices.close);
  Rows range(prices.close.size(), kNull);
  if (p < 1 || p > n) return range;
  CFeedkit::AverageTrueRange(viewsOf(prices), p, maType, range);
  return linesTwin(average(prices.close, p, maType), scaled(range, factor), p + 1, band, true);
}

Rows resumableKeltnerTwin(const PriceRows& prices, Count p, Count maType, double factor, Band band) {
  if (p < 1 || p > rowsOf(prices.close)) return Rows(prices.close.size(), kNull);
  const Rows m = resumableAverage(prices, p, maType);
  const Rows range = runAtOnce(prices, [=](WorkStore& store, const PriceSources& sources, Target out) {
                       return CTechnicalFunctions::AverageTrueRange(store, sources, p, maType, out);
                     }).rows;
  const Count first = std::max(firstValueIndex(range), firstValueIndex(m));
  return linesTwin(m, scaled(range, factor), first, band, false);
}

/// Bars around a steady close of 10, each 2 high.
PriceRows steadyBars(std::size_t n) {
  return barsOf(Rows(n, 11.0), Rows(n, 9.0), Rows(n, 10.0));
}

TEST(KeltnerChannel, ByHand) {
  // The true range is 2 in every row, so that the width is 2 * 1.5. It exists from row 2 (batch) or 1.
  const PriceRows bars = steadyBars(5);
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 13, 13}, keltner(bars, 2, kSimple, 1.5, Band::kTop)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 10, 10}, keltner(bars, 2, kSimple, 1.5, Band::kMiddle)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 7, 7}, keltner(bars, 2, kSimple, 1.5, Band::kBottom)));
  const auto resumable = [&](Band band) {
    return runAtOnce(bars, resumableKeltner(2, kSimple, 1.5, band)).rows;
  };
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 13, 13, 13}, resumable(Band::kTop)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 10, 10, 10}, resumable(Band::kMiddle)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 7, 7, 7}, resumable(Band::kBottom)));
}

TEST(KeltnerChannel, TheMiddleLineOfTheBatchFormIsTheWholeAverage) {
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  EXPECT_TRUE(
      sameRows(average(prices.close, 5, kExponential), keltner(prices, 5, kExponential, 2.0, Band::kMiddle)));
  EXPECT_FALSE(isNull(keltner(prices, 5, kExponential, 2.0, Band::kMiddle)[5]));
  EXPECT_TRUE(isNull(keltner(prices, 5, kExponential, 2.0, Band::kTop)[5]));
}

TEST(KeltnerChannelBatch, ArgumentsOutOfRangeLeaveAllRowsNull) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  const Rows none(60, kNull);
  for (Band band : kLines) {
    for (Count p : kBadPeriods) EXPECT_TRUE(sameRows(none, keltner(prices, p, kSimple, 2.0, band))) << p;
    EXPECT_TRUE(sameRows(none, keltner(prices, 5, -1, 2.0, band)));
    EXPECT_TRUE(sameRows(none, keltner(prices, 5, kSimple, -0.001, band)));
    EXPECT_FALSE(isNull(keltner(prices, 5, kSimple, 0.0, band)[6]));
    EXPECT_TRUE(sameRows(Rows{}, keltner({}, 5, kSimple, 2.0, band)));
  }
}

TEST(KeltnerChannelResumable, APeriodOutOfRangeDoesNothing) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  for (Count p : {Count{0}, Count{-1}, Count{61}, Count{INT32_MIN}, Count{INT32_MAX}}) {
    for (Band band : kLines) expectNothingDone(prices, resumableKeltner(p, kSimple, 2.0, band));
  }
}

TEST(KeltnerChannel, IsTheSlowTwinForEveryShapeLengthAndAverage) {
  for (Count p : kSmallPeriods) {
    forShortSeries(p, [p](const PriceRows& prices) {
      for (Count type = 0; type <= 9; ++type) {
        for (Band band : kLines) {
          EXPECT_TRUE(
              sameRows(batchKeltnerTwin(prices, p, type, 1.7, band), keltner(prices, p, type, 1.7, band)))
              << "batch, type " << type;
          EXPECT_TRUE(sameRows(resumableKeltnerTwin(prices, p, type, 1.7, band),
                               runAtOnce(prices, resumableKeltner(p, type, 1.7, band)).rows))
              << "resumable, type " << type;
        }
      }
    });
  }
}

TEST(KeltnerChannelResumable, StreamsLikeOneCall) {
  // A null price makes a true range of some 1e9. Sums that slide (of the simple average, and of the
  // regression behind two others) lose digits when it leaves the window, while a resumed call forms them
  // again: these averages are left out where prices are null.
  const auto slides = [](Count type) { return type == kSimple || type == kTimeSeries || type == kVidya; };
  for (Shape shape : kStreamedShapes) {
    const bool hasNulls = shape == Shape::kNullHead || shape == Shape::kNullGaps;
    for (Count type = 1; type <= 8; ++type) {
      if (hasNulls && slides(type)) continue;
      SCOPED_TRACE(::testing::Message() << "shape " << static_cast<int>(shape) << ", type " << type);
      for (Band band : kLines) {
        expectStreamsLikeOneCall(makePrices(shape, 60), resumableKeltner(5, type, 2.0, band));
      }
    }
  }
  expectRepeatable(makePrices(Shape::kWalk, 30), resumableKeltner(5, kSimple, 2.0, Band::kTop));
}

// ---- Moving average envelope -----------------------------------------------------------------------------

Rows envelope(const Rows& in, Count p, Count maType, double shift, Band band) {
  Rows out(in.size(), kNull);
  CFeedkit::MovingAverageEnvelope(in, p, maType, shift, band, out);
  return out;
}

bool hasEnvelope(const Rows& in, Count p, Count maType, double shift, Band band = Band::kTop) {
  Rows out(in.size(), kNull);
  const bool exists = CFeedkit::MovingAverageEnvelope(in, p, maType, shift, band, out);
  EXPECT_TRUE(exists || sameRows(Rows(in.size(), kNull), out));
  return exists;
}

Operation resumableEnvelope(Count p, Count maType, double shift, Band band) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::MovingAverageEnvelope(store, prices.close, p, maType, shift, band, out);
  };
}

Rows envelopeTwin(const Rows& m, double shift, Count first, Band band) {
  Rows out(m.size(), kNull);
  const double k = shift / 100;
  for (Count i = first; i < rowsOf(m); ++i) {
    if (band == Band::kTop) out[i] = nz(m[i]) + nz(m[i]) * k;
    if (band == Band::kBottom) out[i] = nz(m[i]) - nz(m[i]) * k;
  }
  return out;
}

TEST(MovingAverageEnvelopeBatch, RowsBeforeTheAverageHold0) {
  const Rows in(5, 10.0);  // 5 percent of 10 is 0.5
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 10.5, 10.5}, envelope(in, 2, kSimple, 5.0, Band::kTop)));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 9.5, 9.5}, envelope(in, 2, kSimple, 5.0, Band::kBottom)));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 0, 0, 0}, envelope(in, 5, kSimple, 5.0, Band::kTop)));
}

TEST(MovingAverageEnvelopeResumable, RowsStartWithTheAverage) {
  const PriceRows prices = closesOf({kNull, 10, 10, 10});
  const auto rows = [&](Band band) {
    return runAtOnce(prices, resumableEnvelope(2, kSimple, 5.0, band)).rows;
  };
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 10.5, 10.5}, rows(Band::kTop)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 9.5, 9.5}, rows(Band::kBottom)));
}

TEST(MovingAverageEnvelope, AShiftOf101GivesNoSeries) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  EXPECT_FALSE(hasEnvelope(prices.close, 5, kSimple, 101.0));
  EXPECT_TRUE(hasEnvelope(prices.close, 5, kSimple, 100.0));
  expectNothingDone(prices, resumableEnvelope(5, kSimple, 101.0, Band::kTop));
  EXPECT_EQ(kDone, runAtOnce(prices, resumableEnvelope(5, kSimple, 100.0, Band::kTop)).status);
}

TEST(MovingAverageEnvelope, ArgumentsOutOfRangeGiveNoSeries) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  EXPECT_TRUE(hasEnvelope(prices.close, 60, 0, 0.0));
  struct Arguments {
    Count p, maType;
    double shift;
    Band band;
  };
  for (const Arguments& a :
       {Arguments{0, kSimple, 5.0, Band::kTop}, Arguments{-1, kSimple, 5.0, Band::kTop},
        Arguments{61, kSimple, 5.0, Band::kTop}, Arguments{INT32_MIN, 1, 5.0, Band::kTop},
        Arguments{INT32_MAX, 1, 5.0, Band::kTop}, Arguments{5, -1, 5.0, Band::kTop},
        Arguments{5, kSimple, -0.001, Band::kTop}, Arguments{5, kSimple, kNaN, Band::kTop},
        Arguments{5, kSimple, 5.0, Band::kMiddle}}) {
    EXPECT_FALSE(hasEnvelope(prices.close, a.p, a.maType, a.shift, a.band));
    expectNothingDone(prices, resumableEnvelope(a.p, a.maType, a.shift, a.band));
  }
  EXPECT_FALSE(hasEnvelope({}, 1, kSimple, 5.0));
}

TEST(MovingAverageEnvelope, IsTheSlowTwinForEveryShapeLengthAndAverage) {
  for (Count p : kSmallPeriods) {
    forShortSeries(p, [p](const PriceRows& prices) {
      for (Count type = 0; type <= 9; ++type) {
        for (Band band : {Band::kTop, Band::kBottom}) {
          const bool inRange = p <= rowsOf(prices.close);
          const Rows none(prices.close.size(), kNull);
          const Rows m = resumableAverage(prices, p, type);
          EXPECT_TRUE(sameRows(inRange ? envelopeTwin(average(prices.close, p, type), 3.0, 1, band) : none,
                               envelope(prices.close, p, type, 3.0, band)))
              << "batch, type " << type;
          EXPECT_TRUE(sameRows(inRange ? envelopeTwin(m, 3.0, firstValueIndex(m), band) : none,
                               runAtOnce(prices, resumableEnvelope(p, type, 3.0, band)).rows))
              << "resumable, type " << type;
        }
      }
    });
  }
}

TEST(MovingAverageEnvelopeResumable, StreamsLikeOneCall) {
  for (Count type = 1; type <= 8; ++type) {
    SCOPED_TRACE(::testing::Message() << "type " << type);
    for (Band band : {Band::kTop, Band::kBottom}) expectStreams(resumableEnvelope(5, type, 3.0, band));
  }
  expectRepeatable(makePrices(Shape::kWalk, 30), resumableEnvelope(5, kSimple, 3.0, Band::kTop));
}

// ---- High-low bands --------------------------------------------------------------------------------------

Operation highLow(Count p, Band band) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::HighLowBands(store, prices, p, band, out);
  };
}

Operation vidya(Source PriceSources::*in, Count p) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::VIDYA(store, prices.*in, p, 0.8, out);
  };
}

TEST(HighLowBands, ByHand) {
  // Bars that rise by 1 fit their line exactly (r squared 1, from row 1 on), so the average of period 2 is
  // 0.8 of the row and 0.2 of the row before, from row 2.
  const PriceRows prices = barsOf({11, 12, 13, 14}, {9, 10, 11, 12});
  const Rows top = runAtOnce(prices, highLow(2, Band::kTop)).rows;
  const Rows bottom = runAtOnce(prices, highLow(2, Band::kBottom)).rows;
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 13 * 0.8 + 12 * 0.2, 14 * 0.8 + 13 * 0.2}, top, nearlySame));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 11 * 0.8 + 10 * 0.2, 12 * 0.8 + 11 * 0.2}, bottom, nearlySame));
}

TEST(HighLowBands, AreAveragesOfHighCloseAndLowTheMiddleOverHalfThePeriod) {
  for (Count p : {2, 3, 5, 8}) {
    forShortSeries(p, [p](const PriceRows& prices) {
      if (p > rowsOf(prices.close)) return expectNothingDone(prices, highLow(p, Band::kMiddle));
      const auto rows = [&](const Operation& operation) { return runAtOnce(prices, operation).rows; };
      EXPECT_TRUE(sameRows(rows(vidya(&PriceSources::high, p)), rows(highLow(p, Band::kTop))));
      EXPECT_TRUE(sameRows(rows(vidya(&PriceSources::close, p / 2)), rows(highLow(p, Band::kMiddle))));
      EXPECT_TRUE(sameRows(rows(vidya(&PriceSources::low, p)), rows(highLow(p, Band::kBottom))));
    });
  }
}

TEST(HighLowBands, APeriodOutOfRangeDoesNothing) {
  const PriceRows prices = makePrices(Shape::kWalk, 60);
  for (Count p : {Count{0}, Count{-1}, Count{61}, Count{INT32_MIN}, Count{INT32_MAX}}) {
    for (Band band : kLines) expectNothingDone(prices, highLow(p, band));
  }
  expectNothingDone(prices, highLow(1, Band::kMiddle));  // half of 1 is no period
  EXPECT_EQ(kDone, runAtOnce(prices, highLow(1, Band::kTop)).status);
}

TEST(HighLowBands, StreamLikeOneCall) {
  for (Band band : kLines) expectStreams(highLow(6, band));
  expectRepeatable(makePrices(Shape::kWalk, 30), highLow(6, Band::kTop));
}

}  // namespace
}  // namespace brindlewort
