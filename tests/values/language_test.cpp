// Value cases of conditions, loops, arithmetic, rounding, windows and dates.

#include "values/average_twins.hpp"
#include "values/range_twins.hpp"
#include "values/value_case.hpp"

namespace brindlewort::testing {
namespace {

using B = const Bars&;

/// Comparisons look at four decimals.
double cut(double x) {
  return std::trunc((x > 0 ? x + 1e-10 : x < 0 ? x - 1e-10 : 0) * 10000);
}
bool above(double a, double b) {
  return cut(a) > cut(b);
}

// ---- Conditions -------------------------------------------------------------------------------------------

/// The condition CLOSE > OPEN, row by row.
std::vector<bool> rises(B b) {
  std::vector<bool> out;
  for (int i = 0; i < b.count(); ++i) out.push_back(above(b.close[i], b.open[i]));
  return out;
}
Rows either(B b) {
  const auto c = rises(b);
  return eachBar(b, 0, [&](int i) { return c[i] ? b.high[i] : b.volume[i]; });
}
Rows counted(B b) {
  const auto c = rises(b);
  double count = 0;
  return eachBar(b, 0, [&](int i) { return count += c[i]; });
}
Rows summed(B b) {
  const auto c = rises(b);
  double sum = 0;
  return eachBar(b, 0, [&](int i) { return sum += c[i] ? b.volume[i] : 0; });
}
/// Over the whole history the first two rows say nothing: true for LASTIF, false for REPEATIF.
Rows runs(B b, bool repeat, bool wholeHistory) {
  const auto c = rises(b);
  double count = 0;
  return eachBar(b, 0, [&](int i) {
    const bool holds = wholeHistory && i < 2 ? !repeat : c[i];
    return count = holds == repeat ? count + 1 : 0;
  });
}
bool crosses(B b, int i) {
  return !above(b.high[i - 1], b.open[i - 1] * 1.02) && above(b.high[i], b.open[i] * 1.02);
}
/// Row 0 is that of the second vector, and a first row of 0 leaves row 1 null.
Rows wholeCross(B b) {
  Rows out = eachBar(b, 1, [&](int i) { return crosses(b, i) ? 1.0 : 0.0; });
  out[0] = b.open[0] * 1.02;
  out[1] = kNull;
  return out;
}
Rows livingCross(B b) {
  return eachBar(b, 1, [&](int i) { return crosses(b, i) ? 1.0 : 0.0; });
}
/// Rows before the period: 0 over the whole history, null on the incremental way.
Rows back(const Rows& in, int p, double head) {
  Rows out(in.size(), head);
  for (int i = p; i < countOf(in); ++i) out[i] = in[i - p];
  return out;
}
/// first(i - 2) op second(i - 3), over the rows written already.
template <class Operator>
Rows looped(const Rows& one, const Rows& two, Operator op) {
  Rows out = one;
  for (int i = 3; i < countOf(one); ++i) out[i] = op(out[i - 2], two[i - 3]);
  return out;
}
template <class Operator>
ValueCase loopCase(const char* word, Operator op) {
  const Expected rows = [=](B b) { return looped(b.high, b.low, op); };
  return {{"LOOP"}, "HIGH, LOW, 2, 3, " + std::string(word), rows, rows};
}

// ---- Arithmetic -------------------------------------------------------------------------------------------

/// f of each row of the open, in both ways.
template <class F>
ValueCase mathCase(const char* name, F f) {
  const Expected rows = [=](B b) { return eachBar(b, 0, [&](int i) { return f(b.open[i] - 9); }); };
  return {{name}, "OPEN - 9", rows, rows};
}
template <class F>
ValueCase logCase(const char* name, F f) {
  const Expected rows = [=](B b) { return eachBar(b, 0, [&](int i) { return f(b.open[i] + 1); }); };
  return {{name}, "OPEN + 1", rows, rows};
}

/// Nearest, away from zero, towards zero: at the third decimal of a value that is cut to its fourth.
enum class Mode { kNearest, kUp, kDown };
double roundedTo(double x, int digits, Mode mode) {
  const double kept = std::trunc((std::fabs(x) + 1e-10) * 10000) / 10000, power = std::pow(10.0, digits);
  if (kept == 0) return 0;
  const double scaled = (kept + 2e-10) * power, rest = scaled - std::trunc(scaled);
  const bool away =
      std::trunc(rest * 10000) > 0 && (mode == Mode::kUp || (mode == Mode::kNearest && rest >= 0.5));
  return (x < 0 ? -1 : 1) * ((std::trunc(scaled) + (away ? 1 : 0)) / power + 1e-10);
}
double multipleOf(double x, double m, Mode mode) {
  const double kept = std::trunc((std::fabs(x) + 1e-10) * 10000) / 10000;
  if (kept == 0) return 0;
  const double sign = x < 0 ? -1 : 1, v = sign * (kept + 1e-10), rest = std::fmod(v, m);
  if (std::trunc(rest * 10000) == 0) return v;
  bool nearer = !((2 * rest > m && mode != Mode::kDown) || mode == Mode::kUp);
  if (v < 0) nearer = !nearer;
  return (std::trunc(v / m) + (nearer ? 0 : sign)) * m + sign * 1e-10;
}
ValueCase roundCase(const char* name, Mode mode) {
  const Expected rows = [=](B b) {
    return eachBar(b, 0, [&](int i) { return roundedTo(b.open[i] / 7 - 5, 2, mode); });
  };
  return {{name}, "OPEN / 7 - 5, 2", rows, rows};
}
ValueCase multipleCase(const char* name, Mode mode) {
  const Expected rows = [=](B b) {
    return eachBar(b, 0, [&](int i) { return multipleOf(b.open[i] / 3 - 5, 1.25, mode); });
  };
  return {{name}, "OPEN / 3 - 5, 1.25", rows, rows};
}

// ---- Windows ----------------------------------------------------------------------------------------------

/// The first window's value stands in the rows before it too.
Rows totals(const Rows& in, int p, double divisor) {
  Rows out = nulls(in);
  for (int i = p - 1; i < countOf(in); ++i) out[i] = sumOf(in, i - p + 1, i) / divisor;
  std::fill(out.begin(), out.begin() + p - 1, out[p - 1]);
  return out;
}
/// No average over the whole history: the first window's total, and 0 behind it.
Rows wholeAverage(const Rows& in, int p) {
  Rows out(in.size(), 0.0);
  std::fill(out.begin(), out.begin() + p, sumOf(in, 0, p - 1));
  return out;
}
Rows extreme(const Rows& in, int p, bool greatest, bool fillsHead) {
  Rows out = nulls(in);
  for (int i = p - 1; i < countOf(in); ++i)
    out[i] = greatest ? greatestOf(in, i - p + 1, i) : leastOf(in, i - p + 1, i);
  if (fillsHead) std::fill(out.begin(), out.begin() + p - 1, out[p - 1]);
  return out;
}
template <class Best>
ValueCase bestCase(const char* name, Best best) {
  const Expected rows = [=](B b) {
    return eachBar(b, 0, [&](int i) { return best({b.open[i], b.close[i], 30.0, b.low[i] + 2}); });
  };
  return {{name}, "OPEN, CLOSE, 30, LOW + 2", rows, rows};
}

// ---- Dates, of the universal zone
// ---------------------------------------------------------------------------

/// Seconds since the first of January 1970.
long long momentOf(double jdate) {
  return std::llround((jdate - 2440587.5) * 86400);
}
struct Moment {
  int year, month, day, hour, minute, second;
};
Moment split(double jdate) {
  const long long moment = momentOf(jdate);
  long long days = moment / 86400, rest = moment % 86400;
  int year = 1970, month = 1;
  const auto leap = [](int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; };
  while (days >= (leap(year) ? 366 : 365)) days -= leap(year) ? 366 : 365, ++year;
  const int lengths[] = {31, leap(year) ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  while (days >= lengths[month - 1]) days -= lengths[month - 1], ++month;
  return {year,
          month,
          static_cast<int>(days) + 1,
          static_cast<int>(rest / 3600),
          static_cast<int>(rest / 60 % 60),
          static_cast<int>(rest % 60)};
}
/// Part 1 to 6 of the date so many rows back.
double partOf(double jdate, int part) {
  const Moment m = split(jdate);
  const int parts[] = {m.second, m.minute, m.hour, m.day, m.month, m.year};
  return parts[part - 1];
}
ValueCase datePartCase(int part) {
  return {{"DATEPART"},
          "2, " + std::to_string(part),
          [=](B b) {
            Rows out(b.close.size(), 0.0);
            for (int i = 2; i < b.count(); ++i) out[i] = partOf(b.date[i - 2], part);
            return out;
          },
          [=](B b) { return eachBar(b, 2, [&](int i) { return partOf(b.date[i - 2], part); }); }};
}
/// The date 1 row back less that 3 rows back, in whole units. The filler bar has no date.
Rows dateDiff(B b, long long seconds, bool wholeHistory) {
  return eachBar(b, wholeHistory ? 4 : 3, [&](int i) {
    return static_cast<double>((momentOf(b.date[i - 1]) - momentOf(b.date[i - 3])) / seconds);
  });
}
ValueCase dateDiffCase(int unit, long long seconds) {
  return {{"DATEDIFF"},
          "1, 3, " + std::to_string(unit),
          [=](B b) { return dateDiff(b, seconds, true); },
          [=](B b) { return dateDiff(b, seconds, false); }};
}

const Family kLanguage{{
    {{"IF"}, "CLOSE > OPEN, HIGH, VOLUME", either, either},
    {{"COUNTIF"}, "CLOSE > OPEN", counted, counted},
    {{"SUMIF"}, "CLOSE > OPEN, VOLUME", summed, summed},
    {{"LASTIF"},
     "CLOSE > OPEN",
     [](B b) { return runs(b, false, true); },
     [](B b) { return runs(b, false, false); }},
    {{"REPEATIF"},
     "CLOSE > OPEN",
     [](B b) { return runs(b, true, true); },
     [](B b) { return runs(b, true, false); }},
    {{"CROSSOVER"}, "HIGH, OPEN * 1.02", wholeCross, livingCross},
    {{"REF"},
     "HIGH, 3",
     [](B b) { return back(b.high, 3, 0.0); },
     [](B b) { return back(b.high, 3, kNull); }},
    loopCase("ADD", [](double x, double y) { return x + y; }),
    loopCase("SUBTRACT", [](double x, double y) { return x - y; }),
    {{"ABS"},
     "CLOSE - OPEN",
     [](B b) { return eachBar(b, 0, [&](int i) { return std::fabs(b.close[i] - b.open[i]); }); },
     [](B b) { return eachBar(b, 0, [&](int i) { return std::fabs(b.close[i] - b.open[i]); }); }},
    mathCase("SIN", [](double x) { return std::sin(x); }),
    mathCase("COS", [](double x) { return std::cos(x); }),
    mathCase("TAN", [](double x) { return std::tan(x); }),
    mathCase("ATN", [](double x) { return std::atan(x); }),
    {{"EXP"},
     "OPEN / 9",
     [](B b) { return eachBar(b, 0, [&](int i) { return std::exp(b.open[i] / 9); }); },
     [](B b) { return eachBar(b, 0, [&](int i) { return std::exp(b.open[i] / 9); }); }},
    logCase("LOG", [](double x) { return std::log(x); }),
    logCase("LOG10", [](double x) { return std::log10(x); }),
    // Draws times the last value of the source, which is 0.
    {{"RND"},
     "0",
     [](B b) { return Rows(b.close.size(), 0.0); },
     [](B b) { return Rows(b.close.size(), 0.0); }},
    roundCase("ROUND", Mode::kNearest),
    roundCase("ROUNDUP", Mode::kUp),
    roundCase("ROUNDDOWN", Mode::kDown),
    multipleCase("MROUND", Mode::kNearest),
    multipleCase("MROUNDUP", Mode::kUp),
    multipleCase("MROUNDDOWN", Mode::kDown),
    {{"SUM"}, "HIGH, 4", [](B b) { return totals(b.high, 4, 1); }, [](B b) { return totals(b.high, 4, 1); }},
    {{"AVG", "AVERAGE"},
     "LOW, 4",
     [](B b) { return wholeAverage(b.low, 4); },
     [](B b) { return totals(b.low, 4, 4); }},
    {{"MAX"},
     "LOW, 4",
     [](B b) { return extreme(b.low, 4, true, true); },
     [](B b) { return extreme(b.low, 4, true, false); }},
    {{"MIN"},
     "HIGH, 4",
     [](B b) { return extreme(b.high, 4, false, true); },
     [](B b) { return extreme(b.high, 4, false, false); }},
    bestCase("MAXOF", [](std::initializer_list<double> x) { return std::max(x); }),
    bestCase("MINOF", [](std::initializer_list<double> x) { return std::min(x); }),
    datePartCase(1),
    datePartCase(2),
    datePartCase(3),
    datePartCase(4),
    datePartCase(5),
    datePartCase(6),
    dateDiffCase(1, 1),
    dateDiffCase(2, 60),
    dateDiffCase(3, 3600),
    dateDiffCase(4, 86400),
}};

}  // namespace
}  // namespace brindlewort::testing
