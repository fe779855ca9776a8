#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace brindlewort {

/// Remembers from which row on a series changed, and when, so that what is computed from the series can be
/// brought up to date row by row. Moments are numbers that only grow. Keeps the last few changes exactly and
/// the earlier ones as one: an answer may name an earlier row than needed, never a later one.
class ChangeLog {
 public:
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

  void note(std::uint64_t moment, std::size_t fromRow) {
    while (count_ > 0 && changes_[count_ - 1].fromRow >= fromRow) --count_;
    if (count_ == changes_.size()) {
      // The two oldest become one: the later moment, the earlier row.
      changes_[1].fromRow = changes_[0].fromRow;
      for (std::size_t i = 1; i < count_; ++i) changes_[i - 1] = changes_[i];
      --count_;
    }
    changes_[count_++] = {moment, fromRow};
  }

  /// The first row that changed after `moment`; kNone when none has.
  std::size_t since(std::uint64_t moment) const {
    for (std::size_t i = 0; i < count_; ++i) {
      if (changes_[i].moment > moment) return changes_[i].fromRow;
    }
    return kNone;
  }

 private:
  struct Change {
    std::uint64_t moment;
    std::size_t fromRow;
  };
  std::array<Change, 4> changes_{};
  std::size_t count_ = 0;
};

}  // namespace brindlewort
