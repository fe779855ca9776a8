#ifndef BRINDLEWORT_BRINDLEWORT_HPP
#define BRINDLEWORT_BRINDLEWORT_HPP

/// Brindlewort: a technical-analysis script engine. The C++ face: a thin header over the C face, so that a
/// host and the library need not share a compiler or a standard library. C++17 or later; link with
/// -lbrindlewort.
///
///   brindlewort::CScriptOutput output;
///   for (const auto& bar : bars) output.AppendRecord(bar);
///   if (auto text = output.GetScriptOutput("SET A = SMA(CLOSE, 14)\r\nCLOSE > A", 0, "")) std::cout <<
///   *text;
///
/// Member functions carry the host interface's own names. None throws for a script's sake: a script that
/// fails is told to OnScriptError, and the call returns nothing. std::bad_alloc is thrown when memory runs
/// out: the call has then changed nothing and can be made again. One object is used by one thread at a time, but that
/// Cancel may be called from any. What else holds for threads, stacks, floating point, locale and time zone stands at
/// the head of brindlewort.h.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "brindlewort.h"

namespace brindlewort {

// The inline namespace gives the classes of this header link names of their own, apart from those that the
// library uses inside.
inline namespace host {

/// One period of an instrument.
struct Bar {
  double JDate = 0.0;  ///< Julian day number with the time of day as fraction; see ToJulianDate
  double OpenPrice = 0.0;
  double HighPrice = 0.0;
  double LowPrice = 0.0;
  double ClosePrice = 0.0;
  std::int32_t Volume = 0;
};

/// The rows of a series inside the library, oldest first. Valid until the next call on the object that gave
/// it.
class SeriesView {
 public:
  SeriesView() = default;
  SeriesView(const double* values, std::size_t count) : values_(values), count_(count) {}

  const double* data() const { return values_; }
  std::size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }
  double operator[](std::size_t row) const { return values_[row]; }
  const double* begin() const { return values_; }
  const double* end() const { return values_ + count_; }

 private:
  const double* values_ = nullptr;
  std::size_t count_ = 0;
};

/// Marks a row without a value in every series: warm-up rows, values that cannot be computed.
inline constexpr double NULL_VALUE = -987654321.0;

/// "major.minor.patch" of the library that is loaded.
inline std::string Version() {
  return bw_version();
}

/// What the classes share.
namespace detail {

/// A handle of the library that is given back in the end.
template <class T, void (*destroy)(T*)>
struct Destroyer {
  void operator()(T* handle) const { destroy(handle); }
};
template <class T, void (*destroy)(T*)>
using Handle = std::unique_ptr<T, Destroyer<T, destroy>>;

/// The record calls fail for want of memory only.
inline void Check(std::int32_t status) {
  if (status != 0) throw std::bad_alloc();
}

/// Where a refusal has the same status as a lack of memory, the result is written by the former only.
inline constexpr std::int32_t kNotWritten = 2;
inline void CheckWritten(std::int32_t result) {
  if (result == kNotWritten) throw std::bad_alloc();
}

/// A text of the library as a string; nothing when the call returned none.
inline std::optional<std::string> Take(char* text) {
  if (!text) return std::nullopt;
  const std::unique_ptr<char, void (*)(void*)> owner(text, &bw_free);
  return std::string(text);
}
template <class Get>
std::string TextOf(Get get) {
  char* text = nullptr;
  Check(get(&text));
  return Take(text).value_or(std::string());
}

/// Stands at one address for its whole life, since the library keeps that address.
struct Listener {
  std::function<void(const std::string&)> callback;
  std::exception_ptr thrown;
};
inline std::unique_ptr<Listener> ListenerFor(std::function<void(const std::string&)> callback) {
  return callback ? std::make_unique<Listener>(Listener{std::move(callback), nullptr}) : nullptr;
}

/// No exception may cross the library, so one of a callback waits until the call is over.
template <class Call>
void Guarded(std::exception_ptr& thrown, Call call) {
  try {
    call();
  } catch (...) {
    thrown = std::current_exception();
  }
}
inline void TellListener(void* user, const char* description) {
  Listener& listener = *static_cast<Listener*>(user);
  Guarded(listener.thrown, [&] { listener.callback(description); });
}
template <class Thrower>
void Rethrow(const std::unique_ptr<Thrower>& listener) {
  if (listener && listener->thrown) std::rethrow_exception(std::exchange(listener->thrown, nullptr));
}

inline std::vector<double> RowsOf(const std::vector<Bar>& bars) {
  std::vector<double> rows;
  rows.reserve(bars.size() * 6);
  for (const Bar& bar : bars) {
    rows.insert(rows.end(), {bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                             static_cast<double>(bar.Volume)});
  }
  return rows;
}

}  // namespace detail

/// The series that a script computes, over bars given one by one. Can be moved, not copied; a moved-from
/// object may only be assigned to or destroyed.
class CScriptOutput {
 public:
  CScriptOutput() : handle_(bw_script_output_create()) {
    if (!handle_) throw std::bad_alloc();
  }
  CScriptOutput(CScriptOutput&&) noexcept = default;
  CScriptOutput& operator=(CScriptOutput&&) noexcept = default;

  /// What to call when a script fails, within the failing call; an empty function removes it. An exception
  /// that it throws leaves the call that failed, as soon as the library has returned.
  void OnScriptError(std::function<void(const std::string& description)> callback) {
    auto listener = detail::ListenerFor(std::move(callback));
    bw_script_output_on_script_error(handle_.get(), listener ? &detail::TellListener : nullptr, listener.get());
    listener_ = std::move(listener);
  }

  /// Ends the call that runs on another thread: it fails with "Error: The script was cancelled.", and the object goes on
  /// as after any failed run. Nothing happens when no call runs.
  void Cancel() noexcept { bw_script_output_cancel(handle_.get()); }

  // ---- Bars. Neither sorted nor checked: row order is time order, and a search by date takes the first
  // match.

  void AppendRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                    std::int32_t Volume) {
    Check(bw_script_output_append_record(handle_.get(), JDate, OpenPrice, HighPrice, LowPrice, ClosePrice,
                                         Volume));
  }
  void AppendRecord(const Bar& bar) {
    AppendRecord(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice, bar.Volume);
  }
  /// Many bars in one call.
  void AppendRecords(const std::vector<Bar>& bars) {
    const std::vector<double> rows = detail::RowsOf(bars);
    Check(bw_script_output_append_records(handle_.get(), rows.data(), bars.size()));
  }
  /// Replaces the first bar of exactly this date. False when there is none.
  bool EditRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                  std::int32_t Volume) {
    std::int32_t found = 0;
    Check(bw_script_output_edit_record(handle_.get(), JDate, OpenPrice, HighPrice, LowPrice, ClosePrice,
                                       Volume, &found));
    return found != 0;
  }
  bool EditRecord(const Bar& bar) {
    return EditRecord(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice, bar.Volume);
  }
  /// Changes the date of the first bar dated OldJDate; no row moves. False when there is none.
  bool EditJDate(double OldJDate, double NewJDate) {
    std::int32_t found = 0;
    Check(bw_script_output_edit_jdate(handle_.get(), OldJDate, NewJDate, &found));
    return found != 0;
  }
  /// Removes all bars, and the prepared script of the incremental way.
  void ClearRecords() { Check(bw_script_output_clear_records(handle_.get())); }

  // ---- Queries. They look at the bars of the incremental way, not at those of AppendRecord.

  std::optional<Bar> GetRecordByJDate(double JDate) const {
    Bar bar;
    std::int32_t found = 0;
    bar.JDate = JDate;
    Check(bw_script_output_get_record_by_jdate(handle_.get(), JDate, &bar.OpenPrice, &bar.HighPrice,
                                               &bar.LowPrice, &bar.ClosePrice, &bar.Volume, &found));
    return found != 0 ? std::optional<Bar>(bar) : std::nullopt;
  }
  /// Index counts from 1.
  std::optional<Bar> GetRecordByIndex(std::int32_t Index) const {
    Bar bar;
    std::int32_t found = 0;
    Check(bw_script_output_get_record_by_index(handle_.get(), Index, &bar.JDate, &bar.OpenPrice,
                                               &bar.HighPrice, &bar.LowPrice, &bar.ClosePrice, &bar.Volume,
                                               &found));
    return found != 0 ? std::optional<Bar>(bar) : std::nullopt;
  }
  std::int32_t RecordCount() const {
    std::int32_t count = 0;
    Check(bw_script_output_get_record_count(handle_.get(), &count));
    return count;
  }
  /// The date of the bar after the Index-th one (1 gives the second bar's date); 0.0 outside.
  double GetJDate(std::int32_t Index) const {
    double date = 0.0;
    Check(bw_script_output_get_jdate(handle_.get(), Index, &date));
    return date;
  }
  /// The number, from 0, of the last bar earlier than JDate; nothing when the first bar is not earlier.
  std::optional<std::int32_t> GetRecordNumberByJDate(double JDate) const {
    constexpr std::int32_t kNotWritten = -1;
    std::int32_t number = kNotWritten;
    Check(bw_script_output_get_record_number_by_jdate(handle_.get(), JDate, &number));
    return number != kNotWritten ? std::optional<std::int32_t>(number) : std::nullopt;
  }

  // ---- Dates

  /// Julian day number with fraction of a civil date and time of 1801 to 2099. The millisecond is ignored.
  double ToJulianDate(std::int32_t nYear, std::int32_t nMonth, std::int32_t nDay, std::int32_t nHour = 0,
                      std::int32_t nMinute = 0, std::int32_t nSecond = 0,
                      std::int32_t nMillisecond = 0) const {
    double date = 0.0;
    Check(bw_script_output_to_julian_date(handle_.get(), nYear, nMonth, nDay, nHour, nMinute, nSecond,
                                          nMillisecond, &date));
    return date;
  }
  /// "YYYY-MM-DD HH:MM:SS", or "No Date Time".
  std::string FromJulianDate(double JDate) const {
    char* text = nullptr;
    Check(bw_script_output_from_julian_date(handle_.get(), JDate, &text));
    return Take(text).value_or(std::string());
  }

  // ---- Scripts. Texts are UTF-8. The lines of a script end with CR LF; a line feed alone ends none, and an error then
  // tells of a name with a line feed in it.

  /// The series of a script as text, a line a bar. MapCount: the first bar to report, counted from 1; 0
  /// reports all; -1 gives instead the numbers of the bars where the script's last expression is 1.
  /// OutputSets: the wanted columns, separated by commas; "" for all. Nothing for too few bars, and nothing
  /// for an error.
  std::optional<std::string> GetScriptOutput(const std::string& DefaultScript, std::int32_t MapCount,
                                             const std::string& OutputSets) {
    char* text = nullptr;
    const std::int32_t status = bw_script_output_get_script_output(handle_.get(), DefaultScript.c_str(),
                                                                   MapCount, OutputSets.c_str(), &text);
    return Answer(status, text);
  }
  /// The heading line of the series that a script would give.
  std::optional<std::string> GetCustomIndFromCondition(const std::string& DefaultScript) {
    char* text = nullptr;
    const std::int32_t status =
        bw_script_output_get_custom_ind_from_condition(handle_.get(), DefaultScript.c_str(), &text);
    return Answer(status, text);
  }
  // ---- The incremental way: the component keeps an engine alive. Set it up once, prepare a script once, give it
  // bars one by one; each run brings every series up to date where it stopped.

  /// Sets the engine up, before its first bar, for so many variables of scripts and functions (250 when below 10).
  void InitialiseTransientStore(std::int32_t variablesSize) {
    Check(bw_script_output_initialise_transient_store(handle_.get(), variablesSize));
  }
  /// Prepares a script for the runs that follow; false when it is empty or too large.
  bool ProcessScripData(const std::string& script) {
    std::int32_t prepared = 0;
    Check(bw_script_output_process_scrip_data(handle_.get(), script.c_str(), &prepared));
    return prepared != 0;
  }
  /// 101 (as it begins): a further preparation adds its SET statements to those before. 102: it drops the script
  /// before, and outputs have no dates.
  void SetDataRetrieveMode(std::int32_t mode) {
    Check(bw_script_output_set_data_retrieve_mode(handle_.get(), mode));
  }
  /// Adds a series that the host feeds; a size of -987654321 removes it.
  void AddOrRemoveBasicVectorSeries(const std::string& name, std::int32_t size) {
    Check(bw_script_output_add_or_remove_basic_vector_series(handle_.get(), name.c_str(), size));
  }
  /// Feeds such a series: 11 adds a row, 22 changes the last one (every bar adds a row without a value to it).
  void UpdateBasicVectorData(const std::string& name, double value, std::uint8_t AddorUpdate) {
    Check(bw_script_output_update_basic_vector_data(handle_.get(), name.c_str(), value, AddorUpdate));
  }
  /// Accepted; writes nothing.
  void GetVariableValuesLog(const std::string& path) {
    Check(bw_script_output_get_variable_values_log(handle_.get(), path.c_str()));
  }
  /// Adds a bar, and a row to every series.
  void AppendRecord_New(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                        std::int32_t Volume) {
    Check(bw_script_output_append_record_new(handle_.get(), JDate, OpenPrice, HighPrice, LowPrice, ClosePrice,
                                             Volume));
  }
  void AppendRecord_New(const Bar& bar) {
    AppendRecord_New(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice, bar.Volume);
  }
  /// Replaces the first bar of exactly this date; the last row of every series takes its prices, whichever bar it is.
  /// False when there is no such bar. Nothing when a series of the host has no row yet: the bar is replaced all the
  /// same.
  std::optional<bool> EditRecord_New(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                                     double ClosePrice, std::int32_t Volume) {
    std::int32_t found = detail::kNotWritten;
    const std::int32_t status = bw_script_output_edit_record_new(handle_.get(), JDate, OpenPrice, HighPrice,
                                                                 LowPrice, ClosePrice, Volume, &found);
    detail::CheckWritten(found);
    return status == 0 ? std::optional<bool>(found != 0) : std::nullopt;
  }
  std::optional<bool> EditRecord_New(const Bar& bar) {
    return EditRecord_New(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice, bar.Volume);
  }
  bool EditJDate_New(double OldJDate, double NewJDate) {
    std::int32_t found = 0;
    Check(bw_script_output_edit_jdate_new(handle_.get(), OldJDate, NewJDate, &found));
    return found != 0;
  }
  /// Runs the prepared script and gives its series as GetScriptOutput does; row i belongs to bar i. DefaultScript only
  /// tells whether there is one, whether it asks for candlestick patterns, and how many rows the event list leaves
  /// out.
  std::optional<std::string> GetScriptOutput_New(const std::string& DefaultScript, std::int32_t MapCount,
                                                 const std::string& OutputSets) {
    char* text = nullptr;
    const std::int32_t status = bw_script_output_get_script_output_new(handle_.get(), DefaultScript.c_str(),
                                                                       MapCount, OutputSets.c_str(), &text);
    return Answer(status, text);
  }
  std::optional<std::string> GetCustomIndFromCondition_NEW(const std::string& DefaultScript) {
    char* text = nullptr;
    const std::int32_t status =
        bw_script_output_get_custom_ind_from_condition_new(handle_.get(), DefaultScript.c_str(), &text);
    return Answer(status, text);
  }
  /// Runs the prepared script and gives its live series, in the order of the output names. The list and all rows that
  /// it has ever shown stay readable until the next run, or the end of this object. Null when the run fails.
  const bw_series_list* GetScriptOutput_PTR(const std::string& DefaultScript, std::int32_t MapCount,
                                            const std::string& OutputSets) {
    std::intptr_t data = -1;
    const std::int32_t status = bw_script_output_get_script_output_ptr(handle_.get(), DefaultScript.c_str(),
                                                                       MapCount, OutputSets.c_str(), &data);
    return status == 0 ? reinterpret_cast<const bw_series_list*>(data) : nullptr;
  }

  /// The manual page of the function that the last run called last; empty when there is none.
  std::string ScriptHelp() const {
    return detail::TextOf([&](char** text) { return bw_script_output_get_script_help(handle_.get(), text); });
  }
  /// A series of the last run, by the name that a column shows or the script writes; nothing for an unknown
  /// name.
  std::optional<SeriesView> GetSeries(const std::string& name) const {
    const double* values = nullptr;
    std::size_t count = 0;
    if (bw_script_output_get_series(handle_.get(), name.c_str(), &values, &count) != 0) return std::nullopt;
    return SeriesView(values, count);
  }

 private:
  using Listener = detail::Listener;
  static void Check(std::int32_t status) { detail::Check(status); }
  static std::optional<std::string> Take(char* text) { return detail::Take(text); }
  std::optional<std::string> Answer(std::int32_t status, char* text) {
    std::optional<std::string> answer = Take(text);
    detail::Rethrow(listener_);
    Check(status);
    return answer;
  }

  detail::Handle<bw_script_output, &bw_script_output_destroy> handle_;
  std::unique_ptr<Listener> listener_;
};

/// What trading on the signals of scripts would have brought. Can be moved, not copied.
class CBacktest {
 public:
  CBacktest() : handle_(bw_backtest_create()) {
    if (!handle_) throw std::bad_alloc();
  }

  /// What to call when a backtest fails or makes no trade, within the failing call.
  void OnScriptError(std::function<void(const std::string& description)> callback) {
    auto listener = detail::ListenerFor(std::move(callback));
    bw_backtest_on_script_error(handle_.get(), listener ? &detail::TellListener : nullptr, listener.get());
    listener_ = std::move(listener);
  }
  /// Ends the backtest that runs on another thread, with "Error: The script was cancelled.". Nothing happens without one.
  void Cancel() noexcept { bw_backtest_cancel(handle_.get()); }
  /// From now on the random numbers behind the Monte Carlo figure begin with this seed, not with the clock.
  void SetRandomSeed(std::int64_t seed) { Check(bw_backtest_set_random_seed(handle_.get(), seed)); }

  // ---- Bars. Neither sorted nor checked: row order is time order, and a search by date takes the first match.

  void AppendRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                    std::int32_t Volume) {
    Check(bw_backtest_append_record(handle_.get(), JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume));
  }
  void AppendRecord(const Bar& bar) {
    AppendRecord(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice, bar.Volume);
  }
  /// Many bars in one call.
  void AppendRecords(const std::vector<Bar>& bars) {
    const std::vector<double> rows = detail::RowsOf(bars);
    Check(bw_backtest_append_records(handle_.get(), rows.data(), bars.size()));
  }
  /// Replaces the first bar of exactly this date. False when there is none.
  bool EditRecord(const Bar& bar) {
    std::int32_t found = 0;
    Check(bw_backtest_edit_record(handle_.get(), bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice,
                                  bar.ClosePrice, bar.Volume, &found));
    return found != 0;
  }
  std::optional<Bar> GetRecordByJDate(double JDate) const {
    Bar bar;
    std::int32_t found = 0;
    bar.JDate = JDate;
    Check(bw_backtest_get_record_by_jdate(handle_.get(), JDate, &bar.OpenPrice, &bar.HighPrice, &bar.LowPrice,
                                          &bar.ClosePrice, &bar.Volume, &found));
    return found != 0 ? std::optional<Bar>(bar) : std::nullopt;
  }
  /// Index counts from 1.
  std::optional<Bar> GetRecordByIndex(std::int32_t Index) const {
    Bar bar;
    std::int32_t found = 0;
    Check(bw_backtest_get_record_by_index(handle_.get(), Index, &bar.JDate, &bar.OpenPrice, &bar.HighPrice,
                                          &bar.LowPrice, &bar.ClosePrice, &bar.Volume, &found));
    return found != 0 ? std::optional<Bar>(bar) : std::nullopt;
  }
  void ClearRecords() { Check(bw_backtest_clear_records(handle_.get())); }
  std::int32_t RecordCount() const {
    std::int32_t count = 0;
    Check(bw_backtest_get_record_count(handle_.get(), &count));
    return count;
  }

  // ---- Dates

  /// Julian day number with fraction of a civil date and time of 1801 to 2099.
  double ToJulianDate(std::int32_t nYear, std::int32_t nMonth, std::int32_t nDay, std::int32_t nHour = 0,
                      std::int32_t nMinute = 0, std::int32_t nSecond = 0, std::int32_t nMillisecond = 0) const {
    double date = 0.0;
    detail::Check(bw_backtest_to_julian_date(handle_.get(), nYear, nMonth, nDay, nHour, nMinute, nSecond, nMillisecond,
                                       &date));
    return date;
  }
  /// "YYYY-MM-DD HH:MM:SS", or "No Date Time".
  std::string FromJulianDate(double JDate) const {
    return detail::TextOf([&](char** text) { return bw_backtest_from_julian_date(handle_.get(), JDate, text); });
  }

  /// The report over all bars: nothing for an error, empty without bars. MaxOpenDays: "name=value;" four times, for the
  /// stop loss in percent, the trailing stop (above 0: on), the profit target in percent, and the bars until a position
  /// is closed in any case; 0 switches a rule off.
  std::optional<std::string> Backtest(const std::string& BuyScript, const std::string& SellScript,
                                      const std::string& ExitLongScript, const std::string& ExitShortScript,
                                      double SlipPct, const std::string& MaxOpenDays) {
    return Run(&bw_backtest_backtest, BuyScript, SellScript, ExitLongScript, ExitShortScript, SlipPct, MaxOpenDays);
  }
  /// The same with the scripts run on the incremental way, whose functions differ in their first rows.
  std::optional<std::string> Backtest_New(const std::string& BuyScript, const std::string& SellScript,
                                          const std::string& ExitLongScript, const std::string& ExitShortScript,
                                          double SlipPct, const std::string& MaxOpenDays) {
    return Run(&bw_backtest_backtest_new, BuyScript, SellScript, ExitLongScript, ExitShortScript, SlipPct,
               MaxOpenDays);
  }
  /// The manual page of the function that the last run called last.
  std::string ScriptHelp() const {
    return detail::TextOf([&](char** text) { return bw_backtest_get_script_help(handle_.get(), text); });
  }

 private:
  using Operation = decltype(&bw_backtest_backtest);
  static void Check(std::int32_t status) { detail::Check(status); }
  std::optional<std::string> Run(Operation operation, const std::string& buy, const std::string& sell,
                                 const std::string& exitLong, const std::string& exitShort, double slip,
                                 const std::string& rules) {
    char* text = nullptr;
    const std::int32_t status = operation(handle_.get(), buy.c_str(), sell.c_str(), exitLong.c_str(),
                                          exitShort.c_str(), slip, rules.c_str(), &text);
    std::optional<std::string> answer = detail::Take(text);
    detail::Rethrow(listener_);
    Check(status);
    return answer;
  }

  detail::Handle<bw_backtest, &bw_backtest_destroy> handle_;
  std::unique_ptr<detail::Listener> listener_;
};

/// A script that watches one symbol and tells when it fires. Can be moved, not copied.
///
/// Two ways of watching:
///   plain: OnAlert, SetSymbol, SetAlertName, SetAlertScript, then AppendRecord for each bar;
///   incremental: OnAlert, SetSymbol, SetAlertName, InitialiseTransientStore, ProcessScripData with the script,
///     SetAlertScript with it too, then AppendRecord_Opt for each bar.
/// Nothing is evaluated before SetAlertScript (or Evaluate) has given a script of at least 5 characters, and no event
/// comes until then, nor while there are too few bars for the script.
///
/// 999 components may live on a machine beside the first. One that is made beyond those tells "Error: You have exceeded
/// the maximum number of alerts!" to OnScriptError at each bar, where it would evaluate its alert script; Evaluate and
/// the incremental way are not held back.
class CAlert {
 public:
  CAlert() : handle_(bw_alert_create()), events_(std::make_unique<Events>()) {
    if (!handle_) throw std::bad_alloc();
    bw_alert_on_alert(handle_.get(), &TellAlert, events_.get());
    bw_alert_on_script_error(handle_.get(), &TellError, events_.get());
  }

  using AlertCallback = std::function<void(const std::string& symbol, const std::string& alertName,
                                           double lastTradeDate, double lastTradePrice)>;
  using ErrorCallback = std::function<void(const std::string& symbol, const std::string& alertName,
                                           const std::string& description)>;
  /// What to call when the script fires, within the call that caused it.
  void OnAlert(AlertCallback callback) { events_->alert = std::move(callback); }
  /// What to call when it fails.
  void OnScriptError(ErrorCallback callback) { events_->error = std::move(callback); }

  /// Ends the evaluation that runs on another thread, with "Error: The script was cancelled.". Nothing happens without
  /// one.
  void Cancel() noexcept { bw_alert_cancel(handle_.get()); }

  // ---- Properties. Symbol and name go into every event. A script that is set is evaluated at once, and from then on
  // whenever a bar comes or changes; one of fewer than 5 characters is kept and never evaluated.

  std::string Symbol() const { return Get(&bw_alert_get_symbol); }
  void SetSymbol(const std::string& text) { Call(bw_alert_set_symbol(handle_.get(), text.c_str())); }
  std::string AlertName() const { return Get(&bw_alert_get_alert_name); }
  void SetAlertName(const std::string& text) { Call(bw_alert_set_alert_name(handle_.get(), text.c_str())); }
  std::string AlertScript() const { return Get(&bw_alert_get_alert_script); }
  void SetAlertScript(const std::string& text) { Call(bw_alert_set_alert_script(handle_.get(), text.c_str())); }

  // ---- Bars, with the date of their last trade.

  void AppendRecord(const Bar& bar, double lastTradeDate) {
    Call(bw_alert_append_record(handle_.get(), bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice,
                                bar.ClosePrice, bar.Volume, lastTradeDate));
  }
  /// False when no bar has this date.
  bool EditRecord(const Bar& bar, double lastTradeDate) {
    std::int32_t found = 0;
    Call(bw_alert_edit_record(handle_.get(), bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice,
                              bar.ClosePrice, bar.Volume, lastTradeDate, &found));
    return found != 0;
  }
  std::optional<Bar> GetRecordByJDate(double JDate) const {
    Bar bar;
    std::int32_t found = 0;
    bar.JDate = JDate;
    detail::Check(bw_alert_get_record_by_jdate(handle_.get(), JDate, &bar.OpenPrice, &bar.HighPrice, &bar.LowPrice,
                                               &bar.ClosePrice, &bar.Volume, &found));
    return found != 0 ? std::optional<Bar>(bar) : std::nullopt;
  }
  /// Index counts from 1.
  std::optional<Bar> GetRecordByIndex(std::int32_t Index) const {
    Bar bar;
    std::int32_t found = 0;
    detail::Check(bw_alert_get_record_by_index(handle_.get(), Index, &bar.JDate, &bar.OpenPrice, &bar.HighPrice,
                                               &bar.LowPrice, &bar.ClosePrice, &bar.Volume, &found));
    return found != 0 ? std::optional<Bar>(bar) : std::nullopt;
  }
  /// Index counts from 1; 0.0 outside.
  double GetJDate(std::int32_t Index) const {
    double date = 0.0;
    detail::Check(bw_alert_get_jdate(handle_.get(), Index, &date));
    return date;
  }
  bool EditJDate(double OldJDate, double NewJDate) {
    std::int32_t found = 0;
    detail::Check(bw_alert_edit_jdate(handle_.get(), OldJDate, NewJDate, &found));
    return found != 0;
  }
  void ClearRecords() { detail::Check(bw_alert_clear_records(handle_.get())); }
  std::int32_t RecordCount() const {
    std::int32_t count = 0;
    detail::Check(bw_alert_get_record_count(handle_.get(), &count));
    return count;
  }

  // ---- Dates

  /// Julian day number with fraction of a civil date and time of 1801 to 2099. The millisecond is ignored.
  double ToJulianDate(std::int32_t nYear, std::int32_t nMonth, std::int32_t nDay, std::int32_t nHour = 0,
                      std::int32_t nMinute = 0, std::int32_t nSecond = 0, std::int32_t nMillisecond = 0) const {
    double date = 0.0;
    detail::Check(bw_alert_to_julian_date(handle_.get(), nYear, nMonth, nDay, nHour, nMinute, nSecond, nMillisecond,
                                       &date));
    return date;
  }
  /// "YYYY-MM-DD HH:MM:SS", or "No Date Time".
  std::string FromJulianDate(double JDate) const {
    return detail::TextOf([&](char** text) { return bw_alert_from_julian_date(handle_.get(), JDate, text); });
  }

  /// Evaluates a script once, which stays in force for later changes. True when it fired.
  bool Evaluate(const std::string& EvaluateScript) {
    std::int32_t fired = 0;
    Call(bw_alert_evaluate(handle_.get(), EvaluateScript.c_str(), &fired));
    return fired != 0;
  }

  // ---- The incremental way: set the engine up once, prepare a script, set it as the alert script, then use the _Opt
  // calls. What runs is the prepared script; the alert script switches it on.

  void InitialiseTransientStore(std::int32_t variablesSize) {
    detail::Check(bw_alert_initialise_transient_store(handle_.get(), variablesSize));
  }
  /// False when the script is refused.
  bool ProcessScripData(const std::string& script) {
    std::int32_t prepared = detail::kNotWritten;
    bw_alert_process_scrip_data(handle_.get(), script.c_str(), &prepared);
    detail::Rethrow(events_);
    detail::CheckWritten(prepared);
    return prepared != 0;
  }
  /// Always true: the series take every new bar.
  bool AppendRecord_Opt(const Bar& bar, double lastTradeDate) {
    Call(bw_alert_append_record_opt(handle_.get(), bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice,
                                    bar.ClosePrice, bar.Volume, lastTradeDate));
    return true;
  }
  /// False when no bar has this date; nothing, without an evaluation, when the series do not take the bar.
  std::optional<bool> EditRecord_Opt(const Bar& bar, double lastTradeDate) {
    std::int32_t found = detail::kNotWritten;
    const std::int32_t status =
        bw_alert_edit_record_opt(handle_.get(), bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice,
                                 bar.ClosePrice, bar.Volume, lastTradeDate, &found);
    detail::Rethrow(events_);
    detail::CheckWritten(found);
    return status == 0 ? std::optional<bool>(found != 0) : std::nullopt;
  }
  /// Accepted; writes nothing.
  void GetVariableValuesLog(const std::string& path) {
    detail::Check(bw_alert_get_variable_values_log(handle_.get(), path.c_str()));
  }
  /// The manual page of the function that the last run called last.
  std::string ScriptHelp() const { return Get(&bw_alert_get_script_help); }

 private:
  /// Stands at one address for its whole life, since the library keeps that address.
  struct Events {
    AlertCallback alert;
    ErrorCallback error;
    std::exception_ptr thrown;
  };
  static void TellAlert(void* user, const char* symbol, const char* name, double date, double price) {
    Events& events = *static_cast<Events*>(user);
    detail::Guarded(events.thrown, [&] {
      if (events.alert) events.alert(symbol, name, date, price);
    });
  }
  static void TellError(void* user, const char* symbol, const char* name, const char* description) {
    Events& events = *static_cast<Events*>(user);
    detail::Guarded(events.thrown, [&] {
      if (events.error) events.error(symbol, name, description);
    });
  }
  void Call(std::int32_t status) {
    detail::Rethrow(events_);
    detail::Check(status);
  }
  std::string Get(std::int32_t (*get)(bw_alert*, char**)) const {
    return detail::TextOf([&](char** text) { return get(handle_.get(), text); });
  }

  detail::Handle<bw_alert, &bw_alert_destroy> handle_;
  std::unique_ptr<Events> events_;
};

/// What is wrong with a script, in words for an editor. Can be moved, not copied.
class CValidate {
 public:
  CValidate() : handle_(bw_validate_create()) {
    if (!handle_) throw std::bad_alloc();
  }
  /// The first fault. For a script without fault: empty when BuildVersion is -1, else "NO Error:" and the number of
  /// series that it makes.
  std::string Validate(const std::string& ValidateScript, std::int32_t BuildVersion = 0) {
    return detail::TextOf([&](char** text) {
      return bw_validate_validate(handle_.get(), ValidateScript.c_str(), BuildVersion, text);
    });
  }
  /// What the last validated script sets under a name: "EXCHANGE", "SECTOR", "INDUSTRY" or "SYMBOL".
  std::string Constant(const std::string& name) const {
    return detail::TextOf([&](char** text) { return bw_validate_get_constant(handle_.get(), name.c_str(), text); });
  }
  /// The manual page of the function that the validation stopped in.
  std::string ScriptHelp() const {
    return detail::TextOf([&](char** text) { return bw_validate_get_script_help(handle_.get(), text); });
  }

 private:
  detail::Handle<bw_validate, &bw_validate_destroy> handle_;
};

static_assert(std::is_nothrow_move_constructible_v<CScriptOutput> &&
              !std::is_copy_constructible_v<CScriptOutput>);

}  // namespace host
}  // namespace brindlewort

#endif
