#include <benchmark/benchmark.h>

#include <cmath>
#include <deque>
#include <random>
#include <string>

#include "indicators/bands.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/stops.hpp"

/// Bands and stops: the batch form beside a plain hand-written loop of the textbook formula, and the
/// resumable form with one more bar.
namespace brindlewort {
namespace {

constexpr Count kPeriod = 20;

// ---- Inputs ----------------------------------------------------------------------------------------------

struct Bars {
  std::vector<double> open, high, low, close, volume;
  explicit Bars(std::size_t rows) : volume(rows, 1000.0) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> step(-1.0, 1.0);
    double level = 10000.0;
    for (std::size_t i = 0; i < rows; ++i) {
      open.push_back(level);
      level += step(random);
      close.push_back(level);
      high.push_back(std::max(open[i], level) + std::fabs(step(random)));
      low.push_back(std::min(open[i], level) - std::fabs(step(random)));
    }
  }
  Prices prices() const { return {open, high, low, close, volume}; }
  PriceSources sources() const {
    return {{open, "OPEN"}, {high, "HIGH"}, {low, "LOW"}, {close, "CLOSE"}, {volume, "VOLUME"}};
  }
};

const Bars& barsOf(std::size_t rows) {
  static const Bars kFew(10'000), kMany(1'000'000);
  return rows == kFew.close.size() ? kFew : kMany;
}

class Store : public WorkStore {
 public:
  explicit Store(std::size_t rows) : rows_(rows) {}
  WorkField field(std::string_view name, std::initializer_list<KeyPart> parts) override {
    std::string key(name);
    for (const KeyPart& part : parts) {
      key += ',';
      key += part.kind == KeyPart::kText ? std::string(part.text) : std::to_string(part.number);
    }
    for (Entry& entry : entries_) {
      if (entry.key == key) return {entry.rows, &entry.slot, entry.key};
    }
    Entry& entry = entries_.emplace_back(Entry{key, nullRows(rows_), -1});
    return {entry.rows, &entry.slot, entry.key};
  }
  void forgetLastBar() {
    for (Entry& entry : entries_) {
      if (entry.slot > 0) entry.slot = static_cast<std::int32_t>(rows_) - 1;
    }
  }

 private:
  struct Entry {
    std::string key;
    std::vector<double> rows;
    std::int32_t slot;
  };
  std::size_t rows_;
  std::deque<Entry> entries_;
};

// ---- Ways of running -------------------------------------------------------------------------------------

template <class Compute>
void wholeSeries(benchmark::State& state, Compute compute) {
  const Bars& bars = barsOf(static_cast<std::size_t>(state.range(0)));
  std::vector<double> out(bars.close.size());
  for (auto _ : state) {
    std::fill(out.begin(), out.end(), NULL_VALUE);
    compute(bars.prices(), Out(out));
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Compute>
void oneMoreBar(benchmark::State& state, Compute compute) {
  const Bars& bars = barsOf(static_cast<std::size_t>(state.range(0)));
  Store store(bars.close.size());
  std::vector<double> out = nullRows(bars.close.size());
  std::int32_t slot = -1;
  compute(store, bars.sources(), Target{out, &slot});
  for (auto _ : state) {
    store.forgetLastBar();
    slot = static_cast<std::int32_t>(out.size()) - 1;
    compute(store, bars.sources(), Target{out, &slot});
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
}

// ---- Textbook loops --------------------------------------------------------------------------------------

void plainHighest(View in, Out out) {
  for (Count i = kPeriod; i < rowsOf(in); ++i) {
    double best = in[i - kPeriod];
    for (Count j = i - kPeriod + 1; j < i; ++j) best = in[j] > best ? in[j] : best;
    out[i] = best;
  }
}

void plainLowest(View in, Out out) {
  for (Count i = kPeriod; i < rowsOf(in); ++i) {
    double best = in[i - kPeriod];
    for (Count j = i - kPeriod + 1; j < i; ++j) best = in[j] < best ? in[j] : best;
    out[i] = best;
  }
}

void plainAverage(View in, Out out) {
  double sum = 0.0;
  for (Count i = 0; i < rowsOf(in); ++i) {
    sum += in[i];
    if (i >= kPeriod) sum -= in[i - kPeriod];
    if (i >= kPeriod - 1) out[i] = sum / kPeriod;
  }
}

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
  std::vector<double> mean(in.size());
  plainAverage(in, mean);
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
  std::vector<double> mean(out.size()), range(out.size()), averageRange(out.size());
  plainAverage(prices.close, mean);
  plainTrueRange(prices, range);
  plainAverage(range, averageRange);
  for (Count i = kPeriod; i < prices.rows(); ++i) out[i] = mean[i] + averageRange[i] * 1.5;
}

void plainEnvelope(View in, Out out) {
  std::vector<double> mean(in.size());
  plainAverage(in, mean);
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

// ---- The table -------------------------------------------------------------------------------------------

template <class Compute>
void addWhole(const char* name, Compute compute) {
  benchmark::RegisterBenchmark(name, [=](benchmark::State& state) { wholeSeries(state, compute); })
      ->Arg(10'000)
      ->Arg(1'000'000);
}

template <class Compute>
void addOneMoreBar(const char* name, Compute compute) {
  benchmark::RegisterBenchmark(name, [=](benchmark::State& state) { oneMoreBar(state, compute); })
      ->Arg(10'000)
      ->Arg(1'000'000);
}

/// Registers an operation: batch, its plain loop, resumable.
template <class Batch, class Plain, class Resumable>
void add(const std::string& operation, Batch batch, Plain plain, Resumable resumable) {
  addWhole((operation + "/batch").c_str(), batch);
  addWhole((operation + "/plain").c_str(), plain);
  addOneMoreBar((operation + "/one_more_bar").c_str(), resumable);
}

namespace batch = CFeedkit;
namespace resumable = CTechnicalFunctions;
using Work = WorkStore&;
using In = const PriceSources&;

const bool kRegistered = [] {
  add(
      "HighestHighValue", [](const Prices& p, Out out) { batch::HighestHighValue(p.high, kPeriod, out); },
      [](const Prices& p, Out out) { plainHighest(p.high, out); },
      [](Work, In p, Target out) { resumable::HighestHighValue(p.high, kPeriod, out); });
  add(
      "LowestLowValue", [](const Prices& p, Out out) { batch::LowestLowValue(p.low, kPeriod, out); },
      [](const Prices& p, Out out) { plainLowest(p.low, out); },
      [](Work, In p, Target out) { resumable::LowestLowValue(p.low, kPeriod, out); });
  add(
      "StandardDeviations",
      [](const Prices& p, Out out) { batch::StandardDeviations(p.close, kPeriod, 2.0, kSimple, out); },
      [](const Prices& p, Out out) { plainDeviations(p.close, out); },
      [](Work store, In p, Target out) {
        resumable::StandardDeviations(store, p.close, kPeriod, 2.0, kSimple, out);
      });
  add(
      "BollingerBands",
      [](const Prices& p, Out out) {
        batch::BollingerBands(p.close, kPeriod, 2.0, kSimple, Band::kTop, out);
      },
      [](const Prices& p, Out out) { plainBollinger(p.close, out); },
      [](Work store, In p, Target out) {
        resumable::BollingerBands(store, p.close, kPeriod, 2.0, kSimple, Band::kTop, out);
      });
  add(
      "KeltnerChannel",
      [](const Prices& p, Out out) { batch::KeltnerChannel(p, kPeriod, kSimple, 1.5, Band::kTop, out); },
      [](const Prices& p, Out out) { plainKeltner(p, out); },
      [](Work store, In p, Target out) {
        resumable::KeltnerChannel(store, p, kPeriod, kSimple, 1.5, Band::kTop, out);
      });
  add(
      "MovingAverageEnvelope",
      [](const Prices& p, Out out) {
        batch::MovingAverageEnvelope(p.close, kPeriod, kSimple, 5.0, Band::kTop, out);
      },
      [](const Prices& p, Out out) { plainEnvelope(p.close, out); },
      [](Work store, In p, Target out) {
        resumable::MovingAverageEnvelope(store, p.close, kPeriod, kSimple, 5.0, Band::kTop, out);
      });
  add(
      "PrimeNumberBands", [](const Prices& p, Out out) { batch::PrimeNumberBands(p, Band::kTop, out); },
      [](const Prices& p, Out out) { plainPrimes(p.high, out); },
      [](Work, In p, Target out) { resumable::PrimeNumberBands(p, Band::kTop, out); });
  add(
      "ParabolicSAR", [](const Prices& p, Out out) { batch::ParabolicSAR(p, 0.02, 0.2, out); },
      plainParabolic,
      [](Work store, In p, Target out) { resumable::ParabolicSAR(store, p, 0.02, 0.2, out); });
  add(
      "SUPERTREND", [](const Prices& p, Out out) { batch::SUPERTREND(p, kPeriod, 3.0, out); },
      plainSuperTrend,
      [](Work store, In p, Target out) { resumable::SUPERTREND(store, p, kPeriod, 3.0, out); });
  addOneMoreBar("FractalChaosBands/one_more_bar", [](Work store, In p, Target out) {
    resumable::FractalChaosBands(store, p, kPeriod, Band::kTop, out);
  });
  addOneMoreBar("HighLowBands/one_more_bar", [](Work store, In p, Target out) {
    resumable::HighLowBands(store, p, kPeriod, Band::kTop, out);
  });
  return true;
}();

}  // namespace
}  // namespace brindlewort
