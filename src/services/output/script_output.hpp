#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "series/bar.hpp"
#include "series/run_bars.hpp"
#include "series/series.hpp"

namespace brindlewort {

class CScriptEngine;

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

  /// A series of the last run by the name a column shows or a script writes; null when unknown.
  const Series* findSeries(std::string_view name) const;

  const BarStore& bars() const { return bars_; }
  /// Room for `more` bars to be appended.
  void makeRoom(std::size_t more) { bars_.makeRoom(more); }

 private:
  CScriptEngine& prepareRun(std::string_view script, std::int32_t mapCount);
  std::optional<std::string> answer(std::string text);
  template <class Work>
  auto guarded(Work work) -> decltype(work());

  BarStore bars_;
  BarStore livingBars_;                    ///< of the incremental way
  std::unique_ptr<SeriesPool> pool_;       ///< buffers of the run before, for the next
  std::unique_ptr<CScriptEngine> engine_;  ///< of the last run
};

}  // namespace brindlewort
