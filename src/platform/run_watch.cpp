#include "platform/run_watch.hpp"

#include "platform/clock.hpp"

namespace brindlewort::platform {

namespace {

thread_local const RunWatch* watchOfThread = nullptr;

}  // namespace

RunWatch::RunWatch(const CancelSwitch* cancel)
    : cancel_(cancel), start_(tickMilliseconds()), outer_(watchOfThread) {
  watchOfThread = this;
  detail::stepsLeft = detail::kStepsBetweenLooks;
}

RunWatch::~RunWatch() {
  watchOfThread = outer_;
}

void RunWatch::look() const {
  if (cancel_ && cancel_->isCancelled()) throw RunStopped{RunStopped::Reason::kCancelled};
  if (tickMilliseconds() - start_ > kTimeLimitMs) throw RunStopped{RunStopped::Reason::kTimeLimit};
}

void lookAfterRun() {
  if (watchOfThread) watchOfThread->look();
}

namespace detail {

void lookAfterSteps() {
  stepsLeft = kStepsBetweenLooks;
  lookAfterRun();
}

}  // namespace detail

}  // namespace brindlewort::platform
