#include "indicators/candles.hpp"

#include <array>
#include <utility>

#include "indicators/candle_recogniser.hpp"

namespace brindlewort {

using namespace candle_patterns;

namespace {

/// A function of its own for each type, since the tests are short and run for every bar.
template <int... types>
constexpr auto typeFunctions(std::integer_sequence<int, types...>) {
  return std::array{&typeOfLast<types, double>...};
}
constexpr auto kTypeOfLast = typeFunctions(std::make_integer_sequence<int, kBullishMatchingLow + 1>());

}  // namespace

CandleRecogniser candleRecogniser(int requested) {
  const unsigned request = bitOf(requested);
  const auto type = static_cast<std::size_t>(request != 0 ? requested : kNoCandle);
  return {kTypeOfLast[type], (kReadLongBodies & request) != 0};
}

}  // namespace brindlewort
