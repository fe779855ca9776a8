#include "platform/code_page.hpp"

#ifdef _WIN32
#include <windows.h>

#include <limits>

namespace brindlewort::platform {

namespace {

/// The system counts characters in integers.
bool isCountable(std::size_t length) {
  return length <= static_cast<std::size_t>(std::numeric_limits<int>::max());
}

int toWide(std::string_view narrow, wchar_t* out, std::size_t room) {
  if (!isCountable(narrow.size()) || !isCountable(room)) return 0;
  return MultiByteToWideChar(CP_ACP, 0, narrow.data(), static_cast<int>(narrow.size()), out,
                             static_cast<int>(room));
}

}  // namespace

std::string narrowText(const wchar_t* wide) {
  constexpr int kToTheZero = -1;
  const int size = WideCharToMultiByte(CP_ACP, 0, wide, kToTheZero, nullptr, 0, nullptr, nullptr);
  if (size <= 1) return {};
  // The system counts and writes the closing zero too, where the string has its own.
  std::string text(static_cast<std::size_t>(size) - 1, '\0');
  const int written = WideCharToMultiByte(CP_ACP, 0, wide, kToTheZero, text.data(), size, nullptr, nullptr);
  return written == size ? text : std::string();
}

std::size_t wideLength(std::string_view narrow) {
  return static_cast<std::size_t>(toWide(narrow, nullptr, 0));
}

bool writeWide(std::string_view narrow, wchar_t* out, std::size_t length) {
  if (narrow.empty()) return length == 0;
  return length > 0 && static_cast<std::size_t>(toWide(narrow, out, length)) == length;
}

}  // namespace brindlewort::platform
#endif
