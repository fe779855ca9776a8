#include <cmath>

#include "indicators/compute_rows.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/oscillators.hpp"
#include "indicators/regression.hpp"
#include "indicators/seeded_recursion.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/windows.hpp"

// The averages whose weight follows the market: its momentum, its fit to a line, its efficiency. With them
// the average that is a line.
namespace brindlewort {

namespace {

/// The variable average reads this oscillator in the batch form, whatever its own period.
constexpr Count kBatchMomentumPeriods = 9;

/// A step of the average that weighs the newest row by the size of the momentum.
auto momentumStep(View in, View momentum) {
  return [in, momentum](Count i, double previous) {
    const double a = std::fabs(nz(momentum[i]) / 100.0);
    return a * nz(in[i]) + (1.0 - a) * previous;
  };
}

/// Rows [start, n) of the blend of each row with the one before it.
void blendByFit(View in, View rSquared, double scale, Count start, Count n, Out out) {
  for (Count i = start; i < n; ++i) {
    const double a = nz(rSquared[i]) * scale;
    out[i] = nz(in[i]) * a + (1.0 - a) * nz(in[i - 1]);
  }
}

/// The range of the adaptive average's weight, before it is squared.
struct SmoothingRange {
  SmoothingRange(Count fastPeriods, Count slowPeriods)
      : fast(2.0 / static_cast<double>(fastPeriods + 1)), slow(2.0 / static_cast<double>(slowPeriods + 1)) {}
  double at(double efficiency) const { return nz(efficiency) * (fast - slow) + slow; }
  double fast, slow;
};

double square(double x) {
  return nz(x) * nz(x);
}

double movement(View in, Count i) {
  return std::fabs(nz(in[i]) - nz(in[i - 1]));
}

}  // namespace

namespace CFeedkit {

void TimeSeriesMovingAverage(View in, Count p, Out out) {
  LinearRegression(in, p, RegressionLine::kForecast, out);
}

void VariableMovingAverage(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  std::vector<double> momentum = nullRows(in.size());
  ChandeMomentumOscillator(in, kBatchMomentumPeriods, momentum);
  runRecursion(out, 2, n, momentumStep(in, momentum));
}

void VIDYA(View in, Count p, double scale, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  std::vector<double> rSquared = nullRows(in.size());
  LinearRegression(in, p, RegressionLine::kRSquared, rSquared);
  blendByFit(in, rSquared, scale, 2, n, out);
}

void ADAPTIVEMOVINGAVERAGE(View in, Count p, Count fastPeriods, Count slowPeriods, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  const SmoothingRange range(fastPeriods, slowPeriods);
  std::vector<double> movements = nullRows(in.size());
  for (Count i = 2; i < n; ++i) movements[i] = movement(in, i);

  double average = meanOfRows(in, 1, p);
  out[p] = average;
  sumWindows<WindowOrder::kOldestFirst>(
      p + 1, n, p, [rows = View(movements)](Count j, Count) { return rows[j]; },
      [&](Count i, double volatility) {
        const double directive = nz(in[i]) - nz(in[i - p + 1]);
        const double efficiency = volatility == 0.0 ? NULL_VALUE : directive / volatility;
        average = nz(average) + square(range.at(efficiency)) * (nz(in[i]) - nz(average));
        out[i] = average;
      });
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status TimeSeriesMovingAverage(Source in, Count p, Target out) {
  return LinearRegression(in, p, RegressionLine::kForecast, out);
}

Status VariableMovingAverage(WorkStore& store, Source in, Count p, Target out) {
  if (!resumableRange(p, rowsOf(in, out))) return kNothingDone;
  const WorkField momentum = store.field("CMO", {in, p});
  ChandeMomentumOscillator(in, p, momentum);

  const Count n = commonRows(in.rows, {momentum.rows, out.rows});
  const Count lead = firstValueIndex(in.rows);
  const Count first = firstValueIndex(momentum.rows);
  // Not the common rule: a resumed call goes back over the last p + 1 rows.
  const Count start = *out.slot == -1 ? first : std::max(first, std::min(n - p - 1, *out.slot - Count{1}));
  if (start + p >= n || lead + p > n) return kNothingDone;

  const auto seed = [&] { return meanOfRows(in.rows, lead, p); };
  const Count seedRow = first - 1;
  const Count from = seededStart(out.rows, start == first ? seedRow : start, seedRow, seed);
  runRecursion(out.rows, from, n, momentumStep(in.rows, momentum.rows));
  return finish(out, n);
}

Status VIDYA(WorkStore& store, Source in, Count p, double scale, Target out) {
  if (!resumableRange(p, rowsOf(in, out))) return kNothingDone;
  const WorkField rSquared = store.field("RSQUARED", {in, p});
  LinearRegression(in, p, RegressionLine::kRSquared, rSquared);

  const Count n = commonRows(in.rows, {rSquared.rows, out.rows});
  const Count start = startRow(out, higherLead(in.rows, rSquared.rows) + 1);
  if (start >= n) return kNothingDone;
  blendByFit(in.rows, rSquared.rows, scale, start, n, out.rows);
  return finish(out, n);
}

namespace {

/// The sums of `in` over p rows, as far as they are not computed yet.
void resumeSums(View in, Count p, const WorkField& work, Count first, Count n) {
  const Count start = startRow(work, first);
  if (start >= n) return;
  sumWindows<WindowOrder::kOldestFirst>(
      start, n, p, [in](Count j, Count) { return nz(in[j]); },
      [rows = work.rows](Count i, double total) { rows[i] = total; });
  finish(work, n);
}

}  // namespace

Status ADAPTIVEMOVINGAVERAGE(WorkStore& store, Source in, Count p, Count fastPeriods, Count slowPeriods,
                             Target out) {
  if (!resumableRange(p, rowsOf(in, out))) return kNothingDone;
  const auto work = [&](std::string_view name) {
    return store.field(name, {in, p, fastPeriods, slowPeriods});
  };
  const WorkField directive = work("AMA_DIRECTIVE");
  const WorkField movements = work("AMA_SUM");
  const WorkField volatility = work("AMA_VOL");
  const WorkField efficiency = work("AMA_EFFI");
  const WorkField smoothing = work("AMA_SSC");
  const WorkField weight = work("AMA_C");

  const Count n = commonRows(in.rows, {directive.rows, movements.rows, volatility.rows, efficiency.rows,
                                       smoothing.rows, weight.rows, out.rows});
  const Count lead = firstValueIndex(in.rows);
  const Count first = lead + p;
  if (startRow(out, first) >= n) return kNothingDone;
  const SmoothingRange range(fastPeriods, slowPeriods);
  computeRows(directive, first, n, [&](Count i) { return nz(in.rows[i]) - nz(in.rows[i - p]); });
  computeRows(movements, lead + 1, n, [&](Count i) { return movement(in.rows, i); });
  resumeSums(movements.rows, p, volatility, first, n);
  computeRows(efficiency, first, n, [&](Count i) {
    const double way = nz(volatility.rows[i]);
    return way == 0.0 ? 0.0 : nz(directive.rows[i]) / way;
  });
  computeRows(smoothing, first, n, [&](Count i) { return range.at(efficiency.rows[i]); });
  computeRows(weight, first, n, [&](Count i) { return square(smoothing.rows[i]); });
  return resumeRecursion(
      out, n, first - 1, [&] { return meanOfRows(in.rows, lead, p); },
      [&](Count i, double previous) { return previous + nz(weight.rows[i]) * (nz(in.rows[i]) - previous); });
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
