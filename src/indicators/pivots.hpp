#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

/// The levels of the floor pivots: the pivot itself, four resistances above it, four supports below it.
enum class PivotLevel { kPivot, kRes1, kRes2, kRes3, kRes4, kSup1, kSup2, kSup3, kSup4 };

namespace CFeedkit {

/// Floor pivot levels of each bar, taken from the bar before it: with P the typical price and R the
/// range of that bar, the pivot is P, and resistances and supports lie around it.
/// formula: P = (high[i-1] + low[i-1] + close[i-1]) / 3, R = high[i-1] - low[i-1];
///   PIVOT P; RES1 2*P - low[i-1]; RES2 P + R; RES3 2*R + P; RES4 3*R + P;
///   SUP1 2*P - high[i-1]; SUP2 P - R; SUP3 P - 2*R; SUP4 P - 3*R
/// batch: rows from 2
/// resumable: rows from 1
void PIVOT(const Prices& prices, PivotLevel level, Out out);

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status PIVOT(const PriceSources& prices, PivotLevel level, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
