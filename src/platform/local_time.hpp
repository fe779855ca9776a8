#pragma once

#include <cstdint>
#include <optional>

#include "platform/civil_time.hpp"

/// The time zone of the system, from any thread.
namespace brindlewort::platform {

/// The moment, in seconds since the start of 1970 universal time, at which clocks of the local time zone
/// show `local`. Fields beyond their range count on: 30 February is the first or second of March. Of a time
/// that the clocks show twice the first is taken; a time that they skip is read as if they had not been set
/// forward yet. The answer depends on nothing but the time zone and `local`, so a series gives the same
/// differences whether it is computed at once or bar by bar. -1 when the system does not know the zone's
/// clocks around `local`.
std::int64_t momentOfLocalTime(const CivilTime& local);

/// What clocks of the local time zone show at `moment`. Nothing when the system cannot tell; Windows cannot
/// for moments before 1970 and after 3000.
std::optional<CivilTime> localTimeOf(std::int64_t moment);

}  // namespace brindlewort::platform
