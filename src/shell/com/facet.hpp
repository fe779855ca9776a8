#pragma once

#include <unknwn.h>
#include <windows.h>

namespace brindlewort::com {

/// A further interface of a component: an object of its own that has the component's identity and life.
template <class Interface>
class Facet : public Interface {
 public:
  explicit Facet(IUnknown& owner) : owner_(owner) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    return owner_.QueryInterface(iid, object);
  }
  STDMETHODIMP_(ULONG) AddRef() override { return owner_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return owner_.Release(); }

 private:
  IUnknown& owner_;
};

}  // namespace brindlewort::com
