// Runs the value cases: each through the script by each of its names, in each way that knows it.

#include <gtest/gtest.h>

#include <cctype>
#include <optional>
#include <set>

#include "functions/function_table.hpp"
#include "services/output/script_output.hpp"
#include "support/time_zone.hpp"
#include "values/made_bars.hpp"
#include "values/value_case.hpp"

namespace brindlewort::testing {

std::vector<ValueCase>& valueCases() {
  static std::vector<ValueCase> cases;
  return cases;
}

namespace {

/// A component that keeps its error.
struct Component {
  Component() {
    output.ScriptError = [this](const std::string& text) { error = text; };
  }
  Rows rows(const std::string& name) const {
    const Series* series = output.findSeries(name);
    return series ? Rows(series->view().begin(), series->view().end()) : Rows{};
  }
  CScriptOutput output;
  std::string error;
};

/// A case under one of its names.
struct NamedCase {
  std::string name;
  const ValueCase* values;
  Uncallable uncallable;

  std::string call() const { return name + "(" + values->arguments + ")"; }
  /// The call as a series, and an expression that reads it, which on the incremental way must follow rows
  /// that are written again. Or the call within the main expression.
  std::string script() const {
    return isSeries() ? "SET A = " + call() + "\r\nSET B = A * 2\r\nB" : call() + values->behind;
  }
  void expectRows(const Rows& expected, const Component& c) const {
    if (!isSeries()) {
      // Over the whole history the pattern, 3, is part of the name.
      const Rows rows = c.rows(call());
      EXPECT_TRUE(sameRows(expected, rows.empty() ? c.rows(name + "(3)") : rows, nearlySame));
      return;
    }
    Rows doubled = expected;
    for (double& x : doubled) x = nz(x) * 2;
    EXPECT_TRUE(sameRows(expected, c.rows("A"), nearlySame));
    EXPECT_TRUE(sameRows(doubled, c.rows("B"), nearlySame)) << "read by an expression";
  }

 private:
  bool isSeries() const { return values->behind.empty(); }
};

std::vector<NamedCase> allCalls() {
  std::vector<NamedCase> calls;
  for (const ValueCase& c : valueCases()) {
    for (const std::string& name : c.names) {
      const auto known = [&](const Uncallable& u) { return u.name == name; };
      const auto at = std::find_if(kUncallable.begin(), kUncallable.end(), known);
      calls.push_back({name, &c, at == kUncallable.end() ? Uncallable{name, false, false} : *at});
    }
  }
  return calls;
}

/// A call that fails says so.
::testing::AssertionResult answers(const Component& c, bool fails) {
  if (c.error.starts_with("Error: ") == fails) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "error: '" << c.error << "'";
}

void expectWhole(const Bars& bars, const NamedCase& values) {
  Component c;
  for (int i = 0; i < bars.count(); ++i)
    c.output.AppendRecord(bars.date[i], bars.open[i], bars.high[i], bars.low[i], bars.close[i],
                          static_cast<std::int32_t>(bars.volume[i]));
  c.output.GetScriptOutput(values.script(), 0, "");
  ASSERT_TRUE(answers(c, values.uncallable.whole));
  if (!values.uncallable.whole) values.expectRows(values.values->whole(withFiller(bars)), c);
}

void append(Component& c, const Bars& bars, int i) {
  c.output.AppendRecord_New(bars.date[i], bars.open[i], bars.high[i], bars.low[i], bars.close[i],
                            static_cast<std::int32_t>(bars.volume[i]));
}
void edit(Component& c, const Bars& bars, int i) {
  c.output.EditRecord_New(bars.date[i], bars.open[i], bars.high[i], bars.low[i], bars.close[i],
                          static_cast<std::int32_t>(bars.volume[i]));
}

/// The first bars at once and the others one by one with a run after each; with edits, each of these first
/// arrives as another bar and is run.
void expectLiving(const Bars& bars, const NamedCase& values, int atOnce, bool edits) {
  const std::string script = values.script();
  Component c;
  c.output.InitialiseTransientStore(250);
  c.output.ProcessScripData(script);
  for (int i = 0; i < bars.count(); ++i) {
    const bool first = i >= atOnce && edits;
    append(c, first ? shaken(bars, i) : bars, i);
    if (first) {
      c.output.GetScriptOutput_New(script, 0, "");
      edit(c, bars, i);
    }
    if (i < atOnce - 1) continue;
    c.output.GetScriptOutput_New(script, 0, "");
    ASSERT_TRUE(answers(c, values.uncallable.living));
  }
  if (!values.uncallable.living) values.expectRows(values.values->living(bars), c);
}

class Values : public ::testing::TestWithParam<NamedCase> {
  const ScopedTimeZone zone_{kUniversalZone};
};

TEST_P(Values, WholeHistory) {
  const NamedCase& c = GetParam();
  if (!c.values->whole) return;
  for (const MadeBars& made : madeBars()) {
    if (made.hasFlatBars && !c.values->bearsFlatBars) continue;
    SCOPED_TRACE(c.call() + ", " + made.what);
    expectWhole(made.bars, c);
  }
}

TEST_P(Values, Incremental) {
  const NamedCase& c = GetParam();
  if (!c.values->living) return;
  for (const MadeBars& made : madeBars()) {
    if (made.hasFlatBars && !c.values->bearsFlatBars) continue;
    SCOPED_TRACE(c.call() + ", " + made.what);
    expectLiving(made.bars, c, made.bars.count(), false);
  }
}

TEST_P(Values, BarByBar) {
  const NamedCase& c = GetParam();
  if (!c.values->living || !c.values->streams) return;
  for (const MadeBars& made : madeBars()) {
    if (made.hasFlatBars && !c.values->bearsFlatBars) continue;
    SCOPED_TRACE(c.call() + ", " + made.what);
    expectLiving(made.bars, c, made.bars.count() - 20, false);
    expectLiving(made.bars, c, made.bars.count() - 20, true);
  }
}

INSTANTIATE_TEST_SUITE_P(Of, Values, ::testing::ValuesIn(allCalls()), [](const auto& info) {
  std::string name = info.param.call() + "_" + std::to_string(info.index);
  for (char& c : name) {
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  }
  return name;
});

// ---- Every name has its case ----------------------------------------------------------------------------

std::set<std::string> namesWithCases(Expected ValueCase::*way) {
  std::set<std::string> names;
  for (const ValueCase& c : valueCases()) {
    if (c.*way) names.insert(c.names.begin(), c.names.end());
  }
  return names;
}

TEST(ValueCases, EveryNameHasOneInEachWayThatKnowsIt) {
  const std::set<std::string> whole = namesWithCases(&ValueCase::whole),
                              living = namesWithCases(&ValueCase::living);
  for (const FunctionRow& row : functionTable()) {
    for (const FunctionName& name : row.names) {
      const std::string text(name.name);
      EXPECT_EQ(whole.count(text), row.path != Path::kIncremental ? 1u : 0u)
          << text << " over the whole history";
      EXPECT_EQ(living.count(text), row.path != Path::kWholeHistory ? 1u : 0u)
          << text << " on the incremental way";
    }
  }
}

/// The names of one way only, so that a row that moves to the other way is noticed.
TEST(ValueCases, ANameWithoutACaseInAWayIsUnknownThere) {
  const std::set<std::string> whole = namesWithCases(&ValueCase::whole),
                              living = namesWithCases(&ValueCase::living);
  const Bars bars = madeBars().front().bars;
  for (const ValueCase& c : valueCases()) {
    for (const std::string& name : c.names) {
      const std::string call = name + "(" + c.arguments + ")";
      if (!whole.count(name)) {
        Component plain;
        for (int i = 0; i < bars.count(); ++i)
          plain.output.AppendRecord(bars.date[i], bars.open[i], bars.high[i], bars.low[i], bars.close[i], 1);
        plain.output.GetScriptOutput(call, 0, "");
        EXPECT_NE(plain.error.find("Undefined "), std::string::npos) << call << ": " << plain.error;
      }
      if (!living.count(name)) {
        Component alive;
        alive.output.InitialiseTransientStore(250);
        alive.output.ProcessScripData(call);
        for (int i = 0; i < bars.count(); ++i) append(alive, bars, i);
        alive.output.GetScriptOutput_New(call, 0, "");
        EXPECT_NE(alive.error.find("Undefined "), std::string::npos) << call << ": " << alive.error;
      }
    }
  }
}

}  // namespace
}  // namespace brindlewort::testing
