#include "inputs.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "bars_csv.hpp"
#include "near_names.hpp"
#include "safe_file.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kShownFiles = 12;
constexpr std::string_view kNoScript =
    "Give one by --script 'TEXT', --script-file FILE, or on standard input.";

std::string progressText(std::size_t bars, std::size_t bytes, std::size_t allBytes) {
  std::string text = "reading bars: " + std::to_string(bars);
  if (allBytes != 0) text += " (" + std::to_string(100 * bytes / allBytes) + " %)";
  return text;
}

std::string withoutByteOrderMark(std::string text) {
  if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
  return text;
}

std::string readScriptFile(const std::string& path) {
  const InputFile file = openInput(path, "Give the path of a text file that holds a script.");
  return withoutByteOrderMark(readAll(file.get(), path));
}

std::string readScriptFromStandardInput() {
  if (isTerminal(stdin)) std::fputs("Type the script; end with Ctrl-D on a line of its own.\n", stderr);
  return withoutByteOrderMark(readAll(stdin, "standard input"));
}

bool isBlank(std::string_view text) {
  return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

}  // namespace

void BarsInput::addTo(CLI::App& command) {
  command_ = command.get_name();
  // All words that belong to no option come here, so that several files can be told.
  command.add_option("BARS", paths_, "CSV file of price bars, or - for standard input")
      ->type_name("")
      ->required()
      ->take_all();
}

void BarsInput::addOptionalTo(CLI::App& command) {
  addTo(command);
  command.get_option("BARS")->required(false);
}

void BarsInput::failForSeveral() const {
  std::vector<std::string_view> shown(paths_.begin(), paths_.begin() + std::min(paths_.size(), kShownFiles));
  std::string list = inLines(shown, "  ", kLineWidth);
  if (paths_.size() > shown.size()) list += "  ...\n";
  const std::string head = command_ + " takes one file of bars, and " + std::to_string(paths_.size()) +
                           " words stand in its place:\n" + list;
  const auto isNoFile = [](const std::string& path) { return path != "-" && !std::filesystem::exists(path); };
  if (std::any_of(paths_.begin(), paths_.end(), isNoFile)) {
    throw ToolError(kExitUsage,
                    head + "If they belong to a script, put it in quotation marks: --script 'TEXT'.");
  }
  throw ToolError(kExitUsage, head + "Take them one by one: for bars in *.csv; do brindlewort " + command_ +
                                  " \"$bars\" ...; done");
}

void BarsInput::open() {
  if (paths_.size() > 1) failForSeveral();
  file_ = openInput(fromStandardInput() ? "-" : name(),
                    "Give the path of a CSV file of bars, or - for standard input.");
}

bool BarsInput::isFile(const std::string& path) const {
  return fromStandardInput() ? isSameFile(path, stdin) : isSameFile(path, name());
}

std::string BarsInput::message(const BarsCsvProblem& problem) const {
  const std::string text = problem.message(name());
  if (!problem.foreign) return text;
  return text + ' ' + howToRead(*problem.foreign, command_, fromStandardInput() ? "" : name());
}

void BarsInput::read(const std::function<void(const Bar&)>& onBar, ProgressLine& progress) {
  const std::size_t allBytes = fromStandardInput() ? 0 : sizeOfFile(name());
  std::size_t bytes = 0;
  std::string buffer;
  BarsCsvReader reader(onBar);
  while (const std::size_t size = readPiece(file_.get(), buffer, name())) {
    if (!reader.feed(std::string_view(buffer).substr(0, size))) break;
    bytes += size;
    if (progress.due()) progress.show(progressText(reader.bars(), bytes, allBytes));
  }
  if (!reader.finish()) throw ToolError(kExitFile, message(*reader.problem()));
}

void ScriptInput::addTo(CLI::App& command) {
  addTo(command, "-s,--script");
}

void ScriptInput::addAsArgumentTo(CLI::App& command) {
  addTo(command, "SCRIPT,-s,--script");
  command.get_option("--script")->allow_extra_args();
}

void ScriptInput::addTo(CLI::App& command, const std::string& textNames) {
  CLI::Option* const text = command.add_option(
      textNames, texts_,
      "The script, or @FILE to read it from a file. Given several times, each is a line of it");
  text->type_name("TEXT")->take_all()->allow_extra_args(false);
  command.add_option("-f,--script-file", file_, "File that holds the script; - for standard input")
      ->type_name("FILE")
      ->excludes(text);
}

std::string ScriptInput::read(const BarsInput& bars) const {
  if (fromStandardInput() && bars.fromStandardInput()) {
    throw ToolError(kExitUsage,
                    "standard input gives the bars, so the script cannot come from there. Give it by "
                    "--script 'TEXT' or --script-file FILE.");
  }
  return read();
}

std::string ScriptInput::read() const {
  std::string script = scriptOfArguments(texts_);
  if (!file_.empty() && file_ != "-") script = readScriptFile(file_);
  if (fromStandardInput()) script = readScriptFromStandardInput();

  if (isBlank(script)) throw ToolError(kExitScript, "the script is empty. " + std::string(kNoScript));
  return withScriptLineBreaks(script);
}

std::optional<std::string> scriptFileOf(std::string_view argument) {
  if (!argument.starts_with('@')) return std::nullopt;
  return std::string(argument.substr(1));
}

std::string scriptOfArguments(const std::vector<std::string>& texts) {
  std::string script;
  for (const std::string& text : texts) {
    if (!script.empty()) script += '\n';
    const std::optional<std::string> file = scriptFileOf(text);
    script += file ? readScriptFile(*file) : text;
  }
  return withScriptLineBreaks(script);
}

std::string withScriptLineBreaks(std::string_view text) {
  std::string result;
  result.reserve(text.size() + text.size() / 16);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    if (text[i] == '\r' || text[i] == '\n') {
      result += "\r\n";
    } else {
      result += text[i];
    }
  }
  return result;
}

}  // namespace brindlewort::tool
