#pragma once

#include <span>
#include <string_view>

/// The validator's vocabulary as literal tables: operators, separators, the words that a script
/// may use, and the way back from a function's short name to its long one.
namespace brindlewort::validation {

/// The operators of the language; longer ones before those that they contain.
std::span<const std::string_view> operators();

struct SpelledOperator {
  std::string_view word;
  char sign;
};
/// The operators that are words, and the signs that stand for them while a text is checked.
std::span<const SpelledOperator> spelledOperators();

/// The characters that part words.
std::string_view separators();

/// Every name that a script may use without having SET it, in the spelling and order of the list. Some cannot
/// equal a word, since a blank or a bracket parts words; some stand twice.
std::span<const std::string_view> knownNames();

/// Whether an upper-cased word is among the known names.
bool isKnownName(std::string_view word);

/// The long name of the first short name that the text holds anywhere, in the order of the list: the plain
/// averages stand in front, so that "TSMA" gives SIMPLEMOVINGAVERAGE. Empty when there is none.
std::string_view LongNameOf(std::string_view text);

}  // namespace brindlewort::validation
