#include "live_feed.hpp"

#include <string_view>
#include <vector>

#include "bars_csv.hpp"
#include "live_streams.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {

bool answerBars(const BarsInput& bars, const std::function<std::string(const Bar&)>& answer) {
  LiveStreams streams(bars.file(), bars.name());
  std::vector<Bar> arrived;
  BarsCsvReader reader([&](const Bar& bar) { arrived.push_back(bar); });
  for (bool ended = false; !ended;) {
    const std::string_view piece = streams.read();
    if (streams.interrupted()) return false;
    ended = piece.empty();
    const bool readable = ended ? reader.finish() : reader.feed(piece);
    for (const Bar& bar : arrived) {
      if (!streams.write(answer(bar))) return false;
    }
    arrived.clear();
    if (!readable) throw ToolError(kExitInput, reader.problem()->message(bars.name()));
  }
  return true;
}

}  // namespace brindlewort::tool
