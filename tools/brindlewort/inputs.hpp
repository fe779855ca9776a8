#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "console.hpp"
#include "series/bar.hpp"

namespace CLI {
class App;
}

namespace brindlewort::tool {

/// The bars of a command: the path of a CSV file, or "-" for standard input.
class BarsInput {
 public:
  void addTo(CLI::App& command);
  /// The same, for a command that has standard input in mind when no path is given.
  void addOptionalTo(CLI::App& command);

  bool given() const { return !path_.empty(); }
  bool fromStandardInput() const { return path_ == "-" || path_.empty(); }
  /// Opens the file, so that a wrong path is told before anything else is waited for.
  void open();
  /// Reads the whole file; each bar goes to `onBar`. Throws a ToolError that tells the line at fault.
  void read(const std::function<void(const Bar&)>& onBar, ProgressLine& progress);
  /// Where the bars come from, as messages name it.
  std::string name() const { return fromStandardInput() ? "standard input" : path_; }
  std::FILE* file() const { return file_.get(); }

 private:
  std::string path_;
  InputFile file_;
};

/// The script of a command: an argument, a file, or standard input.
class ScriptInput {
 public:
  void addTo(CLI::App& command);
  /// The same, for a command whose bare arguments are the script.
  void addAsArgumentTo(CLI::App& command);

  /// The script with the line breaks that the engine knows. Reads standard input when neither argument nor
  /// file is given, unless that is where the bars come from.
  std::string read(const BarsInput& bars) const;
  /// The same for a command without bars.
  std::string read() const;

 private:
  void addTo(CLI::App& command, const std::string& textNames);
  bool fromStandardInput() const { return file_ == "-" || (texts_.empty() && file_.empty()); }

  std::vector<std::string> texts_;
  std::string file_;
};

/// A script given by arguments: each is a line of it, or @ and the path of a file. Its line breaks are those
/// that the engine knows. Empty for no arguments.
std::string scriptOfArguments(const std::vector<std::string>& texts);

/// The text with every line end (LF, CR LF or CR) as CR LF, the line break of the script language.
std::string withScriptLineBreaks(std::string_view text);

}  // namespace brindlewort::tool
