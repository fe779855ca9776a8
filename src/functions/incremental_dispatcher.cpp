// The dispatcher of the incremental way: the same table, walked with references to entries instead of copies.
// A result lives in its entry across runs, and an operation resumes at the entry's slot, so there is no early
// return for a stored result.

#include <algorithm>
#include <bit>
#include <cmath>

#include "functions/row_walk.hpp"
#include "functions/script_engine.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

/// Gives the arguments as entries of the store.
struct EntryBinder {
  CScriptEngine& engine;
  CallSite& site;

  bool bindSeries(std::string_view text, std::size_t i) {
    site.series[i] = engine.GetVectorRef(text);
    return site.series[i] != nullptr;
  }
  void bindDefault(std::string_view name, std::size_t i) { site.series[i] = engine.GetVectorRef(name); }
  double& number(std::size_t i) { return site.numbers[i]; }
};

/// The first row that an operation may have written which found `slot` rows computed.
std::size_t firstRewritten(const FunctionRow& row, const CallSite& site, std::int32_t slot) {
  if (row.rewrites == Rewrites::kAll) return 0;
  const std::size_t rows = firstRecomputed(slot);
  if (row.rewrites != Rewrites::kPeriods) return rows;
  const double greatest = *std::max_element(site.numbers.begin(), site.numbers.end());
  return rows - std::min(rows, static_cast<std::size_t>(std::clamp(greatest, 0.0, 1e9)));
}

std::string callKey(std::string_view name, std::string_view innerText) {
  // A call without arguments has brackets in its key, so that it never meets a variable of the function's
  // name.
  std::string key = std::string(name) + "(" + withUniformBlanks(innerText) + ")";
  NormalizeKey(key);
  return key;
}

}  // namespace

bool ArgumentValue::operator==(const ArgumentValue& other) const {
  if (entry != other.entry || hasRows != other.hasRows) return false;
  return hasRows || std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(other.value);
}

Source IncrementalArguments::source(std::size_t slot) const {
  const StoreEntry* entry = site.series[slot];
  if (!entry) return {{}, {}};
  return {entry->values.view(), entry->name};
}

double IncrementalArguments::number(std::size_t slot) const {
  return site.numbers[slot];
}

PriceSources CScriptEngine::priceSources() {
  static constexpr std::array<std::string_view, 5> kNames = {"OPEN", "HIGH", "LOW", "CLOSE", "VOLUME"};
  if (priceShape_ != variables.shape()) {
    for (std::size_t i = 0; i < kNames.size(); ++i) priceEntries_[i] = variables.get(kNames[i]);
    priceShape_ = variables.shape();
  }
  const auto source = [&](std::size_t i) -> Source {
    const StoreEntry* entry = priceEntries_[i];
    return {entry ? entry->values.view() : View(), kNames[i]};
  };
  return {source(0), source(1), source(2), source(3), source(4)};
}

StoreEntry* CScriptEngine::AddStoreEntry(std::string_view name) {
  if (variables.full()) {
    abortRun();
    return nullptr;
  }
  std::string key(name);
  NormalizeKey(key);
  const bool isNumber = IsNumberText(key);
  ScriptVariable fresh{std::move(key), 0.0, {}, -1, kComputedVariable};
  if (!isNumber) fresh.values.assign(static_cast<std::size_t>(std::max(windowLength, 0)), 0.0);
  StoreEntry& entry = variables[variables.append(std::move(fresh))];
  if (isNumber) {
    entry.isConstant = true;
    entry.value = parseDouble(entry.name);
  }
  return &entry;
}

StoreEntry* CScriptEngine::dateEntry() {
  StoreEntry* entry = variables.get("DATE");
  if (!entry) {
    entry = AddStoreEntry("DATE");
    if (!entry) return nullptr;
    entry->values.assign(entry->values.size(), NULL_VALUE);
    datesTaken_ = 0;
  }
  if (fields.empty() || fields.front().values.empty()) return entry;
  const View dates = this->dates().view();
  const Out rows = entry->values.edit();
  const std::size_t end = std::min(rows.size(), dates.size());
  const std::size_t from = std::min(datesTaken_ > 0 ? datesTaken_ - 1 : 0, end);
  std::copy(dates.begin() + static_cast<std::ptrdiff_t>(from),
            dates.begin() + static_cast<std::ptrdiff_t>(end),
            rows.begin() + static_cast<std::ptrdiff_t>(from));
  datesTaken_ = end;
  entry->value = dates.back();
  noteChange(*entry, from);
  return entry;
}

StoreEntry* CScriptEngine::GetVectorRef(std::string_view text) {
  if (text.empty()) return nullptr;
  if (text == "LAST") text = "CLOSE";
  if (text == "DATE") return dateEntry();
  std::string key(text);
  NormalizeKey(key);
  if (StoreEntry* entry = variables.get(key)) return entry;
  if (StoreEntry* constant = constants.get(text)) return constant;
  if (IsNumberText(key)) return AddStoreEntry(key);
  if (errorText.empty()) errorText = "Error: Undefined variable '" + std::string(text) + "'";
  return nullptr;
}

void CScriptEngine::listOutput(StoreEntry& entry) {
  if (!wholeHistory || entry.listedIn == runNumber_) return;
  entry.listedIn = runNumber_;
  outputEntries.push_back(&entry);
}

void CScriptEngine::noteCall(std::string_view name) {
  lastCall_ = name;
  ++callsNoted_;
}

/// The entry of a call's result, found or made.
StoreEntry* CScriptEngine::resultOf(CallSite& site) {
  if (site.result && site.resultShape == variables.shape()) return site.result;
  const std::string key = callKey(site.name, site.innerText);
  site.result = variables.get(key);
  if (!site.result) site.result = AddStoreEntry(key);
  site.resultShape = variables.shape();
  return site.result;
}

/// Binds the arguments, unless they are those of the last run.
bool CScriptEngine::bindCall(CallSite& site) {
  if (site.bound && site.boundShape == variables.shape() && site.values == site.boundValues) return true;
  site.bound = false;
  currentFunction = site.name;
  site.argumentText.clear();
  for (std::size_t i = 0; i < site.values.size(); ++i) {
    const ArgumentValue& value = site.values[i];
    const std::string_view text = site.arguments[i].text;
    if (i > 0) site.argumentText += ", ";
    if (value.hasRows) {
      site.argumentText += value.entry->name;
    } else if (!value.entry || IsNumberText(text)) {
      site.argumentText += text;
    } else {
      appendFixed(site.argumentText, value.value, 20);
    }
  }
  site.series.fill(nullptr);
  site.numbers.fill(0.0);
  const FunctionRow& row = *site.function.row;
  if (row.incrementalHandler.bind) {
    if (!row.incrementalHandler.bind(*this, site)) return false;
  } else {
    EntryBinder binder{*this, site};
    const std::vector<Slot>& slots = row.incrementalSlots.empty() ? row.slots : row.incrementalSlots;
    if (!RowWalk(*this, row, slots, site.name, site.argumentText, binder).bind()) return false;
  }
  site.bound = errorText.empty();
  site.boundValues = site.values;
  site.boundShape = variables.shape();
  return true;
}

/// Runs the operation into the entry of the result. One that is interrupted leaves rows and work series that
/// are computed in full the next time.
bool CScriptEngine::runCall(CallSite& site, StoreEntry& result) {
  const FunctionRow& row = *site.function.row;
  site.changedFrom = firstRewritten(row, site, result.slot);
  undo_.keepRows(result, row.rewrites == Rewrites::kAll ? result.values.size() : site.changedFrom);
  if (result.slot == -1) platform::spendSteps(windowLength);
  if (!row.settles) ++effects_;
  workSeries_.askFor(site.work);
  try {
    if (row.incrementalHandler.run) return row.incrementalHandler.run(*this, site, result);
    const PriceSources prices = priceSources();
    const IncrementalArguments arguments{workSeries_, site, prices, site.function.output, result.name};
    row.incremental(arguments, {result.values.edit(), &result.slot});
    return true;
  } catch (const platform::RunStopped&) {
    // What is half made is made anew, and cannot be taken back any more.
    result.values.clear();
    site.work.restart();
    settleRun();
    throw;
  }
}

StoreEntry* CScriptEngine::EvaluateFunctionFast(CallSite& site) {
  noteCall(site.name);
  StoreEntry* result = resultOf(site);
  if (!result) return nullptr;
  const std::size_t rows = static_cast<std::size_t>(std::max(windowLength, 0));
  const bool lost = result->values.empty() && rows > 0;
  if (lost) {
    result->values.assign(rows, NULL_VALUE);
    result->slot = -1;
    noteChange(*result, 0);
  }
  // A result that has never been computed starts all missing.
  const bool isNull = site.nullSince != 0 && result->changes.since(site.nullSince) == ChangeLog::kNone;
  if (result->slot == -1) {
    if (!isNull) {
      result->values.assign(result->values.size(), NULL_VALUE);
      noteChange(*result, 0);
      site.nullSince = moment_;
    }
    result->value = NULL_VALUE;
  }
  if (!site.function.row) {
    errorText = "Error: Undefined function '" + std::string(site.name) + "'";
    return nullptr;
  }
  if (!bindCall(site)) return nullptr;
  // After a failed argument the checks report, but nothing is computed: its rows would stay.
  if (!errorText.empty() || !runCall(site, *result)) return nullptr;
  if (workSeries_.exhausted()) {
    workSeries_.forget();
    abortRun();
    return nullptr;
  }
  if (result->slot != -1) noteChange(*result, site.changedFrom);
  if (!result->values.empty()) {
    if (result->values.size() != rows) {
      result->values.resize(rows, 0.0);
      noteChange(*result, 0);
    } else if (rows > 0) {
      result->value = result->values.back();
    }
  }
  listOutput(*result);
  return result;
}

}  // namespace brindlewort
