// Backtest, Alert and Validate through the public faces, as a host has them.

#include <gtest/gtest.h>

#include <brindlewort/brindlewort.hpp>
#include <string>
#include <vector>

namespace {

using brindlewort::Bar;

Bar bar(int day, double close) {
  Bar b;
  b.JDate = 2450000.5 + day;
  b.OpenPrice = b.HighPrice = b.LowPrice = b.ClosePrice = close;
  b.Volume = 100;
  return b;
}

TEST(BacktestFace, ARunWithoutTradesIsTheEventAndNoText) {
  brindlewort::CBacktest backtest;
  std::string told;
  backtest.OnScriptError([&](const std::string& text) { told = text; });
  for (int day = 0; day < 30; ++day) backtest.AppendRecord(bar(day, 10.0));
  EXPECT_EQ(backtest.RecordCount(), 30);
  EXPECT_EQ(backtest.Backtest("CLOSE > 20", "CLOSE < 5", "", "", 0.0, ""), std::nullopt);
  EXPECT_EQ(told, "Error: Scripts generated no trades.");
  told.clear();
  EXPECT_EQ(backtest.Backtest_New("CLOSE > 20", "CLOSE < 5", "", "", 0.0, ""), std::nullopt);
  EXPECT_EQ(told, "Error: Scripts generated no trades.");
}

TEST(BacktestFace, BothWaysReportTheTradesOfABuyAndAnExit) {
  brindlewort::CBacktest backtest;
  backtest.SetRandomSeed(7);
  std::vector<Bar> bars;
  for (int day = 0; day < 60; ++day)
    bars.push_back(bar(day, day % 10 < 5 ? 10.0 + day % 10 : 19.0 - day % 10));
  backtest.AppendRecords(bars);
  for (const bool incremental : {false, true}) {
    const auto report = incremental ? backtest.Backtest_New("CLOSE = 11", "", "CLOSE = 13", "", 0.0, "")
                                    : backtest.Backtest("CLOSE = 11", "", "CLOSE = 13", "", 0.0, "");
    ASSERT_TRUE(report.has_value());
    EXPECT_NE(report->find("LONG,"), std::string::npos);
    EXPECT_NE(report->find("EXIT LONG,"), std::string::npos);
  }
  EXPECT_EQ(backtest.ScriptHelp(), "");  // the last bracket that was read groups, and names no function
}

TEST(BacktestFace, AScriptThatTheDriverRefusesLeavesTheHelpOfTheOneBefore) {
  brindlewort::CBacktest backtest;
  for (int day = 0; day < 30; ++day) backtest.AppendRecord(bar(day, 10.0));
  const auto firstLine = [&] {
    const std::string help = backtest.ScriptHelp();
    return help.substr(0, help.find('\n'));
  };
  // A script of blanks is missing, which the driver says before anything of the last run is dropped; a
  // comment alone is a script that turns out to be none.
  backtest.Backtest_New("EMA(CLOSE, 1)", " ", "", "", 0.0, "");
  EXPECT_EQ(firstLine(), "ExponentialMovingAverage(Vector, Periods)");
  backtest.Backtest("EMA(CLOSE, 1)", " ", "", "", 0.0, "");
  EXPECT_EQ(firstLine(), "ExponentialMovingAverage(Vector, Periods)");
  backtest.Backtest_New("EMA(CLOSE, 1)", "# none", "", "", 0.0, "");
  EXPECT_EQ(firstLine(), "");
  backtest.Backtest("EMA(CLOSE, 1)", "# none", "", "", 0.0, "");
  EXPECT_EQ(firstLine(), "");
}

TEST(BacktestFace, NullOutPointersOfAQueryAreSkipped) {
  bw_backtest* handle = bw_backtest_create();
  ASSERT_NE(handle, nullptr);
  bw_backtest_append_record(handle, 1.5, 1, 2, 3, 4, 5);
  double close = 0.0;
  int32_t found = 9;
  EXPECT_EQ(
      bw_backtest_get_record_by_index(handle, 1, nullptr, nullptr, nullptr, nullptr, &close, nullptr, &found),
      0);
  EXPECT_EQ(found, -1);
  EXPECT_EQ(close, 4.0);
  EXPECT_EQ(
      bw_backtest_get_record_by_index(handle, 2, nullptr, nullptr, nullptr, nullptr, &close, nullptr, &found),
      0);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(bw_backtest_get_record_count(nullptr, &found), -1);
  EXPECT_EQ(bw_backtest_backtest(handle, "", "", "", "", 0.0, "", nullptr), -1);
  bw_backtest_destroy(handle);
}

TEST(BacktestFace, ItsDatesAloneCountMilliseconds) {
  constexpr std::int32_t kSixHours = 6 * 60 * 60 * 1000;
  constexpr double kNewYear2024 = 2460310.5;
  const brindlewort::CBacktest backtest;
  EXPECT_EQ(backtest.ToJulianDate(2024, 1, 1, 0, 0, 0, kSixHours), kNewYear2024 + 0.25);
  EXPECT_EQ(backtest.FromJulianDate(0.0), "No Date Time");
  const brindlewort::CAlert alert;
  EXPECT_EQ(alert.ToJulianDate(2024, 1, 1, 12, 0, 0, kSixHours), kNewYear2024 + 0.5);
  EXPECT_EQ(alert.FromJulianDate(0.0), "No Date Time");
  EXPECT_EQ(brindlewort::CScriptOutput().ToJulianDate(2024, 1, 1, 0, 0, 0, kSixHours), kNewYear2024);
}

TEST(AlertFace, AFiringScriptTellsSymbolNameDateAndPriceOfTheLastTrade) {
  brindlewort::CAlert alert;
  std::vector<std::string> fired;
  alert.OnAlert([&](const std::string& symbol, const std::string& name, double date, double price) {
    fired.push_back(symbol + "/" + name + "/" + std::to_string(date) + "/" + std::to_string(price));
  });
  alert.SetSymbol("ABC");
  alert.SetAlertName("rise");
  alert.SetAlertScript("CLOSE > 10");
  EXPECT_EQ(alert.AlertScript(), "CLOSE > 10");
  for (int day = 0; day < 20; ++day) alert.AppendRecord(bar(day, 9.0), 2450000.5 + day);
  EXPECT_TRUE(fired.empty());
  alert.AppendRecord(bar(20, 11.0), 2450020.25);
  ASSERT_EQ(fired.size(), 1u);
  EXPECT_EQ(fired[0], "ABC/rise/2450020.250000/11.000000");
}

TEST(AlertFace, TheIncrementalWayFiresToo) {
  brindlewort::CAlert alert;
  int fired = 0;
  alert.OnAlert([&](const std::string&, const std::string&, double, double) { ++fired; });
  alert.InitialiseTransientStore(250);
  ASSERT_TRUE(alert.ProcessScripData("CLOSE > 10"));
  alert.SetAlertScript("CLOSE > 10");
  for (int day = 0; day < 20; ++day) ASSERT_TRUE(alert.AppendRecord_Opt(bar(day, 9.0), 0.0));
  EXPECT_EQ(fired, 0);
  ASSERT_TRUE(alert.AppendRecord_Opt(bar(20, 11.0), 0.0));
  EXPECT_EQ(fired, 1);
  EXPECT_EQ(alert.EditRecord_Opt(bar(20, 9.0), 0.0), std::optional<bool>(true));
  EXPECT_EQ(fired, 1);
  EXPECT_EQ(alert.EditRecord_Opt(bar(77, 9.0), 0.0), std::optional<bool>(false));
}

TEST(AlertFace, NothingIsEvaluatedBeforeThereIsAnAlertScript) {
  int fired = 0;
  const auto count = [&](const std::string&, const std::string&, double, double) { ++fired; };
  brindlewort::CAlert plain, incremental;
  plain.OnAlert(count);
  incremental.OnAlert(count);
  incremental.InitialiseTransientStore(250);
  ASSERT_TRUE(incremental.ProcessScripData("CLOSE > 10"));
  for (int day = 0; day < 20; ++day) {
    plain.AppendRecord(bar(day, 11.0), 0.0);
    EXPECT_TRUE(incremental.AppendRecord_Opt(bar(day, 11.0), 0.0));
  }
  EXPECT_EQ(fired, 0);
  plain.SetAlertScript("CLOSE > 10");  // evaluated at once
  EXPECT_EQ(fired, 1);
  incremental.SetAlertScript("CLOSE > 10");
  EXPECT_EQ(fired, 2);
  plain.SetAlertScript("1 > 0");
  EXPECT_EQ(fired, 3);
  plain.SetAlertScript("TRUE");  // four characters are no script
  EXPECT_EQ(fired, 3);
}

TEST(AlertFace, AnExceptionOfACallbackReachesTheCaller) {
  brindlewort::CAlert alert;
  alert.OnAlert([](const std::string&, const std::string&, double, double) { throw 7; });
  alert.SetAlertScript("CLOSE > 1");
  for (int day = 0; day < 6; ++day) {
    try {
      alert.AppendRecord(bar(day, 9.0), 0.0);
    } catch (int thrown) {
      EXPECT_EQ(thrown, 7);
      return;
    }
  }
  FAIL() << "the script never fired";
}

TEST(ValidateFace, TellsTheFirstFaultAndKeepsTheConstants) {
  brindlewort::CValidate validate;
  EXPECT_EQ(validate.Validate("CLOSE > OPEN", -1), "");
  EXPECT_EQ(validate.Validate("CLOSE > OPEN").substr(0, 9), "NO Error:");
  EXPECT_EQ(validate.Validate("SET SYMBOL = Q\r\nCLOSE > OPEN", -1), "");
  EXPECT_EQ(validate.Constant("SYMBOL"), "Q");
  EXPECT_EQ(validate.Validate("SMA(CLOSE, 14 > OPEN", -1),
            "Error: Script not nested with proper \" ) \" bracket");
  EXPECT_EQ(validate.Validate("BLAH > OPEN", -1), "Error: 'BLAH' is not a valid script");
  EXPECT_EQ(validate.Constant("SYMBOL"), "Q") << "a script at fault changes none";
}

TEST(IncrementalFace, PointersStayReadableUntilTheNextRun) {
  brindlewort::CScriptOutput output;
  output.InitialiseTransientStore(250);
  ASSERT_TRUE(output.ProcessScripData("SET A = CLOSE\r\nA > 0"));
  for (int day = 0; day < 16; ++day) output.AppendRecord_New(bar(day, 10.0 + day));
  const bw_series_list* list = output.GetScriptOutput_PTR("A", 0, "A");
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->count, 1u);
  ASSERT_EQ(list->items[0].count, 16u);
  const double* rows = list->items[0].values;
  for (int day = 16; day < 2000; ++day) output.AppendRecord_New(bar(day, 10.0 + day));
  for (int row = 0; row < 16; ++row) EXPECT_EQ(rows[row], 10.0 + row);
  EXPECT_EQ(list->items[0].count, 2000u);
  EXPECT_EQ(list->items[0].values[15], 25.0);
  EXPECT_EQ(list->items[0].values[1999], brindlewort::NULL_VALUE);  // no run has made it yet
}

}  // namespace
