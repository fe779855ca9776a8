#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "services/backtest/signals.hpp"

namespace brindlewort {

/// The closed trades of a trade list, one row each.
struct ClosedTrades {
  std::vector<double> profits;  ///< in units of the price
  std::vector<double> returns;  ///< profit by the price of the opening record
  std::vector<double> dates;    ///< of the closing record

  void add(double profit, const SignalRecord& opening, double date);
};

/// A record closes the one in front of it when that one is an entry and this one an exit of its side, an exit
/// of either side, or an entry of the other side.
ClosedTrades closedTrades(std::span<const SignalRecord> records);

/// Values an entry at the end of the list at the last bar's close and adds it, under its own date. True when
/// there was one.
bool addOpenTrade(ClosedTrades& trades, std::span<const SignalRecord> records, double lastClose);

/// Every figure of the report. Rates of 0.05 and 0.1 are compared with profits in units of the price where
/// the figure is one of profits; that mixture is part of what the figures mean.
struct Statistics {
  std::int32_t records = 0;  ///< entries and exits alike
  std::int32_t tradesPerMonth = 0;
  std::int32_t winners = 0;
  std::int32_t losers = 0;  ///< trades without profit or loss among them

  double totalProfit = 0.0;
  double totalLoss = 0.0;  ///< 0 or below
  double percentProfit = 0.0;
  double largestProfit = 0.0;
  double largestLoss = 0.0;

  double maximumDrawdown = 0.0;
  double monteCarloDrawdown = 0.0;
  double compoundMonthlyReturn = 0.0;
  double standardDeviation = 0.0;
  double annualizedStandardDeviation = 0.0;
  double downsideDeviation = 0.0;
  double vami = 0.0;
  double sharpeRatio = 0.0;
  double annualizedSharpeRatio = 0.0;
  double sortinoRatio = 0.0;
  double annualizedSortinoRatio = 0.0;
  double sterlingRatio = 0.0;
  double calmarRatio = 0.0;
  std::optional<double> riskToReward;  ///< nothing without profits
};

/// The figures of a trade list; nothing when no trade was closed. `seed` starts the Monte Carlo shuffles; the
/// same seed gives the same figures.
std::optional<Statistics> computeStatistics(std::span<const SignalRecord> records, double lastClose,
                                            std::int64_t seed);

}  // namespace brindlewort
