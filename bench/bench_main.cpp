// Runs the benchmarks and prints, for each pair of our code and the plain loop beside it, the ratio of their
// times; the last column is that of the resumable form's first call. Of several repetitions the fastest
// counts: whatever else the machine does only ever adds time.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace {

/// Collects the times by "<what>", row count and side, and hands every line on to the console.
class PairReporter : public benchmark::ConsoleReporter {
 public:
  PairReporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
      const std::string name = run.benchmark_name();
      const std::size_t argument = name.rfind('/');
      const std::size_t side = name.rfind('/', argument - 1);
      if (argument == std::string::npos || side == std::string::npos) continue;
      auto& sides = times_[{name.substr(0, side), std::stoll(name.substr(argument + 1))}];
      const double time = run.GetAdjustedCPUTime();
      const auto [known, isNew] = sides.try_emplace(name.substr(side + 1, argument - side - 1), time);
      if (!isNew) known->second = std::min(known->second, time);
    }
  }

  void printRatios() const {
    std::printf("\n%-44s %10s %14s %14s %8s %8s\n", "benchmark", "rows", "engine ns", "plain ns", "ratio",
                "first");
    for (const auto& [key, sides] : times_) {
      const auto engine = sides.find("engine"), plain = sides.find("plain");
      if (engine == sides.end() || plain == sides.end()) continue;
      const auto first = sides.find("first");
      std::printf("%-44s %10lld %14.0f %14.0f %8.2f", key.first.c_str(), key.second, engine->second,
                  plain->second, engine->second / plain->second);
      if (first != sides.end()) std::printf(" %8.2f", first->second / plain->second);
      std::printf("\n");
    }
    std::printf("\n%-44s %14s %14s %8s\n", "one more bar", "10,000 ns", "1,000,000 ns", "ratio");
    for (const auto& [key, sides] : times_) {
      const auto few = sides.find("resumed");
      if (few == sides.end() || key.second != 10'000) continue;
      const auto many = times_.find({key.first, 1'000'000});
      if (many == times_.end() || !many->second.contains("resumed")) continue;
      const double slow = many->second.at("resumed");
      std::printf("%-44s %14.0f %14.0f %8.2f\n", key.first.c_str(), few->second, slow, slow / few->second);
    }
  }

 private:
  std::map<std::pair<std::string, long long>, std::map<std::string, double>> times_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  PairReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.printRatios();
  return 0;
}
