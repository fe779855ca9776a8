// How argument texts become series and numbers, and the reports of what is wrong with them.

#include "functions/argument_binding.hpp"

#include "functions/script_engine.hpp"
#include "series/numbers.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

/// Without its first character, when that is an opening bracket, and without the first closing one.
std::string withoutBrackets(std::string text) {
  if (!text.starts_with('(')) return text;
  text.erase(0, 1);
  if (const std::size_t close = text.find(')'); close != std::string::npos) text.erase(close, 1);
  return text;
}

}  // namespace

bool LooksNumeric(std::string_view text) {
  const std::string bare = withoutChar(trim(text), ' ');
  return !bare.empty() && IsNumberText(withoutBrackets(bare));
}

std::string_view CheckNotNegative(std::string_view text) {
  if (text.empty()) return {};
  const std::string bare = withoutChar(withoutBrackets(std::string(text)), ' ');
  return parseDouble(bare) < 0.0 ? "argument cannot be negative." : "";
}

std::string_view CheckWholeNumber(std::string_view text) {
  const std::size_t point = text.find('.');
  if (point == std::string_view::npos) return {};
  return parseInt32(text.substr(point + 1)) != 0 ? "Decimal value" : "";
}

void CScriptEngine::SplitArguments(std::string_view text, int required, std::span<std::string_view> slots) {
  for (std::size_t i = 0; i < slots.size(); ++i)
    slots[i] = NthArgument(text, static_cast<int>(i) + 1, required);
}

std::string_view CScriptEngine::NthArgument(std::string_view text, int position, int required) {
  int depth = 0;
  int count = 0;
  std::size_t start = 0;
  std::string_view kept;
  bool found = false;
  for (std::size_t i = 0; i < text.size() && !(found && count >= required); ++i) {
    if (text[i] == '(') ++depth;
    if (text[i] == ')') --depth;
    if (text[i] != ',' || depth != 0) continue;
    if (++count == position) {
      kept = trim(text.substr(start, i - start));
      found = true;
    }
    start = i + 1;
  }
  ++count;
  if (!found && position <= count) kept = trim(text.substr(start));
  if (count < required) {
    if (currentFunction.empty()) {
      errorText = "Error: Argument not optional";
    } else {
      errorText = "Error: Argument of function '" + currentFunction + "' not optional.";
      abortMark = currentFunction;
    }
  }
  return kept;
}

bool CScriptEngine::GetVector(std::string_view text, ScriptVariable& out) {
  if (text.empty()) return false;
  if (IsNumberText(text)) {
    out.value = parseDouble(text);
    out.values.assign(static_cast<std::size_t>(windowLength), out.value);
    return true;
  }
  out = LookupVariable(text);
  return !out.values.empty();
}

bool CScriptEngine::GetNumber(std::string_view function, std::string_view text, double& out, bool barsCheck,
                              bool typeCheck) {
  if (text.empty() || !IsNumberText(text)) return false;
  out = parseDouble(text);
  std::string complaint;
  if (barsCheck && out > windowLength) {
    complaint = "') contains arguments outside of allowed range.";
  } else if (typeCheck && !(out > 0.0 && out < 9.0)) {
    complaint = "' contains an invalid moving average type.";
  } else {
    return true;
  }
  ReportRaw("Function '" + std::string(function) + complaint);
  abortMark = function;
  return false;
}

bool CScriptEngine::ReportRequired(std::string_view function, std::string_view label) {
  if (!errorText.empty()) return false;
  errorText = "Error: '" + std::string(label) + "' argument of '" + std::string(function) + "' not optional.";
  abortMark = function;
  return false;
}

bool CScriptEngine::ReportInvalid(std::string_view function, std::string_view label) {
  if (!errorText.empty()) return false;
  errorText = "Error: '" + std::string(label) + "' argument of '" + std::string(function) + "' is invalid.";
  abortMark = function;
  return false;
}

bool CScriptEngine::ReportRaw(std::string_view text) {
  if (errorText.empty()) errorText = "Error: " + std::string(text);
  return false;
}

bool CScriptEngine::ReportFunction(std::string_view function, std::string_view text) {
  if (errorText.empty()) errorText = "Error: '" + std::string(function) + "' " + std::string(text);
  return false;
}

}  // namespace brindlewort
