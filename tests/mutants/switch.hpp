#pragma once

#include <cstdlib>

/// Compiled in front of every source that holds deliberate faults: which of them a process shows.
namespace brindlewort_mutants {

inline bool on(int number) {
  static const int chosen = [] {
    const char* text = std::getenv("BRINDLEWORT_MUTANT");
    return text ? std::atoi(text) : 0;
  }();
  return number == chosen;
}

}  // namespace brindlewort_mutants
