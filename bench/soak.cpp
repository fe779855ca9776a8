// A long day of ticks: bars are appended, the last one is edited time and again, and the script runs after
// each. Shows that memory does not grow beyond the rows themselves, and that the results are those of a fresh
// engine that gets the finished bars. Prints a line a round; fails when either does not hold.
//
//   brindlewort_soak [TICKS]        5,000,000 as a rule

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "series/null_value.hpp"
#include "services/output/script_output.hpp"

namespace {

using brindlewort::Bar;
using brindlewort::CScriptOutput;
using brindlewort::Series;

constexpr long kTicksOfRound = 100'000;
constexpr const char* kScript =
    "SET A = SMA(CLOSE, 14)\r\nSET B = EMA(CLOSE, 20)\r\nSET C = RSI(CLOSE, 14)\r\nSET D = HHV(20)\r\n"
    "SET E = IF(CLOSE > OPEN, 1, 0)\r\nSET F = COUNTIF(CLOSE > A)\r\nSET G = BBT(CLOSE, 20, 2, SIMPLE)\r\n"
    "SET H = ATR(14)\r\nSET I = LOOP(CLOSE, VOLUME, 1, 0, ADD)\r\nSET J = 2 * CLOSE\r\n"
    "A > B AND C < 70 AND CLOSE > D AND G > CLOSE AND WMA(CLOSE, 10) > H";
constexpr const char* kColumns[] = {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J"};

/// Resident memory in KiB.
long residentKiB() {
  std::ifstream status("/proc/self/statm");
  long total = 0, resident = 0;
  status >> total >> resident;
  return resident * 4;
}

void setUp(CScriptOutput& output) {
  output.InitialiseTransientStore(250);
  output.SetDataRetrieveMode(102);
  output.ProcessScripData(kScript);
}

void append(CScriptOutput& output, const Bar& bar) {
  output.AppendRecord_New(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                          static_cast<std::int32_t>(bar.Volume));
}

/// The first column that differs by more than the last digits of re-formed sums, or null.
const char* firstDifference(const CScriptOutput& a, const CScriptOutput& b) {
  for (const char* name : kColumns) {
    const Series* one = a.findSeries(name);
    const Series* two = b.findSeries(name);
    if (!one || !two || one->size() != two->size()) return name;
    for (std::size_t i = 0; i < one->size(); ++i) {
      const double x = (*one)[i], y = (*two)[i];
      const double size = std::max({1.0, x < 0 ? -x : x, y < 0 ? -y : y});
      if (!((x < y ? y - x : x - y) <= 1e-9 * size)) return name;
    }
  }
  return nullptr;
}

}  // namespace

int main(int count, char** arguments) {
  const long ticks = count > 1 ? std::atol(arguments[1]) : 5'000'000;
  std::mt19937 random(1);
  std::uniform_real_distribution<double> step(-1.0, 1.0), wick(0.0, 0.5);
  CScriptOutput living;
  long warm = 0, done = 0;
  for (int round = 1; done < ticks; ++round) {
    living.ClearRecords();
    setUp(living);
    std::vector<Bar> bars;
    double price = 100.0;
    for (long i = 0; i < kTicksOfRound && done < ticks; ++i, ++done) {
      const bool edit = i % 3 == 2;
      Bar bar = edit ? bars.back() : Bar{};
      if (!edit) {
        bar.JDate = 2444300.5 + static_cast<double>(bars.size()) / 1440.0;
        bar.OpenPrice = price;
      }
      price = std::max(10.0, price + step(random));
      bar.ClosePrice = price;
      bar.HighPrice = std::max(bar.OpenPrice, price) + wick(random);
      bar.LowPrice = std::min(bar.OpenPrice, price) - wick(random);
      bar.Volume = static_cast<double>(100 + i % 1000);
      if (edit) {
        bars.back() = bar;
        living.EditRecord_New(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                              static_cast<std::int32_t>(bar.Volume));
      } else {
        bars.push_back(bar);
        append(living, bar);
      }
      living.GetScriptOutput_PTR(kScript, 0, "");
    }
    {
      CScriptOutput fresh;
      setUp(fresh);
      for (const Bar& bar : bars) append(fresh, bar);
      fresh.GetScriptOutput_PTR(kScript, 0, "");
      if (const char* name = firstDifference(living, fresh)) {
        std::printf("round %d: column %s differs from a fresh engine's\n", round, name);
        return 1;
      }
    }
    const long memory = residentKiB();
    if (round == 2) warm = memory;
    std::printf("round %2d: %8ld ticks, %7zu bars, %7ld KiB\n", round, done, bars.size(), memory);
    std::fflush(stdout);
    if (round > 2 && memory > warm + warm / 10) {
      std::printf("memory has grown by more than a tenth since round 2\n");
      return 1;
    }
  }
  std::printf("%ld ticks: results equal to a fresh engine's, memory flat\n", done);
  return 0;
}
