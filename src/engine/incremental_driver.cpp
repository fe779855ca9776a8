// The driver of the incremental way: prepares scripts and runs what is prepared.

#include <algorithm>
#include <iterator>

#include "engine/expression.hpp"
#include "engine/program.hpp"
#include "functions/script_engine.hpp"
#include "platform/run_watch.hpp"

namespace brindlewort {

namespace {

/// The price variables, which a new script leaves in place.
constexpr std::size_t kPriceVariables = 5;

}  // namespace

bool CScriptEngine::ProcessScripData(std::string_view script, std::string& error) {
  Program program;
  error = readProgram(script, Way::kIncremental, program);
  for (std::string& statement : program.sets) statement = NormalizeScript(statement);
  fastSeries.reserve(fastSeries.size() + program.sets.size());
  settleRun();
  if (retrieveMode == kReplaceScript) {
    forgetExpressions();
    variables.keepIf([](std::size_t i, const StoreEntry& entry) {
      return i < kPriceVariables || entry.kind != kComputedVariable;
    });
    preparedScript.clear();
    fastSeries.clear();
  }
  // From here on nothing fails.
  takeProgram(program, Way::kIncremental);
  if (!error.empty()) return false;
  std::move(program.sets.begin(), program.sets.end(), std::back_inserter(fastSeries));
  preparedScript.swap(program.main);
  prepared_.clear();
  return true;
}

/// Everything that points to entries is made anew with the next run.
void CScriptEngine::forgetExpressions() noexcept {
  expressions_.reset();
  prepared_.clear();
  workSeries_.forget();
  outputEntries.clear();
  resultEntry = nullptr;
  lastCall_.reset();
}

void CScriptEngine::takeBackRun() noexcept {
  // All that an evaluation remembers can be found again: only the entries hold what the next run goes on
  // from.
  forgetExpressions();
  if (undo_.takeBack(variables)) {
    windowLength = runStart_.windowLength;
    candlePattern = runStart_.candlePattern;
    patternKnown_ = runStart_.patternKnown;
    currentFunction.swap(runStart_.currentFunction);
  }
  wholeHistory = false;
  repeatsAll_ = false;
  errorText.clear();
}

std::string CScriptEngine::RunFast(bool rowScan, bool dryRun_) {
  runStart_.currentFunction = currentFunction;
  runStart_.windowLength = windowLength;
  runStart_.candlePattern = candlePattern;
  runStart_.patternKnown = patternKnown_;
  undo_.begin(variables);
  errorText.clear();
  aborted_ = false;
  dryRun = dryRun_;
  paddedData = false;
  outputEntries.clear();
  resultEntry = nullptr;
  lastCall_.reset();
  ++runNumber_;
  const std::int32_t rows = static_cast<std::int32_t>(bars.size());
  const std::int32_t lookback = windowLength;
  if (lookback > rows && !dryRun) return std::string(kNotEnoughData);
  windowLength = rows;
  wholeHistory = true;
  workSeries_.setRows(bars.size());
  variables.setLimit(
      std::min<std::size_t>(reservedEntries_, mostRowsHeld / std::max<std::size_t>(bars.size(), 1)));

  std::string text;
  const std::int32_t runs = rowScan ? rows - std::min(lookback, rows) : 1;
  try {
    const platform::RunWatch watch(cancelSwitch);
    for (std::int32_t i = 0; i < runs && errorText.empty(); ++i) text = runStatements();
  } catch (const platform::RunStopped& stop) {
    endRun(stop);
  }
  if (aborted_) errorText = kTooComplex;
  if (lastCall_) currentFunction = *lastCall_;
  repeatsAll_ = false;
  return errorText.empty() ? text : errorText;
}

/// Evaluates the statements and the main expression; the first that fails ends it.
std::string CScriptEngine::runStatements() {
  if (prepared_.empty()) {
    for (const std::string& statement : fastSeries) prepared_.push_back(&expressionOf(statement));
    prepared_.push_back(&expressionOf(preparedScript));
  }
  for (std::size_t i = 0; i + 1 < prepared_.size(); ++i) {
    EvaluateFast(*prepared_[i]);
    if (!errorText.empty()) return {};
  }
  resultEntry = &EvaluateFast(*prepared_.back());
  return errorText.empty() && resultEntry->value != 0.0 ? "ALERT" : "";
}

}  // namespace brindlewort
