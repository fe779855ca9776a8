#pragma once

#include <ocidl.h>
#include <windows.h>
#include <wrl/client.h>

#include <optional>
#include <span>
#include <vector>

#include "shell/com/facet.hpp"

namespace brindlewort::com {

/// The sinks of one event interface, in the order of their connection. An interface of its own beside the
/// component, which it keeps alive.
class ConnectionPoint final : public IConnectionPoint {
 public:
  ConnectionPoint(IConnectionPointContainer& container, REFIID events)
      : container_(container), events_(events) {}

  /// Tells every sink that was connected when it began of an event; one that is disconnected meanwhile is
  /// passed over, and a sink's failure is nobody's. The arguments stand in the order of an automation call,
  /// the last first.
  void fire(DISPID event, std::span<VARIANTARG> arguments);

  /// Lets go of all sinks.
  void disconnectAll();

  /// The connected sinks.
  std::vector<CONNECTDATA> connections() const;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return container_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return container_.Release(); }

  STDMETHODIMP GetConnectionInterface(IID* iid) override;
  STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
  STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
  STDMETHODIMP Unadvise(DWORD cookie) override;
  STDMETHODIMP EnumConnections(IEnumConnections** connections) override;

 private:
  struct Slot {
    DWORD cookie;
    Microsoft::WRL::ComPtr<IDispatch> sink;  ///< null when it was disconnected while an event was being fired
  };

  void dropEmptySlots();

  IConnectionPointContainer& container_;
  const IID events_;
  std::vector<Slot> slots_;
  DWORD lastCookie_ = 0;
  int firing_ = 0;  ///< events under way; slots keep their places meanwhile
};

/// A component's face towards hosts that look for its events.
class ConnectionPoints final : public Facet<IConnectionPointContainer> {
 public:
  ConnectionPoints(IUnknown& owner, REFIID events) : Facet(owner), point_(*this, events), events_(events) {}

  void fire(DISPID event, std::span<VARIANTARG> arguments) { point_.fire(event, arguments); }
  void disconnectAll() { point_.disconnectAll(); }

  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
  STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

 private:
  ConnectionPoint point_;
  const IID events_;
};

}  // namespace brindlewort::com
