#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "indicators/frame.hpp"
#include "series/field.hpp"

/// What the benchmarks share: made-up bars, and the naming by which `./run bench` pairs rows. A benchmark of
/// our code is named "<what>/engine", the hand-written loop beside it "<what>/plain"; the resumable form is
/// "<what>/first" for its first call and "<what>/resumed" for one more bar. All take the row count as their
/// argument.
namespace brindlewort::bench {

inline constexpr int kFew = 250, kSome = 10'000, kMany = 1'000'000;

struct Bars {
  std::vector<double> open, high, low, close, volume;
  Prices prices() const { return {open, high, low, close, volume}; }
  PriceSources sources() const {
    return {{open, "OPEN"}, {high, "HIGH"}, {low, "LOW"}, {close, "CLOSE"}, {volume, "VOLUME"}};
  }
};

/// A random walk about 100 with a fixed seed; made once per row count.
inline const Bars& bars(std::int64_t rows) {
  static std::vector<std::pair<std::int64_t, Bars>> made;
  for (const auto& [n, b] : made) {
    if (n == rows) return b;
  }
  made.reserve(8);
  Bars b;
  std::uint64_t state = 88172645463325252ull;
  const auto unit = [&state] {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return static_cast<double>(state >> 11) * 0x1.0p-53;
  };
  double level = 100.0;
  for (std::int64_t i = 0; i < rows; ++i) {
    const double open = level;
    level *= 1.0 + (unit() - 0.5) * 0.02;
    level += (100.0 - level) * 0.001;  // else a million rows end near 0
    b.open.push_back(open);
    b.high.push_back((open > level ? open : level) * (1.0 + unit() * 0.005));
    b.low.push_back((open < level ? open : level) * (1.0 - unit() * 0.005));
    b.close.push_back(level);
    b.volume.push_back(static_cast<double>(static_cast<int>(unit() * 1e6)));
  }
  made.emplace_back(rows, std::move(b));
  return made.back().second;
}

/// A store of work series with stable addresses, as the incremental engine has it; keys are compared part by
/// part.
class Store : public WorkStore {
 public:
  explicit Store(std::size_t rows) : rows_(rows) { entries_.reserve(64); }
  WorkField field(std::string_view name, std::initializer_list<KeyPart> parts) override {
    for (Entry& entry : entries_) {
      if (entry.name == name && sameParts(entry.parts, parts)) return asField(entry);
    }
    entries_.push_back({std::string(name),
                        {parts.begin(), parts.end()},
                        {std::string(name), 0.0, Series(rows_, NULL_VALUE), -1, kComputedVariable}});
    return asField(entries_.back());
  }

 private:
  struct Entry {
    std::string name;
    std::vector<KeyPart> parts;
    ScriptVariable variable;
  };
  static bool sameParts(const std::vector<KeyPart>& a, std::initializer_list<KeyPart> b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const KeyPart& x, const KeyPart& y) {
      return x.kind == y.kind && x.number == y.number && x.text == y.text;
    });
  }
  static WorkField asField(Entry& entry) {
    return {entry.variable.values.edit(), &entry.variable.slot, entry.variable.name};
  }
  std::size_t rows_;
  std::vector<Entry> entries_;
};

/// A batch operation over the bars; `run` fills the rows it is given.
template <class Run>
void batchRow(const char* name, Run run) {
  benchmark::RegisterBenchmark(name,
                               [run](benchmark::State& state) {
                                 const Bars& b = bars(state.range(0));
                                 std::vector<double> out(b.close.size(), NULL_VALUE);
                                 for (auto _ : state) {
                                   run(b, Out(out));
                                   benchmark::DoNotOptimize(out.data());
                                   benchmark::ClobberMemory();
                                 }
                               })
      ->Arg(kSome)
      ->Arg(kMany);
}

/// A resumable operation under "<what>/resumed": one more bar, everything but the last row having been
/// computed. And under "<what>/first": the first call over all rows, with the making of its work series.
template <class Run>
void resumedRow(const char* name, Run run) {
  benchmark::RegisterBenchmark(name,
                               [run](benchmark::State& state) {
                                 const Bars& b = bars(state.range(0));
                                 Store store(b.close.size());
                                 std::vector<double> out(b.close.size(), NULL_VALUE);
                                 std::int32_t slot = -1;
                                 run(store, b.sources(), Target{out, &slot});
                                 for (auto _ : state) {
                                   run(store, b.sources(), Target{out, &slot});
                                   benchmark::DoNotOptimize(out.data());
                                   benchmark::ClobberMemory();
                                 }
                               })
      ->Arg(kSome)
      ->Arg(kMany);

  std::string first(name);
  first = first.substr(0, first.rfind('/')) + "/first";
  benchmark::RegisterBenchmark(first.c_str(),
                               [run](benchmark::State& state) {
                                 const Bars& b = bars(state.range(0));
                                 for (auto _ : state) {
                                   Store store(b.close.size());
                                   std::vector<double> out(b.close.size(), NULL_VALUE);
                                   std::int32_t slot = -1;
                                   run(store, b.sources(), Target{out, &slot});
                                   benchmark::DoNotOptimize(out.data());
                                 }
                               })
      ->Arg(kSome)
      ->Arg(kMany);
}

}  // namespace brindlewort::bench
