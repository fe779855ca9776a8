#include "indicators/range_count.hpp"

#include <functional>

#include "indicators/compute_rows.hpp"
#include "indicators/flag_sums.hpp"

namespace brindlewort {
namespace {

/// 1 where the step into row i goes the way of `Compare`, else 0.
template <class Compare>
double stepFlag(View in, Count i) {
  return Compare{}(nz(in[i]), nz(in[i - 1])) ? 1.0 : 0.0;
}

template <class Compare>
void countSteps(View in, Count p, Count firstStep, Out out) {
  const Count n = rowsOf(in);
  if (!batchRange(p, n)) return;
  std::vector<double> flags(in.size(), 0.0);
  for (Count i = firstStep; i < n; ++i) flags[i] = stepFlag<Compare>(in, i);
  sumFlags(flags, p, p, n, out);
}

template <class Compare>
Status countSteps(WorkStore& store, std::string_view workName, Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count firstStep = firstValueIndex(in.rows) + 1;
  const WorkField flags = store.field(workName, {in, p});
  computeRows(flags, firstStep, n, [=](Count i) { return stepFlag<Compare>(in.rows, i); });
  const Count start = startRow(out, firstStep + p - 1);
  if (start >= n) return kNothingDone;
  sumFlags(flags.rows, p, start, n, out.rows);
  return finish(out, n);
}

using Rises = std::greater<double>;
using Falls = std::less<double>;

}  // namespace

namespace CFeedkit {

void RANGEUPCOUNT(View in, Count p, Out out) {
  countSteps<Rises>(in, p, 1, out);
}

void RANGEDOWNCOUNT(View in, Count p, Out out) {
  countSteps<Falls>(in, p, 2, out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status RANGEUPCOUNT(WorkStore& store, Source in, Count p, Target out) {
  return countSteps<Rises>(store, "RUPCOUNT_temp", in, p, out);
}

Status RANGEDOWNCOUNT(WorkStore& store, Source in, Count p, Target out) {
  return countSteps<Falls>(store, "RDNCOUNT_temp", in, p, out);
}

}  // namespace CTechnicalFunctions
}  // namespace brindlewort
