#pragma once

#include <algorithm>
#include <initializer_list>
#include <vector>

#include "indicators/moving_averages.hpp"
#include "support/series_checks.hpp"
#include "support/streaming.hpp"

/// What the oscillator tests share: running an operation in either form, and walking over all the kinds and
/// lengths of input.
namespace brindlewort::testing {

inline Prices viewsOf(const PriceRows& p) {
  return {p.open, p.high, p.low, p.close, p.volume};
}

/// What `operation(Out)` writes over n null rows.
template <class Operation>
Rows batchRows(std::size_t n, Operation operation) {
  Rows out(n, kNull);
  operation(Out(out));
  return out;
}

inline PriceRows closesOnly(const Rows& close) {
  return {close, close, close, close, close};
}

/// One call of a resumable operation over a series, which it reads as the close.
inline RunResult runLiving(const Rows& in, const Operation& operation) {
  return runAtOnce(closesOnly(in), operation);
}

inline Rows batchAverage(const Rows& in, Count p, Count type) {
  return batchRows(in.size(), [&](Out out) { CFeedkit::movingAverageByType(in, p, type, out); });
}
inline Rows livingAverage(const Rows& in, Count p, Count type) {
  return runLiving(in,
                   [&](WorkStore& store, const PriceSources& prices, Target out) {
                     return CTechnicalFunctions::movingAverageByType(store, prices.close, p, type, out);
                   })
      .rows;
}

/// The kinds of input on which bars fed one by one must give the series of one call.
inline constexpr Shape kStreamingShapes[] = {Shape::kWalk,     Shape::kFlat,     Shape::kRising,
                                             Shape::kNullHead, Shape::kNullGaps, Shape::kZeros,
                                             Shape::kNegative, Shape::kSteps};

inline void expectStreams(const Operation& operation, const std::vector<Shape>& exceptions = {}) {
  constexpr int kRows = 48;
  for (Shape shape : kStreamingShapes) {
    if (std::find(exceptions.begin(), exceptions.end(), shape) != exceptions.end()) continue;
    SCOPED_TRACE(::testing::Message() << "shape " << static_cast<int>(shape));
    expectStreamsLikeOneCall(makePrices(shape, kRows), operation);
  }
}

/// check(prices, p) for every shape, each of the periods, and every length from 0 to 5 * p.
template <class Check>
void forAllPrices(std::initializer_list<Count> periods, Check check) {
  for (Shape shape : kAllShapes) {
    for (Count p : periods) {
      for (int n = 0; n <= 5 * p; ++n) {
        SCOPED_TRACE(::testing::Message()
                     << "shape " << static_cast<int>(shape) << ", p " << p << ", n " << n);
        check(makePrices(shape, n, static_cast<std::uint64_t>(p)), p);
        if (::testing::Test::HasFailure()) return;
      }
    }
  }
}

/// check(series, p) likewise.
template <class Check>
void forAllSeries(std::initializer_list<Count> periods, Check check) {
  forAllPrices(periods, [&](const PriceRows& prices, Count p) { check(prices.close, p); });
}

/// Periods that no operation takes over a few hundred rows.
inline constexpr Count kHopelessPeriods[] = {0, -1, INT32_MIN, 1000, INT32_MAX};

/// The moving average types that the dispatcher tells apart.
inline constexpr Count kAllTypes[] = {kSimple,     kExponential, kTimeSeries, kVariable,
                                      kTriangular, kWeighted,    kVidya,      kWilder};

/// How many rows there are, as a number that may become negative.
inline Count countOf(const Rows& rows) {
  return static_cast<Count>(rows.size());
}

inline bool allNull(const Rows& rows) {
  for (double x : rows) {
    if (!isNull(x)) return false;
  }
  return true;
}

/// A refused call: status -1, output and slot as they were.
inline void expectNothingDone(const RunResult& result) {
  EXPECT_EQ(result.status, kNothingDone);
  EXPECT_EQ(result.slot, -1);
  EXPECT_TRUE(allNull(result.rows));
}

}  // namespace brindlewort::testing
