#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

namespace CFeedkit {

/// The swing index: how far a bar moved against the bar before it, weighed by the true height of the move
/// and by the limit move of the market.
/// formula: ((C - C1) + (C - O) * 0.5 + (C1 - O1) * 0.25) / r * 50 * max(a, b) / limitMove,
///   with O1 and C1 the open and close before, a = |high - C1|, b = |low - C1|, c = |high - low|; r follows
///   the largest of the three, the earlier of equals: a - b * 0.5 + |C1 - O1| * 0.25 (a), b - a * 0.5 + |C1
///   - O1| * 0.25 (b), c + |C1 - O1| * 0.25 (c); 0 when r is 0
/// batch: rows from 2; all null for a limit move of 0
/// resumable: rows from 1; 0 for a limit move of 0
void SwingIndex(const Prices& prices, double limitMove, Out out);

/// The running sum of the swing index.
/// formula: nz(SwingIndex[i]) + nz(out[i-1])
/// batch: rows from 2
/// resumable: rows from 1
void AccumulativeSwingIndex(const Prices& prices, double limitMove, Out out);

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status SwingIndex(WorkStore& store, const PriceSources& prices, double limitMove, Target out);
Status AccumulativeSwingIndex(WorkStore& store, const PriceSources& prices, double limitMove, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
