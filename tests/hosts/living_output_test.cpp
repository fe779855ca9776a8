// The members of IScriptOutput on an engine that stays alive, early-bound.

#include <cstddef>
#include <vector>

#include "bars.hpp"
#include "help.hpp"
#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

constexpr double kNull = -987654321.0;
constexpr const wchar_t* kAverage = L"SET A = SMA(CLOSE, 2)\r\nA";
using Rows = std::vector<double>;

class LivingOutput : public HostTest {
 protected:
  void prepare(const wchar_t* script) {
    EXPECT_EQ(output->InitialiseTransientStore(250), S_OK);
    EXPECT_EQ(boolOf(output, &IScriptOutput::ProcessScripData, script), 1);
  }
  /// Bars that close at 1, 2, 3 and so on.
  void appendRamp(int bars) {
    for (int day = 1; day <= bars; ++day) appendNew(output, day, day);
  }
  std::wstring outputOf(const wchar_t* script, int mapCount = 0, const wchar_t* sets = L"") {
    return textOf(output, &IScriptOutput::GetScriptOutput_New, script, mapCount, sets);
  }
  int handleOf(const wchar_t* script, const wchar_t* sets, HRESULT expected = S_OK) {
    int handle = 77;
    EXPECT_EQ(call(output, &IScriptOutput::GetScriptOutput_PTR, script, 0, sets, &handle), expected);
    return handle;
  }
  void TearDown() override {
    sink.Reset();
    output.Reset();
    HostTest::TearDown();
  }

  ComPtr<IScriptOutput> output = library.make<IScriptOutput>();
  ComPtr<Sink> sink = connect(output);
};

// ---- Bars

TEST_F(LivingOutput, BarsAreReadBackByNumberAndDate) {
  EXPECT_EQ(output->AppendRecord_New(dateOf(1), 1.25, 2.5, 0.5, 2.0, 1'234), S_OK);
  EXPECT_EQ(output->AppendRecord_New(dateOf(2), 3.25, 4.5, 2.5, 4.0, -5), S_OK);
  EXPECT_EQ(valueOf<LONG>(output, &IScriptOutput::get_RecordCount), 2);
  EXPECT_EQ(recordByIndex(output, 1), (Record{dateOf(1), 1.25, 2.5, 0.5, 2.0, 1'234, VARIANT_TRUE}));
  EXPECT_EQ(recordByDate(output, dateOf(2)), (Record{1.5, 3.25, 4.5, 2.5, 4.0, -5, VARIANT_TRUE}));
  EXPECT_EQ(recordByIndex(output, 0), untouched());
  EXPECT_EQ(recordByIndex(output, 3), untouched());
  EXPECT_EQ(recordByDate(output, dateOf(3)), untouched());
}

TEST_F(LivingOutput, AQueryWithAMissingPlaceIsRefusedAndWritesNothing) {
  appendRamp(1);
  for (int missing = 0; missing < 7; ++missing) {
    Record r;
    const auto place = [&](int number, auto& value) { return number == missing ? nullptr : &value; };
    EXPECT_EQ(
        output->GetRecordByIndex(1, place(0, r.date), place(1, r.open), place(2, r.high), place(3, r.low),
                                 place(4, r.close), place(5, r.volume), place(6, r.found)),
        E_POINTER)
        << missing;
    EXPECT_EQ(r, untouched(77)) << missing;
    if (missing == 0) continue;
    EXPECT_EQ(output->GetRecordByJDate(dateOf(1), place(1, r.open), place(2, r.high), place(3, r.low),
                                       place(4, r.close), place(5, r.volume), place(6, r.found)),
              E_POINTER)
        << missing;
    EXPECT_EQ(r, untouched(77)) << missing;
  }
}

TEST_F(LivingOutput, DatesCountFromTheSecondBar) {
  appendRamp(3);
  EXPECT_EQ(valueOf<double>(output, &IScriptOutput::GetJDate, 1L), dateOf(2));
  EXPECT_EQ(valueOf<double>(output, &IScriptOutput::GetJDate, 2L), dateOf(3));
  for (LONG index : {0L, 3L, -1L})
    EXPECT_EQ(valueOf<double>(output, &IScriptOutput::GetJDate, index), 0) << index;
}

TEST_F(LivingOutput, TheNumberOfADateIsThatOfTheLastBarBefore) {
  appendRamp(3);
  EXPECT_EQ(valueOf<LONG>(output, &IScriptOutput::GetRecordNumberByJDate, dateOf(3)), 1);
  EXPECT_EQ(valueOf<LONG>(output, &IScriptOutput::GetRecordNumberByJDate, dateOf(9)), 2);
  LONG number = 77;  // no bar is earlier: it stays
  EXPECT_EQ(output->GetRecordNumberByJDate(dateOf(1), &number), S_OK);
  EXPECT_EQ(number, 77);
}

TEST_F(LivingOutput, EditsAreMinusOneWhereTheyFound) {
  prepare(kAverage);
  appendRamp(3);
  EXPECT_EQ(boolOf(output, &IScriptOutput::EditRecord_New, dateOf(2), 5., 6., 4., 5.5, 7L), -1);
  EXPECT_EQ(recordByIndex(output, 2), (Record{dateOf(2), 5, 6, 4, 5.5, 7, VARIANT_TRUE}));
  EXPECT_EQ(boolOf(output, &IScriptOutput::EditRecord_New, dateOf(9), 5., 6., 4., 5.5, 7L), 0);
  EXPECT_EQ(boolOf(output, &IScriptOutput::EditJDate_New, dateOf(2), dateOf(8)), -1);
  EXPECT_EQ(boolOf(output, &IScriptOutput::EditJDate_New, dateOf(2), dateOf(8)), 0);
  EXPECT_EQ(boolOf(output, &IScriptOutput::EditJDate, dateOf(8), dateOf(9)), 0);  // of whole histories
  EXPECT_EQ(recordByIndex(output, 2), (Record{dateOf(8), 5, 6, 4, 5.5, 7, VARIANT_TRUE}));
}

TEST_F(LivingOutput, ABarThatTheEngineDoesNotTakeIsRefusedAndReplacedAllTheSame) {
  prepare(kAverage);
  appendRamp(2);
  // A series without rows has none to change.
  EXPECT_EQ(call(output, &IScriptOutput::AddOrRemoveBasicVectorSeries, L"X", 10L), S_OK);
  EXPECT_EQ(refusedBoolOf(output, &IScriptOutput::EditRecord_New, dateOf(1), 9., 9., 9., 9., 9L), 0);
  EXPECT_EQ(recordByIndex(output, 1), (Record{dateOf(1), 9, 9, 9, 9, 9, VARIANT_TRUE}));
}

TEST_F(LivingOutput, ClearingAsksForSettingUpAnew) {
  prepare(kAverage);
  appendRamp(8);
  EXPECT_EQ(output->ClearRecords(), S_OK);
  EXPECT_EQ(valueOf<LONG>(output, &IScriptOutput::get_RecordCount), 0);
  prepare(L"SET A = CLOSE\r\nA");
  appendRamp(7);
  EXPECT_EQ(outputOf(L"X", 7), L"Date,\"A\"\r\n" + dayText(7) + L",7.0000\r\n");
}

// ---- Texts

TEST_F(LivingOutput, ARefusedScriptIsNoFailureOfTheCall) {
  prepare(kAverage);
  EXPECT_EQ(boolOf(output, &IScriptOutput::ProcessScripData, L""), 0);
  EXPECT_EQ(boolOf(output, &IScriptOutput::ProcessScripData, L"# a comment alone"), 0);
  EXPECT_EQ(boolOf(output, &IScriptOutput::ProcessScripData, L"FOO"), 1);  // nothing is evaluated
  EXPECT_EQ(sink->take(), Lines{});
}

TEST_F(LivingOutput, TheTableHasALineForEachBar) {
  prepare(kAverage);
  appendRamp(7);
  const std::wstring head = L"Date,\"SMA(CLOSE, 2)\",\"A\"\r\n";
  EXPECT_EQ(outputOf(kAverage, 6),
            head + dayText(6) + L",5.5000,5.5000\r\n" + dayText(7) + L",6.5000,6.5000\r\n");
  EXPECT_EQ(outputOf(kAverage, 1).substr(0, head.size() + dayText(1).size() + 22),
            head + dayText(1) + L",-987654321,-987654321");
  appendNew(output, 8, 9);
  EXPECT_EQ(outputOf(kAverage, 8, L"A"), L"Date,\"A\"\r\n" + dayText(8) + L",8.0000\r\n");
  EXPECT_EQ(outputOf(kAverage, 9), head);
}

TEST_F(LivingOutput, AMapCountOfMinusOneListsTheEvents) {
  prepare(L"CLOSE > 8");
  appendRamp(12);
  EXPECT_EQ(outputOf(L"CLOSE > 8", -1), L"9,10,11,12,");
}

TEST_F(LivingOutput, InModeReplaceThereAreNoDates) {
  EXPECT_EQ(output->InitialiseTransientStore(250), S_OK);
  EXPECT_EQ(output->SetDataRetrieveMode(102), S_OK);
  EXPECT_EQ(boolOf(output, &IScriptOutput::ProcessScripData, L"SET A = CLOSE\r\nSET B = OPEN\r\n1"), 1);
  appendRamp(7);
  EXPECT_EQ(outputOf(L"X", 6), L"\"A\",\"B\"\r\n6.0000,6.0000\r\n7.0000,7.0000\r\n");
}

TEST_F(LivingOutput, ASeriesOfTheHostStandsBesideThePrices) {
  prepare(L"SET A = X\r\nA");
  EXPECT_EQ(call(output, &IScriptOutput::AddOrRemoveBasicVectorSeries, L"X", 10L), S_OK);
  const unsigned char change = 22, add = 11;
  for (int day = 1; day <= 7; ++day) {
    appendNew(output, day, day);
    EXPECT_EQ(call(output, &IScriptOutput::UpdateBasicVectorData, L"X", 2.0 * day, change), S_OK);
  }
  EXPECT_EQ(outputOf(L"X", 6),
            L"Date,\"A\"\r\n" + dayText(6) + L",12.0000\r\n" + dayText(7) + L",14.0000\r\n");
  EXPECT_EQ(call(output, &IScriptOutput::UpdateBasicVectorData, L"NONE", 1.0, add), S_OK);
  EXPECT_EQ(call(output, &IScriptOutput::AddOrRemoveBasicVectorSeries, L"X", -987654321L), S_OK);
  EXPECT_EQ(outputOf(L"X", 7), L"(null)");
  EXPECT_EQ(sink->take(), Lines{L"1: 'Error: Undefined variable 'X''"});
}

TEST_F(LivingOutput, ErrorsAreEventsAndTooFewBarsNothing) {
  prepare(L"SET A = FOO\r\nA");
  appendRamp(6);
  EXPECT_EQ(outputOf(L"X"), L"(null)");
  EXPECT_EQ(sink->take(), Lines{});
  appendNew(output, 7, 7);
  EXPECT_EQ(outputOf(L"X"), L"(null)");
  EXPECT_EQ(sink->take(), Lines{L"1: 'Error: Undefined variable 'FOO''"});
  EXPECT_EQ(outputOf(L""), L"");
  EXPECT_EQ(sink->take(), Lines{});
}

TEST_F(LivingOutput, TheHeadingNamesTheSeries) {
  prepare(L"SET A = CLOSE");
  appendRamp(7);
  EXPECT_EQ(textOf(output, &IScriptOutput::GetCustomIndFromCondition_NEW, L"X"),
            L"Date,Open,High,Low,Close,Volume,\"A\"\r\n");
}

TEST_F(LivingOutput, TheHelpIsThatOfTheLastRun) {
  prepare(L"SMA(CLOSE, 0) > 1");
  appendRamp(7);
  EXPECT_EQ(textOf(output, &IScriptOutput::get_ScriptHelp), L"");
  outputOf(L"X");
  EXPECT_EQ(textOf(output, &IScriptOutput::get_ScriptHelp), manualEntry(130));
}

TEST_F(LivingOutput, TheLogOfVariablesIsAcceptedAndNotWritten) {
  const std::wstring path = besideProgram(L"variables.log");
  DeleteFileW(path.c_str());
  EXPECT_EQ(call(output, &IScriptOutput::GetVariableValuesLog, path), S_OK);
  EXPECT_EQ(GetFileAttributesW(path.c_str()), INVALID_FILE_ATTRIBUTES);
}

// ---- Series by pointer

/// What a handle leads to.
struct SeriesView {
  const double* values;
  std::size_t count;
};
struct ListView {
  std::size_t count;
  const SeriesView* items;
};

const ListView& listOf(int handle) {
  return *reinterpret_cast<const ListView*>(static_cast<std::intptr_t>(handle));
}

std::vector<Rows> rowsOf(int handle) {
  EXPECT_GT(handle, 0);
  if (handle <= 0) return {};
  std::vector<Rows> all;
  for (std::size_t i = 0; i < listOf(handle).count; ++i) {
    const SeriesView& series = listOf(handle).items[i];
    all.emplace_back(series.values, series.values + series.count);
  }
  return all;
}

TEST_F(LivingOutput, AHandleLeadsToTheSeries) {
  prepare(kAverage);
  appendRamp(7);
  const Rows average = {kNull, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5};
  EXPECT_EQ(rowsOf(handleOf(kAverage, L"A")), (std::vector<Rows>{average}));
  EXPECT_EQ(rowsOf(handleOf(kAverage, L"")), (std::vector<Rows>{average, average}));
  EXPECT_EQ(rowsOf(handleOf(kAverage, L"NONE")), std::vector<Rows>{});
}

TEST_F(LivingOutput, AHandlesRowsAreThoseOfTheTable) {
  prepare(L"SET A = CLOSE * 2\r\nSET B = SMA(CLOSE, 4)\r\nA > B");
  appendRamp(9);
  const std::vector<Rows> rows = rowsOf(handleOf(L"X", L"A,B"));
  ASSERT_EQ(rows.size(), 2u);
  ASSERT_EQ(rows[0].size(), 9u);
  ASSERT_EQ(rows[1].size(), 9u);
  std::wstring table = L"Date,\"A\",\"B\"\r\n";
  for (int day = 1; day <= 9; ++day) {
    table += dayText(day);
    for (const Rows& series : rows) {
      const double value = series[static_cast<std::size_t>(day) - 1];
      // Every value has at most two binary decimals, so four are exact.
      table += L"," + (value == kNull ? L"-987654321"
                                      : std::to_wstring(value).substr(0, std::to_wstring(value).size() - 2));
    }
    table += L"\r\n";
  }
  EXPECT_EQ(outputOf(L"X", 0, L"A,B"), table);
}

TEST_F(LivingOutput, TheNextCallShowsTheBarsSince) {
  prepare(kAverage);
  appendRamp(7);
  const int handle = handleOf(kAverage, L"A");
  for (int day = 8; day <= 2'000; ++day) appendNew(output, day, day);  // the rows must move to grow
  const Rows old = rowsOf(handle).at(0);
  EXPECT_EQ(Rows(old.begin(), old.begin() + 7), (Rows{kNull, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5}));
  EXPECT_EQ(handleOf(kAverage, L"A"), handle);
  const Rows rows = rowsOf(handle).at(0);
  ASSERT_EQ(rows.size(), 2'000u);
  EXPECT_EQ(rows[1'999], 1'999.5);
}

TEST_F(LivingOutput, TheHandlesOfTwoComponentsAreTwo) {
  prepare(kAverage);
  appendRamp(7);
  const ComPtr<IScriptOutput> other = library.make<IScriptOutput>();
  EXPECT_EQ(other->InitialiseTransientStore(250), S_OK);
  EXPECT_EQ(boolOf(other, &IScriptOutput::ProcessScripData, L"SET A = CLOSE + 1\r\nA"), 1);
  for (int day = 1; day <= 7; ++day) appendNew(other, day, 10 * day);
  const int first = handleOf(kAverage, L"A");
  const int second = valueOf<int>(other, &IScriptOutput::GetScriptOutput_PTR, L"X", 0, L"A");
  EXPECT_NE(first, second);
  EXPECT_EQ(rowsOf(first).at(0).back(), 6.5);
  EXPECT_EQ(rowsOf(second).at(0).back(), 71.0);
}

TEST_F(LivingOutput, WithoutSeriesTheHandleIsMinusOneAndTheCallRefused) {
  constexpr HRESULT kRefused = 1;
  prepare(L"SET A = FOO\r\nA");
  EXPECT_EQ(handleOf(L"X", L"A", kRefused), -1);  // too few bars
  appendRamp(7);
  EXPECT_EQ(handleOf(L"X", L"A", kRefused), -1);
  EXPECT_EQ(handleOf(L"", L"A", kRefused), -1);
  EXPECT_EQ(sink->take(), Lines{});  // no event tells of it
}

TEST_F(LivingOutput, AMissingResultIsRefused) {
  appendRamp(1);
  const Text text(L"CLOSE");
  EXPECT_EQ(output->EditRecord(1, 2, 3, 4, 5, 6, nullptr), E_POINTER);
  EXPECT_EQ(output->EditRecord_New(dateOf(1), 2, 3, 4, 5, 6, nullptr), E_POINTER);
  EXPECT_EQ(output->EditJDate(1, 2, nullptr), E_POINTER);
  EXPECT_EQ(output->EditJDate_New(dateOf(1), 2, nullptr), E_POINTER);
  EXPECT_EQ(recordByIndex(output, 1), (Record{dateOf(1), 1, 1, 1, 1, 100, VARIANT_TRUE}));
  EXPECT_EQ(output->ProcessScripData(text, nullptr), E_POINTER);
  EXPECT_EQ(output->GetScriptOutput(text, 0, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(output->GetScriptOutput_New(text, 0, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(output->GetScriptOutput_PTR(text, 0, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(output->GetCustomIndFromCondition(text, nullptr), E_POINTER);
  EXPECT_EQ(output->GetCustomIndFromCondition_NEW(text, nullptr), E_POINTER);
  EXPECT_EQ(output->get_RecordCount(nullptr), E_POINTER);
  EXPECT_EQ(output->get_ScriptHelp(nullptr), E_POINTER);
  EXPECT_EQ(output->GetJDate(1, nullptr), E_POINTER);
  EXPECT_EQ(output->GetRecordNumberByJDate(1, nullptr), E_POINTER);
  EXPECT_EQ(output->ToJulianDate(1980, 1, 1, 0, 0, 0, 0, nullptr), E_POINTER);
  EXPECT_EQ(output->FromJulianDate(2444239.5, nullptr), E_POINTER);
}

}  // namespace
}  // namespace brindlewort::hosts
