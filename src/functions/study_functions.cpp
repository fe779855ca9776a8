// The studies that bind their arguments in a way of their own: the swing levels and the candlestick patterns.

#include <cmath>

#include "functions/handler_tools.hpp"
#include "functions/handlers.hpp"
#include "indicators/candlestick.hpp"
#include "indicators/percent_swing.hpp"

namespace brindlewort::handlers {

/// The level of a chosen swing top or bottom. The number of the swing may be a series, whose last value
/// counts.
bool swingLevel(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  constexpr std::string_view kCount = "Number of arguments not valid";
  const Slots<2> slots(engine, call, 1);
  if (slots.surplus() || slots[0].empty() || slots[1].empty())
    return engine.ReportFunction(call.name, kCount);
  if (!notNegative(engine, call, slots)) return false;
  const double range = parseDouble(slots[0]);
  if (!(range >= 0.0 && range <= 99.99)) {
    return engine.ReportFunction(call.name, "value should be between 0-99.99");
  }
  double number = parseDouble(slots[1]);
  if (!IsNumberText(slots[1])) {
    ScriptVariable series;
    if (!bindSeries(engine, call, slots[1], "argument 1", series)) return false;
    number = std::fabs(series.value);
  }
  if (!(number >= 0.0 && number <= 10.0))
    return engine.ReportFunction(call.name, "value should be between 0-10");
  double percent = 0.0;
  if (!engine.GetNumber(call.name, slots[0], percent, false, false)) {
    return engine.ReportRequired(call.name, "swing percent");
  }
  result.values = Series(rowsOfRun(engine), NULL_VALUE);
  if (!engine.dryRun) {
    CFeedkit::PercentSwing(engine.prices(), percent, toInt32(number), static_cast<SwingLine>(call.output),
                           result.values.edit());
  }
  return true;
}

/// A flag per row while an output is asked of the script; otherwise the type of the newest candle, without
/// rows.
bool candlestickPattern(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  if (!engine.NthArgument(call.argumentText, 1, 1).empty()) {
    return engine.ReportRaw("Inputs are not allowed for  " + std::string(call.name));
  }
  if (engine.candleOutputId != 0) {
    result.values = Series(rowsOfRun(engine), 0.0);
    CFeedkit::CandlestickPatternRows(engine.prices(), engine.candlePattern, result.values.edit());
  } else if (engine.candlePattern != -1) {
    result.values.clear();
    result.value = CFeedkit::CandlestickPattern(engine.prices(), engine.candlePattern);
    call.sized = false;
  }
  return true;
}

}  // namespace brindlewort::handlers
