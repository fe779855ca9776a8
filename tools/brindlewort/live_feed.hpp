#pragma once

#include <functional>
#include <string>

#include "inputs.hpp"
#include "series/bar.hpp"

namespace brindlewort::tool {

/// Reads bars as they come and writes the answer to each before the next one is waited for. True at the end
/// of the bars; false when an interrupt came, or nobody reads the answers any more. Throws a ToolError for a
/// line that cannot be read, behind the answers to the bars before it.
bool answerBars(const BarsInput& bars, const std::function<std::string(const Bar&)>& answer);

}  // namespace brindlewort::tool
