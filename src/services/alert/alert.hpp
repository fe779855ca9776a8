#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/alert_count.hpp"
#include "platform/run_watch.hpp"
#include "series/bar.hpp"
#include "series/series.hpp"

namespace brindlewort {

class BarUndo;
class CScriptEngine;

/// The component that watches one symbol: it runs a script whenever a bar arrives or changes and tells the
/// host whether the script fired or failed. One thread at a time.
///
/// Two ways of running. The plain way evaluates the script over all bars at each change. The incremental way
/// (InitialiseTransientStore, ProcessScripData, AlertScript, then the _Opt calls) keeps an engine alive, so
/// that a new bar costs one new row. The events are the same.
///
/// A call throws std::bad_alloc when memory runs out, in the evaluation too: it has then changed nothing,
/// save that a run leaves no last run behind, and ScriptError has been told where memory was left to do so.
class CAlert {
 public:
  /// Live components on the machine beyond which a further one refuses to evaluate.
  static constexpr std::int32_t kMostAlerts = 1000;

  /// Counts in `count` for its whole life.
  explicit CAlert(platform::AlertCount& count = platform::AlertCount::ofThisMachine());
  ~CAlert();
  CAlert(CAlert&&) noexcept;
  CAlert& operator=(CAlert&&) noexcept;

  // ---- Events, within the call that caused them. A handler may call the component and replace the handlers,
  // but not destroy the component.

  /// The script's last value is not 0. Date and price are those of the last trade.
  std::function<void(const std::string& symbol, const std::string& alertName, double lastTradeDate,
                     double lastTradePrice)>
      Alert;
  /// The script failed, or the component is beyond the limit. Too few bars are no failure.
  std::function<void(const std::string& symbol, const std::string& alertName, const std::string& description)>
      ScriptError;

  // ---- Properties. Symbol and AlertName are the host's own; every event carries them.
  const std::string& Symbol() const { return symbol_; }
  void setSymbol(std::string_view text) { symbol_ = text; }
  const std::string& AlertName() const { return alertName_; }
  void setAlertName(std::string_view text) { alertName_ = text; }
  /// The script of all further evaluations. Set, it is evaluated at once. A text of fewer than 5 characters
  /// is kept but never run.
  const std::string& AlertScript() const { return alertScript_; }
  void setAlertScript(std::string_view text);

  // ---- Records. No query and no EditJDate or ClearRecords evaluates anything.

  /// Adds a bar and evaluates. Its last traded price is the close.
  void AppendRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                    std::int32_t Volume, double dJDateOfLTT);
  /// The same bars as so many AppendRecord calls, but evaluated once, after the last. Each bar's last traded
  /// price is its close, its volume is cut to a 32-bit integer.
  void AppendRecords(std::span<const Bar> bars);
  /// Replaces the first bar of this date and evaluates; false when there is none.
  bool EditRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                  std::int32_t Volume, double dJDateOfLTT);
  /// The first bar of this date; null when there is none.
  const Bar* GetRecordByJDate(double JDate) const;
  /// Counted from 1; null outside 1 to the count.
  const Bar* GetRecordByIndex(std::int32_t Index) const;
  void ClearRecords();
  std::int32_t RecordCount() const;
  /// Counted from 1; 0.0 outside 1 to the count.
  double GetJDate(std::int32_t Index) const;
  /// Changes the date alone; false when no bar has the old one.
  bool EditJDate(double OldJDate, double NewJDate);

  /// Evaluates a script once, which stays in force for later changes. True when it fired. A component beyond
  /// the limit does so too.
  bool Evaluate(std::string_view EvaluateScript);

  // ---- The incremental way

  /// Sets the engine up, before its first bar, for so many variables (250 when below 10).
  void InitialiseTransientStore(std::int32_t variablesSize);
  /// Prepares a script; false when it is refused.
  bool ProcessScripData(std::string_view script);
  /// Adds a bar to the plain and the incremental store and evaluates the prepared script. False, without an
  /// evaluation, when the engine does not take the bar.
  bool AppendRecord_Opt(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                        std::int32_t Volume, double dJDateOfLTT);
  /// Replaces the first bar of this date of the incremental store, in both stores at its row; the series'
  /// last rows take its prices, whichever bar it is. False when there is none; nothing, without an
  /// evaluation, when the engine does not take the bar (it is replaced all the same).
  std::optional<bool> EditRecord_Opt(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                                     double ClosePrice, std::int32_t Volume, double dJDateOfLTT);
  /// Accepted; writes nothing.
  void GetVariableValuesLog(std::string_view path);

  const BarStore& bars() const { return bars_; }
  /// The function that the last run called last, the one that a failing script stopped in; the key to the
  /// help that belongs to the run. Already renewed when a run's event comes.
  const std::string& lastFunction() const { return lastFunction_; }
  /// The engine of the last run of either way; null before the first. Valid until the next call.
  const CScriptEngine* lastEngine() const { return lastRun_; }

  /// Ends the evaluation that is under way with the error "Error: The script was cancelled.", from another
  /// thread; without one nothing happens. The component goes on as after any failed run.
  void Cancel() noexcept { cancel_->cancel(); }

 private:
  struct Event;
  enum class Fillers { kNone, kTwo };
  Event errorEvent(std::string_view description) const;
  Event outcomeOf(const std::string& text, const BarStore& store) const;
  static bool tell(const Event& event);
  void tellOutOfMemory() noexcept;

  template <class Work, class TakeBack>
  bool change(Work work, TakeBack takeBack);
  template <class Evaluation>
  bool withScript(std::string_view text, Evaluation evaluation);
  template <class Store, class Unstore>
  bool changeLiving(const Bar& bar, std::int32_t mode, Store store, Unstore unstore);

  Event evaluateOnChange();
  Event evaluateLiving();
  std::string runOverAllBars(std::string_view script, Fillers fillers);

  std::unique_ptr<platform::CancelSwitch> cancel_ = std::make_unique<platform::CancelSwitch>();
  platform::AlertSeat seat_;
  bool alertsExceeded_;
  std::string symbol_;
  std::string alertName_;
  std::string evaluationScript_;  ///< the script that a run uses
  std::string alertScript_;       ///< the last that the host gave
  std::string lastFunction_;

  BarStore bars_;
  std::unique_ptr<SeriesPool> pool_;       ///< buffers of the run before, for the next
  std::unique_ptr<CScriptEngine> engine_;  ///< of the last run of the plain way

  BarStore livingBars_;                    ///< of the incremental way
  std::unique_ptr<CScriptEngine> living_;  ///< of the incremental way
  std::unique_ptr<BarUndo> barUndo_;       ///< of its last bar
  bool useTransientStore_ = false;
  bool transientReady_ = false;

  const CScriptEngine* lastRun_ = nullptr;
};

}  // namespace brindlewort
