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
/// out. One object is used by one thread at a time.

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
    auto listener = callback ? std::make_unique<Listener>(Listener{std::move(callback), nullptr}) : nullptr;
    bw_script_output_on_script_error(handle_.get(), listener ? &CScriptOutput::TellListener : nullptr,
                                     listener.get());
    listener_ = std::move(listener);
  }

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
    std::vector<double> rows;
    rows.reserve(bars.size() * 6);
    for (const Bar& bar : bars) {
      rows.insert(rows.end(), {bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                               static_cast<double>(bar.Volume)});
    }
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

  // ---- Scripts. Texts are UTF-8; a line break is CR LF.

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
  /// A series of the last run, by the name that a column shows or the script writes; nothing for an unknown
  /// name.
  std::optional<SeriesView> GetSeries(const std::string& name) const {
    const double* values = nullptr;
    std::size_t count = 0;
    if (bw_script_output_get_series(handle_.get(), name.c_str(), &values, &count) != 0) return std::nullopt;
    return SeriesView(values, count);
  }

 private:
  struct Destroy {
    void operator()(bw_script_output* handle) const { bw_script_output_destroy(handle); }
  };
  /// Stands at one address for its whole life, since the library keeps that address.
  struct Listener {
    std::function<void(const std::string&)> callback;
    std::exception_ptr thrown;
  };

  /// No exception may cross the library, so one of the callback waits in the listener.
  static void TellListener(void* user, const char* description) {
    Listener& listener = *static_cast<Listener*>(user);
    try {
      listener.callback(description);
    } catch (...) {
      listener.thrown = std::current_exception();
    }
  }

  /// The record calls fail for want of memory only.
  static void Check(std::int32_t status) {
    if (status != 0) throw std::bad_alloc();
  }
  static std::optional<std::string> Take(char* text) {
    if (!text) return std::nullopt;
    const std::unique_ptr<char, void (*)(void*)> owner(text, &bw_free);
    return std::string(text);
  }
  std::optional<std::string> Answer(std::int32_t status, char* text) {
    std::optional<std::string> answer = Take(text);
    if (listener_ && listener_->thrown) std::rethrow_exception(std::exchange(listener_->thrown, nullptr));
    if (status != 0) return std::nullopt;
    return answer;
  }

  std::unique_ptr<bw_script_output, Destroy> handle_;
  std::unique_ptr<Listener> listener_;
};

static_assert(std::is_nothrow_move_constructible_v<CScriptOutput> &&
              !std::is_copy_constructible_v<CScriptOutput>);

}  // namespace host
}  // namespace brindlewort

#endif
