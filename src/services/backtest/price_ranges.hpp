#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "series/run_bars.hpp"

namespace brindlewort {

/// What some neighbouring bars reach. Prices that are no numbers are left out.
struct PriceRange {
  double high = -std::numeric_limits<double>::infinity();
  double low = std::numeric_limits<double>::infinity();
  double fall =
      -std::numeric_limits<double>::infinity();  ///< greatest high minus low of its own or a later bar
  double rise =
      -std::numeric_limits<double>::infinity();  ///< greatest high minus low of its own or an earlier bar
};

/// The range of two neighbours together. A difference that has no value counts as endless.
PriceRange joined(const PriceRange& earlier, const PriceRange& later);

/// The ranges of blocks of bars of several sizes, so that a search for a price can pass over many bars at
/// once. Making it is one pass over the bars, which are not kept.
class PriceRanges {
 public:
  static constexpr std::size_t kSmallestBlock = 32;
  static constexpr std::size_t kGrowth = 16;  ///< blocks of one size that make a block of the next

  explicit PriceRanges(const RunBars& bars);

  /// The bars of the largest block that begins with bar `row`, ends before `end` and that `accepts(range)`;
  /// 0 when there is none.
  template <class Accepts>
  std::size_t largestBlock(std::size_t row, std::size_t end, Accepts accepts) const {
    std::size_t size = kSmallestBlock;
    if (row % size != 0 || row + size > end) return 0;
    std::size_t level = 0;
    while (level + 1 < levels_.size() && row % (size * kGrowth) == 0 && row + size * kGrowth <= end) {
      ++level;
      size *= kGrowth;
    }
    for (;; --level, size /= kGrowth) {
      if (accepts(levels_[level][row / size])) return size;
      if (level == 0) return 0;
    }
  }

 private:
  std::vector<std::vector<PriceRange>> levels_;  ///< whole blocks alone, the smallest size first
};

}  // namespace brindlewort
