#include <CLI/CLI.hpp>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "columns.hpp"
#include "commands.hpp"
#include "console.hpp"
#include "inputs.hpp"
#include "live_feed.hpp"
#include "live_rows.hpp"
#include "output_formats.hpp"
#include "script_trial.hpp"
#include "services/output/script_output.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::int32_t kEventList = -1;
constexpr char kOrEventList[] = "\nThe numbers of the bars on which it holds are listed by --from -1.";

constexpr char kFooter[] = R"(
Script
  One statement a line. The last line is the main expression; the lines before it are SET statements, whose
  series become the columns, as do the series of function calls. Text behind a # is a comment.

Bars
  The header names the columns, in any order and case: Date (or Datetime, Time, Timestamp, or a first column
  without a name), Open, High, Low, Close and, if there is one, Volume. Further columns are ignored, and so are
  lines that start with # before the header.

Dates
  2004-08-19 or 20040819; behind it, if wanted, a blank or a T and 09:30 or 09:30:00 (a fraction of the
  seconds and a Z at the end are cut); Julian day numbers (2378861.5 to 2488069.5); epoch seconds (numbers
  nearer to zero than 10000000000) or milliseconds. Years 1801 to 2099.

Formats
  csv    the text that the component gives to a host (GetScriptOutput), with LF line ends: numbers are cut
         after four decimals, a missing value is -987654321
  json   one object: Date, JDate, then a member per column; full precision, null for a missing value
  table  aligned columns, numbers cut after four decimals, blank for a missing value

First bar
  --from 0 prints every bar. --from 1 and 2 start at the third bar like --from 3, and from 1 on a series may start
  later than with 0, since no filler bars stand in front of those given.
  With --from -1 there are no columns: the output is one line with the numbers, counted from 1, of the bars
  where the script's last expression is 1.

Following
  With --follow each bar is answered by its row before the next one comes, and costs the same however many came
  before. BARS may be left out: they come from standard input then. A bar with the date of the one before takes
  its place, and its row is printed anew. Row by row the series start where the incremental way of the component
  lets them start: no filler bars stand in front, the first bar is a row, and the script asks for as many bars as
  its greatest period and two, 7 at least. Nothing is printed before that. Forms are csv, the heading once, then a
  line a bar; and json, an object a line. A line that cannot be read, or whose bar is older than the one before,
  is told and skipped. An interrupt (Ctrl-C) and the end of the bars end it, exit code 0; or 3 when lines were
  skipped.
)";

constexpr char kExamples[] = R"(
Examples
  brindlewort output bars.csv --script 'SET A = SMA(CLOSE, 14)' --script 'CLOSE > A' --format table
  brindlewort output bars.csv --script-file crossover.bws --sets FAST,SLOW --from 100
  cat bars.csv | brindlewort output - --script @crossover.bws --format json
  feed | brindlewort output --follow --script 'SET A = SMA(CLOSE, 14)' --script 'CLOSE > A')";

struct OutputOptions {
  BarsInput bars;
  ScriptInput script;
  std::string sets;
  std::int32_t from = 0;
  std::string format = "csv";
  bool follow = false;
};

[[noreturn]] void failForTooFewBars(std::int32_t bars, const std::string& script, bool fillersCount) {
  const std::int32_t wanted = barsWanted(script, Way::kWholeHistory) + (fillersCount ? 0 : kFillerBars);
  throw ToolError(kExitNothing, "Not enough data: the script asks for " + std::to_string(wanted) +
                                    " bars (twice the greatest period in it), and there are " +
                                    std::to_string(bars) + ". Give more bars, or use shorter periods.");
}

/// What is printed, and the names of its columns.
struct Answer {
  std::string text;
  std::vector<std::string> columns;
};

std::vector<std::string> namesOf(const OutputTable& table) {
  std::vector<std::string> names;
  for (const OutputColumn& column : table.columns) names.push_back(column.name);
  return names;
}

std::optional<Answer> csvAnswer(CScriptOutput& component, const OutputOptions& options,
                                const std::string& script) {
  std::optional<std::string> text = component.GetScriptOutput(script, options.from, options.sets);
  if (!text) return std::nullopt;
  if (options.from == kEventList) return Answer{*text + '\n', {}};
  Answer answer = {withUnixLineEnds(std::move(*text)), {}};
  answer.columns = columnNames(std::string_view(answer.text).substr(0, answer.text.find('\n')));
  return answer;
}

/// Nothing when the run had no answer.
std::optional<Answer> answerOf(CScriptOutput& component, const OutputOptions& options,
                               const std::string& script) {
  if (options.format == "csv") return csvAnswer(component, options, script);
  const std::optional<OutputTable> table = component.computeOutput(script, options.from, options.sets);
  if (!table) return std::nullopt;
  return Answer{options.format == "json" ? toJson(*table) : toAlignedTable(*table), namesOf(*table)};
}

/// Ends the command when a column is asked for that is not there.
void requireColumns(CScriptOutput& component, const OutputOptions& options, const std::string& script,
                    const Answer& answer) {
  if (options.from == kEventList) return;
  const std::vector<std::string> missing = missingColumns(options.sets, answer.columns);
  if (missing.empty()) return;
  const std::optional<OutputTable> all = component.computeOutput(script, options.from, "");
  failForColumns(options.sets, missing, all ? namesOf(*all) : answer.columns);
}

/// What --follow has no answer for.
void checkFollowOptions(const OutputOptions& options) {
  if (options.from == kEventList) {
    throw ToolError(kExitUsage, "--from -1 lists bars of the whole history. Leave it out, or --follow.");
  }
  if (options.format == "table") {
    throw ToolError(kExitUsage,
                    "--format table needs all rows to align them. With --follow take csv or json.");
  }
}

/// What a list of bar numbers has no room for.
void checkEventList(const OutputOptions& options) {
  if (options.from != kEventList) return;
  if (options.format != "csv") {
    throw ToolError(kExitUsage, "--from -1 gives a list of bar numbers, which has no form as " +
                                    options.format + ". Leave --format out.");
  }
  if (!options.sets.empty()) {
    throw ToolError(kExitUsage,
                    "--from -1 gives a list of bar numbers, which has no columns. Leave --sets out.");
  }
}

void runFollow(OutputOptions& options) {
  checkFollowOptions(options);
  options.bars.open();
  const std::string script = options.script.read(options.bars);
  LiveRows rows({script, options.sets, options.from,
                 options.format == "json" ? LiveRows::Form::kJsonLines : LiveRows::Form::kCsv});
  if (!rows.hasColumns()) tell(noColumnsText(script));
  const FeedEnd end = answerBars(options.bars, [&](const Bar& bar) { return rows.take(bar); });
  if (end.complete) rows.finish();
  requireNothingSkipped(end);
}

void runOutput(OutputOptions& options) {
  if (options.follow) return runFollow(options);
  if (!options.bars.given()) throw CLI::RequiredError("BARS");
  checkEventList(options);
  options.bars.open();
  const std::string script = options.script.read(options.bars);

  CScriptOutput component;
  std::int32_t bars = 0;
  std::string error;
  component.ScriptError = [&](const std::string& description) { error = description; };
  ProgressLine progress;
  options.bars.read(
      [&](const Bar& bar) {
        component.AppendRecord(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                               volumeToInt32(bar.Volume));
        ++bars;
      },
      progress);
  progress.show("computing the script over " + std::to_string(bars) + " bars");
  const std::optional<Answer> answer = answerOf(component, options, script);
  progress.clear();
  if (!error.empty()) throw ToolError(kExitScript, error);
  if (!answer) failForTooFewBars(bars, script, options.from == 0);
  requireColumns(component, options, script, *answer);
  writeOutput(answer->text);
  if (answer->columns.empty() && options.from != kEventList) tell(noColumnsText(script) + kOrEventList);
}

}  // namespace

void addOutputCommand(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("output", "Compute the series of a script over price bars");
  const auto options = std::make_shared<OutputOptions>();
  options->bars.addOptionalTo(*command);
  options->script.addTo(*command);
  command->add_option("--sets", options->sets, "The columns wanted, separated by commas; all when left out")
      ->type_name("A,B");
  command
      ->add_option(
          "--from", options->from,
          "First bar to print, counted from 1; 0 prints all; 1 and 2 act as 3; -1 lists bars, see below")
      ->type_name("N")
      ->capture_default_str()
      ->check(CLI::Range(kEventList, std::numeric_limits<std::int32_t>::max()).description(""));
  command->add_option("--format", options->format, "Form of the output")
      ->type_name("FORMAT")
      ->capture_default_str()
      ->check(CLI::IsMember({"csv", "json", "table"}));
  command->add_flag("--follow", options->follow,
                    "Answer each bar as it comes, and each change of the last one; see below");
  command->footer(kFooter + exitCodesHelp() + kExamples);
  command->callback([options] { runOutput(*options); });
}

}  // namespace brindlewort::tool
