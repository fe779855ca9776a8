// Extremes of windows whose values are compared at four decimals: the queue and the scan beside a literal
// double loop.

#include "indicators/ranked_extremes.hpp"

#include <gtest/gtest.h>

#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::kNull;
using testing::Rows;
using testing::Shape;

/// The window's newest row stands until a row is truly better, and then the first such that none is better
/// than.
double twin(const Rows& in, std::size_t i, std::size_t p, bool greatest, bool nullsCount) {
  double best = in[i];
  for (std::size_t j = i + 1 - p; j < i; ++j) {
    if (!nullsCount && in[j] == -987654321.0) continue;
    const bool better = greatest ? QuantizeForCompare(in[j]) > QuantizeForCompare(best)
                                 : QuantizeForCompare(in[j]) < QuantizeForCompare(best);
    if (better) best = in[j];
  }
  return best;
}

/// Values that differ beyond the fourth decimal, or hardly, or not at all.
Rows nearTies(int rows) {
  testing::Random random(3);
  Rows out;
  for (int i = 0; i < rows; ++i) out.push_back(50.0 + random.below(4) * 0.00003 + random.below(3) * 0.0001);
  return out;
}

void expectTwin(const Rows& in, bool greatest, bool nullsCount) {
  const auto counts = [nullsCount](double x) { return nullsCount || !isNull(x); };
  const Count n = rowsOf(in);
  for (Count p : {1, 2, 3, 7, 40, 199, 200}) {
    for (Count first : {p - 1, std::min(p + 3, n - 1), n - 1}) {
      Rows queued(in.size(), 0.5), scanned(in.size(), 0.5), either(in.size(), 0.5), expected(in.size(), 0.5);
      for (Count i = first; i < n; ++i) {
        expected[static_cast<std::size_t>(i)] =
            twin(in, static_cast<std::size_t>(i), static_cast<std::size_t>(p), greatest, nullsCount);
      }
      queueRankedExtremes(in, p, first, n, greatest, counts, queued);
      scanRankedExtremes(in, p, first, n, greatest, counts, scanned);
      rankedExtremes(in, p, first, n, greatest, counts, either);
      EXPECT_TRUE(testing::sameRows(expected, queued)) << p << " from " << first;
      EXPECT_TRUE(testing::sameRows(expected, scanned)) << p << " from " << first;
      EXPECT_TRUE(testing::sameRows(expected, either)) << p << " from " << first;
    }
  }
}

TEST(RankedExtremes, AreThoseOfAPlainScanOfEachWindow) {
  for (bool greatest : {true, false}) {
    for (bool nullsCount : {true, false}) {
      for (Shape shape : testing::kAllShapes)
        expectTwin(testing::makeSeries(shape, 200), greatest, nullsCount);
      expectTwin(nearTies(200), greatest, nullsCount);
      expectTwin(Rows(200, kNull), greatest, nullsCount);
    }
  }
}

TEST(RankedExtremes, OfEqualValuesTheNewestStandsWhereItIsAmongThemElseTheOldest) {
  const Rows in = {5.00001, 5.00002, 5.00003, 1.0};
  Rows out(in.size());
  const auto all = [](double) { return true; };
  rankedExtremes(in, 3, 2, 4, true, all, out);
  EXPECT_EQ(out[2], 5.00003);  // the newest
  EXPECT_EQ(out[3], 5.00002);  // the oldest of two
}

TEST(RankedExtremes, ANullIsPassedOverSaveAsTheNewestRow) {
  const Rows in = {3.0, kNull, 4.0, kNull};
  Rows out(in.size());
  const auto counts = [](double x) { return !isNull(x); };
  rankedExtremes(in, 3, 2, 4, false, counts, out);
  EXPECT_EQ(out[2], 3.0);
  EXPECT_EQ(out[3], kNull);
  rankedExtremes(in, 3, 2, 4, true, counts, out);
  EXPECT_EQ(out[3], 4.0);
}

}  // namespace
}  // namespace brindlewort
