#include "shell/com/connection_point.hpp"

#include <olectl.h>

#include <algorithm>
#include <utility>

#include "shell/com/enumerator.hpp"
#include "shell/com/guarded.hpp"

using Microsoft::WRL::ComPtr;

namespace brindlewort::com {

void ConnectionPoint::fire(DISPID event, std::span<VARIANTARG> arguments) {
  const ComPtr<IConnectionPointContainer> keep(&container_);
  DISPPARAMS call{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  ++firing_;
  for (std::size_t i = 0, end = slots_.size(); i < end; ++i) {
    if (const ComPtr<IDispatch> sink = slots_[i].sink) {
      sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &call, nullptr, nullptr, nullptr);
    }
  }
  --firing_;
  dropEmptySlots();
}

void ConnectionPoint::disconnectAll() {
  // A sink's last release may call the component, which then has no sinks any more.
  const std::vector<Slot> leaving = std::move(slots_);
  slots_.clear();
}

std::vector<CONNECTDATA> ConnectionPoint::connections() const {
  std::vector<CONNECTDATA> list;
  for (const Slot& slot : slots_) {
    if (slot.sink) list.push_back({slot.sink.Get(), slot.cookie});
  }
  return list;
}

STDMETHODIMP ConnectionPoint::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(IConnectionPoint);
  *object = known ? static_cast<IConnectionPoint*>(this) : nullptr;
  if (known) AddRef();
  return known ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP ConnectionPoint::GetConnectionInterface(IID* iid) {
  if (!iid) return E_POINTER;
  *iid = events_;
  return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (!container) return E_POINTER;
  *container = &container_;
  container_.AddRef();
  return S_OK;
}

STDMETHODIMP ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
  if (!sink || !cookie) return E_POINTER;
  *cookie = 0;
  ComPtr<IDispatch> receiver;
  if (FAILED(sink->QueryInterface(events_, &receiver))) return CONNECT_E_CANNOTCONNECT;
  return guarded([&] {
    slots_.push_back({++lastCookie_, receiver});
    *cookie = lastCookie_;
    return S_OK;
  });
}

STDMETHODIMP ConnectionPoint::Unadvise(DWORD cookie) {
  const auto found = std::ranges::find(slots_, cookie, &Slot::cookie);
  if (found == slots_.end() || !found->sink) return CONNECT_E_NOCONNECTION;
  // Let go of at the end: a sink's last release may call the component again.
  const ComPtr<IDispatch> leaving = std::move(found->sink);
  found->sink = nullptr;
  dropEmptySlots();
  return S_OK;
}

STDMETHODIMP ConnectionPoint::EnumConnections(IEnumConnections** out) {
  return guarded([&] { return Enumerator<IEnumConnections, CONNECTDATA>::make(connections(), 0, out); });
}

void ConnectionPoint::dropEmptySlots() {
  if (firing_ == 0) std::erase_if(slots_, [](const Slot& slot) { return !slot.sink; });
}

STDMETHODIMP ConnectionPoints::EnumConnectionPoints(IEnumConnectionPoints** points) {
  return guarded(
      [&] { return Enumerator<IEnumConnectionPoints, IConnectionPoint*>::make({&point_}, 0, points); });
}

STDMETHODIMP ConnectionPoints::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
  if (!point) return E_POINTER;
  *point = iid == events_ ? &point_ : nullptr;
  if (!*point) return CONNECT_E_NOCONNECTION;
  (*point)->AddRef();
  return S_OK;
}

}  // namespace brindlewort::com
