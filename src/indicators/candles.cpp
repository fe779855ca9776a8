#include "indicators/candles.hpp"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace brindlewort {

namespace {

constexpr unsigned bitOf(int type) {
  return type >= kLongBody && type <= kBullishMatchingLow ? 1u << type : 0u;
}

constexpr unsigned bitsOf(std::initializer_list<int> types) {
  unsigned bits = 0;
  for (int type : types) bits |= bitOf(type);
  return bits;
}

// ---- A bar by itself and among the three -----------------------------------------------------------------

double openShare(const CandleBar& bar) {
  return shareOf(bar.high, bar.low, bar.open);
}
double closeShare(const CandleBar& bar) {
  return shareOf(bar.high, bar.low, bar.close);
}
double bodyShare(const CandleBar& bar) {
  return std::fabs(openShare(bar) - closeShare(bar));
}

double rangeOf(const Candle& candle) {
  return std::fabs(candle.bar->high - candle.bar->low);
}

/// Its range as a share between the least and the greatest of the three; 1 when they are all equal.
double rangeShare(const Candles& c, std::size_t k) {
  const double least = std::min({rangeOf(c[0]), rangeOf(c[1]), rangeOf(c[2])});
  const double greatest = std::max({rangeOf(c[0]), rangeOf(c[1]), rangeOf(c[2])});
  return greatest == least ? 1.0 : shareOf(greatest, least, rangeOf(c[k]));
}

// ---- Tests of single candles: of candle k, the ones before it having been tested
// ------------------------------

void testLongBody(Candles& c, std::size_t k) {
  const CandleBar& bar = *c[k].bar;
  if (!(std::fabs(bar.close - bar.open) > bar.longBody)) return;
  // Without a true range to go by, the body must also be long beside the other bars.
  if (!(bar.longBody > 0.0) && !(bodyShare(bar) > 0.5 && rangeShare(c, k) >= 0.4)) return;
  c[k].type = kLongBody;
  if (bar.open < bar.close) c[k].direction = kBullish;
  if (bar.open > bar.close) c[k].direction = kBearish;
}

void testDoji(Candles& c, std::size_t k) {
  if (!(bodyShare(*c[k].bar) < 0.05)) return;
  c[k].isDoji = true;
  c[k].type = kDoji;
  c[k].direction = kNeutral;
}

void testHammer(Candles& c, std::size_t k) {
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

void testStar(Candles& c, std::size_t k) {
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
constexpr SingleTest kSingleTests[] = {
    {bitsOf({kLongBody, kStar, kPiercingLine, kBullishEngulfingLine, kDarkCloudCover, kBearishDojiStar,
             kHaramiCross, kThreeWhiteSoldiers, kBearishTwoCrows, kBullishMatchingLow}),
     testLongBody},
    {bitsOf({kDoji, kDojiStar, kBearishDojiStar, kHaramiCross}), testDoji},
    {bitsOf({kHammer, kHangingMan, kBearishShootingStar, kBullishHammer}), testHammer},
    {bitsOf({kStar, kDojiStar}), testStar},
};
constexpr const SingleTest& kLongBodyTest = kSingleTests[0];

}  // namespace

CandleRecogniser::CandleRecogniser(int requested)
    : requested_(bitOf(requested)), patterns_(candlePatternsOf(requested)) {}

bool CandleRecogniser::readsLongBody() const {
  return (kLongBodyTest.requestedBy & requested_) != 0;
}

int CandleRecogniser::typeOfLast(const CandleBars& bars) const {
  const CandleScale scale = {std::max({bars[0].high, bars[1].high, bars[2].high}),
                             std::min({bars[0].low, bars[1].low, bars[2].low})};
  Candles candles = {Candle{&bars[0], &scale}, Candle{&bars[1], &scale}, Candle{&bars[2], &scale}};
  for (std::size_t k = 0; k < candles.size(); ++k) {
    for (const SingleTest& test : kSingleTests) {
      if (test.requestedBy & requested_) test.run(candles, k);
    }
  }
  for (const CandlePattern& pattern : patterns_) {
    if (!pattern.holds(candles)) continue;
    candles[pattern.candle].type = pattern.type;
    candles[pattern.candle].direction = pattern.direction;
    break;
  }
  return candles.back().type;
}

}  // namespace brindlewort
