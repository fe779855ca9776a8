#include "services/validate/name_tables.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>

#include "engine/long_names.hpp"
#include "services/validate/syntax_checks.hpp"
#include "services/validate/validate.hpp"

namespace brindlewort::validation {
namespace {

/// Short names that hold one that is looked for before, or share theirs with a later row.
std::string_view otherLongName(std::string_view shortName) {
  if (shortName == "TSMA") return "SIMPLEMOVINGAVERAGE";        // SMA
  if (shortName == "ZLEMA") return "EXPONENTIALMOVINGAVERAGE";  // EMA
  if (shortName == "CRSI") return "RELATIVESTRENGTHINDEX";      // RSI
  if (shortName == "ASI") return "SWINGINDEX";                  // SI
  if (shortName == "CAVG") return "CORRELATIONANALYSIS";        // CA
  if (shortName == "HVI") return "HISTORICVOLATILITYINDEX";
  if (shortName == "CSP") return "CANDLESTICKS";
  return {};
}

TEST(LongNames, TheWayBackOfEveryRow) {
  for (const LongName& row : longNames()) {
    if (row.inValidation.empty()) continue;
    const std::string_view other = otherLongName(row.inValidation);
    EXPECT_EQ(LongNameOf(row.inValidation), other.empty() ? row.name : other) << row.inValidation;
  }
}

TEST(LongNames, TheWayBackTakesTheFirstOfTheListNotOfTheText) {
  EXPECT_EQ(LongNameOf("WMA AND SMA"), "SIMPLEMOVINGAVERAGE");
  EXPECT_EQ(LongNameOf("WMA AND TSMA"), "SIMPLEMOVINGAVERAGE");
  EXPECT_EQ(LongNameOf("WMA AND VMA"), "VARIABLEMOVINGAVERAGE");
  EXPECT_EQ(LongNameOf("WMA EMA"), "EXPONENTIALMOVINGAVERAGE");
  EXPECT_EQ(LongNameOf("XBBTX"), "BOLLINGERBANDSTOP");
}

TEST(LongNames, NoShortNameGivesAnEmptyText) {
  EXPECT_EQ(LongNameOf(""), "");
  EXPECT_EQ(LongNameOf("CLOSE"), "");
  EXPECT_EQ(LongNameOf("sma"), "");
}

TEST(LongNames, LongAndShortFormValidateAlike) {
  CValidate validate;
  for (const char* arguments : {"CLOSE, 21, 2, SIMPLE", "CLOSE, 21", ""}) {
    for (std::int32_t build : {-1, 0}) {
      const std::string tail = std::string("(") + arguments + ") > 0";
      EXPECT_EQ(validate.Validate("STANDARDDEVIATION" + tail, build), validate.Validate("SDV" + tail, build));
    }
  }
  EXPECT_EQ(validate.Validate("StandardDeviation(close, 21, 2, simple) > 0", -1), "");
}

TEST(KnownNames, CountAndOrder) {
  ASSERT_EQ(knownNames().size(), 372u);
  EXPECT_EQ(knownNames()[0], "TRUE");
  EXPECT_EQ(knownNames()[1], ">=");
  EXPECT_EQ(knownNames()[18], "=");
  EXPECT_EQ(knownNames()[27], ",");
  EXPECT_EQ(knownNames()[28], "ZEROLAGEXPONENTIALMOVINGAVERAGE");
  EXPECT_EQ(knownNames()[35], "Abandoned Baby");
  EXPECT_EQ(knownNames()[371], "HIGHLOW");
}

TEST(KnownNames, EveryEntryIsKnownInUpperCaseOnly) {
  for (std::string_view name : knownNames()) {
    std::string upper(name), lower(name);
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    EXPECT_TRUE(isKnownName(upper)) << name;
    if (lower != upper) {
      EXPECT_FALSE(isKnownName(lower)) << name;
    }
    EXPECT_FALSE(isKnownName(upper + "Q")) << name;
  }
  EXPECT_FALSE(isKnownName(""));
}

TEST(KnownNames, EveryEntryWithoutSeparatorsPassesTheWordTest) {
  ScriptNames names;
  int words = 0;
  for (std::string_view name : knownNames()) {
    std::string upper(name);
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (upper.find_first_of(separators()) != std::string::npos) continue;
    ++words;
    EXPECT_EQ(CheckWords(upper, names), "");
    EXPECT_EQ(CheckWords("CLOSE > Q" + upper, names), "'Q" + upper + "' is not a valid script");
  }
  // All but 12 operators of signs, 9 separators, "Abandoned Baby", "Piercing Line", "CandlestickPattern(",
  // "CSP(".
  EXPECT_EQ(words, 372 - 12 - 9 - 4);
}

TEST(KnownNames, WordsThatTheEngineCannotEvaluatePassTheWordTest) {
  CValidate validate;
  EXPECT_EQ(validate.Validate("CLOSE > MAX_OPEN_POSITION", -1),
            "Error: Undefined variable 'MAX_OPEN_POSITION'");
  EXPECT_EQ(validate.Validate("CLOSE > 52_WEEK_HIGH", -1), "Error: Undefined variable '52_WEEK_HIGH'");
  EXPECT_EQ(validate.Validate("CLOSE > PE_RATIO", -1), "Error: Undefined variable 'PE_RATIO'");
  EXPECT_EQ(validate.Validate("CLOSE > PE_RATIOS", -1), "Error: 'PE_RATIOS' is not a valid script");
}

TEST(Vocabulary, LongerOperatorsStandBeforeThoseTheyContain) {
  ASSERT_EQ(operators().size(), 18u);
  for (std::size_t i = 0; i < operators().size(); ++i) {
    for (std::size_t j = i + 1; j < operators().size(); ++j) {
      EXPECT_EQ(operators()[j].find(operators()[i]), std::string_view::npos);
    }
  }
}

TEST(Vocabulary, TwentyOneSeparators) {
  EXPECT_EQ(std::set<char>(separators().begin(), separators().end()).size(), 21u);
  EXPECT_EQ(separators().size(), 21u);
}

}  // namespace
}  // namespace brindlewort::validation
