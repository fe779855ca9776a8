#include "services/backtest/trade_simulation.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "services/backtest/exit_search.hpp"

namespace brindlewort {

namespace {

bool isEarlier(double a, double b) {
  return a < b || (std::isnan(b) && !std::isnan(a));
}

bool standsBefore(const SignalRecord& a, const SignalRecord& b) {
  if (isEarlier(a.JDate, b.JDate)) return true;
  return !isEarlier(b.JDate, a.JDate) && a.TradeType > b.TradeType;
}

/// The positions of the records of one type, asked for in rising order.
class RecordsOfType {
 public:
  RecordsOfType(const std::vector<SignalRecord>& records, TradeCode type) : records_(records), type_(type) {}

  /// The first record of the type behind position `i`, or null.
  const SignalRecord* firstAfter(std::size_t i) {
    next_ = std::max(next_, i + 1);
    while (next_ < records_.size() && records_[next_].TradeType != type_) ++next_, ++steps_;
    return next_ < records_.size() ? &records_[next_] : nullptr;
  }
  std::size_t steps() const { return steps_; }

 private:
  const std::vector<SignalRecord>& records_;
  TradeCode type_;
  std::size_t next_ = 0;
  std::size_t steps_ = 0;
};

/// The position at which the pass goes on behind a trade that the record at `i` has opened: that of the first
/// signal on the exit's bar or after it. Trades that end behind the last signal end the pass.
std::size_t positionAfter(const std::vector<SignalRecord>& sorted, std::size_t i, const SignalRecord& exit,
                          std::size_t& steps) {
  if (exit.BarIndex > sorted.back().BarIndex) return sorted.size();
  std::size_t next = i + 1;
  while (next < sorted.size() && sorted[next].BarIndex < exit.BarIndex) ++next, ++steps;
  return next < sorted.size() ? next : i + 1;
}

}  // namespace

/// Each script's signals follow the bars, so the list is a few runs that rise already: they are merged.
void sortSignals(std::vector<SignalRecord>& signals) {
  std::vector<std::vector<SignalRecord>::iterator> runs{signals.begin()};
  while (runs.back() != signals.end()) {
    runs.push_back(std::is_sorted_until(runs.back(), signals.end(), standsBefore));
  }
  const std::size_t last = runs.size() - 1;
  for (std::size_t width = 1; width < last; width *= 2) {
    for (std::size_t i = 0; i + width < last; i += 2 * width) {
      std::inplace_merge(runs[i], runs[i + width], runs[std::min(i + 2 * width, last)], standsBefore);
    }
  }
}

void putExitsFirst(std::vector<SignalRecord>& signals) {
  for (std::size_t i = 0; i + 1 < signals.size(); ++i) {
    SignalRecord& first = signals[i];
    SignalRecord& second = signals[i + 1];
    const bool secondIsExit = second.TradeType == kTradeExitLong || second.TradeType == kTradeExitShort;
    if (first.BarIndex == second.BarIndex && isEntry(first) && secondIsExit) std::swap(first, second);
  }
}

std::vector<SignalRecord> pairSignals(const std::vector<SignalRecord>& sorted, const RunBars& bars,
                                      const BacktestParams& params, PairingSteps* steps) {
  std::vector<SignalRecord> trades;
  std::size_t passed = 0;
  ExitSearch search(bars, params);
  RecordsOfType longExits(sorted, kTradeExitLong);
  RecordsOfType shortExits(sorted, kTradeExitShort);
  constexpr std::size_t kExpected = 6;  // so far ahead lies an entry two or three trades from here
  // Without an exit signal the walk ends one bar before the data's last.
  const std::int32_t defaultLastBar = static_cast<std::int32_t>(bars.size()) - 1;
  for (std::size_t i = 0; i < sorted.size();) {
    const SignalRecord& entry = sorted[i];
    if (!isEntry(entry)) {
      ++i;
      continue;
    }
    if (i + kExpected < sorted.size()) search.expectSearchFrom(sorted[i + kExpected].BarIndex);
    const bool isLong = entry.TradeType == kTradeLong;
    const SignalRecord* signal = (isLong ? longExits : shortExits).firstAfter(i);
    SignalRecord exit = entry;
    if (!search.FindExit(entry.BarIndex + 1, signal ? signal->BarIndex : defaultLastBar, exit)) {
      ++i;
      continue;
    }
    exit.TradeType = isLong ? kTradeExitLong : kTradeExitShort;
    trades.push_back(entry);
    trades.push_back(exit);
    i = positionAfter(sorted, i, exit, passed);
  }
  if (steps) *steps = {passed + longExits.steps() + shortExits.steps(), search.steps()};
  return trades;
}

void dropOpenEntry(std::vector<SignalRecord>& trades) {
  if (trades.size() > 1 && isEntry(trades.back())) trades.pop_back();
}

void applySlippage(std::vector<SignalRecord>& trades, double slipPct) {
  for (SignalRecord& record : trades) {
    const double slip = slipPct / 100.0 * record.Price;
    const bool isPurchase = record.TradeType == kTradeLong || record.TradeType == kTradeExitShort;
    record.Price = isPurchase ? record.Price + slip : record.Price - slip;
  }
}

std::vector<SignalRecord> simulateTrades(std::vector<SignalRecord> signals, const RunBars& bars,
                                         std::string_view maxOpenDays, double slipPct) {
  sortSignals(signals);
  putExitsFirst(signals);
  std::vector<SignalRecord> trades = pairSignals(signals, bars, ParseBacktestParams(maxOpenDays));
  dropOpenEntry(trades);
  applySlippage(trades, slipPct);
  return trades;
}

}  // namespace brindlewort
