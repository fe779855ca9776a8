// The four entry points that the system calls.

#include <olectl.h>
#include <windows.h>

#include <algorithm>
#include <new>

#include "shell/com/class_factory.hpp"
#include "shell/com/components.hpp"
#include "shell/com/guarded.hpp"
#include "shell/com/module.hpp"
#include "shell/com/registration.hpp"
#include "shell/com/type_library.hpp"

using namespace brindlewort::com;

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  const auto classes = componentClasses();
  const auto found = std::ranges::find_if(classes, [&](const ComponentClass& c) { return c.clsid == clsid; });
  if (found == classes.end()) return CLASS_E_CLASSNOTAVAILABLE;
  auto* const factory = new (std::nothrow) ClassFactory(*found);
  if (!factory) return E_OUTOFMEMORY;
  const HRESULT result = factory->QueryInterface(iid, object);
  factory->Release();
  return result;
}

STDAPI DllCanUnloadNow() {
  if (module::isInUse()) return S_FALSE;
  forgetTypeLibrary();
  return S_OK;
}

STDAPI DllRegisterServer() {
  return guarded(registerServer);
}

STDAPI DllUnregisterServer() {
  return guarded(unregisterServer);
}
