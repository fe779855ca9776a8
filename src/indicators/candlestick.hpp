#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

namespace CFeedkit {

/// Tells whether the requested candlestick pattern (1 to 29) stands at the newest bar: the type of that bar's
/// candle, which is the requested type, a type that the pattern is made of (a long body, a doji, a hammer or
/// a star), or 0. The last three bars are looked at; bars whose high, low or close is 0 are passed over.
/// formula: each pattern has tests of its own on open, high, low and close of the last three bars; a body
///   is long beyond the average true range of 15 bars, as it stood a bar before
/// batch: needs n > 3; the average true range is that of the last 20 usable bars by themselves
/// resumable: needs n >= 3; rows from 2, each holding the type of the newest candle at that row; the average
///   true range is that of all rows; recomputes three rows
int CandlestickPattern(const Prices& prices, int requested);

/// Row i holds 1.0 when CandlestickPattern of the bars up to row i answers `requested`, else 0.0.
void CandlestickPatternRows(const Prices& prices, int requested, Out out);

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status CandlestickPattern(WorkStore& store, const PriceSources& prices, int requested, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
