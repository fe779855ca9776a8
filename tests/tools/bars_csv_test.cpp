#include "bars_csv.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace brindlewort::tool {
namespace {

constexpr double kAugust19th2004 = 2453236.5;

struct Reading {
  std::vector<Bar> bars;
  std::string message;  ///< of the problem; empty when all was read
};

Reading read(std::string_view text, std::size_t pieceSize = std::string_view::npos) {
  Reading reading;
  BarsCsvReader reader([&](const Bar& bar) { reading.bars.push_back(bar); });
  bool more = true;
  while (more && !text.empty()) {
    const std::string_view piece = text.substr(0, pieceSize);
    text.remove_prefix(piece.size());
    more = reader.feed(piece);
  }
  const bool done = reader.finish();
  EXPECT_EQ(done, !reader.problem().has_value());
  EXPECT_EQ(reader.bars(), reading.bars.size());
  if (reader.problem()) reading.message = reader.problem()->message("b.csv");
  return reading;
}

void expectBar(const Bar& bar, double date, double open, double high, double low, double close,
               double volume) {
  EXPECT_EQ(bar.JDate, date);
  EXPECT_EQ(bar.OpenPrice, open);
  EXPECT_EQ(bar.HighPrice, high);
  EXPECT_EQ(bar.LowPrice, low);
  EXPECT_EQ(bar.ClosePrice, close);
  EXPECT_EQ(bar.Volume, volume);
}

void expectOneBar(std::string_view text) {
  const Reading reading = read(text);
  ASSERT_EQ(reading.message, "") << text;
  ASSERT_EQ(reading.bars.size(), 1u) << text;
  expectBar(reading.bars[0], kAugust19th2004, 1.5, 4, 1, 2, 70);
}

/// The message for one bar with a given field in one column, in the second line.
std::string messageForRow(const std::string& row) {
  return read("Date,Open,High,Low,Close,Volume\n" + row).message;
}

TEST(BarsCsv, ReadsBarsInTheirOrder) {
  const Reading reading = read(
      "Date,Open,High,Low,Close,Volume\n"
      "2004-08-19,100,104.06,95.96,100.34,22351900\n"
      "2004-08-20,101.01,109.08,100.5,108.31,11428600\n");
  ASSERT_EQ(reading.bars.size(), 2u);
  expectBar(reading.bars[0], kAugust19th2004, 100, 104.06, 95.96, 100.34, 22351900);
  expectBar(reading.bars[1], kAugust19th2004 + 1, 101.01, 109.08, 100.5, 108.31, 11428600);
}

TEST(BarsCsv, TheHeaderGivesTheOrderInAnyCase) {
  expectOneBar("Date,Open,High,Low,Close,Volume\n2004-08-19,1.5,4,1,2,70\n");
  expectOneBar("CLOSE,low,High,oPEN,volume,DATE\n2,1,4,1.5,70,2004-08-19\n");
  expectOneBar(" date , open ,high,low,close,volume\n 2004-08-19 ,\t1.5 ,4,1,2, 70 \n");
  expectOneBar(
      "\"Date\",\"Open\",\"High\",\"Low\",\"Close\",\"Volume\"\n\"2004-08-19\",\"1.5\",4,1,\"2\",70\n");
}

TEST(BarsCsv, TheDateColumnHasOneOfFourNamesOrIsAnUnnamedFirst) {
  for (const char* name : {"Date", "DateTime", "time", "TIMESTAMP", "", "\"\""}) {
    expectOneBar(std::string(name) + ",Open,High,Low,Close,Volume\n2004-08-19,1.5,4,1,2,70\n");
  }
  expectOneBar(",Date,Open,High,Low,Close,Volume\n0,2004-08-19,1.5,4,1,2,70\n");
}

TEST(BarsCsv, FurtherColumnsAreIgnored) {
  expectOneBar("Symbol,Date,Open,High,Low,Close,Adj Close,Volume,,\nABC,2004-08-19,1.5,4,1,2,junk,70,x,\n");
  expectOneBar("Date,Open,High,Low,Close,Volume,Note\n2004-08-19,1.5,4,1,2,70\n");
  expectOneBar("Date,Open,High,Low,Close,Volume\n2004-08-19,1.5,4,1,2,70,,\n");
}

TEST(BarsCsv, TheVolumeMayBeMissingAndIsCut) {
  EXPECT_EQ(read("Date,Open,High,Low,Close\n2004-08-19,1,1,1,1\n").bars.at(0).Volume, 0.0);
  const std::string header = "Date,Volume,Open,High,Low,Close\n2004-08-19,";
  EXPECT_EQ(read(header + ",1,1,1,1").bars.at(0).Volume, 0.0);
  EXPECT_EQ(read(header + "12.99,1,1,1,1").bars.at(0).Volume, 12.0);
  EXPECT_EQ(read(header + "-12.99,1,1,1,1").bars.at(0).Volume, -12.0);
  EXPECT_EQ(read(header + "2147483647.5,1,1,1,1").bars.at(0).Volume, 2147483647.0);
  EXPECT_EQ(read(header + "-2147483648,1,1,1,1").bars.at(0).Volume, -2147483648.0);
}

TEST(BarsCsv, AMissingVolumeIsNotTakenFromTheBarBefore) {
  const Reading reading =
      read("Date,Open,High,Low,Close,Volume\n2004-08-19,1,1,1,1,5\n2004-08-20,1,1,1,1,\n");
  ASSERT_EQ(reading.bars.size(), 2u);
  EXPECT_EQ(reading.bars[1].Volume, 0.0);
}

TEST(BarsCsv, CommentsAndEmptyLinesMayStandBeforeTheHeader) {
  expectOneBar(
      "# made up, \"not closed\n#\n\n  \nDate,Open,High,Low,Close,Volume\n\n2004-08-19,1.5,4,1,2,70\n\n");
  expectOneBar(
      "\xEF\xBB\xBF"
      "Date,Open,High,Low,Close,Volume\n2004-08-19,1.5,4,1,2,70\n");
  expectOneBar("\xEF\xBB\xBF# c\nDate,Open,High,Low,Close,Volume\n2004-08-19,1.5,4,1,2,70\n");
}

TEST(BarsCsv, LinesEndWithLfOrCrLfOrTheText) {
  expectOneBar("Date,Open,High,Low,Close,Volume\r\n2004-08-19,1.5,4,1,2,70\r\n");
  expectOneBar("Date,Open,High,Low,Close,Volume\n2004-08-19,1.5,4,1,2,70");
  expectOneBar("Date,Open,High,Low,Close,Volume\r2004-08-19,1.5,4,1,2,70\r");
}

TEST(BarsCsv, EveryLineEndCountsOnce) {
  for (const std::string end : {"\n", "\r\n", "\r"}) {
    const std::string text =
        "# c" + end + end + "Date,Open,High,Low,Close" + end + "2004-08-19,1,1,1,1" + end + "x";
    for (const std::size_t size : {std::size_t{1}, std::size_t{7}, text.size()}) {
      EXPECT_EQ(read(text, size).message.substr(0, 8), "b.csv:5:");
    }
  }
}

TEST(BarsCsv, ALineHasAtMostAMebibyte) {
  const std::string header = "Date,Open,High,Low,Close,Note\n", row = "2004-08-19,1,1,1,1,";
  const std::string longest = row + std::string((std::size_t{1} << 20) - row.size() - 1, 'x') + '\n';
  const std::string longer = longest.substr(0, longest.size() - 1) + "x\n";
  EXPECT_EQ(read(header + longest).bars.size(), 1u);
  const std::string expected =
      ": expected a line of at most 1048576 bytes (a text without line ends is no CSV), found a longer one";
  for (const std::size_t size : {std::size_t{4096}, std::size_t{1} << 22}) {
    EXPECT_EQ(read(header + longer, size).message, "b.csv:2" + expected);
    EXPECT_EQ(read(std::string(3u << 20, 'x'), size).message, "b.csv:1" + expected);
    // A quotation mark that is never closed takes in no more.
    std::string open = header + "\"2004-08-19,1,1,1,1\n";
    for (int i = 0; i < 60'000; ++i) open += "2004-08-20,1,1,1,1\n";
    EXPECT_EQ(read(open, size).message, "b.csv:55190" + expected);
  }
  // A comment is not kept.
  EXPECT_EQ(read('#' + std::string(3u << 20, 'x') + '\n' + header + row + '\n').bars.size(), 1u);
}

TEST(BarsCsv, AHeaderHasAtMostAThousandColumns) {
  std::string header = "Date,Open,High,Low,Close";
  for (int column = 6; column <= 1000; ++column) header += ",x";
  EXPECT_EQ(read(header + "\n2004-08-19,1,1,1,1\n").bars.size(), 1u);
  EXPECT_EQ(
      read(header + ",x\n2004-08-19,1,1,1,1\n").message,
      "b.csv:1: expected at most 1000 columns (keep those of the bars, as by cut -d, -f1-6, and leave the "
      "others out), found more");
}

TEST(BarsCsv, AHeaderAloneIsNoBars) {
  const Reading reading = read("Date,Open,High,Low,Close\n");
  EXPECT_EQ(reading.message, "");
  EXPECT_TRUE(reading.bars.empty());
}

TEST(BarsCsv, PiecesOfAnySizeGiveTheSame) {
  const std::string good =
      "\xEF\xBB\xBF# a comment\r\nDate,Open,High,Low,Close,Volume\r\n2004-08-19 09:30:00,1.5,4,1,2,70\r\n"
      "\"2004-08-20\",2.5,5,\"2\",3,80.5\r\n";
  const std::string bad = good + "2004-08-21,1,2,x,4,5\n2004-08-22,1,1,1,1,1\n";
  for (std::size_t size = 1; size < 20; ++size) {
    const Reading reading = read(good, size);
    EXPECT_EQ(reading.message, "");
    ASSERT_EQ(reading.bars.size(), 2u);
    expectBar(reading.bars[1], kAugust19th2004 + 1, 2.5, 5, 2, 3, 80);
    EXPECT_EQ(read(bad, size).message,
              "b.csv:5: column 4 (Low): expected a number such as 101.25, found \"x\"");
  }
}

TEST(BarsCsv, ABadPriceNamesLineColumnAndWhatWasExpected) {
  EXPECT_EQ(messageForRow("2004-08-19,abc,1,1,1,1\n"),
            "b.csv:2: column 2 (Open): expected a number such as 101.25, found \"abc\"");
  EXPECT_EQ(messageForRow("2004-08-19,1,1,1,1,1\n\n2004-08-20,1,1.5.,1,1,1\n"),
            "b.csv:4: column 3 (High): expected a number such as 101.25, found \"1.5.\"");
  EXPECT_EQ(messageForRow("2004-08-19,1,1,,1,1\n"),
            "b.csv:2: column 4 (Low): expected a number such as 101.25, found nothing");
  for (const char* price :
       {"1x", "1,5", "\"1,5\"", "$1", "nan", "inf", "-inf", "1e999", "0x1", "+1", "1 2", "--1"}) {
    const std::string message = messageForRow("2004-08-19,1,1,1," + std::string(price) + ",1\n");
    EXPECT_FALSE(message.empty()) << price;
  }
  EXPECT_EQ(messageForRow("2004-08-19,-1.5e2,1,1,.5,1\n"), "");
}

TEST(BarsCsv, ABadDateTellsTheFormsOfADate) {
  EXPECT_EQ(
      messageForRow("19/08/2004,1,1,1,1,1\n"),
      "b.csv:2: column 1 (Date): expected a date of the years 1801 to 2099: 2004-08-19, 2004-08-19 09:30, "
      "2004-08-19T09:30:00, epoch seconds or milliseconds, or a Julian day number, found \"19/08/2004\"");
  const std::string unnamed = read(",Open,High,Low,Close\n?,1,1,1,1\n").message;
  EXPECT_EQ(unnamed.substr(0, unnamed.find(": expected")), "b.csv:2: column 1 (no name)");
}

TEST(BarsCsv, ABadVolumeTellsItsRange) {
  for (const char* volume : {"many", "2147483648", "-2147483649", "nan", "1e10"}) {
    EXPECT_EQ(messageForRow("2004-08-19,1,1,1,1," + std::string(volume) + "\n"),
              "b.csv:2: column 6 (Volume): expected a volume from -2147483648 to 2147483647 (scale the "
              "column down if "
              "it holds larger ones), found \"" +
                  std::string(volume) + '"');
  }
}

TEST(BarsCsv, ARowOfTheWrongLengthTellsBothLengths) {
  EXPECT_EQ(messageForRow("2004-08-19,1,1,1\n"),
            "b.csv:2: expected 6 columns as in the header, found 4 columns");
  EXPECT_EQ(messageForRow("x\n").substr(0, 26), "b.csv:2: column 1 (Date): ");
  EXPECT_EQ(messageForRow("2004-08-19,1,1,1,1,1,9\n"),
            "b.csv:2: expected 6 columns as in the header, found more, beginning with \"9\"");
}

TEST(BarsCsv, AHeaderWithoutANeededColumnNamesIt) {
  const std::string expected =
      "expected a header line with Date, Open, High, Low, Close and optionally Volume, separated by commas, "
      "found ";
  EXPECT_EQ(read("Date,Open,High,Low,Volume\n").message,
            "b.csv:1: " + expected + "no Close in \"Date,Open,High,Low,Volume\"");
  EXPECT_EQ(read("# c\n\nDay,Open,High,Low,Close\n").message,
            "b.csv:3: " + expected + "no Date in \"Day,Open,High,Low,Close\"");
  EXPECT_EQ(read("Date;Open;High;Low;Close;Volume;Adjusted Close\n").message,
            "b.csv:1: " + expected + "no Date in \"Date;Open;High;Low;Close;Volume;Adjusted...\"");
  EXPECT_EQ(read("").message, "b.csv:1: " + expected + "the end of the input");
  EXPECT_EQ(read("# only\n# comments\n").message, "b.csv:3: " + expected + "the end of the input");
}

TEST(BarsCsv, TwoColumnsOfOneKindAreRefused) {
  EXPECT_EQ(
      read("Date,Open,High,Low,Close,close\n").message,
      "b.csv:1: column 6 (close): expected a name that no column before it has, found the same as column 5; "
      "rename or remove one of them");
  EXPECT_EQ(read("Date,Time,Open,High,Low,Close\n").message,
            "b.csv:1: column 2 (Time): expected a name that no column before it has, found a second date "
            "column beside "
            "column 1; rename or remove one of them");
}

TEST(BarsCsv, BrokenQuotesAreTold) {
  EXPECT_EQ(messageForRow("2004-08-19,1,1,1,1,1\n2004-08-20,1\"2,1,1,1,1\n"),
            "b.csv:3: expected quotation marks only around a whole field, found \"2004-08-20,1\"2,1,1,1,1\"");
  EXPECT_EQ(messageForRow("2004-08-19,1,1,1,1,1\n\"2004-08-20,1,1,1,1,1\n2004-08-21,1,1,1,1,1\n"),
            "b.csv:3: expected a closing quotation mark, found the end of the input");
}

TEST(BarsCsv, NothingIsReadBehindAProblem) {
  const Reading reading =
      read("Date,Open,High,Low,Close\n2004-08-19,1,1,1,1\nx,1,1,1,1\n2004-08-21,1,1,1,1\n");
  EXPECT_EQ(reading.bars.size(), 1u);
  BarsCsvReader reader([](const Bar&) { FAIL() << "a bar of a line without a header"; });
  EXPECT_FALSE(reader.feed("1,2,3\n"));
  EXPECT_FALSE(reader.feed("Date,Open,High,Low,Close\n2004-08-19,1,1,1,1\n"));
  EXPECT_FALSE(reader.finish());
}

/// A reading that goes on behind lines that are no bars.
Reading readOn(std::string_view text, std::size_t pieceSize = std::string_view::npos) {
  Reading reading;
  BarsCsvReader reader(
      [&](const Bar& bar) { reading.bars.push_back(bar); },
      [&](const BarsCsvProblem& problem) { reading.message += problem.message("b.csv") + '\n'; });
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, pieceSize);
    text.remove_prefix(piece.size());
    EXPECT_TRUE(reader.feed(piece));
  }
  EXPECT_TRUE(reader.finish());
  return reading;
}

/// How much of a line with a wrong quotation mark is shown depends on the pieces in which it came.
std::string withoutQuoteOfLine6(std::string message) {
  const std::string before = "whole field, found ";
  const std::size_t from = message.find(before) + before.size();
  return message.replace(from, message.find('\n', from) - from, "...");
}

TEST(BarsCsv, BadLinesAreSkippedWhereThatIsAskedFor) {
  const std::string text =
      "Date,Open,High,Low,Close\n"
      "2004-08-18,1,1,1,1\n"
      "2004-08-19,x,y,1,1\n"      // the first fault is told
      "2004-08-19\n"              // too short
      "2004-08-19,1,1,1,1,9\n"    // too long
      "2004-08-19,1,1\"1,1\n"     // a quotation mark within a field
      "\"2004-08-19,1,1,1,1\n" +  // one that is not closed
      std::string(2u << 20, '1') +
      "\n2004-08-20,2,2,2,2\n\"";  // a line that is too long; an open end
  for (const std::size_t size : {std::size_t{1}, std::size_t{1000}, text.size()}) {
    const Reading reading = readOn(text, size);
    ASSERT_EQ(reading.bars.size(), 2u);
    expectBar(reading.bars[0], kAugust19th2004 - 1, 1, 1, 1, 1, 0);
    expectBar(reading.bars[1], kAugust19th2004 + 1, 2, 2, 2, 2, 0);
    EXPECT_EQ(
        withoutQuoteOfLine6(reading.message),
        "b.csv:3: column 2 (Open): expected a number such as 101.25, found \"x\"\n"
        "b.csv:4: expected 5 columns as in the header, found 1 column\n"
        "b.csv:5: expected 5 columns as in the header, found more, beginning with \"9\"\n"
        "b.csv:6: expected quotation marks only around a whole field, found ...\n"
        "b.csv:7: expected a closing quotation mark, found the end of the line\n"
        "b.csv:8: expected a line of at most 1048576 bytes (a text without line ends is no CSV), found a "
        "longer one\n"
        "b.csv:10: expected a closing quotation mark, found the end of the input\n");
  }
}

TEST(BarsCsv, WithinABarTheLineIsItsOwn) {
  std::vector<std::size_t> lines;
  BarsCsvReader reader([&](const Bar&) { lines.push_back(reader.line()); });
  EXPECT_TRUE(reader.feed("# c\nDate,Open,High,Low,Close\n2004-08-18,1,1,1,1\n\n2004-08-19,1,1,1,1"));
  EXPECT_TRUE(reader.finish());
  EXPECT_EQ(lines, (std::vector<std::size_t>{3, 5}));
}

TEST(BarsCsv, AFileThatIsNoTextIsToldByItsKind) {
  for (const std::size_t size : {std::size_t{1}, std::string_view::npos}) {
    EXPECT_EQ(read(std::string("\x1F\x8B\x08\0\n,,,", 8), size).message, "b.csv: this is a gzip file.");
    EXPECT_EQ(read("PK\x03\x04 bars.csv", size).message, "b.csv: this is a zip file.");
    EXPECT_EQ(read("PK\x03\x04 [Content_Types].xml", size).message, "b.csv: this is an Excel workbook.");
    EXPECT_EQ(read(std::string("D\0a\0t\0e\0,\0\n\0", 12), size).message, "b.csv: this is text in UTF-16.");
  }
}

TEST(BarsCsv, AnyBytesGiveBarsOrAMessage) {
  std::string text = "Date,Open,High,Low,Close\n";
  for (int byte = 0; byte < 256; ++byte) {
    const std::string row = "2004-08-19,1," + std::string(1, static_cast<char>(byte)) + ",1,1\n";
    const Reading reading = read(text + row);
    EXPECT_NE(reading.bars.empty(), reading.message.empty()) << byte;
    EXPECT_TRUE(std::all_of(reading.message.begin(), reading.message.end(),
                            [](char c) { return static_cast<unsigned char>(c) >= 0x20; }));
  }
}

}  // namespace
}  // namespace brindlewort::tool
