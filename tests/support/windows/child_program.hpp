#pragma once

#include <string>

namespace brindlewort::testing {

/// This test program once more, as another process that runs one test of it: a disabled one, so that nobody
/// else does. Killed at the latest with the object.
class ChildProgram {
 public:
  /// `test` is the full name, "DISABLED_Suite.Test".
  explicit ChildProgram(const std::string& test);
  ~ChildProgram();
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;

  /// Waits until the child is at waitForTheEnd(). False when it does not get there.
  bool isReady();
  /// Lets the child go on, and waits for it. Whether its test passed.
  bool end();
  void killNow();

  /// In the child: tells the parent that all is done, and waits until it may go on.
  static void waitForTheEnd();

 private:
  void* process_ = nullptr;
  void* ready_ = nullptr;
  void* goOn_ = nullptr;
};

}  // namespace brindlewort::testing
