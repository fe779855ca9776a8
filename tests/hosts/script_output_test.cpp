// The members of IScriptOutput over whole histories, early-bound.

#include "bars.hpp"
#include "help.hpp"
#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

class ScriptOutputMembers : public HostTest {
 protected:
  /// Bars that close at 1, 2, 3 and so on.
  void appendRamp(int bars) {
    for (int day = 1; day <= bars; ++day) append(output, day, day);
  }
  std::wstring outputOf(const wchar_t* script, int mapCount = 0, const wchar_t* sets = L"") {
    return textOf(output, &IScriptOutput::GetScriptOutput, script, mapCount, sets);
  }
  void TearDown() override {
    sink.Reset();
    output.Reset();
    HostTest::TearDown();
  }

  ComPtr<IScriptOutput> output = library.make<IScriptOutput>();
  ComPtr<Sink> sink = connect(output);
};

TEST_F(ScriptOutputMembers, TheTableHasALineForEachBar) {
  appendRamp(5);  // with two of the component's own the 7 that the script asks for
  const std::wstring expected = L"Date,\"A\"\r\n" + dayText(1) + L",1.5000\r\n" + dayText(2) +
                                L",2.5000\r\n" + dayText(3) + L",3.5000\r\n" + dayText(4) + L",4.5000\r\n" +
                                dayText(5) + L",5.5000\r\n";
  EXPECT_EQ(outputOf(L"set a = close + 0.5\r\na"), expected);
  EXPECT_EQ(outputOf(L"SET A = CLOSE + 0.5\r\nA"), expected);  // a second call
  append(output, 6, 10);
  EXPECT_EQ(outputOf(L"SET A = CLOSE + 0.5\r\nA"), expected + dayText(6) + L",10.5000\r\n");
  EXPECT_EQ(sink->take(), Lines{});
}

TEST_F(ScriptOutputMembers, TheMapCountIsTheNumberOfTheFirstBar) {
  appendRamp(7);
  EXPECT_EQ(outputOf(L"SET A = CLOSE\r\nA", 6),
            L"Date,\"A\"\r\n" + dayText(6) + L",6.0000\r\n" + dayText(7) + L",7.0000\r\n");
}

TEST_F(ScriptOutputMembers, AMapCountOfMinusOneListsTheEvents) {
  appendRamp(9);
  // Seven rows are looked back, and the first bar has none: from the eighth bar on.
  EXPECT_EQ(outputOf(L"CLOSE > 0", -1), L"8,9,");
  EXPECT_EQ(outputOf(L"CLOSE > 8", -1), L"9,");
}

TEST_F(ScriptOutputMembers, OutputSetsChooseAndOrderTheColumns) {
  appendRamp(7);
  EXPECT_EQ(outputOf(L"SET B = CLOSE\r\nSET A = CLOSE + 1\r\nSET C = 1\r\nA", 7, L"A,B"),
            L"Date,\"A\",\"B\"\r\n" + dayText(7) + L",8.0000,7.0000\r\n");
}

TEST_F(ScriptOutputMembers, ErrorsAreEventsAndTooFewBarsNothing) {
  appendRamp(7);
  EXPECT_EQ(outputOf(L"CLOSE > FOO"), L"(null)");
  EXPECT_EQ(sink->take(), Lines{L"1: 'Error: Undefined variable 'FOO''"});
  EXPECT_EQ(outputOf(L"SMA(CLOSE, 100) > 1"), L"(null)");
  EXPECT_EQ(sink->take(), Lines{});
  EXPECT_EQ(outputOf(L""), L"");
  EXPECT_EQ(sink->take(), Lines{});
}

TEST_F(ScriptOutputMembers, TheHeadingNamesTheSeries) {
  appendRamp(7);
  EXPECT_EQ(textOf(output, &IScriptOutput::GetCustomIndFromCondition, L"SET A = CLOSE"),
            L"Date,Open,High,Low,Close,Volume,\"A\"\r\n");
  EXPECT_EQ(textOf(output, &IScriptOutput::GetCustomIndFromCondition, L"CLOSE > 1"),
            L"Date,Open,High,Low,Close,Volume\r\n");
  EXPECT_EQ(textOf(output, &IScriptOutput::GetCustomIndFromCondition, L"FOO > 1"), L"(null)");
  EXPECT_EQ(sink->take(), Lines{L"1: 'Error: Undefined variable 'FOO''"});
}

TEST_F(ScriptOutputMembers, BarsOfWholeHistoriesAreEditedButNotQueried) {
  appendRamp(5);
  EXPECT_EQ(valueOf<LONG>(output, &IScriptOutput::get_RecordCount), 0);
  EXPECT_EQ(recordByIndex(output, 1), untouched());
  EXPECT_EQ(recordByDate(output, dateOf(1)), untouched());
  EXPECT_EQ(boolOf(output, &IScriptOutput::EditRecord, dateOf(5), 9., 9., 9., 9., 9L), -1);
  EXPECT_EQ(boolOf(output, &IScriptOutput::EditRecord, dateOf(6), 9., 9., 9., 9., 9L), 0);
  EXPECT_EQ(boolOf(output, &IScriptOutput::EditJDate, dateOf(5), dateOf(8)), -1);
  EXPECT_EQ(boolOf(output, &IScriptOutput::EditJDate, dateOf(5), dateOf(8)), 0);
  const std::wstring text = outputOf(L"SET A = CLOSE\r\nA");
  EXPECT_EQ(text.substr(text.rfind(L'\n', text.size() - 2) + 1), dayText(8) + L",9.0000\r\n");
  EXPECT_EQ(output->ClearRecords(), S_OK);
  EXPECT_EQ(outputOf(L"SET A = CLOSE\r\nA"), L"(null)");
}

TEST_F(ScriptOutputMembers, TheHelpIsThatOfTheLastRun) {
  EXPECT_EQ(textOf(output, &IScriptOutput::get_ScriptHelp), L"");
  appendRamp(7);
  outputOf(L"RSI(CLOSE, 0) > 1");
  EXPECT_EQ(textOf(output, &IScriptOutput::get_ScriptHelp), manualEntry(165));
  outputOf(L"CLOSE > 1");
  EXPECT_EQ(textOf(output, &IScriptOutput::get_ScriptHelp), L"");
}

TEST_F(ScriptOutputMembers, ToJulianDateIgnoresMilliseconds) {
  EXPECT_EQ(valueOf<double>(output, &IScriptOutput::ToJulianDate, 1980, 1, 1, 6, 0, 0, 999),
            newYear1980(0.25));
  EXPECT_EQ(valueOf<double>(output, &IScriptOutput::ToJulianDate, 1980, 1, 1, 1, 2, 3, 900),
            newYear1980((1 + (2 + 3 / 60.0) / 60.0) / 24.0));
}

TEST_F(ScriptOutputMembers, FromJulianDateIsInTheUsersFormat) {
  EXPECT_EQ(textOf(output, &IScriptOutput::FromJulianDate, 2451545.25), localeText(2000, 1, 1, 18));
  EXPECT_EQ(textOf(output, &IScriptOutput::FromJulianDate, 0.0), L"No Date Time");
}

TEST_F(ScriptOutputMembers, NullTextsReadAsEmptyOnes) {
  appendRamp(5);
  const Text script(L"SET A = CLOSE\r\nA");
  Text text, empty;
  EXPECT_EQ(output->GetScriptOutput(script, 0, nullptr, text.place()), S_OK);
  EXPECT_EQ(text.str(), outputOf(L"SET A = CLOSE\r\nA"));
  EXPECT_EQ(output->GetScriptOutput(nullptr, 0, nullptr, empty.place()), S_OK);
  EXPECT_EQ(empty.str(), L"");
}

}  // namespace
}  // namespace brindlewort::hosts
