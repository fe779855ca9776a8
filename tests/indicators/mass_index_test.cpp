#include "indicators/mass_index.hpp"

#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

BatchOperation batch(Count p) {
  return [=](const Prices& prices, Out out) { CFeedkit::MassIndex(prices, p, out); };
}
Operation resumable(Count p) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    return CTechnicalFunctions::MassIndex(store, prices, p, out);
  };
}

// ---- A slow twin, with exponential averages of its own ------------------------------------------------

Rows heightsTwin(const PriceRows& prices, Count first) {
  Rows out(prices.close.size(), kNull);
  for (Count i = first; i < static_cast<Count>(out.size()); ++i) out[i] = prices.high[i] - prices.low[i];
  return out;
}

Rows batchAverageTwin(const Rows& in) {
  const Count n = static_cast<Count>(in.size()), p = 9;
  Rows out(in.size(), kNull);
  if (p >= n) return out;
  const double k = 2.0 / (p + 1);
  double sum = 0, count = 0;
  for (Count j = 1; j <= p; ++j) {
    if (nz(in[j]) == 0) continue;
    sum += nz(in[j]);
    count += 1;
  }
  const double seed = sum > 0 && count > 0 ? sum / count : nz(in[p]);
  if (p + 1 < n) out[p] = nz(in[p + 1]) * (1 - k) + seed * k;
  for (Count i = p + 1; i < n; ++i) out[i] = nz(out[i - 1]) * (1 - k) + nz(in[i]) * k;
  return out;
}

Rows resumableAverageTwin(const Rows& in) {
  const Count n = static_cast<Count>(in.size()), p = 9;
  Rows out(in.size(), kNull);
  const Count lead = firstValueIndex(in);
  if (lead + p > n) return out;
  const double k = 2.0 / (p + 1);
  double sum = 0;
  for (Count j = lead; j < lead + p; ++j) sum += nz(in[j]);
  out[lead + p - 1] = sum / p;
  for (Count i = lead + p; i < n; ++i) out[i] = nz(out[i - 1]) * (1 - k) + nz(in[i]) * k;
  return out;
}

Rows sumTwin(const Rows& e1, const Rows& e2, Count p, Count first) {
  const Count n = static_cast<Count>(e1.size());
  Rows out(e1.size(), kNull);
  for (Count i = first; i < n; ++i) {
    double sum = 0;
    for (Count j = i - p + 1; j <= i; ++j) {
      if (nz(e2[j]) != 0) sum += nz(e1[j]) / nz(e2[j]);
    }
    out[i] = sum;
  }
  return out;
}

bool within(Count p, const PriceRows& prices) {
  return 1 <= p && p < static_cast<Count>(prices.close.size());
}

Rows batchTwin(const PriceRows& prices, Count p) {
  if (!within(p, prices)) return Rows(prices.close.size(), kNull);
  const Rows e1 = batchAverageTwin(heightsTwin(prices, 1));
  return sumTwin(e1, batchAverageTwin(e1), p, 2 * p);
}

Rows resumableTwin(const PriceRows& prices, Count p) {
  if (!within(p, prices)) return Rows(prices.close.size(), kNull);
  const Rows e1 = resumableAverageTwin(heightsTwin(prices, 0)), e2 = resumableAverageTwin(e1);
  return sumTwin(e1, e2, p, std::max(firstValueIndex(e1), firstValueIndex(e2)) + p);
}

// ---- Tests --------------------------------------------------------------------------------------------

/// Bars of high 3 and low 1: both averages of the range 2 are 2, each ratio is 1.
PriceRows evenBars(std::size_t n) {
  return {Rows(n, 2), Rows(n, 3), Rows(n, 1), Rows(n, 2), Rows(n, 0)};
}

TEST(MassIndex, BatchCountsTheRatiosFromRowNine) {
  const Rows out = runBatch(evenBars(15), batch(5));
  for (int i = 0; i < 10; ++i) EXPECT_TRUE(isNull(out[i])) << i;
  // The averages begin at row 9: the window of row 10 holds rows 9 and 10, that of row 13 is full.
  EXPECT_NEAR(out[10], 2, 1e-12);
  EXPECT_NEAR(out[11], 3, 1e-12);
  EXPECT_NEAR(out[13], 5, 1e-12);
  EXPECT_NEAR(out[14], 5, 1e-12);
}

TEST(MassIndex, ResumableBeginsAfterTheLeadOfTheSecondAverage) {
  // The first average begins at row 8, the second at row 16, so the first sum of 5 stands at row 21.
  const Rows out = runResumable(evenBars(23), resumable(5));
  for (int i = 0; i < 21; ++i) EXPECT_TRUE(isNull(out[i])) << i;
  EXPECT_NEAR(out[21], 5, 1e-12);
  EXPECT_NEAR(out[22], 5, 1e-12);
}

TEST(MassIndex, BarsWithoutRangeAddNothing) {
  const PriceRows flat = pointPrices(Rows(30, 7.0));
  const Rows out = runBatch(flat, batch(3));
  for (int i = 6; i < 30; ++i) EXPECT_EQ(out[i], 0.0) << i;
  const Rows resumed = runResumable(flat, resumable(3));
  for (int i = 19; i < 30; ++i) EXPECT_EQ(resumed[i], 0.0) << i;
}

TEST(MassIndex, TooFewRowsForTheAveragesSumToZeroInBatch) {
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 0, 0, 0}, runBatch(evenBars(5), batch(1))));
  expectNothingDone(evenBars(5), resumable(1));
}

TEST(MassIndex, PeriodsOutOfRangeGiveNothing) {
  const PriceRows bars = evenBars(40);
  for (Count p : {Count{-1}, Count{0}, Count{40}, Count{INT32_MIN}, Count{INT32_MAX}}) {
    EXPECT_TRUE(sameRows(Rows(40, kNull), runBatch(bars, batch(p)))) << p;
    expectNothingDone(bars, resumable(p));
  }
}

TEST(MassIndex, EqualsTheTwin) {
  forEachShortSeries(40, [](const PriceRows& prices) {
    for (Count p = 0; p <= 8; ++p) {
      EXPECT_TRUE(sameRows(batchTwin(prices, p), runBatch(prices, batch(p)))) << "p " << p;
      EXPECT_TRUE(sameRows(resumableTwin(prices, p), runResumable(prices, resumable(p)))) << "p " << p;
    }
  });
}

TEST(MassIndex, StreamsLikeOneCall) {
  for (Count p : {1, 2, 7}) expectStreamsOverAllShapes(resumable(p), 60);
}

}  // namespace
}  // namespace brindlewort
