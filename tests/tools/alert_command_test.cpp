// Runs the built tool's alert over twelve days with closes of 10, 20, ... 120.

#include <gtest/gtest.h>

#include <algorithm>
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
  EXPECT_EQ(run({"alert", bars, "--script", "CLOSE > 100", "--plain"}).out, expected);
  EXPECT_EQ(run({"alert", bars, "--script", "CLOSE > 100", "--follow"}).out, expected);
  const Outcome quiet = run({"alert", bars, "--script", "CLOSE > 1000"});
  EXPECT_EQ(quiet.code, 0);
  EXPECT_EQ(quiet.out, "");
  EXPECT_EQ(quiet.err, "");
}

/// A script without longer periods asks for seven bars on the incremental way, for five bars and two fillers
/// on the other.
TEST_F(AlertCommand, TheFirstAlertComesWhenThereAreBarsEnough) {
  const std::string bars = write("b.csv", twelveBars());
  const std::vector<std::string> arguments = {"alert",    bars, "--script", "CLOSE > 1",
                                              "--symbol", "S",  "--name",   "N"};
  const auto first = [&](const std::vector<std::string>& more) {
    std::vector<std::string> all = arguments;
    all.insert(all.end(), more.begin(), more.end());
    return run(all).out.substr(0, 27);
  };
  EXPECT_EQ(first({"--plain"}), "\"S\",\"N\",2024-01-05 00:00:00");
  EXPECT_EQ(first({}), "\"S\",\"N\",2024-01-07 00:00:00");
  EXPECT_EQ(first({"--follow"}), "\"S\",\"N\",2024-01-07 00:00:00");
}

TEST_F(AlertCommand, ALineWithTheDateOfTheLastBarEditsIt) {
  const std::string bars =
      twelveBars() + "2024-01-12,1,1,1,1,1\n2024-01-12,130,130,130,130,1\n2024-01-13,1,1,1,1,1\n";
  for (const char* way : {"", "--plain", "--follow"}) {
    std::vector<std::string> arguments = {"alert", "-", "--script", "CLOSE > 110", "--symbol", "S"};
    if (*way != '\0') arguments.emplace_back(way);
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
  for (const char* way : {"", "--plain", "--follow"}) {
    for (const char* script : {"CLOSE > NOSUCHNAME", "SMA(CLOSE, 200) > SMA(CLOSE)", "# nothing at all"}) {
      std::vector<std::string> arguments = {"alert", write("b.csv", twelveBars()), "--script", script};
      if (*way != '\0') arguments.emplace_back(way);
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
  const Outcome plain = run({"alert", bars, "--plain", "--script", "SMA(CLOSE, 7) > 1"});
  EXPECT_EQ(plain.code, 4);
  EXPECT_EQ(plain.out, "");
  EXPECT_EQ(plain.err,
            "Not enough data: the script asks for 14 bars, and there were 12. Give more bars, or use shorter "
            "periods.\n");
  EXPECT_EQ(run({"alert", bars, "--plain", "--script", "SMA(CLOSE, 6) > 1"}).code, 0);
  for (const char* way : {"--symbol=S", "--follow"}) {
    EXPECT_EQ(run({"alert", bars, way, "--script", "SMA(CLOSE, 10) > 1"}).code, 0);
    EXPECT_EQ(run({"alert", bars, way, "--script", "SMA(CLOSE, 11) > 1"}).code, 4);
  }
}

TEST_F(AlertCommand, AnyScriptIsRunHoweverShort) {
  const std::string bars = write("b.csv", twelveBars());
  const Outcome outcome = run({"alert", bars, "--script", "1", "--symbol", "S"});
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.out.substr(0, 31), "\"S\",\"alert\",2024-01-07 00:00:00");
}

TEST_F(AlertCommand, ABadLineIsTold) {
  const std::string bars = write("b.csv", twelveBars() + "2024-01-13,1,2,x,4,5\n");
  const Outcome plain = run({"alert", bars, "--script", "CLOSE > 100"});
  EXPECT_EQ(plain.code, 3);
  EXPECT_EQ(plain.out, "");  // all bars are read first
  const Outcome following = run({"alert", bars, "--script", "CLOSE > 110", "--symbol", "S", "--follow"});
  EXPECT_EQ(following.code, 3);
  EXPECT_EQ(following.out, "\"S\",\"alert\",2024-01-12 00:00:00,120.0000\n");
  EXPECT_NE(following.err.find(":14: column 4 (Low):"), std::string::npos);
  EXPECT_NE(run({"alert"}).err.find("--help"), std::string::npos);
}

/// A pass over all bars for each of them would be 1.8 thousand million rows.
TEST_F(AlertCommand, ManyBarsTakeOnePass) {
  std::string bars = "Date,Open,High,Low,Close\n";
  constexpr int kBars = 60'000;
  for (int i = 0; i < kBars; ++i) {
    const std::string price = std::to_string(100 + i % 3 * (i % 2 == 0 ? 1 : -1));
    bars += std::to_string(2400000 + i) + ".5," + price + ',' + price + ',' + price + ',' + price + '\n';
  }
  const Outcome outcome = run({"alert", "-", "--script", "CLOSE = 102"}, bars);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  // i % 3 is 2 and i even: each sixth bar, the first at i = 2, which is before the seventh bar.
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), kBars / 6 - 1);
}

TEST_F(AlertCommand, AFunctionOfOneWayOnlyIsToldWithTheOther) {
  const std::string bars = write("b.csv", twelveBars());
  EXPECT_EQ(
      run({"alert", bars, "--script", "TRSUM(3, 3, 3) > 1"}).err,
      "Error: Undefined function 'TRSUM'\nWith --plain, and without --follow, this script is computed.\n");
  EXPECT_EQ(run({"alert", bars, "--plain", "--script", "AROSC(3) > 1"}).err,
            "Error: Undefined function 'AROSC'\nWithout --plain this script is computed.\n");
  EXPECT_EQ(run({"alert", bars, "--plain", "--script", "NOPE(3) > 1"}).err.find("--plain"),
            std::string::npos);
  EXPECT_EQ(run({"alert", bars, "--plain", "--follow", "--script", "CLOSE > 1"}).code, 1);
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
