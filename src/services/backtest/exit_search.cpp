#include "services/backtest/exit_search.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brindlewort {

namespace {

/// A side sees prices in its own direction: what is greater is better for it. A short position is a long one
/// in prices with the sign turned, which changes no bit of a sum, a difference or a comparison.
struct LongSide {
  static constexpr TradeCode kExit = kTradeExitLong;
  static double turned(double price) { return price; }
  static double best(const Bar& bar) { return bar.HighPrice; }
  static double worst(const Bar& bar) { return bar.LowPrice; }
  static double best(const PriceRange& range) { return range.high; }
  static double worst(const PriceRange& range) { return range.low; }
  static double setback(const PriceRange& range) { return range.fall; }
  static double below(double percent, double price) { return (100.0 - percent) * price / 100.0; }
  static double above(double percent, double price) { return (100.0 + percent) * price / 100.0; }
};

struct ShortSide {
  static constexpr TradeCode kExit = kTradeExitShort;
  static double turned(double price) { return -price; }
  static double best(const Bar& bar) { return -bar.LowPrice; }
  static double worst(const Bar& bar) { return -bar.HighPrice; }
  static double best(const PriceRange& range) { return -range.low; }
  static double worst(const PriceRange& range) { return -range.high; }
  static double setback(const PriceRange& range) { return range.rise; }
  static double below(double percent, double price) { return (100.0 + percent) * price / 100.0; }
  static double above(double percent, double price) { return (100.0 - percent) * price / 100.0; }
};

/// What no price is at, above or below: the level of a rule that is off.
constexpr double kNoLevel = std::numeric_limits<double>::quiet_NaN();

/// An open position and its levels, in the direction of its side.
template <class Side>
class Position {
 public:
  Position(const BacktestParams& params, double entryPrice)
      : price_(Side::turned(entryPrice)),
        stop_(params.stops() ? Side::turned(Side::below(params.StopLossPct, entryPrice)) : kNoLevel),
        target_(params.takesProfit() ? Side::turned(Side::above(params.ProfitTargetPct, entryPrice))
                                     : kNoLevel),
        trail_(params.trails() ? stop_ : kNoLevel),
        isGuarded_(params.takesProfit() || params.stops()),
        trails_(params.trails()) {}

  bool isGuarded() const { return isGuarded_; }

  /// Moves the trail over a bar. The rule that closes the position on it, or kTradeNone.
  TradeCode meet(const Bar& bar) {
    const double best = Side::best(bar), worst = Side::worst(bar);
    trail_ = trailBehind(best);
    const bool reached = best >= target_, stopped = worst <= stop_;
    const bool trailed = (worst <= trail_) & (stop_ != trail_);
    if (!(reached | trailed | stopped)) return kTradeNone;  // most bars: one branch, which is foreseen
    return reached ? kTradeProfit : trailed ? kTradeTrailingStop : kTradeStopLoss;
  }

  /// Moves the trail over a block of bars when surely none of them closes the position; else false, and the
  /// bars must be met one by one.
  bool passes(const PriceRange& range) {
    const double worst = Side::worst(range);
    if (Side::best(range) >= target_ || worst <= stop_) return false;
    if (!trails_) return true;
    if (worst <= trail_) return false;
    const double trail = trailBehind(Side::best(range));
    if (worst <= trail && !keepsDistance(range)) return false;
    trail_ = trail;
    return true;
  }

  double level(TradeCode rule) const {
    if (rule == kTradeProfit) return Side::turned(target_);
    if (rule == kTradeStopLoss) return Side::turned(stop_);
    return Side::turned(trail_) + 0.0;  // a trail at zero has no sign
  }

 private:
  double trailBehind(double best) const {
    const double gain = best - price_;
    const double moved = gain > 0.0 ? stop_ + gain : trail_;
    return moved > trail_ ? moved : trail_;
  }

  /// True when no setback in the block is as deep as the stop is far, by more than all roundings on the way.
  bool keepsDistance(const PriceRange& range) const {
    constexpr double kRoundings = 16.0 * std::numeric_limits<double>::epsilon();
    const double slack = kRoundings * (std::fabs(Side::best(range)) + std::fabs(price_) + std::fabs(stop_));
    return Side::setback(range) < price_ - stop_ - slack;
  }

  double price_, stop_, target_, trail_;
  bool isGuarded_, trails_;
};

/// The number of the first bar that is too long after the entry; beyond all bars when the rule is off.
double firstIdleBar(const BacktestParams& params, const SignalRecord& entry) {
  if (!params.timesOut()) return std::numeric_limits<double>::infinity();
  return entry.BarIndex + std::floor(params.NoActivityBars) + 1.0;
}

}  // namespace

/// The first row of `row` to `end` on which a rule about prices closes the position; `end` when there is
/// none. `rule` tells which.
template <class Position>
std::size_t ExitSearch::findPriceHit(std::size_t row, std::size_t end, Position& position, TradeCode& rule) {
  if (!position.isGuarded()) return end;
  // Trades that follow one another walk over each bar once. Only entries that find no exit, or dates that
  // fall, bring the walk back again and again.
  if (!ranges_ && steps_ > 2 * bars_.size()) ranges_.emplace(bars_);
  const auto passes = [&](const PriceRange& range) { return position.passes(range); };
  while (row < end) {
    std::size_t blockEnd = end;
    if (ranges_) {
      if (const std::size_t passed = ranges_->largestBlock(row, end, passes)) {
        row += passed;
        ++steps_;
        continue;
      }
      blockEnd = std::min(end, (row / PriceRanges::kSmallestBlock + 1) * PriceRanges::kSmallestBlock);
    }
    const std::size_t first = row;
    for (; row < blockEnd; ++row) {
      rule = position.meet(bars_[row]);
      if (rule != kTradeNone) break;
    }
    steps_ += row - first;
    if (row < blockEnd) return row;
  }
  return end;
}

template <class Side>
bool ExitSearch::findExit(std::int32_t firstBar, std::int32_t lastBar, SignalRecord& entry) {
  if (firstBar > lastBar) return false;
  const double idleBar = std::max<double>(firstBar, firstIdleBar(params_, entry));
  const bool isIdle = idleBar <= lastBar;
  const std::size_t end = static_cast<std::size_t>(isIdle ? static_cast<std::int32_t>(idleBar) : lastBar);

  Position<Side> position(params_, entry.Price);
  TradeCode rule = kTradeNone;
  std::size_t row = findPriceHit(static_cast<std::size_t>(firstBar) - 1, end, position, rule);
  if (row < end) {
    entry.Price = position.level(rule);
  } else {
    const bool closesOnLast = end == static_cast<std::size_t>(lastBar) && end + 1 != bars_.size();
    if (!closesOnLast && !isIdle) return false;
    rule = closesOnLast ? Side::kExit : kTradeNoActivity;
    row = end - 1;
    entry.Price = bars_[row].ClosePrice;
  }
  entry.BarIndex = static_cast<std::int32_t>(row) + 1;
  entry.JDate = bars_[row].JDate;
  entry.Signal = rule;
  return true;
}

void ExitSearch::expectSearchFrom(std::int32_t bar) const {
  constexpr std::size_t kBars = 6;  // from there on the processor fetches by itself
  const std::size_t first = static_cast<std::size_t>(bar);
  for (std::size_t row = first; row < std::min(first + kBars, bars_.size()); ++row) {
    __builtin_prefetch(&bars_[row].HighPrice);
  }
}

bool ExitSearch::FindExit(std::int32_t firstBar, std::int32_t lastBar, SignalRecord& entry) {
  return entry.TradeType == kTradeLong ? findExit<LongSide>(firstBar, lastBar, entry)
                                       : findExit<ShortSide>(firstBar, lastBar, entry);
}

}  // namespace brindlewort
