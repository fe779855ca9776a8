#pragma once

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "brindlewort/brindlewort.h"

namespace brindlewort::fuzz {

/// What calls gave, to the last bit, as one string of bytes.
class Transcript {
 public:
  void integer(std::int64_t value) { bits(static_cast<std::uint64_t>(value)); }
  void number(double value) { bits(std::bit_cast<std::uint64_t>(value)); }
  void text(const char* text) { text_.append(text ? text : "(none)").push_back('\n'); }
  /// A text that the library gave out, which is freed.
  void takeText(char* given) {
    text(given);
    bw_free(given);
  }
  void clear() { text_.clear(); }
  const std::string& str() const { return text_; }

 private:
  void bits(std::uint64_t value) { text_.append(reinterpret_cast<const char*>(&value), sizeof value); }

  std::string text_;
};

/// A transcript for reading: what is no letter in hexadecimal.
inline void print(const char* whose, std::string_view transcript) {
  std::fprintf(stderr, "---- %s:\n", whose);
  for (const unsigned char c : transcript) {
    std::fprintf(stderr, c == '\n' || (c >= ' ' && c < 127) ? "%c" : "\\%02x", c);
  }
  std::fputc('\n', stderr);
}

/// Ends the program, as a fault that was found, when what should hold does not.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "FAULT: %s\n", what);
  std::abort();
}

/// The limit of components is the machine's: others may come or go between two handles.
inline bool speaksOfLimit(std::string_view text) {
  return text.find("maximum number of alerts") != std::string_view::npos;
}

/// Two handles that were told the same have to answer the same.
inline void requireSame(const std::string& played, const std::string& fresh, const char* what) {
  if (played == fresh || speaksOfLimit(played) || speaksOfLimit(fresh)) return;
  print("the handle", played);
  print("a fresh one", fresh);
  require(false, what);
}

}  // namespace brindlewort::fuzz
