#include "services/validate/argument_checks.hpp"

#include <gtest/gtest.h>

#include <string>

#include "services/validate/name_tables.hpp"

namespace brindlewort::validation {
namespace {

TEST(CheckArguments, NothingBehindTheLastBracket) {
  EXPECT_EQ(CheckArguments("CLOSE > SMA(CLOSE, 5)"), "");
  EXPECT_EQ(CheckArguments("CLOSE > SMA(CLOSE, 5) \r\n "), "");
  EXPECT_EQ(CheckArguments(")"), "");
}

TEST(CheckArguments, NoBracketAtAll) {
  EXPECT_EQ(CheckArguments("CLOSE OPEN"), "");
  EXPECT_EQ(CheckArguments("SMA(CLOSE"), "");
  EXPECT_EQ(CheckArguments(""), "");
}

TEST(CheckArguments, ATailWithoutOperator) {
  EXPECT_EQ(CheckArguments("SMA(CLOSE, 5) CLOSE"), "'CLOSE' is not a valid script");
  EXPECT_EQ(CheckArguments("SET A = SMA(CLOSE, 5)\r\nA"), "'A' is not a valid script");
  EXPECT_EQ(CheckArguments("SMA(CLOSE, 5)  5  6 "), "'5  6' is not a valid script");
  EXPECT_EQ(CheckArguments("SMA(CLOSE, 5) & 1"), "'& 1' is not a valid script");
  EXPECT_EQ(CheckArguments("F) ["), "'[' is not a valid script");
}

TEST(CheckArguments, ATailWithAnOperatorOrAnOpeningBracket) {
  for (std::string_view op : operators()) {
    EXPECT_EQ(CheckArguments("SMA(CLOSE, 5) " + std::string(op) + " 1"), "") << op;
  }
  EXPECT_EQ(CheckArguments("SMA(CLOSE, 5) 5 ("), "");
  // The letters of an operator are enough.
  EXPECT_EQ(CheckArguments("SMA(CLOSE, 5) FORECAST"), "");
}

struct Call {
  const char* name;
  const char* longName;
};

constexpr Call kCalls[] = {
    {"HML", "HIGHMINUSLOW"},
    {"PNBT", "PRIMENUMBERBANDSTOP"},
    {"PNBB", "PRIMENUMBERBANDSBOTTOM"},
    {"WAD", "WILLIAMSACCUMULATIONDISTRIBUTION"},
    {"CSP", "CANDLESTICKS"},
    {"MP", "MEDIANPRICE"},
    {"TP", "TYPICALPRICE"},
    {"WC", "WEIGHTEDCLOSE"},
    {"TR", "TRUERANGE"},
};

TEST(CheckNoInputs, EveryFunctionWithoutArguments) {
  for (const Call& call : kCalls) {
    const std::string name = call.name;
    const std::string fault = std::string("Inputs are not allowed for '") + call.longName + "'";
    EXPECT_EQ(CheckNoInputs(name + "(5) > 1"), fault);
    EXPECT_EQ(CheckNoInputs("1 > " + name + "( ) + " + name + "(CLOSE)"), fault);
    EXPECT_EQ(CheckNoInputs("(" + name + "(CLOSE))"), fault);
    EXPECT_EQ(CheckNoInputs("CLOSE\r\n" + name + "(CLOSE)"), fault);
    EXPECT_EQ(CheckNoInputs(name + "() > 1"), "");
    EXPECT_EQ(CheckNoInputs(name + "( \r\n ) > 1"), "");
  }
}

TEST(CheckNoInputs, OtherWordsAndOtherFormsAreNotLookedAt) {
  for (const Call& call : kCalls) {
    const std::string name = call.name;
    EXPECT_EQ(CheckNoInputs("X" + name + "(5) > 1"), "");
    EXPECT_EQ(CheckNoInputs("_" + name + "(5) > 1"), "");
    EXPECT_EQ(CheckNoInputs("5" + name + "(5) > 1"), "");
    EXPECT_EQ(CheckNoInputs(name + "X(5) > 1"), "");
    EXPECT_EQ(CheckNoInputs(name + " (5) > 1"), "");
    EXPECT_EQ(CheckNoInputs(name), "");
  }
}

TEST(CheckNoInputs, TheFirstOfTheListIsTold) {
  EXPECT_EQ(CheckNoInputs("TR(1) + HML(1)"), "Inputs are not allowed for 'HIGHMINUSLOW'");
}

TEST(CheckNoInputs, ABracketThatNothingClosesReachesTheEnd) {
  EXPECT_EQ(CheckNoInputs(") > TP("), "");
  EXPECT_EQ(CheckNoInputs(") > TP( 5"), "Inputs are not allowed for 'TYPICALPRICE'");
}

}  // namespace
}  // namespace brindlewort::validation
