#pragma once

#include <string>
#include <vector>

#include "functions/script_engine.hpp"

namespace brindlewort {

/// A script as it is read: the SET statements, each up to its line break, the main expression behind them,
/// normalised, and what its head says.
struct CScriptEngine::Program {
  bool isScript = false;  ///< it is neither empty nor too large, and takes the place of the script before
  std::int32_t lookback = 0;
  std::string text;                                ///< upper-cased, without comments
  std::string exchange, sector, industry, symbol;  ///< values of the SET statements of these names
  std::vector<std::string> sets;
  std::string main;
};

}  // namespace brindlewort
