#include <algorithm>
#include <cmath>

#include "indicators/bands.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/stops.hpp"
#include "plain_averages.hpp"

/// Bands around price, and stops that trail it.
namespace brindlewort::bench {
namespace {

constexpr Count kPeriod = 20;

// ---- Textbook loops -----------------------------------------------------------------------------------

void plainDeviations(View in, Out out) {
  double sum = 0.0, squares = 0.0;
  for (Count i = 0; i < rowsOf(in); ++i) {
    sum += in[i];
    squares += in[i] * in[i];
    if (i >= kPeriod) {
      sum -= in[i - kPeriod];
      squares -= in[i - kPeriod] * in[i - kPeriod];
    }
    const double mean = sum / kPeriod;
    if (i >= kPeriod - 1) out[i] = std::sqrt(squares / kPeriod - mean * mean) * 2.0;
  }
}

void plainBollinger(View in, Out out) {
  const std::vector<double> mean = plainSimple(in, kPeriod);
  for (Count i = kPeriod - 1; i < rowsOf(in); ++i) {
    double sum = 0.0;
    for (Count j = i - kPeriod + 1; j <= i; ++j) sum += (in[j] - mean[i]) * (in[j] - mean[i]);
    out[i] = mean[i] + std::sqrt(sum / kPeriod) * 2.0;
  }
}

void plainTrueRange(const Prices& prices, Out out) {
  for (Count i = 1; i < prices.rows(); ++i) {
    const double before = prices.close[i - 1];
    out[i] = std::max(prices.high[i], before) - std::min(prices.low[i], before);
  }
}

void plainKeltner(const Prices& prices, Out out) {
  std::vector<double> range(out.size());
  plainTrueRange(prices, range);
  const std::vector<double> mean = plainSimple(prices.close, kPeriod);
  const std::vector<double> averageRange = plainSimple(range, kPeriod);
  for (Count i = kPeriod; i < prices.rows(); ++i) out[i] = mean[i] + averageRange[i] * 1.5;
}

void plainEnvelope(View in, Out out) {
  const std::vector<double> mean = plainSimple(in, kPeriod);
  for (Count i = 0; i < rowsOf(in); ++i) out[i] = mean[i] + mean[i] * 0.05;
}

bool plainIsPrime(long v) {
  if (v > 3 && (v % 2 == 0 || v % 3 == 0)) return false;
  for (long d = 5; d * d <= v; d += 6) {
    if (v % d == 0 || v % (d + 2) == 0) return false;
  }
  return true;
}

void plainPrimes(View in, Out out) {
  for (Count i = 0; i < rowsOf(in); ++i) {
    long v = static_cast<long>(in[i]);
    while (!plainIsPrime(v)) ++v;
    out[i] = static_cast<double>(v);
  }
}

void plainParabolic(const Prices& prices, Out out) {
  bool up = true;
  double sar = prices.low[0], extreme = prices.high[0], af = 0.02;
  for (Count i = 1; i < prices.rows(); ++i) {
    sar += (extreme - sar) * af;
    if (up ? prices.low[i] < sar : prices.high[i] > sar) {
      up = !up;
      sar = extreme;
      extreme = up ? prices.high[i] : prices.low[i];
      af = 0.02;
    } else if (up ? prices.high[i] > extreme : prices.low[i] < extreme) {
      extreme = up ? prices.high[i] : prices.low[i];
      af = std::min(af + 0.02, 0.2);
    }
    out[i] = sar;
  }
}

void plainSuperTrend(const Prices& prices, Out out) {
  std::vector<double> range(out.size());
  plainTrueRange(prices, range);
  double average = range[1], lower = 0.0, upper = 1e300;
  bool up = true;
  for (Count i = 2; i < prices.rows(); ++i) {
    average = (average * (kPeriod - 1) + range[i]) / kPeriod;
    const double middle = (prices.high[i] + prices.low[i]) / 2;
    const double close = prices.close[i];
    if (up && close < lower) {
      up = false;
      upper = middle + 3.0 * average;
    } else if (!up && close > upper) {
      up = true;
      lower = middle - 3.0 * average;
    } else if (up) {
      lower = std::max(lower, middle - 3.0 * average);
    } else {
      upper = std::min(upper, middle + 3.0 * average);
    }
    out[i] = up ? lower : upper;
  }
}

// ---- Rows ---------------------------------------------------------------------------------------------

using Work = WorkStore&;
using In = const PriceSources&;

void registerExtremes() {
  batchRow("HHV/engine", [](const Bars& b, Out o) { CFeedkit::HighestHighValue(b.high, kPeriod, o); });
  batchRow("HHV/plain", [](const Bars& b, Out o) {
    for (Count i = kPeriod; i < rowsOf(o); ++i) o[i] = plainHighest(b.high, i - kPeriod, i - 1);
  });
  resumedRow("HHV/resumed",
             [](Work, In p, Target o) { CTechnicalFunctions::HighestHighValue(p.high, kPeriod, o); });
  batchRow("LLV/engine", [](const Bars& b, Out o) { CFeedkit::LowestLowValue(b.low, kPeriod, o); });
  batchRow("LLV/plain", [](const Bars& b, Out o) {
    for (Count i = kPeriod; i < rowsOf(o); ++i) o[i] = plainLowest(b.low, i - kPeriod, i - 1);
  });
  resumedRow("LLV/resumed",
             [](Work, In p, Target o) { CTechnicalFunctions::LowestLowValue(p.low, kPeriod, o); });
}

void registerDeviations() {
  batchRow("SDV/engine",
           [](const Bars& b, Out o) { CFeedkit::StandardDeviations(b.close, kPeriod, 2.0, kSimple, o); });
  batchRow("SDV/plain", [](const Bars& b, Out o) { plainDeviations(b.close, o); });
  resumedRow("SDV/resumed", [](Work s, In p, Target o) {
    CTechnicalFunctions::StandardDeviations(s, p.close, kPeriod, 2.0, kSimple, o);
  });
  batchRow("BBT/engine", [](const Bars& b, Out o) {
    CFeedkit::BollingerBands(b.close, kPeriod, 2.0, kSimple, Band::kTop, o);
  });
  batchRow("BBT/plain", [](const Bars& b, Out o) { plainBollinger(b.close, o); });
  resumedRow("BBT/resumed", [](Work s, In p, Target o) {
    CTechnicalFunctions::BollingerBands(s, p.close, kPeriod, 2.0, kSimple, Band::kTop, o);
  });
}

void registerChannels() {
  batchRow("KCT/engine", [](const Bars& b, Out o) {
    CFeedkit::KeltnerChannel(b.prices(), kPeriod, kSimple, 1.5, Band::kTop, o);
  });
  batchRow("KCT/plain", [](const Bars& b, Out o) { plainKeltner(b.prices(), o); });
  resumedRow("KCT/resumed", [](Work s, In p, Target o) {
    CTechnicalFunctions::KeltnerChannel(s, p, kPeriod, kSimple, 1.5, Band::kTop, o);
  });
  batchRow("MAET/engine", [](const Bars& b, Out o) {
    CFeedkit::MovingAverageEnvelope(b.close, kPeriod, kSimple, 5.0, Band::kTop, o);
  });
  batchRow("MAET/plain", [](const Bars& b, Out o) { plainEnvelope(b.close, o); });
  resumedRow("MAET/resumed", [](Work s, In p, Target o) {
    CTechnicalFunctions::MovingAverageEnvelope(s, p.close, kPeriod, kSimple, 5.0, Band::kTop, o);
  });
  resumedRow("HLBUP/resumed",
             [](Work s, In p, Target o) { CTechnicalFunctions::HighLowBands(s, p, kPeriod, Band::kTop, o); });
}

void registerLevels() {
  batchRow("PNBT/engine",
           [](const Bars& b, Out o) { CFeedkit::PrimeNumberBands(b.prices(), Band::kTop, o); });
  batchRow("PNBT/plain", [](const Bars& b, Out o) { plainPrimes(b.high, o); });
  resumedRow("PNBT/resumed",
             [](Work, In p, Target o) { CTechnicalFunctions::PrimeNumberBands(p, Band::kTop, o); });
  resumedRow("FCHH/resumed", [](Work s, In p, Target o) {
    CTechnicalFunctions::FractalChaosBands(s, p, kPeriod, Band::kTop, o);
  });
}

void registerStops() {
  batchRow("PSAR/engine", [](const Bars& b, Out o) { CFeedkit::ParabolicSAR(b.prices(), 0.02, 0.2, o); });
  batchRow("PSAR/plain", [](const Bars& b, Out o) { plainParabolic(b.prices(), o); });
  resumedRow("PSAR/resumed",
             [](Work s, In p, Target o) { CTechnicalFunctions::ParabolicSAR(s, p, 0.02, 0.2, o); });
  batchRow("SUPERT/engine", [](const Bars& b, Out o) { CFeedkit::SUPERTREND(b.prices(), kPeriod, 3.0, o); });
  batchRow("SUPERT/plain", [](const Bars& b, Out o) { plainSuperTrend(b.prices(), o); });
  resumedRow("SUPERT/resumed",
             [](Work s, In p, Target o) { CTechnicalFunctions::SUPERTREND(s, p, kPeriod, 3.0, o); });
}

[[maybe_unused]] const bool kRegistered =
    (registerExtremes(), registerDeviations(), registerChannels(), registerLevels(), registerStops(), true);

}  // namespace
}  // namespace brindlewort::bench
