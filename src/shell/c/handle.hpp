#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

/// What all functions of the C face share: statuses, texts, and the rule that nothing throws out.
namespace brindlewort::c_face {

inline constexpr std::int32_t kSuccess = 0;
inline constexpr std::int32_t kFailure = 1;
inline constexpr std::int32_t kNullArgument = -1;

/// A true result of the record operations.
inline constexpr std::int32_t kTrue = -1;

inline std::string_view textOf(const char* text) {
  return text ? std::string_view(text) : std::string_view();
}

/// A copy that the host frees; null when memory runs out.
inline char* copyText(std::string_view text) {
  char* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (!copy) return nullptr;
  std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = '\0';
  return copy;
}

/// Runs a call on a handle. A null handle is -1, and whatever is thrown inside is a failure.
template <class Handle, class Call>
std::int32_t onHandle(Handle* handle, Call call) noexcept {
  if (!handle) return kNullArgument;
  try {
    return call(*handle);
  } catch (...) {
    return kFailure;
  }
}

template <class... Pointers>
bool anyNull(Pointers... pointers) {
  return (... || (pointers == nullptr));
}

}  // namespace brindlewort::c_face
