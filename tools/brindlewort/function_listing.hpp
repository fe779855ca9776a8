#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "functions/function_table.hpp"

namespace brindlewort::tool {

/// Every function with its arguments and its other spellings, a line each, in the order of the rows.
std::string listFunctions(std::span<const FunctionRow> rows);

/// The section of the reference page about a function, as text. Nothing for a name that no row has. `name` in
/// any case.
std::optional<std::string> describeFunction(std::span<const FunctionRow> rows, std::string_view name);

/// Every spelling of every function, in the order of the rows.
std::vector<std::string_view> functionNames(std::span<const FunctionRow> rows);

}  // namespace brindlewort::tool
