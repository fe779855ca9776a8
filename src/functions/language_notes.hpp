#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace brindlewort {

/// Words and signs of the language that are neither functions nor named constants, told together.
struct LanguageNotes {
  std::string_view title;
  std::vector<std::string_view> words;       ///< in upper case
  std::vector<std::string_view> paragraphs;  ///< what they do
  std::string_view example;                  ///< a whole script, a line break being a line feed
};
std::span<const LanguageNotes> languageNotes();

}  // namespace brindlewort
