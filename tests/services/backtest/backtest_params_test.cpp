#include "services/backtest/backtest_params.hpp"

#include <gtest/gtest.h>

#include <string>

namespace brindlewort {
namespace {

void expectParams(std::string_view text, double stop, double trail, double profit, double bars) {
  SCOPED_TRACE(std::string(text));
  const BacktestParams params = ParseBacktestParams(text);
  EXPECT_EQ(params.StopLossPct, stop);
  EXPECT_EQ(params.TrailingStop, trail);
  EXPECT_EQ(params.ProfitTargetPct, profit);
  EXPECT_EQ(params.NoActivityBars, bars);
}

void expectAllOff(std::string_view text) {
  expectParams(text, -1.0, -1.0, -1.0, -1.0);
}

TEST(BacktestParams, FourClosedItemsSetTheRulesByPosition) {
  expectParams("stop=2.5;trail=1;profit=10;bars=20;", 2.5, 1.0, 10.0, 20.0);
  expectParams("bars=2.5;bars=1;x=10;=20;", 2.5, 1.0, 10.0, 20.0);
}

TEST(BacktestParams, AnyOtherNumberOfItemsLeavesAllRulesOff) {
  expectAllOff("");
  expectAllOff("stop=2;");
  expectAllOff("stop=2;trail=1;profit=10;");
  expectAllOff("stop=2;trail=1;profit=10;bars=20;more=1;");
}

TEST(BacktestParams, TheLastItemNeedsItsSemicolonToo) {
  expectAllOff("stop=2;trail=1;profit=10;bars=20");
  expectParams("stop=2;trail=1;profit=10;bars=20;rest", 2.0, 1.0, 10.0, 20.0);
}

TEST(BacktestParams, WhatIsNoNumberReadsAsZero) {
  expectParams("stop=two;trail=;profit=NaN;;", 0.0, 0.0, 0.0, 0.0);
  expectParams("a= 2 percent;b=-3;c=+1e1x;d=.5;", 2.0, -3.0, 10.0, 0.5);
}

TEST(BacktestParams, AnItemWithoutASignIsAllValue) {
  expectParams("2;1;10;20;", 2.0, 1.0, 10.0, 20.0);
}

TEST(BacktestParams, TheNameWithItsSignGoesWhereverItStands) {
  // "a=1a=2" loses both "a=": 12. The second name of "a=1b=2" stays and ends the number. "ba=" ends in "a=".
  expectParams("a=1a=2;a=1b=2;a=1ba=2;=1=2;", 12.0, 1.0, 1.0, 12.0);
}

TEST(BacktestParams, ALongNameIsReadOnce) {
  const std::string name(2'000'000, 'a');
  expectParams(name + "=" + name + name + "b=1;" + name + "=7;1;1;", 0.0, 7.0, 1.0, 1.0);
}

TEST(BacktestParams, ARuleIsOnAboveZero) {
  const BacktestParams off = ParseBacktestParams("a=0;b=1;c=-1;d=0;");
  EXPECT_FALSE(off.stops() || off.trails() || off.takesProfit() || off.timesOut());
  const BacktestParams on = ParseBacktestParams("a=0.1;b=0.1;c=0.1;d=0.1;");
  EXPECT_TRUE(on.stops() && on.trails() && on.takesProfit() && on.timesOut());
}

TEST(BacktestParams, TheTrailNeedsTheStop) {
  EXPECT_FALSE(ParseBacktestParams("a=0;b=1;c=0;d=0;").trails());
  EXPECT_FALSE(ParseBacktestParams("a=1;b=0;c=0;d=0;").trails());
}

}  // namespace
}  // namespace brindlewort
