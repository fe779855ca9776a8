#pragma once

#include <oaidl.h>
#include <windows.h>
#include <wrl/client.h>

#include <limits>
#include <new>

#include "platform/fp_environment.hpp"
#include "shell/com/dispatch.hpp"
#include "shell/com/facet.hpp"
#include "shell/com/guarded.hpp"
#include "shell/com/module.hpp"

namespace brindlewort::com {

/// Failures of logic reach a host as texts and events, so no member sets an error object of its own.
class ErrorInfoSupport final : public Facet<ISupportErrorInfo> {
 public:
  ErrorInfoSupport(IUnknown& owner, REFIID iid) : Facet(owner), iid_(iid) {}

  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override { return iid == iid_ ? S_OK : S_FALSE; }

 private:
  const IID iid_;
};

/// What all components have: an identity that a host may embed in an object of its own (aggregation), a count
/// of references, and late-bound calls. `Interface` is the dual interface that a component implements.
template <class Interface>
class Component : public Interface {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) final { return outer_.QueryInterface(iid, object); }
  STDMETHODIMP_(ULONG) AddRef() final { return outer_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() final { return outer_.Release(); }

  STDMETHODIMP GetTypeInfoCount(UINT* count) final {
    if (!count) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT number, LCID, ITypeInfo** info) final {
    if (!info) return E_POINTER;
    *info = nullptr;
    if (number != 0) return DISP_E_BADINDEX;
    return guarded([&] { return dispatch_.typeInfo(info); });
  }
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* ids) final {
    if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    return guarded([&] { return dispatch_.idsOfNames(names, count, ids); });
  }
  STDMETHODIMP Invoke(DISPID member, REFIID reserved, LCID, WORD flags, DISPPARAMS* arguments,
                      VARIANT* result, EXCEPINFO* exception, UINT* faultyArgument) final {
    if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    return call(
        [&] { return dispatch_.invoke(this, member, flags, arguments, result, exception, faultyArgument); });
  }

 protected:
  /// `outer` is the object that embeds this one; null when it stands alone.
  explicit Component(IUnknown* outer)
      : identity_(*this),
        outer_(outer ? *outer : identity_),
        dispatch_(__uuidof(Interface)),
        errorInfo_(outer_, __uuidof(Interface)) {}
  virtual ~Component() = default;
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

  /// The object as its host sees it.
  IUnknown& outer() { return outer_; }

  /// An interface that a component has beside those of all; null when there is none of this name.
  virtual IUnknown* furtherInterface(REFIID) { return nullptr; }

  /// Lets go of what the component holds of its host, while it can still be called.
  virtual void disconnect() {}

  /// The way in and out of the host's floating-point environment.
  platform::FpDoor& door() { return door_; }

  /// Runs the body of a member. An event within it may make the host let go of the component; it lives on to
  /// the end of the call.
  template <class Work>
  HRESULT call(Work work) noexcept {
    const Microsoft::WRL::ComPtr<IUnknown> keep(&outer_);
    const platform::FpDoor::Inside inside(door_);
    return guarded([&] { return inside.run(work); });
  }

 private:
  template <class Class>
  friend HRESULT makeComponent(IUnknown* outer, REFIID iid, void** object);

  /// The component's own IUnknown. It counts; all other interfaces hand on to it, or to the embedding object.
  class Identity final : public IUnknown {
   public:
    explicit Identity(Component& component) : component_(component) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
      if (!object) return E_POINTER;
      IUnknown* const found = iid == __uuidof(IUnknown) ? this : component_.interfaceOf(iid);
      *object = found;
      if (found) found->AddRef();
      return found ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }
    STDMETHODIMP_(ULONG) Release() override {
      const LONG left = InterlockedDecrement(&references_);
      if (left != 0) return static_cast<ULONG>(left);
      // Sinks that are let go of may take and release references once more, and call the component.
      references_ = std::numeric_limits<LONG>::max() / 2;
      component_.disconnect();
      delete &component_;
      return 0;
    }

   private:
    Component& component_;
    LONG references_ = 1;
  };

  IUnknown* interfaceOf(REFIID iid) {
    if (iid == __uuidof(Interface) || iid == __uuidof(IDispatch)) return this;
    if (iid == __uuidof(ISupportErrorInfo)) return &errorInfo_;
    return furtherInterface(iid);
  }

  const module::Use use_;
  platform::FpDoor door_;
  Identity identity_;
  IUnknown& outer_;
  Dispatch dispatch_;
  ErrorInfoSupport errorInfo_;
};

/// Makes a component and asks it for an interface; an embedding object must ask for IUnknown.
template <class Class>
HRESULT makeComponent(IUnknown* outer, REFIID iid, void** object) {
  platform::FpDoor door;
  const platform::FpDoor::Inside inside(door);
  return guarded([&] {
    auto* const component = new Class(outer);
    const HRESULT result = component->identity_.QueryInterface(iid, object);
    component->identity_.Release();
    return result;
  });
}

}  // namespace brindlewort::com
