#include "memory/failing_allocations.hpp"

#include <cstdlib>
#include <new>

extern "C" {
// The linker sends the library's calls of malloc to the first, which reaches the system's by the second.
void* __wrap_malloc(std::size_t size);
void* __real_malloc(std::size_t size);
}

namespace brindlewort::testing {

namespace {

FailurePlan present;
bool watching = false;
std::size_t count = 0;
bool failed = false;

/// False when the allocation that is asked for has to fail.
bool granted() {
  if (!watching) return true;
  ++count;
  const bool fails =
      present.number != 0 && (count == present.number || (present.onward && count > present.number));
  failed = failed || fails;
  return !fails;
}

void* allocate(std::size_t size, std::size_t alignment) {
  if (!granted()) throw std::bad_alloc();
  void* memory = nullptr;
  if (alignment <= alignof(std::max_align_t)) {
    memory = __real_malloc(size > 0 ? size : 1);
  } else if (posix_memalign(&memory, alignment, size) != 0) {
    memory = nullptr;
  }
  if (!memory) throw std::bad_alloc();
  return memory;
}

}  // namespace

void planFailures(FailurePlan plan) {
  present = plan;
  count = 0;
  failed = false;
}
std::size_t watchedAllocations() {
  return count;
}
bool anyFailed() {
  return failed;
}

AllocationScope::AllocationScope(bool watched) : before_(watching) {
  watching = watched;
}
AllocationScope::~AllocationScope() {
  watching = before_;
}

}  // namespace brindlewort::testing

using brindlewort::testing::allocate;

void* __wrap_malloc(std::size_t size) {
  return brindlewort::testing::granted() ? __real_malloc(size) : nullptr;
}

void* operator new(std::size_t size) {
  return allocate(size, alignof(std::max_align_t));
}
void* operator new[](std::size_t size) {
  return allocate(size, alignof(std::max_align_t));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return __wrap_malloc(size > 0 ? size : 1);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return __wrap_malloc(size > 0 ? size : 1);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
  std::free(memory);
}
