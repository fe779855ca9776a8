#pragma once

#include <functional>
#include <optional>
#include <type_traits>

#include "indicators/moving_averages.hpp"
#include "support/series_checks.hpp"
#include "support/streaming.hpp"

/// What the tests of the moving averages share: both forms over all kinds of short series against a slow
/// twin, and the promises that every resumable form keeps.
namespace brindlewort::testing {

/// A batch operation, its numbers bound.
using Batch = std::function<void(View in, Out out)>;
/// A twin of a batch operation: the rows it must give.
using BatchTwin = std::function<Rows(View in)>;
/// A twin of a first resumable call: the rows it must give, or nothing where it must answer kNothingDone.
using FirstCallTwin = std::function<std::optional<Rows>(View in)>;

inline Rows allNull(Count n) {
  return Rows(static_cast<std::size_t>(n), kNull);
}

/// A row as every average reads it: a null counts as 0.
inline double at(View in, Count i) {
  return nz(in[static_cast<std::size_t>(i)]);
}
inline double& at(Rows& rows, Count i) {
  return rows[static_cast<std::size_t>(i)];
}

/// An operation of one series with its numbers bound.
template <class Function, class... Numbers>
Batch batch(Function function, Numbers... numbers) {
  return [=](View in, Out out) { function(in, numbers..., out); };
}
template <class Function, class... Numbers>
Operation resumable(Function function, Numbers... numbers) {
  return [=](WorkStore& store, const PriceSources& prices, Target out) {
    if constexpr (std::is_invocable_v<Function, WorkStore&, Source, Numbers..., Target>) {
      return function(store, prices.close, numbers..., out);
    } else {
      static_cast<void>(store);
      return function(prices.close, numbers..., out);
    }
  };
}

inline Rows runBatch(View in, const Batch& operation) {
  Rows out = allNull(rowsOf(in));
  operation(in, out);
  return out;
}

/// Price series of which only the close counts.
inline PriceRows closesOnly(View close) {
  const Rows rows(close.begin(), close.end());
  return {rows, rows, rows, rows, rows};
}

inline RunResult runOnCloses(View close, const Operation& operation) {
  return runAtOnce(closesOnly(close), operation);
}

/// Lengths 0 to 5 * p of every shape, at least 0 to 12.
template <class Check>
void forShortSeries(Count p, Check check) {
  const int longest = static_cast<int>(std::max<Count>(5 * p, 12));
  for (Shape shape : kAllShapes) {
    for (int n = 0; n <= longest; ++n) {
      SCOPED_TRACE(::testing::Message() << "shape " << static_cast<int>(shape) << ", n " << n << ", p " << p);
      check(View(makeSeries(shape, n, static_cast<std::uint64_t>(n) + 3)));
    }
  }
}

inline void expectBatch(Count p, const Batch& operation, const BatchTwin& twin) {
  forShortSeries(p, [&](View in) { EXPECT_TRUE(sameRows(twin(in), runBatch(in, operation))); });
}

inline void expectFirstCall(Count p, const Operation& operation, const FirstCallTwin& twin) {
  forShortSeries(p, [&](View in) {
    const std::optional<Rows> expected = twin(in);
    const RunResult actual = runOnCloses(in, operation);
    EXPECT_TRUE(sameRows(expected.value_or(allNull(rowsOf(in))), actual.rows));
    EXPECT_EQ(expected ? kDone : kNothingDone, actual.status);
    EXPECT_EQ(expected ? static_cast<std::int32_t>(in.size()) : -1, actual.slot);
  });
}

inline constexpr Shape kStreamedShapes[] = {Shape::kWalk,     Shape::kFlat,     Shape::kRising,
                                            Shape::kNullHead, Shape::kNullGaps, Shape::kZeros,
                                            Shape::kNegative, Shape::kSteps};

/// Bars in blocks, with a call after each block, give the series of one call over all.
inline void expectBlocksLikeOneCall(const PriceRows& prices, const Operation& operation, std::size_t block) {
  const std::size_t n = prices.close.size();
  TestStore store;
  RunResult result;
  for (std::size_t rows = 0; rows < n;) {
    for (std::size_t i = 0; i < block && rows < n; ++i, ++rows) {
      store.appendRow();
      result.rows.push_back(kNull);
    }
    operation(store, sourcesOf(prices, rows), {result.rows, &result.slot});
  }
  EXPECT_TRUE(sameRows(runAtOnce(prices, operation).rows, result.rows, nearlySame)) << "blocks of " << block;
}

inline void expectStreams(const Operation& operation) {
  for (Shape shape : kStreamedShapes) {
    for (int n : {1, 2, 7, 33}) {
      SCOPED_TRACE(::testing::Message() << "shape " << static_cast<int>(shape) << ", n " << n);
      const PriceRows prices = makePrices(shape, n);
      expectStreamsLikeOneCall(prices, operation);
      expectBlocksLikeOneCall(prices, operation, 3);
    }
  }
}

/// A call without a new bar gives the same last row, and touches none before the last `recomputed` ones.
/// (The row before those is the base of a recursion, so it is left as it was.)
inline void expectRecomputes(std::size_t recomputed, const Operation& operation) {
  constexpr std::size_t kRows = 40;
  constexpr double kUntouched = 12345.0;
  const PriceRows prices = makePrices(Shape::kWalk, kRows);
  const PriceSources sources = sourcesOf(prices, kRows);
  TestStore store(kRows);
  RunResult result{Rows(kRows, kNull)};
  ASSERT_EQ(kDone, operation(store, sources, {result.rows, &result.slot}));
  Rows expected = result.rows;
  for (std::size_t i = 0; i + recomputed + 1 < kRows; ++i) expected[i] = kUntouched;
  result.rows = expected;
  for (std::size_t i = kRows - recomputed; i < kRows; ++i) result.rows[i] = kNull;
  EXPECT_EQ(kDone, operation(store, sources, {result.rows, &result.slot}));
  EXPECT_TRUE(sameRows(expected, result.rows, nearlySame));
  EXPECT_EQ(static_cast<std::int32_t>(kRows), result.slot);
}

/// Periods that no series of a test has room for, and those below 1.
inline constexpr Count kPeriodsOutOfRange[] = {INT32_MIN, INT32_MIN + 1, -5,       -1, 0, 101,
                                               1000,      INT32_MAX - 1, INT32_MAX};

/// Neither form does anything for a period out of range.
inline void expectRange(const std::function<void(View, Count, Out)>& batch,
                        const std::function<Status(WorkStore&, Source, Count, Target)>& resumable) {
  const Rows in = makeSeries(Shape::kWalk, 100);
  for (Count p : kPeriodsOutOfRange) {
    SCOPED_TRACE(p);
    EXPECT_TRUE(sameRows(allNull(100), runBatch(in, [&](View x, Out out) { batch(x, p, out); })));
    const RunResult result = runOnCloses(in, [&](WorkStore& store, const PriceSources& prices, Target out) {
      return resumable(store, prices.close, p, out);
    });
    EXPECT_EQ(kNothingDone, result.status);
    EXPECT_EQ(-1, result.slot);
    EXPECT_TRUE(sameRows(allNull(100), result.rows));
  }
  EXPECT_TRUE(sameRows(allNull(100), runBatch(in, [&](View x, Out out) { batch(x, 100, out); })))
      << "a period of all rows, batch form";
}

}  // namespace brindlewort::testing
