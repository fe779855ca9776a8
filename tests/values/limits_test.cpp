// The least and the greatest number that each counted argument may be, in each way.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "services/output/script_output.hpp"
#include "values/made_bars.hpp"

namespace brindlewort::testing {
namespace {

/// A call whose "?" is the argument with the limits; the nearest texts within them and beyond them.
struct Limit {
  std::string call, within, beyond;
};

constexpr int kBars = 260;  // a number in brackets asks for twice as many bars and two more

std::string errorOf(const std::string& call, bool living) {
  static const Bars bars = walkingBars(kBars);
  CScriptOutput output;
  std::string error;
  output.ScriptError = [&](const std::string& text) { error = text; };
  const std::string script = "SET A = " + call + "\r\n1";
  if (living) {
    output.InitialiseTransientStore(250);
    output.ProcessScripData(script);
  }
  for (int i = 0; i < bars.count(); ++i) {
    const auto volume = static_cast<std::int32_t>(bars.volume[i]);
    if (living) {
      output.AppendRecord_New(bars.date[i], bars.open[i], bars.high[i], bars.low[i], bars.close[i], volume);
    } else {
      output.AppendRecord(bars.date[i], bars.open[i], bars.high[i], bars.low[i], bars.close[i], volume);
    }
  }
  const auto text =
      living ? output.GetScriptOutput_New(script, 0, "") : output.GetScriptOutput(script, 0, "");
  return error.empty() && !text ? "too few bars" : error;
}

std::string filled(std::string call, const std::string& argument) {
  return call.replace(call.find('?'), 1, argument);
}

void expectLimits(const std::vector<Limit>& limits, bool living) {
  for (const Limit& limit : limits) {
    const std::string within = filled(limit.call, limit.within), beyond = filled(limit.call, limit.beyond);
    EXPECT_EQ(errorOf(within, living), "") << within;
    EXPECT_TRUE(errorOf(beyond, living).starts_with("Error: ")) << beyond;
  }
}

std::vector<Limit> limitsOf(const std::vector<std::string>& calls, const char* within, const char* beyond) {
  std::vector<Limit> limits;
  for (const std::string& call : calls) limits.push_back({call, within, beyond});
  return limits;
}

const std::vector<Limit> kTwoOrMore = limitsOf({"TREND(CLOSE, ?)",
                                                "ATR(?)",
                                                "AROONUP(?)",
                                                "AROONDOWN(?)",
                                                "BBT(CLOSE, ?, 2, SIMPLE)",
                                                "CMO(CLOSE, ?)",
                                                "CCI(?, SIMPLE)",
                                                "CMF(?)",
                                                "DPO(CLOSE, ?, SIMPLE)",
                                                "EOM(CLOSE, ?)",
                                                "FCO(?)",
                                                "HVI(CLOSE, ?, 30, 2)",
                                                "HVI(CLOSE, 5, ?, 2)",
                                                "KCT(?, SIMPLE, 1)",
                                                "KIJUN(?)",
                                                "MI(?)",
                                                "MAET(?, SIMPLE, 5)",
                                                "MFI(?)",
                                                "RSI(CLOSE, ?)",
                                                "SUPERT(?, 2)",
                                                "SOPD(?, 3, 4, SIMPLE)",
                                                "SOPD(5, ?, 4, SIMPLE)",
                                                "SOPD(5, 3, ?, SIMPLE)",
                                                "SOPK(?, 3, 4, SIMPLE)",
                                                "SMIK(?, 3, 5, 4, SIMPLE, SIMPLE)",
                                                "SMIK(6, ?, 5, 4, SIMPLE, SIMPLE)",
                                                "SMID(6, 3, 5, ?, SIMPLE, SIMPLE)",
                                                "SPANA(?, 7, 4)",
                                                "SPANA(3, ?, 4)",
                                                "SPANA(3, 7, ?)",
                                                "SPANB(?)",
                                                "TRIX(CLOSE, ?)",
                                                "TENKAN(?)",
                                                "TS(CLOSE, 3, ?)",
                                                "WPR(?)",
                                                "ADX(?)",
                                                "DIP(4, ?)",
                                                "DIN(4, 6, ?)",
                                                "FA(CLOSE, 0.5, ?)"},
                                               "2", "1");
const std::vector<Limit> kOneOrMore = limitsOf(
    {"AMA(CLOSE, ?, 3, 20)",  "AMA(CLOSE, 5, ?, 20)",  "AMA(CLOSE, 5, 3, ?)", "CV(?, 3, SIMPLE)",
     "EMA(CLOSE, ?)",         "FST(CLOSE, ?)",         "HA(CLOSE, ?)",        "MACD(?, 7, 4, SIMPLE)",
     "MACD(3, ?, 4, SIMPLE)", "MACD(3, 7, ?, SIMPLE)", "RUPCOUNT(CLOSE, ?)",  "RDNCOUNT(CLOSE, ?)",
     "SMA(CLOSE, ?)",         "TMA(CLOSE, ?)",         "TSMA(CLOSE, ?)",      "TS(CLOSE, ?, 3)",
     "VMA(CLOSE, ?)",         "VIDYA(CLOSE, ?)",       "VAA(CLOSE, ?)",       "WWS(CLOSE, ?)",
     "WMA(CLOSE, ?)",         "ZLEMA(CLOSE, ?)",       "SUM(CLOSE, ?)",       "AVG(CLOSE, ?)",
     "MAX(CLOSE, ?)",         "VO(3, 6, SIMPLE, ?)",   "PFX(CLOSE, 0.5, ?)",  "SUPERT(5, ?)",
     "ROUND(CLOSE, ?)"},
    "1", "0");
const std::vector<Limit> kOthers = {
    {"SUPERT(5, ?)", "99", "99.01"},
    {"VO(3, 6, SIMPLE, ?)", "2", "3"},
    {"PFX(CLOSE, ?, 3)", "0.005", "0.0049"},
    {"PFX(CLOSE, ?, 3)", "99999.9999", "100000"},
    {"PFX(CLOSE, 0.5, ?)", "99", "100"},
    {"%SWING(?)", "0", "-0.01"},
    {"%SWING(?)", "99.99", "99.991"},
    {"%SWINGD(?)", "99.99", "99.991"},
    {"%SWINGPTOP(?, 1)", "99.99", "99.991"},
    {"%SWINGPBOT(6, ?)", "10", "11"},
    {"FA(CLOSE, ?, 3)", "0.001", "0"},
    {"FA(CLOSE, ?, 3)", "0.999", "1"},
    {"BBT(CLOSE, 5, 2, ?)", "8", "9"},
    {"BBT(CLOSE, 5, 2, ?)", "1", "0"},
    {"DATEPART(0, ?)", "6", "7"},
    {"DATEPART(0, ?)", "1", "0"},
    {"DATEDIFF(0, 1, ?)", "4", "5"},
    {"MROUND(CLOSE, ?)", "0.001", "0"},
};

TEST(Limits, OfTheWholeHistory) {
  expectLimits(kTwoOrMore, false);
  expectLimits(kOneOrMore, false);
  expectLimits(kOthers, false);
  expectLimits(limitsOf({"MO(CLOSE, ?)", "VHF(CLOSE, ?)"}, "2", "1"), false);
}

TEST(Limits, OfTheIncrementalWay) {
  expectLimits(kTwoOrMore, true);
  expectLimits(kOneOrMore, true);
  expectLimits(kOthers, true);
  expectLimits(limitsOf({"AROSC(?)", "CHIKOU(?)"}, "2", "1"), true);
  expectLimits(limitsOf({"MO(CLOSE, ?)", "VHF(CLOSE, ?)", "MACDH(?, 7, 4, SIMPLE)", "MACDH(3, ?, 4, SIMPLE)",
                         "MACDH(3, 7, ?, SIMPLE)", "ULTOSC(?, 5, 6)"},
                        "1", "0"),
               true);
}

}  // namespace
}  // namespace brindlewort::testing
