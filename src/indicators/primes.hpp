#pragma once

#include <cstdint>

namespace brindlewort {

/// True for a prime, and for every value of 3 or less.
bool isPrime(std::int64_t v);

/// The first prime found scanning down from v (v included) and stopping at 1 (included); 0 when none, which
/// is for v below 1 alone.
std::int64_t primeAtOrBelow(std::int64_t v);

/// The first prime found scanning up from v (v included) and stopping at 2 * v (included); 0 when none,
/// which is for v below 0 alone (0 itself reports prime, so for v = 0 the answer 0 is a find).
std::int64_t primeAtOrAbove(std::int64_t v);

}  // namespace brindlewort
