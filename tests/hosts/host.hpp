#pragma once

#include <gtest/gtest.h>
#include <olectl.h>
#include <windows.h>
#include <wrl/client.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "brindlewort_com.h"

/// The library as a host in C++ has it: loaded from the program's own folder, its objects made by their class
/// factories.
namespace brindlewort::hosts {

using Microsoft::WRL::ComPtr;

/// A text of the automation, freed at the end of its life. Null until it has been given one.
class Text {
 public:
  Text() = default;
  explicit Text(std::wstring_view text)
      : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  ~Text() { SysFreeString(text_); }
  Text(Text&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  operator BSTR() const { return text_; }
  BSTR* place() { return &text_; }
  bool isNull() const { return !text_; }
  /// "(null)" stands for a null text, which is another thing than an empty one.
  std::wstring str() const { return text_ ? std::wstring(text_, SysStringLen(text_)) : L"(null)"; }

 private:
  BSTR text_ = nullptr;
};

// ---- Calls of members, with plain texts where these take BSTRs.

inline Text argument(const wchar_t* text) {
  return Text(text);
}
inline Text argument(const std::wstring& text) {
  return Text(text);
}
template <class Value>
const Value& argument(const Value& value) {
  return value;
}

template <class Object, class Member, class... Arguments>
HRESULT call(const ComPtr<Object>& object, Member member, const Arguments&... arguments) {
  return (object.Get()->*member)(argument(arguments)...);
}

/// The value of a member's last parameter, after a call that ends with `expected`.
template <class Value, class Object, class Member, class... Arguments>
Value valueOf(const ComPtr<Object>& object, Member member, const Arguments&... arguments) {
  Value value{};
  EXPECT_EQ((object.Get()->*member)(argument(arguments)..., &value), S_OK);
  return value;
}

template <class Object, class Member, class... Arguments>
std::wstring textOf(const ComPtr<Object>& object, Member member, const Arguments&... arguments) {
  Text text;
  EXPECT_EQ((object.Get()->*member)(argument(arguments)..., text.place()), S_OK);
  return text.str();
}

/// A BOOL result as a number, so that -1 and 1 differ. It stands at neither before the call.
template <class Object, class Member, class... Arguments>
int boolOf(const ComPtr<Object>& object, Member member, const Arguments&... arguments) {
  VARIANT_BOOL value = 77;
  EXPECT_EQ((object.Get()->*member)(argument(arguments)..., &value), S_OK);
  return value;
}

/// The same for a call that is refused with the code 1.
template <class Object, class Member, class... Arguments>
int refusedBoolOf(const ComPtr<Object>& object, Member member, const Arguments&... arguments) {
  VARIANT_BOOL value = 77;
  EXPECT_EQ((object.Get()->*member)(argument(arguments)..., &value), static_cast<HRESULT>(1));
  return value;
}

// ---- The library

/// The class behind an interface.
template <class Interface>
inline const CLSID kClassOf = CLSID_NULL;
template <>
inline const CLSID kClassOf<IAlert> = __uuidof(::Alert);
template <>
inline const CLSID kClassOf<IBacktest> = __uuidof(::Backtest);
template <>
inline const CLSID kClassOf<IScriptOutput> = __uuidof(::ScriptOutput);
template <>
inline const CLSID kClassOf<IValidate> = __uuidof(::Validate);

inline const CLSID kClasses[] = {kClassOf<IAlert>, kClassOf<IBacktest>, kClassOf<IScriptOutput>,
                                 kClassOf<IValidate>};

/// A file in the program's folder.
inline std::wstring besideProgram(const wchar_t* file) {
  std::wstring path(32'768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path.substr(0, path.find_last_of(L'\\') + 1) + file;
}

inline std::wstring libraryPath() {
  return besideProgram(L"Brindlewort.dll");
}

/// The loaded library; unloaded at the end of its life.
class Library {
 public:
  Library() : module_(LoadLibraryW(libraryPath().c_str())) {
    EXPECT_NE(module_, nullptr) << GetLastError();
    getClassObject_ = entry<decltype(getClassObject_)>("DllGetClassObject");
    canUnloadNow_ = entry<decltype(canUnloadNow_)>("DllCanUnloadNow");
    register_ = entry<decltype(register_)>("DllRegisterServer");
    unregister_ = entry<decltype(unregister_)>("DllUnregisterServer");
  }
  ~Library() { FreeLibrary(module_); }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  HMODULE module() const { return module_; }
  HRESULT getClassObject(REFCLSID clsid, REFIID iid, void** object) const {
    return getClassObject_(clsid, iid, object);
  }
  HRESULT canUnloadNow() const { return canUnloadNow_(); }
  HRESULT registerServer() const { return register_(); }
  HRESULT unregisterServer() const { return unregister_(); }

  ComPtr<IClassFactory> factory(REFCLSID clsid) const {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(getClassObject(clsid, IID_PPV_ARGS(&factory)), S_OK);
    return factory;
  }
  template <class Interface>
  ComPtr<Interface> make() const {
    ComPtr<Interface> object;
    EXPECT_EQ(factory(kClassOf<Interface>)->CreateInstance(nullptr, IID_PPV_ARGS(&object)), S_OK);
    return object;
  }

 private:
  template <class Function>
  Function entry(const char* name) const {
    const auto found = reinterpret_cast<void (*)()>(GetProcAddress(module_, name));
    EXPECT_NE(found, nullptr) << name;
    return reinterpret_cast<Function>(found);
  }

  HMODULE module_;
  HRESULT(WINAPI* getClassObject_)(REFCLSID, REFIID, void**);
  HRESULT(WINAPI* canUnloadNow_)();
  HRESULT(WINAPI* register_)();
  HRESULT(WINAPI* unregister_)();
};

/// The thread's place in the object model.
class Apartment {
 public:
  explicit Apartment(DWORD kind = COINIT_APARTMENTTHREADED) {
    EXPECT_EQ(CoInitializeEx(nullptr, kind), S_OK);
  }
  ~Apartment() { CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

/// A test with the library loaded. It fails when something of the library is still in use at its end.
class HostTest : public ::testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(library.canUnloadNow(), S_OK) << "something was not released"; }

  Apartment apartment;
  Library library;
};

template <class Interface, class From>
ComPtr<Interface> query(const ComPtr<From>& object) {
  ComPtr<Interface> result;
  EXPECT_EQ(object->QueryInterface(IID_PPV_ARGS(&result)), S_OK);
  return result;
}

}  // namespace brindlewort::hosts
