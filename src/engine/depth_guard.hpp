#pragma once

#include "functions/script_engine.hpp"
#include "platform/stack.hpp"

namespace brindlewort {

/// Counts evaluations inside one another. The outermost one finds out how far down the stack they may go; no
/// call of the host's is made inside it, so that all of them are on one stack.
class DepthGuard {
 public:
  explicit DepthGuard(Nesting& nesting) : nesting_(nesting) {
    if (++nesting_.depth == 1) nesting_.stackFloor = platform::stackFloor();
  }
  ~DepthGuard() { --nesting_.depth; }
  DepthGuard(const DepthGuard&) = delete;

  /// Nothing more may be evaluated inside this evaluation.
  bool isTooDeep() const {
    return nesting_.depth > kMaxDepth || platform::stackPosition() < nesting_.stackFloor;
  }

 private:
  Nesting& nesting_;
};

}  // namespace brindlewort
