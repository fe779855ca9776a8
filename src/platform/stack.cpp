#include "platform/stack.hpp"

#ifdef _WIN32

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace brindlewort::platform {

namespace {

/// What an evaluation needs for itself and the system's functions below it.
constexpr ULONG_PTR kReserve = 128 * 1024;

}  // namespace

bool stackIsLow() {
  ULONG_PTR low = 0, high = 0;
  GetCurrentThreadStackLimits(&low, &high);
  return reinterpret_cast<ULONG_PTR>(&low) - low < kReserve;
}

}  // namespace brindlewort::platform

#endif
