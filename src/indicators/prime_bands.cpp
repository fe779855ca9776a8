#include <algorithm>
#include <cmath>

#include "indicators/bands.hpp"
#include "indicators/primes.hpp"

namespace brindlewort {
namespace {

constexpr double kSmall = 10.0;         // values below it are multiplied by it
constexpr double kTooLarge = 0x1.0p53;  // from here on not every integer is a double

double timesTenWhenSmall(double v) {
  return v < kSmall ? v * kSmall : v;
}

/// Where the scan of a price starts. A null price is the number that it is.
double batchScanStart(double price) {
  return timesTenWhenSmall(std::trunc(price));
}
double resumableScanStart(double price) {
  return std::trunc(timesTenWhenSmall(price));
}

/// The scans of one line, upward for the top and downward for the bottom. Every value from the start of the
/// last scan to the prime it found has that prime too, so neighbouring prices seldom need a scan of their
/// own.
class PrimeScan {
 public:
  explicit PrimeScan(Band band) : upward_(band == Band::kTop) {}

  /// Upward from a value below 0 the end of the scan lies behind its start; downward it lies at 1.
  bool findsAny(std::int64_t v) const { return v >= (upward_ ? 0 : 1); }

  std::int64_t from(std::int64_t v) {
    if (v < low_ || v > high_) {
      prime_ = upward_ ? primeAtOrAbove(v) : primeAtOrBelow(v);
      low_ = std::min(v, prime_);
      high_ = std::max(v, prime_);
    }
    return prime_;
  }

 private:
  bool upward_;
  std::int64_t prime_ = 0;
  std::int64_t low_ = 1, high_ = 0;  // no value yet
};

/// The last prime of the rows before `start`, 0 when there is none.
double lastPrime(View band, Count start) {
  Count i = start - 1;
  while (i >= 0 && isNull(band[i])) --i;
  return i >= 0 ? band[i] : 0.0;
}

/// A value too large, or no number, leaves its row null; a scan that finds none repeats the last prime.
template <class ScanStart>
void fillBand(View price, Band band, Count start, Count n, ScanStart scanStart, Out out) {
  if (start >= n) return;
  PrimeScan scan(band);
  double prime = lastPrime(out, start);
  for (Count i = start; i < n; ++i) {
    const double value = scanStart(price[i]);
    if (!(std::fabs(value) < kTooLarge)) {
      out[i] = NULL_VALUE;
      continue;
    }
    const auto v = static_cast<std::int64_t>(value);
    if (scan.findsAny(v)) prime = static_cast<double>(scan.from(v));
    out[i] = prime;
  }
}

}  // namespace

namespace CFeedkit {

void PrimeNumberBands(const Prices& prices, Band band, Out out) {
  if (band == Band::kMiddle) return;
  const View price = band == Band::kTop ? prices.high : prices.low;
  fillBand(price, band, 1, prices.rows(), batchScanStart, out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status PrimeNumberBands(const PriceSources& prices, Band band, Target out) {
  if (band == Band::kMiddle) return kNothingDone;
  const Source& price = band == Band::kTop ? prices.high : prices.low;
  const Count n = rowsOf(price, out);
  const Count start = startRow(out, 0);
  if (start >= n) return kNothingDone;
  fillBand(price.rows, band, start, n, resumableScanStart, out.rows);
  return finish(out, n);
}

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
