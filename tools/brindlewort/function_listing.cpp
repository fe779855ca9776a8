#include "function_listing.hpp"

#include <algorithm>

#include "function_section.hpp"
#include "series/text.hpp"

namespace brindlewort::tool {

std::string listFunctions(std::span<const FunctionRow> rows) {
  std::string text;
  for (const FunctionRow& row : rows) {
    for (const reference::Spelling& spelling : reference::spellingsOf(row)) {
      text += spelling.call;
      if (spelling.names.size() > 1) {
        text += "  also " + reference::joined({spelling.names.begin() + 1, spelling.names.end()});
      }
      text += '\n';
    }
  }
  return text;
}

std::optional<std::string> describeFunction(std::span<const FunctionRow> rows, std::string_view name) {
  const std::string wanted = upperCase(name);
  const auto isWanted = [&](const FunctionName& candidate) { return candidate.name == wanted; };
  for (const FunctionRow& row : rows) {
    if (std::none_of(row.names.begin(), row.names.end(), isWanted)) continue;
    return reference::plainText(reference::sectionOf(row)) + '\n' + std::string(reference::plainLegend());
  }
  return std::nullopt;
}

std::vector<std::string_view> functionNames(std::span<const FunctionRow> rows) {
  std::vector<std::string_view> names;
  for (const FunctionRow& row : rows) {
    for (const FunctionName& entry : row.names) names.push_back(entry.name);
  }
  return names;
}

}  // namespace brindlewort::tool
