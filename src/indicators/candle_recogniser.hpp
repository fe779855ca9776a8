#pragma once

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <iterator>

#include "indicators/candle_patterns.hpp"
#include "indicators/candles.hpp"

/// The recogniser as templates over the requested type: the tests of a type are short and run for every bar,
/// so a loop over bars is made for each type with just its tests in it.
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

inline double openShare(const CandleBar& bar) {
  return shareOf(bar.high, bar.low, bar.open);
}
inline double closeShare(const CandleBar& bar) {
  return shareOf(bar.high, bar.low, bar.close);
}
inline double bodyShare(const CandleBar& bar) {
  return std::fabs(openShare(bar) - closeShare(bar));
}

inline double rangeOf(const Candle& candle) {
  return std::fabs(candle.bar->high - candle.bar->low);
}

/// Its range as a share between the least and the greatest of the three; 1 when they are all equal.
inline double rangeShare(const Candles& c, std::size_t k) {
  const double least = std::min({rangeOf(c[0]), rangeOf(c[1]), rangeOf(c[2])});
  const double greatest = std::max({rangeOf(c[0]), rangeOf(c[1]), rangeOf(c[2])});
  return greatest == least ? 1.0 : shareOf(greatest, least, rangeOf(c[k]));
}

// ---- Tests of single candles: of candle k, the ones before it having been tested
// ------------------------------

inline void testLongBody(Candles& c, std::size_t k) {
  const CandleBar& bar = *c[k].bar;
  if (!(std::fabs(bar.close - bar.open) > bar.longBody)) return;
  // Without a true range to go by, the body must also be long beside the other bars.
  if (!(bar.longBody > 0.0) && !(bodyShare(bar) > 0.5 && rangeShare(c, k) >= 0.4)) return;
  c[k].type = kLongBody;
  if (bar.open < bar.close) c[k].direction = kBullish;
  if (bar.open > bar.close) c[k].direction = kBearish;
}

inline void testDoji(Candles& c, std::size_t k) {
  if (!(bodyShare(*c[k].bar) < 0.05)) return;
  c[k].isDoji = true;
  c[k].type = kDoji;
  c[k].direction = kNeutral;
}

inline void testHammer(Candles& c, std::size_t k) {
  const CandleBar& bar = *c[k].bar;
  const double range = bar.high - bar.low;
  if (!((bar.open - bar.close) * 4.0 < range)) return;
  if ((bar.close - bar.low) / range > 0.7 && (bar.open - bar.low) / range > 0.7) {
    c[k].type = kHammer;
    c[k].star = 1;
    c[k].direction = kBullish;
  } else if ((bar.high - bar.close) / range > 0.7 && (bar.high - bar.open) / range > 0.7) {
    c[k].type = kHammer;
    c[k].star = -1;
    c[k].direction = kNeutral;
  }
}

inline void testStar(Candles& c, std::size_t k) {
  if (k == 0 || c[k - 1].type != kLongBody) return;
  const CandleBar& bar = *c[k].bar;
  if (!(bodyShare(bar) < 0.45 && openShare(bar) > 0.8 && closeShare(bar) > 0.2)) return;
  const Candle& p = c[k - 1];
  const double reach = (p.high() - p.low()) * 0.7;
  const bool bodyAbove = std::min(c[k].open(), c[k].close()) > std::max(p.open(), p.close());
  const bool bodyBelow = std::min(p.open(), p.close()) > std::max(c[k].open(), c[k].close());
  if (p.low() + reach < c[k].low() && bodyAbove) {
    c[k].type = kStar;
    c[k].star = 1;
  }
  if (p.high() + reach > c[k].high() && bodyBelow) {
    c[k].type = kStar;
    c[k].star = -1;
  }
}

struct SingleTest {
  unsigned requestedBy;  ///< the requests it runs for; for all others it leaves the candles as they are
  void (*run)(Candles& candles, std::size_t k);
};

/// In the order they run; a later one may overwrite what an earlier one has told.
inline constexpr SingleTest kSingleTests[] = {
    {bitsOf({kLongBody, kStar, kPiercingLine, kBullishEngulfingLine, kDarkCloudCover, kBearishDojiStar,
             kHaramiCross, kThreeWhiteSoldiers, kBearishTwoCrows, kBullishMatchingLow}),
     testLongBody},
    {bitsOf({kDoji, kDojiStar, kBearishDojiStar, kHaramiCross}), testDoji},
    {bitsOf({kHammer, kHangingMan, kBearishShootingStar, kBullishHammer}), testHammer},
    {bitsOf({kStar, kDojiStar}), testStar},
};
inline constexpr const SingleTest& kLongBodyTest = kSingleTests[0];

/// The requests for which it matters what the two older candles are; for all others only the last is tested.
inline constexpr unsigned kReadsOlderCandles =
    bitsOf({kStar, kDojiStar, kPiercingLine, kBearishDojiStar, kHaramiCross, kBullishTristar, kAbandonedBaby,
            kBearishTwoCrows, kBullishMatchingLow});

/// Runs the single tests [test, ...) that the requested type needs on candle k.
template <int requested, std::size_t test = 0>
inline void runSingleTests(Candles& candles, std::size_t k) {
  if constexpr (test < std::size(kSingleTests)) {
    if constexpr (kSingleTests[test].requestedBy & bitOf(requested)) kSingleTests[test].run(candles, k);
    runSingleTests<requested, test + 1>(candles, k);
  }
}

/// Marks the first of the patterns [pattern, ...) of the requested type that holds.
template <int requested, std::size_t pattern = 0>
inline void markPattern(Candles& candles) {
  if constexpr (pattern < std::size(kPatterns)) {
    constexpr const CandlePattern& own = kPatterns[pattern];
    if constexpr (own.type == requested) {
      if (own.holds(candles)) {
        candles[own.candle].type = own.type;
        candles[own.candle].direction = own.direction;
        return;
      }
    }
    markPattern<requested, pattern + 1>(candles);
  }
}

template <int requested>
int typeOfLast(const CandleBars& bars) {
  const CandleScale scale = {std::max({bars[0].high, bars[1].high, bars[2].high}),
                             std::min({bars[0].low, bars[1].low, bars[2].low})};
  Candles candles = {Candle{&bars[0], &scale}, Candle{&bars[1], &scale}, Candle{&bars[2], &scale}};
  constexpr std::size_t kFirstTested = kReadsOlderCandles & bitOf(requested) ? 0 : 2;
  for (std::size_t k = kFirstTested; k < candles.size(); ++k) runSingleTests<requested>(candles, k);
  markPattern<requested>(candles);
  return candles.back().type;
}

}  // namespace brindlewort::candle_patterns
