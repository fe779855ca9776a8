#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/operators.hpp"
#include "functions/call_site.hpp"

namespace brindlewort {

/// One operand of an expression as the scanner reads it.
struct Term {
  enum class Kind : std::uint8_t { kNothing, kNumber, kName, kGroup, kCall };
  Kind kind = Kind::kNothing;
  double number = 0.0;
  std::string_view text;        ///< of a name; what stands between the brackets of a group
  Expression* group = nullptr;  ///< null until the group is first evaluated
  std::unique_ptr<CallSite> call;
  const StoreEntry* named = nullptr;  ///< what the name meant in the store's shape `namedShape`
  std::uint64_t namedShape = 0;
};

/// What one step of an expression does with its operand.
struct Step {
  enum class Kind : std::uint8_t {
    kTake,       ///< the operand replaces what has been computed so far
    kTakeValue,  ///< only its value does (the operator "&")
    kApply,
  };
  Kind kind = Kind::kTake;
  const Operator* op = nullptr;
  Term term;

  // What the operand was in the evaluation that runs, and before it in the last one.
  struct Operand {
    const StoreEntry* entry = nullptr;  ///< null for a number, and for the dates
    const Series* rows = nullptr;       ///< null for a scalar
    double value = 0.0;
    double lastRow = 0.0;      ///< stands for the last row: a bracket group's value has passed through a text
    bool leftHasRows = false;  ///< of what has been computed before this step
    double leftValue = 0.0;
  };
  Operand operand;
};

/// An expression of the incremental way: its text, scanned once, and what its last evaluation has left.
struct Expression {
  std::string_view text;
  std::string_view setName;  ///< of a SET statement
  bool isSet = false;
  bool scanned = false;
  bool opensWithOperand = true;  ///< its first operand stands in the first round of the scan
  std::vector<Step> steps;

  StoreEntry* entry = nullptr;     ///< its value
  std::uint64_t shape = 0;         ///< of the store when `entry` was found
  std::int32_t pattern = -1;       ///< the candlestick pattern then; it is part of the key of "CSP()"
  bool isDirect = false;           ///< a price, a number or a constant: the entry is not computed
  StoreEntry* variable = nullptr;  ///< of a SET statement: where the value goes
  std::uint64_t variableShape = 0;
  std::size_t variableRows = 0;
  std::uint64_t variableSeen = 0;  ///< when it went there

  /// How the evaluations of one run went, of which a third would only repeat the second.
  struct Repeats {
    std::uint64_t run = 0;
    int times = 0;
    std::uint64_t effects = 0;  ///< the engine's, when the last one began
    int levels = 0;             ///< evaluations inside one another, this one being the first
    bool calls = false;         ///< functions were called, or brackets read:
    std::string_view lastCall;  ///< the last one, empty for a bracket
  };
  Repeats repeats;

  bool valid = false;      ///< the last evaluation ended without an error
  std::size_t rows = 0;    ///< that it computed
  double scalar = 0.0;     ///< its value
  std::uint64_t seen = 0;  ///< when it ended
};

/// All expressions of an engine, one for each text.
class ExpressionTable {
 public:
  Expression& of(std::string_view text);
  /// The same for a text that lives as long as the table, as a piece of an expression's text does.
  Expression& ofPiece(std::string_view text);
  /// The next evaluation of each makes all its rows anew.
  void forgetRows();

 private:
  std::deque<std::string> texts_;
  std::unordered_map<std::string_view, std::unique_ptr<Expression>> expressions_;
};

/// Scans the text: which operands stand in it, and which operators. An operator that nothing handles ends it.
void scanExpression(Expression& expression);

}  // namespace brindlewort
