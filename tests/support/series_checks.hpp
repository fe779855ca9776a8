#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "series/null_value.hpp"
#include "series/series.hpp"

/// Comparisons of series and made-up input series for tests.
namespace brindlewort::testing {

using Rows = std::vector<double>;

inline constexpr double kNull = NULL_VALUE;
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInf = std::numeric_limits<double>::infinity();

/// Same bits, except that every non-number equals every other.
inline bool sameBits(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

/// Equal to 1e-9 relative; non-numbers, infinities and nulls must match exactly.
inline bool nearlySame(double a, double b) {
  if (sameBits(a, b) || a == b) return true;
  if (isNull(a) || isNull(b) || !IsFiniteDouble(a) || !IsFiniteDouble(b)) return false;
  return std::fabs(a - b) <= 1e-9 * std::max({1.0, std::fabs(a), std::fabs(b)});
}

inline ::testing::AssertionResult sameRows(View expected, View actual, bool (*same)(double, double) = sameBits) {
  if (expected.size() != actual.size()) {
    return ::testing::AssertionFailure() << "rows: expected " << expected.size() << ", got " << actual.size();
  }
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (!same(expected[i], actual[i])) {
      ::testing::AssertionResult result = ::testing::AssertionFailure();
      result << "row " << i << " of " << expected.size() << ": expected " << ::testing::PrintToString(expected[i])
             << ", got " << ::testing::PrintToString(actual[i]);
      return result;
    }
  }
  return ::testing::AssertionSuccess();
}

/// A small fixed generator, the same numbers on every machine.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15ull + 1) {}
  std::uint64_t next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return state_;
  }
  /// Uniform in [0, 1).
  double unit() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }
  int below(int n) { return static_cast<int>(next() % static_cast<std::uint64_t>(n)); }

 private:
  std::uint64_t state_;
};

/// The kinds of input that indicators must bear.
enum class Shape { kWalk, kFlat, kRising, kNullHead, kNullGaps, kZeros, kNegative, kNaNs, kInfinities, kSteps };
inline constexpr Shape kAllShapes[] = {Shape::kWalk,  Shape::kFlat,     Shape::kRising, Shape::kNullHead,
                                       Shape::kNullGaps, Shape::kZeros, Shape::kNegative, Shape::kNaNs,
                                       Shape::kInfinities, Shape::kSteps};

inline Rows makeSeries(Shape shape, int rows, std::uint64_t seed = 1) {
  Random random(seed + static_cast<std::uint64_t>(shape) * 977);
  Rows out(static_cast<std::size_t>(rows));
  double level = 100.0;
  for (int i = 0; i < rows; ++i) {
    level += random.unit() * 2.0 - 1.0;
    double x = level;
    switch (shape) {
      case Shape::kWalk: break;
      case Shape::kFlat: x = 42.0; break;
      case Shape::kRising: x = 10.0 + i; break;
      case Shape::kNullHead: if (i < rows / 4) x = kNull; break;
      case Shape::kNullGaps: if (random.below(4) == 0) x = kNull; break;
      case Shape::kZeros: if (random.below(3) == 0) x = 0.0; break;
      case Shape::kNegative: x = level - 100.0; break;
      case Shape::kNaNs: if (random.below(9) == 0) x = kNaN; break;
      case Shape::kInfinities: if (random.below(9) == 0) x = random.below(2) ? kInf : -kInf; break;
      case Shape::kSteps: x = 50.0 + random.below(3); break;
    }
    out[static_cast<std::size_t>(i)] = x;
  }
  return out;
}

/// The five price series of made-up bars.
struct PriceRows {
  Rows open, high, low, close, volume;
};

inline PriceRows makePrices(Shape shape, int rows, std::uint64_t seed = 1) {
  Random random(seed * 31 + 7);
  PriceRows p;
  p.close = makeSeries(shape, rows, seed);
  for (int i = 0; i < rows; ++i) {
    const std::size_t r = static_cast<std::size_t>(i);
    const double c = p.close[r];
    const bool plain = shape != Shape::kFlat && !isNull(c) && IsFiniteDouble(c);
    // Steps have equal highs and lows on many bars; flat bars have no range at all.
    const double spread = shape == Shape::kSteps ? random.below(2) : random.unit();
    p.open.push_back(plain ? c + spread * (random.unit() - 0.5) : c);
    p.high.push_back(plain ? std::max(c, p.open[r]) + spread : c);
    p.low.push_back(plain ? std::min(c, p.open[r]) - spread : c);
    p.volume.push_back(shape == Shape::kZeros && random.below(3) == 0 ? 0.0 : 1000.0 + random.below(5000));
  }
  return p;
}

}  // namespace brindlewort::testing
