#pragma once

#include <cstddef>
#include <span>
#include <string_view>

/// Which entry of the manual a function's name leads to.
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

/// The entry of the first equal name of a list; 0 when there is none.
int findHelpId(std::span<const HelpName> names, std::string_view upperCaseName);

/// The entry that a name leads to, in any case but otherwise to the letter; 0 for a name without one.
int helpId(std::string_view name);

}  // namespace brindlewort
