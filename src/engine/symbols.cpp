// Names: the two stores, the table of named constants, and the order in which a name is looked up.

#include "functions/script_engine.hpp"

namespace brindlewort {

namespace {

struct NamedConstant {
  std::string_view name;
  double value;
};

/// In the order of entry. Several names share a value: the name alone tells which argument it serves.
/// "PI" is the single-precision value, held as a double.
constexpr NamedConstant kConstants[] = {
    {"PI", 3.1415927410125732},
    {"TRUE", 1},
    {"FALSE", 0},
    // operators of LOOP
    {"ADD", 1},
    {"SUBTRACT", 2},
    {"MULTIPLY", 3},
    {"DIVIDE", 4},
    {"MOD", 5},
    // moving average types
    {"SIMPLE", 1},
    {"EXPONENTIAL", 2},
    {"TIME_SERIES", 3},
    {"VARIABLE", 4},
    {"TRIANGULAR", 5},
    {"WEIGHTED", 6},
    {"VOLATILITY", 7},
    {"WILDER", 8},
    {"ZLEMA", 9},
    {"HULL", 10},
    // trend directions
    {"UP", 1},
    {"DOWN", 2},
    {"SIDEWAYS", 3},
    // candlestick patterns
    {"LONG_BODY", 1},
    {"DOJI", 2},
    {"HAMMER", 3},
    {"HARAMI", 4},
    {"STAR", 5},
    {"DOJI_STAR", 6},
    {"MORNING_STAR", 7},
    {"EVENING_STAR", 8},
    {"PIERCING_LINE", 9},
    {"BULLISH_ENGULFING_LINE", 10},
    {"HANGING_MAN", 11},
    {"DARK_CLOUD_COVER", 12},
    {"BEARISH_ENGULFING_LINE", 13},
    {"BEARISH_DOJI_STAR", 14},
    {"BEARISH_SHOOTING_STAR", 15},
    {"SPINNING_TOPS", 16},
    {"HARAMI_CROSS", 17},
    {"BULLISH_TRISTAR", 18},
    {"THREE_WHITE_SOLDIERS", 19},
    {"THREE_BLACK_CROWS", 20},
    {"ABANDONED_BABY", 21},
    {"BULLISH_UPSIDE_GAP", 22},
    {"BULLISH_HAMMER", 23},
    {"BULLISH_KICKING", 24},
    {"BEARISH_KICKING", 25},
    {"BEARISH_BELT_HOLD", 26},
    {"BULLISH_BELT_HOLD", 27},
    {"BEARISH_TWO_CROWS", 28},
    {"BULLISH_MATCHING_LOW", 29},
    // units
    {"POINTS", 1},
    {"PERCENT", 2},
};

}  // namespace

/// The table of constants never changes once it is made.
void CScriptEngine::ResetConstants() {
  if (constants.empty()) {
    VariableStore table;
    for (const NamedConstant& constant : kConstants) {
      table.append({std::string(constant.name), constant.value, {}, -1, kComputedVariable});
    }
    constants.adopt(std::move(table));
  }
  variables.clear();
  fields.clear();
  result.values.clear();
}

ScriptVariable CScriptEngine::LookupVariable(std::string_view name) {
  if (name == "LAST") name = "CLOSE";
  if (name == "DATE" && !fields.empty()) {
    const Series& dates = fields.front().values;
    return {"DATE", dates.empty() ? 0.0 : dates.back(), dates, -1, kComputedVariable};
  }
  if (const std::ptrdiff_t i = variables.findDone(name); i != VariableStore::kNotFound) {
    return variables[static_cast<std::size_t>(i)];
  }
  if (const ScriptVariable* constant = constants.get(name)) return *constant;
  errorText = "Error: Undefined variable '" + std::string(name) + "'";
  return {};
}

std::int32_t CScriptEngine::RememberVariable(std::string_view name, const ScriptVariable& value) {
  if (name.empty()) return -1;
  if (const std::ptrdiff_t at = variables.find(name); at != VariableStore::kNotFound) {
    ScriptVariable& entry = variables[static_cast<std::size_t>(at)];
    if (!entry.values.empty()) {
      const std::size_t rows = static_cast<std::size_t>(windowLength);
      entry.values = value.values.empty() ? Series(rows, value.value) : value.values;
    }
    entry.value = value.value;
    return static_cast<std::int32_t>(at);
  }
  if (variables.size() > kMaxVariables) {
    errorText = kTooComplex;
    abortMark = "timeout";
    return -1;
  }
  ScriptVariable entry = value;
  entry.name = name;
  if (wholeHistory) outputNames.emplace_back(name);
  return static_cast<std::int32_t>(variables.append(std::move(entry)));
}

ScriptVariable CScriptEngine::FindSeries(std::string_view name, std::string_view extra) const {
  static constexpr std::string_view kPrices[] = {"", "OPEN", "HIGH", "LOW", "CLOSE", "VOLUME"};
  for (std::string_view price : kPrices) {
    if (name == price) return {};
  }
  std::string key = extra.empty() ? std::string(name) : MakeKey(extra, name);
  if (const ScriptVariable* entry = variables.get(key)) return *entry;
  ScriptVariable fresh;
  fresh.name = std::move(key);
  return fresh;
}

}  // namespace brindlewort
