#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "functions/script_engine.hpp"

namespace brindlewort {
namespace {

std::string normalised(const std::string& text) {
  return CScriptEngine::NormalizeScript(text);
}

TEST(Normaliser, GroupsTypicalInputs) {
  const std::vector<std::pair<std::string, std::string>> effects = {
      {"CLOSE > OPEN", "(CLOSE) > (OPEN)"}, {"A > B AND C < D", "((A) > (B)) AND ((C) < (D))"},
      {"TRUERANGE", "(TRUERANGE())"},       {"IF(A > B, 1, 2)", "(IF((A) > (B), 1, 2))"},
      {"SET X = CLOSE", "SET X =(CLOSE)"},
  };
  for (const auto& [input, output] : effects) EXPECT_EQ(normalised(input), output);
}

TEST(Normaliser, NothingStaysNothing) {
  EXPECT_EQ(normalised(""), "");
  EXPECT_EQ(normalised("   "), "");
  EXPECT_EQ(normalised("()"), "");
}

TEST(Normaliser, EqualSignsNeedNoBlanks) {
  EXPECT_EQ(normalised("A=B"), normalised("A = B"));
  EXPECT_EQ(normalised("A = B"), "(A) = (B)");
  EXPECT_EQ(normalised("A == B"), "(A) == (B)");
}

TEST(Normaliser, EqualSignsApartDoNotJoin) {
  EXPECT_EQ(normalised("A = = B").find("=="), std::string::npos);
}

TEST(Normaliser, BracketsBothSidesOfEverySpelling) {
  for (const char* sign : {"==", "=<", "!=", "<>", ">=", "=>", "<=", "=", "<", ">"}) {
    const std::string s(sign);
    EXPECT_EQ(normalised("A " + s + " B"), "(A) " + s + " (B)");
  }
}

TEST(Normaliser, ComparisonWithoutBlanksKeepsItsForm) {
  EXPECT_EQ(normalised("A>B"), "(A>B)");
}

TEST(Normaliser, LogicalWordAsCallKeepsABlank) {
  // The word is found, so the whole gets two brackets.
  EXPECT_EQ(normalised("OR(A, B)"), "((OR (A, B)))");
}

TEST(Normaliser, NotInFrontOfABracketIsLeftAsWritten) {
  EXPECT_EQ(normalised("NOT(A)"), "((NOT (A)))");
}

TEST(Normaliser, NoArgumentNamesGetTheirBrackets) {
  EXPECT_EQ(normalised("CSP"), "(CSP())");
  EXPECT_EQ(normalised("MEDIANPRICE()"), "(MEDIANPRICE())");
  EXPECT_EQ(normalised("MEDIANPRICE"), "(MEDIANPRICE())");
  EXPECT_EQ(normalised("CLOSE + HML"), "(CLOSE + HML())");
  // Short names match behind a blank only.
  EXPECT_EQ(normalised("HML"), "(HML)");
  EXPECT_EQ(normalised("RES1"), "(RES1())");
  EXPECT_EQ(normalised("XRES1Y"), "(XRES1()Y)");
}

TEST(Normaliser, FirstCommaBehindAnIfClosesItsCondition) {
  EXPECT_EQ(normalised("IF(A, IF(B, 1, 2), 3)"), "(IF((A), IF((B), 1, 2), 3))");
}

TEST(Normaliser, NamesThatEndInIfGetABracketTooMany) {
  EXPECT_EQ(normalised("COUNTIF(A > B)"), "(COUNTIF((A) > (B))");
}

TEST(Normaliser, SumIfSurvivesAtTheHeadOnly) {
  // At the head: "SUMIF(" gets the bracket of "IF(", and the first comma closes it.
  EXPECT_EQ(normalised("SUMIF(A, B)"), "(SUMIF((A), B))");
  // Later: a bracket is put within the name, which becomes an unknown function.
  EXPECT_EQ(normalised("CLOSE + SUMIF(A, B)"), "(CLOSE + SU(MIF((A, B))");
}

TEST(Normaliser, ACommentMarkIsNoMarkHere) {
  // Percent signs of a name are no marks of the rewriting.
  EXPECT_EQ(normalised("%SWING(5) > 3"), "(%SWING(5)) > (3)");
}

TEST(Normaliser, DropsTheCharacterBehindTheEqualSignOfASet) {
  EXPECT_EQ(normalised("SET A=12"), "SET A=(2)");
  EXPECT_EQ(normalised("SET A = "), "(SET A) = ()");
  EXPECT_EQ(normalised("SET A = X"), "SET A =(X)");
}

}  // namespace
}  // namespace brindlewort
