#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "chart.hpp"
#include "series/bar.hpp"
#include "services/backtest/backtest_run.hpp"

/// What the tool makes of a backtest's data.
namespace brindlewort::tool {

/// One JSON object: "from", "to", "bars"; "fired", how often each script did; "statistics", a member for each
/// figure, null where it is no number; "trades", the lines of the trade log, with the profit on those that
/// close a position. The run has statistics.
std::string backtestJson(const BacktestRun& run, std::int32_t bars);

/// The picture of a run with statistics. `dates` and `closes` are filled with those of the bars and must live
/// as long as the chart.
BacktestChart backtestChart(const BacktestRun& run, const BarStore& bars, const std::string& title,
                            std::vector<double>& dates, std::vector<double>& closes);

/// One of the four scripts of a backtest and what became of it.
struct ScriptOutcome {
  const char* name;  ///< as the options call it
  bool given;
  std::size_t fired;        ///< on how many bars
  std::int32_t barsWanted;  ///< that the script asks for
};

/// Why a run gave no trades, as far as can be told: which script fired how often, and which had too few bars.
std::string noTradesText(const std::vector<ScriptOutcome>& scripts, std::int32_t bars);

}  // namespace brindlewort::tool
