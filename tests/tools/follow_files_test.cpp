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
  EXPECT_EQ(tooFew.code, 2);
  EXPECT_EQ(tooFew.out, "");
  EXPECT_EQ(tooFew.err,
            "Not enough data: the script asks for 13 bars, and there were 12. Give more bars, or use shorter "
            "periods.\n");
  EXPECT_EQ(run({"output", "--follow", "--script", "CLOSE > 1"}, "Date,Open,High,Low,Close\n").code, 2);
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
  EXPECT_EQ(tooFew.code, 2);
  EXPECT_EQ(tooFew.out, "");
  EXPECT_EQ(tooFew.err.substr(0, 66), "Not enough data: over the 12 bars that there were the script gives");
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
  EXPECT_EQ(run({"output", "/", "--follow", "--script", "CLOSE"}).code, 1);
}

TEST_F(FollowOfFiles, ClosedStreamsAreTold) {
  const std::string command = quoted(BRINDLEWORT_TOOL) + " output --follow --script 'CLOSE > 1'";
  EXPECT_EQ(runShell(command + " <&-", "").code, 1);
  EXPECT_EQ(runShell(command + " >&-", twelveBars()).code, 1);
}

TEST_F(FollowOfFiles, AFullDeviceIsTold) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP();
  const Outcome run =
      runShell(quoted(BRINDLEWORT_TOOL) + " output --follow --script 'CLOSE > 1' >/dev/full", twelveBars());
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err.substr(0, 33), "cannot write to standard output: ");
}

}  // namespace
}  // namespace brindlewort::tool
