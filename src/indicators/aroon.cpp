#include "indicators/aroon.hpp"

#include <cmath>
#include <functional>

#include "indicators/compute_rows.hpp"
#include "indicators/source_rows.hpp"

namespace brindlewort {
namespace {

/// The candidates for the extreme of a moving window, best first. A row drops out as soon as a later row
/// outlasts it, so that the candidates cost a constant amount of work per row, whatever the window.
template <class Outlasts>
class Candidates {
 public:
  explicit Candidates(View in) : in_(in) {}

  void add(Count row) {
    if (std::isnan(in_[row])) return;  // a non-number beats nothing
    while (rows_.size() > best_ && Outlasts{}(in_[row], in_[rows_.back()])) rows_.pop_back();
    rows_.push_back(row);
  }
  void dropBefore(Count row) {
    while (best_ < rows_.size() && rows_[best_] < row) ++best_;
  }
  bool empty() const { return best_ == rows_.size(); }
  Count best() const { return rows_[best_]; }

 private:
  View in_;
  std::vector<Count> rows_;
  std::size_t best_ = 0;
};

/// One side of the Aroon for the rows of [first, last): the present row stands as the extreme unless one of
/// the `older` rows before it beats it. `Outlasts` tells who of several equal older rows stands.
template <class Beats, class Outlasts>
void writeSide(View in, Count p, Count older, Count first, Count last, Out out) {
  const double periods = static_cast<double>(p);
  Candidates<Outlasts> candidates(in);
  for (Count j = first - older; j < first && first < last; ++j) candidates.add(j);
  for (Count i = first; i < last; ++i) {
    candidates.dropBefore(i - older);
    const bool beaten = !candidates.empty() && Beats{}(in[candidates.best()], in[i]);
    const Count age = beaten ? i - candidates.best() : 0;
    out[i] = (periods - static_cast<double>(age)) / periods * 100.0;
    candidates.add(i);
  }
}

}  // namespace

namespace CFeedkit {
namespace {

// Of equal older rows the oldest stands: only a better row outlasts it.
void upSide(const Prices& prices, Count p, Out out) {
  writeSide<std::greater<>, std::greater<>>(prices.high, p, p, p + 1, prices.rows(), out);
}
void downSide(const Prices& prices, Count p, Out out) {
  writeSide<std::less<>, std::less<>>(prices.low, p, p, p + 1, prices.rows(), out);
}

}  // namespace

void AROON(const Prices& prices, Count p, AroonLine line, Out out) {
  const Count n = prices.rows();
  if (p < 1 || p > n) return;
  if (line == AroonLine::kDown) return downSide(prices, p, out);
  upSide(prices, p, out);
  if (line == AroonLine::kUp) return;
  std::vector<double> down = nullRows(out.size());
  downSide(prices, p, down);
  for (Count i = p + 1; i < n; ++i) out[i] -= down[i];
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {
namespace {

Count readableRows(const PriceSources& prices, const Target& out) {
  return commonRows(out.rows, {prices.high.rows, prices.low.rows});
}

// Of equal older rows the newest stands: it outlasts its equals too.
template <class Beats, class Outlasts>
void resumeSide(View in, Count p, Count n, const Target& out) {
  const Count start = startRow(out, p - 1);
  if (start >= n) return;
  writeSide<Beats, Outlasts>(in, p, p - 1, start, n, out.rows);
  finish(out, n);
}

/// The work series of all lines; gives that of the wanted one.
WorkField aroonField(WorkStore& store, const PriceSources& prices, Count p, Count n, AroonLine line) {
  const WorkField up = store.field("AROONUP", {prices.high, prices.low, p});
  resumeSide<std::greater<>, std::greater_equal<>>(prices.high.rows, p, n, up);
  if (line == AroonLine::kUp) return up;
  const WorkField down = store.field("AROONDOWN", {prices.high, prices.low, p});
  resumeSide<std::less<>, std::less_equal<>>(prices.low.rows, p, n, down);
  if (line == AroonLine::kDown) return down;
  const WorkField oscillator = store.field("AROON", {prices.high, prices.low, p});
  computeRows(oscillator, p - 1, n, [=](Count i) { return up.rows[i] - down.rows[i]; });
  return oscillator;
}

}  // namespace

Status AROON(WorkStore& store, const PriceSources& prices, Count p, AroonLine line, Target out) {
  const Count n = readableRows(prices, out);
  if (!resumableRange(p, n)) return kNothingDone;
  return copyRows(aroonField(store, prices, p, n, line).rows, p - 1, n, out);
}

Status AROSC(WorkStore& store, const PriceSources& prices, Count p, Target out) {
  const Count n = readableRows(prices, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count first = higherLead(prices.high.rows, prices.low.rows) + p - 1;
  if (startRow(out, first) >= n) return kNothingDone;  // nor are the lines formed before there is a row
  return copyRows(aroonField(store, prices, p, n, AroonLine::kOscillator).rows, first, n, out);
}

}  // namespace CTechnicalFunctions
}  // namespace brindlewort
