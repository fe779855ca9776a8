#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

/// The arithmetic of a chart: where its ticks stand and which points of a long line are drawn.
namespace brindlewort::tool {

/// A labelled place on an axis.
struct Tick {
  double at = 0.0;
  std::string label;
};

/// What an axis of values spans; `low` is below `high`.
struct Range {
  double low = 0.0;
  double high = 1.0;
};

/// False for what has no place on an axis: non-numbers, infinities, and values next to them.
bool hasPlace(double value);

/// The range of the values that have a place, with a margin on both sides. Equal values get room too; no
/// value gives 0 to 1.
Range rangeOf(std::span<const double> values);

/// Round numbers within a range (1, 2 or 5 times a power of ten apart), about `wanted` of them, with as many
/// decimals as tell them apart.
std::vector<Tick> valueTicks(Range range, int wanted);

/// Places on an axis of bars where the calendar turns: a year, a month, a day or an hour, the finest of them
/// that gives at most `most` ticks. Bars at even distances where that gives fewer than three. `at` is the
/// number of the bar, from 0.
std::vector<Tick> dateTicks(std::span<const double> dates, std::size_t most);

struct Point {
  double x = 0.0;
  double y = 0.0;
  friend bool operator==(const Point&, const Point&) = default;
};

/// A line of at most `most` points that looks the same: of each stretch of a longer one the lowest and the
/// highest point, in their order, and the first and the last point of all. `most` is 4 at least.
std::vector<Point> thinnedOut(std::span<const Point> line, std::size_t most);

}  // namespace brindlewort::tool
