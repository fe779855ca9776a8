#include "word_section.hpp"

#include <algorithm>
#include <array>
#include <charconv>

#include "function_section.hpp"

namespace brindlewort::reference {
namespace {

constexpr std::size_t kWidth = 100;

std::string paragraph(std::string_view text) {
  return text.empty() ? "" : '\n' + wrapped(text, kWidth) + '\n';
}

std::string example(std::string_view script) {
  std::string text = "\nExample\n";
  while (!script.empty()) {
    const std::size_t end = std::min(script.find('\n'), script.size());
    text += "  " + std::string(script.substr(0, end)) + '\n';
    script.remove_prefix(std::min(end + 1, script.size()));
  }
  return text;
}

std::string numberText(double number) {
  std::array<char, 32> digits{};
  return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr};
}

}  // namespace

std::string plainText(const LanguageNotes& notes) {
  std::string text = std::string(notes.title) + ": " + joined(notes.words) + '\n';
  for (const std::string_view part : notes.paragraphs) text += paragraph(part);
  return text + example(notes.example);
}

std::string plainText(const ConstantGroup& group, const ConstantNotes& constant) {
  std::vector<std::string_view> words;
  for (const ConstantNotes& other : group.constants) words.push_back(other.word);
  return std::string(constant.word) + ", the number " + numberText(constant.number) + '\n' +
         paragraph(constant.text) + '\n' + wrapped(std::string(group.title) + ": " + joined(words), kWidth) +
         '\n' + paragraph(group.text) + example(group.example);
}

std::string wordText(std::string_view word) {
  for (const LanguageNotes& notes : languageNotes()) {
    if (std::ranges::count(notes.words, word) > 0) return plainText(notes);
  }
  for (const ConstantGroup& group : constantGroups()) {
    const auto constant = std::ranges::find(group.constants, word, &ConstantNotes::word);
    if (constant != group.constants.end()) return plainText(group, *constant);
  }
  return {};
}

std::vector<std::string_view> languageWords() {
  std::vector<std::string_view> words;
  for (const LanguageNotes& notes : languageNotes())
    words.insert(words.end(), notes.words.begin(), notes.words.end());
  for (const ConstantGroup& group : constantGroups()) {
    for (const ConstantNotes& constant : group.constants) words.push_back(constant.word);
  }
  return words;
}

}  // namespace brindlewort::reference
