#pragma once

#include <cstddef>
#include <vector>

#include "functions/variable_store.hpp"

namespace brindlewort {

/// The live series that a host sees by pointer, and that stay where it saw them until the next list or run:
/// rows that must move to grow leave their old place readable, and the list follows them. Where memory runs
/// out nothing has changed.
class PointerBlock {
 public:
  struct Rows {
    const double* values;
    std::size_t count;
  };
  struct List {
    std::size_t count;
    const Rows* items;
  };

  /// Makes the list of these entries, in their order. What an earlier list showed is no longer kept.
  const List& show(const std::vector<StoreEntry*>& entries);
  /// A run begins: places that were kept are given back.
  void endOfPromise() noexcept;

  /// To be called before rows are added.
  void beforeGrowth();
  /// While it lives rows may move: those that do before memory runs out for others too. Then the list
  /// follows.
  class Follow {
   public:
    explicit Follow(PointerBlock& block) : block_(block) {}
    ~Follow() { block_.follow(); }
    Follow(const Follow&) = delete;
    Follow& operator=(const Follow&) = delete;

   private:
    PointerBlock& block_;
  };
  /// Makes a change by which the entries may go: what they hold now stays readable.
  template <class Change>
  void freeze(Change change) {
    const std::size_t before = kept_.size();
    try {
      for (const StoreEntry* entry : entries_) kept_.push_back(entry->values);
      change();
      entries_.clear();
    } catch (...) {
      kept_.resize(before);
      throw;
    }
  }

 private:
  void follow() noexcept;

  std::vector<StoreEntry*> entries_;
  std::vector<Rows> items_;
  std::vector<Series> kept_;
  List list_{0, nullptr};
};

}  // namespace brindlewort
