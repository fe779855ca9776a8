// A backtest beside the runs of its two scripts, which it cannot do without: "<what>/engine" is the whole
// report with all four protective rules on, "<what>/plain" the two scripts as event lists.

#include <memory>
#include <string>

#include "bench_support.hpp"
#include "services/backtest/backtest.hpp"
#include "services/output/script_output.hpp"

namespace brindlewort::bench {

namespace {

constexpr double kFirstDate = 2444300.5, kBarsPerDay = 24.0;
constexpr double kSlipPct = 0.1;
constexpr const char* kRules = "stop=3;trail=1;target=5;bars=50;";

/// The component over the bars of the benchmarks, an hour each.
template <class Component>
std::unique_ptr<Component> loaded(std::int64_t rows) {
  auto component = std::make_unique<Component>();
  const Bars& b = bars(rows);
  for (std::size_t i = 0; i < b.close.size(); ++i) {
    component->AppendRecord(kFirstDate + static_cast<double>(i) / kBarsPerDay, b.open[i], b.high[i], b.low[i],
                            b.close[i], static_cast<std::int32_t>(b.volume[i]));
  }
  return component;
}

/// The moving averages of a crossover either way.
struct Crossover {
  std::string fast, slow;
  std::string buy() const { return "CROSSOVER(" + fast + ", " + slow + ") = TRUE"; }
  std::string sell() const { return "CROSSOVER(" + slow + ", " + fast + ") = TRUE"; }
};

void report(benchmark::State& state, const Crossover& crossover) {
  const auto component = loaded<CBacktest>(state.range(0));
  component->fixedSeed = 1;
  const std::string buy = crossover.buy(), sell = crossover.sell();
  for (auto _ : state) benchmark::DoNotOptimize(component->Backtest(buy, sell, sell, buy, kSlipPct, kRules));
}

void twoRuns(benchmark::State& state, const Crossover& crossover) {
  constexpr std::int32_t kEventList = -1;
  const auto component = loaded<CScriptOutput>(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(component->GetScriptOutput(crossover.buy(), kEventList, ""));
    benchmark::DoNotOptimize(component->GetScriptOutput(crossover.sell(), kEventList, ""));
  }
}

void backtestRows(const std::string& name, const Crossover& crossover) {
  for (const std::int64_t rows : {kSome, kMany}) {
    benchmark::RegisterBenchmark((name + "/engine").c_str(), report, crossover)->Arg(rows);
    benchmark::RegisterBenchmark((name + "/plain").c_str(), twoRuns, crossover)->Arg(rows);
  }
}

const bool registered = [] {
  backtestRows("backtest of a 10/30 crossover", {"SMA(CLOSE, 10)", "SMA(CLOSE, 30)"});
  backtestRows("backtest of a 50/200 crossover", {"SMA(CLOSE, 50)", "SMA(CLOSE, 200)"});
  return true;
}();

}  // namespace

}  // namespace brindlewort::bench
