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
  Rows rows(const char* name) const {
    const Series* series = output.findSeries(name);
    return series ? Rows(series->view().begin(), series->view().end()) : Rows{};
  }
  CScriptOutput output;
  std::string error;
};

constexpr const char* kSeries = "A";
constexpr const char* kNextExpression = "B";

/// The call as a series, and an expression that reads it, which on the incremental way must follow rows that
/// are written again.
std::string scriptOf(const std::string& call) {
  return "SET A = " + call + "\r\nSET B = A * 2\r\nB";
}
Rows doubled(Rows rows) {
  for (double& x : rows) x = nz(x) * 2;
  return rows;
}

void expectWhole(const Bars& bars, const std::string& call, const Expected& expected) {
  Component c;
  for (int i = 0; i < bars.count(); ++i)
    c.output.AppendRecord(bars.date[i], bars.open[i], bars.high[i], bars.low[i], bars.close[i],
                          static_cast<std::int32_t>(bars.volume[i]));
  c.output.GetScriptOutput(scriptOf(call), 0, "");
  ASSERT_EQ(c.error, "");
  const Rows rows = expected(withFiller(bars));
  EXPECT_TRUE(sameRows(rows, c.rows(kSeries), nearlySame));
  EXPECT_TRUE(sameRows(doubled(rows), c.rows(kNextExpression), nearlySame)) << "read by an expression";
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
void expectLiving(const Bars& bars, const std::string& call, const Expected& expected, int atOnce,
                  bool edits) {
  const std::string script = scriptOf(call);
  Component c;
  c.output.InitialiseTransientStore(250);
  c.output.ProcessScripData(script);
  for (int i = 0; i < bars.count(); ++i) {
    if (i >= atOnce && edits) {
      const Bars other = shaken(bars, i);
      append(c, other, i);
      c.output.GetScriptOutput_New(script, 0, "");
      edit(c, bars, i);
    } else {
      append(c, bars, i);
    }
    if (i >= atOnce - 1) c.output.GetScriptOutput_New(script, 0, "");
    ASSERT_EQ(c.error, "");
  }
  const Rows rows = expected(bars);
  EXPECT_TRUE(sameRows(rows, c.rows(kSeries), nearlySame));
  EXPECT_TRUE(sameRows(doubled(rows), c.rows(kNextExpression), nearlySame)) << "read by an expression";
}

struct NamedCase {
  std::string name;
  const ValueCase* values;
  std::string call() const { return name + "(" + values->arguments + ")"; }
};
std::vector<NamedCase> allCalls() {
  std::vector<NamedCase> calls;
  for (const ValueCase& c : valueCases()) {
    for (const std::string& name : c.names) calls.push_back({name, &c});
  }
  return calls;
}

class Values : public ::testing::TestWithParam<NamedCase> {
  const ScopedTimeZone zone_{kUniversalZone};
};

TEST_P(Values, WholeHistory) {
  const NamedCase& c = GetParam();
  if (!c.values->whole) return;
  for (const MadeBars& made : madeBars()) {
    SCOPED_TRACE(c.call() + ", " + made.what);
    expectWhole(made.bars, c.call(), c.values->whole);
  }
}

TEST_P(Values, Incremental) {
  const NamedCase& c = GetParam();
  if (!c.values->living) return;
  for (const MadeBars& made : madeBars()) {
    SCOPED_TRACE(c.call() + ", " + made.what);
    expectLiving(made.bars, c.call(), c.values->living, made.bars.count(), false);
  }
}

TEST_P(Values, BarByBar) {
  const NamedCase& c = GetParam();
  if (!c.values->living || !c.values->streams) return;
  for (const MadeBars& made : madeBars()) {
    SCOPED_TRACE(c.call() + ", " + made.what);
    expectLiving(made.bars, c.call(), c.values->living, made.bars.count() - 20, false);
    expectLiving(made.bars, c.call(), c.values->living, made.bars.count() - 20, true);
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
        EXPECT_NE(plain.error.find("undefined"), std::string::npos) << call << ": " << plain.error;
      }
      if (!living.count(name)) {
        Component alive;
        alive.output.InitialiseTransientStore(250);
        alive.output.ProcessScripData(call);
        for (int i = 0; i < bars.count(); ++i) append(alive, bars, i);
        alive.output.GetScriptOutput_New(call, 0, "");
        EXPECT_NE(alive.error.find("undefined"), std::string::npos) << call << ": " << alive.error;
      }
    }
  }
}

}  // namespace
}  // namespace brindlewort::testing
