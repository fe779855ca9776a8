#include "indicators/cycles.hpp"

#include <array>
#include <cmath>

#include "indicators/compute_rows.hpp"
#include "indicators/extremes.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/primes.hpp"
#include "indicators/row_pairs.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/windows.hpp"

namespace brindlewort {
namespace {

// ---- Fractals -----------------------------------------------------------------------------------------

/// Whether the row 2 back is the top of five rows; high(k) is the row k back.
template <class Row>
auto isTop(Row high) {
  const auto h3 = high(2);
  return all(high(4) < h3, high(3) < h3, high(1) <= h3, high(0) <= h3);
}
/// Whether the row 2 back is the bottom of five rows.
template <class Row>
auto isBottom(Row low) {
  const auto l3 = low(2);
  return all(low(4) > l3, low(3) > l3, low(1) >= l3, low(0) >= l3);
}

// ---- Primes -------------------------------------------------------------------------------------------

/// From here on doubles are no longer able to tell one whole number from the next.
constexpr double kPrimeLimit = 0x1.0p53;

bool isTooLarge(double v) {
  return std::fabs(v) >= kPrimeLimit;
}

double batchPrimeValue(double x) {
  const double v = std::trunc(nz(x));
  return v < 10.0 ? v * v : v;
}
double livingPrimeValue(double x) {
  const double v = nz(x);
  return v < 10.0 ? v * 10.0 : v;
}

/// The primes about the values met so far. A scan that finds nothing leaves the prime found before it.
struct PrimesAbout {
  std::int64_t lower = 0;
  std::int64_t upper = 0;

  static bool findsLower(double v) { return !isTooLarge(v) && v >= 1.0; }
  /// The scan runs from the whole part of v to 2 * v: for a fraction below 0 it ends before it begins.
  static bool findsUpper(double v) { return !isTooLarge(v) && v >= 0.0; }

  /// v - prime. A prime from 2^53 on may be no double; the value below it is whole then.
  static double distance(double v, std::int64_t prime) {
    if (prime < static_cast<std::int64_t>(kPrimeLimit)) return v - static_cast<double>(prime);
    return static_cast<double>(static_cast<std::int64_t>(v) - prime);
  }

  void findLower(double v) { lower = primeAtOrBelow(static_cast<std::int64_t>(v)); }
  void findUpper(double v) { upper = primeAtOrAbove(static_cast<std::int64_t>(v)); }

  /// The oscillator of a value that is not too large; what is no number stays none. On a tie the lower prime
  /// counts.
  double oscillator(double v) {
    if (findsLower(v)) findLower(v);
    if (findsUpper(v)) findUpper(v);
    const double a = distance(v, upper);
    const double b = distance(v, lower);
    return std::fabs(b) > std::fabs(a) ? a : b;
  }
};

/// The primes that the rows [first, end) of the resumable form have left behind.
PrimesAbout primesBefore(View in, Count first, Count end) {
  PrimesAbout primes;
  bool lowerFound = false, upperFound = false;
  for (Count i = end - 1; i >= first && !(lowerFound && upperFound); --i) {
    const double v = livingPrimeValue(in[i]);
    if (!lowerFound && PrimesAbout::findsLower(v)) {
      primes.findLower(v);
      lowerFound = true;
    }
    if (!upperFound && PrimesAbout::findsUpper(v)) {
      primes.findUpper(v);
      upperFound = true;
    }
  }
  return primes;
}

// ---- Rainbow ------------------------------------------------------------------------------------------

constexpr Count kLevelsEnd = 51;

bool levelsInRange(Count levels) {
  return 1 <= levels && levels < kLevelsEnd;
}

/// Rows [first, last): the distance from the average is added once for each level from 2 on, onto what the
/// row holds, and the whole is divided by the levels. Rows are worked in blocks, each in its own order.
void rainbowRows(View in, View ma, Count levels, Count first, Count last, Out out) {
  constexpr Count kBlock = 16;
  for (Count block = first; block < last; block += kBlock) {
    const Count rows = std::min(kBlock, last - block);
    double distance[kBlock] = {};
    double total[kBlock] = {};
    for (Count r = 0; r < rows; ++r) {
      distance[r] = nz(in[block + r]) - nz(ma[block + r]);
      total[r] = nz(out[block + r]);
    }
    for (Count level = 2; level <= levels; ++level) {
      for (Count r = 0; r < kBlock; ++r) total[r] += distance[r];
    }
    for (Count r = 0; r < rows; ++r) out[block + r] = total[r] / static_cast<double>(levels);
  }
}

// ---- Ultimate oscillator ------------------------------------------------------------------------------

/// Rows [first, last) of buying pressure and true range; first is 1 or later.
void pressureRows(View high, View low, View close, Count first, Count last, Out bp, Out tr) {
  for (Count i = first; i < last; ++i) {
    const double before = close[i - 1];
    bp[i] = close[i] - std::min(low[i], before);
    double range = high[i] - low[i];
    if (high[i] - before > range) range = high[i] - before;
    if (before - low[i] > range) range = before - low[i];
    tr[i] = range;
  }
}

using Cycles = std::array<Count, 3>;

/// For each row i of [first, last): emit(i, weighted, complete), `weighted` being s1 / t1 * 4 + s2 / t2 * 2 +
/// s3 / t3 of the window sums, and `complete` whether no t is 0.
template <class Emit>
void weightedPressure(View bp, View tr, const Cycles& cycles, Count first, Count last, Emit emit) {
  const auto rows = static_cast<std::size_t>(last - first);
  const auto sums = [&](View in, Count p) {
    std::vector<double> out(rows);
    sumWindows<WindowOrder::kOldestFirst>(
        first, last, p, [in](Count j, Count) { return in[j]; },
        [&](Count i, double sum) { out[i - first] = sum; });
    return out;
  };
  const std::vector<double> s1 = sums(bp, cycles[0]), t1 = sums(tr, cycles[0]);
  const std::vector<double> s2 = sums(bp, cycles[1]), t2 = sums(tr, cycles[1]);
  const std::vector<double> s3 = sums(bp, cycles[2]), t3 = sums(tr, cycles[2]);
  for (std::size_t r = 0; r < rows; ++r) {
    const bool complete = t1[r] != 0.0 && t2[r] != 0.0 && t3[r] != 0.0;
    emit(first + static_cast<Count>(r), s1[r] / t1[r] * 4.0 + s2[r] / t2[r] * 2.0 + s3[r] / t3[r], complete);
  }
}

// ---- Fisher transform ---------------------------------------------------------------------------------

constexpr double kValueCarry = 0.67;

/// Twice the place of x within the range, from the middle, damped.
double fisherRaw(double x, double min, double max) {
  return ((x - min) / (max - min) - 0.5) * 2.0 * 0.33;
}

/// The transform of a value, which is held within 1 so that the logarithm exists.
double fisherOf(double value) {
  const double condition = value > 0.99 ? 0.999 : value < -0.99 ? -0.999 : value;
  return 0.5 * std::log10((condition + 1.0) / (1.0 - condition));
}

}  // namespace

namespace CFeedkit {

void FractalChaosOscillator(const Prices& prices, Count, Out out) {
  const Count n = prices.rows();
  std::fill(out.begin(), out.end(), 0.0);
  // Five bars behind the filler bar.
  fillRows(5, n, out, [&]<class X>(RowReader<X> at) {
    const Mask<X> top = isTop([&](Count back) { return nz(at(prices.high, back)); });
    const Mask<X> bottom = isBottom([&](Count back) { return at(prices.low, back); });  // a null as it stands
    const X topOrNone = top ? spread<X>(1.0) : X();
    return bottom ? spread<X>(-1.0) : topOrNone;
  });
}

void PrimeNumberOscillator(View in, Out out) {
  const Count n = rowsOf(in);
  PrimesAbout primes;
  for (Count i = 1; i < n; ++i) {
    const double v = batchPrimeValue(in[i]);
    if (!isTooLarge(v) && !std::isnan(v)) out[i] = primes.oscillator(v);
  }
}

void RainbowOscillator(View in, Count levels, Count maType, Out out) {
  if (!levelsInRange(levels)) return;
  std::vector<double> ma = nullRows(in.size());
  movingAverageByType(in, levels, maType, ma);
  rainbowRows(in, ma, levels, 1, rowsOf(in), out);
}

void ULTIMATEOSCILLATOR(const Prices& prices, Count cycle1, Count cycle2, Count cycle3, Out out) {
  const Count n = prices.rows();
  if (!batchRange(cycle1, n) || !batchRange(cycle2, n) || !batchRange(cycle3, n)) return;
  const Count first = std::max({cycle1, cycle2, cycle3}) + 1;
  if (first >= n) return;
  std::vector<double> bp = nullRows(prices.close.size());
  std::vector<double> tr = nullRows(prices.close.size());
  pressureRows(prices.high, prices.low, prices.close, 1, n, bp, tr);
  weightedPressure(bp, tr, {cycle1, cycle2, cycle3}, first, n,
                   [out](Count i, double weighted, bool complete) {
                     if (complete) out[i] = weighted / 7.0 * 100.0;
                   });
}

void ComparativeRelativeStrength(View a, View b, Out out) {
  const Count n = rowsOf(a);
  if (rowsOf(b) != n) return;
  for (Count i = 1; i < n; ++i) {
    const double ratio = nz(a[i]) / nz(b[i]);
    out[i] = b[i] == 0.0 || ratio == 1.0 ? NULL_VALUE : ratio;
  }
}

void FISHERTRANSFORM(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  const Count first = p;
  RollingHigh<nz> highest(in, p, first);
  RollingLow<nz> lowest(in, p, first);
  double value = 0.0;
  for (Count i = first; i < n; ++i) {
    highest.slideTo(i);
    lowest.slideTo(i);
    const double max = highest.fromOldest();
    const double min = lowest.fromOldest();
    if (max != min) {  // a flat window keeps the value
      const double raw = fisherRaw(nz(in[i]), min, max);
      value = i == first ? raw : raw + kValueCarry * nz(value);
    }
    out[i] = i == first ? fisherOf(value) : fisherOf(value) + 0.5 * nz(out[i - 1]);
  }
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status FractalChaosOscillator(const PriceSources& prices, Count, Target out) {
  const Count n = commonRows(prices.high.rows, {prices.low.rows, out.rows});
  return computeRows(out, 4, n, [&](Count i) {
    const bool top = isTop([&](Count back) { return nz(prices.high.rows[i - back]); });
    const bool bottom = isBottom([&](Count back) { return nz(prices.low.rows[i - back]); });
    return top ? 1.0 : bottom ? -1.0 : 0.0;
  });
}

Status PrimeNumberOscillator(Source in, Target out) {
  const Count n = rowsOf(in, out);
  const Count first = firstValueIndex(in.rows);
  const Count start = startRow(out, first);
  if (start >= n) return kNothingDone;
  PrimesAbout primes = primesBefore(in.rows, first, start);
  for (Count i = start; i < n; ++i) {
    const double v = livingPrimeValue(in.rows[i]);
    out.rows[i] = isTooLarge(v) ? NULL_VALUE : primes.oscillator(v);
  }
  return finish(out, n);
}

Status RainbowOscillator(WorkStore& store, Source in, Count levels, Count maType, Target out) {
  const Count n = rowsOf(in, out);
  if (!levelsInRange(levels)) return kNothingDone;
  const WorkField ma = store.field("FieldMA", {in, levels, KeyPart::maType(maType)});
  movingAverageByType(store, in, levels, maType, ma);
  const Count start = startRow(out, std::max<Count>(firstValueIndex(ma.rows), 1));
  if (start >= n) return kNothingDone;
  rainbowRows(in.rows, ma.rows, levels, start, n, out.rows);
  return finish(out, n);
}

Status ULTIMATEOSCILLATOR(WorkStore& store, const PriceSources& prices, Count cycle1, Count cycle2,
                          Count cycle3, Target out) {
  const Count n = commonRows(prices.high.rows, {prices.low.rows, prices.close.rows, out.rows});
  if (!resumableRange(cycle1, n) || !resumableRange(cycle2, n) || !resumableRange(cycle3, n)) {
    return kNothingDone;
  }
  const Count start = startRow(out, std::max({cycle1, cycle2, cycle3}));
  if (start >= n) return kNothingDone;
  const WorkField bp = store.field("ULT_bpSum", {prices.low, prices.close});
  const WorkField tr = store.field("ULT_trSum", {prices.high, prices.low, prices.close});
  pressureRows(prices.high.rows, prices.low.rows, prices.close.rows,
               std::min(startRow(bp, 1), startRow(tr, 1)), n, bp.rows, tr.rows);
  finish(bp, n);
  finish(tr, n);
  weightedPressure(bp.rows, tr.rows, {cycle1, cycle2, cycle3}, start, n,
                   [out](Count i, double weighted, bool complete) {
                     out.rows[i] = complete ? weighted * 100.0 / 7.0 : 0.0;
                   });
  return finish(out, n);
}

Status ComparativeRelativeStrength(Source a, Source b, Target out) {
  if (a.rows.size() != b.rows.size()) return kNothingDone;
  return computeRows(out, higherLead(a.rows, b.rows), rowsOf(a, out), [&](Count i) {
    const double x = a.rows[i];
    const double y = b.rows[i];
    const double ratio = nz(y) > 0.0 ? nz(x) / nz(y) : 0.0;
    return isNull(x) || isNull(y) ? NULL_VALUE : ratio;
  });
}

Status FISHERTRANSFORM(WorkStore& store, Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count first = firstValueIndex(in.rows) + p - 1;
  Count start = startRow(out, first);
  if (start >= n) return kNothingDone;
  const WorkField value = store.field("FS_VAL", {in, p});
  // The recursion stands on the row before; without it, it begins again from the seed.
  if (start > first && (isNull(value.rows[start - 1]) || isNull(out.rows[start - 1]))) start = first;
  RollingHigh<nz> highest(in.rows, p, start);
  RollingLow<nz> lowest(in.rows, p, start);
  for (Count i = start; i < n; ++i) {
    highest.slideTo(i);
    lowest.slideTo(i);
    const double max = highest.fromOldest();
    const double min = lowest.fromOldest();
    const double raw = max == min ? -0.33 : fisherRaw(nz(in.rows[i]), min, max);
    value.rows[i] = i == first ? raw : raw + kValueCarry * nz(value.rows[i - 1]);
    const double fisher = fisherOf(value.rows[i]);
    out.rows[i] = i == first ? fisher : fisher + 0.5 * nz(out.rows[i - 1]);
  }
  finish(value, n);
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
