// Runs the built tool's alert over twelve days with closes of 10, 20, ... 120.

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "alert_watch.hpp"
#include "tool_fixture.hpp"

namespace brindlewort::tool {
namespace {

using AlertCommand = Tool;

TEST_F(AlertCommand, PrintsALineForEachBarOnWhichTheScriptFires) {
  const std::string bars = write("acme.csv", twelveBars());
  const char expected[] =
      "\"acme\",\"alert\",2024-01-11 00:00:00,110.0000\n"
      "\"acme\",\"alert\",2024-01-12 00:00:00,120.0000\n";
  EXPECT_EQ(run({"alert", bars, "--script", "CLOSE > 100"}).out, expected);
  EXPECT_EQ(run({"alert", bars, "--script", "CLOSE > 100", "--follow"}).out, expected);
  const Outcome quiet = run({"alert", bars, "--script", "CLOSE > 1000"});
  EXPECT_EQ(quiet.code, 0);
  EXPECT_EQ(quiet.out, "");
  EXPECT_EQ(quiet.err, "");
}

/// A script without longer periods asks for five bars and two fillers on the one way, for seven bars on the
/// other.
TEST_F(AlertCommand, TheFirstAlertComesWhenThereAreBarsEnough) {
  const std::string bars = write("b.csv", twelveBars());
  const std::vector<std::string> arguments = {"alert",    bars, "--script", "CLOSE > 1",
                                              "--symbol", "S",  "--name",   "N"};
  EXPECT_EQ(run(arguments).out.substr(0, 27), "\"S\",\"N\",2024-01-05 00:00:00");
  std::vector<std::string> following = arguments;
  following.emplace_back("--follow");
  EXPECT_EQ(run(following).out.substr(0, 27), "\"S\",\"N\",2024-01-07 00:00:00");
}

TEST_F(AlertCommand, ALineWithTheDateOfTheLastBarEditsIt) {
  const std::string bars =
      twelveBars() + "2024-01-12,1,1,1,1,1\n2024-01-12,130,130,130,130,1\n2024-01-13,1,1,1,1,1\n";
  for (const bool follow : {false, true}) {
    std::vector<std::string> arguments = {"alert", "-", "--script", "CLOSE > 110", "--symbol", "S"};
    if (follow) arguments.emplace_back("--follow");
    EXPECT_EQ(run(arguments, bars).out,
              "\"S\",\"alert\",2024-01-12 00:00:00,120.0000\n"
              "\"S\",\"alert\",2024-01-12 00:00:00,130.0000\n");
  }
}

TEST_F(AlertCommand, JsonIsAnObjectALine) {
  const Outcome outcome = run({"alert", write("b.csv", twelveBars()), "--script", "CLOSE > 110", "--symbol",
                               "A\"B", "--name", "one, two", "--format", "json"});
  EXPECT_EQ(nlohmann::json::parse(outcome.out), (nlohmann::json{{"symbol", "A\"B"},
                                                                {"name", "one, two"},
                                                                {"date", "2024-01-12 00:00:00"},
                                                                {"jDate", 2460321.5},
                                                                {"price", 120.0}}));
}

TEST_F(AlertCommand, AScriptAtFaultIsToldOnce) {
  for (const bool follow : {false, true}) {
    for (const char* script : {"CLOSE > NOSUCHNAME", "SMA(CLOSE, 200) > SMA(CLOSE)", "# nothing at all"}) {
      std::vector<std::string> arguments = {"alert", write("b.csv", twelveBars()), "--script", script};
      if (follow) arguments.emplace_back("--follow");
      const Outcome outcome = run(arguments);
      EXPECT_EQ(outcome.code, 2) << script;
      EXPECT_EQ(outcome.out, "");
      EXPECT_EQ(outcome.err.substr(0, 7), "Error: ");
      EXPECT_EQ(outcome.err.find("Error: ", 7), std::string::npos);
      EXPECT_NE(outcome.err.find("brindlewort help NAME"), std::string::npos) << outcome.err;
    }
  }
}

TEST_F(AlertCommand, TooFewBarsAreTold) {
  const std::string bars = write("b.csv", twelveBars());
  const Outcome plain = run({"alert", bars, "--script", "SMA(CLOSE, 7) > 1"});
  EXPECT_EQ(plain.code, 2);
  EXPECT_EQ(plain.out, "");
  EXPECT_EQ(plain.err,
            "Not enough data: the script asks for 14 bars, and there were 12. Give more bars, or use shorter "
            "periods.\n");
  EXPECT_EQ(run({"alert", bars, "--script", "SMA(CLOSE, 6) > 1"}).code, 0);
  EXPECT_EQ(run({"alert", bars, "--follow", "--script", "SMA(CLOSE, 10) > 1"}).code, 0);
  EXPECT_EQ(run({"alert", bars, "--follow", "--script", "SMA(CLOSE, 11) > 1"}).code, 2);
}

TEST_F(AlertCommand, AnyScriptIsRunHoweverShort) {
  const std::string bars = write("b.csv", twelveBars());
  const Outcome outcome = run({"alert", bars, "--script", "1", "--symbol", "S"});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.out.substr(0, 31), "\"S\",\"alert\",2024-01-05 00:00:00");
}

TEST_F(AlertCommand, ABadLineIsTold) {
  const std::string bars = write("b.csv", twelveBars() + "2024-01-13,1,2,x,4,5\n");
  const Outcome plain = run({"alert", bars, "--script", "CLOSE > 100"});
  EXPECT_EQ(plain.code, 1);
  EXPECT_EQ(plain.out, "");  // all bars are read first
  const Outcome following = run({"alert", bars, "--script", "CLOSE > 110", "--symbol", "S", "--follow"});
  EXPECT_EQ(following.code, 1);
  EXPECT_EQ(following.out, "\"S\",\"alert\",2024-01-12 00:00:00,120.0000\n");
  EXPECT_NE(following.err.find(":14: column 4 (Low):"), std::string::npos);
  EXPECT_NE(run({"alert"}).err.find("--help"), std::string::npos);
}

TEST(AlertLines, QuoteTextsAndKeepDatesAndPricesPlain) {
  EXPECT_EQ(alertLine("A\"B", "one, two", 2460310.5, 12.34567),
            "\"A\"\"B\",\"one, two\",2024-01-01 00:00:00,12.3456\n");
  EXPECT_EQ(alertLine("", "", 0.0, 1.0), "\"\",\"\",No Date Time,1.0000\n");
  EXPECT_EQ(
      nlohmann::json::parse(alertJson("\xE4", "", 0.0, std::numeric_limits<double>::infinity()))["price"],
      nullptr);
}

}  // namespace
}  // namespace brindlewort::tool
