#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "support/streaming.hpp"

/// Runs of both forms of an operation that reads prices, over all kinds of short series.
namespace brindlewort::testing {

/// The shapes over which bars fed one by one give the series of one call.
inline constexpr Shape kStreamedShapes[] = {Shape::kWalk,     Shape::kFlat,     Shape::kRising,
                                            Shape::kNullHead, Shape::kNullGaps, Shape::kZeros,
                                            Shape::kNegative, Shape::kSteps};

inline Prices viewsOf(const PriceRows& p) {
  return {p.open, p.high, p.low, p.close, p.volume};
}

/// Prices whose open, high, low and close are one series, for operations whose arithmetic is the subject.
inline PriceRows pointPrices(const Rows& close, const Rows& volume = {}) {
  return {close, close, close, close, volume.empty() ? Rows(close.size(), 1000.0) : volume};
}

/// The batch form of an operation with its numbers bound. A series operation reads `prices.close`.
using BatchOperation = std::function<void(const Prices&, Out)>;

inline Rows runBatch(const PriceRows& prices, const BatchOperation& operation) {
  Rows out(prices.close.size(), kNull);
  operation(viewsOf(prices), out);
  return out;
}

inline Rows runResumable(const PriceRows& prices, const Operation& operation) {
  return runAtOnce(prices, operation).rows;
}

/// body(prices) for every shape and every row count up to `maxRows`, once with plain volume and once with
/// volume of the same shape as the prices.
template <class Body>
void forEachShortSeries(int maxRows, Body body) {
  for (Shape shape : kAllShapes) {
    for (int n = 0; n <= maxRows; ++n) {
      PriceRows prices = makePrices(shape, n);
      for (const char* volume : {"plain", "shaped"}) {
        SCOPED_TRACE("shape " + std::to_string(static_cast<int>(shape)) + ", rows " + std::to_string(n) +
                     ", " + volume + " volume");
        body(prices);
        prices.volume = makeSeries(shape, n, 5);
      }
    }
  }
}

/// Bars fed one by one give the series of one call, for every shape that promises it, with plain volume and
/// with volume of the prices' shape.
inline void expectStreamsOverAllShapes(const Operation& operation, int rows = 40) {
  for (Shape shape : kStreamedShapes) {
    PriceRows prices = makePrices(shape, rows);
    SCOPED_TRACE("shape " + std::to_string(static_cast<int>(shape)));
    expectStreamsLikeOneCall(prices, operation);
    prices.volume = makeSeries(shape, rows, 5);
    expectStreamsLikeOneCall(prices, operation);
  }
}

/// A call with nothing to do says so and leaves output and slot as they were.
inline void expectNothingDone(const PriceRows& prices, const Operation& operation) {
  const RunResult result = runAtOnce(prices, operation);
  EXPECT_EQ(result.status, kNothingDone);
  EXPECT_EQ(result.slot, -1);
  EXPECT_TRUE(sameRows(Rows(prices.close.size(), kNull), result.rows));
}

}  // namespace brindlewort::testing
