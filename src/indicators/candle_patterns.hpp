#pragma once

#include "indicators/candles.hpp"

/// The patterns over three candles. c[0] is the oldest candle, c[2] the newest; prices are shares of the
/// range of the three. Every test of a pattern is done, and for two rows at once where X is a pair. (In a
/// list of tests none with "<" stands before one with ">": the two could be read as the brackets of a
/// template.)
namespace brindlewort::candle_patterns {

template <class X>
Mask<X> rises(const Candle<X>& c) {
  return c.open < c.close;
}
template <class X>
Mask<X> falls(const Candle<X>& c) {
  return c.close < c.open;
}
template <class X>
X range(const Candle<X>& c) {
  return c.high - c.low;
}

template <class X>
Mask<X> is(const Candle<X>& c, double type) {
  return c.type == type;
}
template <class X>
Mask<X> is(const Candle<X>& c, double type, double direction) {
  return all(is(c, type), c.direction == direction);
}
template <class X>
Mask<X> isHammer(const Candle<X>& c, double star) {
  return all(is(c, kHammer), c.star == star);
}

// ---- A small candle beside a greater one
// -------------------------------------------------------------------

template <class X>
Mask<X> haramiAfterFall(const Candles<X>& c) {
  return all(falls(c[1]), rises(c[2]), c[1].open >= c[2].high, c[2].low >= c[1].close);
}

template <class X>
Mask<X> haramiAfterRise(const Candles<X>& c) {
  return all(rises(c[1]), falls(c[2]), c[1].close >= c[2].high, c[2].low >= c[1].open);
}

template <class X>
Mask<X> haramiCross(const Candles<X>& c) {
  return all(is(c[1], kLongBody, kBullish), is(c[2], kDoji), c[1].close > c[2].high, c[1].open < c[2].low,
             c[0].high < c[1].low);
}

template <class X>
Mask<X> bullishEngulfing(const Candles<X>& c) {
  return all(is(c[2], kLongBody), c[2].close > c[2].open, c[2].close > c[1].high, c[2].open < c[1].low,
             c[1].open <= c[1].close);
}

template <class X>
Mask<X> bearishEngulfing(const Candles<X>& c) {
  return all(is(c[2], kLongBody), falls(c[2]), c[2].open > c[1].high, c[2].close < c[1].low,
             c[1].open <= c[1].close);
}

// ---- Stars
// -------------------------------------------------------------------------------------------------

template <class X>
Mask<X> dojiStar(const Candles<X>& c) {
  return all(c[2].isDoji, is(c[2], kStar));
}

template <class X>
Mask<X> morningStar(const Candles<X>& c) {
  return all(falls(c[0]), (c[0].open - c[0].close) / (0.001 + c[0].high - c[0].low) > 0.6,
             c[0].close > c[1].open, falls(c[1]), range(c[1]) > (c[1].open - c[1].close) * 3.0, rises(c[2]),
             c[2].open > c[1].open);
}

template <class X>
Mask<X> eveningStar(const Candles<X>& c) {
  return all(rises(c[0]), (c[0].close - c[0].open) / (0.001 + c[0].high - c[0].low) > 0.6,
             c[1].open > c[0].close, rises(c[1]), falls(c[2]), c[1].open > c[2].open,
             range(c[1]) > (c[1].close - c[1].open) * 3.0);
}

template <class X>
Mask<X> bearishDojiStar(const Candles<X>& c) {
  return all(is(c[1], kLongBody), c[1].open > c[1].close, c[1].close >= c[2].open, is(c[2], kDoji));
}

template <class X>
Mask<X> shootingStar(const Candles<X>& c) {
  return all(c[1].close > c[1].open, c[1].low + range(c[1]) * 0.7 < c[2].open, isHammer(c[2], -1));
}

template <class X>
Mask<X> tristar(const Candles<X>& c) {
  const auto isStar = [](const Candle<X>& k) { return all(is(k, kStar), k.star == 1.0); };
  return all(isStar(c[0]), isStar(c[1]), isStar(c[2]));
}

template <class X>
Mask<X> babyBelow(const Candles<X>& c) {
  return all(is(c[1], kDoji), falls(c[0]), rises(c[2]), c[1].high < c[0].low, c[1].high < c[2].low);
}

template <class X>
Mask<X> babyAbove(const Candles<X>& c) {
  return all(is(c[1], kDoji), rises(c[0]), falls(c[2]), c[0].high < c[1].low, c[2].high < c[1].low);
}

// ---- Two candles that turn the direction
// -------------------------------------------------------------------

template <class X>
Mask<X> piercingLine(const Candles<X>& c) {
  return all(is(c[1], kLongBody, kBearish), c[1].low > c[2].open, (c[1].high + c[1].low) / 2.0 <= c[2].close);
}

template <class X>
Mask<X> darkCloudCover(const Candles<X>& c) {
  return all(is(c[2], kLongBody), rises(c[1]), (c[1].open + c[1].close) / 2.0 > c[2].close, falls(c[2]),
             c[1].high < c[2].open, c[1].open < c[2].close);
}

template <class X>
Mask<X> bullishKicking(const Candles<X>& c) {
  return all((c[1].open - c[1].close) / range(c[1]) > 0.98, (c[2].close - c[2].open) / range(c[2]) > 0.98,
             c[1].high < c[2].low);
}

template <class X>
Mask<X> bearishKicking(const Candles<X>& c) {
  return all((c[1].close - c[1].open) / range(c[1]) > 0.98, (c[2].open - c[2].close) / range(c[2]) > 0.98,
             c[2].high < c[1].low);
}

template <class X>
Mask<X> matchingLow(const Candles<X>& c) {
  return all(is(c[1], kLongBody, kBearish), c[2].open > c[2].close, c[1].low == c[2].low);
}

// ---- Hammers
// -----------------------------------------------------------------------------------------------

template <class X>
Mask<X> hangingMan(const Candles<X>& c) {
  return all(isHammer(c[2], 1), c[2].direction == kBullish, c[1].close < c[2].open, c[1].close < c[2].close,
             c[2].close < c[0].close);
}

template <class X>
Mask<X> bullishHammer(const Candles<X>& c) {
  return all(isHammer(c[2], 1), c[2].direction == kBullish, c[1].close > c[2].close, c[1].close > c[0].close,
             sizeOf(c[2].high - c[2].low) / 8.0 > sizeOf(c[2].open - c[2].close));
}

// ---- The newest candle alone
// -------------------------------------------------------------------------------

template <class X>
Mask<X> fallingSpinningTop(const Candles<X>& c) {
  const X body = c[2].open - c[2].close;
  return all(falls(c[2]), c[2].high - c[2].open > body, c[2].close - c[2].low > body);
}

template <class X>
Mask<X> risingSpinningTop(const Candles<X>& c) {
  const X body = c[2].close - c[2].open;
  return all(c[2].close > c[2].open, c[2].high - c[2].close > body, c[2].open - c[2].low > body);
}

template <class X>
Mask<X> bearishBeltHold(const Candles<X>& c) {
  return all(c[2].high == c[2].open, (c[2].open - c[2].low) / (c[2].close - c[2].low) > 4.0);
}
// The numerator is never positive on sound prices, so this holds only for a close below the low.
template <class X>
Mask<X> bullishBeltHold(const Candles<X>& c) {
  return all(c[2].low == c[2].open, (c[2].open - c[2].high) / (c[2].close - c[2].low) > 4.0);
}

// ---- Three candles
// -----------------------------------------------------------------------------------------

template <class X>
Mask<X> threeWhiteSoldiers(const Candles<X>& c) {
  const auto closesHigh = [](const Candle<X>& k) { return (k.high - k.close) / range(k) < 0.3; };
  return all(rises(c[0]), rises(c[1]), rises(c[2]), c[0].close > c[1].open, c[1].close > c[2].open,
             c[0].close < c[1].close, c[1].close < c[2].close, c[0].open < c[1].open, c[1].open < c[2].open,
             closesHigh(c[0]), closesHigh(c[1]), closesHigh(c[2]));
}

template <class X>
Mask<X> threeBlackCrows(const Candles<X>& c) {
  const auto closesLow = [](const Candle<X>& k) { return (k.close - k.low) / range(k) < 0.2; };
  return all(falls(c[0]), falls(c[1]), falls(c[2]), c[0].close > c[1].close, c[1].close > c[2].close,
             c[0].open > c[1].open, c[1].open > c[2].open, c[0].close < c[1].open, c[1].close < c[2].open,
             closesLow(c[0]), closesLow(c[1]), closesLow(c[2]));
}

template <class X>
Mask<X> upsideGap(const Candles<X>& c) {
  return all(rises(c[0]), rises(c[1]), c[1].low > c[0].high, c[2].open > c[1].open, c[1].close > c[2].open,
             c[1].low > c[2].close, c[0].high > c[2].low);
}

template <class X>
Mask<X> twoCrows(const Candles<X>& c) {
  return all(is(c[0], kLongBody, kBullish), c[1].open > c[0].high, c[1].open > c[1].close,
             c[2].open > c[2].close, c[2].open > c[1].close, c[1].open > c[2].open, c[0].close > c[2].close,
             c[2].close > c[0].open);
}

inline constexpr std::size_t kMiddle = 1;
inline constexpr std::size_t kNewest = 2;

/// A pattern over three candles: when it holds, `candle` (an index) gets this type and direction.
template <class X>
struct CandlePattern {
  int type;
  Mask<X> (*holds)(const Candles<X>& candles);
  std::size_t candle;
  double direction;
};

/// Of several tests of one type the first that holds decides.
template <class X>
inline constexpr CandlePattern<X> kPatterns[] = {
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
