#include "services/validate/syntax_checks.hpp"

#include <gtest/gtest.h>

#include <string>

namespace brindlewort::validation {
namespace {

Fault setFault(std::string_view script) {
  ScriptNames names;
  return CheckSet(script, names);
}

Fault wordFault(std::string_view script) {
  ScriptNames names;
  return CheckWords(script, names);
}

// ---- Pairs

TEST(CheckPairs, EveryRefusedPair) {
  for (std::string pair : {"(;", "(,", "(/", ",)", ";)", "/)", "( ,", ", )", "( ;", "; )"}) {
    EXPECT_EQ(CheckPairs("SMA" + pair + "14"), "'" + pair + "' is not a valid script");
    EXPECT_EQ(CheckPairs(pair), "'" + pair + "' is not a valid script");
    const std::string apart = pair.substr(0, 1) + "X" + pair.substr(1);
    EXPECT_EQ(CheckPairs("SMA" + apart + "14"), "") << apart;
  }
  EXPECT_EQ(CheckPairs(""), "");
  EXPECT_EQ(CheckPairs(")(X,, ;; // ()"), "");
}

TEST(CheckPairs, TheFirstOfTheListIsToldNotTheFirstOfTheText) {
  EXPECT_EQ(CheckPairs("F( ; ) + G(, 1)"), "'(,' is not a valid script");
  EXPECT_EQ(CheckPairs("; ) ( , /)"), "'/)' is not a valid script");
}

// ---- SET statements

TEST(CheckSet, NamesEnterTheList) {
  ScriptNames names;
  EXPECT_EQ(CheckSet("SET FAST = SMA(CLOSE, 5)\r\nSET SLOW2 = SMA(CLOSE, 9)\r\nFAST > SLOW2", names), "");
  EXPECT_TRUE(names.knows("FAST"));
  EXPECT_TRUE(names.knows("SLOW2"));
  EXPECT_FALSE(names.knows("SLOW"));
  EXPECT_TRUE(names.knows("SMA"));
}

TEST(CheckSet, WithoutANameOrAnEqualsSign) {
  EXPECT_EQ(setFault("SET = 5"), "Invalid SET command");
  EXPECT_EQ(setFault("SET  \r\n = 5"), "Invalid SET command");
  EXPECT_EQ(setFault("SET FAST SMA(CLOSE, 5)"), "Invalid SET command");
  EXPECT_EQ(setFault("SET "), "Invalid SET command");
  EXPECT_EQ(setFault("CLOSE = OPEN AND SET FAST"), "Invalid SET command");
  EXPECT_EQ(setFault("SET FAST = 5"), "");
  EXPECT_EQ(setFault("SET"), "");
  EXPECT_EQ(setFault("SET\r\nFAST"), "");
}

TEST(CheckSet, NumericNames) {
  EXPECT_EQ(setFault("SET 5 = 1"), "'5' variable cannot be numeric");
  EXPECT_EQ(setFault("SET 1.5 = 1"), "'1.5' variable cannot be numeric");
  EXPECT_EQ(setFault("SET . = 1"), "'.' variable cannot be numeric");
  EXPECT_EQ(setFault("SET +-+ = 1"), "'+-+' variable cannot be numeric");
  EXPECT_EQ(setFault("SET 5A = 1"), "");
  // Two points are no number, and no special characters.
  EXPECT_EQ(setFault("SET 1.5.2 = 1"), "");
  EXPECT_EQ(setFault("SET A+-.9 = 1"), "");
}

TEST(CheckSet, SpecialCharacters) {
  EXPECT_EQ(setFault("SET A_B = 1"), "'A_B' variable should not contain special characters");
  EXPECT_EQ(setFault("SET A( = 1"), "'A(' variable should not contain special characters");
  EXPECT_EQ(setFault("SET > = 1"), "'>' variable should not contain special characters");
  EXPECT_EQ(setFault("SET A{ = 1"), "'A{' variable should not contain special characters");
  EXPECT_EQ(setFault("SET \xC3\x84 = 1"), "'\xC3\x84' variable should not contain special characters");
  EXPECT_EQ(setFault("SET \xFF = 1"), "'\xFF' variable should not contain special characters");
  EXPECT_EQ(setFault("SET AZ09 = 1"), "");
}

TEST(CheckSet, ABlankInsideANameIsASpecialCharacter) {
  EXPECT_EQ(setFault("SET A B = 1"), "'A B' variable should not contain special characters");
  EXPECT_EQ(setFault("SET A\r\nB = 1"), "'A\r\nB' variable should not contain special characters");
  EXPECT_EQ(setFault("SET  \n A \r\n = 1"), "");
}

TEST(CheckSet, OperatorsAreNoNames) {
  for (std::string name : {"AND", "XOR", "OR", "NOT", "EQV", "MOD"}) {
    EXPECT_EQ(setFault("SET " + name + " = 1"),
              "'" + name + "' is defined operator and cannot be used in SET()");
    EXPECT_EQ(setFault("SET A" + name + " = 1"), "");
  }
}

TEST(CheckSet, TheSearchGoesOnBehindAName) {
  EXPECT_EQ(setFault("SET A = 1\r\nSET 5 = 2"), "'5' variable cannot be numeric");
  // The letters "SET " of a name are no further statement, those of any other word are.
  EXPECT_EQ(setFault("SET OFFSET = 1"), "");
  EXPECT_EQ(setFault("SET OFFSET = 1\r\nCLOSE > OFFSET + 1"), "Invalid SET command");
  EXPECT_EQ(setFault("SET OFFSET = 1\r\nCLOSE > OFFSET"), "");
}

// ---- Brackets

TEST(CheckBrackets, EveryMessageInItsOrder) {
  EXPECT_EQ(CheckBrackets("F(("), "Script not nested with proper \" ) \" bracket");
  EXPECT_EQ(CheckBrackets("F)"), "Script not nested with proper \" ( \" bracket");
  EXPECT_EQ(CheckBrackets("F[()"), "Script not nested with proper \" ] \" bracket");
  EXPECT_EQ(CheckBrackets("F]"), "Script not nested with proper \" [ \" bracket");
  EXPECT_EQ(CheckBrackets("F{"), "Script not nested with proper \" } \" bracket");
  EXPECT_EQ(CheckBrackets("F}"), "Script not nested with proper \" { \" bracket");
  EXPECT_EQ(CheckBrackets("{{]]))"), "Script not nested with proper \" ( \" bracket");
  EXPECT_EQ(CheckBrackets("{{]]()"), "Script not nested with proper \" [ \" bracket");
}

TEST(CheckBrackets, OnlyTheCountsMatter) {
  EXPECT_EQ(CheckBrackets(""), "");
  EXPECT_EQ(CheckBrackets("()[]{}"), "");
  EXPECT_EQ(CheckBrackets(")(][}{"), "");
  EXPECT_EQ(CheckBrackets("([)]"), "");
}

// ---- Words

TEST(CheckWords, KnownNamesNumbersAndSetNamesPass) {
  EXPECT_EQ(wordFault("SMA(CLOSE,14)>OPEN"), "");
  EXPECT_EQ(wordFault("CLOSE > 12.75"), "");
  EXPECT_EQ(wordFault("SET FAST = 5\r\nFAST > 1"), "");
  EXPECT_EQ(wordFault("CLOSE\r\nOPEN\nHIGH\rLOW"), "");
  EXPECT_EQ(wordFault(""), "");
}

TEST(CheckWords, AnythingElseIsTold) {
  EXPECT_EQ(wordFault("CLOSE > FOO"), "'FOO' is not a valid script");
  EXPECT_EQ(wordFault("FOO(CLOSE) > BAR"), "'FOO' is not a valid script");
  EXPECT_EQ(wordFault("CLOSE > 1.2.3"), "'1.2.3' is not a valid script");
  EXPECT_EQ(wordFault("CLOSE > 1E5"), "'1E5' is not a valid script");
  EXPECT_EQ(wordFault("CLOSE\"X"), "'CLOSE\"X' is not a valid script");
  EXPECT_EQ(wordFault("CLOSE\nFOO"), "'FOO' is not a valid script");
  EXPECT_EQ(wordFault("\xC3\xA4"), "'\xC3\xA4' is not a valid script");
  // Other white space is part of a word.
  EXPECT_EQ(wordFault("CLOSE\v"), "'CLOSE\v' is not a valid script");
}

TEST(CheckWords, WordsOfOneCharacterAreNotLookedAt) {
  EXPECT_EQ(wordFault("A > B"), "");
  EXPECT_EQ(wordFault("\x01 > ;"), "");
  EXPECT_EQ(wordFault("AB > B"), "'AB' is not a valid script");
}

TEST(CheckWords, EverySeparatorCutsAWord) {
  for (char c : std::string("=><+-*/ ()[]{}~,&|^!%\r\n")) {
    EXPECT_EQ(wordFault(std::string("CLOSE") + c + "OPEN"), "") << c;
  }
  for (char c : std::string("_.:;'\"\\?$@`\t")) {
    EXPECT_EQ(wordFault(std::string("CLOSE") + c + "OPEN"),
              std::string("'CLOSE") + c + "OPEN' is not a valid script")
        << c;
  }
}

TEST(CheckWords, SpelledOperatorsAreSignsAsWholeWordsOnly) {
  EXPECT_EQ(wordFault("CLOSE AND OPEN OR HIGH XOR LOW EQV 1 MOD 2 NOT 3"), "");
  EXPECT_EQ(wordFault("NOT(CLOSE)"), "");
  EXPECT_EQ(wordFault("CLOSE > NOT5"), "'NOT5' is not a valid script");
  EXPECT_EQ(wordFault("CLOSE > NOT_A"), "'NOT_A' is not a valid script");
}

TEST(CheckWords, TheWordBehindSetIsKnownFromThereOn) {
  EXPECT_EQ(wordFault("SET FOO = 1\r\nFOO > 2"), "");
  EXPECT_EQ(wordFault("FOO > 2\r\nSET FOO = 1"), "'FOO' is not a valid script");
  EXPECT_EQ(wordFault("OFFSET FOO = 1"), "'OFFSET' is not a valid script");
  // Only up to the next separator: of FOO-5 the name FOO.
  EXPECT_EQ(wordFault("SET FOO-5 = 1\r\nFOO > 2"), "");
  EXPECT_EQ(wordFault("SET\r\nFOO = 1"), "'FOO' is not a valid script");
}

// ---- The order of all checks

TEST(CheckSyntax, Order) {
  // Each script has the faults of all checks from one on.
  EXPECT_EQ(CheckSyntax("SET 5 = (, FOO>1)) QUX TP(1) ZZ"), "'(,' is not a valid script");
  EXPECT_EQ(CheckSyntax("SET 5 = FOO>1)) QUX TP(1) ZZ"), "'5' variable cannot be numeric");
  EXPECT_EQ(CheckSyntax("+ FOO>1)) TP(1) ZZ"), "No space before '>'");
  EXPECT_EQ(CheckSyntax("+ FOO && 1)) TP(1) ZZ"), "Script cannot start with operator '+'");
  EXPECT_EQ(CheckSyntax("FOO && 1)) TP(1) ZZ"), "No operator allowed before and after an operator");
  EXPECT_EQ(CheckSyntax("FOO & 1)) TP(1) ZZ"), "Script not nested with proper \" ( \" bracket");
  EXPECT_EQ(CheckSyntax("FOO & 1 TP(1) ZZ"), "'FOO' is not a valid script");
  EXPECT_EQ(CheckSyntax("1 TP(1) Z"), "'Z' is not a valid script");
  EXPECT_EQ(CheckSyntax("1 > TP(1)"), "Inputs are not allowed for 'TYPICALPRICE'");
  EXPECT_EQ(CheckSyntax("1 > TP()"), "");
}

TEST(CheckSyntax, SetNamesAreKnownInTheWholeText) {
  EXPECT_EQ(CheckSyntax("CLOSE > FOO AND\r\nSET FOO = 1"), "");
  EXPECT_EQ(CheckSyntax("CLOSE > FOO AND\r\nSET BAR = 1"), "'FOO' is not a valid script");
}

TEST(CheckSyntax, TabsAndRepeatedBlanksAreOneBlank) {
  EXPECT_EQ(CheckSyntax("CLOSE\t \t>\tOPEN"), "");
  EXPECT_EQ(CheckSyntax("SMA( \t ,5)"), "'( ,' is not a valid script");
  EXPECT_EQ(CheckSyntax("SET\tFOO = 1\r\nFOO > 2"), "");
}

TEST(CheckSyntax, PercentSwingIsAWord) {
  EXPECT_EQ(CheckSyntax("%SWING(5) > 0"), "");
  EXPECT_EQ(CheckSyntax("%swingptop(5, 1) > 0"), "");
  EXPECT_EQ(CheckSyntax("%SWINGX(5) > 0"), "'PERCENTSWINGX' is not a valid script");
  EXPECT_EQ(CheckSyntax("SWING(5) > 0"), "'SWING' is not a valid script");
}

}  // namespace
}  // namespace brindlewort::validation
