#include "indicators/candlestick.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "indicators/candle_recogniser.hpp"
#include "indicators/candles.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/true_range.hpp"
#include "indicators/windows.hpp"

namespace brindlewort {

namespace {

/// A body is long beyond the average true range of this many bars.
constexpr Count kLongBodyPeriods = 15;

/// The rows of the last three usable bars, oldest first; -1 where there is none.
struct LastRows {
  Count oldest = -1, middle = -1, newest = -1;

  void push(Count row) {
    oldest = middle;
    middle = newest;
    newest = row;
  }
};

/// The prices that candles are made of.
struct CandlePrices {
  View open, high, low, close;

  bool isUsable(Count row) const { return high[row] != 0.0 && low[row] != 0.0 && close[row] != 0.0; }
  CandleBar bar(Count row) const {
    return row < 0 ? CandleBar() : CandleBar{open[row], high[row], low[row], close[row]};
  }
  CandleBars bars(const LastRows& rows) const {
    return {bar(rows.oldest), bar(rows.middle), bar(rows.newest)};
  }
};

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
  for (std::vector<double>* rows : {&high, &low, &close}) rows->reserve(prices.close.size() - first);
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

/// The averages by which bodies are long, for series that end at any of the usable bars. Each such series is
/// its last 20 bars; their average starts at bar 16, whose window is added up, and slides from there to the
/// bar before the last.
class LongBodies {
 public:
  explicit LongBodies(std::vector<double> ranges) : ranges_(std::move(ranges)), sums_(ranges_.size()) {
    sumWindows<WindowOrder::kNewestFirst>(
        kFirstAverage, rowsOf(sums_), kLongBodyPeriods, [this](Count j, Count) { return nz(ranges_[j]); },
        [this](Count i, double sum) { sums_[i] = sum; });
  }

  /// Tells the last three of the first `count` bars, each by the average of the bar before it.
  void tell(Count count, CandleBars& bars) const {
    constexpr double kDivisor = kLongBodyPeriods;
    const Count first = std::max(kFirstAverage, count - kLookback + kFirstAverage);
    if (first > count - 2) return;
    double sum = sums_[first];
    bars[first + 4 - count].longBody = sum / kDivisor;
    for (Count i = first + 1; i <= count - 2; ++i) {
      sum -= nz(ranges_[i - kLongBodyPeriods]);
      sum += nz(ranges_[i]);
      bars[i + 4 - count].longBody = sum / kDivisor;
    }
  }

 private:
  /// A series has no ranges at its bars 0 and 1.
  static constexpr Count kFirstAverage = kLongBodyPeriods + 1;

  std::vector<double> ranges_;
  std::vector<double> sums_;
};

}  // namespace

int CandlestickPattern(const Prices& prices, int requested) {
  const Count n = prices.rows();
  if (n <= kTooFewRows) return kNoCandle;
  const CandlePrices candles = pricesOf(prices);
  Count first = n;
  for (Count usable = 0; first > 0 && usable < kLookback; --first) {
    if (candles.isUsable(first - 1)) ++usable;
  }
  LastRows last;
  for (Count row = first; row < n; ++row) {
    if (candles.isUsable(row)) last.push(row);
  }
  CandleBars bars = candles.bars(last);
  const CandleRecogniser recogniser = candleRecogniser(requested);
  if (recogniser.readsLongBody) {
    std::vector<double> ranges = usableRanges(candles, first);
    const Count usable = rowsOf(ranges);
    LongBodies(std::move(ranges)).tell(usable, bars);
  }
  return recogniser.typeOfLast(bars);
}

namespace {

/// The row loop of one type. `readsLongBody`: whether its answer depends on the bodies.
template <int requested>
void markRows(const CandlePrices& candles, const LongBodies& longBodies, bool readsLongBody, Out out) {
  const Count n = rowsOf(candles.close);
  LastRows last;
  Count usable = 0;
  for (Count row = 0; row < n; ++row) {
    if (candles.isUsable(row)) {
      last.push(row);
      ++usable;
    }
    int type = kNoCandle;
    if (row >= kTooFewRows) {
      CandleBars bars = candles.bars(last);
      if (readsLongBody) longBodies.tell(usable, bars);
      type = candle_patterns::typeOfLast<requested>(bars);
    }
    out[row] = type == requested ? 1.0 : 0.0;
  }
}

template <int... types>
constexpr auto rowLoops(std::integer_sequence<int, types...>) {
  return std::array{&markRows<types>...};
}
constexpr auto kRowLoops = rowLoops(std::make_integer_sequence<int, kBullishMatchingLow + 1>());

}  // namespace

void CandlestickPatternRows(const Prices& prices, int requested, Out out) {
  const CandlePrices candles = pricesOf(prices);
  const bool readsLongBody = candleRecogniser(requested).readsLongBody;
  const LongBodies longBodies(readsLongBody ? usableRanges(candles, 0) : std::vector<double>());
  const bool known = requested > kNoCandle && requested <= kBullishMatchingLow;
  kRowLoops[static_cast<std::size_t>(known ? requested : kNoCandle)](candles, longBodies, readsLongBody, out);
  // Nothing is ever an unknown type; without a type every row answers no candle.
  if (!known) std::fill(out.begin(), out.end(), requested == kNoCandle ? 1.0 : 0.0);
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

/// The last three usable rows before `end`.
LastRows lastRowsBefore(const CandlePrices& prices, Count end) {
  LastRows last;
  for (Count* place : {&last.newest, &last.middle, &last.oldest}) {
    while (end > 0 && !prices.isUsable(end - 1)) --end;
    *place = --end;
    if (end < 0) break;
  }
  return last;
}

}  // namespace

Status CandlestickPattern(WorkStore& store, const PriceSources& prices, int requested, Target out) {
  const CandlePrices candles = {prices.open.rows, prices.high.rows, prices.low.rows, prices.close.rows};
  const Count n = commonRows(out.rows, {candles.open, candles.high, candles.low, candles.close});
  const Count start = *out.slot == -1 ? kFirstRow : std::max<Count>(*out.slot - kRecomputedRows, kFirstRow);
  if (start >= n) return kNothingDone;
  const CandleRecogniser recogniser = candleRecogniser(requested);
  const View average = recogniser.readsLongBody ? longBodies(store, prices) : View();
  const auto longBodyOf = [average](Count row) {
    return row > 0 && row <= rowsOf(average) ? average[row - 1] : NULL_VALUE;
  };
  LastRows last = lastRowsBefore(candles, start);
  for (Count row = start; row < n; ++row) {
    if (candles.isUsable(row)) last.push(row);
    CandleBars bars = candles.bars(last);
    bars[0].longBody = longBodyOf(last.oldest);
    bars[1].longBody = longBodyOf(last.middle);
    bars[2].longBody = longBodyOf(last.newest);
    out.rows[row] = recogniser.typeOfLast(bars);
  }
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
