#pragma once

#include <string_view>

#include "services/validate/fault.hpp"
#include "services/validate/script_names.hpp"

/// The checks of a script that text alone allows. They take upper-cased text without comments, with short
/// function names, and each returns its first fault; those behind it do not run.
namespace brindlewort::validation {

/// All checks in their order.
Fault CheckSyntax(std::string_view script);

/// Brackets and commas, or semicolons and slashes, that stand next to one another.
Fault CheckPairs(std::string_view script);

/// The SET statements, whose names enter `names`.
Fault CheckSet(std::string_view script, ScriptNames& names);

/// As many opening as closing brackets of each kind; their order is not looked at.
Fault CheckBrackets(std::string_view script);

/// Every word is a known name, the name of a SET statement anywhere in the script, or a number. Words of one
/// character are not looked at.
Fault CheckWords(std::string_view script, ScriptNames& names);

}  // namespace brindlewort::validation
