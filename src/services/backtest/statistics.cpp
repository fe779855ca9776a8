#include "services/backtest/statistics.hpp"

#include <cmath>

#include "platform/random15.hpp"
#include "services/backtest/performance_stats.hpp"

namespace brindlewort {

namespace {

constexpr double kProfitRiskFreeRate = 0.05;
constexpr double kProfitAcceptableReturn = 0.1;
constexpr double kMonthlyAcceptableReturn = 0.05;

bool closesLong(std::int32_t type) {
  return type == kTradeShort || type == kTradeExitLong || type == kTradeExit;
}

bool closesShort(std::int32_t type) {
  return type == kTradeLong || type == kTradeExitShort || type == kTradeExit;
}

void countTrades(Statistics& s, View profits) {
  for (const double x : profits) {
    if (x > 0.0) {
      s.totalProfit += x;
      if (x > s.largestProfit) s.largestProfit = x;
      ++s.winners;
    } else {
      s.totalLoss += x;
      if (x < s.largestLoss) s.largestLoss = x;
      ++s.losers;
    }
  }
}

/// Figures of the profits, trade by trade.
void addProfitFigures(Statistics& s, View profits, std::int64_t seed) {
  using namespace PerformanceStats;
  platform::Random15 random(seed);
  s.percentProfit = (1.0 - std::fabs(s.totalLoss) / std::fabs(s.totalProfit)) * 100.0;
  s.maximumDrawdown = MaximumDrawdown(profits);
  s.monteCarloDrawdown = MonteCarloDrawdown(profits, random);
  s.standardDeviation = StandardDeviation(profits);
  s.annualizedStandardDeviation = AnnualizedStandardDeviation(profits);
  s.downsideDeviation = DownsideDeviation(profits, kProfitAcceptableReturn);
  s.sharpeRatio = SharpeRatio(profits, kProfitRiskFreeRate);
  s.annualizedSharpeRatio = AnnualizedSharpeRatio(profits, kProfitRiskFreeRate);
  if (s.winners > 0 && s.totalProfit != 0.0) s.riskToReward = std::fabs(s.totalLoss / s.totalProfit);
}

/// Figures of the returns, month by month.
void addMonthlyFigures(Statistics& s, View returns, View dates) {
  using namespace PerformanceStats;
  const std::vector<double> months = BinByMonth(returns, dates, s.tradesPerMonth);
  s.compoundMonthlyReturn = CompoundRate(months);
  s.vami = VAMI(months);
  s.sortinoRatio = SortinoRatio(months, kMonthlyAcceptableReturn);
  s.annualizedSortinoRatio = AnnualizedSortinoRatio(months, kMonthlyAcceptableReturn);
  s.sterlingRatio = SterlingRatio(months, kMonthlyAcceptableReturn);
  s.calmarRatio = CalmarRatio(months);
}

}  // namespace

void ClosedTrades::add(double profit, const SignalRecord& opening, double date) {
  profits.push_back(profit);
  returns.push_back(profit / opening.Price);
  dates.push_back(date);
}

ClosedTrades closedTrades(std::span<const SignalRecord> records) {
  ClosedTrades trades;
  for (std::size_t i = 1; i < records.size(); ++i) {
    const SignalRecord& opening = records[i - 1];
    const SignalRecord& closing = records[i];
    if (opening.TradeType == kTradeLong && closesLong(closing.TradeType)) {
      trades.add(closing.Price - opening.Price, opening, closing.JDate);
    } else if (opening.TradeType == kTradeShort && closesShort(closing.TradeType)) {
      trades.add(opening.Price - closing.Price, opening, closing.JDate);
    }
  }
  return trades;
}

bool addOpenTrade(ClosedTrades& trades, std::span<const SignalRecord> records, double lastClose) {
  if (records.empty() || !isEntry(records.back())) return false;
  const SignalRecord& open = records.back();
  const bool isLong = open.TradeType == kTradeLong;
  trades.add(isLong ? lastClose - open.Price : open.Price - lastClose, open, open.JDate);
  return true;
}

std::optional<Statistics> computeStatistics(std::span<const SignalRecord> records, double lastClose,
                                            std::int64_t seed) {
  ClosedTrades trades = closedTrades(records);
  const std::int32_t openAtEnd = addOpenTrade(trades, records, lastClose) ? 1 : 0;
  Statistics s;
  s.records = static_cast<std::int32_t>(records.size()) - openAtEnd;
  countTrades(s, trades.profits);
  // One open trade is taken from both counts: it is not told which of them it went to.
  if (s.winners > 0) s.winners -= openAtEnd;
  if (s.losers > 0) s.losers -= openAtEnd;
  if (s.winners + s.losers == 0) return std::nullopt;
  addProfitFigures(s, trades.profits, seed);
  addMonthlyFigures(s, trades.returns, trades.dates);
  return s;
}

}  // namespace brindlewort
