#pragma once

#include <cstddef>

#include "platform/civil_time.hpp"

/// Date and time texts for people: the user's short formats on Windows, one fixed format elsewhere, so
/// that every component writes the rows that hosts parse in the same way.
namespace brindlewort::platform {

/// Characters that a caller has ready for either text; both are at most 19 long. Where the user's format
/// gives a longer one, none is written.
inline constexpr std::size_t kDateTimeTextRoom = 20;

/// Writes the short date to `out` and returns its end; elsewhere than on Windows it is YYYY-MM-DD. Returns
/// `out` when the formatter refuses the date: a year outside 1601 to 30827, a month outside 1 to 12, a day
/// that the Gregorian calendar lacks.
char* writeShortDate(char* out, const CivilTime& date);

/// Writes the time of day to `out` and returns its end; elsewhere than on Windows it is HH:MM:SS. Returns
/// `out` for an hour outside 0 to 23, a minute or a second outside 0 to 59.
char* writeTimeOfDay(char* out, const CivilTime& time);

}  // namespace brindlewort::platform
