// Runs the built tool with --follow over bars that are all there: how it ends, and what it refuses.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tool_fixture.hpp"

namespace brindlewort::tool {
namespace {

using FollowOfFiles = Tool;

TEST_F(FollowOfFiles, AFileIsFollowedToItsEnd) {
  const Outcome run = this->run({"output", write("b.csv", twelveBars()), "--follow", "--sets", "A",
                                 "--script", "SET A = SMA(CLOSE, 3)\nCLOSE > A"});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.out,
            "Date,\"A\"\n"
            "2024-01-07 00:00:00,60.0000\n"
            "2024-01-08 00:00:00,70.0000\n"
            "2024-01-09 00:00:00,80.0000\n"
            "2024-01-10 00:00:00,90.0000\n"
            "2024-01-11 00:00:00,100.0000\n"
            "2024-01-12 00:00:00,110.0000\n");
}

TEST_F(FollowOfFiles, TooFewBarsAtTheEndAreTold) {
  const std::string bars = write("b.csv", twelveBars());
  EXPECT_EQ(run({"output", bars, "--follow", "--script", "SMA(CLOSE, 10) > 1"}).code, 0);
  const Outcome tooFew = run({"output", bars, "--follow", "--script", "sma(close, 11) > 1"});
  EXPECT_EQ(tooFew.code, 4);
  EXPECT_EQ(tooFew.out, "");
  EXPECT_EQ(tooFew.err,
            "Not enough data: the script asks for 13 bars, and there were 12. Give more bars, or use shorter "
            "periods.\n");
  EXPECT_EQ(run({"output", "--follow", "--script", "CLOSE > 1"}, "Date,Open,High,Low,Close\n").code, 4);
}

/// The estimate of the bars that a script needs sees numbers, not what variables hold.
TEST_F(FollowOfFiles, ADistanceInAVariableWaitsForItsBarsToo) {
  const std::string bars = write("b.csv", twelveBars());
  const Outcome enough = run({"output", bars, "--follow", "--sets", "A", "--script",
                              "SET P = 11\nSET A = REF(CLOSE, P)\nCLOSE > A"});
  EXPECT_EQ(enough.code, 0) << enough.err;
  EXPECT_EQ(enough.out, "Date,\"A\"\n2024-01-11 00:00:00,-987654321\n2024-01-12 00:00:00,10.0000\n");
  const Outcome tooFew =
      run({"output", bars, "--follow", "--script", "SET P = 13\nSET A = REF(CLOSE, P)\nCLOSE > A"});
  EXPECT_EQ(tooFew.code, 4);
  EXPECT_EQ(tooFew.out, "");
  EXPECT_EQ(tooFew.err.substr(0, 66), "Not enough data: over the 12 bars that there were the script gives");
}

/// Twelve days without those of 6 and 9, and lines that are no bars in between.
std::string damagedBars() {
  std::string bars = twelveBars();
  bars.replace(bars.find("2024-01-06"), 0, "2024-01-06,60,60,x,60,100\n\"2024-01-06\"6,1,1,1,1,1\n");
  bars.replace(bars.find("2024-01-09"), 0, "2024-01-03,1,1,1,1,1\n\"2024-01-08,1,1,1,1,1\n1,2\n");
  return bars;
}

TEST_F(FollowOfFiles, LinesThatAreNoBarsAreToldAndSkipped) {
  const std::vector<std::string> rest = {"--follow", "--script", "SET A = SMA(CLOSE, 3)\nCLOSE > A", "--sets",
                                         "A"};
  const auto follow = [&](const std::string& bars) {
    std::vector<std::string> arguments = {"output", bars};
    arguments.insert(arguments.end(), rest.begin(), rest.end());
    return run(arguments);
  };
  const std::string bars = write("b.csv", damagedBars());
  const Outcome damaged = follow(bars);
  EXPECT_EQ(damaged.code, 3);
  EXPECT_EQ(damaged.out, follow(write("good.csv", twelveBars())).out);
  const std::string end = "; the line is skipped.\n";
  EXPECT_EQ(
      damaged.err,
      bars + ":7: column 4 (Low): expected a number such as 101.25, found \"x\"" + end +  //
          bars +
          ":8: expected quotation marks only around a whole field, found \"\"2024-01-06\"6,1,1,1,1,1\"" +
          end +  //
          bars +
          ":12: expected a bar of 2024-01-08 00:00:00 (line 11) or later, found one of 2024-01-03 "
          "00:00:00" +
          end +  //
          bars + ":13: expected a closing quotation mark, found the end of the line" + end + bars +
          ":14: expected 6 columns as in the header, found 2 columns" + end + "5 lines were skipped.\n");
}

TEST_F(FollowOfFiles, AnAlertSkipsThemToo) {
  const Outcome run =
      this->run({"alert", "--follow", "--symbol", "S", "--script", "CLOSE > 80"}, damagedBars());
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.out,
            "\"S\",\"alert\",2024-01-09 00:00:00,90.0000\n\"S\",\"alert\",2024-01-10 00:00:00,100.0000\n"
            "\"S\",\"alert\",2024-01-11 00:00:00,110.0000\n\"S\",\"alert\",2024-01-12 00:00:00,120.0000\n");
}

TEST_F(FollowOfFiles, AHeaderThatCannotBeReadEndsIt) {
  const Outcome run =
      this->run({"output", "--follow", "--script", "CLOSE > 1"}, "Date,Open\n" + twelveBars());
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err.find("skipped"), std::string::npos);
  EXPECT_NE(run.err.find("standard input:1: expected a header line"), std::string::npos) << run.err;
}

TEST_F(FollowOfFiles, AFunctionOfTheOtherWayOnlyIsToldWithIt) {
  const std::string bars = write("b.csv", twelveBars());
  const Outcome run = this->run({"output", bars, "--follow", "--script", "SET A = TRSUM(3, 3, 3)\nA > 1"});
  EXPECT_EQ(run.code, 2);
  EXPECT_EQ(run.err, "Error: Undefined function 'TRSUM'\nWithout --follow this script is computed.\n");
}

TEST_F(FollowOfFiles, WhatItHasNoAnswerForIsTold) {
  const std::string bars = write("b.csv", twelveBars());
  for (const std::vector<std::string>& more :
       {std::vector<std::string>{"--format", "table"}, std::vector<std::string>{"--from", "-1"}}) {
    std::vector<std::string> arguments = {"output", bars, "--follow", "--script", "CLOSE > 1"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome run = this->run(arguments);
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find("--follow"), std::string::npos);
  }
  EXPECT_EQ(run({"output", "--follow"}, twelveBars()).code, 1);  // neither a script nor room for one
  EXPECT_EQ(run({"output", "/", "--follow", "--script", "CLOSE"}).code, 3);
}

TEST_F(FollowOfFiles, ClosedStreamsAreTold) {
  const std::string command = quoted(BRINDLEWORT_TOOL) + " output --follow --script 'CLOSE > 1'";
  EXPECT_EQ(runShell(command + " <&-", "").code, 3);
  EXPECT_EQ(runShell(command + " >&-", twelveBars()).code, 3);
}

TEST_F(FollowOfFiles, AFullDeviceIsTold) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP();
  const Outcome run =
      runShell(quoted(BRINDLEWORT_TOOL) + " output --follow --script 'CLOSE > 1' >/dev/full", twelveBars());
  EXPECT_EQ(run.code, 3);
  EXPECT_NE(run.err.find("cannot write to standard output: "), std::string::npos) << run.err;
}

}  // namespace
}  // namespace brindlewort::tool
