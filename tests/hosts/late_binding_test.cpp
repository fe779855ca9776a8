// Late-bound calls, as script languages make them.

#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include "bars.hpp"
#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

/// A variant, cleared at the end of its life.
class Variant : public VARIANT {
 public:
  Variant() { VariantInit(this); }
  Variant(double value) : Variant() { vt = VT_R8, dblVal = value; }
  Variant(int value) : Variant() { vt = VT_I4, lVal = value; }
  Variant(short value) : Variant() { vt = VT_I2, iVal = value; }
  Variant(const wchar_t* text) : Variant() { vt = VT_BSTR, bstrVal = SysAllocString(text); }
  Variant(const Variant& other) : Variant() { VariantCopy(this, const_cast<Variant*>(&other)); }
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(this); }

  /// A reference to a host's variable.
  template <class Value>
  static Variant to(VARTYPE type, Value& variable) {
    Variant reference;
    reference.vt = static_cast<VARTYPE>(VT_BYREF | type);
    reference.byref = &variable;
    return reference;
  }
  static Variant to(Variant& variable) { return to<VARIANT>(VT_VARIANT, variable); }
};

void expectR8(const VARIANT& variant, double value) {
  EXPECT_EQ(variant.vt, VT_R8);
  EXPECT_EQ(variant.dblVal, value);
}
void expectI4(const VARIANT& variant, LONG value) {
  EXPECT_EQ(variant.vt, VT_I4);
  EXPECT_EQ(variant.lVal, value);
}
void expectBool(const VARIANT& variant, VARIANT_BOOL value) {
  EXPECT_EQ(variant.vt, VT_BOOL);
  EXPECT_EQ(variant.boolVal, value);
}
void expectText(const VARIANT& variant, const wchar_t* text) {
  ASSERT_EQ(variant.vt, VT_BSTR);
  ASSERT_NE(variant.bstrVal, nullptr);
  EXPECT_STREQ(variant.bstrVal, text);
}

using Arguments = std::vector<Variant>;

template <class Object>
DISPID idOf(const ComPtr<Object>& object, const wchar_t* name) {
  DISPID id = 0;
  LPOLESTR asked = const_cast<LPOLESTR>(name);
  EXPECT_EQ(object->GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &id), S_OK);
  return id;
}

/// Calls a member with arguments in their natural order; the last `names.size()` of them are named.
template <class Object>
HRESULT invoke(const ComPtr<Object>& object, DISPID id, WORD flags, const Arguments& arguments,
               VARIANT* result = nullptr, std::vector<DISPID> names = {}) {
  std::vector<VARIANTARG> reversed(arguments.rbegin(), arguments.rend());
  std::vector<DISPID> reversedNames(names.rbegin(), names.rend());
  DISPPARAMS call{reversed.data(), reversedNames.data(), static_cast<UINT>(reversed.size()),
                  static_cast<UINT>(names.size())};
  return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &call, result, nullptr, nullptr);
}
template <class Object>
HRESULT invoke(const ComPtr<Object>& object, const wchar_t* name, const Arguments& arguments,
               VARIANT* result = nullptr) {
  return invoke(object, idOf(object, name), DISPATCH_METHOD, arguments, result);
}

class LateBinding : public HostTest {
 protected:
  void SetUp() override {
    EXPECT_EQ(invoke(alert, L"AppendRecord", {kFirstDay, 1.25, 2.5, 0.5, 2.0, 1'234, kFirstDay}), S_OK);
  }
  void TearDown() override {
    alert.Reset();
    HostTest::TearDown();
  }
  ComPtr<IAlert> alert = library.make<IAlert>();
};

// ---- Names

TEST_F(LateBinding, NamesLeadToIdsInAnyCase) {
  EXPECT_EQ(idOf(alert, L"AppendRecord"), 1);
  EXPECT_EQ(idOf(alert, L"appendrecord_opt"), 18);
  EXPECT_EQ(idOf(alert, L"SCRIPTHELP"), 13);
  EXPECT_EQ(idOf(library.make<IScriptOutput>(), L"GetCustomIndFromCondition_New"), 26);
}

TEST_F(LateBinding, NamesOfParametersAreTheirPlaces) {
  const wchar_t* names[] = {L"GetRecordByIndex", L"Volume", L"index", L"ClosePrice"};
  DISPID ids[4] = {};
  EXPECT_EQ(alert->GetIDsOfNames(IID_NULL, const_cast<LPOLESTR*>(names), 4, LOCALE_USER_DEFAULT, ids), S_OK);
  EXPECT_EQ(ids[0], 4);
  EXPECT_EQ(ids[1], 6);
  EXPECT_EQ(ids[2], 0);
  EXPECT_EQ(ids[3], 5);
}

TEST_F(LateBinding, UnknownNamesIdsAndQuestionsAreRefused) {
  LPOLESTR name = const_cast<LPOLESTR>(L"AppendRecords");
  DISPID id = 0;
  EXPECT_EQ(alert->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(id, DISPID_UNKNOWN);
  name = const_cast<LPOLESTR>(L"AppendRecord");
  EXPECT_EQ(alert->GetIDsOfNames(IID_IDispatch, &name, 1, LOCALE_USER_DEFAULT, &id), DISP_E_UNKNOWNINTERFACE);
  DISPPARAMS none{};
  EXPECT_EQ(
      alert->Invoke(5, IID_IDispatch, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
      DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 1);  // 5 is ClearRecords
  for (DISPID gap : {0, 12, 22, -5, 4'711})
    EXPECT_EQ(invoke(alert, gap, DISPATCH_METHOD, {}), DISP_E_MEMBERNOTFOUND) << gap;
  EXPECT_EQ(
      alert->Invoke(5, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr),
      E_INVALIDARG);
}

// ---- Plain calls

TEST_F(LateBinding, PropertiesAreReadAndWritten) {
  const DISPID symbol = idOf(alert, L"Symbol");
  EXPECT_EQ(invoke(alert, symbol, DISPATCH_PROPERTYPUT, {L"SYM"}, nullptr, {DISPID_PROPERTYPUT}), S_OK);
  Variant read;
  EXPECT_EQ(invoke(alert, symbol, DISPATCH_PROPERTYGET, {}, &read), S_OK);
  expectText(read, L"SYM");
  Variant both;  // as some languages read
  EXPECT_EQ(invoke(alert, symbol, DISPATCH_PROPERTYGET | DISPATCH_METHOD, {}, &both), S_OK);
  expectText(both, L"SYM");
  EXPECT_EQ(invoke(alert, symbol, DISPATCH_PROPERTYPUT, {42}, nullptr, {DISPID_PROPERTYPUT}), S_OK);
  EXPECT_EQ(textOf(alert, &IAlert::get_Symbol), L"42");  // converted as the caller's system does
  Variant count;
  EXPECT_EQ(invoke(alert, idOf(alert, L"RecordCount"), DISPATCH_PROPERTYGET, {}, &count), S_OK);
  expectI4(count, 1);
  EXPECT_EQ(
      invoke(alert, idOf(alert, L"RecordCount"), DISPATCH_PROPERTYPUT, {3}, nullptr, {DISPID_PROPERTYPUT}),
      DISP_E_MEMBERNOTFOUND);
}

TEST_F(LateBinding, APropertyMayHaveAnArgument) {
  const ComPtr<IValidate> validate = library.make<IValidate>();
  Variant answer, constant;
  EXPECT_EQ(invoke(validate, L"Validate", {L"SET SYMBOL = Q\r\nCLOSE > 1", -1}, &answer), S_OK);
  expectText(answer, L"");
  EXPECT_EQ(invoke(validate, idOf(validate, L"Constant"), DISPATCH_PROPERTYGET, {L"SYMBOL"}, &constant),
            S_OK);
  expectText(constant, L"Q");
}

TEST_F(LateBinding, ArgumentsOfOtherTypesAreConverted) {
  // Dates and prices as integers and texts, the volume as a double.
  EXPECT_EQ(invoke(alert, L"AppendRecord", {3, L"2", short{7}, 1.5, 2, 5.0, 3}), S_OK);
  EXPECT_EQ(recordByIndex(alert, 2), (Record{3, 2, 7, 1.5, 2, 5, VARIANT_TRUE}));
  EXPECT_EQ(invoke(alert, L"AppendRecord", {3, L"no number", 7, 1, 2, 5, 3}), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 2);
}

TEST_F(LateBinding, TooFewArgumentsAreRefused) {
  EXPECT_EQ(invoke(alert, L"AppendRecord", {1, 2, 3}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(invoke(alert, L"GetRecordByIndex", {1}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 1);
  DISPPARAMS call{nullptr, nullptr, 0, 3};  // more names than arguments
  EXPECT_EQ(
      alert->Invoke(5, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &call, nullptr, nullptr, nullptr),
      DISP_E_BADPARAMCOUNT);
}

TEST_F(LateBinding, ArgumentsMayBeNamed) {
  // OldJDate and NewJDate, the other way round.
  Variant result;
  EXPECT_EQ(invoke(alert, 16, DISPATCH_METHOD, {dateOf(9), dateOf(1)}, &result, {1, 0}), S_OK);
  expectBool(result, VARIANT_TRUE);
  EXPECT_EQ(valueOf<double>(alert, &IAlert::GetJDate, 1L), dateOf(9));
}

TEST_F(LateBinding, ResultsHaveTheTypesOfScriptLanguages) {
  Variant date, text, found, fired;
  EXPECT_EQ(invoke(alert, L"ToJulianDate", {1980, 1, 1, 0, 0, 0, 0}, &date), S_OK);
  expectR8(date, 2444239.5);
  EXPECT_EQ(invoke(alert, L"FromJulianDate", {0.0}, &text), S_OK);
  expectText(text, L"No Date Time");
  EXPECT_EQ(invoke(alert, L"EditRecord", {kFirstDay, 1, 1, 1, 1, 1, 1}, &found), S_OK);
  expectBool(found, -1);
  for (int day = 2; day <= 7; ++day) append(alert, day, 1);
  EXPECT_EQ(invoke(alert, L"Evaluate", {L"CLOSE > 0"}, &fired), S_OK);
  expectBool(fired, 1);

  const ComPtr<IScriptOutput> output = library.make<IScriptOutput>();
  Variant handle, number;
  EXPECT_HRESULT_SUCCEEDED(invoke(output, L"GetScriptOutput_PTR", {L"", 0, L""}, &handle));
  expectI4(handle, -1);
  appendNew(output, 1, 1);
  appendNew(output, 2, 1);
  EXPECT_EQ(invoke(output, L"GetRecordNumberByJDate", {dateOf(2)}, &number), S_OK);
  expectI4(number, 0);
}

TEST_F(LateBinding, AResultMayBeUnwanted) {
  EXPECT_EQ(invoke(alert, L"EditJDate", {dateOf(1), dateOf(2)}), S_OK);
  EXPECT_EQ(valueOf<double>(alert, &IAlert::GetJDate, 1L), dateOf(2));
}

TEST_F(LateBinding, ARefusedCallIsASuccess) {
  Variant result;  // whether the code 1 comes through is the system's affair
  EXPECT_HRESULT_SUCCEEDED(invoke(alert, L"ProcessScripData", {L""}, &result));
  expectBool(result, VARIANT_FALSE);
}

TEST_F(LateBinding, AByteMayComeAsANumber) {
  const ComPtr<IScriptOutput> output = library.make<IScriptOutput>();
  EXPECT_EQ(output->InitialiseTransientStore(250), S_OK);
  EXPECT_EQ(boolOf(output, &IScriptOutput::ProcessScripData, L"SET A = X\r\nA"), 1);
  EXPECT_EQ(invoke(output, L"AddOrRemoveBasicVectorSeries", {L"X", 10}), S_OK);
  for (int day = 1; day <= 7; ++day) {
    appendNew(output, day, day);
    EXPECT_EQ(invoke(output, L"UpdateBasicVectorData", {L"X", 2 * day, short{22}}), S_OK);
  }
  EXPECT_EQ(textOf(output, &IScriptOutput::GetScriptOutput_New, L"X", 7, L"A"),
            L"Date,\"A\"\r\n" + dayText(7) + L",14.0000\r\n");
  EXPECT_EQ(invoke(output, L"UpdateBasicVectorData", {L"X", 1, 256}), DISP_E_OVERFLOW);
}

// ---- Places for results among the arguments

TEST_F(LateBinding, VariantsByReferenceTakeTheResults) {
  Variant date, open, high(L"before"), low(5), close(1.0), volume, found;
  EXPECT_EQ(invoke(alert, L"GetRecordByIndex",
                   {1, Variant::to(date), Variant::to(open), Variant::to(high), Variant::to(low),
                    Variant::to(close), Variant::to(volume)},
                   &found),
            S_OK);
  expectBool(found, VARIANT_TRUE);
  expectR8(date, kFirstDay);
  expectR8(open, 1.25);
  expectR8(high, 2.5);
  expectR8(low, 0.5);
  expectR8(close, 2.0);
  expectI4(volume, 1'234);
}

TEST_F(LateBinding, VariablesAreUntouchedWhereNothingIsFound) {
  Variant open(7.5), high(short{3}), low, close(L"text"), volume(9), found;
  EXPECT_EQ(invoke(alert, L"GetRecordByJDate",
                   {1.0, Variant::to(open), Variant::to(high), Variant::to(low), Variant::to(close),
                    Variant::to(volume)},
                   &found),
            S_OK);
  expectBool(found, VARIANT_FALSE);
  expectR8(open, 7.5);
  EXPECT_EQ(high.vt, VT_I2);
  EXPECT_EQ(high.iVal, 3);
  EXPECT_EQ(low.vt, VT_EMPTY);
  expectText(close, L"text");
  expectI4(volume, 9);

  float single = 7.5f;
  double exact = 8.5;
  SHORT narrow = 5;
  EXPECT_EQ(
      invoke(alert, L"GetRecordByIndex",
             {2, Variant::to(VT_R4, single), Variant::to(VT_R8, exact), 0, 0, 0, Variant::to(VT_I2, narrow)}),
      S_OK);
  EXPECT_EQ(single, 7.5f);
  EXPECT_EQ(exact, 8.5);
  EXPECT_EQ(narrow, 5);
}

TEST_F(LateBinding, EveryPriceAndVolumeReachesItsVariant) {
  // No value is taken for an untouched place, whatever its bits.
  int day = 1;
  for (LONG volume : {0L, -1L, 1L, LONG_MIN, LONG_MIN + 1, LONG_MAX, 0x6F80'0001L, 0x4E6FL}) {
    const double price = volume == 0 ? std::numeric_limits<double>::quiet_NaN() : 0.0;
    EXPECT_EQ(alert->AppendRecord(dateOf(++day), price, price, price, price, volume, 0), S_OK);
    Variant open, high, low, close, taken;
    EXPECT_EQ(invoke(alert, L"GetRecordByJDate",
                     {dateOf(day), Variant::to(open), Variant::to(high), Variant::to(low), Variant::to(close),
                      Variant::to(taken)}),
              S_OK);
    expectI4(taken, volume);
    EXPECT_EQ(open.vt, VT_R8);
    EXPECT_EQ(close.vt, VT_R8);
    EXPECT_EQ(std::isnan(close.dblVal), volume == 0);
  }
}

TEST_F(LateBinding, VariablesOfTheExactTypeTakeTheResults) {
  double date = 0, open = 0, high = 0, low = 0, close = 0;
  LONG volume = 0;
  EXPECT_EQ(invoke(alert, L"GetRecordByIndex",
                   {1, Variant::to(VT_R8, date), Variant::to(VT_R8, open), Variant::to(VT_R8, high),
                    Variant::to(VT_R8, low), Variant::to(VT_R8, close), Variant::to(VT_I4, volume)}),
            S_OK);
  EXPECT_EQ(date, kFirstDay);
  EXPECT_EQ(open, 1.25);
  EXPECT_EQ(high, 2.5);
  EXPECT_EQ(low, 0.5);
  EXPECT_EQ(close, 2.0);
  EXPECT_EQ(volume, 1'234);
}

TEST_F(LateBinding, VariablesOfOtherTypesTakeTheConvertedResults) {
  float open = 0;
  SHORT guarded[] = {-1, 0, -1};  // nothing beside the variable is written
  LONG low = 0;
  double volume = 0;
  BYTE close[] = {0xEE, 0, 0xEE};
  EXPECT_EQ(invoke(alert, L"GetRecordByJDate",
                   {kFirstDay, Variant::to(VT_R4, open), Variant::to(VT_I2, guarded[1]),
                    Variant::to(VT_I4, low), Variant::to(VT_UI1, close[1]), Variant::to(VT_R8, volume)}),
            S_OK);
  EXPECT_EQ(open, 1.25f);
  EXPECT_EQ(guarded[1], 2);  // 2.5, rounded to even
  EXPECT_EQ(low, 0);         // 0.5
  EXPECT_EQ(close[1], 2);
  EXPECT_EQ(volume, 1'234.0);
  EXPECT_EQ(guarded[0], -1);
  EXPECT_EQ(guarded[2], -1);
  EXPECT_EQ(close[0], 0xEE);
  EXPECT_EQ(close[2], 0xEE);
}

TEST_F(LateBinding, AResultThatAVariableCannotHoldLeavesIt) {
  SHORT date = 5;
  BYTE volume = 6;
  double open = 0;
  EXPECT_EQ(
      invoke(alert, L"GetRecordByIndex",
             {1, Variant::to(VT_I2, date), Variant::to(VT_R8, open), 0, 0, 0, Variant::to(VT_UI1, volume)}),
      S_OK);
  EXPECT_EQ(date, 5);
  EXPECT_EQ(volume, 6);
  EXPECT_EQ(open, 1.25);
}

TEST_F(LateBinding, PlainValuesAreNoPlaces) {
  Variant found;
  EXPECT_EQ(invoke(alert, L"GetRecordByIndex", {1, 0.0, 0, L"", L"text", Variant(), 0}, &found), S_OK);
  expectBool(found, VARIANT_TRUE);
}

TEST_F(LateBinding, PlacesMayBeNamed) {
  // Volume = volume, ClosePrice = close, and so on to Index, all by name.
  Variant volume, close, low, high, open, date, found;
  EXPECT_EQ(invoke(alert, 4, DISPATCH_METHOD,
                   {Variant::to(volume), Variant::to(close), Variant::to(low), Variant::to(high),
                    Variant::to(open), Variant::to(date), 1},
                   &found, {6, 5, 4, 3, 2, 1, 0}),
            S_OK);
  expectBool(found, VARIANT_TRUE);
  expectR8(date, kFirstDay);
  expectR8(open, 1.25);
  expectR8(close, 2.0);
  expectI4(volume, 1'234);
}

TEST_F(LateBinding, AFailedCallWritesNothing) {
  Variant date(7.5), open(short{3});
  EXPECT_EQ(
      invoke(alert, L"GetRecordByIndex", {L"no number", Variant::to(date), Variant::to(open), 0, 0, 0, 0}),
      DISP_E_TYPEMISMATCH);
  expectR8(date, 7.5);
  EXPECT_EQ(open.vt, VT_I2);
  EXPECT_EQ(open.iVal, 3);
}

TEST_F(LateBinding, NullReferencesAreNoPlaces) {
  Variant nowhere, nothing, found;
  nowhere.vt = VT_BYREF | VT_VARIANT, nowhere.pvarVal = nullptr;
  nothing.vt = VT_BYREF | VT_I2, nothing.piVal = nullptr;
  EXPECT_EQ(invoke(alert, L"GetRecordByIndex", {1, nowhere, nothing, 0, 0, 0, 0}, &found), S_OK);
  expectBool(found, VARIANT_TRUE);
}

TEST_F(LateBinding, TheSameVariableMayStandInTwoPlaces) {
  Variant price, found;
  EXPECT_EQ(invoke(alert, L"GetRecordByJDate",
                   {kFirstDay, Variant::to(price), Variant::to(price), Variant::to(price), Variant::to(price),
                    Variant::to(price)},
                   &found),
            S_OK);
  EXPECT_EQ(price.vt == VT_R8 || price.vt == VT_I4, true);
}

TEST_F(LateBinding, ScriptOutputTakesPlacesToo) {
  const ComPtr<IScriptOutput> output = library.make<IScriptOutput>();
  EXPECT_EQ(invoke(output, L"AppendRecord_New", {kFirstDay, 1.25, 2.5, 0.5, 2.0, 1'234}), S_OK);
  Variant open, high, low, close, volume, found;
  EXPECT_EQ(invoke(output, L"GetRecordByJDate",
                   {kFirstDay, Variant::to(open), Variant::to(high), Variant::to(low), Variant::to(close),
                    Variant::to(volume)},
                   &found),
            S_OK);
  expectBool(found, VARIANT_TRUE);
  expectR8(high, 2.5);
  expectI4(volume, 1'234);
}

TEST_F(LateBinding, AnEventComesWithinTheCall) {
  const ComPtr<Sink> sink = connect(alert);
  for (int day = 2; day <= 5; ++day) append(alert, day, day);
  EXPECT_EQ(invoke(alert, idOf(alert, L"AlertScript"), DISPATCH_PROPERTYPUT, {L"CLOSE > 0"}, nullptr,
                   {DISPID_PROPERTYPUT}),
            S_OK);
  EXPECT_EQ(sink->take(), Lines{L"1: '' '' R8 2451549 R8 5"});
}

TEST_F(LateBinding, ASinkMayReleaseTheComponentWithinTheCall) {
  const ComPtr<Sink> sink = connect(alert);
  for (int day = 2; day <= 4; ++day) append(alert, day, day);
  call(alert, &IAlert::put_AlertScript, L"CLOSE > 0");
  sink->react = [&] {
    alert.Reset();
    EXPECT_EQ(library.canUnloadNow(), S_FALSE);  // it lives on to the end of the call
    return S_OK;
  };
  VARIANTARG lastFirst[7] = {Variant(0.0), Variant(5),   Variant(1.0),      Variant(1.0),
                             Variant(1.0), Variant(1.0), Variant(dateOf(5))};
  DISPPARAMS arguments{lastFirst, nullptr, 7, 0};
  IAlert* const called = alert.Get();
  EXPECT_EQ(called->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &arguments, nullptr, nullptr,
                           nullptr),
            S_OK);
  EXPECT_EQ(sink->take().size(), 1u);
  EXPECT_EQ(sink->references(), 1);
}

}  // namespace
}  // namespace brindlewort::hosts
