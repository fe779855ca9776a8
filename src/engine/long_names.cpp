#include "engine/long_names.hpp"

#include "series/text.hpp"

namespace brindlewort {

namespace {

constexpr LongName kLongNames[] = {
    {"SIMPLEMOVINGAVERAGE", "SMA", "SMA"},
    {"EXPONENTIALMOVINGAVERAGE", "EMA", ""},
    {"TIMESERIESMOVINGAVERAGE", "TSMA", "TSMA"},
    {"VARIABLEMOVINGAVERAGE", "VMA", "VMA"},
    {"TRIANGULARMOVINGAVERAGE", "TMA", "TMA"},
    {"WEIGHTEDMOVINGAVERAGE", "WMA", "WMA"},
    {"WELLESWILDERSMOOTHING", "WWS", "WWS"},
    {"BOLLINGERBANDSTOP", "BBT", "BBT"},
    {"BOLLINGERBANDSMIDDLE", "BBM", "BBM"},
    {"BOLLINGERBANDSBOTTOM", "BBB", "BBB"},
    {"KELTNERCHANNELTOP", "KCT", "KCT"},
    {"KELTNERCHANNELMEDIAN", "KCM", "KCM"},
    {"KELTNERCHANNELBOTTOM", "KCB", "KCB"},
    {"MOVINGAVERAGEENVELOPETOP", "MAET", "MAET"},
    {"MOVINGAVERAGEENVELOPEBOTTOM", "MAEB", "MAEB"},
    {"PRIMENUMBERBANDSTOP", "PNBT", "PNBT"},
    {"PRIMENUMBERBANDSBOTTOM", "PNBB", "PNBB"},
    {"CHANDEMOMENTUMOSCILLATOR", "CMO", "CMO"},
    {"VERTICALHORIZONTALFILTER", "VHF", "VHF"},
    {"WILLIAMSACCUMULATIONDISTRIBUTION", "WAD", "WAD"},
    {"VOLUMEOSCILLATOR", "VO", "VO"},
    {"CHAIKINVOLATILITY", "CV", "CV"},
    {"EASEOFMOVEMENT", "EOM", "EOM"},
    {"DETRENDEDPRICEOSCILLATOR", "DPO", "DPO"},
    {"PRIMENUMBEROSCILLATOR", "PNO", "PNO"},
    {"AVERAGETRUERANGE", "ATR", "ATR"},
    {"FRACTALCHAOSOSCILLATOR", "FCO", "FCO"},
    {"RAINBOWOSCILLATOR", "RBO", "RBO"},
    {"PARABOLICSAR", "PSAR", "PSAR"},
    {"STOCHASTICOSCILLATORPCTD", "SOPD", "SOPD"},
    {"STOCHASTICOSCILLATORPCTK", "SOPK", "SOPK"},
    {"CHAIKINMONEYFLOW", "CMF", "CMF"},
    {"MONEYFLOWINDEX", "MFI", "MFI"},
    {"MASSINDEX", "MI", "MI"},
    {"HISTORICALVOLATILITYINDEX", "HVI", "HVI"},
    {"HISTORICVOLATILITY", "HVI", "HVI"},
    {"HISTORICALVOLATILITY", "HVI", "HVI"},
    {"HISTORICVOLATILITYINDEX", "HVI", "HVI"},
    {"RELATIVESTRENGTHINDEX", "RSI", "RSI"},
    {"COMPARATIVERELATIVESTRENGTHINDEX", "CRSI", "CRSI"},
    {"PRICEVOLUMETREND", "PVT", "PVT"},
    {"POSITIVEVOLUMEINDEX", "PVI", "PVI"},
    {"NEGATIVEVOLUMEINDEX", "PVI", "NVI"},
    {"PERFORMANCEINDEX", "PFI", "PFI"},
    {"ONBALANCEVOLUME", "OBV", "OBV"},
    {"TRADEVOLUMEINDEX", "TVI", "TVI"},
    {"COMMODITYCHANNELINDEX", "CCI", "CCI"},
    {"SWINGINDEX", "SI", "SI"},
    {"ACCUMULATIVESWINGINDEX", "ASI", "ASI"},
    {"TIMESERIESFORECAST", "TSF", "TSF"},
    {"STANDARDDEVIATION", "SDV", "SDV"},
    {"LOWESTLOWVALUE", "LLV", "LLV"},
    {"HIGHESTHIGHVALUE", "HHV", "HHV"},
    {"CORRELATIONANALYSIS", "CA", "CA"},
    {"VOLUMERATEOFCHANGE", "VROC", "VROC"},
    {"PRICERATEOFCHANGE", "PROC", "PROC"},
    {"WEIGHTEDCLOSE", "WC", "WC"},
    {"TYPICALPRICE", "TP", "TP"},
    {"MEDIANPRICE", "MP", "MP"},
    {"HIGHMINUSLOW", "HML", "HML"},
    {"CANDLESTICKPATTERN", "CSP", "CSP"},
    {"CANDLESTICKS", "CSP", "CSP"},
    {"CANDLESTICKS", "CSP", ""},
    {"PRICEOSCILLATOR", "PO", "PO"},
    {"MOMENTUMOSCILLATOR", "MO", "MO"},
    {"TRUERANGE", "TR", "TR"},
    {"WILLIAMSPCTR", "WPR", "WPR"},
    {"SUPERTREND", "", "SUPERT"},
    {"CUMULATIVEAVERAGE", "", "CAVG"},
    {"RANGEUPCOUNT", "", "RUPCOUNT"},
    {"RANGEDOWNCOUNT", "", "RDNCOUNT"},
    {"VOLUMEADJUSTEDAVERAGE", "", "VAA"},
    {"HULLAVERAGE", "HA", "HA"},
    {"ZEROLAGEXPONENTIALMOVINGAVERAGE", "", "ZLEMA"},
    {"TRENDSCORE", "", "TS"},
    {"FACTORAVERAGE", "FA", "FA"},
    {"EXPONENTIALMOVINGAVERAGE", "", "EMA"},
    {"ADAPTIVEMOVINGAVERAGE", "", "AMA"},
    {"FISHERTRANSFORM", "", "FST"},
};

}  // namespace

std::span<const LongName> longNames() {
  return kLongNames;
}

std::string withShortNames(std::string_view text, std::string_view LongName::*column) {
  std::string shortened(text);
  for (const LongName& row : kLongNames) {
    const std::string_view shortName = row.*column;
    if (!shortName.empty() && contains(shortened, row.name)) {
      shortened = replaceAll(shortened, row.name, shortName);
    }
  }
  return shortened;
}

}  // namespace brindlewort
