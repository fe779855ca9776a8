#pragma once

#include <vector>

#include "series/bar.hpp"
#include "services/backtest/backtest_params.hpp"
#include "services/backtest/signals.hpp"

namespace brindlewort::testing {

/// The walk from bar to bar, without any short cut.
inline bool plainFindExit(const std::vector<Bar>& bars, const BacktestParams& p, int firstBar, int lastBar,
                          SignalRecord& e) {
  const int n = static_cast<int>(bars.size());
  const int entryBar = e.BarIndex;
  const double price = e.Price;
  const bool isLong = e.TradeType == kTradeLong;
  const double stop = (isLong ? 100.0 - p.StopLossPct : 100.0 + p.StopLossPct) * price / 100.0;
  const double target = (isLong ? 100.0 + p.ProfitTargetPct : 100.0 - p.ProfitTargetPct) * price / 100.0;
  double trail = stop;
  const bool profitOn = p.ProfitTargetPct > 0.0;
  const bool stopOn = p.StopLossPct > 0.0;
  const bool trailOn = p.TrailingStop > 0.0 && stopOn;
  for (int b = firstBar; b <= lastBar; ++b) {
    const Bar& bar = bars[static_cast<std::size_t>(b) - 1];
    const auto close = [&](int signal, double at) {
      e.BarIndex = b;
      e.JDate = bar.JDate;
      e.Signal = signal;
      e.Price = at;
      return true;
    };
    if (isLong) {
      const double d = bar.HighPrice - price;
      const double candidate = d > 0.0 ? stop + d : trail;
      if (candidate > trail) trail = candidate;
      if (profitOn && bar.HighPrice >= target) return close(9, target);
      if (trailOn && stop != trail && bar.LowPrice <= trail) return close(8, trail);
      if (stopOn && bar.LowPrice <= stop) return close(7, stop);
      if (b == lastBar && b != n - 1) return close(4, bar.ClosePrice);
    } else {
      const double d = price - bar.LowPrice;
      const double candidate = d > 0.0 ? stop - d : trail;
      if (candidate < trail) trail = candidate;
      if (profitOn && bar.LowPrice <= target) return close(9, target);
      if (trailOn && stop != trail && bar.HighPrice >= trail) return close(8, trail);
      if (stopOn && bar.HighPrice >= stop) return close(7, stop);
      if (b == lastBar && b != n - 1) return close(5, bar.ClosePrice);
    }
    if (p.NoActivityBars > 0.0 && b - entryBar > p.NoActivityBars) return close(10, bar.ClosePrice);
  }
  return false;
}

}  // namespace brindlewort::testing
