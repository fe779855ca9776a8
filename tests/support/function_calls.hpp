#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "functions/function_table.hpp"
#include "series/numbers.hpp"

/// Calls of every function of the incremental way, made from the function table.
namespace brindlewort::testing {

/// The argument texts of functions that no row of slots describes.
inline const std::map<std::string_view, std::string_view>& argumentsOfOwnHandlers() {
  static const std::map<std::string_view, std::string_view> arguments = {
      {"IF", "CLOSE > OPEN, HIGH, LOW"},
      {"COUNTIF", "CLOSE > OPEN"},
      {"SUMIF", "CLOSE > OPEN, VOLUME"},
      {"LASTIF", "CLOSE > OPEN"},
      {"CROSSOVER", "CLOSE, OPEN"},
      {"REF", "CLOSE, 3"},
      {"LOOP", "CLOSE, OPEN, 1, 0, ADD"},
      {"ABS", "CLOSE"},
      {"ROUND", "CLOSE, 2"},
      {"MROUND", "CLOSE, 5"},
      {"SUM", "CLOSE, 5"},
      {"AVG", "CLOSE, 5"},
      {"MAX", "CLOSE, 5"},
      {"MAXOF", "OPEN, CLOSE, 100"},
      {"DATEPART", "1, 4"},
      {"DATEDIFF", "0, 3, 4"},
      {"%SWINGPTOP", "1, 1"},
  };
  return arguments;
}

/// A sensible argument for a slot.
inline std::string argumentFor(const Slot& slot, std::size_t index) {
  switch (slot.kind) {
    case SlotKind::kSeries:
      return index == 0 ? "CLOSE" : "OPEN";
    case SlotKind::kMaType:
      return "SIMPLE";
    case SlotKind::kLiteral:
      return slot.exclusive ? "0.5" : "1";
    case SlotKind::kNumber:
    case SlotKind::kBarsNumber:
      if (slot.optional) return FormatFixed(slot.fallback, 2);
      return slot.kind == SlotKind::kBarsNumber ? std::to_string(5 + 2 * index)
             : slot.low >= 1.0                  ? "2"
                                                : "0.5";
    case SlotKind::kWhole:
    case SlotKind::kInteger:
      return std::to_string(static_cast<int>(std::min(5.0 + 2.0 * static_cast<double>(index), slot.high)));
    case SlotKind::kIgnored:
      break;
  }
  return "1";
}

/// A call of the name, which must be one of the row's.
inline std::string callOf(const FunctionRow& row, std::string_view name) {
  std::string call = std::string(name) + "(";
  const auto& own = argumentsOfOwnHandlers();
  if (const auto at = own.find(row.names.front().name); at != own.end()) {
    call += at->second;
  } else {
    const std::vector<Slot>& slots = row.incrementalSlots.empty() ? row.slots : row.incrementalSlots;
    for (std::size_t i = 0; i < slots.size(); ++i) call += (i > 0 ? ", " : "") + argumentFor(slots[i], i);
  }
  return call + ")";
}

/// All names of the incremental way with their rows.
struct NamedFunction {
  std::string name;
  const FunctionRow* row;
  std::string call() const { return callOf(*row, name); }
};
inline std::vector<NamedFunction> incrementalFunctions() {
  std::vector<NamedFunction> functions;
  for (const FunctionRow& row : functionTable()) {
    if (row.path == Path::kWholeHistory) continue;
    for (const FunctionName& name : row.names) functions.push_back({std::string(name.name), &row});
  }
  return functions;
}

}  // namespace brindlewort::testing
