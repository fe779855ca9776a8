// The words and signs of the language that are no functions: what is told of them is all there is, and runs.

#include "word_section.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "engine/operators.hpp"
#include "functions/script_engine.hpp"
#include "series/text.hpp"
#include "services/output/script_output.hpp"
#include "services/validate/validate.hpp"

namespace brindlewort::reference {
namespace {

std::set<std::string_view> wordsOf(std::string_view title) {
  for (const LanguageNotes& notes : languageNotes()) {
    if (notes.title == title) return {notes.words.begin(), notes.words.end()};
  }
  return {};
}

/// The operators among all spellings of one or two signs, and among the words.
std::set<std::string> operatorsOfTheEngine() {
  std::set<std::string> found;
  const std::string_view signs = "+-*/\\^<>=!&|%~?:@$";
  for (const char first : signs) {
    if (findOperator({&first, 1})) found.insert(std::string(1, first));
    for (const char second : signs) {
      const std::string pair{first, second};
      if (findOperator(pair)) found.insert(pair);
    }
  }
  for (const char* word : {"AND", "OR ", "NOT", "XOR", "EQV", "IMP", "MOD", "NOR"}) {
    if (findOperator(word)) found.emplace(trim(std::string_view(word)));
  }
  return found;
}

TEST(WordSection, TheOperatorsToldAreThoseOfTheEngine) {
  std::set<std::string> told;
  for (const char* title : {"Arithmetic", "Comparisons", "Logic"}) {
    for (const std::string_view word : wordsOf(title)) told.insert(std::string(word));
  }
  EXPECT_EQ(told, operatorsOfTheEngine());
}

TEST(WordSection, NoWordIsToldTwice) {
  const std::vector<std::string_view> words = languageWords();
  EXPECT_EQ(std::set<std::string_view>(words.begin(), words.end()).size(), words.size());
  for (const std::string_view word : words) EXPECT_NE(wordText(word), "") << word;
  EXPECT_EQ(wordText("NOSUCHWORD"), "");
  EXPECT_EQ(wordText(""), "");
}

class WordExample : public ::testing::TestWithParam<std::string_view> {
 protected:
  const std::string script_ = replaceAll(GetParam(), "\n", "\r\n");
};

TEST_P(WordExample, RunsAndIsValid) {
  CScriptOutput output;
  std::string error;
  output.ScriptError = [&error](const std::string& description) { error = description; };
  for (int i = 0; i < 60; ++i) {
    const double close = 20.0 + (i % 7) - 0.5 * (i % 5);
    output.AppendRecord(2460310.5 + i, close - 0.5, close + 1, close - 1, close, 1000 + 10 * (i % 9));
  }
  EXPECT_TRUE(output.GetScriptOutput(script_, 0, "").has_value()) << error;
  EXPECT_EQ(CValidate().Validate(script_, -1), "");
}

std::vector<std::string_view> examples() {
  std::vector<std::string_view> scripts;
  for (const LanguageNotes& notes : languageNotes()) scripts.push_back(notes.example);
  for (const ConstantGroup& group : constantGroups()) scripts.push_back(group.example);
  return scripts;
}
INSTANTIATE_TEST_SUITE_P(Section, WordExample, ::testing::ValuesIn(examples()));

/// The last row of A.
double lastOf(const std::string& statements) {
  CScriptOutput output;
  for (int i = 0; i < 20; ++i) output.AppendRecord(2460310.5 + i, 10, 12, 9, 11, 100);
  EXPECT_TRUE(output.GetScriptOutput(statements + "\r\n1", 0, "").has_value()) << statements;
  const Series* const series = output.findSeries("A");
  EXPECT_NE(series, nullptr) << statements;
  return series ? series->back() : -1.0;
}

TEST(WordSection, WhatIsToldOfOperatorsIsSo) {
  EXPECT_EQ(lastOf("SET A = 1 + 2 * 3"), 9.0);
  EXPECT_EQ(lastOf("SET A = 12 / 5"), lastOf("SET A = 12 \\ 5"));
  EXPECT_EQ(lastOf("SET A = CLOSE > OPEN AND HIGH > LOW"), 1.0);
  EXPECT_EQ(lastOf("SET A = CLOSE < OPEN OR HIGH > LOW"), 1.0);
  EXPECT_EQ(lastOf("SET A = (CLOSE > OPEN) = FALSE"), 0.0);
  EXPECT_EQ(lastOf("SET B = CLOSE > OPEN\r\nSET C = HIGH > LOW\r\nSET A = B XOR C"), 0.0);
  EXPECT_EQ(lastOf("SET B = CLOSE > OPEN\r\nSET C = HIGH > LOW\r\nSET A = B EQV C"), 1.0);
  EXPECT_EQ(lastOf("SET B = CLOSE > OPEN\r\nSET A = NOT B"), 0.0);
  EXPECT_EQ(lastOf("SET A = 1.00001 = 1.00002"), 1.0);
}

}  // namespace
}  // namespace brindlewort::reference
