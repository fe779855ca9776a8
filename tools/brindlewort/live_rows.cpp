#include "live_rows.hpp"

#include <optional>
#include <utility>

#include "columns.hpp"
#include "output_formats.hpp"
#include "script_trial.hpp"
#include "series/julian_date.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

/// The whole-history way knows functions that the incremental one does not have.
bool computesWholeHistory(const std::string& script) {
  CScriptOutput component;
  for (const Bar& bar : trialBars(kMostTrialBars)) {
    component.AppendRecord(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                           volumeToInt32(bar.Volume));
  }
  return component.GetCustomIndFromCondition(script).has_value();
}

void append(CScriptOutput& component, const Bar& bar) {
  component.AppendRecord_New(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                             volumeToInt32(bar.Volume));
}

}  // namespace

LiveRows::LiveRows(Request request) : request_(std::move(request)) {
  const Trial trial = tryScript(request_.script, Way::kIncremental);
  requireSound(trial, {[this] { return computesWholeHistory(request_.script); },
                       "Without --follow this script is computed."});
  const std::vector<std::string> missing = missingColumns(request_.sets, trial.columns);
  if (!missing.empty()) failForColumns(request_.sets, missing, trial.columns);
  hasColumns_ = !trial.columns.empty();
  component_.ScriptError = [this](const std::string& description) { error_ = description; };
  component_.InitialiseTransientStore(kIncrementalEntries);
  component_.ProcessScripData(request_.script);
}

std::string LiveRows::take(const Bar& bar) {
  error_.clear();
  store(bar);
  const std::optional<std::string> text =
      component_.GetScriptOutput_New(request_.script, bars_, request_.sets);
  // Before the first row a failure is one of too few bars: the same script did well in the trial run.
  if (!text && !error_.empty() && computed_) fail();
  if (!text) return {};
  computed_ = true;
  return bars_ < request_.from ? std::string() : row(*text);
}

void LiveRows::store(const Bar& bar) {
  if (bars_ != 0 && bar.JDate == lastDate_) {
    component_.EditRecord_New(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                              volumeToInt32(bar.Volume));
    return;
  }
  append(component_, bar);
  ++bars_;
  lastDate_ = bar.JDate;
}

/// `text` is the component's: the heading, then the line of the last bar.
std::string LiveRows::row(std::string_view text) {
  const std::size_t headingSize = text.find(kLineEnd);
  const std::string_view heading = text.substr(0, headingSize);
  if (request_.form == Form::kJsonLines) return jsonRow(heading);
  const bool isNew = heading != heading_;
  if (isNew) heading_ = heading;
  return withUnixLineEnds(std::string(isNew ? text : text.substr(headingSize + kLineEnd.size())));
}

std::string LiveRows::jsonRow(std::string_view heading) const {
  const std::size_t bar = static_cast<std::size_t>(bars_) - 1;
  std::vector<NamedValue> values;
  for (std::string& name : columnNames(heading)) {
    const Series* const series = component_.findSeries(name);
    const bool has = series && bar < series->size();
    values.push_back({std::move(name), has ? std::optional<double>((*series)[bar]) : std::nullopt});
  }
  return toJsonLine(lastDate_, values);
}

void LiveRows::fail() const {
  failForScript(error_ + "\nThis came with the bar of " + DateTimeText(lastDate_) + '.');
}

void LiveRows::finish() const {
  if (!computed_) failForMoreBars(bars_, request_.script, Way::kIncremental, error_);
}

}  // namespace brindlewort::tool
