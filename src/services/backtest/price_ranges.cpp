#include "services/backtest/price_ranges.hpp"

#include <algorithm>
#include <cmath>

namespace brindlewort {

namespace {

double difference(double high, double low) {
  const double d = high - low;
  return std::isnan(d) ? std::numeric_limits<double>::infinity() : d;
}

PriceRange rangeOf(const Bar& bar) {
  PriceRange range;
  if (bar.HighPrice > range.high) range.high = bar.HighPrice;
  if (bar.LowPrice < range.low) range.low = bar.LowPrice;
  range.fall = range.rise = difference(range.high, range.low);
  return range;
}

}  // namespace

PriceRange joined(const PriceRange& earlier, const PriceRange& later) {
  PriceRange range;
  range.high = std::max(earlier.high, later.high);
  range.low = std::min(earlier.low, later.low);
  range.fall = std::max({earlier.fall, later.fall, difference(earlier.high, later.low)});
  range.rise = std::max({earlier.rise, later.rise, difference(later.high, earlier.low)});
  return range;
}

PriceRanges::PriceRanges(const RunBars& bars) {
  std::vector<PriceRange> blocks(bars.size() / kSmallestBlock);
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    const std::size_t first = i * kSmallestBlock;
    blocks[i] = rangeOf(bars[first]);
    for (std::size_t row = first + 1; row < first + kSmallestBlock; ++row) {
      blocks[i] = joined(blocks[i], rangeOf(bars[row]));
    }
  }
  while (!blocks.empty()) {
    std::vector<PriceRange> larger(blocks.size() / kGrowth);
    for (std::size_t i = 0; i < larger.size(); ++i) {
      larger[i] = blocks[i * kGrowth];
      for (std::size_t j = 1; j < kGrowth; ++j) larger[i] = joined(larger[i], blocks[i * kGrowth + j]);
    }
    levels_.push_back(std::move(blocks));
    blocks = std::move(larger);
  }
}

}  // namespace brindlewort
