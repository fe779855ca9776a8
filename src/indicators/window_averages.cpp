#include <cmath>

#include "indicators/compute_rows.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/windows.hpp"

// The averages that add up a window of rows, with or without weights, and the mean of all rows.
namespace brindlewort {

namespace {

/// Rows [start, n) of the mean over w rows. The first window is added newest row first; from there the sum
/// slides.
void slidingMean(View in, Count w, Count start, Count n, Out out) {
  if (start >= n) return;
  const double divisor = static_cast<double>(w);
  double sum = 0.0;
  for (Count k = 0; k < w; ++k) sum += nz(in[start - k]);
  out[start] = sum / divisor;
  for (Count i = start + 1; i < n; ++i) {
    sum -= nz(in[i - w]);
    sum += nz(in[i]);
    out[i] = sum / divisor;
  }
}

/// Rows [start, n) of the mean over w rows, every window added afresh, newest row first.
void windowMean(View in, Count w, Count start, Count n, Out out) {
  const double divisor = static_cast<double>(w);
  sumWindows<WindowOrder::kNewestFirst>(
      start, n, w, [in](Count j, Count) { return nz(in[j]); },
      [out, divisor](Count i, double total) { out[i] = total / divisor; });
}

/// Rows [start, n) of the mean over p rows with the weights p (newest) to 1, added newest row first.
void weightedMean(View in, Count p, Count start, Count n, Out out) {
  double divisor = 0.0;
  for (Count weight = 1; weight <= p; ++weight) divisor += static_cast<double>(weight);
  sumWindows<WindowOrder::kNewestFirst>(
      start, n, p, [in, p](Count j, Count k) { return nz(in[j]) * static_cast<double>(p - k); },
      [out, divisor](Count i, double total) { out[i] = total / divisor; });
}

/// Rows [start, n) of the mean over p rows weighted by another series, added newest row first.
/// `withoutWeight(i)` is the row where the weights add up to 0.
template <class WithoutWeight>
void meanByWeights(View in, View weights, Count p, Count start, Count n, Out out,
                   WithoutWeight withoutWeight) {
  sumWindows<WindowOrder::kNewestFirst>(
      start, n, p, [in, weights](Count j, Count) { return nz(in[j]) * nz(weights[j]); },
      [out](Count i, double total) { out[i] = total; });
  sumWindows<WindowOrder::kNewestFirst>(
      start, n, p, [weights](Count j, Count) { return nz(weights[j]); },
      [out, withoutWeight](Count i, double total) {
        out[i] = total == 0.0 ? withoutWeight(i) : out[i] / total;
      });
}

/// The two window lengths of a triangular average; together they see p rows.
struct TriangularWindows {
  explicit TriangularWindows(Count p) : first((p + 1) / 2), second(p / 2 + 1) {}
  Count first, second;
};

/// The two inner periods of the Hull average.
struct HullPeriods {
  explicit HullPeriods(Count p) : half(p / 2), root(static_cast<Count>(std::sqrt(static_cast<double>(p)))) {}
  Count half, root;
};

double hullDifference(double halfAverage, double average) {
  return 2.0 * nz(halfAverage) - nz(average);
}

/// Rows [start, n) of the mean of all rows from `from` on, of which row i is the (i - from + 1)th. One
/// running sum has the bits of a sum formed anew for each row, since it only ever grows at its end.
void prefixMean(View in, Count from, Count start, Count n, Out out) {
  double sum = 0.0;
  for (Count i = from; i < start; ++i) sum += nz(in[i]);
  for (Count i = start; i < n; ++i) {
    sum += nz(in[i]);
    out[i] = sum / static_cast<double>(i - from + 1);
  }
}

}  // namespace

namespace CFeedkit {

void SimpleMovingAverage(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  slidingMean(in, p, p + 1, n, out);
}

void TriangularMovingAverage(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  const TriangularWindows w(p);
  std::vector<double> stageOne = nullRows(in.size());
  windowMean(in, w.first, p + 1, n, stageOne);
  windowMean(stageOne, w.second, p + 1, n, out);
}

void WeightedMovingAverage(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  weightedMean(in, p, p + 1, n, out);
}

void HA(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  const HullPeriods periods(p);
  std::vector<double> average = nullRows(in.size());
  WeightedMovingAverage(in, p, average);
  std::vector<double> combined = nullRows(in.size());
  WeightedMovingAverage(in, periods.half, combined);
  for (Count i = 0; i < n; ++i) combined[i] = hullDifference(combined[i], average[i]);
  weightedMean(combined, periods.root, p + 1, n, out);
  for (Count i = p + 1; i < n; ++i) out[i] = nz(out[i]);
}

void VAA(View in, View weights, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n) || rowsOf(weights) < n) return;
  meanByWeights(in, weights, p, p + 1, n, out,
                [out, first = p + 1](Count i) { return i == first ? 0.0 : out[i - 1]; });
}

void CUMULATIVEAVERAGE(View in, Out out) {
  prefixMean(in, 1, 1, rowsOf(in), out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

namespace {

using WindowKernel = void (*)(View in, Count w, Count start, Count n, Out out);

/// The rows of a window of w rows, from the first that has a full window behind the null head.
Status resumeWindows(Source in, Count w, Target out, WindowKernel kernel) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(w, n)) return kNothingDone;
  const Count start = startRow(out, firstValueIndex(in.rows) + w - 1);
  if (start >= n) return kNothingDone;
  kernel(in.rows, w, start, n, out.rows);
  return finish(out, n);
}

}  // namespace

Status SimpleMovingAverage(Source in, Count p, Target out) {
  return resumeWindows(in, p, out, slidingMean);
}

Status WeightedMovingAverage(Source in, Count p, Target out) {
  return resumeWindows(in, p, out, weightedMean);
}

Status TriangularMovingAverage(WorkStore& store, Source in, Count p, Target out) {
  if (!resumableRange(p, rowsOf(in, out))) return kNothingDone;
  const TriangularWindows w(p);
  const WorkField stageOne = store.field("TMAfield1", {in, p});
  resumeWindows(in, w.first, stageOne, windowMean);
  return resumeWindows(stageOne, w.second, out, windowMean);
}

Status HA(WorkStore& store, Source in, Count p, Target out) {
  if (!resumableRange(p, rowsOf(in, out))) return kNothingDone;
  const HullPeriods periods(p);
  const WorkField halfAverage = store.field("HA_WMA1", {in, p});
  const WorkField average = store.field("HA_WMA2", {in, p});
  const WorkField combined = store.field("HA_TmpField", {in, p});
  WeightedMovingAverage(in, periods.half, halfAverage);
  WeightedMovingAverage(in, p, average);

  const Count n = commonRows(combined.rows, {halfAverage.rows, average.rows});
  computeRows(combined, higherLead(halfAverage.rows, average.rows), n,
              [&](Count i) { return hullDifference(halfAverage.rows[i], average.rows[i]); });
  return WeightedMovingAverage(combined, periods.root, out);
}

Status VAA(Source in, Source weights, Count p, Target out) {
  const Count n = commonRows(in.rows, {weights.rows, out.rows});
  if (!resumableRange(p, n)) return kNothingDone;
  const Count start = startRow(out, higherLead(in.rows, weights.rows) + p - 1);
  if (start >= n) return kNothingDone;
  meanByWeights(in.rows, weights.rows, p, start, n, out.rows, [](Count) { return 0.0; });
  return finish(out, n);
}

Status CUMULATIVEAVERAGE(Source in, Target out) {
  const Count n = rowsOf(in, out);
  const Count start = startRow(out, firstValueIndex(in.rows));
  if (start >= n) return kNothingDone;
  prefixMean(in.rows, 0, start, n, out.rows);
  if (start == 0) out.rows[0] = nz(in.rows[0]);  // the value itself: a sum from 0 would lose the sign of -0
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
