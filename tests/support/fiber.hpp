#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <sys/mman.h>
#include <ucontext.h>
#endif

namespace brindlewort::testing {

#ifdef _WIN32

/// Does the work on a fiber with a stack of so many bytes. False when there is no fiber.
inline bool doneOnFiberOf(std::size_t bytes, const std::function<void()>& work) {
  struct Switch {
    const std::function<void()>& work;
    void* back;
  };
  void* const thread = ConvertThreadToFiber(nullptr);
  if (!thread) return false;
  Switch both{work, thread};
  const auto start = [](void* given) {
    const Switch& both = *static_cast<Switch*>(given);
    both.work();
    SwitchToFiber(both.back);
  };
  void* const fiber = CreateFiberEx(4096, bytes, 0, start, &both);
  if (fiber) {
    SwitchToFiber(fiber);
    DeleteFiber(fiber);
  }
  ConvertFiberToThread();
  return fiber != nullptr;
}

#else

/// A stack of a host's own for a piece of work, with a page below it that must not be touched. The system
/// takes it for plain memory.
class Fiber {
 public:
  explicit Fiber(std::size_t bytes) : bytes_(bytes) {
    void* const memory =
        mmap(nullptr, kGuard + bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return;
    memory_ = static_cast<unsigned char*>(memory);
    mprotect(memory_, kGuard, PROT_NONE);
    std::fill_n(stack(), bytes_, kUntouched);
  }
  ~Fiber() {
    if (memory_) munmap(memory_, kGuard + bytes_);
  }
  Fiber(const Fiber&) = delete;
  Fiber& operator=(const Fiber&) = delete;

  /// False when there is no memory for the stack.
  bool run(const std::function<void()>& work) {
    if (!memory_ || getcontext(&context_) != 0) return false;
    context_.uc_stack.ss_sp = stack();
    context_.uc_stack.ss_size = bytes_;
    context_.uc_link = &back_;
    present() = &work;
    makecontext(&context_, &start, 0);
    return swapcontext(&back_, &context_) == 0;
  }

  /// How many bytes of the stack have ever been written.
  std::size_t used() const {
    unsigned char* const end = stack() + bytes_;
    const auto isTouched = [](unsigned char byte) { return byte != kUntouched; };
    return static_cast<std::size_t>(end - std::find_if(stack(), end, isTouched));
  }

 private:
  static constexpr std::size_t kGuard = 65536;
  static constexpr unsigned char kUntouched = 0xA5;

  static const std::function<void()>*& present() {
    static const std::function<void()>* work = nullptr;
    return work;
  }
  static void start() { (*present())(); }
  unsigned char* stack() const { return memory_ + kGuard; }

  std::size_t bytes_;
  unsigned char* memory_ = nullptr;
  ucontext_t context_{}, back_{};
};

/// Does the work on a fiber with a stack of so many bytes. False when there is no fiber.
inline bool doneOnFiberOf(std::size_t bytes, const std::function<void()>& work) {
  return Fiber(bytes).run(work);
}

#endif

}  // namespace brindlewort::testing
