#pragma once

#include "indicators/frame.hpp"

/// Oscillators of one series, and the channel index of the prices.
namespace brindlewort {

/// Batch form. `out` has the rows of the input, all NULL_VALUE, and is no view of it. A period out of
/// range (1 <= p < n) leaves it all null.
namespace CFeedkit {
/// The share of the rises in all moves, smoothed Wilder's way, from 0 to 100.
/// formula: gain = (gain[-1] * (p - 1) + rise) / p; loss alike of the falls; RSI = 100 - 100 / (1 + gain
///   / loss). A loss of 0 counts as the gain, so rises alone read 50, and no gain
///   reads 0.
/// batch: the averages start at row p + 1 as the mean moves of rows 2 to p + 1; first row p + 2.
/// resumable: the averages start at row lead + p as the mean moves of the p rows up to it, and that row
///   is written (0 when nothing fell); recomputes the last row.
void RelativeStrengthIndex(View in, Count p, Out out);

/// The series as a percentage of what it was p rows before.
/// formula: (in - in[-p]) / in[-p] * 100 + 100; 0 where in[-p] is 0
/// batch: first row p + 2.
/// resumable: first row lead + p; recomputes the last row.
void MomentumOscillator(View in, Count p, Out out);

/// Rises less falls as a percentage of all moves over p rows, from -100 to 100.
/// formula: (up - down) / (up + down) * 100; 0 where nothing moved
/// batch: first row p + 1.
/// resumable: first row lead + p; recomputes the last row.
void ChandeMomentumOscillator(View in, Count p, Out out);

/// The distance of a short moving average from a long one, in percent. The periods may come in either
/// order.
/// formula: (short - long) / long * 100
/// batch: first row long period + 1; null where the long average is 0.
/// resumable: from the first row that both averages have; divides by the short average instead of the
///   long one; 0 where the long average is 0; recomputes the last row.
void PriceOscillator(View in, Count shortPeriods, Count longPeriods, Count maType, Out out);

/// The series less its own moving average of some rows before, which takes the trend out.
/// formula: in - MA(p)[-(p / 2 + 1)]
/// batch: rows from p / 2 + 1, averages not there yet counting 0; with fewer than 2 * p rows all rows
///   from 1 are 0.
/// resumable: rows from p / 2 + 1, as soon as the first average is that many rows old; recomputes the
///   last row.
void DetrendedPriceOscillator(View in, Count p, Count maType, Out out);

/// The change of a three times smoothed series, in percent.
/// formula: (e - e[-1]) / e[-1] * 100 with e = EMA(EMA(EMA(in, p), p), p)
/// batch: first row p + 2; null where e[-1] is 0.
/// resumable: from the second row of e; 0 where e[-1] is 0; recomputes the last row.
void TRIX(View in, Count p, Out out);

/// How straight the way through the last p rows was: the height of the window over the length of the
/// path.
/// formula: |(highest - lowest) / sum of |in - in[-1]||; 0 where nothing moved. The highest is at least
///   0.
/// batch: first row p + 1; the lowest of that row's window starts from row p + 2.
/// resumable: first row lead + p - 1; recomputes the last row.
void VerticalHorizontalFilter(View in, Count p, Out out);

/// The distance of the typical price from its moving average, in units of its mean distance.
/// formula: (tp - MA(tp, p)) / (0.015 * mean distance); 0 where the mean distance is 0
/// batch: first row 1.5 * p; the distances of p + 1 rows, each from its own row's average, divided by p.
/// resumable: from the first row of the average; the distances of p rows, all from the present row's
///   average; recomputes the last row.
void CommodityChannelIndex(const Prices& prices, Count p, Count maType, Out out);
}  // namespace CFeedkit

/// Resumable form. The periods must pass 1 <= p <= n.
namespace CTechnicalFunctions {
Status RelativeStrengthIndex(WorkStore& store, Source in, Count p, Target out);
Status MomentumOscillator(Source in, Count p, Target out);
Status ChandeMomentumOscillator(Source in, Count p, Target out);
Status PriceOscillator(WorkStore& store, Source in, Count shortPeriods, Count longPeriods, Count maType,
                       Target out);
Status DetrendedPriceOscillator(WorkStore& store, Source in, Count p, Count maType, Target out);
Status TRIX(WorkStore& store, Source in, Count p, Target out);
Status VerticalHorizontalFilter(Source in, Count p, Target out);
Status CommodityChannelIndex(WorkStore& store, const PriceSources& prices, Count p, Count maType, Target out);
}  // namespace CTechnicalFunctions

}  // namespace brindlewort
