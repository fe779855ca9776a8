#pragma once

#include <string>
#include <string_view>

#include "functions/call_site.hpp"
#include "functions/handler_tools.hpp"
#include "functions/script_engine.hpp"
#include "functions/series_operations.hpp"

/// What the handlers of the incremental way share.
namespace brindlewort::incremental {

/// The call as the tools of both ways take it.
inline FunctionCall callOf(const CallSite& site) {
  return {site.name, site.argumentText};
}

template <std::size_t accepted>
struct Slots : handlers::Slots<accepted> {
  Slots(CScriptEngine& engine, const CallSite& site, int required)
      : handlers::Slots<accepted>(engine, callOf(site), required) {}
};

inline bool reportSurplus(CScriptEngine& engine, const CallSite& site) {
  return handlers::reportSurplus(engine, callOf(site));
}

template <class SlotRange>
bool notNegative(CScriptEngine& engine, const CallSite& site, const SlotRange& slots) {
  return handlers::notNegative(engine, callOf(site), slots);
}

/// Binds a slot to a series or number, or reports that it is missing.
inline bool bindSeries(CScriptEngine& engine, CallSite& site, std::size_t slot, std::string_view text,
                       std::string_view label) {
  site.series[slot] = engine.GetVectorRef(text);
  return site.series[slot] || engine.ReportRequired(site.name, label);
}

/// Binds a slot to a number of rows, or to a series whose last value counts.
inline bool bindOffset(CScriptEngine& engine, CallSite& site, std::size_t slot, std::string_view text,
                       std::string_view label) {
  if (IsNumberText(text) && !text.empty()) {
    site.numbers[slot] = static_cast<double>(magnitude(parseInt32(text)));
    return true;
  }
  return bindSeries(engine, site, slot, text, label);
}

/// The number of rows that such a slot says now.
inline Count offsetOf(const CallSite& site, std::size_t slot) {
  return site.isSeries(slot) ? magnitude(toInt32(site.series[slot]->value)) : toInt64(site.numbers[slot]);
}

inline BarsBack barsBack(const CallSite& site, std::size_t slot) {
  return {offsetOf(site, slot), site.isSeries(slot) ? site.series[slot]->values.view() : View()};
}

/// A bound series as an operand; a constant stands in all rows, however many it has.
inline Operand operandOf(const StoreEntry& entry) {
  return {entry.isConstant ? View() : entry.values.view(), entry.value};
}
inline Operand operandOf(const CallSite& site, std::size_t slot) {
  return operandOf(*site.series[slot]);
}

inline View rowsOf(const CallSite& site, std::size_t slot) {
  return site.series[slot]->values.view();
}

inline Target target(ScriptVariable& result) {
  return {result.values.edit(), &result.slot};
}

}  // namespace brindlewort::incremental
