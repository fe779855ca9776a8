#include "foreign_file.hpp"

#include <algorithm>
#include <cctype>

#include "series/text.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::string_view kSaveAsCsv = "Save the table as CSV and give that file";
constexpr std::string_view kNotBars = "Give a CSV file of bars";

constexpr ForeignFile kWorkbook = {"an Excel workbook", "xlsx2csv", kSaveAsCsv};
constexpr ForeignFile kOldWorkbook = {"an old Excel workbook", "", kSaveAsCsv};
constexpr ForeignFile kUtf16 = {"text in UTF-16", "iconv -f UTF-16 -t UTF-8", ""};
constexpr ForeignFile kUtf16Low = {"text in UTF-16", "iconv -f UTF-16LE -t UTF-8", ""};
constexpr ForeignFile kUtf16High = {"text in UTF-16", "iconv -f UTF-16BE -t UTF-8", ""};

struct Start {
  std::string_view bytes;
  ForeignFile file;
};
using namespace std::string_view_literals;
constexpr Start kStarts[] = {
    {"\x1F\x8B"sv, {"a gzip file", "zcat", ""}},
    {"\x28\xB5\x2F\xFD"sv, {"a zstd file", "zstdcat", ""}},
    {"BZh"sv, {"a bzip2 file", "bzcat", ""}},
    {"\xFD"
     "7zXZ"sv,
     {"an xz file", "xzcat", ""}},
    {"PK\x03\x04"sv, {"a zip file", "funzip", ""}},
    {"\xD0\xCF\x11\xE0"sv, kOldWorkbook},
    {"\xFF\xFE\0\0"sv, {"text in UTF-32", "iconv -f UTF-32 -t UTF-8", ""}},
    {"\xFF\xFE"sv, kUtf16},
    {"\xFE\xFF"sv, kUtf16},
    {"PAR1"sv, {"a Parquet file", "", "Write its table as CSV and give that file"}},
    {"SQLite format 3\0"sv, {"an SQLite database", "", "Select the bars by: sqlite3 -header -csv"}},
    {"%PDF-"sv, {"a PDF file", "", kNotBars}},
    {"<!DOCTYPE"sv, {"a web page", "", kNotBars}},
    {"<html"sv, {"a web page", "", kNotBars}},
    {"<?xml"sv, {"an XML file", "", kNotBars}},
};

/// The names of its parts tell a workbook from other zip files.
bool isWorkbook(std::string_view start) {
  return start.starts_with("PK\x03\x04") &&
         (contains(start, "[Content_Types].xml") || contains(start, "_rels/") || contains(start, "xl/") ||
          contains(start, "docProps/"));
}

/// Text of a header in UTF-16 without a mark: every other byte is 0.
const ForeignFile* unmarkedUtf16(std::string_view start) {
  if (start.size() < 4) return nullptr;
  const auto zeros = [&](std::size_t from) {
    for (std::size_t i = from; i < 4; i += 2) {
      if (start[i] != '\0' || start[i ^ 1] == '\0') return false;
    }
    return true;
  };
  return zeros(1) ? &kUtf16Low : zeros(0) ? &kUtf16High : nullptr;
}

}  // namespace

const ForeignFile* foreignFile(std::string_view start) {
  if (isWorkbook(start)) return &kWorkbook;
  for (const Start& entry : kStarts) {
    if (start.starts_with(entry.bytes)) return &entry.file;
  }
  return unmarkedUtf16(start);
}

std::string howToRead(const ForeignFile& file, std::string_view command, std::string_view path) {
  const bool byAdvice = file.filter.empty() || (path.empty() && !file.advice.empty());
  if (byAdvice) return std::string(file.advice) + '.';
  std::string text = path.empty() ? "Put a program before it: ... | " : "Read it by: ";
  text += file.filter;
  if (!path.empty()) text += ' ' + asShellWord(path);
  return text.append(" | brindlewort ").append(command).append(" - ...");
}

std::string asShellWord(std::string_view text) {
  const auto isPlain = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           contains("_-./:,+=@%", std::string_view(&c, 1));
  };
  if (!text.empty() && std::all_of(text.begin(), text.end(), isPlain)) return std::string(text);
  return '\'' + replaceAll(text, "'", "'\\''") + '\'';
}

}  // namespace brindlewort::tool
