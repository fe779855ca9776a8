#pragma once

#include <algorithm>
#include <cmath>

#include "support/series_checks.hpp"

/// What all twins stand on. A twin computes the rows of one call with plain loops over all bars; it calls
/// nothing of the library but the null value. Names in `whole` are the twins of the whole-history way, names
/// in `living` those of the incremental way: two computations of one idea, which differ in warm-up, seeds and
/// the treatment of zeros.
namespace brindlewort::testing {

inline int countOf(const Rows& rows) {
  return static_cast<int>(rows.size());
}
inline Rows nulls(const Rows& like) {
  return Rows(like.size(), kNull);
}
/// Nulls at the head of a series, which the incremental way leaves out. Only a value above 0 ends the search.
inline int leadOf(const Rows& rows) {
  int nullRows = 0;
  double seen = -1.0;
  for (double x : rows) {
    if (x > 0) break;
    if (!isNull(x)) seen = x;
    if (isNull(x) && seen == -1.0) ++nullRows;
  }
  return nullRows;
}
/// Nulls at the very head.
inline int headOf(const Rows& rows) {
  int nullRows = 0;
  while (nullRows < countOf(rows) && isNull(rows[nullRows])) ++nullRows;
  return nullRows;
}
/// The sum of rows first to last, nulls as 0.
inline double sumOf(const Rows& rows, int first, int last) {
  double sum = 0;
  for (int j = first; j <= last; ++j) sum += nz(rows[j]);
  return sum;
}
inline double greatestOf(const Rows& rows, int first, int last) {
  double best = rows[first];
  for (int j = first; j <= last; ++j) best = std::max(best, rows[j]);
  return best;
}
inline double leastOf(const Rows& rows, int first, int last) {
  double best = rows[first];
  for (int j = first; j <= last; ++j) best = std::min(best, rows[j]);
  return best;
}

}  // namespace brindlewort::testing
