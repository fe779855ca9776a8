#pragma once

#include <string>
#include <string_view>

#include "platform/fp_environment.hpp"
#include "shell/com/connection_point.hpp"
#include "shell/com/text.hpp"

namespace brindlewort::com {

/// Arguments of an event, in the order of an automation call: the last first. Frees its texts.
template <std::size_t count>
class EventArguments {
 public:
  template <class... Values>
  explicit EventArguments(const Values&... values) : variants_{make(values)...} {}
  ~EventArguments() {
    for (VARIANTARG& variant : variants_) VariantClear(&variant);
  }
  EventArguments(const EventArguments&) = delete;
  EventArguments& operator=(const EventArguments&) = delete;

  std::span<VARIANTARG> list() { return variants_; }

 private:
  static VARIANTARG make(double value) {
    VARIANTARG variant;
    VariantInit(&variant);
    variant.vt = VT_R8;
    variant.dblVal = value;
    return variant;
  }
  static VARIANTARG make(std::string_view text) {
    VARIANTARG variant;
    VariantInit(&variant);
    variant.vt = VT_BSTR;
    variant.bstrVal = wide(text);
    return variant;
  }

  VARIANTARG variants_[count];
};

template <class... Values>
EventArguments(const Values&...) -> EventArguments<sizeof...(Values)>;

/// Tells a component's sinks of an event, which are the host's and run in its floating-point environment.
template <class... Values>
void fire(platform::FpDoor& door, ConnectionPoints& sinks, DISPID event, const Values&... lastFirst) {
  EventArguments arguments(lastFirst...);
  const platform::FpDoor::Outside outside(door);
  sinks.fire(event, arguments.list());
}

}  // namespace brindlewort::com
