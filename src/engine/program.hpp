#pragma once

#include <string>
#include <vector>

#include "functions/script_engine.hpp"

namespace brindlewort {

/// The SET statements of a script, each up to its line break, and the main expression behind them,
/// normalised.
struct CScriptEngine::Program {
  std::vector<std::string> sets;
  std::string main;
};

}  // namespace brindlewort
