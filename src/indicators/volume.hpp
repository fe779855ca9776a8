#pragma once

#include "indicators/frame.hpp"

/// Indicators that combine price with volume, and the rates of change. Volumes and prices of a bar are read
/// as they stand; rows of a series `in` are read with nulls as 0. Two series of different lengths give no
/// result: all null (batch), kNothingDone (resumable).
namespace brindlewort {

/// How a volume oscillator tells the distance of its averages. Scripts give the number; any other number
/// than these writes no rows.
enum PointsOrPercent : Count { kPoints = 1, kPercent = 2 };

namespace CFeedkit {

/// Running total of volume: added on a rise of the price, taken off on a fall.
/// formula: nz(out[i-1]) + volume[i] if in[i] > in[i-1], nz(out[i-1]) - volume[i] if less, else out[i-1]
/// batch: rows from 2; null up to the first change of price
/// resumable: rows from the higher lead plus 1; the row before is seeded with its volume
void OnBalanceVolume(View in, View volume, Out out);

/// Running total of volume, each row weighed by the relative change of the price.
/// formula: nz(out[i-1]) + (in[i] - in[i-1]) / in[i-1] * volume[i]
/// batch: rows from 2; no guard on a price of 0
/// resumable: rows from the higher lead plus 1, the first holding its own term alone; a term after a price
///   of 0 is 0
void PriceVolumeTrend(View in, View volume, Out out);

/// Compounds the relative change of the price over the rows on which volume rose.
/// formula: nz(out[i-1]) * (in[i] - in[i-1]) / in[i-1] + nz(out[i-1]) if volume[i-1] < volume[i],
///   else out[i-1]
/// batch: seed 1.0 at row 1, rows from 2; no guard on a price of 0
/// resumable: seed 1.0 at the higher lead, rows from the next; a row after a price or an index of 0 repeats
///   the index
void PositiveVolumeIndex(View in, View volume, Out out);

/// Compounds the relative change of the price over the rows on which volume fell. A result that is not a
/// finite number is stored as a null.
/// formula: nz(out[i-1]) * (in[i] - in[i-1]) / in[i-1] + nz(out[i-1]) if volume[i-1] > volume[i],
///   else out[i-1]
/// batch: seed 1.0 at row 1, rows from 2
/// resumable: seed 1.0 at the higher lead, rows from the next; a row on which volume fell is 0 when the price
///   before times the index before is 0
void NegativeVolumeIndex(View in, View volume, Out out);

/// Change in percent since the first value, the base. Nothing is computed for a base of 0.
/// formula: (in[i] - base) / base * 100
/// batch: base in[1], rows from 2
/// resumable: base in[lead], rows from the next
void PerformanceIndex(View in, Out out);

/// Running total of volume, added while the price moves up by more than the minimum tick and taken off
/// while it moves down by more; between the two the last direction holds.
/// formula: d = in[i] - in[i-1]; direction 1 if d > minimumTick, -1 if d < -minimumTick, else as before;
///   total + direction * volume[i]
/// batch: minimumTick not negative; rows from 2, direction and total 0 at the start
/// resumable: minimumTick not negative; rows from the higher lead plus 1; a row of direction 0 is 0
void TradeVolumeIndex(View in, View volume, double minimumTick, Out out);

/// Relative strength of money that flows in on rising and out on falling typical prices.
/// formula: 100 - 100 / (1 + pos / neg) over the p rows j ending at i, pos the sum of tp[j] * v[j] where
///   tp[j-1] < tp[j], neg where greater; tp = (high + low + close) / 3, v the volume, at least 1
/// batch: 1 <= p < rows; first row p + 1; null where pos or neg is 0
/// resumable: 1 <= p <= rows; first row p; 0 where pos or neg is 0
void MoneyFlowIndex(const Prices& prices, Count p, Out out);

/// Volume weighed by a multiplier, over the plain volume of the window.
/// formula: sum of m * volume / sum of volume over the p rows ending at i;
///   a = (close - low) - (high - close), b = high - low
/// batch: 1 <= p < rows; first row p + 1. Each window is walked from the newest row to the oldest; m starts
///   as 1, is replaced by a / b only on a row where a or b is 0, and is carried from window to window. Null
///   where the volume is 0
/// resumable: 1 <= p <= rows; first row p - 1. m[i] is m[i-1] (1 on row 0) where a or b is not 0 at four
///   decimals, else a / b. 0 where the volume is 0
void ChaikinMoneyFlow(const Prices& prices, Count p, Out out);

/// Distance of a short and a long moving average of volume; the periods are swapped when the first is the
/// greater. `pointsOrPercent` 1 is points, 2 percent; another number writes no rows.
/// formula: points nz(s[i]) - nz(l[i]); percent (nz(s[i]) - nz(l[i])) / nz(l[i]) * 100
/// batch: both periods 1 <= p < rows; rows from 1; percent null where nz(l[i]) is 0
/// resumable: both periods 1 <= p <= rows; rows from the higher lead of s and l; points are
///   (nz(s[i]) - nz(l[i])) / nz(s[i]), percent that times 100; 0 where nz(s[i]) is 0
void VolumeOscillator(View volume, Count shortPeriods, Count longPeriods, Count maType, Count pointsOrPercent,
                      Out out);

/// Change in percent of the averaged range of the bars.
/// formula: (a - b) / a * -100, a = nz(m[i - rateOfChange]), b = nz(m[i]), m the moving average of high - low
/// batch: both periods 1 <= p < rows; rows from rateOfChange + 1; null where a or b is 0
/// resumable: both periods 1 <= p <= rows; rows from the lead of m plus rateOfChange; 0 where a is 0
void ChaikinVolatility(const Prices& prices, Count p, Count rateOfChange, Count maType, Out out);

/// Change of the price in percent against p rows before.
/// formula: (in[i] - base) / base * 100, base = in[i - p]
/// batch: 1 <= p < rows; first row p + 1; null where the base is not above 0
/// resumable: 1 <= p <= rows; first row lead + p; 0 where the base is 0
void PriceRateOfChange(View in, Count p, Out out);

/// Change of volume in percent against p rows before: the price rate of change, of a volume series.
/// formula: (in[i] - base) / base * 100, base = in[i - p]
/// batch: 1 <= p < rows; first row p + 1; null where the base is not above 0
/// resumable: 1 <= p <= rows; first row lead + p; 0 where the base is 0
void VolumeRateOfChange(View in, Count p, Out out);

/// How far the middle of the bars moves for the volume it takes, as a simple average over p rows, whatever
/// the moving average type.
/// formula: SMA(e * 10000, p), e = mid / box, mid = (high[i] + low[i]) / 2 - (high[i-1] + low[i-1]) / 2,
///   box = volume[i] / (high[i] - low[i])
/// batch: 1 <= p < rows; e from row 2; box and e start as 0 and keep their last value where the divisor is 0
/// resumable: 1 <= p <= rows; e from row 1; box and e are 0 where the divisor is 0
void EaseOfMovement(const Prices& prices, Count p, Count maType, Out out);

/// Running total of the close's distance to the true low on a rise, to the true high on a fall.
/// formula: nz(out[i-1]) + close[i] - min(low[i], close[i-1]) if close[i] > close[i-1],
///   nz(out[i-1]) + close[i] - max(high[i], close[i-1]) if less, else nz(out[i-1])
/// batch: rows from 2
/// resumable: rows from 1
void WilliamsAccumulationDistribution(const Prices& prices, Out out);

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status OnBalanceVolume(Source in, Source volume, Target out);
Status PriceVolumeTrend(WorkStore& store, Source in, Source volume, Target out);
Status PositiveVolumeIndex(Source in, Source volume, Target out);
Status NegativeVolumeIndex(Source in, Source volume, Target out);
Status PerformanceIndex(Source in, Target out);
Status TradeVolumeIndex(WorkStore& store, Source in, Source volume, double minimumTick, Target out);
Status MoneyFlowIndex(const PriceSources& prices, Count p, Target out);
Status ChaikinMoneyFlow(WorkStore& store, const PriceSources& prices, Count p, Target out);
Status VolumeOscillator(WorkStore& store, Source volume, Count shortPeriods, Count longPeriods, Count maType,
                        Count pointsOrPercent, Target out);
Status ChaikinVolatility(WorkStore& store, const PriceSources& prices, Count p, Count rateOfChange,
                         Count maType, Target out);
Status PriceRateOfChange(Source in, Count p, Target out);
Status VolumeRateOfChange(Source in, Count p, Target out);
Status EaseOfMovement(WorkStore& store, const PriceSources& prices, Count p, Count maType, Target out);
Status WilliamsAccumulationDistribution(const PriceSources& prices, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
