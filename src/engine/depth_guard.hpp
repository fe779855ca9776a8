#pragma once

namespace brindlewort {

/// Counts evaluations inside one another.
class DepthGuard {
 public:
  explicit DepthGuard(int& depth) : depth_(depth) { ++depth_; }
  ~DepthGuard() { --depth_; }
  DepthGuard(const DepthGuard&) = delete;

 private:
  int& depth_;
};

}  // namespace brindlewort
