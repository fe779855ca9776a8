#pragma once

#include <cstdint>

namespace brindlewort::platform {

/// Milliseconds of a counter that never goes back and is cheap enough to be read at every step of an
/// evaluation. It may move in steps of some milliseconds. It starts anywhere and wraps at 2^32: only
/// the unsigned difference of two readings has a meaning.
std::uint32_t tickMilliseconds();

using TickSource = std::uint32_t (*)();
/// From now on tickMilliseconds() asks this source, in all threads; null: the system's counter. For tests,
/// which must not wait for time to pass. The answer is the source before.
TickSource setTickSource(TickSource source);

/// Seconds since the start of 1970, universal time.
std::int64_t secondsSince1970();

}  // namespace brindlewort::platform
