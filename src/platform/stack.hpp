#pragma once

namespace brindlewort::platform {

/// Whether too little of the thread's stack is left for evaluations to nest any deeper. Threads of Windows
/// have 1 MiB as a rule, which the deepest scripts would overrun; elsewhere they have several.
#ifdef _WIN32
bool stackIsLow();
#else
constexpr bool stackIsLow() {
  return false;
}
#endif

}  // namespace brindlewort::platform
