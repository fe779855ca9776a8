#pragma once

#include "engine/expression.hpp"
#include "functions/script_engine.hpp"

namespace brindlewort {

/// Evaluates one expression of the incremental way into its entry. Operands are evaluated and applied one
/// after the other, as a full pass over all rows would do it, but only to the rows that can have changed
/// since the last evaluation: those since its last row, and those that an operand's own changes name. Each
/// row depends on the same row of the operands alone, so the rows are the bits of a full pass.
class Fold {
 public:
  Fold(CScriptEngine& engine, Expression& expression, StoreEntry& target)
      : engine_(engine), expression_(expression), target_(target), out_(&target.values) {}
  void run();

 private:
  using Operand = Step::Operand;

  Operand evaluate(Term& term);
  static Operand operandOf(const StoreEntry* entry);
  Operand evaluateGroup(Term& term);
  Operand evaluateCall(Term& term);
  void take(std::size_t step);
  void startAt(std::size_t row) { from_ = std::min(from_, row); }
  void applyRows(const Step& step, std::size_t from, std::size_t to);
  void applyOperator(const Step& step, std::size_t from, std::size_t to);
  void setLength(std::size_t rows);
  void finish();

  CScriptEngine& engine_;
  Expression& expression_;
  StoreEntry& target_;
  Series scratch_;
  Series* out_;  ///< where the rows are made: the target's, or scratch when an operand is the target itself
  std::size_t from_ = 0;     ///< first row to compute
  bool comparable_ = false;  ///< the last evaluation tells what rows are up to date
  bool hasRows_ = false;     ///< what has been computed so far is a series
  double value_ = 0.0;
};

}  // namespace brindlewort
