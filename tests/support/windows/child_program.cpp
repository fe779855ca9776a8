#include "support/windows/child_program.hpp"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace brindlewort::testing {

namespace {

constexpr DWORD kLongestWait = 60'000;
constexpr const char* kParent =
    "BRINDLEWORT_TEST_PARENT";  // the child's environment: the parent's process id

std::string eventName(const std::string& parent, const char* what) {
  return "brindlewort-test-" + parent + "-" + what;
}

HANDLE makeEvent(const std::string& parent, const char* what) {
  return CreateEventA(nullptr, FALSE, FALSE, eventName(parent, what).c_str());
}

}  // namespace

ChildProgram::ChildProgram(const std::string& test) {
  const std::string self = std::to_string(GetCurrentProcessId());
  ready_ = makeEvent(self, "ready");
  goOn_ = makeEvent(self, "go-on");
  char program[MAX_PATH] = "";
  GetModuleFileNameA(nullptr, program, MAX_PATH);
  std::string command =
      "\"" + std::string(program) + "\" --gtest_also_run_disabled_tests --gtest_filter=" + test;
  SetEnvironmentVariableA(kParent, self.c_str());
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started{};
  if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                     &started)) {
    CloseHandle(started.hThread);
    process_ = started.hProcess;
  }
  SetEnvironmentVariableA(kParent, nullptr);
}

ChildProgram::~ChildProgram() {
  killNow();
  CloseHandle(ready_);
  CloseHandle(goOn_);
}

bool ChildProgram::isReady() {
  if (process_ == nullptr) return false;
  const HANDLE any[] = {ready_, process_};
  return WaitForMultipleObjects(2, any, FALSE, kLongestWait) == WAIT_OBJECT_0;
}

bool ChildProgram::end() {
  if (process_ == nullptr) return false;
  SetEvent(goOn_);
  DWORD code = 1;
  const bool ended =
      WaitForSingleObject(process_, kLongestWait) == WAIT_OBJECT_0 && GetExitCodeProcess(process_, &code);
  killNow();
  return ended && code == 0;
}

void ChildProgram::killNow() {
  if (process_ == nullptr) return;
  TerminateProcess(process_, 1);
  WaitForSingleObject(process_, kLongestWait);
  CloseHandle(process_);
  process_ = nullptr;
}

void ChildProgram::waitForTheEnd() {
  char parent[32] = "";
  GetEnvironmentVariableA(kParent, parent, sizeof parent);
  const HANDLE ready = makeEvent(parent, "ready"), goOn = makeEvent(parent, "go-on");
  SetEvent(ready);
  WaitForSingleObject(goOn, kLongestWait);
  CloseHandle(ready);
  CloseHandle(goOn);
}

}  // namespace brindlewort::testing
