// The studies of the incremental way that bind their arguments in a way of their own.

#include <cmath>

#include "functions/handlers.hpp"
#include "functions/incremental_handlers.hpp"
#include "functions/incremental_tools.hpp"
#include "functions/row_walk.hpp"
#include "indicators/candlestick.hpp"
#include "indicators/compute_rows.hpp"
#include "indicators/percent_swing.hpp"

namespace brindlewort::incremental {

namespace {

enum SwingSlot : std::size_t { kPercent = 0, kNumber = 1 };

/// The number of the swing: a number text, or a series whose last value counts.
double swingNumber(const CallSite& site) {
  return site.isSeries(kNumber) ? std::fabs(site.series[kNumber]->value) : site.numbers[kNumber];
}

bool bindSwingLevel(CScriptEngine& engine, CallSite& site) {
  constexpr std::string_view kCount = "Number of arguments not valid";
  const Slots<2> slots(engine, site, 1);
  if (slots.surplus() || slots[0].empty() || slots[1].empty())
    return engine.ReportFunction(site.name, kCount);
  if (!notNegative(engine, site, slots)) return false;
  const double range = parseDouble(slots[0]);
  if (!(range >= 0.0 && range <= 99.99)) {
    return engine.ReportFunction(site.name, "value should be between 0-99.99");
  }
  site.numbers[kNumber] = parseDouble(slots[1]);
  if (!IsNumberText(slots[1]) && !bindSeries(engine, site, kNumber, slots[1], "argument 1")) return false;
  if (!(swingNumber(site) >= 0.0 && swingNumber(site) <= 10.0)) {
    return engine.ReportFunction(site.name, "value should be between 0-10");
  }
  return engine.GetNumber(site.name, slots[0], site.numbers[kPercent], false, false) ||
         engine.ReportRequired(site.name, "swing percent");
}

bool runSwingLevel(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  const double number = swingNumber(site);
  if (!(number >= 0.0 && number <= 10.0)) {
    return engine.ReportFunction(site.name, "value should be between 0-10");
  }
  TransientStore unused(engine.variables);
  CTechnicalFunctions::PercentSwing(unused, engine.priceSources(), site.numbers[kPercent], toInt32(number),
                                    static_cast<SwingLine>(site.function.output), target(result));
  site.changedFrom = 0;
  return true;
}

bool bindCandles(CScriptEngine& engine, CallSite& site) {
  if (engine.NthArgument(site.argumentText, 1, 1).empty()) return true;
  return engine.ReportRaw("Inputs are not allowed for  " + std::string(site.name));
}

Prices viewsOf(const PriceSources& prices) {
  return {prices.open.rows, prices.high.rows, prices.low.rows, prices.close.rows, prices.volume.rows};
}

/// The type of each candle while an output is asked of the script; otherwise the type of the newest one,
/// without rows. Where the script names no pattern, every row is 0.
bool runCandles(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  const PriceSources prices = engine.priceSources();
  if (engine.candlePattern == -1) {
    computeRows(target(result), 0, static_cast<Count>(result.values.size()), [](Count) { return 0.0; });
  } else if (engine.candleOutputId != 0) {
    CTechnicalFunctions::CandlestickPattern(engine.workSeries(), prices, engine.candlePattern,
                                            target(result));
  } else {
    result.values.clear();
    result.value = CFeedkit::CandlestickPattern(viewsOf(prices), engine.candlePattern);
    site.changedFrom = 0;
  }
  return true;
}

}  // namespace

const IncrementalHandler swingLevel = {bindSwingLevel, runSwingLevel};
const IncrementalHandler candlestickPattern = {bindCandles, runCandles};

namespace {

/// Binds the slots behind the source, which has been bound before.
struct PointFigureBinder {
  CallSite& site;
  bool bindSeries(std::string_view, std::size_t) { return true; }
  void bindDefault(std::string_view, std::size_t) {}
  double& number(std::size_t i) { return site.numbers[i]; }
};

}  // namespace

/// The source goes to both operands, or HIGHLOW is the high and the low. The default of the second is looked
/// up under a name that nothing has, so that a call without a source stops.
bool bindPointFigure(CScriptEngine& engine, CallSite& site) {
  constexpr std::size_t kFirst = 0, kSecond = 3;
  const Slots<3> slots(engine, site, 1);
  if (!slots.surplus()) {
    if (slots[0] == "HIGHLOW") {
      site.series[kFirst] = engine.GetVectorRef("HIGH");
      site.series[kSecond] = engine.GetVectorRef("LOW");
    } else {
      StoreEntry* source = engine.GetVectorRef(slots[0]);
      site.series[kFirst] = source ? source : engine.GetVectorRef("CLOSE");
      site.series[kSecond] = source ? source : engine.GetVectorRef("ClOSE");
    }
    if (!site.series[kFirst] || !site.series[kSecond]) return false;
  }
  PointFigureBinder binder{site};
  return RowWalk(engine, *site.function.row, site.function.row->slots, site.name, site.argumentText, binder)
      .bind();
}

}  // namespace brindlewort::incremental
