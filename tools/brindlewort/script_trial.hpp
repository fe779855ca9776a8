#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "series/bar.hpp"

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

/// So many bars are more than any period that a script is likely to hold.
inline constexpr std::int32_t kMostTrialBars = 20'000;

/// Made-up bars.
std::vector<Bar> trialBars(std::int32_t count);

/// What a script gives over made-up bars.
struct Trial {
  std::string error;                 ///< what it fails with; empty when it does not fail
  std::vector<std::string> columns;  ///< the names of its output series; of the incremental way only
};
Trial tryScript(const std::string& script, Way way);

/// How to have a script computed that the way at hand does not know.
struct OtherWay {
  std::function<bool()> computesIt;
  std::string_view advice;
};

/// Ends the command when the script has failed over made-up bars. So a fault is told before the first bar
/// comes; and a script that fails later, before it has given anything, fails for want of bars.
void requireSound(const Trial& trial, const OtherWay& otherWay);

/// How many bars of the host a script asks for.
std::int32_t barsWanted(const std::string& script, Way way);

/// Ends the command that got nothing from a script over all bars but `error`, if that.
[[noreturn]] void failForMoreBars(std::int32_t bars, const std::string& script, Way way,
                                  const std::string& error);

}  // namespace brindlewort::tool
