#include "indicators/macd.hpp"

#include "indicators/compute_rows.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/source_rows.hpp"

namespace brindlewort {
namespace {

Count macdMaType(Count type) {
  return type < 1 ? Count{kExponential} : type;
}

bool cyclesInRange(Count n, std::initializer_list<Count> cycles) {
  return std::all_of(cycles.begin(), cycles.end(), [n](Count p) { return resumableRange(p, n); });
}

/// out[i] = nz(a[i]) - nz(b[i]) from the row in which both series have begun.
Status differenceOf(View a, View b, Count n, Target out) {
  return computeRows(out, higherLead(a, b), n, [=](Count i) { return nz(a[i]) - nz(b[i]); });
}

/// The names of the two averages' work series.
struct CycleNames {
  std::string_view shortAverage;
  std::string_view longAverage;
};

/// The living difference of the two averages of the close.
Status livingDifference(WorkStore& store, Source close, Count n, Count shortCycle, Count longCycle,
                        Count maType, CycleNames names, Target out) {
  const WorkField s = store.field(names.shortAverage, {close, shortCycle, KeyPart::maType(maType)});
  const WorkField l = store.field(names.longAverage, {close, longCycle, KeyPart::maType(maType)});
  CTechnicalFunctions::movingAverageByType(store, close, shortCycle, maType, s);
  CTechnicalFunctions::movingAverageByType(store, close, longCycle, maType, l);
  return differenceOf(s.rows, l.rows, n, out);
}

}  // namespace

namespace CFeedkit {

void MACD(const Prices& prices, Count shortCycle, Count longCycle, Count signalPeriods, Count maType,
          MacdLine line, Out out) {
  const Count n = prices.rows();
  if (!batchRange(shortCycle, n) || !batchRange(longCycle, n) || !batchRange(signalPeriods, n)) return;
  if (signalPeriods == shortCycle) ++signalPeriods;
  maType = macdMaType(maType);

  std::vector<double> s = nullRows(prices.close.size());
  std::vector<double> l = nullRows(prices.close.size());
  movingAverageByType(prices.close, shortCycle, maType, s);
  movingAverageByType(prices.close, longCycle, maType, l);
  std::vector<double> difference = nullRows(prices.close.size());
  for (Count i = 1; i < n; ++i) difference[i] = nz(s[i]) - nz(l[i]);

  if (line == MacdLine::kDifference) {
    for (Count i = longCycle + 1; i < n; ++i) out[i] = difference[i];
    for (Count i = 1; i <= longCycle; ++i) out[i] = 0.0;
    return;
  }
  // The signal is taken of the difference as it was formed, its head not yet set to 0.
  movingAverageByType(difference, signalPeriods, maType, out);
  for (Count i = 1; i < n && static_cast<double>(i) < static_cast<double>(longCycle) * 2.25 + 1.0; ++i) {
    out[i] = 0.0;
  }
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status MACD(WorkStore& store, const PriceSources& prices, Count shortCycle, Count longCycle,
            Count signalPeriods, Count maType, MacdLine line, Target out) {
  const Source& close = prices.close;
  const Count n = rowsOf(close, out);
  if (!cyclesInRange(n, {shortCycle, longCycle, signalPeriods})) return kNothingDone;
  maType = macdMaType(maType);
  constexpr CycleNames kNames = {"MACDEMA1", "MACDEMA2"};
  if (line == MacdLine::kDifference) {
    return livingDifference(store, close, n, shortCycle, longCycle, maType, kNames, out);
  }
  const WorkField difference = store.field("MACD", {close, shortCycle, longCycle, KeyPart::maType(maType)});
  livingDifference(store, close, n, shortCycle, longCycle, maType, kNames, difference);
  return movingAverageByType(store, difference, signalPeriods, maType, out);
}

Status MACDHISTOGRAM(WorkStore& store, const PriceSources& prices, Count shortCycle, Count longCycle,
                     Count signalPeriods, Count maType, Target out) {
  const Source& close = prices.close;
  const Count n = rowsOf(close, out);
  if (!cyclesInRange(n, {shortCycle, longCycle, signalPeriods})) return kNothingDone;
  maType = macdMaType(maType);
  const WorkField difference =
      store.field("MACDHISTOGRAM_FIELD1", {close, shortCycle, longCycle, KeyPart::maType(maType)});
  const WorkField signal =
      store.field("MACDHISTOGRAM_FIELD2", {difference, signalPeriods, KeyPart::maType(maType)});
  livingDifference(store, close, n, shortCycle, longCycle, maType, {"MACDHISTOGRAMEMA1", "MACDHISTOGRAMEMA2"},
                   difference);
  movingAverageByType(store, difference, signalPeriods, maType, signal);
  return differenceOf(difference.rows, signal.rows, n, out);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
