// Rewrites a statement so that brackets give the grouping that the evaluator, which reads flat from left to
// right, does not know: each side of a comparison and each side of AND, OR and NOT gets brackets, functions
// without arguments get their "()", and the condition of IF and SUMIF gets brackets. Pure text work; it never
// fails, and each step is linear in the text.

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "functions/script_engine.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

constexpr std::array<std::string_view, 10> kComparisons = {
    "==", "=<", "!=", "<>", ">=", "=>", "<=", "=", "<", ">"};
constexpr std::array<std::string_view, 3> kLogical = {"AND", "OR", "NOT"};

/// Names that may stand without "()". Those with a blank or a bracket in front are short and match only at
/// the start of a word.
constexpr std::array<std::string_view, 26> kNoArgumentNames = {"HIGHMINUSLOW",
                                                               " HML",
                                                               "MEDIANPRICE",
                                                               "TYPICALPRICE",
                                                               "WEIGHTEDCLOSE",
                                                               "TRUERANGE",
                                                               "PRIMENUMBERBANDS",
                                                               "PRIMENUMBEROSCILLATOR",
                                                               " PNO",
                                                               " PNBT",
                                                               " PNBB",
                                                               " WAD",
                                                               "WILLIAMSACCUMULATIONDISTRIBUTION",
                                                               "CANDLESTICKS",
                                                               "CANDLESTICKPATTERN",
                                                               " CSP",
                                                               "(CSP",
                                                               "RES1",
                                                               "RES2",
                                                               "RES3",
                                                               "RES4",
                                                               "SUP1",
                                                               "SUP2",
                                                               "SUP3",
                                                               "SUP4",
                                                               "PIVOT"};

void replace(std::string& text, std::string_view from, std::string_view to) {
  if (contains(text, from)) text = replaceAll(text, from, to);
}

void spaceComparisonSigns(std::string& text) {
  static constexpr std::array<std::array<std::string_view, 2>, 7> kRules = {{{"=", " = "},
                                                                             {"> =", ">="},
                                                                             {"< =", "<="},
                                                                             {"= >", "=>"},
                                                                             {"= <", "=<"},
                                                                             {"! =", "!="},
                                                                             {"=  =", "=="}}};
  for (const auto& [from, to] : kRules) replace(text, from, to);
}

/// "a TOKEN b" becomes "a<close> TOKEN <open>b" for each token with a blank on both sides.
void bracketSides(std::string& text, std::string_view token, std::string_view close, std::string_view open) {
  const std::string marked = "%" + std::string(token) + "%";
  replace(text, " " + std::string(token) + " ", marked);
  replace(text, marked, std::string(close) + " " + std::string(token) + " " + std::string(open));
}

void bracketComparisons(std::string& text) {
  for (std::string_view token : kComparisons) bracketSides(text, token, ")", "(");
}

void bracketLogicalSides(std::string& text) {
  bool found = false;
  for (std::string_view token : kLogical) {
    found = contains(text, token) || found;
    bracketSides(text, token, "))", "((");
  }
  text = found ? "((" + text + "))" : "(" + text + ")";
}

/// True when the text ends with a comparison sign that bracketComparisons has set. No other sign has a ")"
/// and a blank in front of it and a blank behind it.
bool endsWithBracketedSign(std::string_view text) {
  for (std::string_view token : kComparisons) {
    if (text.ends_with(token) && text.substr(0, text.size() - token.size()).ends_with(") ")) return true;
  }
  return false;
}

/// " (" becomes "(", save behind a bracketed comparison sign, which keeps its blank.
void dropBlanksInFrontOfBrackets(std::string& text) {
  std::string out;
  out.reserve(text.size());
  const std::string_view source = text;
  std::size_t from = 0;
  for (std::size_t hit; (hit = source.find(" (", from)) != std::string_view::npos; from = hit + 2) {
    out.append(source, from, hit - from);
    out += endsWithBracketedSign(source.substr(0, hit)) ? " (" : "(";
  }
  out.append(source, from);
  text = std::move(out);
}

void tidyBlanks(std::string& text) {
  replace(text, "  ", " ");
  dropBlanksInFrontOfBrackets(text);
  replace(text, " )", ")");
  replace(text, "( ", "(");
}

void addEmptyBrackets(std::string& text) {
  for (std::string_view name : kNoArgumentNames) {
    if (!contains(text, name)) continue;
    const std::string n(name);
    replace(text, n + " ", n);
    replace(text, n, n + "()");
    replace(text, n + "( )", n + "()");
    replace(text, n + "()()", n + "()");
  }
}

void spaceLogicalWords(std::string& text) {
  for (std::string_view token : kLogical) {
    const std::string t(token);
    replace(text, t + ")", t + " )");
    replace(text, t + "(", t + " (");
  }
}

/// The text with `piece` put in at each of the rising positions.
std::string insertAt(std::string_view text, const std::vector<std::size_t>& positions, char piece) {
  std::string out;
  out.reserve(text.size() + positions.size());
  std::size_t from = 0;
  for (std::size_t at : positions) {
    out.append(text, from, at - from) += piece;
    from = at;
  }
  return out.append(text, from);
}

/// A further "(" at two characters behind the start of each `call`, from character `first` of the text on.
/// For "IF(" that is in front of its own bracket; for "SUMIF(" it really is within the name, so that only a
/// SUMIF at the head of the text, which the search does not reach, survives.
void openConditions(std::string& text, std::string_view call, std::size_t first) {
  std::vector<std::size_t> positions;
  for (std::size_t at = first; (at = text.find(call, at)) != std::string::npos;) {
    positions.push_back(at + 2);
    at += 3;
  }
  if (!positions.empty()) text = insertAt(text, positions, '(');
}

/// A ")" in front of the first comma behind each call that stands behind a bracket or, where no such call is
/// left, behind a blank. A comma inside the condition is not told from the argument separator.
void closeConditions(std::string& text, std::string_view call) {
  const std::string behindBracket = "(" + std::string(call);
  const std::string behindBlank = " " + std::string(call);
  std::vector<std::size_t> commas;
  bool bracketLeft = true;
  for (std::size_t p = 0;;) {
    std::size_t hit = bracketLeft ? text.find(behindBracket, p) : std::string::npos;
    bracketLeft = hit != std::string::npos;
    if (!bracketLeft) hit = text.find(behindBlank, p);
    if (hit == std::string::npos) break;
    p = text.find(',', hit);
    if (p == std::string::npos) break;
    commas.push_back(p);
  }
  if (!commas.empty()) text = insertAt(text, commas, ')');
}

/// Splits "SET name =" off. The character right behind the "=" is dropped unread: usually it is the blank.
std::string takeSetPrefix(std::string_view& text) {
  if (!text.starts_with("SET")) return {};
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals + 1 >= text.size()) return {};
  const std::string prefix(text.substr(0, equals + 1));
  text = trim(text.substr(equals + 2));
  return prefix;
}

}  // namespace

std::string CScriptEngine::NormalizeScript(std::string_view script) {
  std::string_view rest = trim(script);
  const std::string prefix = takeSetPrefix(rest);
  if (rest.empty()) return {};
  std::string text(rest);
  spaceComparisonSigns(text);
  bracketComparisons(text);
  bracketLogicalSides(text);
  tidyBlanks(text);
  addEmptyBrackets(text);
  spaceLogicalWords(text);
  if (text.empty() || text == "()" || text == "(())") return {};
  openConditions(text, "IF(", 1);
  closeConditions(text, "IF(");
  if (text.size() > 5) openConditions(text, "SUMIF(", 4);
  closeConditions(text, "SUMIF(");
  return prefix + text;
}

}  // namespace brindlewort
