// Hosts that call from fibers, and from threads with small stacks: scripts end with a result or a text.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "support/all_components.hpp"
#include "support/fiber.hpp"
#include "support/small_stack.hpp"

namespace brindlewort {
namespace {

constexpr std::size_t kKilobyte = 1024;
constexpr char kTooComplex[] = "Error: Script too complex.";

/// Texts that nest in every way that evaluations do: what opens a level, and what closes it.
struct Nest {
  const char* opening;
  const char* closing;
};
constexpr Nest kNests[] = {
    {"(", ")"},
    {"NOT (", ")"},
    {"BLAH(", ")"},
    {"ABS(", ")"},
    {"SMA(", ", 2)"},
    {"SDV(", ", 2, 2, SIMPLE)"},
    {"ROUND(", ", 2)"},
    {"SUM(", ", 2)"},
    {"MAX(1, ", ")"},
    {"MAXOF(OPEN, ", ")"},
    {"IF(CLOSE > 1, OPEN, ", ")"},
    {"IF(1 < ", ", 1, 2)"},
    {"COUNTIF(1 < ", ")"},
    {"LASTIF(1 < ", ")"},
    {"CROSSOVER(", ", OPEN)"},
    {"REF(", ", 1)"},
    {"LOOP(", ", OPEN, 1, 0, ADD)"},
    {"DATEPART(", ", 4)"},
    {"MACD(1, 2, ", ", SIMPLE)"},
};

/// Nests as deep as a script of so many characters can.
std::string nested(const Nest& nest, std::size_t characters) {
  const std::string opening = nest.opening, closing = nest.closing;
  std::string head, tail;
  while (head.size() + tail.size() + opening.size() + closing.size() < characters) {
    head += opening;
    tail += closing;
  }
  return head + "CLOSE" + tail;
}

/// The last that each component says of a script, on each of its ways.
std::vector<std::string> answersTo(const std::string& script, const std::vector<Bar>& bars) {
  std::vector<std::string> said;
  const auto keepLast = [&said](const std::string& text) { said.back() = text; };
  {
    said.emplace_back();
    CScriptOutput output;
    output.OnScriptError(keepLast);
    output.AppendRecords(bars);
    output.GetScriptOutput(script, 0, "");
  }
  {
    said.emplace_back();
    CScriptOutput output;
    output.OnScriptError(keepLast);
    output.InitialiseTransientStore(2000);
    output.ProcessScripData(script);
    for (const Bar& bar : bars) output.AppendRecord_New(bar);
    output.GetScriptOutput_New(script, 0, "");
  }
  for (const bool incremental : {false, true}) {
    said.emplace_back();
    CBacktest backtest;
    backtest.OnScriptError(keepLast);
    backtest.AppendRecords(bars);
    if (incremental) {
      backtest.Backtest_New(script, "", "", "", 0.0, "");
    } else {
      backtest.Backtest(script, "", "", "", 0.0, "");
    }
  }
  for (const bool incremental : {false, true}) {
    said.emplace_back();
    CAlert alert;
    alert.OnScriptError(
        [&](const std::string&, const std::string&, const std::string& text) { keepLast(text); });
    if (incremental) {
      alert.SetAlertScript(script);
      alert.InitialiseTransientStore(2000);
      alert.ProcessScripData(script);
      for (const Bar& bar : bars) alert.AppendRecord_Opt(bar, bar.JDate);
    } else {
      for (const Bar& bar : bars) alert.AppendRecord(bar, bar.JDate);
      alert.Evaluate(script);
    }
  }
  CValidate validation;
  said.push_back(validation.Validate(script));
  return said;
}

/// A script that nests once or twice, and how long one is that is too deep for a small stack: with short
/// names 2,000 characters are enough.
constexpr std::size_t kShallow = 40;
std::size_t lengthOfDeepScript(const Nest& nest) {
  return std::string_view(nest.opening).size() <= 4 && std::string_view(nest.closing).size() == 1 ? 2000
                                                                                                  : 6000;
}

/// Has the answers computed in such surroundings as `run` gives, and compares them with those on the
/// program's own stack: a script that nests a few times says the same, a deep one that it is too complex.
void compare(const std::function<bool(const std::function<void()>&)>& run) {
  const std::vector<Bar> bars = testing::wanderingBars(12);
  for (const Nest& nest : kNests) {
    for (const std::size_t characters : {kShallow, lengthOfDeepScript(nest)}) {
      const std::string script = nested(nest, characters);
      std::vector<std::string> said;
      ASSERT_TRUE(run([&] { said = answersTo(script, bars); })) << "the stack was overrun: " << script;
      if (characters == kShallow) {
        EXPECT_EQ(said, answersTo(script, bars)) << script;
        continue;
      }
      ASSERT_EQ(said.size(), 7u);
      // What is wrong with a text is told before it is run.
      const std::string validation = said.back();
      said.pop_back();
      EXPECT_EQ(said, std::vector<std::string>(6, kTooComplex)) << script;
      EXPECT_TRUE(validation == kTooComplex || validation.starts_with("Error: ")) << validation;
    }
  }
}

// ---- Fibers

#ifdef _WIN32

TEST(Stacks, AFiberOf128KilobytesIsEnough) {
  compare([](const auto& work) { return testing::doneOnFiberOf(128 * kKilobyte, work); });
}

#else

/// The stack that is used from the host's call on. What the test itself has on it counts too.
TEST(Stacks, AFiberIsUsedBy96KilobytesAtMost) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address sanitizer's frames are several times as large";
#endif
  std::size_t most = 0;
  compare([&most](const auto& work) {
    testing::Fiber fiber(128 * kKilobyte);
    const bool done = fiber.run(work);
    most = std::max(most, fiber.used());
    return done;
  });
  EXPECT_LE(most, 96 * kKilobyte);
  EXPECT_GT(most, 64 * kKilobyte) << "no script has nested as deeply as it may";
}

/// However large a fiber's stack is: nobody knows, and none is used by more.
TEST(Stacks, AFiberIsEnoughForNineCallsInsideOneAnother) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address sanitizer's frames are several times as large";
#endif
  const std::vector<Bar> bars = testing::wanderingBars(60);
  for (const Nest& nest : kNests) {
    std::string script = "CLOSE";
    for (int i = 0; i < 9; ++i) script = nest.opening + script + nest.closing;
    std::vector<std::string> said;
    ASSERT_TRUE(testing::doneOnFiberOf(1024 * kKilobyte, [&] { said = answersTo(script, bars); }));
    EXPECT_EQ(said, answersTo(script, bars)) << script;
    for (const std::string& text : said) EXPECT_NE(text, kTooComplex) << script;
  }
}

#endif

// ---- Threads

TEST(Stacks, AThreadOf64KilobytesIsEnough) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address sanitizer's frames are several times as large";
#endif
  compare([](const auto& work) { return testing::doneOnStackOf(64 * kKilobyte, work); });
}

}  // namespace
}  // namespace brindlewort
