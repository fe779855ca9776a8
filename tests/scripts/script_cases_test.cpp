// Runs the script cases of this folder; README.md tells their form.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "functions/script_engine.hpp"
#include "series/null_value.hpp"
#include "services/output/script_output.hpp"
#include "support/date_texts.hpp"
#include "support/series_checks.hpp"

namespace brindlewort::testing {
namespace {

/// How the bars reach the component, and who computes.
enum class Way {
  kWholeHistory,  ///< all bars, then one run over them
  kIncremental,   ///< the script is prepared, then every bar is followed by a run; the last run counts
};

struct Expectation {
  std::string kind;  // "last", "series", "rows", "alert", "heading", "function"
  std::string name = {};
  std::size_t from = 0;
  Rows numbers = {};
  std::string text = {};
};

struct Case {
  std::string file, title, script, sets, output, error;
  int line = 0, map = 0;
  bool wantsOutput = false, wantsError = false, wantsNothing = false;
  std::vector<Way> ways = {Way::kWholeHistory};
  std::vector<Bar> bars;
  std::vector<Expectation> expectations;
};

double numberOf(const std::string& word) {
  if (word == "null") return NULL_VALUE;
  if (word == "nan") return std::numeric_limits<double>::quiet_NaN();
  if (word == "inf") return std::numeric_limits<double>::infinity();
  if (word == "-inf") return -std::numeric_limits<double>::infinity();
  std::size_t used = 0;
  const double number = std::stod(word, &used);
  if (used != word.size()) throw std::invalid_argument("not a number: " + word);
  return number;
}

void appendBars(Case& c, const std::string& kind, int count) {
  static constexpr double kWave[] = {10, 11, 12, 13, 12, 11};
  for (int i = 1; i <= count; ++i) {
    const double close = kind == "flat" ? 10 : kind == "wave" ? kWave[(i - 1) % 6] : i;
    c.bars.push_back({2444300.5 + i - 1, close - 0.5, close + 1, close - 1, close, 100.0 * i});
  }
}

std::vector<Way> waysOf(const std::string& word) {
  if (word == "whole-history") return {Way::kWholeHistory};
  if (word == "incremental") return {Way::kIncremental};
  if (word == "both") return {Way::kWholeHistory, Way::kIncremental};
  throw std::invalid_argument("no such way: " + word);
}

/// "NAME = numbers" or "NAME[FROM] = numbers".
Expectation seriesExpectation(const std::string& kind, const std::string& rest) {
  Expectation e{kind};
  const std::size_t equals = rest.rfind(" = ");
  if (equals == std::string::npos) throw std::invalid_argument("no ' = ' in: " + rest);
  e.name = rest.substr(0, equals);
  if (kind == "rows") {
    const std::size_t open = e.name.rfind('[');
    e.from = static_cast<std::size_t>(std::stoi(e.name.substr(open + 1)));
    e.name.resize(open);
  }
  std::istringstream words(rest.substr(equals + 3));
  for (std::string word; words >> word;) e.numbers.push_back(numberOf(word));
  return e;
}

void readLine(Case& c, const std::string& line) {
  const std::size_t blank = line.find(' ');
  const std::string word = line.substr(0, blank);
  const std::string rest = blank == std::string::npos ? "" : line.substr(blank + 1);
  std::istringstream words(rest);
  if (word == "|") {
    c.script += (c.script.empty() ? "" : "\r\n") + rest;
  } else if (word == ">") {
    c.wantsOutput = true;
    c.output += rest + "\r\n";
  } else if (word == "list") {
    c.wantsOutput = true;
    c.output = rest;
  } else if (word == "bars") {
    std::string kind;
    int count = 0;
    words >> kind >> count;
    appendBars(c, kind, count);
  } else if (word == "bar") {
    Bar b;
    words >> b.JDate >> b.OpenPrice >> b.HighPrice >> b.LowPrice >> b.ClosePrice >> b.Volume;
    c.bars.push_back(b);
  } else if (word == "way") {
    c.ways = waysOf(rest);
  } else if (word == "map") {
    words >> c.map;
  } else if (word == "sets") {
    c.sets = rest;
  } else if (word == "error") {
    c.wantsError = true;
    c.error = rest;
  } else if (word == "nothing") {
    c.wantsNothing = true;
  } else if (word == "last" || word == "series" || word == "rows") {
    c.expectations.push_back(seriesExpectation(word, rest));
  } else if (word == "alert" || word == "heading" || word == "function") {
    c.expectations.push_back({word, "", 0, {}, rest});
  } else {
    throw std::invalid_argument("unknown word '" + word + "'");
  }
}

std::vector<Case> readCases(const std::filesystem::path& path) {
  std::vector<Case> cases;
  std::ifstream in(path);
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (line.empty() || line[0] == '#') continue;
    if (line.starts_with("=== ")) {
      Case fresh;
      fresh.file = path.parent_path().filename().string() + "/" + path.filename().string();
      fresh.line = number;
      fresh.title = line.substr(4);
      cases.push_back(fresh);
      continue;
    }
    if (cases.empty()) throw std::invalid_argument(path.string() + ": a line before the first case");
    try {
      readLine(cases.back(), line);
    } catch (const std::exception& e) {
      throw std::invalid_argument(path.string() + ":" + std::to_string(number) + ": " + e.what());
    }
  }
  return cases;
}

std::vector<Case> allCases() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(BRINDLEWORT_SCRIPT_CASES)) {
    if (entry.path().extension() == ".cases") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  std::vector<Case> cases;
  for (const auto& file : files) {
    for (Case& c : readCases(file)) cases.push_back(std::move(c));
  }
  return cases;
}

class ScriptCase : public ::testing::Test {
 public:
  ScriptCase(const Case& c, Way way) : case_(c), way_(way) {}

  void TestBody() override {
    SCOPED_TRACE(case_.file + ":" + std::to_string(case_.line) + " " + case_.title);
    output_.ScriptError = [this](const std::string& text) { error_ = text; };
    const auto text = way_ == Way::kIncremental ? runAtEveryBar() : runOnce();
    if (case_.wantsError) {
      EXPECT_EQ(error_, case_.error);
      EXPECT_FALSE(text.has_value());
    } else {
      EXPECT_EQ(error_, "");
      EXPECT_EQ(text.has_value(), !case_.wantsNothing);
    }
    if (case_.wantsOutput && text) {
      EXPECT_EQ(*text, localDates(case_.output));
    }
    EXPECT_TRUE(case_.wantsOutput || case_.wantsError || case_.wantsNothing || !case_.expectations.empty())
        << "the case expects nothing";
    for (const Expectation& e : case_.expectations) check(e);
  }

 private:
  std::optional<std::string> runOnce() {
    for (const Bar& b : case_.bars) {
      output_.AppendRecord(b.JDate, b.OpenPrice, b.HighPrice, b.LowPrice, b.ClosePrice,
                           volumeToInt32(b.Volume));
    }
    return output_.GetScriptOutput(case_.script, case_.map, case_.sets);
  }

  std::optional<std::string> runAtEveryBar() {
    output_.InitialiseTransientStore(kEntries);
    output_.ProcessScripData(case_.script);
    std::optional<std::string> text;
    for (const Bar& b : case_.bars) {
      output_.AppendRecord_New(b.JDate, b.OpenPrice, b.HighPrice, b.LowPrice, b.ClosePrice,
                               volumeToInt32(b.Volume));
      error_.clear();
      text = output_.GetScriptOutput_New(case_.script, case_.map, case_.sets);
    }
    return text;
  }

  /// What an alert's engine answers to the script: at the last bar, on the incremental way.
  std::string alertText() {
    CScriptEngine engine;
    if (way_ == Way::kWholeHistory) {
      engine.bars.use(case_.bars);
      engine.bars.insertFiller(2444239.5);
      engine.bars.insertFiller(2444239.5);
      return engine.RunScript(case_.script, false, false);
    }
    engine.InitialiseTransientStore(kEntries);
    std::string text;
    engine.ProcessScripData(case_.script, text);
    for (std::size_t bars = 1; bars <= case_.bars.size(); ++bars) {
      engine.ApplyBarChange(case_.bars[bars - 1], CScriptEngine::kNewBar);
      engine.bars.use(std::span(case_.bars).first(bars));
      text = engine.RunFast(false, false);
    }
    return text;
  }

  void check(const Expectation& e) {
    if (e.kind == "heading") {
      const auto heading = way_ == Way::kIncremental ? output_.GetCustomIndFromCondition_NEW(case_.script)
                                                     : output_.GetCustomIndFromCondition(case_.script);
      EXPECT_EQ(heading.value_or("(nothing)"), e.text + "\r\n");
      return;
    }
    if (e.kind == "alert") {
      EXPECT_EQ(alertText(), e.text == "yes" ? "ALERT" : "");
      return;
    }
    if (e.kind == "function") {
      EXPECT_EQ(output_.lastFunction(), e.text == "none" ? "" : e.text);
      return;
    }
    const Series* series = output_.findSeries(e.name);
    ASSERT_NE(series, nullptr) << "no series " << e.name;
    const Rows rows(series->view().begin(), series->view().end());
    std::size_t from = e.from, count = e.numbers.size();
    if (e.kind == "last") from = rows.empty() ? 0 : rows.size() - 1;
    if (e.kind == "series") {
      ASSERT_EQ(rows.size(), count) << e.name;
    }
    ASSERT_LE(from + count, rows.size()) << e.name;
    const Rows part(rows.begin() + static_cast<std::ptrdiff_t>(from),
                    rows.begin() + static_cast<std::ptrdiff_t>(from + count));
    EXPECT_TRUE(sameRows(e.numbers, part)) << e.name;
  }

  static constexpr int kEntries = 250;
  Case case_;
  Way way_;
  CScriptOutput output_;
  std::string error_;
};

std::string testName(const Case& c, Way way) {
  std::string name = c.title;
  for (char& ch : name) {
    if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
  }
  return name + "_line_" + std::to_string(c.line) + (way == Way::kIncremental ? "_bar_by_bar" : "");
}

std::string suiteName(const Case& c) {
  std::string name = "Script_" + c.file;
  for (char& ch : name) {
    if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
  }
  return name;
}

}  // namespace
}  // namespace brindlewort::testing

int main(int argc, char** argv) {
  using namespace brindlewort::testing;
  ::testing::InitGoogleTest(&argc, argv);
  for (const Case& c : allCases()) {
    for (const Way way : c.ways) {
      ::testing::RegisterTest(suiteName(c).c_str(), testName(c, way).c_str(), nullptr, nullptr, __FILE__,
                              c.line, [c, way]() -> ::testing::Test* { return new ScriptCase(c, way); });
    }
  }
  return RUN_ALL_TESTS();
}
