#pragma once

#include <algorithm>
#include <functional>
#include <limits>
#include <vector>

#include "indicators/frame.hpp"
#include "indicators/row_pairs.hpp"
#include "platform/run_watch.hpp"

/// Rolling extremes, told exactly as a plain scan of each window tells them.
namespace brindlewort {

inline double asItStands(double x) {
  return x;
}

/// The best of the p rows that end at a row which moves on one by one. The answers are those of this scan,
/// oldest row first, at a cost that grows with the logarithm of p alone:
///
///   best = seed;  for each row x of the window: if (Beats(x, best)) best = x;
///
/// So of equal rows the oldest stands, a row that is not a number is passed over, and a seed that is not a
/// number stays. `read` is applied to each row (asItStands, or nz for nulls that read as 0).
template <class Beats, double (*read)(double)>
class RollingExtreme {
 public:
  /// The first window ends at row `first`; first - p + 1 is a row of `rows`.
  RollingExtreme(View rows, Count p, Count first) : rows_(rows), p_(p), first_(first), end_(first) {}

  /// Moves the window on to end at row i; i never falls.
  void slideTo(Count i) {
    row_ = i;
    if (i >= end_) formWindows();
  }
  /// The scan's answer from a given seed.
  double from(double seed) const { return better(seed, bests_[static_cast<std::size_t>(row_ - first_)]); }
  /// The scan's answer when it starts from the oldest row of the window.
  double fromOldest() const { return from(at(row_ - p_ + 1)); }

 private:
  // Beaten by every number that any seed could be beaten by.
  static constexpr double kWorst =
      Beats{}(1.0, 0.0) ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
  /// Windows formed together, unless p is more or fewer rows are left.
  static constexpr Count kWindows = 256;

  template <class X>
  static X better(X older, X newer) {
    return Beats{}(newer, older) ? newer : older;
  }
  double at(Count row) const { return read(rows_[static_cast<std::size_t>(row)]); }

  /// Forms the bests of the windows that end at row_ and behind it. The bests of 2, 4, 8 ... rows are formed
  /// from two of half as many each; two of those that overlap make up a window.
  void formWindows() {
    const Count windows = std::min(std::max(kWindows, p_), rowsOf(rows_) - row_);
    platform::spendSteps(windows + p_);
    first_ = row_;
    end_ = row_ + windows;
    const Count oldest = row_ - p_ + 1;
    bests_.resize(static_cast<std::size_t>(windows + p_ - 1));
    for (Count j = 0; j < rowsOf(bests_); ++j) bests_[j] = better(kWorst, at(oldest + j));
    Count width = 1;
    for (; 2 * width <= p_; width *= 2) joinWith(width);
    if (width < p_) joinWith(p_ - width);
  }

  /// Each best becomes that of its own rows and those of the best `distance` rows behind it.
  void joinWith(Count distance) {
    double* const bests = bests_.data();
    const Count last = rowsOf(bests_) - distance;
    Count j = 0;
    for (; j + 1 < last; j += 2) {
      const RowPair older = {bests[j], bests[j + 1]};
      const RowPair newer = {bests[j + distance], bests[j + distance + 1]};
      const RowPair both = better(older, newer);
      bests[j] = both[0];
      bests[j + 1] = both[1];
    }
    if (j < last) bests[j] = better(bests[j], bests[j + distance]);
  }

  View rows_;
  Count p_;
  Count row_ = 0;              // the window ends here
  Count first_, end_;          // the windows formed end at these rows, the last excluded
  std::vector<double> bests_;  // [k]: the best of the window that ends at row first_ + k
};

template <double (*read)(double) = asItStands>
using RollingHigh = RollingExtreme<std::greater<>, read>;
template <double (*read)(double) = asItStands>
using RollingLow = RollingExtreme<std::less<>, read>;

}  // namespace brindlewort
