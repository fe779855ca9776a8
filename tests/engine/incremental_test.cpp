// The driver and the evaluator of the incremental way.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "functions/script_engine.hpp"
#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::kNull;
using testing::Rows;

/// An engine over bars that close at 1, 2, 3 and so on and open at half of that.
class Living : public CScriptEngine {
 public:
  explicit Living(const std::string& script, int count = 8, std::int32_t entries = 400) {
    InitialiseTransientStore(entries);
    append(count);
    prepare(script);
  }
  Living& append(int count = 1) {
    for (int i = 0; i < count; ++i) {
      Bar bar;
      const double close = static_cast<double>(kept_.size() + 1);
      bar.JDate = 2451543.5 + close;
      bar.OpenPrice = close / 2.0;
      bar.HighPrice = close + 1.0;
      bar.LowPrice = close - 1.0;
      bar.ClosePrice = close;
      bar.Volume = 100.0 * close;
      kept_.push_back(bar);
      EXPECT_EQ(ApplyBarChange(bar, kNewBar), 0);
    }
    return *this;
  }
  Living& edit(double close) {
    kept_.back().ClosePrice = close;
    EXPECT_EQ(ApplyBarChange(kept_.back(), kChangedLastBar), 0);
    return *this;
  }
  bool prepare(const std::string& script) { return ProcessScripData(script, refusal); }
  std::string run(bool rowScan = false, bool dry = false) {
    bars.use(kept_);
    return RunFast(rowScan, dry);
  }
  Rows rows(const std::string& name) const {
    const ScriptVariable* entry = variables.get(name);
    return entry ? Rows(entry->values.view().begin(), entry->values.view().end()) : Rows{};
  }
  std::string refusal;

 private:
  std::vector<Bar> kept_;
};

/// The rows of `SET A = expression` over the usual eight bars.
Rows rowsOf(const std::string& expression) {
  Living engine("SET A = " + expression + "\r\nA");
  engine.run();
  EXPECT_EQ(engine.errorText, "") << expression;
  return engine.rows("A");
}

std::string repeated(const std::string& piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

// ---- preparing ----

TEST(ProcessScripData, KeepsTheStatementsAndTheExpressionNormalised) {
  Living engine("SET A = CLOSE\r\nSET B = A\r\nA > 1");
  EXPECT_EQ(engine.fastSeries, (std::vector<std::string>{"SET A =(CLOSE)", "SET B =(A)"}));
  EXPECT_EQ(engine.preparedScript, "(A) > (1)");
}

TEST(Keys, HoweverManyBlanksStandInACallItsEntriesAreTheSame) {
  const std::string blanks(40, ' '), tabs(40, '\t');
  for (const std::string& script :
       {"SET A = SMA(EMA(CLOSE" + blanks + ", 2)" + blanks + "," + blanks + "3)\r\nIF(A > 1, A, 0)",
        "SET A = SMA(" + blanks + "EMA(" + tabs + "CLOSE" + tabs + ", 2" + tabs + "), 3" + blanks +
            ")\r\nIF(A" + blanks + "> 1" + blanks + ", A" + tabs + ", 0)"}) {
    Living engine(script);
    engine.run();
    const std::size_t entries = engine.variables.size();
    EXPECT_EQ(engine.rows("A"), engine.rows("SMA(EMA(CLOSE,2),3)")) << script;
    EXPECT_EQ(engine.rows("A"), (Rows{kNull, kNull, kNull, 2.5, 3.5, 4.5, 5.5, 6.5})) << script;
    engine.append(2).run();
    EXPECT_EQ(engine.rows("A"), (Rows{kNull, kNull, kNull, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5})) << script;
    EXPECT_EQ(engine.variables.size(), entries) << script;
  }
}

TEST(ProcessScripData, EvaluatesNothing) {
  Living engine("SET A = FOO\r\nBLAH(1)");
  EXPECT_EQ(engine.errorText, "");
  EXPECT_EQ(engine.refusal, "");
  EXPECT_EQ(engine.variables.size(), 5u);
}

TEST(ProcessScripData, RefusesWhatTheDriverRefuses) {
  Living engine("1");
  EXPECT_FALSE(engine.prepare(""));
  EXPECT_EQ(engine.refusal, "Error: Missing script");
  EXPECT_FALSE(engine.prepare(" \t\r\n"));
  EXPECT_EQ(engine.refusal, "Error: Missing script");
  EXPECT_FALSE(engine.prepare("# only a comment"));
  EXPECT_EQ(engine.refusal, "Error: No script!");
  EXPECT_FALSE(engine.prepare(std::string(64'000, '1')));
  EXPECT_EQ(engine.refusal, "Error: Script too large");
  EXPECT_TRUE(engine.prepare(std::string(63'999, '1')));
  EXPECT_EQ(engine.refusal, "");
  EXPECT_EQ(engine.errorText, "");
}

TEST(ProcessScripData, KeepsThePricesThatHaveCome) {
  Living engine("CLOSE");
  EXPECT_EQ(engine.rows("CLOSE"), (Rows{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(ProcessScripData, ReadsTheSourceStatements) {
  Living engine("SET SYMBOL = ABC\r\nSET EXCHANGE = NYSE\r\nCLOSE > 0");
  EXPECT_EQ(engine.symbol, "ABC");
  EXPECT_EQ(engine.exchange, "NYSE");
  EXPECT_TRUE(engine.fastSeries.empty());
  EXPECT_EQ(engine.run(), "ALERT");
}

TEST(ProcessScripData, AFurtherScriptAddsItsStatements) {
  Living engine("SET A = 1\r\nA");
  engine.run();
  engine.prepare("SET B = 2\r\nB > 5");
  EXPECT_EQ(engine.fastSeries, (std::vector<std::string>{"SET A =(1)", "SET B =(2)"}));
  EXPECT_EQ(engine.preparedScript, "(B) > (5)");
  EXPECT_EQ(engine.run(), "");
  EXPECT_EQ(engine.rows("A"), Rows(8, 1.0));
  EXPECT_EQ(engine.rows("B"), Rows(8, 2.0));
}

TEST(ProcessScripData, InModeReplaceTheScriptBeforeIsDropped) {
  Living engine("SET A = SMA(CLOSE, 3)\r\nA");
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  engine.UpdateBasicVectorData("X", 3, 11);
  engine.run();
  ASSERT_NE(engine.variables.get("SMA(CLOSE,3)"), nullptr);
  engine.SetDataRetrieveMode(CScriptEngine::kReplaceScript);
  engine.prepare("SET B = CLOSE\r\nB");
  EXPECT_EQ(engine.fastSeries, (std::vector<std::string>{"SET B =(CLOSE)"}));
  ASSERT_EQ(engine.variables.size(), 6u);  // the prices and the host's series
  EXPECT_EQ(engine.variables[5].name, "X");
  EXPECT_EQ(engine.rows("CLOSE"), (Rows{1, 2, 3, 4, 5, 6, 7, 8}));
  engine.run();
  EXPECT_EQ(engine.rows("B"), engine.rows("CLOSE"));
  EXPECT_EQ(engine.variables.get("A"), nullptr);
}

TEST(ProcessScripData, InModeReplaceARefusedScriptDropsTheOneBeforeToo) {
  Living engine("SET A = CLOSE\r\nA");
  engine.SetDataRetrieveMode(CScriptEngine::kReplaceScript);
  EXPECT_FALSE(engine.prepare("# nothing"));
  EXPECT_TRUE(engine.fastSeries.empty());
  EXPECT_EQ(engine.preparedScript, "");
}

TEST(ProcessScripData, TheModeIs101AtFirst) {
  EXPECT_EQ(CScriptEngine().retrieveMode, 101);
}

// ---- running ----

TEST(RunFast, TheLookbackIsNotDoubled) {
  Living engine("SMA(CLOSE, 10) > 0", 11);
  EXPECT_EQ(engine.run(), kNotEnoughData);
  EXPECT_EQ(engine.errorText, "");
  engine.append();
  EXPECT_EQ(engine.run(), "ALERT");
}

TEST(RunFast, SevenBarsAreTheFewest) {
  Living engine("CLOSE", 6);
  EXPECT_EQ(engine.run(), kNotEnoughData);
  engine.append();
  EXPECT_EQ(engine.run(), "ALERT");
}

TEST(RunFast, BarsFromBeforeThePreparationAreThere) {
  Living engine("SET A = SMA(CLOSE, 2)\r\nA");
  engine.run();
  EXPECT_EQ(engine.rows("A"), (Rows{kNull, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5}));
}

TEST(RunFast, AnyValueButZeroIsAnAlert) {
  EXPECT_EQ(Living("CLOSE > 7").run(), "ALERT");
  EXPECT_EQ(Living("CLOSE > 8").run(), "");
  EXPECT_EQ(Living("0 - CLOSE").run(), "ALERT");
  EXPECT_EQ(Living("0.0001").run(), "ALERT");
}

TEST(RunFast, WithoutAScriptThereIsNoAlert) {
  CScriptEngine engine;
  engine.InitialiseTransientStore(20);
  EXPECT_EQ(engine.RunFast(false, false), "");
  EXPECT_EQ(engine.errorText, "");
}

TEST(RunFast, CoversTheWholeHistory) {
  Living engine("CLOSE");
  engine.run();
  EXPECT_TRUE(engine.wholeHistory);
  EXPECT_EQ(engine.windowLength, 8);
}

TEST(RunFast, AFailedStatementEndsIt) {
  Living engine("SET A = FOO\r\nSET B = CLOSE\r\nBAR");
  EXPECT_EQ(engine.run(), "Error: Undefined variable 'FOO'");
  EXPECT_EQ(engine.variables.get("B"), nullptr);
}

TEST(RunFast, AnUnknownNameIsReportedAtEveryRun) {
  for (const char* script : {"FOO", "SET A = FOO\r\nA", "FOO > 1", "SMA(FOO, 3)", "CLOSE + FOO"}) {
    Living engine(script);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(engine.run(), "Error: Undefined variable 'FOO'") << script << ", run " << i;
      engine.append();
    }
  }
}

TEST(RunFast, TheErrorOfOneRunIsNotThatOfTheNext) {
  // The period is the host's series.
  Living engine("SET A = SUM(CLOSE, X)\r\nA");
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  for (int i = 0; i < 8; ++i) engine.UpdateBasicVectorData("X", 0, 11);
  for (int round = 0; round < 2; ++round) {
    engine.UpdateBasicVectorData("X", 0, 22);
    EXPECT_EQ(engine.run(), "Error: 'SUM' argument should be greater than 1.");
    engine.UpdateBasicVectorData("X", 2, 22);
    EXPECT_EQ(engine.run(), "ALERT");
    EXPECT_EQ(engine.rows("A").back(), 15.0);
  }
}

TEST(RunFast, WhatHasFailedIsComputedInFullAtTheNextGoodRun) {
  // The period is the host's series; the script fails while it is 0.
  Living engine("SET A = 2 * CLOSE - SUM(CLOSE, X)\r\nSET B = A + 1\r\nB");
  engine.AddOrRemoveBasicVectorSeries("X", 20);
  for (int i = 0; i < 8; ++i) engine.UpdateBasicVectorData("X", 2, 11);
  EXPECT_EQ(engine.run(), "ALERT");
  // Twice the close in the last row alone, as the left scalar is not spread; totals of two rows.
  EXPECT_EQ(engine.rows("A"), (Rows{-3, -3, -5, -7, -9, -11, -13, 1}));
  for (int bar = 9; bar <= 10; ++bar) {
    engine.append();
    engine.UpdateBasicVectorData("X", 0, 22);
    EXPECT_EQ(engine.run(), "Error: 'SUM' argument should be greater than 1.");
    EXPECT_EQ(engine.rows("A"), Rows(static_cast<std::size_t>(bar), 0.0));  // of an empty value, 0
  }
  engine.append();
  engine.UpdateBasicVectorData("X", 2, 22);
  EXPECT_EQ(engine.run(), "ALERT");
  EXPECT_EQ(engine.rows("A"), (Rows{-3, -3, -5, -7, -9, -11, -13, -15, -17, -19, 1}));
  EXPECT_EQ(engine.rows("B"), (Rows{-2, -2, -4, -6, -8, -10, -12, -14, -16, -18, 2}));
}

TEST(RunFast, AFailedCallLeavesItsExpressionWithoutRows) {
  Living engine("CLOSE + SUM(CLOSE, X)");
  engine.AddOrRemoveBasicVectorSeries("X", 20);
  for (int i = 0; i < 8; ++i) engine.UpdateBasicVectorData("X", 1, 11);
  engine.run();
  EXPECT_EQ(engine.rows("(CLOSE + SUM(CLOSE,X))"), (Rows{2, 4, 6, 8, 10, 12, 14, 16}));
  engine.UpdateBasicVectorData("X", 0, 22);
  engine.run();
  EXPECT_EQ(engine.rows("(CLOSE + SUM(CLOSE,X))"), Rows());
  engine.UpdateBasicVectorData("X", 1, 22);
  engine.run();
  EXPECT_EQ(engine.rows("(CLOSE + SUM(CLOSE,X))"), (Rows{2, 4, 6, 8, 10, 12, 14, 16}));
}

TEST(RunFast, BehindAnErrorNothingIsComputed) {
  Living engine("FOO + SMA(CLOSE, 2)");
  engine.run();
  EXPECT_EQ(engine.variables.get("SMA(CLOSE,2)"), nullptr);
  Living argument("MAXOF(FOO, SMA(CLOSE, 2))");
  EXPECT_EQ(argument.run(), "Error: Undefined variable 'FOO'");
  EXPECT_EQ(argument.rows("SMA(CLOSE,2)"), Rows());
  EXPECT_EQ(argument.rows("MAXOF(FOO,SMA(CLOSE,2))"), Rows());
}

TEST(RunFast, TheDriversTextsSpeakOfTheLastRunAlone) {
  Living engine("SMA(CLOSE, FOO)");
  EXPECT_EQ(engine.run(), "Error: Undefined variable 'FOO'");
  engine.prepare("CLOSE");
  EXPECT_EQ(engine.run(), "ALERT");
  EXPECT_EQ(engine.errorText, "");
}

TEST(RunFast, TheFunctionThatFailedStaysCurrent) {
  Living engine("SET A = EMA(CLOSE, 0)\r\nSMA(CLOSE, 2)");
  EXPECT_EQ(engine.run(), "Error: 'periods' argument of 'EMA' is invalid.");
  EXPECT_EQ(engine.currentFunction, "EMA");
  EXPECT_EQ(engine.abortMark, "EMA");
}

TEST(RunFast, ARowScanRunsTheSameEvaluation) {
  Living engine("CLOSE > 3", 20);
  EXPECT_EQ(engine.run(true), "ALERT");
  Living failing("FOO", 20);
  EXPECT_EQ(failing.run(true), "Error: Undefined variable 'FOO'");
}

TEST(RunFast, ADryRunNeedsNoBars) {
  Living engine("SMA(CLOSE, 10) > 0", 3);
  engine.run(false, true);
  EXPECT_FALSE(engine.paddedData);
  EXPECT_EQ(engine.windowLength, 3);
}

// ---- operators ----

TEST(EvaluateFast, ALeftScalarIsNotSpread) {
  EXPECT_EQ(rowsOf("2 * CLOSE"), (Rows{0, 0, 0, 0, 0, 0, 0, 16}));
  EXPECT_EQ(rowsOf("1 + CLOSE"), (Rows{1, 2, 3, 4, 5, 6, 7, 9}));
  EXPECT_EQ(rowsOf("CLOSE * 2"), (Rows{2, 4, 6, 8, 10, 12, 14, 16}));
  Living engine("SET A = 2 * CLOSE\r\nA");
  engine.run();
  engine.append().run();
  EXPECT_EQ(engine.rows("A"), (Rows{0, 0, 0, 0, 0, 0, 0, 0, 18}));
}

TEST(EvaluateFast, ThereIsNoPrecedence) {
  EXPECT_EQ(rowsOf("1 + 2 * 3"), (Rows{6, 6, 6, 6, 6, 6, 6, 9}));
  EXPECT_EQ(rowsOf("CLOSE + 2 * 3").back(), 30.0);
  EXPECT_EQ(rowsOf("CLOSE + (2 * 3)").back(), 14.0);
}

TEST(EvaluateFast, AScalarOfAStatementBecomesASeries) {
  EXPECT_EQ(rowsOf("5"), Rows(8, 5.0));
  EXPECT_EQ(rowsOf("PI"), Rows(8, 3.1415927410125732));
}

TEST(EvaluateFast, ANullCountsAsZeroInArithmeticAndStaysANumberInComparisons) {
  EXPECT_EQ(rowsOf("SMA(CLOSE, 3) + 5"), (Rows{5, 5, 7, 8, 9, 10, 11, 12}));
  EXPECT_EQ(rowsOf("SMA(CLOSE, 3) > (0 - 5)"), (Rows{0, 0, 1, 1, 1, 1, 1, 1}));
}

TEST(EvaluateFast, SignsOfTheIncrementalWay) {
  const std::string sets = "SET P = CLOSE > 3\r\nSET Q = CLOSE > 6\r\nSET A = ";
  const auto rows = [&](const std::string& expression) {
    Living engine(sets + expression + "\r\nA");
    engine.run();
    EXPECT_EQ(engine.errorText, "") << expression;
    return engine.rows("A");
  };
  EXPECT_EQ(rows("P && Q"), (Rows{0, 0, 0, 0, 0, 0, 1, 1}));
  EXPECT_EQ(rows("P || Q"), (Rows{0, 0, 0, 1, 1, 1, 1, 1}));
  EXPECT_EQ(rows("! P"), (Rows{1, 1, 1, 0, 0, 0, 0, 0}));
  EXPECT_EQ(rows("!P"), (Rows{1, 1, 1, 0, 0, 0, 0, 0}));
  EXPECT_EQ(rows("P XOR Q"), (Rows{0, 0, 0, 1, 1, 1, 0, 0}));
  EXPECT_EQ(rows("P EQV Q"), (Rows{1, 1, 1, 0, 0, 0, 1, 1}));
  EXPECT_EQ(rows("NOT Q"), (Rows{1, 1, 1, 1, 1, 1, 0, 0}));
}

TEST(EvaluateFast, AnAmpersandTakesTheValueAlone) {
  EXPECT_EQ(rowsOf("CLOSE & 50"), (Rows{1, 2, 3, 4, 5, 6, 7, 50}));
  EXPECT_EQ(rowsOf("CLOSE & OPEN"), (Rows{1, 2, 3, 4, 5, 6, 7, 4}));
  EXPECT_EQ(rowsOf("CLOSE &&50"), (Rows{1, 2, 3, 4, 5, 6, 7, 50}));  // without a blank it is "&" twice
  Living engine("SET A = CLOSE & 50\r\nA");
  engine.run();
  engine.append().run();
  EXPECT_EQ(engine.rows("A"), (Rows{1, 2, 3, 4, 5, 6, 7, 8, 50}));
}

TEST(EvaluateFast, AnOperatorWithoutAHandlerEndsTheExpression) {
  EXPECT_EQ(rowsOf("CLOSE | 50"), (Rows{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(rowsOf("CLOSE IMP FOO"), (Rows{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(EvaluateFast, AGroupsValuePassesThroughATextAndItsEntryDoesNot) {
  Living engine("SET T = CLOSE / 1E25\r\nT");
  engine.run();
  EXPECT_EQ(engine.rows("CLOSE / 1E25").back(), 8.0 / 1E25);
  EXPECT_EQ(engine.rows("T").back(), 0.0);  // 20 decimals show nothing of it
  EXPECT_EQ(engine.rows("T").front(), 1.0 / 1E25);
  engine.append().run();
  EXPECT_EQ(engine.rows("T")[7], 8.0 / 1E25);
  EXPECT_EQ(engine.rows("T")[8], 0.0);
}

TEST(EvaluateFast, DatesAndTheLastPrice) {
  EXPECT_EQ(rowsOf("LAST"), rowsOf("CLOSE"));
  EXPECT_EQ(rowsOf("DATE").front(), 2451544.5);
  EXPECT_EQ(rowsOf("DATE").back(), 2451551.5);
}

TEST(EvaluateFast, TwoStatementsOfOneNameLeaveOneEntry) {
  Living engine("SET A = 1\r\nSET B = A\r\nSET A = CLOSE\r\nB");
  for (int i = 0; i < 3; ++i) {
    engine.run();
    const std::size_t rows = static_cast<std::size_t>(8 + i);
    EXPECT_EQ(engine.rows("B"), Rows(rows, 1.0));
    EXPECT_EQ(engine.rows("A"), engine.rows("CLOSE"));
    engine.append();
  }
  int found = 0;
  for (std::size_t i = 0; i < engine.variables.size(); ++i) found += engine.variables[i].name == "A";
  EXPECT_EQ(found, 1);
}

TEST(EvaluateFast, AStatementMaySetItselfFromItself) {
  // The sum of the run before is overwritten by the first statement of each run.
  Living engine("SET A = CLOSE\r\nSET A = A + A\r\nA");
  for (int i = 0; i < 3; ++i) {
    engine.run();
    EXPECT_EQ(engine.rows("A").front(), 2.0);
    EXPECT_EQ(engine.rows("A").back(), 2.0 * (8 + i));
    engine.append();
  }
}

TEST(EvaluateFast, AVariableHidesTheConstantOfItsName) {
  Living engine("SET TRUE = 0\r\nSET A = TRUE\r\nA");
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(engine.run(), "");
    EXPECT_EQ(engine.rows("A").back(), 0.0);
    engine.append();
  }
}

TEST(EvaluateFast, AStatementWritesTheRowsOfTheRunAlone) {
  // The host is two rows ahead of the bars.
  Living engine("SET X = CLOSE\r\nX");
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  for (int i = 1; i <= 10; ++i) engine.UpdateBasicVectorData("X", 100.0 + i, 11);
  EXPECT_EQ(engine.run(), "ALERT");
  const Rows rows = engine.rows("X");
  ASSERT_EQ(rows.size(), 10u);
  EXPECT_EQ(Rows(rows.begin(), rows.begin() + 8), (Rows{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(rows[8], 109.0);
}

TEST(EvaluateFast, AnEditedBarChangesTheLastRowAlone) {
  Living engine("SET A = CLOSE + OPEN\r\nA");
  engine.run();
  engine.edit(100).run();
  EXPECT_EQ(engine.rows("A"), (Rows{1.5, 3, 4.5, 6, 7.5, 9, 10.5, 104}));
}

TEST(EvaluateFast, CallsThatDifferInBlanksShareOneEntry) {
  Living engine("SET A = SMA(CLOSE,3)\r\nSET B = SMA( CLOSE ,  3 )\r\nSET C = SMA(CLOSE, (3))\r\nA");
  engine.run();
  ASSERT_EQ(engine.errorText, "");
  EXPECT_EQ(engine.rows("A"), engine.rows("B"));
  std::vector<std::string> calls;
  for (std::size_t i = 0; i < engine.variables.size(); ++i) {
    if (engine.variables[i].name.starts_with("SMA(")) calls.push_back(engine.variables[i].name);
  }
  EXPECT_EQ(calls, (std::vector<std::string>{"SMA(CLOSE,3)", "SMA(CLOSE,(3))"}));
}

TEST(EvaluateFast, ACallWithoutArgumentsNeverMeetsAVariableOfItsName) {
  Living engine("SET TR = 5\r\nSET A = TR()\r\nSET B = TR\r\nA");
  engine.run();
  ASSERT_EQ(engine.errorText, "");
  EXPECT_EQ(engine.rows("B"), Rows(8, 5.0));
  EXPECT_EQ(engine.rows("A").back(), 2.0);  // 9 - 7
}

TEST(EvaluateFast, SkipsWhatStandsBehindAnEmptyArgument) {
  EXPECT_EQ(Living("SMA(CLOSE, , FOO)").run(), "Error: 'periods' argument of 'SMA' not optional.");
}

TEST(EvaluateFast, WholeNumbersMayHaveAPoint) {
  EXPECT_EQ(rowsOf("SMA(CLOSE, 2.0)").back(), 7.5);
}

TEST(EvaluateFast, AnUnknownFunctionLeavesTheAbortMark) {
  Living engine("BLAH(5)");
  EXPECT_EQ(engine.run(), "Error: Undefined function 'BLAH'");
  EXPECT_EQ(engine.abortMark, "");
}

TEST(EvaluateFast, TheDateAsAnArgumentGetsAnEntry) {
  Living engine("SET A = SUM(DATE, 1)\r\nA");
  for (int i = 0; i < 3; ++i) {
    engine.run();
    ASSERT_EQ(engine.errorText, "");
    EXPECT_EQ(engine.rows("A"), engine.rows("DATE"));
    EXPECT_EQ(engine.rows("A").back(), 2451551.5 + i);
    engine.append();
  }
}

// ---- limits ----

TEST(IncrementalLimits, AThousandEvaluationsInsideOneAnother) {
  const auto nested = [](int depth) { return repeated("(", depth) + "CLOSE" + repeated(")", depth); };
  Living deep(nested(990), 8, 5000);
  EXPECT_EQ(deep.run(), "ALERT");
  Living tooDeep(nested(1000), 8, 5000);
  EXPECT_EQ(tooDeep.run(), kTooComplex);
  EXPECT_EQ(tooDeep.abortMark, "timeout");
  Living calls(repeated("SUM(", 5000) + "CLOSE" + repeated(",1)", 5000), 8, 50'000);
  EXPECT_EQ(calls.run(), kTooComplex);
}

TEST(IncrementalLimits, MoreEntriesThanReservedEndTheRunAndNothingMoves) {
  for (const char* script :
       {"SET A = CLOSE\r\nSET B = CLOSE + 1\r\nSET C = CLOSE + 2\r\nC", "SMA(CLOSE, 2) + EMA(CLOSE, 3)",
        "MACDS(2, 3, 2, SIMPLE) > 0", "IF(CLOSE > 3, OPEN + 1, HIGH + 2)", "DATEPART(0, 4) + SUM(DATE, 1)",
        "MAXOF(1, 2, 3, 4, 5)"}) {
    Living engine(script, 8, 10);
    const StoreEntry* close = engine.variables.get("CLOSE");
    const double* rows = close->values.data();
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(engine.run(), kTooComplex) << script;
      EXPECT_EQ(engine.errorText, kTooComplex);
      EXPECT_EQ(engine.abortMark, "timeout");
      EXPECT_LE(engine.variables.size(), 10u);
      EXPECT_EQ(engine.variables.get("CLOSE"), close);
      EXPECT_EQ(close->values.data(), rows);
    }
  }
}

TEST(IncrementalLimits, EntriesStayInPlaceWhileScriptsAreAdded) {
  Living engine("SET A = SMA(CLOSE, 2)\r\nA");
  engine.run();
  const StoreEntry* a = engine.variables.get("A");
  const double* rows = a->values.data();
  for (int i = 0; i < 30; ++i) {
    engine.prepare("SET N" + std::to_string(i) + " = EMA(CLOSE, 3) + " + std::to_string(i) + "\r\n1");
    ASSERT_EQ(engine.run(), "ALERT");
  }
  EXPECT_EQ(engine.variables.get("A"), a);
  EXPECT_EQ(a->values.data(), rows);
}

TEST(IncrementalLimits, AScriptThatFitsAfterAllRunsAgain) {
  Living engine("SET A = CLOSE\r\nSET B = CLOSE\r\nSET C = CLOSE\r\n1", 8, 10);
  EXPECT_EQ(engine.run(), kTooComplex);
  engine.SetDataRetrieveMode(CScriptEngine::kReplaceScript);
  engine.prepare("SET A = CLOSE\r\n1");
  EXPECT_EQ(engine.run(), "ALERT");
  EXPECT_EQ(engine.rows("A"), engine.rows("CLOSE"));
}

TEST(IncrementalLimits, AnyBytesAreAText) {
  for (int byte = 0; byte < 256; ++byte) {
    Living engine("CLOSE > " + std::string(3, static_cast<char>(byte)) + "SMA(CLOSE, 3)");
    for (int i = 0; i < 2; ++i) {
      const std::string text = engine.run();
      EXPECT_TRUE(text.empty() || text == "ALERT" || text.starts_with("Error: ")) << byte << " " << text;
      engine.append();
    }
  }
}

}  // namespace
}  // namespace brindlewort
