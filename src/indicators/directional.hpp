#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

/// Which line of the directional movement is wanted.
enum class DirectionalLine { kAdx, kAdxr, kDx, kTrSum, kDiMinus, kDiPlus };

namespace CFeedkit {
/// Directional movement: how strongly a series trends (DX, smoothed as ADX, smoothed once more as ADXR), from
/// the share of upward (DI+) and downward (DI-) movement in the smoothed true range (TRSUM). The second and
/// third period smooth the two sides; 0 stands for an absent one and takes p.
/// formula: up = high[i] - high[i - 1], dn = low[i - 1] - low[i], each counted only where it is positive and
///   the greater; TRSUM = WellesWilderSmoothing(TrueRange, p); DI+ = WellesWilderSmoothing(up) * 100 / TRSUM,
///   DI- likewise of dn; DX = |DI+ - DI-| * 100 / (DI+ + DI-); ADX = (ADX[i - 1] * (p - 1) + DX[i]) / p;
///   ADXR = (ADX[i] + ADX[i - 1]) / 2
/// batch: all periods 1 to n; the second period smooths the down side, the third the up side; DI and DX from
///   row 2, null where a divisor is 0; DX as |DI+ - DI-| / (DI+ + DI-) * 100; ADX and ADXR from p + 1, the
///   ADX rising from 0 without a seed.
/// resumable: all periods 1 to n; the second period smooths the up side, the third the down side; DI and DX
///   from the higher lead of the two smoothed sides, 0 where a divisor is 0; ADX and ADXR p - 1 rows later,
///   the ADX from the mean of the first p rows of DX.
void DirectionalMovement(const Prices& prices, Count p, Count secondPeriods, Count thirdPeriods,
                         DirectionalLine line, Out out);
}  // namespace CFeedkit

namespace CTechnicalFunctions {
/// `callText` is the call as the script writes it, "ADX(14, 7, 7)": what stands behind its first "(" names
/// the work series, so that calls of the family with the same arguments share them.
Status DirectionalMovement(WorkStore& store, const PriceSources& prices, Count p, Count secondPeriods,
                           Count thirdPeriods, DirectionalLine line, std::string_view callText, Target out);
}  // namespace CTechnicalFunctions

}  // namespace brindlewort
