#include "indicators/volume.hpp"
#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

// ---- The operations, of the close -----------------------------------------------------------------------

void positive(const Prices& p, Out out) {
  CFeedkit::PositiveVolumeIndex(p.close, p.volume, out);
}
void negative(const Prices& p, Out out) {
  CFeedkit::NegativeVolumeIndex(p.close, p.volume, out);
}
void performance(const Prices& p, Out out) {
  CFeedkit::PerformanceIndex(p.close, out);
}

Status resumedPositive(WorkStore&, const PriceSources& p, Target out) {
  return CTechnicalFunctions::PositiveVolumeIndex(p.close, p.volume, out);
}
Status resumedNegative(WorkStore&, const PriceSources& p, Target out) {
  return CTechnicalFunctions::NegativeVolumeIndex(p.close, p.volume, out);
}
Status resumedPerformance(WorkStore&, const PriceSources& p, Target out) {
  return CTechnicalFunctions::PerformanceIndex(p.close, out);
}

// ---- Slow twins ---------------------------------------------------------------------------------------

Rows indexTwin(const PriceRows& p, bool positiveIndex, bool batchForm) {
  const Rows &in = p.close, &V = p.volume;
  const Count n = static_cast<Count>(in.size());
  Rows out(in.size(), kNull);
  const Count seed = batchForm ? 1 : std::max(firstValueIndex(in), firstValueIndex(V));
  if (seed >= n || (!batchForm && seed + 1 >= n)) return out;
  out[seed] = 1;
  for (Count i = seed + 1; i < n; ++i) {
    const bool moves = positiveIndex ? V[i - 1] < V[i] : V[i - 1] > V[i];
    out[i] = out[i - 1];
    if (moves) {
      out[i] = nz(out[i - 1]) * (nz(in[i]) - nz(in[i - 1])) / nz(in[i - 1]) + nz(out[i - 1]);
      if (!positiveIndex && !std::isfinite(out[i])) out[i] = kNull;
    }
    if (batchForm) continue;
    if (positiveIndex && (nz(in[i - 1]) == 0 || nz(out[i - 1]) == 0)) out[i] = nz(out[i - 1]);
    if (!positiveIndex && moves && nz(in[i - 1]) * nz(out[i - 1]) == 0) out[i] = 0;
  }
  return out;
}

Rows performanceTwin(const PriceRows& p, Count baseRow) {
  const Rows& in = p.close;
  const Count n = static_cast<Count>(in.size());
  Rows out(in.size(), kNull);
  if (baseRow >= n || nz(in[baseRow]) == 0) return out;
  const double base = nz(in[baseRow]);
  for (Count i = baseRow + 1; i < n; ++i) out[i] = (nz(in[i]) - base) / base * 100;
  return out;
}

// ---- Positive volume index ----------------------------------------------------------------------------

TEST(PositiveVolumeIndex, ByHand) {
  const PriceRows bars = pointPrices({4, 8, 12, 9, 18}, {1, 2, 3, 3, 5});
  // Volume rises on row 2 (1 + 4/8), not on row 3, on row 4 (1.5 + 1.5 * 9/9); resumable also on row 1 (1 +
  // 4/4)
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 1.5, 1.5, 3}, runBatch(bars, positive)));
  EXPECT_TRUE(sameRows(Rows{1, 2, 3, 3, 6}, runResumable(bars, resumedPositive)));
}

TEST(PositiveVolumeIndex, APriceOfZeroIsUnguardedInBatchAndRepeatsTheIndexResumed) {
  const PriceRows bars = pointPrices({2, 2, 0, 4, 6}, {1, 1, 1, 2, 3});
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 1, kInf, kInf}, runBatch(bars, positive)));
  EXPECT_TRUE(sameRows(Rows{1, 1, 1, 1, 1.5}, runResumable(bars, resumedPositive)));
}

TEST(PositiveVolumeIndex, AnIndexOfZeroStays) {
  const PriceRows bars = pointPrices({2, 2, 0, 4, 6}, {1, 1, 2, 3, 4});
  EXPECT_TRUE(sameRows(Rows{1, 1, 0, 0, 0}, runResumable(bars, resumedPositive)));
}

TEST(PositiveVolumeIndex, BatchSeedStandsWithoutFurtherRows) {
  EXPECT_TRUE(sameRows(Rows{kNull, 1}, runBatch(pointPrices({3, 5}), positive)));
  EXPECT_TRUE(sameRows(Rows{kNull}, runBatch(pointPrices({3}), positive)));
}

TEST(PositiveVolumeIndex, ResumableSeedStandsAtTheHigherLead) {
  const PriceRows bars = pointPrices({kNull, 4, 8, 16}, {kNull, kNull, 1, 2});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 1, 2}, runResumable(bars, resumedPositive)));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 1, 1}, runResumable(bars, resumedNegative)));
  // The seed row alone is no row to compute.
  expectNothingDone(pointPrices({kNull, 4}), resumedPositive);
  expectNothingDone(pointPrices({kNull, 4}), resumedNegative);
}

// ---- Negative volume index ----------------------------------------------------------------------------

TEST(NegativeVolumeIndex, ByHand) {
  const PriceRows bars = pointPrices({4, 8, 12, 9, 18}, {9, 8, 7, 7, 5});
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 1.5, 1.5, 3}, runBatch(bars, negative)));
  EXPECT_TRUE(sameRows(Rows{1, 2, 3, 3, 6}, runResumable(bars, resumedNegative)));
}

TEST(NegativeVolumeIndex, WithAPriceOfZeroTheBatchRowIsNull) {
  const PriceRows bars = pointPrices({2, 2, 0, 4, 6, 6}, {9, 9, 9, 8, 7, 7});
  // Row 3 divides by 0: null. Row 4 goes on from a null, which reads as 0; row 5 repeats row 4.
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 1, kNull, 0, 0}, runBatch(bars, negative)));
}

TEST(NegativeVolumeIndex, ARowOfUnchangedVolumeRepeatsANull) {
  const PriceRows bars = pointPrices({2, 2, 0, 4, 6}, {9, 9, 9, 8, 8});
  EXPECT_TRUE(sameRows(Rows{kNull, 1, 1, kNull, kNull}, runBatch(bars, negative)));
}

TEST(NegativeVolumeIndex, ResumedRowIsZeroAfterAPriceOfZeroOnlyWhereVolumeFell) {
  EXPECT_TRUE(sameRows(Rows{1, 1, 1, 0, 0},
                       runResumable(pointPrices({2, 2, 0, 4, 6}, {9, 9, 9, 8, 7}), resumedNegative)));
  EXPECT_TRUE(sameRows(Rows{1, 1, 1, 1, 1.5},
                       runResumable(pointPrices({2, 2, 0, 4, 6}, {9, 9, 9, 9, 7}), resumedNegative)));
}

TEST(NegativeVolumeIndex, AResumedResultThatIsNotFiniteIsNull) {
  const PriceRows bars = pointPrices({2, 2, kInf, 4}, {9, 9, 8, 8});
  EXPECT_TRUE(sameRows(Rows{1, 1, kNull, kNull}, runResumable(bars, resumedNegative)));
}

// ---- Performance index --------------------------------------------------------------------------------

TEST(PerformanceIndex, ByHand) {
  const PriceRows bars = pointPrices({2, 4, 5, 4, 3});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 25, 0, -25}, runBatch(bars, performance)));
  EXPECT_TRUE(sameRows(Rows{kNull, 100, 150, 100, 50}, runResumable(bars, resumedPerformance)));
}

TEST(PerformanceIndex, ResumableTakesItsBaseAtTheLead) {
  const PriceRows bars = pointPrices({kNull, kNull, 4, 6});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, kNull, 50}, runResumable(bars, resumedPerformance)));
  // The batch base is row 1, a null: nothing.
  EXPECT_TRUE(sameRows(Rows(4, kNull), runBatch(bars, performance)));
}

TEST(PerformanceIndex, ABaseOfZeroGivesNothing) {
  EXPECT_TRUE(sameRows(Rows(4, kNull), runBatch(pointPrices({1, 0, 4, 6}), performance)));
  expectNothingDone(pointPrices({0, 1, 4, 6}), resumedPerformance);
}

// ---- All of them --------------------------------------------------------------------------------------

TEST(VolumeIndexes, EqualTheirTwins) {
  forEachShortSeries(14, [](const PriceRows& p) {
    EXPECT_TRUE(sameRows(indexTwin(p, true, true), runBatch(p, positive)));
    EXPECT_TRUE(sameRows(indexTwin(p, true, false), runResumable(p, resumedPositive)));
    EXPECT_TRUE(sameRows(indexTwin(p, false, true), runBatch(p, negative)));
    EXPECT_TRUE(sameRows(indexTwin(p, false, false), runResumable(p, resumedNegative)));
    EXPECT_TRUE(sameRows(performanceTwin(p, 1), runBatch(p, performance)));
    EXPECT_TRUE(sameRows(performanceTwin(p, firstValueIndex(p.close)), runResumable(p, resumedPerformance)));
  });
}

TEST(VolumeIndexes, StreamLikeOneCall) {
  expectStreamsOverAllShapes(resumedPositive);
  expectStreamsOverAllShapes(resumedNegative);
  expectStreamsOverAllShapes(resumedPerformance);
}

TEST(VolumeIndexes, SeriesOfDifferentLengthsGiveNothing) {
  const PriceRows bars = pointPrices({1, 2, 3, 4}, {1, 2, 3});
  EXPECT_TRUE(sameRows(Rows(4, kNull), runBatch(bars, positive)));
  EXPECT_TRUE(sameRows(Rows(4, kNull), runBatch(bars, negative)));
  PriceSources uneven = sourcesOf(bars, 3);
  uneven.close.rows = bars.close;
  for (const Operation& operation : {Operation(resumedPositive), Operation(resumedNegative)}) {
    TestStore store(4);
    Rows out(4, kNull);
    std::int32_t slot = -1;
    EXPECT_EQ(operation(store, uneven, {out, &slot}), kNothingDone);
    EXPECT_EQ(slot, -1);
    EXPECT_TRUE(sameRows(Rows(4, kNull), out));
  }
}

TEST(VolumeIndexes, NoRowsGiveNothing) {
  for (const Operation& operation :
       {Operation(resumedPositive), Operation(resumedNegative), Operation(resumedPerformance)}) {
    expectNothingDone({}, operation);
  }
}

}  // namespace
}  // namespace brindlewort
