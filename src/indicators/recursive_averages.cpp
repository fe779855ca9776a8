#include "indicators/moving_averages.hpp"
#include "indicators/seeded_recursion.hpp"

// The averages that carry on from their own row before, with a constant weight.
namespace brindlewort {

namespace {

/// The weight of the newest row in an exponential average over p rows.
double smoothingFactor(Count p) {
  return 2.0 / static_cast<double>(p + 1);
}

auto exponentialStep(View in, double k) {
  return [in, k, g = 1.0 - k](Count i, double previous) { return previous * g + nz(in[i]) * k; };
}

auto wilderStep(View in, Count p) {
  const double k = 1.0 / static_cast<double>(p);
  return [in, k](Count i, double previous) { return previous + (nz(in[i]) - previous) * k; };
}

auto zeroLagStep(View in, Count p) {
  const double k = smoothingFactor(p);
  const Count lag = (p - 1) / 2;
  return [in, k, lag, g = 1.0 - k](Count i, double previous) {
    return (2.0 * nz(in[i]) - nz(in[i - lag])) * k + previous * g;
  };
}

/// Seed of the batch exponential average: the mean of the rows 1 to p that are not 0, or row p itself when
/// their sum is not positive.
double meanOfNonZeroRows(View in, Count p) {
  double sum = 0.0;
  Count count = 0;
  for (Count j = 1; j <= p; ++j) {
    const double x = nz(in[j]);
    if (x == 0.0) continue;
    sum += x;
    ++count;
  }
  return sum > 0.0 && count > 0 ? sum / static_cast<double>(count) : nz(in[p]);
}

}  // namespace

namespace CFeedkit {

void ExponentialMovingAverage(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n) || p + 1 >= n) return;
  const double k = smoothingFactor(p);
  // The row ahead takes the place of the average so far: the weights stand the other way round here.
  out[p] = nz(in[p + 1]) * (1.0 - k) + meanOfNonZeroRows(in, p) * k;
  runRecursion(out, p + 1, n, exponentialStep(in, k));
}

void WellesWilderSmoothing(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  runRecursion(out, 2, n, wilderStep(in, p));
}

void FACTORAVERAGE(View in, double factor, Count p, Out out) {
  const Count n = rowsOf(in);
  const Count seedRow = p + 1;
  if (seedRow < 0 || seedRow >= n) return;
  out[seedRow] = meanOfRows(in, 2, p);
  runRecursion(out, seedRow + 1, n, exponentialStep(in, factor));
}

void ZEROLAGEXPONENTIALMOVINGAVERAGE(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  const Count seedRow = p + 1;
  if (p < 0 || seedRow >= n) return;  // the lag of a negative period would reach behind the last row
  out[seedRow] = p == 0 ? 0.0 : meanOfRows(in, 2, p);
  runRecursion(out, seedRow + 1, n, zeroLagStep(in, p));
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status ExponentialMovingAverage(Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count lead = firstValueIndex(in.rows);
  return resumeRecursion(
      out, n, lead + p - 1, [&] { return meanOfRows(in.rows, lead, p); },
      exponentialStep(in.rows, smoothingFactor(p)));
}

Status WellesWilderSmoothing(Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count lead = firstValueIndex(in.rows);
  return resumeRecursion(
      out, n, lead + p - 1, [&] { return meanOfRows(in.rows, lead, p); }, wilderStep(in.rows, p));
}

Status FACTORAVERAGE(Source in, double factor, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count lead = firstValueIndex(in.rows);
  // The seed sum ends before row p, not before lead + p: behind a null head it is low.
  return resumeRecursion(
      out, n, lead + p - 1, [&] { return sumOfRows(in.rows, lead, p) / static_cast<double>(p); },
      exponentialStep(in.rows, factor));
}

Status ZEROLAGEXPONENTIALMOVINGAVERAGE(Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count seedRow = firstValueIndex(in.rows) + p - 1;
  const auto seed = [&] {
    double sum = 0.0;
    for (Count j = seedRow; j >= 0; --j) sum += nz(in.rows[j]);
    return sum / static_cast<double>(p);
  };
  return resumeRecursion(out, n, seedRow, seed, zeroLagStep(in.rows, p));
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
