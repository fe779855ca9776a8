#include "platform/locale_text.hpp"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

namespace brindlewort::platform {

namespace {

// What no text is written for. Windows refuses it too; Wine would write the first of March for a 29 February
// that the calendar lacks.
constexpr std::int32_t kFirstYear = 1601;
constexpr std::int32_t kLastYear = 30827;

bool isBetween(std::int32_t value, std::int32_t lowest, std::int32_t highest) {
  return value >= lowest && value <= highest;
}

std::int32_t daysInMonth(std::int32_t year, std::int32_t month) {
  constexpr std::int32_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leapYear = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  return kDays[month - 1] + (month == 2 && leapYear ? 1 : 0);
}

bool isCalendarDay(const CivilTime& date) {
  return isBetween(date.year, kFirstYear, kLastYear) && isBetween(date.month, 1, 12) &&
         isBetween(date.day, 1, daysInMonth(date.year, date.month));
}

bool isTimeOfDay(const CivilTime& time) {
  return isBetween(time.hour, 0, 23) && isBetween(time.minute, 0, 59) && isBetween(time.second, 0, 59);
}

}  // namespace

#ifdef _WIN32

namespace {

/// Only the fields that the text shows have been checked; the system does not look at the others.
SYSTEMTIME systemTime(const CivilTime& civil) {
  SYSTEMTIME time{};  // weekday and milliseconds stay 0
  time.wYear = static_cast<WORD>(civil.year);
  time.wMonth = static_cast<WORD>(civil.month);
  time.wDay = static_cast<WORD>(civil.day);
  time.wHour = static_cast<WORD>(civil.hour);
  time.wMinute = static_cast<WORD>(civil.minute);
  time.wSecond = static_cast<WORD>(civil.second);
  return time;
}

/// End of a text of which the system counts the closing 0 too; it counts 0 for one that is too long.
char* endOfText(char* out, int countWithEnd) {
  return out + (countWithEnd > 0 ? countWithEnd - 1 : 0);
}

}  // namespace

char* writeShortDate(char* out, const CivilTime& date) {
  if (!isCalendarDay(date)) return out;
  const SYSTEMTIME time = systemTime(date);
  return endOfText(out, GetDateFormatA(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, out,
                                       static_cast<int>(kDateTimeTextRoom)));
}

char* writeTimeOfDay(char* out, const CivilTime& civil) {
  if (!isTimeOfDay(civil)) return out;
  const SYSTEMTIME time = systemTime(civil);
  return endOfText(
      out, GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &time, nullptr, out, static_cast<int>(kDateTimeTextRoom)));
}

#else

namespace {

char* writeTwoDigits(char* at, std::int32_t value) {
  *at++ = static_cast<char>('0' + value / 10);
  *at++ = static_cast<char>('0' + value % 10);
  return at;
}

}  // namespace

char* writeShortDate(char* out, const CivilTime& date) {
  if (!isCalendarDay(date)) return out;
  if (date.year > 9999) *out++ = static_cast<char>('0' + date.year / 10000);
  out = writeTwoDigits(out, date.year / 100 % 100);
  out = writeTwoDigits(out, date.year % 100);
  *out++ = '-';
  out = writeTwoDigits(out, date.month);
  *out++ = '-';
  return writeTwoDigits(out, date.day);
}

char* writeTimeOfDay(char* out, const CivilTime& time) {
  if (!isTimeOfDay(time)) return out;
  out = writeTwoDigits(out, time.hour);
  *out++ = ':';
  out = writeTwoDigits(out, time.minute);
  *out++ = ':';
  return writeTwoDigits(out, time.second);
}

#endif

}  // namespace brindlewort::platform
