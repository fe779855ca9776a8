#pragma once

#include <cstddef>

/// Memory for what hosts reach through a 32-bit handle in a 64-bit process. Windows only: elsewhere handles
/// are as wide as addresses.
namespace brindlewort::platform {

/// A page of memory, zero at first, whose address fits a positive 32-bit integer. Freed at the end of its
/// life.
class LowPage {
 public:
  LowPage();
  ~LowPage();
  LowPage(const LowPage&) = delete;
  LowPage& operator=(const LowPage&) = delete;

  static constexpr std::size_t kSize = 4096;

  /// Null when there is no such place left in the process.
  void* address() const { return address_; }

 private:
  void* address_;
};

}  // namespace brindlewort::platform
