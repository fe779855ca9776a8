// The evaluator. The text is the program: an expression is scanned once, flat and from left to right, and
// each operand is read by EvaluateTerm; brackets, arguments and SET values recurse on pieces of the text.
// Every value is remembered in `variables` under its own text, so that text that occurs twice is computed
// once.

#include <charconv>

#include "engine/operators.hpp"
#include "functions/script_engine.hpp"
#include "platform/clock.hpp"
#include "series/numbers.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

constexpr std::uint32_t kTimeLimitMs = 300'000;
constexpr std::string_view kTimedOut =
    "Error: The script timed out. Please shorten your script and try again.";

constexpr std::string_view kWordOperators[] = {"NOT", "OR ", "AND", "XOR", "EQV", "IMP"};

bool endsOperand(char c) {
  static constexpr std::string_view kEnds = "&+-/\\*^ ><=";
  return kEnds.find(c) != std::string_view::npos;
}

/// The text between the bracket at `open` and its match, or all the text behind it when it has none.
/// `behind` becomes the position behind the closing bracket.
std::string_view bracketed(std::string_view text, std::size_t open, std::size_t& behind) {
  int depth = 0;
  for (std::size_t i = open; i < text.size(); ++i) {
    if (text[i] == '(') ++depth;
    if (text[i] == ')' && --depth == 0) {
      behind = i + 1;
      return text.substr(open + 1, i - open - 1);
    }
  }
  behind = text.size();
  return text.substr(open + 1);
}

/// Walks the arguments of a call: pieces between commas outside brackets, trimmed. The last one runs to
/// the end of the text.
class ArgumentReader {
 public:
  explicit ArgumentReader(std::string_view text) : rest_(text) {}
  /// False when there is no further argument.
  bool next(std::string_view& argument) {
    if (done_) return false;
    int depth = 0;
    for (std::size_t i = 0; i < rest_.size(); ++i) {
      if (rest_[i] == '(') ++depth;
      if (rest_[i] == ')') --depth;
      if (rest_[i] == ',' && depth == 0) {
        argument = trim(rest_.substr(0, i));
        rest_.remove_prefix(i + 1);
        return true;
      }
    }
    argument = trim(rest_);
    done_ = true;
    return true;
  }

 private:
  std::string_view rest_;
  bool done_ = false;
};

/// "SET name = text" taken apart. A text that begins with these three letters loses four characters in any
/// case; without a "=" it is no SET statement all the same.
struct Statement {
  bool isSet;
  std::string_view name;
  std::string_view text;
};

Statement splitStatement(std::string_view text) {
  if (!text.starts_with("SET")) return {false, {}, text};
  text = trim(text.substr(std::min<std::size_t>(4, text.size())));
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) return {false, {}, text};
  return {true, trim(text.substr(0, equals)), trim(text.substr(equals + 1))};
}

/// Counts evaluations inside one another.
class DepthGuard {
 public:
  explicit DepthGuard(int& depth) : depth_(depth) { ++depth_; }
  ~DepthGuard() { --depth_; }
  DepthGuard(const DepthGuard&) = delete;

 private:
  int& depth_;
};

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
  const DepthGuard guard(depth_);
  if (depth_ > kMaxDepth || rowsHeld_ > kMaxRowsHeld) {
    abortRun();
    return {};
  }
  if (platform::tickMilliseconds() - startTicks > kTimeLimitMs) {
    errorText = kTimedOut;
    abortMark = "timeout";
  }
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
  std::string_view op;
  std::size_t position = 0;
  while (position < text.size()) {
    const std::size_t before = position;
    for (std::string_view word : kWordOperators) {
      if (text.substr(position, 3) == word) {
        op = text.substr(position, 3);
        position += 3;
        break;
      }
    }
    const char c = position < text.size() ? text[position] : '\0';
    if (position >= text.size()) {
      // the operator was the last word
    } else if (c == ' ') {
      ++position;
    } else if (std::string_view("&+-*/\\^").find(c) != std::string_view::npos) {
      op = text.substr(position++, 1);
    } else if (std::string_view("><=!").find(c) != std::string_view::npos) {
      const bool two = position + 1 < text.size() &&
                       std::string_view("><=").find(text[position + 1]) != std::string_view::npos;
      op = text.substr(position, two ? 2 : 1);
      position += op.size();
    } else if (op.empty()) {
      left = EvaluateTerm(text, position);
    } else if (op == "&") {
      left.value = EvaluateTerm(text, position).value;
    } else if (const Operator* handler = findOperator(op)) {
      const ScriptVariable right = EvaluateTerm(text, position);
      apply(*handler, left, right, {zeros(), dryRun});
    }
    if (position == before || !errorText.empty()) break;
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
  value.value = parseDouble(FormatFixed(value.value, 20));
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
