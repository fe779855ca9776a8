#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console.hpp"
#include "series/bar.hpp"

namespace CLI {
class App;
}

namespace brindlewort::tool {

struct BarsCsvProblem;

/// The bars of a command: the path of a CSV file, or "-" for standard input.
class BarsInput {
 public:
  void addTo(CLI::App& command);
  /// The same, for a command that has standard input in mind when no path is given.
  void addOptionalTo(CLI::App& command);

  bool given() const { return !paths_.empty(); }
  bool fromStandardInput() const { return !given() || paths_.front() == "-"; }
  /// Opens the file, so that a wrong path is told before anything else is waited for. Throws a ToolError for
  /// more than one.
  void open();
  /// Reads the whole file; each bar goes to `onBar`. Throws a ToolError that tells the line at fault.
  void read(const std::function<void(const Bar&)>& onBar, ProgressLine& progress);
  /// Where the bars come from, as messages name it.
  std::string name() const { return fromStandardInput() ? "standard input" : paths_.front(); }
  std::FILE* file() const { return file_.get(); }
  /// True when the bars come from the file that a path leads to.
  bool isFile(const std::string& path) const;
  /// What is wrong with the bars, where, and what to do.
  std::string message(const BarsCsvProblem& problem) const;

 private:
  [[noreturn]] void failForSeveral() const;

  std::string command_;
  std::vector<std::string> paths_;  ///< one, if the command line is right
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

/// The path of the file that an argument of a script names by an @ in front.
std::optional<std::string> scriptFileOf(std::string_view argument);

/// A script given by arguments: each is a line of it, or @ and the path of a file. Its line breaks are those
/// that the engine knows. Empty for no arguments.
std::string scriptOfArguments(const std::vector<std::string>& texts);

/// The text with every line end (LF, CR LF or CR) as CR LF, the line break of the script language.
std::string withScriptLineBreaks(std::string_view text);

}  // namespace brindlewort::tool
