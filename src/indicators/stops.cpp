#include "indicators/stops.hpp"

#include <algorithm>
#include <array>

#include "indicators/price_bases.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/true_range.hpp"

namespace brindlewort {
namespace {

// ---- Parabolic stop -----------------------------------------------------------------------------------

/// How the parabolic stop stands at the end of a row, batch form.
struct Parabola {
  bool isLong;
  double sar;
  double af;
  double epHigh, epLow;
};

double approach(double extreme, double sar, double af) {
  return (extreme - sar) * af + sar;
}

/// The AF is tested before the step is added, so it may pass the maximum by one step.
double quickened(double af, double minAF, double maxAF) {
  return maxAF > af ? af + minAF : af;
}

Parabola nextParabola(const Parabola& before, double high, double low, double minAF, double maxAF) {
  Parabola now = before;
  if (before.isLong) {
    if (high > before.epHigh) {
      now.epHigh = high;
      now.af = quickened(before.af, minAF, maxAF);
    }
    now.sar = approach(before.epHigh, before.sar, before.af);
    if (now.sar > low) now = {false, before.epHigh, minAF, 0.0, low};
  } else {
    if (low < before.epLow) {
      now.epLow = low;
      now.af = quickened(before.af, minAF, maxAF);
    }
    now.sar = approach(before.epLow, before.sar, before.af);
    if (now.sar < high) now = {true, before.epLow, minAF, high, 0.0};
  }
  return now;
}

/// The state of the parabolic stop, resumable form. Row 0 of `af` and `epMax` holds the two parameters.
struct ParabolaSeries {
  Out pos, sar, ep, af, epMax, epMin;  // pos: 1 long, 0 short

  /// Row 1: long, at the low.
  void seed(View high, View low, double minAF, double maxAF, Out out) const {
    af[0] = minAF;
    epMax[0] = maxAF;
    pos[0] = pos[1] = 1.0;
    ep[1] = sar[1] = low[1];
    af[1] = minAF;
    epMax[1] = high[0];
    epMin[1] = low[0];
    out[1] = approach(ep[1], sar[1], af[1]);
  }

  /// Row i of 2 or more.
  void step(Count i, double high, double low, Out out) const {
    const double stop = out[i - 1];
    const bool wasLong = pos[i - 1] == 1.0;
    pos[i] = low < stop && wasLong              ? 0.0
             : high > stop && pos[i - 2] == 0.0 ? 1.0  // two rows back: no turn in the row after a turn
                                                : pos[i - 1];
    const bool turned = pos[i] != pos[i - 1];
    sar[i] = !turned ? stop : wasLong ? epMax[i - 1] : epMin[i - 1];
    epMax[i] = turned ? high : std::max(high, epMax[i - 1]);
    epMin[i] = turned ? low : std::min(low, epMin[i - 1]);
    af[i] = turned ? af[0] : steppedAF(i, wasLong);
    ep[i] = pos[i] == 0.0 ? epMin[i] : epMax[i];
    out[i] = approach(ep[i], sar[i], af[i]);
  }

 private:
  /// A new extreme of the position quickens the AF, unless that would pass the maximum.
  double steppedAF(Count i, bool isLong) const {
    const bool newExtreme = isLong ? epMax[i] != epMax[i - 1] : epMin[i] != epMin[i - 1];
    const double stepped = af[i - 1] + af[0];
    return newExtreme && !(stepped > epMax[0]) ? stepped : af[i - 1];
  }
};

// ---- Super trend --------------------------------------------------------------------------------------

constexpr double kUpTrend = 1.0;  // as work series hold it
constexpr double kDownTrend = 2.0;
constexpr double kInactiveHigh = 99999999999999.0;  // the high stop while the trend is up

/// Trend and stops of one row. The low stop is null while the trend is down.
struct TrendStops {
  bool isUp;
  double low, high;
  double stop() const { return isUp ? low : high; }
};

/// Where a median price and a range, already scaled, would put the stops.
struct Reach {
  double below, above;
  Reach(double median, double range) : below(median - range), above(median + range) {}
};

/// `isFirstTurn()` is asked on a turn to a down trend only: no high stop stands before the first one.
template <class IsFirstTurn>
TrendStops nextTrend(const TrendStops& before, const Reach& reach, double close, IsFirstTurn isFirstTurn) {
  const bool isUp = before.isUp ? before.low <= close : before.high < close;
  if (isUp) {
    return {true, isNull(before.low) ? reach.below : std::max(reach.below, before.low), kInactiveHigh};
  }
  const bool isHeld = !(before.isUp && isFirstTurn());
  return {false, NULL_VALUE, isHeld ? std::min(reach.above, before.high) : reach.above};
}

/// Rows done by an output and by a work series that it reads back: -1 when one of them was never computed.
Count rowsDone(const Target& out, const WorkField& work) {
  return std::min(*out.slot, *work.slot);
}

}  // namespace

namespace CFeedkit {

void ParabolicSAR(const Prices& prices, double minAF, double maxAF, Out out) {
  const View high = prices.high, low = prices.low;
  const Count n = prices.rows();
  if (n < 3) return;
  const bool startsLong = low[2] - low[1] <= high[2] - high[1];
  Parabola now = {startsLong, startsLong ? low[1] : high[1], minAF, high[1], low[1]};
  for (Count i = 2; i < n; ++i) {
    now = nextParabola(now, high[i], low[i], minAF, maxAF);
    out[i] = now.sar;
  }
}

void SUPERTREND(const Prices& prices, Count p, double factor, Out out) {
  const Count n = prices.rows();
  const Count first = p + 1;
  if (!batchRange(p, n) || first >= n) return;
  std::vector<double> median = nullRows(out.size());
  MEDIANPRICE(prices, median);
  AverageTrueRange(prices, p, kWilderRange, out);  // each row gives way to its stop

  const auto reach = [&](Count i) { return Reach(median[i], out[i] * factor); };
  TrendStops now = {true, reach(first).below, kInactiveHigh};
  out[first] = now.stop();
  bool turned = false;
  for (Count i = first + 1; i < n; ++i) {
    now = nextTrend(now, reach(i), prices.close[i], [&] { return !turned; });
    turned = turned || !now.isUp;
    out[i] = now.stop();
  }
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status ParabolicSAR(WorkStore& store, const PriceSources& prices, double minAF, double maxAF, Target out) {
  const View high = prices.high.rows, low = prices.low.rows;
  const Count n = commonRows(out.rows, {high, low});
  if (n < 2) return kNothingDone;
  const auto work = [&](std::string_view name) { return store.field(name, {minAF, maxAF}); };
  const std::array fields = {work("Pos"), work("CurrSAR"), work("EP"),
                             work("AF"),  work("EPmax"),   work("EPmin")};
  const auto& [pos, sar, ep, af, epMax, epMin] = fields;
  const ParabolaSeries state = {pos.rows, sar.rows, ep.rows, af.rows, epMax.rows, epMin.rows};

  constexpr Count kSeedRow = 1;
  const Count restart = rowsDone(out, pos) - 2;
  if (restart >= n) return kNothingDone;
  if (restart <= kSeedRow) state.seed(high, low, minAF, maxAF, out.rows);
  for (Count i = std::max(restart, kSeedRow + 1); i < n; ++i) state.step(i, high[i], low[i], out.rows);
  for (const WorkField& field : fields) finish(field, n);
  return finish(out, n);
}

Status SUPERTREND(WorkStore& store, const PriceSources& prices, Count p, double factor, Target out) {
  const View close = prices.close.rows;
  const Count n = commonRows(out.rows, {prices.high.rows, prices.low.rows, close});
  if (!batchRange(p, n)) return kNothingDone;
  const WorkField average = store.field("ATR", {p, factor});
  const WorkField median = store.field("MP", {prices.high, prices.low});
  AverageTrueRange(store, prices, p, kWilderRange, average);
  MEDIANPRICE(prices, median);

  const WorkField range = store.field("Sup_ATRRange", {p, factor});
  const WorkField low = store.field("Sup_LowStop", {p, factor});
  const WorkField high = store.field("Sup_HighStop", {p, factor});
  const WorkField trend = store.field("Sup_Trend", {p, factor});
  const Count first = firstValueIndex(average.rows);
  const Count start = std::max(rowsDone(out, trend) - 1, first);
  if (start >= n || first < 1) return kNothingDone;

  trend.rows[first - 1] = kUpTrend;
  TrendStops now = {trend.rows[start - 1] == kUpTrend, low.rows[start - 1], high.rows[start - 1]};
  bool turned = false;
  const auto isFirstTurn = [&] {
    const auto begin = trend.rows.begin() + first, end = trend.rows.begin() + start;
    return !turned && std::find(begin, end, kDownTrend) == end;
  };
  for (Count i = start; i < n; ++i) {
    range.rows[i] = average.rows[i] * factor;
    now = nextTrend(now, Reach(median.rows[i], range.rows[i]), close[i], isFirstTurn);
    turned = turned || !now.isUp;
    trend.rows[i] = now.isUp ? kUpTrend : kDownTrend;
    low.rows[i] = now.low;
    high.rows[i] = now.high;
    out.rows[i] = now.stop();
  }
  for (const WorkField& field : {range, low, high, trend}) finish(field, n);
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
