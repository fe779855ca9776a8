#pragma once

#include <array>

#include "indicators/frame.hpp"
#include "indicators/row_pairs.hpp"

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

/// A bar as the recogniser gets it; X is double, or RowPair for the bars of two neighbouring rows. A missing
/// bar has prices of 0.
template <class X>
struct CandleBar {
  X open{}, high{}, low{}, close{};
  X longBody = spread<X>(NULL_VALUE);  ///< the body above which the bar is a long one; null when not known
};

/// Oldest first; the pattern stands at the last one.
template <class X>
using CandleBars = std::array<CandleBar<X>, 3>;

/// (x - low) / (high - low), 0 for an empty range.
template <class X>
X shareOf(X high, X low, X x) {
  return high == low ? X() : (x - low) / (high - low);
}

/// A bar under test. Its prices are told as shares of the range of all three bars, 0 the lowest low and 1 the
/// highest high.
template <class X>
struct Candle {
  Candle(const CandleBar<X>& bar_, X highest, X lowest)
      : bar(bar_),
        open(shareOf(highest, lowest, bar_.open)),
        high(shareOf(highest, lowest, bar_.high)),
        low(shareOf(highest, lowest, bar_.low)),
        close(shareOf(highest, lowest, bar_.close)) {}

  CandleBar<X> bar;  ///< the prices as they are
  X open, high, low, close;
  X type = spread<X>(kNoCandle);
  X direction = spread<X>(kNeutral);
  X star{};          ///< 1 up, -1 down
  Mask<X> isDoji{};  ///< the doji test held, whatever the type became later
};
template <class X>
using Candles = std::array<Candle<X>, 3>;

/// Tells whether one type of candle stands at the last of three bars.
struct CandleRecogniser {
  /// The type of the last candle: the requested one, one that the requested pattern is made of, or kNoCandle.
  double (*typeOfLast)(const CandleBars<double>& bars);
  /// Whether the answer depends on `CandleBar::longBody`.
  bool readsLongBody;
};

/// For an unknown type a recogniser that always answers kNoCandle.
CandleRecogniser candleRecogniser(int requested);

}  // namespace brindlewort
