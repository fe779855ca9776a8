#include "services/backtest/report.hpp"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "series/julian_date.hpp"
#include "series/numbers.hpp"

namespace brindlewort {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kRoomOfLogLine = 56;

using S = const Statistics&;
constexpr StatisticLine kLines[] = {
    {"Total number of trades: ", "records", [](S s) -> double { return s.records; }, 0, ""},
    {"Average number of trades per month: ", "tradesPerMonth", [](S s) -> double { return s.tradesPerMonth; },
     0, ""},
    {"Number of profitable trades: ", "winners", [](S s) -> double { return s.winners; }, 0, ""},
    {"Number of losing trades: ", "losers", [](S s) -> double { return s.losers; }, 0, ""},
    {"Total profit: ", "totalProfit", [](S s) { return s.totalProfit; }, 4, ""},
    {"Total loss: ", "totalLoss", [](S s) { return s.totalLoss; }, 4, ""},
    {"Percent profit: ", "percentProfit", [](S s) { return s.percentProfit; }, 3, "%"},
    {"Largest profit: ", "largestProfit", [](S s) { return s.largestProfit; }, 4, ""},
    {"Largest loss: ", "largestLoss", [](S s) { return s.largestLoss; }, 4, ""},
    {"Maximum Drawdown: ", "maximumDrawdown", [](S s) { return s.maximumDrawdown; }, 4, ""},
    {"Maximum Drawdown (Monte Carlo): ", "monteCarloDrawdown", [](S s) { return s.monteCarloDrawdown; }, 4,
     ""},
    {"Compound Monthly ROR: ", "compoundMonthlyReturn", [](S s) { return s.compoundMonthlyReturn; }, 4, ""},
    {"Standard deviation: ", "standardDeviation", [](S s) { return s.standardDeviation; }, 8, ""},
    {"Annualized standard deviation: ", "annualizedStandardDeviation",
     [](S s) { return s.annualizedStandardDeviation; }, 8, ""},
    {"Downside deviation (MAR = 10%): ", "downsideDeviation", [](S s) { return s.downsideDeviation; }, 8, ""},
    {"Value Added Monthly Index (VAMI): ", "vami", [](S s) { return s.vami; }, 8, ""},
    {"Sharpe ratio (RFR = 5%): ", "sharpeRatio", [](S s) { return s.sharpeRatio; }, 8, ""},
    {"Annualized Sharpe ratio (RFR = 5%): ", "annualizedSharpeRatio",
     [](S s) { return s.annualizedSharpeRatio; }, 8, ""},
    {"Sortino ratio (MAR = 5%): ", "sortinoRatio", [](S s) { return s.sortinoRatio; }, 8, ""},
    {"Annualized Sortino ratio (MAR = 5%): ", "annualizedSortinoRatio",
     [](S s) { return s.annualizedSortinoRatio; }, 8, ""},
    {"Sterling ratio (MAR = 5%): ", "sterlingRatio", [](S s) { return s.sterlingRatio; }, 8, ""},
    {"Calmar ratio: ", "calmarRatio", [](S s) { return s.calmarRatio; }, 8, ""},
};

/// "," and the number of a bar, and the end of the line.
void appendBarNumber(std::string& text, std::int32_t number) {
  char piece[16] = {','};
  char* const end = std::to_chars(piece + 1, std::end(piece) - kLineEnd.size(), number).ptr;
  text.append(piece, std::copy(kLineEnd.begin(), kLineEnd.end(), end));
}

void appendTradeLog(std::string& text, std::span<const SignalRecord> records, std::int32_t fillers) {
  std::size_t dateAt = 0, dateEnd = 0;
  for (std::size_t i = 0; i < records.size(); ++i) {
    const SignalRecord& record = records[i];
    const std::size_t line = text.size();
    if (i > 0 && record.JDate == records[i - 1].JDate) {  // an exit and an entry on one bar
      text.append(text, dateAt, dateEnd - dateAt);
    } else {
      appendDateTimeText(text, record.JDate);
    }
    dateAt = line;
    dateEnd = text.size();
    text += ',';
    const std::string_view label = tradeLabel(record.Signal);
    if (!label.empty()) {
      text += label;
      appendFixed(text, record.Price, 4);
    }
    appendBarNumber(text, hostBarNumber(record, fillers));
  }
}

void appendRiskToReward(std::string& text, const std::optional<double>& ratio) {
  text += "Risk to reward ratio: ";
  if (ratio) {
    appendFixed(text, *ratio, 3);
  } else {
    text += "0%";
  }
  text += kLineEnd;
}

}  // namespace

std::span<const StatisticLine> statisticLines() {
  return kLines;
}

std::string tradeLog(std::span<const SignalRecord> records, std::int32_t fillers) {
  std::string text;
  text.reserve(records.size() * kRoomOfLogLine);
  appendTradeLog(text, records, fillers);
  return text;
}

std::string reportText(const Statistics& statistics, std::span<const SignalRecord> records, double firstDate,
                       double lastDate, std::int32_t fillers) {
  std::string text;
  text.reserve(2048 + records.size() * kRoomOfLogLine);
  text += "Back tested from ";
  appendDateTimeText(text, firstDate);
  text += " to ";
  appendDateTimeText(text, lastDate);
  text += kLineEnd;
  for (const StatisticLine& line : kLines) {
    text += line.label;
    appendFixed(text, line.value(statistics), line.decimals);
    text += line.unit;
    text += kLineEnd;
  }
  appendRiskToReward(text, statistics.riskToReward);
  text += "Trade Log:\n";
  appendTradeLog(text, records, fillers);
  return text;
}

}  // namespace brindlewort
