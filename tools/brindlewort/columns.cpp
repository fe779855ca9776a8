#include "columns.hpp"

#include <algorithm>

#include "near_names.hpp"
#include "series/text.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::size_t kMostListed = 40;    // columns in a message
constexpr std::size_t kLongestShown = 80;  // characters of a script in a message

bool hasBrackets(std::string_view text) {
  return contains(text, "(") || contains(text, ")");
}

/// Two names are the same column when these are equal.
std::string keyOf(std::string_view name) {
  return withoutChar(upperCase(name), ' ');
}

/// The component takes a text with brackets for one name.
std::vector<std::string> namesIn(std::string_view sets) {
  if (hasBrackets(sets)) return {upperCase(trim(sets))};
  std::vector<std::string> names;
  for (std::size_t from = 0; from <= sets.size();) {
    const std::size_t comma = std::min(sets.find(',', from), sets.size());
    const std::string name = withoutChar(sets.substr(from, comma - from), '"');
    if (!trim(name).empty()) names.push_back(upperCase(trim(name)));
    from = comma + 1;
  }
  return names;
}

/// True when commas stand outside the brackets, so that several names must be meant.
bool namesSeveral(std::string_view sets) {
  int depth = 0;
  for (const char c : sets) {
    depth += c == '(' ? 1 : c == ')' ? -1 : 0;
    if (c == ',' && depth == 0) return true;
  }
  return false;
}

std::string listOf(const std::vector<std::string_view>& columns) {
  if (columns.empty()) return "This script has no columns: they are its SET statements and function calls.";
  if (columns.size() > kMostListed) return "Leave --sets out to see all columns of this script.";
  std::string text = "The columns of this script are:\n" + inLines(columns, "  ", kLineWidth);
  text.pop_back();
  return text;
}

}  // namespace

std::vector<std::string> columnNames(std::string_view heading) {
  static constexpr std::string_view kBetween = "\",\"";
  std::vector<std::string> names;
  std::size_t at = heading.find('"');
  while (at != std::string_view::npos) {
    const std::size_t end = heading.find(kBetween, at + 1);
    const std::size_t last = end == std::string_view::npos ? heading.size() - 1 : end;
    names.emplace_back(heading.substr(at + 1, last - at - 1));
    at = end == std::string_view::npos ? end : end + kBetween.size() - 1;
  }
  return names;
}

std::vector<std::string> missingColumns(std::string_view sets, const std::vector<std::string>& columns) {
  if (sets.empty()) return {};
  std::vector<std::string> names = namesIn(sets);
  if (names.empty()) {
    throw ToolError(kExitUsage, "--sets names no column. Give names with commas between, or leave it out.");
  }
  std::erase_if(names, [&](const std::string& name) {
    const auto isIt = [&](const std::string& column) { return keyOf(column) == keyOf(name); };
    return std::any_of(columns.begin(), columns.end(), isIt);
  });
  return names;
}

void failForColumns(std::string_view sets, const std::vector<std::string>& missing,
                    const std::vector<std::string>& columns) {
  if (hasBrackets(sets) && namesSeveral(sets)) {
    throw ToolError(kExitUsage,
                    "--sets takes a function call only alone. Name the call by a SET statement, as SET X = "
                    "SMA(CLOSE, 14), and ask for X.");
  }
  const std::vector<std::string_view> known(columns.begin(), columns.end());
  std::string text;
  for (const std::string& name : missing) {
    text += unknownName("column", name, known, &name == &missing.back() ? listOf(known) : "");
  }
  throw ToolError(kExitUsage, text);
}

std::string noColumnsText(std::string_view script) {
  const std::string_view condition = trim(script);
  const bool isOneLine = condition.find_first_of("\r\n#'") == std::string_view::npos;
  const bool isShown = isOneLine && condition.size() <= kLongestShown;
  const std::string shown(isShown ? condition : "...");
  return "Only dates are printed: this script has no columns. They are the SET statements and function calls "
         "of a "
         "script.\nTo see the values of its condition, name it: --script 'SET RESULT = " +
         shown + "' --script 'RESULT = 1'";
}

}  // namespace brindlewort::tool
