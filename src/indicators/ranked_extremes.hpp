#pragma once

#include <cstdint>
#include <vector>

#include "indicators/frame.hpp"
#include "platform/run_watch.hpp"
#include "series/rounding.hpp"

/// Extremes of windows whose values are compared at four decimals.
namespace brindlewort {

/// A value's place in the order, the better one higher.
inline std::int64_t rankOf(double x, bool greatest) {
  const std::int64_t quantised = QuantizeForCompare(x);
  return greatest ? quantised : ~quantised;  // ~ turns the order round without overflow
}

/// So few rows are scanned: a queue would cost an allocation in a tick.
inline constexpr Count kScannedWindows = 4;

/// out[i], for each i of [first, last): the newest of the p rows that end at i, or the oldest of those that
/// are truly better. Rows that do not count are passed over, save as the newest. The rows of the first window
/// exist.
template <class Counts>
void scanRankedExtremes(View in, Count p, Count first, Count last, bool greatest, Counts counts, Out out) {
  platform::spendSteps((last - first) * p);
  for (Count i = first; i < last; ++i) {
    double best = in[i];
    std::int64_t bestRank = rankOf(best, greatest);
    for (Count j = i - p + 1; j < i; ++j) {
      if (!counts(in[j])) continue;
      const std::int64_t rank = rankOf(in[j], greatest);
      if (rank > bestRank) best = in[j], bestRank = rank;
    }
    out[i] = best;
  }
}

/// The same in one pass: candidates wait in a queue, the best in front, and of equal ones the oldest in
/// front.
template <class Counts>
void queueRankedExtremes(View in, Count p, Count first, Count last, bool greatest, Counts counts, Out out) {
  struct Candidate {
    Count row;
    std::int64_t rank;
  };
  platform::spendSteps(last - first + p);
  std::vector<Candidate> queue(static_cast<std::size_t>(last - first + p));
  std::size_t head = 0, tail = 0;
  for (Count i = first - p + 1; i < last; ++i) {
    const std::int64_t rank = rankOf(in[i], greatest);
    if (tail > head && queue[head].row <= i - p) ++head;
    if (i >= first) out[i] = tail > head && queue[head].rank > rank ? in[queue[head].row] : in[i];
    if (!counts(in[i])) continue;
    while (tail > head && queue[tail - 1].rank < rank) --tail;
    queue[tail++] = {i, rank};
  }
}

/// Either, whichever costs less; both give the same bits.
template <class Counts>
void rankedExtremes(View in, Count p, Count first, Count last, bool greatest, Counts counts, Out out) {
  if (last - first <= kScannedWindows) {
    scanRankedExtremes(in, p, first, last, greatest, counts, out);
  } else {
    queueRankedExtremes(in, p, first, last, greatest, counts, out);
  }
}

}  // namespace brindlewort
