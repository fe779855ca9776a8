#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "functions/change_log.hpp"
#include "series/field.hpp"

namespace brindlewort {

/// A variable in a store, with what the incremental way remembers of it.
struct StoreEntry : ScriptVariable {
  ChangeLog changes;           ///< of its rows
  std::uint64_t listedIn = 0;  ///< the run that has listed it among its outputs
  bool madeForText = false;    ///< value of an expression: found by its text, but no name of a script
  bool hasNumberName = false;  ///< its name is a number text, so that bars add no rows to it
  bool isConstant = false;     ///< made for a number: all rows that it ever has are its value
};

/// Named values in order of entry. A search gives the first entry of a name, as a linear walk would; an
/// index makes it cheap. Names may occur more than once. Entries stay where they are in memory until they
/// are removed, however many are appended.
class VariableStore {
 public:
  static constexpr std::ptrdiff_t kNotFound = -1;
  static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

  std::size_t size() const { return entries_.size(); }
  bool empty() const { return entries_.empty(); }
  const StoreEntry& operator[](std::size_t i) const { return entries_[i]; }
  /// For changing value, values, slot and kind. Names change by rename() only.
  StoreEntry& operator[](std::size_t i) { return entries_[i]; }

  // The store is as it was when memory runs out in append() or keepIf().
  std::size_t append(ScriptVariable variable);
  void rename(std::size_t i, std::string name);
  void clear();
  /// Takes the entries from the `size`-th on away.
  void truncate(std::size_t size) noexcept;
  /// Has the entries of another store instead of its own; the limit stays.
  void adopt(VariableStore&& other) noexcept;
  /// Keeps the entries for which `keep(index, entry)` is true, in their order; all may move.
  void keepIf(const std::function<bool(std::size_t, const StoreEntry&)>& keep);

  /// How many entries there may be. Whoever appends for a script looks at full() first.
  void setLimit(std::size_t entries) { limit_ = entries; }
  bool full() const { return entries_.size() >= limit_; }

  /// The first entry of exactly this name.
  std::ptrdiff_t find(std::string_view name) const;
  StoreEntry* get(std::string_view name);
  const StoreEntry* get(std::string_view name) const;

  /// An entry in the making: its expression is still being evaluated, so that a name inside the expression
  /// does not mean it. find() sees it, findDone() does not.
  void setPending(std::size_t i, bool pending);
  std::ptrdiff_t findDone(std::string_view name) const;

  /// The first entry of this name that was not made for a text.
  StoreEntry* getNamed(std::string_view name);

  /// Changes whenever a search may give another answer than before.
  std::uint64_t shape() const { return shape_; }
  void noteShape() { ++shape_; }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };
  std::ptrdiff_t scan(std::string_view name, bool pendingToo) const;

  std::deque<StoreEntry> entries_;
  std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>> first_;
  std::vector<std::size_t> pending_;
  std::size_t limit_ = kNoLimit;
  std::uint64_t shape_ = 1;
};

}  // namespace brindlewort
