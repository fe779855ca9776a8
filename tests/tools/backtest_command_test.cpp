// Runs the built tool's backtest. The bars are twelve days with closes of 10, 20, ... 120; scripts can fire
// from the sixth on, since scripts without longer periods ask for so many.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "services/backtest/backtest.hpp"
#include "tool_fixture.hpp"

namespace brindlewort::tool {
namespace {

class BacktestCommand : public Tool {
 protected:
  Outcome backtest(std::vector<std::string> arguments, const std::string& bars = twelveBars()) const {
    const std::vector<std::string> head = {"backtest", write("b.csv", bars)};
    arguments.insert(arguments.begin(), head.begin(), head.end());
    return run(arguments);
  }
  /// The trade log of a run that must go well.
  std::string log(const std::vector<std::string>& arguments, const std::string& bars = twelveBars()) const {
    const Outcome outcome = backtest(arguments, bars);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const std::string heading = "Trade Log:\n";
    return outcome.out.substr(outcome.out.find(heading) + heading.size());
  }
};

/// A loss of 10 on the short side, then a profit of 10 on the long side.
const std::vector<std::string> kBothSides = {"--sell",       "CLOSE = 60", "--buy",       "CLOSE = 80",
                                             "--exit-short", "CLOSE = 70", "--exit-long", "CLOSE = 90"};
const char kBothSidesLog[] =
    "2024-01-06 00:00:00,SHORT,60.0000,6\n"
    "2024-01-07 00:00:00,EXIT SHORT,70.0000,7\n"
    "2024-01-08 00:00:00,LONG,80.0000,8\n"
    "2024-01-09 00:00:00,EXIT LONG,90.0000,9\n";

TEST_F(BacktestCommand, PrintsTheReportWithLfLineEnds) {
  const Outcome outcome = backtest(kBothSides);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.out.substr(0, 88),
            "Back tested from 2024-01-01 00:00:00 to 2024-01-12 00:00:00\nTotal number of trades: 4\nAv");
  EXPECT_NE(outcome.out.find("\nTotal profit: 10.0000\nTotal loss: -10.0000\n"), std::string::npos);
  EXPECT_EQ(outcome.out.find('\r'), std::string::npos);
  EXPECT_EQ(log(kBothSides), kBothSidesLog);
}

TEST_F(BacktestCommand, TheReportIsTheComponents) {
  CBacktest component;
  component.fixedSeed = 7;
  for (int day = 1; day <= 12; ++day) {
    component.AppendRecord(2460309.5 + day, 10 * day, 10 * day, 10 * day, 10 * day, 100);
  }
  std::string expected =
      component.Backtest("CLOSE = 80", "CLOSE = 60", "CLOSE = 90", "CLOSE = 70", 0.5, "a=3;b=1;c=20;d=4;")
          .value();
  std::erase(expected, '\r');
  std::vector<std::string> arguments = kBothSides;
  for (const char* more : {"--slip", "0.5", "--stop-loss", "3", "--trailing", "--target", "20", "--max-bars",
                           "4", "--seed", "7"}) {
    arguments.emplace_back(more);
  }
  EXPECT_EQ(backtest(arguments).out, expected);
}

TEST_F(BacktestCommand, ScriptsComeFromFilesAndLineByLineToo) {
  EXPECT_EQ(log({"--buy", "@" + write("buy.bws", "# comment\nSET A = CLOSE\nA = 80\n"), "--exit-long",
                 "SET B = CLOSE", "--exit-long", "B = 90"}),
            "2024-01-08 00:00:00,LONG,80.0000,8\n2024-01-09 00:00:00,EXIT LONG,90.0000,9\n");
}

TEST_F(BacktestCommand, RulesCloseAPosition) {
  const std::string entry = "2024-01-07 00:00:00,LONG,70.0000,7\n";
  // 10 percent above 70 is 77; the next bar goes up to 80.
  EXPECT_EQ(log({"--buy", "CLOSE = 70", "--target", "10"}), entry + "2024-01-08 00:00:00,PROFIT,77.0000,8\n");
  EXPECT_EQ(log({"--buy", "CLOSE = 70", "--max-bars", "1"}),
            entry + "2024-01-09 00:00:00,NO ACTIVITY,90.0000,9\n");
  EXPECT_EQ(log({"--sell", "CLOSE = 70", "--stop-loss", "10"}),
            "2024-01-07 00:00:00,SHORT,70.0000,7\n2024-01-08 00:00:00,STOP LOSS,77.0000,8\n");
  EXPECT_EQ(log({"--buy", "CLOSE = 70", "--exit-long", "CLOSE = 90", "--slip", "10"}),
            "2024-01-07 00:00:00,LONG,77.0000,7\n2024-01-09 00:00:00,EXIT LONG,81.0000,9\n");
}

TEST_F(BacktestCommand, TheTrailingStopKeepsTheDistanceOfTheStopLoss) {
  // Up to 100 on the tenth day, then 80. The stop of 54 has followed the price from 60 to 100, up to 94.
  std::string bars = twelveBars();
  bars.resize(bars.find("2024-01-11"));
  bars += "2024-01-11,80,80,80,80,1\n2024-01-12,70,70,70,70,1\n";
  EXPECT_EQ(log({"--buy", "CLOSE = 60", "--stop-loss", "10", "--trailing"}, bars),
            "2024-01-06 00:00:00,LONG,60.0000,6\n2024-01-11 00:00:00,TRAILING STOP LOSS,94.0000,11\n");
  EXPECT_EQ(backtest({"--buy", "CLOSE = 60", "--trailing"}, bars).code, 1);  // has no distance
}

TEST_F(BacktestCommand, FastRunsTheIncrementalWay) {
  // Without filler bars the scripts can fire from the seventh bar on.
  EXPECT_EQ(log({"--fast", "--buy", "CLOSE = 70", "--exit-long", "CLOSE = 90"}),
            "2024-01-07 00:00:00,LONG,70.0000,7\n2024-01-09 00:00:00,EXIT LONG,90.0000,9\n");
  EXPECT_EQ(backtest({"--fast", "--buy", "CLOSE = 60", "--exit-long", "CLOSE = 90"}).code, 4);
}

TEST_F(BacktestCommand, JsonHasEveryStatisticAndTrade) {
  std::vector<std::string> arguments = kBothSides;
  arguments.insert(arguments.end(), {"--format", "json", "--seed", "1"});
  const Outcome outcome = backtest(arguments);
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  const nlohmann::json json = nlohmann::json::parse(outcome.out);
  EXPECT_EQ(json["from"], "2024-01-01 00:00:00");
  EXPECT_EQ(json["to"], "2024-01-12 00:00:00");
  EXPECT_EQ(json["bars"], 12);
  EXPECT_EQ(json["fired"], (nlohmann::json{{"buy", 1}, {"sell", 1}, {"exitLong", 1}, {"exitShort", 1}}));
  EXPECT_EQ(json["statistics"]["records"], 4.0);
  EXPECT_EQ(json["statistics"]["winners"], 1.0);
  EXPECT_EQ(json["statistics"]["losers"], 1.0);
  EXPECT_EQ(json["statistics"]["totalProfit"], 10.0);
  EXPECT_EQ(json["statistics"]["totalLoss"], -10.0);
  EXPECT_EQ(json["statistics"]["maximumDrawdown"], -10.0);
  EXPECT_EQ(json["statistics"]["riskToReward"], 1.0);
  EXPECT_EQ(json["statistics"].size(), 23u);  // a member for each line of the report
  ASSERT_EQ(json["trades"].size(), 4u);
  EXPECT_EQ(json["trades"][0], (nlohmann::json{{"date", "2024-01-06 00:00:00"},
                                               {"jDate", 2460315.5},
                                               {"bar", 6},
                                               {"action", "SHORT"},
                                               {"price", 60.0}}));
  EXPECT_EQ(json["trades"][1]["profit"], -10.0);
  EXPECT_EQ(json["trades"][1]["return"], -10.0 / 60);
  EXPECT_EQ(json["trades"][1]["action"], "EXIT SHORT");
  EXPECT_FALSE(json["trades"][2].contains("profit"));
  EXPECT_EQ(json["trades"][3]["profit"], 10.0);
  EXPECT_EQ(json["trades"][3]["return"], 0.125);
}

TEST_F(BacktestCommand, ASeedMakesTheMonteCarloFigureTheSameEachTime) {
  const std::vector<std::string> scripts = {
      "backtest",    BRINDLEWORT_SOURCE_DIR "/examples/sample_daily.csv",
      "--buy",       "CLOSE > SMA(CLOSE, 5)",
      "--exit-long", "CLOSE < SMA(CLOSE, 5)",
      "--format",    "json",
      "--seed"};
  const auto figure = [&](const char* seed) {
    std::vector<std::string> arguments = scripts;
    arguments.emplace_back(seed);
    return nlohmann::json::parse(run(arguments).out)["statistics"]["monteCarloDrawdown"].get<double>();
  };
  EXPECT_EQ(figure("1"), figure("1"));
  EXPECT_NE(figure("1"), figure("2"));
  EXPECT_LT(figure("1"), 0.0);
}

TEST_F(BacktestCommand, TheChartShowsPricesTradesAndProfit) {
  const std::string chart = write("chart.svg", "");
  std::vector<std::string> arguments = kBothSides;
  arguments.insert(arguments.end(), {"--chart", chart});
  EXPECT_EQ(log(arguments), kBothSidesLog);
  const std::string svg = readFile(chart);
  EXPECT_EQ(svg.substr(0, 5), "<?xml");
  EXPECT_NE(svg.find("<title>Backtest of b.csv, 2024-01-01 to 2024-01-12</title>"), std::string::npos);
  // Twelve bars from 80 to 1180: the sixth at 580, then 100 apart. Closes of 10 to 120 with a margin of 5.5,
  // so 121 over the 414 from 500 up to 86: 60 is at 500 - 55.5 * 414 / 121, a step of 10 is 34.2.
  EXPECT_NE(svg.find("<g id=\"marks\">\n"
                     "<use xlink:href=\"#short-entry\" x=\"580\" y=\"310.1\"/>\n"
                     "<use xlink:href=\"#short-exit\" x=\"680\" y=\"275.9\"/>\n"
                     "<use xlink:href=\"#long-entry\" x=\"780\" y=\"241.7\"/>\n"
                     "<use xlink:href=\"#long-exit\" x=\"880\" y=\"207.5\"/>\n"
                     "</g>"),
            std::string::npos)
      << svg.substr(svg.find("<g id=\"marks\""));
  // The profit: 0, then -10, then 0 again; a margin of 0.5 over 700 to 540.
  EXPECT_NE(svg.find("points=\"80,547.3 680,547.3 680,692.7 880,692.7 880,547.3 1180,547.3\""),
            std::string::npos);
}

TEST_F(BacktestCommand, ARunWithoutTradesTellsHowOftenEachScriptFired) {
  const Outcome outcome =
      backtest({"--buy", "SMA(CLOSE, 10) > 1", "--sell", "CLOSE > 0", "--exit-long", "CLOSE = 999"});
  EXPECT_EQ(outcome.code, 4);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(
      outcome.err,
      "The scripts generated no trades.\n"
      "  buy: asks for 20 bars, and there are 12\n"
      "  sell: fired on 7 bars\n"
      "  exit-long: fired never\n"
      "  exit-short: not given\n"
      "A trade is an entry (buy, sell) and its exit on a later bar: by the exit script of its side, or by "
      "--stop-loss, --target or --max-bars.\n");
}

TEST_F(BacktestCommand, AScriptsErrorTellsWhichScriptItIsFrom) {
  const Outcome outcome = backtest({"--buy", "CLOSE = 70", "--exit-long", "CLOSE > NOSUCHNAME"});
  EXPECT_EQ(outcome.code, 2);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err.substr(0, 7), "Error: ");
  EXPECT_NE(outcome.err.find("\nThat is from the script of --exit-long.\n"), std::string::npos)
      << outcome.err;
}

TEST_F(BacktestCommand, WhatIsMissingOrWrongIsTold) {
  EXPECT_EQ(backtest({}).code, 1);
  EXPECT_EQ(backtest({"--exit-long", "CLOSE = 90"}).code, 1);
  EXPECT_EQ(backtest({"--buy", "CLOSE = 90", "--slip", "-1"}).code, 1);
  EXPECT_EQ(backtest({"--buy", "CLOSE = 90", "--format", "csv"}).code, 1);
  EXPECT_EQ(backtest({"--buy", "@no_such_file.bws"}).code, 3);
  EXPECT_EQ(backtest({"--buy", "CLOSE = 70"}, "Date,Open,High,Low,Close\n").code, 4);
}

}  // namespace
}  // namespace brindlewort::tool
