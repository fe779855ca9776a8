#include "engine/operators.hpp"

#include <algorithm>

#include "platform/power.hpp"
#include "series/null_value.hpp"
#include "series/numbers.hpp"

namespace brindlewort {

namespace {

/// The loops of one operator, made from its formula for two values.
template <class Formula>
struct Loops {
  static void withSeries(View left, View right, Out out) {
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = Formula{}(left[i], right[i]);
  }
  static void withScalar(View left, double right, Out out) {
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = Formula{}(left[i], right);
  }
  static double scalars(double left, double right) { return Formula{}(left, right); }
};

// Arithmetic reads a null as 0; a division by zero is a plain floating division.
struct Add {
  double operator()(double l, double r) const { return nz(l) + nz(r); }
};
struct Subtract {
  double operator()(double l, double r) const { return nz(l) - nz(r); }
};
struct Multiply {
  double operator()(double l, double r) const { return nz(l) * nz(r); }
};
struct Divide {
  double operator()(double l, double r) const { return nz(l) / nz(r); }
};
struct Power {
  double operator()(double l, double r) const { return platform::power(nz(l), nz(r)); }
};

// Comparisons are made on quantised values, and a null stays the large negative number that it is.
template <class Compare>
struct Quantised {
  double operator()(double l, double r) const {
    return Compare{}(QuantizeForCompare(l), QuantizeForCompare(r)) ? 1.0 : 0.0;
  }
};
using Greater = Quantised<std::greater<std::int64_t>>;
using Less = Quantised<std::less<std::int64_t>>;
using GreaterOrEqual = Quantised<std::greater_equal<std::int64_t>>;
using LessOrEqual = Quantised<std::less_equal<std::int64_t>>;
using Equal = Quantised<std::equal_to<std::int64_t>>;
using Unequal = Quantised<std::not_equal_to<std::int64_t>>;

// Truth is an exact comparison with 0.0. "NOT" is a prefix: its left side is not looked at.
struct Not {
  double operator()(double, double r) const { return r == 0.0 ? 1.0 : 0.0; }
};
struct And {
  double operator()(double l, double r) const { return l != 0.0 && r != 0.0 ? 1.0 : 0.0; }
};
struct Or {
  double operator()(double l, double r) const { return l != 0.0 || r != 0.0 ? 1.0 : 0.0; }
};
struct Xor {
  double operator()(double l, double r) const { return (l != 0.0) != (r != 0.0) ? 1.0 : 0.0; }
};
struct Eqv {
  double operator()(double l, double r) const { return (l != 0.0) == (r != 0.0) ? 1.0 : 0.0; }
};

template <class Formula>
constexpr Operator row(std::string_view spelling, Operator::Family family = Operator::Family::kArithmetic,
                       bool prefix = false) {
  return {spelling,
          family,
          prefix,
          Loops<Formula>::withSeries,
          Loops<Formula>::withScalar,
          Loops<Formula>::scalars};
}

constexpr Operator kOperators[] = {
    row<Add>("+"),
    row<Subtract>("-"),
    row<Multiply>("*"),
    row<Divide>("/"),
    row<Divide>("\\"),
    row<Power>("^"),
    row<Greater>(">"),
    row<Less>("<"),
    row<GreaterOrEqual>(">="),
    row<GreaterOrEqual>("=>"),
    row<LessOrEqual>("<="),
    row<LessOrEqual>("=<"),
    row<Equal>("="),
    row<Equal>("=="),
    row<Unequal>("!="),
    row<Unequal>("<>"),
    row<Not>("NOT", Operator::Family::kLogical, true),
    row<And>("AND", Operator::Family::kLogical),
    row<Or>("OR ", Operator::Family::kLogical),
    row<Xor>("XOR", Operator::Family::kLogical),
    row<Eqv>("EQV", Operator::Family::kLogical),
};

/// The first `rows` rows of left become what `loop` gives; the rows behind stay. Writes in place when nobody
/// else holds the series.
template <class Loop>
void update(Series& left, std::size_t rows, Loop loop) {
  if (left.unique()) {
    const Out out = left.edit();
    loop(View(out).first(rows), out.first(rows));
    return;
  }
  Series fresh = Series::uninitialized(left.size());
  const Out out = fresh.edit();
  loop(left.view().first(rows), out.first(rows));
  std::copy(left.view().begin() + static_cast<std::ptrdiff_t>(rows), left.view().end(),
            out.begin() + static_cast<std::ptrdiff_t>(rows));
  left = std::move(fresh);
}

void applyArithmetic(const Operator& op, ScriptVariable& left, const ScriptVariable& right,
                     const Series& zeros) {
  if (left.values.empty()) left.values = zeros;
  std::size_t rows = std::min(left.values.size(), zeros.size());
  if (!right.values.empty()) {
    rows = std::min(rows, right.values.size());
    update(left.values, rows, [&](View l, Out out) { op.withSeries(l, right.values.view(), out); });
  } else {
    update(left.values, rows, [&](View l, Out out) { op.withScalar(l, right.value, out); });
  }
}

void applyLogical(const Operator& op, ScriptVariable& left, const ScriptVariable& right) {
  const std::size_t a = left.values.size();
  const std::size_t b = right.values.size();
  if (a == 0 && b > 0) {
    left.values.assign(b, left.value);
    update(left.values, b, [&](View l, Out out) { op.withSeries(l, right.values.view(), out); });
  } else if (a > 0 && b == 0) {
    if (op.prefix) return;
    update(left.values, a, [&](View l, Out out) { op.withScalar(l, right.value, out); });
  } else {
    update(left.values, std::min(a, b), [&](View l, Out out) { op.withSeries(l, right.values.view(), out); });
  }
}

}  // namespace

const Operator* findOperator(std::string_view spelling) {
  for (const Operator& op : kOperators) {
    if (op.spelling == spelling) return &op;
  }
  return nullptr;
}

void apply(const Operator& op, ScriptVariable& left, const ScriptVariable& right,
           const OperatorContext& context) {
  if (op.family == Operator::Family::kArithmetic) {
    applyArithmetic(op, left, right, context.zeros);
  } else if (!context.dryRun) {
    applyLogical(op, left, right);
  }
  left.value = op.scalars(left.value, right.value);
}

}  // namespace brindlewort
