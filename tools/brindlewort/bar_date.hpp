#pragma once

#include <optional>
#include <string_view>

namespace brindlewort::tool {

/// What a date field may hold, in words for a message.
inline constexpr std::string_view kBarDateExpected =
    "a date of the years 1801 to 2099: 2004-08-19, 2004-08-19 09:30, 2004-08-19T09:30:00, epoch seconds or "
    "milliseconds, or a Julian day number";

/// The Julian day number of a date field, or nothing when it is no date. The field is one of
///  - ISO: YYYY-MM-DD, or that without dashes; behind it optionally a blank or a T and HH:MM or HH:MM:SS;
///    a fraction of the seconds and a Z at the end are cut. Other time zones are refused.
///  - a number from 2,378,861.5 to below 2,488,069.5, the Julian days of 1801 to 2099: taken as it is;
///  - another number nearer to zero than 10,000,000,000: seconds since 1970-01-01 (a fraction is cut);
///  - any other number: milliseconds since 1970-01-01 (cut to seconds).
/// Eight digits that form a calendar date are that date and no epoch seconds.
std::optional<double> parseBarDate(std::string_view field);

}  // namespace brindlewort::tool
