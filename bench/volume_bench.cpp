// Volume and money-flow indicators: the batch form beside a plain loop of the textbook formula, and the
// resumable form with one more bar.

#include <algorithm>
#include <string>

#include "bench_support.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/volume.hpp"

namespace brindlewort::bench {

namespace {

constexpr Count kPeriod = 20, kShort = 5, kRate = 10;
constexpr double kTick = 0.1;

namespace batch = CFeedkit;
namespace resumable = CTechnicalFunctions;

// ---- Textbook loops -----------------------------------------------------------------------------------

void plainBalance(const Bars& b, Out out) {
  double total = 0.0;
  for (std::size_t i = 1; i < out.size(); ++i) {
    if (b.close[i] > b.close[i - 1]) total += b.volume[i];
    if (b.close[i] < b.close[i - 1]) total -= b.volume[i];
    out[i] = total;
  }
}

void plainTrend(const Bars& b, Out out) {
  double total = 0.0;
  for (std::size_t i = 1; i < out.size(); ++i) {
    out[i] = total += (b.close[i] - b.close[i - 1]) / b.close[i - 1] * b.volume[i];
  }
}

template <class Takes>
void plainIndex(const Bars& b, Out out, Takes takes) {
  double index = out[0] = 1.0;
  for (std::size_t i = 1; i < out.size(); ++i) {
    if (takes(b.volume[i - 1], b.volume[i])) index += index * (b.close[i] - b.close[i - 1]) / b.close[i - 1];
    out[i] = index;
  }
}

void plainPerformance(const Bars& b, Out out) {
  const double base = b.close[0];
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = (b.close[i] - base) / base * 100.0;
}

void plainTrades(const Bars& b, Out out) {
  double total = 0.0;
  int direction = 0;
  for (std::size_t i = 1; i < out.size(); ++i) {
    const double d = b.close[i] - b.close[i - 1];
    if (d > kTick) direction = 1;
    if (d < -kTick) direction = -1;
    if (direction > 0) total += b.volume[i];
    if (direction < 0) total -= b.volume[i];
    out[i] = total;
  }
}

void plainFlowIndex(const Bars& b, Out out) {
  const auto typical = [&](std::size_t j) { return (b.high[j] + b.low[j] + b.close[j]) / 3.0; };
  for (std::size_t i = kPeriod; i < out.size(); ++i) {
    double pos = 0.0, neg = 0.0;
    for (std::size_t j = i - kPeriod + 1; j <= i; ++j) {
      if (typical(j) > typical(j - 1)) pos += typical(j) * b.volume[j];
      if (typical(j) < typical(j - 1)) neg += typical(j) * b.volume[j];
    }
    out[i] = 100.0 - 100.0 / (1.0 + pos / neg);
  }
}

void plainChaikinFlow(const Bars& b, Out out) {
  for (std::size_t i = kPeriod - 1; i < out.size(); ++i) {
    double flow = 0.0, volume = 0.0;
    for (std::size_t j = i - kPeriod + 1; j <= i; ++j) {
      flow += ((b.close[j] - b.low[j]) - (b.high[j] - b.close[j])) / (b.high[j] - b.low[j]) * b.volume[j];
      volume += b.volume[j];
    }
    out[i] = flow / volume;
  }
}

void plainAverage(const std::vector<double>& in, std::size_t p, Out out) {
  double sum = 0.0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    sum += in[i];
    if (i >= p) sum -= in[i - p];
    if (i + 1 >= p) out[i] = sum / static_cast<double>(p);
  }
}

void plainOscillator(const Bars& b, Out out) {
  std::vector<double> s(out.size()), l(out.size());
  plainAverage(b.volume, kShort, s);
  plainAverage(b.volume, kPeriod, l);
  for (std::size_t i = kPeriod; i < out.size(); ++i) out[i] = (s[i] - l[i]) / l[i] * 100.0;
}

void plainVolatility(const Bars& b, Out out) {
  std::vector<double> d(out.size()), m(out.size());
  for (std::size_t i = 0; i < out.size(); ++i) d[i] = b.high[i] - b.low[i];
  plainAverage(d, kPeriod, m);
  for (std::size_t i = kPeriod + kRate; i < out.size(); ++i)
    out[i] = (m[i] - m[i - kRate]) / m[i - kRate] * 100.0;
}

void plainChange(const std::vector<double>& in, Out out) {
  for (std::size_t i = kPeriod; i < out.size(); ++i)
    out[i] = (in[i] - in[i - kPeriod]) / in[i - kPeriod] * 100.0;
}

void plainEase(const Bars& b, Out out) {
  std::vector<double> e(out.size());
  for (std::size_t i = 1; i < out.size(); ++i) {
    const double mid = (b.high[i] + b.low[i]) / 2.0 - (b.high[i - 1] + b.low[i - 1]) / 2.0;
    e[i] = mid / (b.volume[i] / (b.high[i] - b.low[i])) * 10000.0;
  }
  plainAverage(e, kPeriod, out);
}

void plainDistribution(const Bars& b, Out out) {
  double total = 0.0;
  for (std::size_t i = 1; i < out.size(); ++i) {
    if (b.close[i] > b.close[i - 1]) total += b.close[i] - std::min(b.low[i], b.close[i - 1]);
    if (b.close[i] < b.close[i - 1]) total += b.close[i] - std::max(b.high[i], b.close[i - 1]);
    out[i] = total;
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
      "OnBalanceVolume", [](const Bars& b, Out out) { batch::OnBalanceVolume(b.close, b.volume, out); },
      plainBalance, [](WorkStore&, In p, Target out) { resumable::OnBalanceVolume(p.close, p.volume, out); });
  rows(
      "PriceVolumeTrend", [](const Bars& b, Out out) { batch::PriceVolumeTrend(b.close, b.volume, out); },
      plainTrend,
      [](WorkStore& store, In p, Target out) { resumable::PriceVolumeTrend(store, p.close, p.volume, out); });
  rows(
      "PositiveVolumeIndex",
      [](const Bars& b, Out out) { batch::PositiveVolumeIndex(b.close, b.volume, out); },
      [](const Bars& b, Out out) {
        plainIndex(b, out, [](double before, double now) { return before < now; });
      },
      [](WorkStore&, In p, Target out) { resumable::PositiveVolumeIndex(p.close, p.volume, out); });
  rows(
      "NegativeVolumeIndex",
      [](const Bars& b, Out out) { batch::NegativeVolumeIndex(b.close, b.volume, out); },
      [](const Bars& b, Out out) {
        plainIndex(b, out, [](double before, double now) { return before > now; });
      },
      [](WorkStore&, In p, Target out) { resumable::NegativeVolumeIndex(p.close, p.volume, out); });
  rows(
      "PerformanceIndex", [](const Bars& b, Out out) { batch::PerformanceIndex(b.close, out); },
      plainPerformance, [](WorkStore&, In p, Target out) { resumable::PerformanceIndex(p.close, out); });
  rows(
      "TradeVolumeIndex",
      [](const Bars& b, Out out) { batch::TradeVolumeIndex(b.close, b.volume, kTick, out); }, plainTrades,
      [](WorkStore& store, In p, Target out) {
        resumable::TradeVolumeIndex(store, p.close, p.volume, kTick, out);
      });
  rows(
      "MoneyFlowIndex", [](const Bars& b, Out out) { batch::MoneyFlowIndex(b.prices(), kPeriod, out); },
      plainFlowIndex, [](WorkStore&, In p, Target out) { resumable::MoneyFlowIndex(p, kPeriod, out); });
  rows(
      "ChaikinMoneyFlow", [](const Bars& b, Out out) { batch::ChaikinMoneyFlow(b.prices(), kPeriod, out); },
      plainChaikinFlow,
      [](WorkStore& store, In p, Target out) { resumable::ChaikinMoneyFlow(store, p, kPeriod, out); });
  rows(
      "VolumeOscillator",
      [](const Bars& b, Out out) {
        batch::VolumeOscillator(b.volume, kShort, kPeriod, kSimple, kPercent, out);
      },
      plainOscillator,
      [](WorkStore& store, In p, Target out) {
        resumable::VolumeOscillator(store, p.volume, kShort, kPeriod, kSimple, kPercent, out);
      });
  rows(
      "ChaikinVolatility",
      [](const Bars& b, Out out) { batch::ChaikinVolatility(b.prices(), kPeriod, kRate, kSimple, out); },
      plainVolatility,
      [](WorkStore& store, In p, Target out) {
        resumable::ChaikinVolatility(store, p, kPeriod, kRate, kSimple, out);
      });
  rows(
      "PriceRateOfChange", [](const Bars& b, Out out) { batch::PriceRateOfChange(b.close, kPeriod, out); },
      [](const Bars& b, Out out) { plainChange(b.close, out); },
      [](WorkStore&, In p, Target out) { resumable::PriceRateOfChange(p.close, kPeriod, out); });
  rows(
      "VolumeRateOfChange", [](const Bars& b, Out out) { batch::VolumeRateOfChange(b.volume, kPeriod, out); },
      [](const Bars& b, Out out) { plainChange(b.volume, out); },
      [](WorkStore&, In p, Target out) { resumable::VolumeRateOfChange(p.volume, kPeriod, out); });
  rows(
      "EaseOfMovement",
      [](const Bars& b, Out out) { batch::EaseOfMovement(b.prices(), kPeriod, kSimple, out); }, plainEase,
      [](WorkStore& store, In p, Target out) { resumable::EaseOfMovement(store, p, kPeriod, kSimple, out); });
  rows(
      "WilliamsAccumulationDistribution",
      [](const Bars& b, Out out) { batch::WilliamsAccumulationDistribution(b.prices(), out); },
      plainDistribution,
      [](WorkStore&, In p, Target out) { resumable::WilliamsAccumulationDistribution(p, out); });
  return true;
}();

}  // namespace

}  // namespace brindlewort::bench
