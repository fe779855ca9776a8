#pragma once

#include <cstddef>
#include <cstdint>

namespace brindlewort::fuzz {

/// The choices of a mutation, from its seed.
class Random {
 public:
  explicit Random(std::uint32_t seed) : state_(seed * 2654435761u + 88172645463325252u) {}

  /// 0 to `count` - 1.
  std::size_t below(std::size_t count) {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return count == 0 ? 0 : static_cast<std::size_t>((state_ >> 20) % count);
  }
  bool oneIn(std::size_t count) { return below(count) == 0; }
  template <class Items>
  const auto& of(const Items& items) {
    return items[below(std::size(items))];
  }

 private:
  std::uint64_t state_;
};

}  // namespace brindlewort::fuzz
