#pragma once

#include <span>
#include <string_view>
#include <vector>

/// What the reference page tells beyond the rows of the function table. Indicators are described where they
/// are declared, in src/indicators; everything else is described here.
namespace brindlewort {

/// What an operation computes. `batch` is about the whole-history way, `resumable` about the incremental one:
/// ranges, seeds, first row with a value. A way that the operation does not have is empty.
struct OperationNotes {
  std::string_view operation;
  std::string_view description;
  std::string_view formula;
  std::string_view batch;
  std::string_view resumable;
};

/// The operations that are no indicators.
std::span<const OperationNotes> handlerNotes();

/// What the arguments of a function may be, one text for each of its slots, where the slots do not tell it.
/// `function` is the first name of a row.
struct ArgumentNotes {
  std::string_view function;
  std::vector<std::string_view> arguments;
};
std::span<const ArgumentNotes> argumentNotes();

/// What a script does to an operation that its own description cannot know: the series it is given, arguments
/// without effect. `function` is the first name of a row.
struct CallNote {
  std::string_view function;
  std::string_view text;
};
std::span<const CallNote> callNotes();

/// Functions of one subject. They stand together in the table, from the row of `firstFunction` on.
struct FunctionGroup {
  std::string_view firstFunction;
  std::string_view title;
};
std::span<const FunctionGroup> functionGroups();

struct ConstantNotes {
  std::string_view word;
  double number;
  std::string_view text;
};
/// Words that serve the same argument or answer the same function.
struct ConstantGroup {
  std::string_view title;
  std::string_view text;
  std::string_view example;  ///< an expression that uses the group's first word
  std::vector<ConstantNotes> constants;
};
std::span<const ConstantGroup> constantGroups();

}  // namespace brindlewort
