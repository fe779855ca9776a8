#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

/// As moving average type of AverageTrueRange: the Wilder form. So is every other negative number.
inline constexpr Count kWilderRange = -1;

namespace CFeedkit {
/// Range of a bar, widened to the close before it.
/// formula: greatest of high[i] - low[i], |high[i] - close[i - 1]|, |close[i - 1] - low[i]|
/// batch: rows from 2.
/// resumable: rows from 1; never below 0, so a comparison with a non-number leaves 0.
void TrueRange(const Prices& prices, Out out);

/// Average of the true range: a moving average of the given type, or Wilder's own for a negative type.
/// formula: type >= 0: movingAverageByType(max(high[i], close[i - 1]) - min(low[i], close[i - 1]), p, type);
///   type < 0: ((p - 1) * out[i - 1] + TrueRange[i]) / p
/// batch: 1 <= p < n; the range from row 2; Wilder: seed SimpleMovingAverage(TrueRange, p) at row p + 1.
/// resumable: 1 <= p <= n; the range from row 1; Wilder: seed at the first value of the simple average,
///   row p.
void AverageTrueRange(const Prices& prices, Count p, Count maType, Out out);
}  // namespace CFeedkit

namespace CTechnicalFunctions {
Status TrueRange(const PriceSources& prices, Target out);
Status AverageTrueRange(WorkStore& store, const PriceSources& prices, Count p, Count maType, Target out);
}  // namespace CTechnicalFunctions

}  // namespace brindlewort
