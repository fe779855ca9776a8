#include "backtest_answers.hpp"

#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <utility>

#include "series/julian_date.hpp"
#include "services/backtest/report.hpp"
#include "services/backtest/statistics.hpp"

namespace brindlewort::tool {
namespace {

using Json = nlohmann::ordered_json;

Json number(std::optional<double> value) {
  return value && std::isfinite(*value) ? Json(*value) : Json(nullptr);
}

/// The text with what is no UTF-8 replaced, as a file name may hold.
std::string readable(const std::string& text) {
  return Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace)).get<std::string>();
}

/// The label of the trade log without the comma behind it.
std::string actionOf(const SignalRecord& record) {
  std::string_view label = tradeLabel(record.Signal);
  if (label.ends_with(',')) label.remove_suffix(1);
  return std::string(label);
}

/// The profit of the position that a record closes, and its part of the opening price.
struct Gain {
  double profit;
  double rate;
};
std::optional<Gain> gainOf(std::span<const SignalRecord> records, std::size_t i) {
  if (i == 0) return std::nullopt;
  const ClosedTrades closed = closedTrades(records.subspan(i - 1, 2));
  if (closed.profits.empty()) return std::nullopt;
  return Gain{closed.profits.front(), closed.returns.front()};
}

Json statisticsJson(const Statistics& statistics) {
  Json json = Json::object();
  for (const StatisticLine& line : statisticLines()) {
    json[std::string(line.key)] = number(line.value(statistics));
  }
  json["riskToReward"] = number(statistics.riskToReward);
  return json;
}

Json tradesJson(const BacktestRun& run) {
  Json json = Json::array();
  for (std::size_t i = 0; i < run.trades.size(); ++i) {
    const SignalRecord& record = run.trades[i];
    Json line = {{"date", DateTimeText(record.JDate)},
                 {"jDate", number(record.JDate)},
                 {"bar", hostBarNumber(record, run.fillers)},
                 {"action", actionOf(record)},
                 {"price", number(record.Price)}};
    if (const std::optional<Gain> gain = gainOf(run.trades, i)) {
      line["profit"] = number(gain->profit);
      line["return"] = number(gain->rate);
    }
    json.push_back(std::move(line));
  }
  return json;
}

std::optional<MarkKind> markKind(const SignalRecord& record) {
  switch (record.TradeType) {
    case kTradeLong:
      return MarkKind::kLongEntry;
    case kTradeShort:
      return MarkKind::kShortEntry;
    case kTradeExitLong:
      return MarkKind::kLongExit;
    case kTradeExitShort:
      return MarkKind::kShortExit;
    default:
      return std::nullopt;
  }
}

std::string timesText(std::size_t count) {
  return count == 0 ? "never" : "on " + std::to_string(count) + (count == 1 ? " bar" : " bars");
}

}  // namespace

std::string backtestJson(const BacktestRun& run, std::int32_t bars) {
  const Json json = {
      {"from", DateTimeText(run.firstDate)},
      {"to", DateTimeText(run.lastDate)},
      {"bars", bars},
      {"fired",
       {{"buy", run.buys}, {"sell", run.sells}, {"exitLong", run.longExits}, {"exitShort", run.shortExits}}},
      {"statistics", statisticsJson(*run.statistics)},
      {"trades", tradesJson(run)}};
  return json.dump(1) + '\n';
}

BacktestChart backtestChart(const BacktestRun& run, const BarStore& bars, const std::string& title,
                            std::vector<double>& dates, std::vector<double>& closes) {
  for (const Bar& bar : bars.rows()) {
    dates.push_back(bar.JDate);
    closes.push_back(bar.ClosePrice);
  }
  BacktestChart chart{readable(title), dates, closes, {}, {}};
  double total = 0.0;
  for (std::size_t i = 0; i < run.trades.size(); ++i) {
    const SignalRecord& record = run.trades[i];
    const std::size_t bar = static_cast<std::size_t>(hostBarNumber(record, run.fillers) - 1);
    if (const std::optional<MarkKind> kind = markKind(record)) {
      chart.marks.push_back({*kind, bar, record.Price});
    }
    if (const std::optional<Gain> gain = gainOf(run.trades, i)) {
      total += gain->profit;
      chart.steps.push_back({bar, total});
    }
  }
  return chart;
}

std::string noTradesText(const std::vector<ScriptOutcome>& scripts, std::int32_t bars) {
  std::string text = "The scripts generated no trades.";
  for (const ScriptOutcome& script : scripts) {
    text += std::string("\n  ") + script.name + ": ";
    if (!script.given) {
      text += "not given";
    } else if (script.barsWanted > bars) {
      text += "asks for " + std::to_string(script.barsWanted) + " bars, " + "and there are " +
              std::to_string(bars);
    } else {
      text += "fired " + timesText(script.fired);
    }
  }
  return text +
         "\nA trade is an entry (buy, sell) and its exit on a later bar: by the exit script of its side, or "
         "by "
         "--stop-loss, --target or --max-bars.";
}

}  // namespace brindlewort::tool
