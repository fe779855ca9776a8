#pragma once

#include <functional>
#include <limits>
#include <vector>

#include "indicators/frame.hpp"

/// Rolling extremes, told exactly as a plain scan of each window tells them.
namespace brindlewort {

inline double asItStands(double x) {
  return x;
}

/// The best of the p rows that end at a row which moves on one by one. The answers are those of this scan,
/// oldest row first, at a cost that does not grow with p:
///
///   best = seed;  for each row x of the window: if (Beats(x, best)) best = x;
///
/// So of equal rows the oldest stands, a row that is not a number is passed over, and a seed that is not a
/// number stays. `read` is applied to each row (asItStands, or nz for nulls that read as 0).
template <class Beats, double (*read)(double)>
class RollingExtreme {
 public:
  /// The first window ends at row `first`; first - p + 1 is a row of `rows`.
  RollingExtreme(View rows, Count p, Count first)
      : rows_(rows), p_(p), next_(first - p + 1), tails_(static_cast<std::size_t>(p), kWorst) {}

  /// Moves the window on to end at row i; i never falls.
  void slideTo(Count i) {
    while (next_ <= i) take(next_++);
  }
  /// The scan's answer from a given seed.
  double from(double seed) const { return better(seed, better(tails_[taken_], head_)); }
  /// The scan's answer when it starts from the oldest row of the window.
  double fromOldest() const { return from(at(next_ - p_)); }

 private:
  // Beaten by every number that any seed could be beaten by.
  static constexpr double kWorst =
      Beats{}(1.0, 0.0) ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();

  static double better(double older, double newer) { return Beats{}(newer, older) ? newer : older; }
  double at(Count row) const { return read(rows_[static_cast<std::size_t>(row)]); }

  // The rows are cut into blocks of p. A window is the tail of one block and the head of the next: the bests
  // of all tails are formed once a block, that of the head grows with it.
  void take(Count row) {
    head_ = better(head_, at(row));
    if (++taken_ < tails_.size()) return;
    double best = kWorst;
    for (std::size_t k = tails_.size(); k-- > 0; --row) {
      best = better(better(kWorst, at(row)), best);
      tails_[k] = best;
    }
    head_ = kWorst;
    taken_ = 0;
  }

  View rows_;
  Count p_;
  Count next_;
  std::vector<double> tails_;  // [k]: the best of the rows from k on of the last whole block
  double head_ = kWorst;       // the best of the rows taken of the present block
  std::size_t taken_ = 0;
};

template <double (*read)(double) = asItStands>
using RollingHigh = RollingExtreme<std::greater<>, read>;
template <double (*read)(double) = asItStands>
using RollingLow = RollingExtreme<std::less<>, read>;

}  // namespace brindlewort
