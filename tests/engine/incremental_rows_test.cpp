// Expressions of the incremental way are computed for the rows that can have changed alone. Shown here over
// all kinds of scripts: after every run, all rows are the bits that a full pass gives. The full pass is a
// second engine that is fed with the same calls and made to compute all rows of all expressions at every run;
// functions resume at their slots in both.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/operators.hpp"
#include "functions/script_engine.hpp"
#include "support/function_calls.hpp"
#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::Random;
using testing::sameBits;

constexpr int kSteps = 120;

/// One of the two engines, with bars of its own.
struct Side {
  explicit Side(const std::string& script, std::int32_t entries = 2000) {
    engine.InitialiseTransientStore(entries);
    engine.AddOrRemoveBasicVectorSeries("X", 10);
    prepare(script);
  }
  void prepare(const std::string& script) {
    std::string error;
    ASSERT_TRUE(engine.ProcessScripData(script, error)) << error;
  }
  void append(const Bar& bar) {
    bars.push_back(bar);
    engine.ApplyBarChange(bar, CScriptEngine::kNewBar);
    if (bars.size() == 4) engine.AddOrRemoveBasicVectorSeries("Y", 10);  // shorter than the others
  }
  void edit(const Bar& bar) {
    bars.back() = bar;
    engine.ApplyBarChange(bar, CScriptEngine::kChangedLastBar);
  }
  std::string run() {
    engine.bars.use(bars);
    engine.candleOutputId = 1;
    return engine.RunFast(false, false);
  }
  CScriptEngine engine;
  std::vector<Bar> bars;
};

/// Numbers come from the clock, which may move on between the two engines.
bool isRandom(const std::string& script) {
  return script.find("RND") != std::string::npos;
}

::testing::AssertionResult sameEntries(const VariableStore& expected, const VariableStore& actual) {
  const auto different = [](const std::string& name) {
    return ::testing::AssertionFailure() << "'" << name << "': ";
  };
  if (expected.size() != actual.size()) {
    return ::testing::AssertionFailure()
           << "entries: expected " << expected.size() << ", got " << actual.size();
  }
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const StoreEntry& e = expected[i];
    const StoreEntry& a = actual[i];
    if (e.name != a.name) return different(a.name) << "expected '" << e.name << "'";
    if (e.slot != a.slot) return different(a.name) << "slot " << a.slot << ", expected " << e.slot;
    const auto rows = testing::sameRows(e.values.view(), a.values.view());
    if (!rows) return different(a.name) << rows.message();
    if (!sameBits(e.value, a.value))
      return different(a.name) << "value " << a.value << ", expected " << e.value;
  }
  return ::testing::AssertionSuccess();
}

/// A bar around a price that walks; at times without a range, with zeros or with equal prices in a row.
class BarMaker {
 public:
  explicit BarMaker(std::uint64_t seed) : random_(seed) {}
  Bar next(int day) {
    const int kind = random_.below(12);
    if (kind > 1) level_ += random_.unit() * 4.0 - 2.0;
    const double spread = kind == 2 ? 0.0 : random_.unit() * 2.0;
    Bar bar;
    bar.JDate = 2451544.5 + day;
    bar.OpenPrice = level_ - spread * (random_.unit() - 0.5);
    bar.ClosePrice = level_;
    bar.HighPrice = std::max(bar.OpenPrice, level_) + spread;
    bar.LowPrice = std::min(bar.OpenPrice, level_) - spread;
    bar.Volume = kind == 3 ? 0.0 : random_.below(5000);
    return bar;
  }

 private:
  Random random_;
  double level_ = 50.0;
};

struct Options {
  bool leadingZeros = false;  ///< the first bars hold nothing, so that prices take their level later
  bool hostAhead = false;  ///< the host's series get rows of their own, so that they are longer than the run
};

/// Feeds both engines with the same random calls and compares them after every run.
void expectFullPasses(const std::string& script, std::uint64_t seed, Options options = {}) {
  SCOPED_TRACE("seed " + std::to_string(seed) + ": " + script);
  Side living(script), full(script);
  Random random(seed);
  BarMaker maker(seed);
  const auto both = [&](auto call) {
    call(living);
    call(full);
  };
  int runs = 0;
  for (int step = 0; step < kSteps; ++step) {
    const int day = static_cast<int>(living.bars.size());
    const int kind = random.below(10);
    if (day == 0 || kind < 5) {
      Bar bar = maker.next(day);
      if (options.leadingZeros && day < 15) bar = Bar{bar.JDate};
      both([&](Side& side) { side.append(bar); });
    } else if (kind < 7) {
      const Bar bar = maker.next(day - 1);
      both([&](Side& side) { side.edit(bar); });
    } else {
      // A series of the host: at first zeros, now and then a null.
      const char* name = random.below(2) ? "X" : "Y";
      double value = random.below(step < 30 ? 40 : 3) ? 0.0 : random.unit() * 5.0;
      if (step >= 30 && value == 0.0) value = 1.0 + random.below(4);
      if (random.below(8) == 0) value = NULL_VALUE;
      const std::uint8_t what = options.hostAhead && random.below(3) == 0 ? 11 : 22;
      both([&](Side& side) { side.engine.UpdateBasicVectorData(name, value, what); });
    }
    if (random.below(3) == 0) continue;
    full.engine.forgetRows();
    const std::string expected = full.run();
    ASSERT_EQ(living.run(), expected) << "step " << step;
    ASSERT_EQ(living.engine.outputEntries.size(), full.engine.outputEntries.size()) << "step " << step;
    ASSERT_TRUE(sameEntries(full.engine.variables, living.engine.variables)) << "step " << step;
    ++runs;
  }
  EXPECT_GT(runs, kSteps / 3);
}

std::vector<std::string> scripts() {
  return {
      // operators
      "SET A = CLOSE + OPEN - HIGH * LOW / VOLUME\r\nA",
      "SET A = CLOSE \\ OPEN ^ 2\r\nA",
      "SET A = CLOSE / 0\r\nSET B = A - A\r\nSET C = B > 0\r\nC",
      "SET A = CLOSE > OPEN\r\nSET B = CLOSE < OPEN\r\nSET C = CLOSE >= OPEN\r\nSET D = CLOSE <= OPEN\r\nA",
      "SET A = CLOSE = OPEN\r\nSET B = CLOSE == OPEN\r\nSET C = CLOSE != OPEN\r\nSET D = CLOSE <> OPEN\r\nA",
      "SET A = CLOSE => OPEN\r\nSET B = CLOSE =< OPEN\r\nA XOR B",
      "CLOSE > OPEN AND HIGH > LOW OR VOLUME = 0",
      "NOT CLOSE > OPEN",
      "SET A = NOT 0\r\nSET B = CLOSE NOT 5\r\nSET C = NOT A\r\nC",
      "SET P = CLOSE > OPEN\r\nSET Q = HIGH > 50\r\nSET A = P AND Q\r\nSET B = P OR Q\r\nSET C = P XOR "
      "Q\r\nSET D = P EQV Q\r\nD",
      "SET P = CLOSE > OPEN\r\nSET Q = HIGH > 50\r\nSET A = P && Q\r\nSET B = P || Q\r\nSET C = ! P\r\nSET D "
      "= !Q && P\r\nD",
      "SET A = CLOSE & OPEN\r\nSET B = CLOSE & 7\r\nSET C = 7 & CLOSE\r\nSET D = CLOSE &&OPEN\r\nA + B",
      "SET A = CLOSE | OPEN\r\nSET B = CLOSE + 1 | FOO\r\nSET C = CLOSE IMP OPEN\r\nC",
      // left scalars
      "SET A = 2 * CLOSE\r\nSET B = 1 + CLOSE\r\nSET C = 0 - CLOSE\r\nSET D = -CLOSE\r\nSET E = 5 > "
      "CLOSE\r\nE",
      "SET A = 1 AND CLOSE\r\nSET B = 0 OR CLOSE\r\nSET C = 1 XOR CLOSE\r\nSET D = TRUE EQV CLOSE\r\nA",
      "SET A = 1 + 2 * 3\r\nSET B = 1 AND 0\r\nSET C = (1 + 2) * CLOSE\r\nSET D = PI\r\nB",
      "SET A = 1 + X\r\nSET B = X + 1\r\nSET C = X * Y + CLOSE\r\nC > 3",
      // groups
      "SET A = (CLOSE + OPEN) / 2\r\nSET B = ((CLOSE)) - ((A) + (1))\r\nB",
      "SET A = CLOSE / 1E25\r\nSET B = (A) + 0\r\nSET C = ((A)) * 1E25\r\nC",
      "((CLOSE + 1) * (OPEN - 1)) > ((HIGH) * (LOW))",
      "SET A = ()\r\nSET B = CLOSE + ()\r\nB",
      "SET A = (CLOSE + 1\r\nSET B = CLOSE) + 1\r\nA",
      // names
      "SET A = LAST\r\nSET B = DATE\r\nSET C = DATE - 2451544\r\nSET D = SUM(DATE, 2)\r\nC",
      "CLOSE",
      "SET A = CLOSE\r\nSET A = A + 1\r\nSET A = A * 2\r\nSET B = A\r\nSET A = OPEN\r\nB",
      "SET A = 1\r\nSET B = A + CLOSE\r\nSET A = CLOSE\r\nSET C = A + CLOSE\r\nSET A = 2\r\nC",
      "SET CLOSE = OPEN\r\nSET A = CLOSE + 1\r\nSET B = SMA(CLOSE, 3)\r\nA",
      "SET HIGH = HIGH + 1\r\nHIGH",
      "SET TRUE = CLOSE > OPEN\r\nSET A = TRUE + 1\r\nSET 5 = CLOSE\r\nSET B = 5 + CLOSE\r\nA",
      "SET X = CLOSE\r\nSET Y = X + 1\r\nY",
      "SET SMA = CLOSE\r\nSET A = SMA(SMA, 3)\r\nSET B = SMA + A\r\nB",
      "SET A = CLOSE\r\nSET B = OPEN\r\nSET A + B = HIGH\r\nSET C = A + B\r\nSET D = SUM(A + B, 2)\r\nC",
      // functions in functions
      "SET A = IF(CLOSE > OPEN, HIGH, LOW)\r\nSET B = IF(CLOSE > OPEN, IF(HIGH > 50, 1, 2), IF(LOW > 50, 3, "
      "CLOSE))\r\nA + B",
      "SET A = IF(X > 1, CLOSE + 1, OPEN - 1)\r\nSET B = IF(1, CLOSE, OPEN)\r\nSET C = IF(0, 1, 2)\r\nA",
      "SET A = COUNTIF(CLOSE > OPEN)\r\nSET B = LASTIF(CLOSE > OPEN)\r\nSET C = REPEATIF(CLOSE > "
      "OPEN)\r\nSET D = SUMIF(CLOSE > OPEN, VOLUME)\r\nD - A",
      "SET A = COUNTIF(SMA(CLOSE, 3) > EMA(CLOSE, 5)) + 1\r\nSET B = A / 2\r\nB",
      "SET A = LOOP(CLOSE, VOLUME, 1, 0, ADD)\r\nSET B = LOOP(CLOSE, OPEN, 0, 2, DIVIDE) + 1\r\nSET C = "
      "LOOP(A, B, 2, 1, SUBTRACT)\r\nC > 0",
      "SET A = LOOP(1, CLOSE, 1, 0, MULTIPLY)\r\nSET B = LOOP(CLOSE, 2, 0, 0, MOD)\r\nA + B",
      "SET A = REF(CLOSE, 3) - CLOSE\r\nSET B = REF(CLOSE + OPEN, 1)\r\nSET C = REF(CLOSE, X)\r\nSET D = "
      "REF(A, 2) + C\r\nD",
      "SET A = CROSSOVER(CLOSE, OPEN)\r\nSET B = CROSSOVER(SMA(CLOSE, 3), SMA(CLOSE, 5)) + A\r\nSET C = "
      "CROSSOVER(CLOSE, 50)\r\nB OR C",
      "SET A = TREND(CLOSE, 4)\r\nSET B = TREND(CLOSE, 4) = UP\r\nB",
      "SET A = SUM(CLOSE, 5) - AVERAGE(CLOSE, 5) * 5\r\nSET B = MAX(HIGH, 5) - MIN(LOW, 5)\r\nA + B",
      "SET A = SUM(CLOSE, X)\r\nSET B = MAX(CLOSE, Y)\r\nSET C = A + B\r\nC",
      "SET A = MAXOF(CLOSE, OPEN, 50, X) + 1\r\nSET B = MINOF(A, 51, HIGH)\r\nSET C = 50 + CLOSE\r\nSET D = "
      "CLOSE + 50\r\nA - B",
      "SET A = ROUND(CLOSE, 2) + ROUNDUP(CLOSE, 1) - ROUNDDOWN(OPEN, 3)\r\nSET B = MROUND(CLOSE, 5) > "
      "MROUNDUP(OPEN, 5)\r\nB",
      "SET A = ABS(CLOSE - OPEN) + LOG(CLOSE) * SIN(CLOSE) - EXP(0.5)\r\nA",
      "SET A = DATEPART(0, 4) + DATEDIFF(0, 1, 4)\r\nSET B = DATEPART(X, 5) - DATEPART(2, 6)\r\nA + B",
      // moving averages of every type, and indicators over expressions
      "SET A = SMA(CLOSE, 3) + EMA(CLOSE, 3) + TSMA(CLOSE, 3) + VMA(CLOSE, 3)\r\nSET B = TMA(CLOSE, 3) + "
      "WMA(CLOSE, 3) + WWS(CLOSE, 3) + VIDYA(CLOSE, 3, 0.65)\r\nA > B",
      "SET A = BBT(CLOSE, 5, 2, SIMPLE) - BBB(CLOSE, 5, 2, EXPONENTIAL) + BBM(CLOSE, 5, 2, TIME_SERIES) + "
      "BBT(CLOSE, 5, 2, VARIABLE)\r\nA",
      "SET A = BBT(CLOSE, 5, 2, TRIANGULAR) - BBB(CLOSE, 5, 2, WEIGHTED) + BBM(CLOSE, 5, 2, VIDYA) + "
      "BBT(CLOSE, 5, 2, WILDER)\r\nA",
      "SET A = EMA(SMA(EMA(CLOSE + OPEN, 3), 2) - 1, 4)\r\nSET B = A - REF(A, 1)\r\nB > 0",
      "SET A = RSI(CLOSE, 5) > 50 AND MACD(3, 6, 4, SIMPLE) > MACDS(3, 6, 4, SIMPLE)\r\nA",
      "SET A = VMA(CLOSE, 6) + DPO(CLOSE, 6, SIMPLE) - KCT(6, SIMPLE, 0.5) + CHIKOU(5)\r\nSET B = A + 1\r\nB",
      "SET A = %SWING(1) + %SWINGD(1)\r\nSET B = A - %SWINGPTOP(1, 1)\r\nSET C = PFX(CLOSE, 1, 2) + "
      "PFD(HIGHLOW, 1, 2)\r\nSET D = C > A\r\nD",
      "SET A = HA(CLOSE, 4) + ZLEMA(CLOSE, 4) * AMA(CLOSE, 4, 2, 6) / CAVG(CLOSE)\r\nA > REF(A, 2)",
      "CSP() = HAMMER",
      "COUNTIF(COUNTIF(COUNTIF(COUNTIF(COUNTIF(COUNTIF(CLOSE>OPEN)>0)>1)>1)>2)>3)>4",
      // nests, whose inner parts stand in the script many times over
      "SET A = IF(COUNTIF(LASTIF(COUNTIF(CLOSE > OPEN) > 2) > 1) > 1, SMA(CLOSE, 3), EMA(OPEN, 2))\r\nSET B "
      "= "
      "COUNTIF(SUMIF(COUNTIF(A > CLOSE) > 2, COUNTIF(OPEN > 50)) > 3)\r\nB",
      "SET A = (SMA(CLOSE, 3)) + (SMA(CLOSE, 3)) * (SMA(CLOSE, 3)) - (SMA(CLOSE, 3))\r\nSET B = (SMA(CLOSE, "
      "3)) + "
      "(A)\r\nIF((SMA(CLOSE, 3)) > (A), (SMA(CLOSE, 3)), (A))",
      "SET A = IF(COUNTIF(RBO(CLOSE, 3, SIMPLE) > 0) > 2, RBO(CLOSE, 3, SIMPLE), RBO(OPEN, 2, "
      "WEIGHTED))\r\nSET B = "
      "COUNTIF(COUNTIF(RBO(CLOSE, 3, SIMPLE) > A) > 1)\r\nB",
      "SET A = COUNTIF((SET B = CLOSE > OPEN) > 0)\r\nSET C = IF(B > 0, (SET B = OPEN), B + 1)\r\nSET D = "
      "IF(B > "
      "CLOSE, COUNTIF(B > 3), (SET B = COUNTIF(B > 50)))\r\nB",
      "SET A + 1 = CLOSE\r\nSET A = (A + 1) + (A + 1)\r\nSET A + 1 = (A + 1) + (A + 1) + (A + 1)\r\nIF(A > "
      "5, "
      "COUNTIF(A + 1 > 7), (A + 1))",
      "SET A = COUNTIF(REF(CLOSE, X) > Y) + COUNTIF(COUNTIF(REF(CLOSE, X) > Y) > 2)\r\nA",
      "SET A = SMA(X, 2) + EMA(Y, 2)\r\nSET B = X > Y\r\nSET C = COUNTIF(X > Y)\r\nB AND C",
      // errors that come and go with the data
      "SET A = SUM(CLOSE, X)\r\nSET B = A + 1\r\nB",
      "SET A = CLOSE + 1\r\nSET B = REF(A, X) + DATEPART(Y, 4)\r\nSET C = A + B\r\nC",
      "SET A = CLOSE\r\nSET B = FOO\r\nSET C = OPEN\r\nC",
      "SET A = CLOSE + 1\r\nSET B = BLAH(A)\r\nB",
  };
}

TEST(IncrementalRows, AreTheBitsOfAFullPass) {
  for (const std::string& script : scripts()) {
    for (std::uint64_t seed = 1; seed <= 4; ++seed) expectFullPasses(script, seed);
  }
}

/// Why a third evaluation in a run is left out: it would find everything as the second did. A resumed
/// operation may form its last row anew, once; after that nothing changes.
TEST(IncrementalRows, StayAsTheyAreFromTheSecondRunOverTheSameBarsOn) {
  for (const testing::NamedFunction& function : testing::incrementalFunctions()) {
    if (isRandom(function.name)) continue;
    const std::string script =
        "SET A = " + function.call() + "\r\nSET B = IF(A > CLOSE, A, EMA(OPEN, 3))\r\nB";
    SCOPED_TRACE(script);
    int changes = 0;
    bool computes = false;
    for (std::uint64_t seed = 41; seed < 44; ++seed) {
      Side once(script), twice(script);
      BarMaker maker(seed);
      for (int day = 0; day < kSteps / 2; ++day) {
        Bar bar = maker.next(day);
        if (seed == 43 && day % 7 < 2) bar.ClosePrice = bar.HighPrice = bar.OpenPrice = NULL_VALUE;
        for (Side* side : {&once, &twice}) {
          side->append(bar);
          side->engine.forgetRows();
          side->run();
          side->engine.forgetRows();
          side->run();
        }
        twice.engine.forgetRows();
        twice.run();
        // A name that the dispatcher knows under its short form alone computes nothing.
        computes = computes || once.engine.resultEntry;
        if (sameEntries(once.engine.variables, twice.engine.variables)) continue;
        ++changes;
        if (function.row->settles)
          FAIL() << sameEntries(once.engine.variables, twice.engine.variables).message();
        break;
      }
    }
    if (computes) {
      EXPECT_EQ(changes == 0, function.row->settles);
    }
  }
}

TEST(IncrementalRows, AreTheBitsOfAFullPassWherePricesTakeTheirLevelLater) {
  for (const std::string& script : scripts()) {
    for (std::uint64_t seed = 11; seed <= 12; ++seed) expectFullPasses(script, seed, {.leadingZeros = true});
  }
}

TEST(IncrementalRows, AreTheBitsOfAFullPassWhereTheHostsSeriesAreLongerThanTheRun) {
  for (const std::string& script : scripts()) {
    for (std::uint64_t seed = 14; seed <= 15; ++seed) expectFullPasses(script, seed, {.hostAhead = true});
  }
}

TEST(IncrementalRows, AreTheBitsOfAFullPassOverEveryFunction) {
  for (const testing::NamedFunction& function : testing::incrementalFunctions()) {
    if (isRandom(function.name)) continue;
    const std::string script = "SET A = " + function.call() + "\r\n(A + 1) > 2";
    for (std::uint64_t seed : {21, 22}) expectFullPasses(script, seed);
    expectFullPasses(script, 23, {.leadingZeros = true});
  }
}

TEST(IncrementalRows, AreTheBitsOfAFullPassOverFunctionsOfExpressions) {
  for (const testing::NamedFunction& function : testing::incrementalFunctions()) {
    if (isRandom(function.name)) continue;
    std::string call = function.call();
    if (const std::size_t at = call.find("(CLOSE,"); at != std::string::npos) call.replace(at, 7, "(S + X,");
    const std::string script = "SET S = IF(CLOSE > OPEN, HIGH, CLOSE)\r\nSET A = " + call +
                               " - OPEN\r\nSET B = A * 2 + S\r\nIF(B > A, A, 1)";
    for (std::uint64_t seed : {31, 32}) expectFullPasses(script, seed);
  }
}

/// An expression of random operators and names, without brackets.
std::string randomExpression(Random& random) {
  static const char* const kOperands[] = {"CLOSE", "OPEN",          "X",      "P", "N", "3",
                                          "0",     "SMA(CLOSE, 3)", "(P - 1)"};
  static const char* const kOperators[] = {"+",   "-",   "*", "/",  "^",  "AND", "OR",
                                           "XOR", "EQV", "&", "&&", "||", "NOT"};
  std::string text = kOperands[random.below(9)];
  for (int i = random.below(6); i > 0; --i) {
    text += std::string(" ") + kOperators[random.below(13)] + " " + kOperands[random.below(9)];
  }
  return text;
}

TEST(IncrementalRows, AreTheBitsOfAFullPassOverRandomExpressions) {
  for (std::uint64_t seed = 100; seed < 250; ++seed) {
    Random random(seed);
    std::string script = "SET P = CLOSE > OPEN\r\nSET N = 4\r\n";
    for (int i = 0; i < 5; ++i) {
      const std::string name(1, "ABPNC"[random.below(5)]);
      script += "SET " + name + " = " + randomExpression(random) + "\r\n";
    }
    const Options options = {.leadingZeros = seed % 3 == 0, .hostAhead = seed % 5 == 0};
    expectFullPasses(script + randomExpression(random), seed, options);
  }
}

/// A literal twin: the operators of a chain of names, applied one after the other to whole copies of the
/// series as they stand in the store.
TEST(IncrementalRows, AreWhatTheOperatorsGiveOverWholeCopies) {
  static const char* const kNames[] = {"CLOSE", "OPEN", "X", "S", "7", "HIGH"};
  static const char* const kOperators[] = {"+", "-", "*", "/", "\\", "^", "XOR", "EQV"};
  for (std::uint64_t seed = 300; seed < 400; ++seed) {
    Random random(seed);
    std::vector<std::string> names = {kNames[random.below(6)]}, operators;
    std::string chain = names.front();
    for (int i = 1 + random.below(5); i > 0; --i) {
      operators.push_back(kOperators[random.below(8)]);
      names.push_back(kNames[random.below(6)]);
      chain += " " + operators.back() + " " + names.back();
    }
    Side side("SET S = SMA(CLOSE, 3)\r\nSET A = " + chain + "\r\nA");
    BarMaker maker(seed);
    for (int step = 0; step < 60; ++step) {
      const int day = static_cast<int>(side.bars.size());
      if (day > 0 && random.below(3) == 0) {
        side.edit(maker.next(day - 1));
      } else {
        side.append(maker.next(day));
        side.engine.UpdateBasicVectorData("X", random.below(4), 22);
      }
      if (random.below(3) == 0 || day < 8) continue;
      side.run();
      ASSERT_EQ(side.engine.errorText, "") << chain;
      const auto operand = [&](const std::string& name) {
        if (name == "7") return ScriptVariable{"", 7.0, {}, -1, 0};
        return ScriptVariable(*side.engine.variables.get(name));
      };
      ScriptVariable twin = operand(names.front());
      const Series zeros(side.bars.size(), 0.0);
      for (std::size_t i = 0; i < operators.size(); ++i) {
        apply(*findOperator(operators[i]), twin, operand(names[i + 1]), {zeros, false});
      }
      const double value = parseDouble(FormatFixed(twin.value, 20));  // the statement is a bracket group
      if (twin.values.empty()) twin.values.assign(side.bars.size(), value);
      twin.values.set(twin.values.size() - 1, value);
      ASSERT_TRUE(testing::sameRows(twin.values.view(), side.engine.variables.get("A")->values.view()))
          << chain << ", step " << step;
    }
  }
}

}  // namespace
}  // namespace brindlewort
