// The type library in the library's own file: identities, dispatch ids and virtual slots, which hosts have
// compiled in.

#include <string>
#include <vector>

#include "host.hpp"

namespace brindlewort::hosts {
namespace {

enum class Kind { kMethod, kGet, kPut };

/// A member as it is declared; "-> R8" stands for a result. Types: R8 double, I4 and INT 32-bit integers, UI1
/// a byte, BOOL the 16-bit boolean.
struct Member {
  DISPID id;
  Kind kind;
  std::wstring name;
  std::wstring arguments;
};

const std::wstring kBar = L"R8 JDate, R8 OpenPrice, R8 HighPrice, R8 LowPrice, R8 ClosePrice, I4 Volume";
const std::wstring kBarOut =
    L"R8* OpenPrice, R8* HighPrice, R8* LowPrice, R8* ClosePrice, I4* Volume -> BOOL";
const std::wstring kCivil =
    L"INT nYear, INT nMonth, INT nDay, INT nHour, INT nMinute, INT nSecond, INT nMillisecond -> R8";
const std::wstring kRules =
    L"BSTR BuyScript, BSTR SellScript, BSTR ExitLongScript, BSTR ExitShortScript, R8 SlipPct, "
    L"BSTR MaxOpenDays -> BSTR";
const std::wstring kTraded = kBar + L", R8 dJDateOfLTT";
const std::wstring kOutput = L"BSTR DefaultScript, INT MapCount, BSTR OutputSets -> ";

/// In the order of the virtual slots.
using Members = std::vector<Member>;

const Members kAlertMembers = {
    {1, Kind::kMethod, L"AppendRecord", kTraded},
    {2, Kind::kMethod, L"EditRecord", kTraded + L" -> BOOL"},
    {3, Kind::kMethod, L"GetRecordByJDate", L"R8 JDate, " + kBarOut},
    {4, Kind::kMethod, L"GetRecordByIndex", L"I4 Index, R8* JDate, " + kBarOut},
    {5, Kind::kMethod, L"ClearRecords", L""},
    {6, Kind::kGet, L"RecordCount", L" -> I4"},
    {7, Kind::kGet, L"Symbol", L" -> BSTR"},
    {7, Kind::kPut, L"Symbol", L"BSTR"},
    {8, Kind::kGet, L"AlertScript", L" -> BSTR"},
    {8, Kind::kPut, L"AlertScript", L"BSTR"},
    {9, Kind::kMethod, L"ToJulianDate", kCivil},
    {10, Kind::kMethod, L"FromJulianDate", L"R8 JDate -> BSTR"},
    {11, Kind::kGet, L"AlertName", L" -> BSTR"},
    {11, Kind::kPut, L"AlertName", L"BSTR"},
    {13, Kind::kGet, L"ScriptHelp", L" -> BSTR"},
    {14, Kind::kMethod, L"GetJDate", L"I4 Index -> R8"},
    {15, Kind::kMethod, L"Evaluate", L"BSTR EvaluateScript -> BOOL"},
    {16, Kind::kMethod, L"EditJDate", L"R8 OldJDate, R8 NewJDate -> BOOL"},
    {17, Kind::kMethod, L"ProcessScripData", L"BSTR script -> BOOL"},
    {18, Kind::kMethod, L"AppendRecord_Opt", kTraded},
    {19, Kind::kMethod, L"EditRecord_Opt", kTraded + L" -> BOOL"},
    {20, Kind::kMethod, L"InitialiseTransientStore", L"I4 variablesSize"},
    {21, Kind::kMethod, L"GetVariableValuesLog", L"BSTR path"},
};

const Members kBacktestMembers = {
    {1, Kind::kMethod, L"AppendRecord", kBar},
    {2, Kind::kMethod, L"EditRecord", kBar + L" -> BOOL"},
    {3, Kind::kMethod, L"GetRecordByJDate", L"R8 JDate, " + kBarOut},
    {4, Kind::kMethod, L"GetRecordByIndex", L"I4 Index, R8* JDate, " + kBarOut},
    {5, Kind::kMethod, L"ClearRecords", L""},
    {6, Kind::kGet, L"RecordCount", L" -> I4"},
    {7, Kind::kMethod, L"ToJulianDate", kCivil},
    {8, Kind::kMethod, L"FromJulianDate", L"R8 JDate -> BSTR"},
    {9, Kind::kMethod, L"Backtest", kRules},
    {11, Kind::kGet, L"ScriptHelp", L" -> BSTR"},
    {12, Kind::kMethod, L"Backtest_New", kRules},
};

const Members kScriptOutputMembers = {
    {1, Kind::kMethod, L"AppendRecord", kBar},
    {2, Kind::kMethod, L"EditRecord", kBar + L" -> BOOL"},
    {3, Kind::kMethod, L"GetRecordByJDate", L"R8 JDate, " + kBarOut},
    {4, Kind::kMethod, L"GetRecordByIndex", L"I4 Index, R8* JDate, " + kBarOut},
    {5, Kind::kMethod, L"ClearRecords", L""},
    {6, Kind::kGet, L"RecordCount", L" -> I4"},
    {7, Kind::kMethod, L"ToJulianDate", kCivil},
    {8, Kind::kMethod, L"FromJulianDate", L"R8 JDate -> BSTR"},
    {9, Kind::kMethod, L"GetScriptOutput", kOutput + L"BSTR"},
    {11, Kind::kGet, L"ScriptHelp", L" -> BSTR"},
    {12, Kind::kMethod, L"GetJDate", L"I4 Index -> R8"},
    {13, Kind::kMethod, L"GetRecordNumberByJDate", L"R8 JDate -> I4"},
    {14, Kind::kMethod, L"GetCustomIndFromCondition", L"BSTR DefaultScript -> BSTR"},
    {15, Kind::kMethod, L"EditJDate", L"R8 OldJDate, R8 NewJDate -> BOOL"},
    {16, Kind::kMethod, L"GetScriptOutput_New", kOutput + L"BSTR"},
    {17, Kind::kMethod, L"AppendRecord_New", kBar},
    {18, Kind::kMethod, L"EditRecord_New", kBar + L" -> BOOL"},
    {19, Kind::kMethod, L"EditJDate_New", L"R8 OldJDate, R8 NewJDate -> BOOL"},
    {20, Kind::kMethod, L"ProcessScripData", L"BSTR script -> BOOL"},
    {21, Kind::kMethod, L"InitialiseTransientStore", L"I4 variablesSize"},
    {22, Kind::kMethod, L"SetDataRetrieveMode", L"I4 mode"},
    {23, Kind::kMethod, L"AddOrRemoveBasicVectorSeries", L"BSTR name, I4 size"},
    {24, Kind::kMethod, L"UpdateBasicVectorData", L"BSTR name, R8 value, UI1 AddorUpdate"},
    {25, Kind::kMethod, L"GetScriptOutput_PTR", kOutput + L"INT"},
    {26, Kind::kMethod, L"GetCustomIndFromCondition_NEW", L"BSTR DefaultScript -> BSTR"},
    {27, Kind::kMethod, L"GetVariableValuesLog", L"BSTR path"},
};

const Members kValidateMembers = {
    {1, Kind::kMethod, L"Validate", L"BSTR ValidateScript, INT BuildVersion -> BSTR"},
    {3, Kind::kGet, L"Constant", L"BSTR name -> BSTR"},
    {4, Kind::kGet, L"ScriptHelp", L" -> BSTR"},
};

struct Dual {
  std::wstring name;
  std::wstring iid;
  Members members;
};

const std::vector<Dual> kDuals = {
    {L"IAlert", L"{7E2BD722-EBC5-481B-B690-01215E0B0348}", kAlertMembers},
    {L"IBacktest", L"{6310CAB4-5528-4533-9AA8-37BD763FE109}", kBacktestMembers},
    {L"IScriptOutput", L"{FD64E200-218C-4920-9CF4-E145AAFA718C}", kScriptOutputMembers},
    {L"IValidate", L"{A8F448D8-D8FB-4991-835E-D8F5BD97741B}", kValidateMembers},
};

const std::vector<Dual> kEvents = {
    {L"_IAlertEvents",
     L"{8EAE6DA6-5EDF-4B01-92F6-00D4F56E91D0}",
     {{1, Kind::kMethod, L"Alert", L"BSTR Symbol, BSTR AlertName"},
      {2, Kind::kMethod, L"ScriptError", L"BSTR Symbol, BSTR AlertName, BSTR Description"}}},
    {L"_IBacktestEvents",
     L"{48E1FE57-167A-4BF1-A87F-1CDF759FA8B9}",
     {{1, Kind::kMethod, L"ScriptError", L"BSTR Description"}}},
    {L"_IScriptOutputEvents",
     L"{95F45E4F-0588-45BB-A7BA-38E9CEFFBFDB}",
     {{1, Kind::kMethod, L"ScriptError", L"BSTR Description"}}},
};

struct Class {
  std::wstring name, clsid, interfaceName, eventsName;
};

const std::vector<Class> kClassTable = {
    {L"Alert", L"{83392496-8720-4F6B-B906-984B587FDF74}", L"IAlert", L"_IAlertEvents"},
    {L"Backtest", L"{DDAF2F33-6E54-4161-AFCD-15058E0AA338}", L"IBacktest", L"_IBacktestEvents"},
    {L"ScriptOutput", L"{5CA7CD37-4019-427C-A5BF-4A8C82DD9537}", L"IScriptOutput", L"_IScriptOutputEvents"},
    {L"Validate", L"{92347C5B-95EB-4C71-8CB6-7F1AE45A2726}", L"IValidate", L""},
};

// ---- Reading type information

/// A structure that type information lends out; given back at the end.
template <class Owner, class Lent, void (STDMETHODCALLTYPE Owner::*giveBack)(Lent*)>
class Loan {
 public:
  template <class Lend, class... Arguments>
  explicit Loan(const ComPtr<Owner>& owner, Lend lend, Arguments... arguments) : owner_(owner) {
    EXPECT_EQ((owner.Get()->*lend)(arguments..., &lent_), S_OK);
  }
  ~Loan() {
    if (lent_) (owner_.Get()->*giveBack)(lent_);
  }
  Loan(const Loan&) = delete;
  Loan& operator=(const Loan&) = delete;
  const Lent* operator->() const { return lent_; }

 private:
  ComPtr<Owner> owner_;
  Lent* lent_ = nullptr;
};
using LibraryAttributes = Loan<ITypeLib, TLIBATTR, &ITypeLib::ReleaseTLibAttr>;
using Attributes = Loan<ITypeInfo, TYPEATTR, &ITypeInfo::ReleaseTypeAttr>;
using Function = Loan<ITypeInfo, FUNCDESC, &ITypeInfo::ReleaseFuncDesc>;

std::wstring guidText(REFGUID guid) {
  wchar_t text[40];
  StringFromGUID2(guid, text, 40);
  return text;
}

std::wstring nameOf(const ComPtr<ITypeInfo>& info) {
  Text name;
  EXPECT_EQ(info->GetDocumentation(MEMBERID_NIL, name.place(), nullptr, nullptr, nullptr), S_OK);
  return name.str();
}

std::wstring typeText(const TYPEDESC& type) {
  switch (type.vt) {
    case VT_R8:
      return L"R8";
    case VT_I4:
      return L"I4";
    case VT_INT:
      return L"INT";
    case VT_UI1:
      return L"UI1";
    case VT_BOOL:
      return L"BOOL";
    case VT_BSTR:
      return L"BSTR";
    case VT_PTR:
      return typeText(*type.lptdesc) + L"*";
    default:
      return L"type " + std::to_wstring(type.vt);
  }
}

/// The direction that a parameter of this type has.
USHORT directionOf(const std::wstring& type, bool isResult) {
  if (isResult) return PARAMFLAG_FOUT | PARAMFLAG_FRETVAL;
  return type.ends_with(L'*') ? PARAMFLAG_FIN | PARAMFLAG_FOUT : PARAMFLAG_FIN;
}

/// A member as type information has it, in the form of the tables.
Member memberOf(const ComPtr<ITypeInfo>& info, const Function& function) {
  Member member{function->memid, Kind::kMethod, L"", L""};
  if (function->invkind == INVOKE_PROPERTYGET) member.kind = Kind::kGet;
  if (function->invkind == INVOKE_PROPERTYPUT) member.kind = Kind::kPut;
  BSTR names[20] = {};
  UINT count = 0;
  EXPECT_EQ(info->GetNames(function->memid, names, 20, &count), S_OK);
  member.name = names[0];
  for (SHORT i = 0; i < function->cParams; ++i) {
    const ELEMDESC& parameter = function->lprgelemdescParam[i];
    std::wstring type = typeText(parameter.tdesc);
    const bool isResult = (parameter.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
    EXPECT_EQ(parameter.paramdesc.wParamFlags, directionOf(type, isResult)) << i;
    if (isResult) {
      member.arguments += L" -> " + type.substr(0, type.size() - 1);
    } else {
      if (i > 0) member.arguments += L", ";
      member.arguments += type;
      if (member.kind != Kind::kPut) member.arguments += L" " + std::wstring(names[i + 1]);
    }
  }
  for (UINT i = 0; i < count; ++i) SysFreeString(names[i]);
  return member;
}

void expectEqual(const Member& found, const Member& expected) {
  EXPECT_EQ(found.id, expected.id) << testing::PrintToString(expected.name);
  EXPECT_EQ(found.kind, expected.kind) << testing::PrintToString(expected.name);
  EXPECT_EQ(found.name, expected.name);
  EXPECT_EQ(found.arguments, expected.arguments) << testing::PrintToString(expected.name);
}

class TypeLibrary : public HostTest {
 protected:
  void SetUp() override { ASSERT_EQ(LoadTypeLibEx(libraryPath().c_str(), REGKIND_NONE, &types), S_OK); }
  ComPtr<ITypeInfo> infoOf(const std::wstring& guid) {
    GUID wanted;
    EXPECT_EQ(CLSIDFromString(guid.c_str(), &wanted), S_OK);
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(types->GetTypeInfoOfGuid(wanted, &info), S_OK) << testing::PrintToString(guid);
    return info;
  }
  ComPtr<ITypeLib> types;
};

/// The virtual table behind a dual interface, whose type information speaks of late-bound calls first.
ComPtr<ITypeInfo> slotsOf(const ComPtr<ITypeInfo>& dual) {
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> slots;
  EXPECT_EQ(dual->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
  EXPECT_EQ(dual->GetRefTypeInfo(reference, &slots), S_OK);
  return slots;
}

// ---- Tests

TEST_F(TypeLibrary, HasItsNumberVersionAndName) {
  const LibraryAttributes attributes(types, &ITypeLib::GetLibAttr);
  EXPECT_EQ(guidText(attributes->guid), L"{67BFF05D-5B2C-4E33-AFE4-D6CE2BDD3121}");
  EXPECT_EQ(attributes->wMajorVerNum, 1);
  EXPECT_EQ(attributes->wMinorVerNum, 0);
  Text name;
  EXPECT_EQ(types->GetDocumentation(-1, name.place(), nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(name.str(), L"BrindlewortLib");
}

TEST_F(TypeLibrary, IsTheFirstResource) {
  EXPECT_NE(FindResourceW(library.module(), MAKEINTRESOURCEW(1), L"TYPELIB"), nullptr);
  ComPtr<ITypeLib> first;
  EXPECT_EQ(LoadTypeLibEx((libraryPath() + L"\\1").c_str(), REGKIND_NONE, &first), S_OK);
}

TEST_F(TypeLibrary, HoldsElevenTypes) {
  // Four interfaces, three of events, four classes.
  EXPECT_EQ(types->GetTypeInfoCount(), 11u);
}

TEST_F(TypeLibrary, InterfacesAreDual) {
  for (const Dual& dual : kDuals) {
    const ComPtr<ITypeInfo> info = infoOf(dual.iid);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(nameOf(info), dual.name);
    const Attributes attributes(info, &ITypeInfo::GetTypeAttr);
    EXPECT_EQ(attributes->typekind, TKIND_DISPATCH);
    EXPECT_NE(attributes->wTypeFlags & TYPEFLAG_FDUAL, 0);
    const ComPtr<ITypeInfo> slots = slotsOf(info);
    const Attributes behind(slots, &ITypeInfo::GetTypeAttr);
    EXPECT_EQ(behind->typekind, TKIND_INTERFACE);
    EXPECT_NE(behind->wTypeFlags & TYPEFLAG_FOLEAUTOMATION, 0);
    EXPECT_EQ(guidText(behind->guid), dual.iid);
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> base;
    EXPECT_EQ(slots->GetRefTypeOfImplType(0, &reference), S_OK);
    EXPECT_EQ(slots->GetRefTypeInfo(reference, &base), S_OK);
    EXPECT_EQ(nameOf(base), L"IDispatch");
  }
}

TEST_F(TypeLibrary, MembersHaveTheirIdsAndSlots) {
  constexpr UINT kSlotsOfIDispatch = 7;
  for (const Dual& dual : kDuals) {
    const ComPtr<ITypeInfo> slots = slotsOf(infoOf(dual.iid));
    ASSERT_EQ(Attributes(slots, &ITypeInfo::GetTypeAttr)->cFuncs, dual.members.size());
    for (UINT i = 0; i < dual.members.size(); ++i) {
      const Function function(slots, &ITypeInfo::GetFuncDesc, i);
      expectEqual(memberOf(slots, function), dual.members[i]);
      EXPECT_EQ(function->oVft, static_cast<SHORT>((kSlotsOfIDispatch + i) * sizeof(void*)));
      EXPECT_EQ(function->funckind, FUNC_PUREVIRTUAL);
      EXPECT_EQ(function->elemdescFunc.tdesc.vt, VT_HRESULT);
    }
  }
}

TEST_F(TypeLibrary, NamesLeadToTheIdsInAnyCase) {
  for (const Dual& dual : kDuals) {
    const ComPtr<ITypeInfo> info = infoOf(dual.iid);
    for (const Member& member : dual.members) {
      std::wstring name = member.name;
      for (int spelling = 0; spelling < 2; ++spelling) {
        LPOLESTR asked = name.data();
        MEMBERID id = 0;
        EXPECT_EQ(info->GetIDsOfNames(&asked, 1, &id), S_OK) << testing::PrintToString(name);
        EXPECT_EQ(id, member.id) << testing::PrintToString(name);
        CharUpperW(name.data());
      }
    }
  }
}

TEST_F(TypeLibrary, EventsHaveTheirIdsAndDeclaredArguments) {
  for (const Dual& events : kEvents) {
    const ComPtr<ITypeInfo> info = infoOf(events.iid);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(nameOf(info), events.name);
    const Attributes attributes(info, &ITypeInfo::GetTypeAttr);
    EXPECT_EQ(attributes->typekind, TKIND_DISPATCH);
    EXPECT_EQ(attributes->wTypeFlags & TYPEFLAG_FDUAL, 0);
    ASSERT_EQ(attributes->cFuncs, events.members.size());
    for (UINT i = 0; i < events.members.size(); ++i) {
      const Function function(info, &ITypeInfo::GetFuncDesc, i);
      expectEqual(memberOf(info, function), events.members[i]);
      EXPECT_EQ(function->funckind, FUNC_DISPATCH);
    }
  }
}

TEST_F(TypeLibrary, ClassesHaveTheirInterfaceAndEvents) {
  for (const Class& made : kClassTable) {
    const ComPtr<ITypeInfo> info = infoOf(made.clsid);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(nameOf(info), made.name);
    const Attributes attributes(info, &ITypeInfo::GetTypeAttr);
    EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
    EXPECT_NE(attributes->wTypeFlags & TYPEFLAG_FCANCREATE, 0);
    ASSERT_EQ(attributes->cImplTypes, made.eventsName.empty() ? 1 : 2);
    const std::wstring* const names[] = {&made.interfaceName, &made.eventsName};
    for (UINT i = 0; i < attributes->cImplTypes; ++i) {
      INT flags = 0;
      HREFTYPE reference = 0;
      ComPtr<ITypeInfo> part;
      EXPECT_EQ(info->GetImplTypeFlags(i, &flags), S_OK);
      EXPECT_EQ(flags, i == 0 ? IMPLTYPEFLAG_FDEFAULT : IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE);
      EXPECT_EQ(info->GetRefTypeOfImplType(i, &reference), S_OK);
      EXPECT_EQ(info->GetRefTypeInfo(reference, &part), S_OK);
      EXPECT_EQ(nameOf(part), *names[i]);
    }
  }
}

TEST_F(TypeLibrary, TheHeadersNumbersAreThoseOfTheTables) {
  EXPECT_EQ(guidText(LIBID_BrindlewortLib), L"{67BFF05D-5B2C-4E33-AFE4-D6CE2BDD3121}");
  const IID interfaces[] = {__uuidof(IAlert), __uuidof(IBacktest), __uuidof(IScriptOutput),
                            __uuidof(IValidate)};
  const IID events[] = {__uuidof(_IAlertEvents), __uuidof(_IBacktestEvents), __uuidof(_IScriptOutputEvents)};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(guidText(interfaces[i]), kDuals[i].iid);
    EXPECT_EQ(guidText(kClasses[i]), kClassTable[i].clsid);
  }
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(guidText(events[i]), kEvents[i].iid);
}

TEST_F(TypeLibrary, ObjectsGiveTheirOwnTypeInformation) {
  const auto check = [](const auto& object, const Dual& dual) {
    UINT count = 0;
    EXPECT_EQ(object->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 1u);
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(object->GetTypeInfo(0, LOCALE_NEUTRAL, &info), S_OK);
    EXPECT_EQ(nameOf(info), dual.name);
    EXPECT_EQ(object->GetTypeInfo(1, LOCALE_NEUTRAL, &info), DISP_E_BADINDEX);
    EXPECT_EQ(object->GetTypeInfo(0, LOCALE_NEUTRAL, nullptr), E_POINTER);
    EXPECT_EQ(object->GetTypeInfoCount(nullptr), E_POINTER);
  };
  check(library.make<IAlert>(), kDuals[0]);
  check(library.make<IBacktest>(), kDuals[1]);
  check(library.make<IScriptOutput>(), kDuals[2]);
  check(library.make<IValidate>(), kDuals[3]);
}

}  // namespace
}  // namespace brindlewort::hosts
