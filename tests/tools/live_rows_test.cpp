#include "live_rows.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr LiveRows::Form kCsv = LiveRows::Form::kCsv;

Bar bar(int day, double price) {
  Bar bar;
  bar.JDate = 2460309.5 + day;  // day 1 is 2024-01-01
  bar.OpenPrice = price;
  bar.HighPrice = price + 1;
  bar.LowPrice = price - 1;
  bar.ClosePrice = price;
  bar.Volume = 100 + day % 5;
  return bar;
}

double wave(int day) {
  return 100 + (day * 7919 % 101) * 0.25;
}

std::string lastLine(const std::string& text) {
  const std::size_t from = text.rfind('\n', text.size() - 2);
  return text.substr(from == std::string::npos ? 0 : from + 1);
}

TEST(LiveRows, TheHeadingComesOnceEvenWhenTheFirstRowIsEdited) {
  LiveRows rows({"SET A = CLOSE\r\nA > 1", "A", 0, kCsv});
  std::string text;
  for (int day = 1; day <= 6; ++day) text += rows.take(bar(day, 10));
  EXPECT_EQ(text, "");
  EXPECT_EQ(rows.take(bar(7, 10)), "Date,\"A\"\n2024-01-07 00:00:00,10.0000\n");
  EXPECT_EQ(rows.take(bar(7, 12)), "2024-01-07 00:00:00,12.0000\n");
  EXPECT_EQ(rows.take(bar(8, 10.5)), "2024-01-08 00:00:00,10.5000\n");
}

/// Bars fed one by one, each after a first guess at it, give the rows of a run over all of them at once.
TEST(LiveRows, RowsAreThoseOfAllBarsAtOnce) {
  const std::string script =
      "SET A = SMA(CLOSE, 14)\r\nSET B = EMA(CLOSE, 5)\r\nSET C = A > B AND CLOSE > REF(CLOSE, 1)\r\nC = 1";
  LiveRows rows({script, "A,B,C", 0, kCsv});
  CScriptOutput whole;
  whole.InitialiseTransientStore(250);
  ASSERT_TRUE(whole.ProcessScripData(script));
  std::string fed;
  for (int day = 1; day <= 120; ++day) {
    rows.take(bar(day, 55.5));
    fed = rows.take(bar(day, wave(day)));
    const Bar b = bar(day, wave(day));
    whole.AppendRecord_New(b.JDate, b.OpenPrice, b.HighPrice, b.LowPrice, b.ClosePrice,
                           static_cast<std::int32_t>(b.Volume));
  }
  std::string expected = whole.GetScriptOutput_New(script, 120, "A,B,C").value();
  std::erase(expected, '\r');
  EXPECT_EQ(fed, lastLine(expected));
  EXPECT_EQ(fed.substr(0, 20), "2024-04-29 00:00:00,");
}

/// Runs that fail for want of bars leave nothing behind that later rows show.
TEST(LiveRows, RowsAfterFailedRunsAreThoseOfRunsThatDidNotFail) {
  LiveRows late({"SET P = 30\r\nSET A = EMA(CLOSE, 4)\r\nSET B = REF(A, P)\r\nB > A", "A,B", 0, kCsv});
  LiveRows early({"SET A = EMA(CLOSE, 4)\r\nSET B = REF(A, 30)\r\nB > A", "A,B", 0, kCsv});
  std::string fromLate, fromEarly;
  for (int day = 1; day <= 80; ++day) {
    fromLate = late.take(bar(day, wave(day)));
    fromEarly = early.take(bar(day, wave(day)));
    EXPECT_EQ(fromLate.empty(), day < 30) << day;
    EXPECT_EQ(fromEarly.empty(), day < 32) << day;  // the greatest period and two
  }
  EXPECT_EQ(fromLate, fromEarly);
  EXPECT_EQ(fromLate.substr(0, 10), "2024-03-20");
}

TEST(LiveRows, MissingValuesAreNullInJson) {
  LiveRows rows(
      {"SET A = REF(CLOSE, 7)\r\nSET B = REF(CLOSE, 2)\r\nA > B", "A,B", 0, LiveRows::Form::kJsonLines});
  std::string text;
  for (int day = 1; day <= 9; ++day) text = rows.take(bar(day, 10 * day));
  EXPECT_EQ(text, "{\"Date\":\"2024-01-09 00:00:00\",\"JDate\":2460318.5,\"A\":20.0,\"B\":70.0}\n");
}

TEST(LiveRows, AScriptAtFaultIsRefused) {
  for (const char* script : {"", "CLOSE > NOSUCHNAME", "SMA(CLOSE, 0) > 1"}) {
    try {
      LiveRows rows({script, "", 0, kCsv});
      ADD_FAILURE() << script;
    } catch (const ToolError& error) {
      EXPECT_EQ(error.code(), kExitScript);
      EXPECT_EQ(std::string(error.what()).substr(0, 7), "Error: ");
    }
  }
}

}  // namespace
}  // namespace brindlewort::tool
