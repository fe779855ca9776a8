#include "indicators/row_pairs.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/volume.hpp"

/// Running totals: on-balance volume, price-volume trend, trade volume index and Williams' accumulation and
/// distribution.
namespace brindlewort {

namespace {

/// nz of a running total. Nulls are rare there, and a branch foreseen is cheaper than a select that every
/// addition would wait for.
double carried(double total) {
  if (isNull(total)) [[unlikely]]
    return 0.0;
  return total;
}

bool moves(View in, Count i) {
  return nz(in[i]) > nz(in[i - 1]) || nz(in[i]) < nz(in[i - 1]);
}

/// On-balance volume over rows [first, last), `total` being the total before them, or a null. First the
/// signed volumes, which do not wait for each other; a price that does not move adds -0.0, which changes no
/// total.
void balance(View in, View volume, double total, Count first, Count last, Out out) {
  fillRows(first, last, out, [=]<class X>(RowReader<X> at) {
    const X now = nz(at(in)), before = nz(at(in, 1)), size = at(volume);
    const X downOrNone = now < before ? -1.0 * size : spread<X>(-0.0);
    return now > before ? size : downOrNone;
  });
  for (Count i = first; i < last; ++i) {
    if (isNull(total) && moves(in, i)) [[unlikely]]
      total = 0.0;
    out[i] = total += out[i];
  }
}

/// The volume of row i weighed by the relative change of the price.
double trendTerm(View in, View volume, Count i) {
  const double before = nz(in[i - 1]);
  return (nz(in[i]) - before) / before * volume[i];
}

/// The trade direction after a move of `d`: a move within the tick keeps the last one.
double directionAfter(double d, double tick, double last) {
  if (d > tick) return 1.0;
  if (d < -tick) return -1.0;
  return last;
}

double move(View in, Count i) {
  return nz(in[i]) - nz(in[i - 1]);
}

/// Accumulation and distribution over rows [first, last), `total` being the total before them.
void accumulate(View high, View low, View close, double total, Count first, Count last, Out out) {
  for (Count i = first; i < last; ++i) {
    const double trueHigh = std::max(high[i], close[i - 1]);
    const double trueLow = std::min(low[i], close[i - 1]);
    double ad = 0.0;
    if (close[i] > close[i - 1]) {
      ad = close[i] - trueLow;
    } else if (close[i] < close[i - 1]) {
      ad = close[i] - trueHigh;
    }
    out[i] = total = carried(total) + ad;
  }
}

}  // namespace

namespace CFeedkit {

void OnBalanceVolume(View in, View volume, Out out) {
  if (in.size() != volume.size()) return;
  balance(in, volume, NULL_VALUE, 2, rowsOf(in), out);
}

void PriceVolumeTrend(View in, View volume, Out out) {
  if (in.size() != volume.size()) return;
  const Count n = rowsOf(in);
  for (Count i = 2; i < n; ++i) out[i] = trendTerm(in, volume, i);
  double total = 0.0;
  for (Count i = 2; i < n; ++i) out[i] = total = carried(total) + out[i];
}

void TradeVolumeIndex(View in, View volume, double minimumTick, Out out) {
  if (in.size() != volume.size() || minimumTick < 0.0) return;
  double direction = 0.0, total = 0.0;
  for (Count i = 2; i < rowsOf(in); ++i) {
    direction = directionAfter(move(in, i), minimumTick, direction);
    if (direction > 0.0) total += volume[i];
    if (direction < 0.0) total -= volume[i];
    out[i] = total;
  }
}

void WilliamsAccumulationDistribution(const Prices& prices, Out out) {
  accumulate(prices.high, prices.low, prices.close, NULL_VALUE, 2, prices.rows(), out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status OnBalanceVolume(Source in, Source volume, Target out) {
  if (in.rows.size() != volume.rows.size()) return kNothingDone;
  const Count n = rowsOf(in, out);
  const Count first = higherLead(in.rows, volume.rows) + 1, start = startRow(out, first);
  if (start >= n) return kNothingDone;
  if (start == first) out.rows[first - 1] = volume.rows[first - 1];
  balance(in.rows, volume.rows, out.rows[start - 1], start, n, out.rows);
  return finish(out, n);
}

Status PriceVolumeTrend(WorkStore& store, Source in, Source volume, Target out) {
  if (in.rows.size() != volume.rows.size()) return kNothingDone;
  const Count n = rowsOf(in, out);
  const Count first = higherLead(in.rows, volume.rows) + 1, start = startRow(out, first);
  if (start >= n) return kNothingDone;

  const WorkField term = store.field("PVT_CAL", {in, volume});
  for (Count i = startRow(term, first); i < n; ++i) {
    term.rows[i] = nz(in.rows[i - 1]) == 0.0 ? 0.0 : trendTerm(in.rows, volume.rows, i);
  }
  finish(term, n);

  double total = start == first ? 0.0 : out.rows[start - 1];
  for (Count i = start; i < n; ++i) out.rows[i] = total = carried(total) + term.rows[i];
  if (start == first) out.rows[first] = term.rows[first];
  return finish(out, n);
}

Status TradeVolumeIndex(WorkStore& store, Source in, Source volume, double minimumTick, Target out) {
  if (in.rows.size() != volume.rows.size() || minimumTick < 0.0) return kNothingDone;
  const Count n = rowsOf(in, out);
  const Count first = higherLead(in.rows, volume.rows) + 1, start = startRow(out, first);
  if (start >= n) return kNothingDone;

  const WorkField direction = store.field("TVI_DIR", {in, volume, minimumTick});
  for (Count i = startRow(direction, first); i < n; ++i) {
    const double last = i == first ? 0.0 : nz(direction.rows[i - 1]);
    direction.rows[i] = directionAfter(move(in.rows, i), minimumTick, last);
  }
  finish(direction, n);

  double total = start == first ? 0.0 : out.rows[start - 1];
  for (Count i = start; i < n; ++i) {
    total = direction.rows[i] == 0.0 ? 0.0 : carried(total);
    if (direction.rows[i] > 0.0) total += volume.rows[i];
    if (direction.rows[i] < 0.0) total -= volume.rows[i];
    out.rows[i] = total;
  }
  return finish(out, n);
}

Status WilliamsAccumulationDistribution(const PriceSources& prices, Target out) {
  const View high = prices.high.rows, low = prices.low.rows, close = prices.close.rows;
  const Count n = commonRows(high, {low, close, out.rows});
  const Count first = 1, start = startRow(out, first);
  if (start >= n) return kNothingDone;
  accumulate(high, low, close, start == first ? NULL_VALUE : out.rows[start - 1], start, n, out.rows);
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
