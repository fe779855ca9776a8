#include "indicators/pivots.hpp"

#include "support/price_forms.hpp"

namespace brindlewort {
namespace {

using namespace testing;

struct Level {
  PivotLevel level;
  double ofTheBar;  // of the bar of high 12, low 6, close 9
  double (*formula)(double P, double R, double high, double low);
};

// P = (12 + 6 + 9) / 3 = 9 and R = 12 - 6 = 6.
const Level kLevels[] = {
    {PivotLevel::kPivot, 9, [](double P, double, double, double) { return P; }},
    {PivotLevel::kRes1, 12, [](double P, double, double, double low) { return 2 * P - low; }},
    {PivotLevel::kRes2, 15, [](double P, double R, double, double) { return P + R; }},
    {PivotLevel::kRes3, 21, [](double P, double R, double, double) { return 2 * R + P; }},
    {PivotLevel::kRes4, 27, [](double P, double R, double, double) { return 3 * R + P; }},
    {PivotLevel::kSup1, 6, [](double P, double, double high, double) { return 2 * P - high; }},
    {PivotLevel::kSup2, 3, [](double P, double R, double, double) { return P - R; }},
    {PivotLevel::kSup3, -3, [](double P, double R, double, double) { return P - 2 * R; }},
    {PivotLevel::kSup4, -9, [](double P, double R, double, double) { return P - 3 * R; }},
};

BatchOperation batch(PivotLevel level) {
  return [=](const Prices& p, Out out) { CFeedkit::PIVOT(p, level, out); };
}

Operation resumable(PivotLevel level) {
  return [=](WorkStore&, const PriceSources& p, Target out) {
    return CTechnicalFunctions::PIVOT(p, level, out);
  };
}

TEST(Pivots, ByHandFromTheBarBefore) {
  const Rows same = {0, 0, 0};
  const PriceRows bars = {same, {12, 12, 50}, {6, 6, 40}, {9, 9, 45}, same};
  for (const Level& l : kLevels) {
    SCOPED_TRACE(static_cast<int>(l.level));
    EXPECT_TRUE(sameRows(Rows{kNull, kNull, l.ofTheBar}, runBatch(bars, batch(l.level))));
    EXPECT_TRUE(sameRows(Rows{kNull, l.ofTheBar, l.ofTheBar}, runResumable(bars, resumable(l.level))));
  }
}

TEST(Pivots, EveryRowIsItsFormula) {
  forEachShortSeries(7, [](const PriceRows& p) {
    const std::size_t n = p.close.size();
    for (const Level& l : kLevels) {
      SCOPED_TRACE(static_cast<int>(l.level));
      Rows expected(n, kNull);
      for (std::size_t i = 1; i < n; ++i) {
        const double P = (p.high[i - 1] + p.low[i - 1] + p.close[i - 1]) / 3;
        expected[i] = l.formula(P, p.high[i - 1] - p.low[i - 1], p.high[i - 1], p.low[i - 1]);
      }
      EXPECT_TRUE(sameRows(expected, runResumable(p, resumable(l.level))));
      if (n > 1) expected[1] = kNull;
      EXPECT_TRUE(sameRows(expected, runBatch(p, batch(l.level))));
    }
  });
}

TEST(Pivots, StreamLikeOneCall) {
  for (const Level& l : kLevels) expectStreamsOverAllShapes(resumable(l.level), 12);
}

TEST(Pivots, OneBarHasNoBarBefore) {
  expectNothingDone(makePrices(Shape::kWalk, 1), resumable(PivotLevel::kPivot));
  expectNothingDone({}, resumable(PivotLevel::kSup4));
}

}  // namespace
}  // namespace brindlewort
