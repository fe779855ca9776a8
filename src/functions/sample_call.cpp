#include "functions/sample_call.hpp"

#include <algorithm>

#include "series/numbers.hpp"

namespace brindlewort {

namespace {

/// The arguments of functions that no row of slots describes.
struct OwnArguments {
  std::string_view function;  ///< the first name of its row
  std::string_view arguments;
};
constexpr OwnArguments kOwnArguments[] = {
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

std::string argumentFor(const Slot& slot, std::size_t index) {
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
      if (slot.kind == SlotKind::kBarsNumber) return std::to_string(5 + 2 * index);
      return slot.low >= 1.0 ? "2" : "0.5";
    case SlotKind::kWhole:
    case SlotKind::kInteger:
      return std::to_string(static_cast<int>(std::min(5.0 + 2.0 * static_cast<double>(index), slot.high)));
    case SlotKind::kIgnored:
      break;
  }
  return "1";
}

}  // namespace

std::string sampleCall(const FunctionRow& row, std::string_view name, Path path) {
  std::string call = std::string(name) + "(";
  const auto own = std::ranges::find(kOwnArguments, row.names.front().name, &OwnArguments::function);
  if (own != std::end(kOwnArguments)) {
    call += own->arguments;
  } else {
    const bool differs = path == Path::kIncremental && !row.incrementalSlots.empty();
    const std::vector<Slot>& slots = differs ? row.incrementalSlots : row.slots;
    for (std::size_t i = 0; i < slots.size(); ++i) call += (i > 0 ? ", " : "") + argumentFor(slots[i], i);
  }
  return call + ")";
}

}  // namespace brindlewort
