// The checks against slow twins: each operator in turn, names cut out of the text, the text cut behind each
// separator.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "services/validate/name_tables.hpp"
#include "services/validate/operator_checks.hpp"
#include "services/validate/syntax_checks.hpp"

namespace brindlewort::validation {
namespace {

const std::vector<std::string> kSetNames = {"FORTY", "ANDRO", "A-B", "XORAND", "OR+AND", "5-5ORB"};
const std::vector<std::string> kOperatorList = {">=",  "<=", "<>", "!=", "AND", "XOR", "OR", "NOT", "EQV",
                                                "MOD", "+",  "-",  "*",  "/",   "!",   ">",  "<",   "="};

bool blank(char c) {
  return c == ' ' || c == '\r' || c == '\n';
}
bool letter(char c) {
  return c >= 'A' && c <= 'Z';
}
bool among(char c, std::string_view list) {
  return list.find(c) != std::string_view::npos;
}
bool known(const std::string& word) {
  for (std::string_view name : knownNames()) {
    std::string upper(name);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    if (upper == word) return true;
  }
  return std::find(kSetNames.begin(), kSetNames.end(), word) != kSetNames.end();
}

/// Before the sign stands nothing, an operator, an opening bracket or a comma; behind it a digit or a point.
bool sign(const std::string& text, std::size_t at) {
  if (text[at] != '+' && text[at] != '-') return false;
  if (at + 1 == text.size() || !among(text[at + 1], ".0123456789")) return false;
  std::string before = text.substr(0, at);
  while (!before.empty() && blank(before.back())) before.pop_back();
  if (before.empty() || among(before.back(), "([{,")) return true;
  for (const std::string& op : kOperatorList) {
    if (before.size() < op.size() || before.substr(before.size() - op.size()) != op) continue;
    if (!letter(op[0]) || before.size() == op.size()) return true;
    if (among(before[before.size() - op.size() - 1], "=><+-*/ ()[]{}~,&|^!%\r\n")) return true;
  }
  return false;
}

/// One character of the working text, which loses characters on the way.
struct Character {
  char c;
  std::size_t place;  ///< in the script
  bool found;         ///< in a longer operator
};

std::string twinBlanks(const std::string& script) {
  std::vector<Character> text;
  for (std::size_t i = 0; i < script.size(); ++i) text.push_back({script[i], i, false});
  const auto at = [&](std::size_t i) { return i < text.size() ? text[i].c : ' '; };
  for (const std::string& op : kOperatorList) {
    for (std::size_t i = 0; i + op.size() <= text.size();) {
      bool same = true, found = true;
      for (std::size_t k = 0; k < op.size(); ++k) {
        same = same && text[i + k].c == op[k];
        found = found && text[i + k].found;
      }
      if (!same || found) {
        ++i;
        continue;
      }
      const char before = i == 0 ? ' ' : text[i - 1].c;
      const char after = at(i + op.size());
      if (letter(before) || letter(after)) {
        std::size_t from = i, to = i;
        while (from > 0 && !blank(at(from - 1)) && !among(at(from - 1), "()[]{},")) --from;
        while (to < text.size() && !blank(at(to)) && !among(at(to), "()[]{},")) ++to;
        std::string word;
        for (std::size_t k = from; k < to; ++k) word += text[k].c;
        if (known(word)) {
          text.erase(text.begin() + static_cast<std::ptrdiff_t>(from),
                     text.begin() + static_cast<std::ptrdiff_t>(to));
          i = from;
          continue;
        }
      }
      for (std::size_t k = 0; k < op.size(); ++k) text[i + k].found = true;
      if (!sign(script, text[i].place)) {
        if (!blank(before)) return "No space before '" + op + "'";
        if (!blank(after) && op != "NOT") return "No space after '" + op + "'";
      }
      i += op.size();
    }
  }
  return "";
}

std::string twinWords(std::string text) {
  for (char& c : text) {
    if (c == '\r' || c == '\n') c = '~';
  }
  const std::string cuts = "=><+-*/ ()[]{}~,&|^!%";
  const std::pair<const char*, const char*> spelled[] = {{"AND", "&"}, {"OR", "|"},  {"XOR", "^"},
                                                         {"NOT", "!"}, {"EQV", "="}, {"MOD", "%"}};
  for (const auto& [word, symbol] : spelled) {
    const std::string name = word;
    for (std::size_t i = text.find(name); i != std::string::npos; i = text.find(name, i)) {
      const bool first = i == 0 || among(text[i - 1], cuts);
      const bool last = i + name.size() == text.size() || among(text[i + name.size()], cuts);
      if (first && last) {
        text.replace(i, name.size(), symbol);
      } else {
        ++i;
      }
    }
  }
  std::set<std::string> setNames(kSetNames.begin(), kSetNames.end());
  const auto passes = [&](const std::string& word) {
    if (word.size() <= 1) return true;
    if (std::count(word.begin(), word.end(), '.') <= 1 &&
        word.find_first_not_of("0123456789.-+") == std::string::npos) {
      return true;
    }
    return setNames.contains(word) || known(word);
  };
  for (std::size_t i = 0; i < text.size();) {
    if (!among(text[i], cuts)) {
      ++i;
      continue;
    }
    const std::string word = text.substr(0, i);
    if (text.substr(0, 4) == "SET ") {
      const std::string rest = text.substr(4);
      setNames.insert(rest.substr(0, rest.find_first_of(cuts)));
    }
    if (!passes(word)) return "'" + word + "' is not a valid script";
    text = text.substr(i + 1);
    i = 0;
  }
  return passes(text) ? "" : "'" + text + "' is not a valid script";
}

std::string twinNeighbours(const std::string& script) {
  std::string text = script;
  for (char& c : text) {
    if (blank(c)) c = ' ';
  }
  const std::string cuts = "=><+-*/ ()[]{}~,&|^!%";
  const std::pair<std::string, std::string> spelled[] = {{"AND", "&"}, {"OR", "|"},  {"XOR", "^"},
                                                         {"NOT", "!"}, {"EQV", "="}, {"MOD", "%"}};
  for (const auto& [name, symbol] : spelled) {
    for (std::size_t i = text.find(name); i != std::string::npos; i = text.find(name, i)) {
      const bool first = i == 0 || among(text[i - 1], cuts);
      const bool last = i + name.size() == text.size() || among(text[i + name.size()], cuts);
      if (first && last) {
        text.replace(i, name.size(), symbol);
      } else {
        ++i;
      }
    }
  }
  for (std::size_t i = text.find("  "); i != std::string::npos; i = text.find("  ")) text.erase(i, 1);

  const auto signHere = [&](std::size_t at) {
    if (!among(text[at], "+-") || at + 1 == text.size() || !among(text[at + 1], ".0123456789")) return false;
    std::size_t i = at;
    while (i > 0 && text[i - 1] == ' ') --i;
    return i == 0 || among(text[i - 1], "([{,>=<+-*/&|^!%");
  };
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!among(text[i], "+-*/&|^!%") || signHere(i)) continue;
    if (text[i] == '!' && i + 1 < text.size() && text[i + 1] == '=') continue;
    for (std::size_t neighbour : {i - 1, i + 1}) {
      if (neighbour >= text.size() || !among(text[neighbour], ">=<+-*/&|^!%") || signHere(neighbour))
        continue;
      return "No operator allowed before and after an operator";
    }
  }
  return "";
}

class RandomScripts {
 public:
  std::string next() {
    static const std::vector<std::string> kPieces = {
        "CLOSE", "FORECAST", "FORTY", "ANDRO", "A-B", "XORAND", "OR+AND", "5-5ORB", "BAND", "A",
        "OR",    "XOR",      "AND",   "NOT",   "MOD", "EQV",    ">=",     "<=",     "<>",   "!=",
        "+",     "-",        "*",     "/",     "!",   ">",      "<",      "=",      "&",    "|",
        "%",     "5",        ".5",    "-5",    "+.5", "(",      ")",      "[",      "}",    ",",
        " ",     " ",        "\r\n",  "SET ",  "FOO", "\n",     "_",      "\xE4",   "1.2"};
    std::string script;
    const std::size_t pieces = 1 + random_() % 9;
    const bool spaced = random_() % 4 != 0;
    for (std::size_t i = 0; i < pieces; ++i) {
      script += kPieces[random_() % kPieces.size()];
      if (spaced && random_() % 5 != 0) script += ' ';
    }
    return script;
  }

 private:
  std::mt19937 random_{20240611};
};

TEST(CheckTwins, RandomScripts) {
  RandomScripts scripts;
  int blanks = 0, words = 0, neighbours = 0;
  constexpr int kScripts = 20'000;
  for (int i = 0; i < kScripts; ++i) {
    const std::string script = scripts.next();
    ScriptNames names;
    for (const std::string& name : kSetNames) names.addSetName(name);
    const std::string blankFault = CheckOperatorBlanks(script, names);
    ASSERT_EQ(blankFault, twinBlanks(script)) << script;
    const std::string wordFault = CheckWords(script, names);
    ASSERT_EQ(wordFault, twinWords(script)) << script;
    const std::string neighbourFault = CheckOperatorNeighbours(script);
    ASSERT_EQ(neighbourFault, twinNeighbours(script)) << script;
    blanks += blankFault.empty();
    words += wordFault.empty();
    neighbours += neighbourFault.empty();
  }
  // Both answers are often given.
  for (int passed : {blanks, words, neighbours}) {
    EXPECT_GT(passed, kScripts / 20);
    EXPECT_LT(passed, kScripts * 19 / 20);
  }
}

}  // namespace
}  // namespace brindlewort::validation
