#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

/// Stops that trail the price and change sides when it crosses them.
namespace CFeedkit {

/// The parabolic stop and reverse. The stop moves towards the extreme of its position by the acceleration
/// factor (AF), which grows with each new extreme; a price beyond the stop turns the position.
/// formula: sar[i] = (extreme[i - 1] - sar[i - 1]) * AF[i - 1] + sar[i - 1]
/// batch: position and first stop from rows 1 and 2, so at least 3 rows; rows from 2; on a turn the stop is
/// the extreme of the row before; the AF grows while it is below maxAF and may pass it by one step
/// resumable: always starts long, at the low of row 1; rows from 1; the AF never passes maxAF; a turn back to
///   long asks for the position two rows back; recomputes from two rows before the rows done, never before
///   row 2
void ParabolicSAR(const Prices& prices, double minAF, double maxAF, Out out);

/// A stop below the price in an up trend and above it in a down trend, a multiple of the average true range
/// (Wilder form) away from the median price. It never moves away from the price; a close beyond it turns
/// the trend.
/// formula: up max(median - range * factor, stop[i - 1]), down min(median + range * factor, stop[i - 1])
/// batch: 1 <= p < n; rows from p + 1, which starts as an up trend
/// resumable: 1 <= p < n; rows from the first of the average true range; the trend is up in the row before
void SUPERTREND(const Prices& prices, Count p, double factor, Out out);

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status ParabolicSAR(WorkStore& store, const PriceSources& prices, double minAF, double maxAF, Target out);
Status SUPERTREND(WorkStore& store, const PriceSources& prices, Count p, double factor, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
