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
  Bars are taken one by one by the incremental way, at the same cost for each however many came before. The
  first alert can come with the bar whose number is the greatest period in the script and two, but 7 at least.
  --plain computes the whole history anew for each bar, which takes four times as long for twice the bars. There
  the first alert can come with the bar whose number is twice the greatest period, but 5 at least; and what the
  two ways compute differs for some functions, see the manual page.

Following
  All bars are read before the first is told. With --follow each bar is told before the next one comes; BARS may be
  left out then, for standard input. A line that cannot be read, or whose bar is older than the one before, is told
  and skipped. An interrupt (Ctrl-C) and the end of the bars end it, exit code 0; or 3 when lines were skipped.

Formats
  csv   "symbol","name",date,price; the price cut after four decimals
  json  an object a line: symbol, name, date, jDate, price
)";

constexpr char kExamples[] = R"(
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
  bool plain = false;
};

/// The symbol given, else the name of the file of bars.
std::string symbolOf(const AlertOptions& options) {
  if (!options.symbol.empty() || options.bars.fromStandardInput()) return options.symbol;
  return std::filesystem::path(options.bars.name()).stem().string();
}

AlertWatch::Request requestOf(const AlertOptions& options) {
  return {options.script.read(options.bars), symbolOf(options), options.name,
          options.plain ? Way::kWholeHistory : Way::kIncremental,
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
  const FeedEnd end = answerBars(options.bars, [&](const Bar& bar) { return watch.take(bar); });
  if (end.complete) watch.finish();
  requireNothingSkipped(end);
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
  CLI::Option* const follow = command->add_flag("--follow", options->follow, "Tell each bar as it comes");
  command->add_flag("--plain", options->plain, "Compute the whole history anew for each bar; slow, see below")
      ->excludes(follow);
  command->footer(kFooter + exitCodesHelp() + kExamples);
  command->callback([options] { runAlert(*options); });
}

}  // namespace brindlewort::tool
