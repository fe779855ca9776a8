#pragma once

#include <cstdint>

namespace brindlewort {

/// A date of the civil calendar and a time of day, as broken-down fields. Nothing checks that they name a
/// day that exists; who cannot use the values refuses them.
struct CivilTime {
  std::int32_t year = 0;
  std::int32_t month = 0;  ///< 1 to 12
  std::int32_t day = 0;    ///< 1 to 31
  std::int32_t hour = 0;
  std::int32_t minute = 0;
  std::int32_t second = 0;

  friend bool operator==(const CivilTime&, const CivilTime&) = default;
};

}  // namespace brindlewort
