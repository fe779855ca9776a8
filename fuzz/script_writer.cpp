#include "script_writer.hpp"

#include <string_view>
#include <vector>

#include "functions/script_engine.hpp"

namespace brindlewort::fuzz {

namespace {

constexpr std::string_view kPrices[] = {"CLOSE", "CLOSE",  "CLOSE", "OPEN", "HIGH",
                                        "LOW",   "VOLUME", "LAST",  "DATE", "FED"};
constexpr std::string_view kComparisons[] = {">", "<", "=", ">=", "<=", "<>", "!=", "=>", "=<", "==", "\\"};
constexpr std::string_view kArithmetic[] = {"+", "-", "*", "/", "MOD", "^", "%", "\\"};
constexpr std::string_view kLogic[] = {"AND", "OR", "XOR", "EQV", "AND NOT", "&&", "||", "&", "|"};
constexpr std::string_view kTypes[] = {"SIMPLE",   "EXPONENTIAL", "TIME_SERIES", "VARIABLE", "TRIANGULAR",
                                       "WEIGHTED", "VOLATILITY",  "WILDER",      "VIDYA",    "ZLEMA"};
constexpr std::string_view kNumbers[] = {"0",          "1",        "2",     "3",     "0.5",    "0.02", "10",
                                         "100",        "-1",       "1E3",   "1e-5",  "99.99",  "0.65", "1e15",
                                         "2147483648", "-0.00001", "1E308", "1E999", "1E-999", "."};
constexpr std::string_view kOddities[] = {"()",       "( )",      "",     " ",    "#note", "NOT ",  "NOT(",
                                          "\"NYSE\"", "\xff\xfe", "\xc3", "1..2", "TRUE",  "FALSE", "PI",
                                          ",",        "  ",       "\t",   "%",    "[",     "}"};
constexpr std::string_view kSourceNames[] = {"EXCHANGE", "SECTOR", "INDUSTRY", "SYMBOL"};
constexpr std::string_view kSetNames[] = {"A", "B", "C"};

std::string text(std::string_view view) {
  return std::string(view);
}

}  // namespace

const std::vector<std::string>& ScriptWriter::constants() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all;
    CScriptEngine engine;
    engine.ResetConstants();
    for (std::size_t i = 0; i < engine.constants.size(); ++i) all.push_back(engine.constants[i].name);
    return all;
  }();
  return names;
}

std::string ScriptWriter::script() {
  sets_ = 0;
  std::string written;
  if (random_.oneIn(30)) written += "# a note\r";
  if (random_.oneIn(25)) {
    written += "SET " + text(random_.of(kSourceNames)) + " = \"NYSE\"\r";
  }
  const std::size_t statements = random_.below(3);
  for (std::size_t i = 0; i < statements; ++i) written += statement(static_cast<int>(i)) + "\r";
  written += random_.oneIn(6) ? expression(2) : condition(2);
  if (random_.oneIn(40)) {
    for (char& c : written) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
  }
  return written;
}

std::string ScriptWriter::statement(int number) {
  const std::string name = text(kSetNames[static_cast<std::size_t>(number) % std::size(kSetNames)]);
  std::string value = random_.oneIn(4) ? expression(2) : call(1);
  ++sets_;
  return "SET " + name + (random_.oneIn(12) ? "=" : " = ") + value;
}

std::string ScriptWriter::condition(int depth) {
  const std::string first = operand(depth) + " " + text(random_.of(kComparisons)) + " " + operand(depth);
  if (depth <= 0 || !random_.oneIn(3)) return first;
  return first + " " + text(random_.of(kLogic)) + " " + condition(depth - 1);
}

std::string ScriptWriter::expression(int depth) {
  switch (random_.below(depth > 0 ? 6 : 2)) {
    case 0:
      return operand(depth);
    case 1:
      return call(depth - 1);
    case 2:
      return operand(depth) + " " + text(random_.of(kArithmetic)) + " " + operand(depth);
    case 3:
      return "(" + expression(depth - 1) + ") " + text(random_.of(kArithmetic)) + " " + expression(depth - 1);
    case 4:
      return condition(depth - 1);
    default:
      return "NOT (" + condition(depth - 1) + ")";
  }
}

std::string ScriptWriter::operand(int depth) {
  switch (random_.below(8)) {
    case 0:
    case 1:
      return number();
    case 2:
      return depth > 0 ? call(depth - 1) : series(0);
    case 3:
      return depth > 0 ? "(" + expression(depth - 1) + ")" : series(0);
    case 4:
      return odd(12) ? text(random_.of(kOddities)) : series(depth);
    default:
      return series(depth);
  }
}

std::string ScriptWriter::series(int depth) {
  if (sets_ > 0 && random_.oneIn(3))
    return text(kSetNames[random_.below(static_cast<std::size_t>(sets_)) % 3]);
  if (depth > 0 && random_.oneIn(5)) return call(depth - 1);
  return text(random_.of(kPrices));
}

std::string ScriptWriter::number() {
  return odd(6) ? text(random_.of(kNumbers)) : std::to_string(random_.below(12));
}

std::string ScriptWriter::word() {
  switch (random_.below(4)) {
    case 0:
      return text(random_.of(random_.of(functionTable()).names).name);
    case 1:
      return random_.of(constants());
    case 2:
      return text(random_.of(kOddities));
    default:
      return text(random_.of(kPrices));
  }
}

std::string ScriptWriter::call(int depth) {
  const FunctionRow& row = random_.of(functionTable());
  return call(row, random_.of(row.names).name, depth);
}

std::string ScriptWriter::call(const FunctionRow& row, std::string_view name, int depth) {
  std::string written(name);
  if (row.operation == "CandlestickPattern" && !random_.oneIn(8))
    return written + "() = " + random_.of(constants());
  if (row.noArguments && random_.oneIn(2)) return written;
  const std::vector<Slot>& slots =
      !row.incrementalSlots.empty() && random_.oneIn(2) ? row.incrementalSlots : row.slots;
  written += "(";
  std::size_t count = slots.size();
  // Arguments that may be left out, too few of them, and too many.
  while (count > 1 && slots[count - 1].optional && random_.oneIn(2)) --count;
  if (odd(25)) count = random_.below(slots.size() + 2);
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) written += ", ";
    written += i < slots.size() ? argument(slots[i], depth) : number();
  }
  return written + ")";
}

std::string ScriptWriter::argument(const Slot& slot, int depth) {
  if (odd(40)) return text(random_.of(kOddities));
  if (odd(40)) return random_.of(constants());
  switch (slot.kind) {
    case SlotKind::kWhole:
    case SlotKind::kInteger:
    case SlotKind::kBarsNumber:
      return whole(slot);
    case SlotKind::kMaType:
      return random_.oneIn(4) ? std::to_string(1 + random_.below(odd(2) ? 11 : 8)) : text(random_.of(kTypes));
    case SlotKind::kLiteral:
      return odd(3) ? number() : "0." + std::to_string(1 + random_.below(99));
    case SlotKind::kNumber:
    case SlotKind::kIgnored:
      return odd(3) ? number() : whole(slot);
    case SlotKind::kSeries:
      break;
  }
  // Slots that a handler binds say by their name what they hold.
  const std::string_view name = slot.name;
  const auto speaksOf = [name](std::string_view word) { return name.find(word) != std::string_view::npos; };
  if (speaksOf("condition")) return condition(depth > 0 ? depth - 1 : 0);
  if (speaksOf("offset") || speaksOf("reference")) return std::to_string(random_.below(4));
  if (speaksOf("period") || speaksOf("digits") || speaksOf("number")) return whole(slot);
  if (speaksOf("multiple") || speaksOf("percent")) return whole(slot);
  if (speaksOf("operator")) {
    static constexpr std::string_view kOperators[] = {"ADD", "SUBTRACT", "MULTIPLY", "DIVIDE",
                                                      "MOD", "1",        "5"};
    return text(random_.of(kOperators));
  }
  return depth > 0 && random_.oneIn(4) ? expression(depth - 1) : series(depth);
}

/// Short periods, so that few bars warm them up.
std::string ScriptWriter::whole(const Slot& slot) {
  if (odd(20)) return number();
  const std::size_t least = slot.low >= 2 && !odd(10) ? 2 : 1;
  const std::size_t most = slot.high > 4 && random_.oneIn(3) ? 8 : slot.high < 4 ? 1 : 3;
  return std::to_string(least + random_.below(most + 1));
}

}  // namespace brindlewort::fuzz
