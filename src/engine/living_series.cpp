// The data of the incremental way: the engine's series and how bars and the host's own values flow into them.

#include <algorithm>
#include <array>

#include "functions/script_engine.hpp"
#include "series/field_list.hpp"
#include "series/numbers.hpp"

namespace brindlewort {

namespace {

constexpr std::int32_t kFewestEntries = 10;
constexpr std::int32_t kUsualEntries = 250;

struct PriceColumn {
  std::string_view variable;
  double Bar::*member;
};
constexpr std::array<PriceColumn, 5> kPrices = {{{"OPEN", &Bar::OpenPrice},
                                                 {"HIGH", &Bar::HighPrice},
                                                 {"LOW", &Bar::LowPrice},
                                                 {"CLOSE", &Bar::ClosePrice},
                                                 {"VOLUME", &Bar::Volume}}};

/// The price that an entry of this name takes from a bar; NULL_VALUE for any other name.
double priceOf(std::string_view name, const Bar& bar) {
  if (name.size() < 3 || name.size() > 6) return NULL_VALUE;
  for (const PriceColumn& column : kPrices) {
    if (name != column.variable) continue;
    return column.member == &Bar::Volume ? static_cast<double>(volumeToInt32(bar.Volume))
                                         : bar.*column.member;
  }
  return NULL_VALUE;
}

/// The first series of data of this name; a value of a script may have the name as well.
StoreEntry* dataNamed(VariableStore& variables, std::string_view name) {
  StoreEntry* first = variables.get(name);
  if (!first || first->kind == kDataVariable) return first;
  for (std::size_t i = 0; i < variables.size(); ++i) {
    if (variables[i].kind == kDataVariable && variables[i].name == name) return &variables[i];
  }
  return nullptr;
}

/// Bars add no rows to numbers, nor to what has none.
bool takesBars(const StoreEntry& entry) {
  return !entry.hasNumberName && (entry.kind == kDataVariable || !entry.values.empty());
}

bool takesLevel(const StoreEntry& entry, double value) {
  return entry.kind == kDataVariable && value > 0.0 && !entry.values.empty() && entry.values[0] <= 0.0;
}

void setLast(Series& series, double value) {
  if (!series.empty()) series.set(series.size() - 1, value);
}

}  // namespace

void CScriptEngine::InitialiseTransientStore(std::int32_t variablesSize) {
  static constexpr std::array<std::string_view, 6> kFields = {kDateField, kOpenField,  kHighField,
                                                              kLowField,  kCloseField, kVolumeField};
  std::vector<Field> priceFields;
  priceFields.reserve(kFields.size());
  for (std::string_view name : kFields) CFeedkit::addField(priceFields, name, -1);
  VariableStore prices;
  for (const PriceColumn& price : kPrices) {
    prices.append({std::string(price.variable), 0.0, {}, -1, kDataVariable});
  }
  ResetConstants();
  settleRun();
  forgetExpressions();
  fields.swap(priceFields);
  variables.adopt(std::move(prices));
  reservedEntries_ = static_cast<std::size_t>(variablesSize < kFewestEntries ? kUsualEntries : variablesSize);
}

void CScriptEngine::ClearIncremental() {
  settleRun();
  forgetExpressions();
  preparedScript.clear();
  fastSeries.clear();
  variables.clear();
  constants.clear();
  bars.clear();
  fields.clear();
  reservedEntries_ = 0;
}

std::int32_t CScriptEngine::ApplyBarChange(const Bar& bar, std::int32_t mode, BarUndo* undo) {
  if (mode != kNewBar && mode != kChangedLastBar) return -1;
  settleRun();
  makeRowsReady(bar, mode, undo);
  if (mode == kChangedLastBar) return changeLastRow(bar);
  addRows(bar);
  return 0;
}

void CScriptEngine::takeBackBar(BarUndo& undo) noexcept {
  undo.takeBack(variables, fields);
}

/// Does all for which memory can run out, so that no series gets a row for which another has no room.
void CScriptEngine::makeRowsReady(const Bar& bar, std::int32_t mode, BarUndo* undo) {
  const auto makeReady = [mode](Series& rows) { mode == kNewBar ? rows.reserveRow() : void(rows.edit()); };
  for (Field& field : fields) makeReady(field.values);
  if (undo) undo->begin(variables, fields);
  for (std::size_t i = 0; i < variables.size(); ++i) {
    StoreEntry& entry = variables[i];
    if (!takesBars(entry)) continue;
    makeReady(entry.values);
    if (undo && takesLevel(entry, priceOf(entry.name, bar))) undo->keepSeries(i, entry.values);
  }
}

/// The first variables stand beside the price fields, and feed them.
Series* CScriptEngine::fieldBeside(std::size_t variable) {
  return variable < kPrices.size() && variable + 1 < fields.size() ? &fields[variable + 1].values : nullptr;
}

void CScriptEngine::addRows(const Bar& bar) {
  if (!fields.empty()) fields[0].values.push_back(bar.JDate);
  for (std::size_t i = 0; i < variables.size(); ++i) {
    StoreEntry& entry = variables[i];
    if (!takesBars(entry)) continue;
    const double value = priceOf(entry.name, bar);
    if (entry.kind == kDataVariable) takeLevel(entry, value);
    if (Series* field = fieldBeside(i)) field->push_back(value);
    entry.values.push_back(value);
    entry.value = value;
  }
}

std::int32_t CScriptEngine::changeLastRow(const Bar& bar) {
  if (!fields.empty()) setLast(fields[0].values, bar.JDate);
  for (std::size_t i = 0; i < variables.size(); ++i) {
    StoreEntry& entry = variables[i];
    if (entry.hasNumberName) continue;
    const bool isData = entry.kind == kDataVariable;
    if (entry.values.empty() && isData) return -1;
    if (entry.values.empty()) continue;
    const double value = priceOf(entry.name, bar);
    if (isData) takeLevel(entry, value);
    setLast(entry.values, value);
    if (Series* field = fieldBeside(i)) setLast(*field, value);
    entry.value = value;
  }
  return 0;
}

/// A series that has held nothing above 0 takes its level from the first value that is: all rows become it. A
/// series of the host may be shorter than the others, so that its last row counts as changed in any case.
void CScriptEngine::takeLevel(StoreEntry& entry, double value) {
  const std::size_t rows = entry.values.size();
  if (takesLevel(entry, value)) {
    entry.values.assign(rows, value);
    noteChange(entry, 0);
  }
  noteChange(entry, rows > 0 ? rows - 1 : 0);
}

std::int32_t CScriptEngine::AddOrRemoveBasicVectorSeries(std::string_view name, std::int32_t size) {
  if (size == static_cast<std::int32_t>(NULL_VALUE)) {
    const std::size_t entries = variables.size();
    forgetExpressions();
    variables.keepIf([name](std::size_t, const StoreEntry& entry) {
      return entry.kind != kDataVariable || entry.name != name;
    });
    reservedEntries_ = std::max<std::size_t>(entries, kUsualEntries);
    return -1;
  }
  if (size < 1 || variables.size() >= reservedEntries_) return -1;
  ScriptVariable series;
  series.name = name;
  series.kind = kDataVariable;
  series.values.reserve(std::min<std::size_t>(static_cast<std::size_t>(size), kMostReservedRows));
  return static_cast<std::int32_t>(variables.append(std::move(series)));
}

void CScriptEngine::UpdateBasicVectorData(std::string_view name, double value, std::uint8_t addOrUpdate) {
  enum : std::uint8_t { kAdd = 11, kUpdate = 22 };
  StoreEntry* entry = dataNamed(variables, name);
  if (!entry || (addOrUpdate != kAdd && addOrUpdate != kUpdate)) return;
  Series& rows = entry->values;
  const std::size_t before = rows.size();
  settleRun();
  addOrUpdate == kAdd ? rows.reserveRow() : void(rows.edit());  // behind this nothing fails
  takeLevel(*entry, value);
  if (addOrUpdate == kAdd) {
    if (isNull(value) && before > 0) value = rows.back();
    rows.push_back(value);
  } else {
    if (before == 0) return;
    if (isNull(value) && before > 1) value = rows[before - 2];
    rows.set(before - 1, value);
  }
  entry->value = value;
}

}  // namespace brindlewort
