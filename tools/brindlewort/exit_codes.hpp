#pragma once

#include <array>
#include <string>
#include <string_view>

namespace brindlewort::tool {

/// What the tool tells the shell at its end; the same for every command.
enum ExitCode : int {
  kExitOk = 0,
  kExitUsage = 1,
  kExitScript = 2,
  kExitFile = 3,
  kExitNothing = 4,
};

struct ExitMeaning {
  ExitCode code;
  std::string_view text;  ///< as the help and the manual page tell it
};
inline constexpr std::array<ExitMeaning, 5> kExitMeanings = {{
    {kExitOk, "done"},
    {kExitUsage, "the command line is at fault, or asks for a name that is not there"},
    {kExitScript, "a script is at fault"},
    {kExitFile, "the bars or a file are at fault: not to be read, written or held in memory"},
    {kExitNothing, "nothing is at fault, but there is no result: no trades, or too few bars"},
}};

/// The part of a command's help that tells the exit codes.
std::string exitCodesHelp();

}  // namespace brindlewort::tool
