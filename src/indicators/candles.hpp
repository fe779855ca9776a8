#pragma once

#include <array>

#include "indicators/frame.hpp"

/// Candlestick patterns, told from the last three bars.
namespace brindlewort {

/// The candlestick patterns as scripts number them; a candle of type 0 is none of them.
enum CandleType : int {
  kNoCandle = 0,
  kLongBody = 1,
  kDoji = 2,
  kHammer = 3,
  kHarami = 4,
  kStar = 5,
  kDojiStar = 6,
  kMorningStar = 7,
  kEveningStar = 8,
  kPiercingLine = 9,
  kBullishEngulfingLine = 10,
  kHangingMan = 11,
  kDarkCloudCover = 12,
  kBearishEngulfingLine = 13,
  kBearishDojiStar = 14,
  kBearishShootingStar = 15,
  kSpinningTops = 16,
  kHaramiCross = 17,
  kBullishTristar = 18,
  kThreeWhiteSoldiers = 19,
  kThreeBlackCrows = 20,
  kAbandonedBaby = 21,
  kBullishUpsideGap = 22,
  kBullishHammer = 23,
  kBullishKicking = 24,
  kBearishKicking = 25,
  kBearishBeltHold = 26,
  kBullishBeltHold = 27,
  kBearishTwoCrows = 28,
  kBullishMatchingLow = 29,
};

inline constexpr double kBullish = 1.0;
inline constexpr double kBearish = -1.0;
inline constexpr double kNeutral = 0.0;

/// A bar as the recogniser gets it. A missing bar has prices of 0.
struct CandleBar {
  double open = 0.0, high = 0.0, low = 0.0, close = 0.0;
  double longBody = NULL_VALUE;  ///< the body above which the bar is a long one; null when not known
};

/// Oldest first; the pattern stands at the last one.
using CandleBars = std::array<CandleBar, 3>;

/// (x - low) / (high - low), 0 for an empty range.
inline double shareOf(double high, double low, double x) {
  return high == low ? 0.0 : (x - low) / (high - low);
}

/// The range of all three bars.
struct CandleScale {
  double highest, lowest;
  double operator()(double price) const { return shareOf(highest, lowest, price); }
};

/// A bar under test. Its prices are told as shares of the range of all three bars, 0 the lowest low and 1 the
/// highest high; they are divided out when a test asks for them, since most tests end early.
struct Candle {
  const CandleBar* bar;  ///< the prices as they are
  const CandleScale* scale;
  int type = kNoCandle;
  double direction = kNeutral;
  int star = 0;         ///< 1 up, -1 down
  bool isDoji = false;  ///< the doji test held, whatever the type became later

  double open() const { return (*scale)(bar->open); }
  double high() const { return (*scale)(bar->high); }
  double low() const { return (*scale)(bar->low); }
  double close() const { return (*scale)(bar->close); }
};
using Candles = std::array<Candle, 3>;

/// Tells whether one type of candle stands at the last of three bars.
struct CandleRecogniser {
  /// The type of the last candle: the requested one, one that the requested pattern is made of, or kNoCandle.
  int (*typeOfLast)(const CandleBars& bars);
  /// Whether the answer depends on `CandleBar::longBody`.
  bool readsLongBody;
};

/// For an unknown type a recogniser that always answers kNoCandle.
CandleRecogniser candleRecogniser(int requested);

}  // namespace brindlewort
