#include "script_trial.hpp"

#include <cstdlib>
#include <vector>

#include "functions/script_engine.hpp"
#include "series/text.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

static_assert(kIncrementalEntries == kMaxVariables);

/// More than any period that a script is likely to hold.
constexpr std::int32_t kTrialBars = 20'000;
constexpr double kTrialDate = 2451544.5;  // 2000-01-01

constexpr std::string_view kWhatNext =
    "\nCorrect the script and start again. 'brindlewort validate' looks at it without bars, and 'brindlewort "
    "help NAME' tells about a function.";
constexpr std::string_view kGiveMore = ". Give more bars, or use shorter periods.";

/// Bars of a price that goes up and down between 100 and 110.
std::vector<Bar> trialBars() {
  std::vector<Bar> bars(static_cast<std::size_t>(kTrialBars));
  for (std::int32_t i = 0; i < kTrialBars; ++i) {
    Bar& bar = bars[static_cast<std::size_t>(i)];
    const double level = 100.0 + std::abs(i % 20 - 10);
    bar.JDate = kTrialDate + i;
    bar.OpenPrice = level;
    bar.HighPrice = level + 2.0;
    bar.LowPrice = level - 2.0;
    bar.ClosePrice = level + i % 3 - 1;
    bar.Volume = 1000.0 + i % 7;
  }
  return bars;
}

std::string runIncrementally(CScriptEngine& engine, const std::string& script, const std::vector<Bar>& bars) {
  engine.InitialiseTransientStore(kIncrementalEntries);
  std::string error;
  if (!engine.ProcessScripData(script, error)) return error;
  for (const Bar& bar : bars) engine.ApplyBarChange(bar, CScriptEngine::kNewBar);
  return engine.RunFast(false, false);
}

}  // namespace

void failForScript(const std::string& error) {
  throw ToolError(kExitScript, error + std::string(kWhatNext));
}

std::string trialError(const std::string& script, Way way) {
  CScriptEngine engine;
  const std::vector<Bar> bars = trialBars();
  engine.bars.use(bars);
  const std::string text = way == Way::kIncremental ? runIncrementally(engine, script, bars)
                                                    : engine.RunScript(script, false, false);
  return text == "ALERT" ? std::string() : text;
}

void requireSoundScript(const std::string& script, Way way) {
  const std::string error = trialError(script, way);
  if (!error.empty()) failForScript(error);
}

std::int32_t barsWanted(const std::string& script, Way way) {
  const std::string text = upperCase(script);
  return way == Way::kIncremental ? CScriptEngine::EstimateLookbackFast(text)
                                  : CScriptEngine().EstimateLookback(text) - kFillerBars;
}

void failForMoreBars(std::int32_t bars, const std::string& script, Way way, const std::string& error) {
  const std::int32_t wanted = barsWanted(script, way);
  const std::string count = std::to_string(bars);
  const std::string reason =
      bars < wanted ? "the script asks for " + std::to_string(wanted) + " bars, and there were " + count
                    : "over the " + count + " bars that there were the script gives \"" + error + '"';
  throw ToolError(kExitScript, "Not enough data: " + reason + std::string(kGiveMore));
}

}  // namespace brindlewort::tool
