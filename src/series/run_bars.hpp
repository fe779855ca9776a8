#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "series/bar.hpp"

namespace brindlewort {

/// The bars of one run: up to two filler bars in front of bars that somebody else owns. Copies nothing; the
/// bars must outlive the run.
class RunBars {
 public:
  void use(std::span<const Bar> bars) { bars_ = bars, fillers_ = 0; }
  /// Puts a bar without prices at the very front.
  void insertFiller(double date);
  void clear() { use({}); }

  std::size_t size() const { return fillers_ + bars_.size(); }
  bool empty() const { return size() == 0; }
  const Bar& operator[](std::size_t row) const {
    return row < fillers_ ? front_[row] : bars_[row - fillers_];
  }

 private:
  std::array<Bar, 2> front_{};
  std::size_t fillers_ = 0;
  std::span<const Bar> bars_;
};

}  // namespace brindlewort
