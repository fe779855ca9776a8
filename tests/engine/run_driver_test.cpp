#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "functions/script_engine.hpp"

namespace brindlewort {
namespace {

std::vector<Bar> rampBars(int count) {
  std::vector<Bar> bars;
  for (int i = 1; i <= count; ++i)
    bars.push_back({2444300.5 + i, i - 0.5, i + 1.0, i - 1.0, 1.0 * i, 100.0 * i});
  return bars;
}

/// Runs a script over bars that close at 1, 2, 3 and so on.
struct RunOf {
  explicit RunOf(const std::string& script, int count = 60, bool dryRun = false) : bars(rampBars(count)) {
    engine.bars.use(bars);
    text = engine.RunScript(script, false, dryRun);
  }
  std::vector<Bar> bars;
  CScriptEngine engine;
  std::string text;
};

std::string sumOfOnes(std::size_t characters) {
  std::string sum = "1";
  while (sum.size() + 2 <= characters) sum += "+1";
  return sum.size() < characters ? sum + "1" : sum;
}

TEST(RunDriver, LongestScriptHas63999Characters) {
  EXPECT_EQ(RunOf(sumOfOnes(63'999)).text, "ALERT");
  EXPECT_EQ(RunOf(sumOfOnes(64'000)).text, "Error: Script too large");
}

TEST(RunDriver, CountsTheLengthAfterBlanksAreTakenAway) {
  EXPECT_EQ(RunOf(sumOfOnes(63'999) + "   ").text, "ALERT");
}

TEST(RunDriver, MissingScriptAndNoScript) {
  EXPECT_EQ(RunOf("").text, "Error: Missing script");
  EXPECT_EQ(RunOf(" \t \r\n ").text, "Error: Missing script");
  EXPECT_EQ(RunOf("# only a comment").text, "Error: No script!");
}

TEST(RunDriver, DriverMessagesLeaveTheErrorTextEmpty) {
  EXPECT_EQ(RunOf("# only a comment").engine.errorText, "");
  EXPECT_EQ(RunOf("SMA(CLOSE, 30) > 0", 10).engine.errorText, "");
}

TEST(RunDriver, CommentsEndWithTheirLine) {
  EXPECT_EQ(RunOf("CLOSE > 0 # test").text, "ALERT");
  EXPECT_EQ(RunOf("# a\r\nCLOSE > 0 # b\r\n# c").text, "ALERT");
}

TEST(RunDriver, AsksForTwiceTheGreatestPeriodAndTwo) {
  EXPECT_EQ(RunOf("SMA(CLOSE, 10) > 0", 22).text, "ALERT");
  EXPECT_EQ(RunOf("SMA(CLOSE, 10) > 0", 21).text, kNotEnoughData);
}

TEST(RunDriver, TwoBarsGiveOneRow) {
  CScriptEngine engine;
  const std::vector<Bar> bars = rampBars(2);
  engine.bars.use(bars);
  engine.wholeHistory = true;
  ASSERT_TRUE(engine.BuildPriceFields(1));
  for (const Field& field : engine.fields) EXPECT_EQ(field.values.size(), 1u) << field.name;
  EXPECT_EQ(engine.prices().close[0], 2.0);
}

TEST(RunDriver, TheFirstBarNeverReachesASeries) {
  RunOf run("SET A = CLOSE\r\nA", 10);
  const ScriptVariable* a = run.engine.variables.get("A");
  ASSERT_NE(a, nullptr);
  ASSERT_EQ(a->values.size(), 9u);
  EXPECT_EQ(a->values[0], 2.0);
  EXPECT_EQ(a->value, 10.0);
}

TEST(RunDriver, DryRunMakesTenThousandBarsOfOne) {
  RunOf run("SET A = CLOSE + VOLUME\r\nA", 0, true);
  EXPECT_EQ(run.text, "ALERT");
  EXPECT_EQ(run.engine.bars.size(), 10'000u);
  EXPECT_TRUE(run.engine.paddedData);
  EXPECT_EQ(run.engine.variables.get("A")->values.view()[5000], 2.0);
}

TEST(RunDriver, ReadsTheSourceStatements) {
  RunOf run(
      "SET EXCHANGE = NYSE\r\nSET SECTOR = TECH\r\nSET INDUSTRY = CHIPS\r\nSET SYMBOL = ABC\r\nCLOSE > 0");
  EXPECT_EQ(run.engine.exchange, "NYSE");
  EXPECT_EQ(run.engine.sector, "TECH");
  EXPECT_EQ(run.engine.industry, "CHIPS");
  EXPECT_EQ(run.engine.symbol, "ABC");
  EXPECT_EQ(run.text, "ALERT");
  EXPECT_EQ(run.engine.variables.get("SYMBOL"), nullptr);
}

TEST(RunDriver, ASourceStatementWithoutALineBreakStays) {
  // Without a line break there is no source part; the text reaches the evaluator as a SET statement.
  RunOf run("SET SYMBOL = ABC");
  EXPECT_EQ(run.engine.symbol, "");
  EXPECT_EQ(run.text, "Error: Undefined variable 'ABC'");
}

TEST(RunDriver, ALineInFrontOfASetIsAStatementToo) {
  // The test for SET looks anywhere in the rest, so the first line is evaluated as a statement and dropped.
  EXPECT_EQ(RunOf("FOO\r\nSET A = 1\r\nA").text, "Error: Undefined variable 'FOO'");
}

TEST(RunDriver, TheFirstErrorEndsTheRun) {
  RunOf run("SET A = FOO\r\nSET B = BAR\r\nB");
  EXPECT_EQ(run.text, "Error: Undefined variable 'FOO'");
}

TEST(RunDriver, TheFunctionThatFailedStaysCurrent) {
  RunOf run("SET A = SMA(CLOSE, 0)\r\nEMA(CLOSE, 3)");
  EXPECT_EQ(run.engine.currentFunction, "SMA");
  EXPECT_EQ(run.engine.abortMark, "SMA");
}

TEST(RunDriver, RowScanStopsAtTheFirstError) {
  CScriptEngine engine;
  const std::vector<Bar> bars = rampBars(20);
  engine.bars.use(bars);
  EXPECT_EQ(engine.RunScript("FOO", true, false), "Error: Undefined variable 'FOO'");
  EXPECT_EQ(engine.RunScript("CLOSE > 3", true, false), "ALERT");
}

// ---- Lookback ----

std::int32_t lookback(const std::string& script) {
  return CScriptEngine().EstimateLookback(script);
}

TEST(Lookback, DoublesTheGreatestNumberInBrackets) {
  EXPECT_EQ(lookback("SMA(CLOSE, 10) > EMA(CLOSE, 26)"), 54);
  EXPECT_EQ(lookback("SMA(CLOSE, 2.5)"), 7);   // 5, plus 2
  EXPECT_EQ(lookback("SMA(CLOSE, 4.5)"), 11);  // 9, plus 2
}

TEST(Lookback, IsSevenAtLeast) {
  EXPECT_EQ(lookback("CLOSE"), 7);
  EXPECT_EQ(lookback("CLOSE > 500"), 7);  // not in brackets
}

TEST(Lookback, IgnoresNumbersAbove9999) {
  EXPECT_EQ(lookback("SMA(CLOSE, 10000)"), 7);
  EXPECT_EQ(lookback("SMA(CLOSE, 9999)"), 20000);
  EXPECT_EQ(lookback("F(10000, 12)"), 26);
}

TEST(Lookback, LeavesOutCallsWhoseNumbersAreNoPeriods) {
  EXPECT_EQ(lookback("LOOP(CLOSE, VOLUME, 50, 60, ADD)"), 7);
  EXPECT_EQ(lookback("ROUND (CLOSE, 300)"), 7);
  EXPECT_EQ(lookback("MAXOF(CLOSE, 300) + SMA(CLOSE, 20)"), 42);
  // IF's brackets go, those of the call inside stay.
  EXPECT_EQ(lookback("IF(CLOSE > 900, SMA(CLOSE, 20), 800)"), 42);
  // The blank in front of a bracket is taken away once, so the 9 counts here.
  EXPECT_EQ(lookback("IF( (CLOSE > 9), 1, 2)"), 20);
  // Taking a bracket away may make a further call.
  EXPECT_EQ(lookback("IF((CLOSE > 900))"), 7);
  // REF is no such call.
  EXPECT_EQ(lookback("REF(CLOSE, 100)"), 202);
}

TEST(Lookback, ANumberCountsWhenAnotherCharacterEndsIt) {
  EXPECT_EQ(lookback("SMA(CLOSE, 40"), 7);
  EXPECT_EQ(lookback("SMA(CLOSE, 40 "), 82);
}

TEST(Lookback, IsFixedInADryRun) {
  CScriptEngine engine;
  engine.dryRun = true;
  EXPECT_EQ(engine.EstimateLookback("SMA(CLOSE, 5000)"), 3333);
}

}  // namespace
}  // namespace brindlewort
