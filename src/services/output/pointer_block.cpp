#include "services/output/pointer_block.hpp"

namespace brindlewort {

const PointerBlock::List& PointerBlock::show(const std::vector<StoreEntry*>& entries) {
  std::vector<StoreEntry*> shown(entries);
  items_.resize(entries.size());
  entries_.swap(shown);
  kept_.clear();
  follow();
  list_ = {items_.size(), items_.data()};
  return list_;
}

void PointerBlock::endOfPromise() noexcept {
  entries_.clear();
  kept_.clear();
}

void PointerBlock::beforeGrowth() {
  for (const StoreEntry* entry : entries_) {
    if (entry->values.full()) kept_.push_back(entry->values);
  }
}

void PointerBlock::follow() noexcept {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    items_[i] = {entries_[i]->values.data(), entries_[i]->values.size()};
  }
}

}  // namespace brindlewort
