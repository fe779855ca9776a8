// Single-argument mathematics, rounding, SUM, AVERAGE, MAX, MIN, MAXOF and MINOF of the incremental way.
// Nulls are no numbers here, save where an operation says so.

#include "functions/handlers.hpp"
#include "functions/incremental_handlers.hpp"
#include "functions/incremental_tools.hpp"
#include "platform/clock.hpp"

namespace brindlewort::incremental {

namespace {

bool bindMath(CScriptEngine& engine, CallSite& site) {
  const Slots<1> slots(engine, site, 1);
  if (slots.surplus()) return reportSurplus(engine, site);
  return bindSeries(engine, site, 0, slots[0], "source");
}

bool runMath(CScriptEngine&, CallSite& site, ScriptVariable& result) {
  if (site.function.output == handlers::kRnd) {
    const auto seed = static_cast<std::uint32_t>(platform::secondsSince1970());
    CTechnicalFunctions::RandomSeries(operandOf(site, 0), seed, target(result));
  } else {
    CTechnicalFunctions::MathFunction(operandOf(site, 0), handlers::mathFunctionOf(site.function.output),
                                      target(result));
  }
  return true;
}

bool bindRound(CScriptEngine& engine, CallSite& site) {
  const Slots<2> slots(engine, site, 2);
  if (slots.surplus()) return reportSurplus(engine, site);
  if (slots[1].empty()) return engine.ReportRequired(site.name, "Argument cannot be blank");
  if (!bindSeries(engine, site, 0, slots[0], "argument 1")) return false;
  if (!IsNumberText(slots[1]) && !bindSeries(engine, site, 1, slots[1], "argument 2")) return false;
  site.numbers[0] = parseInt32(slots[1]);
  site.numbers[1] = parseDouble(slots[1]);
  return site.numbers[1] > 0.0 || handlers::reportTooSmall(engine, site.name);
}

bool runRound(CScriptEngine&, CallSite& site, ScriptVariable& result) {
  const Rounding rounding =
      handlers::roundingOf(site.function.output, toInt32(site.numbers[0]), site.numbers[1]);
  CTechnicalFunctions::RoundSeries(operandOf(site, 0), rounding, target(result));
  return true;
}

bool bindWindow(CScriptEngine& engine, CallSite& site) {
  const Slots<2> slots(engine, site, 2);
  if (slots.surplus()) return reportSurplus(engine, site);
  if (!notNegative(engine, site, slots) || !bindSeries(engine, site, 0, slots[0], "source")) return false;
  if (slots[1].empty()) return engine.ReportRequired(site.name, "Argument cannot be blank");
  return bindOffset(engine, site, 1, slots[1], "argument 2");
}

bool runWindow(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  const Count p = offsetOf(site, 1);
  if (p < 1) return handlers::reportTooSmall(engine, site.name);
  const View source = rowsOf(site, 0);
  bool headWritten = false;
  switch (site.function.output) {
    case handlers::kSum:
      CTechnicalFunctions::SumSeries(source, p, target(result), &headWritten);
      break;
    case handlers::kAverage:
      CTechnicalFunctions::AverageSeries(source, p, target(result), &headWritten);
      break;
    default:
      CTechnicalFunctions::WindowExtreme(source, p, site.function.output == handlers::kMax, target(result));
      break;
  }
  if (headWritten) site.changedFrom = 0;
  return true;
}

bool bindExtremeOf(CScriptEngine& engine, CallSite& site) {
  const Slots<8> slots(engine, site, 2);
  if (slots.surplus()) return reportSurplus(engine, site);
  if (!notNegative(engine, site, slots)) return false;
  for (std::size_t i = 0; i < 8; ++i) {
    site.series[i] = engine.GetVectorRef(slots[i]);
    if (!site.series[i] && i < 2) {
      return engine.ReportRequired(site.name, "argument " + std::to_string(i + 1));
    }
  }
  return true;
}

/// Numbers get their rows in the store itself, where other calls then find them.
void fillNumber(CScriptEngine& engine, StoreEntry& entry) {
  const std::size_t rows = static_cast<std::size_t>(std::max(engine.windowLength, 0));
  const std::size_t before = entry.values.size();
  if (!entry.isConstant || before >= rows) return;
  entry.values.resize(rows, entry.value);
  engine.noteChange(entry, before);
}

bool runExtremeOf(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  std::array<Operand, 8> vectors;
  std::size_t count = 0;
  for (std::size_t i = 0; i < vectors.size(); ++i) {
    StoreEntry* entry = site.series[i];
    if (!entry) continue;
    fillNumber(engine, *entry);
    if (entry->values.empty()) return engine.ReportRequired(site.name, "argument " + std::to_string(i + 1));
    vectors[count++] = operandOf(*entry);
  }
  const std::span<const Operand> present = std::span(vectors).first(count);
  if (site.function.output == handlers::kMaxOf) {
    CTechnicalFunctions::MaxOfSeries(present, target(result));
  } else {
    CTechnicalFunctions::MinOfSeries(present, target(result));
  }
  return true;
}

}  // namespace

const IncrementalHandler mathFunction = {bindMath, runMath};
const IncrementalHandler roundSeries = {bindRound, runRound};
const IncrementalHandler windowFunction = {bindWindow, runWindow};
const IncrementalHandler extremeOfSeries = {bindExtremeOf, runExtremeOf};

}  // namespace brindlewort::incremental
