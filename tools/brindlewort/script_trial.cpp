#include "script_trial.hpp"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "functions/script_engine.hpp"
#include "series/text.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

static_assert(kIncrementalEntries == kMaxVariables);

/// So many bars beyond those that a script asks for let each of its functions give some rows.
constexpr std::int32_t kBarsToSpare = 100;
constexpr double kTrialDate = 2451544.5;  // 2000-01-01

constexpr std::string_view kWhatNext =
    "\nCorrect the script and start again. 'brindlewort validate' looks at it without bars, and 'brindlewort "
    "help NAME' tells about a function.";
constexpr std::string_view kGiveMore = ". Give more bars, or use shorter periods.";

std::string errorIn(std::string result) {
  return result == "ALERT" ? std::string() : std::move(result);
}

std::string tryOverWholeHistory(const std::string& script, const std::vector<Bar>& bars) {
  CScriptEngine engine;
  engine.bars.use(bars);
  return errorIn(engine.RunScript(script, false, false));
}

Trial tryIncrementally(const std::string& script, const std::vector<Bar>& bars) {
  Trial trial;
  CScriptEngine engine;
  engine.bars.use(bars);
  engine.InitialiseTransientStore(kIncrementalEntries);
  if (!engine.ProcessScripData(script, trial.error)) return trial;
  for (const Bar& bar : bars) engine.ApplyBarChange(bar, CScriptEngine::kNewBar);
  trial.error = errorIn(engine.RunFast(false, false));
  for (const StoreEntry* entry : engine.outputEntries) {
    if (!entry->values.empty()) trial.columns.push_back(withUniformBlanks(entry->name));
  }
  return trial;
}

Trial tryOver(std::int32_t count, const std::string& script, Way way) {
  const std::vector<Bar> bars = trialBars(count);
  return way == Way::kIncremental ? tryIncrementally(script, bars)
                                  : Trial{tryOverWholeHistory(script, bars), {}};
}

}  // namespace

void failForScript(const std::string& error) {
  throw ToolError(kExitScript, error + std::string(kWhatNext));
}

/// They are of a price that goes up and down between 100 and 110.
std::vector<Bar> trialBars(std::int32_t count) {
  std::vector<Bar> bars(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) {
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

Trial tryScript(const std::string& script, Way way) {
  // Over the bars that it asks for a sound script takes no time, whatever its periods. Not every period is
  // among those that it is known to ask for, so that a failure counts over many bars alone.
  const std::int32_t few = std::min(barsWanted(script, way) + kBarsToSpare, kMostTrialBars);
  Trial trial = tryOver(few, script, way);
  return trial.error.empty() || few == kMostTrialBars ? trial : tryOver(kMostTrialBars, script, way);
}

void requireSound(const Trial& trial, const OtherWay& otherWay) {
  if (trial.error.empty()) return;
  if (!otherWay.computesIt()) failForScript(trial.error);
  throw ToolError(kExitScript, trial.error + '\n' + std::string(otherWay.advice));
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
  throw ToolError(kExitNothing, "Not enough data: " + reason + std::string(kGiveMore));
}

}  // namespace brindlewort::tool
