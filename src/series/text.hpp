#pragma once

#include <string>
#include <string_view>

/// Text work of the script language. Scripts are bytes; only ASCII letters have an upper case.
namespace brindlewort {

/// Blank, tab, carriage return, line feed, vertical tab, form feed.
inline bool isWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Without the white space at both ends.
std::string_view trim(std::string_view text);

/// One forward pass: each occurrence of `from` becomes `to`, and what was inserted is not read again.
std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

/// The blanks of a call's text in one form: none behind an opening or in front of a closing bracket, one behind a comma.
std::string withUniformBlanks(std::string_view text);

std::string upperCase(std::string_view text);

inline bool contains(std::string_view text, std::string_view piece) {
  return text.find(piece) != std::string_view::npos;
}

std::string withoutChar(std::string_view text, char c);

/// True when every character is one of "0123456789.-+eE" and the text is neither "e" nor "E". True for the
/// empty text, so callers test for that too.
bool IsNumberText(std::string_view text);

}  // namespace brindlewort
