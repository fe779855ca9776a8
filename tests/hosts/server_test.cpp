// The library's entry points, without any registration.

#include <memory>
#include <thread>
#include <vector>

#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

using Server = HostTest;

TEST_F(Server, HasAFactoryForEachClass) {
  for (const CLSID& clsid : kClasses) {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(library.getClassObject(clsid, IID_PPV_ARGS(&factory)), S_OK);
    ASSERT_NE(factory, nullptr);
    ComPtr<IUnknown> identity;
    EXPECT_EQ(library.getClassObject(clsid, IID_PPV_ARGS(&identity)), S_OK);
  }
}

TEST_F(Server, RefusesOtherClassesAndInterfaces) {
  void* object = this;
  EXPECT_EQ(library.getClassObject(CLSID_NULL, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  object = this;
  // An interface's number is no class's.
  EXPECT_EQ(library.getClassObject(__uuidof(IAlert), IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  object = this;
  EXPECT_EQ(library.getClassObject(kClassOf<IAlert>, __uuidof(IAlert), &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(library.getClassObject(kClassOf<IAlert>, IID_IClassFactory, nullptr), E_POINTER);
}

TEST_F(Server, AFactoryMakesObjectsOfItsClass) {
  const IID interfaces[] = {__uuidof(IAlert), __uuidof(IBacktest), __uuidof(IScriptOutput),
                            __uuidof(IValidate)};
  for (int made = 0; made < 4; ++made) {
    const ComPtr<IClassFactory> factory = library.factory(kClasses[made]);
    for (int asked = 0; asked < 4; ++asked) {
      ComPtr<IUnknown> object;
      const HRESULT result = factory->CreateInstance(
          nullptr, interfaces[asked], reinterpret_cast<void**>(object.ReleaseAndGetAddressOf()));
      EXPECT_EQ(result, made == asked ? S_OK : E_NOINTERFACE) << made << " " << asked;
      EXPECT_EQ(object != nullptr, made == asked);
    }
    ComPtr<IUnknown> first, second;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_PPV_ARGS(&first)), S_OK);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_PPV_ARGS(&second)), S_OK);
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
  }
}

TEST_F(Server, AnObjectKeepsTheLibrary) {
  EXPECT_EQ(library.canUnloadNow(), S_OK);
  for (const CLSID& clsid : kClasses) {
    ComPtr<IUnknown> object;
    library.factory(clsid)->CreateInstance(nullptr, IID_PPV_ARGS(&object));
    EXPECT_EQ(library.canUnloadNow(), S_FALSE);
    object.Reset();
    EXPECT_EQ(library.canUnloadNow(), S_OK);
  }
}

TEST_F(Server, ALockKeepsTheLibrary) {
  // The locks are the module's, not the factory's.
  const auto lock = [&](REFCLSID clsid, BOOL on) { EXPECT_EQ(library.factory(clsid)->LockServer(on), S_OK); };
  lock(kClassOf<IAlert>, TRUE);
  EXPECT_EQ(library.canUnloadNow(), S_FALSE);
  lock(kClassOf<IValidate>, TRUE);
  lock(kClassOf<IAlert>, FALSE);
  EXPECT_EQ(library.canUnloadNow(), S_FALSE);
  lock(kClassOf<IAlert>, FALSE);
  EXPECT_EQ(library.canUnloadNow(), S_OK);
}

TEST_F(Server, AFactoryAloneKeepsTheLibrary) {
  ComPtr<IClassFactory> factory = library.factory(kClassOf<IAlert>);
  EXPECT_EQ(library.canUnloadNow(), S_FALSE);
  factory.Reset();
  EXPECT_EQ(library.canUnloadNow(), S_OK);
}

TEST_F(Server, AnyInterfaceOfAnObjectKeepsTheLibrary) {
  ComPtr<IConnectionPoint> point = pointOf(library.make<IAlert>());
  EXPECT_EQ(library.canUnloadNow(), S_FALSE);
  point.Reset();
  ComPtr<ISupportErrorInfo> errors = query<ISupportErrorInfo>(library.make<IValidate>());
  EXPECT_EQ(library.canUnloadNow(), S_FALSE);
  errors.Reset();
  EXPECT_EQ(library.canUnloadNow(), S_OK);
}

TEST_F(Server, AnEnumeratorKeepsTheLibrary) {
  ComPtr<IEnumConnections> connections;
  EXPECT_EQ(pointOf(library.make<IBacktest>())->EnumConnections(&connections), S_OK);
  EXPECT_EQ(library.canUnloadNow(), S_FALSE);
  connections.Reset();
  EXPECT_EQ(library.canUnloadNow(), S_OK);

  ComPtr<IEnumConnectionPoints> points, copy;
  query<IConnectionPointContainer>(library.make<IBacktest>())->EnumConnectionPoints(&points);
  EXPECT_EQ(points->Clone(&copy), S_OK);
  points.Reset();
  EXPECT_EQ(library.canUnloadNow(), S_FALSE);
}

TEST_F(Server, TypeInformationOutlivesItsObject) {
  ComPtr<ITypeInfo> info;
  EXPECT_EQ(library.make<IValidate>()->GetTypeInfo(0, LOCALE_NEUTRAL, &info), S_OK);
  EXPECT_EQ(library.canUnloadNow(), S_OK);  // it belongs to the system
  Text name;
  EXPECT_EQ(info->GetDocumentation(MEMBERID_NIL, name.place(), nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(name.str(), L"IValidate");
}

TEST_F(Server, TheTypeLibraryIsLoadedAgainAfterItWasLetGo) {
  for (int i = 0; i < 3; ++i) {
    const ComPtr<IValidate> validate = library.make<IValidate>();
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(validate->GetTypeInfo(0, LOCALE_NEUTRAL, &info), S_OK);
    EXPECT_NE(info, nullptr);
    EXPECT_EQ(library.canUnloadNow(), S_FALSE);
  }
}

TEST(ServerLife, LoadsAndUnloadsManyTimes) {
  const Apartment apartment;
  for (int i = 0; i < 200; ++i) {
    {
      const Library library;
      const ComPtr<IAlert> alert = library.make<IAlert>();
      EXPECT_EQ(call(alert, &IAlert::put_Symbol, L"SYM"), S_OK);
      EXPECT_EQ(textOf(alert, &IAlert::get_Symbol), L"SYM");
    }
    ASSERT_EQ(GetModuleHandleW(L"Brindlewort.dll"), nullptr) << i;
  }
}

TEST(ServerLife, EndsOnAnotherThreadThanItBeganOn) {
  // The thread has used the library, lives on after it, and ends when it is gone.
  HANDLE unloaded = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  HANDLE used = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  auto library = std::make_unique<Library>();
  std::thread user([&] {
    {
      const Apartment apartment;
      const ComPtr<IValidate> validate = library->make<IValidate>();
      EXPECT_EQ(textOf(validate, &IValidate::Validate, L"CLOSE > OPEN", -1), L"");
    }
    SetEvent(used);
    WaitForSingleObject(unloaded, 20'000);
  });
  EXPECT_EQ(WaitForSingleObject(used, 20'000), WAIT_OBJECT_0);
  library.reset();
  EXPECT_EQ(GetModuleHandleW(L"Brindlewort.dll"), nullptr);
  SetEvent(unloaded);
  user.join();
  CloseHandle(used);
  CloseHandle(unloaded);
}

TEST(ServerLife, ObjectsOfSeveralThreadsAreCountedTogether) {
  const Library library;
  std::vector<std::thread> users;
  for (int t = 0; t < 4; ++t) {
    users.emplace_back([&] {
      const Apartment apartment;
      for (int i = 0; i < 500; ++i) {
        const ComPtr<IBacktest> backtest = library.make<IBacktest>();
        EXPECT_EQ(library.canUnloadNow(), S_FALSE);
        DISPID id;
        LPOLESTR name = const_cast<LPOLESTR>(L"Backtest");
        EXPECT_EQ(backtest->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_NEUTRAL, &id), S_OK);
        EXPECT_EQ(id, 9);
      }
    });
  }
  for (std::thread& user : users) user.join();
  EXPECT_EQ(library.canUnloadNow(), S_OK);
}

}  // namespace
}  // namespace brindlewort::hosts
