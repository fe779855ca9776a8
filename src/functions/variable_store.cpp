#include "functions/variable_store.hpp"

#include <algorithm>
#include <utility>

#include "series/text.hpp"

namespace brindlewort {

std::size_t VariableStore::append(ScriptVariable variable) {
  const std::size_t i = entries_.size();
  StoreEntry& entry = entries_.emplace_back();
  static_cast<ScriptVariable&>(entry) = std::move(variable);
  entry.hasNumberName = IsNumberText(entry.name);
  try {
    first_.try_emplace(entry.name, i);
  } catch (...) {
    entries_.pop_back();
    throw;
  }
  ++shape_;
  return i;
}

void VariableStore::truncate(std::size_t size) noexcept {
  if (entries_.size() <= size) return;
  while (entries_.size() > size) {
    const auto at = first_.find(entries_.back().name);
    if (at != first_.end() && at->second == entries_.size() - 1) first_.erase(at);
    entries_.pop_back();
  }
  ++shape_;
}

void VariableStore::adopt(VariableStore&& other) noexcept {
  clear();
  entries_.swap(other.entries_);
  first_.swap(other.first_);
}

void VariableStore::rename(std::size_t i, std::string name) {
  const std::string before = std::exchange(entries_[i].name, std::move(name));
  if (before == entries_[i].name) return;
  entries_[i].hasNumberName = IsNumberText(entries_[i].name);
  ++shape_;
  if (const auto at = first_.find(before); at != first_.end() && at->second == i) {
    const std::ptrdiff_t next = scan(before, true);
    if (next == kNotFound) {
      first_.erase(at);
    } else {
      at->second = static_cast<std::size_t>(next);
    }
  }
  const auto [at, fresh] = first_.try_emplace(entries_[i].name, i);
  if (!fresh) at->second = std::min(at->second, i);
}

void VariableStore::clear() {
  entries_.clear();
  first_.clear();
  pending_.clear();
  ++shape_;
}

void VariableStore::keepIf(const std::function<bool(std::size_t, const StoreEntry&)>& keep) {
  std::vector<StoreEntry*> wanted;
  VariableStore kept;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (!keep(i, entries_[i])) continue;
    kept.first_.try_emplace(entries_[i].name, wanted.size());
    wanted.push_back(&entries_[i]);
  }
  kept.entries_.resize(wanted.size());
  // Moving needs no memory.
  for (std::size_t i = 0; i < wanted.size(); ++i) kept.entries_[i] = std::move(*wanted[i]);
  adopt(std::move(kept));
}

std::ptrdiff_t VariableStore::find(std::string_view name) const {
  const auto at = first_.find(name);
  return at == first_.end() ? kNotFound : static_cast<std::ptrdiff_t>(at->second);
}

const StoreEntry* VariableStore::get(std::string_view name) const {
  const std::ptrdiff_t i = find(name);
  return i == kNotFound ? nullptr : &entries_[static_cast<std::size_t>(i)];
}

StoreEntry* VariableStore::get(std::string_view name) {
  return const_cast<StoreEntry*>(std::as_const(*this).get(name));
}

StoreEntry* VariableStore::getNamed(std::string_view name) {
  StoreEntry* first = get(name);
  if (!first || !first->madeForText) return first;
  for (StoreEntry& entry : entries_) {
    if (!entry.madeForText && entry.name == name) return &entry;
  }
  return nullptr;
}

void VariableStore::setPending(std::size_t i, bool pending) {
  if (pending) {
    pending_.push_back(i);
  } else {
    pending_.erase(std::remove(pending_.begin(), pending_.end(), i), pending_.end());
  }
}

std::ptrdiff_t VariableStore::findDone(std::string_view name) const {
  const std::ptrdiff_t i = find(name);
  if (i == kNotFound ||
      std::find(pending_.begin(), pending_.end(), static_cast<std::size_t>(i)) == pending_.end()) {
    return i;
  }
  return scan(name, false);
}

std::ptrdiff_t VariableStore::scan(std::string_view name, bool pendingToo) const {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].name != name) continue;
    if (pendingToo || std::find(pending_.begin(), pending_.end(), i) == pending_.end()) {
      return static_cast<std::ptrdiff_t>(i);
    }
  }
  return kNotFound;
}

}  // namespace brindlewort
