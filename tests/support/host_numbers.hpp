#pragma once

#include <cstdint>
#include <ostream>

#if defined(__x86_64__)
#include <xmmintrin.h>
#else
#include <cfenv>
#endif

namespace brindlewort::testing {

/// The floating-point environment that a host may have set on its thread.
#if defined(__x86_64__)

struct HostNumbers {
  std::uint32_t vector = 0x1f80;  ///< MXCSR
  std::uint16_t x87 = 0x037f;     ///< control word
  std::uint16_t x87Flags = 0;

  static HostNumbers present() {
    HostNumbers numbers{_mm_getcsr(), 0, 0};
    __asm__ volatile("fnstcw %0" : "=m"(numbers.x87));
    __asm__ volatile("fnstsw %0" : "=a"(numbers.x87Flags));
    numbers.x87Flags &= 0x3f;
    return numbers;
  }
  /// Of the flags of the x87 unit none is set.
  void set() const {
    __asm__ volatile("fnclex");
    __asm__ volatile("fldcw %0" : : "m"(x87));
    _mm_setcsr(vector);
  }
  bool operator==(const HostNumbers&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const HostNumbers& numbers) {
  return out << std::hex << numbers.vector << ' ' << numbers.x87 << ' ' << numbers.x87Flags << std::dec;
}

inline constexpr HostNumbers kPlainNumbers;

struct NamedNumbers {
  const char* name;
  HostNumbers numbers;
};
inline constexpr NamedNumbers kOddNumbers[] = {
    {"rounds up", {0x1f80 | 0x4000, 0x037f | 0x0800}},
    {"rounds down", {0x1f80 | 0x2000, 0x037f | 0x0400}},
    {"rounds to zero", {0x1f80 | 0x6000, 0x037f | 0x0c00}},
    {"flushes denormals to zero", {0x1f80 | 0x8000}},
    {"reads denormals as zero", {0x1f80 | 0x0040}},
    {"everything traps", {0x0000, 0x0340}},
    {"mantissas of 24 bits", {0x1f80, 0x007f}},
    {"all at once", {0x0000 | 0x8040 | 0x6000, 0x0040 | 0x0c00}},
    {"all flags stand", {0x1f80 | 0x3f}},
};

#else

struct HostNumbers {
  int rounding = FE_TONEAREST;
  int flags = 0;

  static HostNumbers present() { return {std::fegetround(), std::fetestexcept(FE_ALL_EXCEPT)}; }
  void set() const {
    std::feclearexcept(FE_ALL_EXCEPT);
    std::fesetround(rounding);
    std::feraiseexcept(flags);
  }
  bool operator==(const HostNumbers&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const HostNumbers& numbers) {
  return out << numbers.rounding << ' ' << numbers.flags;
}

inline constexpr HostNumbers kPlainNumbers;

struct NamedNumbers {
  const char* name;
  HostNumbers numbers;
};
inline constexpr NamedNumbers kOddNumbers[] = {
    {"rounds up", {FE_UPWARD}},
    {"rounds down", {FE_DOWNWARD}},
    {"rounds to zero", {FE_TOWARDZERO}},
    {"a division by zero stands", {FE_TONEAREST, FE_DIVBYZERO}},
};

#endif

/// Gives the thread these for the life of the object, then plain ones again. What happens meanwhile
/// calculates nothing of its own: it could trap.
class ScopedNumbers {
 public:
  explicit ScopedNumbers(const HostNumbers& numbers) { numbers.set(); }
  ~ScopedNumbers() { kPlainNumbers.set(); }
  ScopedNumbers(const ScopedNumbers&) = delete;
  ScopedNumbers& operator=(const ScopedNumbers&) = delete;
};

}  // namespace brindlewort::testing
