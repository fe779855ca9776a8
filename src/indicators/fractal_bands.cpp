#include "indicators/bands.hpp"

namespace brindlewort {
namespace {

constexpr Count kFractalRows = 5;       // two bars, the one that stands out, two bars
constexpr Count kDefaultPeriods = 100;  // for periods below 1

/// The four rows around row i - 2.
constexpr Count kNeighbours[] = {4, 3, 1, 0};

bool isFractalHigh(View high, Count i) {
  for (Count back : kNeighbours) {
    if (!(high[i - back] < high[i - 2])) return false;
  }
  return true;
}

bool isFractalLow(View low, Count i) {
  for (Count back : kNeighbours) {
    if (!(low[i - back] >= low[i - 2])) return false;
  }
  return true;
}

}  // namespace

namespace CTechnicalFunctions {

Status FractalChaosBands(WorkStore& store, const PriceSources& prices, Count p, Band band, Target out) {
  if (band == Band::kMiddle) return kNothingDone;
  const bool top = band == Band::kTop;
  const Source& in = top ? prices.high : prices.low;
  const Count n = rowsOf(in, out);
  const Count start = startRow(out, kFractalRows - 1);
  if (start >= n) return kNothingDone;

  const WorkField chaos = store.field(top ? "Fractal_High" : "Low_High", {in, p < 1 ? kDefaultPeriods : p});
  const auto isFractal = top ? isFractalHigh : isFractalLow;
  for (Count i = startRow(chaos, kFractalRows - 1); i < n; ++i) {
    chaos.rows[i] = isFractal(in.rows, i) ? in.rows[i - 2] : chaos.rows[i - 1];
  }
  finish(chaos, n);
  for (Count i = start; i < n; ++i) out.rows[i] = chaos.rows[i];
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
