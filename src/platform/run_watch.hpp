#pragma once

#include <atomic>
#include <cstdint>

/// The ways in which a run ends before its end: its time is over, or another thread has cancelled it.
/// Whatever may take long says how much it has done (spendSteps), and is thrown out of when the run is to
/// end.
namespace brindlewort::platform {

/// A run may take so many milliseconds.
inline constexpr std::uint32_t kTimeLimitMs = 300'000;

/// Thrown out of the work of a run that is to end. The run driver catches it.
struct RunStopped {
  enum class Reason : std::uint8_t { kTimeLimit, kCancelled };
  Reason reason;
};

/// Lets another thread cancel the calls of one component.
class CancelSwitch {
 public:
  /// Ends the call that is under way; without one nothing happens. May be called from any thread.
  void cancel() noexcept {
    State expected = State::kUnderWay;
    state_.compare_exchange_strong(expected, State::kCancelled);
  }
  bool isCancelled() const noexcept { return state_.load(std::memory_order_relaxed) == State::kCancelled; }
  /// True once for each cancel: whoever asks ends the call and tells of it.
  bool takeCancel() noexcept {
    State expected = State::kCancelled;
    return isCancelled() && state_.compare_exchange_strong(expected, State::kUnderWay);
  }

  /// A call, which can be cancelled from here to its end. A call within a call is part of it.
  class Call {
   public:
    explicit Call(CancelSwitch& of) : switch_(of) {
      State expected = State::kIdle;
      isOutermost_ = switch_.state_.compare_exchange_strong(expected, State::kUnderWay);
    }
    ~Call() {
      if (isOutermost_) switch_.state_.store(State::kIdle);
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

   private:
    CancelSwitch& switch_;
    bool isOutermost_;
  };

 private:
  enum class State : std::uint8_t { kIdle, kUnderWay, kCancelled };
  std::atomic<State> state_{State::kIdle};
};

/// A run of this thread: from here to its end spendSteps() looks after it. A run within a run has a time of
/// its own.
class RunWatch {
 public:
  /// `cancel` may be null.
  explicit RunWatch(const CancelSwitch* cancel);
  ~RunWatch();
  RunWatch(const RunWatch&) = delete;
  RunWatch& operator=(const RunWatch&) = delete;

  /// Throws RunStopped when the run is to end.
  void look() const;

 private:
  const CancelSwitch* cancel_;
  std::uint32_t start_;
  const RunWatch* outer_;
};

/// Looks after the run of this thread, if there is one, now.
void lookAfterRun();

namespace detail {
inline constexpr std::int64_t kStepsBetweenLooks = std::int64_t{1} << 20;
inline thread_local std::int64_t stepsLeft = kStepsBetweenLooks;
void lookAfterSteps();
}  // namespace detail

/// Says that a loop has done so many steps, each as much work as an addition or a few. Costs next to nothing:
/// the clock is looked at once in about a millisecond of steps. Throws RunStopped when the run is to end.
inline void spendSteps(std::int64_t steps) {
  if ((detail::stepsLeft -= steps) < 0) detail::lookAfterSteps();
}

}  // namespace brindlewort::platform
