#include "services/validate/syntax_checks.hpp"

#include <algorithm>

#include "series/text.hpp"
#include "services/validate/argument_checks.hpp"
#include "services/validate/operator_checks.hpp"
#include "services/validate/script_text.hpp"

namespace brindlewort::validation {

namespace {

/// In the order of looking.
constexpr std::string_view kRefusedPairs[] = {"(;", "(,", "(/", ",)", ";)", "/)", "( ,", ", )", "( ;", "; )"};

constexpr std::string_view kSet = "SET ";

struct BracketRule {
  char more;
  char fewer;
  std::string_view fault;
};
/// In the order of the test.
constexpr BracketRule kBracketRules[] = {
    {'(', ')', "Script not nested with proper \" ) \" bracket"},
    {')', '(', "Script not nested with proper \" ( \" bracket"},
    {'[', ']', "Script not nested with proper \" ] \" bracket"},
    {']', '[', "Script not nested with proper \" [ \" bracket"},
    {'{', '}', "Script not nested with proper \" } \" bracket"},
    {'}', '{', "Script not nested with proper \" { \" bracket"},
};

std::string withCheckedSpelling(std::string_view script) {
  return replaceAll(withSingleBlanks(replaceAll(upperCase(script), "\t", " ")), "%SWING", "PERCENTSWING");
}

bool isNameCharacter(char c) {
  return isLetter(c) || isNumeric({&c, 1});
}

/// A name of several words holds a blank, which is a special character like any other.
Fault checkSetName(std::string_view name) {
  if (isNumeric(name)) return inQuotes(name) + " variable cannot be numeric";
  if (!std::all_of(name.begin(), name.end(), isNameCharacter)) {
    return inQuotes(name) + " variable should not contain special characters";
  }
  if (std::find(operators().begin(), operators().end(), name) != operators().end()) {
    return inQuotes(name) + " is defined operator and cannot be used in SET()";
  }
  return {};
}

Fault checkWord(std::string_view word, const ScriptNames& names) {
  if (word.size() <= 1 || isNumeric(word) || names.knows(word)) return {};
  return notValid(word);
}

std::size_t findSeparator(std::string_view text, std::size_t from) {
  while (from < text.size() && !isSeparator(text[from])) ++from;
  return from;
}

}  // namespace

Fault CheckSyntax(std::string_view script) {
  const std::string text = withCheckedSpelling(script);
  ScriptNames names;
  Fault fault = CheckPairs(text);
  if (fault.empty()) fault = CheckOperators(text, names);
  if (fault.empty()) fault = CheckWords(text, names);
  if (fault.empty()) fault = CheckArguments(text);
  if (fault.empty()) fault = CheckNoInputs(text);
  return fault;
}

Fault CheckPairs(std::string_view script) {
  for (std::string_view pair : kRefusedPairs) {
    if (contains(script, pair)) return notValid(pair);
  }
  return {};
}

Fault CheckSet(std::string_view script, ScriptNames& names) {
  for (std::size_t at = script.find(kSet); at != std::string_view::npos; at = script.find(kSet, at)) {
    const std::size_t from = at + kSet.size();
    const std::size_t equals = script.find('=', from);
    if (equals == std::string_view::npos) return "Invalid SET command";
    const std::string_view name = trimBlanks(script.substr(from, equals - from));
    if (name.empty()) return "Invalid SET command";
    if (Fault fault = checkSetName(name); !fault.empty()) return fault;
    names.addSetName(name);
    at = equals;
  }
  return {};
}

Fault CheckBrackets(std::string_view script) {
  const auto count = [&](char bracket) { return std::count(script.begin(), script.end(), bracket); };
  for (const BracketRule& rule : kBracketRules) {
    if (count(rule.more) > count(rule.fewer)) return std::string(rule.fault);
  }
  return {};
}

Fault CheckWords(std::string_view script, ScriptNames& names) {
  const std::string text = withOperatorSigns(withLineEndsAs('~', script));
  const std::string_view view = text;
  for (std::size_t at = 0; at < view.size();) {
    const std::size_t end = findSeparator(view, at);
    if (view.substr(at).starts_with(kSet)) {
      const std::size_t from = at + kSet.size();
      names.addSetName(view.substr(from, findSeparator(view, from) - from));
    }
    if (Fault fault = checkWord(view.substr(at, end - at), names); !fault.empty()) return fault;
    at = end + 1;
  }
  return {};
}

}  // namespace brindlewort::validation
