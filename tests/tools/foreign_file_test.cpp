#include "foreign_file.hpp"

#include <gtest/gtest.h>

#include <string>

namespace brindlewort::tool {
namespace {

using namespace std::string_view_literals;

std::string nameOf(std::string_view start) {
  const ForeignFile* const file = foreignFile(start);
  return file ? std::string(file->name) : "text";
}

TEST(ForeignFile, ItsFirstBytesTellItsKind) {
  EXPECT_EQ(nameOf("\x1F\x8B\x08"sv), "a gzip file");
  EXPECT_EQ(nameOf("\x28\xB5\x2F\xFD$"sv), "a zstd file");
  EXPECT_EQ(nameOf("BZh91AY&SY"sv), "a bzip2 file");
  EXPECT_EQ(nameOf("\xFD"
                   "7zXZ\0"sv),
            "an xz file");
  EXPECT_EQ(nameOf("PK\x03\x04\x14\0\0\0 bars.csv"sv), "a zip file");
  EXPECT_EQ(nameOf("PK\x03\x04\x14\0\0\0 xl/workbook.xml"sv), "an Excel workbook");
  EXPECT_EQ(nameOf("\xD0\xCF\x11\xE0\xA1\xB1"sv), "an old Excel workbook");
  EXPECT_EQ(nameOf("\xFF\xFE"
                   "D\0"sv),
            "text in UTF-16");
  EXPECT_EQ(nameOf("\xFE\xFF\0D"sv), "text in UTF-16");
  EXPECT_EQ(nameOf("\xFF\xFE\0\0D\0\0\0"sv), "text in UTF-32");
  EXPECT_EQ(nameOf("D\0a\0t\0e\0"sv), "text in UTF-16");
  EXPECT_EQ(nameOf("\0D\0a\0t\0e"sv), "text in UTF-16");
  EXPECT_EQ(nameOf("<!DOCTYPE html>"sv), "a web page");
  EXPECT_EQ(nameOf("SQLite format 3\0"sv), "an SQLite database");
}

TEST(ForeignFile, TextIsNone) {
  for (const std::string_view start : {""sv, "D"sv, "Date,Open"sv, "# c\n"sv,
                                       "\xEF\xBB\xBF"
                                       "Date"sv,
                                       "\xE4,Date"sv, "BZ,Date"sv, "PK,Date"sv, "\0\0\0\0"sv}) {
    EXPECT_EQ(nameOf(start), "text");
  }
}

TEST(ForeignFile, ItIsToldWhatReadsIt) {
  const ForeignFile& gzip = *foreignFile("\x1F\x8B"sv);
  EXPECT_EQ(howToRead(gzip, "output", "b.csv.gz"), "Read it by: zcat b.csv.gz | brindlewort output - ...");
  EXPECT_EQ(howToRead(gzip, "alert", "my 'b'.gz"),
            "Read it by: zcat 'my '\\''b'\\''.gz' | brindlewort alert - ...");
  EXPECT_EQ(howToRead(gzip, "output", ""), "Put a program before it: ... | zcat | brindlewort output - ...");
  const ForeignFile& workbook = *foreignFile("PK\x03\x04xl/"sv);
  EXPECT_EQ(howToRead(workbook, "output", "b.xlsx"),
            "Read it by: xlsx2csv b.xlsx | brindlewort output - ...");
  EXPECT_EQ(howToRead(workbook, "output", ""), "Save the table as CSV and give that file.");
}

}  // namespace
}  // namespace brindlewort::tool
