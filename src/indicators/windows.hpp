#pragma once

#include "indicators/frame.hpp"
#include "indicators/row_pairs.hpp"
#include "platform/run_watch.hpp"

/// Windows that are added afresh for each row. Rows are worked in blocks side by side, in vector registers,
/// while each row keeps its own order of additions: the bits are those of the plain double loop.
namespace brindlewort {

enum class WindowOrder { kOldestFirst, kNewestFirst };

/// Rows worked side by side by sumWindows.
inline constexpr Count kRowBlock = 8;

/// The distance from the newest row at a step through a window of p rows.
template <WindowOrder order>
constexpr Count distanceAt(Count step, Count p) {
  return order == WindowOrder::kOldestFirst ? p - 1 - step : step;
}

/// For each row i of [first, last), in rising order: total = 0.0 + term(j, k) over the p rows j of the window
/// ending at i, in the given order, k being the distance i - j from the newest row; then emit(i, total).
/// `term` must be pure, and must not read what `emit` writes; it is called for rows of
/// [first - p + 1, last) only.
template <WindowOrder order, class Term, class Emit>
void sumWindows(Count first, Count last, Count p, Term term, Emit emit) {
  constexpr Count kPairs = kRowBlock / 2;
  Count i = first;
  for (; i + kRowBlock <= last; i += kRowBlock) {
    platform::spendSteps(kRowBlock / 4 * p);
    RowPair total[kPairs] = {};
    for (Count step = 0; step < p; ++step) {
      const Count k = distanceAt<order>(step, p);
      for (Count pair = 0; pair < kPairs; ++pair) {
        const Count j = i + 2 * pair - k;
        total[pair] += RowPair{term(j, k), term(j + 1, k)};
      }
    }
    for (Count r = 0; r < kRowBlock; ++r) emit(i + r, total[r / 2][r % 2]);
  }
  for (; i < last; ++i) {
    platform::spendSteps(p);
    double total = 0.0;
    for (Count step = 0; step < p; ++step) {
      const Count k = distanceAt<order>(step, p);
      total += term(i - k, k);
    }
    emit(i, total);
  }
}

}  // namespace brindlewort
