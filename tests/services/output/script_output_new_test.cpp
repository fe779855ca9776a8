// The component's incremental way: bars, the prepared script and the text of its series.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include "series/julian_date.hpp"
#include "support/living_script.hpp"
#include "support/time_zone.hpp"

namespace brindlewort {
namespace {

using testing::kFirstDay;
using testing::kNull;
using testing::LivingScript;
using testing::Rows;

/// The lines of a text; each ends with a line break.
std::vector<std::string> linesOf(const std::optional<std::string>& text) {
  std::vector<std::string> lines;
  if (!text) return {"(nothing)"};
  std::size_t from = 0;
  for (std::size_t end; (end = text->find("\r\n", from)) != std::string::npos; from = end + 2) {
    lines.push_back(text->substr(from, end - from));
  }
  EXPECT_EQ(from, text->size()) << "no line break at the end";
  return lines;
}

std::string dateText(int day) {
  std::string text;
  appendDateTimeText(text, kFirstDay + day);
  return text;
}

// ---- records ----

TEST(LivingRecords, BarsOfTheWholeHistoryWayAreNotSeen) {
  CScriptOutput component;
  component.AppendRecord(kFirstDay, 1, 2, 3, 4, 5);
  EXPECT_EQ(component.RecordCount(), 0);
  EXPECT_EQ(component.GetRecordByIndex(1), nullptr);
  EXPECT_EQ(component.GetRecordByJDate(kFirstDay), nullptr);
  component.AppendRecord_New(kFirstDay, 1, 2, 3, 4, 5);
  EXPECT_EQ(component.RecordCount(), 1);
  ASSERT_NE(component.GetRecordByIndex(1), nullptr);
  EXPECT_EQ(component.GetRecordByIndex(1)->ClosePrice, 4.0);
  EXPECT_EQ(component.GetRecordByJDate(kFirstDay)->Volume, 5.0);
}

TEST(LivingRecords, NumbersCountFromOne) {
  LivingScript script("CLOSE");
  script.ramp(3);
  EXPECT_EQ(script.component.GetRecordByIndex(0), nullptr);
  EXPECT_EQ(script.component.GetRecordByIndex(4), nullptr);
  EXPECT_EQ(script.component.GetRecordByIndex(-1), nullptr);
  EXPECT_EQ(script.component.GetRecordByIndex(3)->ClosePrice, 3.0);
}

TEST(LivingRecords, DatesCountFromTheSecondBar) {
  LivingScript script("CLOSE");
  script.ramp(3);
  EXPECT_EQ(script.component.GetJDate(0), 0.0);
  EXPECT_EQ(script.component.GetJDate(1), kFirstDay + 1);
  EXPECT_EQ(script.component.GetJDate(2), kFirstDay + 2);
  EXPECT_EQ(script.component.GetJDate(3), 0.0);
}

TEST(LivingRecords, TheNumberOfADateIsThatOfTheLastBarBefore) {
  LivingScript script("CLOSE");
  script.ramp(3);
  EXPECT_EQ(script.component.GetRecordNumberByJDate(kFirstDay + 2), 1);
  EXPECT_EQ(script.component.GetRecordNumberByJDate(kFirstDay + 1.5), 1);
  EXPECT_EQ(script.component.GetRecordNumberByJDate(kFirstDay + 99), 2);
  EXPECT_EQ(script.component.GetRecordNumberByJDate(kFirstDay), std::nullopt);
  EXPECT_EQ(script.component.GetRecordNumberByJDate(kFirstDay - 1), std::nullopt);
}

TEST(LivingRecords, TheFirstOfTwoBarsOfADateIsFoundAndEdited) {
  LivingScript script("CLOSE");
  script.ramp(2);
  script.component.AppendRecord_New(kFirstDay, 7, 7, 7, 7, 7);
  EXPECT_EQ(script.component.GetRecordByJDate(kFirstDay)->ClosePrice, 1.0);
  EXPECT_EQ(script.component.EditRecord_New(kFirstDay, 9, 9, 9, 9, 9), true);
  EXPECT_EQ(script.component.GetRecordByIndex(1)->ClosePrice, 9.0);
  EXPECT_EQ(script.component.GetRecordByIndex(3)->ClosePrice, 7.0);
}

TEST(LivingRecords, EditingTheLastBarOverwritesTheLastRow) {
  LivingScript script("SET A = CLOSE\r\nA");
  script.ramp(7).edit(50).run();
  EXPECT_EQ(script.rows("A"), (Rows{1, 2, 3, 4, 5, 6, 50}));
  EXPECT_EQ(script.component.GetRecordByIndex(7)->ClosePrice, 50.0);
}

TEST(LivingRecords, EditingAnEarlierBarOverwritesTheLastRowAllTheSame) {
  LivingScript script("SET A = CLOSE\r\nA");
  script.ramp(7);
  EXPECT_EQ(script.component.EditRecord_New(kFirstDay + 2, 50, 50, 50, 50, 50), true);
  script.run();
  EXPECT_EQ(script.rows("A"), (Rows{1, 2, 3, 4, 5, 6, 50}));
  EXPECT_EQ(script.component.GetRecordByIndex(3)->ClosePrice, 50.0);
  EXPECT_EQ(script.component.GetRecordByIndex(7)->ClosePrice, 7.0);
}

TEST(LivingRecords, ADateThatNoBarHasChangesNothing) {
  LivingScript script("SET A = CLOSE\r\nA");
  script.ramp(7);
  EXPECT_EQ(script.component.EditRecord_New(kFirstDay - 1, 50, 50, 50, 50, 50), false);
  EXPECT_FALSE(script.component.EditJDate_New(kFirstDay - 1, kFirstDay));
  script.run();
  EXPECT_EQ(script.rows("A"), (Rows{1, 2, 3, 4, 5, 6, 7}));
}

TEST(LivingRecords, ARefusedChangeHasReplacedTheBar) {
  LivingScript script("CLOSE");
  script.ramp(1);
  script.component.AddOrRemoveBasicVectorSeries("X", 5);
  EXPECT_EQ(script.component.EditRecord_New(kFirstDay, 50, 50, 50, 50, 50), std::nullopt);
  EXPECT_EQ(script.component.GetRecordByIndex(1)->ClosePrice, 50.0);
  EXPECT_EQ(script.error, "");
}

TEST(LivingRecords, ANewDateIsSeenByTheTextAndNotByTheSeries) {
  LivingScript script("SET A = DATE\r\nA");
  script.ramp(7);
  EXPECT_TRUE(script.component.EditJDate_New(kFirstDay + 6, kFirstDay + 9));
  EXPECT_EQ(script.component.GetRecordByIndex(7)->JDate, kFirstDay + 9);
  EXPECT_EQ(script.component.GetRecordByJDate(kFirstDay + 6), nullptr);
  const std::vector<std::string> lines = linesOf(script.run());
  EXPECT_TRUE(lines.back().starts_with(dateText(9))) << lines.back();
  EXPECT_EQ(script.rows("A").back(), kFirstDay + 6);
}

TEST(LivingRecords, EditJDateIsOfTheWholeHistoryWay) {
  LivingScript script("CLOSE");
  script.ramp(1);
  EXPECT_FALSE(script.component.EditJDate(kFirstDay, kFirstDay + 1));
  EXPECT_EQ(script.component.GetRecordByIndex(1)->JDate, kFirstDay);
}

TEST(LivingRecords, ClearingAsksForSettingUpAnew) {
  LivingScript script("SET A = CLOSE\r\nA");
  script.component.AppendRecord(kFirstDay, 1, 1, 1, 1, 1);
  script.ramp(8).run();
  script.component.ClearRecords();
  EXPECT_EQ(script.component.RecordCount(), 0);
  EXPECT_EQ(script.component.GetRecordByIndex(1), nullptr);
  EXPECT_FALSE(script.knows("A"));
  script.component.InitialiseTransientStore(50);
  EXPECT_TRUE(script.component.ProcessScripData("SET A = CLOSE + 1\r\nA"));
  script.ramp(7).run();
  EXPECT_EQ(script.rows("A"), (Rows{2, 3, 4, 5, 6, 7, 8}));
}

TEST(LivingRecords, AnyOrderOfCallsHasAResult) {
  CScriptOutput component;
  std::string error;
  component.ScriptError = [&](const std::string& text) { error = text; };
  component.UpdateBasicVectorData("X", 1, 11);
  component.AddOrRemoveBasicVectorSeries("X", -987654321);
  component.ClearRecords();
  component.AppendRecord_New(1, 2, 3, 4, 5, 6);
  EXPECT_EQ(component.RecordCount(), 1);
  EXPECT_EQ(component.EditRecord_New(1, 2, 3, 4, 5, 6), true);
  EXPECT_EQ(component.GetScriptOutput_PTR("CLOSE", 0, ""), -1);
  component.GetScriptOutput_New("CLOSE", 0, "");
  component.GetCustomIndFromCondition_NEW("CLOSE");
  EXPECT_TRUE(component.ProcessScripData("CLOSE"));
  component.GetScriptOutput_New("CLOSE", 0, "");
  component.InitialiseTransientStore(10);
  component.InitialiseTransientStore(10);
  EXPECT_EQ(component.RecordCount(), 1);
}

// ---- preparing ----

TEST(ProcessScripData, RefusesWithoutAnEvent) {
  LivingScript script("CLOSE");
  EXPECT_FALSE(script.component.ProcessScripData(""));
  EXPECT_FALSE(script.component.ProcessScripData("# nothing"));
  EXPECT_FALSE(script.component.ProcessScripData(std::string(64'000, 'A')));
  EXPECT_TRUE(script.component.ProcessScripData("FOO"));
  EXPECT_EQ(script.error, "");
}

TEST(GetVariableValuesLog, WritesNothing) {
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / "brindlewort_variable_values.log";
  std::filesystem::remove(path);
  LivingScript script("CLOSE");
  script.ramp(8).run();
  script.component.GetVariableValuesLog(path.string());
  EXPECT_FALSE(std::filesystem::exists(path));
}

// ---- text ----

TEST(ScriptOutputNew, LinesBeginWithTheFirstBar) {
  LivingScript script("SET A = SMA(CLOSE, 2)\r\nA");
  script.ramp(7);
  const std::vector<std::string> lines = linesOf(script.run());
  ASSERT_EQ(lines.size(), 8u);
  EXPECT_EQ(lines[0], "Date,\"SMA(CLOSE, 2)\",\"A\"");
  EXPECT_EQ(lines[1], dateText(0) + ",-987654321,-987654321");
  EXPECT_EQ(lines[2], dateText(1) + ",1.5000,1.5000");
  EXPECT_EQ(lines[7], dateText(6) + ",6.5000,6.5000");
}

TEST(ScriptOutputNew, TheMapCountIsTheNumberOfTheFirstBar) {
  LivingScript script("SET A = CLOSE\r\nA");
  script.ramp(7);
  EXPECT_EQ(linesOf(script.run(0)).size(), 8u);
  EXPECT_EQ(linesOf(script.run(1)).size(), 8u);
  const std::vector<std::string> second = linesOf(script.run(2));
  ASSERT_EQ(second.size(), 7u);
  EXPECT_EQ(second[1], dateText(1) + ",2.0000");
  const std::vector<std::string> fifth = linesOf(script.run(5));
  ASSERT_EQ(fifth.size(), 4u);
  EXPECT_EQ(fifth[1], dateText(4) + ",5.0000");
  EXPECT_EQ(linesOf(script.run(8)), (std::vector<std::string>{"Date,\"A\""}));
  EXPECT_EQ(linesOf(script.run(std::numeric_limits<std::int32_t>::max())).size(), 1u);
  EXPECT_EQ(linesOf(script.run(-2)).size(), 8u);
}

TEST(ScriptOutputNew, WithoutStatementsAndFunctionsThereAreDatesAlone) {
  LivingScript script("CLOSE > 3");
  script.ramp(7);
  const std::vector<std::string> lines = linesOf(script.run());
  ASSERT_EQ(lines.size(), 8u);
  EXPECT_EQ(lines[0], "Date");
  EXPECT_EQ(lines[3], dateText(2));
}

TEST(ScriptOutputNew, EveryRunListsTheSameColumns) {
  LivingScript script("SET A = SMA(CLOSE, 2)\r\nSET B = A + SMA(CLOSE, 2)\r\nSET A = B\r\nEMA(CLOSE, 3) > 1");
  script.ramp(7);
  const std::string heading = "Date,\"SMA(CLOSE, 2)\",\"A\",\"B\",\"EMA(CLOSE, 3)\"";
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(linesOf(script.run())[0], heading) << i;
    script.ramp(1);
  }
}

TEST(ScriptOutputNew, ASetOfAPriceIsNoColumn) {
  LivingScript script("SET CLOSE = OPEN\r\nSET A = CLOSE\r\nA");
  script.ramp(7);
  EXPECT_EQ(linesOf(script.run())[0], "Date,\"A\"");
}

TEST(ScriptOutputNew, OutputSetsGiveTheOrder) {
  LivingScript script("SET B = CLOSE\r\nSET A = CLOSE + 1\r\nSMA(CLOSE, 2)");
  script.ramp(7);
  EXPECT_EQ(linesOf(script.run(7, "A,B")),
            (std::vector<std::string>{"Date,\"A\",\"B\"", dateText(6) + ",8.0000,7.0000"}));
  EXPECT_EQ(linesOf(script.run(7, " b , \"a\""))[0], "Date,\"B\",\"A\"");
  EXPECT_EQ(linesOf(script.run(7, "SMA(CLOSE,2)"))[0], "Date,\"SMA(CLOSE, 2)\"");
  EXPECT_EQ(linesOf(script.run(7, "A,NONE,B"))[0], "Date,\"A\",\"B\"");
  EXPECT_EQ(linesOf(script.run(7, "NONE")), (std::vector<std::string>{"Date", dateText(6)}));
  EXPECT_EQ(linesOf(script.run(7, ""))[0], "Date,\"B\",\"A\",\"SMA(CLOSE, 2)\"");
}

TEST(ScriptOutputNew, ValuesAreCutAfterFourDecimals) {
  LivingScript script(
      "SET A = CLOSE / 3\r\nSET B = CLOSE / 0\r\nSET C = 0 - CLOSE\r\nSET D = CLOSE - CLOSE\r\n1");
  script.ramp(7);
  EXPECT_EQ(linesOf(script.run(7))[1], dateText(6) + ",2.3333,0,-7.0000,0");
  EXPECT_EQ(linesOf(script.run(6))[1], dateText(5) + ",2.0000,-987654321,-6.0000,0");
}

TEST(ScriptOutputNew, InModeReplaceThereAreNoDates) {
  LivingScript script("SET A = CLOSE\r\nSET B = OPEN\r\n1", 250, 102);
  script.ramp(7);
  EXPECT_EQ(linesOf(script.run(6)),
            (std::vector<std::string>{"\"A\",\"B\"", "6.0000,5.0000", "7.0000,6.0000"}));
  LivingScript bare("CLOSE", 250, 102);
  bare.ramp(7);
  EXPECT_EQ(linesOf(bare.run(6)), (std::vector<std::string>{"", "", ""}));
}

TEST(ScriptOutputNew, ASeriesThatEndsBeforeTheBarsRunsIntoTheFieldBefore) {
  for (std::int32_t mode : {101, 102}) {
    // The host's series has rows for the last three bars alone.
    LivingScript script("SET A = X\r\nSET B = CLOSE\r\n1", 250, mode);
    script.ramp(5);
    script.component.AddOrRemoveBasicVectorSeries("X", 10);
    for (double x : {4.5, 5.5, 6.5}) {
      script.ramp(1);
      script.component.UpdateBasicVectorData("X", x, 22);
    }
    const std::vector<std::string> lines = linesOf(script.run(3));
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_EQ(lines[1], mode == 101 ? dateText(2) + ",6.5000,3.0000" : "6.5000,3.0000");
    EXPECT_EQ(lines[2], mode == 101 ? dateText(3) + "-987654321.0000,4.0000" : "-987654321.0000,4.0000");
  }
}

TEST(ScriptOutputNew, AStatementWritesIntoASeriesOfTheHost) {
  LivingScript script("SET X = CLOSE\r\n1");
  script.ramp(5);
  script.component.AddOrRemoveBasicVectorSeries("X", 10);
  script.ramp(3);
  EXPECT_EQ(linesOf(script.run())[0], "Date");                  // it is no column
  EXPECT_EQ(script.rows("X"), (Rows{1, 2, 3, 4, 5, 6, 7, 8}));  // as many rows as the run has
}

TEST(ScriptOutputNew, TooFewBarsGiveNeitherTextNorEvent) {
  LivingScript script("SMA(CLOSE, 10)");
  script.ramp(11);
  EXPECT_EQ(script.run(), std::nullopt);
  EXPECT_EQ(script.error, "");
  EXPECT_EQ(script.run(-1), std::nullopt);
  script.ramp(1);
  EXPECT_NE(script.run(), std::nullopt);
}

TEST(ScriptOutputNew, AnErrorGivesAnEventAndNoText) {
  LivingScript script("SET A = FOO\r\nA");
  script.ramp(8);
  EXPECT_EQ(script.run(), std::nullopt);
  EXPECT_EQ(script.error, "Error: Undefined variable 'FOO'");
  EXPECT_EQ(script.run(-1), std::nullopt);
  EXPECT_EQ(script.error, "Error: Undefined variable 'FOO'");
}

TEST(ScriptOutputNew, MoreEntriesThanReservedGiveAnEvent) {
  LivingScript script("SET A = CLOSE\r\nSET B = CLOSE\r\nSET C = CLOSE\r\n1", 10);
  script.ramp(8);
  EXPECT_EQ(script.run(), std::nullopt);
  EXPECT_EQ(script.error, "Error: Script too complex.");
}

TEST(ScriptOutputNew, AnEmptyScriptOfTheHostGivesAnEmptyText) {
  LivingScript script("SET A = CLOSE\r\nA");
  script.ramp(8);
  EXPECT_EQ(script.component.GetScriptOutput_New("", 0, ""), "");
  EXPECT_EQ(script.component.GetScriptOutput_New("", -1, ""), "");
  EXPECT_EQ(script.component.GetCustomIndFromCondition_NEW(""), "");
}

TEST(ScriptOutputNew, ThePreparedScriptRunsWhateverTheHostGives) {
  LivingScript script("SET A = CLOSE\r\nA");
  script.ramp(8);
  EXPECT_EQ(linesOf(script.component.GetScriptOutput_New("FOO", 8, "")),
            (std::vector<std::string>{"Date,\"A\"", dateText(7) + ",8.0000"}));
}

TEST(ScriptOutputNew, BarsFromBeforeThePreparationAreThere) {
  CScriptOutput component;
  component.InitialiseTransientStore(50);
  for (int i = 0; i < 7; ++i) component.AppendRecord_New(kFirstDay + i, 1, 1, 1, i + 1, 1);
  ASSERT_TRUE(component.ProcessScripData("SET A = CLOSE\r\nA"));
  EXPECT_EQ(linesOf(component.GetScriptOutput_New("A", 7, "")),
            (std::vector<std::string>{"Date,\"A\"", dateText(6) + ",7.0000"}));
}

// ---- event list ----

TEST(EventListNew, GivesTheNumbersOfTheBarsFromTheLookbackOn) {
  LivingScript script("CLOSE > 8");
  script.ramp(12);
  EXPECT_EQ(script.run(-1), "9,10,11,12,");
  script.closes({3, 20});
  EXPECT_EQ(script.run(-1), "9,10,11,12,14,");
}

TEST(EventListNew, BarsBeforeTheLookbackDoNotCount) {
  LivingScript script("CLOSE > 0");
  script.ramp(9);
  EXPECT_EQ(script.run(-1), "7,8,9,");
  // The lookback is that of the text which the host gives.
  EXPECT_EQ(script.component.GetScriptOutput_New("SMA(CLOSE, 6)", -1, ""), "8,9,");
  EXPECT_EQ(script.component.GetScriptOutput_New("SMA(CLOSE, 600)", -1, ""), "");
}

TEST(EventListNew, OnlyExactlyOneCounts) {
  LivingScript script("CLOSE - 7");
  script.ramp(9);
  EXPECT_EQ(script.run(-1), "8,");
}

TEST(EventListNew, AScalarHasNoRows) {
  LivingScript script("1");
  script.ramp(9);
  EXPECT_EQ(script.run(-1), "");
}

TEST(EventListNew, TheModeEndsWithTheCall) {
  LivingScript script("SET A = FOO\r\nA");
  script.ramp(8);
  script.run(-1);
  EXPECT_EQ(script.error, "Error: Undefined variable 'FOO'");
  script.component.SetDataRetrieveMode(102);
  ASSERT_TRUE(script.component.ProcessScripData("SET A = CLOSE\r\nA"));
  EXPECT_EQ(linesOf(script.run(8)), (std::vector<std::string>{"\"A\"", "8.0000"}));
}

// ---- heading ----

TEST(CustomIndFromConditionNew, NamesTheSeriesOfThePreparedScript) {
  LivingScript script("SET A = CLOSE");
  script.ramp(7);
  EXPECT_EQ(script.component.GetCustomIndFromCondition_NEW("X"), "Date,Open,High,Low,Close,Volume,\"A\"\r\n");
  LivingScript bare("CLOSE > 1");
  bare.ramp(7);
  EXPECT_EQ(bare.component.GetCustomIndFromCondition_NEW("X"), "Date,Open,High,Low,Close,Volume\r\n");
  LivingScript function("SMA( CLOSE,2 ) > 1");
  function.ramp(7);
  EXPECT_EQ(function.component.GetCustomIndFromCondition_NEW("X"),
            "Date,Open,High,Low,Close,Volume,\"SMA(CLOSE, 2)\"\r\n");
}

TEST(CustomIndFromConditionNew, ErrorsAndTooFewBars) {
  LivingScript failing("SET A = FOO\r\n1");
  failing.ramp(7);
  EXPECT_EQ(failing.component.GetCustomIndFromCondition_NEW("X"), std::nullopt);
  EXPECT_EQ(failing.error, "Error: Undefined variable 'FOO'");
  LivingScript few("SET A = CLOSE\r\n1");
  few.ramp(6);
  EXPECT_EQ(few.component.GetCustomIndFromCondition_NEW("X"), std::nullopt);
  EXPECT_EQ(few.error, "");
}

// ---- both ways in one component ----

TEST(ScriptOutputNew, TheTwoWaysDoNotDisturbEachOther) {
  LivingScript script("SET A = CLOSE\r\nA");
  for (int i = 0; i < 12; ++i) script.component.AppendRecord(kFirstDay + i, 5, 5, 5, 5, 5);
  script.ramp(8).run();
  EXPECT_EQ(linesOf(script.component.GetScriptOutput("SET A = CLOSE + 1\r\nA", 0, "")).back(),
            dateText(11) + ",6.0000");
  script.ramp(1);
  EXPECT_EQ(linesOf(script.run(9))[1], dateText(8) + ",9.0000");
}

TEST(ScriptOutputNew, SeriesAreFoundByTheNameOfAColumnOrOfTheScript) {
  LivingScript script("SET A = SMA(CLOSE, 2)\r\nA");
  script.ramp(8).run();
  for (const char* name : {"A", "a", "SMA(CLOSE, 2)", "SMA(CLOSE,2)", "sma( close, 2 )"}) {
    EXPECT_TRUE(script.knows(name)) << name;
  }
  EXPECT_FALSE(script.knows("NONE"));
}

}  // namespace
}  // namespace brindlewort
