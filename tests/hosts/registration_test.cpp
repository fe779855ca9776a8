// Registration: the keys that it makes and takes away, and hosts that find the classes by them. Changes the
// registry of the system that it runs on.

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "bars.hpp"
#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

constexpr const wchar_t* kLibraryNumber = L"{67BFF05D-5B2C-4E33-AFE4-D6CE2BDD3121}";

struct RegisteredClass {
  std::wstring clsid, versioned, plain, name;
};

const std::vector<RegisteredClass> kRegistered = {
    {L"{83392496-8720-4F6B-B906-984B587FDF74}", L"Brindlewort.Alert.1", L"Brindlewort.Alert", L"Alert Class"},
    {L"{DDAF2F33-6E54-4161-AFCD-15058E0AA338}", L"Brindlewort.Backtest.1", L"Brindlewort.Backtest",
     L"Backtest Class"},
    {L"{5CA7CD37-4019-427C-A5BF-4A8C82DD9537}", L"Brindlewort.ScriptOutput.1", L"Brindlewort.ScriptOutput",
     L"ScriptOutput Class"},
    {L"{92347C5B-95EB-4C71-8CB6-7F1AE45A2726}", L"Brindlewort.Validate.1", L"Brindlewort.Validate",
     L"Validate Class"},
};

/// Interfaces that the type library's registration lists.
const std::vector<std::wstring> kInterfaces = {
    L"{7E2BD722-EBC5-481B-B690-01215E0B0348}", L"{6310CAB4-5528-4533-9AA8-37BD763FE109}",
    L"{FD64E200-218C-4920-9CF4-E145AAFA718C}", L"{A8F448D8-D8FB-4991-835E-D8F5BD97741B}",
    L"{8EAE6DA6-5EDF-4B01-92F6-00D4F56E91D0}", L"{48E1FE57-167A-4BF1-A87F-1CDF759FA8B9}",
    L"{95F45E4F-0588-45BB-A7BA-38E9CEFFBFDB}"};

// ---- The registry

bool exists(const std::wstring& path) {
  HKEY key;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  RegCloseKey(key);
  return true;
}

/// A text of the registry; the unnamed one of a key when no name is given. "(none)" without one.
std::wstring value(const std::wstring& path, const wchar_t* name = nullptr) {
  wchar_t text[1'024];
  DWORD size = sizeof text;
  const LSTATUS status =
      RegGetValueW(HKEY_CLASSES_ROOT, path.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size);
  return status == ERROR_SUCCESS ? text : L"(none)";
}

void make(const std::wstring& path, const wchar_t* text) {
  EXPECT_EQ(RegSetKeyValueW(HKEY_CLASSES_ROOT, path.c_str(), nullptr, REG_SZ, text,
                            static_cast<DWORD>((wcslen(text) + 1) * sizeof(wchar_t))),
            ERROR_SUCCESS);
}

using Names = std::vector<std::wstring>;

/// The names of the keys beneath a key, in their order.
Names keysOf(const std::wstring& path) {
  Names names;
  HKEY key;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    return {L"(no key)"};
  wchar_t name[256];
  for (DWORD i = 0, size = 256; RegEnumKeyExW(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) == 0;
       ++i, size = 256) {
    names.push_back(name);
  }
  RegCloseKey(key);
  std::sort(names.begin(), names.end());
  return names;
}

void expectNothingRegistered() {
  for (const RegisteredClass& made : kRegistered) {
    EXPECT_FALSE(exists(L"CLSID\\" + made.clsid));
    EXPECT_FALSE(exists(made.versioned));
    EXPECT_FALSE(exists(made.plain));
  }
  EXPECT_FALSE(exists(std::wstring(L"TypeLib\\") + kLibraryNumber));
  for (const std::wstring& iid : kInterfaces) EXPECT_FALSE(exists(L"Interface\\" + iid));
}

class Registration : public ::testing::Test {
 protected:
  // What a test that failed may have left.
  void SetUp() override { library.unregisterServer(); }
  void TearDown() override { library.unregisterServer(); }
  Library library;
};

TEST_F(Registration, MakesTheKeysOfEachClass) {
  expectNothingRegistered();
  ASSERT_EQ(library.registerServer(), S_OK);
  for (const RegisteredClass& made : kRegistered) {
    const std::wstring key = L"CLSID\\" + made.clsid;
    EXPECT_EQ(value(key), made.name);
    EXPECT_EQ(keysOf(key), (Names{L"InprocServer32", L"ProgID", L"Programmable", L"TypeLib",
                                  L"VersionIndependentProgID"}));
    EXPECT_EQ(value(key + L"\\InprocServer32"), libraryPath());
    EXPECT_EQ(value(key + L"\\InprocServer32", L"ThreadingModel"), L"Apartment");
    EXPECT_EQ(value(key + L"\\ProgID"), made.versioned);
    EXPECT_EQ(value(key + L"\\VersionIndependentProgID"), made.plain);
    EXPECT_EQ(value(key + L"\\TypeLib"), kLibraryNumber);
    EXPECT_EQ(value(made.versioned), made.name);
    EXPECT_EQ(value(made.versioned + L"\\CLSID"), made.clsid);
    EXPECT_EQ(value(made.plain), made.name);
    EXPECT_EQ(value(made.plain + L"\\CLSID"), made.clsid);
    EXPECT_EQ(value(made.plain + L"\\CurVer"), made.versioned);
  }
}

TEST_F(Registration, RegistersTheTypeLibrary) {
  ASSERT_EQ(library.registerServer(), S_OK);
  const std::wstring key = std::wstring(L"TypeLib\\") + kLibraryNumber + L"\\1.0";
  EXPECT_TRUE(exists(key));
  EXPECT_EQ(value(key + L"\\0\\win64"), libraryPath());
  for (const std::wstring& iid : kInterfaces) {
    EXPECT_EQ(value(L"Interface\\" + iid + L"\\TypeLib"), kLibraryNumber);
  }
  ComPtr<ITypeLib> types;
  EXPECT_EQ(LoadRegTypeLib(LIBID_BrindlewortLib, 1, 0, LOCALE_NEUTRAL, &types), S_OK);
  ComPtr<ITypeInfo> info;
  ASSERT_NE(types.Get(), nullptr);
  EXPECT_EQ(types->GetTypeInfoOfGuid(__uuidof(IAlert), &info), S_OK);
}

TEST_F(Registration, TakesAllAwayButWhatIsNotItsOwn) {
  make(L"CLSID\\{00000000-1111-2222-3333-444444444444}", L"another's");
  ASSERT_EQ(library.registerServer(), S_OK);
  make(L"CLSID\\" + kRegistered[0].clsid + L"\\Added", L"by a tool");  // leaves with the class
  ASSERT_EQ(library.unregisterServer(), S_OK);
  expectNothingRegistered();
  EXPECT_TRUE(exists(L"CLSID"));
  EXPECT_TRUE(exists(L"TypeLib"));
  EXPECT_TRUE(exists(L"Interface"));
  EXPECT_EQ(value(L"CLSID\\{00000000-1111-2222-3333-444444444444}"), L"another's");
  EXPECT_EQ(RegDeleteTreeW(HKEY_CLASSES_ROOT, L"CLSID\\{00000000-1111-2222-3333-444444444444}"),
            ERROR_SUCCESS);
}

TEST_F(Registration, MayBeDoneTwiceAndUndoneTwice) {
  EXPECT_EQ(library.registerServer(), S_OK);
  make(L"CLSID\\" + kRegistered[0].clsid + L"\\InprocServer32", L"elsewhere.dll");
  make(L"CLSID\\" + kRegistered[0].clsid + L"\\Old", L"of a version before");
  EXPECT_EQ(library.registerServer(), S_OK);
  EXPECT_EQ(value(L"CLSID\\" + kRegistered[0].clsid + L"\\InprocServer32"), libraryPath());
  EXPECT_FALSE(exists(L"CLSID\\" + kRegistered[0].clsid + L"\\Old"));
  EXPECT_EQ(library.unregisterServer(), S_OK);
  EXPECT_EQ(library.unregisterServer(), S_OK);
  expectNothingRegistered();
}

TEST_F(Registration, LeavesNoTraceInTheLibrary) {
  EXPECT_EQ(library.registerServer(), S_OK);
  EXPECT_EQ(library.unregisterServer(), S_OK);
  EXPECT_EQ(library.canUnloadNow(), S_OK);
}

// ---- Hosts of the registered classes

template <class Interface>
void expectCreatable(const CLSID& clsid) {
  ComPtr<Interface> object;
  EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object)), S_OK);
  ASSERT_NE(object.Get(), nullptr);
  EXPECT_NE(textOf(object, &Interface::get_ScriptHelp), L"(null)");
}

CLSID classNamed(const std::wstring& progId) {
  CLSID clsid = CLSID_NULL;
  EXPECT_EQ(CLSIDFromProgID(progId.c_str(), &clsid), S_OK) << testing::PrintToString(progId);
  return clsid;
}

TEST_F(Registration, ClassesAreCreatedByNumberAndByEitherName) {
  ASSERT_EQ(library.registerServer(), S_OK);
  {
    const Apartment apartment;
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(classNamed(kRegistered[i].versioned), kClasses[i]);
      EXPECT_EQ(classNamed(kRegistered[i].plain), kClasses[i]);
    }
    expectCreatable<IAlert>(kClassOf<IAlert>);
    expectCreatable<IBacktest>(classNamed(L"Brindlewort.Backtest"));
    expectCreatable<IScriptOutput>(classNamed(L"Brindlewort.ScriptOutput.1"));
    expectCreatable<IValidate>(classNamed(L"Brindlewort.Validate"));
  }
  EXPECT_EQ(library.canUnloadNow(), S_OK);
}

TEST_F(Registration, AHostOfManyThreadsIsServedThroughTheApartmentOfTheObject) {
  ASSERT_EQ(library.registerServer(), S_OK);
  {
    const Apartment manyThreads(COINIT_MULTITHREADED);
    ComPtr<IAlert> alert;
    ASSERT_EQ(CoCreateInstance(kClassOf<IAlert>, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&alert)), S_OK);
    const ComPtr<Sink> sink = Sink::make(kEventsOf<IAlert>);
    DWORD eventThread = 0;
    sink->react = [&] {
      eventThread = GetCurrentThreadId();
      return S_OK;
    };
    DWORD cookie = 0;
    ASSERT_EQ(pointOf(alert)->Advise(sink.Get(), &cookie), S_OK);
    EXPECT_EQ(call(alert, &IAlert::put_Symbol, L"SYM"), S_OK);
    EXPECT_EQ(textOf(alert, &IAlert::get_Symbol), L"SYM");
    EXPECT_EQ(call(alert, &IAlert::put_AlertScript, L"CLOSE > 0"), S_OK);
    appendAll(alert, {1, 1, 1, 1, 2});
    EXPECT_EQ(sink->take(), Lines{L"1: '' 'SYM' R8 2451549 R8 2"});
    EXPECT_NE(eventThread, 0u);
    EXPECT_EQ(recordByIndex(alert, 5), (Record{dateOf(5), 2, 2, 2, 2, 100, VARIANT_TRUE}));
    EXPECT_EQ(boolOf(alert, &IAlert::EditJDate, dateOf(5), dateOf(6)), -1);
    // Another thread of the host calls the same object.
    std::thread other([&] {
      const Apartment same(COINIT_MULTITHREADED);
      EXPECT_EQ(valueOf<LONG>(alert, &IAlert::get_RecordCount), 5);
    });
    other.join();
    // The system may keep the factory; the object and all that it refers to are gone.
    alert.Reset();
    EXPECT_EQ(sink->references(), 1);
  }
}

void useFromAnotherApartment(const IScriptOutput* original, ComPtr<IStream>& parcel) {
  const Apartment apartment;
  ComPtr<IScriptOutput> proxy;
  ASSERT_EQ(CoUnmarshalInterface(parcel.Get(), IID_PPV_ARGS(&proxy)), S_OK);
  EXPECT_NE(proxy.Get(), original);
  appendNew(proxy, 1, 5);
  EXPECT_EQ(valueOf<LONG>(proxy, &IScriptOutput::get_RecordCount), 1);
  EXPECT_EQ(boolOf(proxy, &IScriptOutput::ProcessScripData, L"CLOSE"), 1);
}

TEST_F(Registration, AnObjectOfOneApartmentIsCalledFromAnother) {
  ASSERT_EQ(library.registerServer(), S_OK);
  {
    const Apartment apartment;
    const ComPtr<IScriptOutput> output = library.make<IScriptOutput>();
    ComPtr<IStream> parcel;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(__uuidof(IScriptOutput), output.Get(), &parcel), S_OK);
    HANDLE ended = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread other([&] {
      useFromAnotherApartment(output.Get(), parcel);
      SetEvent(ended);
    });
    DWORD index = 0;
    EXPECT_EQ(CoWaitForMultipleHandles(0, 20'000, 1, &ended, &index), S_OK);  // serves the calls meanwhile
    other.join();
    CloseHandle(ended);
    EXPECT_EQ(valueOf<LONG>(output, &IScriptOutput::get_RecordCount), 1);
    EXPECT_EQ(output->AddRef(), 2u);  // nobody else has it any more
    EXPECT_EQ(output->Release(), 1u);
  }
}

}  // namespace
}  // namespace brindlewort::hosts
