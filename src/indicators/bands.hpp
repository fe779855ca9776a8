#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

/// Which line of a band is wanted. Bands without a middle line have no kMiddle: the batch form leaves `out`
/// null (or answers false), the resumable form answers kNothingDone.
enum class Band { kTop, kMiddle, kBottom };

/// Batch form. `out` has the rows of the input, all NULL_VALUE, and is no view of an input. Arguments out of
/// range leave it all null; where the result is `bool`, false says that there is no such series at all.
namespace CFeedkit {

/// The highest value of the p rows before each row. The row itself is left out; null rows are values like
/// any other. Of equal values the oldest stands; a non-number counts only in the oldest row of the window.
/// formula: max(in[i - p] ... in[i - 1])
/// batch: 1 <= p < n; rows from p + 1
/// resumable: 1 <= p <= n; rows from p, a leading null run does not shift them; in scripts `in` is HIGH
void HighestHighValue(View in, Count p, Out out);

/// The lowest value of the p rows before each row. The row itself is left out; null rows are values like
/// any other. Of equal values the oldest stands; a non-number counts only in the oldest row of the window.
/// formula: min(in[i - p] ... in[i - 1])
/// batch: 1 <= p < n; rows from p + 1
/// resumable: 1 <= p <= n; rows from p, a leading null run does not shift them; in scripts `in` is LOW
void LowestLowValue(View in, Count p, Out out);

/// The standard deviation around a moving average m of any type (not around the window's own mean), times
/// a number of deviations.
/// formula: sqrt(mean of (in - m[i])^2 over the p rows ending at i) * deviations
/// batch: 1 <= p < n; rows from p + 1; computed as sqrt(sum of in^2 / p - m[i]^2) * deviations with a sum of
/// squares that slides, so that a negative difference gives a non-number
/// resumable: 1 <= p <= n; rows from the higher lead of in and m; each row adds its window afresh
void StandardDeviations(View in, Count p, double deviations, Count maType, Out out);

/// Bands a number of standard deviations above and below a moving average m, which is the middle line.
/// formula: m[i] +- sqrt(mean of (in - m[i])^2 over the p rows ending at i) * deviations
/// batch: 1 <= p <= n, moving average type not negative, deviations 0 to 100, else no series; top and bottom
/// from row p + 1, the middle line wherever m has a value
/// resumable: 1 <= p <= n; all three lines from the higher lead of in and m
bool BollingerBands(View in, Count p, double deviations, Count maType, Band band, Out out);

/// Bands a multiple of the average true range above and below a moving average m of the close, which is the
/// middle line. Both averages are of the same type.
/// formula: m[i] +- AverageTrueRange(p, maType)[i] * factor
/// batch: 1 <= p <= n, moving average type and factor not negative; top and bottom from row p + 1, the
/// middle line wherever m has a value
/// resumable: 1 <= p <= n; all three lines from the higher lead of the two averages
void KeltnerChannel(const Prices& prices, Count p, Count maType, double factor, Band band, Out out);

/// Bands a percentage above and below a moving average m. There is no middle line.
/// formula: m[i] +- m[i] * shift / 100
/// batch: 1 <= p <= n, moving average type not negative, shift 0 to 100, else no series; rows from 1, so that
/// the rows before the first of m hold 0
/// resumable: the same ranges; rows from the lead of m
bool MovingAverageEnvelope(View in, Count p, Count maType, double shift, Band band, Out out);

/// The prime at or above the high (top) and at or below the low (bottom). There is no middle line. A value
/// that has no such prime, as a null price, repeats the last prime found; a value of 2^53 or more in size
/// leaves its row null.
/// formula: next prime from v, v being the price without its fraction, times 10 when below 10
/// batch: the fraction is cut before the multiplication; rows from 1, repeating 0 until a prime is found
/// resumable: the fraction is cut after the multiplication; rows from 0
void PrimeNumberBands(const Prices& prices, Band band, Out out);

}  // namespace CFeedkit

/// Resumable form.
namespace CTechnicalFunctions {

Status HighestHighValue(Source in, Count p, Target out);
Status LowestLowValue(Source in, Count p, Target out);
Status StandardDeviations(WorkStore& store, Source in, Count p, double deviations, Count maType, Target out);
Status BollingerBands(WorkStore& store, Source in, Count p, double deviations, Count maType, Band band,
                      Target out);
Status KeltnerChannel(WorkStore& store, const PriceSources& prices, Count p, Count maType, double factor,
                      Band band, Target out);
Status MovingAverageEnvelope(WorkStore& store, Source in, Count p, Count maType, double shift, Band band,
                             Target out);
Status PrimeNumberBands(const PriceSources& prices, Band band, Target out);

/// The last fractal high (top) or fractal low (bottom): a bar that stands out from the two bars on either
/// side. There is no middle line.
/// formula: top high[i - 2] where the highs of i - 4, i - 3, i - 1 and i are all below it, bottom low[i - 2]
/// where the lows of those rows are all at or above it, else the previous row
/// resumable: rows from 4, null until the first fractal; the period (100 when below 1) changes nothing but
/// the name of the work series
Status FractalChaosBands(WorkStore& store, const PriceSources& prices, Count p, Band band, Target out);

/// VIDYA averages of the high (top), the close over half the period (middle) and the low (bottom).
/// formula: VIDYA(high, p, 0.8), VIDYA(close, trunc(p / 2), 0.8), VIDYA(low, p, 0.8)
/// resumable: 1 <= p <= n; rows as VIDYA gives them; no middle line for p = 1
Status HighLowBands(WorkStore& store, const PriceSources& prices, Count p, Band band, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
