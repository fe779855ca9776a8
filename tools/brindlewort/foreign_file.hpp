#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brindlewort::tool {

/// A kind of file that holds no text to read bars from, though it may hold bars.
struct ForeignFile {
  std::string_view name;  ///< "a gzip file"
  std::string_view
      filter;  ///< a program that makes CSV text of the file at a path; empty where there is none
  std::string_view advice;  ///< what to do without it; empty where it reads standard input too
};

/// So many bytes at the start of a file tell its kind.
inline constexpr std::size_t kTellingBytes = 64;

/// The kind of a file that starts so; null for text. The bytes may be fewer than kTellingBytes.
const ForeignFile* foreignFile(std::string_view start);

/// What to type so that `command` of the tool reads such a file; `path` is empty for standard input.
std::string howToRead(const ForeignFile& file, std::string_view command, std::string_view path);

/// The text as one word for a shell.
std::string asShellWord(std::string_view text);

}  // namespace brindlewort::tool
