#pragma once

#include "indicators/frame.hpp"

/// Oscillators built on cycles, fractals, prime numbers and ratios.
namespace brindlewort {

/// Batch form. `out` has the rows of the input, all NULL_VALUE, and is no view of it.
namespace CFeedkit {
/// Marks the middle of five bars as a top or a bottom, two bars late. The period has no effect.
/// formula: 1 for a top: h1 < h3, h2 < h3, h4 <= h3, high <= h3; -1 for a bottom: l1 > l3, l2 > l3,
///   l4 >= l3, low >= l3; else 0; h1 to h4 and l1 to l4 being the highs and lows of the four rows
///   before, oldest first
/// batch: rows below 5 are 0; a row that is both is a bottom.
/// resumable: first row 4; a row that is both is a top; recomputes the last row.
void FractalChaosOscillator(const Prices& prices, Count p, Out out);

/// The distance of a value from the nearer of the primes below and above it.
/// formula: v - upper prime if that is nearer, else v - lower prime; where v has no prime on a side, the
///   one found last there counts; null where v is 2^53 or more in size
/// batch: from row 1; v is the whole part of the row, squared if below 10; null where the row is no number.
/// resumable: from row lead; v is the row itself, times 10 if below 10, the primes lying about its whole
///   part; a fraction below 0 has no prime above it; what is no number stays none; recomputes the last row,
///   after a look back to the last row below and above which a prime was found.
void PrimeNumberOscillator(View in, Out out);

/// The distance of the series from its moving average, added up over the levels from 2 on and divided by
/// their count. `levels` is also the period of the average, and must pass 1 <= levels < 51.
/// formula: (levels - 1) * (in - MA(levels)) / levels; 0 for 1 level
/// batch: from row 1, averages not there yet counting 0.
/// resumable: from the first row of the average, but not before row 1; a call again adds onto the last
///   row and divides it again.
void RainbowOscillator(View in, Count levels, Count maType, Out out);

/// Buying pressure as a share of the true range, over three cycles, weighted 4, 2, 1. The cycles must
/// pass 1 <= cycle < n; a cycle of n rows passes in the resumable form.
/// formula: (s1 / t1 * 4 + s2 / t2 * 2 + s3 / t3) / 7 * 100; s the sums of close - min(low, close[-1]),
///   t those of the true range
/// batch: first row longest cycle + 1; null where a t is 0.
/// resumable: first row longest cycle; 0 where a t is 0; recomputes the last row.
void ULTIMATEOSCILLATOR(const Prices& prices, Count cycle1, Count cycle2, Count cycle3, Out out);

/// The ratio of two series of equal length.
/// formula: a / b
/// batch: from row 1; null where b is 0, and where the ratio is exactly 1.
/// resumable: from the first row that both series have; 0 where b is not above 0, null where a or b is
///   null; recomputes the last row.
void ComparativeRelativeStrength(View a, View b, Out out);

/// Where the series stands within its range of p rows, made to follow a bell curve so that turns stand
/// out. The period must pass 1 <= p < n; a period of n rows passes in the resumable form.
/// formula: value = ((in - min) / (max - min) - 0.5) * 2 * 0.33 + 0.67 * value[-1]; held within 0.999
///   where beyond 0.99; fisher = 0.5 * log10((value + 1) / (1 - value)) + 0.5 * fisher[-1]
/// batch: first row p; a flat window keeps the value of the row before.
/// resumable: first row lead + p - 1; a flat window adds -0.33; recomputes the last row.
void FISHERTRANSFORM(View in, Count p, Out out);
}  // namespace CFeedkit

/// Resumable form.
namespace CTechnicalFunctions {
Status FractalChaosOscillator(const PriceSources& prices, Count p, Target out);
Status PrimeNumberOscillator(Source in, Target out);
Status RainbowOscillator(WorkStore& store, Source in, Count levels, Count maType, Target out);
Status ULTIMATEOSCILLATOR(WorkStore& store, const PriceSources& prices, Count cycle1, Count cycle2,
                          Count cycle3, Target out);
Status ComparativeRelativeStrength(Source a, Source b, Target out);
Status FISHERTRANSFORM(WorkStore& store, Source in, Count p, Target out);
}  // namespace CTechnicalFunctions

}  // namespace brindlewort
