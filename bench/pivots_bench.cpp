// Price bases, pivots, swing index and mass index: the batch form beside a plain loop of the textbook
// formula, and the resumable form with one more bar.

#include <algorithm>
#include <cmath>
#include <string>

#include "bench_support.hpp"
#include "indicators/mass_index.hpp"
#include "indicators/pivots.hpp"
#include "indicators/price_bases.hpp"
#include "indicators/swing_index.hpp"

namespace brindlewort::bench {

namespace {

constexpr Count kPeriod = 20;
constexpr double kLimitMove = 3.0;

namespace batch = CFeedkit;
namespace resumable = CTechnicalFunctions;

// ---- Textbook loops -----------------------------------------------------------------------------------

template <class Formula>
void plainRows(Out out, std::size_t first, Formula formula) {
  for (std::size_t i = first; i < out.size(); ++i) out[i] = formula(i);
}

double plainSwing(const Bars& b, std::size_t i) {
  const double before = b.close[i - 1], body = std::fabs(before - b.open[i - 1]) * 0.25;
  const double up = std::fabs(b.high[i] - before), down = std::fabs(b.low[i] - before);
  const double range = b.high[i] - b.low[i];
  double r = range + body;
  if (up >= down && up >= range) {
    r = up - down * 0.5 + body;
  } else if (down >= range) {
    r = down - up * 0.5 + body;
  }
  const double move = b.close[i] - before + (b.close[i] - b.open[i]) * 0.5 + (before - b.open[i - 1]) * 0.25;
  return r == 0.0 ? 0.0 : 50.0 * move / r * std::max(up, down) / kLimitMove;
}

void plainAverage(const std::vector<double>& in, std::vector<double>& out) {
  double e = out[0] = in[0];
  for (std::size_t i = 1; i < in.size(); ++i) out[i] = e = e * 0.8 + in[i] * 0.2;
}

void plainMass(const Bars& b, Out out) {
  std::vector<double> range(out.size()), once(out.size()), twice(out.size());
  plainRows(range, 0, [&](std::size_t i) { return b.high[i] - b.low[i]; });
  plainAverage(range, once);
  plainAverage(once, twice);
  for (std::size_t i = kPeriod; i < out.size(); ++i) {
    double sum = 0.0;
    for (std::size_t j = i - kPeriod + 1; j <= i; ++j) sum += once[j] / twice[j];
    out[i] = sum;
  }
}

// ---- Rows ---------------------------------------------------------------------------------------------

using In = const PriceSources&;

/// The three rows of one indicator.
template <class Engine, class Plain, class Resumed>
void rows(const std::string& name, Engine engine, Plain plain, Resumed resumed) {
  batchRow((name + "/engine").c_str(), engine);
  batchRow((name + "/plain").c_str(), plain);
  resumedRow((name + "/resumed").c_str(), resumed);
}

const bool registered = [] {
  rows(
      "MEDIANPRICE", [](const Bars& b, Out out) { batch::MEDIANPRICE(b.prices(), out); },
      [](const Bars& b, Out out) {
        plainRows(out, 0, [&](std::size_t i) { return (b.high[i] + b.low[i]) / 2.0; });
      },
      [](WorkStore&, In p, Target out) { resumable::MEDIANPRICE(p, out); });
  rows(
      "TypicalPrice", [](const Bars& b, Out out) { batch::TypicalPrice(b.prices(), out); },
      [](const Bars& b, Out out) {
        plainRows(out, 0, [&](std::size_t i) { return (b.high[i] + b.low[i] + b.close[i]) / 3.0; });
      },
      [](WorkStore&, In p, Target out) { resumable::TypicalPrice(p, out); });
  rows(
      "HIGHMINUSLOW", [](const Bars& b, Out out) { batch::HIGHMINUSLOW(b.prices(), out); },
      [](const Bars& b, Out out) { plainRows(out, 0, [&](std::size_t i) { return b.high[i] - b.low[i]; }); },
      [](WorkStore&, In p, Target out) { resumable::HIGHMINUSLOW(p, out); });
  rows(
      "WeightedClose", [](const Bars& b, Out out) { batch::WeightedClose(b.prices(), out); },
      [](const Bars& b, Out out) {
        plainRows(out, 0, [&](std::size_t i) { return (2.0 * b.close[i] + b.high[i] + b.low[i]) / 4.0; });
      },
      [](WorkStore&, In p, Target out) { resumable::WeightedClose(p, out); });
  resumedRow("SPREAD/resumed", [](WorkStore&, In p, Target out) { resumable::SPREAD(p.close, p.open, out); });
  resumedRow("COMPOSITE/resumed",
             [](WorkStore&, In p, Target out) { resumable::COMPOSITE(p.close, p.open, 0.5, 2.0, out); });
  rows(
      "PIVOT", [](const Bars& b, Out out) { batch::PIVOT(b.prices(), PivotLevel::kRes1, out); },
      [](const Bars& b, Out out) {
        plainRows(out, 1, [&](std::size_t i) {
          return 2.0 * (b.high[i - 1] + b.low[i - 1] + b.close[i - 1]) / 3.0 - b.low[i - 1];
        });
      },
      [](WorkStore&, In p, Target out) { resumable::PIVOT(p, PivotLevel::kRes1, out); });
  rows(
      "SwingIndex", [](const Bars& b, Out out) { batch::SwingIndex(b.prices(), kLimitMove, out); },
      [](const Bars& b, Out out) { plainRows(out, 1, [&](std::size_t i) { return plainSwing(b, i); }); },
      [](WorkStore& store, In p, Target out) { resumable::SwingIndex(store, p, kLimitMove, out); });
  rows(
      "AccumulativeSwingIndex",
      [](const Bars& b, Out out) { batch::AccumulativeSwingIndex(b.prices(), kLimitMove, out); },
      [](const Bars& b, Out out) {
        double total = 0.0;
        plainRows(out, 1, [&](std::size_t i) { return total += plainSwing(b, i); });
      },
      [](WorkStore& store, In p, Target out) {
        resumable::AccumulativeSwingIndex(store, p, kLimitMove, out);
      });
  rows(
      "MassIndex", [](const Bars& b, Out out) { batch::MassIndex(b.prices(), kPeriod, out); }, plainMass,
      [](WorkStore& store, In p, Target out) { resumable::MassIndex(store, p, kPeriod, out); });
  return true;
}();

}  // namespace

}  // namespace brindlewort::bench
