#include "functions/function_table.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "functions/script_engine.hpp"
#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

/// A run over made-up bars.
struct RunOf {
  explicit RunOf(const std::string& script, int rows = 80) {
    const testing::PriceRows prices = testing::makePrices(testing::Shape::kWalk, rows);
    for (int i = 0; i < rows; ++i) {
      const std::size_t r = static_cast<std::size_t>(i);
      bars.push_back(
          {2444300.5 + i, prices.open[r], prices.high[r], prices.low[r], prices.close[r], prices.volume[r]});
    }
    engine.bars.use(bars);
    text = engine.RunScript(script, false, false);
  }
  View rows(const std::string& name) { return engine.variables.get(name)->values.view(); }
  std::vector<Bar> bars;
  CScriptEngine engine;
  std::string text;
};

TEST(FunctionTable, EveryNameStandsOncePerWay) {
  for (Path path : {Path::kWholeHistory, Path::kIncremental}) {
    std::set<std::string_view> seen;
    for (const FunctionRow& row : functionTable()) {
      if (row.path != Path::kBoth && row.path != path) continue;
      for (const FunctionName& name : row.names) {
        EXPECT_TRUE(seen.insert(name.name).second) << name.name;
        EXPECT_EQ(findFunction(name.name, path).row, &row);
      }
    }
  }
}

TEST(FunctionTable, EveryRowOfTheWholeHistoryHasAnOperation) {
  for (const FunctionRow& row : functionTable()) {
    if (row.path == Path::kIncremental) continue;
    EXPECT_TRUE(row.batch || row.scalar || row.handler) << row.names.front().name;
    EXPECT_LT(row.slots.size(), kMaxSlots) << row.names.front().name;
  }
}

TEST(FunctionTable, NamesOfOneWayOnly) {
  EXPECT_NE(findFunction("TRSUM", Path::kWholeHistory).row, nullptr);
  EXPECT_EQ(findFunction("TRSUM", Path::kIncremental).row, nullptr);
  for (const char* name :
       {"AROSC", "COMPOSITE", "CHIKOU", "FCHL", "FCHH", "HLB", "HLBUP", "HLBDN", "MACDH", "SPREAD", "ULTOSC"}) {
    EXPECT_EQ(findFunction(name, Path::kWholeHistory).row, nullptr) << name;
    EXPECT_NE(findFunction(name, Path::kIncremental).row, nullptr) << name;
  }
}

TEST(FunctionTable, MomentumAndFilterTakeAPeriodOfOneIncrementallyOnly) {
  for (const char* name : {"MO", "VHF"}) {
    const FunctionRow& row = *findFunction(name, Path::kIncremental).row;
    EXPECT_EQ(row.slots[1].low, 2.0) << name;
    EXPECT_EQ(row.incrementalSlots[1].low, 1.0) << name;
  }
}

TEST(FunctionTable, TheThirdArgumentOfTheStochasticMomentumHasNoEffect) {
  RunOf run("SET A = SMIK(6, 3, 9, 4, SIMPLE, SIMPLE)\r\nSET B = SMIK(6, 3, 3, 4, SIMPLE, SIMPLE)\r\nA");
  ASSERT_EQ(run.engine.errorText, "");
  EXPECT_TRUE(testing::sameRows(run.rows("B"), run.rows("A")));
}

TEST(FunctionTable, AnIchimokuPeriodAbove9999IsTakenInSpiteOfTheMessage) {
  EXPECT_EQ(RunOf("SET A = KIJUN(10050)\r\n1", 10'100).text, "ALERT");
  EXPECT_EQ(RunOf("SET A = KIJUN(10100)\r\n1", 10'100).text, "Error: 'KIJUN' value should be between 2 to 9999");
}

TEST(FunctionTable, ASumOfTrueRangesAnswersHere) { EXPECT_EQ(RunOf("TRSUM(5)").text, "ALERT"); }

TEST(FunctionTable, LongAndShortNamesAreEqual) {
  RunOf run("SET A = RSI(CLOSE, 5)\r\nSET B = RELATIVESTRENGTHINDEX(CLOSE, 5)\r\nA");
  EXPECT_TRUE(testing::sameRows(run.rows("A"), run.rows("B")));
}

TEST(Dispatcher, CallsThatDifferInBlanksShareOneKey) {
  RunOf run("SET A = SMA(CLOSE,5)\r\nSET B = SMA( CLOSE, 5 )\r\nA");
  ASSERT_EQ(run.engine.errorText, "");
  EXPECT_EQ(run.engine.outputNames, (std::vector<std::string>{"SMA( CLOSE, 5 )", "A", "B"}));
}

TEST(Dispatcher, AWholePeriodMayBeWrittenWithAPoint) { EXPECT_EQ(RunOf("SMA(CLOSE, 5.0)").text, "ALERT"); }

TEST(Dispatcher, ArgumentsBehindAnEmptyOneAreNotSeen) {
  // FOO is never evaluated, and the period is missing.
  EXPECT_EQ(RunOf("SMA(CLOSE, , FOO)").text, "Error: 'periods' argument of 'SMA' not optional.");
}

TEST(Dispatcher, AnUnknownNameLeavesTheAbortMark) {
  RunOf run("BLAH(5)");
  EXPECT_EQ(run.text, "Error: Undefined function 'BLAH'");
  EXPECT_EQ(run.engine.abortMark, "");
}

TEST(Dispatcher, TooFewArgumentsWithoutAFunctionName) {
  CScriptEngine engine;
  engine.NthArgument("A", 1, 2);
  EXPECT_EQ(engine.errorText, "Error: Argument not optional");
}

TEST(Candlesticks, WithoutRowsTheTypeOfTheNewestCandleIsTheValue) {
  // No output is asked for, so the pattern function answers with a value alone: a doji, and it is no long body.
  std::vector<Bar> bars(30, Bar{2444300.5, 10, 11, 9, 10, 100});
  for (std::size_t i = 0; i < bars.size(); ++i) bars[i].HighPrice += static_cast<double>(i % 3) * 0.1;
  CScriptEngine engine;
  engine.bars.use(bars);
  EXPECT_EQ(engine.RunScript("CSP() = DOJI", false, false), "ALERT");
  EXPECT_EQ(engine.candlePattern, 2);
  EXPECT_EQ(engine.RunScript("CSP() = LONG_BODY", false, false), "");
}

}  // namespace
}  // namespace brindlewort
