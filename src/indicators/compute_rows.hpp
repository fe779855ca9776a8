#pragma once

#include "indicators/frame.hpp"

/// Loops of resumable operations whose rows do not depend on each other.
namespace brindlewort {

/// out[i] = value(i) from where the call starts to the end. kNothingDone when there is no such row.
template <class Value>
Status computeRows(const Target& out, Count first, Count n, Value value) {
  const Count start = startRow(out, first);
  if (start >= n) return kNothingDone;
  const Out rows = out.rows;
  for (Count i = start; i < n; ++i) rows[i] = value(i);
  return finish(out, n);
}

/// Copies a work series, which has its first value at row `first`.
inline Status copyRows(View from, Count first, Count n, const Target& out) {
  return computeRows(out, first, n, [=](Count i) { return from[i]; });
}

}  // namespace brindlewort
