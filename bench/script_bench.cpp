// The engine as a host uses it: the normaliser, whole scripts, and the text of a run.

#include <string>

#include "bench_support.hpp"
#include "functions/script_engine.hpp"
#include "services/output/script_output.hpp"

namespace brindlewort::bench {

namespace {

constexpr const char* kCrossover =
    "SET A = SMA(CLOSE, 14)\r\nSET B = EMA(CLOSE, 26)\r\nA > B AND CLOSE > REF(CLOSE, 1)";

CScriptOutput component(std::int64_t rows) {
  const Bars& b = bars(rows);
  CScriptOutput output;
  output.makeRoom(b.close.size());
  for (std::size_t i = 0; i < b.close.size(); ++i) {
    output.AppendRecord(2444300.5 + static_cast<double>(i % 40000), b.open[i], b.high[i], b.low[i],
                        b.close[i], static_cast<std::int32_t>(b.volume[i]));
  }
  return output;
}

void normaliser(benchmark::State& state) {
  std::string script;
  for (std::int64_t i = 0; i < state.range(0) / 25; ++i) script += "A" + std::to_string(i) + " > B AND ";
  script += "C < D";
  for (auto _ : state) benchmark::DoNotOptimize(CScriptEngine::NormalizeScript(script));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(script.size()));
}
BENCHMARK(normaliser)->Name("normaliser/engine")->Arg(kFew)->Arg(kSome);

/// The same text walked once and copied.
void normaliserPlain(benchmark::State& state) {
  std::string script(static_cast<std::size_t>(state.range(0)), 'x');
  for (auto _ : state) {
    std::string out;
    for (char c : script) out += c;
    benchmark::DoNotOptimize(out);
  }
}
BENCHMARK(normaliserPlain)->Name("normaliser/plain")->Arg(kFew)->Arg(kSome);

void crossoverSeries(benchmark::State& state) {
  CScriptOutput output = component(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(output.computeOutput(kCrossover, 0, ""));
}
BENCHMARK(crossoverSeries)->Name("crossover script, series/engine")->Arg(kFew)->Arg(kSome)->Arg(kMany);

/// The textbook loops of the same script over the same rows.
void crossoverPlain(benchmark::State& state) {
  const Bars& b = bars(state.range(0));
  const std::size_t n = b.close.size();
  for (auto _ : state) {
    std::vector<double> a(n), e(n), fires(n);
    double sum = 0.0, ema = b.close[0];
    for (std::size_t i = 0; i < n; ++i) {
      sum += b.close[i];
      if (i >= 14) sum -= b.close[i - 14];
      a[i] = sum / 14.0;
      ema += (b.close[i] - ema) * (2.0 / 27.0);
      e[i] = ema;
    }
    for (std::size_t i = 1; i < n; ++i) fires[i] = a[i] > e[i] && b.close[i] > b.close[i - 1] ? 1.0 : 0.0;
    benchmark::DoNotOptimize(fires.data());
  }
}
BENCHMARK(crossoverPlain)->Name("crossover script, series/plain")->Arg(kFew)->Arg(kSome)->Arg(kMany);

/// Three columns as text, the whole host call.
void threeColumns(benchmark::State& state) {
  CScriptOutput output = component(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(output.GetScriptOutput(kCrossover, 0, "A,B,REF(CLOSE,1)"));
  state.counters["rows/s"] =
      benchmark::Counter(static_cast<double>(state.range(0)), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(threeColumns)->Name("crossover script, text/engine")->Arg(kFew)->Arg(kSome)->Arg(kMany);

}  // namespace

}  // namespace brindlewort::bench
