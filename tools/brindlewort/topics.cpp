#include "topics.hpp"

#include <algorithm>
#include <optional>

#include "function_listing.hpp"
#include "functions/function_table.hpp"
#include "series/text.hpp"
#include "shell/help/script_help.hpp"
#include "word_section.hpp"

namespace brindlewort::tool {
namespace {

void sortUnique(std::vector<std::string_view>& names) {
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
}

}  // namespace

std::string topicText(std::string_view name) {
  if (const std::string_view page = manualPage(name); !page.empty()) return std::string(page) + '\n';
  if (const auto section = describeFunction(functionTable(), trim(name.substr(0, name.find('(')))))
    return *section;
  return reference::wordText(upperCase(trim(name)));
}

std::vector<std::string_view> pageNames() {
  std::vector<std::string_view> names;
  for (const HelpName& entry : helpNames()) {
    if (!manualPage(entry.name).empty()) names.push_back(entry.name);
  }
  sortUnique(names);
  return names;
}

std::vector<std::string_view> wordNames() {
  const auto isFunction = [](std::string_view word) {
    return findFunction(word, Path::kWholeHistory).row != nullptr;
  };
  std::vector<std::string_view> words = reference::languageWords();
  std::erase_if(words, isFunction);
  return words;
}

std::vector<std::string_view> topicNames() {
  std::vector<std::string_view> names = pageNames();
  for (const std::string_view word : reference::languageWords()) names.push_back(word);
  for (const std::string_view name : functionNames(functionTable())) names.push_back(name);
  sortUnique(names);
  return names;
}

}  // namespace brindlewort::tool
