#pragma once

#include <string>
#include <vector>

#include "functions/sample_call.hpp"

/// Calls of every function of the incremental way, made from the function table.
namespace brindlewort::testing {

/// All names of the incremental way with their rows.
struct NamedFunction {
  std::string name;
  const FunctionRow* row;
  std::string call() const { return sampleCall(*row, name, Path::kIncremental); }
};
inline std::vector<NamedFunction> incrementalFunctions() {
  std::vector<NamedFunction> functions;
  for (const FunctionRow& row : functionTable()) {
    if (row.path == Path::kWholeHistory) continue;
    for (const FunctionName& name : row.names) functions.push_back({std::string(name.name), &row});
  }
  return functions;
}

}  // namespace brindlewort::testing
