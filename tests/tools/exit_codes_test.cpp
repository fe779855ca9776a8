#include "exit_codes.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tool_fixture.hpp"

namespace brindlewort::tool {
namespace {

class ExitCodes : public Tool {
 protected:
  int codeOf(const std::vector<std::string>& arguments) const { return run(arguments).code; }
};

TEST_F(ExitCodes, EachIsWhatItsMeaningSays) {
  const std::string bars = write("b.csv", twelveBars());
  EXPECT_EQ(codeOf({"backtest", bars, "--buy", "CLOSE = 80", "--max-bars", "1"}), kExitOk);
  EXPECT_EQ(codeOf({"backtest", bars, "--buy", "CLOSE = 80", "--nonsense"}), kExitUsage);
  EXPECT_EQ(codeOf({"functions", "NOPE"}), kExitUsage);
  EXPECT_EQ(codeOf({"help", "NOPE"}), kExitUsage);
  EXPECT_EQ(codeOf({"backtest", bars, "--buy", "CLOSE = NOPE"}), kExitScript);
  EXPECT_EQ(codeOf({"validate", "CLOSE = NOPE"}), kExitScript);
  EXPECT_EQ(codeOf({"backtest", bars + "x", "--buy", "CLOSE = 80"}), kExitFile);
  EXPECT_EQ(codeOf({"backtest", bars, "--buy", "CLOSE = 999"}), kExitNothing);
  EXPECT_EQ(codeOf({"output", bars, "--script", "SMA(CLOSE, 50) > 1"}), kExitNothing);
  EXPECT_EQ(codeOf({"alert", bars, "--script", "SMA(CLOSE, 50) > 1"}), kExitNothing);
}

TEST_F(ExitCodes, EveryHelpAndTheManualPageTellThem) {
  for (const char* command : {"output", "backtest", "alert", "validate", "functions", "help"}) {
    EXPECT_NE(run({command, "--help"}).out.find(exitCodesHelp()), std::string::npos) << command;
  }
  EXPECT_NE(run({"--help"}).out.find(exitCodesHelp()), std::string::npos);
  const std::string page = readFile(BRINDLEWORT_SOURCE_DIR "/docs/brindlewort.1");
  for (const ExitMeaning& meaning : kExitMeanings) {
    std::string text(meaning.text);
    text.front() = static_cast<char>(std::toupper(text.front()));
    EXPECT_NE(page.find("\n.B " + std::to_string(meaning.code) + '\n' + text + ".\n"), std::string::npos)
        << text;
  }
}

}  // namespace
}  // namespace brindlewort::tool
