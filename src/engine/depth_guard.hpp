#pragma once

#include "functions/script_engine.hpp"
#include "platform/stack.hpp"

namespace brindlewort {

/// Counts evaluations inside one another.
class DepthGuard {
 public:
  explicit DepthGuard(int& depth) : depth_(depth) { ++depth_; }
  ~DepthGuard() { --depth_; }
  DepthGuard(const DepthGuard&) = delete;

  /// Nothing more may be evaluated inside this evaluation.
  bool isTooDeep() const { return depth_ > kMaxDepth || platform::stackIsLow(); }

 private:
  int& depth_;
};

}  // namespace brindlewort
