#pragma once

#include <functional>
#include <vector>

#include "support/streaming.hpp"

/// What the tests of bands and stops share: slow literal twins are run over the same lengths and shapes.
namespace brindlewort::testing {

/// Shapes over which bars fed one by one must give the series of one call.
inline constexpr Shape kStreamedShapes[] = {Shape::kWalk,     Shape::kFlat,     Shape::kRising,
                                            Shape::kNullHead, Shape::kNullGaps, Shape::kZeros,
                                            Shape::kNegative, Shape::kSteps};

inline constexpr Count kSmallPeriods[] = {1, 2, 3, 7};
/// Periods that no series of 60 rows allows, in the batch form.
inline constexpr Count kBadPeriods[] = {0, -1, INT32_MIN, 60, 61, INT32_MAX};

inline Prices viewsOf(const PriceRows& p) {
  return {p.open, p.high, p.low, p.close, p.volume};
}

/// A twin computes the whole series from the prices.
using Twin = std::function<Rows(const PriceRows&)>;

/// Every shape, every number of rows from 0 to five periods.
inline void forShortSeries(Count p, const std::function<void(const PriceRows&)>& check) {
  for (Shape shape : kAllShapes) {
    for (int n = 0; n <= 5 * p; ++n) {
      SCOPED_TRACE(::testing::Message()
                   << "shape " << static_cast<int>(shape) << ", rows " << n << ", p " << p);
      check(makePrices(shape, n));
      if (::testing::Test::HasFailure()) return;
    }
  }
}

inline void expectStreams(const Operation& operation, int rows = 60) {
  for (Shape shape : kStreamedShapes) {
    SCOPED_TRACE(::testing::Message() << "shape " << static_cast<int>(shape));
    expectStreamsLikeOneCall(makePrices(shape, rows), operation);
  }
}

/// A second call without a new bar answers kDone and changes nothing.
inline void expectRepeatable(const PriceRows& prices, const Operation& operation) {
  const std::size_t n = prices.close.size();
  TestStore store(n);
  Rows out(n, kNull);
  std::int32_t slot = -1;
  ASSERT_EQ(kDone, operation(store, sourcesOf(prices, n), {out, &slot}));
  EXPECT_EQ(static_cast<std::int32_t>(n), slot);
  const Rows once = out;
  EXPECT_EQ(kDone, operation(store, sourcesOf(prices, n), {out, &slot}));
  EXPECT_TRUE(sameRows(once, out, nearlySame));
}

/// The call answers kNothingDone and leaves output and slot as they were.
inline void expectNothingDone(const PriceRows& prices, const Operation& operation) {
  const RunResult result = runAtOnce(prices, operation);
  EXPECT_EQ(kNothingDone, result.status);
  EXPECT_EQ(-1, result.slot);
  EXPECT_TRUE(sameRows(Rows(prices.close.size(), kNull), result.rows));
}

/// Price rows from highs and lows (and closes, else their middle).
inline PriceRows barsOf(const Rows& high, const Rows& low, const Rows& close = {}) {
  PriceRows p;
  p.high = high;
  p.low = low;
  p.close = close;
  for (std::size_t i = close.size(); i < high.size(); ++i) p.close.push_back((high[i] + low[i]) / 2);
  p.open = p.close;
  p.volume = Rows(high.size(), 1000.0);
  return p;
}

/// Price rows whose close is the series and whose other prices are the same.
inline PriceRows closesOf(const Rows& close) {
  return barsOf(close, close, close);
}

}  // namespace brindlewort::testing
