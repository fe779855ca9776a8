// Every member of IAlert, early-bound.

#include "bars.hpp"
#include "help.hpp"
#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

constexpr const wchar_t* kRising = L"CLOSE > REF(CLOSE, 1)";
constexpr const wchar_t* kAbove10 = L"CLOSE > 10";

class AlertMembers : public HostTest {
 protected:
  void appendOpt(int day, double price, HRESULT expected = S_OK) {
    EXPECT_EQ(alert->AppendRecord_Opt(dateOf(day), price, price, price, price, 100, lastTradeOf(day)),
              expected);
  }
  /// The incremental way with one script.
  void startLiving(const wchar_t* script) {
    EXPECT_EQ(alert->InitialiseTransientStore(250), S_OK);
    EXPECT_EQ(boolOf(alert, &IAlert::ProcessScripData, script), 1);
    EXPECT_EQ(call(alert, &IAlert::put_AlertScript, script), S_OK);
  }
  void TearDown() override {
    sink.Reset();
    alert.Reset();
    HostTest::TearDown();
  }

  ComPtr<IAlert> alert = library.make<IAlert>();
  ComPtr<Sink> sink = connect(alert);
};

std::wstring firedAt(int day, const wchar_t* price) {
  return L"1: 'name' 'SYM' R8 " + std::to_wstring(2451544 + day) + L" R8 " + price;
}

// ---- Bars

TEST_F(AlertMembers, BarsAreReadBackByNumberAndDate) {
  EXPECT_EQ(alert->AppendRecord(dateOf(1), 1.25, 2.5, 0.5, 2.0, 1'234, lastTradeOf(1)), S_OK);
  EXPECT_EQ(alert->AppendRecord(dateOf(2), 3.25, 4.5, 2.5, 4.0, -2'147'483'647, lastTradeOf(2)), S_OK);
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 2);
  EXPECT_EQ(recordByIndex(alert, 1), (Record{dateOf(1), 1.25, 2.5, 0.5, 2.0, 1'234, VARIANT_TRUE}));
  EXPECT_EQ(recordByIndex(alert, 2), (Record{dateOf(2), 3.25, 4.5, 2.5, 4.0, -2'147'483'647, VARIANT_TRUE}));
  EXPECT_EQ(recordByDate(alert, dateOf(2)), (Record{1.5, 3.25, 4.5, 2.5, 4.0, -2'147'483'647, VARIANT_TRUE}));
}

TEST_F(AlertMembers, AQueryThatFindsNothingWritesItsResultAlone) {
  append(alert, 1, 5);
  for (LONG index : {0L, 2L, -1L, 2'147'483'647L, -2'147'483'647L - 1}) {
    EXPECT_EQ(recordByIndex(alert, index), untouched()) << index;
  }
  EXPECT_EQ(recordByDate(alert, dateOf(1) + 0.25), untouched());
}

TEST_F(AlertMembers, NullPlacesOfAQueryAreSkipped) {
  EXPECT_EQ(alert->AppendRecord(dateOf(1), 1, 2, 3, 4, 5, 6), S_OK);
  VARIANT_BOOL found = 77;
  EXPECT_EQ(alert->GetRecordByIndex(1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &found), S_OK);
  EXPECT_EQ(found, VARIANT_TRUE);
  double high = 0, close = 0;
  EXPECT_EQ(alert->GetRecordByIndex(1, nullptr, nullptr, &high, nullptr, &close, nullptr, &found), S_OK);
  EXPECT_EQ(high, 2);
  EXPECT_EQ(close, 4);
  LONG volume = 0;
  EXPECT_EQ(alert->GetRecordByJDate(dateOf(1), nullptr, nullptr, nullptr, nullptr, &volume, &found), S_OK);
  EXPECT_EQ(volume, 5);
  found = 77;
  EXPECT_EQ(alert->GetRecordByJDate(7, nullptr, nullptr, nullptr, nullptr, nullptr, &found), S_OK);
  EXPECT_EQ(found, VARIANT_FALSE);
}

TEST_F(AlertMembers, EditRecordIsMinusOneWhereItFound) {
  appendAll(alert, {1, 2, 3});
  EXPECT_EQ(alert->AppendRecord(dateOf(2), 9, 9, 9, 9, 9, 9), S_OK);  // the date once more
  EXPECT_EQ(boolOf(alert, &IAlert::EditRecord, dateOf(2), 5., 6., 4., 5.5, 7L, 0.), -1);
  EXPECT_EQ(recordByIndex(alert, 2), (Record{dateOf(2), 5, 6, 4, 5.5, 7, VARIANT_TRUE}));
  EXPECT_EQ(recordByIndex(alert, 4), (Record{dateOf(2), 9, 9, 9, 9, 9, VARIANT_TRUE}));
  EXPECT_EQ(boolOf(alert, &IAlert::EditRecord, dateOf(9), 5., 6., 4., 5.5, 7L, 0.), 0);
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 4);
}

TEST_F(AlertMembers, EditJDateIsMinusOneWhereItFound) {
  appendAll(alert, {1, 2});
  EXPECT_EQ(boolOf(alert, &IAlert::EditJDate, dateOf(1), dateOf(8)), -1);
  EXPECT_EQ(boolOf(alert, &IAlert::EditJDate, dateOf(1), dateOf(9)), 0);
  EXPECT_EQ(valueOf<double>(alert, &IAlert::GetJDate, 1L), dateOf(8));
  EXPECT_EQ(recordByIndex(alert, 1), (Record{dateOf(8), 1, 1, 1, 1, 100, VARIANT_TRUE}));
}

TEST_F(AlertMembers, GetJDateCountsFromOne) {
  appendAll(alert, {1, 2});
  EXPECT_EQ(valueOf<double>(alert, &IAlert::GetJDate, 1L), dateOf(1));
  EXPECT_EQ(valueOf<double>(alert, &IAlert::GetJDate, 2L), dateOf(2));
  for (LONG index : {0L, 3L, -1L}) EXPECT_EQ(valueOf<double>(alert, &IAlert::GetJDate, index), 0.0) << index;
}

TEST_F(AlertMembers, ClearRecordsEmptiesBothStores) {
  startLiving(kAbove10);
  for (int day = 1; day <= 7; ++day) appendOpt(day, 20);
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 7);
  EXPECT_EQ(alert->ClearRecords(), S_OK);
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 0);
  EXPECT_EQ(boolOf(alert, &IAlert::EditRecord_Opt, dateOf(1), 1., 1., 1., 1., 1L, 1.), 0);
  append(alert, 1, 5);
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 1);
}

// ---- Texts

TEST_F(AlertMembers, TextsAreKept) {
  EXPECT_EQ(textOf(alert, &IAlert::get_Symbol), L"");
  EXPECT_EQ(textOf(alert, &IAlert::get_AlertName), L"");
  EXPECT_EQ(textOf(alert, &IAlert::get_AlertScript), L"");
  EXPECT_EQ(textOf(alert, &IAlert::get_ScriptHelp), L"");
  EXPECT_EQ(call(alert, &IAlert::put_Symbol, L"Sym 1"), S_OK);
  EXPECT_EQ(call(alert, &IAlert::put_AlertName, L"My name"), S_OK);
  EXPECT_EQ(call(alert, &IAlert::put_AlertScript, L"close > 1"), S_OK);
  EXPECT_EQ(textOf(alert, &IAlert::get_Symbol), L"Sym 1");
  EXPECT_EQ(textOf(alert, &IAlert::get_AlertName), L"My name");
  EXPECT_EQ(textOf(alert, &IAlert::get_AlertScript), L"close > 1");
  EXPECT_EQ(call(alert, &IAlert::put_Symbol, L""), S_OK);
  EXPECT_EQ(textOf(alert, &IAlert::get_Symbol), L"");
}

// ---- The plain way

TEST_F(AlertMembers, EachBarIsEvaluatedOnceThereAreEnough) {
  // The script asks for 7 bars, of which two are the component's own.
  call(alert, &IAlert::put_Symbol, L"SYM");
  call(alert, &IAlert::put_AlertName, L"name");
  EXPECT_EQ(call(alert, &IAlert::put_AlertScript, kAbove10), S_OK);
  appendAll(alert, {20, 20, 20, 20});
  EXPECT_EQ(sink->take(), Lines{});
  EXPECT_EQ(textOf(alert, &IAlert::get_ScriptHelp), L"");
  append(alert, 5, 21.5);
  EXPECT_EQ(sink->take(), Lines{firedAt(5, L"21.5")});
  append(alert, 6, 10);
  EXPECT_EQ(sink->take(), Lines{});
  EXPECT_EQ(boolOf(alert, &IAlert::EditRecord, dateOf(6), 1., 1., 1., 12., 1L, 8.25), -1);
  EXPECT_EQ(sink->take(), Lines{L"1: 'name' 'SYM' R8 8.25 R8 12"});
  EXPECT_EQ(boolOf(alert, &IAlert::EditRecord, dateOf(7), 1., 1., 1., 12., 1L, 8.25), 0);
  EXPECT_EQ(sink->take(), Lines{});
  EXPECT_EQ(call(alert, &IAlert::put_AlertScript, L"CLOSE > 11"), S_OK);  // evaluated at once
  EXPECT_EQ(sink->take(), Lines{L"1: 'name' 'SYM' R8 8.25 R8 12"});
}

TEST_F(AlertMembers, AScriptOfFourCharactersIsKeptAndNotRun) {
  appendAll(alert, {1, 1, 1, 1, 1, 1, 1});
  EXPECT_EQ(call(alert, &IAlert::put_AlertScript, L"FOO("), S_OK);
  append(alert, 8, 1);
  EXPECT_EQ(boolOf(alert, &IAlert::Evaluate, L"FOO("), 0);
  EXPECT_EQ(sink->take(), Lines{});
  EXPECT_EQ(textOf(alert, &IAlert::get_ScriptHelp), L"");
  EXPECT_EQ(textOf(alert, &IAlert::get_AlertScript), L"FOO(");
}

TEST_F(AlertMembers, AFailedScriptIsToldAndTheCallSucceeds) {
  call(alert, &IAlert::put_Symbol, L"SYM");
  call(alert, &IAlert::put_AlertName, L"name");
  call(alert, &IAlert::put_AlertScript, L"SMA(CLOSE, 0) > 1");
  appendAll(alert, {1, 1, 1, 1, 1});
  EXPECT_EQ(sink->take(), Lines{L"2: 'Error: 'periods' argument of 'SMA' is invalid.' 'name' 'SYM'"});
  EXPECT_EQ(textOf(alert, &IAlert::get_ScriptHelp), manualEntry(130));
}

TEST_F(AlertMembers, TheHelpIsThatOfTheRunAndStaysUntilTheNext) {
  appendAll(alert, {1, 1, 1, 1, 1, 1, 1});
  EXPECT_EQ(boolOf(alert, &IAlert::Evaluate, kRising), 0);
  const std::wstring help = textOf(alert, &IAlert::get_ScriptHelp);
  EXPECT_EQ(help, manualEntry(118));
  EXPECT_EQ(textOf(alert, &IAlert::get_ScriptHelp), help);
  EXPECT_EQ(call(alert, &IAlert::put_AlertScript, L"1>2"), S_OK);  // too short to be run
  EXPECT_EQ(textOf(alert, &IAlert::get_ScriptHelp), help);
  EXPECT_EQ(call(alert, &IAlert::put_AlertScript, L"CLOSE > 5"), S_OK);  // calls no function
  EXPECT_EQ(textOf(alert, &IAlert::get_ScriptHelp), L"");
}

TEST_F(AlertMembers, EvaluateIsOneWhereTheScriptFires) {
  call(alert, &IAlert::put_Symbol, L"SYM");
  call(alert, &IAlert::put_AlertName, L"name");
  appendAll(alert, {20, 20, 20, 20, 20, 20});
  EXPECT_EQ(boolOf(alert, &IAlert::Evaluate, kAbove10), 0);  // six bars, and none of the component's own
  EXPECT_EQ(sink->take(), Lines{});
  EXPECT_EQ(textOf(alert, &IAlert::get_AlertScript), kAbove10);
  append(alert, 7, 11);  // the script stays in force
  EXPECT_EQ(sink->take(), Lines{firedAt(7, L"11")});
  EXPECT_EQ(boolOf(alert, &IAlert::Evaluate, kAbove10), 1);
  EXPECT_EQ(sink->take(), Lines{firedAt(7, L"11")});
  EXPECT_EQ(boolOf(alert, &IAlert::Evaluate, L"CLOSE > 11"), 0);
  EXPECT_EQ(sink->take(), Lines{});
  EXPECT_EQ(boolOf(alert, &IAlert::Evaluate, L"CLOSE > FOO"), 0);
  EXPECT_EQ(sink->take(), Lines{L"2: 'Error: Undefined variable 'FOO'' 'name' 'SYM'"});
  EXPECT_EQ(textOf(alert, &IAlert::get_AlertScript), L"CLOSE > FOO");
}

TEST_F(AlertMembers, NoQueryEvaluates) {
  call(alert, &IAlert::put_AlertScript, kAbove10);
  appendAll(alert, {20, 20, 20, 20, 20, 20, 20});
  sink->take();
  boolOf(alert, &IAlert::EditJDate, dateOf(7), dateOf(9));
  recordByIndex(alert, 1);
  recordByDate(alert, dateOf(1));
  valueOf<double>(alert, &IAlert::GetJDate, 1L);
  valueOf<LONG>(alert, &IAlert::get_RecordCount);
  alert->ClearRecords();
  EXPECT_EQ(sink->take(), Lines{});
}

// ---- The incremental way

TEST_F(AlertMembers, ProcessScripDataIsOneOrRefused) {
  EXPECT_EQ(alert->InitialiseTransientStore(250), S_OK);
  EXPECT_EQ(boolOf(alert, &IAlert::ProcessScripData, kRising), 1);
  EXPECT_EQ(refusedBoolOf(alert, &IAlert::ProcessScripData, L""), 0);
  EXPECT_EQ(refusedBoolOf(alert, &IAlert::ProcessScripData, L"# a comment alone"), 0);
  EXPECT_EQ(refusedBoolOf(alert, &IAlert::ProcessScripData, std::wstring(64'000, L'A')), 0);
  EXPECT_EQ(boolOf(alert, &IAlert::ProcessScripData, L"FOO"), 1);  // nothing is evaluated
  EXPECT_EQ(sink->take(), Lines{});
}

TEST_F(AlertMembers, BarsOfTheIncrementalWayAreEvaluatedFromTheSeventhOn) {
  call(alert, &IAlert::put_Symbol, L"SYM");
  call(alert, &IAlert::put_AlertName, L"name");
  startLiving(kRising);
  for (int day = 1; day <= 6; ++day) appendOpt(day, 10 + day);
  EXPECT_EQ(sink->take(), Lines{});
  appendOpt(7, 17);
  EXPECT_EQ(sink->take(), Lines{firedAt(7, L"17")});
  appendOpt(8, 17);
  EXPECT_EQ(sink->take(), Lines{});
  EXPECT_EQ(boolOf(alert, &IAlert::EditRecord_Opt, dateOf(8), 1., 1., 1., 17.5, 3L, lastTradeOf(8)), -1);
  EXPECT_EQ(sink->take(), Lines{firedAt(8, L"17.5")});
  EXPECT_EQ(recordByIndex(alert, 8), (Record{dateOf(8), 1, 1, 1, 17.5, 3, VARIANT_TRUE}));
  EXPECT_EQ(boolOf(alert, &IAlert::EditRecord_Opt, dateOf(9), 1., 1., 1., 18., 3L, lastTradeOf(9)), 0);
  EXPECT_EQ(sink->take(), Lines{});
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 8);
}

TEST_F(AlertMembers, ABarThatTheEngineDoesNotTakeIsRefusedAndReplacedAllTheSame) {
  // The bar comes before the set-up, so the prices have no row to change.
  call(alert, &IAlert::put_AlertScript, kAbove10);
  appendOpt(1, 20);
  EXPECT_EQ(alert->InitialiseTransientStore(250), S_OK);
  EXPECT_EQ(refusedBoolOf(alert, &IAlert::EditRecord_Opt, dateOf(1), 30., 31., 29., 30.5, 3L, 1.), 0);
  EXPECT_EQ(recordByIndex(alert, 1), (Record{dateOf(1), 30, 31, 29, 30.5, 3, VARIANT_TRUE}));
  EXPECT_EQ(sink->take(), Lines{});
}

TEST_F(AlertMembers, TheLogOfVariablesIsAcceptedAndNotWritten) {
  const std::wstring path = besideProgram(L"variables.log");
  DeleteFileW(path.c_str());
  EXPECT_EQ(call(alert, &IAlert::GetVariableValuesLog, path), S_OK);
  EXPECT_EQ(GetFileAttributesW(path.c_str()), INVALID_FILE_ATTRIBUTES);
}

// ---- Dates

TEST_F(AlertMembers, ToJulianDateIgnoresMilliseconds) {
  EXPECT_EQ(valueOf<double>(alert, &IAlert::ToJulianDate, 1980, 1, 1, 0, 0, 0, 0), newYear1980(0));
  EXPECT_EQ(valueOf<double>(alert, &IAlert::ToJulianDate, 2000, 1, 1, 12, 0, 0, 0), 2451545.0);
  EXPECT_EQ(valueOf<double>(alert, &IAlert::ToJulianDate, 1980, 1, 1, 6, 0, 0, 999), newYear1980(0.25));
  EXPECT_EQ(valueOf<double>(alert, &IAlert::ToJulianDate, 1980, 1, 1, 1, 2, 3, 900),
            newYear1980((1 + (2 + 3 / 60.0) / 60.0) / 24.0));
}

TEST_F(AlertMembers, FromJulianDateIsInTheUsersFormat) {
  EXPECT_EQ(textOf(alert, &IAlert::FromJulianDate, 2444239.5), localeText(1980, 1, 1));
  EXPECT_EQ(textOf(alert, &IAlert::FromJulianDate, 2451545.25), localeText(2000, 1, 1, 18));
  EXPECT_EQ(textOf(alert, &IAlert::FromJulianDate, 0.0), L"No Date Time");
}

// ---- Missing places

TEST_F(AlertMembers, AMissingResultIsRefusedBeforeAnythingHappens) {
  append(alert, 1, 5);
  startLiving(kAbove10);
  EXPECT_EQ(alert->EditRecord(dateOf(1), 6, 6, 6, 6, 6, 6, nullptr), E_POINTER);
  EXPECT_EQ(alert->EditJDate(dateOf(1), 7, nullptr), E_POINTER);
  EXPECT_EQ(recordByIndex(alert, 1), (Record{dateOf(1), 5, 5, 5, 5, 100, VARIANT_TRUE}));
  EXPECT_EQ(call(alert, &IAlert::Evaluate, L"CLOSE > 7", nullptr), E_POINTER);
  EXPECT_EQ(textOf(alert, &IAlert::get_AlertScript), kAbove10);
  EXPECT_EQ(call(alert, &IAlert::ProcessScripData, L"CLOSE > 7", nullptr), E_POINTER);
  EXPECT_EQ(alert->EditRecord_Opt(dateOf(1), 6, 6, 6, 6, 6, 6, nullptr), E_POINTER);
  EXPECT_EQ(alert->get_RecordCount(nullptr), E_POINTER);
  EXPECT_EQ(alert->get_Symbol(nullptr), E_POINTER);
  EXPECT_EQ(alert->get_AlertName(nullptr), E_POINTER);
  EXPECT_EQ(alert->get_AlertScript(nullptr), E_POINTER);
  EXPECT_EQ(alert->get_ScriptHelp(nullptr), E_POINTER);
  EXPECT_EQ(alert->GetJDate(1, nullptr), E_POINTER);
  EXPECT_EQ(alert->ToJulianDate(1980, 1, 1, 0, 0, 0, 0, nullptr), E_POINTER);
  EXPECT_EQ(alert->FromJulianDate(2444239.5, nullptr), E_POINTER);
  double open = 0;
  EXPECT_EQ(alert->GetRecordByIndex(1, nullptr, &open, nullptr, nullptr, nullptr, nullptr, nullptr),
            E_POINTER);
}

}  // namespace
}  // namespace brindlewort::hosts
