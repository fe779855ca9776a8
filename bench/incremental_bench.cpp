// The incremental way as a host uses it: one bar appended and the prepared script evaluated, at several
// lengths of history. The time must not depend on the length.

#include <string>

#include "bench_support.hpp"
#include "services/output/script_output.hpp"

namespace brindlewort::bench {

namespace {

/// Ten function calls and five comparisons.
constexpr const char* kScript =
    "SET A = SMA(CLOSE, 14)\r\n"
    "SET B = EMA(CLOSE, 20)\r\n"
    "SET C = RSI(CLOSE, 14)\r\n"
    "SET D = HHV(20)\r\n"
    "SET E = LLV(20)\r\n"
    "SET F = MACD(12, 26, 9, SIMPLE)\r\n"
    "SET G = BBT(CLOSE, 20, 2, SIMPLE)\r\n"
    "SET H = ATR(14)\r\n"
    "SET I = SOPK(14, 3, 3, SIMPLE)\r\n"
    "A > B AND C < 70 AND CLOSE > D AND G > F AND WMA(CLOSE, 10) > H";

/// A living component that goes on round the sample bars.
class Feed {
 public:
  explicit Feed(std::int64_t rows) : bars_(bars(kMany)) {
    output_.InitialiseTransientStore(250);
    output_.ProcessScripData(kScript);
    for (std::int64_t i = 0; i < rows; ++i) append();
    run();
  }
  void append() {
    const std::size_t i = next_ % bars_.close.size();
    output_.AppendRecord_New(2444300.5 + static_cast<double>(next_++), bars_.open[i], bars_.high[i],
                             bars_.low[i], bars_.close[i], static_cast<std::int32_t>(bars_.volume[i]));
  }
  void run() { benchmark::DoNotOptimize(output_.GetScriptOutput_PTR(kScript, 0, "")); }

 private:
  const Bars& bars_;
  CScriptOutput output_;
  std::size_t next_ = 0;
};

void tick(benchmark::State& state) {
  Feed feed(state.range(0));
  for (auto _ : state) {
    feed.append();
    feed.run();
  }
}
// A fixed count: the history grows with each tick.
BENCHMARK(tick)
    ->Name("tick of ten calls, five comparisons/resumed")
    ->Iterations(20'000)
    ->Arg(1'000)
    ->Arg(kFew)
    ->Arg(100'000)
    ->Arg(kMany);

void appendAlone(benchmark::State& state) {
  Feed feed(state.range(0));
  for (auto _ : state) feed.append();
}
BENCHMARK(appendAlone)
    ->Name("the bar alone, of that tick/resumed")
    ->Iterations(20'000)
    ->Arg(kFew)
    ->Arg(kMany);

void runAgain(benchmark::State& state) {
  Feed feed(state.range(0));
  for (auto _ : state) feed.run();
}
BENCHMARK(runAgain)->Name("the run alone, of that tick/resumed")->Iterations(20'000)->Arg(kFew)->Arg(kMany);

}  // namespace

}  // namespace brindlewort::bench
