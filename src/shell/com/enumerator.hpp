#pragma once

#include <ocidl.h>
#include <windows.h>

#include <new>
#include <utility>
#include <vector>

#include "shell/com/module.hpp"

namespace brindlewort::com {

/// How an enumerator of connection points or connections keeps its items alive.
inline void addRef(IConnectionPoint* point) {
  point->AddRef();
}
inline void release(IConnectionPoint* point) {
  point->Release();
}
inline void addRef(const CONNECTDATA& connection) {
  connection.pUnk->AddRef();
}
inline void release(const CONNECTDATA& connection) {
  connection.pUnk->Release();
}

/// A list as it stood when the enumerator was made. `Interface` is the enumerator's, `Item` what it gives.
template <class Interface, class Item>
class Enumerator final : public Interface {
 public:
  /// Gives an enumerator at `next`, the number of the item that comes next.
  static HRESULT make(std::vector<Item> items, std::size_t next, Interface** out) {
    if (!out) return E_POINTER;
    *out = new (std::nothrow) Enumerator(std::move(items), next);
    return *out ? S_OK : E_OUTOFMEMORY;
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(Interface);
    *object = known ? static_cast<Interface*>(this) : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }
  STDMETHODIMP_(ULONG) Release() override {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }

  STDMETHODIMP Next(ULONG count, Item* items, ULONG* fetched) override {
    if (!items || (!fetched && count != 1)) return E_POINTER;
    ULONG given = 0;
    for (; given < count && next_ < items_.size(); ++given, ++next_) {
      addRef(items_[next_]);
      items[given] = items_[next_];
    }
    if (fetched) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const std::size_t left = items_.size() - next_;
    next_ += count < left ? count : left;
    return count <= left ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override {
    next_ = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(Interface** out) override { return make(items_, next_, out); }

 private:
  Enumerator(std::vector<Item> items, std::size_t next) : items_(std::move(items)), next_(next) {
    for (const Item& item : items_) addRef(item);
  }
  ~Enumerator() {
    for (const Item& item : items_) release(item);
  }

  const module::Use use_;
  std::vector<Item> items_;
  std::size_t next_;
  LONG references_ = 1;
};

}  // namespace brindlewort::com
