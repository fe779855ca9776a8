#pragma once

#include <cstddef>

/// Makes chosen allocations of the library fail: those of operator new and malloc, while they are watched.
namespace brindlewort::testing {

/// Which of the allocations to come, counted from 1, fails; with `onward` all behind it fail too. 0: none
/// does.
struct FailurePlan {
  std::size_t number = 0;
  bool onward = false;
};

/// Begins to count anew.
void planFailures(FailurePlan plan);
/// Watched allocations since then.
std::size_t watchedAllocations();
/// Whether one of them has failed.
bool anyFailed();

/// While it lives, allocations are the library's: they count, and fail by the plan. What a test allocates
/// within a callback stands in a scope that is not `watched`.
class AllocationScope {
 public:
  explicit AllocationScope(bool watched);
  ~AllocationScope();
  AllocationScope(const AllocationScope&) = delete;
  AllocationScope& operator=(const AllocationScope&) = delete;

 private:
  bool before_;
};

}  // namespace brindlewort::testing
