#pragma once

#include "indicators/frame.hpp"

/// Convergence and divergence of two moving averages of the close.
namespace brindlewort {

/// Which line of MACD is wanted: the difference of the averages, or the average of the difference.
enum class MacdLine { kDifference, kSignal };

/// Batch form. `out` has the rows of the prices, all NULL_VALUE, and is no view of them. A period out of
/// range (1 <= p < n) leaves it all null.
namespace CFeedkit {
/// A short moving average of the close less a long one, and a moving average of this difference as its
/// signal. A moving average type below 1 counts as EXPONENTIAL.
/// formula: MA(close, shortCycle) - MA(close, longCycle); signal MA(difference, signalPeriods)
/// batch: a signal as long as the short cycle is made one longer; the difference is 0 up to row
///   longCycle, the signal below row longCycle * 2.25 + 1, both from row 1.
/// resumable: from the first row that both averages have, the signal from its own first row over that;
///   recomputes the last row.
void MACD(const Prices& prices, Count shortCycle, Count longCycle, Count signalPeriods, Count maType,
          MacdLine line, Out out);
}  // namespace CFeedkit

/// Resumable form. The periods must pass 1 <= p <= n.
namespace CTechnicalFunctions {
Status MACD(WorkStore& store, const PriceSources& prices, Count shortCycle, Count longCycle,
            Count signalPeriods, Count maType, MacdLine line, Target out);

/// The distance of MACD from its signal. A moving average type below 1 counts as EXPONENTIAL.
/// formula: difference - MA(difference, signalPeriods) with difference = MA(close, shortCycle) -
///   MA(close, longCycle)
/// resumable: from the first row of the signal; recomputes the last row.
Status MACDHISTOGRAM(WorkStore& store, const PriceSources& prices, Count shortCycle, Count longCycle,
                     Count signalPeriods, Count maType, Target out);
}  // namespace CTechnicalFunctions

}  // namespace brindlewort
