// What a hostile script or hostile bars do: a clear text or a defined result.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "functions/script_engine.hpp"
#include "series/text.hpp"
#include "services/output/output_worker.hpp"

namespace brindlewort {
namespace {

std::vector<Bar> bars(int count, double price = 10.0) {
  return std::vector<Bar>(static_cast<std::size_t>(count), Bar{2444300.5, price, price, price, price, 100.0});
}

struct RunOf {
  explicit RunOf(const std::string& script, const std::vector<Bar>& over = bars(60)) {
    engine.bars.use(over);
    text = engine.RunScript(script, false, false);
  }
  CScriptEngine engine;
  std::string text;
};

std::string repeated(const std::string& piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

TEST(Limits, AThousandEvaluationsInsideOneAnotherAreAllowed) {
  // The group of the normaliser and the innermost name are evaluations too.
  const auto nested = [](int depth) { return repeated("(", depth) + "CLOSE" + repeated(")", depth); };
  EXPECT_EQ(RunOf(nested(998)).text, "ALERT");
  const RunOf tooDeep(nested(1000));
  EXPECT_EQ(tooDeep.text, kTooComplex);
  EXPECT_EQ(tooDeep.engine.abortMark, "timeout");
}

TEST(Limits, ThirtyThousandNestedBracketsEndWithAText) {
  EXPECT_EQ(RunOf(repeated("(", 30'000) + "CLOSE" + repeated(")", 30'000)).text, kTooComplex);
  EXPECT_EQ(RunOf(repeated("(", 63'999)).text, kTooComplex);
}

TEST(Limits, AnAbortedRunKeepsItsTextWhateverTheOuterCallsReport) {
  EXPECT_EQ(RunOf(repeated("BLAH(", 5'000) + "CLOSE" + repeated(")", 5'000)).text, kTooComplex);
  EXPECT_EQ(RunOf(repeated("SUM(", 5'000) + "CLOSE" + repeated(")", 5'000)).text, kTooComplex);
}

TEST(Limits, CommasAlone) {
  EXPECT_TRUE(RunOf(repeated(",", 63'999)).text.starts_with("Error: Undefined variable"));
  EXPECT_EQ(RunOf("SMA(" + repeated(",", 60'000) + ")").text,
            "Error: 'periods' argument of 'SMA' not optional.");
  EXPECT_EQ(RunOf(repeated(",", 100'000)).text, "Error: Script too large");
}

TEST(Limits, ManyArgumentsAreReadOnce) {
  // The numbers are no periods above 9,999; the eleventh argument is never looked at.
  EXPECT_EQ(RunOf("MAXOF(" + repeated("10000,", 10'000) + "1)").text,
            "Error: 'Number of' argument of 'MAXOF' is invalid.");
}

TEST(Limits, EveryByteValueIsText) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string script = "CLOSE > " + std::string(3, static_cast<char>(byte)) + "SMA(CLOSE, 3)";
    const RunOf run(script);
    EXPECT_TRUE(run.text.empty() || run.text == "ALERT" || run.text.starts_with("Error: "))
        << byte << " " << run.text;
  }
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_TRUE(RunOf(all).text.starts_with("Error: "));
}

TEST(Limits, FewBars) {
  for (int count : {0, 1, 2, 6}) EXPECT_EQ(RunOf("CLOSE", bars(count)).text, kNotEnoughData) << count;
  EXPECT_EQ(RunOf("CLOSE", bars(7)).text, "ALERT");
}

TEST(Limits, PricesThatAreNoNumbers) {
  for (double price : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                       -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::max()}) {
    const std::string text =
        RunOf("SET A = SMA(CLOSE, 5)\r\nSET B = PNO(CLOSE)\r\nRSI(CLOSE, 5) > A + B", bars(60, price)).text;
    EXPECT_TRUE(text.empty() || text == "ALERT") << text;
  }
}

TEST(Limits, TheStoreTakesFiveHundredAndOneNames) {
  // Five price variables; each SET statement makes two entries: its expression and its name. The literal's
  // own entry is shared. So the store passes 500 within the 248th statement.
  const auto script = [](int statements) {
    std::string text;
    for (int i = 0; i < statements; ++i)
      text += "SET A" + std::to_string(i) + " = " + std::to_string(i) + ".5\r\n";
    return text + "1";
  };
  EXPECT_EQ(RunOf(script(100)).text, "ALERT");
  const RunOf full(script(600));
  EXPECT_EQ(full.text, kTooComplex);
  EXPECT_EQ(full.engine.abortMark, "timeout");
  EXPECT_GT(full.engine.variables.size(), 500u);
}

TEST(Limits, RememberRefusesTheNameBehindThe501st) {
  CScriptEngine engine;
  const std::vector<Bar> some = bars(10);
  engine.bars.use(some);
  engine.wholeHistory = true;
  ASSERT_TRUE(engine.BuildPriceFields(9));
  for (int i = 0; engine.variables.size() < 501; ++i) {
    ASSERT_NE(engine.RememberVariable("N" + std::to_string(i), {}), -1) << engine.variables.size();
  }
  EXPECT_EQ(engine.errorText, "");
  EXPECT_EQ(engine.RememberVariable("ONE_MORE", {}), -1);
  EXPECT_EQ(engine.errorText, kTooComplex);
  EXPECT_EQ(engine.abortMark, "timeout");
}

TEST(Limits, TheRowsOfAllResultsHaveALimit) {
  const auto textWith = [](std::uint64_t rows) {
    const std::vector<Bar> some = bars(61);
    CScriptEngine engine;
    engine.bars.use(some);
    engine.mostRowsHeld = rows;
    return engine.RunScript("SET A = SMA(CLOSE, 3)\r\nSET B = EMA(CLOSE, 3) + 1\r\nSET C = A + B\r\nC > 1",
                            false, false);
  };
  // A, the average in B, B's sum and C's: four series when the last statement begins.
  EXPECT_EQ(textWith(4 * 60), "ALERT");
  EXPECT_EQ(textWith(4 * 60 - 1), kTooComplex);
}

TEST(Limits, TextsHaveALongestLength) {
  const std::vector<Bar> some = bars(60);
  const auto textUpTo = [&](std::size_t longest) {
    CScriptEngine engine;
    engine.bars.use(some);
    return outputText(engine, "SET A = CLOSE", 3, "", longest);
  };
  const std::size_t size = textUpTo(kLongestText).size();
  EXPECT_GT(size, 58u * 12u);
  EXPECT_EQ(textUpTo(size), textUpTo(kLongestText));
  EXPECT_EQ(textUpTo(size - 1), kTooComplex);

  CScriptEngine living;
  living.InitialiseTransientStore(0);
  for (const Bar& bar : some) living.ApplyBarChange(bar, CScriptEngine::kNewBar);
  std::string error;
  ASSERT_TRUE(living.ProcessScripData("SET A = CLOSE\r\nA", error));
  living.bars.use(some);
  const std::size_t livingSize = preparedOutputText(living, "A", 0, "").size();
  EXPECT_GT(livingSize, 60u * 12u);
  EXPECT_EQ(preparedOutputText(living, "A", 0, "", livingSize).size(), livingSize);
  EXPECT_EQ(preparedOutputText(living, "A", 0, "", livingSize - 1), kTooComplex);
}

}  // namespace
}  // namespace brindlewort
