#include "indicators/candlestick.hpp"

#include <algorithm>

#include "indicators/candles.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/true_range.hpp"

namespace brindlewort {

namespace {

/// A body is long beyond the average true range of this many bars.
constexpr Count kLongBodyPeriods = 15;

/// The prices that candles are made of.
struct CandlePrices {
  View open, high, low, close;

  bool isUsable(Count row) const { return high[row] != 0.0 && low[row] != 0.0 && close[row] != 0.0; }
  CandleBar bar(Count row) const { return {open[row], high[row], low[row], close[row]}; }
};

/// A new bar comes, the oldest of the three goes.
void push(CandleBars& bars, const CandleBar& bar) {
  bars = {bars[1], bars[2], bar};
}

}  // namespace

namespace CFeedkit {

namespace {

/// The average true range is formed over the last usable bars by themselves, at most so many.
constexpr Count kLookback = 20;
/// A pattern needs more rows than this.
constexpr Count kTooFewRows = 3;

CandlePrices pricesOf(const Prices& prices) {
  return {prices.open, prices.high, prices.low, prices.close};
}

/// The true ranges of the usable bars from row `first` on, one for each usable bar.
std::vector<double> usableRanges(const CandlePrices& prices, Count first) {
  std::vector<double> high, low, close;
  for (Count row = first; row < rowsOf(prices.close); ++row) {
    if (!prices.isUsable(row)) continue;
    high.push_back(prices.high[row]);
    low.push_back(prices.low[row]);
    close.push_back(prices.close[row]);
  }
  std::vector<double> range = nullRows(close.size());
  TrueRange({close, high, low, close, close}, range);
  return range;
}

/// Tells the three bars what a long body is. `ranges` are those of all usable bars so far. The average sees
/// the last of them as a series of its own; its first row is 16, so it never reads the two rows at the head
/// that have no range there.
void setLongBodies(View ranges, CandleBars& bars) {
  const std::size_t seen = std::min(ranges.size(), static_cast<std::size_t>(kLookback));
  std::array<double, kLookback> average;
  average.fill(NULL_VALUE);
  SimpleMovingAverage(ranges.last(seen), kLongBodyPeriods, Out(average).first(seen));
  Count barBefore = static_cast<Count>(seen) - 1;
  for (auto bar = bars.rbegin(); bar != bars.rend(); ++bar) {
    --barBefore;
    bar->longBody = barBefore >= 0 ? average[static_cast<std::size_t>(barBefore)] : NULL_VALUE;
  }
}

}  // namespace

int CandlestickPattern(const Prices& prices, int requested) {
  const Count n = prices.rows();
  if (n <= kTooFewRows) return kNoCandle;
  const CandlePrices candles = pricesOf(prices);
  Count first = n;
  for (Count usable = 0; first > 0 && usable < kLookback; --first) {
    if (candles.isUsable(first - 1)) ++usable;
  }
  CandleBars bars;
  for (Count row = first; row < n; ++row) {
    if (candles.isUsable(row)) push(bars, candles.bar(row));
  }
  const CandleRecogniser recogniser(requested);
  if (recogniser.readsLongBody()) setLongBodies(usableRanges(candles, first), bars);
  return recogniser.typeOfLast(bars);
}

void CandlestickPatternRows(const Prices& prices, int requested, Out out) {
  const Count n = prices.rows();
  const CandlePrices candles = pricesOf(prices);
  const CandleRecogniser recogniser(requested);
  std::vector<double> ranges;
  if (recogniser.readsLongBody()) ranges = usableRanges(candles, 0);
  CandleBars bars;
  std::size_t usable = 0;
  for (Count row = 0; row < n; ++row) {
    if (candles.isUsable(row)) {
      push(bars, candles.bar(row));
      ++usable;
      if (recogniser.readsLongBody()) setLongBodies(View(ranges).first(usable), bars);
    }
    const int type = row < kTooFewRows ? kNoCandle : recogniser.typeOfLast(bars);
    out[row] = type == requested ? 1.0 : 0.0;
  }
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

namespace {

/// The third row is the first with three bars.
constexpr Count kFirstRow = 2;
/// A later call starts this many rows before its first new one.
constexpr Count kRecomputedRows = 3;

/// The average true range of all rows.
View longBodies(WorkStore& store, const PriceSources& prices) {
  const WorkField range = store.field("CSP_LONGBODY", {prices.high, prices.low, prices.close});
  TrueRange(prices, range);
  const WorkField average = store.field("CSP_SMA", {range, kLongBodyPeriods});
  SimpleMovingAverage(range, kLongBodyPeriods, average);
  return average.rows;
}

/// The bar of a row, which is long by the average of the row before.
CandleBar barAt(const CandlePrices& prices, View longBodies, Count row) {
  CandleBar bar = prices.bar(row);
  if (row > 0 && row <= rowsOf(longBodies)) bar.longBody = longBodies[row - 1];
  return bar;
}

/// The last three usable bars of the rows before `end`.
CandleBars barsBefore(const CandlePrices& prices, View longBodies, Count end) {
  CandleBars bars;
  std::size_t missing = bars.size();
  for (Count row = end - 1; row >= 0 && missing > 0; --row) {
    if (prices.isUsable(row)) bars[--missing] = barAt(prices, longBodies, row);
  }
  return bars;
}

}  // namespace

Status CandlestickPattern(WorkStore& store, const PriceSources& prices, int requested, Target out) {
  const CandlePrices candles = {prices.open.rows, prices.high.rows, prices.low.rows, prices.close.rows};
  const Count n = commonRows(out.rows, {candles.open, candles.high, candles.low, candles.close});
  const Count start = *out.slot == -1 ? kFirstRow : std::max<Count>(*out.slot - kRecomputedRows, kFirstRow);
  if (start >= n) return kNothingDone;
  const CandleRecogniser recogniser(requested);
  const View average = recogniser.readsLongBody() ? longBodies(store, prices) : View();
  CandleBars bars = barsBefore(candles, average, start);
  for (Count row = start; row < n; ++row) {
    if (candles.isUsable(row)) push(bars, barAt(candles, average, row));
    out.rows[row] = recogniser.typeOfLast(bars);
  }
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
