#include "indicators/primes.hpp"

#include <array>
#include <limits>

namespace brindlewort {
namespace {

using Unsigned = std::uint64_t;
__extension__ using Wide = unsigned __int128;

// The first twelve primes: together as witnesses they tell every composite below 3.3e24 from a prime.
constexpr std::array<Unsigned, 12> kWitnesses = {2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37};
// Below this the first four are enough, and products of two residues fit 64 bits.
constexpr Unsigned kFourWitnessesSuffice = 3'215'031'751;
// What none of the twelve divides is prime below the square of the thirteenth.
constexpr Unsigned kDivisionDecidesBelow = 41 * 41;

/// Whether one witness lets v = odd * 2^twos + 1 pass as a prime. `Product` holds the product of two
/// residues.
template <class Product>
bool passes(Unsigned v, Unsigned witness, Unsigned odd, int twos) {
  const auto times = [v](Unsigned a, Unsigned b) {
    return static_cast<Unsigned>(static_cast<Product>(a) * b % v);
  };
  Unsigned power = 1;
  for (Unsigned base = witness, exponent = odd; exponent != 0; exponent >>= 1, base = times(base, base)) {
    if (exponent & 1) power = times(power, base);
  }
  if (power == 1 || power == v - 1) return true;
  for (int i = 1; i < twos; ++i) {
    power = times(power, power);
    if (power == v - 1) return true;
  }
  return false;
}

template <class Product>
bool allPass(Unsigned v, std::size_t witnesses) {
  Unsigned odd = v - 1;
  int twos = 0;
  for (; odd % 2 == 0; odd /= 2) ++twos;
  for (std::size_t i = 0; i < witnesses; ++i) {
    if (!passes<Product>(v, kWitnesses[i], odd, twos)) return false;
  }
  return true;
}

}  // namespace

bool isPrime(std::int64_t value) {
  if (value <= 3) return true;
  const auto v = static_cast<Unsigned>(value);
  for (Unsigned divisor : kWitnesses) {
    if (v % divisor == 0) return v == divisor;
  }
  if (v < kDivisionDecidesBelow) return true;
  return v < kFourWitnessesSuffice ? allPass<Unsigned>(v, 4) : allPass<Wide>(v, kWitnesses.size());
}

std::int64_t primeAtOrBelow(std::int64_t v) {
  for (; v >= 1; --v) {
    if (isPrime(v)) return v;
  }
  return 0;
}

std::int64_t primeAtOrAbove(std::int64_t v) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  if (v < 0) return 0;
  const std::int64_t last = v > kMost / 2 ? kMost : 2 * v;
  for (std::int64_t candidate = v;; ++candidate) {
    if (isPrime(candidate)) return candidate;
    if (candidate == last) return 0;
  }
}

}  // namespace brindlewort
