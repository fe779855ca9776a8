#pragma once

#include "indicators/frame.hpp"

/// Moving averages, on which almost all other indicators rest.
///
/// Every read of an input goes through nz, seeds included, so a null input row acts as 0 and null never
/// spreads. n is the row count and lead = firstValueIndex(in), by which the resumable form shifts with the
/// nulls at the head of its input; the batch form does not shift.
namespace brindlewort {

/// Moving average types as scripts number them. The type dispatcher serves 1 to 8; every other number is
/// served as kSimple.
enum MaType : Count {
  kSimple = 1,
  kExponential = 2,
  kTimeSeries = 3,
  kVariable = 4,
  kTriangular = 5,
  kWeighted = 6,
  kVidya = 7,
  kWilder = 8,
};

/// Batch form. `out` has the rows of `in`, all NULL_VALUE, and is no view of `in`. A period out of range
/// leaves it all null.
namespace CFeedkit {

/// Mean of the last p rows.
/// formula: out[i] = (in[i] + in[i - 1] + ... + in[i - p + 1]) / p
/// batch: 1 <= p < n; first row p + 1. The first window is added newest row first; from there the sum
///   slides, losing the oldest row before it gains the newest.
/// resumable: 1 <= p <= n; first row lead + p - 1. The window is added in full on the first row of every
///   call and slides from there. Recomputes the last row.
void SimpleMovingAverage(View in, Count p, Out out);

/// Mean whose weights fall by a constant factor with age.
/// formula: k = 2 / (p + 1); out[i] = out[i - 1] * (1 - k) + in[i] * k
/// batch: 1 <= p < n; first row p, where out[p] = in[p + 1] * (1 - k) + seed * k: it reads the row ahead
///   and swaps the two weights. The seed is the mean of the rows 1 to p that are not 0, or in[p] when
///   their sum is not positive. Without a row p + 1 all rows stay null.
/// resumable: 1 <= p <= n; first row lead + p - 1, which holds the seed: the mean of the p rows from lead.
///   Recomputes the last row.
void ExponentialMovingAverage(View in, Count p, Out out);

/// End point of the regression line through the last p rows.
/// formula: out[i] = p * slope + intercept, of the linear regression over p
/// batch: 1 <= p <= n; first row p.
/// resumable: 1 <= p <= n; first row lead + p - 1. The intercept differs from the batch form's. Recomputes
///   the last row.
void TimeSeriesMovingAverage(View in, Count p, Out out);

/// Exponential average whose weight follows the momentum: quick in a trend, nearly still without one.
/// formula: a = |cmo[i] / 100|; out[i] = a * in[i] + (1 - a) * out[i - 1]
/// batch: 1 <= p < n, and p has no other effect: cmo is ChandeMomentumOscillator(in, 9). First row 2. No
///   seed: the average starts from 0 and stays there until the oscillator has its first row.
/// resumable: 1 <= p <= n; cmo is ChandeMomentumOscillator(in, p). The row before the oscillator's first
///   holds the seed, the mean of the p rows from lead; the first computed row f is the oscillator's
///   first, and f + p < n is required. A resumed call recomputes the last p + 1 rows.
void VariableMovingAverage(View in, Count p, Out out);

/// Simple average of a simple average, which gives the middle of the window the most weight.
/// formula: w1 = trunc((p + 1) / 2), w2 = trunc(p / 2) + 1; mean over w2 rows of the mean over w1 rows
/// batch: 1 <= p < n; first row p + 1 in both stages, so the first w2 - 1 rows read rows of the first
///   stage that do not exist as 0 and come out low.
/// resumable: 1 <= p <= n; first row lead + w1 + w2 - 2, where the second stage has a full window. Recomputes
///   the last row.
void TriangularMovingAverage(View in, Count p, Out out);

/// Mean of the last p rows with weights falling from p for the newest row to 1 for the oldest.
/// formula: out[i] = (in[i] * p + in[i - 1] * (p - 1) + ... + in[i - p + 1] * 1) / (1 + 2 + ... + p)
/// batch: 1 <= p < n; first row p + 1.
/// resumable: 1 <= p <= n; first row lead + p - 1. Recomputes the last row.
void WeightedMovingAverage(View in, Count p, Out out);

/// Exponential average with the weight 1 / p.
/// formula: out[i] = out[i - 1] + (in[i] - out[i - 1]) * (1 / p)
/// batch: 1 <= p < n; first row 2, whatever p is. No seed: it starts from 0.
/// resumable: 1 <= p <= n; first row lead + p - 1, which holds the seed: the mean of the p rows ending
///   there. Recomputes the last row.
void WellesWilderSmoothing(View in, Count p, Out out);

/// Blend of a row with the input row before it, by how well a straight line fits the last p rows. Not
/// recursive.
/// formula: a = rsquared[i] * scale; out[i] = in[i] * a + (1 - a) * in[i - 1]
/// batch: 1 <= p < n; first row 2. Where the regression has no row yet, a is 0.
/// resumable: 1 <= p <= n; first row lead + p, one past the first row of the regression. Recomputes the last
///   row.
void VIDYA(View in, Count p, double scale, Out out);

/// Exponential average with a weight of the caller's choice.
/// formula: out[i] = out[i - 1] * (1 - factor) + in[i] * factor
/// batch: needs a row p + 1, which holds the seed: the sum of rows 2 to p + 1, divided by p.
/// resumable: 1 <= p <= n; first row lead + p - 1, which holds the seed: the sum of the rows from lead up
///   to, not including, p, divided by p. Behind a null head the seed is thus low. Recomputes the last row.
void FACTORAVERAGE(View in, double factor, Count p, Out out);

/// Exponential average of the input plus its change over half the period, which makes up for the lag.
/// formula: k = 2 / (p + 1), lag = trunc((p - 1) / 2);
///   out[i] = (2 * in[i] - in[i - lag]) * k + out[i - 1] * (1 - k)
/// batch: needs p >= 0 and a row p + 1, which holds the seed: the sum of rows 2 to p + 1, divided by p (0
///   when p is 0).
/// resumable: 1 <= p <= n; first row lead + p - 1, which holds the seed: the sum of all rows from there
///   down to row 0, divided by p. Recomputes the last row.
void ZEROLAGEXPONENTIALMOVINGAVERAGE(View in, Count p, Out out);

/// Hull average: weighted averages combined so that they lag less.
/// formula: c[i] = 2 * WMA(in, trunc(p / 2))[i] - WMA(in, p)[i]; out = WMA(c, trunc(sqrt(p)))
/// batch: 1 <= p < n; first row p + 1. c has a value in every row, the averages counting as 0 before their
///   first row.
/// resumable: 1 <= p <= n; first row lead + p + trunc(sqrt(p)) - 2. No row at all for p = 1, whose half
///   period has no average. Recomputes the last row.
void HA(View in, Count p, Out out);

/// Exponential average whose weight follows the efficiency of the movement: the way made over p rows
/// against the way walked. The sign of the way made is kept.
/// formula: fast = 2 / (fastPeriods + 1), slow = 2 / (slowPeriods + 1);
///   efficiency = directive[i] / (sum of |in[j] - in[j - 1]| over p rows);
///   c = (efficiency * (fast - slow) + slow)^2; out[i] = out[i - 1] + c * (in[i] - out[i - 1])
/// batch: 1 <= p < n; directive[i] = in[i] - in[i - p + 1]. First row p, which holds the seed: the mean of
///   rows 1 to p. Without movement the efficiency counts as 0.
/// resumable: 1 <= p <= n; directive[i] = in[i] - in[i - p]. Row lead + p - 1 holds the seed, the mean of
///   the p rows ending there; at least one row behind it is required. Recomputes the last row.
void ADAPTIVEMOVINGAVERAGE(View in, Count p, Count fastPeriods, Count slowPeriods, Out out);

/// Mean of the last p rows, each weighted by its row of another series, such as the volume.
/// formula: out[i] = (sum of in[j] * weights[j]) / (sum of weights[j]), j from i down to i - p + 1
/// batch: 1 <= p < n; first row p + 1. Where the weights add up to 0 the average before is repeated (0
///   before the first). All null when `weights` has fewer rows than `in`.
/// resumable: 1 <= p <= n; first row p - 1 behind the longer null head of the two. Where the weights add up
///   to 0 the row is 0. Recomputes the last row.
void VAA(View in, View weights, Count p, Out out);

/// Mean of all rows so far.
/// formula: out[i] = (sum of all rows up to i) / (their count)
/// batch: any n; first row 1. The filler bar, row 0, is left out.
/// resumable: any n; first row lead. Row 0 is counted, and so are the rows of a null head. A resumed call
///   adds the whole history again, once.
void CUMULATIVEAVERAGE(View in, Out out);

/// The moving average of a type, by its number.
/// formula: 1 SimpleMovingAverage, 2 ExponentialMovingAverage, 3 TimeSeriesMovingAverage,
///   4 VariableMovingAverage, 5 TriangularMovingAverage, 6 WeightedMovingAverage, 7 VIDYA with the scale
///   0.65, 8 WellesWilderSmoothing, any other number SimpleMovingAverage
/// batch: as the average chosen.
/// resumable: as the average chosen.
void movingAverageByType(View in, Count p, Count type, Out out);

}  // namespace CFeedkit

/// Resumable form.
namespace CTechnicalFunctions {
Status SimpleMovingAverage(Source in, Count p, Target out);
Status ExponentialMovingAverage(Source in, Count p, Target out);
Status TimeSeriesMovingAverage(Source in, Count p, Target out);
Status VariableMovingAverage(WorkStore& store, Source in, Count p, Target out);
Status TriangularMovingAverage(WorkStore& store, Source in, Count p, Target out);
Status WeightedMovingAverage(Source in, Count p, Target out);
Status WellesWilderSmoothing(Source in, Count p, Target out);
Status VIDYA(WorkStore& store, Source in, Count p, double scale, Target out);
Status FACTORAVERAGE(Source in, double factor, Count p, Target out);
Status ZEROLAGEXPONENTIALMOVINGAVERAGE(Source in, Count p, Target out);
Status HA(WorkStore& store, Source in, Count p, Target out);
Status ADAPTIVEMOVINGAVERAGE(WorkStore& store, Source in, Count p, Count fastPeriods, Count slowPeriods,
                             Target out);
Status VAA(Source in, Source weights, Count p, Target out);
Status CUMULATIVEAVERAGE(Source in, Target out);
Status movingAverageByType(WorkStore& store, Source in, Count p, Count type, Target out);
}  // namespace CTechnicalFunctions

}  // namespace brindlewort
