#include "platform/local_time.hpp"

#include <chrono>
#include <ctime>
#include <limits>

namespace brindlewort::platform {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

bool breakDown(std::int64_t moment, std::tm& local) {
#ifdef _WIN32
  const __time64_t seconds = moment;
  return _localtime64_s(&local, &seconds) == 0;
#else
  const std::time_t seconds = static_cast<std::time_t>(moment);
  return seconds == moment && localtime_r(&seconds, &local) != nullptr;
#endif
}

std::int64_t floorDivide(std::int64_t number, std::int64_t divisor) {
  return number / divisor - (number % divisor < 0 ? 1 : 0);
}

/// The moment at which clocks of universal time show `civil`, fields beyond their range counting on. Nothing
/// for a year that the calendar arithmetic does not reach.
std::optional<std::int64_t> momentOfUniversalTime(const CivilTime& civil) {
  using namespace std::chrono;
  const std::int64_t monthsFromJanuary = std::int64_t{civil.month} - 1;
  const std::int64_t years = civil.year + floorDivide(monthsFromJanuary, 12);
  if (years < int{year::min()} || years > int{year::max()}) return std::nullopt;
  const unsigned monthOfYear =
      static_cast<unsigned>(monthsFromJanuary - 12 * floorDivide(monthsFromJanuary, 12)) + 1;
  const sys_days firstOfMonth = year{static_cast<int>(years)} / month{monthOfYear} / 1;
  const std::int64_t day = firstOfMonth.time_since_epoch().count() + std::int64_t{civil.day} - 1;
  return day * kSecondsPerDay + std::int64_t{civil.hour} * 3600 + std::int64_t{civil.minute} * 60 +
         civil.second;
}

/// How far local clocks are ahead of universal time at `moment`, in seconds.
std::optional<std::int64_t> offsetAt(std::int64_t moment) {
  const std::optional<CivilTime> local = localTimeOf(moment);
  const std::optional<std::int64_t> shown = local ? momentOfUniversalTime(*local) : std::nullopt;
  if (!shown) return std::nullopt;
  return *shown - moment;
}

}  // namespace

std::int64_t momentOfLocalTime(const CivilTime& local) {
  const std::optional<std::int64_t> universal = momentOfUniversalTime(local);
  if (!universal) return -1;
  // No clock is more than a day off universal time, so a change near `local` lies between these offsets.
  const std::optional<std::int64_t> before = offsetAt(*universal - kSecondsPerDay);
  if (before && offsetAt(*universal - *before) == before) return *universal - *before;
  const std::optional<std::int64_t> after = offsetAt(*universal + kSecondsPerDay);
  if (after && offsetAt(*universal - *after) == after) return *universal - *after;
  return before ? *universal - *before : -1;
}

std::optional<CivilTime> localTimeOf(std::int64_t moment) {
  std::tm fields{};
  if (!breakDown(moment, fields)) return std::nullopt;
  const std::int64_t year = std::int64_t{fields.tm_year} + 1900;
  if (year > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  CivilTime local;
  local.year = static_cast<std::int32_t>(year);
  local.month = fields.tm_mon + 1;
  local.day = fields.tm_mday;
  local.hour = fields.tm_hour;
  local.minute = fields.tm_min;
  local.second = fields.tm_sec;
  return local;
}

}  // namespace brindlewort::platform
