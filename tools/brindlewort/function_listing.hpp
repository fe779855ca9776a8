#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "functions/function_table.hpp"

namespace brindlewort::tool {

/// Every function with its arguments and its other spellings, a line each, in the order of the rows.
std::string listFunctions(std::span<const FunctionRow> rows);

/// The section of the reference page about a function, as text. Nothing for a name that no row has. `name` in
/// any case.
std::optional<std::string> describeFunction(std::span<const FunctionRow> rows, std::string_view name);

/// Names that have `part` in them, to advise somebody who mistyped one; at most eight, separated by ", ".
std::string similarFunctions(std::span<const FunctionRow> rows, std::string_view part);

}  // namespace brindlewort::tool
