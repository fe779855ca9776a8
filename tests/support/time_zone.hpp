#pragma once

#include <cstdlib>
#include <ctime>
#include <string>

namespace brindlewort::testing {

/// Gives the program another local time zone for the life of the object. Not for tests that run threads.
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const char* zone) {
    if (const char* present = std::getenv("TZ")) before_ = present, hadZone_ = true;
    use(zone);
  }
  ~ScopedTimeZone() { use(hadZone_ ? before_.c_str() : nullptr); }
  ScopedTimeZone(const ScopedTimeZone&) = delete;
  ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

 private:
  static void use(const char* zone) {
#ifdef _WIN32
    _putenv_s("TZ", zone ? zone : "");
    _tzset();
#else
    if (zone) {
      setenv("TZ", zone, 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
#endif
  }

  std::string before_;
  bool hadZone_ = false;
};

/// Clocks of these zones need no zone files: universal time; five hours behind it, with summer time from the
/// second Sunday of March to the first of November, at two o'clock; an hour before it, with summer time from
/// the last Sunday of March, at two o'clock, to the last of October, at three.
inline constexpr const char* kUniversalZone = "UTC0";
inline constexpr const char* kSummerTimeZone = "EST5EDT,M3.2.0,M11.1.0";
inline constexpr const char* kEasternSummerTimeZone = "CET-1CEST,M3.5.0,M10.5.0/3";

}  // namespace brindlewort::testing
