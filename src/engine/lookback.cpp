// How many bars a script asks for, guessed from the numbers in its text.

#include <algorithm>
#include <vector>

#include "functions/script_engine.hpp"
#include "series/numbers.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

/// Calls whose numbers are no periods.
constexpr std::string_view kNoPeriodCalls[] = {
    "LASTIF",   "COUNTIF",    "SUMIF",    "CROSSOVER", "IF",       "LOOP",  "SIN",     "COS",       "TAN",
    "ATN",      "EXP",        "LOG",      "LOG10",     "RND",      "ROUND", "ROUNDUP", "ROUNDDOWN", "MROUND",
    "MROUNDUP", "MROUNDDOWN", "REPEATIF", "DATEPART",  "DATEDIFF", "MAXOF", "MINOF",   "CROSSOVER"};

/// The text without the brackets of each call of `name`: its "(" and the matching ")". Taking a bracket away
/// may make a further call of the name, which loses its brackets too.
std::string withoutCallBrackets(const std::string& text, std::string_view name) {
  std::vector<std::size_t> match(text.size(), std::string::npos);
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '(') open.push_back(i);
    if (text[i] == ')' && !open.empty()) {
      match[open.back()] = i;
      open.pop_back();
    }
  }
  std::vector<bool> dropped(text.size(), false);
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (dropped[i]) continue;
    if (text[i] == '(' && std::string_view(out).ends_with(name)) {
      if (match[i] != std::string::npos) dropped[match[i]] = true;
      continue;
    }
    out += text[i];
  }
  return out;
}

/// The greatest number inside brackets that is not above 9,999. A number counts when another character
/// ends it.
double greatestPeriod(std::string_view text) {
  constexpr double kGreatest = 9999.0;
  double greatest = 0.0;
  std::size_t opened = 0, closed = 0, tokenLength = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view c = text.substr(i, 1);
    if (c == "(") ++opened;
    if (c == ")") ++closed;
    if (IsNumberText(c) && opened != closed) {
      ++tokenLength;
      continue;
    }
    if (tokenLength > 0) {
      const double number = parseDouble(text.substr(i - tokenLength, tokenLength));
      if (number <= kGreatest) greatest = std::max(greatest, number);
      tokenLength = 0;
    }
  }
  return greatest;
}

/// The greatest period, so many times (5 at least), plus 2.
std::int32_t lookbackOf(std::string_view script, double times) {
  std::string text = replaceAll(script, "  ", " ");
  for (std::string_view name : kNoPeriodCalls) {
    if (!contains(text, name)) continue;
    const std::string call(name);
    text = replaceAll(text, call + " (", call + "(");
    if (contains(text, call + "(")) text = withoutCallBrackets(text, name);
  }
  return toInt32(std::max(greatestPeriod(text) * times, 5.0)) + 2;
}

}  // namespace

std::int32_t CScriptEngine::EstimateLookback(std::string_view script) const {
  return dryRun ? 3333 : lookbackOf(script, 2.0);
}

std::int32_t CScriptEngine::EstimateLookbackFast(std::string_view script) {
  return lookbackOf(script, 1.0);
}

}  // namespace brindlewort
