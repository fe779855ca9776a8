// The evaluator. The text is the program: an expression is scanned once, flat and from left to right, and
// each operand is read by EvaluateTerm; brackets, arguments and SET values recurse on pieces of the text.
// Every value is remembered in `variables` under its own text, so that text that occurs twice is computed
// once.

#include <charconv>

#include "engine/depth_guard.hpp"
#include "engine/operators.hpp"
#include "engine/scanner.hpp"
#include "functions/script_engine.hpp"
#include "platform/run_watch.hpp"
#include "series/numbers.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

using namespace scanner;

}  // namespace

std::string CScriptEngine::MakeKey(std::string_view text, std::string_view extra) const {
  std::string key = withUniformBlanks(text);
  if (!extra.empty()) {
    if (key.empty()) return std::string(extra);
    return std::string(extra) + "( " + key + " )";
  }
  if (key == "CSP()" && candlePattern != -1) {
    char digits[16];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, static_cast<std::uint32_t>(candlePattern), 16);
    return "CSP(" + std::string(digits, end.ptr) + ")";
  }
  return key;
}

const Series& CScriptEngine::zeros() {
  const std::size_t rows = static_cast<std::size_t>(std::max(windowLength, 0));
  if (zeros_.size() != rows) zeros_ = Series(rows, 0.0);
  return zeros_;
}

void CScriptEngine::abortRun() {
  aborted_ = true;
  errorText = kTooComplex;
  abortMark = "timeout";
}

ScriptVariable CScriptEngine::EvaluateExpression(std::string_view text) {
  const DepthGuard guard(nesting_);
  if (guard.isTooDeep() || rowsHeld_ > mostRowsHeld) {
    abortRun();
    return {};
  }
  platform::lookAfterRun();
  std::string key = MakeKey(text, "");
  if (const ScriptVariable* known = variables.get(key)) return *known;
  if (const ScriptVariable* known = constants.get(key)) return *known;

  const std::size_t slot = variables.append({key, 0.0, zeros(), -1, kComputedVariable});
  variables.setPending(slot, true);
  const Statement statement = splitStatement(trim(text));
  if (statement.isSet) key = MakeKey(statement.text, "");

  ScriptVariable value = scan(statement.text);
  if (value.values.empty() && !statement.name.empty()) {
    value.values.assign(static_cast<std::size_t>(windowLength), value.value);
  }
  if (!value.values.empty() && value.values.back() != value.value) {
    value.values.set(value.values.size() - 1, value.value);
  }
  if (value.values.unique()) rowsHeld_ += value.values.size();
  value.name = key;
  value.slot = -1;
  value.kind = kComputedVariable;
  variables.setPending(slot, false);
  variables.rename(slot, std::move(key));
  variables[slot].values = value.values;
  variables[slot].value = value.value;
  if (!statement.name.empty()) RememberVariable(statement.name, value);
  return value;
}

/// Reads operators and operands until the text ends, an operator without a handler stops the scan, or an
/// error stands.
ScriptVariable CScriptEngine::scan(std::string_view text) {
  ScriptVariable left;
  OperandScanner scanner(text, Dialect::kPlain);
  while (scanner.next()) {
    // An error from before stops the scan behind its first round.
    if (!errorText.empty() && !scanner.inFirstRound()) break;
    if (scanner.op().empty()) {
      left = EvaluateTerm(text, scanner.position);
    } else if (scanner.op() == "&") {
      left.value = EvaluateTerm(text, scanner.position).value;
    } else if (const Operator* handler = findOperator(scanner.op())) {
      const ScriptVariable right = EvaluateTerm(text, scanner.position);
      apply(*handler, left, right, {zeros(), dryRun});
    } else {
      break;
    }
    if (!errorText.empty()) break;
  }
  return left;
}

/// Reads one operand: a number, a name, a bracket group or a call. `position` moves behind it.
ScriptVariable CScriptEngine::EvaluateTerm(std::string_view text, std::size_t& position) {
  const std::size_t start = position;
  while (position < text.size() && text[position] != '(' && !endsOperand(text[position])) ++position;
  const std::string_view token = text.substr(start, position - start);
  if (position < text.size() && text[position] == '(') {
    const std::string_view inner = bracketed(text, position, position);
    currentFunction = token;
    return token.empty() ? evaluateGroup(inner) : evaluateCall(trim(token), inner);
  }
  if (!errorText.empty() || token.empty()) return {};
  if (IsNumberText(token)) {
    ScriptVariable number;
    number.value = parseDouble(token);
    return number;
  }
  return token == "IF" ? ScriptVariable{} : LookupVariable(token);
}

/// A bracket group gives its series, and a value that has passed through a text of 20 decimals.
ScriptVariable CScriptEngine::evaluateGroup(std::string_view inner) {
  if (inner == "CSP()") resolvePattern();
  ScriptVariable value = EvaluateExpression(inner);
  if (!errorText.empty()) return {};
  value.value = throughText(value.value);
  if (!value.values.empty() && value.values.back() != value.value) {
    value.values.set(value.values.size() - 1, value.value);
  }
  return value;
}

ScriptVariable CScriptEngine::evaluateCall(std::string_view name, std::string_view inner) {
  const std::string arguments = evaluateArguments(inner);
  if (aborted_) return {};
  ScriptVariable value = EvaluateFunction(name, arguments, inner);
  if (!errorText.empty() || !value.values.empty()) return value;
  // A result without rows is read back under the function's name.
  return IsNumberText(name) || name == "IF" ? ScriptVariable{} : LookupVariable(name);
}

/// Evaluates the arguments up to the first empty one and lists them: a series by the name of its entry, a
/// scalar as a number text. VIDYA is a moving average type as well as a function, and stands as it is.
std::string CScriptEngine::evaluateArguments(std::string_view inner) {
  std::string list;
  ArgumentReader reader(inner);
  for (std::string_view argument; reader.next(argument) && !argument.empty() && !aborted_;) {
    if (argument == "VIDYA" && !variables.get(argument)) {
      list += argument;
    } else {
      const ScriptVariable value = EvaluateExpression(argument);
      if (value.values.empty()) {
        appendFixed(list, value.value, 20);
      } else {
        list += value.name;
      }
    }
    list += ", ";
  }
  if (list.size() > 2) list.resize(list.size() - 2);
  return list;
}

/// Finds the pattern that a script compares "CSP()" with: the constant in the bracket behind the next "=".
void CScriptEngine::resolvePattern() {
  if (patternKnown_) return;
  patternKnown_ = true;
  candlePattern = -1;
  const std::string text = NormalizeScript(scriptText_);
  constexpr std::string_view kCall = "CSP()";
  std::size_t at = text.find(kCall);
  if (at == std::string::npos) return;
  at = text.find('=', at + kCall.size());
  if (at == std::string::npos) return;
  at = text.find('(', at);
  if (at == std::string::npos) return;
  std::string_view name = std::string_view(text).substr(at + 1);
  while (name.ends_with(')')) name.remove_suffix(1);
  if (const ScriptVariable* constant = constants.get(trim(name))) candlePattern = toInt32(constant->value);
}

}  // namespace brindlewort
