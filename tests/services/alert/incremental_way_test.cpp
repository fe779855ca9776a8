// The incremental way: one engine stays alive and takes the bars one by one.

#include <gtest/gtest.h>

#include "functions/script_engine.hpp"
#include "services/alert/alert_support.hpp"

namespace brindlewort {
namespace {

using namespace brindlewort::testing;

constexpr const char* kRising = "CLOSE > REF(CLOSE, 1)";

TEST(IncrementalAlert, EachBarIsEvaluatedFromTheSeventhOn) {
  // The script asks for 7 bars, and no filler stands in for any.
  Watcher w;
  w.startLiving(kRising);
  w.appendAllOpt({10, 11, 12, 13, 14, 15});
  EXPECT_EQ(w.take(), Events{});
  EXPECT_TRUE(w.appendOpt(7, 16));
  EXPECT_EQ(w.take(), Events{fired("7.5 16")});
  EXPECT_TRUE(w.appendOpt(8, 16));
  EXPECT_EQ(w.take(), Events{});
  EXPECT_TRUE(w.appendOpt(9, 17));
  EXPECT_EQ(w.take(), Events{fired("9.5 17")});
}

TEST(IncrementalAlert, CandlesWithoutAPatternFireNothing) {
  for (const char* script : {"CSP()", "CANDLESTICKPATTERN()", "CANDLESTICKS()"}) {
    Watcher w;
    w.startLiving(script);
    w.appendAllOpt({10, 11, 12, 13, 14, 15, 16, 17, 18});
    EXPECT_EQ(w.editOpt(9, 12), true);
    EXPECT_EQ(w.take(), Events{}) << script;
  }
  // They have rows all the same, so that a function of them and another series has rows from the first on.
  Watcher w;
  w.startLiving("COMPOSITE(VOLUME, CSP(), 1, 0) > 0");
  w.appendAllOpt({10, 11, 12, 13, 14, 15});
  EXPECT_EQ(w.take(), Events{});
  w.appendOpt(7, 16);
  EXPECT_EQ(w.take(), Events{fired("7.5 16")});
}

TEST(IncrementalAlert, AnEditOfTheLastBarIsEvaluated) {
  Watcher w;
  w.startLiving(kRising);
  w.appendAllOpt({10, 11, 12, 13, 14, 15, 14});
  EXPECT_EQ(w.take(), Events{});
  EXPECT_EQ(w.editOpt(7, 15.5), true);
  EXPECT_EQ(w.take(), Events{fired("7.5 15.5")});
  EXPECT_EQ(w.editOpt(7, 15), true);
  EXPECT_EQ(w.take(), Events{});
  EXPECT_TRUE(w.appendOpt(8, 15.25));
  EXPECT_EQ(w.take(), Events{fired("8.5 15.25")});
}

TEST(IncrementalAlert, AnEditOfAnEarlierBarChangesTheLastRow) {
  Watcher w;
  w.startLiving("CLOSE > 50");
  w.appendAllOpt({10, 11, 12, 13, 14, 15, 16});
  w.take();
  EXPECT_EQ(w.editOpt(3, 60), true);
  EXPECT_EQ(w.take(), Events{fired("7.5 16")});  // the last bar of the store is as it was
  EXPECT_EQ(w.alert.GetRecordByIndex(3)->ClosePrice, 60);
  EXPECT_EQ(w.alert.GetRecordByIndex(7)->ClosePrice, 16);
  const Series& close = w.alert.lastEngine()->variables.get("CLOSE")->values;
  EXPECT_EQ(close[2], 12);
  EXPECT_EQ(close[6], 60);
}

TEST(IncrementalAlert, AnEditOfAnAbsentBarRunsNothing) {
  Watcher w;
  w.startLiving("CLOSE > 0");
  w.appendAllOpt({10, 11, 12, 13, 14, 15, 16});
  w.append(8, 17);  // a bar of the plain store alone
  w.take();
  EXPECT_EQ(w.editOpt(8, 20), false);
  EXPECT_EQ(w.editOpt(9, 20), false);
  EXPECT_EQ(w.take(), Events{});
  EXPECT_EQ(w.alert.GetRecordByIndex(8)->ClosePrice, 17);
}

TEST(IncrementalAlert, AnEventCarriesTheLastTradeOfItsOwnStore) {
  Watcher w;
  w.startLiving("CLOSE > 0");
  w.appendAllOpt({10, 11, 12, 13, 14, 15, 16});
  w.append(8, 17);  // a bar of the plain store alone
  w.take();
  EXPECT_EQ(w.editOpt(7, 20), true);
  EXPECT_EQ(w.take(), Events{fired("7.5 20")});
}

TEST(IncrementalAlert, BothStoresTakeABar) {
  // What the incremental way has taken is there for the plain one.
  Watcher w;
  w.startLiving(kRising);
  w.appendAllOpt({10, 11, 12, 13, 14, 15, 16});
  w.take();
  EXPECT_EQ(w.alert.RecordCount(), 7);
  EXPECT_TRUE(w.alert.Evaluate(kRising));
  w.append(8, 18);
  EXPECT_EQ(w.take(), (Events{fired("7.5 16"), fired("8.5 18")}));
}

TEST(IncrementalAlert, AnEditGoesToTheSameRowOfBothStores) {
  // The plain store has a bar more in front, so the row that the other store finds holds another date there.
  Watcher w;
  w.append(1, 9);
  w.alert.InitialiseTransientStore(250);
  w.appendOpt(2, 10);
  w.appendOpt(3, 11);
  EXPECT_EQ(w.editOpt(2, 50), true);  // row 0
  EXPECT_EQ(w.alert.GetRecordByIndex(1)->JDate, 2);
  EXPECT_EQ(w.alert.GetRecordByIndex(1)->ClosePrice, 50);
  EXPECT_EQ(w.alert.GetRecordByIndex(2)->JDate, 2);
  EXPECT_EQ(w.alert.GetRecordByIndex(2)->ClosePrice, 10);
  EXPECT_EQ(w.alert.GetRecordByIndex(3)->ClosePrice, 11);
  // Every date is still found, the first of equal ones.
  EXPECT_EQ(w.alert.GetRecordByJDate(1), nullptr);
  EXPECT_EQ(w.alert.GetRecordByJDate(2)->ClosePrice, 50);
  EXPECT_EQ(w.alert.GetRecordByJDate(3)->ClosePrice, 11);
  EXPECT_EQ(w.editOpt(3, 70), true);  // row 1
  EXPECT_EQ(w.alert.GetRecordByIndex(2)->JDate, 3);
  EXPECT_EQ(w.alert.GetRecordByJDate(2)->ClosePrice, 50);
  EXPECT_EQ(w.alert.GetRecordByJDate(3)->ClosePrice, 70);
}

TEST(IncrementalAlert, PlainAppendsStayPlain) {
  Watcher w;
  w.startLiving(kRising);
  w.appendAll({10, 11, 12, 13, 14});
  EXPECT_EQ(w.take(), Events{fired("5.5 14")});  // evaluated the plain way, with fillers
  EXPECT_TRUE(w.appendOpt(6, 15));               // the living engine has seen one bar
  EXPECT_EQ(w.take(), Events{});
}

TEST(IncrementalAlert, SettingTheScriptRunsThePreparedOne) {
  Watcher w;
  w.alert.InitialiseTransientStore(250);
  EXPECT_TRUE(w.alert.ProcessScripData("CLOSE > 100"));
  w.appendAllOpt({10, 11, 12, 13, 14, 15, 16});
  EXPECT_EQ(w.take(), Events{});  // no script is set, so nothing has run
  EXPECT_EQ(w.alert.lastEngine(), nullptr);
  w.alert.setAlertScript("CLOSE > 0");  // looked at for its length alone
  EXPECT_EQ(w.take(), Events{});
  EXPECT_NE(w.alert.lastEngine(), nullptr);
  w.appendOpt(8, 101);
  EXPECT_EQ(w.take(), Events{fired("8.5 101")});
  w.alert.setAlertScript("stop");
  w.appendOpt(9, 102);
  EXPECT_EQ(w.take(), Events{});
}

TEST(IncrementalAlert, TheTwoWaysFireOnTheSameBars) {
  // From the seventh bar on, with rows that reach neither the fillers nor each other's first row.
  const std::vector<double> prices = {10, 12, 11, 13, 12, 14, 13, 15, 16, 15, 14, 17, 18, 12, 13, 13, 20, 19};
  for (const char* script :
       {kRising, "SET A = SMA(CLOSE, 2)\r\nCLOSE > A AND REF(CLOSE, 1) < 17", "MAX(CLOSE, 3) = CLOSE",
        "CLOSE > NOSUCH", "CLOSE > REF(CLOSE, 2) OR CLOSE = 13"}) {
    Watcher plain, living;
    plain.alert.setAlertScript(script);
    living.startLiving(script);
    for (std::size_t i = 0; i < prices.size(); ++i) {
      const int day = static_cast<int>(i) + 1;
      plain.append(day, prices[i]);
      living.appendOpt(day, prices[i]);
      if (day >= 7) {
        EXPECT_EQ(plain.take(), living.take()) << script << ", bar " << day;
        for (double price : {prices[i] + 2, prices[i] - 3, prices[i]}) {
          plain.edit(day, price);
          EXPECT_EQ(living.editOpt(day, price), true);
          EXPECT_EQ(plain.take(), living.take()) << script << ", bar " << day << " at " << price;
        }
      }
      plain.take();
      living.take();
    }
  }
}

TEST(IncrementalAlert, AFailureIsToldAtEveryBar) {
  Watcher w;
  w.startLiving("SMA(CLOSE)");
  w.appendAllOpt({10, 11, 12, 13, 14, 15, 16, 17});
  const Events events = w.take();
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(events[0].rfind(failed("Error: "), 0), 0u) << events[0];
  EXPECT_EQ(events[1], events[0]);
  EXPECT_EQ(w.alert.lastFunction(), "SMA");
}

TEST(IncrementalAlert, TheFunctionOfTheLastRunOutlivesAPreparation) {
  Watcher w;
  w.startLiving("SMA(CLOSE, 2)");
  w.appendAllOpt({10, 11, 12, 13, 14, 15, 16});
  EXPECT_EQ(w.alert.lastFunction(), "SMA");
  w.alert.ProcessScripData("CLOSE > 0");
  EXPECT_EQ(w.alert.lastFunction(), "SMA");
  w.appendOpt(8, 17);
  EXPECT_EQ(w.alert.lastFunction(), "");
}

// ---- Preparation

TEST(IncrementalAlert, ARefusedScriptIsAnsweredWithoutAnEvent) {
  Watcher w;
  w.alert.InitialiseTransientStore(250);
  EXPECT_FALSE(w.alert.ProcessScripData(""));
  EXPECT_FALSE(w.alert.ProcessScripData("# nothing"));
  EXPECT_FALSE(w.alert.ProcessScripData(std::string(64'000, 'A')));
  EXPECT_TRUE(w.alert.ProcessScripData("CLOSE > 0"));
  EXPECT_TRUE(w.alert.ProcessScripData("1+1"));  // of any length
  EXPECT_EQ(w.take(), Events{});
}

TEST(IncrementalAlert, BarsBeforeThePreparationCount) {
  Watcher w;
  w.alert.InitialiseTransientStore(250);
  w.appendAllOpt({10, 11, 12, 13, 14, 15});
  w.alert.ProcessScripData(kRising);
  w.alert.setAlertScript(kRising);
  EXPECT_EQ(w.take(), Events{});
  w.appendOpt(7, 16);
  EXPECT_EQ(w.take(), Events{fired("7.5 16")});
}

TEST(IncrementalAlert, APreparationAloneMakesTheEngineReady) {
  // The engine runs, and has no room for any series without its store.
  Watcher w;
  EXPECT_TRUE(w.alert.ProcessScripData("1 + 1"));
  w.alert.setAlertScript("CLOSE > 0");  // the plain way, without bars: nothing
  EXPECT_EQ(w.take(), Events{});
  for (int day = 1; day <= 6; ++day) EXPECT_TRUE(w.appendOpt(day, 10));
  EXPECT_EQ(w.take(), Events{});
  EXPECT_TRUE(w.appendOpt(7, 10));
  EXPECT_EQ(w.take(), Events{failed("Error: Script too complex.")});
}

TEST(IncrementalAlert, WithoutAPreparationNothingRuns) {
  Watcher w;
  w.alert.setAlertScript("CLOSE > 0");  // the plain way, over no bars
  const CScriptEngine* before = w.alert.lastEngine();
  for (int day = 1; day <= 8; ++day) EXPECT_TRUE(w.appendOpt(day, 10));
  EXPECT_EQ(w.alert.lastEngine(), before);
  EXPECT_EQ(w.take(), Events{});
  EXPECT_EQ(w.alert.RecordCount(), 8);
}

TEST(IncrementalAlert, AnEngineWithoutRowsRefusesAnEdit) {
  // Bars before the store is made: the engine's series have no row that could change.
  Watcher w;
  w.appendOpt(1, 10);
  w.startLiving("CLOSE > 0");
  w.take();
  EXPECT_EQ(w.editOpt(1, 11), std::nullopt);
  EXPECT_EQ(w.alert.GetRecordByIndex(1)->ClosePrice, 11);
  EXPECT_EQ(w.take(), Events{});
}

TEST(IncrementalAlert, ClearedRecordsNeedANewStart) {
  Watcher w;
  w.startLiving(kRising);
  w.appendAllOpt({10, 11, 12, 13, 14, 15, 16});
  EXPECT_EQ(w.take(), Events{fired("7.5 16")});
  w.alert.ClearRecords();
  EXPECT_EQ(w.alert.RecordCount(), 0);
  EXPECT_EQ(w.editOpt(7, 17), false);
  w.startLiving(kRising);
  EXPECT_EQ(w.take(), Events{});
  w.appendAllOpt({10, 11, 12, 13, 14, 15});
  EXPECT_EQ(w.take(), Events{});
  w.appendOpt(7, 20);
  EXPECT_EQ(w.take(), Events{fired("7.5 20")});
}

TEST(IncrementalAlert, AnyOrderOfCallsIsDefined) {
  Watcher w;
  w.alert.GetVariableValuesLog("/no/such/folder/file.txt");
  w.alert.InitialiseTransientStore(-5);
  w.alert.InitialiseTransientStore(2);
  w.alert.ClearRecords();
  w.appendAllOpt({10, 11});
  w.alert.setAlertScript("CLOSE > 0");
  w.alert.InitialiseTransientStore(10);
  w.appendAllOpt({10, 11, 12});
  w.alert.ProcessScripData("SET A = EMA(CLOSE, 3)\r\nA > 0");
  w.alert.ClearRecords();
  w.appendAllOpt({10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20});
  w.alert.ProcessScripData("A > B");
  w.editOpt(3, 5);
  w.alert.Evaluate("CLOSE > 0");
  w.alert.setAlertScript("CLOSE > 0");
  EXPECT_EQ(w.alert.RecordCount(), 11);
}

}  // namespace
}  // namespace brindlewort
