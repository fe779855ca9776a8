#include "shell/help/script_help.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>
#include <vector>

#include "functions/script_engine.hpp"
#include "shell/help/help_texts.hpp"

namespace brindlewort {
namespace {

constexpr int kTitle = 100;

struct Entry {
  int id;
  std::vector<std::string> names;
  std::string firstLine;
};

/// Every entry about functions, as hosts know them.
const std::vector<Entry> kEntries = {
    {107, {"IF"}, "IF(Condition, True part, False part)"},
    {108, {"LOOP"}, "LOOP(Vector1, Vector2, Offset1, Offset2, Operator)"},
    {109, {"COUNTIF"}, "COUNTIF(Condition)"},
    {110, {"LASTIF"}, "LASTIF(Condtion)"},
    {111, {"SUMIF"}, "SUMIF(Condtion, Vector)"},
    {112, {"SUM"}, "SUM(Vector, Periods)"},
    {113, {"AVG", "AVERAGE"}, "AVERAGE(Vector, Periods)"},
    {114, {"MAX"}, "MAX(Vector, Periods)"},
    {115, {"MIN"}, "MIN(Vector, Periods)"},
    {116, {"MAXOF"}, "MAXOF(Vector1, Vector2, [Vector3]...[Vector8])"},
    {117, {"MINOF"}, "MINOF(Vector1, Vector2, [Vector3]...[Vector8])"},
    {118, {"REF", "%SwingPTop", "%SwingPBot", "%SwingD"}, "REF(Vector, Periods)"},
    {119, {"TREND"}, "TREND(Vector)"},
    {120, {"CROSSOVER"}, "CROSSOVER(Vector1, Vector2)"},
    {121, {"ABS"}, "ABS(Number)"},
    {122, {"SIN"}, "SIN(Number)"},
    {123, {"COS"}, "COS(Number)"},
    {124, {"TAN"}, "TAN(Number)"},
    {125, {"ATN"}, "ATN(Number)"},
    {126, {"EXP"}, "EXP(Number)"},
    {127, {"LOG"}, "LOG(Number)"},
    {128, {"LOG10"}, "LOG10(Number)"},
    {129, {"RND"}, "RND(Number)"},
    {130, {"SIMPLEMOVINGAVERAGE", "SMA"}, "SimpleMovingAverage(Vector, Periods)"},
    {131, {"EXPONENTIALMOVINGAVERAGE", "EMA"}, "ExponentialMovingAverage(Vector, Periods)"},
    {132, {"TIMESERIESMOVINGAVERAGE", "TSMA"}, "TimeSeriesMovingAverage(Vector, Periods)"},
    {133, {"VARIABLEMOVINGAVERAGE", "VMA"}, "VariableMovingAverage(Vector, Periods)"},
    {134, {"TRIANGULARMOVINGAVERAGE", "TMA"}, "TriangularMovingAverage(Vector, Periods)"},
    {135, {"WEIGHTEDMOVINGAVERAGE", "WMA"}, "WeightedMovingAverage(Vector, Periods)"},
    {136, {"WELLESWILDERSMOOTHING", "WWS"}, "WellesWilderSmoothing(Vector, Periods)"},
    {137, {"VIDYA"}, "VIDYA(Vector, Periods, R2Scale)"},
    {138, {"RSQUARED", "R2"}, "RSquared(Vector, Periods)"},
    {139, {"SLOPE"}, "Slope(Vector, Periods)"},
    {140, {"FORECAST"}, "Forecast(Vector, Periods)"},
    {141, {"INTERCEPT"}, "Intercept(Vector, Periods)"},
    {142,
     {"BOLLINGERBANDSTOP", "BBT", "BOLLINGERBANDSBOTTOM", "BBB", "BOLLINGERBANDSMIDDLE", "BBM"},
     "BollingerBandsTop(Vector, Periods, Standard Deviations, MA Type)"},
    {143,
     {"MOVINGAVERAGEENVELOPETOP", "MOVINGAVERAGEENVELOPEBOTTOM", "MAET", "MAEB"},
     "MovingAverageEnvelopeTop(Periods, MA Type, Shift)"},
    {144, {"PRIMENUMBERBANDSTOP", "PRIMENUMBERBANDSBOTTOM", "PNBT", "PNBB"}, "PrimeNumberBandsTop()"},
    {145, {"MOMENTUMOSCILLATOR", "MO"}, "MomentumOscillator(Vector, Periods)"},
    {146, {"CHANDEMOMENTUMOSCILLATOR", "CMO"}, "ChandeMomentumOscillator(Vector, Periods)"},
    {147,
     {"VOLUMEOSCILLATOR", "VO"},
     "VolumeOscillator(Short Term Periods, Long Term Periods, MA Type, Points or Percent)"},
    {148,
     {"PRICEOSCILLATOR", "PO"},
     "PriceOscillator(Vector, Short Term Periods, Long Term Periods, MA Type)"},
    {149, {"DETRENDEDPRICEOSCILLATOR", "DPO"}, "DetrendedPriceOscillator(Vector, Periods, MA Type)"},
    {150, {"PRIMENUMBEROSCILLATOR", "PNO"}, "PrimeNumberOscillator(Vector)"},
    {151, {"FRACTALCHAOSOSCILLATOR", "FCO"}, "FractalChaosOscillator(Periods)"},
    {152, {"RAINBOWOSCILLATOR", "RBO"}, "RainbowOscillator(Vector, Levels, MA Type)"},
    {153, {"TRIX"}, "TRIX(Vector, Periods)"},
    {154, {"VERTICALHORIZONTALFILTER", "VHF"}, "VerticalHorizontalFilter(Vector, Periods)"},
    {155, {"EASEOFMOVEMENT", "EOM"}, "EaseOfMovement(Vector, Periods)"},
    {156,
     {"ADX", "ADXR", "DIP", "DIN", "TRSUM", "DX"},
     "ADX(Periods), ADXR(Periods), DIP(Periods), DIN(Periods), TRSUM(Periods), DX(Periods)"},
    {157, {"TRUERANGE", "TR"}, "TrueRange()"},
    {158, {"WILLIAMSPCTR", "WPR"}, "WilliamsPctR(Periods)"},
    {159, {"WILLIAMSACCUMULATIONDISTRIBUTION", "WAD"}, "WilliamsAccumulationDistribution()"},
    {160, {"CHAIKINVOLATILITY", "CV"}, "ChaikinVolatility(Periods, Rate of Change, MA Type)"},
    {161, {"AROONUP", "AROONDOWN"}, "AroonUp(Periods)"},
    {162, {"MACD", "MACDSIGNAL"}, "MACD(Short Cycle, Long Cycle, Signal Periods, MA Type)"},
    {163, {"HIGHMINUSLOW", "HML"}, "HighMinusLow()"},
    {164, {"SOPK", "SOPD"}, "SOPK(%K Periods, %K Slowing Periods, %D Periods, MA Type)"},
    {165, {"RELATIVESTRENGTHINDEX", "RSI"}, "RelativeStrengthIndex(Vector, Periods)"},
    {166, {"MASSINDEX", "MI"}, "MassIndex(Periods)"},
    {167,
     {"HISTORICALVOLATILITYINDEX", "HVI"},
     "HistoricalVolatilityIndex(Vector, Periods, Bar History, Standard Deviations)"},
    {168, {"MONEYFLOWINDEX", "MFI"}, "MoneyFlowIndex(Periods)"},
    {169, {"CHAIKINMONEYFLOW", "CMF"}, "ChaikinMoneyFlow (Periods)"},
    {170, {"COMPARATIVERELATIVESTRENGTH", "CRSI"}, "ComparativeRelativeStrength(Vector1, Vector2)"},
    {171, {"PRICEVOLUMETREND", "PVT"}, "PriceVolumeTrend(Vector)"},
    {172, {"POSITIVEVOLUMEINDEX", "PVI"}, "PositiveVolumeIndex(Vector)"},
    {173, {"NEGATIVEVOLUMEINDEX", "NVI"}, "NegativeVolumeIndex(Vector)"},
    {174, {"ONBALANCEVOLUME", "OBV"}, "OnBalanceVolume(Vector)"},
    {175, {"PERFORMANCEINDEX", "PFI"}, "PerformanceIndex(Vector)"},
    {176, {"TRADEVOLUMEINDEX", "TVI"}, "TradeVolumeIndex(Vector, Minimum Tick Value)"},
    {177, {"SWINGINDEX", "SI"}, "SwingIndex(Limit Move Value)"},
    {178, {"ACCUMULATIVESWINGINDEX", "ASI"}, "AccumulativeSwingIndex(Limit Move Value)"},
    {179, {"COMMODITYCHANNELINDEX", "CCI"}, "CommodityChannelIndex(Periods, MA Type)"},
    {180, {"PARABOLICSAR", "PSAR"}, "ParabolicSAR(Min AF, Max AF)"},
    {181,
     {"SMIK", "SMID"},
     "SMIK(%K Periods, %K Smooth, %K Double Periods, %D Periods, MA Type, %D MA Type)"},
    {182, {"MEDIANPRICE", "MP"}, "MEDIANPRICE()"},
    {183, {"TYPICALPRICE", "TP"}, "TypicalPrice()"},
    {184, {"WEIGHTEDCLOSE", "WC"}, "WeightedClose()"},
    {185, {"PRICERATEOFCHANGE", "PROC"}, "PriceRateOfChange(Vector, Periods)"},
    {186, {"VOLUMERATEOFCHANGE", "VROC"}, "VolumeRateOfChange(Vector, Periods)"},
    {187, {"HIGHESTHIGHVALUE", "HHV"}, "HighestHighValue(Periods)"},
    {188, {"LOWESTLOWVALUE", "LLV"}, "LowestLowValue(Periods)"},
    {189, {"STANDARDDEVIATIONS", "SDV"}, "StandardDeviations(Vector, Periods, Standard Deviations, MA Type)"},
    {190, {"CORRELATIONANALYSIS", "CA"}, "CorrelationAnalysis(Vector1, Vector2)"},
    {191, {"CANDLESTICKPATTERN", "CSP"}, "CandlestickPattern()"},
    {192,
     {"SECTOR", "INDUSTRY"},
     "Sector and industry constants may be used as a filter to limit your scans to a specific se"},
    {193, {"REPEATIF"}, "REPEATIF(Condtion)"},
};

std::string inLowerCase(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  for (std::size_t end; (end = text.find('\n')) != std::string_view::npos; text.remove_prefix(end + 1)) {
    lines.push_back(text.substr(0, end));
  }
  lines.push_back(text);
  return lines;
}

TEST(ScriptHelp, TheTableHasTheTitleAndOneEntryForEachOfTheOthers) {
  std::vector<int> expected = {kTitle};
  for (const Entry& entry : kEntries) expected.push_back(entry.id);
  std::vector<int> ids;
  for (const HelpText& help : helpTexts()) ids.push_back(help.id);
  EXPECT_EQ(ids, expected);
  EXPECT_EQ(helpText(kTitle), "Brindlewort");
}

TEST(ScriptHelp, AnEntryBeginsWithItsCallForm) {
  for (const Entry& entry : kEntries) {
    EXPECT_EQ(linesOf(helpText(entry.id)).front(), entry.firstLine) << entry.id;
  }
}

TEST(ScriptHelp, EveryNameLeadsToItsEntryInAnyCase) {
  std::size_t names = 0;
  for (const Entry& entry : kEntries) {
    const std::string_view text = helpText(entry.id);
    for (const std::string& name : entry.names) {
      ++names;
      EXPECT_EQ(helpId(name), entry.id) << name;
      EXPECT_EQ(helpId(inLowerCase(name)), entry.id) << name;
      EXPECT_EQ(scriptHelp(name), text) << name;
      EXPECT_EQ(manualPage(name), name.starts_with("%") ? "" : text) << name;
    }
  }
  EXPECT_EQ(helpNames().size(), names) << "there are names that lead to no entry of the list above";
}

TEST(ScriptHelp, NamesAreComparedAsAWhole) {
  EXPECT_EQ(helpId("AVERAGE"), 113);
  EXPECT_EQ(helpId("SMA"), 130);
  EXPECT_EQ(helpId("sMa"), 130);
  EXPECT_EQ(helpId("%SwingPTop"), 118);
  EXPECT_EQ(helpId("%SWINGPTOP"), 118);
  for (const char* name : {"SM", "SMAX", " SMA", "SMA ", "SMA(", "MACDS", "FOO", "("}) {
    EXPECT_EQ(helpId(name), 0) << name;
    EXPECT_EQ(scriptHelp(name), "") << name;
  }
}

TEST(ScriptHelp, NoFunctionNoText) {
  EXPECT_EQ(helpId(""), 0);
  EXPECT_EQ(scriptHelp(""), "");
  EXPECT_EQ(helpText(0), "");
  EXPECT_EQ(helpText(kTitle - 1), "");
  EXPECT_EQ(helpText(kTitle + 1), "");
  EXPECT_EQ(helpText(194), "");
}

TEST(ScriptHelp, AnyBytesAreAName) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  EXPECT_EQ(scriptHelp(all), "");
  EXPECT_EQ(scriptHelp(std::string_view("SMA\0", 4)), "");
}

TEST(ScriptHelp, TextsFitTheBufferOfAComponent) {
  for (const HelpText& help : helpTexts()) {
    EXPECT_LE(help.text.size(), kMaxHelpText) << help.id;
    EXPECT_FALSE(help.text.empty()) << help.id;
  }
}

/// Behind its first line a text has at most 72 columns, so that it fits any window.
TEST(ScriptHelp, TextsArePlainAndNarrow) {
  for (const HelpText& help : helpTexts()) {
    const std::vector<std::string_view> lines = linesOf(help.text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      EXPECT_TRUE(i == 0 || lines[i].size() <= 72) << help.id << ": " << lines[i];
      const bool plain = std::ranges::all_of(lines[i], [](char c) { return c >= ' ' && c <= '~'; });
      EXPECT_TRUE(plain) << help.id << ": " << lines[i];
      EXPECT_FALSE(lines[i].ends_with(' ')) << help.id << ": " << lines[i];
    }
    EXPECT_FALSE(lines.back().empty()) << help.id << " ends with a line end";
  }
}

// ---- After a run ----

class HelpAfterRun : public ::testing::Test {
 protected:
  HelpAfterRun() {
    for (int i = 1; i <= 60; ++i)
      bars_.push_back({2444300.5 + i, i - 0.5, i + 1.0, i - 1.0, 1.0 * i, 100.0 * i});
    engine_.bars.use(bars_);
  }
  std::string help() const { return scriptHelp(engine_.currentFunction); }
  std::string run(std::string_view script) { return engine_.RunScript(script, false, false); }

  std::vector<Bar> bars_;
  CScriptEngine engine_;
};

TEST_F(HelpAfterRun, IsEmptyBeforeAnyRun) {
  EXPECT_EQ(help(), "");
}

TEST_F(HelpAfterRun, IsEmptyForAScriptWithoutFunctions) {
  EXPECT_EQ(run("CLOSE > OPEN"), "ALERT");
  EXPECT_EQ(help(), "");
}

TEST_F(HelpAfterRun, IsTheEntryOfTheFunctionThatFailed) {
  EXPECT_EQ(run("RSI(CLOSE, 1) > 50"), "Error: 'periods' argument of 'RSI' is invalid.");
  EXPECT_TRUE(help().starts_with("RelativeStrengthIndex(Vector, Periods)\n")) << help();
  EXPECT_EQ(help(), helpText(165));
  run("SET A = rsi(CLOSE)\r\nSMA(A, 5) > 50");
  EXPECT_EQ(help(), helpText(165)) << "the statement behind the failed one is not evaluated";
}

/// The call around a failing one is dispatched all the same, so it is the function evaluated last.
TEST_F(HelpAfterRun, IsTheOuterEntryWhenAnArgumentFails) {
  EXPECT_EQ(run("SMA(RSI(CLOSE, 1), 5)"), "Error: 'periods' argument of 'RSI' is invalid.");
  EXPECT_EQ(help(), helpText(130));
}

TEST_F(HelpAfterRun, KnowsLongAndShortNames) {
  run("SMA(CLOSE, 0) > 5");
  EXPECT_EQ(help(), helpText(130));
  run("SimpleMovingAverage(CLOSE, 0) > 5");
  EXPECT_EQ(help(), helpText(130));
  run("%SwingPTop(5) > 5");
  EXPECT_EQ(help(), helpText(118));
}

TEST_F(HelpAfterRun, IsTheSameWhenReadTwice) {
  run("RSI(CLOSE, 1)");
  const std::string first = help();
  EXPECT_FALSE(first.empty());
  EXPECT_EQ(help(), first);
}

TEST_F(HelpAfterRun, IsEmptyForAFunctionWithoutAnEntry) {
  run("ZLEMA(CLOSE, 0) > 5");
  EXPECT_EQ(engine_.currentFunction, "ZLEMA");
  EXPECT_EQ(help(), "");
  run("FOO(CLOSE) > 5");
  EXPECT_EQ(help(), "");
}

TEST_F(HelpAfterRun, IsGoneAfterTheNextRun) {
  run("RSI(CLOSE, 1)");
  run("CLOSE > OPEN");
  EXPECT_EQ(help(), "");
}

// ---- The manual ----

TEST(ManualPage, IsFoundByWhatAPersonTypes) {
  EXPECT_EQ(manualPage("  sma "), helpText(130));
  EXPECT_EQ(manualPage("SMA(CLOSE, 14)"), helpText(130));
  EXPECT_EQ(manualPage("MedianPrice()"), helpText(182));
  EXPECT_EQ(manualPage(""), "");
  EXPECT_EQ(manualPage("()"), "");
  EXPECT_EQ(manualPage("FOO"), "");
}

TEST(ManualPage, TheSwingFunctionsHaveNoneThoughAComponentsHelpGivesThatOfRef) {
  for (const char* name : {"%SWING", "%SwingD", "%SWINGPTOP", "%SWINGPBOT(5, 0)"})
    EXPECT_EQ(manualPage(name), "");
  EXPECT_EQ(manualPage("REF"), helpText(118));
  EXPECT_EQ(scriptHelp("%SWINGPTOP"), helpText(118));
}

TEST(ManualPage, KnowsTheFurtherSpellingsOfScripts) {
  EXPECT_EQ(manualPage("MACDS"), helpText(162));
  EXPECT_EQ(manualPage("StochasticOscillatorPctK"), helpText(164));
  EXPECT_EQ(manualPage("StochasticOscillatorPctD"), helpText(164));
  EXPECT_EQ(manualPage("HistoricalVolatility"), helpText(167));
  EXPECT_EQ(manualPage("HistoricVolatility"), helpText(167));
  EXPECT_EQ(manualPage("HistoricVolatilityIndex"), helpText(167));
  EXPECT_EQ(manualPage("ComparativeRelativeStrengthIndex"), helpText(170));
  EXPECT_EQ(manualPage("StandardDeviation"), helpText(189));
  EXPECT_EQ(manualPage("Candlesticks"), helpText(191));
}

}  // namespace
}  // namespace brindlewort
