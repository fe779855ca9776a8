#include "shell/help/script_help.hpp"

#include <algorithm>

#include "series/text.hpp"
#include "shell/help/help_texts.hpp"

namespace brindlewort {

namespace {

constexpr HelpName kHelpNames[] = {
    {"IF", 107},
    {"LOOP", 108},
    {"COUNTIF", 109},
    {"LASTIF", 110},
    {"SUMIF", 111},
    {"SUM", 112},
    {"AVG", 113},
    {"AVERAGE", 113},
    {"MAX", 114},
    {"MIN", 115},
    {"MAXOF", 116},
    {"MINOF", 117},
    {"REF", 118},
    {"%SWINGPTOP", 118},
    {"%SWINGPBOT", 118},
    {"%SWINGD", 118},
    {"TREND", 119},
    {"CROSSOVER", 120},
    {"ABS", 121},
    {"SIN", 122},
    {"COS", 123},
    {"TAN", 124},
    {"ATN", 125},
    {"EXP", 126},
    {"LOG", 127},
    {"LOG10", 128},
    {"RND", 129},
    {"SIMPLEMOVINGAVERAGE", 130},
    {"SMA", 130},
    {"EXPONENTIALMOVINGAVERAGE", 131},
    {"EMA", 131},
    {"TIMESERIESMOVINGAVERAGE", 132},
    {"TSMA", 132},
    {"VARIABLEMOVINGAVERAGE", 133},
    {"VMA", 133},
    {"TRIANGULARMOVINGAVERAGE", 134},
    {"TMA", 134},
    {"WEIGHTEDMOVINGAVERAGE", 135},
    {"WMA", 135},
    {"WELLESWILDERSMOOTHING", 136},
    {"WWS", 136},
    {"VIDYA", 137},
    {"RSQUARED", 138},
    {"R2", 138},
    {"SLOPE", 139},
    {"FORECAST", 140},
    {"INTERCEPT", 141},
    {"BOLLINGERBANDSTOP", 142},
    {"BBT", 142},
    {"BOLLINGERBANDSBOTTOM", 142},
    {"BBB", 142},
    {"BOLLINGERBANDSMIDDLE", 142},
    {"BBM", 142},
    {"MOVINGAVERAGEENVELOPETOP", 143},
    {"MOVINGAVERAGEENVELOPEBOTTOM", 143},
    {"MAET", 143},
    {"MAEB", 143},
    {"PRIMENUMBERBANDSTOP", 144},
    {"PRIMENUMBERBANDSBOTTOM", 144},
    {"PNBT", 144},
    {"PNBB", 144},
    {"MOMENTUMOSCILLATOR", 145},
    {"MO", 145},
    {"CHANDEMOMENTUMOSCILLATOR", 146},
    {"CMO", 146},
    {"VOLUMEOSCILLATOR", 147},
    {"VO", 147},
    {"PRICEOSCILLATOR", 148},
    {"PO", 148},
    {"DETRENDEDPRICEOSCILLATOR", 149},
    {"DPO", 149},
    {"PRIMENUMBEROSCILLATOR", 150},
    {"PNO", 150},
    {"FRACTALCHAOSOSCILLATOR", 151},
    {"FCO", 151},
    {"RAINBOWOSCILLATOR", 152},
    {"RBO", 152},
    {"TRIX", 153},
    {"VERTICALHORIZONTALFILTER", 154},
    {"VHF", 154},
    {"EASEOFMOVEMENT", 155},
    {"EOM", 155},
    {"ADX", 156},
    {"ADXR", 156},
    {"DIP", 156},
    {"DIN", 156},
    {"TRSUM", 156},
    {"DX", 156},
    {"TRUERANGE", 157},
    {"TR", 157},
    {"WILLIAMSPCTR", 158},
    {"WPR", 158},
    {"WILLIAMSACCUMULATIONDISTRIBUTION", 159},
    {"WAD", 159},
    {"CHAIKINVOLATILITY", 160},
    {"CV", 160},
    {"AROONUP", 161},
    {"AROONDOWN", 161},
    {"MACD", 162},
    {"MACDSIGNAL", 162},
    {"HIGHMINUSLOW", 163},
    {"HML", 163},
    {"SOPK", 164},
    {"SOPD", 164},
    {"RELATIVESTRENGTHINDEX", 165},
    {"RSI", 165},
    {"MASSINDEX", 166},
    {"MI", 166},
    {"HISTORICALVOLATILITYINDEX", 167},
    {"HVI", 167},
    {"MONEYFLOWINDEX", 168},
    {"MFI", 168},
    {"CHAIKINMONEYFLOW", 169},
    {"CMF", 169},
    {"COMPARATIVERELATIVESTRENGTH", 170},
    {"CRSI", 170},
    {"PRICEVOLUMETREND", 171},
    {"PVT", 171},
    {"POSITIVEVOLUMEINDEX", 172},
    {"PVI", 172},
    {"NEGATIVEVOLUMEINDEX", 173},
    {"NVI", 173},
    {"ONBALANCEVOLUME", 174},
    {"OBV", 174},
    {"PERFORMANCEINDEX", 175},
    {"PFI", 175},
    {"TRADEVOLUMEINDEX", 176},
    {"TVI", 176},
    {"SWINGINDEX", 177},
    {"SI", 177},
    {"ACCUMULATIVESWINGINDEX", 178},
    {"ASI", 178},
    {"COMMODITYCHANNELINDEX", 179},
    {"CCI", 179},
    {"PARABOLICSAR", 180},
    {"PSAR", 180},
    {"SMIK", 181},
    {"SMID", 181},
    {"MEDIANPRICE", 182},
    {"MP", 182},
    {"TYPICALPRICE", 183},
    {"TP", 183},
    {"WEIGHTEDCLOSE", 184},
    {"WC", 184},
    {"PRICERATEOFCHANGE", 185},
    {"PROC", 185},
    {"VOLUMERATEOFCHANGE", 186},
    {"VROC", 186},
    {"HIGHESTHIGHVALUE", 187},
    {"HHV", 187},
    {"LOWESTLOWVALUE", 188},
    {"LLV", 188},
    {"STANDARDDEVIATIONS", 189},
    {"SDV", 189},
    {"CORRELATIONANALYSIS", 190},
    {"CA", 190},
    {"CANDLESTICKPATTERN", 191},
    {"CSP", 191},
    {"SECTOR", 192},
    {"INDUSTRY", 192},
    {"REPEATIF", 193},
};

/// Spellings that scripts may use and a component's help does not know.
constexpr HelpName kFurtherNames[] = {
    {"%SWING", 118},
    {"MACDS", 162},
    {"STOCHASTICOSCILLATORPCTK", 164},
    {"STOCHASTICOSCILLATORPCTD", 164},
    {"HISTORICALVOLATILITY", 167},
    {"HISTORICVOLATILITY", 167},
    {"HISTORICVOLATILITYINDEX", 167},
    {"COMPARATIVERELATIVESTRENGTHINDEX", 170},
    {"STANDARDDEVIATION", 189},
    {"CANDLESTICKS", 191},
};

int findId(std::span<const HelpName> names, std::string_view upperCaseName) {
  const auto found = std::ranges::find(names, upperCaseName, &HelpName::name);
  return found == names.end() ? 0 : found->id;
}

}  // namespace

std::span<const HelpName> helpNames() {
  return kHelpNames;
}

int helpId(std::string_view name) {
  return findId(kHelpNames, upperCase(name));
}

std::string_view helpText(int id) {
  const std::span<const HelpText> texts = helpTexts();
  const auto found = std::ranges::lower_bound(texts, id, {}, &HelpText::id);
  return found != texts.end() && found->id == id ? found->text : std::string_view{};
}

std::string scriptHelp(std::string_view currentFunction) {
  return std::string(helpText(helpId(currentFunction)).substr(0, kMaxHelpText));
}

std::string_view manualPage(std::string_view name) {
  const std::string wanted = upperCase(trim(name.substr(0, name.find('('))));
  const int id = findId(kHelpNames, wanted);
  return helpText(id != 0 ? id : findId(kFurtherNames, wanted));
}

}  // namespace brindlewort
