#include <algorithm>
#include <cmath>

#include "indicators/cycles.hpp"
#include "indicators/moving_averages.hpp"
#include "plain_averages.hpp"

/// Oscillators built on cycles, fractals, prime numbers and ratios.
namespace brindlewort::bench {
namespace {

constexpr Count kPeriod = 14, kLevels = 9, kFirst = 7, kSecond = 14, kThird = 28;

// ---- Textbook loops -----------------------------------------------------------------------------------

void plainFractal(const Bars& b, Out out) {
  const auto& h = b.high;
  const auto& l = b.low;
  for (std::size_t i = 4; i < h.size(); ++i) {
    const bool top = h[i - 4] < h[i - 2] && h[i - 3] < h[i - 2] && h[i - 1] <= h[i - 2] && h[i] <= h[i - 2];
    const bool bottom =
        l[i - 4] > l[i - 2] && l[i - 3] > l[i - 2] && l[i - 1] >= l[i - 2] && l[i] >= l[i - 2];
    out[i] = bottom ? -1.0 : top ? 1.0 : 0.0;
  }
}

bool plainIsPrime(int v) {
  for (int divisor = 2; divisor * divisor <= v; ++divisor) {
    if (v % divisor == 0) return false;
  }
  return true;
}

void plainPrimes(View in, Out out) {
  for (Count i = 0; i < rowsOf(in); ++i) {
    const int v = static_cast<int>(in[i]);
    int lower = v, upper = v;
    while (!plainIsPrime(lower)) --lower;
    while (!plainIsPrime(upper)) ++upper;
    out[i] = v - lower > upper - v ? v - upper : v - lower;
  }
}

void plainRainbow(View in, Out out) {
  const std::vector<double> m = plainSimple(in, kLevels);
  for (Count i = kLevels; i < rowsOf(in); ++i) {
    double total = 0.0;
    for (Count level = 2; level <= kLevels; ++level) total += in[i] - m[i];
    out[i] = total / kLevels;
  }
}

void plainUltimate(const Bars& b, Out out) {
  const Count n = rowsOf(b.close);
  std::vector<double> bp(b.close.size()), tr(b.close.size());
  for (Count i = 1; i < n; ++i) {
    const double trueLow = std::min(b.low[i], b.close[i - 1]);
    bp[i] = b.close[i] - trueLow;
    tr[i] = std::max(b.high[i], b.close[i - 1]) - trueLow;
  }
  const auto share = [&](Count i, Count p) {
    double s = 0.0, t = 0.0;
    for (Count j = i - p + 1; j <= i; ++j) {
      s += bp[j];
      t += tr[j];
    }
    return s / t;
  };
  for (Count i = kThird + 1; i < n; ++i) {
    out[i] = (share(i, kFirst) * 4 + share(i, kSecond) * 2 + share(i, kThird)) / 7 * 100;
  }
}

void plainComparison(const Bars& b, Out out) {
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = b.close[i] / b.open[i];
}

void plainFisher(View in, Out out) {
  double value = 0.0, fisher = 0.0;
  for (Count i = kPeriod; i < rowsOf(in); ++i) {
    const double max = plainHighest(in, i - kPeriod + 1, i), min = plainLowest(in, i - kPeriod + 1, i);
    value = ((in[i] - min) / (max - min) - 0.5) * 2 * 0.33 + 0.67 * value;
    const double held = std::clamp(value, -0.999, 0.999);
    fisher = 0.5 * std::log10((1 + held) / (1 - held)) + 0.5 * fisher;
    out[i] = fisher;
  }
}

// ---- Rows ---------------------------------------------------------------------------------------------

void registerPriceCycles() {
  batchRow("FCO/engine",
           [](const Bars& b, Out o) { CFeedkit::FractalChaosOscillator(b.prices(), kPeriod, o); });
  batchRow("FCO/plain", [](const Bars& b, Out o) { plainFractal(b, o); });
  resumedRow("FCO/resumed", [](WorkStore&, const PriceSources& p, Target o) {
    CTechnicalFunctions::FractalChaosOscillator(p, kPeriod, o);
  });
  batchRow("ULTOSC/engine", [](const Bars& b, Out o) {
    CFeedkit::ULTIMATEOSCILLATOR(b.prices(), kFirst, kSecond, kThird, o);
  });
  batchRow("ULTOSC/plain", [](const Bars& b, Out o) { plainUltimate(b, o); });
  resumedRow("ULTOSC/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::ULTIMATEOSCILLATOR(s, p, kFirst, kSecond, kThird, o);
  });
}

void registerSeriesCycles() {
  batchRow("PNO/engine", [](const Bars& b, Out o) { CFeedkit::PrimeNumberOscillator(b.close, o); });
  batchRow("PNO/plain", [](const Bars& b, Out o) { plainPrimes(b.close, o); });
  resumedRow("PNO/resumed", [](WorkStore&, const PriceSources& p, Target o) {
    CTechnicalFunctions::PrimeNumberOscillator(p.close, o);
  });
  batchRow("RBO/engine", [](const Bars& b, Out o) {
    std::fill(o.begin(), o.end(), NULL_VALUE);
    CFeedkit::RainbowOscillator(b.close, kLevels, kSimple, o);
  });
  batchRow("RBO/plain", [](const Bars& b, Out o) { plainRainbow(b.close, o); });
  resumedRow("RBO/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::RainbowOscillator(s, p.close, kLevels, kSimple, o);
  });
  batchRow("CRSI/engine",
           [](const Bars& b, Out o) { CFeedkit::ComparativeRelativeStrength(b.close, b.open, o); });
  batchRow("CRSI/plain", [](const Bars& b, Out o) { plainComparison(b, o); });
  resumedRow("CRSI/resumed", [](WorkStore&, const PriceSources& p, Target o) {
    CTechnicalFunctions::ComparativeRelativeStrength(p.close, p.open, o);
  });
  batchRow("FST/engine", [](const Bars& b, Out o) { CFeedkit::FISHERTRANSFORM(b.close, kPeriod, o); });
  batchRow("FST/plain", [](const Bars& b, Out o) { plainFisher(b.close, o); });
  resumedRow("FST/resumed", [](WorkStore& s, const PriceSources& p, Target o) {
    CTechnicalFunctions::FISHERTRANSFORM(s, p.close, kPeriod, o);
  });
}

[[maybe_unused]] const bool kRegistered = (registerPriceCycles(), registerSeriesCycles(), true);

}  // namespace
}  // namespace brindlewort::bench
