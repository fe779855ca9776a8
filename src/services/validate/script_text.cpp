#include "services/validate/script_text.hpp"

#include <algorithm>

#include "services/validate/name_tables.hpp"

namespace brindlewort::validation {

namespace {

constexpr std::string_view kNumberCharacters = "0123456789.-+";

/// The text ends with a spelled operator that is a whole word.
bool endsWithSpelledOperator(std::string_view text) {
  return std::any_of(spelledOperators().begin(), spelledOperators().end(), [&](const SpelledOperator& entry) {
    if (!text.ends_with(entry.word)) return false;
    const std::size_t at = text.size() - entry.word.size();
    return at == 0 || isSeparator(text[at - 1]);
  });
}

}  // namespace

bool isSeparator(char c) {
  return isLineEnd(c) || separators().find(c) != std::string_view::npos;
}

std::string_view trimBlanks(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string withSingleBlanks(std::string_view text) {
  std::string out(text);
  const auto twoBlanks = [](char a, char b) { return a == ' ' && b == ' '; };
  out.erase(std::unique(out.begin(), out.end(), twoBlanks), out.end());
  return out;
}

std::string withLineEndsAs(char sign, std::string_view text) {
  std::string out(text);
  std::replace_if(out.begin(), out.end(), isLineEnd, sign);
  return out;
}

std::string withOperatorSigns(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = static_cast<std::size_t>(
        std::find_if(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), isSeparator) - text.begin());
    const std::string_view word = text.substr(at, end - at);
    const auto entry = std::find_if(spelledOperators().begin(), spelledOperators().end(),
                                    [&](const SpelledOperator& spelled) { return spelled.word == word; });
    if (entry != spelledOperators().end()) {
      out += entry->sign;
    } else {
      out += word;
    }
    if (end < text.size()) out += text[end];
    at = end + 1;
  }
  return out;
}

bool isNumeric(std::string_view text) {
  return text.find_first_not_of(kNumberCharacters) == std::string_view::npos &&
         std::count(text.begin(), text.end(), '.') <= 1;
}

bool isNumberSign(std::string_view text, std::size_t at, std::string_view operatorSigns) {
  if (text[at] != '+' && text[at] != '-') return false;
  const char next = charAt(text, at + 1);
  if (next != '.' && (next < '0' || next > '9')) return false;
  std::string_view before = text.substr(0, at);
  while (!before.empty() && isBlank(before.back())) before.remove_suffix(1);
  if (before.empty()) return true;
  const char last = before.back();
  return last == '(' || last == '[' || last == '{' || last == ',' ||
         operatorSigns.find(last) != std::string_view::npos || endsWithSpelledOperator(before);
}

}  // namespace brindlewort::validation
