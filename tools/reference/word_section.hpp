#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "functions/function_notes.hpp"
#include "functions/language_notes.hpp"

/// What the reference says of the words of the language that are no functions.
namespace brindlewort::reference {

/// The section about some words and signs, as text for a terminal.
std::string plainText(const LanguageNotes& notes);
/// The same about a named constant, one of the group's.
std::string plainText(const ConstantGroup& group, const ConstantNotes& constant);

/// The section about a word or sign, as text for a terminal; empty when the language has none of this
/// spelling. `word` in upper case.
std::string wordText(std::string_view word);

/// All words and signs that wordText() knows, section by section.
std::vector<std::string_view> languageWords();

}  // namespace brindlewort::reference
