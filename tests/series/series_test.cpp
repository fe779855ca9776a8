#include "series/series.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::Random;
using testing::Rows;
using testing::sameRows;

TEST(Series, NoRowsAtFirst) {
  Series series;
  EXPECT_EQ(series.size(), 0u);
  EXPECT_TRUE(series.empty());
  EXPECT_TRUE(series.view().empty());
  EXPECT_TRUE(series.edit().empty());
  EXPECT_TRUE(series.unique());
  EXPECT_TRUE(Series(View{}).empty());
  EXPECT_TRUE(Series(0, 1.0).empty());
  EXPECT_TRUE(Series::uninitialized(0).empty());
}

TEST(Series, HoldsWhatItIsGiven) {
  EXPECT_TRUE(sameRows(Rows{2.5, 2.5, 2.5}, Series(3, 2.5).view()));
  const Rows rows{1.0, 2.0, 3.0};
  const Series series{View(rows)};
  EXPECT_TRUE(sameRows(rows, series.view()));
  EXPECT_EQ(series[1], 2.0);
  EXPECT_EQ(series.back(), 3.0);
}

TEST(Series, CopiesShareOneBufferUntilOneIsWritten) {
  Series first(3, 1.0);
  Series second = first;
  EXPECT_EQ(first.data(), second.data());
  EXPECT_FALSE(first.unique());

  second.set(1, 9.0);
  EXPECT_NE(first.data(), second.data());
  EXPECT_TRUE(sameRows(Rows{1.0, 1.0, 1.0}, first.view()));
  EXPECT_TRUE(sameRows(Rows{1.0, 9.0, 1.0}, second.view()));
  EXPECT_TRUE(first.unique());
  EXPECT_TRUE(second.unique());
}

TEST(Series, WritingAnUnsharedSeriesDoesNotCopy) {
  Series series(3, 1.0);
  const double* rows = series.data();
  series.set(0, 2.0);
  EXPECT_EQ(series.data(), rows);
  { const Series copy = series; }
  series.set(1, 3.0);
  EXPECT_EQ(series.data(), rows);
}

TEST(Series, EveryWayOfWritingLeavesTheCopyAlone) {
  const Rows rows{1.0, 2.0, 3.0};
  void (*const writes[])(Series&) = {
      [](Series& s) { s.edit()[0] = 7.0; }, [](Series& s) { s.set(2, 7.0); },
      [](Series& s) { s.assign(2, 7.0); },  [](Series& s) { s.assign(3, 7.0); },
      [](Series& s) { s.assign(0, 7.0); },  [](Series& s) { s.resize(5, 7.0); },
      [](Series& s) { s.resize(1, 7.0); },  [](Series& s) { s.resize(0, 7.0); },
      [](Series& s) { s.push_back(7.0); },  [](Series& s) { s.reserve(100); },
      [](Series& s) { s.clear(); },         [](Series& s) { s = Series(1, 7.0); },
  };
  for (const auto write : writes) {
    Series written{View(rows)};
    const Series kept = written;
    write(written);
    EXPECT_TRUE(sameRows(rows, kept.view()));
    EXPECT_TRUE(kept.unique());
  }
}

TEST(Series, MovingTakesTheBufferAlong) {
  Series first(3, 1.0);
  const double* rows = first.data();
  Series second = std::move(first);
  EXPECT_EQ(second.data(), rows);
  EXPECT_TRUE(second.unique());
  Series third(5, 2.0);
  third = std::move(second);
  EXPECT_EQ(third.data(), rows);
}

TEST(Series, AssignmentToItselfChangesNothing) {
  Series series(3, 1.0);
  Series& same = series;
  series = same;
  EXPECT_TRUE(sameRows(Rows{1.0, 1.0, 1.0}, series.view()));
  series = std::move(same);
  EXPECT_TRUE(sameRows(Rows{1.0, 1.0, 1.0}, series.view()));
  const Series copy = series;
  series = copy;
  EXPECT_TRUE(sameRows(Rows{1.0, 1.0, 1.0}, series.view()));
}

TEST(Series, ResizeKeepsTheFrontAndFillsTheRest) {
  Series series;
  series.resize(2, 1.0);
  series.resize(4, 2.0);
  EXPECT_TRUE(sameRows(Rows{1.0, 1.0, 2.0, 2.0}, series.view()));
  series.resize(1, 3.0);
  EXPECT_TRUE(sameRows(Rows{1.0}, series.view()));
  series.resize(3, 4.0);
  EXPECT_TRUE(sameRows(Rows{1.0, 4.0, 4.0}, series.view()));
}

TEST(Series, GrowingRowByRowSeldomMovesTheBuffer) {
  void (*const grows[])(Series&, double) = {
      [](Series& s, double x) { s.push_back(x); },
      [](Series& s, double x) { s.resize(s.size() + 1, x); },
  };
  for (const auto grow : grows) {
    Series series;
    int moves = 0;
    for (int i = 0; i < 100'000; ++i) {
      const double* before = series.data();
      grow(series, i);
      if (series.data() != before) ++moves;
    }
    EXPECT_LE(moves, 40);  // 1.5^29 > 100,000
    ASSERT_EQ(series.size(), 100'000u);
    for (std::size_t i = 0; i < series.size(); ++i) ASSERT_EQ(series[i], static_cast<double>(i));
  }
}

TEST(Series, ReservedRowsDoNotMove) {
  Series series;
  series.reserve(1000);
  EXPECT_TRUE(series.empty());
  series.push_back(0.0);
  const double* rows = series.data();
  while (series.size() < 1000) series.push_back(1.0);
  EXPECT_EQ(series.data(), rows);
}

TEST(Series, RowsStartOn32Bytes) {
  for (std::size_t rows = 1; rows < 50; ++rows) {
    const Series series(rows, 0.0);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(series.data()) % 32, 0u);
  }
}

// Some series that share and unshare at random, each beside a plain vector that is copied deeply.
TEST(Series, BehavesAsADeepCopiedVector) {
  constexpr int kCount = 5;
  Random random(3);
  Series series[kCount];
  Rows plain[kCount];
  for (int step = 0; step < 200'000; ++step) {
    const int a = random.below(kCount), b = random.below(kCount);
    const double x = random.unit();
    const std::size_t rows = static_cast<std::size_t>(random.below(20));
    switch (random.below(9)) {
      case 0:
        series[a] = series[b], plain[a] = plain[b];
        break;
      case 1:
        series[a].push_back(x), plain[a].push_back(x);
        break;
      case 2:
        series[a].resize(rows, x), plain[a].resize(rows, x);
        break;
      case 3:
        series[a].assign(rows, x), plain[a].assign(rows, x);
        break;
      case 4:
        series[a].clear(), plain[a].clear();
        break;
      case 5:
        series[a] = Series(series[b].view()), plain[a] = Rows(plain[b]);
        break;
      case 6:
        series[a].reserve(rows);
        break;
      case 7:
        if (a != b)
          series[a] = std::move(series[b]), plain[a] = plain[b], series[b] = Series(), plain[b].clear();
        break;
      default:
        if (!plain[a].empty()) {
          const std::size_t row = rows % plain[a].size();
          series[a].set(row, x), plain[a][row] = x;
        }
    }
    for (int i = 0; i < kCount; ++i) ASSERT_TRUE(sameRows(plain[i], series[i].view())) << "step " << step;
  }
}

TEST(SeriesPool, ABufferOfAFinishedSeriesServesTheNext) {
  SeriesPool pool;
  const double* first = nullptr;
  {
    const SeriesPool::Scope scope(pool);
    {
      const Series series(5000, 1.0);
      first = series.data();
    }
    EXPECT_EQ(pool.size(), 1u);
    const Series next(4800, 2.0);
    EXPECT_EQ(next.data(), first);
    EXPECT_EQ(next.size(), 4800u);
    EXPECT_EQ(next[4799], 2.0);
    EXPECT_EQ(pool.size(), 0u);
  }
}

TEST(SeriesPool, ASharedBufferIsKeptWhenItsLastOwnerGoes) {
  SeriesPool pool;
  const SeriesPool::Scope scope(pool);
  Series one(5000, 1.0);
  Series two = one;
  one = Series();
  EXPECT_EQ(pool.size(), 0u);
  two = Series();
  EXPECT_EQ(pool.size(), 1u);
  pool.trim();
  EXPECT_EQ(pool.size(), 0u);
}

TEST(SeriesPool, SmallAndFarTooLargeBuffersAreNotTaken) {
  SeriesPool pool;
  const SeriesPool::Scope scope(pool);
  { const Series small(100, 0.0); }
  EXPECT_EQ(pool.size(), 0u);
  { const Series large(50'000, 0.0); }
  const Series wanted(5000, 0.0);
  EXPECT_EQ(pool.size(), 1u) << "the large one stays";
}

TEST(SeriesPool, ASeriesMayOutliveTheScopeAndThePool) {
  Series series;
  {
    SeriesPool pool;
    const SeriesPool::Scope scope(pool);
    series.assign(5000, 3.0);
  }
  EXPECT_EQ(series[4999], 3.0);
}

}  // namespace
}  // namespace brindlewort
