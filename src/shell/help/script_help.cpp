#include "shell/help/script_help.hpp"

#include <algorithm>

#include "series/text.hpp"
#include "shell/help/help_texts.hpp"

namespace brindlewort {

namespace {

/// Spellings that scripts may use and a component's help does not know.
constexpr HelpName kFurtherNames[] = {
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

/// Names that a component's help leads to the page of another function, which only mentions them.
constexpr std::string_view kWithoutPage[] = {"%SWINGPTOP", "%SWINGPBOT", "%SWINGD"};

}  // namespace

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
  if (std::ranges::count(kWithoutPage, wanted) > 0) return {};
  const int id = findHelpId(helpNames(), wanted);
  return helpText(id != 0 ? id : findHelpId(kFurtherNames, wanted));
}

}  // namespace brindlewort
