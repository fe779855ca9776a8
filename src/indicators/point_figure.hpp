#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

/// Which series of the point and figure machine is wanted: the boxes of the rising column, those of the
/// falling column, or the direction of the present column (1 rising, 0 falling).
enum class PointFigureLine { kX, kO, kDirection };

namespace CFeedkit {

/// An exponential smoothing; this form of the point and figure functions draws no chart, and all three of
/// them give this series.
/// formula: out[i] = nz(source[i]) * boxSize + nz(out[i-1]) * (1 - boxSize)
/// batch: needs reversal >= 1 and reversal + 1 < n; row reversal + 1 holds the mean of rows 2 to reversal + 1
void PointFigureSmooth(View source, double boxSize, Count reversal, Out out);

}  // namespace CFeedkit

namespace CTechnicalFunctions {

/// The columns of a point and figure chart: how many boxes the rising (X) and the falling (O) column have,
/// and which of them the price is in. A column's count stays while the other one grows.
/// formula: a column grows by the whole boxes of boxSize that the price moves on, and ends when the price
///   comes back by reversal * boxSize or more; prices compare at four decimals
/// resumable: boxSize above 0; rows from 0, the direction from row 1 and from the first column on; draws the
///   chart again from row 0 and writes the rows from the last computed one
///
/// No work series are kept, so the store is not used.
Status PointFigure(WorkStore& store, Source first, Source second, double boxSize, Count reversal,
                   PointFigureLine line, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
