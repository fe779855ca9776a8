#pragma once

#include <cstdint>
#include <string>

/// What commands tell about a script that gives nothing.
namespace brindlewort::tool {

/// The two ways in which components run scripts.
enum class Way { kWholeHistory, kIncremental };

/// For so many entries a component of the incremental way is set up: as many as the other way allows.
inline constexpr std::int32_t kIncrementalEntries = 500;

/// Bars put in front of the host's on the whole-history way.
inline constexpr std::int32_t kFillerBars = 2;

/// Ends the command with a script's error and with what to do next.
[[noreturn]] void failForScript(const std::string& error);

/// What a script fails with over made-up bars, which are as many as any of its periods is likely to want;
/// empty when it does not fail.
std::string trialError(const std::string& script, Way way);

/// Ends the command when the script fails over made-up bars. So a fault is told before the first bar comes;
/// and a script that fails later, before it has given anything, fails for want of bars.
void requireSoundScript(const std::string& script, Way way);

/// How many bars of the host a script asks for.
std::int32_t barsWanted(const std::string& script, Way way);

/// Ends the command that got nothing from a script over all bars but `error`, if that.
[[noreturn]] void failForMoreBars(std::int32_t bars, const std::string& script, Way way,
                                  const std::string& error);

}  // namespace brindlewort::tool
