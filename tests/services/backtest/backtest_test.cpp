#include "services/backtest/backtest.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "functions/script_engine.hpp"
#include "services/backtest/backtest_support.hpp"
#include "services/backtest/report.hpp"
#include "support/date_texts.hpp"

namespace brindlewort {
namespace {

using namespace brindlewort::testing;

// ---- The collecting of signals, with scripts that are their own lists of bars.

std::vector<std::string> ranScripts;

void failWhenAsked(CScriptEngine& engine, std::string_view script, bool) {
  if (script == "refuse") engine.errorText = "Error: refused";
}

/// The numbers of a text "3,7,".
std::vector<std::int32_t> listItself(CScriptEngine& engine, std::string_view script) {
  ranScripts.emplace_back(script);
  std::vector<std::int32_t> numbers;
  if (script == "fail") {
    engine.errorText = "Error: failed";
    return {3, 4};
  }
  for (std::size_t comma; (comma = script.find(',')) != std::string_view::npos;
       script.remove_prefix(comma + 1)) {
    numbers.push_back(std::atoi(std::string(script.substr(0, comma)).c_str()));
  }
  return numbers;
}

constexpr ScriptWay kListWay = {0, failWhenAsked, listItself};

BacktestRun runLists(const BacktestRequest& request, int barCount = 20) {
  const std::vector<Bar> bars = risingBars(barCount);
  ranScripts.clear();
  CScriptEngine engine;
  engine.bars.use(bars);
  return runBacktest(engine, kListWay, request, 1);
}

std::string logOf(const BacktestRun& run) {
  return tradeLog(run.trades, run.fillers);
}

using Scripts = std::vector<std::string>;

TEST(BacktestRun, EachScriptSignalsItsPart) {
  const BacktestRun run = runLists({"3,9,", "6,", "5,", "8,", 0.0, ""});
  EXPECT_EQ(logOf(run), localDates("2000-01-03 00:00:00,LONG,103.0000,3\r\n"
                                   "2000-01-05 00:00:00,EXIT LONG,105.0000,5\r\n"
                                   "2000-01-06 00:00:00,SHORT,106.0000,6\r\n"
                                   "2000-01-08 00:00:00,EXIT SHORT,108.0000,8\r\n"));
  EXPECT_EQ(ranScripts, (Scripts{"3,9,", "6,", "5,", "8,"}));
  EXPECT_EQ(run.buys, 2u);
  EXPECT_EQ(run.sells, 1u);
  EXPECT_EQ(run.longExits, 1u);
  EXPECT_EQ(run.shortExits, 1u);
  EXPECT_EQ(run.error, "");
  EXPECT_EQ(run.firstDate, dayDate(1));
  EXPECT_EQ(run.lastDate, dayDate(20));
  ASSERT_TRUE(run.statistics.has_value());
  EXPECT_EQ(run.statistics->totalProfit, 2.0);
  EXPECT_EQ(run.statistics->totalLoss, -2.0);
}

TEST(BacktestRun, TheFirstBarAndBarsOutsideTheDataNeverSignal) {
  const BacktestRun run = runLists({"1,2,20,21,0,-3,2147483647,-2147483648,", "", "5,", "", 0.0, ""});
  EXPECT_EQ(run.buys, 2u);  // 2 and 20
  EXPECT_EQ(logOf(run), localDates("2000-01-02 00:00:00,LONG,102.0000,2\r\n"
                                   "2000-01-05 00:00:00,EXIT LONG,105.0000,5\r\n"));
}

TEST(BacktestRun, AnExitScriptEqualToTheOtherEntryIsNotRun) {
  const BacktestRun run = runLists({"3,7,11,", "5,9,", "5,9,", "3,7,11,", 0.0, ""});
  EXPECT_EQ(ranScripts, (Scripts{"3,7,11,", "5,9,"}));
  // One position at a time, changing sides: 5 closes the long of 3 and opens a short, and so on. The long of
  // 11 has no exit.
  EXPECT_EQ(logOf(run), localDates("2000-01-03 00:00:00,LONG,103.0000,3\r\n"
                                   "2000-01-05 00:00:00,EXIT LONG,105.0000,5\r\n"
                                   "2000-01-05 00:00:00,SHORT,105.0000,5\r\n"
                                   "2000-01-07 00:00:00,EXIT SHORT,107.0000,7\r\n"
                                   "2000-01-07 00:00:00,LONG,107.0000,7\r\n"
                                   "2000-01-09 00:00:00,EXIT LONG,109.0000,9\r\n"
                                   "2000-01-09 00:00:00,SHORT,109.0000,9\r\n"
                                   "2000-01-11 00:00:00,EXIT SHORT,111.0000,11\r\n"));
  EXPECT_EQ(run.longExits, 2u);
  EXPECT_EQ(run.shortExits, 3u);
}

TEST(BacktestRun, TheComparisonIsExact) {
  runLists({"3,", "5,", "5, ", "", 0.0, ""});
  EXPECT_EQ(ranScripts, (Scripts{"3,", "5,", "5, "}));
}

TEST(BacktestRun, AnExitScriptIsComparedWithTheOtherSideAlone) {
  runLists({"3,", "5,", "3,", "5,", 0.0, ""});
  EXPECT_EQ(ranScripts, (Scripts{"3,", "5,", "3,", "5,"}));
}

TEST(BacktestRun, EmptyAndTooLongScriptsAreNotRun) {
  const std::string tooLong = "3," + std::string(63'998, ' ');
  const BacktestRun run = runLists({tooLong, "", "", "", 0.0, ""});
  EXPECT_TRUE(ranScripts.empty());
  EXPECT_EQ(run.error, kNoTrades);
  EXPECT_EQ(runLists({tooLong.substr(1), "", "", "", 0.0, ""}).buys, 0u);
  EXPECT_EQ(ranScripts.size(), 1u);  // 63,999 characters
}

TEST(BacktestRun, TheFirstFailingScriptEndsTheRun) {
  BacktestRun run = runLists({"fail", "5,", "5,", "3,", 0.0, ""});
  EXPECT_EQ(ranScripts, (Scripts{"fail"}));
  EXPECT_EQ(run.error, "Error: failed");
  EXPECT_EQ(run.buys, 0u);
  run = runLists({"3,", "fail", "fail", "3,", 0.0, ""});
  EXPECT_EQ(ranScripts, (Scripts{"3,", "fail"}));
  EXPECT_EQ(run.buys, 1u);
  run = runLists({"3,", "5,", "fail", "", 0.0, ""});
  EXPECT_EQ(run.error, "Error: failed");
  run = runLists({"3,", "5,", "", "fail", 0.0, ""});
  EXPECT_EQ(run.error, "Error: failed");
  run = runLists({"3,", "refuse", "", "6,", 0.0, ""});
  EXPECT_EQ(run.error, "Error: refused");
  EXPECT_EQ(ranScripts, (Scripts{"3,"}));
}

TEST(BacktestRun, TooFewBarsGiveAnEmptyResult) {
  const BacktestRun none = runLists({"3,", "", "5,", "", 0.0, ""}, 0);
  EXPECT_EQ(none.error, "");
  EXPECT_FALSE(none.statistics.has_value());
  EXPECT_EQ(resultText(none), "");
  EXPECT_EQ(resultText(runLists({"3,", "", "5,", "", 0.0, ""}, 1)), kNoTrades);
}

TEST(BacktestRun, WithoutTradesTheCountsTellWhichScriptFired) {
  const BacktestRun run = runLists({"3,4,5,", "7,", "", "", 0.0, ""});
  EXPECT_EQ(run.error, kNoTrades);
  EXPECT_EQ(run.buys, 3u);
  EXPECT_EQ(run.sells, 1u);
  EXPECT_TRUE(run.trades.empty());
}

TEST(BacktestRun, RulesAndSlippageReachTheTrades) {
  const BacktestRun run = runLists({"3,", "", "", "", 10.0, "stop=0;trail=0;target=2;bars=0;"});
  // Target 103 x 1.02 = 105.06, reached by the bar at 106; 103 + 10.3 and 105.06 - 10.506.
  EXPECT_EQ(logOf(run), localDates("2000-01-03 00:00:00,LONG,113.3000,3\r\n"
                                   "2000-01-06 00:00:00,PROFIT,94.5540,6\r\n"));
}

// ---- The component.

/// A component over bars of January 2000; the close of bar k is 100 + k.
struct Host {
  explicit Host(int barCount = 20) {
    for (const Bar& bar : risingBars(barCount)) {
      component.AppendRecord(bar.JDate, bar.ClosePrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice, 1'000);
    }
    component.fixedSeed = 1;
    component.ScriptError = [this](const std::string& text) { errors.push_back(text); };
  }
  std::string report(std::string_view buy, std::string_view sell = "", std::string_view exitLong = "",
                     std::string_view exitShort = "", double slip = 0.0, std::string_view rules = "") {
    return component.Backtest(buy, sell, exitLong, exitShort, slip, rules).value_or("nothing");
  }
  CBacktest component;
  std::vector<std::string> errors;
};

TEST(Backtest, TheWholeReport) {
  Host host(12);
  // One long from 107 to 109: a return of 0.0186915888 in one month.
  EXPECT_EQ(host.report("CLOSE = 107", "", "CLOSE = 109"),
            localDates("Back tested from 2000-01-01 00:00:00 to 2000-01-12 00:00:00\r\n"
                       "Total number of trades: 2\r\n"
                       "Average number of trades per month: 1\r\n"
                       "Number of profitable trades: 1\r\n"
                       "Number of losing trades: 0\r\n"
                       "Total profit: 2.0000\r\n"
                       "Total loss: 0.0000\r\n"
                       "Percent profit: 100.000%\r\n"
                       "Largest profit: 2.0000\r\n"
                       "Largest loss: 0.0000\r\n"
                       "Maximum Drawdown: 0.0000\r\n"
                       "Maximum Drawdown (Monte Carlo): 0.0000\r\n"
                       "Compound Monthly ROR: 0.0187\r\n"
                       "Standard deviation: 0.00000000\r\n"
                       "Annualized standard deviation: 0.00000000\r\n"
                       "Downside deviation (MAR = 10%): 0.00000000\r\n"
                       "Value Added Monthly Index (VAMI): 1018.69158879\r\n"
                       "Sharpe ratio (RFR = 5%): 0.00000000\r\n"
                       "Annualized Sharpe ratio (RFR = 5%): 0.00000000\r\n"
                       "Sortino ratio (MAR = 5%): -1.00000000\r\n"
                       "Annualized Sortino ratio (MAR = 5%): -1.00000000\r\n"
                       "Sterling ratio (MAR = 5%): -1.00000000\r\n"
                       "Calmar ratio: 0.00000000\r\n"
                       "Risk to reward ratio: 0.000\r\n"
                       "Trade Log:\n"
                       "2000-01-07 00:00:00,LONG,107.0000,7\r\n"
                       "2000-01-09 00:00:00,EXIT LONG,109.0000,9\r\n"));
  EXPECT_TRUE(host.errors.empty());
}

TEST(Backtest, SignalsBeginAtTheLookback) {
  // 7 rows at least, of which the fillers take the first: the host's sixth bar is the first to signal.
  Host host;
  const BacktestRun run = host.component.runBacktest({"CLOSE > 0", "", "CLOSE = 110", "", 0.0, ""});
  EXPECT_EQ(run.buys, 15u);
  ASSERT_EQ(run.trades.size(), 2u);
  EXPECT_EQ(hostBarNumber(run.trades[0], run.fillers), 6);
  // A period of 5 asks for 12 rows.
  const BacktestRun longer =
      host.component.runBacktest({"SMA(CLOSE, 5) > 0", "", "CLOSE = 115", "", 0.0, ""});
  ASSERT_EQ(longer.trades.size(), 2u);
  EXPECT_EQ(hostBarNumber(longer.trades[0], longer.fillers), 11);
}

TEST(Backtest, BothSidesWithFullNamesOfFunctions) {
  Host host(40);
  const std::string report = host.report("CLOSE = 110 AND SIMPLEMOVINGAVERAGE(CLOSE, 4) > 0", "CLOSE = 115",
                                         "CLOSE = 112", "CLOSE = 117", 1.0);
  EXPECT_EQ(report.substr(report.find("Trade Log:")),
            localDates("Trade Log:\n"
                       "2000-01-10 00:00:00,LONG,111.1000,10\r\n"
                       "2000-01-12 00:00:00,EXIT LONG,110.8800,12\r\n"
                       "2000-01-15 00:00:00,SHORT,113.8500,15\r\n"
                       "2000-01-17 00:00:00,EXIT SHORT,118.1700,17\r\n"));
}

TEST(Backtest, AnErrorIsAnEventAndNoText) {
  Host host;
  EXPECT_EQ(host.report("FOO > 1", "CLOSE > 1"), "nothing");
  ASSERT_EQ(host.errors.size(), 1u);
  EXPECT_TRUE(host.errors[0].starts_with("Error: ")) << host.errors[0];
  EXPECT_EQ(host.report("CLOSE > 1", "SMA(CLOSE, 5"), "nothing") << "the sell script's errors count, too";
  EXPECT_EQ(host.errors.size(), 2u);
}

TEST(Backtest, WithoutExitsAndRulesThereAreNoTrades) {
  Host host;
  EXPECT_EQ(host.report("CLOSE > 1", "CLOSE > 2"), "nothing");
  EXPECT_EQ(host.errors, (std::vector<std::string>{"Error: Scripts generated no trades."}));
}

TEST(Backtest, MissingScriptsContributeNothing) {
  Host host;
  EXPECT_EQ(host.report(""), "nothing");
  EXPECT_EQ(host.report("  ", " \t ", "# nothing", " "), "nothing");
  EXPECT_EQ(host.errors, (std::vector<std::string>(2, std::string(kNoTrades))));
  EXPECT_NE(host.report("", "CLOSE = 110", "", "CLOSE = 112").find("SHORT,110.0000,10\r\n"),
            std::string::npos);
}

TEST(Backtest, WithoutBarsTheTextIsEmptyAndNoEventFires) {
  Host host(0);
  EXPECT_EQ(host.report("CLOSE > 1"), "");
  EXPECT_TRUE(host.errors.empty());
  Host one(1);  // the scripts need more bars, which is no error of theirs
  EXPECT_EQ(one.report("CLOSE > 1"), "nothing");
  EXPECT_EQ(one.errors, (std::vector<std::string>{std::string(kNoTrades)}));
}

TEST(Backtest, WithoutAListenerAnErrorIsNothing) {
  Host host;
  host.component.ScriptError = nullptr;
  EXPECT_EQ(host.report("FOO > 1"), "nothing");
}

TEST(Backtest, RunsOnTheSameBarsDifferInTheMonteCarloLineAlone) {
  // Rises and falls in turn, so that the profits are a random walk.
  Host host(0);
  for (int k = 1; k <= 400; ++k) {
    const double close = 100.0 + (k * k) % 37;
    host.component.AppendRecord(dayDate(k), close, close, close, close, 0);
  }
  const auto run = [&](std::int64_t seed) {
    host.component.fixedSeed = seed;
    return host.report("CLOSE > REF(CLOSE, 1)", "", "CLOSE < REF(CLOSE, 1)");
  };
  const std::string first = run(1);
  EXPECT_EQ(run(1), first);
  const std::string second = run(2);
  EXPECT_NE(second, first);
  const auto withoutMonteCarlo = [](std::string text) {
    const std::size_t at = text.find("Maximum Drawdown (Monte Carlo): ");
    return text.erase(at, text.find("\r\n", at) - at);
  };
  EXPECT_EQ(withoutMonteCarlo(second), withoutMonteCarlo(first));
}

TEST(Backtest, WithoutASeedTheClockSeeds) {
  Host host;
  host.component.fixedSeed.reset();
  EXPECT_NE(host.report("CLOSE = 107", "", "CLOSE = 109").find("Monte Carlo): 0.0000\r\n"),
            std::string::npos);
}

TEST(Backtest, TheComponentsBarsStayAsTheyWere) {
  Host host(12);
  const std::string first = host.report("CLOSE = 107", "", "CLOSE = 109");
  EXPECT_EQ(host.component.RecordCount(), 12);
  EXPECT_EQ(host.component.GetRecordByIndex(1)->JDate, dayDate(1));
  EXPECT_EQ(host.report("CLOSE = 107", "", "CLOSE = 109"), first);
  EXPECT_EQ(host.report("CLOSE = 107"), "nothing");  // nothing of the run before is left
}

TEST(Backtest, EveryScriptSeesThePricesOfTheBarsWhateverTheScriptBeforeHasSet) {
  Host host(40);
  const std::string spoils =
      "SET CLOSE = CLOSE * 0 + 7\r\nSET HIGH = 1\r\nSET LOW = 2\r\nCLOSE = 7 AND HIGH = 1";
  const BacktestRun run =
      host.component.runBacktest({spoils, "CLOSE = 115", "HIGH = 112", "LOW = 117", 0.0, ""});
  const BacktestRun alone =
      host.component.runBacktest({"", "CLOSE = 115", "HIGH = 112", "LOW = 117", 0.0, ""});
  EXPECT_EQ(run.sells, 1u);
  EXPECT_EQ(run.longExits, 1u);
  EXPECT_EQ(run.shortExits, 1u);
  EXPECT_EQ(alone.sells, 1u);
  EXPECT_GT(run.buys, 0u);
}

TEST(Backtest, AChangedBarCountsInTheNextRun) {
  Host host(12);
  EXPECT_NE(host.report("CLOSE = 107", "", "CLOSE = 109").find("LONG,107.0000,7\r\n"), std::string::npos);
  EXPECT_TRUE(host.component.EditRecord(dayDate(8), 107, 107, 107, 107, 0));
  EXPECT_TRUE(host.component.EditRecord(dayDate(7), 50, 50, 50, 50, 0));
  EXPECT_NE(host.report("CLOSE = 107", "", "CLOSE = 109").find("LONG,107.0000,8\r\n"), std::string::npos);
}

TEST(Backtest, TheEngineOfTheRunKnowsItsLastFunction) {
  Host host;
  EXPECT_EQ(host.component.lastEngine(), nullptr);
  host.report("SMA(CLOSE, 0) > 1");
  ASSERT_NE(host.component.lastEngine(), nullptr);
  EXPECT_EQ(host.component.lastEngine()->currentFunction, "SMA");
}

TEST(Backtest, DataOfARunAreThoseOfTheReport) {
  Host host(12);
  const BacktestRequest request{"CLOSE = 107", "", "CLOSE = 109", "", 0.0, ""};
  const BacktestRun run = host.component.runBacktest(request);
  EXPECT_EQ(resultText(run), host.report("CLOSE = 107", "", "CLOSE = 109"));
  EXPECT_EQ(run.buys, 1u);
  EXPECT_EQ(run.longExits, 1u);
  const BacktestRun failed = host.component.runBacktest({"FOO > 1", "", "", "", 0.0, ""});
  EXPECT_TRUE(failed.error.starts_with("Error: "));
  EXPECT_EQ(host.errors, (std::vector<std::string>{failed.error}));
}

TEST(Backtest, OnlyATextWithTheMarkOfAnErrorIsAnEvent) {
  constexpr ScriptWay way = {0, [](CScriptEngine&, std::string_view, bool) {},
                             [](CScriptEngine& engine, std::string_view script) {
                               engine.errorText = script;
                               return std::vector<std::int32_t>();
                             }};
  Host host;
  EXPECT_EQ(host.component.runBacktest({"What a pity", "", "", "", 0.0, ""}, way).error, "What a pity");
  EXPECT_TRUE(host.errors.empty());
  EXPECT_EQ(host.component.runBacktest({"What an Error: it is", "", "", "", 0.0, ""}, way).error,
            "What an Error: it is");
  EXPECT_EQ(host.errors, (std::vector<std::string>{"What an Error: it is"}));
}

TEST(Backtest, RecordsAreFoundByDateAndNumber) {
  CBacktest component;
  EXPECT_EQ(component.GetRecordByIndex(1), nullptr);
  component.AppendRecord(dayDate(1), 1, 2, 3, 4, 5);
  component.AppendRecord(dayDate(2), 6, 7, 8, 9, 10);
  component.AppendRecord(dayDate(2), 11, 12, 13, 14, 15);
  EXPECT_EQ(component.RecordCount(), 3);
  EXPECT_EQ(component.GetRecordByIndex(0), nullptr);
  EXPECT_EQ(component.GetRecordByIndex(4), nullptr);
  EXPECT_EQ(component.GetRecordByIndex(3)->ClosePrice, 14.0);
  EXPECT_EQ(component.GetRecordByJDate(dayDate(2))->OpenPrice, 6.0);  // the first of a date
  EXPECT_EQ(component.GetRecordByJDate(dayDate(3)), nullptr);
  EXPECT_TRUE(component.EditRecord(dayDate(2), 21, 22, 23, 24, 25));
  EXPECT_FALSE(component.EditRecord(dayDate(3), 1, 1, 1, 1, 1));
  EXPECT_EQ(component.GetRecordByIndex(2)->HighPrice, 22.0);
  EXPECT_EQ(component.GetRecordByIndex(2)->Volume, 25.0);
  EXPECT_EQ(component.GetRecordByIndex(3)->HighPrice, 12.0);
  component.ClearRecords();
  EXPECT_EQ(component.RecordCount(), 0);
}

}  // namespace
}  // namespace brindlewort
