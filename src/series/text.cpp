#include "series/text.hpp"

#include <algorithm>

namespace brindlewort {

std::string_view trim(std::string_view text) {
  while (!text.empty() && isWhiteSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isWhiteSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to) {
  std::string out;
  out.reserve(text.size());
  std::size_t at = 0;
  for (std::size_t hit; (hit = text.find(from, at)) != std::string_view::npos; at = hit + from.size()) {
    out.append(text, at, hit - at).append(to);
  }
  return out.append(text, at);
}

std::string withUniformBlanks(std::string_view text) {
  const std::string tight = replaceAll(replaceAll(text, "( ", "("), " )", ")");
  if (!contains(tight, ",")) return tight;
  std::string out;
  out.reserve(tight.size() + 16);
  for (std::size_t i = 0; i < tight.size(); ++i) {
    out += tight[i];
    if (tight[i] != ',') continue;
    out += ' ';
    while (i + 1 < tight.size() && tight[i + 1] == ' ') ++i;
  }
  return out;
}

std::string upperCase(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return out;
}

std::string withoutChar(std::string_view text, char c) {
  std::string out(text);
  out.erase(std::remove(out.begin(), out.end(), c), out.end());
  return out;
}

bool IsNumberText(std::string_view text) {
  if (text == "e" || text == "E") return false;
  return text.find_first_not_of("0123456789.-+eE") == std::string_view::npos;
}

}  // namespace brindlewort
