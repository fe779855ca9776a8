#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace brindlewort {

/// A help text that a component hands out is cut here.
inline constexpr std::size_t kMaxHelpText = 10'000;

/// A name that leads to an entry of the manual. Names are in upper case.
struct HelpName {
  std::string_view name;
  int id;
};

/// The names that a component's help knows, in the order in which they are compared.
std::span<const HelpName> helpNames();

/// The entry that a name leads to, in any case but otherwise to the letter; 0 for a name without one.
int helpId(std::string_view name);

/// The text of an entry, in full; empty when there is none.
std::string_view helpText(int id);

/// What a component gives as its `ScriptHelp`: the manual's entry for the function that its engine called
/// last, at most `kMaxHelpText` characters. Empty before any call, and for a function without an entry.
std::string scriptHelp(std::string_view currentFunction);

/// The page for a name that somebody typed: blanks around it and a "(" with all that follows are no part of
/// it, and the further spellings of a function lead to its page too. Empty when there is none.
std::string_view manualPage(std::string_view name);

}  // namespace brindlewort
