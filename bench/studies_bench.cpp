// Chart studies: Ichimoku lines, percent swing, point and figure, candlestick patterns. The batch form beside
// a plain loop of the textbook formula, and the resumable form with one more bar. Percent swing and point and
// figure redraw their whole chart on each call.

#include <algorithm>
#include <cmath>
#include <string>

#include "bench_support.hpp"
#include "indicators/candles.hpp"
#include "indicators/candlestick.hpp"
#include "indicators/ichimoku.hpp"
#include "indicators/percent_swing.hpp"
#include "indicators/point_figure.hpp"

namespace brindlewort::bench {

namespace {

constexpr Count kTenkanRows = 9, kKijunRows = 26, kShift = 26, kLongRows = 52;
constexpr double kPercent = 5.0, kBox = 1.0, kWeight = 0.1;
constexpr Count kReversal = 3, kRangeRows = 15;

namespace batch = CFeedkit;
namespace resumable = CTechnicalFunctions;

// ---- Textbook loops -----------------------------------------------------------------------------------

double plainMiddle(const Bars& b, std::size_t i, Count rows) {
  double highest = b.high[i], lowest = b.low[i];
  for (Count k = 1; k < rows; ++k) {
    highest = std::max(highest, b.high[i - k]);
    lowest = std::min(lowest, b.low[i - k]);
  }
  return (highest + lowest) / 2.0;
}

void plainTenkan(const Bars& b, Out out) {
  for (std::size_t i = kTenkanRows; i < out.size(); ++i) out[i] = plainMiddle(b, i, kTenkanRows);
}

void plainKijun(const Bars& b, Out out) {
  for (std::size_t i = kKijunRows; i < out.size(); ++i) out[i] = plainMiddle(b, i, kKijunRows);
}

void plainSpanA(const Bars& b, Out out) {
  for (std::size_t i = kKijunRows; i + kShift < out.size(); ++i) {
    out[i + kShift] = (plainMiddle(b, i, kTenkanRows) + plainMiddle(b, i, kKijunRows)) / 2.0;
  }
}

void plainSpanB(const Bars& b, Out out) {
  for (std::size_t i = kLongRows; i + kShift < out.size(); ++i)
    out[i + kShift] = plainMiddle(b, i, kLongRows);
}

/// The usual zigzag; `step(i, direction, turned, level)` sees each bar.
template <class Step>
void plainZigzag(const Bars& b, Out out, Step step) {
  bool rising = true;
  double level = b.high[1];
  for (std::size_t i = 2; i < out.size(); ++i) {
    const double before = level;
    bool turned = false;
    if (rising) {
      if (b.high[i] >= level) {
        level = b.high[i];
      } else if (b.high[i] < level * (1.0 - kPercent / 100.0)) {
        level = b.low[i];
        turned = true;
      }
    } else {
      if (b.low[i] <= level) {
        level = b.low[i];
      } else if (b.low[i] > level * (1.0 + kPercent / 100.0)) {
        level = b.high[i];
        turned = true;
      }
    }
    if (turned) rising = !rising;
    step(i, rising, turned, before);
  }
}

void plainSwingDirection(const Bars& b, Out out) {
  plainZigzag(b, out, [&](std::size_t i, bool rising, bool, double) { out[i] = rising ? 1.0 : 2.0; });
}

void plainSwingTop(const Bars& b, Out out) {
  double top = NULL_VALUE;
  plainZigzag(b, out, [&](std::size_t i, bool rising, bool turned, double before) {
    if (turned && !rising) top = before;
    out[i] = top;
  });
}

void plainSmooth(const Bars& b, Out out) {
  double level = out[0] = b.close[0];
  for (std::size_t i = 1; i < out.size(); ++i) {
    out[i] = level = b.close[i] * kWeight + level * (1.0 - kWeight);
  }
}

void plainHammer(const Bars& b, Out out) {
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double range = b.high[i] - b.low[i], o = b.open[i], c = b.close[i];
    const bool up = (c - b.low[i]) / range > 0.7 && (o - b.low[i]) / range > 0.7;
    const bool down = (b.high[i] - c) / range > 0.7 && (b.high[i] - o) / range > 0.7;
    out[i] = (o - c) * 4.0 < range && (up || down) ? 1.0 : 0.0;
  }
}

/// The last three bars between their lowest low and highest high, which is where patterns are told.
struct PlainBars {
  double o[3], h[3], l[3], c[3];
  PlainBars(const Bars& b, std::size_t i) {
    const double highest = std::max({b.high[i - 2], b.high[i - 1], b.high[i]});
    const double lowest = std::min({b.low[i - 2], b.low[i - 1], b.low[i]});
    for (std::size_t k = 0; k < 3; ++k) {
      const std::size_t j = i - 2 + k;
      o[k] = (b.open[j] - lowest) / (highest - lowest);
      h[k] = (b.high[j] - lowest) / (highest - lowest);
      l[k] = (b.low[j] - lowest) / (highest - lowest);
      c[k] = (b.close[j] - lowest) / (highest - lowest);
    }
  }
};

void plainEngulfing(const Bars& b, Out out) {
  const auto range = [&b](std::size_t i) {
    return std::max(b.high[i], b.close[i - 1]) - std::min(b.low[i], b.close[i - 1]);
  };
  for (std::size_t i = kRangeRows + 1; i < out.size(); ++i) {
    double sum = 0.0;
    for (std::size_t j = i - kRangeRows; j < i; ++j) sum += range(j);
    const PlainBars x(b, i);
    const bool holds = std::fabs(b.close[i] - b.open[i]) > sum / kRangeRows && x.c[2] > x.o[2] &&
                       x.c[2] > x.h[1] && x.o[2] < x.l[1] && x.o[1] <= x.c[1];
    out[i] = holds ? 1.0 : 0.0;
  }
}

void plainMorningStar(const Bars& b, Out out) {
  for (std::size_t i = 2; i < out.size(); ++i) {
    const PlainBars x(b, i);
    const bool holds = x.c[0] < x.o[0] && (x.o[0] - x.c[0]) / (0.001 + x.h[0] - x.l[0]) > 0.6 &&
                       x.o[1] < x.c[0] && x.c[1] < x.o[1] && x.h[1] - x.l[1] > (x.o[1] - x.c[1]) * 3.0 &&
                       x.o[2] < x.c[2] && x.o[1] < x.o[2];
    out[i] = holds ? 1.0 : 0.0;
  }
}

// ---- Rows ---------------------------------------------------------------------------------------------

using In = const PriceSources&;

/// The three rows of one study.
template <class Engine, class Plain, class Resumed>
void rows(const std::string& name, Engine engine, Plain plain, Resumed resumed) {
  batchRow((name + "/engine").c_str(), engine);
  batchRow((name + "/plain").c_str(), plain);
  resumedRow((name + "/resumed").c_str(), resumed);
}

template <class Plain>
void ichimokuRows(const std::string& name, IchimokuLine line, Plain plain) {
  rows(
      name,
      [line](const Bars& b, Out out) {
        batch::Ichimoku(b.prices(), kTenkanRows, kKijunRows, kShift, kShift, line, out);
      },
      plain,
      [line](WorkStore& store, In p, Target out) {
        resumable::Ichimoku(store, p, kTenkanRows, kKijunRows, kShift, kShift, kShift, line, out);
      });
}

template <class Plain>
void swingRows(const std::string& name, SwingLine line, Plain plain) {
  rows(
      name, [line](const Bars& b, Out out) { batch::PercentSwing(b.prices(), kPercent, 0, line, out); },
      plain,
      [line](WorkStore& store, In p, Target out) {
        resumable::PercentSwing(store, p, kPercent, 0, line, out);
      });
}

template <class Plain>
void patternRows(const std::string& name, CandleType type, Plain plain) {
  rows(
      name, [type](const Bars& b, Out out) { batch::CandlestickPatternRows(b.prices(), type, out); }, plain,
      [type](WorkStore& store, In p, Target out) { resumable::CandlestickPattern(store, p, type, out); });
}

const bool registered = [] {
  ichimokuRows("TENKAN", IchimokuLine::kTenkan, plainTenkan);
  ichimokuRows("KIJUN", IchimokuLine::kKijun, plainKijun);
  ichimokuRows("SPANA", IchimokuLine::kSpanA, plainSpanA);
  ichimokuRows("SPANB", IchimokuLine::kSpanB, plainSpanB);
  resumedRow("CHIKOU/resumed", [](WorkStore& store, In p, Target out) {
    resumable::Ichimoku(store, p, 0, 0, 0, 0, kShift, IchimokuLine::kChikou, out);
  });
  swingRows("%SWINGD", SwingLine::kDirection, plainSwingDirection);
  swingRows("%SWINGPTOP", SwingLine::kTop, plainSwingTop);
  rows(
      "PFX", [](const Bars& b, Out out) { batch::PointFigureSmooth(b.close, kWeight, kReversal, out); },
      plainSmooth,
      [](WorkStore& store, In p, Target out) {
        resumable::PointFigure(store, p.high, p.low, kBox, kReversal, PointFigureLine::kX, out);
      });
  patternRows("CSP HAMMER", kHammer, plainHammer);
  patternRows("CSP BULLISH_ENGULFING_LINE", kBullishEngulfingLine, plainEngulfing);
  patternRows("CSP MORNING_STAR", kMorningStar, plainMorningStar);
  return true;
}();

}  // namespace

}  // namespace brindlewort::bench
