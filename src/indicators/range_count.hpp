#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

namespace CFeedkit {
/// How many of the last p steps of a series rise.
/// formula: number of rows j from i - p + 1 to i with in[j] > in[j - 1]
/// batch: 1 <= p < n; steps from row 1; rows from p.
/// resumable: 1 <= p <= n; steps from lead + 1; rows from lead + p.
void RANGEUPCOUNT(View in, Count p, Out out);

/// How many of the last p steps of a series fall.
/// formula: number of rows j from i - p + 1 to i with in[j] < in[j - 1]
/// batch: 1 <= p < n; steps from row 2, so that the step into row 1 never counts; rows from p.
/// resumable: 1 <= p <= n; steps from lead + 1; rows from lead + p.
void RANGEDOWNCOUNT(View in, Count p, Out out);
}  // namespace CFeedkit

namespace CTechnicalFunctions {
Status RANGEUPCOUNT(WorkStore& store, Source in, Count p, Target out);
Status RANGEDOWNCOUNT(WorkStore& store, Source in, Count p, Target out);
}  // namespace CTechnicalFunctions

}  // namespace brindlewort
