#include "platform/stack.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#elif defined(__linux__)
#include <pthread.h>
#endif

namespace brindlewort::platform {

namespace {

/// What an evaluation needs for itself and the system's functions below it; of a small stack a quarter must
/// do.
constexpr std::uintptr_t kReserve = 128 * 1024;

/// The lowest part of the thread's stack, in which nothing nests any deeper; empty where it is not known.
struct LowPart {
  std::uintptr_t from = 0, to = 0;
};

LowPart lowPart() {
  std::uintptr_t from = 0, size = 0;
#ifdef _WIN32
  ULONG_PTR lowest = 0, end = 0;
  GetCurrentThreadStackLimits(&lowest, &end);
  from = lowest;
  size = end - lowest;
#elif defined(__linux__)
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return {};
  void* lowest = nullptr;
  std::size_t bytes = 0;
  if (pthread_attr_getstack(&attributes, &lowest, &bytes) == 0) {
    from = reinterpret_cast<std::uintptr_t>(lowest);
    size = bytes;
  }
  pthread_attr_destroy(&attributes);
#endif
  return {from, from + std::min(kReserve, size / 4)};
}

}  // namespace

bool stackIsLow() {
  // The system may have to look long for it, and it stays the same for the life of a thread.
  thread_local const LowPart part = lowPart();
  // A host that switches between stacks of its own may be somewhere else altogether.
  const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  return here >= part.from && here < part.to;
}

}  // namespace brindlewort::platform
