#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

/// Which series of the percent swing is wanted.
enum class SwingLine { kLine, kDirection, kTop, kBottom };

namespace CFeedkit {

/// A step line through the highs and lows that turns when the price reverses by `percent`, and what is
/// drawn from it: its direction, and the level of the swing top or bottom `swingNumber` swings back.
/// formula: while rising, a high at or above the line lifts it to that high, a high below
///   (100 - percent) / 100 * line turns it down to the bar's low; falling is the mirror with 100 + percent.
///   %SWINGD is 1 while the line rises, 2 while it falls, the code before on flat rows. A pivot is the high
///   or low of the bar at which a direction ended; %SWINGPTOP and %SWINGPBOT hold the level of one from the
///   bar at which the turn shows
/// batch: rows from 1, none with fewer than 2 rows; %SWING gives no values at all
/// resumable: the rows of the batch form, all recomputed on each call; %SWING gives the pivots, null on
///   all other rows
void PercentSwing(const Prices& prices, double percent, Count swingNumber, SwingLine line, Out out);

}  // namespace CFeedkit

namespace CTechnicalFunctions {

/// Writes every row of the output anew, since a later bar may still move the last pivot; nothing is kept in
/// the store.
Status PercentSwing(WorkStore& store, const PriceSources& prices, double percent, Count swingNumber,
                    SwingLine line, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
