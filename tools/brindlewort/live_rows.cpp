#include "live_rows.hpp"

#include <optional>
#include <utility>

#include "output_formats.hpp"
#include "script_trial.hpp"
#include "series/julian_date.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

bool append(CScriptOutput& component, const Bar& bar) {
  return component.AppendRecord_New(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                                    volumeToInt32(bar.Volume));
}

}  // namespace

LiveRows::LiveRows(Request request) : request_(std::move(request)) {
  requireSoundScript(request_.script, Way::kIncremental);
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
  if (!append(component_, bar)) throw ToolError(kExitInput, "Out of memory. Start again with fewer bars.");
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

std::vector<std::string> columnNames(std::string_view heading) {
  static constexpr std::string_view kBetween = "\",\"";
  std::vector<std::string> names;
  std::size_t at = heading.find('"');
  while (at != std::string_view::npos) {
    const std::size_t end = heading.find(kBetween, at + 1);
    const std::size_t last = end == std::string_view::npos ? heading.size() - 1 : end;
    names.emplace_back(heading.substr(at + 1, last - at - 1));
    at = end == std::string_view::npos ? end : end + kBetween.size() - 1;
  }
  return names;
}

}  // namespace brindlewort::tool
