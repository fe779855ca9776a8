#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace brindlewort::tool {

/// What a mark on the price line stands for.
enum class MarkKind { kLongEntry, kLongExit, kShortEntry, kShortExit };
inline constexpr std::size_t kMarkKinds = 4;

/// An entry or an exit, at a bar (from 0) and a price.
struct ChartMark {
  MarkKind kind = MarkKind::kLongEntry;
  std::size_t bar = 0;
  double price = 0.0;
};

/// The running profit changes to `total` at a bar (from 0).
struct ChartStep {
  std::size_t bar = 0;
  double total = 0.0;
};

/// A backtest to be drawn. Dates and closes have a value per bar; marks and steps stand in order of their
/// bars.
struct BacktestChart {
  std::string title;
  std::span<const double> dates;
  std::span<const double> closes;
  std::vector<ChartMark> marks;
  std::vector<ChartStep> steps;
};

/// The picture as SVG: the price line with entries and exits above, the running profit below, dates along the
/// bottom. Its size does not grow with the bars: a long line keeps the lowest and the highest point of each
/// stretch, and of very many marks only some are drawn, as the legend says.
std::string toSvg(const BacktestChart& chart);

}  // namespace brindlewort::tool
