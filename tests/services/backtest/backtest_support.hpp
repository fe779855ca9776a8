#pragma once

#include <string>
#include <vector>

#include "series/run_bars.hpp"
#include "services/backtest/signals.hpp"

/// Bars and signals written down by hand.
namespace brindlewort::testing {

inline constexpr double kNewYear2000 = 2451544.5;  // 1 January 2000, midnight

/// The prices of a day; the open is never looked at.
struct Day {
  double high, low, close;
};

/// Bar number k, counted from 1, is of the k-th January 2000.
inline double dayDate(int number) {
  return kNewYear2000 + number - 1;
}

inline std::vector<Bar> makeBars(const std::vector<Day>& days) {
  std::vector<Bar> bars;
  for (const Day& day : days) {
    Bar bar;
    bar.JDate = dayDate(static_cast<int>(bars.size()) + 1);
    bar.HighPrice = day.high;
    bar.LowPrice = day.low;
    bar.ClosePrice = day.close;
    bars.push_back(bar);
  }
  return bars;
}

/// `count` bars without a range: the close of bar k is 100 + k.
inline std::vector<Bar> risingBars(int count) {
  std::vector<Day> days;
  for (int k = 1; k <= count; ++k) days.push_back({100.0 + k, 100.0 + k, 100.0 + k});
  return makeBars(days);
}

inline RunBars runOver(const std::vector<Bar>& bars) {
  RunBars run;
  run.use(bars);
  return run;
}

/// A signal of a script on bar `number`, at its close.
inline SignalRecord signalOn(const std::vector<Bar>& bars, int number, TradeCode type) {
  const Bar& bar = bars[static_cast<std::size_t>(number) - 1];
  return {number, type, type, bar.JDate, bar.ClosePrice};
}

}  // namespace brindlewort::testing
