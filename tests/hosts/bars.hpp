#pragma once

#include <initializer_list>
#include <string>

#include "host.hpp"

/// Bars as the tests give them.
namespace brindlewort::hosts {

inline constexpr double kFirstDay = 2451544.5;  // 1 January 2000, midnight

/// Bar number `day`, counted from 1, all of it at one price; its last trade is at noon.
inline double dateOf(int day) {
  return kFirstDay + day - 1;
}
inline double lastTradeOf(int day) {
  return dateOf(day) + 0.5;
}

inline void append(const ComPtr<IAlert>& alert, int day, double price) {
  EXPECT_EQ(alert->AppendRecord(dateOf(day), price, price, price, price, 100, lastTradeOf(day)), S_OK);
}
inline void append(const ComPtr<IBacktest>& backtest, int day, double price) {
  EXPECT_EQ(backtest->AppendRecord(dateOf(day), price, price, price, price, 100), S_OK);
}
inline void append(const ComPtr<IScriptOutput>& output, int day, double price) {
  EXPECT_EQ(output->AppendRecord(dateOf(day), price, price, price, price, 100), S_OK);
}
inline void appendNew(const ComPtr<IScriptOutput>& output, int day, double price) {
  EXPECT_EQ(output->AppendRecord_New(dateOf(day), price, price, price, price, 100), S_OK);
}

/// Bars of the first days, with these prices.
template <class Interface>
void appendAll(const ComPtr<Interface>& object, std::initializer_list<double> prices) {
  int day = 0;
  for (double price : prices) append(object, ++day, price);
}

/// What the places of a record query hold.
struct Record {
  double date = 1.5, open = 2.5, high = 3.5, low = 4.5, close = 5.5;
  LONG volume = 6;
  VARIANT_BOOL found = 77;
  bool operator==(const Record&) const = default;
};

/// What they hold before a query, with another result: what a query that finds nothing leaves.
inline Record untouched(VARIANT_BOOL found = VARIANT_FALSE) {
  Record record;
  record.found = found;
  return record;
}

inline void PrintTo(const Record& r, std::ostream* out) {
  *out << std::fixed << r.date << ": " << r.open << " " << r.high << " " << r.low << " " << r.close << " "
       << r.volume << ", found " << r.found;
}

template <class Interface>
Record recordByIndex(const ComPtr<Interface>& object, LONG index) {
  Record r;
  EXPECT_EQ(object->GetRecordByIndex(index, &r.date, &r.open, &r.high, &r.low, &r.close, &r.volume, &r.found),
            S_OK);
  return r;
}
/// The date stays as it is.
template <class Interface>
Record recordByDate(const ComPtr<Interface>& object, double date) {
  Record r;
  EXPECT_EQ(object->GetRecordByJDate(date, &r.open, &r.high, &r.low, &r.close, &r.volume, &r.found), S_OK);
  return r;
}

/// 1 January 1980 with a time of day: 2444239.5 and the time, added as the conversion adds.
inline double newYear1980(double timeOfDay) {
  constexpr double kDays = 723226;  // 367 * 1980 - floor(7 * 1980 / 4) + floor(275 / 9) + 1
  return kDays + timeOfDay + 1721013.5 - 0.5 + 0.5;
}

/// Short date, a blank and time of day as the user's locale writes them.
inline std::wstring localeText(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0,
                               WORD second = 0) {
  SYSTEMTIME time{};
  time.wYear = year;
  time.wMonth = month;
  time.wDay = day;
  time.wHour = hour;
  time.wMinute = minute;
  time.wSecond = second;
  wchar_t dateText[80], timeText[80];
  EXPECT_NE(GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, dateText, 80), 0);
  EXPECT_NE(GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &time, nullptr, timeText, 80), 0);
  return std::wstring(dateText) + L" " + timeText;
}

/// The text of a bar's date; days of January 2000.
inline std::wstring dayText(int day) {
  return localeText(2000, 1, static_cast<WORD>(day));
}

}  // namespace brindlewort::hosts
