#include "chart_scale.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>

#include "series/julian_date.hpp"

namespace brindlewort::tool {
namespace {

constexpr double kMargin = 0.05;    // of the span, on each side
constexpr double kLargest = 1e300;  // beyond it, spans would not be numbers
constexpr std::string_view kMidnight = " 00:00";
constexpr std::size_t kToTheMinute = 16;  // characters of "YYYY-MM-DD HH:MM"
constexpr std::size_t kFewestTurns = 3;
constexpr std::size_t kEvenTicks = 6;

std::string fixedText(double value, int decimals) {
  std::array<char, 400> buffer;
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, decimals);
  return error == std::errc() ? std::string(buffer.data(), end) : std::string();
}

// ---- dates ----

/// A step of the calendar. `number` is the same for all moments of one such step, and `textSize` tells how
/// much of "YYYY-MM-DD HH:MM:SS" names it.
struct CalendarUnit {
  std::int64_t (*number)(const CivilTime& time);
  std::size_t textSize;
};

std::int64_t months(const CivilTime& time) {
  return std::int64_t{time.year} * 12 + time.month - 1;
}
std::int64_t days(const CivilTime& time) {
  return months(time) * 31 + time.day;
}
std::int64_t hours(const CivilTime& time) {
  return days(time) * 24 + time.hour;
}

/// From the finest on.
constexpr CalendarUnit kUnits[] = {
    {[](const CivilTime& time) { return hours(time); }, kToTheMinute},
    {[](const CivilTime& time) { return hours(time) / 6; }, kToTheMinute},
    {[](const CivilTime& time) { return days(time); }, 10},
    {[](const CivilTime& time) { return months(time); }, 7},
    {[](const CivilTime& time) { return months(time) / 3; }, 7},
    {[](const CivilTime& time) { return months(time) / 6; }, 7},
    {[](const CivilTime& time) { return std::int64_t{time.year}; }, 4},
    {[](const CivilTime& time) { return std::int64_t{time.year} / 2; }, 4},
    {[](const CivilTime& time) { return std::int64_t{time.year} / 5; }, 4},
    {[](const CivilTime& time) { return std::int64_t{time.year} / 10; }, 4},
    {[](const CivilTime& time) { return std::int64_t{time.year} / 50; }, 4},
};

Tick dateTick(std::span<const double> dates, std::size_t bar, std::size_t textSize) {
  std::string text = DateTimeText(dates[bar]);
  if (text != kNoDateTime) text.resize(std::min(text.size(), textSize));
  return {static_cast<double>(bar), std::move(text)};
}

/// The bars that begin a further step of the calendar; nothing when there are more than `most`.
std::optional<std::vector<Tick>> turns(std::span<const double> dates, const CalendarUnit& unit,
                                       std::size_t most) {
  std::vector<Tick> ticks;
  std::optional<std::int64_t> before;
  for (std::size_t bar = 0; bar < dates.size(); ++bar) {
    const std::optional<CivilTime> time = SplitJulianDate(dates[bar]);
    if (!time) continue;
    const std::int64_t number = unit.number(*time);
    if (before && number != *before) {
      if (ticks.size() == most) return std::nullopt;
      ticks.push_back(dateTick(dates, bar, unit.textSize));
    }
    before = number;
  }
  return ticks;
}

/// Bars of whole days need no time of day.
void dropMidnights(std::vector<Tick>& ticks) {
  const auto atMidnight = [](const Tick& tick) { return tick.label.ends_with(kMidnight); };
  if (!std::ranges::all_of(ticks, atMidnight)) return;
  for (Tick& tick : ticks) tick.label.resize(tick.label.size() - kMidnight.size());
}

std::vector<Tick> evenTicks(std::span<const double> dates) {
  const std::size_t count = std::min(dates.size(), kEvenTicks);
  std::vector<Tick> ticks;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t bar = count == 1 ? 0 : i * (dates.size() - 1) / (count - 1);
    ticks.push_back(dateTick(dates, bar, kToTheMinute));
  }
  dropMidnights(ticks);
  return ticks;
}

}  // namespace

bool hasPlace(double value) {
  return std::fabs(value) <= kLargest;
}

Range rangeOf(std::span<const double> values) {
  double low = 0.0, high = 0.0;
  bool any = false;
  for (const double value : values) {
    if (!hasPlace(value)) continue;
    low = any ? std::min(low, value) : value;
    high = any ? std::max(high, value) : value;
    any = true;
  }
  if (!any) return {};
  const double span = high - low;
  const double margin = span > std::fabs(high) * 1e-12 ? span * kMargin
                        : high != 0.0                  ? std::fabs(high) * kMargin
                                                       : 1.0;
  return {low - margin, high + margin};
}

std::vector<Tick> valueTicks(Range range, int wanted) {
  const double rough = (range.high - range.low) / std::max(wanted, 1);
  if (!(rough > 0.0) || !std::isfinite(rough)) return {};
  const double exponent = std::floor(std::log10(rough));
  const double power = std::pow(10.0, exponent);
  double step = 10.0 * power;
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (rough <= factor * power * (1.0 + 1e-9)) {
      step = factor * power;
      break;
    }
  }
  const double stepExponent = std::floor(std::log10(step) + 1e-9);
  const int decimals = std::clamp(-static_cast<int>(stepExponent), 0, 300);
  const double first = std::ceil(range.low / step);
  const double last = std::floor(range.high / step);
  std::vector<Tick> ticks;
  // Where the span is nothing beside the values, steps cannot be counted.
  if (!(last - first <= 4.0 * wanted + 4.0) || std::fabs(last) > 9e15) return ticks;
  for (double i = first; i <= last; i += 1.0) {
    ticks.push_back({i * step, fixedText(i == 0.0 ? 0.0 : i * step, decimals)});
  }
  return ticks;
}

std::vector<Tick> dateTicks(std::span<const double> dates, std::size_t most) {
  for (const CalendarUnit& unit : kUnits) {
    std::optional<std::vector<Tick>> ticks = turns(dates, unit, most);
    if (!ticks) continue;
    if (ticks->size() < kFewestTurns) break;
    dropMidnights(*ticks);
    return std::move(*ticks);
  }
  return evenTicks(dates);
}

std::vector<Point> thinnedOut(std::span<const Point> line, std::size_t most) {
  if (line.size() <= most) return {line.begin(), line.end()};
  const std::span<const Point> inner = line.subspan(1, line.size() - 2);
  const std::size_t stretches = (std::max<std::size_t>(most, 4) - 2) / 2;
  const auto lower = [](const Point& a, const Point& b) { return a.y < b.y; };
  std::vector<Point> points = {line.front()};
  for (std::size_t i = 0; i < stretches; ++i) {
    const auto begin = inner.begin() + static_cast<std::ptrdiff_t>(i * inner.size() / stretches);
    const auto end = inner.begin() + static_cast<std::ptrdiff_t>((i + 1) * inner.size() / stretches);
    if (begin == end) continue;
    const auto [lowest, highest] = std::minmax_element(begin, end, lower);
    points.push_back(*std::min(lowest, highest));
    if (lowest != highest) points.push_back(*std::max(lowest, highest));
  }
  points.push_back(line.back());
  return points;
}

}  // namespace brindlewort::tool
