#include "services/backtest/report.hpp"

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

/// Writes dates; an exit and the entry that follows it are often of one bar, whose text is made once.
class DateWriter {
 public:
  void append(std::string& text, double date) {
    if (date != date_ || text_.empty()) {
      text_.clear();
      appendDateTimeText(text_, date);
      date_ = date;
    }
    text += text_;
  }

 private:
  double date_ = 0.0;
  std::string text_;  ///< of date_; empty before the first
};

void appendTradeLog(std::string& text, std::span<const SignalRecord> records, std::int32_t fillers) {
  DateWriter dates;
  for (const SignalRecord& record : records) {
    dates.append(text, record.JDate);
    text += ',';
    const std::string_view label = tradeLabel(record.Signal);
    if (!label.empty()) {
      text += label;
      appendFixed(text, record.Price, 4);
    }
    text += ',';
    text += std::to_string(hostBarNumber(record, fillers));
    text += kLineEnd;
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
