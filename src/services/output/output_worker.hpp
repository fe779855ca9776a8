#pragma once

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

/// The series of a script as text: a heading, then a line per bar from `mapCount` on. With the engine's
/// `eventListMode` set, the list of event bars instead, and the mode is cleared.
std::string outputText(CScriptEngine& engine, std::string_view script, std::int32_t mapCount,
                       std::string_view outputSets);

/// The heading line of a custom indicator.
std::string headingText(CScriptEngine& engine, std::string_view script);

/// The bar that the first line is about, from 0. Bars 0 and 1 are the fillers' places.
std::size_t firstOutputBar(std::int32_t mapCount);

}  // namespace brindlewort
