#include "platform/low_memory.hpp"

#ifdef _WIN32
#include <windows.h>

#include <cstdint>

namespace brindlewort::platform {

namespace {

/// The system gives out address space in such steps; the first of them is never given.
constexpr std::uintptr_t kStep = 0x10000;
constexpr std::uintptr_t kEnd = 0x80000000u;

std::uintptr_t nextStep(std::uintptr_t address) {
  return (address + kStep - 1) / kStep * kStep;
}

/// Goes through the regions of the process, free and taken, from the lowest on.
void* takeLowestFree(std::size_t size) {
  std::uintptr_t at = kStep;
  MEMORY_BASIC_INFORMATION region;
  while (at + size <= kEnd && VirtualQuery(reinterpret_cast<void*>(at), &region, sizeof region) != 0) {
    const std::uintptr_t end = reinterpret_cast<std::uintptr_t>(region.BaseAddress) + region.RegionSize;
    if (region.State == MEM_FREE && at + size <= end) {
      void* const taken =
          VirtualAlloc(reinterpret_cast<void*>(at), size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
      if (taken) return taken;
      at += kStep;  // another thread was quicker
    } else {
      at = nextStep(end);
    }
  }
  return nullptr;
}

}  // namespace

LowPage::LowPage() : address_(takeLowestFree(kSize)) {}

LowPage::~LowPage() {
  if (address_) VirtualFree(address_, 0, MEM_RELEASE);
}

}  // namespace brindlewort::platform
#endif
