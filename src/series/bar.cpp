#include "series/bar.hpp"

#include <algorithm>

#include "series/numbers.hpp"

namespace brindlewort {

void BarStore::AppendRecord(const Bar& bar) {
  const bool rising = (bars_.empty() || bar.JDate > bars_.back().JDate) && bar.JDate == bar.JDate;
  bars_.push_back(bar);
  rising_ = rising_ && rising;
}

void BarStore::ClearRecords() {
  bars_.clear();
  rising_ = true;
}

std::ptrdiff_t BarStore::findDate(double date) const {
  if (rising_) {
    // A host mostly asks for its last bar.
    if (!bars_.empty() && bars_.back().JDate == date) return static_cast<std::ptrdiff_t>(bars_.size()) - 1;
    const auto at = std::lower_bound(bars_.begin(), bars_.end(), date,
                                     [](const Bar& bar, double wanted) { return bar.JDate < wanted; });
    return at != bars_.end() && at->JDate == date ? at - bars_.begin() : kNotFound;
  }
  for (std::size_t row = 0; row < bars_.size(); ++row) {
    if (bars_[row].JDate == date) return static_cast<std::ptrdiff_t>(row);
  }
  return kNotFound;
}

bool BarStore::EditRecord(const Bar& bar) {
  const std::ptrdiff_t row = findDate(bar.JDate);
  if (row == kNotFound) return false;
  replace(static_cast<std::size_t>(row), bar);
  return true;
}

bool BarStore::EditJDate(double oldDate, double newDate) {
  const std::ptrdiff_t row = findDate(oldDate);
  if (row == kNotFound) return false;
  Bar bar = bars_[static_cast<std::size_t>(row)];
  bar.JDate = newDate;
  replace(static_cast<std::size_t>(row), bar);
  return true;
}

void BarStore::replace(std::size_t row, const Bar& bar) {
  bars_[row] = bar;
  rising_ = rising_ && bar.JDate == bar.JDate && (row == 0 || bar.JDate > bars_[row - 1].JDate) &&
            (row + 1 == bars_.size() || bar.JDate < bars_[row + 1].JDate);
}

std::ptrdiff_t BarStore::lastRowBefore(double date) const {
  std::size_t rows = 0;
  while (rows < bars_.size() && date > bars_[rows].JDate) ++rows;
  return static_cast<std::ptrdiff_t>(rows) - 1;
}

const Bar* BarStore::byNumber(std::int32_t number) const {
  if (number < 1 || static_cast<std::size_t>(number) > bars_.size()) return nullptr;
  return &bars_[static_cast<std::size_t>(number) - 1];
}

void BarStore::makeRoom(std::size_t more) {
  const std::size_t wanted = bars_.size() + more;
  if (wanted > bars_.capacity()) bars_.reserve(std::max(wanted, bars_.capacity() * 2));
}

std::int32_t volumeToInt32(double volume) {
  return toInt32(volume);
}

}  // namespace brindlewort
