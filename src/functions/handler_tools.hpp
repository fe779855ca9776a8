#pragma once

#include <array>
#include <string>
#include <string_view>

#include "functions/argument_binding.hpp"
#include "functions/function_table.hpp"
#include "functions/script_engine.hpp"
#include "series/numbers.hpp"
#include "series/text.hpp"

/// What the handlers share.
namespace brindlewort::handlers {

/// The argument texts of a call, with one slot more than the function accepts.
template <std::size_t accepted>
struct Slots : std::array<std::string_view, accepted + 1> {
  Slots(CScriptEngine& engine, const FunctionCall& call, int required) {
    engine.SplitArguments(call.argumentText, required, *this);
  }
  bool surplus() const { return !this->back().empty(); }
};

inline bool reportSurplus(CScriptEngine& engine, const FunctionCall& call) {
  return engine.ReportInvalid(call.name, "Number of");
}

/// The report of a number that is too small (its sentence says greater than 1 where the test is below 1).
inline bool reportTooSmall(CScriptEngine& engine, std::string_view function) {
  return engine.ReportRaw("'" + std::string(function) + "' argument should be greater than 1.");
}

/// Reports the first negative number text among the slots; false when there is one.
template <class SlotRange>
bool notNegative(CScriptEngine& engine, const FunctionCall& call, const SlotRange& slots) {
  for (std::string_view text : slots) {
    if (!LooksNumeric(text)) continue;
    const std::string_view complaint = CheckNotNegative(text);
    if (!complaint.empty()) return engine.ReportFunction(call.name, complaint);
  }
  return true;
}

/// A series argument, or the report that it is missing.
inline bool bindSeries(CScriptEngine& engine, const FunctionCall& call, std::string_view text,
                       std::string_view label, ScriptVariable& out) {
  return engine.GetVector(text, out) || engine.ReportRequired(call.name, label);
}

/// An offset or period that is a number text, or a series whose last value counts. Never negative.
struct Offset {
  Count rows = 0;
  bool isSeries = false;
  Series series;

  /// The offset of one row; toward later rows when negative.
  Count at(std::size_t row) const {
    if (!isSeries) return rows;
    return toInt32(series[row]);
  }
};

inline bool bindOffset(CScriptEngine& engine, const FunctionCall& call, std::string_view text,
                       std::string_view label, Offset& out) {
  if (IsNumberText(text) && !text.empty()) {
    out.rows = magnitude(parseInt32(text));
    return true;
  }
  ScriptVariable series;
  if (!bindSeries(engine, call, text, label, series)) return false;
  out.rows = magnitude(toInt32(series.value));
  out.isSeries = true;
  out.series = std::move(series.values);
  return true;
}

inline std::size_t rowsOfRun(const CScriptEngine& engine) {
  return static_cast<std::size_t>(engine.windowLength);
}

}  // namespace brindlewort::handlers
