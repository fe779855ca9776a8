#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/run_watch.hpp"
#include "series/bar.hpp"
#include "series/series.hpp"
#include "services/backtest/backtest_run.hpp"

namespace brindlewort {

class CScriptEngine;

/// The component that trades on the signals of scripts and reports what came of it, over bars given one by
/// one. One thread at a time.
class CBacktest {
 public:
  CBacktest();
  ~CBacktest();
  CBacktest(CBacktest&&) noexcept;
  CBacktest& operator=(CBacktest&&) noexcept;

  /// Told of every failed backtest, one without trades included, within the failing call.
  std::function<void(const std::string& description)> ScriptError;

  /// Start of the random numbers behind the Monte Carlo figure; the clock when there is none.
  std::optional<std::int64_t> fixedSeed;

  void AppendRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                    std::int32_t Volume);
  /// False when no bar has this date.
  bool EditRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                  std::int32_t Volume);
  /// The first bar of this date; null when there is none.
  const Bar* GetRecordByJDate(double JDate) const;
  /// Counted from 1; null outside 1 to the count.
  const Bar* GetRecordByIndex(std::int32_t Index) const;
  void ClearRecords();
  std::int32_t RecordCount() const;

  /// The report over all bars. Empty without bars, and nothing for an error, which ScriptError tells.
  /// MaxOpenDays: "name=value;" four times, for stop loss in percent, trailing stop (above 0: on), profit
  /// target in percent, and bars until a position is closed in any case; a value of 0 switches its rule off.
  std::optional<std::string> Backtest(std::string_view BuyScript, std::string_view SellScript,
                                      std::string_view ExitLongScript, std::string_view ExitShortScript,
                                      double SlipPct, std::string_view MaxOpenDays);
  /// The same with the scripts run on the incremental way, whose functions differ in their first rows. The
  /// trade log counts the bars from 1.
  std::optional<std::string> Backtest_New(std::string_view BuyScript, std::string_view SellScript,
                                          std::string_view ExitLongScript, std::string_view ExitShortScript,
                                          double SlipPct, std::string_view MaxOpenDays);
  /// The same run as data. A failed run is told by ScriptError too, and by the text in the result.
  BacktestRun runBacktest(const BacktestRequest& request, const ScriptWay& way = kWholeHistoryWay);

  /// Ends the backtest that is under way with the error "Error: The script was cancelled.", from another
  /// thread; without one nothing happens.
  void Cancel() noexcept { cancel_->cancel(); }

  const BarStore& bars() const { return bars_; }
  /// Room for `more` bars to be appended.
  void makeRoom(std::size_t more) { bars_.makeRoom(more); }
  /// The engine of the last run, which knows the function it called last; null before the first.
  const CScriptEngine* lastEngine() const { return engine_.get(); }

 private:
  template <class Work>
  void guarded(Work work);
  void tellOutOfMemory() noexcept;
  BacktestRun run(CScriptEngine& engine, const ScriptWay& way, const BacktestRequest& request);
  std::optional<std::string> report(const ScriptWay& way, const BacktestRequest& request);
  bool tellError(const std::string& result);

  std::unique_ptr<platform::CancelSwitch> cancel_ = std::make_unique<platform::CancelSwitch>();
  BarStore bars_;
  std::unique_ptr<SeriesPool> pool_;       ///< buffers of the run before, for the next
  std::unique_ptr<CScriptEngine> engine_;  ///< of the last run
};

}  // namespace brindlewort
