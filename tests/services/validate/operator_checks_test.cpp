#include "services/validate/operator_checks.hpp"

#include <gtest/gtest.h>

#include <string>

#include "services/validate/name_tables.hpp"

namespace brindlewort::validation {
namespace {

/// With FORTY, ANDRO, A-B and MODX as names of SET statements.
Fault blankFault(std::string_view script) {
  ScriptNames names;
  for (const char* name : {"FORTY", "ANDRO", "A-B", "MODX"}) names.addSetName(name);
  return CheckOperatorBlanks(script, names);
}

// ---- Blanks

TEST(OperatorBlanks, EveryOperatorNeedsOneInFront) {
  for (std::string_view view : operators()) {
    const std::string op(view);
    EXPECT_EQ(blankFault("CLOSE" + op + " OPEN"), "No space before '" + op + "'");
    EXPECT_EQ(blankFault(") " + op + " 5" + op + " OPEN"), "No space before '" + op + "'");
    EXPECT_EQ(blankFault("CLOSE " + op + " OPEN"), "");
    EXPECT_EQ(blankFault("CLOSE\r" + op + " OPEN"), "");
    EXPECT_EQ(blankFault("CLOSE\n" + op + " OPEN"), "");
    EXPECT_EQ(blankFault(op + " OPEN"), "");
  }
}

TEST(OperatorBlanks, EveryOperatorButNotNeedsOneBehind) {
  for (std::string_view view : operators()) {
    const std::string op(view);
    const std::string fault = op == "NOT" ? "" : "No space after '" + op + "'";
    EXPECT_EQ(blankFault("CLOSE " + op + "OPEN"), fault);
    EXPECT_EQ(blankFault("CLOSE " + op + "("), fault);
    EXPECT_EQ(blankFault("CLOSE " + op + "\r\nOPEN"), "");
    EXPECT_EQ(blankFault("CLOSE " + op + "\nOPEN"), "");
    EXPECT_EQ(blankFault("CLOSE " + op), "");
  }
}

TEST(OperatorBlanks, OperandsJoinedWithoutBlanks) {
  EXPECT_EQ(blankFault("CLOSE>OPEN"), "No space before '>'");
  EXPECT_EQ(blankFault("CLOSE>=OPEN"), "No space before '>='");
  EXPECT_EQ(blankFault("CLOSE=>OPEN"), "No space before '>'");
}

TEST(OperatorBlanks, TheOrderIsThatOfTheOperators) {
  EXPECT_EQ(blankFault("A+B>=C"), "No space before '>='");
  EXPECT_EQ(blankFault("A< B+ C"), "No space before '+'");
  EXPECT_EQ(blankFault("A +B AND+ 1"), "No space after 'AND'");
}

TEST(OperatorBlanks, APartOfALongerOperatorIsNone) {
  EXPECT_EQ(blankFault("A >= B <= C <> D != E XOR F"), "");
}

TEST(OperatorBlanks, LettersInsideAKnownNameAreNoOperator) {
  for (const char* word : {"FORECAST", "MORNING_STAR", "MODX", "ANDRO", "FORTY", "RANDOM", "OPERATORS"}) {
    const std::string name(word);
    EXPECT_EQ(blankFault(name), "");
    EXPECT_EQ(blankFault("(" + name + ",1)"), "");
    EXPECT_EQ(blankFault("[" + name + "]{" + name + "}"), "");
    EXPECT_EQ(blankFault("1\r\n" + name + "\r\n1"), "");
    EXPECT_EQ(blankFault(name + " > " + name + " > " + name), "");
    // An operator that touches the name belongs to the word, which is then no name.
    EXPECT_NE(blankFault(name + ">"), "");
  }
  EXPECT_EQ(blankFault("FORECASTS"), "No space before 'OR'");
  EXPECT_EQ(blankFault("ANDROX"), "No space after 'AND'");
  EXPECT_EQ(blankFault("XFORTY"), "No space before 'OR'");
  EXPECT_EQ(blankFault("BAND + HANDX"), "No space before 'AND'");
}

TEST(OperatorBlanks, ASetNameMayHoldASign) {
  EXPECT_EQ(blankFault("A-B > 1"), "");
  EXPECT_EQ(blankFault("A-C > 1"), "No space before '-'");
  EXPECT_EQ(blankFault("(A-B) * A-B"), "");
}

TEST(OperatorBlanks, ANameOnceFoundHidesAllItsOperators) {
  ScriptNames names;
  names.addSetName("5-5ORB");
  // OR, the first looked for, has a letter beside it and leads to the name; the sign alone would not.
  EXPECT_EQ(CheckOperatorBlanks("5-5ORB > 1", names), "");
  EXPECT_EQ(CheckOperatorBlanks("5-5 > 1", names), "No space before '-'");
}

TEST(OperatorBlanks, WithoutALetterBesideItIsNeverPartOfAWord) {
  EXPECT_EQ(blankFault("5OR5"), "No space before 'OR'");
  EXPECT_EQ(blankFault("1 _OR_ 2"), "No space before 'OR'");
}

TEST(OperatorBlanks, SignsOfNumbers) {
  EXPECT_EQ(blankFault("-5 + 3"), "");
  EXPECT_EQ(blankFault("+.5"), "");
  for (const char* before :
       {"(",    "[",      "{",     ",",      "A > ",   "A = ",   "A != ", "A * ",    "A - ",   "A + ", "A / ",
        "A ! ", "A AND ", "A OR ", "A XOR ", "A EQV ", "A MOD ", "NOT ",  "A <\r\n", "(\r\n ", ", "}) {
    for (const char* number : {"-5", "+5", "-.5", "+.5"}) {
      EXPECT_EQ(blankFault(std::string(before) + number), "") << before << number;
    }
  }
  EXPECT_EQ(blankFault("NOT-5"), "");
}

TEST(OperatorBlanks, NoSigns) {
  EXPECT_EQ(blankFault("A -5"), "No space after '-'");
  EXPECT_EQ(blankFault("5 -5"), "No space after '-'");
  EXPECT_EQ(blankFault("(A) +5"), "No space after '+'");
  EXPECT_EQ(blankFault("A > -B"), "No space after '-'");
  EXPECT_EQ(blankFault("(- 5)"), "No space before '-'");
  EXPECT_EQ(blankFault("(--5)"), "No space before '-'");
  EXPECT_EQ(blankFault("-5-3"), "No space before '-'");
  // BAND ends with the letters of an operator and is none; & is none of the list.
  EXPECT_EQ(blankFault("BAND -5"), "No space after '-'");
  EXPECT_EQ(blankFault("A & -5"), "No space after '-'");
  EXPECT_EQ(blankFault("A *5"), "No space after '*'");
}

TEST(OperatorBlanks, ANameThatIsLeftOutStillStandsInFrontOfASign) {
  EXPECT_EQ(blankFault("FORTY -5"), "No space after '-'");
  EXPECT_EQ(blankFault("CLOSE -5"), "No space after '-'");
  EXPECT_EQ(blankFault("FORTY - -5"), "");
}

// ---- Ends

TEST(ScriptEnds, NoOperatorButNotAtTheHead) {
  for (std::string_view view : operators()) {
    const std::string op(view);
    const std::string fault = op == "NOT" ? "" : "Script cannot start with operator '" + op + "'";
    EXPECT_EQ(CheckScriptEnds(op + " CLOSE > 1"), fault);
    EXPECT_EQ(CheckScriptEnds(" \r\n " + op + " CLOSE > 1"), fault);
    EXPECT_EQ(CheckScriptEnds("(" + op + " CLOSE)"), "");
  }
}

TEST(ScriptEnds, TheHeadIsComparedByLetters) {
  EXPECT_EQ(CheckScriptEnds("-5 < CLOSE"), "Script cannot start with operator '-'");
  EXPECT_EQ(CheckScriptEnds("ORDER < CLOSE"), "Script cannot start with operator 'OR'");
  EXPECT_EQ(CheckScriptEnds("NOTE < CLOSE"), "");
}

TEST(ScriptEnds, NoOperatorAtTheEnd) {
  for (std::string_view view : operators()) {
    const std::string op(view);
    EXPECT_EQ(CheckScriptEnds("CLOSE " + op), "Script cannot end with operator '" + op + "'");
    EXPECT_EQ(CheckScriptEnds("CLOSE " + op + " \r\n"), "Script cannot end with operator '" + op + "'");
    EXPECT_EQ(CheckScriptEnds("CLOSE " + op + " 1"), "");
    // Only a blank makes it one.
    EXPECT_EQ(CheckScriptEnds("CLOSE 5" + op), "");
    EXPECT_EQ(CheckScriptEnds("CLOSE\r\n" + op), "");
  }
}

TEST(ScriptEnds, EmptyAndBlankScripts) {
  EXPECT_EQ(CheckScriptEnds(""), "");
  EXPECT_EQ(CheckScriptEnds(" \r\n "), "");
}

TEST(ScriptEnds, HeadAndEndOfEachOperatorInTurn) {
  EXPECT_EQ(CheckScriptEnds("* CLOSE +"), "Script cannot end with operator '+'");
  EXPECT_EQ(CheckScriptEnds("+ CLOSE *"), "Script cannot start with operator '+'");
}

TEST(ScriptEnds, ANameAtTheEndIsNoOperatorsEnd) {
  // The names that hide operators are left out of the search for blanks only.
  ScriptNames names;
  EXPECT_EQ(CheckOperators("CLOSE > FORECAST", names), "");
}

// ---- Neighbours

constexpr const char* kTouching = "No operator allowed before and after an operator";

TEST(OperatorNeighbours, TouchingOperators) {
  for (char sign : std::string("+-*/&|^!%")) {
    for (char other : std::string("+-*/&|^!%><=")) {
      if (sign == '!' && other == '=') continue;
      EXPECT_EQ(CheckOperatorNeighbours(std::string("A ") + sign + other + " B"), kTouching) << sign << other;
      EXPECT_EQ(CheckOperatorNeighbours(std::string("A ") + sign + " " + other + " B"), "") << sign << other;
    }
  }
  EXPECT_EQ(CheckOperatorNeighbours("A =! B"), kTouching);
  EXPECT_EQ(CheckOperatorNeighbours("A >& B"), kTouching);
}

TEST(OperatorNeighbours, ComparisonsMayTouch) {
  EXPECT_EQ(CheckOperatorNeighbours("A >= B <= C <> D != E"), "");
  EXPECT_EQ(CheckOperatorNeighbours("A => B >> C << D == E"), "");
}

TEST(OperatorNeighbours, SpelledOperatorsAreSigns) {
  EXPECT_EQ(CheckOperatorNeighbours("A *NOT B"), kTouching);
  EXPECT_EQ(CheckOperatorNeighbours("A AND\r\nNOT B"), "");
  EXPECT_EQ(CheckOperatorNeighbours("A AND NOT B"), "");
  EXPECT_EQ(CheckOperatorNeighbours("A &NOTE B"), "");
  EXPECT_EQ(CheckOperatorNeighbours("A >EQV B"), "");
}

TEST(OperatorNeighbours, ASignOfANumberMayTouch) {
  EXPECT_EQ(CheckOperatorNeighbours("NOT-5"), "");
  EXPECT_EQ(CheckOperatorNeighbours("A *-5"), "");
  EXPECT_EQ(CheckOperatorNeighbours("A &+.5"), "");
  EXPECT_EQ(CheckOperatorNeighbours("A *-B"), kTouching);
  EXPECT_EQ(CheckOperatorNeighbours("5--5"), "");  // an operator and a sign
  EXPECT_EQ(CheckOperatorNeighbours("5---5"), kTouching);
}

// ---- The order of these checks

TEST(CheckOperators, Order) {
  const auto fault = [](std::string_view script) {
    ScriptNames names;
    return CheckOperators(script, names);
  };
  EXPECT_EQ(fault("SET = 1>2 && ("), "Invalid SET command");
  EXPECT_EQ(fault("* 1>2 && ("), "No space before '>'");
  EXPECT_EQ(fault("* 1 && ("), "Script cannot start with operator '*'");
  EXPECT_EQ(fault("1 && ("), kTouching);
  EXPECT_EQ(fault("1 & ("), "Script not nested with proper \" ) \" bracket");
  EXPECT_EQ(fault("1 & ()"), "");
}

TEST(CheckOperators, ASetNameWithTwoSignsTouchesItself) {
  ScriptNames names;
  EXPECT_EQ(CheckOperators("SET A-B = 1\r\nA-B > 2", names), "");
  EXPECT_EQ(CheckOperators("SET A--B = 1\r\n1 > 2", names), kTouching);
}

}  // namespace
}  // namespace brindlewort::validation
