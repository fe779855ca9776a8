#include "services/backtest/report.hpp"

#include <gtest/gtest.h>

#include <string>

#include "services/backtest/backtest_support.hpp"
#include "services/backtest/statistics.hpp"
#include "support/date_texts.hpp"
#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using namespace brindlewort::testing;

using Records = std::vector<SignalRecord>;

SignalRecord record(TradeCode type, int bar, double price) {
  return {bar, type, type, dayDate(bar), price};
}

/// The report of records over bars 1 to 60 without fillers; nothing when there is no closed trade.
std::string reportOf(const Records& records, double lastClose = 0.0, std::int64_t seed = 1) {
  const std::optional<Statistics> statistics = computeStatistics(records, lastClose, seed);
  if (!statistics) return "none";
  return reportText(*statistics, records, dayDate(1), dayDate(60), 0);
}

/// The value of a line of a report.
std::string lineOf(const std::string& report, const std::string& label) {
  const std::size_t at = report.find("\r\n" + label);
  if (at == std::string::npos) return "no such line";
  const std::size_t from = at + 2 + label.size();
  return report.substr(from, report.find("\r\n", from) - from);
}

TEST(Report, TheWholeText) {
  // A short from 110 that stops at 115.5 and a long from 100 to 104: profits -5.5 and 4, returns -0.05 and
  // 0.04, both in the first 30 days: one month of -0.01.
  Records records = {record(kTradeShort, 3, 110.0), record(kTradeExitShort, 5, 115.5),
                     record(kTradeLong, 7, 100.0), record(kTradeExitLong, 10, 104.0)};
  records[1].Signal = kTradeStopLoss;
  const std::optional<Statistics> statistics = computeStatistics(records, 0.0, 1);
  ASSERT_TRUE(statistics.has_value());
  EXPECT_EQ(
      reportText(*statistics, records, dayDate(1), dayDate(60) + 0.75, 2),
      localDates("Back tested from 2000-01-01 00:00:00 to 2000-02-29 18:00:00\r\n"
                 "Total number of trades: 4\r\n"              // records
                 "Average number of trades per month: 2\r\n"  // 2 / 1
                 "Number of profitable trades: 1\r\n"
                 "Number of losing trades: 1\r\n"
                 "Total profit: 4.0000\r\n"
                 "Total loss: -5.5000\r\n"
                 "Percent profit: -37.500%\r\n"  // (1 - 5.5 / 4) x 100
                 "Largest profit: 4.0000\r\n"
                 "Largest loss: -5.5000\r\n"
                 "Maximum Drawdown: -5.5000\r\n"                // -5.5, -1.5
                 "Maximum Drawdown (Monte Carlo): -5.5000\r\n"  // the first shuffle, draw 41, changes nothing
                 "Compound Monthly ROR: -0.0100\r\n"
                 "Standard deviation: 4.75000000\r\n"              // mean -0.75, both 4.75 away
                 "Annualized standard deviation: 6.71751442\r\n"   // 4.75 x 1.414213562
                 "Downside deviation (MAR = 10%): 3.95979797\r\n"  // root of 5.6 x 5.6 / 2 = 15.68
                 "Value Added Monthly Index (VAMI): 990.00000000\r\n"
                 "Sharpe ratio (RFR = 5%): -0.16842105\r\n"             // -0.8 / 4.75
                 "Annualized Sharpe ratio (RFR = 5%): -0.23818334\r\n"  // x 1.414213562
                 "Sortino ratio (MAR = 5%): -1.00000000\r\n"            // (-0.01 - 0.05) / 0.06
                 "Annualized Sortino ratio (MAR = 5%): -1.00000000\r\n"
                 "Sterling ratio (MAR = 5%): -1.00000000\r\n"
                 "Calmar ratio: -1.00000000\r\n"  // -0.01 / 0.01
                 "Risk to reward ratio: 1.375\r\n"
                 "Trade Log:\n"
                 "2000-01-03 00:00:00,SHORT,110.0000,1\r\n"
                 "2000-01-05 00:00:00,STOP LOSS,115.5000,3\r\n"
                 "2000-01-07 00:00:00,LONG,100.0000,5\r\n"
                 "2000-01-10 00:00:00,EXIT LONG,104.0000,8\r\n"));
}

TEST(Report, OneClosedTrade) {
  const std::string report = reportOf({record(kTradeLong, 3, 100.0), record(kTradeExitLong, 5, 110.0)});
  EXPECT_EQ(lineOf(report, "Total number of trades: "), "2");
  EXPECT_EQ(lineOf(report, "Average number of trades per month: "), "1");
  EXPECT_EQ(lineOf(report, "Standard deviation: "), "0.00000000");
  EXPECT_EQ(lineOf(report, "Sharpe ratio (RFR = 5%): "), "0.00000000");
  EXPECT_EQ(lineOf(report, "Percent profit: "), "100.000%");
  EXPECT_EQ(lineOf(report, "Risk to reward ratio: "), "0.000");
}

TEST(Report, AllTradesLose) {
  const std::string report = reportOf({record(kTradeLong, 3, 100.0), record(kTradeExitLong, 5, 90.0),
                                       record(kTradeShort, 6, 100.0), record(kTradeExitShort, 9, 105.0)});
  EXPECT_EQ(lineOf(report, "Number of profitable trades: "), "0");
  EXPECT_EQ(lineOf(report, "Number of losing trades: "), "2");
  EXPECT_EQ(lineOf(report, "Total profit: "), "0.0000");
  EXPECT_EQ(lineOf(report, "Total loss: "), "-15.0000");
  EXPECT_EQ(lineOf(report, "Percent profit: "), "0%");  // a loss by nothing has no value
  EXPECT_EQ(lineOf(report, "Largest loss: "), "-10.0000");
  EXPECT_EQ(lineOf(report, "Maximum Drawdown: "), "-15.0000");
  EXPECT_EQ(lineOf(report, "Maximum Drawdown (Monte Carlo): "), "-15.0000");
  EXPECT_EQ(lineOf(report, "Compound Monthly ROR: "), "-0.1500");
  EXPECT_EQ(lineOf(report, "Risk to reward ratio: "), "0%");
}

TEST(Report, AProfitOfZeroIsALosingTrade) {
  const std::string report = reportOf({record(kTradeLong, 3, 100.0), record(kTradeExitLong, 5, 100.0)});
  EXPECT_EQ(lineOf(report, "Number of losing trades: "), "1");
  EXPECT_EQ(lineOf(report, "Number of profitable trades: "), "0");
  EXPECT_EQ(lineOf(report, "Percent profit: "), "0%");
}

TEST(Report, InOneMonthTheAnnualizedSortinoRatioIsTheSortinoRatio) {
  // Returns 0.02 and 0.01 in one month: (0.03 - 0.05) / 0.02.
  const std::string report = reportOf({record(kTradeLong, 3, 100.0), record(kTradeExitLong, 5, 102.0),
                                       record(kTradeLong, 6, 100.0), record(kTradeExitLong, 30, 101.0)});
  EXPECT_EQ(lineOf(report, "Sortino ratio (MAR = 5%): "), "-1.00000000");
  EXPECT_EQ(lineOf(report, "Annualized Sortino ratio (MAR = 5%): "), "-1.00000000");
}

TEST(Report, MonthsFeedTheirFigures) {
  // Trades close on days 5, 20 and 40 with returns 0.5, -0.25 and -0.2.
  const std::string report = reportOf({record(kTradeLong, 3, 100.0), record(kTradeExitLong, 5, 150.0),
                                       record(kTradeLong, 6, 100.0), record(kTradeExitLong, 20, 75.0),
                                       record(kTradeLong, 30, 100.0), record(kTradeExitLong, 40, 80.0)});
  // Months 0.25 and -0.2: 1000 x 1.25 x 0.8.
  EXPECT_EQ(lineOf(report, "Average number of trades per month: "), "1");  // 3 / 2
  EXPECT_EQ(lineOf(report, "Value Added Monthly Index (VAMI): "), "1000.00000000");
  EXPECT_EQ(lineOf(report, "Compound Monthly ROR: "), "0.0000");
  EXPECT_EQ(lineOf(report, "Calmar ratio: "), "0.00000000");
  // Profits 50, -25, -20: 5 by 3 is 1.6667; squares 2336.1111, 711.1111, 469.4444; 3516.6667 / 3, root.
  EXPECT_EQ(lineOf(report, "Standard deviation: "), "34.23773097");
  EXPECT_EQ(lineOf(report, "Risk to reward ratio: "), "0.900");
}

TEST(Report, AReturnBelowMinusOneHasNoCompoundRate) {
  // The short loses 150 of 100, the long closes two months later: months -1.5, 0 and 0.1, product -0.55.
  const std::string report = reportOf({record(kTradeShort, 3, 100.0), record(kTradeExitShort, 5, 250.0),
                                       record(kTradeLong, 6, 100.0), record(kTradeExitLong, 66, 110.0)});
  EXPECT_EQ(lineOf(report, "Value Added Monthly Index (VAMI): "), "-550.00000000");
  EXPECT_EQ(lineOf(report, "Compound Monthly ROR: "), "0");
  EXPECT_EQ(lineOf(report, "Sortino ratio (MAR = 5%): "), "0");
  EXPECT_EQ(lineOf(report, "Annualized Sortino ratio (MAR = 5%): "), "0");
  EXPECT_EQ(lineOf(report, "Sterling ratio (MAR = 5%): "), "0");
  EXPECT_EQ(lineOf(report, "Calmar ratio: "), "0");
}

TEST(Report, PricesThatAreNoNumbersPrintAsZero) {
  const std::string report = reportOf({record(kTradeLong, 3, kNaN), record(kTradeExitLong, 5, kInf)});
  EXPECT_EQ(lineOf(report, "Total profit: "), "0.0000");
  EXPECT_EQ(lineOf(report, "Total loss: "), "0");
  EXPECT_EQ(lineOf(report, "Number of losing trades: "), "1");
  EXPECT_EQ(report.substr(report.find("Trade Log:")),
            localDates("Trade Log:\n2000-01-03 00:00:00,LONG,0,3\r\n2000-01-05 00:00:00,EXIT LONG,0,5\r\n"));
}

TEST(Report, DatesThatCannotBeWritten) {
  Records records = {record(kTradeLong, 3, 1.0), record(kTradeExitLong, 5, 2.0)};
  records[0].JDate = 0.0;
  const std::string log = tradeLog(records, 2);
  EXPECT_EQ(log, localDates("No Date Time,LONG,1.0000,1\r\n2000-01-05 00:00:00,EXIT LONG,2.0000,3\r\n"));
}

TEST(TradeLog, EverySignalHasItsLabel) {
  const std::vector<std::string> expected = {"LONG,1.0000",       "SHORT,1.0000",
                                             "EXIT,1.0000",       "EXIT LONG,1.0000",
                                             "EXIT SHORT,1.0000", "",
                                             "STOP LOSS,1.0000",  "TRAILING STOP LOSS,1.0000",
                                             "PROFIT,1.0000",     "NO ACTIVITY,1.0000"};
  for (int code = 1; code <= 10; ++code) {
    const SignalRecord line{4, kTradeLong, code, dayDate(1), 1.0};
    EXPECT_EQ(tradeLog({&line, 1}, 0),
              localDates("2000-01-01 00:00:00,") + expected[static_cast<std::size_t>(code) - 1] + ",4\r\n");
  }
  for (int code : {0, -1, 11, INT32_MAX, INT32_MIN}) {
    const SignalRecord line{4, kTradeLong, code, dayDate(1), 1.0};
    EXPECT_EQ(tradeLog({&line, 1}, 0), localDates("2000-01-01 00:00:00,,4\r\n"));
  }
}

TEST(Report, LinesCarryKeysForOutputAsData) {
  EXPECT_EQ(statisticLines().size(), 22u);
  for (const StatisticLine& line : statisticLines()) {
    EXPECT_TRUE(line.label.ends_with(": "));
    EXPECT_FALSE(line.key.empty());
  }
}

// ---- Closed and open trades.

TEST(ClosedTrades, WhatClosesWhat) {
  // The first of each pair at 100, the second at 110.
  const auto profitOf = [](TradeCode first, TradeCode second) -> std::string {
    const Records pair = {record(first, 3, 100.0), record(second, 5, 110.0)};
    const ClosedTrades trades = closedTrades(pair);
    return trades.profits.empty() ? "none" : std::to_string(static_cast<int>(trades.profits.front()));
  };
  for (TradeCode closing : {kTradeShort, kTradeExit, kTradeExitLong})
    EXPECT_EQ(profitOf(kTradeLong, closing), "10");
  for (TradeCode closing : {kTradeLong, kTradeExit, kTradeExitShort}) {
    EXPECT_EQ(profitOf(kTradeShort, closing), "-10");
  }
  EXPECT_EQ(profitOf(kTradeLong, kTradeLong), "none");
  EXPECT_EQ(profitOf(kTradeLong, kTradeExitShort), "none");
  EXPECT_EQ(profitOf(kTradeShort, kTradeExitLong), "none");
  EXPECT_EQ(profitOf(kTradeExitLong, kTradeLong), "none");
  EXPECT_EQ(profitOf(kTradeExit, kTradeExitLong), "none");
}

TEST(ClosedTrades, ReturnsAreByTheOpeningPriceAndDatesThoseOfTheExits) {
  const Records records = {record(kTradeLong, 3, 100.0), record(kTradeExitLong, 5, 110.0),
                           record(kTradeShort, 6, 50.0), record(kTradeExitShort, 9, 40.0)};
  const ClosedTrades trades = closedTrades(records);
  EXPECT_EQ(trades.profits, (Rows{10, 10}));
  EXPECT_EQ(trades.returns, (Rows{0.1, 0.2}));
  EXPECT_EQ(trades.dates, (Rows{dayDate(5), dayDate(9)}));
}

TEST(OpenTrade, ALoneEntryIsNoTrade) {
  EXPECT_EQ(reportOf({record(kTradeLong, 3, 100.0)}, 110.0), "none");
  EXPECT_EQ(reportOf({record(kTradeShort, 3, 100.0)}, 110.0), "none");
  EXPECT_EQ(reportOf({}, 110.0), "none");
  EXPECT_EQ(reportOf({record(kTradeExitLong, 3, 100.0)}, 110.0), "none");
}

TEST(OpenTrade, AnEntryAtTheEndIsValuedAtTheLastClose) {
  ClosedTrades trades;
  EXPECT_TRUE(addOpenTrade(trades, Records{record(kTradeLong, 3, 100.0)}, 110.0));
  EXPECT_TRUE(addOpenTrade(trades, Records{record(kTradeShort, 4, 100.0)}, 110.0));
  EXPECT_FALSE(addOpenTrade(trades, Records{record(kTradeExitLong, 5, 100.0)}, 110.0));
  EXPECT_FALSE(addOpenTrade(trades, Records{}, 110.0));
  EXPECT_EQ(trades.profits, (Rows{10, -10}));
  EXPECT_EQ(trades.returns, (Rows{0.1, -0.1}));
  EXPECT_EQ(trades.dates, (Rows{dayDate(3), dayDate(4)}));
}

TEST(OpenTrade, IsTakenFromBothCounts) {
  // Two wins and a loss, then an entry that wins: 3 - 1 wins, 1 - 1 losses, 7 - 1 records.
  const std::string report =
      reportOf({record(kTradeLong, 3, 100.0), record(kTradeExitLong, 5, 110.0), record(kTradeLong, 6, 100.0),
                record(kTradeExitLong, 7, 110.0), record(kTradeLong, 8, 100.0),
                record(kTradeExitLong, 9, 90.0), record(kTradeLong, 10, 100.0)},
               120.0);
  EXPECT_EQ(lineOf(report, "Number of profitable trades: "), "2");
  EXPECT_EQ(lineOf(report, "Number of losing trades: "), "0");
  EXPECT_EQ(lineOf(report, "Total number of trades: "), "6");
  EXPECT_EQ(lineOf(report, "Total profit: "), "40.0000");
}

TEST(OpenTrade, AloneInProfitLeavesNoRatio) {
  // Two losses, then an entry that wins: 1 - 1 wins, 2 - 1 losses; the profit of 20 is in the total all the
  // same.
  const std::string report =
      reportOf({record(kTradeLong, 3, 100.0), record(kTradeExitLong, 5, 90.0), record(kTradeLong, 6, 100.0),
                record(kTradeExitLong, 7, 90.0), record(kTradeLong, 10, 100.0)},
               120.0);
  EXPECT_EQ(lineOf(report, "Number of profitable trades: "), "0");
  EXPECT_EQ(lineOf(report, "Total profit: "), "20.0000");
  EXPECT_EQ(lineOf(report, "Risk to reward ratio: "), "0%");
}

}  // namespace
}  // namespace brindlewort
