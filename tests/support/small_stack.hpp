#pragma once

#include <cstddef>
#include <functional>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace brindlewort::testing {

/// Does the work on a thread with a stack of so many bytes, and waits for it. False when it did not come to
/// its end: a thread that overruns its stack may be ended alone.
inline bool doneOnStackOf(std::size_t bytes, const std::function<void()>& work) {
  bool done = false;
  std::function<void()> all = [&] {
    work();
    done = true;
  };
#ifdef _WIN32
  const auto start = [](void* given) -> DWORD {
    (*static_cast<std::function<void()>*>(given))();
    return 0;
  };
  const HANDLE thread = CreateThread(nullptr, bytes, start, &all, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  if (!thread) return false;
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
#else
  const auto start = [](void* given) -> void* {
    (*static_cast<std::function<void()>*>(given))();
    return nullptr;
  };
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_t thread;
  const bool started = pthread_attr_setstacksize(&attributes, bytes) == 0 &&
                       pthread_create(&thread, &attributes, start, &all) == 0;
  pthread_attr_destroy(&attributes);
  if (started) pthread_join(thread, nullptr);
#endif
  return done;
}

}  // namespace brindlewort::testing
