#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "series/field.hpp"

namespace brindlewort {

/// Named values in order of entry. A search gives the first entry of a name, as a linear walk would; an
/// index makes it cheap. Names may occur more than once.
class VariableStore {
 public:
  static constexpr std::ptrdiff_t kNotFound = -1;

  std::size_t size() const { return entries_.size(); }
  bool empty() const { return entries_.empty(); }
  const ScriptVariable& operator[](std::size_t i) const { return entries_[i]; }
  /// For changing value, values, slot and kind. Names change by rename() only.
  ScriptVariable& operator[](std::size_t i) { return entries_[i]; }

  std::size_t append(ScriptVariable variable);
  void rename(std::size_t i, std::string name);
  void clear();
  void reserve(std::size_t entries) { entries_.reserve(entries); }
  /// One more entry would move the others.
  bool full() const { return entries_.size() == entries_.capacity(); }

  /// The first entry of exactly this name.
  std::ptrdiff_t find(std::string_view name) const;
  const ScriptVariable* get(std::string_view name) const;

  /// An entry in the making: its expression is still being evaluated, so that a name inside the expression
  /// does not mean it. find() sees it, findDone() does not.
  void setPending(std::size_t i, bool pending);
  std::ptrdiff_t findDone(std::string_view name) const;

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };
  std::ptrdiff_t scan(std::string_view name, bool pendingToo) const;

  std::vector<ScriptVariable> entries_;
  std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>> first_;
  std::vector<std::size_t> pending_;
};

}  // namespace brindlewort
