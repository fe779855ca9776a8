#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "series/run_bars.hpp"
#include "services/backtest/backtest_params.hpp"
#include "services/backtest/signals.hpp"

/// Turns the rows on which scripts fired into entries and exits, one position at a time. Signals name bars of
/// `bars`: 1 <= BarIndex <= bars.size().
namespace brindlewort {

/// By date; on one date the larger TradeType first, so exits stand before entries. Equal signals keep their
/// order. A date that is no number stands behind all others.
void sortSignals(std::vector<SignalRecord>& signals);

/// One pass over sorted signals: an entry and an exit of one bar change places where the entry stands first.
void putExitsFirst(std::vector<SignalRecord>& signals);

/// How much a pairing has looked at: signals in search of another, and bars (or blocks of them) in search of
/// an exit.
struct PairingSteps {
  std::size_t signals = 0;
  std::size_t bars = 0;
};

/// The trades of sorted signals: entry, exit, entry, exit. An entry whose exit is not found leaves no trace.
/// The steps, which are told when asked for, grow with the signals and the bars, whether exits are found or
/// not.
std::vector<SignalRecord> pairSignals(const std::vector<SignalRecord>& sorted, const RunBars& bars,
                                      const BacktestParams& params, PairingSteps* steps = nullptr);

/// Drops an entry at the end of the list that no exit follows. An entry that is alone in the list stays.
void dropOpenEntry(std::vector<SignalRecord>& trades);

/// Moves each price by `slipPct` percent to the trader's disadvantage: purchases up, sales down.
void applySlippage(std::vector<SignalRecord>& trades, double slipPct);

/// All of the above in turn. `maxOpenDays` holds the protective rules, see ParseBacktestParams.
std::vector<SignalRecord> simulateTrades(std::vector<SignalRecord> signals, const RunBars& bars,
                                         std::string_view maxOpenDays, double slipPct);

}  // namespace brindlewort
