#pragma once

#include "indicators/frame.hpp"

/// What the recursive averages share: sums and means for seeds, and the loop that carries the row before.
namespace brindlewort {

/// 0.0 + the rows [first, last) of `in`, oldest first, nulls counting as 0.
inline double sumOfRows(View in, Count first, Count last) {
  double sum = 0.0;
  for (Count i = first; i < last; ++i) sum += nz(in[i]);
  return sum;
}

/// The mean of the p rows from `first`.
inline double meanOfRows(View in, Count first, Count p) {
  return sumOfRows(in, first, first + p) / static_cast<double>(p);
}

/// out[i] = next(i, nz(out[i - 1])) for i in [start, n), start >= 1. A row before the start that was never
/// written counts as 0.
template <class Next>
void runRecursion(Out out, Count start, Count n, Next next) {
  if (start >= n) return;
  double previous = nz(out[start - 1]);
  for (Count i = start; i < n; ++i) {
    out[i] = next(i, previous);
    previous = nz(out[i]);
  }
}

/// Where a seeded recursion runs from, on a call that would start at row `start`. The seed belongs to its
/// row, not to the call: it is stored (again) when the call starts at or before its row, and when the row
/// before the start has never been written.
template <class Seed>
Count seededStart(Out out, Count start, Count seedRow, Seed seed) {
  if (start > seedRow && !isNull(out[start - 1])) return start;
  out[seedRow] = seed();
  return seedRow + 1;
}

/// The resumable recursion from a seed: out[seedRow] = seed(), out[i] = next(i, nz(out[i - 1])) after it.
/// The seed row alone is a success.
template <class Seed, class Next>
Status resumeRecursion(const Target& out, Count n, Count seedRow, Seed seed, Next next) {
  const Count start = startRow(out, seedRow);
  if (start >= n) return kNothingDone;
  runRecursion(out.rows, seededStart(out.rows, start, seedRow, seed), n, next);
  return finish(out, n);
}

}  // namespace brindlewort
