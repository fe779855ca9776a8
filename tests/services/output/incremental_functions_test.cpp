// The functions of the incremental way, reached by scripts: what differs from the whole-history way, and
// every operation of the table.

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "functions/script_engine.hpp"
#include "support/function_calls.hpp"
#include "support/living_script.hpp"
#include "support/time_zone.hpp"

namespace brindlewort {
namespace {

using testing::errorOf;
using testing::kNull;
using testing::LivingScript;
using testing::Rows;
using testing::rowsOver;

/// The rows of an expression over bars that close at 1 to 8.
Rows rowsOf(const std::string& expression) {
  return rowsOver(expression, {1, 2, 3, 4, 5, 6, 7, 8});
}

const Rows kCloses = {1, 2, 3, 4, 5, 6, 7, 8};

// ---- conditions, loops, references ----

TEST(IncrementalConditions, AScalarConditionChoosesAPartForAllRows) {
  EXPECT_EQ(rowsOf("IF(1, CLOSE, 50)"), kCloses);
  EXPECT_EQ(rowsOf("IF(0, CLOSE, 50)"), Rows(8, 50.0));
}

TEST(IncrementalConditions, AScalarConditionGivesTheOthersNoRow) {
  for (const char* call : {"COUNTIF(1)", "SUMIF(1, CLOSE)", "LASTIF(1)", "REPEATIF(1)"}) {
    EXPECT_EQ(rowsOf(call), Rows(8, kNull)) << call;
  }
}

TEST(IncrementalConditions, IfTakesItsPartsRowByRow) {
  EXPECT_EQ(rowsOf("IF(CLOSE > 4, CLOSE, 0)"), (Rows{0, 0, 0, 0, 5, 6, 7, 8}));
}

TEST(IncrementalConditions, ANullConditionSelectsTheTruePart) {
  LivingScript script("SET S = SMA(CLOSE, 3)\r\nSET A = IF(S, 1, 2)\r\n1");
  script.ramp(8).run();
  EXPECT_EQ(script.rows("A"), Rows(8, 1.0));
}

TEST(IncrementalConditions, IfEvaluatesItsPartsAnew) {
  LivingScript script("SET A = IF(CLOSE > 2, CLOSE + 10, CLOSE - 10)\r\nA");
  script.closes({1, 2, 3, 1, 5, 1, 3}).run();
  EXPECT_EQ(script.rows("A"), (Rows{-9, -8, 13, -9, 15, -9, 13}));
  script.closes({4}).edit(2).run();
  EXPECT_EQ(script.rows("A"), (Rows{-9, -8, 13, -9, 15, -9, 13, -8}));
}

TEST(IncrementalConditions, CountIfDoesNotCountNullsAtTheHead) {
  EXPECT_EQ(rowsOf("COUNTIF(SMA(CLOSE, 3))"), (Rows{kNull, kNull, 1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(rowsOf("COUNTIF(CLOSE > 5)"), (Rows{0, 0, 0, 0, 0, 1, 2, 3}));
}

TEST(IncrementalConditions, SumIfAddsWhereTheConditionHolds) {
  EXPECT_EQ(rowsOf("SUMIF(CLOSE > 5, CLOSE)"), (Rows{0, 0, 0, 0, 0, 6, 13, 21}));
  EXPECT_EQ(rowsOf("SUMIF(CLOSE, SMA(CLOSE, 3))"), (Rows{kNull, kNull, 2, 5, 9, 14, 20, 27}));
}

TEST(IncrementalConditions, TheFirstTwoRowsOfRunCountsDependOnTheData) {
  EXPECT_EQ(rowsOf("LASTIF(CLOSE > 5)"), (Rows{1, 2, 3, 4, 5, 0, 0, 0}));
  EXPECT_EQ(rowsOf("REPEATIF(CLOSE < 5)"), (Rows{1, 2, 3, 4, 0, 0, 0, 0}));
}

TEST(IncrementalConditions, CountsTakeBackTheRowOfAnEditedBar) {
  LivingScript script("SET A = COUNTIF(CLOSE > 2)\r\nSET B = SUMIF(CLOSE > 2, CLOSE)\r\n1");
  script.closes({3, 1, 3, 1, 3, 1, 3}).run();
  for (double close : {1.0, 5.0, 2.0, 4.0}) script.edit(close).run();
  EXPECT_EQ(script.rows("A"), (Rows{1, 1, 2, 2, 3, 3, 4}));
  EXPECT_EQ(script.rows("B"), (Rows{3, 3, 6, 6, 9, 9, 13}));
}

TEST(IncrementalConditions, CrossOverHasNullInItsFirstRow) {
  EXPECT_EQ(rowsOf("CROSSOVER(CLOSE, 4)"), (Rows{kNull, 0, 0, 0, 1, 0, 0, 0}));
  EXPECT_EQ(rowsOver("CROSSOVER(CLOSE, 2)", {2, 2, 3, 2, 2.00001, 3, 1, 3}),
            (Rows{kNull, 0, 1, 0, 0, 1, 0, 1}));
}

TEST(IncrementalConditions, ReferenceOfZeroIsTheSource) {
  EXPECT_EQ(rowsOf("REF(CLOSE, 0)"), kCloses);
}

TEST(IncrementalConditions, ReferenceWithOffsetsKeepsFractions) {
  LivingScript script("SET P = CLOSE > 0\r\nSET A = REF(CLOSE, P)\r\nA");
  script.closes({1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5}).run();
  EXPECT_EQ(script.rows("A"), (Rows{kNull, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5}));
}

TEST(IncrementalConditions, ReferenceMayReachBackAsFarAsThereAreBars) {
  const std::string script = "REF(CLOSE, 10050)";  // above 9999, a number asks for no bars
  EXPECT_EQ(errorOf(script, 10'049), "Error: REF() function reference periods outside of allowed range");
  EXPECT_EQ(errorOf(script, 10'050), "");
  LivingScript last("SET A = " + script + "\r\n1");
  last.ramp(10'051).run();
  EXPECT_EQ(last.rows("A").back(), 1.0);
  EXPECT_EQ(last.rows("A")[10'049], kNull);
}

TEST(IncrementalConditions, TrendComparesEachStepOfItsWindow) {
  EXPECT_EQ(rowsOver("TREND(CLOSE, 3)", {1, 2, 3, 3, 2, 1, 5, 6}), (Rows{kNull, kNull, 1, 3, 3, 2, 3, 1}));
}

TEST(IncrementalConditions, TrendNeedsAPeriod) {
  EXPECT_EQ(errorOf("TREND(CLOSE)"), "Error: 'TREND' Period argument not valid");
}

TEST(IncrementalConditions, LoopIsARecursion) {
  EXPECT_EQ(rowsOf("LOOP(CLOSE, CLOSE, 1, 0, ADD)"), (Rows{1, 3, 6, 10, 15, 21, 28, 36}));
  EXPECT_EQ(rowsOf("LOOP(CLOSE, CLOSE, 0, 0, ADD)"), (Rows{2, 4, 6, 8, 10, 12, 14, 16}));
  EXPECT_EQ(rowsOf("LOOP(CLOSE, CLOSE, 0, 0, MOD)"), kCloses);
}

TEST(IncrementalConditions, LoopGivesNullForAZeroDivisor) {
  LivingScript script("SET Z = CLOSE - 4\r\nSET A = LOOP(CLOSE, Z, 0, 0, DIVIDE)\r\n1");
  script.ramp(8).run();
  EXPECT_EQ(script.rows("A"), (Rows{1 / -3.0, -1, -3, kNull, 5, 3, 7 / 3.0, 2}));
}

// ---- arithmetic, rounding, windows, dates ----

TEST(IncrementalArithmetic, AverageIsATrueAverageAndFillsItsHead) {
  EXPECT_EQ(rowsOf("AVERAGE(CLOSE, 3)"), (Rows{2, 2, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(rowsOf("AVG(CLOSE, 3)"), rowsOf("AVERAGE(CLOSE, 3)"));
}

TEST(IncrementalArithmetic, SumFillsItsHead) {
  EXPECT_EQ(rowsOf("SUM(CLOSE, 3)"), (Rows{6, 6, 6, 9, 12, 15, 18, 21}));
  EXPECT_EQ(rowsOf("SUM(CLOSE, 1)"), kCloses);
}

TEST(IncrementalArithmetic, ExtremesDoNotFillTheirHead) {
  EXPECT_EQ(rowsOf("MAX(CLOSE, 3)"), (Rows{kNull, kNull, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(rowsOf("MIN(CLOSE, 3)"), (Rows{kNull, kNull, 1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(rowsOver("MAX(CLOSE, 2)", {1, 1, 1, 1, 1, 1.00002, 1.00001}).back(), 1.00001);
}

TEST(IncrementalArithmetic, APeriodMayBeASeries) {
  LivingScript script("SET P = CLOSE / CLOSE + 1\r\nSET A = SUM(CLOSE, P)\r\n1");
  script.ramp(8).run();
  EXPECT_EQ(script.rows("A"), (Rows{3, 3, 5, 7, 9, 11, 13, 15}));
}

TEST(IncrementalArithmetic, APeriodBelowOneIsReported) {
  EXPECT_EQ(errorOf("SUM(CLOSE, 0)"), "Error: 'SUM' argument should be greater than 1.");
  EXPECT_EQ(errorOf("AVERAGE(CLOSE, 0)"), "Error: 'AVERAGE' argument should be greater than 1.");
  EXPECT_EQ(errorOf("SUM(CLOSE, 1)"), "");
}

TEST(IncrementalArithmetic, Rounding) {
  EXPECT_EQ(rowsOf("ROUND(2.345, 2)"), Rows(8, 2.35 + 1e-10));
  EXPECT_EQ(rowsOf("ROUND(2.34499, 2)"), Rows(8, 2.34 + 1e-10));
  EXPECT_EQ(rowsOf("ROUNDDOWN(-1.29, 1)"), Rows(8, -1.2 - 1e-10));
  EXPECT_EQ(rowsOf("ROUND(0.00001, 2)"), Rows(8, 0.0));
  EXPECT_EQ(rowsOf("MROUND(7, 5)"), Rows(8, 5 + 1e-10));
  EXPECT_EQ(rowsOf("MROUNDUP(7, 5)"), Rows(8, 10 + 1e-10));
  EXPECT_EQ(rowsOf("MROUND(-7, 5)"), Rows(8, -10 - 1e-10));
  EXPECT_EQ(rowsOf("MROUNDUP(-7, 5)"), Rows(8, -5 - 1e-10));
  EXPECT_EQ(rowsOf("MROUND(10, 5)"), Rows(8, 10 + 1e-10));
  EXPECT_EQ(rowsOf("ROUND(SMA(CLOSE, 3), 1)"),
            (Rows{kNull, kNull, 2 + 1e-10, 3 + 1e-10, 4 + 1e-10, 5 + 1e-10, 6 + 1e-10, 7 + 1e-10}));
}

TEST(IncrementalArithmetic, RoundingToZeroDigitsOrASeriesIsReported) {
  EXPECT_EQ(errorOf("ROUND(CLOSE, 0)"), "Error: 'ROUND' argument should be greater than 1.");
  EXPECT_EQ(errorOf("ROUND(CLOSE, OPEN)"), "Error: 'ROUND' argument should be greater than 1.");
  EXPECT_EQ(errorOf("MROUND(CLOSE, 0)"), "Error: 'MROUND' argument should be greater than 1.");
}

TEST(IncrementalArithmetic, MathematicsPassesOverNulls) {
  EXPECT_EQ(rowsOf("ABS(SMA(CLOSE, 3))"), (Rows{kNull, kNull, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(rowsOf("ABS(-5)"), Rows(8, 5.0));
  EXPECT_EQ(rowsOf("EXP(0)"), Rows(8, 1.0));
  EXPECT_EQ(rowsOf("RND(0)"), Rows(8, 0.0));
}

TEST(IncrementalArithmetic, RandomNumbersLieBetweenZeroAndTheLastValue) {
  for (double x : rowsOf("RND(CLOSE)")) {
    EXPECT_GE(x, 0.0);
    EXPECT_LE(x, 8.0);
  }
}

TEST(IncrementalArithmetic, ExtremesOfSeveralSeries) {
  EXPECT_EQ(rowsOf("MAXOF(CLOSE, CLOSE)"), kCloses);
  EXPECT_EQ(rowsOf("MAXOF(CLOSE, 4)"), (Rows{4, 4, 4, 4, 5, 6, 7, 8}));
  EXPECT_EQ(rowsOf("MINOF(CLOSE, 4, 2)"), (Rows{1, 2, 2, 2, 2, 2, 2, 2}));
  EXPECT_EQ(rowsOf("MAXOF(CLOSE, SMA(CLOSE, 3))"), (Rows{kNull, kNull, 3, 4, 5, 6, 7, 8}));
}

TEST(IncrementalArithmetic, NumbersOfExtremesGrowWithTheBars) {
  LivingScript script("SET A = MAXOF(CLOSE, 4)\r\n1");
  script.ramp(8).run();
  script.closes({3, 9}).run();
  EXPECT_EQ(script.rows("A"), (Rows{4, 4, 4, 4, 5, 6, 7, 8, 4, 9}));
}

TEST(IncrementalDates, PartsAndDifferences) {
  const testing::ScopedTimeZone zone(testing::kUniversalZone);
  EXPECT_EQ(rowsOf("DATEPART(0, 4)"), kCloses);  // the days of January
  EXPECT_EQ(rowsOf("DATEPART(0, 6)"), Rows(8, 2000.0));
  EXPECT_EQ(rowsOf("DATEPART(2, 4)"), (Rows{kNull, kNull, 1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(rowsOf("DATEDIFF(0, 1, 4)"), (Rows{kNull, 1, 1, 1, 1, 1, 1, 1}));
  EXPECT_EQ(rowsOf("DATEDIFF(1, 0, 3)"), (Rows{kNull, -24, -24, -24, -24, -24, -24, -24}));
}

TEST(IncrementalDates, UnknownPartsAreReported) {
  EXPECT_EQ(errorOf("DATEPART(0, 7)"),
            "Error: Kindly input proper parameter in datepart period argument [1-6].");
  EXPECT_EQ(errorOf("DATEDIFF(0, 1, 5)"),
            "Error: Kindly input proper parameter in datepart period argument [1-4].");
  EXPECT_EQ(errorOf("DATEPART(0, DAY)"), "Error: Undefined variable 'DAY'");
}

TEST(IncrementalDates, AnOffsetMayBeAsLargeAsTheBarsAreMany) {
  EXPECT_EQ(errorOf("DATEPART(10050, 4)", 10'050), "");
  EXPECT_EQ(errorOf("DATEPART(10050, 4)", 10'049),
            "Error: DATEPART() function reference periods outside of allowed range");
  EXPECT_EQ(errorOf("DATEDIFF(10050, 0, 4)", 10'049),
            "Error: DATEPART(d1) function reference periods outside of allowed range");
  EXPECT_EQ(errorOf("DATEDIFF(0, 10050, 4)", 10'049),
            "Error: DATEPART(d2) function reference periods outside of allowed range");
}

// ---- the table's differences ----

TEST(IncrementalTable, NamesOfThisWayAloneAnswer) {
  for (const char* call :
       {"AROSC(3)", "COMPOSITE(CLOSE, OPEN, 1, 2)", "CHIKOU(2)", "FCHL(3)", "FCHH(3)", "HLB(3)", "HLBUP(3)",
        "HLBDN(3)", "MACDH(2, 3, 2, SIMPLE)", "SPREAD(CLOSE, OPEN)", "ULTOSC(2, 3, 4)"}) {
    EXPECT_EQ(errorOf(call), "") << call;
  }
}

TEST(IncrementalTable, TheSumOfTrueRangesIsUndefined) {
  EXPECT_EQ(errorOf("TRSUM(5)"), "Error: Undefined function 'TRSUM'");
}

TEST(IncrementalTable, MomentumAndFilterTakeAPeriodOfOne) {
  for (const char* name : {"MO", "VHF"}) {
    EXPECT_EQ(errorOf(std::string(name) + "(CLOSE, 1)"), "") << name;
    EXPECT_EQ(errorOf(std::string(name) + "(CLOSE, 0)"),
              "Error: 'periods' argument of '" + std::string(name) + "' is invalid.");
  }
}

TEST(IncrementalTable, TheConstantsZlemaAndHullAreNoTypes) {
  for (const char* type : {"ZLEMA", "HULL", "9", "10", "0"}) {
    EXPECT_EQ(errorOf("BBT(CLOSE, 5, 2, " + std::string(type) + ")"),
              "Error: Function 'BBT' contains an invalid moving average type.")
        << type;
  }
  EXPECT_EQ(errorOf("BBT(CLOSE, 5, 2, VIDYA)"), "");
  EXPECT_EQ(errorOf("BBT(CLOSE, 5, 2, 8)"), "");
}

TEST(IncrementalTable, TheThirdPeriodOfTheStochasticMomentumHasNoEffect) {
  const auto rows = [](const std::string& third) {
    LivingScript script("SET A = SMIK(6, 3, " + third + ", 4, SIMPLE, SIMPLE)\r\n1");
    script.ramp(10).closes({4, 9, 2, 7, 5, 8, 3, 6, 1, 9}).run();
    EXPECT_EQ(script.error, "");
    return script.rows("A");
  };
  EXPECT_FALSE(isNull(rows("3").back()));
  EXPECT_EQ(rows("9"), rows("3"));
  EXPECT_EQ(rows("0"), rows("3"));
}

TEST(IncrementalTable, TheSecondTypeOfTheStochasticMomentumMayBeVidya) {
  EXPECT_EQ(errorOf("SMIK(6, 3, 3, 4, SIMPLE, VIDYA)"), "");
  EXPECT_EQ(errorOf("SMID(6, 3, 3, 4, VIDYA, VIDYA)"), "");
}

TEST(IncrementalTable, AnIchimokuPeriodAbove9999IsTakenInSpiteOfTheMessage) {
  EXPECT_EQ(errorOf("KIJUN(10050)", 10'050), "");
  EXPECT_EQ(errorOf("KIJUN(10051)", 10'050), "Error: 'KIJUN' value should be between 2 to 9999");
}

TEST(IncrementalTable, PointAndFigureWithoutASourceStops) {
  for (const char* name :
       {"PFX", "PFO", "PFD", "POINTFIGURECOUNTX", "POINTFIGURECOUNTO", "POINTFIGUREDIRECTION"}) {
    EXPECT_EQ(errorOf(std::string(name) + "()"), "Error: Undefined variable 'ClOSE'") << name;
    EXPECT_EQ(errorOf(std::string(name) + "(HIGHLOW, 1, 3)"), "") << name;
  }
}

TEST(IncrementalTable, RatesOfChangeCutTheirPeriod) {
  for (const std::string name : {"PROC", "VROC"}) {
    const std::string report = "Error: 'periods' argument of '" + name + "' is invalid.";
    EXPECT_EQ(errorOf(name + "(CLOSE, 5.5)"), "") << name;
    EXPECT_EQ(errorOf(name + "(CLOSE, 0)"), report);
    EXPECT_EQ(errorOf(name + "(CLOSE, 99999)"), report);
    EXPECT_EQ(errorOf(name + "(CLOSE)"), report);
    EXPECT_EQ(errorOf(name + "(CLOSE, 5, 6)"), "Error: 'Number of' argument of '" + name + "' is invalid.");
  }
}

TEST(IncrementalTable, TheTrendScoreHasMessagesOfItsOwn) {
  EXPECT_EQ(errorOf("TS(CLOSE, 0, 3)"), "Error: 'TS' RefPeriods");
  EXPECT_EQ(errorOf("TS(CLOSE)"), "Error: 'TS' RefPeriods");
  EXPECT_EQ(errorOf("TS(CLOSE, 3, 1)"), "Error: 'TS' Invalid TrendPeriods(min 2) for indicator");
  EXPECT_EQ(errorOf("TS(CLOSE, 3)"), "Error: 'TS' Invalid TrendPeriods(min 2) for indicator");
}

TEST(IncrementalTable, TheSecondSeriesOfTheComparisonIsTheCloseByDefault) {
  LivingScript script("SET A = CRSI(OPEN)\r\nSET B = CRSI(OPEN, CLOSE)\r\nSET C = CRSI(OPEN, OPEN)\r\n1");
  script.closes({10, 4, 9, 2, 7, 5, 8, 3, 6, 11}).run();
  ASSERT_EQ(script.error, "");
  EXPECT_EQ(script.rows("A"), script.rows("B"));
  EXPECT_NE(script.rows("A"), script.rows("C"));
}

TEST(IncrementalTable, TheCorrelationStaysNull) {
  EXPECT_EQ(rowsOf("CA(CLOSE, OPEN)"), Rows(8, kNull));
  EXPECT_EQ(errorOf("CA()"), "Error: 'source1' argument of 'CA' not optional.");
  EXPECT_EQ(errorOf("CA(CLOSE)"), "Error: 'source2' argument of 'CA' not optional.");
}

TEST(IncrementalTable, CountIfAndSumIfReportASurplusInTheirOwnWay) {
  EXPECT_EQ(errorOf("COUNTIF(CLOSE), 1)"), "Error: 'COUNTIF' Number of");
  EXPECT_EQ(errorOf("SUMIF(CLOSE, OPEN, 1)"), "Error: 'SUMIF' Number of");
  EXPECT_EQ(errorOf("LASTIF(CLOSE), 1)"), "Error: 'Number of' argument of 'LASTIF' is invalid.");
}

TEST(IncrementalTable, LoopReadsItsOperatorWithTheBarsCheck) {
  EXPECT_EQ(errorOf("LOOP(CLOSE, OPEN, 0, 0, 61)"),
            "Error: Function 'LOOP') contains arguments outside of allowed range.");
  EXPECT_EQ(errorOf("LOOP(CLOSE, OPEN, 0, 0, 60)"), "");
}

// ---- every function ----

/// Names whose last row is null after 120 bars, and why.
const std::map<std::string, std::string>& nullAtTheEnd() {
  static const std::map<std::string, std::string> names = {
      {"CA", "the figure is dropped"},
      {"CORRELATIONANALYSIS", "the figure is dropped"},
  };
  return names;
}

/// Calls that the normaliser takes for something else: a word without arguments inside the name gets brackets
/// of its own, and an OR in front of the bracket a blank. A host uses their short names.
bool normaliserBreaks(const std::string& call) {
  return CScriptEngine::NormalizeScript("SET A = " + call).find(call) == std::string::npos;
}

/// A walk of the price by a fixed rule, with bars of all kinds.
void walk(LivingScript& script, int bars) {
  testing::Random random(5);
  double close = 50.0;
  for (int i = 0; i < bars; ++i) {
    const double open = close;
    close += random.unit() * 6.0 - 3.0;
    script.bar(open, std::max(open, close) + random.unit(), std::min(open, close) - random.unit(), close,
               1000 + random.below(4000));
    script.run();
    if (script.error.empty()) continue;
    ADD_FAILURE() << script.error << ", bar " << i;
    return;
  }
}

TEST(IncrementalTable, EveryFunctionAnswersOverBarsFedOneByOne) {
  for (const testing::NamedFunction& function : testing::incrementalFunctions()) {
    const bool isCandles =
        function.row->names.front().name == "CSP";  // asked for by a pattern's name; see below
    const bool isCondition =
        function.call().find(" > ") != std::string::npos;  // written anew by the normaliser
    if (isCandles || (!isCondition && normaliserBreaks(function.call()))) continue;
    SCOPED_TRACE(function.call());
    LivingScript script("SET A = " + function.call() + "\r\n1");
    walk(script, 120);
    const Rows rows = script.rows("A");
    ASSERT_EQ(rows.size(), 120u);
    EXPECT_EQ(isNull(rows.back()), nullAtTheEnd().contains(function.name)) << rows.back();
  }
}

TEST(IncrementalTable, NamesThatTheNormaliserBreaksAnswerToo) {
  const std::set<std::string> expected = {
      // They end in OR.
      "CHANDEMOMENTUMOSCILLATOR", "DETRENDEDPRICEOSCILLATOR", "FRACTALCHAOSOSCILLATOR", "MOMENTUMOSCILLATOR",
      "PRICEOSCILLATOR", "PRIMENUMBEROSCILLATOR", "RAINBOWOSCILLATOR", "ULTIMATEOSCILLATOR",
      "VOLUMEOSCILLATOR",
      // They hold TRUERANGE and PRIMENUMBERBANDS.
      "AVERAGETRUERANGE", "PRIMENUMBERBANDSTOP", "PRIMENUMBERBANDSBOTTOM"};
  std::set<std::string> broken;
  for (const testing::NamedFunction& function : testing::incrementalFunctions()) {
    const bool isCandles = function.row->names.front().name == "CSP";
    if (isCandles || function.call().find(" > ") != std::string::npos || !normaliserBreaks(function.call()))
      continue;
    broken.insert(function.name);
    SCOPED_TRACE(function.call());
    CScriptEngine engine;
    engine.InitialiseTransientStore(250);
    engine.fastSeries = {"SET A =(" + function.call() + ")"};
    engine.preparedScript = "(1)";
    std::vector<Bar> bars;
    testing::Random random(9);
    double close = 50.0;
    for (int i = 0; i < 120; ++i) {
      Bar bar;
      bar.JDate = testing::kFirstDay + i;
      bar.OpenPrice = close;
      bar.ClosePrice = close += random.unit() * 6.0 - 3.0;
      bar.HighPrice = std::max(bar.OpenPrice, close) + random.unit();
      bar.LowPrice = std::min(bar.OpenPrice, close) - random.unit();
      bar.Volume = 1000.0 + random.below(4000);
      bars.push_back(bar);
      engine.ApplyBarChange(bar, CScriptEngine::kNewBar);
      engine.bars.use(bars);
      if (i < 13) continue;
      EXPECT_EQ(engine.RunFast(false, false), "ALERT");
    }
    ASSERT_NE(engine.variables.get("A"), nullptr);
    EXPECT_FALSE(isNull(engine.variables.get("A")->value));
  }
  EXPECT_EQ(broken, expected);
}

TEST(IncrementalTable, CandlesGiveTheTypeOfEachBar) {
  LivingScript script("CSP() = HAMMER");
  for (int i = 0; i < 10; ++i) {
    if (i % 3 == 2) {
      script.bar(10, 10.6, 8, 10.5);  // both ends of the body in the highest third
    } else {
      script.bar(10, 12, 8, 10);
    }
    script.run();
    EXPECT_EQ(script.error, "");
  }
  EXPECT_EQ(script.rows("CSP()"), (Rows{kNull, kNull, 3, 0, 0, 3, 0, 0, 3, 0}));
  EXPECT_EQ(script.run(-1), "9,");
  script.bar(10, 12, 8, 10).bar(10, 10.6, 8, 10.5);
  EXPECT_EQ(script.run(-1), "9,12,");
}

TEST(IncrementalTable, EveryNameOfTheCandlesIsKnown) {
  for (const char* name : {"CSP", "CANDLESTICKPATTERN", "CANDLESTICKS"}) {
    EXPECT_EQ(errorOf(std::string(name) + "()"), "") << name;
    EXPECT_EQ(errorOf(std::string(name) + "(5)"), "") << name;  // it gets brackets of its own
  }
  EXPECT_EQ(errorOf("CLOSE+CSP(5)"), "Error: Inputs are not allowed for  CSP");
}

}  // namespace
}  // namespace brindlewort
