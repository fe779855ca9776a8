#pragma once

#include <string>
#include <string_view>

#include "shell/help/help_ids.hpp"

namespace brindlewort {

/// The text of an entry, in full; empty when there is none.
std::string_view helpText(int id);

/// What a component gives as its `ScriptHelp`: the manual's entry for the function that its engine called
/// last, at most `kMaxHelpText` characters. Empty before any call, and for a function without an entry.
std::string scriptHelp(std::string_view currentFunction);

/// The page for a name that somebody typed: blanks around it and a "(" with all that follows are no part of
/// it, and the further spellings of a function lead to its page too. Empty when there is none of its own.
std::string_view manualPage(std::string_view name);

}  // namespace brindlewort
