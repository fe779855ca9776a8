#include "indicators/percent_swing.hpp"

#include <algorithm>

#include "indicators/source_rows.hpp"

namespace brindlewort {

namespace {

constexpr double kRising = 1.0;
constexpr double kFalling = 2.0;

/// Row 0 takes no part: the line starts at row 1.
constexpr Count kFirstRow = 1;
constexpr Count kFewestRows = 2;

/// The step line under construction.
class StepLine {
 public:
  StepLine(double first, Out rows) : rows_(rows), level_(first) { rows_[kFirstRow] = first; }

  double level() const { return level_; }

  /// The line stands at `level` in row i, the row after the last one put.
  void put(Count i, double level) {
    if (!(level == level_)) runStart_ = i;
    rows_[i] = level_ = level;
  }

  /// The present level is reached once more in row i: the pivot moves there, and the rows that held it take
  /// the level before them. A line that has stood at this level from its start has none, and stays.
  void movePivotTo(Count i) {
    if (runStart_ > kFirstRow) {
      std::fill(rows_.begin() + runStart_, rows_.begin() + i, rows_[runStart_ - 1]);
      runStart_ = i;
    }
    rows_[i] = level_;
  }

  /// A bar that goes on in the line's direction as far as `extreme`.
  void extendTo(Count i, double extreme) {
    if (level_ == extreme) movePivotTo(i);
    put(i, extreme);
  }

 private:
  Out rows_;
  double level_;
  Count runStart_ = kFirstRow;  ///< first of the rows up to the last one that all stand at `level_`
};

/// Row 1 stands at the first high, rising. A reversal is told by the bar's extreme in the line's direction,
/// but the line turns to the opposite extreme.
void drawLine(View high, View low, double percent, Out rows) {
  const Count n = rowsOf(rows);
  StepLine line(high[kFirstRow], rows);
  bool rising = true;
  for (Count i = kFirstRow + 1; i < n; ++i) {
    const double level = line.level();
    if (rising ? level > high[i] : level < low[i]) {
      const bool turns =
          rising ? (100.0 - percent) / 100.0 * level > high[i] : (100.0 + percent) / 100.0 * level < low[i];
      line.put(i, !turns ? level : rising ? low[i] : high[i]);
      if (turns) rising = !rising;
    } else {
      line.extendTo(i, rising ? high[i] : low[i]);
    }
  }
}

/// The direction of the line: on a flat row that of the row before. Row 1 counts as rising.
double directionAfter(double before, View line, Count i) {
  if (line[i - 1] == line[i]) return before;
  return line[i] > line[i - 1] ? kRising : kFalling;
}

void fillDirection(View line, Out direction) {
  direction[kFirstRow] = kRising;
  for (Count i = kFirstRow + 1; i < rowsOf(line); ++i) {
    direction[i] = directionAfter(direction[i - 1], line, i);
  }
}

/// Marks the bars at which a direction ended: its high where the line then fell, its low where it then rose.
/// Row 1 opens the list with its low (so no turn away from row 1 is marked); the last step of the line
/// closes it. `pivots` arrives all null.
void markPivots(View high, View low, View line, Out pivots) {
  pivots[kFirstRow] = low[kFirstRow];
  double direction = kRising;
  Count stepRow = kFirstRow;  // the last row in which the line moved
  for (Count i = kFirstRow + 1; i < rowsOf(line); ++i) {
    if (line[i - 1] == line[i]) continue;
    const double before = direction;
    direction = directionAfter(before, line, i);
    if (direction != before && stepRow != kFirstRow) {
      pivots[stepRow] = direction == kRising ? low[stepRow] : high[stepRow];
    }
    stepRow = i;
  }
  pivots[stepRow] = direction == kRising ? high[stepRow] : low[stepRow];
}

/// The levels of the pivots in row order, without the first one. `list` arrives all null.
void listPivots(View pivots, Out list) {
  Count seen = 0;
  for (double level : pivots) {
    if (isNull(level)) continue;
    if (seen > 0) list[seen - 1] = level;
    ++seen;
  }
}

bool odd(Count x) {
  return x % 2 != 0;
}

/// The level of the top (or bottom) `swingNumber` swings back. `levels` are the listed pivots, tops and
/// bottoms in turn; `out` arrives all null.
void fillLevels(View pivots, View levels, View direction, Count swingNumber, bool tops, Out out) {
  const auto level = [&](Count k) { return k < rowsOf(levels) ? levels[k] : NULL_VALUE; };
  const double turned = tops ? kFalling : kRising;
  const double turnedFrom = tops ? kRising : kFalling;

  // The list may open with a pivot of the other side, which is one more to skip.
  const bool otherSideFirst = tops ? level(0) < level(1) : level(0) > level(1);
  const Count skip = 2 * (swingNumber + 1) - 1 + (otherSideFirst ? 1 : 0);
  Count next = odd(skip) ? 0 : 1;
  Count held = -1;
  Count passed = 0;
  bool active = false;
  for (Count i = 0; i < rowsOf(pivots); ++i) {
    active = active || skip < passed;
    const bool isPivot = !isNull(pivots[i]);
    if (isPivot) ++passed;
    if (!active) continue;
    if (i > 0 && direction[i] == turned && direction[i - 1] == turnedFrom) held = next;
    if (held > -1) out[i] = level(held);
    if (isPivot && odd(skip) == odd(passed - 1)) {
      if (!isNull(level(next + 2))) held = next;
      next += 2;
    }
  }
}

bool wantsLevel(SwingLine line) {
  return line == SwingLine::kTop || line == SwingLine::kBottom;
}

/// The work series between the line and a level.
struct LevelWork {
  Out direction, pivots, levels;
};

/// The level of a top or bottom from the drawn line. All series arrive all null.
void fillLevelsOf(View high, View low, View drawn, const LevelWork& work, Count swingNumber, SwingLine line,
                  Out out) {
  fillDirection(drawn, work.direction);
  markPivots(high, low, drawn, work.pivots);
  listPivots(work.pivots, work.levels);
  fillLevels(work.pivots, work.levels, work.direction, swingNumber, line == SwingLine::kTop, out);
}

}  // namespace

namespace CFeedkit {

void PercentSwing(const Prices& prices, double percent, Count swingNumber, SwingLine line, Out out) {
  if (prices.rows() < kFewestRows || line == SwingLine::kLine) return;
  std::vector<double> drawn = nullRows(out.size());
  drawLine(prices.high, prices.low, percent, drawn);
  if (line == SwingLine::kDirection) fillDirection(drawn, out);
  if (!wantsLevel(line)) return;
  std::vector<double> direction = nullRows(out.size());
  std::vector<double> pivots = direction;
  std::vector<double> levels = direction;
  fillLevelsOf(prices.high, prices.low, drawn, {direction, pivots, levels}, swingNumber, line, out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

namespace {

/// The first `n` rows of a series that is about to be written anew.
Out cleared(const Target& target, Count n) {
  const Out rows = target.rows.first(static_cast<std::size_t>(n));
  std::fill(rows.begin(), rows.end(), NULL_VALUE);
  finish(target, n);
  return rows;
}

}  // namespace

Status PercentSwing(WorkStore& store, const PriceSources& prices, double percent, Count swingNumber,
                    SwingLine line, Target out) {
  const auto field = [&](std::string_view name) {
    return store.field(name, {prices.high, prices.low, percent});
  };
  const WorkField steps = field("FiledSW");
  const Count n = commonRows(prices.high.rows, {prices.low.rows, steps.rows, out.rows});
  if (n < kFewestRows) return kNothingDone;
  const View high = prices.high.rows.first(static_cast<std::size_t>(n));
  const View low = prices.low.rows.first(static_cast<std::size_t>(n));
  const Out drawn = cleared(steps, n);
  const Out result = cleared(out, n);
  drawLine(high, low, percent, drawn);
  if (line == SwingLine::kLine) markPivots(high, low, drawn, result);
  if (line == SwingLine::kDirection) fillDirection(drawn, result);
  if (wantsLevel(line)) {
    const LevelWork work = {cleared(field("FiledDirec"), n), cleared(field("FieldOutput"), n),
                            cleared(field("FieldSoutput"), n)};
    fillLevelsOf(high, low, drawn, work, swingNumber, line, result);
  }
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
