// Every allocation of whole sequences of calls fails in turn, alone and with all behind it. A call that ran
// out of memory says so by its status and has changed nothing: made again, or left out, the host hears from
// there on what it hears from a handle for which memory never ran out.
//
// The everyday suite plays a choice of the sequences; with BRINDLEWORT_ALL_ALLOCATIONS in the environment
// all.

#include <gtest/gtest.h>

#include <cstdlib>

#include "memory/sessions.hpp"

namespace brindlewort::testing {
namespace {

bool playsAll() {
  return std::getenv("BRINDLEWORT_ALL_ALLOCATIONS") != nullptr;
}

constexpr std::int32_t kOutOfMemoryStatus = 1;

/// What a host hears of a session in which memory never runs out: all of it, and what it hears beside its
/// questions for the last run when one step is left out.
template <class Handle>
std::string heard(const Session<Handle>& session) {
  Player<Handle> player(session);
  player.play(0, session.steps.size());
  return player.said();
}
template <class Handle>
std::string heardWithout(const Session<Handle>& session, std::size_t step) {
  Player<Handle> player(session);
  player.playRuns(0, step);
  player.playRuns(step + 1, session.steps.size());
  return player.said();
}

/// One call of a session whose allocations fail.
template <class Handle>
class FailingCall {
 public:
  FailingCall(const Session<Handle>& session, std::size_t step, FailurePlan plan)
      : session_(session), step_(step), plan_(plan) {}

  /// The host makes the call again. False when the call has no such allocation.
  bool isMadeAgain(const std::string& expected) {
    Player<Handle> player(session_);
    player.play(0, step_);
    if (!fails(player)) return false;
    // Where the library can do without the memory the call is as any other.
    const std::string& said = player.said();
    if (expected.compare(0, said.size(), said) != 0) {
      expectStatus();
      player.unhear(before_);
      player.play(step_);
    }
    player.play(step_ + 1, session_.steps.size());
    EXPECT_EQ(player.said() == expected, true) << what() << ", made again";
    return true;
  }

  /// The host goes on without it.
  bool isLeftOut(const std::string& expected, const std::string& expectedWith) {
    Player<Handle> player(session_);
    player.playRuns(0, step_);
    if (!fails(player)) return false;
    const bool didWithout = status_ != kOutOfMemoryStatus;
    if (!didWithout) player.unhear(before_);
    player.playRuns(step_ + 1, session_.steps.size());
    EXPECT_EQ(player.said() == (didWithout ? expectedWith : expected), true) << what() << ", left out";
    return true;
  }

 private:
  bool fails(Player<Handle>& player) {
    before_ = player.heard();
    planFailures(plan_);
    status_ = player.play(step_);
    const bool failed = anyFailed();
    planFailures({});
    return failed;
  }
  void expectStatus() { EXPECT_EQ(status_, kOutOfMemoryStatus) << what(); }
  std::string what() const {
    return session_.name + "\nstep " + std::to_string(step_) + " " + session_.steps[step_].name +
           ", allocation " + std::to_string(plan_.number) + (plan_.onward ? " and on" : "");
  }

  const Session<Handle>& session_;
  const std::size_t step_;
  const FailurePlan plan_;
  Transcript before_;
  std::int32_t status_ = 0;
};

/// Every allocation of every call fails in turn. How many calls failed. Unless `all` is asked for, each
/// allocation fails in one of the four ways.
template <class Handle>
std::size_t playWithFailures(const Session<Handle>& session, bool all) {
  const std::string expected = heard(session), with = heardWithout(session, session.steps.size());
  std::size_t played = 0;
  for (std::size_t step = 0; step < session.steps.size(); ++step) {
    if (session.steps[step].asksForLastRun) continue;
    const std::string without = heardWithout(session, step);
    bool more = true;
    for (std::size_t number = 1; more; ++number) {
      for (std::size_t form = 0; form < 4 && more; ++form) {
        if (!all && form != number % 4) continue;
        FailingCall<Handle> call(session, step, {number, form % 2 == 1});
        more = form < 2 ? call.isMadeAgain(expected) : call.isLeftOut(without, with);
        played += more;
      }
    }
    if (::testing::Test::HasFailure()) break;
  }
  return played;
}

template <class Handle>
void expectAllOrNothing(const std::vector<Session<Handle>>& sessions, std::size_t stride = 1) {
  std::size_t played = 0;
  for (std::size_t i = 0; i < sessions.size(); i += playsAll() ? 1 : stride) {
    played += playWithFailures(sessions[i], playsAll());
    if (::testing::Test::HasFailure()) break;
  }
  EXPECT_GT(played, 0u);
  ::testing::Test::RecordProperty("failures", static_cast<int>(played));
  std::printf("%zu failures\n", played);
}

TEST(OutOfMemory, ScriptOutputCallsAreAllOrNothing) {
  expectAllOrNothing(outputSessions());
}
TEST(OutOfMemory, RunsOfEveryFunctionAreAllOrNothing) {
  expectAllOrNothing(functionSessions(), 12);
}
TEST(OutOfMemory, AlertCallsAreAllOrNothing) {
  expectAllOrNothing(alertSessions());
}
TEST(OutOfMemory, BacktestCallsAreAllOrNothing) {
  expectAllOrNothing(backtestSessions());
}
TEST(OutOfMemory, ValidationsAreAllOrNothing) {
  expectAllOrNothing(validateSessions());
}

/// The scripts of the sessions compute what they name: none ends with an error.
TEST(OutOfMemory, EveryFunctionHasASessionThatRuns) {
  for (const auto& session : functionSessions()) {
    const std::string said = heard(session);
    EXPECT_EQ(said.find("Error:"), std::string::npos) << session.name << "\n"
                                                      << said.substr(said.find("Error:"), 200);
  }
}

/// No handle is half made.
template <class Handle>
void expectNoHandleWithoutMemory(Handle* (*create)(), void (*destroy)(Handle*)) {
  for (std::size_t number = 1;; ++number) {
    planFailures({number, false});
    Handle* h = nullptr;
    {
      const AllocationScope scope(true);
      h = create();
    }
    const bool failed = anyFailed();
    planFailures({});
    EXPECT_EQ(h == nullptr, failed);
    destroy(h);
    if (!failed) break;
  }
}
TEST(OutOfMemory, AHandleIsMadeOrNot) {
  expectNoHandleWithoutMemory(bw_script_output_create, bw_script_output_destroy);
  expectNoHandleWithoutMemory(bw_backtest_create, bw_backtest_destroy);
  expectNoHandleWithoutMemory(bw_alert_create, bw_alert_destroy);
  expectNoHandleWithoutMemory(bw_validate_create, bw_validate_destroy);
}

}  // namespace
}  // namespace brindlewort::testing
