#include "platform/stack.hpp"

#include <algorithm>
#include <cstddef>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#elif defined(__linux__)
#include <pthread.h>
#endif

namespace brindlewort::platform {

namespace {

constexpr std::uintptr_t kKilobyte = 1024;

/// What is kept, of a stack of known size, for an evaluation itself and the functions below it: a quarter,
/// but no less than they need and no more than they could.
constexpr std::uintptr_t kLeastReserve = 24 * kKilobyte;
constexpr std::uintptr_t kGreatestReserve = 128 * kKilobyte;

/// What evaluations may use of a stack of unknown size. With the calls above the first of them and the least
/// reserve a run stays within 96 KiB.
constexpr std::uintptr_t kUnknownStack = 64 * kKilobyte;

/// No thread's stack is larger, whatever the system says: where stacks have no limit, it counts all memory to
/// the next mapping, and the host's fibers may get theirs from there.
constexpr std::uintptr_t kGreatestStack = 64 * kKilobyte * kKilobyte;

/// The present stack as the system knows it; empty where it does not tell.
struct Stack {
  std::uintptr_t lowest = 0, end = 0;
};

#ifdef _WIN32

/// Fibers of the system count as well: it knows of the stack that the thread is on.
Stack presentStack() {
  ULONG_PTR lowest = 0, end = 0;
  GetCurrentThreadStackLimits(&lowest, &end);
  return {lowest, end};
}

#elif defined(__linux__)

Stack stackOfThread() {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return {};
  Stack stack;
  void* lowest = nullptr;
  std::size_t bytes = 0;
  if (pthread_attr_getstack(&attributes, &lowest, &bytes) == 0) {
    stack.lowest = reinterpret_cast<std::uintptr_t>(lowest);
    stack.end = stack.lowest + bytes;
  }
  pthread_attr_destroy(&attributes);
  return stack;
}

/// The stack that the thread was made with. The system may have to look long for it, and it stays the same
/// for the life of the thread.
Stack presentStack() {
  thread_local const Stack stack = stackOfThread();
  return stack;
}

#else

Stack presentStack() {
  return {};
}

#endif

}  // namespace

std::uintptr_t stackFloor() {
  const std::uintptr_t here = stackPosition();
  const Stack stack = presentStack();
  const std::uintptr_t size = std::min(stack.end - stack.lowest, kGreatestStack);
  if (here >= stack.end || here < stack.end - size) return here - std::min(here, kUnknownStack);
  return stack.end - size + std::clamp(size / 4, kLeastReserve, kGreatestReserve);
}

}  // namespace brindlewort::platform
