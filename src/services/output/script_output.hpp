#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/run_watch.hpp"
#include "series/bar.hpp"
#include "series/run_bars.hpp"
#include "series/series.hpp"

namespace brindlewort {

class CScriptEngine;
class PointerBlock;
struct StoreEntry;

/// One output series of a run under the name it is printed with.
struct OutputColumn {
  std::string name;
  Series values;
};

/// What a run prints, as data: a line per bar from `firstBar` on. The value of column c for bar i is
/// values[i - valueOffset]; a series may be shorter than the bars.
struct OutputTable {
  std::vector<OutputColumn> columns;
  RunBars bars;  ///< those of the run, filler bars included; valid until the component's bars change
  std::size_t firstBar = 0;
  std::size_t valueOffset = 1;
  /// The value of a column for a bar, or nothing beyond the end of the series.
  std::optional<double> at(std::size_t column, std::size_t bar) const;
};

/// The component that gives a host the series of a script, over bars given one by one. One thread at a time.
/// A call throws std::bad_alloc when memory runs out: it has then changed nothing, save that a run leaves no
/// last run behind, and ScriptError has been told of a run where memory was left to do so.
class CScriptOutput {
 public:
  CScriptOutput();
  ~CScriptOutput();
  CScriptOutput(CScriptOutput&&) noexcept;
  CScriptOutput& operator=(CScriptOutput&&) noexcept;

  /// Told of every failed script, within the failing call.
  std::function<void(const std::string& description)> ScriptError;

  void AppendRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                    std::int32_t Volume);
  bool EditRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                  std::int32_t Volume);
  /// Record queries look at the bars of the incremental way only. Null when there is no such bar.
  const Bar* GetRecordByJDate(double JDate) const;
  const Bar* GetRecordByIndex(std::int32_t Index) const;
  void ClearRecords();
  std::int32_t RecordCount() const;
  /// The date of the bar after the Index-th; 0.0 outside 1 to count - 1.
  double GetJDate(std::int32_t Index) const;
  /// The row of the last bar earlier than JDate; nothing when the first bar is not earlier.
  std::optional<std::int32_t> GetRecordNumberByJDate(double JDate) const;
  bool EditJDate(double OldJDate, double NewJDate);

  /// The series of a script as text, a line a bar. Nothing for too few bars, and nothing for an error,
  /// which ScriptError tells. MapCount: first bar to report, from 1; 0 reports all; -1 asks for the list
  /// of the bars where the last expression is 1. OutputSets: the columns wanted, comma-separated; empty
  /// for all.
  std::optional<std::string> GetScriptOutput(std::string_view DefaultScript, std::int32_t MapCount,
                                             std::string_view OutputSets);
  /// The same run as data; the event list is not offered.
  std::optional<OutputTable> computeOutput(std::string_view DefaultScript, std::int32_t MapCount,
                                           std::string_view OutputSets);
  /// The heading line of the series a script would give.
  std::optional<std::string> GetCustomIndFromCondition(std::string_view DefaultScript);

  // ---- The incremental way: an engine that stays alive. A script is prepared once, bars come one by one,
  // and a run brings each series up to date where it stopped. ----

  /// Sets the engine up, before its first bar, for so many variables (250 when below 10).
  void InitialiseTransientStore(std::int32_t variablesSize);
  /// Prepares a script; false when it is refused, which no event tells.
  bool ProcessScripData(std::string_view script);
  /// 101: a further preparation adds its SET statements. 102: it drops the script before, and outputs have no
  /// dates.
  void SetDataRetrieveMode(std::int32_t mode);
  /// Adds a series that the host feeds; with a size of -987654321 removes it.
  void AddOrRemoveBasicVectorSeries(std::string_view name, std::int32_t size);
  /// Adds a row to such a series (11) or changes its last (22).
  void UpdateBasicVectorData(std::string_view name, double value, std::uint8_t AddorUpdate);
  /// Accepted; writes nothing.
  void GetVariableValuesLog(std::string_view path);

  void AppendRecord_New(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                        std::int32_t Volume);
  /// Replaces the first bar of this date; the series' last rows take its prices, whichever bar it is. False
  /// when there is no such bar; nothing when a series of the host has no row to change (the bar is replaced
  /// all the same).
  std::optional<bool> EditRecord_New(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                                     double ClosePrice, std::int32_t Volume);
  bool EditJDate_New(double OldJDate, double NewJDate);

  /// Runs the prepared script and gives its series as GetScriptOutput does; row i is bar i. The script given
  /// here only tells whether there is one, whether it asks for candles, and the lookback of the event list.
  std::optional<std::string> GetScriptOutput_New(std::string_view DefaultScript, std::int32_t MapCount,
                                                 std::string_view OutputSets);
  std::optional<std::string> GetCustomIndFromCondition_NEW(std::string_view DefaultScript);
  /// The address of a list of the live series (PointerBlock::List), or -1. It holds until the next run.
  std::intptr_t GetScriptOutput_PTR(std::string_view DefaultScript, std::int32_t MapCount,
                                    std::string_view OutputSets);

  /// Ends the call that is under way with the error "Error: The script was cancelled.", from another thread;
  /// without a call nothing happens. The component goes on as after any failed run.
  void Cancel() noexcept { cancel_->cancel(); }

  /// A series of the last run by the name a column shows or a script writes; null when unknown.
  const Series* findSeries(std::string_view name) const;

  /// The function that the last run called last, the one that a failing script stopped in; the key to the
  /// help that belongs to the run.
  std::string_view lastFunction() const;

  /// For a host's face that has no memory left to hand on what a run of the incremental way has given: the
  /// run has never been. To be called at once.
  void takeBackRun() noexcept;

  const BarStore& bars() const { return bars_; }
  /// Room for `more` bars to be appended.
  void makeRoom(std::size_t more) { bars_.makeRoom(more); }

 private:
  CScriptEngine& prepareRun(std::string_view script, std::int32_t mapCount);
  std::optional<std::string> answer(std::string text);
  template <class Work>
  auto guarded(Work work) -> decltype(work());
  template <class Work>
  auto livingRun(std::string_view script, std::int32_t mapCount, Work work) ->
      typename std::invoke_result<Work, CScriptEngine&>::type;
  void tellOutOfMemory() noexcept;

  std::unique_ptr<platform::CancelSwitch> cancel_ = std::make_unique<platform::CancelSwitch>();
  BarStore bars_;
  BarStore livingBars_;                    ///< of the incremental way
  std::unique_ptr<CScriptEngine> living_;  ///< of the incremental way
  std::unique_ptr<PointerBlock> pointers_;
  std::vector<StoreEntry*> listed_;  ///< the entries that pointers_ shows
  std::string lastAsked_;            ///< the script that the host gave with the last run
  bool lastAsksForCandles_ = false;
  std::unique_ptr<SeriesPool> pool_;        ///< buffers of the run before, for the next
  std::unique_ptr<CScriptEngine> engine_;   ///< of the last run of the whole-history way
  const CScriptEngine* lastRun_ = nullptr;  ///< of the last run of either way
};

}  // namespace brindlewort
