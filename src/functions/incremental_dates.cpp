// DATEPART and DATEDIFF of the incremental way.

#include "functions/handlers.hpp"
#include "functions/incremental_handlers.hpp"
#include "functions/incremental_tools.hpp"

namespace brindlewort::incremental {

namespace {

constexpr std::size_t kUnit = 3;  // the slot that keeps the part or unit

/// A number of bars, or a series of such numbers, whose absence the look for it reports. `text` is not empty.
bool bindBack(CScriptEngine& engine, CallSite& site, std::size_t slot, std::string_view text) {
  if (IsNumberText(text)) {
    site.numbers[slot] = static_cast<double>(magnitude(parseInt32(text)));
    return true;
  }
  site.series[slot] = engine.GetVectorRef(text);
  return site.series[slot] != nullptr;
}

bool backInRange(CScriptEngine& engine, const CallSite& site, std::size_t slot, std::string_view what) {
  if (offsetOf(site, slot) <= engine.windowLength) return true;
  return engine.ReportRaw(std::string(what) + " function reference periods outside of allowed range");
}

bool bindUnit(CScriptEngine& engine, CallSite& site, std::string_view text, int greatest) {
  int unit = 0;
  if (!handlers::bindDatePart(engine, text, greatest, unit)) return false;
  site.numbers[kUnit] = unit;
  return true;
}

/// The dates come through the entry "DATE", which is made or brought up to date by the look.
View datesOf(CScriptEngine& engine) {
  const StoreEntry* dates = engine.GetVectorRef("DATE");
  return dates && !engine.fields.empty() ? engine.dates().view() : View();
}

bool bindDatePart(CScriptEngine& engine, CallSite& site) {
  const Slots<2> slots(engine, site, 2);
  if (slots.surplus()) return reportSurplus(engine, site);
  if (slots[0].empty()) return engine.ReportRequired(site.name, "datepart reference");
  datesOf(engine);
  if (slots[1].empty()) return engine.ReportRequired(site.name, "datepart period");
  return bindUnit(engine, site, slots[1], 6) && bindBack(engine, site, 0, slots[0]);
}

bool runDatePart(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  if (!backInRange(engine, site, 0, "DATEPART()")) return false;
  CTechnicalFunctions::DatePart(datesOf(engine), barsBack(site, 0), toInt32(site.numbers[kUnit]),
                                target(result));
  return true;
}

bool bindDateDiff(CScriptEngine& engine, CallSite& site) {
  const Slots<3> slots(engine, site, 2);
  if (slots.surplus()) return reportSurplus(engine, site);
  if (slots[0].empty()) return engine.ReportRequired(site.name, "datepart reference 1");
  if (slots[1].empty()) return engine.ReportRequired(site.name, "datepart reference 2");
  datesOf(engine);
  if (slots[2].empty()) return engine.ReportRequired(site.name, "datepart periods");
  return bindUnit(engine, site, slots[2], 4) && bindBack(engine, site, 0, slots[0]) &&
         backInRange(engine, site, 0, "DATEPART(d1)") && bindBack(engine, site, 1, slots[1]);
}

bool runDateDiff(CScriptEngine& engine, CallSite& site, ScriptVariable& result) {
  if (!backInRange(engine, site, 0, "DATEPART(d1)") || !backInRange(engine, site, 1, "DATEPART(d2)"))
    return false;
  CTechnicalFunctions::DateDiff(datesOf(engine), barsBack(site, 0), barsBack(site, 1),
                                toInt32(site.numbers[kUnit]), target(result));
  return true;
}

}  // namespace

const IncrementalHandler datePart = {bindDatePart, runDatePart};
const IncrementalHandler dateDiff = {bindDateDiff, runDateDiff};

}  // namespace brindlewort::incremental
