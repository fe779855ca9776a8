// Members called by the numbers of their virtual slots, as hosts have them compiled in. The first seven are
// those of IDispatch.

#include <cstddef>

#include "host.hpp"

namespace brindlewort::hosts {
namespace {

/// Calls the n-th entry of an object's virtual table.
template <class... Arguments, class Object>
HRESULT callSlot(const ComPtr<Object>& object, std::size_t number, Arguments... arguments) {
  using Entry = HRESULT(STDMETHODCALLTYPE*)(void*, Arguments...);
  void* const* const table = *reinterpret_cast<void* const* const*>(object.Get());
  return reinterpret_cast<Entry>(table[number])(object.Get(), arguments...);
}

using VirtualSlots = HostTest;

TEST_F(VirtualSlots, OfAnAlertAreWhereHostsCallThem) {
  const ComPtr<IAlert> alert = library.make<IAlert>();
  EXPECT_EQ(callSlot(alert, 7, 11.0, 1.0, 2.0, 3.0, 4.0, LONG{5}, 6.0), S_OK);  // AppendRecord
  LONG count = 0;
  EXPECT_EQ(callSlot(alert, 12, &count), S_OK);  // RecordCount
  EXPECT_EQ(count, 1);
  double date = 0;
  EXPECT_EQ(callSlot(alert, 22, LONG{1}, &date), S_OK);  // GetJDate
  EXPECT_EQ(date, 11.0);
  EXPECT_EQ(callSlot(alert, 20, static_cast<BSTR>(Text(L"name"))), S_OK);  // AlertName, put
  Text name;
  EXPECT_EQ(callSlot(alert, 19, name.place()), S_OK);  // and get
  EXPECT_EQ(name.str(), L"name");
  VARIANT_BOOL result = 77;
  EXPECT_EQ(callSlot(alert, 24, 11.0, 12.0, &result), S_OK);  // EditJDate
  EXPECT_EQ(result, VARIANT_TRUE);
  EXPECT_EQ(callSlot(alert, 29, static_cast<BSTR>(Text(L"path"))), S_OK);  // GetVariableValuesLog, the last
  EXPECT_EQ(callSlot(alert, 11), S_OK);                                    // ClearRecords
  EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 0);
}

TEST_F(VirtualSlots, OfTheOthersAreWhereHostsCallThem) {
  const ComPtr<IBacktest> backtest = library.make<IBacktest>();
  double date = 0;
  EXPECT_EQ(callSlot(backtest, 13, 1980, 1, 1, 0, 0, 0, 0, &date), S_OK);  // ToJulianDate
  EXPECT_EQ(date, 2444239.5);
  Text help;
  EXPECT_EQ(callSlot(backtest, 16, help.place()), S_OK);  // ScriptHelp
  EXPECT_EQ(help.str(), L"");

  const ComPtr<IScriptOutput> output = library.make<IScriptOutput>();
  EXPECT_EQ(callSlot(output, 22, 11.0, 1.0, 2.0, 3.0, 4.0, LONG{5}), S_OK);  // AppendRecord_New
  EXPECT_EQ(valueOf<LONG>(output, &IScriptOutput::get_RecordCount), 1);
  int handle = 0;
  EXPECT_EQ(callSlot(output, 30, BSTR{}, 0, BSTR{}, &handle), S_FALSE);  // GetScriptOutput_PTR
  EXPECT_EQ(handle, -1);
  EXPECT_EQ(callSlot(output, 32, BSTR{}), S_OK);  // GetVariableValuesLog, the last

  const ComPtr<IValidate> validate = library.make<IValidate>();
  Text answer;
  EXPECT_EQ(callSlot(validate, 7, static_cast<BSTR>(Text(L"ABCD")), -1, answer.place()), S_OK);  // Validate
  EXPECT_EQ(answer.str(), L"Error: Script too short.");
  EXPECT_EQ(callSlot(validate, 9, help.place()), S_OK);  // ScriptHelp
}

}  // namespace
}  // namespace brindlewort::hosts
