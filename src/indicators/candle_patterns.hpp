#pragma once

#include <algorithm>
#include <cmath>

#include "indicators/candles.hpp"

/// The patterns over three candles. c[0] is the oldest candle, c[2] the newest; prices are shares of the
/// range of the three.
namespace brindlewort::candle_patterns {

inline bool rises(const Candle& c) {
  return c.open() < c.close();
}
inline bool falls(const Candle& c) {
  return c.close() < c.open();
}
inline double range(const Candle& c) {
  return c.high() - c.low();
}

inline bool is(const Candle& c, int type, double direction) {
  return c.type == type && c.direction == direction;
}
inline bool isHammer(const Candle& c, int star) {
  return c.type == kHammer && c.star == star;
}

// ---- A small candle beside a greater one
// -------------------------------------------------------------------

inline bool haramiAfterFall(const Candles& c) {
  return falls(c[1]) && rises(c[2]) && c[1].open() >= c[2].high() && c[2].low() >= c[1].close();
}

inline bool haramiAfterRise(const Candles& c) {
  return rises(c[1]) && falls(c[2]) && c[1].close() >= c[2].high() && c[2].low() >= c[1].open();
}

inline bool haramiCross(const Candles& c) {
  return is(c[1], kLongBody, kBullish) && c[2].type == kDoji && c[1].close() > c[2].high() &&
         c[1].open() < c[2].low() && c[0].high() < c[1].low();
}

inline bool bullishEngulfing(const Candles& c) {
  return c[2].type == kLongBody && c[2].close() > c[2].open() && c[2].close() > c[1].high() &&
         c[2].open() < c[1].low() && c[1].open() <= c[1].close();
}

inline bool bearishEngulfing(const Candles& c) {
  return c[2].type == kLongBody && falls(c[2]) && c[2].open() > c[1].high() && c[2].close() < c[1].low() &&
         c[1].open() <= c[1].close();
}

// ---- Stars
// -------------------------------------------------------------------------------------------------

inline bool dojiStar(const Candles& c) {
  return c[2].isDoji && c[2].type == kStar;
}

inline bool morningStar(const Candles& c) {
  return falls(c[0]) && (c[0].open() - c[0].close()) / (0.001 + c[0].high() - c[0].low()) > 0.6 &&
         c[1].open() < c[0].close() && falls(c[1]) && range(c[1]) > (c[1].open() - c[1].close()) * 3.0 &&
         rises(c[2]) && c[1].open() < c[2].open();
}

inline bool eveningStar(const Candles& c) {
  return rises(c[0]) && (c[0].close() - c[0].open()) / (0.001 + c[0].high() - c[0].low()) > 0.6 &&
         c[1].open() > c[0].close() && rises(c[1]) && falls(c[2]) && c[1].open() > c[2].open() &&
         range(c[1]) > (c[1].close() - c[1].open()) * 3.0;
}

inline bool bearishDojiStar(const Candles& c) {
  return c[1].type == kLongBody && c[1].open() > c[1].close() && c[1].close() >= c[2].open() &&
         c[2].type == kDoji;
}

inline bool shootingStar(const Candles& c) {
  return c[1].close() > c[1].open() && c[1].low() + range(c[1]) * 0.7 < c[2].open() && isHammer(c[2], -1);
}

inline bool tristar(const Candles& c) {
  return std::all_of(c.begin(), c.end(), [](const Candle& k) { return k.type == kStar && k.star == 1; });
}

inline bool babyBelow(const Candles& c) {
  return c[1].type == kDoji && falls(c[0]) && rises(c[2]) && c[1].high() < c[0].low() &&
         c[1].high() < c[2].low();
}

inline bool babyAbove(const Candles& c) {
  return c[1].type == kDoji && rises(c[0]) && falls(c[2]) && c[0].high() < c[1].low() &&
         c[2].high() < c[1].low();
}

// ---- Two candles that turn the direction
// -------------------------------------------------------------------

inline bool piercingLine(const Candles& c) {
  return is(c[1], kLongBody, kBearish) && c[1].low() > c[2].open() &&
         (c[1].high() + c[1].low()) / 2.0 <= c[2].close();
}

inline bool darkCloudCover(const Candles& c) {
  return c[2].type == kLongBody && rises(c[1]) && (c[1].open() + c[1].close()) / 2.0 > c[2].close() &&
         falls(c[2]) && c[1].high() < c[2].open() && c[1].open() < c[2].close();
}

inline bool bullishKicking(const Candles& c) {
  return (c[1].open() - c[1].close()) / range(c[1]) > 0.98 &&
         (c[2].close() - c[2].open()) / range(c[2]) > 0.98 && c[1].high() < c[2].low();
}

inline bool bearishKicking(const Candles& c) {
  return (c[1].close() - c[1].open()) / range(c[1]) > 0.98 &&
         (c[2].open() - c[2].close()) / range(c[2]) > 0.98 && c[2].high() < c[1].low();
}

inline bool matchingLow(const Candles& c) {
  return is(c[1], kLongBody, kBearish) && c[2].open() > c[2].close() && c[1].low() == c[2].low();
}

// ---- Hammers
// -----------------------------------------------------------------------------------------------

inline bool hangingMan(const Candles& c) {
  return isHammer(c[2], 1) && c[2].direction == kBullish && c[1].close() < c[2].open() &&
         c[1].close() < c[2].close() && c[2].close() < c[0].close();
}

inline bool bullishHammer(const Candles& c) {
  return isHammer(c[2], 1) && c[2].direction == kBullish && c[1].close() > c[2].close() &&
         c[0].close() < c[1].close() &&
         std::fabs(c[2].high() - c[2].low()) / 8.0 > std::fabs(c[2].open() - c[2].close());
}

// ---- The newest candle alone
// -------------------------------------------------------------------------------

inline bool fallingSpinningTop(const Candles& c) {
  const double body = c[2].open() - c[2].close();
  return falls(c[2]) && c[2].high() - c[2].open() > body && c[2].close() - c[2].low() > body;
}

inline bool risingSpinningTop(const Candles& c) {
  const double body = c[2].close() - c[2].open();
  return c[2].close() > c[2].open() && c[2].high() - c[2].close() > body && c[2].open() - c[2].low() > body;
}

inline bool bearishBeltHold(const Candles& c) {
  return c[2].high() == c[2].open() && (c[2].open() - c[2].low()) / (c[2].close() - c[2].low()) > 4.0;
}
// The numerator is never positive on sound prices, so this holds only for a close below the low.
inline bool bullishBeltHold(const Candles& c) {
  return c[2].low() == c[2].open() && (c[2].open() - c[2].high()) / (c[2].close() - c[2].low()) > 4.0;
}

// ---- Three candles
// -----------------------------------------------------------------------------------------

inline bool threeWhiteSoldiers(const Candles& c) {
  return std::all_of(c.begin(), c.end(), rises) && c[0].close() < c[1].close() &&
         c[1].close() < c[2].close() && c[0].open() < c[1].open() && c[1].open() < c[2].open() &&
         c[0].close() > c[1].open() && c[1].close() > c[2].open() &&
         std::all_of(c.begin(), c.end(),
                     [](const Candle& k) { return (k.high() - k.close()) / range(k) < 0.3; });
}

inline bool threeBlackCrows(const Candles& c) {
  return std::all_of(c.begin(), c.end(), falls) && c[0].close() > c[1].close() &&
         c[1].close() > c[2].close() && c[0].open() > c[1].open() && c[1].open() > c[2].open() &&
         c[0].close() < c[1].open() && c[1].close() < c[2].open() &&
         std::all_of(c.begin(), c.end(),
                     [](const Candle& k) { return (k.close() - k.low()) / range(k) < 0.2; });
}

inline bool upsideGap(const Candles& c) {
  return rises(c[0]) && rises(c[1]) && c[0].high() < c[1].low() && c[1].open() < c[2].open() &&
         c[1].close() > c[2].open() && c[1].low() > c[2].close() && c[0].high() > c[2].low();
}

inline bool twoCrows(const Candles& c) {
  return is(c[0], kLongBody, kBullish) && c[0].high() < c[1].open() && c[1].open() > c[1].close() &&
         c[2].open() > c[2].close() && c[1].close() < c[2].open() && c[1].open() > c[2].open() &&
         c[0].close() > c[2].close() && c[0].open() < c[2].close();
}

inline constexpr std::size_t kMiddle = 1;
inline constexpr std::size_t kNewest = 2;

/// A pattern over three candles: when it holds, `candle` (an index) gets this type and direction.
struct CandlePattern {
  int type;
  bool (*holds)(const Candles& candles);
  std::size_t candle;
  double direction;
};

/// Of several tests of one type the first that holds decides.
inline constexpr CandlePattern kPatterns[] = {
    // The first harami marks the candle before, which no caller sees.
    {kHarami, haramiAfterFall, kMiddle, kNeutral},
    {kHarami, haramiAfterRise, kNewest, kNeutral},
    {kDojiStar, dojiStar, kNewest, kBullish},
    {kMorningStar, morningStar, kNewest, kBullish},
    {kEveningStar, eveningStar, kNewest, kBearish},
    {kPiercingLine, piercingLine, kNewest, kBullish},
    {kBullishEngulfingLine, bullishEngulfing, kNewest, kBullish},
    {kHangingMan, hangingMan, kNewest, kBearish},
    {kDarkCloudCover, darkCloudCover, kNewest, kBearish},
    {kBearishEngulfingLine, bearishEngulfing, kNewest, kBearish},
    {kBearishDojiStar, bearishDojiStar, kNewest, kBearish},
    {kBearishShootingStar, shootingStar, kNewest, kBearish},
    {kSpinningTops, fallingSpinningTop, kNewest, kNeutral},
    {kSpinningTops, risingSpinningTop, kNewest, kBullish},
    {kHaramiCross, haramiCross, kNewest, kBearish},
    {kBullishTristar, tristar, kNewest, kBullish},
    {kThreeWhiteSoldiers, threeWhiteSoldiers, kNewest, kBullish},
    {kThreeBlackCrows, threeBlackCrows, kNewest, kBearish},
    {kAbandonedBaby, babyBelow, kNewest, kBullish},
    {kAbandonedBaby, babyAbove, kNewest, kBearish},
    {kBullishUpsideGap, upsideGap, kNewest, kBullish},
    {kBullishHammer, bullishHammer, kNewest, kBullish},
    {kBullishKicking, bullishKicking, kNewest, kBullish},
    {kBearishKicking, bearishKicking, kNewest, kBearish},
    {kBearishBeltHold, bearishBeltHold, kNewest, kBearish},
    {kBullishBeltHold, bullishBeltHold, kNewest, kBullish},
    {kBearishTwoCrows, twoCrows, kNewest, kBearish},
    {kBullishMatchingLow, matchingLow, kNewest, kBullish},
};

}  // namespace brindlewort::candle_patterns
