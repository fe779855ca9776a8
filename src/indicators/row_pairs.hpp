#pragma once

#include "indicators/frame.hpp"

/// Two neighbouring rows worked at once. A formula that is a template over its number gives for a pair, row
/// by row, the bits that it gives for a double; it is worth writing so where it is short and branches would
/// have to be guessed, or where a division per row is most of the time.
namespace brindlewort {

/// Two neighbouring rows in one vector register; its arithmetic is that of two doubles.
using RowPair [[gnu::vector_size(16)]] = double;

template <class X>
inline constexpr bool kIsPair = sizeof(X) == sizeof(RowPair);

/// What the comparison of two numbers gives: true or false, for a pair one of them for each row.
template <class X>
using Mask = decltype(X() < X());

/// True where all of the tests hold. All of them are done: there is no branch to guess.
template <class M, class... Ms>
M all(M first, Ms... rest) {
  return (first & ... & rest);
}
/// True where one of two tests holds.
template <class M>
M either(M a, M b) {
  return a | b;
}
/// True where the first test holds and the second does not.
template <class M>
M butNot(M a, M b) {
  return a & (a ^ b);
}

/// The same value in every row.
template <class X>
X spread(double value) {
  if constexpr (kIsPair<X>) {
    return X{value, value};
  } else {
    return value;
  }
}

inline RowPair nz(RowPair x) {
  return x == NULL_VALUE ? RowPair() : x;
}

/// As std::max and std::min choose: of equal numbers, or with a non-number, the first stands.
template <class X>
X greaterOf(X a, X b) {
  return a < b ? b : a;
}
template <class X>
X lesserOf(X a, X b) {
  return b < a ? b : a;
}

/// |x|, but that a zero keeps its sign.
template <class X>
X sizeOf(X x) {
  return x < X() ? -x : x;
}

/// Reads series at a row (X is double), or at that row and the next (RowPair).
template <class X>
struct RowReader {
  Count row;

  /// The row itself, or the one `back` rows before it.
  X operator()(View in, Count back = 0) const {
    const Count j = row - back;
    if constexpr (kIsPair<X>) {
      return X{in[j], in[j + 1]};
    } else {
      return in[j];
    }
  }
};

/// out[i] = value(at) for each row i of [first, last), `at` being a reader of row i. `value` is called with
/// both kinds of reader, and must not read what this writes.
template <class Value>
void fillRows(Count first, Count last, Out out, Value value) {
  Count i = first;
  for (; i + 1 < last; i += 2) {
    const RowPair pair = value(RowReader<RowPair>{i});
    out[i] = pair[0];
    out[i + 1] = pair[1];
  }
  if (i < last) out[i] = value(RowReader<double>{i});
}

}  // namespace brindlewort
