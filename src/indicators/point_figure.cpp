#include "indicators/point_figure.hpp"

#include <cmath>

#include "indicators/source_rows.hpp"
#include "series/rounding.hpp"

namespace brindlewort {

namespace CFeedkit {

void PointFigureSmooth(View source, double boxSize, Count reversal, Out out) {
  constexpr Count kFirstRead = 2;
  const Count n = rowsOf(source);
  const Count seedRow = reversal + 1;
  if (reversal < 1 || seedRow >= n) return;
  double sum = 0.0;
  for (Count j = kFirstRead; j <= seedRow; ++j) sum += nz(source[j]);
  out[seedRow] = sum / static_cast<double>(reversal);
  for (Count i = seedRow + 1; i < n; ++i) {
    out[i] = nz(source[i]) * boxSize + nz(out[i - 1]) * (1.0 - boxSize);
  }
}

}  // namespace CFeedkit

namespace {

bool above(double a, double b) {
  return QuantizeForCompare(a) > QuantizeForCompare(b);
}
bool atLeast(double a, double b) {
  return QuantizeForCompare(a) >= QuantizeForCompare(b);
}

/// A price move as the chart measures it.
double move(double from, double to) {
  return RoundValue(to - from, 4, RoundMode::kNearest);
}

/// The chart as it is drawn bar by bar.
class PointFigureChart {
 public:
  enum Trend { kNoColumn = -1, kFalling = 0, kRising = 1 };

  PointFigureChart(double firstPrice, double boxSize, Count reversal)
      : boxSize_(boxSize), reverseBy_(static_cast<double>(reversal) * boxSize) {
    base_ = top_ = bottom_ = peak_ = floorBox(firstPrice);
  }

  void draw(double high, double low) {
    const bool turnedDown = trend_ != kFalling && drawRising(high, low);
    if (!turnedDown && trend_ != kRising) drawFalling(high, low);
  }

  double countX() const { return countX_; }
  double countO() const { return countO_; }
  Trend trend() const { return trend_; }

 private:
  double boxes(double size) const { return std::trunc(size / boxSize_); }
  /// The box edge at or toward zero of a price.
  double floorBox(double price) const { return boxes(price) * boxSize_; }
  /// The box edge at or above a low.
  double bottomBox(double low) const {
    const double bottom = floorBox(low);
    return above(low - bottom, 0.0) ? bottom + boxSize_ : bottom;
  }

  /// Lengthens the rising column or ends it. True when it has turned down: the bar is then used up.
  bool drawRising(double high, double low) {
    if (above(high, top_)) {
      const double count = boxes(move(base_, high));
      if (above(count, countX_)) {
        countX_ = count;
        trend_ = kRising;
        top_ = floorBox(high);
      }
    } else if (above(top_, low) && trend_ == kRising) {
      const double reversal = move(low, top_);
      if (atLeast(reversal, reverseBy_)) {
        countO_ = boxes(reversal);
        trend_ = kFalling;
        peak_ = top_;
        bottom_ = bottomBox(low);
        return true;
      }
    }
    return false;
  }

  void drawFalling(double high, double low) {
    if (above(bottom_, low)) {
      const double count = boxes(move(low, peak_));
      if (above(count, countO_)) {
        countO_ = count;
        trend_ = kFalling;
        bottom_ = bottomBox(low);
      }
    } else if (above(high, bottom_) && trend_ == kFalling) {
      const double reversal = move(bottom_, high);
      if (atLeast(reversal, reverseBy_)) {
        countX_ = boxes(reversal);
        trend_ = kRising;
        base_ = bottom_;
        top_ = floorBox(high);
      }
    }
  }

  double boxSize_;
  double reverseBy_;
  double countX_ = 0.0;
  double countO_ = 0.0;
  Trend trend_ = kNoColumn;
  double base_, top_, bottom_,
      peak_;  ///< where the rising column starts and ends, the falling one ends, starts
};

}  // namespace

namespace CTechnicalFunctions {

Status PointFigure(WorkStore&, Source first, Source second, double boxSize, Count reversal,
                   PointFigureLine line, Target out) {
  if (!(boxSize > 0.0)) return kNothingDone;
  const Count n = commonRows(first.rows, {second.rows, out.rows});
  const Count start = startRow(out, 0);
  if (start >= n) return kNothingDone;
  PointFigureChart chart(nz(first.rows[0]), boxSize, reversal);
  for (Count i = 0; i < n; ++i) {
    chart.draw(nz(first.rows[i]), nz(second.rows[i]));
    if (i < start) continue;
    switch (line) {
      case PointFigureLine::kX:
        out.rows[i] = chart.countX();
        break;
      case PointFigureLine::kO:
        out.rows[i] = chart.countO();
        break;
      case PointFigureLine::kDirection:
        // Row 0 only starts the chart.
        if (i > 0 && chart.trend() != PointFigureChart::kNoColumn) out.rows[i] = chart.trend();
        break;
    }
  }
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
