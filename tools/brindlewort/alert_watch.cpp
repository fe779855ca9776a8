#include "alert_watch.hpp"

#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

#include "series/julian_date.hpp"
#include "series/numbers.hpp"
#include "series/text.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

using Json = nlohmann::ordered_json;

/// A script of fewer characters is kept by the component but never run.
constexpr std::size_t kShortestScript = 5;
constexpr std::string_view kBeyondLimit = "exceeded the maximum number of alerts";

std::string csvText(std::string_view text) {
  return '"' + replaceAll(text, "\"", "\"\"") + '"';
}

/// A script that is long enough to be run: blanks in front change nothing else.
std::string longEnough(std::string script) {
  if (script.size() < kShortestScript) script.insert(0, kShortestScript - script.size(), ' ');
  return script;
}

[[noreturn]] void failForLimit(const std::string& error) {
  throw ToolError(kExitFile, error + "\nThere are " + std::to_string(CAlert::kMostAlerts) +
                                 " on this machine already. End some of them and start again.");
}

}  // namespace

AlertWatch::AlertWatch(Request request) : request_(std::move(request)) {
  request_.script = longEnough(std::move(request_.script));
  requireSoundScript();
  wanted_ = barsWanted(request_.script, request_.way);

  component_.Alert = [this](const std::string& symbol, const std::string& name, double date, double price) {
    event_ = request_.form == Form::kCsv ? alertLine(symbol, name, date, price)
                                         : alertJson(symbol, name, date, price);
  };
  component_.ScriptError = [this](const std::string&, const std::string&, const std::string& description) {
    if (contains(description, kBeyondLimit)) failForLimit(description);
    error_ = description;
  };
  component_.setSymbol(request_.symbol);
  component_.setAlertName(request_.name);
  if (request_.way == Way::kIncremental) {
    component_.InitialiseTransientStore(kIncrementalEntries);
    component_.ProcessScripData(request_.script);
  }
  component_.setAlertScript(request_.script);
  error_.clear();  // there are no bars yet
}

/// Each way knows functions that the other does not have.
void AlertWatch::requireSoundScript() const {
  const bool isPlain = request_.way == Way::kWholeHistory;
  const auto tried = [this](Way way) { return tryScript(request_.script, way); };
  requireSound(tried(request_.way),
               {[&] { return tried(isPlain ? Way::kIncremental : Way::kWholeHistory).error.empty(); },
                isPlain ? "Without --plain this script is computed."
                        : "With --plain, and without --follow, this script is computed."});
}

std::string AlertWatch::take(const Bar& bar) {
  event_.clear();
  error_.clear();
  store(bar);
  if (error_.empty()) {
    computed_ = computed_ || bars_ >= wanted_;
  } else if (computed_) {
    // Before that a failure is one of too few bars: the same script did well over the made-up ones.
    failForScript(error_ + "\nThis came with the bar of " + DateTimeText(lastDate_) + '.');
  }
  return event_;
}

void AlertWatch::store(const Bar& bar) {
  const bool isEdit = bars_ != 0 && bar.JDate == lastDate_;
  const bool isLive = request_.way == Way::kIncremental;
  const auto hand = [&](auto operation) {
    return (component_.*operation)(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                                   volumeToInt32(bar.Volume), bar.JDate);
  };
  if (isEdit && isLive) {
    hand(&CAlert::EditRecord_Opt);
  } else if (isEdit) {
    hand(&CAlert::EditRecord);
  } else if (isLive) {
    hand(&CAlert::AppendRecord_Opt);
  } else {
    hand(&CAlert::AppendRecord);
  }
  if (!isEdit) ++bars_;
  lastDate_ = bar.JDate;
}

void AlertWatch::finish() const {
  if (!computed_) failForMoreBars(bars_, request_.script, request_.way, error_);
}

std::string alertLine(const std::string& symbol, const std::string& name, double date, double price) {
  std::string text = csvText(symbol) + ',' + csvText(name) + ',';
  appendDateTimeText(text, date);
  text += ',';
  appendTruncated(text, price, 4);
  return text + '\n';
}

std::string alertJson(const std::string& symbol, const std::string& name, double date, double price) {
  const Json json = {{"symbol", symbol},
                     {"name", name},
                     {"date", DateTimeText(date)},
                     {"jDate", date},
                     {"price", std::isfinite(price) ? Json(price) : Json(nullptr)}};
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace brindlewort::tool
