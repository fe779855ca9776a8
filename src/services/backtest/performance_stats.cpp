#include "services/backtest/performance_stats.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <utility>

#include "platform/power.hpp"

namespace brindlewort::PerformanceStats {

namespace {

constexpr double kDaysPerMonth = 30.0;
constexpr double kMostMonths = 1 << 24;
constexpr double kRatioLimit = 1e15;
constexpr int kShuffles = 100;

/// The square root as the general power gives it, which may differ in the last bit from std::sqrt. The
/// exponent is volatile so that no compiler makes one of the other.
double squareRoot(double x) {
  static const volatile double kHalf = 0.5;
  return platform::power(x, kHalf);
}

/// By squaring, from the lowest bit of the exponent on.
double integerPower(double x, std::size_t exponent) {
  double power = 1.0;
  for (; exponent != 0; exponent >>= 1, x *= x) {
    if (exponent & 1) power *= x;
  }
  return power;
}

double count(View values) {
  return static_cast<double>(values.size());
}

double mean(View values) {
  double sum = 0.0;
  for (const double x : values) sum += x;
  return sum / count(values);
}

double limited(double ratio) {
  return ratio > kRatioLimit || ratio < -kRatioLimit ? 0.0 : ratio;
}

/// The lowest value of a running sum.
struct Drawdown {
  double sum = 0.0;
  double lowest = 0.0;
  void add(double x) {
    sum += x;
    if (sum < lowest) lowest = sum;
  }
};

/// Quotients of 15-bit numbers by the shuffle's divisors without dividing: x / d is x * (2^31 / d + 1) /
/// 2^31, cut, for all x and d below 2^15.
std::vector<std::uint32_t> shuffleFactors(std::size_t rows) {
  std::vector<std::uint32_t> factors;
  factors.reserve(rows);
  for (std::uint32_t rest = static_cast<std::uint32_t>(rows); rest-- > 1;) {
    const std::uint32_t divisor = static_cast<std::uint32_t>(platform::Random15::kMax) / rest;
    factors.push_back((std::uint32_t{1} << 31) / divisor + 1);
  }
  return factors;
}

/// Shuffles the rows and walks over them; a row is final as soon as its turn in the shuffle has passed.
void shuffleAndWalk(std::vector<double>& rows, const std::vector<std::uint32_t>& factors,
                    platform::Random15& random, Drawdown& drawdown) {
  const std::size_t n = rows.size();
  for (std::size_t i = 0; i < factors.size(); ++i) {
    const std::uint64_t drawn = static_cast<std::uint64_t>(random.next());
    const std::size_t j = i + static_cast<std::size_t>(drawn * factors[i] >> 31);
    std::swap(rows[i], rows[j < n ? j : i]);  // with itself, where there is no exchange: no branch to guess
    drawdown.add(rows[i]);
  }
  if (n != 0) drawdown.add(rows[n - 1]);
}

}  // namespace

std::vector<double> BinByMonth(View values, View dates, std::int32_t& tradesPerMonth) {
  if (dates.empty()) return {};
  const double months = std::floor((dates.back() - dates.front()) / kDaysPerMonth) + 1.0;
  tradesPerMonth = 0;
  if (!(months >= 1.0)) return {};
  if (months > kMostMonths) throw std::bad_alloc();
  std::vector<double> bins(static_cast<std::size_t>(months), 0.0);
  for (std::size_t i = 0; i < values.size() && i < dates.size(); ++i) {
    const double month = (dates[i] - dates.front()) / kDaysPerMonth;
    if (!(month >= 0.0 && month < months)) continue;
    bins[static_cast<std::size_t>(month)] += values[i];
    ++tradesPerMonth;
  }
  tradesPerMonth /= static_cast<std::int32_t>(bins.size());
  return bins;
}

double VAMI(View values) {
  double product = 1.0;
  for (const double x : values) product *= 1.0 + x;
  return 1000.0 * product;
}

double CompoundRate(View values) {
  if (values.empty()) return 0.0;
  return platform::power(VAMI(values) / 1000.0, 1.0 / count(values)) - 1.0;
}

double TotalCompound(View values) {
  if (values.empty()) return 0.0;
  return integerPower(1.0 + CompoundRate(values), values.size()) - 1.0;
}

double StandardDeviation(View values) {
  if (values.size() < 2) return 0.0;
  const double center = mean(values);
  double sum = 0.0;
  for (const double x : values) sum += integerPower(x - center, 2);
  return squareRoot(sum / count(values));
}

double AnnualizedStandardDeviation(View values) {
  return squareRoot(count(values)) * StandardDeviation(values);
}

double DownsideDeviation(View values, double mar) {
  if (values.empty()) return 0.0;
  double sum = 0.0;
  for (const double x : values) {
    if (x < mar) sum += integerPower(x - mar, 2);
  }
  return squareRoot(sum / count(values));
}

double SharpeRatio(View values, double rfr) {
  const double deviation = StandardDeviation(values);
  return deviation > 0.0 ? (mean(values) - rfr) / deviation : 0.0;
}

double AnnualizedSharpeRatio(View values, double rfr) {
  return squareRoot(count(values)) * SharpeRatio(values, rfr);
}

double SterlingRatio(View values, double mar) {
  const double deviation = DownsideDeviation(values, mar);
  return deviation > 0.0 ? (TotalCompound(values) - mar) / deviation : 0.0;
}

double SortinoRatio(View values, double mar) {
  return limited(SterlingRatio(values, mar));
}

double AnnualizedSortinoRatio(View values, double mar) {
  return squareRoot(count(values)) * SortinoRatio(values, mar);
}

double CalmarRatio(View values) {
  const double drawdown = std::fabs(MaximumDrawdown(values));
  return drawdown == 0.0 ? 0.0 : limited(TotalCompound(values) / drawdown);
}

double MaximumDrawdown(View values) {
  Drawdown drawdown;
  for (const double x : values) drawdown.add(x);
  return drawdown.lowest;
}

double MonteCarloDrawdown(View values, platform::Random15& random) {
  const std::size_t moving = std::min<std::size_t>(values.size(), platform::Random15::kMax + 1);
  Drawdown ofFixed;
  for (const double x : values.first(values.size() - moving)) ofFixed.add(x);
  const View tail = values.last(moving);
  const std::vector<std::uint32_t> factors = shuffleFactors(moving);
  std::vector<double> rows;
  double lowest = 0.0;
  for (int run = 0; run < kShuffles; ++run) {
    rows.assign(tail.begin(), tail.end());
    Drawdown drawdown = ofFixed;
    shuffleAndWalk(rows, factors, random, drawdown);
    lowest = std::min(lowest, drawdown.lowest);
  }
  return lowest;
}

}  // namespace brindlewort::PerformanceStats
