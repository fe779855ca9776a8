// The C++ face, used as a host uses it.

#include <gtest/gtest.h>

#include <brindlewort/brindlewort.hpp>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/date_texts.hpp"

namespace {

using brindlewort::Bar;
using brindlewort::CScriptOutput;
using brindlewort::NULL_VALUE;
using brindlewort::testing::localDates;

constexpr double kNewYear2024 = 2460310.5;

/// Bar n of twelve, n from 1: day n of 2024, close 10 * n.
Bar bar(int n) {
  const double price = 10.0 * n;
  return {kNewYear2024 + n - 1, price - 1, price + 2, price - 2, price, 100 * n};
}

std::vector<Bar> bars(int count = 12) {
  std::vector<Bar> result;
  for (int n = 1; n <= count; ++n) result.push_back(bar(n));
  return result;
}

CScriptOutput outputWithBars() {
  CScriptOutput output;
  output.AppendRecords(bars());
  return output;
}

const char kMeanOfThree[] = "SET A = SMA(CLOSE, 3)\r\nCLOSE > A";

/// The mean of three starts at the fourth bar: (20 + 30 + 40) / 3.
const std::string kMeanOfThreeText = localDates(
    "Date,\"A\"\r\n"
    "2024-01-01 00:00:00,-987654321\r\n"
    "2024-01-02 00:00:00,-987654321\r\n"
    "2024-01-03 00:00:00,-987654321\r\n"
    "2024-01-04 00:00:00,30.0000\r\n"
    "2024-01-05 00:00:00,40.0000\r\n"
    "2024-01-06 00:00:00,50.0000\r\n"
    "2024-01-07 00:00:00,60.0000\r\n"
    "2024-01-08 00:00:00,70.0000\r\n"
    "2024-01-09 00:00:00,80.0000\r\n"
    "2024-01-10 00:00:00,90.0000\r\n"
    "2024-01-11 00:00:00,100.0000\r\n"
    "2024-01-12 00:00:00,110.0000\r\n");

TEST(CppFace, GivesTheSeriesOfAScriptAsText) {
  CScriptOutput output;
  for (int n = 1; n <= 12; ++n) {
    output.AppendRecord(bar(n).JDate, bar(n).OpenPrice, bar(n).HighPrice, bar(n).LowPrice, bar(n).ClosePrice,
                        bar(n).Volume);
  }
  EXPECT_EQ(output.GetScriptOutput(kMeanOfThree, 0, "A"), kMeanOfThreeText);
}

TEST(CppFace, ManyBarsInOneCallAreTheSameAsOneByOne) {
  CScriptOutput oneByOne;
  for (const Bar& one : bars()) oneByOne.AppendRecord(one);
  CScriptOutput atOnce = outputWithBars();
  const char script[] = "SET A = OPEN + HIGH + LOW + CLOSE + VOLUME\r\nA > 0";
  const auto text = atOnce.GetScriptOutput(script, 12, "A");
  // 119 + 122 + 118 + 120 + 1200
  EXPECT_EQ(text, localDates("Date,\"A\"\r\n2024-01-12 00:00:00,1679.0000\r\n"));
  EXPECT_EQ(oneByOne.GetScriptOutput(script, 12, "A"), text);
  atOnce.AppendRecords({});
  EXPECT_EQ(atOnce.GetScriptOutput(script, 12, "A"), text);
}

TEST(CppFace, MapCountMinusOneGivesTheBarsThatMeetTheCondition) {
  CScriptOutput output = outputWithBars();
  EXPECT_EQ(output.GetScriptOutput("CLOSE > 100", -1, ""), "11,12,");
}

TEST(CppFace, EditsChangeTheFirstBarOfADate) {
  CScriptOutput output = outputWithBars();
  Bar last = bar(12);
  last.ClosePrice = 999;
  EXPECT_TRUE(output.EditRecord(last));
  EXPECT_EQ(output.GetScriptOutput("SET A = CLOSE\r\nA > 0", 12, "A"),
            localDates("Date,\"A\"\r\n2024-01-12 00:00:00,999.0000\r\n"));
  EXPECT_TRUE(output.EditJDate(last.JDate, last.JDate + 1));
  EXPECT_EQ(output.GetScriptOutput("SET A = CLOSE\r\nA > 0", 12, "A"),
            localDates("Date,\"A\"\r\n2024-01-13 00:00:00,999.0000\r\n"));
  EXPECT_FALSE(output.EditRecord(last));
  EXPECT_FALSE(output.EditJDate(last.JDate, 1.0));
}

TEST(CppFace, QueriesLookAtTheBarsOfTheIncrementalWay) {
  const CScriptOutput output = outputWithBars();
  EXPECT_EQ(output.RecordCount(), 0);
  EXPECT_FALSE(output.GetRecordByIndex(1).has_value());
  EXPECT_FALSE(output.GetRecordByJDate(kNewYear2024).has_value());
  EXPECT_FALSE(output.GetRecordNumberByJDate(kNewYear2024 + 5).has_value());
  EXPECT_EQ(output.GetJDate(1), 0.0);
}

TEST(CppFace, TooFewBarsGiveNothingAndNoError) {
  CScriptOutput output = outputWithBars();
  int errors = 0;
  output.OnScriptError([&](const std::string&) { ++errors; });
  EXPECT_EQ(output.GetScriptOutput("SMA(CLOSE, 10) > 1", 0, ""), std::nullopt);  // asks for 20
  EXPECT_EQ(errors, 0);
  output.ClearRecords();
  EXPECT_EQ(output.GetScriptOutput(kMeanOfThree, 0, "A"), std::nullopt);
  EXPECT_EQ(errors, 0);
}

TEST(CppFace, AFailedScriptTellsTheListenerUntilItIsRemoved) {
  CScriptOutput output = outputWithBars();
  EXPECT_EQ(output.GetScriptOutput("# nothing else", 0, ""), std::nullopt);  // nobody listens
  std::vector<std::string> errors;
  output.OnScriptError([&](const std::string& description) { errors.push_back(description); });
  EXPECT_EQ(output.GetScriptOutput("# nothing else", 0, ""), std::nullopt);
  EXPECT_EQ(errors, std::vector<std::string>{"Error: No script!"});
  EXPECT_EQ(output.GetCustomIndFromCondition("# nothing else"), std::nullopt);
  EXPECT_EQ(errors.size(), 2u);
  output.OnScriptError(nullptr);
  EXPECT_EQ(output.GetScriptOutput("# nothing else", 0, ""), std::nullopt);
  EXPECT_EQ(errors.size(), 2u);
}

TEST(CppFace, AnExceptionOfTheListenerReachesTheCaller) {
  CScriptOutput output = outputWithBars();
  output.OnScriptError([](const std::string& description) { throw std::runtime_error(description); });
  EXPECT_THROW(output.GetScriptOutput("# nothing else", 0, ""), std::runtime_error);
  EXPECT_TRUE(output.GetScriptOutput(kMeanOfThree, 0, "A").has_value());
}

TEST(CppFace, TheHeadingOfACondition) {
  CScriptOutput output = outputWithBars();
  EXPECT_EQ(output.GetCustomIndFromCondition("SET A = CLOSE\r\nA > 0"),
            "Date,Open,High,Low,Close,Volume,\"A\"\r\n");
}

TEST(CppFace, ASeriesIsAViewOfTheLastRun) {
  CScriptOutput output = outputWithBars();
  EXPECT_FALSE(output.GetSeries("A").has_value());
  ASSERT_TRUE(output.GetScriptOutput(kMeanOfThree, 0, "A").has_value());
  const auto series = output.GetSeries("a");
  ASSERT_TRUE(series.has_value());
  ASSERT_EQ(series->size(), 13u);  // one row of filler before the bars
  EXPECT_EQ((*series)[3], NULL_VALUE);
  EXPECT_EQ((*series)[4], 30.0);
  EXPECT_EQ(series->end()[-1], 110.0);
  EXPECT_EQ(series->end() - series->begin(), 13);
  EXPECT_FALSE(output.GetSeries("NOSUCHNAME").has_value());
}

TEST(CppFace, MovingKeepsBarsAndListener) {
  std::vector<std::string> errors;
  CScriptOutput first = outputWithBars();
  first.OnScriptError([&](const std::string& description) { errors.push_back(description); });
  CScriptOutput second(std::move(first));
  EXPECT_EQ(second.GetScriptOutput(kMeanOfThree, 0, "A"), kMeanOfThreeText);
  CScriptOutput third;
  third = std::move(second);
  EXPECT_EQ(third.GetScriptOutput(kMeanOfThree, 0, "A"), kMeanOfThreeText);
  EXPECT_FALSE(third.GetScriptOutput("# nothing else", 0, "").has_value());
  EXPECT_EQ(errors.size(), 1u);
  first = outputWithBars();  // a moved-from object may be assigned to
  EXPECT_EQ(first.GetScriptOutput(kMeanOfThree, 0, "A"), kMeanOfThreeText);
}

TEST(CppFace, DatesThereAndBack) {
  const CScriptOutput output;
  EXPECT_EQ(output.ToJulianDate(1980, 1, 1), 2444239.5);
  EXPECT_EQ(output.ToJulianDate(2024, 1, 1, 6), kNewYear2024 + 0.25);
  EXPECT_EQ(output.ToJulianDate(2024, 1, 1, 6, 0, 0, 999), kNewYear2024 + 0.25);
  EXPECT_EQ(output.FromJulianDate(2444239.5), localDates("1980-01-01 00:00:00"));
  EXPECT_EQ(output.FromJulianDate(0.0), "No Date Time");
}

TEST(CppFace, TellsTheVersionOfTheLibrary) {
  EXPECT_EQ(brindlewort::Version(), bw_version());
}

}  // namespace
