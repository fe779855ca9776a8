#include "indicators/ichimoku.hpp"

#include <algorithm>
#include <array>
#include <functional>

#include "indicators/extremes.hpp"
#include "indicators/source_rows.hpp"

namespace brindlewort {

namespace {

/// Span B always looks back this far; its period is only the shift.
constexpr Count kLongRows = 52;

/// Windows of up to this many rows are scanned, wider ones slide.
constexpr Count kScannedRows = 16;
/// Windows scanned side by side, so that the compiler can use vector instructions across them.
constexpr Count kSideBySide = 64;

using Windows = std::array<double, kSideBySide>;

/// The best of each of the p-row windows ending at `rows` rows from `first` on, scanned newest row first.
template <class Beats>
void scanWindows(View in, Count p, Count first, Count rows, Windows& best) {
  std::array<double, kSideBySide + kScannedRows> read;
  const Count before = p - 1;
  for (Count r = 0; r < before + rows; ++r) read[r] = nz(in[first - before + r]);
  for (Count r = 0; r < rows; ++r) best[r] = read[before + r];
  for (Count k = 1; k < p; ++k) {
    const double* older = read.data() + before - k;
    for (Count r = 0; r < rows; ++r) best[r] = Beats{}(older[r], best[r]) ? older[r] : best[r];
  }
}

/// The middles of windows of up to kScannedRows rows, for up to kSideBySide rows.
void scanMiddles(View high, View low, Count p, Count first, Count last, Out out) {
  Windows highest, lowest;
  scanWindows<std::greater<>>(high, p, first, last - first, highest);
  scanWindows<std::less<>>(low, p, first, last - first, lowest);
  for (Count i = first; i < last; ++i) out[i] = (highest[i - first] + lowest[i - first]) / 2.0;
}

/// The middle between the highest high and the lowest low of the p rows ending at each row of [first, last).
/// A window starts p - 1 rows before its own row, and the lines start at row p, so row 0 is in none. The
/// search begins with the window's own row, which therefore stands when it is not a number.
void fillMiddle(View high, View low, Count p, Count first, Count last, Out out) {
  if (first >= last) return;
  if (p <= kScannedRows) {
    for (Count i = first; i < last; i += kSideBySide) {
      scanMiddles(high, low, p, i, std::min(i + kSideBySide, last), out);
    }
    return;
  }
  RollingHigh<nz> highest(high, p, first);
  RollingLow<nz> lowest(low, p, first);
  for (Count i = first; i < last; ++i) {
    highest.slideTo(i);
    lowest.slideTo(i);
    out[i] = (highest.from(nz(high[i])) + lowest.from(nz(low[i]))) / 2.0;
  }
}

/// The middle of two lines, `shift` rows later, over rows [first, last).
void fillSpanA(View tenkan, View kijun, Count shift, Count first, Count last, Out out) {
  for (Count i = first; i < last; ++i) out[i] = nz((nz(tenkan[i - shift]) + nz(kijun[i - shift])) / 2.0);
}

/// A line `shift` rows later, over rows [first, last).
void fillShifted(View line, Count shift, Count first, Count last, Out out) {
  for (Count i = first; i < last; ++i) out[i] = nz(line[i - shift]);
}

/// The close `ahead` rows later; where there is none, the value of the row before.
void fillLagging(View close, Count ahead, Count first, Count last, Out out) {
  double value = NULL_VALUE;
  for (Count i = first; i < last; ++i) {
    if (i + ahead < last) value = close[i + ahead];
    out[i] = value;
  }
}

}  // namespace

namespace CFeedkit {

namespace {

void middle(const Prices& prices, Count p, Out out) {
  const Count n = prices.rows();
  if (batchRange(p, n)) fillMiddle(prices.high, prices.low, p, p, n, out);
}

void spanALine(const Prices& prices, Count tenkan, Count kijun, Count shift, Out out) {
  const Count n = prices.rows();
  if (!batchRange(tenkan, n) || !batchRange(kijun, n) || !batchRange(shift, n)) return;
  std::vector<double> fast = nullRows(prices.close.size());
  std::vector<double> slow = fast;
  middle(prices, tenkan, fast);
  middle(prices, kijun, slow);
  fillSpanA(fast, slow, shift, shift + kijun, n, out);
}

void spanBLine(const Prices& prices, Count shift, Out out) {
  const Count n = prices.rows();
  if (!batchRange(shift, n)) return;
  std::vector<double> slowest = nullRows(prices.close.size());
  middle(prices, kLongRows, slowest);
  fillShifted(slowest, shift, shift + kLongRows, n, out);
}

}  // namespace

void Ichimoku(const Prices& prices, Count tenkan, Count kijun, Count spanA, Count spanB, IchimokuLine line,
              Out out) {
  switch (line) {
    case IchimokuLine::kTenkan:
      return middle(prices, tenkan, out);
    case IchimokuLine::kKijun:
      return middle(prices, kijun, out);
    case IchimokuLine::kSpanA:
      return spanALine(prices, tenkan, kijun, spanA, out);
    default:
      return spanBLine(prices, spanB, out);
  }
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

namespace {

/// The rows that the prices and these outputs have.
Count sharedRows(const PriceSources& prices, View a, View b) {
  return commonRows(prices.high.rows, {prices.low.rows, prices.close.rows, a, b});
}
Count sharedRows(const PriceSources& prices, View out) {
  return sharedRows(prices, out, out);
}

void middle(const PriceSources& prices, Count p, Target out) {
  const Count n = sharedRows(prices, out.rows);
  if (!resumableRange(p, n)) return;
  fillMiddle(prices.high.rows, prices.low.rows, p, startRow(out, p), n, out.rows);
  finish(out, n);
}

void spanALine(WorkStore& store, const PriceSources& prices, Count tenkan, Count kijun, Count shift,
               Target out) {
  const WorkField fast = store.field("Tenkan", {prices.high, prices.low, tenkan});
  const WorkField slow = store.field("Kijun", {prices.high, prices.low, kijun});
  const Count n = std::min(sharedRows(prices, out.rows), sharedRows(prices, fast.rows, slow.rows));
  if (!resumableRange(tenkan, n) || !resumableRange(kijun, n) || !resumableRange(shift, n)) return;
  middle(prices, tenkan, fast);
  middle(prices, kijun, slow);
  fillSpanA(fast.rows, slow.rows, shift, startRow(out, shift + kijun), n, out.rows);
  finish(out, n);
}

void spanBLine(WorkStore& store, const PriceSources& prices, Count shift, Target out) {
  const WorkField slowest = store.field("Set2", {prices.high, prices.low});
  const Count n = sharedRows(prices, out.rows, slowest.rows);
  if (!resumableRange(shift, n)) return;
  middle(prices, kLongRows, slowest);
  fillShifted(slowest.rows, shift, startRow(out, shift + kLongRows), n, out.rows);
  finish(out, n);
}

void laggingLine(const PriceSources& prices, Count ahead, Target out) {
  const Count n = sharedRows(prices, out.rows);
  if (!resumableRange(ahead, n)) return;
  // Every row that had no row so far ahead yet may have got one.
  const Count start = *out.slot == -1 ? 0 : std::max<Count>(*out.slot - ahead - 1, 0);
  fillLagging(prices.close.rows, ahead, start, n, out.rows);
  finish(out, n);
}

}  // namespace

Status Ichimoku(WorkStore& store, const PriceSources& prices, Count tenkan, Count kijun, Count spanA,
                Count spanB, Count chikou, IchimokuLine line, Target out) {
  switch (line) {
    case IchimokuLine::kTenkan:
      middle(prices, tenkan, out);
      return kDone;
    case IchimokuLine::kKijun:
      middle(prices, kijun, out);
      return kDone;
    case IchimokuLine::kSpanA:
      spanALine(store, prices, tenkan, kijun, spanA, out);
      return kDone;
    case IchimokuLine::kSpanB:
      spanBLine(store, prices, spanB, out);
      return kDone;
    case IchimokuLine::kChikou:
      laggingLine(prices, chikou, out);
      return kDone;
  }
  return kNothingDone;
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
