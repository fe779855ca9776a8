#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/civil_time.hpp"

/// Dates are doubles: a Julian day number with a fraction of a day, x.5 being midnight.
namespace brindlewort {

/// The first and the last date that output rows, reports and the date functions accept: 1 January 1900 and
/// 1 January 2100, midnight.
inline constexpr double kFirstDate = 2415020.5;
inline constexpr double kLastDate = 2488069.5;

/// Dates of the bars that a run puts in front of the host's: 1 and 2 January 1980, midnight.
inline constexpr double kFirstDummyDate = 2444239.5;
inline constexpr double kSecondDummyDate = 2444240.5;

/// Stands for a date that cannot be written.
inline constexpr const char* kNoDateTime = "No Date Time";

/// The Julian date of a civil date and time. Fits dates from 1801 to 2099; any other integers give the
/// number that the same arithmetic gives. The time of day is ((second / 60 + minute) / 60 + hour) / 24.
double ToJulianDate(std::int32_t nYear, std::int32_t nMonth, std::int32_t nDay, std::int32_t nHour,
                    std::int32_t nMinute, std::int32_t nSecond);

/// The same with milliseconds. Its time of day is added up from the parts of an hour, so the last bits may
/// differ from ToJulianDate's.
double ToJulianDateWithMilliseconds(std::int32_t nYear, std::int32_t nMonth, std::int32_t nDay,
                                    std::int32_t nHour, std::int32_t nMinute, std::int32_t nSecond,
                                    std::int32_t nMillisecond);

/// Short date, a blank, time of day; kNoDateTime when the formatter refuses the date. Any double is accepted.
/// The last half second before midnight reads as midnight at the start of the same day.
std::string FromJulianDate(double JDate);

/// FromJulianDate for dates from kFirstDate to kLastDate; kNoDateTime for all others.
std::string DateTimeText(double JDate);
void appendDateTimeText(std::string& text, double JDate);

/// The date and time that DateTimeText writes. Nothing for a date outside kFirstDate to kLastDate and for a
/// non-number.
std::optional<CivilTime> SplitJulianDate(double JDate);

/// Parts of a date and units of a difference, as scripts number them.
enum DatePartId : std::int32_t {
  kSecondPart = 1,
  kMinutePart = 2,
  kHourPart = 3,
  kDayPart = 4,
  kMonthPart = 5,
  kYearPart = 6,
};

/// One part of a date by the clocks of the local time zone. NULL_VALUE for a date of 1.0 or below and a part
/// outside 1 to 6. A date out of range stands for the start of 1970, universal time. When the system cannot
/// break the moment down, day, month and year are 0, the parts of the time -1.
double DatePartOf(double date, std::int32_t part);

/// First date minus second, by the local time zone, in whole seconds (1), minutes (2), hours (3) or days (4),
/// cut toward zero; 0.0 for another unit. NULL_VALUE when either date is 1.0 or below or a dummy bar's.
double DateDifference(double first, double second, std::int32_t unit);

}  // namespace brindlewort
