#include "services/validate/operator_checks.hpp"

#include <algorithm>

#include "services/validate/script_text.hpp"
#include "services/validate/syntax_checks.hpp"

namespace brindlewort::validation {

namespace {

constexpr std::string_view kNot = "NOT";
/// The characters of the operators that are written with signs.
constexpr std::string_view kOperatorSigns = "+-*/!><=";
/// The same when the spelled operators have become signs too.
constexpr std::string_view kAllOperatorSigns = "+-*/!><=&|^%";
/// Those of them that are no comparison.
constexpr std::string_view kCombiningSigns = "+-*/!&|^%";

bool isOneOf(char c, std::string_view characters) {
  return characters.find(c) != std::string_view::npos;
}

/// The occurrence belongs to a longer operator, as ">" in ">=" and OR in XOR.
bool isPartOfLongerOperator(std::string_view text, std::size_t at, std::string_view op) {
  return std::any_of(operators().begin(), operators().end(), [&](std::string_view longer) {
    if (longer.size() <= op.size()) return false;
    const std::size_t offset = longer.find(op);
    return offset != std::string_view::npos && at >= offset && text.substr(at - offset).starts_with(longer);
  });
}

bool endsWord(char c) {
  return isBlank(c) || isOneOf(c, "()[]{},");
}

/// Where operators are searched: the script as written, and the text that names are taken out of.
struct Search {
  std::string_view script;
  std::string text;
};

/// When the word around an occurrence is a name, it is blotted out with blanks, so that no other operator is
/// found in it. Nothing around it changes by that: what ends a word is never part of an operator.
bool takeOutName(std::string& text, std::size_t at, const ScriptNames& names) {
  const auto begin =
      std::find_if(text.rend() - static_cast<std::ptrdiff_t>(at), text.rend(), endsWord).base();
  const auto end = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), endsWord);
  if (!names.knows(std::string_view(begin, end))) return false;
  std::fill(begin, end, ' ');
  return true;
}

Fault checkOccurrence(Search& search, std::size_t at, std::string_view op, const ScriptNames& names) {
  const char before = charBefore(search.text, at);
  const char after = charAt(search.text, at + op.size());
  if ((isLetter(before) || isLetter(after)) && takeOutName(search.text, at, names)) return {};
  if (isNumberSign(search.script, at, kOperatorSigns)) return {};
  if (!isBlank(before)) return "No space before " + inQuotes(op);
  if (!isBlank(after) && op != kNot) return "No space after " + inQuotes(op);
  return {};
}

/// A number's sign is no operator, and "!" in "!=" belongs to a comparison.
bool isCombiningSign(std::string_view text, std::size_t at) {
  if (!isOneOf(text[at], kCombiningSigns)) return false;
  return !isPartOfLongerOperator(text, at, text.substr(at, 1)) && !isNumberSign(text, at, kAllOperatorSigns);
}

bool isOperatorSign(std::string_view text, std::size_t at) {
  return at < text.size() && isOneOf(text[at], kAllOperatorSigns) &&
         !isNumberSign(text, at, kAllOperatorSigns);
}

}  // namespace

Fault CheckOperators(std::string_view script, ScriptNames& names) {
  Fault fault = CheckSet(script, names);
  if (fault.empty()) fault = CheckOperatorBlanks(script, names);
  if (fault.empty()) fault = CheckScriptEnds(script);
  if (fault.empty()) fault = CheckOperatorNeighbours(script);
  if (fault.empty()) fault = CheckBrackets(script);
  return fault;
}

Fault CheckOperatorBlanks(std::string_view script, const ScriptNames& names) {
  Search search{script, std::string(script)};
  const std::string& text = search.text;
  for (std::string_view op : operators()) {
    for (std::size_t at = text.find(op); at != std::string::npos; at = text.find(op, at + op.size())) {
      if (isPartOfLongerOperator(text, at, op)) continue;
      if (Fault fault = checkOccurrence(search, at, op, names); !fault.empty()) return fault;
    }
  }
  return {};
}

Fault CheckScriptEnds(std::string_view script) {
  const std::string_view text = trimBlanks(script);
  for (std::string_view op : operators()) {
    if (op != kNot && text.starts_with(op)) return "Script cannot start with operator " + inQuotes(op);
    if (text.ends_with(" " + std::string(op))) return "Script cannot end with operator " + inQuotes(op);
  }
  return {};
}

Fault CheckOperatorNeighbours(std::string_view script) {
  const std::string text = withSingleBlanks(withOperatorSigns(withLineEndsAs(' ', script)));
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!isCombiningSign(text, at)) continue;
    if ((at > 0 && isOperatorSign(text, at - 1)) || isOperatorSign(text, at + 1)) {
      return "No operator allowed before and after an operator";
    }
  }
  return {};
}

}  // namespace brindlewort::validation
