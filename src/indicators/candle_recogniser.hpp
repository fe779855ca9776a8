#pragma once

#include <initializer_list>
#include <iterator>

#include "indicators/candle_patterns.hpp"
#include "indicators/candles.hpp"

/// The recogniser as templates over the requested type: the tests of a type are short and run for every bar,
/// so a loop over bars is made for each type with just its tests in it. X is double, or RowPair for the bars
/// of two rows at once.
namespace brindlewort::candle_patterns {

constexpr unsigned bitOf(int type) {
  return type >= kLongBody && type <= kBullishMatchingLow ? 1u << type : 0u;
}

constexpr unsigned bitsOf(std::initializer_list<int> types) {
  unsigned bits = 0;
  for (int type : types) bits |= bitOf(type);
  return bits;
}

// ---- A bar by itself and among the three -----------------------------------------------------------------

template <class X>
X openShare(const CandleBar<X>& bar) {
  return shareOf(bar.high, bar.low, bar.open);
}
template <class X>
X closeShare(const CandleBar<X>& bar) {
  return shareOf(bar.high, bar.low, bar.close);
}
template <class X>
X bodyShare(const CandleBar<X>& bar) {
  return sizeOf(openShare(bar) - closeShare(bar));
}

template <class X>
X rangeOf(const Candle<X>& candle) {
  return sizeOf(candle.bar.high - candle.bar.low);
}

/// Its range as a share between the least and the greatest of the three; 1 when they are all equal.
template <class X>
X rangeShare(const Candles<X>& c, std::size_t k) {
  const X least = lesserOf(lesserOf(rangeOf(c[0]), rangeOf(c[1])), rangeOf(c[2]));
  const X greatest = greaterOf(greaterOf(rangeOf(c[0]), rangeOf(c[1])), rangeOf(c[2]));
  return greatest == least ? spread<X>(1.0) : shareOf(greatest, least, rangeOf(c[k]));
}

// ---- Tests of single candles: of candle k, the ones before it having been tested
// ------------------------------

/// Where a test holds, the field gets this value.
template <class X>
void put(X& field, Mask<X> holds, double value) {
  field = holds ? spread<X>(value) : field;
}

template <class X>
inline void testLongBody(Candles<X>& c, std::size_t k) {
  const CandleBar<X>& bar = c[k].bar;
  // Without a true range to go by, the body must also be long beside the other bars.
  const Mask<X> isLong = all(sizeOf(bar.close - bar.open) > bar.longBody,
                             either(bar.longBody > 0.0, all(bodyShare(bar) > 0.5, rangeShare(c, k) >= 0.4)));
  put(c[k].type, isLong, kLongBody);
  put(c[k].direction, all(isLong, bar.open < bar.close), kBullish);
  put(c[k].direction, all(isLong, bar.open > bar.close), kBearish);
}

template <class X>
inline void testDoji(Candles<X>& c, std::size_t k) {
  c[k].isDoji = bodyShare(c[k].bar) < 0.05;
  put(c[k].type, c[k].isDoji, kDoji);
  put(c[k].direction, c[k].isDoji, kNeutral);
}

template <class X>
inline void testHammer(Candles<X>& c, std::size_t k) {
  const CandleBar<X>& bar = c[k].bar;
  const X range = bar.high - bar.low;
  const Mask<X> isSmall = (bar.open - bar.close) * 4.0 < range;
  const Mask<X> isUp = all(isSmall, (bar.close - bar.low) / range > 0.7, (bar.open - bar.low) / range > 0.7);
  const Mask<X> isDown =
      all(isSmall, (bar.high - bar.close) / range > 0.7, (bar.high - bar.open) / range > 0.7);
  put(c[k].type, either(isUp, isDown), kHammer);
  put(c[k].star, isDown, -1);
  put(c[k].direction, isDown, kNeutral);
  put(c[k].star, isUp, 1);
  put(c[k].direction, isUp, kBullish);
}

template <class X>
inline void testStar(Candles<X>& c, std::size_t k) {
  if (k == 0) return;
  const CandleBar<X>& bar = c[k].bar;
  const Candle<X>& p = c[k - 1];
  const Mask<X> isSmall =
      all(is(p, kLongBody), bodyShare(bar) < 0.45, openShare(bar) > 0.8, closeShare(bar) > 0.2);
  const X reach = (p.high - p.low) * 0.7;
  const Mask<X> isAbove =
      all(isSmall, p.low + reach<c[k].low, lesserOf(c[k].open, c[k].close)> greaterOf(p.open, p.close));
  const Mask<X> isBelow =
      all(isSmall, p.high + reach > c[k].high, lesserOf(p.open, p.close) > greaterOf(c[k].open, c[k].close));
  put(c[k].type, either(isAbove, isBelow), kStar);
  put(c[k].star, isAbove, 1);
  put(c[k].star, isBelow, -1);
}

template <class X>
struct SingleTest {
  unsigned requestedBy;  ///< the requests it runs for; for all others it leaves the candles as they are
  void (*run)(Candles<X>& candles, std::size_t k);
};

/// The requests whose answer depends on `CandleBar::longBody`.
inline constexpr unsigned kReadLongBodies =
    bitsOf({kLongBody, kStar, kPiercingLine, kBullishEngulfingLine, kDarkCloudCover, kBearishDojiStar,
            kHaramiCross, kThreeWhiteSoldiers, kBearishTwoCrows, kBullishMatchingLow});

/// In the order they run; a later one may overwrite what an earlier one has told.
template <class X>
inline constexpr SingleTest<X> kSingleTests[] = {
    {kReadLongBodies, testLongBody},
    {bitsOf({kDoji, kDojiStar, kBearishDojiStar, kHaramiCross}), testDoji},
    {bitsOf({kHammer, kHangingMan, kBearishShootingStar, kBullishHammer}), testHammer},
    {bitsOf({kStar, kDojiStar}), testStar},
};

/// The requests for which it matters what the two older candles are; for all others only the last is tested.
inline constexpr unsigned kReadsOlderCandles =
    bitsOf({kStar, kDojiStar, kPiercingLine, kBearishDojiStar, kHaramiCross, kBullishTristar, kAbandonedBaby,
            kBearishTwoCrows, kBullishMatchingLow});

/// Runs the single tests [test, ...) that the requested type needs on candle k.
template <int requested, std::size_t test = 0, class X>
void runSingleTests(Candles<X>& candles, std::size_t k) {
  if constexpr (test < std::size(kSingleTests<X>)) {
    constexpr const SingleTest<X>& own = kSingleTests<X>[test];
    if constexpr (own.requestedBy & bitOf(requested)) own.run(candles, k);
    runSingleTests<requested, test + 1>(candles, k);
  }
}

/// Marks the first of the patterns [pattern, ...) of the requested type that holds; where one before has held
/// (`held`), none.
template <int requested, std::size_t pattern = 0, class X>
void markPattern(Candles<X>& candles, Mask<X> held = Mask<X>()) {
  if constexpr (pattern < std::size(kPatterns<X>)) {
    constexpr const CandlePattern<X>& own = kPatterns<X>[pattern];
    if constexpr (own.type == requested) {
      const Mask<X> holds = butNot(own.holds(candles), held);
      put(candles[own.candle].type, holds, own.type);
      put(candles[own.candle].direction, holds, own.direction);
      held = either(held, holds);
    }
    markPattern<requested, pattern + 1>(candles, held);
  }
}

template <int requested, class X>
X typeOfLast(const CandleBars<X>& bars) {
  const X highest = greaterOf(greaterOf(bars[0].high, bars[1].high), bars[2].high);
  const X lowest = lesserOf(lesserOf(bars[0].low, bars[1].low), bars[2].low);
  Candles<X> candles = {Candle<X>(bars[0], highest, lowest), Candle<X>(bars[1], highest, lowest),
                        Candle<X>(bars[2], highest, lowest)};
  constexpr std::size_t kFirstTested = kReadsOlderCandles & bitOf(requested) ? 0 : 2;
  for (std::size_t k = kFirstTested; k < candles.size(); ++k) runSingleTests<requested>(candles, k);
  markPattern<requested>(candles);
  return candles.back().type;
}

}  // namespace brindlewort::candle_patterns
