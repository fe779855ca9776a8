// Runs that end before their end: their time is over, or another thread has cancelled them. The time is one
// that the tests make.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "functions/script_engine.hpp"
#include "support/series_checks.hpp"
#include "support/ticks.hpp"

namespace brindlewort {
namespace {

using testing::Ticks;

constexpr std::string_view kTimedOut =
    "Error: The script timed out. Please shorten your script and try again.";
constexpr std::uint32_t kLimit = 300'000;

std::vector<Bar> barsOf(int count) {
  const testing::Rows close = testing::makeSeries(testing::Shape::kWalk, count);
  std::vector<Bar> bars;
  for (int i = 0; i < count; ++i) {
    const double price = close[static_cast<std::size_t>(i)];
    bars.push_back({2451544.5 + i, price - 0.5, price + 1.0, price - 1.0, price, 100.0});
  }
  return bars;
}

/// A plain run.
struct PlainRun {
  explicit PlainRun(int count) : bars(barsOf(count)) {}
  std::string operator()(const std::string& script) {
    engine.bars.use(bars);
    return engine.RunScript(script, false, false);
  }
  std::vector<Bar> bars;
  CScriptEngine engine;
};

/// A living engine that has taken its bars.
struct LivingRun {
  LivingRun(const std::string& script, int count) : bars(barsOf(count)) {
    std::string error;
    engine.InitialiseTransientStore(5000);
    for (const Bar& bar : bars) engine.ApplyBarChange(bar, CScriptEngine::kNewBar);
    EXPECT_TRUE(engine.ProcessScripData(script, error));
  }
  std::string operator()() {
    engine.bars.use(bars);
    return engine.RunFast(false, false);
  }
  std::vector<Bar> bars;
  CScriptEngine engine;
};

TEST(RunEnd, FiveMinutesMayPassAndNoMore) {
  PlainRun run(30);
  {
    const Ticks ticks([](int reading) { return reading == 0 ? 7 : 7 + kLimit; });
    EXPECT_EQ(run("CLOSE > 0"), "ALERT");
    EXPECT_GT(Ticks::readings(), 1);
  }
  const Ticks ticks([](int reading) { return reading == 0 ? 7 : 8 + kLimit; });
  EXPECT_EQ(run("CLOSE > 0"), kTimedOut);
  EXPECT_EQ(run.engine.errorText, kTimedOut);
  EXPECT_EQ(run.engine.abortMark, "timeout");
  EXPECT_FALSE(run.engine.wholeHistory);
}

TEST(RunEnd, TheTimeIsCountedAcrossTheEndOfTheCounter) {
  PlainRun run(30);
  const std::uint32_t start = 0xFFFFFFFFu - 1000;
  {
    const Ticks ticks([=](int reading) { return reading == 0 ? start : start + kLimit; });
    EXPECT_EQ(run("CLOSE > 0"), "ALERT");
  }
  const Ticks ticks([=](int reading) { return reading == 0 ? start : start + kLimit + 1; });
  EXPECT_EQ(run("CLOSE > 0"), kTimedOut);
}

TEST(RunEnd, ARunAfterOneThatTookTooLongIsLikeAnyOther) {
  PlainRun run(30);
  {
    const Ticks ticks([](int reading) { return static_cast<std::uint32_t>(reading) * kLimit; });
    EXPECT_EQ(run("SET A = SMA(CLOSE, 3)\r\nA > 0"), kTimedOut);
  }
  EXPECT_EQ(run("SET A = SMA(CLOSE, 3)\r\nA > 0"), "ALERT");
  EXPECT_EQ(run.engine.abortMark, "");
}

/// The windows of these calls are a million steps and more; a run over few bars reads the clock at the entry
/// of evaluations alone, one over many bars inside the loop as well.
TEST(RunEnd, LongLoopsOfThePlainWayAreInterrupted) {
  for (const char* call :
       {"SUM(CLOSE, 900)", "CCI(900, SIMPLE)", "WMA(CLOSE, 900)", "BBT(CLOSE, 900, 2, SIMPLE)",
        "CMO(CLOSE, 900)", "MFI(900)", "VHF(CLOSE, 900)", "AMA(CLOSE, 900, 2, 30)"}) {
    const std::string script = "SET A = " + std::string(call) + "\r\nA > 0";
    int entries = 0;
    {
      PlainRun few(1850);
      const Ticks ticks([](int) { return 0u; });
      EXPECT_EQ(few(script).find("Error"), std::string::npos) << script;
      entries = Ticks::readings();
    }
    PlainRun many(12'000);
    const Ticks ticks([](int) { return 0u; });
    many(script);
    EXPECT_GT(Ticks::readings(), entries) << script;
  }
}

TEST(RunEnd, LongLoopsOfTheIncrementalWayAreInterruptedAndComputedInFullTheNextTime) {
  for (const char* call : {"SUM(CLOSE, 900)", "AVG(CLOSE, 900)", "CCI(900, SIMPLE)", "WMA(CLOSE, 900)",
                           "BBT(CLOSE, 900, 2, WEIGHTED)", "KCT(900, WEIGHTED, 2)", "CMO(CLOSE, 900)",
                           "MFI(900)", "VHF(CLOSE, 900)", "AMA(CLOSE, 900, 2, 30)", "ULTOSC(900, 800, 700)",
                           "SMID(900, 900, 900, 900, WEIGHTED, WEIGHTED)"}) {
    const std::string script = "SET A = IF(CLOSE > 0, " + std::string(call) + ", 1)\r\nA > 0";
    SCOPED_TRACE(script);
    LivingRun undisturbed(script, 12'000), stopped(script, 12'000);
    const std::string text = undisturbed();
    {
      const Ticks ticks([](int reading) { return reading == 0 ? 0u : kLimit + 1; });
      EXPECT_EQ(stopped(), kTimedOut);
      EXPECT_EQ(stopped.engine.abortMark, "timeout");
    }
    EXPECT_EQ(stopped(), text);
    for (const char* name : {"A", "CLOSE"}) {
      EXPECT_TRUE(testing::sameRows(undisturbed.engine.variables.get(name)->values.view(),
                                    stopped.engine.variables.get(name)->values.view()));
    }
  }
}

TEST(RunEnd, ACancelIsOnlyForTheCallThatIsUnderWay) {
  platform::CancelSwitch cancel;
  cancel.cancel();
  EXPECT_FALSE(cancel.isCancelled());
  {
    const platform::CancelSwitch::Call call(cancel);
    EXPECT_FALSE(cancel.isCancelled());
    cancel.cancel();
    {
      const platform::CancelSwitch::Call inner(cancel);
      EXPECT_TRUE(cancel.isCancelled());
    }
    EXPECT_TRUE(cancel.takeCancel());
    EXPECT_FALSE(cancel.takeCancel());
    cancel.cancel();
  }
  EXPECT_FALSE(cancel.isCancelled());
  const platform::CancelSwitch::Call next(cancel);
  EXPECT_FALSE(cancel.isCancelled());
}

TEST(RunEnd, ACancelEndsThePlainRun) {
  PlainRun run(12'000);
  platform::CancelSwitch cancel;
  run.engine.cancelSwitch = &cancel;
  const platform::CancelSwitch::Call call(cancel);
  const auto cancelledAt = [&](int reading) {
    const Ticks ticks([&](int now) {
      if (now == reading) cancel.cancel();
      return 0u;
    });
    return run("SET A = SUM(CLOSE, 900)\r\n1");
  };
  for (int reading : {0, 1, 3})
    EXPECT_EQ(cancelledAt(reading), "Error: The script was cancelled.") << reading;
  EXPECT_EQ(run.engine.abortMark, "cancelled");
  EXPECT_EQ(cancelledAt(-1), "ALERT");
}

TEST(RunEnd, ACancelEndsTheLivingRunAndTheNextOneComputesEverything) {
  const std::string script = "SET A = AVG(CLOSE, 900)\r\nSET B = COUNTIF(A > CLOSE)\r\n1";
  LivingRun undisturbed(script, 12'000), run(script, 12'000);
  undisturbed();
  platform::CancelSwitch cancel;
  run.engine.cancelSwitch = &cancel;
  const platform::CancelSwitch::Call call(cancel);
  {
    const Ticks ticks([&](int) {
      cancel.cancel();
      return 0u;
    });
    EXPECT_EQ(run(), "Error: The script was cancelled.");
  }
  EXPECT_EQ(run(), "ALERT");
  EXPECT_TRUE(testing::sameRows(undisturbed.engine.variables.get("B")->values.view(),
                                run.engine.variables.get("B")->values.view()));
}

/// Each level would double the evaluations of the one inside it, since a condition is evaluated as an
/// argument and once more by its function; what would only repeat itself is left out. That it changes nothing
/// is shown with the rows of the incremental way.
TEST(RunEnd, NestsOfConditionsEnd) {
  const auto evaluationsOf = [](int levels) {
    std::string nest = "CLOSE>OPEN";
    for (int i = 0; i < levels; ++i) nest = "COUNTIF(" + nest + ")>0";
    LivingRun run(nest, 40);
    const Ticks ticks([](int) { return 0u; });
    EXPECT_EQ(run(), "ALERT");
    return Ticks::readings();  // one in 64 evaluations, and the first
  };
  const int few = evaluationsOf(25), many = evaluationsOf(100);
  EXPECT_LT(few, 100);
  EXPECT_LT(many, 20 * few);  // the normaliser's brackets make some levels stand inside several others
}

}  // namespace
}  // namespace brindlewort
