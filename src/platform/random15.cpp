#include "platform/random15.hpp"

namespace brindlewort::platform {

std::int32_t Random15::next() {
  state_ = state_ * 214013u + 2531011u;
  return static_cast<std::int32_t>((state_ >> 16) & 0x7FFFu);
}

}  // namespace brindlewort::platform
