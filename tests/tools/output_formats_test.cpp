#include "output_formats.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "series/null_value.hpp"

namespace brindlewort::tool {
namespace {

constexpr double kAugust19th2004 = 2453236.5;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

Series series(std::initializer_list<double> rows) {
  return Series(View(rows.begin(), rows.size()));
}

/// Bars whose first row is no bar of the host, as an engine holds them, and columns over the other rows.
struct FinishedRun {
  explicit FinishedRun(std::size_t days, double firstDate = kAugust19th2004) {
    for (std::size_t day = 0; day < days; ++day) {
      Bar bar;
      bar.JDate = firstDate + static_cast<double>(day);
      bars.AppendRecord(bar);
    }
  }
  OutputTable table(std::vector<OutputColumn> columns, std::size_t firstBar = 1) const {
    OutputTable result;
    result.columns = std::move(columns);
    result.bars.use(bars.rows());
    result.bars.insertFiller(0.0);
    result.firstBar = firstBar;
    result.valueOffset = 1;
    return result;
  }

  BarStore bars;
};

TEST(OutputFormats, OnlyLineFeedsEndTheLinesOfTheText) {
  EXPECT_EQ(withUnixLineEnds("Date,\"A\"\r\n2004-08-19,1\r\n"), "Date,\"A\"\n2004-08-19,1\n");
  EXPECT_EQ(withUnixLineEnds(""), "");
}

TEST(OutputFormats, TheTableAlignsCutsAndLeavesMissingValuesBlank) {
  const FinishedRun run(3);
  EXPECT_EQ(toAlignedTable(
                run.table({{"A", series({NULL_VALUE, 1.23456, -1234.5})}, {"LONG NAME", series({0, 1, 2})}})),
            "Date                 A  LONG NAME\n"
            "----------  ----------  ---------\n"
            "2004-08-19                 0.0000\n"
            "2004-08-20      1.2345     1.0000\n"
            "2004-08-21  -1234.5000     2.0000\n");
}

TEST(OutputFormats, TheTableShowsTimesWhenOneBarHasOne) {
  const FinishedRun run(2, kAugust19th2004 + 0.25);
  EXPECT_EQ(toAlignedTable(run.table({{"A", series({5, NULL_VALUE})}})),
            "Date                      A\n"
            "-------------------  ------\n"
            "2004-08-19 06:00:00  5.0000\n"
            "2004-08-20 06:00:00\n");
}

TEST(OutputFormats, TheTableHasItsHeadingWithoutBarsAndColumns) {
  EXPECT_EQ(toAlignedTable(FinishedRun(0).table({})), "Date\n----\n");
  EXPECT_EQ(toAlignedTable(FinishedRun(1).table({})), "Date\n----------\n2004-08-19\n");
}

TEST(OutputFormats, TheTableStartsAtTheFirstBarAsked) {
  const FinishedRun run(3);
  EXPECT_EQ(toAlignedTable(run.table({{"A", series({1, 2, 3})}}, 3)),
            "Date             A\n"
            "----------  ------\n"
            "2004-08-21  3.0000\n");
}

TEST(OutputFormats, ASeriesShorterThanTheBarsIsMissingAtTheEnd) {
  const FinishedRun run(2);
  EXPECT_EQ(toAlignedTable(run.table({{"A", series({1})}})),
            "Date             A\n"
            "----------  ------\n"
            "2004-08-19  1.0000\n"
            "2004-08-20\n");
  EXPECT_EQ(nlohmann::json::parse(toJson(run.table({{"A", series({1})}})))["A"],
            nlohmann::json::parse("[1.0,null]"));
}

TEST(OutputFormats, JsonKeepsEveryBitAndWritesNullForWhatIsMissing) {
  const FinishedRun run(6);
  const double third = 1.0 / 3;
  const nlohmann::json json = nlohmann::json::parse(
      toJson(run.table({{"A", series({NULL_VALUE, third, kNan, kInfinity, -kInfinity, -987654321.5})},
                        {"B \"C\"", Series()}})));
  EXPECT_EQ(json["Date"][0], "2004-08-19 00:00:00");
  EXPECT_EQ(json["JDate"][5], kAugust19th2004 + 5);
  EXPECT_TRUE(json["A"][0].is_null());
  EXPECT_EQ(json["A"][1].get<double>(), third);
  EXPECT_TRUE(json["A"][2].is_null());
  EXPECT_TRUE(json["A"][3].is_null());
  EXPECT_TRUE(json["A"][4].is_null());
  EXPECT_EQ(json["A"][5].get<double>(), -987654321.5);
  EXPECT_EQ(json["B \"C\""].size(), 6u);
  EXPECT_EQ(json.size(), 4u);
}

TEST(OutputFormats, JsonIsTheSameTextEachTimeWithColumnsInOrder) {
  const FinishedRun run(1);
  EXPECT_EQ(toJson(run.table({{"B", series({2})}, {"A", series({1})}})),
            "{\"Date\":[\"2004-08-19 00:00:00\"],\n\"JDate\":[2453236.5],\n\"B\":[2.0],\n\"A\":[1.0]}\n");
}

TEST(OutputFormats, JsonStandsNamesThatAreNoUtf8) {
  const FinishedRun run(1);
  const std::string text = toJson(run.table({{"\xFF", series({1})}}));
  EXPECT_EQ(nlohmann::json::parse(text).size(), 3u);
}

}  // namespace
}  // namespace brindlewort::tool
