#include "topics.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "functions/function_table.hpp"
#include "shell/help/script_help.hpp"
#include "tool_fixture.hpp"

namespace brindlewort::tool {
namespace {

using Names = std::vector<std::string_view>;

TEST(Topics, EveryNameHasAText) {
  const Names names = topicNames();
  EXPECT_TRUE(std::ranges::is_sorted(names));
  EXPECT_GT(names.size(), pageNames().size() + 20);
  for (const std::string_view name : names) EXPECT_NE(topicText(name), "") << name;
  for (const std::string_view name : pageNames()) {
    EXPECT_EQ(topicText(name), std::string(manualPage(name)) + '\n');
    EXPECT_TRUE(std::ranges::binary_search(names, name));
  }
  EXPECT_EQ(topicText("NOSUCHNAME"), "");
  EXPECT_EQ(topicText(""), "");
}

using Help = Tool;

TEST_F(Help, WithoutANameItListsCommandsAndTopics) {
  const Outcome run = this->run({"help"});
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.out.substr(0, run.out.find("\nManual pages")), this->run({"--help"}).out);
  EXPECT_NE(run.out.find(" CROSSOVER,"), std::string::npos);
  EXPECT_NE(run.out.find(" EQV,"), std::string::npos);
}

TEST_F(Help, PrintsTheManualPageOfAName) {
  for (const char* name : {"SMA", "sma", "SimpleMovingAverage", " SMA (CLOSE, 14)"}) {
    const Outcome run = this->run({"help", name});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, std::string(manualPage("SMA")) + '\n');
    EXPECT_EQ(run.out.substr(0, 36), "SimpleMovingAverage(Vector, Periods)");
  }
}

TEST_F(Help, AFunctionWithoutAPageHasItsReferenceSection) {
  ASSERT_EQ(manualPage("ULTOSC"), "");
  const Outcome run = this->run({"help", "ultosc"});
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.out, this->run({"functions", "ULTOSC"}).out);
}

TEST_F(Help, TheSwingFunctionsHaveTheirOwnSection) {
  for (const char* name : {"%SWING", "%swingd", "%SwingPTop(5, 0)"}) {
    const Outcome run = this->run({"help", name});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out.substr(0, 7), "%SWING" + run.out.substr(6, 1)) << name;
    EXPECT_NE(run.out.find("turns when the price reverses by percent"), std::string::npos) << name;
  }
}

TEST_F(Help, WordsAndSignsOfTheLanguageHaveASection) {
  const std::pair<const char*, const char*> wanted[] = {
      {"AND", "A AND B: both."},
      {"set", "SET NAME = EXPRESSION"},
      {"CLOSE", "LAST is CLOSE"},
      {"TRUE", "TRUE, the number 1\n\nwhat a condition that holds gives\n"},
      {"DOJI", "DOJI, the number 2\n\nopen and close less than a twentieth of the bar's range apart\n"},
      {"exponential", "EXPONENTIAL, the number 2\n\nEMA\n\nMoving average types: SIMPLE, EXPONENTIAL,"},
      {"PERCENT", "The last argument of VO."},
      {" >= ", "=> is >="},
      {"*", "1 + 2 * 3 is 9"},
  };
  for (const auto& [word, part] : wanted) {
    const Outcome run = this->run({"help", word});
    EXPECT_EQ(run.code, 0) << word;
    EXPECT_NE(run.out.find(part), std::string::npos) << word << '\n' << run.out;
  }
  // A constant that is a function's name too leads to the function.
  EXPECT_EQ(this->run({"help", "ZLEMA"}).out, this->run({"functions", "ZLEMA"}).out);
}

TEST_F(Help, AnUnknownNameTellsNearOnes) {
  const Outcome run = this->run({"help", "crosover"});
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err,
            "There is no command, function or word crosover. Near it are:\n"
            "  CROSSOVER\n"
            "'brindlewort help' lists all there are.\n");
  EXPECT_NE(this->run({"help", "outptu"}).err.find("\n  output"), std::string::npos);
  EXPECT_EQ(this->run({"help", "QQQQQQQQQQ"}).err,
            "There is no command, function or word QQQQQQQQQQ. 'brindlewort help' lists all there are.\n");
}

TEST_F(Help, FunctionsTellsOfAnUnknownNameAlike) {
  const Outcome run = this->run({"functions", "crosover"});
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err,
            "There is no function crosover. Near it are:\n"
            "  CROSSOVER\n"
            "'brindlewort functions' lists all there are.\n");
}

TEST_F(Help, AnUnknownCommandTellsNearOnes) {
  const Outcome run = this->run({"outptu", "b.csv"});
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err,
            "There is no command or option outptu. Near it are:\n  output\nTry 'brindlewort --help'.\n");
}

using Validate = Tool;

TEST_F(Validate, TheToolTellsTheFaultOnStandardOutput) {
  const Outcome valid = run({"validate", "CLOSE > SMA(CLOSE, 14)"});
  EXPECT_EQ(valid.code, 0);
  EXPECT_EQ(valid.out, "The script is valid.\n");
  const Outcome faulty = run({"validate", "@" + write("s.bws", "SET A = SMA(CLOSE, 14)\nCLOSE>A\n")});
  EXPECT_EQ(faulty.code, 2);
  EXPECT_EQ(faulty.out, "Error: No space before '>'\n");
  EXPECT_EQ(faulty.err, "");
  EXPECT_EQ(run({"validate"}, "CLOSE > OPEN\n").out, "The script is valid.\n");
  EXPECT_EQ(run({"validate", "SET A = OPEN", "CLOSE > A"}).out, "The script is valid.\n");
  EXPECT_EQ(run({"validate", "@no_such_file.bws"}).code, 3);
  EXPECT_EQ(run({"validate", "CLOSE > OPEN", "--script-file", "x"}).code, 1);
}

}  // namespace
}  // namespace brindlewort::tool
