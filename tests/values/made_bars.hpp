#pragma once

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "values/value_case.hpp"

/// Bars whose six columns have nothing in common, so that a wrong source, or two that are swapped, shows.
namespace brindlewort::testing {

inline constexpr double kFillerDate = 2444239.5;  // 1 January 1980

inline Bars withFiller(Bars bars) {
  for (Rows* rows : {&bars.open, &bars.high, &bars.low, &bars.close, &bars.volume})
    rows->insert(rows->begin(), 0.0);
  bars.date.insert(bars.date.begin(), kFillerDate);
  return bars;
}

/// The dates are distinct, go back now and then, and fall on 64ths of a day, which doubles hold exactly.
inline double madeDate(int i) {
  return 2451544.5 + i * 5 + (i % 7 == 3 ? -11 : 0) + (i * 13 % 64) / 64.0;
}

/// Prices that walk with gaps: a bar often opens, and now and then lies, outside the one before.
inline Bars walkingBars(int count) {
  Random random(20);
  Bars b;
  double level = 60;
  for (int i = 0; i < count; ++i) {
    const double open = level + random.unit() * 4 - 2, close = open + random.unit() * 8 - 3.9;
    b.date.push_back(madeDate(i));
    b.open.push_back(open);
    b.close.push_back(close);
    b.high.push_back(std::max(open, close) + random.unit() * 3);
    b.low.push_back(std::min(open, close) - random.unit() * 2);
    b.volume.push_back(1000.0 + random.below(9000));
    level = std::max(close, 20.0);
  }
  return b;
}

/// Small whole prices: equal neighbours, bars without a range, equal volumes, prices on either side of 10.
inline Bars steppingBars(int count) {
  Random random(7);
  Bars b;
  for (int i = 0; i < count; ++i) {
    const double low = 7.0 + random.below(5), range = random.below(4);
    const auto within = [&] { return low + random.below(static_cast<int>(range) + 1); };
    b.date.push_back(madeDate(i));
    b.open.push_back(within());
    b.close.push_back(within());
    b.high.push_back(low + range);
    b.low.push_back(low);
    b.volume.push_back(100.0 * (1 + random.below(4)));
  }
  return b;
}

/// Halves, so that a close stands in the middle of its bar now and then; each bar has a range.
inline Bars halvedBars(int count) {
  Bars b = walkingBars(count);
  for (Rows* rows : {&b.open, &b.high, &b.low, &b.close}) {
    for (double& x : *rows) x = std::round(x) / 2;
  }
  for (int i = 0; i < count; ++i) b.high[i] += 0.5;
  return b;
}

struct MadeBars {
  std::string what;
  Bars bars;
  bool hasFlatBars = false;
};
inline const std::vector<MadeBars>& madeBars() {
  static const std::vector<MadeBars> all = {{"walking bars", walkingBars(90)},
                                            {"stepping bars", steppingBars(90), true},
                                            {"halved bars", halvedBars(90)}};
  return all;
}

/// Another bar in the place of bar i.
inline Bars shaken(Bars bars, int i) {
  bars.open[i] += 1.5;
  bars.high[i] += 4.25;
  bars.low[i] -= 2.75;
  bars.close[i] -= 1.25;
  bars.volume[i] += 70;
  return bars;
}

}  // namespace brindlewort::testing
