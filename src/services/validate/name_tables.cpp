#include "services/validate/name_tables.hpp"

#include <algorithm>
#include <vector>

#include "engine/long_names.hpp"
#include "series/text.hpp"

namespace brindlewort::validation {

namespace {

constexpr std::string_view kOperators[] = {">=",  "<=", "<>", "!=", "AND", "XOR", "OR", "NOT", "EQV",
                                           "MOD", "+",  "-",  "*",  "/",   "!",   ">",  "<",   "="};

constexpr SpelledOperator kSpelledOperators[] = {{"AND", '&'}, {"OR", '|'},  {"XOR", '^'},
                                                 {"NOT", '!'}, {"EQV", '='}, {"MOD", '%'}};

constexpr std::string_view kSeparators = "=><+-*/ ()[]{}~,&|^!%";

/// The short names that are looked for before those of the long names.
constexpr std::string_view kFirstShortNames[] = {"SMA", "EMA", "TSMA", "VMA", "TMA", "WMA"};

// clang-format off
constexpr std::string_view kKnownNames[] = {
    "TRUE",
    // The operators, and the separators that are no operator's sign.
    ">=", "<=", "<>", "!=", "AND", "XOR", "OR", "NOT", "EQV", "MOD", "+", "-", "*", "/", "!", ">", "<", "=",
    " ", "(", ")", "[", "]", "{", "}", "~", ",",
    // Words.
    "ZEROLAGEXPONENTIALMOVINGAVERAGE", "ZLEMA", "TS", "FISHERTRANSFORM", "FST", "ADAPTIVEMOVINGAVERAGE",
    "AMA", "Abandoned Baby", "Candlestick", "Abs", "AccumulativeSwingIndex", "ADD", "Operator", "ADX", "DX",
    "TRSUM", "AND", "Aroon", "Atn", "Average", "Avg", "Band", "PrimeNumber", "TRENDSCORE", "TS", "FA",
    "FACTORAVERAGE", "TENKAN", "KIJUN", "SPANA", "SPANB", "Chikou", "BollingerBands", "ChaikinMoneyFlow",
    "ChaikinVolatility", "ChandeMomentumOscillator", "CLOSE", "CommodityChannelIndex",
    "ComparativeRelativeStrength", "IF", "Cos", "COUNTIF", "Crossovers", "Candlesticks",
    "DetrendedPriceOscillator", "DIVIDE", "Operator", "Dividend", "EaseOfMovement", "Equals", "Eqv",
    "EveningStar", "Exp", "ExponentialMovingAverage", "FALSE", "Forecast", "FractalChaosOscillator",
    "Hammer", "HIGH", "Week", "HighMinusLow", "HighestHighValue", "HistoricalVolatilityIndex",
    "KeltnerChannelTop", "KeltnerChannelMedian", "KeltnerChannelBottom", "LAST", "LASTIF", "Log", "LOOP",
    "LOW", "LowestLowValue", "MACD", "MACDSystem", "MassIndex", "Max", "MAX_OPEN_POSITION", "MAXOF",
    "MedianPrice", "Min", "MINOF", "Mod", "MomentumOscillator", "MoneyFlowIndex", "Morning_Star",
    "MovingAverageEnvelope", "MULTIPLY", "NegativeVolumeIndex", "NOT", "Null", "OnBalanceVolume", "OPEN",
    "Operators", "OR", "ParabolicSAR", "PE_RATIO", "52_WEEK_HIGH", "52_WEEK_LOW", "ALL_TIME_LOW",
    "ALL_TIME_HIGH", "PerformanceIndex", "PI", "Piercing Line", "PositiveVolumeIndex", "PriceOscillator",
    "PriceRateofChange", "PriceVolumeTrend", "PrimeNumberOscillator", "RSquared", "RainbowOscillator",
    "REF", "RelativeStrengthIndex", "Random", "Rnd", "SimpleMovingAverage", "Sin", "Slope",
    "StandardDeviations", "StandardDeviation", "Star", "SUBTRACT", "Operator", "Sum", "SUMIF", "SwingIndex",
    "Tan", "TimeSeriesMovingAverage", "TradeVolumeIndex", "TREND", "TriangularMovingAverage", "TRIX",
    "TrueRange", "TypicalPrice", "VariableMovingAverage", "VerticalHorizontalFilter", "VIDYA", "Volume",
    "VolumeOscillator", "VolumeRateofChange", "WeightedClose", "WeightedMovingAverage",
    "WellesWilderSmoothing", "WilliamsAccumulationDistribution", "WilliamsPctR", "XOR", "Yield",
    "LONG_BODY", "DOJI", "HAMMER", "HARAMI", "STAR", "DOJI_STAR", "MORNING_STAR", "EVENING_STAR",
    "PIERCING_LINE", "BULLISH_ENGULFING_LINE", "HANGING_MAN", "DARK_CLOUD_COVER", "BEARISH_ENGULFING_LINE",
    "BEARISH_DOJI_STAR", "BEARISH_SHOOTING_STAR", "SPINNING_TOPS", "HARAMI_CROSS", "BULLISH_TRISTAR",
    "THREE_WHITE_SOLDIERS", "THREE_BLACK_CROWS", "ABANDONED_BABY", "BULLISH_UPSIDE_GAP", "BULLISH_HAMMER",
    "BULLISH_KICKING", "BEARISH_KICKING", "BEARISH_BELT_HOLD", "BULLISH_BELT_HOLD", "BEARISH_TWO_CROWS",
    "BULLISH_MATCHING_LOW", "SMA", "SET", "CROSSOVER", "EMA", "TSMA", "TMA", "VMA", "VIDYA", "WWS", "WMA",
    "WPR", "WAD", "VO", "VHF", "TR", "TRIX", "RBO", "PO", "PSAR", "MO", "MACD", "MACDSIGNAL", "EOM", "DIP",
    "DIN", "ADX", "DPO", "CMO", "CV", "AroonUp", "AroonDown", "R2", "Slope", "Intercept", "Forecast", "PVT",
    "PFI", "CCI", "CMF", "WC", "VROC", "TP", "SDV", "PROC", "MP", "HML", "BBT", "BBM", "BBB", "MAET",
    "MAEB", "SI", "ASI", "MI", "MFI", "NVI", "OBV", "PVI", "RSI", "TVI", "SOPK", "SOPD", "SMIK", "SMID",
    "FCO", "PNO", "PNBT", "PNBB", "HVI", "KCT", "KCM", "KCB", "PNBT", "PNBB", "TOP", "SIMPLE",
    "EXPONENTIAL", "TIME_SERIES", "VARIABLE", "TRIANGULAR", "WEIGHTED", "VOLATILITY", "WILDER", "SIDEWAYS",
    "CRSI", "UP", "DOWN", "MedianAverage", "CandlestickPattern(", "CandlestickPattern", "CSP(", "Pivot",
    "RES1", "RES2", "RES3", "RES4", "SUP1", "SUP2", "SUP3", "SUP4", "CSP", "DIP", "DIN", "ADXR",
    "BollingerBandsTop", "BollingerBandsMiddle", "BollingerBandsBottom", "MovingAverageEnvelopeTop",
    "MovingAverageEnvelopeBottom", "PrimeNumberBandsTop", "PrimeNumberBandsBottom", "LOG10",
    "CorrelationAnalysis", "CA", "HHV", "LLV", "PERCENTSWINGPTOP", "PERCENTSWINGPBOT", "PERCENTSWINGD",
    "PERCENT", "ROUND", "ROUNDUP", "ROUNDDOWN", "MROUND", "MROUNDUP", "MROUNDDOWN", "REPEATIF", "DATEPART",
    "DATEDIFF", "SECOND", "MINUTE", "HOUR", "DAY", "WEEK", "MONTH", "QUARTER", "YEAR", "SUPERT", "ATR",
    "AVERAGETRUERANGE", "CUMULATIVEAVERAGE", "CAVG", "RANGEUPCOUNT", "RUPCOUNT", "RANGEDOWNCOUNT",
    "RDNCOUNT", "VOLUMEADJUSTEDAVERAGE", "VAA", "HULLAVERAGE", "HA", "POINTS", "MACDH", "ULTOSC", "HLB",
    "HLBUP", "HLBDN", "FCHL", "FCHH", "SPREAD", "COMPOSITE", "AROSC", "PERCENTSWING", "POINTFIGURECOUNTX",
    "POINTFIGURECOUNTO", "POINTFIGUREDIRECTION", "PFX", "PFO", "PFD", "HIGHLOW",
};
// clang-format on

std::vector<std::string> sortedUpperCase(std::span<const std::string_view> names) {
  std::vector<std::string> sorted;
  sorted.reserve(names.size());
  for (std::string_view name : names) sorted.push_back(upperCase(name));
  std::sort(sorted.begin(), sorted.end());
  return sorted;
}

/// Where several long names share a short one, the last of them is its long name.
std::string_view lastLongNameFor(std::string_view shortName) {
  std::string_view last;
  for (const LongName& row : longNames()) {
    if (row.inValidation == shortName) last = row.name;
  }
  return last;
}

}  // namespace

std::span<const std::string_view> operators() {
  return kOperators;
}

std::span<const SpelledOperator> spelledOperators() {
  return kSpelledOperators;
}

std::string_view separators() {
  return kSeparators;
}

std::span<const std::string_view> knownNames() {
  return kKnownNames;
}

bool isKnownName(std::string_view word) {
  static const std::vector<std::string> sorted = sortedUpperCase(kKnownNames);
  return std::binary_search(sorted.begin(), sorted.end(), word, std::less<>());
}

std::string_view LongNameOf(std::string_view text) {
  for (std::string_view shortName : kFirstShortNames) {
    if (contains(text, shortName)) return lastLongNameFor(shortName);
  }
  for (const LongName& row : longNames()) {
    const std::string_view shortName = row.inValidation;
    if (!shortName.empty() && contains(text, shortName)) return lastLongNameFor(shortName);
  }
  return {};
}

}  // namespace brindlewort::validation
