#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "functions/script_engine.hpp"
#include "services/output/script_output.hpp"

/// The work between a component and its engine: runs a script and makes the output of its series.
namespace brindlewort {

/// Runs a script and picks the output series. The result is empty, or the text that ends the work: an error,
/// or a message of the run driver.
std::string runForOutput(CScriptEngine& engine, std::string_view script, std::string_view outputSets,
                         std::vector<OutputColumn>& columns);

/// A longer text ends the work.
inline constexpr std::size_t kLongestText = 500'000'000;

/// The series of a script as text: a heading, then a line per bar from `mapCount` on. With the engine's
/// `eventListMode` set, the list of event bars instead, and the mode is cleared.
std::string outputText(CScriptEngine& engine, std::string_view script, std::int32_t mapCount,
                       std::string_view outputSets, std::size_t longest = kLongestText);

/// The bars of the event list as numbers. None, when a text ends the work instead.
std::vector<std::int32_t> eventBars(CScriptEngine& engine, std::string_view script);

/// The heading line of a custom indicator.
std::string headingText(CScriptEngine& engine, std::string_view script);

/// The bar that the first line is about, from 0. Bars 0 and 1 are the fillers' places.
std::size_t firstOutputBar(std::int32_t mapCount);

// ---- The same for the prepared script of a living engine. The host's script serves its tests alone: for an
// empty text, and for the lookback of the event list.

std::string runPreparedForOutput(CScriptEngine& engine, std::string_view outputSets,
                                 std::vector<OutputColumn>& columns);
std::string preparedOutputText(CScriptEngine& engine, std::string_view script, std::int32_t mapCount,
                               std::string_view outputSets, std::size_t longest = kLongestText);
std::vector<std::int32_t> preparedEventBars(CScriptEngine& engine, std::string_view script);
std::string preparedHeadingText(CScriptEngine& engine, std::string_view script);
/// Runs and picks the entries of the output series; false when the run has failed.
bool runPreparedForPointers(CScriptEngine& engine, std::string_view outputSets,
                            std::vector<StoreEntry*>& entries);

}  // namespace brindlewort
