#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "series/run_bars.hpp"
#include "services/backtest/backtest_params.hpp"
#include "services/backtest/price_ranges.hpp"
#include "services/backtest/signals.hpp"

namespace brindlewort {

/// Finds the exits of entries. The bars must outlive it.
///
/// Of the tests on a bar the first that hits closes the position, for a long one:
///   1. profit target: the high is at or above the target, filled at the target
///   2. trailing stop, once the trail has left the stop: the low is at or below the trail, filled at the
///   trail
///   3. stop loss: the low is at or below the stop, filled at the stop
///   4. the bar is the last to be looked at, but not the data's last but one: filled at the close
///   5. more bars than allowed have passed since the entry: filled at the close
/// The trail starts at the stop and rises by what a bar's high gains on the entry price, that bar included.
/// Short positions mirror this. Levels are filled as they are, gaps or not.
class ExitSearch {
 public:
  ExitSearch(const RunBars& bars, const BacktestParams& params) : bars_(bars), params_(params) {}

  /// Looks at the bars numbered `firstBar` to `lastBar` (from 1; none of them outside the data) and makes the
  /// entry its own exit: bar, date, price and reason. Its TradeType stays. False when no test hits.
  bool FindExit(std::int32_t firstBar, std::int32_t lastBar, SignalRecord& entry);

  /// Has the memory behind a bar fetched, from which a search will soon start: searches are short and start
  /// far from each other, so that most of their time would be waiting.
  void expectSearchFrom(std::int32_t bar) const;

  /// How many bars all searches so far have looked at one by one, and how many blocks of bars they have
  /// passed over.
  std::size_t steps() const { return steps_; }

 private:
  template <class Side>
  bool findExit(std::int32_t firstBar, std::int32_t lastBar, SignalRecord& entry);
  template <class Position>
  std::size_t findPriceHit(std::size_t row, std::size_t end, Position& position, TradeCode& rule);

  const RunBars& bars_;
  const BacktestParams& params_;
  std::size_t steps_ = 0;
  std::optional<PriceRanges> ranges_;  ///< made when bars have been looked at again and again
};

}  // namespace brindlewort
