// The worst scripts of their kinds: what a script of at most 63,999 characters can make of 10,000 bars, on
// either way.
// `./run bench worst` prints the table; the times are those of the host's whole call, text included.

#include <functional>
#include <string>
#include <vector>

#include "bench_support.hpp"
#include "services/output/script_output.hpp"

namespace brindlewort::bench {

namespace {

constexpr std::size_t kLongestScript = 63'999;
/// More calls than the store of the whole-history way has names end a run there.
constexpr int kMostCalls = 480;
constexpr std::int32_t kEntries = 20'000;

/// `call(i)` for i from 0 on, added up: as many as a script holds.
std::string sumOf(const std::function<std::string(int)>& call) {
  std::string script = call(0);
  for (int i = 1; i < kMostCalls; ++i) {
    const std::string next = "+" + call(i);
    if (script.size() + next.size() > kLongestScript) break;
    script += next;
  }
  return script;
}

/// The same for "NAME(arguments)", where "#" stands for periods of which each call has its own, near half the
/// bars.
std::string callsOf(const std::string& pattern) {
  return sumOf([&](int i) {
    std::string call = pattern;
    for (std::size_t at; (at = call.find('#')) != std::string::npos;) {
      call.replace(at, 1, std::to_string(4990 - i));
    }
    return call;
  });
}

std::string nestOf(const std::string& head, const std::string& core, const std::string& tail, int levels) {
  std::string script = core;
  for (int i = 0; i < levels; ++i) script = head + script + tail;
  return script;
}

struct WorstScript {
  const char* kind;
  std::string script;
};

std::vector<WorstScript> worstScripts() {
  std::string statements, commas = "MAXOF(CLOSE", arithmetic = "CLOSE";
  for (int i = 0; i < kMostCalls; ++i) {
    statements += "SET A" + std::to_string(i) + " = CLOSE * " + std::to_string(i) + "\r\n";
  }
  while (commas.size() < kLongestScript - 1) commas += ',';
  while (arithmetic.size() < kLongestScript - 2) arithmetic += "*2";
  return {
      {"AVG, long periods", callsOf("AVG(CLOSE,#)")},
      {"MAX, long periods", callsOf("MAX(CLOSE,#)")},
      {"WMA, long periods", callsOf("WMA(CLOSE,#)")},
      {"AMA, long periods", callsOf("AMA(CLOSE,#,2,30)")},
      {"AROSC, long periods", callsOf("AROSC(#)")},
      {"bands, long periods", callsOf("BBB(CLOSE,#,2,6)")},
      {"CCI, long periods", callsOf("CCI(#,6)")},
      {"CMO, long periods", callsOf("CMO(CLOSE,#)")},
      {"VHF, long periods", callsOf("VHF(CLOSE,#)")},
      {"MFI, long periods", callsOf("MFI(#)")},
      {"ULTOSC, long periods", callsOf("ULTOSC(#,#,#)")},
      {"SMID, long periods", callsOf("SMID(#,#,#,#,6,6)")},
      {"nest of COUNTIF", nestOf("COUNTIF(", "CLOSE>OPEN", ")>3", 100)},
      {"nest of EMA", nestOf("EMA(", "CLOSE", ",3)", 240)},
      {"nest of brackets", nestOf("(", "CLOSE", ")", 900)},
      {"MROUND of huge values",
       sumOf([](int i) { return "MROUND(CLOSE*1E300,0." + std::to_string(1000 + i) + ")"; })},
      {"PNO of huge values", sumOf([](int i) { return "PNO(CLOSE*1.2" + std::to_string(100 + i) + "E13)"; })},
      {"RBO, repeated", sumOf([](int i) { return "RBO(CLOSE+" + std::to_string(i) + ",49,6)"; })},
      {"%SWING", sumOf([](int i) { return "%SWING(0." + std::to_string(1000 + i) + ")"; })},
      {"many statements", statements + "CLOSE"},
      {"many commas", commas + ")"},
      {"long arithmetic", arithmetic},
  };
}

CScriptOutput withBars(bool incremental) {
  const Bars& b = bars(kSome);
  CScriptOutput output;
  if (incremental) output.InitialiseTransientStore(kEntries);
  for (std::size_t i = 0; i < b.close.size(); ++i) {
    const double date = 2444300.5 + static_cast<double>(i);
    const auto volume = static_cast<std::int32_t>(b.volume[i]);
    if (incremental) {
      output.AppendRecord_New(date, b.open[i], b.high[i], b.low[i], b.close[i], volume);
    } else {
      output.AppendRecord(date, b.open[i], b.high[i], b.low[i], b.close[i], volume);
    }
  }
  return output;
}

void wholeHistory(benchmark::State& state, const std::string& script) {
  CScriptOutput output = withBars(false);
  for (auto _ : state) benchmark::DoNotOptimize(output.GetScriptOutput(script, 0, ""));
}

/// The first run: all rows of all series.
void incremental(benchmark::State& state, const std::string& script) {
  for (auto _ : state) {
    state.PauseTiming();
    CScriptOutput output = withBars(true);
    output.ProcessScripData(script);
    state.ResumeTiming();
    benchmark::DoNotOptimize(output.GetScriptOutput_New(script, 0, ""));
  }
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const WorstScript& worst : worstScripts()) {
    const std::string name = std::string("worst scripts: ") + worst.kind;
    const auto add = [&](const char* way, auto run) {
      benchmark::RegisterBenchmark(
          (name + "/" + way).c_str(),
          [run, script = worst.script](benchmark::State& state) { run(state, script); })
          ->Arg(kSome)
          ->Unit(benchmark::kMillisecond);
    };
    add("whole history", wholeHistory);
    add("incremental", incremental);
  }
  return true;
}();

}  // namespace

}  // namespace brindlewort::bench
