#pragma once

#include <string>
#include <string_view>

#include "function_section.hpp"

namespace brindlewort::reference {

/// docs/functions.md: an index, the words of the texts, a section for each row of the function table, the
/// words and signs of the language, and the named constants.
std::string referencePage();

/// A section as Markdown, under a heading of the third level.
std::string markdown(const FunctionSection& section);

/// `text` so that Markdown shows each of its characters. Code between backticks is left as it is.
std::string escaped(std::string_view text);

/// The anchor that a heading gets: lower case, no signs, blanks as hyphens.
std::string anchorOf(std::string_view heading);

}  // namespace brindlewort::reference
