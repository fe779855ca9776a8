#include "services/output/output_worker.hpp"

#include <algorithm>

#include "engine/long_names.hpp"
#include "series/julian_date.hpp"
#include "series/numbers.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
/// Stands for a row behind the end of a series; no comma in front, so that it runs into the field before it.
constexpr std::string_view kBehindTheEnd = "-987654321.0000";

/// A name as it is printed.
std::string cleanName(std::string_view name) {
  const std::string text = replaceAll(withUniformBlanks(name), "=(", "= (");
  return replaceAll(text, "( ", "(");
}

std::string withoutBlanks(std::string_view text) {
  return withoutChar(text, ' ');
}

std::vector<std::string> splitSets(std::string_view sets) {
  if (contains(sets, "(") || contains(sets, ")")) return {upperCase(trim(sets))};
  std::vector<std::string> items;
  for (std::size_t from = 0;;) {
    const std::size_t comma = sets.find(',', from);
    const std::string item = withoutChar(sets.substr(from, comma - from), '"');
    items.push_back(upperCase(trim(item)));
    if (comma == std::string_view::npos) return items;
    from = comma + 1;
  }
}

/// Keeps the items that end in, or hold, the name of an output series, in the order of the items.
void filterNames(std::vector<std::string>& names, std::string_view sets) {
  if (sets.empty()) return;
  std::vector<std::string> patterns;
  for (const std::string& name : names) patterns.push_back(withoutBlanks(upperCase(name)) + ",");
  std::vector<std::string> wanted;
  for (std::string& item : splitSets(sets)) {
    const std::string text = withoutBlanks(item) + ",";
    for (const std::string& pattern : patterns) {
      if (!contains(text, pattern)) continue;
      wanted.push_back(std::move(item));
      break;
    }
  }
  names = std::move(wanted);
}

/// The entry of exactly this name, else the first that is the same without blanks. A variable that a script
/// has named LAST or DATE is a column like any other, though the script itself reads the close and the dates
/// by these names.
const ScriptVariable* findEntry(const CScriptEngine& engine, std::string_view name) {
  if (const ScriptVariable* entry = engine.variables.get(name)) return entry;
  const std::string bare = withoutBlanks(name);
  for (std::size_t i = 0; i < engine.variables.size(); ++i) {
    if (withoutBlanks(engine.variables[i].name) == bare) return &engine.variables[i];
  }
  return nullptr;
}

/// The wanted names that have a series.
void collectColumns(CScriptEngine& engine, std::vector<OutputColumn>& columns) {
  for (const std::string& name : engine.outputNames) {
    const ScriptVariable* entry = findEntry(engine, name);
    if (!entry || entry->values.empty()) continue;
    columns.push_back({cleanName(name), entry->values});
  }
}

/// Room for the usual texts of so many lines.
void makeRoom(std::string& text, std::size_t lines, std::size_t columns) {
  text.reserve(std::min(64 * (columns + 1) + lines * (22 + 11 * columns), kLongestText));
}

void appendHeading(std::string& text, const std::vector<OutputColumn>& columns) {
  for (const OutputColumn& column : columns) text.append(",\"").append(column.name).append("\"");
  text += kLineEnd;
}

/// The rows where the main result of a run is exactly 1, from the lookback on. Bars are numbered `step`
/// further than rows.
struct Events {
  View rows;
  std::int32_t lookback = 0;
  std::size_t step = 0;

  template <class Use>
  void forEachBar(Use use) const {
    for (std::size_t i = static_cast<std::size_t>(lookback); i <= rows.size(); ++i) {
      if (rows[i - 1] == 1.0) use(i + step);
    }
  }
  std::string text() const {
    std::string list;
    forEachBar([&list](std::size_t bar) { list += std::to_string(bar) + ","; });
    return list;
  }
  std::vector<std::int32_t> bars() const {
    std::vector<std::int32_t> list;
    forEachBar([&list](std::size_t bar) { list.push_back(static_cast<std::int32_t>(bar)); });
    return list;
  }
};

std::string prepare(CScriptEngine& engine, std::string_view script) {
  engine.wholeHistory = true;
  engine.outputNames.clear();
  engine.result = {};
  return withShortNames(upperCase(script), &LongName::inOutput);
}

/// Runs the script; the text is what ends the work, or empty.
std::string run(CScriptEngine& engine, std::string_view script) {
  const std::string text = engine.RunScript(script, false, false);
  if (!engine.errorText.empty()) return engine.errorText;
  return text == "ALERT" ? std::string() : text;
}

void finish(CScriptEngine& engine) {
  engine.wholeHistory = false;
  engine.outputNames.clear();
}

}  // namespace

std::size_t firstOutputBar(std::int32_t mapCount) {
  return mapCount > 2 ? static_cast<std::size_t>(mapCount) - 1 : 2;
}

std::string runForOutput(CScriptEngine& engine, std::string_view hostScript, std::string_view outputSets,
                         std::vector<OutputColumn>& columns) {
  std::string text = run(engine, prepare(engine, hostScript));
  if (text.empty()) {
    filterNames(engine.outputNames, outputSets);
    collectColumns(engine, columns);
  }
  finish(engine);
  return text;
}

namespace {

/// Runs a script for its events; the text is what ends the work, or empty.
std::string runForEvents(CScriptEngine& engine, std::string_view hostScript, Events& events) {
  const std::string script = prepare(engine, hostScript);
  const std::int32_t lookback = engine.EstimateLookback(script);
  std::string text = run(engine, script);
  if (text.empty()) events = {engine.result.values.view(), lookback, 1};
  finish(engine);
  return text;
}

}  // namespace

std::vector<std::int32_t> eventBars(CScriptEngine& engine, std::string_view hostScript) {
  Events events;
  if (hostScript.empty() || !runForEvents(engine, hostScript, events).empty()) return {};
  return events.bars();
}

std::string outputText(CScriptEngine& engine, std::string_view hostScript, std::int32_t mapCount,
                       std::string_view outputSets, std::size_t longest) {
  if (hostScript.empty()) return {};
  if (engine.eventListMode) {
    engine.eventListMode = false;
    Events events;
    std::string text = runForEvents(engine, hostScript, events);
    return text.empty() ? events.text() : text;
  }
  std::vector<OutputColumn> columns;
  std::string text = runForOutput(engine, hostScript, outputSets, columns);
  if (!text.empty()) return text;

  const std::size_t first = firstOutputBar(mapCount);
  const std::size_t bars = engine.bars.size();
  if (bars > first) makeRoom(text, bars - first, columns.size());
  text = "Date";
  appendHeading(text, columns);
  for (std::size_t i = first; i < bars; ++i) {
    if (engine.takeCancel()) return std::string(kCancelled);
    appendDateTimeText(text, engine.bars[i].JDate);
    for (const OutputColumn& column : columns) {
      // The first bar never reaches a series.
      if (column.values.size() < i) {
        text += kBehindTheEnd;
      } else {
        text += ',';
        appendTruncated(text, column.values[i - 1], 4);
      }
    }
    text += kLineEnd;
    if (text.size() > longest) return std::string(kTooComplex);
  }
  return text;
}

std::string headingText(CScriptEngine& engine, std::string_view hostScript) {
  if (hostScript.empty()) return {};
  std::vector<OutputColumn> columns;
  std::string text = runForOutput(engine, hostScript, "", columns);
  if (!text.empty()) return text;
  text = "Date,Open,High,Low,Close,Volume";
  appendHeading(text, columns);
  return text;
}

// ---- The incremental way
// ------------------------------------------------------------------------------------

namespace {

/// Runs the prepared script; the text is what ends the work, or empty.
std::string runPrepared(CScriptEngine& engine) {
  const std::string text = engine.RunFast(false, false);
  engine.wholeHistory = false;
  if (!engine.errorText.empty()) return engine.errorText;
  return text == "ALERT" ? std::string() : text;
}

std::string runPreparedForEvents(CScriptEngine& engine, std::string_view hostScript, Events& events) {
  std::string text = runPrepared(engine);
  if (!text.empty()) return text;
  const std::string script = withShortNames(upperCase(hostScript), &LongName::inOutput);
  events = {engine.resultEntry->values.view(), CScriptEngine::EstimateLookbackFast(script), 0};
  return text;
}

std::vector<std::string> namesOf(const std::vector<StoreEntry*>& entries) {
  std::vector<std::string> names;
  names.reserve(entries.size());
  for (const StoreEntry* entry : entries) names.push_back(entry->name);
  return names;
}

}  // namespace

std::string runPreparedForOutput(CScriptEngine& engine, std::string_view outputSets,
                                 std::vector<OutputColumn>& columns) {
  std::string text = runPrepared(engine);
  if (text.empty()) {
    engine.outputNames = namesOf(engine.outputEntries);
    filterNames(engine.outputNames, outputSets);
    collectColumns(engine, columns);
    engine.outputNames.clear();
  }
  return text;
}

std::vector<std::int32_t> preparedEventBars(CScriptEngine& engine, std::string_view hostScript) {
  Events events;
  if (hostScript.empty() || !runPreparedForEvents(engine, hostScript, events).empty()) return {};
  return events.bars();
}

std::string preparedOutputText(CScriptEngine& engine, std::string_view hostScript, std::int32_t mapCount,
                               std::string_view outputSets, std::size_t longest) {
  if (hostScript.empty()) return {};
  if (engine.eventListMode) {
    Events events;
    std::string text = runPreparedForEvents(engine, hostScript, events);
    return text.empty() ? events.text() : text;
  }
  std::vector<OutputColumn> columns;
  std::string text = runPreparedForOutput(engine, outputSets, columns);
  if (!text.empty()) return text;

  // Rows match the bars one to one.
  const std::size_t first = mapCount > 0 ? static_cast<std::size_t>(mapCount) - 1 : 0;
  const std::size_t bars = engine.bars.size();
  if (bars > first) makeRoom(text, bars - first, columns.size());
  const bool dated = engine.retrieveMode != CScriptEngine::kReplaceScript;
  if (dated) text = "Date";
  appendHeading(text, columns);
  if (!dated && text.starts_with(',')) text.erase(0, 1);
  for (std::size_t i = first; i < bars; ++i) {
    if (engine.takeCancel()) return std::string(kCancelled);
    if (dated) appendDateTimeText(text, engine.bars[i].JDate);
    bool comma = dated;
    for (const OutputColumn& column : columns) {
      if (column.values.size() <= i) {
        text += kBehindTheEnd;
      } else {
        if (comma) text += ',';
        appendTruncated(text, column.values[i], 4);
      }
      comma = true;
    }
    text += kLineEnd;
    if (text.size() > longest) return std::string(kTooComplex);
  }
  return text;
}

std::string preparedHeadingText(CScriptEngine& engine, std::string_view hostScript) {
  if (hostScript.empty()) return {};
  std::vector<OutputColumn> columns;
  std::string text = runPreparedForOutput(engine, "", columns);
  if (!text.empty()) return text;
  text = "Date,Open,High,Low,Close,Volume";
  appendHeading(text, columns);
  return text;
}

bool runPreparedForPointers(CScriptEngine& engine, std::string_view outputSets,
                            std::vector<StoreEntry*>& entries) {
  if (!runPrepared(engine).empty()) return false;
  if (outputSets.empty()) {
    entries = engine.outputEntries;
    return true;
  }
  std::vector<std::string> names = namesOf(engine.outputEntries);
  filterNames(names, outputSets);
  entries.clear();
  for (const std::string& name : names) {
    if (const ScriptVariable* entry = findEntry(engine, name)) {
      entries.push_back(const_cast<StoreEntry*>(static_cast<const StoreEntry*>(entry)));
    }
  }
  return true;
}

}  // namespace brindlewort
