#pragma once

#include <cstdint>

namespace brindlewort::platform {

/// The generator behind every draw of the system: integers of 15 bits, 0 to 32767, the same sequence for
/// the same seed on every machine.
class Random15 {
 public:
  static constexpr std::int32_t kMax = 32767;

  /// Any integer seeds it; seeds that agree in their low 32 bits give the same sequence.
  explicit Random15(std::int64_t seed) : state_(static_cast<std::uint32_t>(seed)) {}

  std::int32_t next() {
    state_ = state_ * 214013u + 2531011u;
    return static_cast<std::int32_t>((state_ >> 16) & 0x7FFFu);
  }

 private:
  std::uint32_t state_;
};

}  // namespace brindlewort::platform
