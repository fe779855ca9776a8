#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "functions/script_engine.hpp"
#include "services/backtest/signals.hpp"
#include "services/backtest/statistics.hpp"

/// The work between the component and its engine: runs the scripts, trades on their signals and sums up.
namespace brindlewort {

inline constexpr std::string_view kNoTrades = "Error: Scripts generated no trades.";

/// What a host asks to be tested. An empty script is none.
struct BacktestRequest {
  std::string_view buyScript;
  std::string_view sellScript;
  std::string_view exitLongScript;
  std::string_view exitShortScript;
  double slipPct = 0.0;
  std::string_view maxOpenDays;  ///< the protective rules, see ParseBacktestParams
};

/// A backtest as data.
struct BacktestRun {
  std::string error;     ///< what ended the run; empty with a report and with too few bars
  std::size_t buys = 0;  ///< rows on which each script fired
  std::size_t sells = 0;
  std::size_t longExits = 0;
  std::size_t shortExits = 0;
  std::vector<SignalRecord> trades;      ///< entry, exit, entry, exit; fill prices after slippage
  std::optional<Statistics> statistics;  ///< nothing without a trade
  double firstDate = 0.0;                ///< of the host's bars
  double lastDate = 0.0;
  std::int32_t fillers = 0;  ///< bars in front of the host's: BarIndex - fillers is the host's number
};

/// One of the two ways to run the scripts. They differ in how an engine is made ready and asked, and in the
/// bars that stand in front of the host's; the report begins behind those and counts from there.
struct ScriptWay {
  std::int32_t fillers;  ///< 2 at most
  /// Called before each script is run, the buy script's call being the `first`. An error goes to `errorText`.
  void (*prepare)(CScriptEngine& engine, std::string_view script, bool first);
  /// The numbers of the bars on which a script fired, from 1. An error of the script goes to `errorText`;
  /// after any other message there are none.
  std::vector<std::int32_t> (*runEvents)(CScriptEngine& engine, std::string_view script);

  /// A run needs one bar of the host.
  std::size_t leastBars() const { return static_cast<std::size_t>(fillers) + 1; }
};

/// Scripts are run anew over the whole history. The first bar of a store never reaches a series, so two
/// fillers take its place and that of the bar behind it.
extern const ScriptWay kWholeHistoryWay;
/// The bars are fed to the living series of the engine, and each script is prepared and run over them.
extern const ScriptWay kIncrementalWay;

/// Runs the backtest over the engine's bars, fillers included. `seed` is that of the Monte Carlo shuffles.
BacktestRun runBacktest(CScriptEngine& engine, const ScriptWay& way, const BacktestRequest& request,
                        std::int64_t seed);

/// What the host gets of a run: the error, nothing for too few bars, or the report.
std::string resultText(const BacktestRun& run);

}  // namespace brindlewort
