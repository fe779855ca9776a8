#include "services/backtest/backtest_run.hpp"

#include <utility>

#include "services/backtest/report.hpp"
#include "services/backtest/trade_simulation.hpp"
#include "services/output/output_worker.hpp"

namespace brindlewort {

namespace {

constexpr std::size_t kLongestScript = 63'999;

void nothingToPrepare(CScriptEngine&, std::string_view, bool) {}

/// The first script is prepared before the series are set up and take the bars; each further one drops what
/// the one before has left. What the preparation refuses contributes no signals.
void prepareIncremental(CScriptEngine& engine, std::string_view script, bool first) {
  constexpr std::int32_t kUsualSize = -1;
  std::string refused;
  if (!first) engine.SetDataRetrieveMode(CScriptEngine::kReplaceScript);
  engine.ProcessScripData(script, refused);
  if (!first) return;
  engine.InitialiseTransientStore(kUsualSize);
  for (std::size_t i = 0; i < engine.bars.size(); ++i) {
    engine.ApplyBarChange(engine.bars[i], CScriptEngine::kNewBar);
  }
}

/// The signals of one backtest, script by script.
class SignalCollector {
 public:
  SignalCollector(CScriptEngine& engine, const ScriptWay& way) : engine_(engine), way_(way) {}

  /// Runs a script and adds its signals; how many there are. Nothing is run once a script has failed.
  std::size_t run(std::string_view script, TradeCode type) {
    if (failed()) return 0;
    const std::size_t before = signals_.size();
    way_.prepare(engine_, script, type == kTradeLong);
    if (failed() || script.empty() || script.size() > kLongestScript) return 0;
    const std::vector<std::int32_t> events = way_.runEvents(engine_, script);
    if (!failed()) append(events, type);
    return signals_.size() - before;
  }

  /// The signals of an exit script. Where it is the very script of the other side's entries, these are taken
  /// instead of a run; they keep the mark of an entry as their `Signal`.
  std::size_t runExit(std::string_view script, TradeCode type, std::string_view entryScript,
                      TradeCode entryType) {
    if (failed() || script.empty()) return 0;
    return script == entryScript ? copy(entryType, type) : run(script, type);
  }

  bool failed() const { return !engine_.errorText.empty(); }
  std::vector<SignalRecord> take() { return std::move(signals_); }

 private:
  /// A record for each bar. The first bar never signals.
  void append(const std::vector<std::int32_t>& numbers, TradeCode type) {
    signals_.reserve(signals_.size() + numbers.size());
    const std::int64_t barCount = static_cast<std::int64_t>(engine_.bars.size());
    for (const std::int32_t number : numbers) {
      if (number <= 1 || number > barCount) continue;
      const Bar& bar = engine_.bars[static_cast<std::size_t>(number) - 1];
      signals_.push_back({number, type, type, bar.JDate, bar.ClosePrice});
    }
  }

  std::size_t copy(TradeCode from, TradeCode to) {
    const std::size_t before = signals_.size();
    for (std::size_t i = 0; i < before; ++i) {
      if (signals_[i].TradeType != from) continue;
      SignalRecord record = signals_[i];
      record.TradeType = to;
      signals_.push_back(record);
    }
    return signals_.size() - before;
  }

  CScriptEngine& engine_;
  const ScriptWay& way_;
  std::vector<SignalRecord> signals_;
};

}  // namespace

const ScriptWay kWholeHistoryWay = {2, nothingToPrepare, eventBars};
const ScriptWay kIncrementalWay = {0, prepareIncremental, preparedEventBars};

BacktestRun runBacktest(CScriptEngine& engine, const ScriptWay& way, const BacktestRequest& request,
                        std::int64_t seed) {
  BacktestRun run;
  run.fillers = way.fillers;
  engine.barsStand = true;
  SignalCollector collector(engine, way);
  run.buys = collector.run(request.buyScript, kTradeLong);
  run.sells = collector.run(request.sellScript, kTradeShort);
  run.longExits = collector.runExit(request.exitLongScript, kTradeExitLong, request.sellScript, kTradeShort);
  run.shortExits = collector.runExit(request.exitShortScript, kTradeExitShort, request.buyScript, kTradeLong);
  if (collector.failed()) {
    run.error = engine.errorText;
    return run;
  }
  const RunBars& bars = engine.bars;
  if (bars.size() < way.leastBars()) return run;

  const Bar& last = bars[bars.size() - 1];
  run.firstDate = bars[static_cast<std::size_t>(way.fillers)].JDate;
  run.lastDate = last.JDate;
  run.trades = simulateTrades(collector.take(), bars, request.maxOpenDays, request.slipPct);
  if (engine.takeCancel()) {
    run.error = kCancelled;
    return run;
  }
  run.statistics = computeStatistics(run.trades, last.ClosePrice, seed);
  if (!run.statistics) run.error = kNoTrades;
  return run;
}

std::string resultText(const BacktestRun& run) {
  if (!run.statistics) return run.error;
  return reportText(*run.statistics, run.trades, run.firstDate, run.lastDate, run.fillers);
}

}  // namespace brindlewort
