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

std::string readScriptFile(const std::string& path) {
  const InputFile file = openInput(path, "Give the path of a text file that holds a script.");
  return readAll(file.get(), path);
}

std::string readScriptFromStandardInput() {
  if (isTerminal(stdin)) std::fputs("Type the script; end with Ctrl-D on a line of its own.\n", stderr);
  return readAll(stdin, "standard input");
}

}  // namespace

void BarsInput::addTo(CLI::App& command) {
  command.add_option("BARS", path_, "CSV file of price bars, or - for standard input")
      ->type_name("")
      ->required();
}

void BarsInput::open() {
  file_ = openInput(path_, "Give the path of a CSV file of bars, or - for standard input.");
}

void BarsInput::read(const std::function<void(const Bar&)>& onBar, ProgressLine& progress) {
  const std::string name = fromStandardInput() ? "standard input" : path_;
  const std::size_t allBytes = sizeOfFile(path_);
  std::size_t bytes = 0;
  std::string buffer;
  BarsCsvReader reader(onBar);
  while (const std::size_t size = readPiece(file_.get(), buffer, name)) {
    if (!reader.feed(std::string_view(buffer).substr(0, size))) break;
    bytes += size;
    if (progress.due()) progress.show(progressText(reader.bars(), bytes, allBytes));
  }
  if (!reader.finish()) throw ToolError(kExitInput, reader.problem()->message(name));
}

void ScriptInput::addTo(CLI::App& command) {
  CLI::Option* const text = command.add_option(
      "-s,--script", texts_,
      "The script, or @FILE to read it from a file. Given several times, each is a line of it");
  text->type_name("TEXT")->take_all()->allow_extra_args(false);
  command.add_option("-f,--script-file", file_, "File that holds the script; - for standard input")
      ->type_name("FILE")
      ->excludes(text);
}

std::string ScriptInput::read(const BarsInput& bars) const {
  const bool fromStandardInput = file_ == "-" || (texts_.empty() && file_.empty());
  if (fromStandardInput && bars.fromStandardInput()) {
    throw ToolError(kExitInput,
                    "standard input gives the bars, so the script cannot come from there. Give it by "
                    "--script 'TEXT' or --script-file FILE.");
  }

  std::string script;
  for (const std::string& text : texts_) {
    if (!script.empty()) script += '\n';
    script += text.starts_with('@') ? readScriptFile(text.substr(1)) : text;
  }
  if (!file_.empty() && file_ != "-") script = readScriptFile(file_);
  if (fromStandardInput) script = readScriptFromStandardInput();

  if (script.starts_with(kByteOrderMark)) script.erase(0, kByteOrderMark.size());
  if (script.find_first_not_of(" \t\r\n") == std::string::npos) {
    throw ToolError(kExitScript, "the script is empty. " + std::string(kNoScript));
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
