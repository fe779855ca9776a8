#include "indicators/source_rows.hpp"
#include "indicators/volume.hpp"

/// Indexes that compound or measure the change of the price: positive and negative volume, performance.
namespace brindlewort {

namespace {

constexpr double kIndexSeed = 1.0;

/// The index after a row on which it takes part in the relative change of the price.
double compounded(double index, double price, double priceBefore) {
  return nz(index) * (nz(price) - nz(priceBefore)) / nz(priceBefore) + nz(index);
}

double finiteOrNull(double x) {
  return IsFiniteDouble(x) ? x : NULL_VALUE;
}

bool rose(View volume, Count i) {
  return volume[i - 1] < volume[i];
}
bool fell(View volume, Count i) {
  return volume[i - 1] > volume[i];
}

/// Rows [first, last) of an index, each from the row before: out[i] = step(i, out[i - 1]).
template <class Step>
void chain(Count first, Count last, Out out, Step step) {
  for (Count i = first; i < last; ++i) out[i] = step(i, out[i - 1]);
}

template <class Step>
void chainFromRowOne(View in, View volume, Out out, Step step) {
  if (in.size() != volume.size() || in.size() < 2) return;
  out[1] = kIndexSeed;
  chain(2, rowsOf(in), out, step);
}

template <class Step>
Status resumeChain(Source in, Source volume, Target out, Step step) {
  if (in.rows.size() != volume.rows.size()) return kNothingDone;
  const Count n = rowsOf(in, out);
  const Count first = higherLead(in.rows, volume.rows) + 1, start = startRow(out, first);
  if (start >= n) return kNothingDone;
  if (start == first) out.rows[first - 1] = kIndexSeed;
  chain(start, n, out.rows, step);
  return finish(out, n);
}

/// Rows [first, last) in percent of their distance from the base.
void measure(View in, double base, Count first, Count last, Out out) {
  for (Count i = first; i < last; ++i) out[i] = (nz(in[i]) - base) / base * 100.0;
}

}  // namespace

namespace CFeedkit {

void PositiveVolumeIndex(View in, View volume, Out out) {
  chainFromRowOne(in, volume, out, [=](Count i, double index) {
    return rose(volume, i) ? compounded(index, in[i], in[i - 1]) : index;
  });
}

void NegativeVolumeIndex(View in, View volume, Out out) {
  chainFromRowOne(in, volume, out, [=](Count i, double index) {
    return fell(volume, i) ? finiteOrNull(compounded(index, in[i], in[i - 1])) : index;
  });
}

void PerformanceIndex(View in, Out out) {
  if (in.size() < 2) return;
  const double base = nz(in[1]);
  if (base != 0.0) measure(in, base, 2, rowsOf(in), out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status PositiveVolumeIndex(Source in, Source volume, Target out) {
  const View price = in.rows, shares = volume.rows;
  return resumeChain(in, volume, out, [=](Count i, double index) {
    if (nz(price[i - 1]) == 0.0 || nz(index) == 0.0) return nz(index);
    return rose(shares, i) ? compounded(index, price[i], price[i - 1]) : index;
  });
}

Status NegativeVolumeIndex(Source in, Source volume, Target out) {
  const View price = in.rows, shares = volume.rows;
  return resumeChain(in, volume, out, [=](Count i, double index) {
    if (!fell(shares, i)) return index;
    if (nz(price[i - 1]) * nz(index) == 0.0) return 0.0;
    return finiteOrNull(compounded(index, price[i], price[i - 1]));
  });
}

Status PerformanceIndex(Source in, Target out) {
  const Count n = rowsOf(in, out);
  const Count lead = firstValueIndex(in.rows), start = startRow(out, lead + 1);
  if (start >= n) return kNothingDone;
  const double base = nz(in.rows[lead]);
  if (base == 0.0) return kNothingDone;
  measure(in.rows, base, start, n, out.rows);
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
