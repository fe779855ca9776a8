#pragma once

#include <string>
#include <string_view>

/// Characters and words of a script as the validator reads them. Its checks scan upper-cased text and know no
/// grammar; what a blank, a word and a number are to them is told here.
namespace brindlewort::validation {

inline bool isLetter(char c) {
  return c >= 'A' && c <= 'Z';
}

inline bool isLineEnd(char c) {
  return c == '\r' || c == '\n';
}

/// A line end counts as a blank wherever a text is trimmed, a word cut out or a neighbour looked at.
inline bool isBlank(char c) {
  return c == ' ' || isLineEnd(c);
}

/// A character at which the word test cuts the text: an operator's sign, a blank, a bracket, a comma. Line
/// ends cut too.
bool isSeparator(char c);

/// A neighbour's place beyond either end of the text holds a blank.
inline char charAt(std::string_view text, std::size_t i) {
  return i < text.size() ? text[i] : ' ';
}
inline char charBefore(std::string_view text, std::size_t i) {
  return i == 0 ? ' ' : text[i - 1];
}

std::string_view trimBlanks(std::string_view text);

/// Each run of blanks as one blank.
std::string withSingleBlanks(std::string_view text);

/// Every line end character as `sign`.
std::string withLineEndsAs(char sign, std::string_view text);

/// The spelled operators by their signs, where they stand as whole words: AND & OR | XOR ^ NOT ! EQV = MOD %.
std::string withOperatorSigns(std::string_view text);

/// At most one point, and nothing but digits, points and signs. True for the empty text.
bool isNumeric(std::string_view text);

/// A "+" or "-" at `at` that is a number's sign and no operator: a digit or point follows at once, and before
/// it, blanks left out, stands nothing, an operator, an opening bracket or a comma. `operatorSigns` are the
/// characters that operators of this text are written with, beside the spelled ones.
bool isNumberSign(std::string_view text, std::size_t at, std::string_view operatorSigns);

}  // namespace brindlewort::validation
