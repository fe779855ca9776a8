// One more bar for an alert: the plain way, which runs the script over all bars, and the incremental way.

#include <algorithm>
#include <ctime>
#include <limits>
#include <memory>
#include <string>

#include "bench_support.hpp"
#include "services/alert/alert.hpp"

namespace brindlewort::bench {

namespace {

struct Watched {
  const char* name;
  const char* script;
};
constexpr Watched kWatched[] = {
    {"rising close", "CLOSE > REF(CLOSE, 1)"},
    {"crossover", "SET A = SMA(CLOSE, 14)\r\nSET B = EMA(CLOSE, 26)\r\nA > B AND CLOSE > REF(CLOSE, 1)"},
    {"momentum", "RSI(CLOSE, 14) > 70 AND MACD(26, 12, 9, SIMPLE) > 0 AND CLOSE > MAX(HIGH, 20)"},
};

enum class Way { kPlain, kIncremental };

/// An alert that has seen `rows` bars, and its next ones.
class Feed {
 public:
  Feed(const char* script, Way way, std::int64_t rows) : bars_(bars(rows)), way_(way), alert_(count()) {
    alert_.Alert = [this](const auto&, const auto&, double, double) { ++events; };
    alert_.ScriptError = [this](const auto&, const auto&, const auto&) { ++failures; };
    if (way == Way::kIncremental) {
      alert_.InitialiseTransientStore(250);
      alert_.ProcessScripData(script);
      for (std::int64_t i = 0; i < rows; ++i) append();
      alert_.setAlertScript(script);
    } else {
      std::vector<Bar> all(static_cast<std::size_t>(rows));
      for (Bar& bar : all) bar = nextBar();
      alert_.AppendRecords(all);
      alert_.setAlertScript(script);
    }
  }

  void append() {
    const Bar b = nextBar();
    const std::int32_t volume = static_cast<std::int32_t>(b.Volume);
    if (way_ == Way::kPlain) {
      alert_.AppendRecord(b.JDate, b.OpenPrice, b.HighPrice, b.LowPrice, b.ClosePrice, volume, b.JDate);
    } else {
      alert_.AppendRecord_Opt(b.JDate, b.OpenPrice, b.HighPrice, b.LowPrice, b.ClosePrice, volume, b.JDate);
    }
  }

  std::int64_t events = 0, failures = 0;

 private:
  static platform::AlertCount& count() {
    static platform::AlertCount& own = *new platform::AlertCount("/brindlewort/count/of/a/benchmark");
    return own;
  }

  Bar nextBar() {
    const std::size_t i = next_++ % bars_.close.size();
    Bar bar;
    bar.JDate = 2444300.5 + static_cast<double>(next_);
    bar.OpenPrice = bars_.open[i];
    bar.HighPrice = bars_.high[i];
    bar.LowPrice = bars_.low[i];
    bar.ClosePrice = bars_.close[i];
    bar.Volume = bars_.volume[i];
    return bar;
  }

  const Bars& bars_;
  std::size_t next_ = 0;
  Way way_;
  CAlert alert_;
};

/// Processor time for one more bar: the best of some batches, so few that the alert stays about as long as it
/// was.
double ticksPerBar(const char* script, Way way, std::int64_t rows, int batch) {
  Feed feed(script, way, rows);
  double best = std::numeric_limits<double>::infinity();
  for (int i = 0; i < 5; ++i) {
    const std::clock_t start = std::clock();
    for (int k = 0; k < batch; ++k) feed.append();
    best = std::min(best, static_cast<double>(std::clock() - start) / batch);
  }
  return best;
}

/// Starts anew each time the alert has grown by `mostMore` bars.
void appendedBar(benchmark::State& state, const char* script, Way way, std::int64_t mostMore) {
  std::unique_ptr<Feed> feed;
  std::int64_t more = mostMore;
  for (auto _ : state) {
    if (more == mostMore) {
      state.PauseTiming();
      feed.reset();
      feed = std::make_unique<Feed>(script, way, state.range(0));
      more = 0;
      state.ResumeTiming();
    }
    ++more;
    feed->append();
  }
  if (feed->failures > 0) state.SkipWithError("the script fails");
}

const bool registered = [] {
  for (const Watched& watched : kWatched) {
    const char* script = watched.script;
    const std::string what = std::string("alert on ") + watched.name;
    benchmark::RegisterBenchmark((what + "/whole history").c_str(), [script](benchmark::State& state) {
      appendedBar(state, script, Way::kPlain, state.range(0) / 50);
    })->Arg(kSome);
    benchmark::RegisterBenchmark((what + "/resumed").c_str(),
                                 [script](benchmark::State& state) {
                                   appendedBar(state, script, Way::kIncremental, state.range(0));
                                   if (state.range(0) != kSome) return;
                                   state.counters["times faster"] =
                                       ticksPerBar(script, Way::kPlain, kSome, 50) /
                                       ticksPerBar(script, Way::kIncremental, kSome, 1000);
                                 })
        ->Arg(kSome)
        ->Arg(kMany);
  }
  return true;
}();

}  // namespace

}  // namespace brindlewort::bench
