#include "indicators/candlestick.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "indicators/candle_recogniser.hpp"
#include "indicators/candles.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/row_pairs.hpp"
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
  CandleBar<double> bar(Count row) const {
    return row < 0 ? CandleBar<double>() : barAt(RowReader<double>{row}, 0);
  }
  CandleBars<double> bars(const LastRows& rows) const {
    return {bar(rows.oldest), bar(rows.middle), bar(rows.newest)};
  }
  /// The bar `back` rows before the row that `at` reads.
  template <class X>
  CandleBar<X> barAt(RowReader<X> at, Count back) const {
    return {at(open, back), at(high, back), at(low, back), at(close, back)};
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

/// The usable bars of the rows from `first` on: a part of the prices themselves when there are no others.
class UsableBars {
 public:
  UsableBars(const CandlePrices& prices, Count first) {
    const auto behind = [first](View rows) { return rows.subspan(static_cast<std::size_t>(first)); };
    prices_ = {behind(prices.open), behind(prices.high), behind(prices.low), behind(prices.close)};
    Count usable = 0;
    for (Count row = 0; row < rowsOf(prices_.close); ++row) usable += prices_.isUsable(row);
    if (usable == rowsOf(prices_.close)) return;
    keep(usable);
  }
  UsableBars(const UsableBars&) = delete;
  UsableBars& operator=(const UsableBars&) = delete;

  const CandlePrices& prices() const { return prices_; }
  Count count() const { return rowsOf(prices_.close); }

 private:
  void keep(Count usable) {
    for (std::vector<double>& rows : kept_) rows.reserve(static_cast<std::size_t>(usable));
    auto& [open, high, low, close] = kept_;
    for (Count row = 0; row < rowsOf(prices_.close); ++row) {
      if (!prices_.isUsable(row)) continue;
      open.push_back(prices_.open[row]);
      high.push_back(prices_.high[row]);
      low.push_back(prices_.low[row]);
      close.push_back(prices_.close[row]);
    }
    prices_ = {open, high, low, close};
  }

  CandlePrices prices_;
  std::array<std::vector<double>, 4> kept_;
};

/// The averages by which bodies are long, for series that end at any of the usable bars. Each such series is
/// its last 20 bars; their average starts at bar 16, whose window is added up, and slides from there to the
/// bar before the last.
class LongBodies {
 public:
  explicit LongBodies(const CandlePrices& usable)
      : ranges_(nullRows(usable.close.size())), sums_(usable.close.size()) {
    TrueRange({usable.close, usable.high, usable.low, usable.close, usable.close}, ranges_);
    for (double& range : ranges_) range = nz(range);
    sumWindows<WindowOrder::kNewestFirst>(
        kFirstAverage, rowsOf(sums_), kLongBodyPeriods, [this](Count j, Count) { return ranges_[j]; },
        [this](Count i, double sum) { sums_[i] = sum; });
  }

  /// Tells the last three of the first `count` bars, each by the average of the bar before it.
  void tell(Count count, CandleBars<double>& bars) const {
    const Count first = std::max(kFirstAverage, count - kLookback + kFirstAverage);
    if (first > count - 2) return;
    double sum = sums_[first];
    bars[first + 4 - count].longBody = sum / kDivisor;
    for (Count i = first + 1; i <= count - 2; ++i) {
      sum -= ranges_[i - kLongBodyPeriods];
      sum += ranges_[i];
      bars[i + 4 - count].longBody = sum / kDivisor;
    }
  }

  /// So many bars are enough to tell all of the last three.
  static constexpr Count kEnough = 20;
  /// The same for the three that end at the bar of `at`; `kEnough` bars end there or before.
  template <class X>
  inline void tell(RowReader<X> at, CandleBars<X>& bars) const {
    X sum = at(sums_, 3);
    bars[0].longBody = sum / kDivisor;
    for (Count back : {2, 1}) {
      sum -= at(ranges_, back + kLongBodyPeriods);
      sum += at(ranges_, back);
      bars[3 - back].longBody = sum / kDivisor;
    }
  }

 private:
  /// A series has no ranges at its bars 0 and 1.
  static constexpr Count kFirstAverage = kLongBodyPeriods + 1;
  static constexpr double kDivisor = kLongBodyPeriods;

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
  CandleBars<double> bars = candles.bars(last);
  const CandleRecogniser recogniser = candleRecogniser(requested);
  if (recogniser.readsLongBody) {
    const UsableBars usable(candles, first);
    LongBodies(usable.prices()).tell(usable.count(), bars);
  }
  return static_cast<int>(recogniser.typeOfLast(bars));
}

namespace {

/// 1.0 for each usable bar at which the requested type stands, else 0.0. The first ones, which lack bars
/// before them or averages, are judged one by one, the others two by two.
template <int requested>
void judge(const CandlePrices& usable, Out answers) {
  using candle_patterns::typeOfLast;
  constexpr bool kReadsLongBody = (candle_patterns::kReadLongBodies & candle_patterns::bitOf(requested)) != 0;
  constexpr double kRequested = requested;
  const LongBodies longBodies(kReadsLongBody ? usable : CandlePrices());
  const Count single = std::min(rowsOf(usable.close), LongBodies::kEnough - 1);
  for (Count i = 0; i < single; ++i) {
    CandleBars<double> bars = usable.bars({i - 2, i - 1, i});
    if constexpr (kReadsLongBody) longBodies.tell(i + 1, bars);
    answers[i] = typeOfLast<requested>(bars) == kRequested ? 1.0 : 0.0;
  }
  fillRows(single, rowsOf(usable.close), answers, [&]<class X>(RowReader<X> at) {
    CandleBars<X> bars = {usable.barAt(at, 2), usable.barAt(at, 1), usable.barAt(at, 0)};
    if constexpr (kReadsLongBody) longBodies.tell(at, bars);
    return typeOfLast<requested>(bars) == kRequested ? spread<X>(1.0) : X();
  });
}

template <int... types>
constexpr auto judges(std::integer_sequence<int, types...>) {
  return std::array{&judge<types>...};
}
constexpr auto kJudges = judges(std::make_integer_sequence<int, kBullishMatchingLow + 1>());

/// Row by row the answer at the last usable bar up to it; `before` where there is none yet.
void spreadAnswers(const CandlePrices& candles, View answers, double before, Out out) {
  double answer = before;
  std::size_t next = 0;
  for (Count row = 0; row < rowsOf(candles.close); ++row) {
    if (candles.isUsable(row)) answer = answers[next++];
    out[row] = answer;
  }
}

}  // namespace

void CandlestickPatternRows(const Prices& prices, int requested, Out out) {
  if (requested <= kNoCandle || requested > kBullishMatchingLow) {
    // Nothing is ever an unknown type; without a type every row answers no candle.
    std::fill(out.begin(), out.end(), requested == kNoCandle ? 1.0 : 0.0);
    return;
  }
  const auto judge = kJudges[static_cast<std::size_t>(requested)];
  const CandlePrices candles = pricesOf(prices);
  const UsableBars usable(candles, 0);
  if (usable.count() == rowsOf(candles.close)) {
    judge(usable.prices(), out);
  } else {
    std::vector<double> answers(static_cast<std::size_t>(usable.count()));
    judge(usable.prices(), answers);
    const bool ofNothing = candleRecogniser(requested).typeOfLast({}) == requested;
    spreadAnswers(candles, answers, ofNothing ? 1.0 : 0.0, out);
  }
  std::fill_n(out.begin(), std::min<std::size_t>(out.size(), kTooFewRows), 0.0);
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
    CandleBars<double> bars = candles.bars(last);
    bars[0].longBody = longBodyOf(last.oldest);
    bars[1].longBody = longBodyOf(last.middle);
    bars[2].longBody = longBodyOf(last.newest);
    out.rows[row] = recogniser.typeOfLast(bars);
  }
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
