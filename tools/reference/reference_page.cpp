#include "reference_page.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

#include "functions/language_notes.hpp"

namespace brindlewort::reference {
namespace {

constexpr std::size_t kWidth = 110;

constexpr std::string_view kTop =
    "# Functions of the script language\n"
    "\n"
    "<!-- Written by `cmake --build <build> --target reference`; not to be edited. -->\n"
    "\n"
    "Every function that a script can call. `brindlewort functions NAME` prints the section of one.\n"
    "\n";

constexpr std::string_view kWords =
    "## How to read the sections\n"
    "\n"
    "A script is computed in one of two ways, and most functions exist in both. The **whole-history** way "
    "(the\n"
    "batch form) computes a series over all bars at once. The **incremental** way (the resumable form) keeps "
    "what it\n"
    "has computed and adds the new bars' rows. They are two computations of one idea: first rows, seeds and "
    "some\n"
    "formulas differ, and each section tells both.\n"
    "\n"
    "- Rows count from 0, the oldest bar. Row 0 is the filler bar that a run puts in front of the bars it is "
    "given, so\n"
    "  windows of the whole-history way begin at row 1 or 2.\n"
    "- A *null* is a row without a value: the rows before the first one told here, and what could not be "
    "computed.\n"
    "  It stands in the series as the number -987654321. `nz(x)` is x, or 0 where x is null.\n"
    "- `n` is the number of bars, `p` the periods, `in` the source, `i` the present row, `out` the result. "
    "`in[-1]` is\n"
    "  the row before the present one. `MA` is the moving average of the type given, `SMA`, `EMA` and `WMA` "
    "those of\n"
    "  these types. Other names are those of the arguments, written as one word; `maType` is the moving "
    "average type.\n"
    "- The *lead* of a series is how many null rows stand at its head. Incremental series start behind it.\n"
    "- A range such as `1 <= p < n` is a condition: outside of it all rows are null, or, in the incremental "
    "way,\n"
    "  nothing is written. What a script may pass at all stands under the arguments, and is reported "
    "otherwise.\n"
    "- *Recomputes the last row*: when a bar is added or the newest one changes, the incremental way "
    "computes the last\n"
    "  row that it had again, and the rows behind it.\n"
    "- `trunc` cuts the fraction. Comparing at four decimals takes values as equal that differ further "
    "behind.\n"
    "- A number below 0 is refused as an argument everywhere but in PSAR. The other names of a function mean "
    "the same\n"
    "  as the first. LAST is CLOSE.\n";

std::string blockOf(const std::vector<std::string>& clauses) {
  std::string block = "```text\n";
  for (const std::string& clause : clauses) block += wrapped(clause, kWidth) + '\n';
  return block + "```\n";
}

std::string codeList(const std::vector<std::string_view>& names) {
  std::string list;
  for (const std::string_view name : names) {
    if (!list.empty()) list += ", ";
    list += '`' + std::string(name) + '`';
  }
  return list;
}

std::string cellOf(std::string_view text) {
  std::string cell;
  for (const char c : text) {
    if (c == '|') cell += '\\';
    cell += c;
  }
  return cell;
}

std::string tableRow(const std::vector<std::string>& cells) {
  std::string row = "|";
  for (const std::string& cell : cells) row += ' ' + cellOf(cell) + (cell.empty() ? "|" : " |");
  return row + '\n';
}

std::string tableHead(const std::vector<std::string>& titles) {
  std::string head = tableRow(titles) + '|';
  for (std::size_t i = 0; i < titles.size(); ++i) head += "---|";
  return head + '\n';
}

std::string linkTo(std::string_view heading) {
  return '[' + escaped(heading) + "](#" + anchorOf(heading) + ')';
}

std::string firstSentence(std::string_view text) {
  const std::size_t end = text.find(". ");
  return std::string(end == std::string_view::npos ? text : text.substr(0, end + 1));
}

std::string_view wordFor(Ways ways) {
  if (ways == kBothWays) return "both";
  if (ways.wholeHistory) return "whole history only";
  return ways.incremental ? "incremental only" : "neither";
}

/// The ways of a row, behind them the names that have others.
std::string waysCell(const FunctionRow& row) {
  std::string cell;
  for (const NamesOfWays& group : namesByWays(row)) {
    if (!cell.empty()) cell += "; " + joined(group.names) + ": ";
    cell += wordFor(group.ways);
  }
  return cell;
}

/// All names of an output but the one that stands in the heading.
std::vector<std::string_view> otherNames(const FunctionSection& section) {
  std::vector<std::string_view> names;
  for (const Spelling& spelling : section.spellings) {
    names.insert(names.end(), spelling.names.begin() + 1, spelling.names.end());
  }
  return names;
}

std::string indexTable() {
  std::string table = "## Index\n\n" + tableHead({"Function", "Other names", "What it computes", "Ways"});
  for (const FunctionRow& row : functionTable()) {
    const FunctionSection section = sectionOf(row);
    const std::string computes =
        section.accounts.empty() ? "" : escaped(firstSentence(section.accounts.front().description));
    table += tableRow({linkTo(section.title), escaped(joined(otherNames(section))), computes, waysCell(row)});
  }
  return table + '\n';
}

std::string namesOfWays(Ways ways) {
  std::vector<std::string_view> names;
  for (const FunctionRow& row : functionTable()) {
    for (const NamesOfWays& group : namesByWays(row)) {
      if (group.ways == ways) names.insert(names.end(), group.names.begin(), group.names.end());
    }
  }
  return codeList(names);
}

std::string namesOfFewerWays() {
  return "Names that only the whole-history way knows: " + namesOfWays({true, false}) +
         ".\n\nNames that only the incremental way knows: " + namesOfWays({false, true}) +
         ".\n\nNames that neither way knows, since it takes the name apart before it looks: " +
         namesOfWays({}) + ".\n\n";
}

std::string sections() {
  std::string text;
  for (const FunctionRow& row : functionTable()) {
    for (const FunctionGroup& group : functionGroups()) {
      if (row.names.front().name == group.firstFunction) text += "\n## " + std::string(group.title) + '\n';
    }
    text += '\n' + markdown(sectionOf(row));
  }
  return text;
}

std::string numberText(double number) {
  std::array<char, 32> digits{};
  return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr};
}

std::string exampleBlock(std::string_view script) {
  return "```text\n" + std::string(script) + "\n```\n";
}

std::string wordsAndSigns() {
  std::string text = "\n## Words and signs\n";
  for (const LanguageNotes& notes : languageNotes()) {
    text += "\n### " + std::string(notes.title) + "\n\n" + codeList(notes.words) + "\n\n";
    for (const std::string_view part : notes.paragraphs) text += wrapped(escaped(part), kWidth) + "\n\n";
    text += exampleBlock(notes.example);
  }
  return text;
}

std::string constants() {
  std::string text = "\n## Named constants\n";
  for (const ConstantGroup& group : constantGroups()) {
    text += "\n### " + std::string(group.title) + "\n\n";
    if (!group.text.empty()) text += wrapped(escaped(group.text), kWidth) + "\n\n";
    text += tableHead({"Word", "Number", "Meaning"});
    for (const ConstantNotes& constant : group.constants) {
      text += tableRow(
          {'`' + std::string(constant.word) + '`', numberText(constant.number), escaped(constant.text)});
    }
    text += '\n' + exampleBlock(group.example);
  }
  return text;
}

bool isLetter(char c) {
  return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

/// True where a character in the middle of a text would be read as a mark of Markdown.
bool isMark(std::string_view text, std::size_t i) {
  const char before = i == 0 ? ' ' : text[i - 1];
  const char after = i + 1 == text.size() ? ' ' : text[i + 1];
  switch (text[i]) {
    case '*':
      return before != ' ' || after != ' ';
    case '<':
      return isLetter(after) || after == '/' || after == '!' || after == '?';
    case '\\':
      return true;
    default:
      return false;
  }
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string result;
  bool inCode = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '`') inCode = !inCode;
    if (!inCode && isMark(text, i)) result += '\\';
    result += text[i];
  }
  return result;
}

std::string anchorOf(std::string_view heading) {
  std::string anchor;
  for (const char c : heading) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
      anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    } else if (c == ' ' || c == '-') {
      anchor += '-';
    }
  }
  return anchor;
}

std::string markdown(const FunctionSection& section) {
  std::string text = "### " + escaped(section.title) + "\n\n";
  for (const Spelling& spelling : section.spellings) {
    text += "- `" + spelling.call + '`';
    if (spelling.names.size() > 1) {
      text += ", also " + codeList({spelling.names.begin() + 1, spelling.names.end()});
    }
    text += '\n';
  }
  if (!section.ways.empty()) text += "\n**" + section.ways + "**\n";
  if (!section.arguments.empty()) {
    text += '\n' + tableHead({"Argument", "Takes"});
    for (const LabelledText& argument : section.arguments) {
      text += tableRow({escaped(argument.label), escaped(argument.text)});
    }
  }
  for (const Account& account : section.accounts) {
    const std::string title = account.title.empty() ? "" : "**" + account.title + ".** ";
    text += '\n' + title + escaped(account.description) + "\n\n" + blockOf(account.formula) + '\n';
    for (const LabelledText& way : account.ways)
      text += "- **" + way.label + ":** " + escaped(way.text) + '\n';
  }
  if (!section.remark.empty()) text += '\n' + escaped(section.remark) + '\n';
  return text;
}

std::string referencePage() {
  return std::string(kTop) + indexTable() + namesOfFewerWays() + std::string(kWords) + sections() +
         wordsAndSigns() + constants();
}

}  // namespace brindlewort::reference
