#include "name_ways.hpp"

#include <cmath>
#include <string>

#include "functions/sample_call.hpp"
#include "services/output/script_output.hpp"

namespace brindlewort::reference {
namespace {

/// More than the longest of the sample calls asks for.
constexpr int kBars = 120;
constexpr std::int32_t kVariables = 250;

/// Gives `take` the bars that the calls run over: prices that swing and rise, so that no formula meets a
/// standstill.
template <class Take>
void forEachBar(Take take) {
  for (int i = 0; i < kBars; ++i) {
    const double close = 50.0 + 10.0 * std::sin(0.3 * i) + 0.1 * i;
    take(2460310.5 + i, close - 0.5, close + 1.0, close - 1.0, close, 1000 + 100 * (i % 7));
  }
}

bool worksOverWholeHistory(const std::string& script) {
  CScriptOutput output;
  forEachBar([&](auto... bar) { output.AppendRecord(bar...); });
  return output.GetScriptOutput(script, 0, "").has_value();
}

bool worksIncrementally(const std::string& script) {
  CScriptOutput output;
  output.InitialiseTransientStore(kVariables);
  if (!output.ProcessScripData(script)) return false;
  forEachBar([&](auto... bar) { output.AppendRecord_New(bar...); });
  return output.GetScriptOutput_New(script, 0, "").has_value();
}

}  // namespace

Ways waysOf(const FunctionRow& row, std::string_view name) {
  const auto scriptFor = [&](Path path) { return sampleCall(row, name, path) + " > 0"; };
  return {worksOverWholeHistory(scriptFor(Path::kWholeHistory)),
          worksIncrementally(scriptFor(Path::kIncremental))};
}

}  // namespace brindlewort::reference
