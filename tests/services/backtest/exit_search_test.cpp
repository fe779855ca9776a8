#include "services/backtest/exit_search.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "services/backtest/backtest_support.hpp"
#include "services/backtest/plain_exit.hpp"
#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using namespace brindlewort::testing;

constexpr double kOff = -1.0;

/// A position opened on bar 1 at 100, and the days behind it, the first being bar 2.
struct Walk {
  Walk(TradeCode side, const BacktestParams& params, std::vector<Day> days, std::size_t moreBars = 5) {
    days.insert(days.begin(), Day{100.0, 100.0, 100.0});
    const int lastBar = static_cast<int>(days.size());
    days.insert(days.end(), moreBars, Day{100.0, 100.0, 100.0});
    const std::vector<Bar> bars = makeBars(days);
    const RunBars run = runOver(bars);
    exit = signalOn(bars, 1, side);
    found = ExitSearch(run, params).FindExit(2, lastBar, exit);
  }
  bool found;
  SignalRecord exit;
};

void expectExit(const Walk& walk, int bar, TradeCode reason, double price) {
  ASSERT_TRUE(walk.found);
  EXPECT_EQ(walk.exit.BarIndex, bar);
  EXPECT_EQ(walk.exit.Signal, reason);
  EXPECT_EQ(walk.exit.Price, price);
  EXPECT_EQ(walk.exit.JDate, dayDate(bar));
}

// ---- Each rule alone. The levels are those of an entry at 100: percent are units.

TEST(ExitSearch, LongProfitIsTakenAtTheTarget) {
  const BacktestParams params{kOff, kOff, 5.0, kOff};  // target (100 + 5) x 100 / 100 = 105
  expectExit(Walk(kTradeLong, params, {{104.9, 90, 95}, {105, 100, 101}, {120, 100, 110}}), 3, kTradeProfit,
             105.0);
  expectExit(Walk(kTradeLong, params, {{130, 120, 125}}), 2, kTradeProfit, 105.0);  // a gap changes nothing
}

TEST(ExitSearch, ShortProfitIsTakenAtTheTarget) {
  const BacktestParams params{kOff, kOff, 5.0, kOff};  // target (100 - 5) x 100 / 100 = 95
  expectExit(Walk(kTradeShort, params, {{120, 95.1, 100}, {100, 95, 99}}), 3, kTradeProfit, 95.0);
  expectExit(Walk(kTradeShort, params, {{80, 70, 75}}), 2, kTradeProfit, 95.0);
}

TEST(ExitSearch, LongStopIsFilledAtTheStop) {
  const BacktestParams params{2.0, kOff, kOff, kOff};  // stop (100 - 2) x 100 / 100 = 98
  expectExit(Walk(kTradeLong, params, {{200, 98.1, 99}, {99, 98, 98}}), 3, kTradeStopLoss, 98.0);
  expectExit(Walk(kTradeLong, params, {{60, 50, 55}}), 2, kTradeStopLoss, 98.0);
}

TEST(ExitSearch, ShortStopIsFilledAtTheStop) {
  const BacktestParams params{2.0, kOff, kOff, kOff};  // stop (100 + 2) x 100 / 100 = 102
  expectExit(Walk(kTradeShort, params, {{101.9, 10, 99}, {102, 99, 100}}), 3, kTradeStopLoss, 102.0);
  expectExit(Walk(kTradeShort, params, {{160, 150, 155}}), 2, kTradeStopLoss, 102.0);
}

TEST(ExitSearch, LongTrailFollowsTheHighestHighAtTheStopsDistance) {
  const BacktestParams params{2.0, 1.0, kOff, kOff};
  // Bar 2 moves the trail to 98 + 3 = 101, bar 3 would give 100 and leaves it, its low reaches it.
  expectExit(Walk(kTradeLong, params, {{103, 101.5, 102}, {102, 101, 101}}), 3, kTradeTrailingStop, 101.0);
}

TEST(ExitSearch, ShortTrailFollowsTheLowestLowAtTheStopsDistance) {
  const BacktestParams params{2.0, 1.0, kOff, kOff};
  // Bar 2 moves the trail to 102 - 3 = 99, bar 3 would give 100 and leaves it, its high reaches it.
  expectExit(Walk(kTradeShort, params, {{98.5, 97, 98}, {99, 98, 99}}), 3, kTradeTrailingStop, 99.0);
}

TEST(ExitSearch, TheTrailMovesBeforeTheBarIsTested) {
  const BacktestParams params{2.0, 1.0, kOff, kOff};
  expectExit(Walk(kTradeLong, params, {{110, 100, 105}}), 2, kTradeTrailingStop, 108.0);
  expectExit(Walk(kTradeShort, params, {{100, 90, 95}}), 2, kTradeTrailingStop, 92.0);
}

TEST(ExitSearch, NoTrailWithoutAStop) {
  const BacktestParams params{kOff, 1.0, kOff, kOff};
  // Only the last bar of the walk ends it.
  expectExit(Walk(kTradeLong, params, {{150, 100, 140}, {50, 1, 10}}), 3, kTradeExitLong, 10.0);
  expectExit(Walk(kTradeShort, params, {{100, 50, 60}, {500, 100, 400}}), 3, kTradeExitShort, 400.0);
}

TEST(ExitSearch, UntilTheTrailLeavesTheStopTheStopDecides) {
  const BacktestParams params{2.0, 1.0, kOff, kOff};
  expectExit(Walk(kTradeLong, params, {{100, 99, 99}, {100, 98, 98}}), 3, kTradeStopLoss, 98.0);
  expectExit(Walk(kTradeShort, params, {{101, 100, 101}, {102, 100, 102}}), 3, kTradeStopLoss, 102.0);
}

TEST(ExitSearch, AStopOfAHundredPercentIsAtZero) {
  const BacktestParams stop{100.0, kOff, kOff, kOff};
  expectExit(Walk(kTradeLong, stop, {{100, 0.5, 50}, {100, 0, 50}}), 3, kTradeStopLoss, 0.0);
  const BacktestParams trail{100.0, 1.0, kOff, kOff};  // the trail starts at 0 and rises to 0 + 10
  expectExit(Walk(kTradeLong, trail, {{110, 11, 50}, {100, 10, 50}}), 3, kTradeTrailingStop, 10.0);
}

TEST(ExitSearch, AShortTrailAtZeroHasNoSign) {
  // Stop 150, the low of -50 moves the trail to 150 - 150.
  const Walk walk(kTradeShort, {50.0, 1.0, kOff, kOff}, {{10, -50, 0}});
  expectExit(walk, 2, kTradeTrailingStop, 0.0);
  EXPECT_FALSE(std::signbit(walk.exit.Price));
}

TEST(ExitSearch, PositionsWithoutActivityCloseAtTheClose) {
  const BacktestParams params{kOff, kOff, kOff, 3.0};  // 5 - 1 > 3, 4 - 1 is not
  const std::vector<Day> days = {{1, 1, 11}, {1, 1, 12}, {1, 1, 13}, {1, 1, 14}, {1, 1, 15}};
  expectExit(Walk(kTradeLong, params, days), 5, kTradeNoActivity, 14.0);
  expectExit(Walk(kTradeShort, params, days), 5, kTradeNoActivity, 14.0);
  expectExit(Walk(kTradeLong, {kOff, kOff, kOff, 2.5}, days), 4, kTradeNoActivity, 13.0);  // 3 > 2.5
  expectExit(Walk(kTradeLong, {kOff, kOff, kOff, 0.1}, days), 2, kTradeNoActivity, 11.0);
  expectExit(Walk(kTradeLong, {kOff, kOff, kOff, 1e300}, days), 6, kTradeExitLong, 15.0);
}

// ---- The end of the walk.

TEST(ExitSearch, TheLastBarOfTheWalkClosesAtItsClose) {
  const BacktestParams off;
  expectExit(Walk(kTradeLong, off, {{1, 1, 11}, {1, 1, 12}}), 3, kTradeExitLong, 12.0);
  expectExit(Walk(kTradeShort, off, {{1, 1, 11}, {1, 1, 12}}), 3, kTradeExitShort, 12.0);
}

TEST(ExitSearch, TheDatasLastBarButOneIsNoExit) {
  const BacktestParams off;
  EXPECT_FALSE(Walk(kTradeLong, off, {{1, 1, 11}, {1, 1, 12}}, 1).found);
  EXPECT_TRUE(Walk(kTradeLong, off, {{1, 1, 11}, {1, 1, 12}}, 0).found);  // the last one is
  EXPECT_FALSE(Walk(kTradeShort, off, {{1, 1, 11}, {1, 1, 12}}, 1).found);
}

TEST(ExitSearch, OnTheDatasLastBarButOneRulesStillHit) {
  const std::vector<Day> days = {{100, 100, 100}, {106, 97, 99}};
  expectExit(Walk(kTradeLong, {2.0, kOff, kOff, kOff}, days, 1), 3, kTradeStopLoss, 98.0);
  expectExit(Walk(kTradeLong, {kOff, kOff, 5.0, kOff}, days, 1), 3, kTradeProfit, 105.0);
  expectExit(Walk(kTradeLong, {kOff, kOff, kOff, 1.0}, days, 1), 3, kTradeNoActivity, 99.0);
}

TEST(ExitSearch, NoBarsToLookAtGiveNoExit) {
  EXPECT_FALSE(Walk(kTradeLong, {2.0, 1.0, 5.0, 1.0}, {}).found);
}

TEST(ExitSearch, WithoutAnExitTheEntryStaysAsItWas) {
  const Walk walk(kTradeLong, {2.0, 1.0, 50.0, kOff}, {{101, 99.5, 100}}, 1);
  EXPECT_FALSE(walk.found);
  EXPECT_EQ(walk.exit.BarIndex, 1);
  EXPECT_EQ(walk.exit.Signal, kTradeLong);
  EXPECT_EQ(walk.exit.Price, 100.0);
}

// ---- The rules together: target, trail, stop, last bar, time.

TEST(ExitSearch, ProfitComesBeforeAllOthers) {
  const BacktestParams all{2.0, 1.0, 5.0, 1.0};
  expectExit(Walk(kTradeLong, all, {{105, 90, 95}}), 2, kTradeProfit, 105.0);
  expectExit(Walk(kTradeShort, all, {{110, 95, 105}}), 2, kTradeProfit, 95.0);
}

TEST(ExitSearch, TheTrailComesBeforeTheStop) {
  const BacktestParams all{2.0, 1.0, 5.0, 1.0};
  // The high of 101 moves the trail to 99; the low lies below trail and stop.
  expectExit(Walk(kTradeLong, all, {{101, 97, 98}}), 2, kTradeTrailingStop, 99.0);
  expectExit(Walk(kTradeShort, all, {{103, 99, 102}}), 2, kTradeTrailingStop, 101.0);
}

TEST(ExitSearch, TheStopComesBeforeTheLastBar) {
  const BacktestParams all{2.0, 1.0, 5.0, 1.0};
  expectExit(Walk(kTradeLong, all, {{100, 98, 99}}), 2, kTradeStopLoss, 98.0);
  expectExit(Walk(kTradeShort, all, {{102, 100, 101}}), 2, kTradeStopLoss, 102.0);
}

TEST(ExitSearch, TheLastBarComesBeforeTheTime) {
  const BacktestParams all{2.0, 1.0, 5.0, 1.0};  // 3 - 1 > 1 on the last bar, too
  expectExit(Walk(kTradeLong, all, {{100, 99, 99.5}, {100, 99, 99.6}}), 3, kTradeExitLong, 99.6);
  expectExit(Walk(kTradeShort, all, {{101, 100, 100.5}, {101, 100, 100.6}}), 3, kTradeExitShort, 100.6);
}

TEST(ExitSearch, TheTimeEndsAWalkThatNothingElseEnds) {
  const BacktestParams all{2.0, 1.0, 5.0, 1.0};
  const std::vector<Day> days = {{100, 99, 99.5}, {100, 99, 99.6}, {100, 99, 99.7}};
  expectExit(Walk(kTradeLong, all, days), 3, kTradeNoActivity, 99.6);
  const std::vector<Day> shortDays = {{101, 100, 100.5}, {101, 100, 100.6}, {101, 100, 100.7}};
  expectExit(Walk(kTradeShort, all, shortDays), 3, kTradeNoActivity, 100.6);
}

TEST(ExitSearch, PricesThatAreNoNumbersHitNothing) {
  const BacktestParams all{2.0, 1.0, 5.0, kOff};
  expectExit(Walk(kTradeLong, all, {{kNaN, kNaN, 7}, {kNaN, 98, 8}}), 3, kTradeStopLoss, 98.0);
  EXPECT_FALSE(Walk(kTradeLong, all, {{kNaN, kNaN, kNaN}}, 1).found);
}

// ---- The search over blocks against the walk from bar to bar.

void expectSameExit(bool expectedFound, const SignalRecord& expected, bool found,
                    const SignalRecord& actual) {
  ASSERT_EQ(expectedFound, found);
  ASSERT_EQ(expected.BarIndex, actual.BarIndex);
  ASSERT_EQ(expected.Signal, actual.Signal);
  ASSERT_EQ(expected.TradeType, actual.TradeType);
  ASSERT_TRUE(sameBits(expected.Price, actual.Price)) << expected.Price << " " << actual.Price;
  ASSERT_TRUE(sameBits(expected.JDate, actual.JDate));
}

/// Many searches over the same bars, so that all but the first go over blocks.
void compareSearches(const std::vector<Bar>& bars, const BacktestParams& params, Random& random,
                     int searches) {
  const RunBars run = runOver(bars);
  ExitSearch search(run, params);
  const int n = static_cast<int>(bars.size());
  for (int i = 0; i < searches; ++i) {
    const int at = 1 + random.below(n);
    const int lastBar = random.below(2) ? n - 1 : 1 + random.below(n);
    SignalRecord expected = signalOn(bars, at, random.below(2) ? kTradeLong : kTradeShort);
    SignalRecord actual = expected;
    const bool found = plainFindExit(bars, params, at + 1, lastBar, expected);
    expectSameExit(found, expected, search.FindExit(at + 1, lastBar, actual), actual);
    if (::testing::Test::HasFatalFailure()) return;
  }
}

std::vector<Bar> randomWalk(int count, double step, Random& random) {
  std::vector<Day> days;
  double price = 100.0;
  for (int i = 0; i < count; ++i) {
    price += step * (random.unit() - 0.5);
    days.push_back({price + step * random.unit(), price - step * random.unit(), price});
  }
  return makeBars(days);
}

double percentOrOff(Random& random) {
  constexpr double kPercents[] = {-1.0, 0.0, 0.5, 3.0, 20.0, 100.0};
  return kPercents[random.below(6)];
}

TEST(ExitSearch, BlocksGiveTheWalkBarByBar) {
  Random random(1);
  for (int round = 0; round < 60; ++round) {
    const std::vector<Bar> bars = randomWalk(9'000, round % 2 ? 0.02 : 1.0, random);
    const BacktestParams params{percentOrOff(random), random.below(3) ? 1.0 : 0.0, percentOrOff(random),
                                random.below(3) ? kOff : 1.0 + random.below(4'000)};
    compareSearches(bars, params, random, 60);
    if (HasFatalFailure()) return;
  }
}

TEST(ExitSearch, BlocksGiveTheWalkWhereSetbacksAreAsDeepAsTheStopIsFar) {
  // All prices are multiples of a hundredth of the entry price, the stop is some such steps away: whether a
  // low reaches the trail is up to the roundings.
  Random random(2);
  for (int round = 0; round < 100; ++round) {
    std::vector<Bar> bars = randomWalk(2'000, 1.0, random);
    const double grid = round % 2 ? 1.0 + 0.001 * random.below(1'000) : 0.1 * random.unit();
    for (Bar& bar : bars) {
      bar.HighPrice = std::round(bar.HighPrice / grid) * grid;
      bar.LowPrice = std::round(bar.LowPrice / grid) * grid;
      bar.ClosePrice = 100.0 * grid;
    }
    compareSearches(bars, {1.0 + random.below(8), 1.0, kOff, kOff}, random, 60);
    if (HasFatalFailure()) return;
  }
}

TEST(ExitSearch, BlocksGiveTheWalkOverAnyValues) {
  Random random(3);
  const double values[] = {kNaN, kInf, -kInf, 0.0, -0.0, -100.0, 1e308, -1e308, 1e-320, kNull};
  for (int round = 0; round < 200; ++round) {
    std::vector<Bar> bars = randomWalk(700, 1.0, random);
    for (int i = 1 << random.below(8); i > 0; --i) {
      Bar& bar = bars[static_cast<std::size_t>(random.below(700))];
      double* const prices[] = {&bar.HighPrice, &bar.LowPrice, &bar.ClosePrice};
      *prices[random.below(3)] = values[random.below(10)];
    }
    const double percents[] = {kOff, 1.0, 100.0, 250.0, 1e300, kInf};
    const BacktestParams params{percents[random.below(6)], 1.0, percents[random.below(6)], kOff};
    compareSearches(bars, params, random, 40);
    if (HasFatalFailure()) return;
  }
}

/// Searches from each bar on, none of which finds an exit. They may take some steps each, not a step for each
/// bar.
void searchInVain(const std::vector<Bar>& bars, const BacktestParams& params, TradeCode side) {
  const RunBars run = runOver(bars);
  ExitSearch search(run, params);
  const int n = static_cast<int>(bars.size());
  for (int at = 1; at < n; ++at) {
    SignalRecord entry = signalOn(bars, at, side);
    ASSERT_FALSE(search.FindExit(at + 1, n - 1, entry)) << at;
  }
  constexpr std::size_t kMostEach = 200;  // the rest of a block, and a few blocks of each size
  EXPECT_LT(search.steps(), kMostEach * bars.size());
}

TEST(ExitSearch, EntriesThatFindNoExitDoNotWalkOverAllBarsEach) {
  // Bar by bar these are 2 x 10^10 steps and more each. The trail follows the steady rise far above the lows
  // behind, but no bar falls by the distance of its stop.
  const std::vector<Bar> flat(200'000, makeBars({{100, 100, 100}}).front());
  searchInVain(flat, {1.0, 1.0, 5.0, kOff}, kTradeLong);
  searchInVain(flat, {1.0, 1.0, 5.0, kOff}, kTradeShort);
  searchInVain(risingBars(500'000), {1.0, 1.0, kOff, kOff}, kTradeLong);
  searchInVain(flat, {}, kTradeLong);
}

}  // namespace
}  // namespace brindlewort
