#pragma once

#include <span>
#include <string_view>

namespace brindlewort {

/// One entry of the manual. The first line of an entry on functions is a call form; line ends are line feeds,
/// none at the end.
struct HelpText {
  int id;
  std::string_view text;
};

/// All entries by rising id: 100 holds the library's title, the others one function or family each. Made at
/// build time of the files in texts/.
std::span<const HelpText> helpTexts();

}  // namespace brindlewort
