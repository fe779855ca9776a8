#include "services/output/pointer_block.hpp"

namespace brindlewort {

const PointerBlock::List& PointerBlock::show(const std::vector<StoreEntry*>& entries) {
  entries_ = entries;
  kept_.clear();
  items_.resize(entries.size());
  afterGrowth();
  list_ = {items_.size(), items_.data()};
  return list_;
}

void PointerBlock::endOfPromise() {
  entries_.clear();
  kept_.clear();
}

void PointerBlock::beforeGrowth() {
  for (const StoreEntry* entry : entries_) {
    if (entry->values.full()) kept_.push_back(entry->values);
  }
}

void PointerBlock::afterGrowth() {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    items_[i] = {entries_[i]->values.data(), entries_[i]->values.size()};
  }
}

void PointerBlock::freeze() {
  for (const StoreEntry* entry : entries_) kept_.push_back(entry->values);
  entries_.clear();
}

}  // namespace brindlewort
