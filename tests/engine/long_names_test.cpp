#include "engine/long_names.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "functions/function_table.hpp"

namespace brindlewort {
namespace {

using Column = std::string_view LongName::*;

std::string forOutput(std::string_view text) {
  return withShortNames(text, &LongName::inOutput);
}
std::string forValidation(std::string_view text) {
  return withShortNames(text, &LongName::inValidation);
}

auto rowsOf(Column column) {
  return std::ranges::count_if(longNames(), [column](const LongName& row) { return !(row.*column).empty(); });
}

/// Whether both names lead to the same function, of those that the language has at all.
bool nameOneFunction(std::string_view a, std::string_view b) {
  const FoundFunction ofA = findFunction(a, Path::kBoth), ofB = findFunction(b, Path::kBoth);
  return ofA.row && ofA.row == ofB.row && ofA.output == ofB.output;
}

TEST(LongNames, AShortNameIsAnotherSpellingOfTheSameFunction) {
  for (const LongName& row : longNames()) {
    for (const Column column : {&LongName::inOutput, &LongName::inValidation}) {
      const std::string_view shortName = row.*column;
      // In scripts that give output the negative volume index is served as the positive one.
      const bool isAnother = row.name == "NEGATIVEVOLUMEINDEX" && column == &LongName::inOutput;
      if (!shortName.empty()) {
        EXPECT_EQ(nameOneFunction(row.name, shortName), !isAnother) << row.name << " " << shortName;
      }
    }
  }
}

TEST(LongNames, SixtyNineRowsForOutputSeventySevenForValidation) {
  EXPECT_EQ(rowsOf(&LongName::inOutput), 69);
  EXPECT_EQ(rowsOf(&LongName::inValidation), 77);
}

TEST(LongNames, TheColumnsDiffer) {
  EXPECT_EQ(forOutput("NEGATIVEVOLUMEINDEX"), "PVI");
  EXPECT_EQ(forValidation("NEGATIVEVOLUMEINDEX"), "NVI");
  EXPECT_EQ(forOutput("SUPERTREND"), "SUPERTREND");
  EXPECT_EQ(forValidation("SUPERTREND"), "SUPERT");
  // For output the exponential average stands near the front, for validation behind the longer name.
  EXPECT_EQ(forOutput("ZEROLAGEXPONENTIALMOVINGAVERAGE"), "ZEROLAGEMA");
  EXPECT_EQ(forValidation("ZEROLAGEXPONENTIALMOVINGAVERAGE"), "ZLEMA");
}

TEST(LongNames, AnEarlierRowTakesAPieceOutOfALaterName) {
  for (const auto shortened : {forOutput, forValidation}) {
    EXPECT_EQ(shortened("HISTORICVOLATILITYINDEX"), "HVIINDEX");
    EXPECT_EQ(shortened("COMPARATIVERELATIVESTRENGTHINDEX"), "COMPARATIVERSI");
    EXPECT_EQ(shortened("ACCUMULATIVESWINGINDEX"), "ACCUMULATIVESI");
    EXPECT_EQ(shortened("CHANDEMOMENTUMOSCILLATOR"),
              "CMO");  // the longer name stands before MOMENTUMOSCILLATOR
    EXPECT_EQ(shortened("DETRENDEDPRICEOSCILLATOR"), "DPO");
    EXPECT_EQ(shortened("AVERAGETRUERANGE"), "ATR");
  }
}

TEST(LongNames, ReplacedAnywhereAndEveryTime) {
  EXPECT_EQ(forOutput("XHULLAVERAGEX HULLAVERAGE"), "XHAX HA");
  EXPECT_EQ(forOutput("CLOSE > HULLAVERAG"), "CLOSE > HULLAVERAG");
  EXPECT_EQ(forOutput(""), "");
}

TEST(LongNames, WhatAReplacementMakesIsNotReadAgainByItsRow) {
  // The inner name goes, and the letters around it close to the same name again.
  EXPECT_EQ(forValidation("TRUERTRUERANGEANGE"), "TRUERTRANGE");
  EXPECT_EQ(forValidation("MASSINDMASSINDEXEX"), "MASSINDMIEX");
}

TEST(LongNames, LaterRowsReadWhatEarlierRowsMade) {
  // TRUERANGE, an earlier row, leaves the letters TR of FISHERTRANSFORM.
  EXPECT_EQ(forValidation("FISHERTRUERANGEANSFORM"), "FST");
}

}  // namespace
}  // namespace brindlewort
