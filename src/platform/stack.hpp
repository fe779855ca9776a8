#pragma once

#include <cstdint>

namespace brindlewort::platform {

/// Where the stack stands in the function that asks.
[[gnu::always_inline]] inline std::uintptr_t stackPosition() {
  return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
}

/// How far down the stack evaluations may nest, of a run that begins where this is called: no evaluation
/// begins with its stackPosition() below. What is left is enough for all that an evaluation calls.
///
/// On a thread's own stack that depends on its size. Where the stack is none that the system knows of, as
/// that of a host's fiber, a run gets along with 96 KiB in all, from the host's call on.
std::uintptr_t stackFloor();

}  // namespace brindlewort::platform
