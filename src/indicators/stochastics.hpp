#pragma once

#include "indicators/frame.hpp"

/// Oscillators that place the close within the range of the last bars.
namespace brindlewort {

/// Batch form. `out` has the rows of the prices, all NULL_VALUE, and is no view of them.
namespace CFeedkit {
/// %K of the stochastic oscillator: where the close stands between the lowest low and the highest high,
/// in percent, smoothed over kSlowing rows. All three periods must pass 1 <= x <= n.
/// formula: K = MA(raw, kSlowing) with raw = (close - lowest) / (highest - lowest) * 100 over kPeriods
///   rows
/// batch: raw from row kPeriods + 1, null where highest = lowest; K is raw itself for a slowing of 1.
/// resumable: raw from row kPeriods - 1, 0 where highest = lowest; all null for a slowing of 1;
///   recomputes the last row.
void SOPK(const Prices& prices, Count kPeriods, Count kSlowing, Count dPeriods, Count maType, Out out);

/// %D of the stochastic oscillator: a moving average of its %K.
/// formula: MA(K, dPeriods) with K as of SOPK
/// batch: the average's own first row over K.
/// resumable: dPeriods - 1 rows after the first of K; all null for a slowing of 1; recomputes the last
///   row.
void SOPD(const Prices& prices, Count kPeriods, Count kSlowing, Count dPeriods, Count maType, Out out);

/// %K of the stochastic momentum index: the distance of the close from the middle of the range, in
/// percent of half the range, both smoothed twice. Periods must pass 1 <= x <= n; moving average types
/// below 1 count as EXPONENTIAL.
/// formula: MA(MA(close - (highest + lowest) * 0.5)) / (MA(MA(highest - lowest)) * 0.5) * 100
/// batch: the range of the kPeriods rows before the present one; smoothed over kSmooth + 1 rows, then
///   over kDouble rows if above 1, with maType; rows from kPeriods + 1, null where the range is 0.
/// resumable: the range of the kPeriods rows up to the present one; smoothed over kSmooth, then kDouble
///   rows, each if above 1, with dMaType; from the first row of the smoothed series, 0 where the range
///   is 0; recomputes the last row.
void SMIK(const Prices& prices, Count kPeriods, Count kSmooth, Count kDouble, Count dPeriods, Count maType,
          Count dMaType, Out out);

/// %D of the stochastic momentum index: a moving average of its %K.
/// formula: MA(K, dPeriods) with K as of SMIK; nothing for dPeriods of 1
/// batch: averages with dMaType; that average's own first row over K.
/// resumable: averages with maType; dPeriods - 1 rows after the first of K; recomputes the last row.
void SMID(const Prices& prices, Count kPeriods, Count kSmooth, Count kDouble, Count dPeriods, Count maType,
          Count dMaType, Out out);

/// How far the close stands below the highest high, in percent of the range, from -100 to 0.
/// formula: (highest - close) / (highest - lowest) * -100 over p rows; the highest is at least 0
/// batch: first row p + 1, where the lowest starts from the low of row p + 2; null where highest =
///   lowest.
/// resumable: first row lead + p - 1, the lead being the highest one of high, low and close; 0 where
///   highest = lowest; recomputes the last row.
void WilliamsPctR(const Prices& prices, Count p, Out out);
}  // namespace CFeedkit

/// Resumable form. The periods must pass 1 <= x <= n.
namespace CTechnicalFunctions {
Status SOPK(WorkStore& store, const PriceSources& prices, Count kPeriods, Count kSlowing, Count dPeriods,
            Count maType, Target out);
Status SOPD(WorkStore& store, const PriceSources& prices, Count kPeriods, Count kSlowing, Count dPeriods,
            Count maType, Target out);
Status SMIK(WorkStore& store, const PriceSources& prices, Count kPeriods, Count kSmooth, Count kDouble,
            Count dPeriods, Count maType, Count dMaType, Target out);
Status SMID(WorkStore& store, const PriceSources& prices, Count kPeriods, Count kSmooth, Count kDouble,
            Count dPeriods, Count maType, Count dMaType, Target out);
Status WilliamsPctR(const PriceSources& prices, Count p, Target out);
}  // namespace CTechnicalFunctions

}  // namespace brindlewort
