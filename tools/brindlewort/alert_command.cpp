#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "alert_watch.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "inputs.hpp"
#include "live_feed.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr char kFooter[] = R"(
Events
  The script is computed at each bar, and an alert is told when the value of its last expression there is not 0:
  a line with symbol, name, date of the bar and its close. A bar with the date of the one before takes its place
  and is told anew.

Ways
  Without --follow all bars are read first, and the whole history is computed anew for each bar, as a host does that
  gives an alert its bars one by one. With --follow each bar is told before the next one comes, by the incremental
  way, at the same cost however many came before; BARS may be left out then, for standard input. The two
  ways ask for different numbers of bars before the first alert. An interrupt (Ctrl-C) and the end of the bars end it,
  exit code 0.

Formats
  csv   "symbol","name",date,price; the price cut after four decimals
  json  an object a line: symbol, name, date, jDate, price

Exit codes
  0 done, 1 the command line, the bars or a file is at fault, 2 the script is at fault or needs more bars

Examples
  brindlewort alert bars.csv --script 'CROSSOVER(SMA(CLOSE, 10), SMA(CLOSE, 30)) = TRUE'
  feed | brindlewort alert --follow --symbol ACME --name breakout --script @breakout.bws)";

struct AlertOptions {
  BarsInput bars;
  ScriptInput script;
  std::string symbol;
  std::string name = "alert";
  std::string format = "csv";
  bool follow = false;
};

/// The symbol given, else the name of the file of bars.
std::string symbolOf(const AlertOptions& options) {
  if (!options.symbol.empty() || options.bars.fromStandardInput()) return options.symbol;
  return std::filesystem::path(options.bars.name()).stem().string();
}

AlertWatch::Request requestOf(const AlertOptions& options) {
  return {options.script.read(options.bars), symbolOf(options), options.name,
          options.follow ? Way::kIncremental : Way::kWholeHistory,
          options.format == "json" ? AlertWatch::Form::kJsonLines : AlertWatch::Form::kCsv};
}

std::string progressText(std::size_t bar, std::size_t bars) {
  return "watching: bar " + std::to_string(bar) + " of " + std::to_string(bars) + " (" +
         std::to_string(100 * bar / bars) + " %)";
}

void watchAll(AlertOptions& options) {
  AlertWatch watch(requestOf(options));
  std::vector<Bar> bars;
  ProgressLine progress;
  options.bars.read([&](const Bar& bar) { bars.push_back(bar); }, progress);
  for (std::size_t i = 0; i < bars.size(); ++i) {
    const std::string line = watch.take(bars[i]);
    if (!line.empty()) progress.clear();
    if (!line.empty()) writeOutput(line);
    if (progress.due()) progress.show(progressText(i + 1, bars.size()));
  }
  progress.clear();
  watch.finish();
}

void watchFeed(AlertOptions& options) {
  AlertWatch watch(requestOf(options));
  if (answerBars(options.bars, [&](const Bar& bar) { return watch.take(bar); })) watch.finish();
}

void runAlert(AlertOptions& options) {
  if (!options.bars.given() && !options.follow) throw CLI::RequiredError("BARS");
  options.bars.open();
  if (options.follow) {
    watchFeed(options);
  } else {
    watchAll(options);
  }
}

}  // namespace

void addAlertCommand(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("alert", "Tell when a script fires, bar by bar");
  const auto options = std::make_shared<AlertOptions>();
  options->bars.addOptionalTo(*command);
  options->script.addTo(*command);
  command->add_option("--symbol", options->symbol, "Symbol in the lines; the name of the file when left out")
      ->type_name("TEXT");
  command->add_option("--name", options->name, "Name of the alert in the lines")
      ->type_name("TEXT")
      ->capture_default_str();
  command->add_option("--format", options->format, "Form of the lines")
      ->type_name("FORMAT")
      ->capture_default_str()
      ->check(CLI::IsMember({"csv", "json"}));
  command->add_flag("--follow", options->follow, "Tell each bar as it comes, by the incremental way");
  command->footer(kFooter);
  command->callback([options] { runAlert(*options); });
}

}  // namespace brindlewort::tool
