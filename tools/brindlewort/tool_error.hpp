#pragma once

#include <stdexcept>
#include <string>

#include "exit_codes.hpp"

namespace brindlewort::tool {

/// Ends a command: the text goes to standard error, the code to the shell.
class ToolError : public std::runtime_error {
 public:
  ToolError(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace brindlewort::tool
