// IF, COUNTIF, SUMIF, LASTIF, REPEATIF, CROSSOVER, REF and LOOP of the incremental way.

#include "functions/handlers.hpp"
#include "functions/incremental_handlers.hpp"
#include "functions/incremental_tools.hpp"

namespace brindlewort::incremental {

namespace {

bool joinsConditions(std::string_view text) {
  return contains(text, " AND ") || contains(text, " OR ");
}

/// The rule of one comparison is about the arguments' own texts: keys of the store have lost their blanks.
bool oneConditionOnly(CScriptEngine& engine, const CallSite& site) {
  for (std::size_t i = 0; i < site.values.size(); ++i) {
    if (joinsConditions(site.arguments[i].text)) {
      return engine.ReportInvalid(site.name, std::string(site.name) +
                                                 " function must contain only one condition, "
                                                 "without the 'AND' or 'OR' operators");
    }
  }
  return true;
}

std::string_view ownText(const CallSite& site, std::size_t argument) {
  return argument < site.values.size() ? site.arguments[argument].text : std::string_view();
}

/// The condition is the first argument's own text, put in brackets and evaluated as an expression.
void bindCondition(CScriptEngine& engine, CallSite& site) {
  site.parts[0] = &engine.expressionOf("(" + std::string(ownText(site, 0)) + ")");
}

/// Evaluates an expression of the function's own; null when that fails.
const StoreEntry* evaluatePart(CScriptEngine& engine, CallSite& site, std::size_t part) {
  const StoreEntry& entry = engine.EvaluateFast(*site.parts[part]);
  return engine.errorText.empty() ? &entry : nullptr;
}

/// Binds a part of IF. The condition is evaluated before a part that has come as a bare word is missed, and
/// may be what is evaluated last.
bool bindPart(CScriptEngine& engine, CallSite& site, std::size_t part, std::string_view text,
              std::string_view label) {
  const bool isBareWord = part < site.values.size() && !site.values[part].entry;
  if (isBareWord && engine.errorText.empty()) evaluatePart(engine, site, 0);
  return bindSeries(engine, site, part, text, label);
}

bool bindIf(CScriptEngine& engine, CallSite& site) {
  const Slots<3> slots(engine, site, 3);
  if (slots.surplus()) return reportSurplus(engine, site);
  bindCondition(engine, site);
  if (!bindPart(engine, site, 1, slots[1], "argument 2")) return false;
  if (!bindPart(engine, site, 2, slots[2], "argument 3")) return false;
  if (!oneConditionOnly(engine, site) || !notNegative(engine, site, slots)) return false;
  for (std::size_t part : {1, 2}) site.parts[part] = &engine.expressionOf(ownText(site, part));
  return true;
}

bool runIf(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  std::array<const StoreEntry*, 3> parts{};
  for (std::size_t i = 0; i < parts.size(); ++i) {
    parts[i] = evaluatePart(engine, site, i);
    if (!parts[i]) return false;
  }
  CTechnicalFunctions::IfThenElse(operandOf(*parts[0]), operandOf(*parts[1]), operandOf(*parts[2]),
                                  target(result));
  return true;
}

/// What COUNTIF, LASTIF and REPEATIF bind; the first reports a surplus in a way of its own.
bool bindConditionAlone(CScriptEngine& engine, CallSite& site, bool surplusAsFunction) {
  const Slots<1> slots(engine, site, 1);
  if (slots.surplus()) {
    return surplusAsFunction ? engine.ReportFunction(site.name, "Number of") : reportSurplus(engine, site);
  }
  if (!notNegative(engine, site, slots) || !oneConditionOnly(engine, site)) return false;
  bindCondition(engine, site);
  return true;
}

bool bindCountIf(CScriptEngine& engine, CallSite& site) {
  return bindConditionAlone(engine, site, true);
}

bool runCountIf(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  const StoreEntry* condition = evaluatePart(engine, site, 0);
  if (!condition) return false;
  CTechnicalFunctions::CountIf(condition->values.view(), target(result));
  return true;
}

bool bindSumIf(CScriptEngine& engine, CallSite& site) {
  const Slots<2> slots(engine, site, 1);
  if (slots.surplus()) return engine.ReportFunction(site.name, "Number of");
  if (!notNegative(engine, site, slots)) return false;
  if (!bindSeries(engine, site, 1, slots[1], "vector") || !oneConditionOnly(engine, site)) return false;
  bindCondition(engine, site);
  return true;
}

bool runSumIf(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  const StoreEntry* condition = evaluatePart(engine, site, 0);
  if (!condition) return false;
  CTechnicalFunctions::SumIf(condition->values.view(), rowsOf(site, 1), target(result));
  return true;
}

bool bindRunCount(CScriptEngine& engine, CallSite& site) {
  return bindConditionAlone(engine, site, false);
}

bool runRunCount(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  const StoreEntry* condition = evaluatePart(engine, site, 0);
  if (!condition) return false;
  CTechnicalFunctions::RunCount(condition->values.view(), site.function.output == handlers::kRepeatIf,
                                target(result));
  return true;
}

bool bindCrossOver(CScriptEngine& engine, CallSite& site) {
  const Slots<2> slots(engine, site, 2);
  if (slots.surplus()) return reportSurplus(engine, site);
  return notNegative(engine, site, slots) && bindSeries(engine, site, 0, slots[0], "vector 1") &&
         bindSeries(engine, site, 1, slots[1], "vector 2");
}

bool runCrossOver(CScriptEngine&, CallSite& site, ScriptVariable& result) {
  CTechnicalFunctions::CrossOver(operandOf(site, 0), operandOf(site, 1), target(result));
  return true;
}

bool bindReference(CScriptEngine& engine, CallSite& site) {
  const Slots<2> slots(engine, site, 2);
  if (slots.surplus()) return reportSurplus(engine, site);
  if (!notNegative(engine, site, slots) || !bindSeries(engine, site, 0, slots[0], "source")) return false;
  if (slots[1].empty()) return engine.ReportRequired(site.name, "reference periods");
  return bindOffset(engine, site, 1, slots[1], "argument 1");
}

bool runReference(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  if (offsetOf(site, 1) > engine.windowLength) {
    return engine.ReportRaw("REF() function reference periods outside of allowed range");
  }
  CTechnicalFunctions::Reference(rowsOf(site, 0), barsBack(site, 1), target(result));
  return true;
}

bool bindLoop(CScriptEngine& engine, CallSite& site) {
  const Slots<5> slots(engine, site, 5);
  if (slots.surplus()) return reportSurplus(engine, site);
  if (!notNegative(engine, site, slots)) return false;
  static constexpr std::string_view kLabels[] = {"vector1", "vector2", "vector3", "vector4"};
  for (std::size_t i = 0; i < std::size(kLabels); ++i) {
    if (!bindSeries(engine, site, i, slots[i], kLabels[i])) return false;
  }
  if (!engine.GetNumber(site.name, slots[4], site.numbers[4], true, false)) {
    return engine.ReportRequired(site.name, "operator");
  }
  for (std::size_t i : {2, 3}) {
    site.series[i] = nullptr;
    if (!bindOffset(engine, site, i, slots[i], i == 2 ? "argument 3" : "argument 4")) return false;
  }
  if (joinsConditions(ownText(site, 0))) {
    return engine.ReportInvalid(site.name,
                                "LOOP function may not contain a condition with 'AND' or 'OR' operators");
  }
  return true;
}

bool runLoop(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  const Count first = offsetOf(site, 2), second = offsetOf(site, 3);
  if (std::max(first, second) > static_cast<Count>(result.values.size())) {
    const Slots<5> slots(engine, site, 5);
    return engine.ReportInvalid(site.name,
                                std::string(slots[0]) + " Cannot be accessed by" + std::string(slots[2]));
  }
  CTechnicalFunctions::LoopSeries(operandOf(site, 0), operandOf(site, 1), first, second,
                                  toInt32(site.numbers[4]), target(result));
  return true;
}

}  // namespace

const IncrementalHandler ifThenElse = {bindIf, runIf};
const IncrementalHandler countIf = {bindCountIf, runCountIf};
const IncrementalHandler sumIf = {bindSumIf, runSumIf};
const IncrementalHandler runCount = {bindRunCount, runRunCount};
const IncrementalHandler crossOver = {bindCrossOver, runCrossOver};
const IncrementalHandler reference = {bindReference, runReference};
const IncrementalHandler loopSeries = {bindLoop, runLoop};

}  // namespace brindlewort::incremental
