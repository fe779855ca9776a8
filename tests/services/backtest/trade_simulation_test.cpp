#include "services/backtest/trade_simulation.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "services/backtest/backtest_support.hpp"
#include "services/backtest/plain_exit.hpp"
#include "services/backtest/report.hpp"
#include "support/date_texts.hpp"
#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using namespace brindlewort::testing;

using Signals = std::vector<SignalRecord>;

/// "1@3 4@8": types and bars of records, in order.
std::string sketch(const Signals& records) {
  std::string text;
  for (const SignalRecord& record : records) {
    if (!text.empty()) text += ' ';
    text += std::to_string(record.TradeType) + "@" + std::to_string(record.BarIndex);
  }
  return text;
}

struct Mark {
  TradeCode type;
  int bar;
};

Signals signalsOn(const std::vector<Bar>& bars, const std::vector<Mark>& marks) {
  Signals signals;
  for (const Mark& mark : marks) signals.push_back(signalOn(bars, mark.bar, mark.type));
  return signals;
}

/// The whole simulation without slippage.
Signals simulate(const std::vector<Bar>& bars, const std::vector<Mark>& marks, std::string_view rules = "",
                 double slipPct = 0.0) {
  return simulateTrades(signalsOn(bars, marks), runOver(bars), rules, slipPct);
}

// ---- Order.

TEST(SortSignals, ByDateAndOnADateTheLargerTypeFirst) {
  const std::vector<Bar> bars = risingBars(9);
  Signals signals = signalsOn(bars, {{kTradeLong, 3},
                                     {kTradeLong, 7},
                                     {kTradeShort, 2},
                                     {kTradeShort, 7},
                                     {kTradeExitLong, 7},
                                     {kTradeExitShort, 1},
                                     {kTradeExitShort, 7}});
  sortSignals(signals);
  EXPECT_EQ(sketch(signals), "5@1 2@2 1@3 5@7 4@7 2@7 1@7");
}

TEST(SortSignals, TheDateDecidesNotTheBar) {
  std::vector<Bar> bars = risingBars(3);
  bars[0].JDate = dayDate(30);
  Signals signals = signalsOn(bars, {{kTradeLong, 1}, {kTradeLong, 2}, {kTradeLong, 3}});
  sortSignals(signals);
  EXPECT_EQ(sketch(signals), "1@2 1@3 1@1");
}

TEST(SortSignals, EqualSignalsKeepTheirOrder) {
  Signals signals;
  for (int bar : {5, 2, 9, 4}) signals.push_back({bar, kTradeLong, kTradeLong, kNewYear2000, 0.0});
  sortSignals(signals);
  EXPECT_EQ(sketch(signals), "1@5 1@2 1@9 1@4");
}

TEST(SortSignals, DatesThatAreNoNumbersStandLast) {
  Signals signals;
  int bar = 0;
  for (double date : {kNaN, 3.0, kInf, kNaN, -kInf, 1.0}) signals.push_back({++bar, 1, 1, date, 0.0});
  sortSignals(signals);
  EXPECT_EQ(sketch(signals), "1@5 1@6 1@2 1@3 1@1 1@4");
}

TEST(SortSignals, ManyRunsOfAnyOrder) {
  Random random(1);
  for (int count : {0, 1, 2, 3, 7, 100, 1'000}) {
    Signals signals;
    for (int i = 0; i < count; ++i) {
      signals.push_back({i, 1 + random.below(5), 1, static_cast<double>(random.below(50)), 0.0});
    }
    Signals expected = signals;
    std::stable_sort(expected.begin(), expected.end(), [](const SignalRecord& a, const SignalRecord& b) {
      return a.JDate != b.JDate ? a.JDate < b.JDate : a.TradeType > b.TradeType;
    });
    sortSignals(signals);
    EXPECT_EQ(sketch(signals), sketch(expected));
  }
}

TEST(PutExitsFirst, EntryAndExitOfOneBarChangePlaces) {
  const std::vector<Bar> bars = risingBars(3);
  for (TradeCode entry : {kTradeLong, kTradeShort}) {
    for (TradeCode exit : {kTradeExitLong, kTradeExitShort}) {
      Signals signals = signalsOn(bars, {{entry, 2}, {exit, 2}});
      putExitsFirst(signals);
      EXPECT_EQ(sketch(signals), std::to_string(exit) + "@2 " + std::to_string(entry) + "@2");
    }
  }
}

TEST(PutExitsFirst, AllElseKeepsItsPlace) {
  const std::vector<Bar> bars = risingBars(3);
  const std::vector<Mark> marks = {{kTradeLong, 2},     {kTradeShort, 2},     {kTradeLong, 2},
                                   {kTradeExitLong, 3}, {kTradeExitShort, 3}, {kTradeLong, 3}};
  Signals signals = signalsOn(bars, marks);
  const std::string before = sketch(signals);
  putExitsFirst(signals);
  EXPECT_EQ(sketch(signals), before);
}

TEST(PutExitsFirst, OnePassCarriesAnEntryBehindSeveralExits) {
  const std::vector<Bar> bars = risingBars(3);
  Signals signals =
      signalsOn(bars, {{kTradeLong, 2}, {kTradeShort, 2}, {kTradeExitLong, 2}, {kTradeExitShort, 2}});
  putExitsFirst(signals);
  // The short moves behind both exits; the long, passed before, stays in front of the first.
  EXPECT_EQ(sketch(signals), "1@2 4@2 5@2 2@2");
}

// ---- Pairing.

TEST(PairSignals, AListWorkedByHand) {
  const std::vector<Bar> bars = risingBars(20);
  const Signals trades = simulate(bars, {{kTradeLong, 3},
                                         {kTradeLong, 5},
                                         {kTradeLong, 8},
                                         {kTradeLong, 15},
                                         {kTradeShort, 10},
                                         {kTradeExitLong, 8},
                                         {kTradeExitShort, 12}});
  // 3: opens long; the first exit of longs behind it is on 8. 5 is passed. On 8 the exit stands before the
  // entry, which no exit follows: forgotten. 10: short until 12. 15: forgotten.
  EXPECT_EQ(tradeLog(trades, 0), localDates("2000-01-03 00:00:00,LONG,103.0000,3\r\n"
                                            "2000-01-08 00:00:00,EXIT LONG,108.0000,8\r\n"
                                            "2000-01-10 00:00:00,SHORT,110.0000,10\r\n"
                                            "2000-01-12 00:00:00,EXIT SHORT,112.0000,12\r\n"));
  EXPECT_EQ(sketch(trades), "1@3 4@8 2@10 5@12");
}

TEST(PairSignals, WithoutExitsAndRulesNoTradeIsLeft) {
  const std::vector<Bar> bars = risingBars(20);
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeShort, 5}, {kTradeLong, 9}})), "");
}

TEST(PairSignals, TheOtherSidesEntryClosesNothing) {
  const std::vector<Bar> bars = risingBars(20);
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeShort, 5}, {kTradeExitLong, 9}})), "1@3 4@9");
}

TEST(PairSignals, TheOtherSidesExitClosesNothing) {
  const std::vector<Bar> bars = risingBars(20);
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeExitShort, 5}, {kTradeExitLong, 9}})), "1@3 4@9");
  EXPECT_EQ(sketch(simulate(bars, {{kTradeShort, 3}, {kTradeExitLong, 5}, {kTradeExitShort, 9}})), "2@3 5@9");
}

TEST(PairSignals, AnExitOnTheEntrysBarDoesNotCloseIt) {
  const std::vector<Bar> bars = risingBars(20);
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeExitLong, 3}})), "");
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeExitLong, 3}, {kTradeExitLong, 6}})), "1@3 4@6");
}

TEST(PairSignals, AnExitOnTheLastBarButOneIsNone) {
  const std::vector<Bar> bars = risingBars(20);
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeExitLong, 19}})), "");
  // The exit on bar 19 is the one that counts, though another follows.
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeExitLong, 19}, {kTradeExitLong, 20}})), "");
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeExitLong, 20}})), "1@3 4@20");
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeExitLong, 18}})), "1@3 4@18");
}

TEST(PairSignals, AForgottenEntryLeavesTheNextSignalItsTurn) {
  const std::vector<Bar> bars = risingBars(20);
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeShort, 4}, {kTradeExitShort, 6}})), "2@4 5@6");
}

TEST(PairSignals, WithoutAnExitSignalTheLastBarIsNotLookedAt) {
  std::vector<Bar> bars = risingBars(20);
  // Stop of 1 % of 103: 101.97.
  bars[19].LowPrice = 50.0;
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}}, "a=1;b=0;c=0;d=0;")), "");
  bars[18].LowPrice = 50.0;
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}}, "a=1;b=0;c=0;d=0;")), "1@3 4@19");
}

TEST(PairSignals, AfterARuleTheFirstSignalFromTheExitsBarOnIsNext) {
  const std::vector<Bar> bars = risingBars(30);
  // 9 - 3 > 5: closed on 9. 4 and 8 are passed, the entry on 9 itself opens at once, until 15.
  const std::string_view rules = "a=0;b=0;c=0;d=5;";
  EXPECT_EQ(
      sketch(simulate(
          bars, {{kTradeLong, 3}, {kTradeLong, 4}, {kTradeShort, 8}, {kTradeShort, 9}, {kTradeLong, 30}},
          rules)),
      "1@3 4@9 2@9 5@15");
  // The entry stands on 10 instead.
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeLong, 4}, {kTradeLong, 10}}, rules)),
            "1@3 4@9 1@10 4@16");
}

TEST(PairSignals, AnExitBehindTheLastSignalEndsThePass) {
  const std::vector<Bar> bars = risingBars(30);
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeLong, 4}, {kTradeLong, 8}}, "a=0;b=0;c=0;d=5;")),
            "1@3 4@9");
}

TEST(PairSignals, TheLastSignalIsTheOneOfTheLatestDate) {
  // Bar 2 is of the last date. The first trade ends on bar 5: behind bar 2, so the pass ends, and
  // the entry on bar 6 is not looked at.
  std::vector<Bar> bars = risingBars(20);
  bars[1].JDate = dayDate(40);
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 3}, {kTradeLong, 6}, {kTradeLong, 2}}, "a=0;b=0;c=0;d=1;")),
            "1@3 4@5");
}

TEST(PairSignals, AnExitSignalBehindInDateButNotInBarsIsNone) {
  std::vector<Bar> bars = risingBars(20);
  bars[1].JDate = dayDate(12);
  EXPECT_EQ(sketch(simulate(bars, {{kTradeLong, 8}, {kTradeExitLong, 2}, {kTradeExitLong, 15}})), "");
}

TEST(PairSignals, ALongAfterItsStopMayOpenOnTheExitsBar) {
  std::vector<Bar> bars = risingBars(20);
  bars[5].LowPrice = 90.0;  // bar 6 stops the long of bar 3 at 103 x 0.98
  const Signals trades =
      simulate(bars, {{kTradeLong, 3}, {kTradeLong, 6}, {kTradeExitLong, 10}}, "a=2;b=0;c=0;d=0;");
  EXPECT_EQ(tradeLog(trades, 0), localDates("2000-01-03 00:00:00,LONG,103.0000,3\r\n"
                                            "2000-01-06 00:00:00,STOP LOSS,100.9400,6\r\n"
                                            "2000-01-06 00:00:00,LONG,106.0000,6\r\n"
                                            "2000-01-10 00:00:00,EXIT LONG,110.0000,10\r\n"));
}

// ---- All rules over both sides, with the log.

TEST(SimulateTrades, EachRuleInOneLog) {
  // Stop 2 %, trail, target 5 %, 3 bars.
  const std::vector<Bar> bars = makeBars({
      {0, 0, 0},           // 1
      {100, 100, 100},     // 2  long: stop 98, target 105
      {102, 101, 101},     // 3  trail 98 + 2 = 100
      {101, 100, 100},     // 4  low reaches 100: trailing stop. Short: stop 102, target 95
      {99.5, 99, 99},      // 5  trail 102 - 1 = 101
      {97, 94, 96},        // 6  low reaches 95: profit. Long at 96: stop 94.08, target 100.8
      {95, 94, 94.5},      // 7  low reaches 94.08: stop loss. Short at 94.5: stop 96.39, target 89.775
      {94.5, 94.5, 94.5},  // 8
      {94.5, 94.5, 94.5},  // 9
      {94.5, 94.5, 94.5},  // 10
      {94.5, 94.5, 94.4},  // 11 11 - 7 > 3: no activity
      {94, 94, 94},        // 12 short: stop 95.88, target 89.3
      {96, 94, 95},        // 13 high reaches 95.88: stop loss
      {94, 94, 94},        // 14 short
      {95, 94, 95},        // 15 exit signal
      {95, 95, 95},        // 16 long: stop 93.1, target 99.75
      {99.75, 95, 96},     // 17 high reaches 99.75: profit
      {95, 95, 95},        // 18
      {95, 95, 95},        // 19
  });
  const Signals trades = simulate(bars,
                                  {{kTradeLong, 2},
                                   {kTradeLong, 6},
                                   {kTradeLong, 16},
                                   {kTradeLong, 18},
                                   {kTradeShort, 4},
                                   {kTradeShort, 7},
                                   {kTradeShort, 12},
                                   {kTradeShort, 14},
                                   {kTradeExitShort, 15}},
                                  "StopLoss=2;Trailing=1;Target=5;Bars=3;");
  EXPECT_EQ(tradeLog(trades, 0), localDates("2000-01-02 00:00:00,LONG,100.0000,2\r\n"
                                            "2000-01-04 00:00:00,TRAILING STOP LOSS,100.0000,4\r\n"
                                            "2000-01-04 00:00:00,SHORT,100.0000,4\r\n"
                                            "2000-01-06 00:00:00,PROFIT,95.0000,6\r\n"
                                            "2000-01-06 00:00:00,LONG,96.0000,6\r\n"
                                            "2000-01-07 00:00:00,STOP LOSS,94.0800,7\r\n"
                                            "2000-01-07 00:00:00,SHORT,94.5000,7\r\n"
                                            "2000-01-11 00:00:00,NO ACTIVITY,94.4000,11\r\n"
                                            "2000-01-12 00:00:00,SHORT,94.0000,12\r\n"
                                            "2000-01-13 00:00:00,STOP LOSS,95.8800,13\r\n"
                                            "2000-01-14 00:00:00,SHORT,94.0000,14\r\n"
                                            "2000-01-15 00:00:00,EXIT SHORT,95.0000,15\r\n"
                                            "2000-01-16 00:00:00,LONG,95.0000,16\r\n"
                                            "2000-01-17 00:00:00,PROFIT,99.7500,17\r\n"));
  EXPECT_EQ(sketch(trades), "1@2 4@4 2@4 5@6 1@6 4@7 2@7 5@11 2@12 5@13 2@14 5@15 1@16 4@17");
}

// ---- What is done to the finished list.

TEST(DropOpenEntry, AnEntryAtTheEndGoesUnlessItIsAlone) {
  const std::vector<Bar> bars = risingBars(9);
  Signals trades = signalsOn(bars, {{kTradeLong, 1}, {kTradeExitLong, 2}, {kTradeShort, 3}});
  dropOpenEntry(trades);
  EXPECT_EQ(sketch(trades), "1@1 4@2");
  dropOpenEntry(trades);
  EXPECT_EQ(sketch(trades), "1@1 4@2");
  Signals lone = signalsOn(bars, {{kTradeLong, 1}});
  dropOpenEntry(lone);
  EXPECT_EQ(sketch(lone), "1@1");
  Signals none;
  dropOpenEntry(none);
  EXPECT_TRUE(none.empty());
}

Signals atHundred() {
  Signals trades;
  for (TradeCode type : {kTradeLong, kTradeShort, kTradeExitLong, kTradeExitShort}) {
    trades.push_back({1, type, type, kNewYear2000, 100.0});
  }
  return trades;
}

std::vector<double> pricesOf(const Signals& trades) {
  std::vector<double> prices;
  for (const SignalRecord& record : trades) prices.push_back(record.Price);
  return prices;
}

TEST(ApplySlippage, PurchasesFillHigherAndSalesLower) {
  Signals trades = atHundred();
  applySlippage(trades, 2.0);  // 2 / 100 x 100 = 2
  EXPECT_EQ(pricesOf(trades), (std::vector<double>{102, 98, 98, 102}));
}

TEST(ApplySlippage, NoneLeavesPricesAndANegativeOneImprovesThem) {
  Signals trades = atHundred();
  applySlippage(trades, 0.0);
  EXPECT_EQ(pricesOf(trades), (std::vector<double>{100, 100, 100, 100}));
  applySlippage(trades, -2.0);
  EXPECT_EQ(pricesOf(trades), (std::vector<double>{98, 102, 102, 98}));
}

TEST(ApplySlippage, TheSideDecidesNotTheReason) {
  Signals trades = {{1, kTradeExitShort, kTradeStopLoss, kNewYear2000, 100.0},
                    {1, kTradeExitLong, kTradeProfit, kNewYear2000, 100.0}};
  applySlippage(trades, 1.0);
  EXPECT_EQ(pricesOf(trades), (std::vector<double>{101, 99}));
}

TEST(SimulateTrades, StopsAreMeasuredFromThePriceBeforeSlippage) {
  const std::vector<Bar> bars = risingBars(20);
  const Signals trades = simulate(bars, {{kTradeLong, 3}}, "a=50;b=0;c=1;d=0;", 10.0);
  // Target 103 x 1.01 = 104.03, reached by bar 5; bought at 103 x 1.1, sold at 104.03 x 0.9.
  EXPECT_EQ(tradeLog(trades, 0), localDates("2000-01-03 00:00:00,LONG,113.3000,3\r\n"
                                            "2000-01-05 00:00:00,PROFIT,93.6270,5\r\n"));
}

// ---- Against a literal twin, and size.

/// The pairing step by step, each search from its beginning.
Signals plainPairs(const Signals& list, const std::vector<Bar>& bars, const BacktestParams& params) {
  Signals result;
  std::size_t i = 0;
  bool inPosition = false;
  int openType = kTradeNone;
  while (i < list.size()) {
    if ((list[i].TradeType == 1 || list[i].TradeType == 2) && !inPosition) {
      result.push_back(list[i]);
      openType = list[i].TradeType;
      inPosition = true;
    }
    if (inPosition) {
      const int exitType = openType == 1 ? 4 : 5;
      SignalRecord entry = result.back();
      int lastBar = static_cast<int>(bars.size()) - 1;
      for (std::size_t k = i + 1; k < list.size(); ++k) {
        if (list[k].TradeType != exitType) continue;
        lastBar = list[k].BarIndex;
        break;
      }
      const bool found = plainFindExit(bars, params, entry.BarIndex + 1, lastBar, entry);
      inPosition = false;
      if (found) {
        entry.TradeType = exitType;
        result.push_back(entry);
        if (entry.BarIndex > list.back().BarIndex) break;
        std::size_t next = i + 1;
        while (next < list.size() && list[next].BarIndex < entry.BarIndex) ++next;
        if (next < list.size()) {
          i = next;
          continue;
        }
      } else {
        result.pop_back();
      }
    }
    i = i + 1;
  }
  return result;
}

std::string fullSketch(const Signals& records) {
  std::string text = sketch(records) + "\n";
  for (const SignalRecord& r : records)
    text += std::to_string(r.Signal) + " " + std::to_string(r.Price) + "\n";
  return text;
}

Signals randomSignals(const std::vector<Bar>& bars, int count, Random& random) {
  Signals signals;
  for (int i = 0; i < count; ++i) {
    const int bar = 2 + random.below(static_cast<int>(bars.size()) - 1);
    signals.push_back(signalOn(bars, bar, static_cast<TradeCode>("\1\2\4\5"[random.below(4)])));
  }
  sortSignals(signals);
  return signals;
}

TEST(PairSignals, RandomListsGiveTheStepsOfThePlainPairing) {
  Random random(4);
  std::size_t trades = 0;
  for (int round = 0; round < 3'000; ++round) {
    std::vector<Bar> bars = risingBars(2 + random.below(60));
    for (Bar& bar : bars) {
      bar.ClosePrice = 95.0 + random.below(10);
      bar.HighPrice = bar.ClosePrice + random.below(4);
      bar.LowPrice = bar.ClosePrice - random.below(4);
      if (round % 3 == 0) bar.JDate = dayDate(1 + random.below(40));  // dates in no order
    }
    const double percents[] = {-1.0, 1.0, 3.0, 5.0};
    const BacktestParams params{percents[random.below(4)], random.below(2) ? 1.0 : 0.0,
                                percents[random.below(4)], random.below(2) ? -1.0 : 1.0 + random.below(10)};
    const Signals signals = randomSignals(bars, random.below(40), random);
    const Signals pairs = pairSignals(signals, runOver(bars), params);
    ASSERT_EQ(fullSketch(pairs), fullSketch(plainPairs(signals, bars, params))) << round;
    trades += pairs.size();
  }
  EXPECT_GT(trades, 10'000u);
}

TEST(PairSignals, SignalsOnEveryBarAreReadOnce) {
  // A buy on every bar, no exit but a stop that is never reached; then dates in no order at all.
  std::vector<Bar> bars = risingBars(300'000);
  Signals signals;
  for (int bar = 2; bar <= 300'000; ++bar) signals.push_back(signalOn(bars, bar, kTradeLong));
  PairingSteps steps;
  EXPECT_TRUE(pairSignals(signals, runOver(bars), {50.0, 0.0, -1.0, -1.0}, &steps).empty());
  EXPECT_LE(steps.signals, 2 * signals.size());
  EXPECT_LT(steps.bars, 200 * bars.size());
  Random random(5);
  for (Bar& bar : bars) bar.JDate = random.unit();
  const Signals shuffled = randomSignals(bars, 600'000, random);
  EXPECT_FALSE(pairSignals(shuffled, runOver(bars), {90.0, 1.0, 1e9, -1.0}, &steps).empty());
  EXPECT_LE(steps.signals, 4 * shuffled.size());
  EXPECT_LT(steps.bars, 200 * bars.size());
}

}  // namespace
}  // namespace brindlewort
