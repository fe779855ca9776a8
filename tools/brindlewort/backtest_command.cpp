#include <CLI/CLI.hpp>
#include <array>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backtest_answers.hpp"
#include "chart.hpp"
#include "chart_target.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "inputs.hpp"
#include "output_formats.hpp"
#include "script_trial.hpp"
#include "series/julian_date.hpp"
#include "services/backtest/backtest.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr char kFooter[] = R"(
Scripts
  A script fires on the bars where its last expression is 1. Each is a text, or @FILE; an option given several
  times gives a line of the script each time. One position is open at a time. It is closed by the exit script of
  its side (an entry of the other side does not close it) or by one of the rules; an entry without an exit is no
  trade. Entries and exits by scripts fill at the close of their bar.

Formats
  text  the report that a host gets from the component, with LF line ends
  json  one object: from, to, bars; fired, the bars on which each script did; statistics; trades, the lines of the
        trade log, with profit and return on those that close a position
)";

constexpr char kExamples[] = R"(
Examples
  brindlewort backtest bars.csv --buy 'CROSSOVER(SMA(CLOSE, 10), SMA(CLOSE, 30)) = TRUE' \
      --exit-long 'CROSSOVER(SMA(CLOSE, 30), SMA(CLOSE, 10)) = TRUE' --stop-loss 5 --trailing --chart run.svg
  brindlewort backtest bars.csv --buy @buy.bws --sell @sell.bws --target 3 --max-bars 20 --format json)";

enum Role : std::size_t { kBuy, kSell, kExitLong, kExitShort, kRoles };

struct RoleOption {
  const char* option;
  const char* name;
  const char* help;
};
constexpr std::array<RoleOption, kRoles> kRoleOptions = {{
    {"--buy", "buy", "Script that opens long positions, or @FILE"},
    {"--sell", "sell", "Script that opens short positions, or @FILE"},
    {"--exit-long", "exit-long", "Script that closes long positions, or @FILE"},
    {"--exit-short", "exit-short", "Script that closes short positions, or @FILE"},
}};

struct BacktestOptions {
  BarsInput bars;
  std::array<std::vector<std::string>, kRoles> scripts;
  double slip = 0.0;
  double stopLoss = 0.0;
  bool trailing = false;
  double target = 0.0;
  std::int32_t maxBars = 0;
  bool fast = false;
  std::optional<std::int64_t> seed;
  std::string format = "text";
  ChartTarget chart;
};

using Scripts = std::array<std::string, kRoles>;

/// A number as the component reads it: without an exponent.
std::string plainNumber(double value) {
  std::array<char, 400> buffer;
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
  return error == std::errc() ? std::string(buffer.data(), end) : "0";
}

/// The rules as the component takes them.
std::string rulesText(const BacktestOptions& options) {
  return "StopLoss=" + plainNumber(options.stopLoss) + ";TrailingStop=" + (options.trailing ? "1" : "0") +
         ";ProfitTarget=" + plainNumber(options.target) + ";MaxBars=" + std::to_string(options.maxBars) + ';';
}

Scripts readScripts(const BacktestOptions& options) {
  Scripts scripts;
  for (std::size_t role = 0; role < kRoles; ++role) {
    scripts[role] = scriptOfArguments(options.scripts[role]);
  }
  if (scripts[kBuy].empty() && scripts[kSell].empty()) {
    throw ToolError(kExitUsage, "There is no script that opens a position. Give --buy or --sell, or both.");
  }
  return scripts;
}

std::vector<std::string> scriptFilesOf(const BacktestOptions& options) {
  std::vector<std::string> files;
  for (const std::vector<std::string>& texts : options.scripts) {
    for (const std::string& text : texts) {
      if (const std::optional<std::string> file = scriptFileOf(text)) files.push_back(*file);
    }
  }
  return files;
}

BacktestRequest requestOf(const Scripts& scripts, const BacktestOptions& options, const std::string& rules) {
  return {scripts[kBuy], scripts[kSell], scripts[kExitLong], scripts[kExitShort], options.slip, rules};
}

const ScriptWay& wayOf(const BacktestOptions& options) {
  return options.fast ? kIncrementalWay : kWholeHistoryWay;
}

/// Tells which script the error is from: the first that fails alone.
[[noreturn]] void failForOneOf(const Scripts& scripts, CBacktest& component, const BacktestOptions& options,
                               const std::string& error) {
  for (std::size_t role = 0; role < kRoles; ++role) {
    BacktestRequest alone;
    alone.buyScript = scripts[role];
    if (component.runBacktest(alone, wayOf(options)).error == error) {
      failForScript(error + "\nThat is from the script of " + kRoleOptions[role].option + '.');
    }
  }
  failForScript(error);
}

[[noreturn]] void failForNoTrades(const BacktestRun& run, const Scripts& scripts, std::int32_t bars,
                                  const BacktestOptions& options) {
  const Way way = options.fast ? Way::kIncremental : Way::kWholeHistory;
  const std::array<std::size_t, kRoles> fired = {run.buys, run.sells, run.longExits, run.shortExits};
  std::vector<ScriptOutcome> outcomes;
  for (std::size_t role = 0; role < kRoles; ++role) {
    outcomes.push_back(
        {kRoleOptions[role].name, !scripts[role].empty(), fired[role], barsWanted(scripts[role], way)});
  }
  throw ToolError(kExitNothing,
                  noTradesText(outcomes, bars) + (options.chart.wanted() ? "\nNo picture was drawn." : ""));
}

std::string dayOf(double jDate) {
  return DateTimeText(jDate).substr(0, std::string_view("2004-08-19").size());
}

std::string chartTitle(const BacktestRun& run, const BacktestOptions& options) {
  const std::string bars =
      options.bars.fromStandardInput()
          ? "Backtest"
          : "Backtest of " + std::filesystem::path(options.bars.name()).filename().string();
  return bars + ", " + dayOf(run.firstDate) + " to " + dayOf(run.lastDate);
}

std::string chartSvg(const BacktestRun& run, const BarStore& bars, const BacktestOptions& options) {
  std::vector<double> dates, closes;
  return toSvg(backtestChart(run, bars, chartTitle(run, options), dates, closes));
}

/// The report comes first: it is there when the picture fails.
void writeAnswers(const std::string& report, const BacktestRun& run, const BarStore& bars,
                  const BacktestOptions& options) {
  if (options.chart.isStandardOutput()) {
    tell(report);
  } else {
    writeOutput(report);
  }
  if (options.chart.wanted()) options.chart.write(chartSvg(run, bars, options));
}

void runBacktestCommand(BacktestOptions& options) {
  options.bars.open();
  options.chart.check(options.bars, scriptFilesOf(options));
  const Scripts scripts = readScripts(options);
  CBacktest component;
  component.fixedSeed = options.seed;
  ProgressLine progress;
  options.bars.read(
      [&](const Bar& bar) {
        component.AppendRecord(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                               volumeToInt32(bar.Volume));
      },
      progress);
  const std::int32_t bars = component.RecordCount();
  progress.show("running the scripts over " + std::to_string(bars) + " bars");
  const std::string rules = rulesText(options);
  const BacktestRun run = component.runBacktest(requestOf(scripts, options, rules), wayOf(options));
  progress.clear();
  if (!run.error.empty() && run.error != kNoTrades) failForOneOf(scripts, component, options, run.error);
  if (!run.statistics) failForNoTrades(run, scripts, bars, options);

  const std::string report =
      options.format == "json" ? backtestJson(run, bars) : withUnixLineEnds(resultText(run));
  writeAnswers(report, run, component.bars(), options);
}

}  // namespace

void addBacktestCommand(CLI::App& app) {
  CLI::App* const command =
      app.add_subcommand("backtest", "Trade on the signals of scripts and report what came of it");
  const auto options = std::make_shared<BacktestOptions>();
  options->bars.addTo(*command);
  for (std::size_t role = 0; role < kRoles; ++role) {
    command->add_option(kRoleOptions[role].option, options->scripts[role], kRoleOptions[role].help)
        ->type_name("SCRIPT")
        ->take_all()
        ->allow_extra_args(false);
  }
  const auto percent = [&](const char* name, double& target, const char* help) {
    return command->add_option(name, target, help)
        ->type_name("P")
        ->check(CLI::Range(0.0, 1e9).description(""));
  };
  percent("--slip", options->slip, "Slippage in percent of each fill, to the trader's disadvantage");
  CLI::Option* const stopLoss =
      percent("--stop-loss", options->stopLoss, "Close at a loss of P percent of the entry price");
  command->add_flag("--trailing", options->trailing, "Let the stop loss follow the price")->needs(stopLoss);
  percent("--target", options->target, "Close at a profit of P percent of the entry price");
  command->add_option("--max-bars", options->maxBars, "Close a position that is open for more than N bars")
      ->type_name("N")
      ->check(CLI::Range(0, 2'000'000'000).description(""));
  command
      ->add_option("--seed", options->seed,
                   "Start of the random numbers of the Monte Carlo figure; the clock "
                   "when left out")
      ->type_name("N");
  command->add_flag("--fast", options->fast,
                    "Run the scripts by the incremental way, whose functions may differ in their first rows");
  command->add_option("--format", options->format, "Form of the output")
      ->type_name("FORMAT")
      ->capture_default_str()
      ->check(CLI::IsMember({"text", "json"}));
  options->chart.addTo(*command);
  command->footer(kFooter + exitCodesHelp() + kExamples);
  command->callback([options] { runBacktestCommand(*options); });
}

}  // namespace brindlewort::tool
