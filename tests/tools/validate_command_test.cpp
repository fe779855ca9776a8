#include "validate_command.hpp"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "commands.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

struct Outcome {
  int code = 0;
  std::string out;
  std::string err;
};

/// Runs the command line behind "validate".
Outcome validate(std::vector<std::string> arguments) {
  CLI::App app;
  addValidateCommand(app);
  arguments.insert(arguments.begin(), "validate");
  std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
  Outcome outcome;
  testing::internal::CaptureStdout();
  try {
    app.parse(arguments);
  } catch (const ToolError& error) {
    outcome.code = error.code();
    outcome.err = error.what();
  }
  outcome.out = testing::internal::GetCapturedStdout();
  return outcome;
}

TEST(ValidateCommand, AValidScript) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"CLOSE > OPEN"},
                                                    {"--script", "CLOSE > OPEN"},
                                                    {"-s", "SET A = 1", "-s", "A > 0"}}) {
    const Outcome outcome = validate(arguments);
    EXPECT_EQ(outcome.code, kExitOk);
    EXPECT_EQ(outcome.out, "The script is valid.\n");
  }
}

TEST(ValidateCommand, AFaultIsTheOutputAndTheExitCodeSaysSo) {
  const Outcome outcome = validate({"CLOSE>OPEN"});
  EXPECT_EQ(outcome.code, kExitScript);
  EXPECT_EQ(outcome.out, "Error: No space before '>'\n");
  EXPECT_EQ(outcome.err, "");
}

TEST(ValidateCommand, Json) {
  EXPECT_EQ(validate({"CLOSE > OPEN", "--format", "json"}).out, "{\"valid\":true,\"message\":\"\"}\n");
  const Outcome outcome = validate({"\"X\" > \xE4", "--format", "json"});
  EXPECT_EQ(outcome.code, kExitScript);
  const auto answer = nlohmann::json::parse(outcome.out);
  EXPECT_EQ(answer.at("valid"), false);
  EXPECT_EQ(answer.at("message"), "Error: '\"X\"' is not a valid script");
}

TEST(ValidateCommand, BytesThatAreNoUtf8AreReplacedInJson) {
  EXPECT_EQ(nlohmann::json::parse(validationAnswer("'\xE4\xE4'", true)).at("message"), "'\uFFFD\uFFFD'");
}

TEST(ValidateCommand, AnEmptyScriptIsAScriptAtFault) {
  const Outcome outcome = validate({"--script", " ", "--format", "json"});
  EXPECT_EQ(outcome.code, kExitScript);
  EXPECT_EQ(outcome.out, "{\"valid\":false,\"message\":\"Error: Script too short.\"}\n");
}

TEST(ValidateCommand, AFileThatIsMissingIsTheFilesFault) {
  const Outcome outcome = validate({"@/nowhere/at/all.bws"});
  EXPECT_EQ(outcome.code, kExitFile);
  EXPECT_EQ(outcome.out, "");
  EXPECT_NE(outcome.err.find("/nowhere/at/all.bws"), std::string::npos);
}

}  // namespace
}  // namespace brindlewort::tool
