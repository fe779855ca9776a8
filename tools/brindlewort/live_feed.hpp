#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "inputs.hpp"
#include "series/bar.hpp"

namespace brindlewort::tool {

/// How a feed has ended.
struct FeedEnd {
  bool
      complete;  ///< at the end of the bars; else by an interrupt, or since nobody reads the answers any more
  std::size_t skipped;  ///< lines that gave no bar
};

/// Reads bars as they come and writes the answer to each before the next one is waited for. A line that
/// cannot be read, or whose bar is older than the one before, is told on standard error with its number and
/// skipped. Throws a ToolError for a header that cannot be read.
FeedEnd answerBars(const BarsInput& bars, const std::function<std::string(const Bar&)>& answer);

/// Ends the command with kExitFile when lines were skipped.
void requireNothingSkipped(const FeedEnd& end);

}  // namespace brindlewort::tool
