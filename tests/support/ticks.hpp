#pragma once

#include <cstdint>
#include <functional>

#include "platform/clock.hpp"

namespace brindlewort::testing {

/// A clock whose time the test makes: as long as this object lives, each reading of the tick counter, counted
/// from 0, calls `at`, which tells the time.
class Ticks {
 public:
  explicit Ticks(std::function<std::uint32_t(int reading)> at) {
    at_ = std::move(at);
    readings_ = 0;
    before_ = platform::setTickSource([] { return at_(readings_++); });
  }
  ~Ticks() { platform::setTickSource(before_); }
  Ticks(const Ticks&) = delete;

  static int readings() { return readings_; }

 private:
  platform::TickSource before_;
  static inline std::function<std::uint32_t(int)> at_;
  static inline int readings_ = 0;
};

}  // namespace brindlewort::testing
