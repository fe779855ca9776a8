#pragma once

#include "indicators/frame.hpp"
#include "support/series_checks.hpp"

/// Slow twins of the averages that ranges, movements and trends rest on.
namespace brindlewort::testing {

inline Rows literalSimpleBatch(const Rows& in, Count p) {
  const Count n = rowsOf(in);
  Rows out(in.size(), kNull);
  if (p < 1 || p >= n) return out;
  double sum = 0;
  for (Count i = p + 1; i < n; ++i) {
    if (i == p + 1) {
      for (Count j = p + 1; j >= 2; --j) sum += nz(in[j]);
    } else {
      sum -= nz(in[i - p]);
      sum += nz(in[i]);
    }
    out[i] = sum / static_cast<double>(p);
  }
  return out;
}

/// No seed: rises from 0 at row 1.
inline Rows literalWilderBatch(const Rows& in, Count p) {
  const Count n = rowsOf(in);
  Rows out(in.size(), kNull);
  if (p < 1 || p >= n) return out;
  for (Count i = 2; i < n; ++i) {
    out[i] = nz(out[i - 1]) + (nz(in[i]) - nz(out[i - 1])) * (1.0 / static_cast<double>(p));
  }
  return out;
}

/// First call: the mean of the first p rows, then the recursion.
inline Rows literalWilderResumable(const Rows& in, Count p) {
  const Count n = rowsOf(in);
  Rows out(in.size(), kNull);
  const Count seedRow = firstValueIndex(in) + p - 1;
  if (p < 1 || p > n || seedRow >= n) return out;
  double sum = 0;
  for (Count j = seedRow - p + 1; j <= seedRow; ++j) sum += nz(in[j]);
  out[seedRow] = sum / static_cast<double>(p);
  for (Count i = seedRow + 1; i < n; ++i) {
    out[i] = nz(out[i - 1]) + (nz(in[i]) - nz(out[i - 1])) * (1.0 / static_cast<double>(p));
  }
  return out;
}

}  // namespace brindlewort::testing
