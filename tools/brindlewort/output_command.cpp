#include <CLI/CLI.hpp>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "commands.hpp"
#include "functions/script_engine.hpp"
#include "inputs.hpp"
#include "output_formats.hpp"
#include "series/text.hpp"
#include "services/output/script_output.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::int32_t kEventList = -1;
constexpr std::int32_t kFillerBars = 2;  // put in front of the bars when all of them are to be printed

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

Exit codes
  0 done, 1 the command line or the bars are at fault, 2 the script is at fault or needs more bars

Examples
  brindlewort output bars.csv --script 'SET A = SMA(CLOSE, 14)' --script 'CLOSE > A' --format table
  brindlewort output bars.csv --script-file crossover.bws --sets FAST,SLOW --from 100
  cat bars.csv | brindlewort output - --script @crossover.bws --format json)";

struct OutputOptions {
  BarsInput bars;
  ScriptInput script;
  std::string sets;
  std::int32_t from = 0;
  std::string format = "csv";
};

[[noreturn]] void failForMoreBars(std::int32_t bars, const std::string& script, bool fillersCount) {
  const std::int32_t wanted =
      CScriptEngine().EstimateLookback(upperCase(script)) - (fillersCount ? kFillerBars : 0);
  throw ToolError(kExitScript, "Not enough data: the script asks for " + std::to_string(wanted) +
                                   " bars (twice the greatest period in it), and there are " +
                                   std::to_string(bars) + ". Give more bars, or use shorter periods.");
}

/// The text to print, or nothing when the run had no answer.
std::optional<std::string> outputText(CScriptOutput& component, const OutputOptions& options,
                                      const std::string& script) {
  if (options.format == "csv") {
    std::optional<std::string> text = component.GetScriptOutput(script, options.from, options.sets);
    if (text && options.from == kEventList) *text += '\n';
    if (text) *text = withUnixLineEnds(std::move(*text));
    return text;
  }
  const std::optional<OutputTable> table = component.computeOutput(script, options.from, options.sets);
  if (!table) return std::nullopt;
  return options.format == "json" ? toJson(*table) : toAlignedTable(*table);
}

void runOutput(OutputOptions& options) {
  if (options.from == kEventList && options.format != "csv") {
    throw ToolError(kExitInput, "--from -1 gives a list of bar numbers, which has no form as " +
                                    options.format + ". Leave --format out.");
  }
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
  const std::optional<std::string> text = outputText(component, options, script);
  progress.clear();
  if (!error.empty()) throw ToolError(kExitScript, error);
  if (!text) failForMoreBars(bars, script, options.from == 0);
  writeOutput(*text);
}

}  // namespace

void addOutputCommand(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("output", "Compute the series of a script over price bars");
  const auto options = std::make_shared<OutputOptions>();
  options->bars.addTo(*command);
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
  command->footer(kFooter);
  command->callback([options] { runOutput(*options); });
}

}  // namespace brindlewort::tool
