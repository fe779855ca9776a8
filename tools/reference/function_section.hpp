#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "functions/function_notes.hpp"
#include "functions/function_table.hpp"
#include "name_ways.hpp"

/// What the reference says of one row of the function table, before it takes the form of a page or of a text.
namespace brindlewort::reference {

/// One output of a row: the call that gives it, and the other names of it.
struct Spelling {
  std::string call;  ///< "SMA(source, periods)"
  std::vector<std::string_view> names;
};
std::vector<Spelling> spellingsOf(const FunctionRow& row);

/// The names of a row that are alike in their ways, in the order of the row.
struct NamesOfWays {
  Ways ways;
  std::vector<std::string_view> names;
};
/// Those of the row's first name come first.
std::vector<NamesOfWays> namesByWays(const FunctionRow& row);

struct LabelledText {
  std::string label;
  std::string text;
};

/// What a function computes. A row has two of these where its two ways compute different things.
struct Account {
  std::string title;  ///< empty for the only one
  std::string description;
  std::vector<std::string> formula;  ///< its clauses, a line each
  std::vector<LabelledText> ways;    ///< ranges, seeds and first rows
};

struct FunctionSection {
  std::string title;
  std::vector<Spelling> spellings;
  std::string ways;  ///< which names the ways know, in sentences; empty when both know all of them
  std::vector<LabelledText> arguments;
  std::vector<Account> accounts;
  std::string_view remark;  ///< what the call itself adds; may be empty
};
FunctionSection sectionOf(const FunctionRow& row);

/// The notes of an operation; null when there are none.
const OperationNotes* notesOf(std::string_view operation);
/// The notes that a row takes on a way, which may be another operation's; null when there are none.
const OperationNotes* notesOf(const FunctionRow& row, Path path);

/// True when the row's functions exist on `path`, kWholeHistory or kIncremental.
inline bool hasPath(const FunctionRow& row, Path path) {
  return row.path == Path::kBoth || row.path == path;
}

/// `texts` with ", " between them.
std::string joined(const std::vector<std::string_view>& texts);

/// `text` in lines of at most `width` characters, each behind `indent` blanks, without a last line end.
std::string wrapped(std::string_view text, std::size_t width, std::size_t indent = 0);

/// The section as text for a terminal.
std::string plainText(const FunctionSection& section);
/// The words that the sections use without telling them, as text for a terminal.
std::string_view plainLegend();

}  // namespace brindlewort::reference
