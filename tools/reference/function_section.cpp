#include "function_section.hpp"

#include <algorithm>
#include <array>
#include <charconv>

#include "indicator_notes.hpp"

namespace brindlewort::reference {
namespace {

constexpr std::string_view kWholeHistoryLabel = "Whole history";
constexpr std::string_view kIncrementalLabel = "Incremental";
constexpr std::size_t kWidth = 100;

/// Rows that are described under another name than their operation's, on one way or on both: `function` is
/// the row's first name.
struct OtherNotes {
  std::string_view function;
  Path path;
  std::string_view operation;
};
constexpr OtherNotes kOtherNotes[] = {{"MROUND", Path::kBoth, "RoundToMultiple"},
                                      {"PFX", Path::kIncremental, "PointFigure"}};

// ---- Arguments
// ------------------------------------------------------------------------------------------------

std::string numberText(double number) {
  if (number == kBars) return "the number of bars";
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return std::string(digits.data(), end);
}

std::string_view kindText(SlotKind kind) {
  switch (kind) {
    case SlotKind::kSeries:
      return "series or number";
    case SlotKind::kWhole:
      return "whole number";
    case SlotKind::kInteger:
      return "number, cut to a whole one";
    case SlotKind::kNumber:
    case SlotKind::kLiteral:
      return "number";
    case SlotKind::kBarsNumber:
      return "number, not above the number of bars";
    case SlotKind::kMaType:
      return "one of the moving average types, such as SIMPLE";
    case SlotKind::kIgnored:
      break;
  }
  return "not looked at, and may be left out";
}

std::string rangeText(const Slot& slot) {
  const bool lower = slot.low != -kNoLimit;
  const bool upper = slot.high != kNoLimit;
  if (!lower && !upper) return {};
  if (!upper) return (slot.exclusive ? ", above " : ", at least ") + numberText(slot.low);
  if (!lower) return (slot.exclusive ? ", below " : ", at most ") + numberText(slot.high);
  return (slot.exclusive ? ", between " : ", ") + numberText(slot.low) + (slot.exclusive ? " and " : " to ") +
         numberText(slot.high);
}

std::string slotText(const Slot& slot) {
  std::string text = std::string(kindText(slot.kind)) + rangeText(slot);
  if (!slot.defaultSeries.empty()) return text + "; " + std::string(slot.defaultSeries) + " when left out";
  if (slot.optional) text += "; " + numberText(slot.fallback) + " when left out";
  return text;
}

/// The text of a slot, and what the incremental way has instead of it.
std::string argumentText(const FunctionRow& row, std::size_t slot) {
  std::string text = slotText(row.slots[slot]);
  if (row.incrementalSlots.empty()) return text;
  if (slot >= row.incrementalSlots.size()) return text + " (incremental: one argument too many)";
  const std::string incremental = slotText(row.incrementalSlots[slot]);
  return incremental == text ? text : text + " (incremental: " + incremental + ')';
}

template <class Notes>
const Notes* findByFunction(std::span<const Notes> notes, const FunctionRow& row) {
  const auto at = std::find_if(notes.begin(), notes.end(),
                               [&](const Notes& note) { return note.function == row.names.front().name; });
  return at == notes.end() ? nullptr : &*at;
}

std::vector<LabelledText> argumentsOf(const FunctionRow& row) {
  std::vector<LabelledText> arguments;
  const ArgumentNotes* const notes = findByFunction(argumentNotes(), row);
  for (std::size_t i = 0; i < row.slots.size(); ++i) {
    const bool noted = notes != nullptr && i < notes->arguments.size();
    arguments.push_back(
        {std::string(row.slots[i].name), noted ? std::string(notes->arguments[i]) : argumentText(row, i)});
  }
  return arguments;
}

// ---- What is computed
// -----------------------------------------------------------------------------------------

/// True for the sign behind a clause of a formula: a semicolon, or the full stop of a sentence, which the
/// last point of "..." is not.
bool endsClause(std::string_view formula, std::size_t i) {
  if (formula[i] != '.') return formula[i] == ';';
  return (i + 1 == formula.size() || formula[i + 1] == ' ') && (i == 0 || formula[i - 1] != '.');
}

/// The clauses of a formula.
std::vector<std::string> clausesOf(std::string_view formula) {
  std::vector<std::string> clauses(1);
  for (std::size_t i = 0; i < formula.size(); ++i) {
    std::string& clause = clauses.back();
    if (endsClause(formula, i)) {
      if (i + 1 < formula.size()) clauses.emplace_back();
    } else if (!(clause.empty() && formula[i] == ' ')) {
      clause += formula[i];
    }
  }
  return clauses;
}

Account accountOf(const OperationNotes& notes) {
  return {{}, std::string(notes.description), clausesOf(notes.formula), {}};
}

void addWay(Account& account, std::string_view label, std::string_view text) {
  if (!text.empty()) account.ways.push_back({std::string(label), std::string(text)});
}

std::vector<Account> accountsOf(const FunctionRow& row) {
  const OperationNotes* const whole = notesOf(row, Path::kWholeHistory);
  const OperationNotes* const incremental = notesOf(row, Path::kIncremental);
  std::vector<Account> accounts;
  if (whole != nullptr) {
    accounts.push_back(accountOf(*whole));
    addWay(accounts.back(), kWholeHistoryLabel, whole->batch);
  }
  if (incremental != nullptr) {
    if (incremental != whole) accounts.push_back(accountOf(*incremental));
    addWay(accounts.back(), kIncrementalLabel, incremental->resumable);
  }
  if (accounts.size() == 2) {
    accounts[0].title = kWholeHistoryLabel;
    accounts[1].title = kIncrementalLabel;
  }
  return accounts;
}

std::string_view knownTo(Ways ways) {
  if (ways == kBothWays) return "Known to both ways";
  if (ways.wholeHistory) return "Known to the whole-history way only";
  if (ways.incremental) return "Known to the incremental way only";
  return "Known to neither way";
}

/// Nothing where every name is known to both ways; else a sentence for the function, and one for each of its
/// names that are otherwise.
std::string waysText(const FunctionRow& row) {
  const std::vector<NamesOfWays> groups = namesByWays(row);
  if (groups.size() == 1 && groups.front().ways == kBothWays) return {};
  std::string text = std::string(knownTo(groups.front().ways)) + '.';
  for (std::size_t i = 1; i < groups.size(); ++i) {
    text += ' ' + std::string(knownTo(groups[i].ways)) + ": " + joined(groups[i].names) + '.';
  }
  return text;
}

std::string callOf(const FunctionRow& row, std::string_view name) {
  std::vector<std::string_view> arguments;
  for (const Slot& slot : row.slots) {
    if (slot.kind != SlotKind::kIgnored) arguments.push_back(slot.name);
  }
  return std::string(name) + '(' + joined(arguments) + ')';
}

const OperationNotes* findOperation(std::span<const OperationNotes> notes, std::string_view operation) {
  const auto at = std::find_if(notes.begin(), notes.end(),
                               [&](const OperationNotes& note) { return note.operation == operation; });
  return at == notes.end() ? nullptr : &*at;
}

// ---- The form of a text
// ---------------------------------------------------------------------------------------

std::string withoutTicks(std::string_view text) {
  std::string bare(text);
  bare.erase(std::remove(bare.begin(), bare.end(), '`'), bare.end());
  return bare;
}

void addArguments(std::string& text, const std::vector<LabelledText>& arguments) {
  if (arguments.empty()) return;
  std::size_t widest = 0;
  for (const LabelledText& argument : arguments) widest = std::max(widest, argument.label.size());
  text += "\nArguments\n";
  for (const LabelledText& argument : arguments) {
    const std::size_t column = widest + 4;
    std::string lines = wrapped(argument.text, kWidth, column);
    lines.replace(2, argument.label.size(), argument.label);
    text += lines + '\n';
  }
}

void addAccount(std::string& text, const Account& account) {
  const std::string title = account.title.empty() ? "" : account.title + ": ";
  text += '\n' + wrapped(title + withoutTicks(account.description), kWidth) + '\n';
  text += "\nFormula\n";
  for (const std::string& clause : account.formula) text += wrapped(clause, kWidth, 2) + '\n';
  for (const LabelledText& way : account.ways) {
    text += '\n' + way.label + '\n' + wrapped(withoutTicks(way.text), kWidth, 2) + '\n';
  }
}

}  // namespace

std::string joined(const std::vector<std::string_view>& texts) {
  std::string line;
  for (const std::string_view text : texts) {
    if (!line.empty()) line += ", ";
    line += text;
  }
  return line;
}

std::string wrapped(std::string_view text, std::size_t width, std::size_t indent) {
  const std::string margin(indent, ' ');
  std::string lines = margin;
  std::size_t column = indent;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (column > indent && column + 1 + word.size() > width) {
      lines += '\n' + margin;
      column = indent;
    }
    if (column > indent) lines += ' ', ++column;
    lines += word;
    column += word.size();
  }
  return lines;
}

const OperationNotes* notesOf(std::string_view operation) {
  const OperationNotes* const notes = findOperation(indicatorNotes(), operation);
  return notes != nullptr ? notes : findOperation(handlerNotes(), operation);
}

const OperationNotes* notesOf(const FunctionRow& row, Path path) {
  if (!hasPath(row, path)) return nullptr;
  for (const OtherNotes& other : kOtherNotes) {
    const bool onThisWay = other.path == Path::kBoth || other.path == path;
    if (onThisWay && row.names.front().name == other.function) return notesOf(other.operation);
  }
  return notesOf(row.operation);
}

std::vector<Spelling> spellingsOf(const FunctionRow& row) {
  std::vector<Spelling> spellings;
  std::vector<int> outputs;
  for (const FunctionName& name : row.names) {
    const auto known = std::find(outputs.begin(), outputs.end(), name.output);
    if (known == outputs.end()) {
      outputs.push_back(name.output);
      spellings.push_back({callOf(row, name.name), {name.name}});
    } else {
      spellings[static_cast<std::size_t>(known - outputs.begin())].names.push_back(name.name);
    }
  }
  return spellings;
}

std::vector<NamesOfWays> namesByWays(const FunctionRow& row) {
  std::vector<NamesOfWays> groups;
  for (const FunctionName& name : row.names) {
    const Ways ways = waysOf(row, name.name);
    const auto known = std::ranges::find(groups, ways, &NamesOfWays::ways);
    if (known == groups.end()) {
      groups.push_back({ways, {name.name}});
    } else {
      known->names.push_back(name.name);
    }
  }
  return groups;
}

FunctionSection sectionOf(const FunctionRow& row) {
  FunctionSection section;
  section.spellings = spellingsOf(row);
  std::vector<std::string_view> titles;
  for (const Spelling& spelling : section.spellings) titles.push_back(spelling.names.front());
  section.title = joined(titles);
  section.ways = waysText(row);
  section.arguments = argumentsOf(row);
  section.accounts = accountsOf(row);
  if (const CallNote* note = findByFunction(callNotes(), row)) section.remark = note->text;
  return section;
}

std::string plainText(const FunctionSection& section) {
  std::string text;
  for (const Spelling& spelling : section.spellings) {
    text += spelling.call;
    if (spelling.names.size() > 1) {
      text += "  also " + joined({spelling.names.begin() + 1, spelling.names.end()});
    }
    text += '\n';
  }
  if (!section.ways.empty()) text += wrapped(section.ways, kWidth) + '\n';
  addArguments(text, section.arguments);
  for (const Account& account : section.accounts) addAccount(text, account);
  if (!section.remark.empty()) text += '\n' + wrapped(section.remark, kWidth) + '\n';
  return text;
}

std::string_view plainLegend() {
  return "in: the source; p: the periods; n: the number of bars; nz(x): x, or 0 where it is null;\n"
         "lead: how many null rows stand at the head of the source; in[-1]: the row before. Rows count from "
         "0.\n";
}

}  // namespace brindlewort::reference
