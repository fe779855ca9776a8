#include <limits>

#include "indicators/source_rows.hpp"
#include "indicators/volume.hpp"
#include "indicators/windows.hpp"

/// Money flow over windows: the money flow index and Chaikin's money flow.
namespace brindlewort {

namespace {

/// For each row i of [first, last): emit(i, total of a, total of b) over the p rows ending at i.
template <WindowOrder order, class TermA, class TermB, class Emit>
void sumWindowPairs(Count first, Count last, Count p, TermA termA, TermB termB, Emit emit) {
  std::vector<double> totalA(static_cast<std::size_t>(last - first));
  sumWindows<order>(first, last, p, termA, [&](Count i, double total) { totalA[i - first] = total; });
  sumWindows<order>(first, last, p, termB, [&](Count i, double total) { emit(i, totalA[i - first], total); });
}

// ---- Money flow index ---------------------------------------------------------------------------------

/// For each row i of [first, last): emit(i, pos, neg), the money that flowed in on rising and out on falling
/// typical prices over the p rows ending at i. Reads from row first - p on.
template <class Emit>
void sumFlows(View high, View low, View close, View volume, Count p, Count first, Count last, Emit emit) {
  if (first >= last) return;
  const Count oldest = first - p + 1;
  const auto typical = [&](Count j) { return (high[j] + low[j] + close[j]) / 3.0; };
  // A flow of 0 adds nothing, so every row may be added to both totals.
  std::vector<double> in(static_cast<std::size_t>(last - oldest)), out(in.size());
  double before = typical(oldest - 1);
  for (Count j = oldest; j < last; ++j) {
    const double price = typical(j);
    const double flow = price * (volume[j] < 1.0 ? 1.0 : volume[j]);
    in[j - oldest] = before < price ? flow : 0.0;
    out[j - oldest] = before > price ? flow : 0.0;
    before = price;
  }
  sumWindowPairs<WindowOrder::kOldestFirst>(
      first, last, p, [&](Count j, Count) { return in[j - oldest]; },
      [&](Count j, Count) { return out[j - oldest]; }, emit);
}

double strength(double ratio) {
  return 100.0 - 100.0 / (1.0 + ratio);
}

// ---- Chaikin's money flow -----------------------------------------------------------------------------

/// Where the close stands between low and high, and the height of the bar.
double closePlace(double high, double low, double close) {
  return (close - low) - (high - close);
}
double height(double high, double low) {
  return high - low;
}

/// The multiplier of the batch form. One m, 1.0 at first, walks through all windows in turn, each from its
/// newest row to its oldest, and becomes a / b on every row where a or b is 0. So in the window that ends at
/// row i, row j holds the quotient of the first such row at or after j, if that lies within the window, and
/// else what m was when the window was entered.
class WalkingMultiplier {
 public:
  /// For windows of p rows that end at p + 1 and later.
  WalkingMultiplier(const Prices& prices, Count p)
      : distance_(prices.close.size()), quotient_(prices.close.size()), entered_(prices.close.size()) {
    const Count n = prices.rows();
    double distance = std::numeric_limits<double>::infinity(), quotient = 1.0;
    for (Count j = n - 1; j >= 0; --j) {
      const double a = closePlace(prices.high[j], prices.low[j], prices.close[j]);
      const double b = height(prices.high[j], prices.low[j]);
      const bool replaces = a == 0.0 || b == 0.0;
      distance = replaces ? 0.0 : distance + 1.0;
      if (replaces) quotient = a / b;
      distance_[j] = distance;
      quotient_[j] = quotient;
    }
    double m = 1.0;
    for (Count i = p + 1; i < n; ++i) {
      entered_[i] = m;
      // The walk ends on the oldest row of the window.
      m = at(i - p + 1, p - 1);
    }
  }

  /// On row j, k rows before the end of the window.
  double at(Count j, Count k) const {
    return distance_[j] <= static_cast<double>(k) ? quotient_[j] : entered_[j + k];
  }

 private:
  std::vector<double> distance_;  ///< rows to the first replacing row at or after this one
  std::vector<double> quotient_;  ///< a / b of that row
  std::vector<double> entered_;   ///< m when the window that ends here was entered
};

/// The multiplier of the resumable form, from the multiplier of the row before.
double multiplierAfter(double high, double low, double close, double before) {
  const double a = closePlace(high, low, close), b = height(high, low);
  return QuantizeForCompare(a) != 0 || QuantizeForCompare(b) != 0 ? before : a / b;
}

}  // namespace

namespace CFeedkit {

void MoneyFlowIndex(const Prices& prices, Count p, Out out) {
  if (!batchRange(p, prices.rows())) return;
  sumFlows(prices.high, prices.low, prices.close, prices.volume, p, p + 1, prices.rows(),
           [&](Count i, double pos, double neg) {
             if (pos != 0.0 && neg != 0.0) out[i] = strength(pos / neg);
           });
}

void ChaikinMoneyFlow(const Prices& prices, Count p, Out out) {
  const Count n = prices.rows(), first = p + 1;
  if (!batchRange(p, n) || first >= n) return;
  const WalkingMultiplier m(prices, p);
  sumWindowPairs<WindowOrder::kNewestFirst>(
      first, n, p, [&](Count j, Count k) { return prices.volume[j] * m.at(j, k); },
      [&](Count j, Count) { return prices.volume[j]; },
      [&](Count i, double flow, double volume) {
        if (volume != 0.0) out[i] = flow / volume;
      });
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status MoneyFlowIndex(const PriceSources& prices, Count p, Target out) {
  const View high = prices.high.rows, low = prices.low.rows, close = prices.close.rows;
  const Count n = commonRows(high, {low, close, prices.volume.rows, out.rows});
  if (!resumableRange(p, n)) return kNothingDone;
  const Count start = startRow(out, p);
  if (start >= n) return kNothingDone;
  sumFlows(high, low, close, prices.volume.rows, p, start, n, [&](Count i, double pos, double neg) {
    out.rows[i] = strength(pos == 0.0 || neg == 0.0 ? 0.0 : pos / neg);
  });
  return finish(out, n);
}

Status ChaikinMoneyFlow(WorkStore& store, const PriceSources& prices, Count p, Target out) {
  const View high = prices.high.rows, low = prices.low.rows, close = prices.close.rows;
  const View volume = prices.volume.rows;
  const Count n = commonRows(high, {low, close, volume, out.rows});
  if (!resumableRange(p, n)) return kNothingDone;
  const Count start = startRow(out, p - 1);
  if (start >= n) return kNothingDone;

  const WorkField m = store.field("CMF_Temp", {prices.high, prices.low, prices.close});
  for (Count i = startRow(m, 0); i < n; ++i) {
    m.rows[i] = multiplierAfter(high[i], low[i], close[i], i == 0 ? 1.0 : m.rows[i - 1]);
  }
  finish(m, n);

  const WorkField flow = store.field("CMF_MFV", {prices.high, prices.low, prices.close, prices.volume});
  for (Count i = startRow(flow, 0); i < n; ++i) flow.rows[i] = volume[i] * m.rows[i];
  finish(flow, n);

  sumWindowPairs<WindowOrder::kOldestFirst>(
      start, n, p, [&](Count j, Count) { return flow.rows[j]; }, [&](Count j, Count) { return volume[j]; },
      [&](Count i, double sumFlow, double sumVolume) {
        out.rows[i] = sumVolume == 0.0 ? 0.0 : sumFlow / sumVolume;
      });
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
