#include "indicators/windows.hpp"

#include <utility>

#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::kNull;
using testing::makeSeries;
using testing::Rows;
using testing::sameRows;
using testing::Shape;

/// A term that tells rows and distances apart, so that a wrong order of additions shows in the bits.
auto weigh(View in) {
  return [in](Count j, Count k) { return nz(in[j]) / static_cast<double>(k + 3); };
}

/// The plain double loop.
template <WindowOrder order>
Rows plainSums(View in, Count first, Count last, Count p) {
  Rows out(in.size(), kNull);
  for (Count i = first; i < last; ++i) {
    double total = 0.0;
    if (order == WindowOrder::kOldestFirst) {
      for (Count k = p - 1; k >= 0; --k) total += weigh(in)(i - k, k);
    } else {
      for (Count k = 0; k < p; ++k) total += weigh(in)(i - k, k);
    }
    out[static_cast<std::size_t>(i)] = total;
  }
  return out;
}

/// All rows in one call, so that most of them go through blocks.
template <WindowOrder order>
Rows blockSums(View in, Count first, Count last, Count p) {
  Rows out(in.size(), kNull);
  sumWindows<order>(first, last, p, weigh(in),
                    [&](Count i, double total) { out[static_cast<std::size_t>(i)] = total; });
  return out;
}

/// Row by row, so that none goes through a block.
template <WindowOrder order>
Rows singleSums(View in, Count first, Count last, Count p) {
  Rows out(in.size(), kNull);
  for (Count i = first; i < last; ++i) {
    sumWindows<order>(i, i + 1, p, weigh(in),
                      [&](Count row, double total) { out[static_cast<std::size_t>(row)] = total; });
  }
  return out;
}

template <WindowOrder order>
void expectSameBits() {
  for (Shape shape : testing::kAllShapes) {
    for (int n = 0; n <= 40; ++n) {
      const Rows in = makeSeries(shape, n);
      for (Count p : {1, 2, 3, 7, 8, 9, 16, 31}) {
        for (Count first : {p - 1, p + 1}) {
          SCOPED_TRACE(::testing::Message() << "shape " << static_cast<int>(shape) << ", n " << n << ", p "
                                            << p << ", first " << first);
          const Rows plain = plainSums<order>(in, first, n, p);
          ASSERT_TRUE(sameRows(plain, blockSums<order>(in, first, n, p)));
          ASSERT_TRUE(sameRows(plain, singleSums<order>(in, first, n, p)));
        }
      }
    }
  }
}

TEST(SumWindows, BlocksHaveTheBitsOfThePlainLoopOldestRowFirst) {
  expectSameBits<WindowOrder::kOldestFirst>();
}

TEST(SumWindows, BlocksHaveTheBitsOfThePlainLoopNewestRowFirst) {
  expectSameBits<WindowOrder::kNewestFirst>();
}

TEST(SumWindows, TheOrderOfAdditionsIsKept) {
  // 1e16 + 1 + 1 loses both ones, 1 + 1 + 1e16 keeps them: a row of each block sees the difference.
  Rows in(12, 1.0);
  in[0] = 1e16;
  const auto value = [&](Count j, Count) { return in[static_cast<std::size_t>(j)]; };
  for (Count last : {3, 12}) {  // the row alone, and the row within a block
    Rows oldest(12, kNull), newest(12, kNull);
    sumWindows<WindowOrder::kOldestFirst>(
        2, last, 3, value, [&](Count i, double total) { oldest[static_cast<std::size_t>(i)] = total; });
    sumWindows<WindowOrder::kNewestFirst>(
        2, last, 3, value, [&](Count i, double total) { newest[static_cast<std::size_t>(i)] = total; });
    EXPECT_EQ(1e16, oldest[2]);
    EXPECT_EQ(1e16 + 2.0, newest[2]);
  }
}

TEST(SumWindows, EmitsEveryRowOnceInRisingOrder) {
  std::vector<Count> rows;
  sumWindows<WindowOrder::kOldestFirst>(
      3, 24, 2, [](Count, Count) { return 0.0; }, [&](Count i, double) { rows.push_back(i); });
  ASSERT_EQ(21u, rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(static_cast<Count>(i) + 3, rows[i]);
}

TEST(SumWindows, ReadsOnlyRowsOfTheWindows) {
  for (Count last : {5, 13, 22}) {
    sumWindows<WindowOrder::kNewestFirst>(
        5, last, 4,
        [last](Count j, Count k) {
          EXPECT_TRUE(j >= 2 && j < last && k >= 0 && k < 4) << j << ", " << k;
          return 0.0;
        },
        [](Count, double) {});
  }
}

TEST(SumWindows, WithoutRowsNothingIsEmitted) {
  int emitted = 0;
  const auto count = [&](Count, double) { ++emitted; };
  const auto zero = [](Count, Count) { return 0.0; };
  sumWindows<WindowOrder::kOldestFirst>(5, 5, 3, zero, count);
  sumWindows<WindowOrder::kOldestFirst>(9, 5, 3, zero, count);
  EXPECT_EQ(0, emitted);
}

TEST(SumWindows, AnEmptyWindowIsZero) {
  for (Count p : {Count{0}, Count{-4}}) {
    Rows totals;
    sumWindows<WindowOrder::kNewestFirst>(
        0, 9, p, [](Count, Count) { return 1.0; }, [&](Count, double total) { totals.push_back(total); });
    EXPECT_TRUE(sameRows(Rows(9, 0.0), totals));
  }
}

}  // namespace
}  // namespace brindlewort
