#include "platform/fp_environment.hpp"

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace brindlewort::platform {

#if defined(__x86_64__)

namespace {

/// The lower six bits of both units' status say what has happened: invalid, denormal, division by zero,
/// overflow, underflow, inexact.
constexpr std::uint32_t kFlags = 0x3f;

/// All six masked; to the nearest; neither are denormals flushed to zero nor read as zero.
constexpr std::uint32_t kControl = 0x1f80;
/// All six masked; to the nearest; mantissas of 64 bits. Threads of Windows begin with 53, programs of MinGW
/// with 64.
constexpr std::uint16_t kX87Control = 0x037f;

std::uint16_t x87Control() {
  std::uint16_t control;
  __asm__ volatile("fnstcw %0" : "=m"(control));
  return control;
}

void setX87Control(std::uint16_t control) {
  __asm__ volatile("fldcw %0" : : "m"(control));
}

std::uint16_t x87Flags() {
  std::uint16_t status;
  __asm__ volatile("fnstsw %0" : "=a"(status));
  return status & kFlags;
}

/// The unit's flags are a part of all of its state, and can be set with that only.
void setX87Flags(std::uint16_t flags) {
  struct {
    std::uint16_t control, unused0, status, unused1, tags, unused2;
    std::uint32_t further[4];
  } state;
  static_assert(sizeof state == 28);
  __asm__ volatile("fnstenv %0" : "=m"(state));
  state.status = static_cast<std::uint16_t>((state.status & ~kFlags) | flags);
  __asm__ volatile("fldenv %0" : : "m"(state));
}

}  // namespace

// Registers are written only where they differ: to read them costs next to nothing, to write them empties the
// processor's pipeline.

void FpEnvironment::enter() noexcept {
  control_ = _mm_getcsr();
  x87Control_ = x87Control();
  x87Flags_ = x87Flags();
  if ((control_ & ~kFlags) != kControl) _mm_setcsr(kControl | (control_ & kFlags));
  if (x87Control_ != kX87Control) setX87Control(kX87Control);
}

void FpEnvironment::leave() noexcept {
  if (_mm_getcsr() != control_) _mm_setcsr(control_);
  // First the flags: one that the host has let trap must not stand when its control word does.
  if (x87Flags() != x87Flags_) setX87Flags(x87Flags_);
  if (x87Control() != x87Control_) setX87Control(x87Control_);
}

#else

void FpEnvironment::enter() noexcept {
  std::fegetenv(&host_);
  std::fesetenv(FE_DFL_ENV);
}

void FpEnvironment::leave() noexcept {
  std::fesetenv(&host_);
}

#endif

}  // namespace brindlewort::platform
