#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace brindlewort::platform {

/// The number of live alert components, which all processes share. A component counts from enter() to
/// leave(), at the latest to the end of its process, however that comes about. Safe for use by several
/// threads and across fork(): the copies of components that a child inherits count again once it makes one of
/// its own.
/// On Windows it is a plain number in a page that all processes with this library share: components of a
/// process that was killed count until no process has the library loaded any more.
class AlertCount {
 public:
  /// The count of this machine: on Windows one for all users, elsewhere one for each user. Lives on to the
  /// end of the process.
  static AlertCount& ofThisMachine();

  /// A count under a name of its own, shared with the processes that use the same name. On Windows, and where
  /// the system has no shared memory of this name, it counts within the process.
  explicit AlertCount(std::string name);
  ~AlertCount();
  AlertCount(const AlertCount&) = delete;
  AlertCount& operator=(const AlertCount&) = delete;

  /// Counts one component more. True when `limit` or more were counted before. Of processes that enter at
  /// once, one comes after the other.
  bool enter(std::int32_t limit);
  void leave();
  /// How many are counted now; stops at `enough`.
  std::int32_t live(std::int32_t enough);

 private:
  class Counter;
  std::unique_ptr<Counter> counter_;
};

/// A live component's place in a count, left at the end of its life. Moves with the component.
class AlertSeat {
 public:
  AlertSeat(AlertCount& count, std::int32_t limit) : count_(&count), beyondLimit_(count.enter(limit)) {}
  ~AlertSeat() {
    if (count_) count_->leave();
  }
  AlertSeat(AlertSeat&& other) noexcept
      : count_(std::exchange(other.count_, nullptr)), beyondLimit_(other.beyondLimit_) {}
  AlertSeat& operator=(AlertSeat&& other) noexcept {
    std::swap(count_, other.count_);
    std::swap(beyondLimit_, other.beyondLimit_);
    return *this;
  }

  /// Whether the limit was reached when this place was taken.
  bool beyondLimit() const { return beyondLimit_; }

 private:
  AlertCount* count_;
  bool beyondLimit_;
};

}  // namespace brindlewort::platform
