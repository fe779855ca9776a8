#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "services/backtest/signals.hpp"
#include "services/backtest/statistics.hpp"

namespace brindlewort {

/// One figure of the report.
struct StatisticLine {
  std::string_view label;  ///< as the report prints it, its blank included
  std::string_view key;    ///< for output as data
  double (*value)(const Statistics&);
  int decimals;
  std::string_view unit;
};

/// The figures in the report's order, all but the risk to reward ratio, which may have no value.
std::span<const StatisticLine> statisticLines();

/// The host's number of a record's bar; `fillers` bars stood in front of the host's.
inline std::int32_t hostBarNumber(const SignalRecord& record, std::int32_t fillers) {
  return record.BarIndex - fillers;
}

/// A line per record: date, reason and price, number of the bar.
std::string tradeLog(std::span<const SignalRecord> records, std::int32_t fillers);

/// The report: headline, a line per figure, the trade log. Lines end in a carriage return and a line feed,
/// but the log's heading in a line feed alone.
std::string reportText(const Statistics& statistics, std::span<const SignalRecord> records, double firstDate,
                       double lastDate, std::int32_t fillers);

}  // namespace brindlewort
