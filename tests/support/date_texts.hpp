#pragma once

#include <string>

namespace brindlewort::testing {

/// A text that may hold dates and times as every system but Windows writes them, "2004-08-19 10:20:30", with
/// them as this system writes them for its user.
#ifdef _WIN32
std::string localDates(const std::string& text);
#else
inline std::string localDates(std::string text) {
  return text;
}
#endif

}  // namespace brindlewort::testing
