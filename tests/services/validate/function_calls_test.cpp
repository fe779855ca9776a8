// Every function of the language, called as a manual would, goes through the validator.

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

#include "functions/function_table.hpp"
#include "services/validate/validate.hpp"

namespace brindlewort {
namespace {

/// What stands in the brackets of a sensible call, by the first name of a row of the function table.
const std::map<std::string_view, std::string_view> kArguments = {
    {"IF", "CLOSE > OPEN, 1, 0"},
    {"COUNTIF", "CLOSE > OPEN"},
    {"SUMIF", "CLOSE > OPEN, VOLUME"},
    {"LASTIF", "CLOSE > OPEN"},
    {"CROSSOVER", "CLOSE, OPEN"},
    {"REF", "CLOSE, 1"},
    {"LOOP", "CLOSE, VOLUME, 1, 1, ADD"},
    {"TREND", "CLOSE, 14"},
    {"ABS", "CLOSE"},
    {"ROUND", "CLOSE, 2"},
    {"MROUND", "CLOSE, 2"},
    {"SUM", "CLOSE, 14"},
    {"AVG", "CLOSE, 14"},
    {"MAX", "CLOSE, 14"},
    {"MAXOF", "CLOSE, OPEN"},
    {"DATEPART", "DATE, 6"},
    {"DATEDIFF", "DATE, DATE, 4"},
    {"SMA", "CLOSE, 14"},
    {"EMA", "CLOSE, 14"},
    {"TSMA", "CLOSE, 14"},
    {"VMA", "CLOSE, 14"},
    {"TMA", "CLOSE, 14"},
    {"WMA", "CLOSE, 14"},
    {"WWS", "CLOSE, 14"},
    {"VIDYA", "CLOSE, 14, 0.65"},
    {"ZLEMA", "CLOSE, 14"},
    {"HA", "CLOSE, 14"},
    {"AMA", "CLOSE, 10, 2, 30"},
    {"FA", "CLOSE, 0.5, 14"},
    {"VAA", "CLOSE, 14"},
    {"CAVG", "CLOSE"},
    {"RSI", "CLOSE, 14"},
    {"MO", "CLOSE, 14"},
    {"CMO", "CLOSE, 14"},
    {"PO", "CLOSE, 9, 14, SIMPLE"},
    {"DPO", "CLOSE, 14, SIMPLE"},
    {"TRIX", "CLOSE, 9"},
    {"VHF", "CLOSE, 21"},
    {"CCI", "14, SIMPLE"},
    {"SOPK", "9, 3, 9, SIMPLE"},
    {"SOPD", "9, 3, 9, SIMPLE"},
    {"SMIK", "14, 2, 3, 9, SIMPLE, SIMPLE"},
    {"SMID", "14, 2, 3, 9, SIMPLE, SIMPLE"},
    {"WPR", "14"},
    {"MACD", "13, 26, 9, SIMPLE"},
    {"MACDH", "13, 26, 9, SIMPLE"},
    {"FCO", "21"},
    {"PNO", "CLOSE"},
    {"RBO", "CLOSE, 3, SIMPLE"},
    {"ULTOSC", "7, 14, 28"},
    {"CRSI", "CLOSE, OPEN"},
    {"FST", "CLOSE, 14"},
    {"PFI", "CLOSE"},
    {"HHV", "21"},
    {"LLV", "21"},
    {"SDV", "CLOSE, 21, 2, SIMPLE"},
    {"BBT", "CLOSE, 20, 2, SIMPLE"},
    {"KCT", "15, SIMPLE, 0.2"},
    {"MAET", "20, SIMPLE, 5"},
    {"PNBT", ""},
    {"FCHH", "21"},
    {"HLBUP", "21"},
    {"PSAR", "0.02, 0.2"},
    {"SUPERT", "14, 3"},
    {"R2", "CLOSE, 14"},
    {"TSF", "CLOSE, 14"},
    {"CA", "CLOSE, OPEN"},
    {"HVI", "CLOSE, 15, 30, 2"},
    {"TS", "CLOSE, 5, 14"},
    {"TR", ""},
    {"ATR", "14"},
    {"ADX", "14"},
    {"TRSUM", "14"},
    {"AROONUP", "25"},
    {"AROSC", "25"},
    {"RUPCOUNT", "CLOSE, 14"},
    {"RDNCOUNT", "CLOSE, 14"},
    {"OBV", "CLOSE"},
    {"PVT", "CLOSE"},
    {"PVI", "CLOSE"},
    {"NVI", "CLOSE"},
    {"TVI", "CLOSE, 0.25"},
    {"MFI", "15"},
    {"CMF", "15"},
    {"VO", "9, 21, SIMPLE, 1"},
    {"CV", "10, 10, SIMPLE"},
    {"PROC", "CLOSE, 12"},
    {"VROC", "VOLUME, 12"},
    {"EOM", "CLOSE, 21"},
    {"WAD", ""},
    {"MP", ""},
    {"TP", ""},
    {"HML", ""},
    {"WC", ""},
    {"SPREAD", "CLOSE, OPEN"},
    {"COMPOSITE", "CLOSE, OPEN, 0.5, 0.5"},
    {"PIVOT", ""},
    {"SI", "1"},
    {"ASI", "1"},
    {"MI", "25"},
    {"%SWING", "5"},
    {"%SWINGPTOP", "5, 1"},
    {"PFX", "CLOSE, 1, 3"},
    {"CSP", ""},
    {"TENKAN", "9"},
    {"KIJUN", "26"},
    {"SPANA", "9, 26, 26"},
    {"SPANB", "52"},
    {"CHIKOU", "26"},
};

struct Refusal {
  std::string_view name;
  std::string_view answer;
};

/// The names that the validator refuses however they are called, with its answer.
const Refusal kRefused[] = {
    // The list of known names lacks the word.
    {"TSF", "Error: 'TSF' is not a valid script"},
    {"TIMESERIESFORECAST", "Error: 'TSF' is not a valid script"},
    {"MACDS", "Error: 'MACDS' is not a valid script"},
    {"MACDHISTOGRAM", "Error: 'MACDHISTOGRAM' is not a valid script"},
    // A shorter long name inside is replaced first, and what is left is no known name.
    {"COMPARATIVERELATIVESTRENGTHINDEX", "Error: 'COMPARATIVERSI' is not a valid script"},
    {"ACCUMULATIVESWINGINDEX", "Error: 'ACCUMULATIVESI' is not a valid script"},
    {"HISTORICVOLATILITYINDEX", "Error: 'HVIINDEX' is not a valid script"},
    // No known name either, and the letters of an operator inside are seen first: BANDS, OSCILLATOR.
    {"FRACTALCHAOSBANDSHIGH", "Error: No space before 'AND'"},
    {"FRACTALCHAOSBANDSLOW", "Error: No space before 'AND'"},
    {"HIGHLOWBANDSTOP", "Error: No space before 'AND'"},
    {"HIGHLOWBANDSTOPMEDIAN", "Error: No space before 'AND'"},
    {"HIGHLOWBANDSTOPBOTTOM", "Error: No space before 'AND'"},
    {"ULTIMATEOSCILLATOR", "Error: No space before 'OR'"},
    // Functions of the incremental way alone: the words are known, but the run does not know the functions.
    {"AROSC", "Error: Undefined function 'AROSC'"},
    {"CHIKOU", "Error: Undefined function 'CHIKOU'"},
    {"COMPOSITE", "Error: Undefined function 'COMPOSITE'"},
    {"FCHH", "Error: Undefined function 'FCHH'"},
    {"FCHL", "Error: Undefined function 'FCHL'"},
    {"HLB", "Error: Undefined function 'HLB'"},
    {"HLBUP", "Error: Undefined function 'HLBUP'"},
    {"HLBDN", "Error: Undefined function 'HLBDN'"},
    {"MACDH", "Error: Undefined function 'MACDH'"},
    {"SPREAD", "Error: Undefined function 'SPREAD'"},
    {"ULTOSC", "Error: Undefined function 'ULTOSC'"},
    // Their argument is the bars' date, and the word DATE is not in the list of known names.
    {"DATEPART", "Error: 'DATE' is not a valid script"},
    {"DATEDIFF", "Error: 'DATE' is not a valid script"},
};

std::string_view expectedAnswer(std::string_view name) {
  for (const Refusal& refusal : kRefused) {
    if (refusal.name == name) return refusal.answer;
  }
  return {};
}

/// Calls every name of the function table; `script` makes a script of a call.
template <class Script>
void expectAnswers(Script script) {
  CValidate validate;
  for (const FunctionRow& row : functionTable()) {
    const auto arguments = kArguments.find(row.names.front().name);
    ASSERT_NE(arguments, kArguments.end()) << row.names.front().name;
    for (const FunctionName& name : row.names) {
      const std::string call = std::string(name.name) + "(" + std::string(arguments->second) + ")";
      EXPECT_EQ(validate.Validate(script(call), -1), expectedAnswer(name.name)) << call;
    }
  }
}

TEST(FunctionCalls, EveryFunctionPassesButTheRefusedOnes) {
  expectAnswers([](const std::string& call) { return call + " > 0"; });
}

TEST(FunctionCalls, AndSoInASetStatement) {
  expectAnswers([](const std::string& call) { return "SET AA = " + call + "\r\nAA > 0"; });
}

TEST(FunctionCalls, TheDateFunctionsPassWithAnotherSeries) {
  CValidate validate;
  EXPECT_EQ(validate.Validate("DATEPART(CLOSE, 6) > 0", -1), "");
  EXPECT_EQ(validate.Validate("DATEDIFF(CLOSE, OPEN, 4) >= 0", -1), "");
}

TEST(FunctionCalls, TheRefusedNamesAreFunctions) {
  for (const Refusal& refusal : kRefused) {
    EXPECT_TRUE(findFunction(refusal.name, Path::kWholeHistory).row ||
                findFunction(refusal.name, Path::kIncremental).row)
        << refusal.name;
  }
}

TEST(FunctionCalls, AnArgumentAtFaultIsTheEnginesOwnMessage) {
  CValidate validate;
  EXPECT_EQ(validate.Validate("SMA(CLOSE, 0) > 0", -1), "Error: 'periods' argument of 'SMA' is invalid.");
  EXPECT_EQ(validate.Validate("SMA() > 0", -1), "Error: 'periods' argument of 'SMA' not optional.");
  EXPECT_EQ(validate.Validate("SMA(CLOSE, 9, 9) > 0", 7), "Error: 'Number of' argument of 'SMA' is invalid.");
}

}  // namespace
}  // namespace brindlewort
