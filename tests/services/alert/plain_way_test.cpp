// The plain way: a run over all bars at each change.

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "functions/script_engine.hpp"
#include "services/alert/alert_support.hpp"

namespace brindlewort {
namespace {

using namespace brindlewort::testing;

constexpr const char* kRising = "CLOSE > REF(CLOSE, 1)";

// ---- When a run takes place

TEST(PlainAlert, EachBarIsEvaluatedFromTheFifthOn) {
  // The script asks for 7 bars; two fillers stand in front of the host's.
  Watcher w;
  w.alert.setAlertScript(kRising);
  w.appendAll({10, 11, 12, 13});
  EXPECT_EQ(w.take(), Events{});
  w.append(5, 14);
  EXPECT_EQ(w.take(), Events{fired("5.5 14")});
  w.append(6, 14);
  EXPECT_EQ(w.take(), Events{});
  w.append(7, 13);
  EXPECT_EQ(w.take(), Events{});
  w.append(8, 15);
  EXPECT_EQ(w.take(), Events{fired("8.5 15")});
}

TEST(PlainAlert, AnEditIsEvaluatedLikeABar) {
  Watcher w;
  w.alert.setAlertScript(kRising);
  w.appendAll({10, 11, 12, 13, 12});
  EXPECT_EQ(w.take(), Events{});
  EXPECT_TRUE(w.edit(5, 13.5));
  EXPECT_EQ(w.take(), Events{fired("5.5 13.5")});
  EXPECT_TRUE(w.edit(4, 14));  // the bar before the last now stands higher
  EXPECT_EQ(w.take(), Events{});
  EXPECT_TRUE(w.edit(4, 13));
  EXPECT_EQ(w.take(), Events{fired("5.5 13.5")});
}

TEST(PlainAlert, AnEditOfAnAbsentBarRunsNothing) {
  Watcher w;
  w.alert.setAlertScript("CLOSE > 0");
  w.appendAll({10, 11, 12, 13, 14});
  w.take();
  EXPECT_FALSE(w.edit(6, 20));
  EXPECT_FALSE(w.edit(std::numeric_limits<int>::min(), 20));
  EXPECT_EQ(w.take(), Events{});
  EXPECT_EQ(w.alert.GetRecordByIndex(5)->ClosePrice, 14);
}

TEST(PlainAlert, SettingTheScriptRunsIt) {
  Watcher w;
  w.appendAll({10, 11, 12, 13, 14});
  EXPECT_EQ(w.take(), Events{});
  w.alert.setAlertScript(kRising);
  EXPECT_EQ(w.take(), Events{fired("5.5 14")});
  EXPECT_EQ(w.alert.AlertScript(), kRising);
}

TEST(PlainAlert, AScriptOfFourCharactersNeverRuns) {
  Watcher w;
  w.alert.setAlertScript("1 + ");
  w.appendAll({10, 11, 12, 13, 14, 15});
  EXPECT_EQ(w.take(), Events{});
  EXPECT_EQ(w.alert.AlertScript(), "1 + ");
  EXPECT_EQ(w.alert.lastEngine(), nullptr);
  EXPECT_EQ(w.alert.lastFunction(), "");
  w.alert.setAlertScript("1 + 1");
  EXPECT_EQ(w.take(), Events{fired("6.5 15")});
  EXPECT_NE(w.alert.lastEngine(), nullptr);
  w.alert.setAlertScript("");
  w.append(7, 15);
  EXPECT_EQ(w.take(), Events{});
}

TEST(PlainAlert, TooFewBarsAreNoFailure) {
  Watcher w;
  w.alert.setAlertScript("SMA(CLOSE, 50) > 0");
  w.appendAll({10, 11});
  EXPECT_EQ(w.take(), Events{});
}

TEST(PlainAlert, AResultOfZeroSaysNothing) {
  Watcher w;
  w.alert.setAlertScript("CLOSE - 14");
  w.appendAll({10, 11, 12, 13, 14});
  EXPECT_EQ(w.take(), Events{});
  w.append(6, 13.5);  // a value below 0 fires as well
  EXPECT_EQ(w.take(), Events{fired("6.5 13.5")});
}

TEST(PlainAlert, AFailureIsToldAtEveryBar) {
  Watcher w;
  w.alert.setAlertScript("CLOSE > NOSUCH");
  w.appendAll({10, 11, 12, 13, 14, 15});
  const Events events = w.take();
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(events[0].rfind(failed("Error: "), 0), 0u) << events[0];
  EXPECT_EQ(events[1], events[0]);
}

TEST(PlainAlert, ADriversMessageIsAFailureToo) {
  Watcher w;
  w.alert.setAlertScript("     ");
  EXPECT_EQ(w.take(), Events{failed("Error: Missing script")});
  w.alert.setAlertScript("# nothing");
  EXPECT_EQ(w.take(), Events{failed("Error: No script!")});
  w.alert.setAlertScript(std::string(64'000, 'A'));
  EXPECT_EQ(w.take(), Events{failed("Error: Script too large")});
}

// ---- What a run sees

TEST(PlainAlert, TheFirstBarIsInTheSeriesBehindARowOfZeros) {
  // Row 0 is a filler without prices, row 1 the first bar.
  Watcher w;
  w.alert.setAlertScript("REF(CLOSE, 4)");
  w.appendAll({10, 11, 12, 13, 14, 15, 16, 17});
  w.take();
  ASSERT_NE(w.alert.lastEngine(), nullptr);
  const Series& close = w.alert.lastEngine()->variables.get("CLOSE")->values;
  ASSERT_EQ(close.size(), 9u);
  EXPECT_EQ(close[0], 0.0);
  EXPECT_EQ(close[1], 10.0);
  EXPECT_EQ(close[8], 17.0);
  EXPECT_EQ(w.alert.lastEngine()->result.value, 13.0);
  EXPECT_EQ(w.alert.lastEngine()->dates()[0], 2444239.5);
  EXPECT_EQ(w.alert.lastEngine()->dates()[1], 1.0);
}

TEST(PlainAlert, TheSeriesHoldTheBarsOfTheComponent) {
  Watcher w;
  for (int day = 1; day <= 5; ++day) w.alert.AppendRecord(day, 1, 4, 2, 3, 70 + day, 0.25 * day);
  w.alert.setAlertScript("OPEN = 1 AND HIGH = 4 AND LOW = 2 AND CLOSE = 3 AND VOLUME = 75");
  EXPECT_EQ(w.take(), Events{fired("1.25 3")});
}

TEST(PlainAlert, AnEventCarriesTheLastTradeOfTheLastBar) {
  Watcher w;
  w.alert.setAlertScript("CLOSE > 0");
  w.appendAll({10, 11, 12, 13});
  w.alert.AppendRecord(5, 1, 2, 0.5, 1.75, 9, 99.125);
  EXPECT_EQ(w.take(), Events{fired("99.125 1.75")});
  w.alert.EditRecord(2, 1, 2, 0.5, 7, 9, 98);  // of the last bar, whichever was edited
  EXPECT_EQ(w.take(), Events{fired("99.125 1.75")});
  const Bar& bar = *w.alert.GetRecordByIndex(2);
  EXPECT_EQ(bar.dJDateOfLTT, 98);
  EXPECT_EQ(bar.dLastTradedPrice, 7);
}

// ---- The one-off test of a script

TEST(PlainAlert, EvaluateSeesNoFillers) {
  // Five bars are enough at an append, where two fillers make them seven.
  Watcher w;
  w.alert.setAlertScript(kRising);
  w.appendAll({10, 11, 12, 13, 14});
  EXPECT_EQ(w.take(), Events{fired("5.5 14")});
  EXPECT_FALSE(w.alert.Evaluate(kRising));
  EXPECT_EQ(w.take(), Events{});
  w.append(6, 15);
  EXPECT_EQ(w.take(), Events{fired("6.5 15")});
  EXPECT_FALSE(w.alert.Evaluate(kRising));
  w.append(7, 16);
  EXPECT_TRUE(w.alert.Evaluate(kRising));
  EXPECT_EQ(w.take(), (Events{fired("7.5 16"), fired("7.5 16")}));
}

TEST(PlainAlert, EvaluateDoesNotSeeTheFirstBar) {
  // Only the first bar stands above 50.
  constexpr const char* kSpike = "COUNTIF(CLOSE > 50)";
  Watcher w;
  w.alert.setAlertScript(kSpike);
  w.appendAll({60, 11, 12, 13, 14, 15, 16});
  EXPECT_EQ(w.take().size(), 3u);  // at bars 5, 6 and 7
  EXPECT_FALSE(w.alert.Evaluate(kSpike));
  EXPECT_EQ(w.take(), Events{});
}

TEST(PlainAlert, EvaluateDoesNotSeeTheRowOfZeros) {
  constexpr const char* kZero = "COUNTIF(CLOSE = 0)";
  Watcher w;
  w.alert.setAlertScript(kZero);
  w.appendAll({10, 11, 12, 13, 14, 15, 16});
  EXPECT_EQ(w.take().size(), 3u);
  EXPECT_FALSE(w.alert.Evaluate(kZero));
}

TEST(PlainAlert, AnEvaluatedScriptStaysInForce) {
  Watcher w;
  w.alert.setAlertScript("CLOSE < 0");
  w.appendAll({10, 11, 12, 13, 14, 15});
  EXPECT_EQ(w.take(), Events{});
  EXPECT_FALSE(w.alert.Evaluate("CLOSE > 0"));  // 6 bars are too few without fillers
  EXPECT_EQ(w.alert.AlertScript(), "CLOSE > 0");
  w.append(7, 16);
  EXPECT_EQ(w.take(), Events{fired("7.5 16")});
  EXPECT_FALSE(w.alert.Evaluate("1+1"));
  EXPECT_EQ(w.alert.AlertScript(), "1+1");
  w.append(8, 17);
  EXPECT_EQ(w.take(), Events{});
}

TEST(PlainAlert, EvaluateTellsAFailureAndAZero) {
  Watcher w;
  w.appendAll({10, 11, 12, 13, 14, 15, 16});
  EXPECT_FALSE(w.alert.Evaluate("CLOSE - 16"));
  EXPECT_EQ(w.take(), Events{});
  EXPECT_FALSE(w.alert.Evaluate("CLOSE > NOSUCH"));
  const Events events = w.take();
  ASSERT_EQ(events.size(), 1u);
  EXPECT_EQ(events[0].rfind(failed("Error: "), 0), 0u) << events[0];
  EXPECT_TRUE(w.alert.Evaluate("CLOSE - 17"));
  EXPECT_EQ(w.take(), Events{fired("7.5 16")});
}

TEST(PlainAlert, WithoutBarsNothingHappens) {
  Watcher w;
  EXPECT_FALSE(w.alert.Evaluate("CLOSE > 0"));
  w.alert.setAlertScript("CLOSE > 0");
  w.alert.AppendRecords({});
  EXPECT_FALSE(w.edit(1, 1));
  EXPECT_EQ(w.take(), Events{});
}

// ---- Bars in bulk

std::vector<Bar> risingBars(int count) {
  std::vector<Bar> bars(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    Bar& bar = bars[static_cast<std::size_t>(i)];
    bar.JDate = i + 1;
    bar.OpenPrice = bar.HighPrice = bar.LowPrice = bar.ClosePrice = 10 + i;
    bar.Volume = 5.75;
    bar.dJDateOfLTT = i + 1.5;
    bar.dLastTradedPrice = -1;  // not the host's to say
  }
  return bars;
}

TEST(PlainAlert, BarsInBulkAreEvaluatedOnce) {
  Watcher w;
  w.alert.setAlertScript(kRising);
  w.alert.AppendRecords(risingBars(20));
  EXPECT_EQ(w.take(), Events{fired("20.5 29")});
  EXPECT_EQ(w.alert.RecordCount(), 20);
  EXPECT_EQ(w.alert.GetRecordByIndex(3)->Volume, 5.0);
  EXPECT_EQ(w.alert.GetRecordByIndex(3)->dLastTradedPrice, 12.0);
  w.alert.AppendRecords({});
  EXPECT_EQ(w.take(), Events{});
}

// ---- Records

TEST(AlertRecords, QueriesCountFromOne) {
  Watcher w;
  w.appendAll({10, 11, 12});
  EXPECT_EQ(w.alert.RecordCount(), 3);
  EXPECT_EQ(w.alert.GetJDate(1), 1.0);
  EXPECT_EQ(w.alert.GetJDate(3), 3.0);
  for (std::int32_t outside : {0, 4, -1, std::numeric_limits<std::int32_t>::min(), 2147483647}) {
    EXPECT_EQ(w.alert.GetJDate(outside), 0.0);
    EXPECT_EQ(w.alert.GetRecordByIndex(outside), nullptr);
  }
  EXPECT_EQ(w.alert.GetRecordByIndex(3)->ClosePrice, 12.0);
  EXPECT_EQ(w.alert.GetRecordByJDate(2)->ClosePrice, 11.0);
  EXPECT_EQ(w.alert.GetRecordByJDate(2.5), nullptr);
}

TEST(AlertRecords, OfEqualDatesTheFirstIsMeant) {
  Watcher w;
  w.append(1, 10);
  w.append(2, 11);
  w.append(2, 12);
  EXPECT_EQ(w.alert.GetRecordByJDate(2)->ClosePrice, 11.0);
  EXPECT_TRUE(w.edit(2, 20));
  EXPECT_EQ(w.alert.GetRecordByIndex(2)->ClosePrice, 20.0);
  EXPECT_EQ(w.alert.GetRecordByIndex(3)->ClosePrice, 12.0);
}

TEST(AlertRecords, DatesAreEditedAndRecordsClearedWithoutARun) {
  Watcher w;
  w.alert.setAlertScript("CLOSE > 0");
  w.appendAll({10, 11, 12, 13, 14});
  w.take();
  EXPECT_TRUE(w.alert.EditJDate(2, 2.25));
  EXPECT_FALSE(w.alert.EditJDate(2, 2.5));
  EXPECT_EQ(w.alert.GetJDate(2), 2.25);
  EXPECT_EQ(w.alert.GetJDate(1), 1.0);
  w.alert.ClearRecords();
  EXPECT_EQ(w.alert.RecordCount(), 0);
  EXPECT_EQ(w.take(), Events{});
  EXPECT_EQ(w.alert.AlertScript(), "CLOSE > 0");
}

TEST(AlertRecords, PricesOfAnyKindGiveADefinedResult) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInf = std::numeric_limits<double>::infinity();
  for (const char* script : {"CLOSE > SMA(CLOSE, 2)", "RSI(CLOSE, 3) + VOLUME / (OPEN - OPEN)"}) {
    Watcher w;
    w.startLiving(script);
    for (double price : {kNan, kInf, -kInf, 0.0, -0.0, -987654321.0, 1e308, -1e308, 5e-324}) {
      w.append(1, price);
      w.alert.AppendRecord(price, price, price, price, price, -5, price);
      w.alert.AppendRecord_Opt(price, price, price, price, price, 2147483647, price);
      w.alert.EditRecord_Opt(price, 1, price, price, price, 0, kNan);
      w.alert.EditRecord(price, price, 2, price, price, 0, kInf);
    }
    EXPECT_EQ(w.alert.RecordCount(), 27);
  }
}

// ---- Properties and the function of the last run

TEST(AlertProperties, AreKeptAsGiven) {
  Watcher w;
  EXPECT_EQ(w.alert.Symbol(), "SYM");
  w.alert.setSymbol("");
  w.alert.setAlertName("two\r\nlines \"here\"");
  w.appendAll({10, 11, 12, 13, 14});
  w.alert.setAlertScript("CLOSE > 0");
  EXPECT_EQ(w.take(), Events{"/two\r\nlines \"here\" fired 5.5 14"});
}

TEST(AlertProperties, TheFunctionOfTheLastRunIsKnownWithinItsEvent) {
  Watcher w;
  w.appendAll({10, 11, 12, 13, 14, 15, 16});
  std::vector<std::string> seen;
  w.alert.ScriptError = [&](const auto&, const auto&, const auto&) {
    seen.push_back(w.alert.lastFunction());
  };
  w.alert.Alert = [&](const auto&, const auto&, double, double) { seen.push_back(w.alert.lastFunction()); };
  w.alert.setAlertScript("SMA(CLOSE)");
  w.alert.Evaluate("EMA(CLOSE, 2)");
  EXPECT_EQ(seen, (std::vector<std::string>{"SMA", "EMA"}));
  w.alert.Evaluate("CLOSE > 0");
  EXPECT_EQ(w.alert.lastFunction(), "");
}

TEST(AlertProperties, AMovedComponentGoesOn) {
  platform::AlertCount count("/brindlewort/count/of/one/test");
  CAlert first(count);
  int events = 0;
  first.Alert = [&](const auto&, const auto&, double, double) { ++events; };
  first.setAlertScript("CLOSE > 0");
  CAlert second(std::move(first));
  EXPECT_EQ(count.live(10), 1);
  for (int day = 1; day <= 5; ++day) second.AppendRecord(day, 1, 1, 1, 1, 1, day);
  EXPECT_EQ(events, 1);
}

// ---- Handlers that call the component

TEST(AlertEvents, AHandlerMayStartTheNextRun) {
  Watcher w;
  w.alert.setAlertScript("CLOSE > 0");
  w.appendAll({10, 11, 12, 13});
  int depth = 0;
  std::vector<double> prices;
  w.alert.Alert = [&](const auto&, const auto&, double, double price) {
    prices.push_back(price);
    if (++depth < 4) w.append(5 + depth, price + 1);
  };
  w.append(5, 20);
  EXPECT_EQ(prices, (std::vector<double>{20, 21, 22, 23}));
  EXPECT_EQ(w.alert.RecordCount(), 8);
}

TEST(AlertEvents, AHandlerMayReplaceItself) {
  Watcher w;
  const std::string large(100, 'x');
  std::vector<std::string> seen;
  w.alert.Alert = [&seen, &w, large](const std::string& symbol, const auto&, double, double) {
    w.alert.Alert = nullptr;
    w.alert.setSymbol("a text that needs memory of its own, and more than there was");
    seen.push_back(symbol + large);
  };
  w.alert.setSymbol("a text that needs memory of its own");
  w.alert.setAlertScript("CLOSE > 0");
  w.appendAll({10, 11, 12, 13, 14, 15});
  EXPECT_EQ(seen, (std::vector<std::string>{"a text that needs memory of its own" + large}));
}

TEST(AlertEvents, WithoutHandlersARunStillTakesPlace) {
  CAlert alert(countOfThisTest());
  alert.setAlertScript("SMA(CLOSE, 2)");
  for (int day = 1; day <= 7; ++day) alert.AppendRecord(day, 1, 1, 1, 1, 1, day);
  EXPECT_EQ(alert.lastFunction(), "SMA");
  EXPECT_TRUE(alert.Evaluate("1 + 1"));
  alert.setAlertScript("NOSUCH");
  EXPECT_EQ(alert.lastEngine()->errorText, "Error: Undefined variable 'NOSUCH'");
}

}  // namespace
}  // namespace brindlewort
