#include "live_feed.hpp"

#include <optional>
#include <string_view>
#include <vector>

#include "bars_csv.hpp"
#include "console.hpp"
#include "live_streams.hpp"
#include "series/julian_date.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::string_view kSkipped = "; the line is skipped.";

/// A line of the feed: a bar, or what is wrong with it.
struct Arrival {
  Bar bar;
  std::size_t line = 0;
  std::string problem;  ///< empty for a bar
};

/// The lines of a feed, in the order in which they came.
class Arrivals {
 public:
  explicit Arrivals(const BarsInput& bars)
      : bars_(bars),
        reader_(
            [this](const Bar& bar) {
              waiting_.push_back({bar, reader_.line(), {}});
            },
            [this](const BarsCsvProblem& problem) {
              waiting_.push_back({{}, problem.line, bars_.message(problem)});
            }) {}

  /// Takes a piece of text, empty at its end. The lines that are complete with it: valid until the next call.
  const std::vector<Arrival>& take(std::string_view piece) {
    waiting_.clear();
    isReadable_ = piece.empty() ? reader_.finish() : reader_.feed(piece);
    return waiting_;
  }
  void requireReadable() const {
    if (!isReadable_) throw ToolError(kExitFile, bars_.message(*reader_.problem()));
  }

 private:
  const BarsInput& bars_;
  std::vector<Arrival> waiting_;
  BarsCsvReader reader_;
  bool isReadable_ = true;
};

/// Tells which bars are older than one before them.
class DateOrder {
 public:
  /// What is wrong with the date of a line; nothing for a bar that may come now.
  std::optional<std::string> problemOf(const Arrival& arrival, const std::string& source) {
    if (line_ == 0 || arrival.bar.JDate >= date_) {
      date_ = arrival.bar.JDate;
      line_ = arrival.line;
      return std::nullopt;
    }
    return source + ':' + std::to_string(arrival.line) + ": expected a bar of " + DateTimeText(date_) +
           " (line " + std::to_string(line_) + ") or later, found one of " + DateTimeText(arrival.bar.JDate);
  }

 private:
  double date_ = 0.0;
  std::size_t line_ = 0;  ///< of the newest bar; 0 before any
};

}  // namespace

FeedEnd answerBars(const BarsInput& bars, const std::function<std::string(const Bar&)>& answer) {
  LiveStreams streams(bars.file(), bars.name());
  Arrivals arrivals(bars);
  DateOrder order;
  FeedEnd end = {false, 0};
  while (!end.complete) {
    const std::string_view piece = streams.read();
    if (streams.interrupted()) return end;
    end.complete = piece.empty();
    for (const Arrival& arrival : arrivals.take(piece)) {
      std::string problem = arrival.problem;
      if (problem.empty()) problem = order.problemOf(arrival, bars.name()).value_or(std::string());
      if (!problem.empty()) {
        tell(problem.append(kSkipped));
        ++end.skipped;
      } else if (!streams.write(answer(arrival.bar))) {
        end.complete = false;
        return end;
      }
    }
    arrivals.requireReadable();
  }
  return end;
}

void requireNothingSkipped(const FeedEnd& end) {
  if (end.skipped == 0) return;
  throw ToolError(kExitFile, std::to_string(end.skipped) + (end.skipped == 1 ? " line was" : " lines were") +
                                 " skipped.");
}

}  // namespace brindlewort::tool
