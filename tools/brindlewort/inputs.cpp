#include "inputs.hpp"

#include <CLI/CLI.hpp>
#include <cstdio>

#include "bars_csv.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
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
  command.add_option("BARS", path_, "CSV file of price bars, or - for standard input")
      ->type_name("")
      ->required();
}

void BarsInput::addOptionalTo(CLI::App& command) {
  addTo(command);
  command.get_option("BARS")->required(false);
}

void BarsInput::open() {
  file_ = openInput(fromStandardInput() ? "-" : path_,
                    "Give the path of a CSV file of bars, or - for standard input.");
}

void BarsInput::read(const std::function<void(const Bar&)>& onBar, ProgressLine& progress) {
  const std::size_t allBytes = sizeOfFile(path_);
  std::size_t bytes = 0;
  std::string buffer;
  BarsCsvReader reader(onBar);
  while (const std::size_t size = readPiece(file_.get(), buffer, name())) {
    if (!reader.feed(std::string_view(buffer).substr(0, size))) break;
    bytes += size;
    if (progress.due()) progress.show(progressText(reader.bars(), bytes, allBytes));
  }
  if (!reader.finish()) throw ToolError(kExitInput, reader.problem()->message(name()));
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
    throw ToolError(kExitInput,
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

std::string scriptOfArguments(const std::vector<std::string>& texts) {
  std::string script;
  for (const std::string& text : texts) {
    if (!script.empty()) script += '\n';
    script += text.starts_with('@') ? readScriptFile(text.substr(1)) : text;
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
