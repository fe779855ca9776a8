#include "shell/com/registration.hpp"

#include <oleauto.h>
#include <olectl.h>
#include <wrl/client.h>

#include <string>
#include <string_view>
#include <vector>

#include "shell/com/components.hpp"
#include "shell/com/module.hpp"
#include "shell/com/registration_script.hpp"
#include "shell/com/type_library.hpp"

using Microsoft::WRL::ComPtr;

namespace brindlewort::com {

namespace {

/// The kind of resource that registration scripts are.
constexpr wchar_t kScripts[] = L"REGISTRY";

/// An open key of the registry; closed at the end of its life.
class OpenKey {
 public:
  explicit OpenKey(HKEY key = nullptr) : key_(key) {}
  ~OpenKey() {
    if (key_) RegCloseKey(key_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  HKEY get() const { return key_; }
  HKEY* place() { return &key_; }

 private:
  HKEY key_;
};

LSTATUS setValue(HKEY key, const wchar_t* name, const std::wstring& value) {
  const auto* const bytes = reinterpret_cast<const BYTE*>(value.c_str());
  return RegSetValueExW(key, name, 0, REG_SZ, bytes,
                        static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

LSTATUS removeTree(HKEY parent, const std::wstring& name) {
  const LSTATUS status = RegDeleteTreeW(parent, name.c_str());
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

LSTATUS addKey(HKEY parent, const RegistryKey& key) {
  LSTATUS status = ERROR_SUCCESS;
  if (key.policy == KeyPolicy::kForceRemove) status = removeTree(parent, key.name);
  OpenKey open;
  if (status == ERROR_SUCCESS) {
    status = RegCreateKeyExW(parent, key.name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                             KEY_READ | KEY_WRITE, nullptr, open.place(), nullptr);
  }
  if (status == ERROR_SUCCESS && key.defaultValue) status = setValue(open.get(), nullptr, *key.defaultValue);
  for (const auto& [name, value] : key.values) {
    if (status == ERROR_SUCCESS) status = setValue(open.get(), name.c_str(), value);
  }
  for (const RegistryKey& child : key.keys) {
    if (status == ERROR_SUCCESS) status = addKey(open.get(), child);
  }
  return status;
}

LSTATUS removeKey(HKEY parent, const RegistryKey& key) {
  if (key.policy != KeyPolicy::kNoRemove) return removeTree(parent, key.name);
  OpenKey open;
  const LSTATUS opened = RegOpenKeyExW(parent, key.name.c_str(), 0, KEY_READ | KEY_WRITE, open.place());
  if (opened != ERROR_SUCCESS) return opened == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : opened;
  LSTATUS first = ERROR_SUCCESS;
  for (const RegistryKey& child : key.keys) {
    const LSTATUS status = removeKey(open.get(), child);
    if (first == ERROR_SUCCESS) first = status;
  }
  return first;
}

/// A script of the library's resources; the scripts are plain ASCII.
std::wstring scriptText(WORD number) {
  const HRSRC found = FindResourceW(module::instance(), MAKEINTRESOURCEW(number), kScripts);
  const HGLOBAL loaded = found ? LoadResource(module::instance(), found) : nullptr;
  const auto* const text = loaded ? static_cast<const char*>(LockResource(loaded)) : nullptr;
  return text ? std::wstring(text, text + SizeofResource(module::instance(), found)) : std::wstring();
}

/// Does something with each key that the script of a class names.
template <class Work>
HRESULT withKeysOf(const ComponentClass& made, Work work) {
  const auto keys = readRegistrationScript(scriptText(made.registration), module::path());
  if (!keys) return SELFREG_E_CLASS;
  HRESULT first = S_OK;
  for (const RegistryKey& key : *keys) {
    const HRESULT result = HRESULT_FROM_WIN32(static_cast<DWORD>(work(HKEY_CLASSES_ROOT, key)));
    if (SUCCEEDED(first)) first = result;
  }
  return first;
}

HRESULT registerTypeLibrary() {
  ComPtr<ITypeLib> library;
  const HRESULT result = loadTypeLibrary(&library);
  return FAILED(result) ? result : RegisterTypeLib(library.Get(), module::path().data(), nullptr);
}

HRESULT unregisterTypeLibrary() {
  ComPtr<ITypeLib> library;
  TLIBATTR* attributes = nullptr;
  HRESULT result = loadTypeLibrary(&library);
  if (SUCCEEDED(result)) result = library->GetLibAttr(&attributes);
  if (FAILED(result)) return result;
  result = UnRegisterTypeLib(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum,
                             attributes->lcid, attributes->syskind);
  library->ReleaseTLibAttr(attributes);
  const bool wasNotRegistered = result == TYPE_E_REGISTRYACCESS || result == E_INVALIDARG;
  return wasNotRegistered ? S_OK : result;
}

}  // namespace

HRESULT registerServer() {
  for (const ComponentClass& made : componentClasses()) {
    if (const HRESULT result = withKeysOf(made, addKey); FAILED(result)) return result;
  }
  return registerTypeLibrary();
}

HRESULT unregisterServer() {
  HRESULT first = S_OK;
  for (const ComponentClass& made : componentClasses()) {
    const HRESULT result = withKeysOf(made, removeKey);
    if (SUCCEEDED(first)) first = result;
  }
  const HRESULT result = unregisterTypeLibrary();
  return FAILED(first) ? first : result;
}

}  // namespace brindlewort::com
