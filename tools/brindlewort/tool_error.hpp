#pragma once

#include <stdexcept>
#include <string>

namespace brindlewort::tool {

/// The tool's exit codes, as its help tells them.
enum ExitCode : int {
  kExitOk = 0,
  kExitInput = 1,   ///< the command line, the bars or a file
  kExitScript = 2,  ///< the script: an error in it, or too few bars for it
};

/// Ends a command: the text goes to standard error, the code to the shell.
class ToolError : public std::runtime_error {
 public:
  ToolError(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace brindlewort::tool
