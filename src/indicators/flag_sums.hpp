#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

/// out[i] = the sum of the p flags that end at row i, for the rows of [first, last). Flags are -1, 0 or 1:
/// such sums are exact in any order, so the window slides.
inline void sumFlags(View flags, Count p, Count first, Count last, Out out) {
  if (first >= last) return;
  double sum = 0.0;
  for (Count j = first - p + 1; j <= first; ++j) sum += flags[j];
  out[first] = sum;
  for (Count i = first + 1; i < last; ++i) out[i] = sum += flags[i] - flags[i - p];
}

}  // namespace brindlewort
