#pragma once

#include <cstdint>

#if !defined(__x86_64__)
#include <cfenv>
#endif

/// The floating-point environment of a thread: rounding, what traps, what becomes of numbers below the
/// smallest of the usual form, and the flags that calculations leave. Results depend on it, so the library
/// computes in one of its own, and hosts keep theirs.
namespace brindlewort::platform {

/// A host's environment, while the thread is in the library's: to the nearest, nothing traps, small numbers
/// are kept.
class FpEnvironment {
 public:
  /// Keeps the thread's environment and puts the library's in its place.
  void enter() noexcept;
  /// Gives it back as it was, its flags included.
  void leave() noexcept;

 private:
#if defined(__x86_64__)
  std::uint32_t control_;     ///< MXCSR: control and flags of the vector unit, which computes everything ...
  std::uint16_t x87Control_;  ///< ... but for some functions of C libraries
  std::uint16_t x87Flags_;
#else
  std::fenv_t host_;
#endif
};

/// The way into a component and out of it, for calculations. It belongs to the component and not to the
/// thread, since hosts may change stacks within their callbacks.
class FpDoor {
 public:
  FpDoor() = default;
  FpDoor(const FpDoor&) = delete;
  FpDoor& operator=(const FpDoor&) = delete;

  /// A call of the host's: for its life the thread is in the library's environment. A call that another one
  /// makes on the same component changes nothing.
  class Inside {
   public:
    explicit Inside(FpDoor& door) noexcept : door_(door.call_ ? nullptr : &door) {
      if (!door_) return;
      host_.enter();
      door_->call_ = &host_;
    }
    ~Inside() {
      if (!door_) return;
      door_->call_ = nullptr;
      host_.leave();
    }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

    /// A function of its own, so that the compiler moves no calculation in front of the door.
    template <class Work>
    [[gnu::noinline]] auto run(Work& work) const {
      return work();
    }

   private:
    FpDoor* const door_;
    FpEnvironment host_;
  };

  /// A call of a function of the host's, within one of a component's: for its life the thread is in the
  /// host's environment. What the host changes then is the host's from now on.
  class Outside {
   public:
    explicit Outside(FpDoor& door) noexcept : door_(door), call_(door.call_) {
      if (!call_) return;
      door_.call_ = nullptr;
      call_->leave();
    }
    ~Outside() {
      if (!call_) return;
      call_->enter();
      door_.call_ = call_;
    }
    Outside(const Outside&) = delete;
    Outside& operator=(const Outside&) = delete;

   private:
    FpDoor& door_;
    FpEnvironment* const call_;
  };

 private:
  FpEnvironment* call_ = nullptr;  ///< of the host's call that is under way
};

}  // namespace brindlewort::platform
