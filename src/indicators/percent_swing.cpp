#include "indicators/percent_swing.hpp"

#include <algorithm>

#include "indicators/source_rows.hpp"

namespace brindlewort {

namespace {

constexpr double kRising = 1.0;
constexpr double kFalling = 2.0;

/// Row 0 takes no part: the line starts at row 1, rising.
constexpr Count kFirstRow = 1;
constexpr Count kFewestRows = 2;

/// A change of the line's direction: the first row in the new one, and the last step of the one before.
struct Turn {
  Count row;
  Count endOfBefore;
  double direction;
};

/// The step line, known by its steps: it stands at one level from a step to the next. What is kept of it is
/// the last step and the turns.
class SwingLineSteps {
 public:
  explicit SwingLineSteps(double first) : level_(first) {}

  /// The level at the last row put.
  double level() const { return level_; }

  /// The line stands at `level` in row i, the row after the last one put.
  void put(Count i, double level) {
    if (level == level_) return;
    const double direction = level > level_ ? kRising : kFalling;
    if (direction != this->direction()) turns_.push_back({i, lastStep_, direction});
    lastStep_ = i;
    level_ = level;
  }

  /// A bar that goes on in the line's direction as far as `extreme`. Where that is the level the line has
  /// reached already, the step to it moves here and the rows since keep the level before; but a line
  /// that has stood at its level from row 1 has no such step.
  void extendTo(Count i, double extreme) {
    if (level_ != extreme) return put(i, extreme);
    if (lastStep_ == kFirstRow) return;
    if (!turns_.empty() && turns_.back().row == lastStep_) turns_.back().row = i;
    lastStep_ = i;
  }

  const std::vector<Turn>& turns() const { return turns_; }
  Count lastStep() const { return lastStep_; }
  double direction() const { return turns_.empty() ? kRising : turns_.back().direction; }

 private:
  double level_;
  Count lastStep_ = kFirstRow;
  std::vector<Turn> turns_;
};

/// The line over rows 1 to the end. A reversal is told by the bar's extreme in the line's direction, but the
/// line turns to the opposite extreme.
SwingLineSteps drawLine(View high, View low, double percent) {
  SwingLineSteps line(high[kFirstRow]);
  const double fallTo = (100.0 - percent) / 100.0, riseTo = (100.0 + percent) / 100.0;
  bool rising = true;
  for (Count i = kFirstRow + 1; i < rowsOf(high); ++i) {
    const double level = line.level();
    if (rising) {
      if (!(level > high[i])) {
        line.extendTo(i, high[i]);
      } else if (fallTo * level > high[i]) {
        line.put(i, low[i]);
        rising = false;
      }
    } else {
      if (!(level < low[i])) {
        line.extendTo(i, low[i]);
      } else if (riseTo * level < low[i]) {
        line.put(i, high[i]);
        rising = true;
      }
    }
  }
  return line;
}

/// The direction of the line, which flat rows keep.
void fillDirection(const SwingLineSteps& line, Out out) {
  Count from = kFirstRow;
  double direction = kRising;
  for (const Turn& turn : line.turns()) {
    std::fill(out.begin() + from, out.begin() + turn.row, direction);
    from = turn.row;
    direction = turn.direction;
  }
  std::fill(out.begin() + from, out.end(), direction);
}

struct Pivot {
  Count row;
  double level;
};

/// The bars at which a direction ended: the high where the line then fell, the low where it then rose. Row 1
/// opens the list with its low, so a turn away from row 1 is not in it, and the last step of the line closes
/// it. A null price is no pivot.
std::vector<Pivot> pivotsOf(View high, View low, const SwingLineSteps& line) {
  std::vector<Pivot> pivots;
  const auto mark = [&pivots](Count row, double level) {
    if (!isNull(level)) pivots.push_back({row, level});
  };
  if (line.lastStep() != kFirstRow) mark(kFirstRow, low[kFirstRow]);
  for (const Turn& turn : line.turns()) {
    const Count row = turn.endOfBefore;
    if (row != kFirstRow) mark(row, turn.direction == kRising ? low[row] : high[row]);
  }
  const Count last = line.lastStep();
  mark(last, line.direction() == kRising ? high[last] : low[last]);
  return pivots;
}

bool odd(Count x) {
  return x % 2 != 0;
}

/// The level of the top or bottom `swingNumber` swings back. The first pivot is not counted among the levels;
/// tops and bottoms follow each other in turn.
void fillLevels(const SwingLineSteps& line, const std::vector<Pivot>& pivots, Count swingNumber, bool tops,
                Out out) {
  const auto level = [&](Count k) {
    const std::size_t place = static_cast<std::size_t>(k + 1);
    return place < pivots.size() ? pivots[place].level : NULL_VALUE;
  };
  // The levels may open with one of the other side, which is one more to skip.
  const bool otherSideFirst = tops ? level(0) < level(1) : level(0) > level(1);
  const Count skip = 2 * (swingNumber + 1) - 1 + (otherSideFirst ? 1 : 0);

  // The rows at which a pivot or a turn stands, in order; between them the level shown does not change.
  const Count n = rowsOf(out);
  auto turn = line.turns().begin();
  auto pivot = pivots.begin();
  Count next = odd(skip) ? 0 : 1;
  Count held = -1;
  Count passed = 0;
  bool active = skip < passed;
  for (Count row = 0; row < n;) {
    const Count pivotRow = pivot != pivots.end() ? pivot->row : n;
    const Count turnRow = turn != line.turns().end() ? turn->row : n;
    const Count event = std::min(pivotRow, turnRow);
    if (held > -1) std::fill(out.begin() + row, out.begin() + event, level(held));
    if (event == n) return;
    if (active) {
      if (turnRow == event && turn->direction == (tops ? kFalling : kRising)) held = next;
      if (held > -1) out[event] = level(held);
      if (pivotRow == event && odd(skip) == odd(passed)) {
        if (!isNull(level(next + 2))) held = next;
        next += 2;
      }
    }
    if (pivotRow == event) {
      ++pivot;
      ++passed;
      active = skip < passed;
    }
    if (turnRow == event) ++turn;
    row = event + 1;
  }
}

/// One series of the percent swing. `out` has the rows of the prices, at least two, all null.
void fillSwing(View high, View low, double percent, Count swingNumber, SwingLine wanted, Out out) {
  const SwingLineSteps line = drawLine(high, low, percent);
  if (wanted == SwingLine::kDirection) return fillDirection(line, out);
  const std::vector<Pivot> pivots = pivotsOf(high, low, line);
  if (wanted != SwingLine::kLine) {
    return fillLevels(line, pivots, swingNumber, wanted == SwingLine::kTop, out);
  }
  for (const Pivot& pivot : pivots) out[pivot.row] = pivot.level;
}

}  // namespace

namespace CFeedkit {

void PercentSwing(const Prices& prices, double percent, Count swingNumber, SwingLine line, Out out) {
  if (prices.rows() < kFewestRows || line == SwingLine::kLine) return;
  fillSwing(prices.high, prices.low, percent, swingNumber, line, out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status PercentSwing(WorkStore&, const PriceSources& prices, double percent, Count swingNumber, SwingLine line,
                    Target out) {
  const Count n = commonRows(prices.high.rows, {prices.low.rows, out.rows});
  if (n < kFewestRows) return kNothingDone;
  const std::size_t rows = static_cast<std::size_t>(n);
  const Out result = out.rows.first(rows);
  std::fill(result.begin(), result.end(), NULL_VALUE);
  fillSwing(prices.high.rows.first(rows), prices.low.rows.first(rows), percent, swingNumber, line, result);
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
