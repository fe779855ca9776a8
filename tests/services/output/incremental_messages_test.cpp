// The messages of functions on the incremental way: those of the whole-history way, save what is named here.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <utility>

#include "support/living_script.hpp"

namespace brindlewort {
namespace {

using testing::errorOf;
using testing::LivingScript;

TEST(IncrementalMessages, OfTheNamesOfThisWayAlone) {
  const std::pair<const char*, const char*> cases[] = {
      {"ULTOSC()", "Error: 'cycle 1' argument of 'ULTOSC' not optional."},
      {"ULTOSC(0, 2, 3)", "Error: 'cycle 1' argument of 'ULTOSC' is invalid."},
      {"ULTOSC(2)", "Error: 'cycle 2' argument of 'ULTOSC' not optional."},
      {"ULTOSC(2, 3)", "Error: 'cycle 3' argument of 'ULTOSC' not optional."},
      {"ULTOSC(2, 99999, 3)", "Error: Function 'ULTOSC') contains arguments outside of allowed range."},
      {"CHIKOU()", "Error: 'ChikouPeriods' argument of 'CHIKOU' not optional."},
      {"CHIKOU(1)", "Error: 'CHIKOU' value should be between 2 to 9999"},
      {"CHIKOU(5, 6)", "Error: 'Number of' argument of 'CHIKOU' is invalid."},
      {"MACDH()", "Error: 'short cycle periods' argument of 'MACDH' not optional."},
      {"MACDH(0, 2, 3, SIMPLE)", "Error: 'shortCycle' argument of 'MACDH' is invalid."},
      {"MACDH(2, 0, 3, SIMPLE)", "Error: 'longCycle' argument of 'MACDH' is invalid."},
      {"MACDH(2, 3, 0, SIMPLE)", "Error: 'signalPeriods' argument of 'MACDH' is invalid."},
      {"MACDHISTOGRAM(2, 3, 4)", "Error: 'moving average type' argument of 'MACDHISTOGRAM' not optional."},
      {"AROSC()", "Error: 'periods' argument of 'AROSC' not optional."},
      {"AROSC(1)", "Error: 'periods' argument of 'AROSC' is invalid."},
      {"AROSC(5.5)", "Error: 'Decimal value' argument of 'AROSC' not optional."},
      {"COMPOSITE()", "Error: 'factor 1' argument of 'COMPOSITE' not optional."},
      {"COMPOSITE(CLOSE, OPEN, 1)", "Error: 'factor 2' argument of 'COMPOSITE' not optional."},
      {"COMPOSITE(CLOSE, OPEN, 1, 2, 3)", "Error: 'Number of' argument of 'COMPOSITE' is invalid."},
      {"SPREAD(CLOSE, OPEN, 3)", "Error: 'Number of' argument of 'SPREAD' is invalid."},
      {"FCHL()", "Error: 'periods' argument of 'FCHL' not optional."},
      {"FCHH(99999)", "Error: Function 'FCHH') contains arguments outside of allowed range."},
      {"HLB()", "Error: 'periods' argument of 'HLB' not optional."},
      {"HLBUP(-1)", "Error: 'HLBUP' argument cannot be negative."},
  };
  for (const auto& [call, message] : cases) EXPECT_EQ(errorOf(call), message) << call;
}

struct MessageCase {
  std::string title, script, error;
  int bars = 0;
};

/// The cases of messages that scripts over the whole history give.
std::vector<MessageCase> messageCases() {
  const auto file = std::filesystem::path(__FILE__).parent_path() / "../../scripts/messages/arguments.cases";
  std::ifstream in(file);
  std::vector<MessageCase> cases;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("=== ")) cases.push_back({line.substr(4), "", "", 0});
    if (line.starts_with("bars ramp ")) cases.back().bars = std::stoi(line.substr(10));
    if (line.starts_with("| ")) {
      cases.back().script += (cases.back().script.empty() ? "" : "\r\n") + line.substr(2);
    }
    if (line.starts_with("error ")) cases.back().error = line.substr(6);
  }
  return cases;
}

/// What differs, by the script: the message of the incremental way.
const std::map<std::string, std::string>& differentMessages() {
  static const std::map<std::string, std::string> messages = {
      {"MO(CLOSE, 1)", ""},
      {"VHF(CLOSE, 1)", ""},
      {"TS(CLOSE)", "Error: 'TS' RefPeriods"},
      {"TS(CLOSE, 3)", "Error: 'TS' Invalid TrendPeriods(min 2) for indicator"},
      {"TS(CLOSE, 3, 1)", "Error: 'TS' Invalid TrendPeriods(min 2) for indicator"},
      {"PROC(CLOSE)", "Error: 'periods' argument of 'PROC' is invalid."},
      {"VROC(VOLUME)", "Error: 'periods' argument of 'VROC' is invalid."},
      {"CA()", "Error: 'source1' argument of 'CA' not optional."},
      {"CA(CLOSE)", "Error: 'source2' argument of 'CA' not optional."},
      {"SMIK(5, 3, 3, 3, SIMPLE, VIDYA)", ""},
      {"TRSUM()", "Error: Undefined function 'TRSUM'"},
      {"MEDIANPRICE(5)", ""},  // the name keeps its own brackets, and the 5 is another operand
      {"COUNTIF(CLOSE>1), 2)", "Error: 'COUNTIF' Number of"},
      // A number that an argument's text is stays as it is written.
      {"LOOP(CLOSE, VOLUME, 80, 1, ADD)",
       "Error: 'CLOSE Cannot be accessed by80' argument of 'LOOP' is invalid."},
  };
  return messages;
}

/// The message that a case has here.
std::string messageOf(const MessageCase& c) {
  if (c.title.ends_with("is of the incremental way")) return "";
  const auto different = differentMessages().find(c.script);
  return different == differentMessages().end() ? c.error : different->second;
}

TEST(IncrementalMessages, AreThoseOfTheWholeHistorySaveWhatIsNamed) {
  const std::vector<MessageCase> cases = messageCases();
  ASSERT_GT(cases.size(), 200u);
  std::set<std::string> differences;
  for (const MessageCase& c : cases) {
    LivingScript script(c.script);
    script.ramp(c.bars).run();
    if (differentMessages().contains(c.script)) differences.insert(c.script);
    EXPECT_EQ(script.error, messageOf(c)) << c.title << ": " << c.script;
    // A further bar does not change what is wrong with an argument.
    script.ramp(1).run();
    EXPECT_EQ(script.error, messageOf(c)) << c.title << ", second run: " << c.script;
  }
  EXPECT_EQ(differences.size(), differentMessages().size());
}

}  // namespace
}  // namespace brindlewort
