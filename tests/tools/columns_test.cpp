#include "columns.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tool_fixture.hpp"

namespace brindlewort::tool {
namespace {

using Names = std::vector<std::string>;

TEST(Columns, AHeadingNamesThem) {
  EXPECT_EQ(columnNames("Date"), Names{});
  EXPECT_EQ(columnNames("Date,\"A\""), Names{"A"});
  EXPECT_EQ(columnNames("Date,\"A\",\"SMA(CLOSE, 3)\",\"B\""), (Names{"A", "SMA(CLOSE, 3)", "B"}));
}

TEST(Columns, MissingOnesAreThoseThatNoColumnIs) {
  const Names columns = {"A", "FAST", "SMA(CLOSE, 3)"};
  EXPECT_EQ(missingColumns("", columns), Names{});
  EXPECT_EQ(missingColumns("a, \"Fast\",", columns), Names{});
  EXPECT_EQ(missingColumns("sma(close,3)", columns), Names{});
  EXPECT_EQ(missingColumns("A,xA,FAS,FAST", columns), (Names{"XA", "FAS"}));
  EXPECT_EQ(missingColumns("A,SMA(CLOSE, 3)", columns), Names{"A,SMA(CLOSE, 3)"});
}

class Sets : public Tool {
 protected:
  /// What standard error gets of a run that must be refused, whatever its form.
  std::string refusal(const std::string& sets, const std::string& script = kScript) const {
    const std::string bars = write("b.csv", twelveBars());
    std::string text;
    for (const std::vector<std::string>& form :
         {Names{}, Names{"--format", "json"}, Names{"--format", "table"}, Names{"--follow"},
          Names{"--from", "5"}}) {
      std::vector<std::string> arguments = {"output", bars, "--script", script, "--sets", sets};
      arguments.insert(arguments.end(), form.begin(), form.end());
      const Outcome outcome = run(arguments);
      EXPECT_EQ(outcome.code, 1);
      EXPECT_EQ(outcome.out, "");
      EXPECT_TRUE(text.empty() || text == outcome.err) << text << outcome.err;
      text = outcome.err;
    }
    return text;
  }
  static constexpr char kScript[] = "SET FAST = CLOSE + 1\nSET SLOW = CLOSE - 1\nFAST > SLOW";
};

TEST_F(Sets, AnUnknownNameIsToldWithThoseNearIt) {
  const std::string columns = "The columns of this script are:\n  FAST, SLOW\n";
  EXPECT_EQ(refusal("FSAT"), "There is no column FSAT. Near it are:\n  FAST\n" + columns);
  EXPECT_EQ(refusal("XFAST"), "There is no column XFAST. Near it are:\n  FAST\n" + columns);
  EXPECT_EQ(refusal("SLOW,QQQQ,SLW"),
            "There is no column QQQQ. There is no column SLW. Near it are:\n  SLOW\n" + columns);
}

TEST_F(Sets, WhatNamesNothingIsTold) {
  EXPECT_EQ(refusal(","), "--sets names no column. Give names with commas between, or leave it out.\n");
  EXPECT_EQ(
      refusal("A", "CLOSE > OPEN"),
      "There is no column A. This script has no columns: they are its SET statements and function calls.\n");
  EXPECT_EQ(refusal("A,SMA(CLOSE, 3)", "SET A = CLOSE\nSMA(CLOSE, 3) > A").substr(0, 41),
            "--sets takes a function call only alone. ");
  const Outcome list =
      run({"output", write("b.csv", twelveBars()), "-s", kScript, "--sets", "FAST", "--from", "-1"});
  EXPECT_EQ(list.code, 1);
  EXPECT_EQ(list.err, "--from -1 gives a list of bar numbers, which has no columns. Leave --sets out.\n");
}

TEST_F(Sets, AConditionAloneIsToldHowToHaveAColumn) {
  const std::string bars = write("b.csv", twelveBars());
  const std::string why =
      "Only dates are printed: this script has no columns. They are the SET statements and function calls of "
      "a "
      "script.\nTo see the values of its condition, name it: --script 'SET RESULT = CLOSE > 100' --script "
      "'RESULT = "
      "1'\n";
  const Outcome whole = run({"output", bars, "--script", "CLOSE > 100", "--from", "12"});
  EXPECT_EQ(whole.code, 0);
  EXPECT_EQ(whole.out, "Date\n2024-01-12 00:00:00\n");
  EXPECT_EQ(whole.err, why + "The numbers of the bars on which it holds are listed by --from -1.\n");
  const Outcome followed = run({"output", bars, "--script", "CLOSE > 100", "--from", "12", "--follow"});
  EXPECT_EQ(followed.out, "Date\n2024-01-12 00:00:00\n");
  EXPECT_EQ(followed.err, why);
  // What it says to type does what it says.
  EXPECT_EQ(
      run({"output", bars, "--script", "SET RESULT = CLOSE > 100", "--script", "RESULT = 1", "--from", "10"})
          .out,
      "Date,\"RESULT\"\n2024-01-10 00:00:00,0\n2024-01-11 00:00:00,1.0000\n2024-01-12 00:00:00,1.0000\n");
  EXPECT_EQ(run({"output", bars, "--script", "CLOSE > 100", "--from", "-1"}).err, "");
}

}  // namespace
}  // namespace brindlewort::tool
