#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace brindlewort {

/// What a signal means, as `TradeType`, and why a trade was opened or closed, as `Signal`.
enum TradeCode : std::int32_t {
  kTradeLong = 1,
  kTradeShort = 2,
  kTradeExit = 3,  ///< closes either side; no script makes it, the statistics know it
  kTradeExitLong = 4,
  kTradeExitShort = 5,
  kTradeNone = 6,
  // Reasons of an exit; the exit's TradeType is kTradeExitLong or kTradeExitShort.
  kTradeStopLoss = 7,
  kTradeTrailingStop = 8,
  kTradeProfit = 9,
  kTradeNoActivity = 10,
};

/// A row on which a script fired; after the simulation an entry or an exit, a line of the trade log.
struct SignalRecord {
  std::int32_t BarIndex = 0;            ///< row of the bar in the run's bars, counted from 1
  std::int32_t TradeType = kTradeNone;  ///< kTradeLong, kTradeShort, kTradeExitLong or kTradeExitShort
  std::int32_t Signal = kTradeNone;     ///< the TradeType that the script stood for, or the reason of an exit
  double JDate = 0.0;
  double Price = 0.0;  ///< fill price
};

inline bool isEntry(const SignalRecord& record) {
  return record.TradeType == kTradeLong || record.TradeType == kTradeShort;
}

/// What the trade log prints for each code, its comma included.
inline constexpr std::array<std::string_view, 11> kTradeLabels = {
    "",        "LONG,",        "SHORT,",
    "EXIT,",   "EXIT LONG,",   "EXIT SHORT,",
    "",        "STOP LOSS,",   "TRAILING STOP LOSS,",
    "PROFIT,", "NO ACTIVITY,",
};

/// Empty for a code without a label.
inline std::string_view tradeLabel(std::int32_t code) {
  const bool known = code >= 0 && static_cast<std::size_t>(code) < kTradeLabels.size();
  return known ? kTradeLabels[static_cast<std::size_t>(code)] : std::string_view();
}

}  // namespace brindlewort
