#include "support/date_texts.hpp"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cctype>
#include <cstdlib>
#include <stdexcept>

namespace brindlewort::testing {

namespace {

/// Whether `text` begins like `form`, in which a 0 stands for any digit.
bool beginsLike(const char* text, const char* form) {
  for (; *form != 0; ++text, ++form) {
    const bool fits = *form == '0' ? std::isdigit(static_cast<unsigned char>(*text)) != 0 : *text == *form;
    if (!fits) return false;
  }
  return true;
}

/// The length of a date and time at the head of `text`; 0 when there is none.
std::size_t lengthOfDate(const char* text) {
  for (const std::string form : {"00000-00-00 00:00:00", "0000-00-00 00:00:00"}) {
    if (beginsLike(text, form.c_str())) return form.size();
  }
  return 0;
}

std::string localDate(const char* text) {
  SYSTEMTIME time{};
  for (WORD* field : {&time.wYear, &time.wMonth, &time.wDay, &time.wHour, &time.wMinute, &time.wSecond}) {
    char* end = nullptr;
    *field = static_cast<WORD>(std::strtoul(text, &end, 10));
    text = end + 1;
  }
  wchar_t date[80], clock[80];
  if (GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, date, 80) == 0 ||
      GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &time, nullptr, clock, 80) == 0) {
    throw std::invalid_argument("a test expects a date that Windows does not write");
  }
  const std::wstring wide = std::wstring(date) + L" " + clock;
  char narrow[320] = "";
  WideCharToMultiByte(CP_ACP, 0, wide.c_str(), -1, narrow, sizeof narrow, nullptr, nullptr);
  return narrow;
}

}  // namespace

std::string localDates(const std::string& text) {
  std::string out;
  for (const char* at = text.c_str(); *at != 0;) {
    const std::size_t length = lengthOfDate(at);
    if (length != 0) {
      out += localDate(at);
      at += length;
    } else {
      out += *at++;
    }
  }
  return out;
}

}  // namespace brindlewort::testing
