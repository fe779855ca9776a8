#pragma once

#include <string>
#include <string_view>

namespace brindlewort::validation {

/// What a check finds wrong, as a message without "Error: " in front; empty when it finds nothing.
using Fault = std::string;

inline std::string inQuotes(std::string_view text) {
  return "'" + std::string(text) + "'";
}

/// The fault of a piece of the script that belongs to no valid one.
inline Fault notValid(std::string_view piece) {
  return inQuotes(piece) + " is not a valid script";
}

}  // namespace brindlewort::validation
