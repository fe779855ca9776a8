#include "indicators/price_bases.hpp"

#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

struct Base {
  const char* name;
  void (*batch)(const Prices&, Out);
  Status (*resumable)(const PriceSources&, Target);
  double (*formula)(double h, double l, double c);
};

const Base kBases[] = {
    {"MEDIANPRICE", CFeedkit::MEDIANPRICE, CTechnicalFunctions::MEDIANPRICE,
     [](double h, double l, double) { return (h + l) / 2; }},
    {"TypicalPrice", CFeedkit::TypicalPrice, CTechnicalFunctions::TypicalPrice,
     [](double h, double l, double c) { return (h + l + c) / 3; }},
    {"HIGHMINUSLOW", CFeedkit::HIGHMINUSLOW, CTechnicalFunctions::HIGHMINUSLOW,
     [](double h, double l, double) { return h - l; }},
    {"WeightedClose", CFeedkit::WeightedClose, CTechnicalFunctions::WeightedClose,
     [](double h, double l, double c) { return (c + c + h + l) / 4; }},
};

Operation resumable(const Base& base) {
  return [form = base.resumable](WorkStore&, const PriceSources& p, Target out) { return form(p, out); };
}

Operation spread() {
  return [](WorkStore&, const PriceSources& p, Target out) {
    return CTechnicalFunctions::SPREAD(p.close, p.volume, out);
  };
}

Operation composite(double x, double y) {
  return [=](WorkStore&, const PriceSources& p, Target out) {
    return CTechnicalFunctions::COMPOSITE(p.close, p.volume, x, y, out);
  };
}

TEST(PriceBases, ByHandFromRowOneInBatchAndFromRowZeroResumed) {
  const PriceRows bars = {
      {0, 0}, {9, 12}, {3, 6}, {6, 9}, {0, 0}};  // high 9 and 12, low 3 and 6, close 6 and 9
  const double expected[][2] = {{6, 9}, {6, 9}, {6, 6}, {6, 9}};
  for (int b = 0; b < 4; ++b) {
    SCOPED_TRACE(kBases[b].name);
    EXPECT_TRUE(sameRows(Rows{kNull, expected[b][1]}, runBatch(bars, kBases[b].batch)));
    EXPECT_TRUE(sameRows(Rows{expected[b][0], expected[b][1]}, runResumable(bars, resumable(kBases[b]))));
  }
}

TEST(PriceBases, WeightedCloseCountsTheCloseTwice) {
  const PriceRows bar = {{0, 0}, {0, 10}, {0, 2}, {0, 8}, {0, 0}};
  EXPECT_TRUE(sameRows(Rows{kNull, 7.0}, runBatch(bar, CFeedkit::WeightedClose)));  // (8 + 8 + 10 + 2) / 4
}

TEST(PriceBases, EveryRowIsItsFormulaOfPricesAsTheyStand) {
  forEachShortSeries(6, [](const PriceRows& p) {
    const std::size_t n = p.close.size();
    for (const Base& base : kBases) {
      SCOPED_TRACE(base.name);
      Rows expected(n, kNull);
      for (std::size_t i = 0; i < n; ++i) expected[i] = base.formula(p.high[i], p.low[i], p.close[i]);
      EXPECT_TRUE(sameRows(expected, runResumable(p, resumable(base))));
      if (n > 0) expected[0] = kNull;
      EXPECT_TRUE(sameRows(expected, runBatch(p, base.batch)));
    }
  });
}

TEST(PriceBases, StreamLikeOneCall) {
  for (const Base& base : kBases) {
    SCOPED_TRACE(base.name);
    expectStreamsOverAllShapes(resumable(base), 12);
  }
  expectStreamsOverAllShapes(spread());
  expectStreamsOverAllShapes(composite(0.25, -3.0));
}

TEST(PriceBases, SpreadAndCompositeByHand) {
  const PriceRows bars = pointPrices({5, 7, kNull}, {1, 10, 4});
  EXPECT_TRUE(sameRows(Rows{4, -3, -4}, runResumable(bars, spread())));
  EXPECT_TRUE(sameRows(Rows{13, 44, 12}, runResumable(bars, composite(2, 3))));
}

TEST(PriceBases, SpreadAndCompositeBeginAtTheHigherLead) {
  const PriceRows bars = pointPrices({kNull, 7, 8, 9}, {kNull, kNull, 4, 5});
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 4, 4}, runResumable(bars, spread())));
  EXPECT_TRUE(sameRows(Rows{kNull, kNull, 12, 14}, runResumable(bars, composite(1, 1))));
}

TEST(PriceBases, ASeriesThatNeverBeginsGivesNothing) {
  expectNothingDone(pointPrices({kNull, kNull}), spread());
  expectNothingDone({}, spread());
  for (const Base& base : kBases) expectNothingDone({}, resumable(base));
}

TEST(PriceBases, AResumedCallWritesTheLastRowAndTheNewOnes) {
  const PriceRows bars = makePrices(Shape::kWalk, 6);
  for (const Base& base : kBases) {
    Rows out(6, kNull);
    std::int32_t slot = 4;
    EXPECT_EQ(base.resumable(sourcesOf(bars, 6), {out, &slot}), kDone);
    EXPECT_EQ(slot, 6);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(isNull(out[i]), i < 3) << base.name << " row " << i;
  }
}

TEST(PriceBases, RowsAreThoseThatAllPricesAndTheOutputHave) {
  const PriceRows bars = makePrices(Shape::kWalk, 6);
  PriceSources uneven = sourcesOf(bars, 6);
  uneven.low.rows = uneven.low.rows.first(3);
  for (const Base& base : kBases) {
    Rows out(5, kNull);
    std::int32_t slot = -1;
    EXPECT_EQ(base.resumable(uneven, {out, &slot}), kDone);
    EXPECT_EQ(slot, 3) << base.name;
  }
}

}  // namespace
}  // namespace brindlewort
