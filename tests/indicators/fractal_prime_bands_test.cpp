#include <gtest/gtest.h>

#include "indicators/band_twins.hpp"
#include "indicators/bands.hpp"

namespace brindlewort {
namespace {

using namespace testing;

constexpr Band kOuterLines[] = {Band::kTop, Band::kBottom};

// ---- Prime number bands ----------------------------------------------------------------------------------

Rows primes(const PriceRows& prices, Band band) {
  Rows out(prices.close.size(), kNull);
  CFeedkit::PrimeNumberBands(viewsOf(prices), band, out);
  return out;
}

Operation resumablePrimes(Band band) {
  return [=](WorkStore&, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::PrimeNumberBands(prices, band, out);
  };
}

/// Trial division; values of 3 or less pass.
bool isPrimeTwin(std::int64_t v) {
  for (std::int64_t d = 2; v > 3 && d * d <= v; ++d) {
    if (v % d == 0) return false;
  }
  return true;
}

Rows primesTwin(const Rows& in, bool top, bool batch) {
  Rows out(in.size(), kNull);
  double found = 0.0;
  for (std::size_t i = batch ? 1 : 0; i < in.size(); ++i) {
    double x = in[i];
    if (batch) x = std::trunc(x);
    if (x < 10) x = x * 10;
    if (!batch) x = std::trunc(x);
    if (!(std::fabs(x) < 9007199254740992.0)) continue;
    const auto v = static_cast<std::int64_t>(x);
    if (top) {
      for (std::int64_t s = v; s <= 2 * v; ++s) {
        if (!isPrimeTwin(s)) continue;
        found = static_cast<double>(s);
        break;
      }
    } else {
      for (std::int64_t s = v; s >= 1; --s) {
        if (!isPrimeTwin(s)) continue;
        found = static_cast<double>(s);
        break;
      }
    }
    out[i] = found;
  }
  return out;
}

TEST(PrimeNumberBands, EncloseHighAndLow) {
  const PriceRows prices = barsOf({0, 24.9, 29.0, 90.1}, {0, 24.1, 28.9, 90.0});
  EXPECT_TRUE(sameRows(Rows{kNull, 29, 29, 97}, primes(prices, Band::kTop)));
  EXPECT_TRUE(sameRows(Rows{kNull, 23, 23, 89}, primes(prices, Band::kBottom)));
  EXPECT_TRUE(sameRows(Rows{0, 29, 29, 97}, runAtOnce(prices, resumablePrimes(Band::kTop)).rows));
  EXPECT_TRUE(sameRows(Rows{0, 23, 23, 89}, runAtOnce(prices, resumablePrimes(Band::kBottom)).rows));
}

TEST(PrimeNumberBands, BelowTenTheBatchFormCutsBeforeItMultiplies) {
  // 9.5: 9 * 10 = 90 lies between 89 and 97; 9.5 * 10 = 95 does too. 9.875: 98.75, cut 98, between 97, 101.
  const PriceRows prices = barsOf({0, 9.5, 9.875, 0.25}, {0, 9.5, 9.875, 0.25});
  EXPECT_TRUE(sameRows(Rows{kNull, 97, 97, 0}, primes(prices, Band::kTop)));
  EXPECT_TRUE(sameRows(Rows{kNull, 89, 89, 89}, primes(prices, Band::kBottom)));
  // 0.25 is 0 when cut at once, and 2 (of 2.5) when cut last.
  EXPECT_TRUE(sameRows(Rows{0, 97, 101, 2}, runAtOnce(prices, resumablePrimes(Band::kTop)).rows));
  EXPECT_TRUE(sameRows(Rows{0, 89, 97, 2}, runAtOnce(prices, resumablePrimes(Band::kBottom)).rows));
}

TEST(PrimeNumberBands, ATenIsNotMultiplied) {
  const PriceRows prices = barsOf({0, 10.0, 9.0}, {0, 10.0, 9.0});
  EXPECT_TRUE(sameRows(Rows{kNull, 11, 97}, primes(prices, Band::kTop)));
  EXPECT_TRUE(sameRows(Rows{kNull, 7, 89}, primes(prices, Band::kBottom)));
}

TEST(PrimeNumberBands, AScanThatFindsNoneRepeatsTheRowBefore) {
  // Down from 0 or less there is no row to scan; up from 0 there is 0 itself, which passes as a prime.
  const PriceRows prices = barsOf({0, -4, 20, -4, 0}, {0, -4, 20, -4, 0});
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 23, 23, 0}, primes(prices, Band::kTop)));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 19, 19, 19}, primes(prices, Band::kBottom)));
}

TEST(PrimeNumberBands, ANullPriceIsTheNumberThatItIsAndFindsNone) {
  const PriceRows prices = barsOf({1, kNull, 20, kNull}, {1, kNull, 20, kNull}, {1, 20, 20, 20});
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 23, 23}, primes(prices, Band::kTop)));
  EXPECT_TRUE(sameRows(Rows{kNull, 0, 19, 19}, primes(prices, Band::kBottom)));
  // 1 is 10 here, between 7 and 11.
  EXPECT_TRUE(sameRows(Rows{11, 11, 23, 23}, runAtOnce(prices, resumablePrimes(Band::kTop)).rows));
  EXPECT_TRUE(sameRows(Rows{7, 7, 19, 19}, runStreamed(prices, resumablePrimes(Band::kBottom), true).rows));
}

TEST(PrimeNumberBands, AValueTooLargeOrNoNumberLeavesItsRowNull) {
  const Rows values = {20, 20, 0x1.0p53, kNaN, kInf, -kInf, -0x1.0p53, -4};
  const PriceRows prices = barsOf(values, values);
  const Rows top = {kNull, 23, kNull, kNull, kNull, kNull, kNull, 23};  // the last prime found, not the null
  EXPECT_TRUE(sameRows(top, primes(prices, Band::kTop)));
  Rows resumable = top;
  resumable[0] = 23;
  EXPECT_TRUE(sameRows(resumable, runAtOnce(prices, resumablePrimes(Band::kTop)).rows));
  EXPECT_TRUE(sameRows(resumable, runStreamed(prices, resumablePrimes(Band::kTop), true).rows));
}

TEST(PrimeNumberBands, TheLargestValuesAreStillTold) {
  // 2^53 - 111 is the largest prime below 2^53.
  const Rows values = {0, 0x1.0p53 - 1.0};
  EXPECT_EQ(0x1.0p53 - 111.0, primes(barsOf(values, values), Band::kBottom)[1]);
}

TEST(PrimeNumberBands, AreTheSlowTwinForEveryShapeAndLength) {
  forShortSeries(6, [](const PriceRows& prices) {
    for (Band band : kOuterLines) {
      const Rows& in = band == Band::kTop ? prices.high : prices.low;
      EXPECT_TRUE(sameRows(primesTwin(in, band == Band::kTop, true), primes(prices, band)));
      EXPECT_TRUE(
          sameRows(primesTwin(in, band == Band::kTop, false), runAtOnce(prices, resumablePrimes(band)).rows));
    }
  });
}

TEST(PrimeNumberBands, HaveNoMiddleLine) {
  const PriceRows prices = makePrices(Shape::kWalk, 10);
  EXPECT_TRUE(sameRows(Rows(10, kNull), primes(prices, Band::kMiddle)));
  expectNothingDone(prices, resumablePrimes(Band::kMiddle));
  expectNothingDone({}, resumablePrimes(Band::kTop));
}

TEST(PrimeNumberBandsResumable, StreamsLikeOneCall) {
  for (Band band : kOuterLines) {
    expectStreams(resumablePrimes(band));
    expectRepeatable(makePrices(Shape::kNegative, 30), resumablePrimes(band));
  }
}

// ---- Fractal chaos bands ---------------------------------------------------------------------------------

Operation fractal(Count p, Band band) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::FractalChaosBands(store, prices, p, band, out);
  };
}

Rows fractalTwin(const PriceRows& prices, bool top) {
  Rows out(prices.close.size(), kNull);
  const Rows &H = prices.high, &L = prices.low;
  for (std::size_t i = 4; i < out.size(); ++i) {
    const double h1 = H[i - 4], h2 = H[i - 3], h3 = H[i - 2], h4 = H[i - 1];
    const double l1 = L[i - 4], l2 = L[i - 3], l3 = L[i - 2], l4 = L[i - 1];
    if (top) {
      out[i] = h1 < h3 && h2 < h3 && h4 < h3 && H[i] < h3 ? h3 : out[i - 1];
    } else {
      out[i] = l1 >= l3 && l2 >= l3 && l4 >= l3 && L[i] >= l3 ? l3 : out[i - 1];
    }
  }
  return out;
}

Rows fractalRows(const PriceRows& prices, Band band) {
  return runAtOnce(prices, fractal(5, band)).rows;
}

TEST(FractalChaosBands, TakeTheBarThatStandsOutTwoRowsLater) {
  const PriceRows prices = barsOf({9, 1, 2, 5, 2, 1, 3, 1, 1}, {1, 9, 8, 5, 8, 9, 7, 9, 9});
  // Row 5 sees the high of row 3 (5) and its low (5), row 8 those of row 6; the bands are null before.
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, kNull, 5, 5, 5, 3}, fractalRows(prices, Band::kTop)));
  EXPECT_TRUE(
      sameRows(Rows{kNull, kNull, kNull, kNull, kNull, 5, 5, 5, 7}, fractalRows(prices, Band::kBottom)));
}

TEST(FractalChaosBands, WithEqualLowsTheLowBandMovesAndWithEqualHighsTheHighBandDoesNot) {
  const PriceRows prices = barsOf(Rows(6, 5.0), Rows(6, 4.0));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, kNull, 4, 4}, fractalRows(prices, Band::kBottom)));
  EXPECT_TRUE(sameRows(Rows(6, kNull), fractalRows(prices, Band::kTop)));
  EXPECT_EQ(kDone, runAtOnce(prices, fractal(5, Band::kTop)).status);
}

TEST(FractalChaosBands, ANonNumberBesideABarHidesIt) {
  const PriceRows prices = barsOf({1, 2, 5, 2, kNaN}, {9, 8, 5, 8, kNaN});
  EXPECT_TRUE(sameRows(Rows(5, kNull), fractalRows(prices, Band::kTop)));
  EXPECT_TRUE(sameRows(Rows(5, kNull), fractalRows(prices, Band::kBottom)));
}

TEST(FractalChaosBands, AreTheSlowTwinForEveryShapeLengthAndPeriod) {
  for (Count p : {Count{INT32_MIN}, Count{-1}, Count{0}, Count{1}, Count{5}, Count{INT32_MAX}}) {
    forShortSeries(4, [p](const PriceRows& prices) {
      for (Band band : kOuterLines) {
        EXPECT_TRUE(
            sameRows(fractalTwin(prices, band == Band::kTop), runAtOnce(prices, fractal(p, band)).rows));
      }
    });
  }
}

TEST(FractalChaosBands, NeedFiveRows) {
  for (Band band : kOuterLines) {
    expectNothingDone({}, fractal(5, band));
    expectNothingDone(makePrices(Shape::kFlat, 4), fractal(5, band));
    EXPECT_EQ(kDone, runAtOnce(makePrices(Shape::kFlat, 5), fractal(5, band)).status);
  }
  expectNothingDone(makePrices(Shape::kFlat, 9), fractal(5, Band::kMiddle));
}

TEST(FractalChaosBands, PeriodsBelow1ShareTheWorkSeriesOf100) {
  // Every other period has a work series of its own.
  const PriceRows prices = makePrices(Shape::kWalk, 20);
  TestStore store(20);
  const auto slotOf = [&](Count p) { return *store.field("Fractal_High", {KeyPart("HIGH"), p}).slot; };
  Rows out(20, kNull);
  std::int32_t slot = -1;
  ASSERT_EQ(kDone, fractal(-3, Band::kTop)(store, sourcesOf(prices, 20), {out, &slot}));
  EXPECT_EQ(20, slotOf(100));
  EXPECT_EQ(-1, slotOf(5));
}

TEST(FractalChaosBands, StreamLikeOneCall) {
  for (Band band : kOuterLines) {
    expectStreams(fractal(5, band));
    expectRepeatable(makePrices(Shape::kSteps, 30), fractal(5, band));
  }
}

}  // namespace
}  // namespace brindlewort
