#include "indicators/primes.hpp"

#include <array>
#include <bit>
#include <limits>

#include "platform/run_watch.hpp"

namespace brindlewort {
namespace {

using Unsigned = std::uint64_t;
__extension__ using Wide = unsigned __int128;

/// A witness, and the least composite that it and those before it let pass.
struct Witness {
  Unsigned prime;
  Unsigned decidesBelow;
};
// The first twelve primes together tell every composite below 3.3e24 from a prime.
constexpr Unsigned kAll = std::numeric_limits<Unsigned>::max();
constexpr std::array<Witness, 12> kWitnesses = {{{2, 2'047},
                                                 {3, 1'373'653},
                                                 {5, 25'326'001},
                                                 {7, 3'215'031'751},
                                                 {11, 2'152'302'898'747},
                                                 {13, 3'474'749'660'383},
                                                 {17, 341'550'071'728'321},
                                                 {19, 341'550'071'728'321},
                                                 {23, 3'825'123'056'546'413'051},
                                                 {29, 3'825'123'056'546'413'051},
                                                 {31, 3'825'123'056'546'413'051},
                                                 {37, kAll}}};
// What none of the twelve divides is prime below the square of the thirteenth.
constexpr Unsigned kDivisionDecidesBelow = 41 * 41;
// A test is as much work as so many additions.
constexpr std::int64_t kStepsOfTest = 512;

/// Products of residues modulo an odd number below 2^63, without a division: residues are kept multiplied by
/// 2^64.
class Residues {
 public:
  explicit Residues(Unsigned modulus) : modulus_(modulus) {
    // Each step doubles the bits that are right.
    Unsigned inverse = modulus;
    for (int i = 0; i < 5; ++i) inverse *= 2 - modulus * inverse;
    minusInverse_ = 0 - inverse;
    one_ = (0 - modulus) % modulus;
    square_ = static_cast<Unsigned>(static_cast<Wide>(one_) * one_ % modulus);
  }
  Unsigned one() const { return one_; }
  Unsigned minusOne() const { return modulus_ - one_; }
  Unsigned of(Unsigned number) const { return times(number, square_); }
  Unsigned times(Unsigned a, Unsigned b) const {
    const Wide product = static_cast<Wide>(a) * b;
    const Wide multiple = static_cast<Wide>(static_cast<Unsigned>(product) * minusInverse_) * modulus_;
    const auto reduced = static_cast<Unsigned>((product + multiple) >> 64);
    return reduced >= modulus_ ? reduced - modulus_ : reduced;
  }

 private:
  Unsigned modulus_, minusInverse_, one_, square_;
};

/// Whether one witness lets the modulus, odd * 2^twos + 1, pass as a prime.
bool passes(const Residues& residues, Unsigned witness, Unsigned odd, int twos) {
  Unsigned power = residues.one();
  Unsigned base = residues.of(witness);
  for (Unsigned exponent = odd; exponent != 0; exponent >>= 1) {
    if (exponent & 1) power = residues.times(power, base);
    base = residues.times(base, base);
  }
  if (power == residues.one() || power == residues.minusOne()) return true;
  for (int i = 1; i < twos; ++i) {
    power = residues.times(power, power);
    if (power == residues.minusOne()) return true;
  }
  return false;
}

bool allPass(Unsigned v) {
  platform::spendSteps(kStepsOfTest);
  const int twos = std::countr_zero(v - 1);
  const Residues residues(v);
  for (const Witness& witness : kWitnesses) {
    if (!passes(residues, witness.prime, (v - 1) >> twos, twos)) return false;
    if (v < witness.decidesBelow) return true;
  }
  return true;
}

}  // namespace

bool isPrime(std::int64_t value) {
  if (value <= 3) return true;
  const auto v = static_cast<Unsigned>(value);
  for (const Witness& witness : kWitnesses) {
    if (v % witness.prime == 0) return v == witness.prime;
  }
  return v < kDivisionDecidesBelow || allPass(v);
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
