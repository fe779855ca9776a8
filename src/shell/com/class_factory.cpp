#include "shell/com/class_factory.hpp"

namespace brindlewort::com {

STDMETHODIMP ClassFactory::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(IClassFactory);
  *object = known ? static_cast<IClassFactory*>(this) : nullptr;
  if (known) AddRef();
  return known ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP_(ULONG) ClassFactory::AddRef() {
  return static_cast<ULONG>(InterlockedIncrement(&references_));
}

STDMETHODIMP_(ULONG) ClassFactory::Release() {
  const LONG left = InterlockedDecrement(&references_);
  if (left == 0) delete this;
  return static_cast<ULONG>(left);
}

STDMETHODIMP ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  // An embedding object needs the component's own IUnknown: all others hand on to its own.
  if (outer && iid != __uuidof(IUnknown)) return CLASS_E_NOAGGREGATION;
  return made_.make(outer, iid, object);
}

STDMETHODIMP ClassFactory::LockServer(BOOL lock) {
  lock ? module::keep() : module::release();
  return S_OK;
}

}  // namespace brindlewort::com
