#include "services/validate/validate.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "functions/script_engine.hpp"

namespace brindlewort {
namespace {

std::string validate(std::string_view script, std::int32_t buildVersion = -1) {
  return CValidate().Validate(script, buildVersion);
}

std::string repeated(std::string_view piece, std::size_t times) {
  std::string text;
  text.reserve(piece.size() * times);
  for (std::size_t i = 0; i < times; ++i) text += piece;
  return text;
}

// ---- Answers

TEST(Validate, AGoodScriptGivesAnEmptyText) {
  EXPECT_EQ(validate("CLOSE > OPEN"), "");
  EXPECT_EQ(
      validate(
          "SET FAST = SMA(CLOSE, 14)\r\nSET SLOW = EMA(CLOSE, 26)\r\nFAST > SLOW AND CLOSE > REF(CLOSE, 1)"),
      "");
  // True and false alike.
  EXPECT_EQ(validate("1 > 0"), "");
  EXPECT_EQ(validate("0 > 1"), "");
}

TEST(Validate, AnyOtherBuildVersionGivesTheCountOfSeries) {
  // The five price variables and the main expression.
  EXPECT_EQ(validate("CLOSE", 0), "NO Error:6");
  // Besides them the call, its bracket, its period, and the 0.
  EXPECT_EQ(validate("SMA(CLOSE, 5) > 0", 0), "NO Error:10");
  for (std::int32_t build :
       {0, 1, -2, 100, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_EQ(validate("CLOSE > OPEN", build), "NO Error:6");
  }
}

TEST(Validate, BuildVersionChangesNoError) {
  for (std::int32_t build : {-1, 0, 7}) {
    EXPECT_EQ(validate("ABCD", build), "Error: Script too short.");
    EXPECT_EQ(validate("CLOSE>OPEN", build), "Error: No space before '>'");
    EXPECT_EQ(validate("TSF > 1", build), "Error: 'TSF' is not a valid script");
    EXPECT_EQ(validate("SMA(CLOSE, 0) > 1", build), "Error: 'periods' argument of 'SMA' is invalid.");
  }
}

TEST(Validate, TooShort) {
  EXPECT_EQ(validate(""), "Error: Script too short.");
  EXPECT_EQ(validate("1234"), "Error: Script too short.");
  EXPECT_EQ(validate("12345"), "");
  EXPECT_EQ(validate("1234#5678"), "Error: Script too short.");
  EXPECT_EQ(validate("# a comment alone"), "Error: Script too short.");
  // Blanks count, and so does the line end behind a comment.
  EXPECT_EQ(validate("1    "), "");
  EXPECT_EQ(validate("#abc\r\n123"), "");
  EXPECT_EQ(validate("#abc\r\n12"), "Error: Script too short.");
}

TEST(Validate, LongNamesCountAtTheirOwnLength) {
  // HULLAVERAGE has become HA only after the count.
  EXPECT_EQ(validate("HULLAVERAGE"), "Error: Undefined variable 'HA'");
}

TEST(Validate, EveryTextualCheckIsReached) {
  EXPECT_EQ(validate("SMA(, 14)"), "Error: '(,' is not a valid script");
  EXPECT_EQ(validate("SET 5 = 1\r\nCLOSE > 1"), "Error: '5' variable cannot be numeric");
  EXPECT_EQ(validate("SET a_b = 1\r\nCLOSE > 1"),
            "Error: 'A_B' variable should not contain special characters");
  EXPECT_EQ(validate("SET Mod = 1\r\nCLOSE > 1"),
            "Error: 'MOD' is defined operator and cannot be used in SET()");
  EXPECT_EQ(validate("SET = 1\r\nCLOSE > 1"), "Error: Invalid SET command");
  EXPECT_EQ(validate("CLOSE >OPEN"), "Error: No space after '>'");
  EXPECT_EQ(validate("+ CLOSE > 1"), "Error: Script cannot start with operator '+'");
  EXPECT_EQ(validate("CLOSE > 1 AND"), "Error: Script cannot end with operator 'AND'");
  EXPECT_EQ(validate("CLOSE && OPEN"), "Error: No operator allowed before and after an operator");
  EXPECT_EQ(validate("CLOSE > SMA(CLOSE, 14"), "Error: Script not nested with proper \" ) \" bracket");
  EXPECT_EQ(validate("CLOSE > FOO"), "Error: 'FOO' is not a valid script");
  EXPECT_EQ(validate("SMA(CLOSE, 5) CLOSE"), "Error: 'CLOSE' is not a valid script");
  EXPECT_EQ(validate("TypicalPrice(5) > 1"), "Error: Inputs are not allowed for 'TYPICALPRICE'");
}

TEST(Validate, AScriptMayBeginWithNot) {
  EXPECT_EQ(validate("NOT CLOSE > OPEN"), "");
  EXPECT_EQ(validate("MOD CLOSE > OPEN"), "Error: Script cannot start with operator 'MOD'");
}

TEST(Validate, CommentsAreNotLookedAt) {
  EXPECT_EQ(validate("# made by FOO(, with >any< thing\r\nCLOSE > OPEN # and BAR"), "");
  EXPECT_EQ(validate("CLOSE > # the close\r\nOPEN"), "");
  // A line feed alone does not end a comment, so OPEN belongs to it.
  EXPECT_EQ(validate("CLOSE > 1 # the close\nAND FOO"), "");
  EXPECT_EQ(validate("CLOSE > # the close\nOPEN"), "Error: Script cannot end with operator '>'");
}

TEST(Validate, SmallLettersAreLargeOnes) {
  EXPECT_EQ(validate("set fast = sma(close, 14)\r\nfast > close and not open > 5"), "");
  EXPECT_EQ(validate("close > foo"), "Error: 'FOO' is not a valid script");
}

TEST(Validate, ASetVariableIsAKnownWord) {
  EXPECT_EQ(validate("SET FOO = 5\r\nCLOSE > FOO"), "");
  EXPECT_EQ(validate("SET FOO = 5\r\nCLOSE > FOOD"), "Error: 'FOOD' is not a valid script");
}

TEST(Validate, SetNamesOfOneScriptAreForgottenInTheNext) {
  CValidate component;
  EXPECT_EQ(component.Validate("SET FOO = 5\r\nCLOSE > FOO", -1), "");
  EXPECT_EQ(component.Validate("CLOSE > FOO", -1), "Error: 'FOO' is not a valid script");
}

// ---- The run

TEST(Validate, TheRunHasTheLastWord) {
  EXPECT_EQ(validate("CLOSE > PE_RATIO"), "Error: Undefined variable 'PE_RATIO'");
  EXPECT_EQ(validate("CLOSE > AROSC(14)"), "Error: Undefined function 'AROSC'");
  for (const char* call : {"SMIK(2, 3, 4, 5, SIMPLE)", "SMIK(2, 3, 4, 5, SIMPLE, VIDYA)"}) {
    EXPECT_EQ(validate(call), "Error: '%D moving average type' argument of 'SMIK' not optional.") << call;
  }
  EXPECT_EQ(validate("     "), "Error: Missing script");
  EXPECT_EQ(validate("#\r\n\r\n\r\n"), "Error: Missing script");
}

TEST(Validate, TheLengthOfAScript) {
  const std::string sum = repeated("1 + ", 15'999);
  ASSERT_EQ(sum.size(), 63'996u);
  EXPECT_TRUE(validate(sum + "123").empty());
  EXPECT_EQ(validate(sum + "1234"), "Error: Script too large");
}

TEST(Validate, TheRunSeesTheShortNames) {
  EXPECT_EQ(validate("SIMPLEMOVINGAVERAGE(CLOSE, 0) > 1"), "Error: 'periods' argument of 'SMA' is invalid.");
}

TEST(Validate, NothingIsLeftOfARun) {
  CValidate component;
  for (int i = 0; i < 3; ++i) {
    // Prices; FOO, its expression, the call, its bracket, its period; the main expression and the 1.
    EXPECT_EQ(component.Validate("SET FOO = SMA(CLOSE, 5)\r\nFOO > 1", 0), "NO Error:12");
    EXPECT_TRUE(component.engine().variables.empty());
    EXPECT_TRUE(component.engine().bars.empty());
    EXPECT_EQ(component.Validate("CLOSE", 0), "NO Error:6");
    EXPECT_EQ(component.Validate("CLOSE > PE_RATIO", 0), "Error: Undefined variable 'PE_RATIO'");
    EXPECT_TRUE(component.engine().variables.empty());
    EXPECT_EQ(component.Validate("CLOSE>1", 0), "Error: No space before '>'");
    // The last run made none, and those of earlier runs are gone.
    EXPECT_TRUE(component.engine().outputNames.empty());
  }
}

TEST(Validate, TheEngineKeepsTheFunctionOfTheLastRun) {
  CValidate component;
  EXPECT_EQ(component.engine().currentFunction, "");
  component.Validate("SMA(CLOSE, 0) > 1", -1);
  EXPECT_EQ(component.engine().currentFunction, "SMA");
  component.Validate("CLOSE>1", -1);
  EXPECT_EQ(component.engine().currentFunction, "SMA");
}

TEST(Validate, CanBeMoved) {
  CValidate first;
  first.Validate("SMA(CLOSE, 0) > 1", -1);
  CValidate second(std::move(first));
  EXPECT_EQ(second.engine().currentFunction, "SMA");
  first = CValidate();
  EXPECT_EQ(first.Validate("CLOSE > OPEN", -1), "");
}

// ---- Constants

TEST(ValidateConstant, TheSourceStatementsOfTheLastRun) {
  CValidate component;
  EXPECT_EQ(component.Constant("SYMBOL"), "");
  EXPECT_EQ(component.Validate(
                "SET SYMBOL = Q\r\nSET EXCHANGE = 7\r\nSET SECTOR = Z\r\nSET INDUSTRY = 9\r\nCLOSE > 1", -1),
            "");
  for (const auto& [name, text] :
       {std::pair{"SYMBOL", "Q"}, {"EXCHANGE", "7"}, {"SECTOR", "Z"}, {"INDUSTRY", "9"}}) {
    EXPECT_EQ(component.Constant(name), text);
  }
  EXPECT_EQ(component.Constant("symbol"), "Q");
  EXPECT_EQ(component.Constant("Exchange"), "7");
  for (const char* name : {"", "SYMBOL ", "CLOSE", "SYMBOLS"}) EXPECT_EQ(component.Constant(name), "");

  // A script that is refused is not run, so the texts stay; the next run renews them.
  component.Validate("CLOSE>1", -1);
  EXPECT_EQ(component.Constant("SYMBOL"), "Q");
  EXPECT_EQ(component.Validate("SET SECTOR = 8\r\nCLOSE > 1", -1), "");
  EXPECT_EQ(component.Constant("SYMBOL"), "");
  EXPECT_EQ(component.Constant("SECTOR"), "8");
}

TEST(ValidateConstant, TheirTextsAreWordsLikeAllOthers) {
  EXPECT_EQ(validate("SET SYMBOL = XYZ\r\nCLOSE > 1"), "Error: 'XYZ' is not a valid script");
}

// ---- Any text gives an answer

TEST(ValidateAnyText, EveryByte) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string c(1, static_cast<char>(byte));
    for (const std::string& script : {"CLOSE > " + c + " OPEN", c + "CLOSE > 1", "CLOSE > 1" + c,
                                      "SET A" + c + " = 1", repeated(c, 5), "SMA(CLOSE" + c + "5)"}) {
      const std::string answer = validate(script);
      EXPECT_TRUE(answer.empty() || answer.starts_with("Error: ")) << byte;
    }
  }
}

TEST(ValidateAnyText, LongScriptsOfOneKind) {
  std::string allBytes;
  for (int byte = 0; byte < 256; ++byte) allBytes += static_cast<char>(byte);
  const std::string bracket = "Error: Script not nested with proper \" ) \" bracket";
  EXPECT_EQ(validate(std::string(64'000, '(')), bracket);
  EXPECT_EQ(validate(repeated("[(", 32'000)), bracket);
  EXPECT_EQ(validate(std::string(64'000, ',')), "Error: Script too large");
  EXPECT_EQ(validate("SMA(CLOSE" + std::string(60'000, ',') + "5) > 1").substr(0, 6), "Error:");
  EXPECT_EQ(validate(std::string(64'000, '#')), "Error: Script too short.");
  EXPECT_EQ(validate(repeated("#\r\n", 20'000)), "Error: Missing script");
  EXPECT_EQ(validate(repeated(allBytes, 250)), "Error: No space after '!'");
  EXPECT_EQ(validate(repeated("OR", 32'000)), "Error: No space after 'OR'");
  EXPECT_EQ(validate(repeated("NOT", 21'000)), "Error: No space before 'NOT'");
  EXPECT_EQ(validate(repeated("SET ", 16'000)), "Error: Invalid SET command");
  EXPECT_EQ(validate(repeated("TP(", 21'000)), bracket);
  EXPECT_EQ(validate(repeated("TP() + ", 9'000) + "1"), "");
  EXPECT_EQ(validate(repeated("FORECAST ", 7'000)), "Error: Undefined variable 'FORECAST'");
  EXPECT_EQ(validate(repeated("EXPONENTIALMOVINGAVERAGE(", 2'500)), bracket);
  EXPECT_EQ(validate("CLOSE > " + repeated("\n", 60'000) + "-5"), "");
  const std::string word(30'000, 'B');
  EXPECT_EQ(validate("SET " + word + " = 5\r\n" + word + " > 1"), "");
  EXPECT_EQ(validate(word), "Error: '" + word + "' is not a valid script");
}

TEST(ValidateAnyText, FarLongerThanTheEngineTakes) {
  EXPECT_EQ(validate(repeated("CLOSE > 1 AND ", 100'000) + "CLOSE > 1"), "Error: Script too large");
}

TEST(ValidateAnyText, DeepNesting) {
  EXPECT_EQ(validate(std::string(2'000, '(') + "CLOSE > 1" + std::string(2'000, ')')),
            "Error: Script too complex.");
}

}  // namespace
}  // namespace brindlewort
