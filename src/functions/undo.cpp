#include "functions/undo.hpp"

#include <algorithm>

namespace brindlewort {

void RunUndo::begin(const VariableStore& variables) {
  settle();
  entries_ = variables.size();
  running_ = true;
}

void RunUndo::keepRows(StoreEntry& result, std::size_t from) {
  // What has never been computed is computed from the first row again.
  const bool isNew = result.slot == -1;
  const View rows = isNew ? View() : result.values.view().subspan(std::min(from, result.values.size()));
  rows_.insert(rows_.end(), rows.begin(), rows.end());
  results_.push_back({&result, result.slot, result.value, from, rows_.size() - rows.size(), rows.size()});
}

void RunUndo::keepSeries(StoreEntry& entry) {
  for (const auto& [known, before] : series_) {
    if (known == &entry) return;
  }
  ScriptVariable before;
  before.value = entry.value;
  before.values = entry.values;
  before.slot = entry.slot;
  series_.emplace_back(&entry, std::move(before));
}

void RunUndo::restore(const Result& result) const noexcept {
  StoreEntry& entry = *result.entry;
  entry.slot = result.slot;
  entry.value = result.value;
  if (result.count == 0) return;
  if (!entry.values.unique() || entry.values.size() < result.from + result.count) {
    // It has lost its rows meanwhile: they are made anew.
    entry.values.clear();
    entry.slot = -1;
    return;
  }
  const auto kept = rows_.begin() + static_cast<std::ptrdiff_t>(result.kept);
  std::copy_n(kept, result.count, entry.values.edit().begin() + static_cast<std::ptrdiff_t>(result.from));
}

bool RunUndo::takeBack(VariableStore& variables) noexcept {
  if (!running_) return false;
  for (auto result = results_.rbegin(); result != results_.rend(); ++result) restore(*result);
  for (auto& [entry, before] : series_) {
    entry->value = before.value;
    entry->values = std::move(before.values);
    entry->slot = before.slot;
  }
  variables.truncate(entries_);
  settle();
  return true;
}

void RunUndo::settle() noexcept {
  running_ = false;
  results_.clear();
  rows_.clear();
  series_.clear();
}

BarUndo::End BarUndo::endOf(const Series& rows, double value) {
  return {rows.size(), rows.empty() ? 0.0 : rows.back(), value};
}

void BarUndo::begin(const VariableStore& variables, const std::vector<Field>& fields) {
  entries_.clear();
  fields_.clear();
  series_.clear();
  for (std::size_t i = 0; i < variables.size(); ++i) {
    entries_.push_back(endOf(variables[i].values, variables[i].value));
  }
  for (const Field& field : fields) fields_.push_back(endOf(field.values, 0.0));
}

void BarUndo::keepSeries(std::size_t entry, const Series& rows) {
  series_.emplace_back(entry, Series(rows.view()));
}

/// Whoever adds a row or changes one has made the rows the series' own.
void BarUndo::restore(Series& rows, const End& end) noexcept {
  if (rows.size() < end.rows) return;
  rows.truncate(end.rows);
  if (end.rows > 0) rows.set(end.rows - 1, end.last);
}

void BarUndo::takeBack(VariableStore& variables, std::vector<Field>& fields) noexcept {
  for (auto& [entry, rows] : series_) variables[entry].values = std::move(rows);
  for (std::size_t i = 0; i < std::min(entries_.size(), variables.size()); ++i) {
    StoreEntry& entry = variables[i];
    restore(entry.values, entries_[i]);
    entry.value = entries_[i].value;
    entry.slot = std::min(entry.slot, static_cast<std::int32_t>(entry.values.size()));
  }
  for (std::size_t i = 0; i < std::min(fields_.size(), fields.size()); ++i)
    restore(fields[i].values, fields_[i]);
}

}  // namespace brindlewort
