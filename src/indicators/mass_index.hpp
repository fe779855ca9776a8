#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

namespace CFeedkit {

/// The mass index: widening and narrowing of the bars' ranges, as a sum over `p` rows of the ratio between
/// their exponential average and the average of that average.
/// formula: sum over the p rows j ending at i of nz(e1[j]) / nz(e2[j]), rows with e2 of 0 adding nothing;
///   e1 = EMA(high - low, 9), e2 = EMA(e1, 9)
/// batch: 1 <= p < rows; first row 2 * p; warm-up rows of the averages add nothing
/// resumable: 1 <= p < rows; first row the higher lead of e1 and e2 plus p
void MassIndex(const Prices& prices, Count p, Out out);

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status MassIndex(WorkStore& store, const PriceSources& prices, Count p, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
