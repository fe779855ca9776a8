#pragma once

#include <string_view>

#include "series/field.hpp"

namespace brindlewort {

/// An operator of the language, applied to two values row by row: an accumulator and an operand. TRUE is 1.0,
/// FALSE 0.0, and every value but 0.0 counts as true. `out` may be `left`.
struct Operator {
  enum class Family { kArithmetic, kLogical };  ///< comparisons go with arithmetic

  std::string_view spelling;
  Family family;
  bool prefix;  ///< the left side is not looked at
  void (*withSeries)(View left, View right, Out out);
  void (*withScalar)(View left, double right, Out out);
  double (*scalars)(double left, double right);
};

/// The operator of this spelling ("NOT", "AND", "OR ", "XOR", "EQV", or one or two signs); null when none
/// has it. There is no precedence.
const Operator* findOperator(std::string_view spelling);

struct OperatorContext {
  const Series& zeros;  ///< as many as the run has rows
  bool dryRun;
};

/// left = left op right. Arithmetic and comparison of a scalar left side with anything first makes it a
/// series of zeros, so that `2 * CLOSE` is 0 in all rows but the last: the left scalar is not spread.
void apply(const Operator& op, ScriptVariable& left, const ScriptVariable& right,
           const OperatorContext& context);

}  // namespace brindlewort
