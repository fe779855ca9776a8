// Every page of the manual closes with an example: a line "Example:", then the script, indented by four
// blanks. What the manual shows has to run.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "engine/long_names.hpp"
#include "functions/script_engine.hpp"
#include "series/text.hpp"
#include "services/output/script_output.hpp"
#include "services/validate/validate.hpp"
#include "shell/help/help_texts.hpp"
#include "shell/help/script_help.hpp"

namespace brindlewort {

/// How a page is called in the names of its tests.
static void PrintTo(const HelpText& help, std::ostream* out) {
  *out << help.id;
}

namespace {

constexpr int kTitle = 100;
constexpr int kSectorPage = 192;

/// The script of a page with the line ends of scripts; empty when the page has none.
std::string exampleOf(std::string_view page) {
  constexpr std::string_view mark = "\nExample:\n";
  constexpr std::string_view indent = "    ";
  const std::size_t start = page.find(mark);
  if (start == std::string_view::npos) return {};
  page.remove_prefix(start + mark.size());
  std::string script;
  while (page.starts_with(indent)) {
    const std::size_t end = std::min(page.find('\n'), page.size());
    if (!script.empty()) script += "\r\n";
    script += page.substr(indent.size(), end - indent.size());
    page.remove_prefix(std::min(end + 1, page.size()));
  }
  return script;
}

std::vector<HelpText> pagesOfFunctions() {
  std::vector<HelpText> pages;
  for (const HelpText& help : helpTexts())
    if (help.id != kTitle) pages.push_back(help);
  return pages;
}

/// Made-up bars: a walk in tenths by a generator of fixed seed, with bars that rise, fall and stand still.
std::vector<Bar> walkBars(int count) {
  std::uint32_t state = 20240229;
  const auto draw = [&state](std::uint32_t below) {
    state = state * 1664525u + 1013904223u;
    return (state >> 16) % below;
  };
  std::vector<Bar> bars;
  double close = 100.0;
  for (int i = 0; i < count; ++i) {
    const double open = close + (static_cast<double>(draw(11)) - 5.0) / 10.0;
    close = open + (static_cast<double>(draw(41)) - 20.0) / 10.0;
    const double high = std::max(open, close) + static_cast<double>(draw(9)) / 10.0;
    const double low = std::min(open, close) - static_cast<double>(draw(9)) / 10.0;
    bars.push_back({2459000.5 + i, open, high, low, close, 1000.0 + draw(9000)});
  }
  return bars;
}

const std::vector<Bar>& sampleBars() {
  static const std::vector<Bar> bars = walkBars(600);
  return bars;
}

class HelpExample : public ::testing::TestWithParam<HelpText> {
 protected:
  std::string script_ = exampleOf(GetParam().text);
};

TEST_P(HelpExample, RunsOverBars) {
  ASSERT_FALSE(script_.empty()) << "the page has no example";
  CScriptOutput output;
  std::string error;
  output.ScriptError = [&error](const std::string& description) { error = description; };
  for (const Bar& bar : sampleBars()) {
    output.AppendRecord(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                        static_cast<std::int32_t>(bar.Volume));
  }
  const std::optional<std::string> text = output.GetScriptOutput(script_, 0, "");
  EXPECT_EQ(error, "") << script_;
  ASSERT_TRUE(text.has_value()) << script_;
  EXPECT_EQ(std::ranges::count(*text, '\n'), static_cast<std::ptrdiff_t>(sampleBars().size()) + 1);
}

TEST_P(HelpExample, RunsDry) {
  CScriptEngine engine;
  const std::string text =
      engine.RunScript(withShortNames(upperCase(script_), &LongName::inOutput), false, true);
  EXPECT_TRUE(text.empty() || text == "ALERT") << text << "\n" << script_;
}

TEST_P(HelpExample, HasNoFaultForTheValidator) {
  CValidate validate;
  EXPECT_EQ(validate.Validate(script_, -1), "") << script_;
}

/// The names that a text calls: words with a "(" behind them.
std::vector<std::string> callsOf(std::string_view script) {
  constexpr std::string_view ends = " (),\r\n";
  std::vector<std::string> names;
  for (std::size_t open = script.find('('); open != std::string_view::npos;
       open = script.find('(', open + 1)) {
    const std::size_t before = script.substr(0, open).find_last_of(ends);
    const std::size_t start = before == std::string_view::npos ? 0 : before + 1;
    if (start < open) names.emplace_back(script.substr(start, open - start));
  }
  return names;
}

TEST_P(HelpExample, CallsTheFunctionOfThePage) {
  if (GetParam().id == kSectorPage) {  // names two statements, which are not called
    EXPECT_TRUE(script_.starts_with("SET SECTOR = ") && contains(script_, "\r\nSET INDUSTRY = ")) << script_;
    return;
  }
  const std::vector<std::string> calls = callsOf(script_);
  EXPECT_TRUE(std::ranges::any_of(calls, [](const std::string& name) {
    return manualPage(name) == GetParam().text;
  })) << script_;
}

INSTANTIATE_TEST_SUITE_P(Page, HelpExample, ::testing::ValuesIn(pagesOfFunctions()),
                         [](const auto& page) { return std::to_string(page.param.id); });

}  // namespace
}  // namespace brindlewort
