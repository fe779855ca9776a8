#include "services/output/long_names.hpp"

#include "series/text.hpp"

namespace brindlewort {

namespace {

struct LongName {
  std::string_view from;
  std::string_view to;
};

/// A name that is contained in a longer one stands behind it.
constexpr LongName kLongNames[] = {
    {"SIMPLEMOVINGAVERAGE", "SMA"},
    {"EXPONENTIALMOVINGAVERAGE", "EMA"},
    {"TIMESERIESMOVINGAVERAGE", "TSMA"},
    {"VARIABLEMOVINGAVERAGE", "VMA"},
    {"TRIANGULARMOVINGAVERAGE", "TMA"},
    {"WEIGHTEDMOVINGAVERAGE", "WMA"},
    {"WELLESWILDERSMOOTHING", "WWS"},
    {"BOLLINGERBANDSTOP", "BBT"},
    {"BOLLINGERBANDSMIDDLE", "BBM"},
    {"BOLLINGERBANDSBOTTOM", "BBB"},
    {"KELTNERCHANNELTOP", "KCT"},
    {"KELTNERCHANNELMEDIAN", "KCM"},
    {"KELTNERCHANNELBOTTOM", "KCB"},
    {"MOVINGAVERAGEENVELOPETOP", "MAET"},
    {"MOVINGAVERAGEENVELOPEBOTTOM", "MAEB"},
    {"PRIMENUMBERBANDSTOP", "PNBT"},
    {"PRIMENUMBERBANDSBOTTOM", "PNBB"},
    {"CHANDEMOMENTUMOSCILLATOR", "CMO"},
    {"VERTICALHORIZONTALFILTER", "VHF"},
    {"WILLIAMSACCUMULATIONDISTRIBUTION", "WAD"},
    {"VOLUMEOSCILLATOR", "VO"},
    {"CHAIKINVOLATILITY", "CV"},
    {"EASEOFMOVEMENT", "EOM"},
    {"DETRENDEDPRICEOSCILLATOR", "DPO"},
    {"PRIMENUMBEROSCILLATOR", "PNO"},
    {"AVERAGETRUERANGE", "ATR"},
    {"FRACTALCHAOSOSCILLATOR", "FCO"},
    {"RAINBOWOSCILLATOR", "RBO"},
    {"PARABOLICSAR", "PSAR"},
    {"STOCHASTICOSCILLATORPCTD", "SOPD"},
    {"STOCHASTICOSCILLATORPCTK", "SOPK"},
    {"CHAIKINMONEYFLOW", "CMF"},
    {"MONEYFLOWINDEX", "MFI"},
    {"MASSINDEX", "MI"},
    {"HISTORICALVOLATILITYINDEX", "HVI"},
    {"HISTORICVOLATILITY", "HVI"},
    {"HISTORICALVOLATILITY", "HVI"},
    {"HISTORICVOLATILITYINDEX", "HVI"},
    {"RELATIVESTRENGTHINDEX", "RSI"},
    {"COMPARATIVERELATIVESTRENGTHINDEX", "CRSI"},
    {"PRICEVOLUMETREND", "PVT"},
    {"POSITIVEVOLUMEINDEX", "PVI"},
    {"NEGATIVEVOLUMEINDEX", "PVI"},
    {"PERFORMANCEINDEX", "PFI"},
    {"ONBALANCEVOLUME", "OBV"},
    {"TRADEVOLUMEINDEX", "TVI"},
    {"COMMODITYCHANNELINDEX", "CCI"},
    {"SWINGINDEX", "SI"},
    {"ACCUMULATIVESWINGINDEX", "ASI"},
    {"TIMESERIESFORECAST", "TSF"},
    {"STANDARDDEVIATION", "SDV"},
    {"LOWESTLOWVALUE", "LLV"},
    {"HIGHESTHIGHVALUE", "HHV"},
    {"CORRELATIONANALYSIS", "CA"},
    {"VOLUMERATEOFCHANGE", "VROC"},
    {"PRICERATEOFCHANGE", "PROC"},
    {"WEIGHTEDCLOSE", "WC"},
    {"TYPICALPRICE", "TP"},
    {"MEDIANPRICE", "MP"},
    {"HIGHMINUSLOW", "HML"},
    {"CANDLESTICKPATTERN", "CSP"},
    {"CANDLESTICKS", "CSP"},
    {"CANDLESTICKS", "CSP"},
    {"PRICEOSCILLATOR", "PO"},
    {"MOMENTUMOSCILLATOR", "MO"},
    {"TRUERANGE", "TR"},
    {"WILLIAMSPCTR", "WPR"},
    {"HULLAVERAGE", "HA"},
    {"FACTORAVERAGE", "FA"},
};

}  // namespace

std::string withShortNames(std::string_view script) {
  std::string text(script);
  for (const LongName& name : kLongNames) {
    if (contains(text, name.from)) text = replaceAll(text, name.from, name.to);
  }
  return text;
}

}  // namespace brindlewort
