// Value cases of percent swing, point and figure, and candlestick patterns.

#include "values/range_twins.hpp"
#include "values/value_case.hpp"

namespace brindlewort::testing {
namespace {

using B = const Bars&;

// ---- Percent swing ----------------------------------------------------------------------------------------

enum class Line { kPivots, kDirection, kTop, kBottom };

struct Swing {
  Rows line, direction, pivots, list;

  double at(int k) const { return k >= 0 && k < countOf(list) ? list[k] : kNull; }
};

Rows swingLine(B b, double percent) {
  Rows line = nulls(b.close);
  bool rising = true;
  double last = line[1] = b.high[1];
  for (int i = 2; i < b.count(); ++i) {
    const double x = rising ? b.high[i] : b.low[i], sign = rising ? 1 : -1;
    if (sign * last > sign * x) {
      if (sign * ((100 - sign * percent) / 100 * last) > sign * x) {
        last = rising ? b.low[i] : b.high[i];
        rising = !rising;
      }
    } else if (last == x) {
      // The pivot moves on: the rows of this level, except the first one's, take the line before it.
      int j = i - 1;
      while (j >= 1 && line[j] == x) --j;
      for (int k = i - 1; j >= 1 && k > j; --k) line[k] = line[j];
    } else {
      last = x;
    }
    line[i] = last;
  }
  return line;
}

Swing swingOf(B b, double percent) {
  const int n = b.count();
  Swing s{swingLine(b, percent), nulls(b.close), nulls(b.close), {}};
  std::vector<int> turnRow(n, 1), turnCode(n, 1);
  s.direction[1] = 1;
  for (int i = 2; i < n; ++i) {
    const int code = s.line[i - 1] == s.line[i] ? 3 : s.line[i] > s.line[i - 1] ? 1 : 2;
    s.direction[i] = code == 3 ? s.direction[i - 1] : code;
    turnRow[i] = code == 3 ? turnRow[i - 1] : i;
    turnCode[i] = code == 3 ? turnCode[i - 1] : code;
  }
  s.pivots[1] = b.low[1];
  int want = 2;
  for (int i = 2; i < n; ++i) {
    const int from = turnRow[i - 1], to = turnRow[i];
    if (want != turnCode[i]) {
      s.pivots[i] = kNull;
      continue;
    }
    if (from != 1) s.pivots[from] = want == 1 ? b.low[from] : b.high[from];
    if (to + 1 < n && to + 1 < i) s.pivots[to + 1] = want == 1 ? b.high[to] : b.low[to];
    want = 3 - want;
  }
  const int end = turnRow[n - 1];
  s.pivots[end] = turnCode[n - 1] == 1 ? b.high[end] : b.low[end];
  for (double x : s.pivots) {
    if (!isNull(x)) s.list.push_back(x);
  }
  s.list.erase(s.list.begin());
  return s;
}

Rows swing(B b, double percent, int number, Line line) {
  const Swing s = swingOf(b, percent);
  if (line == Line::kPivots) return s.pivots;
  if (line == Line::kDirection) return s.direction;
  const bool top = line == Line::kTop;
  Rows out = nulls(b.close);
  int skip = 2 * (number + 1) - 1;
  if (top ? s.at(0) < s.at(1) : s.at(0) > s.at(1)) ++skip;
  int k = skip % 2 != 0 ? 0 : 1, held = -1, passed = 0;
  bool active = false;
  for (int i = 0; i < b.count(); ++i) {
    active = active || skip < passed;
    const bool pivot = !isNull(s.pivots[i]);
    if (pivot) ++passed;
    if (!active) continue;
    if (i > 0 && s.direction[i] == (top ? 2 : 1) && s.direction[i - 1] == (top ? 1 : 2)) {
      out[i] = s.at(k);
      held = k;
    } else if (held > -1) {
      out[i] = s.at(held);
    }
    if (pivot && (skip - (passed - 1)) % 2 == 0) {
      if (!isNull(s.at(k + 2))) held = k;
      k += 2;
    }
  }
  return out;
}

ValueCase swingCase(const char* name, const char* arguments, double percent, int number, Line line) {
  const Expected rows = [=](B b) { return swing(b, percent, number, line); };
  return {{name}, arguments, rows, rows};
}

// ---- Point and figure -------------------------------------------------------------------------------------

/// Comparisons look at four decimals.
double cut(double x) {
  return std::trunc((x > 0 ? x + 1e-10 : x < 0 ? x - 1e-10 : 0) * 10000);
}
/// To the nearest fourth decimal, behind a cut to it.
double rounded(double x) {
  const double sign = x < 0 ? -1 : 1, kept = std::trunc((std::fabs(x) + 1e-10) * 10000) / 10000;
  return kept == 0 ? 0 : sign * (kept + 1e-10);
}

enum class Figure { kX, kO, kDirection };

Rows pointFigure(const Rows& high, const Rows& low, double boxSize, int reversal, Figure figure) {
  const auto box = [&](double x) { return std::trunc(x / boxSize) * boxSize; };
  const auto floorOf = [&](double l) { return cut(l - box(l)) > 0 ? box(l) + boxSize : box(l); };
  const double turn = reversal * boxSize;
  double countX = 0, countO = 0, trend = -1, base = box(high[0]), top = base, bottom = base, peak = base;
  Rows out = nulls(high);
  for (int i = 0; i < countOf(high); ++i) {
    const double h = high[i], l = low[i];
    bool turned = false;
    if (trend != 0) {
      if (cut(h) > cut(top)) {
        const double count = std::trunc(rounded(h - base) / boxSize);
        if (cut(count) > cut(countX)) countX = count, trend = 1, top = box(h);
      } else if (cut(l) < cut(top) && trend == 1 && cut(rounded(top - l)) >= cut(turn)) {
        countO = std::trunc(rounded(top - l) / boxSize);
        trend = 0, peak = top, bottom = floorOf(l);
        turned = true;
      }
    }
    if (!turned && trend != 1) {
      if (cut(l) < cut(bottom)) {
        const double count = std::trunc(rounded(peak - l) / boxSize);
        if (cut(count) > cut(countO)) countO = count, trend = 0, bottom = floorOf(l);
      } else if (cut(h) > cut(bottom) && trend == 0 && cut(rounded(h - bottom)) >= cut(turn)) {
        countX = std::trunc(rounded(h - bottom) / boxSize);
        trend = 1, base = bottom, top = box(h);
      }
    }
    if (figure == Figure::kX) out[i] = countX;
    if (figure == Figure::kO) out[i] = countO;
    if (figure == Figure::kDirection && trend != -1 && i > 0) out[i] = trend;
  }
  return out;
}

/// A case of the three names of a line. Over the whole history all of them are a smoothing.
ValueCase figureCase(std::vector<std::string> names, Figure figure) {
  return {std::move(names), "OPEN, 0.5, 3", [](B b) { return whole::seeded(b.open, 3, 0.5); },
          [=](B b) { return pointFigure(b.open, b.open, 0.5, 3, figure); }};
}
/// HIGHLOW is the high and the low on the incremental way, and a name of nothing over the whole history.
ValueCase highLowCase(const char* name, Figure figure) {
  return {
      {name}, "HIGHLOW, 0.75, 2", kUnknown, [=](B b) { return pointFigure(b.high, b.low, 0.75, 2, figure); }};
}

// ---- Candlesticks
// -------------------------------------------------------------------------------------------

/// Open and close in the upper three tenths of the range, or in the lower.
bool isHammer(B b, int i) {
  const double range = b.high[i] - b.low[i];
  const bool upper = (b.close[i] - b.low[i]) / range > 0.7 && (b.open[i] - b.low[i]) / range > 0.7;
  const bool lower = (b.high[i] - b.close[i]) / range > 0.7 && (b.high[i] - b.open[i]) / range > 0.7;
  return (b.open[i] - b.close[i]) * 4 < range && (upper || lower);
}
/// A flag, once more than three bars are there.
Rows wholeHammers(B b) {
  Rows out(b.close.size(), 0.0);
  for (int i = 3; i < b.count(); ++i) out[i] = isHammer(b, i) ? 1 : 0;
  return out;
}
/// The pattern's number, once three bars are there.
Rows livingHammers(B b) {
  return eachBar(b, 2, [&](int i) { return isHammer(b, i) ? 3.0 : 0.0; });
}

// ---- The families -----------------------------------------------------------------------------------------

const Family kSwings{{
    // Over the whole history the line is no output of the operation.
    {{"%SWING"}, "6", [](B b) { return nulls(b.close); }, [](B b) { return swing(b, 6, 0, Line::kPivots); }},
    swingCase("%SWINGD", "6", 6, 0, Line::kDirection),
    swingCase("%SWINGPTOP", "6, 1", 6, 1, Line::kTop),
    swingCase("%SWINGPTOP", "4, 0", 4, 0, Line::kTop),
    swingCase("%SWINGPBOT", "6, 1", 6, 1, Line::kBottom),
    swingCase("%SWINGPBOT", "4, 2", 4, 2, Line::kBottom),
    figureCase({"PFX", "POINTFIGURECOUNTX"}, Figure::kX),
    figureCase({"PFO", "POINTFIGURECOUNTO"}, Figure::kO),
    figureCase({"PFD", "POINTFIGUREDIRECTION"}, Figure::kDirection),
}};

/// The pattern is what CSP() is compared with; it is looked for behind this name alone.
ValueCase hammerCase() {
  ValueCase c{{"CSP"}, "", wholeHammers, livingHammers};
  c.behind = " = HAMMER";
  return c;
}
Rows zeros(B b) {
  return Rows(b.close.size(), 0.0);
}
const Family kCandles{{
    hammerCase(),
    {{"CSP", "CANDLESTICKPATTERN", "CANDLESTICKS"}, "", zeros, zeros},
}};

const Family kHighLow{{
    highLowCase("PFX", Figure::kX),
    highLowCase("PFO", Figure::kO),
    highLowCase("PFD", Figure::kDirection),
}};

}  // namespace
}  // namespace brindlewort::testing
