#pragma once

#include <string_view>

#include "services/validate/fault.hpp"

/// The checks of what stands in and behind the brackets of calls.
namespace brindlewort::validation {

/// Behind the last ")" stands nothing, or something that holds an operator or a "(". So the main expression
/// of a script whose last bracket stands in a SET statement must have an operator.
Fault CheckArguments(std::string_view script);

/// Nothing stands in the brackets of the functions that take no arguments. A blank in front of the bracket
/// hides a call from this check.
Fault CheckNoInputs(std::string_view script);

}  // namespace brindlewort::validation
