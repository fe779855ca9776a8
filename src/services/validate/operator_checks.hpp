#pragma once

#include <string_view>

#include "services/validate/fault.hpp"
#include "services/validate/script_names.hpp"

/// The checks of a script's operators, on upper-cased text whose blanks stand single.
namespace brindlewort::validation {

/// The SET statements, whose names enter `names`, then the three checks below, then the brackets.
Fault CheckOperators(std::string_view script, ScriptNames& names);

/// A blank or a line end on both sides of every operator; NOT needs none behind it. Letters of an operator
/// inside a name that the script may use are no operator, nor is the sign of a number.
Fault CheckOperatorBlanks(std::string_view script, const ScriptNames& names);

/// No operator at the head or the end of the script; NOT may stand at the head. The head is compared letter
/// by letter, so that a number's sign and a word that begins like an operator are refused there too.
Fault CheckScriptEnds(std::string_view script);

/// No operator that touches another one. Comparisons may, and so may a number's sign.
Fault CheckOperatorNeighbours(std::string_view script);

}  // namespace brindlewort::validation
