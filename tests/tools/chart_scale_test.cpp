#include "chart_scale.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace brindlewort::tool {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kFirstOfJanuary2024 = 2460310.5;

std::vector<std::string> labels(const std::vector<Tick>& ticks) {
  std::vector<std::string> result;
  for (const Tick& tick : ticks) result.push_back(tick.label);
  return result;
}

std::vector<double> everyDay(std::size_t days, double step = 1.0) {
  std::vector<double> dates;
  for (std::size_t i = 0; i < days; ++i) dates.push_back(kFirstOfJanuary2024 + static_cast<double>(i) * step);
  return dates;
}

TEST(ChartRange, HasAMarginOfATwentiethOnBothSides) {
  const Range range = rangeOf(std::vector<double>{10.0, 30.0, 20.0});
  EXPECT_DOUBLE_EQ(range.low, 9.0);
  EXPECT_DOUBLE_EQ(range.high, 31.0);
}

TEST(ChartRange, HasRoomForAnyValues) {
  for (const std::vector<double>& values : {std::vector<double>{},
                                            {5.0},
                                            {0.0, 0.0},
                                            {-3.0, -3.0},
                                            {kNan, kInfinity},
                                            {1e308, -1e308},
                                            {1e300, -1e300},
                                            {1e-320, 2e-320},
                                            {1e15, 1e15 + 0.125}}) {
    const Range range = rangeOf(values);
    EXPECT_LT(range.low, range.high);
    EXPECT_TRUE(std::isfinite(range.high - range.low));
    for (const Tick& tick : valueTicks(range, 5)) {
      EXPECT_GE(tick.at, range.low);
      EXPECT_LE(tick.at, range.high);
    }
  }
  EXPECT_EQ(rangeOf(std::vector<double>{kNan, 1.0, kInfinity, 2.0}).high, 2.05);
}

TEST(ChartValueTicks, AreRound) {
  EXPECT_EQ(labels(valueTicks({9.0, 31.0}, 5)), (std::vector<std::string>{"10", "15", "20", "25", "30"}));
  EXPECT_EQ(labels(valueTicks({-0.3, 0.9}, 6)),
            (std::vector<std::string>{"-0.2", "0.0", "0.2", "0.4", "0.6", "0.8"}));
  EXPECT_EQ(labels(valueTicks({0.0, 1000.0}, 4)), (std::vector<std::string>{"0", "500", "1000"}));
  EXPECT_EQ(labels(valueTicks({1.0011, 1.0042}, 3)), (std::vector<std::string>{"1.002", "1.004"}));
}

TEST(ChartDateTicks, StandWhereTheCalendarTurns) {
  EXPECT_EQ(labels(dateTicks(everyDay(5), 10)),
            (std::vector<std::string>{"2024-01-02", "2024-01-03", "2024-01-04", "2024-01-05"}));
  EXPECT_EQ(labels(dateTicks(everyDay(130), 10)),
            (std::vector<std::string>{"2024-02", "2024-03", "2024-04", "2024-05"}));
  EXPECT_EQ(labels(dateTicks(everyDay(1500), 6)), (std::vector<std::string>{"2025", "2026", "2027", "2028"}));
  const std::vector<Tick> february = dateTicks(everyDay(130), 10);
  EXPECT_EQ(february[0].at, 31.0);  // bar 0 is the first of January
  EXPECT_EQ(february[1].at, 60.0);  // a leap year
  EXPECT_EQ(labels(dateTicks(everyDay(5, 1.0 / 24), 10)),
            (std::vector<std::string>{"2024-01-01 01:00", "2024-01-01 02:00", "2024-01-01 03:00",
                                      "2024-01-01 04:00"}));
}

TEST(ChartDateTicks, AreEvenWhereTheCalendarHardlyTurns) {
  EXPECT_EQ(labels(dateTicks(everyDay(3, 0.25), 10)),
            (std::vector<std::string>{"2024-01-01 00:00", "2024-01-01 06:00", "2024-01-01 12:00"}));
  EXPECT_EQ(labels(dateTicks(everyDay(2), 10)), (std::vector<std::string>{"2024-01-01", "2024-01-02"}));
  EXPECT_EQ(dateTicks(everyDay(1), 10).size(), 1u);
  EXPECT_EQ(dateTicks({}, 10).size(), 0u);
  EXPECT_EQ(dateTicks(std::vector<double>{kNan, 0.0, -kInfinity}, 10).size(), 3u);
}

TEST(ChartDateTicks, AreNeverMoreThanWanted) {
  for (std::size_t days = 1; days < 40'000; days = days * 3 / 2 + 1) {
    for (const double step : {1.0 / 24, 1.0, 7.0}) {
      if (static_cast<double>(days) * step > 27'000) continue;
      EXPECT_LE(dateTicks(everyDay(days, step), 10).size(), 10u) << days << ' ' << step;
    }
  }
}

TEST(ChartThinning, AShortLineStaysAsItIs) {
  const std::vector<Point> line = {{0, 1}, {1, 5}, {2, 3}, {3, 3}};
  EXPECT_EQ(thinnedOut(line, 4), line);
  EXPECT_EQ(thinnedOut({}, 4), std::vector<Point>{});
}

TEST(ChartThinning, KeepsTheLowestAndTheHighestOfEachStretchInOrder) {
  // Two stretches of four between the ends: 4 9 1 5 and 2 3 8 7.
  const std::vector<Point> line = {{0, 6}, {1, 4}, {2, 9}, {3, 1}, {4, 5},
                                   {5, 2}, {6, 3}, {7, 8}, {8, 7}, {9, 6}};
  EXPECT_EQ(thinnedOut(line, 6), (std::vector<Point>{{0, 6}, {2, 9}, {3, 1}, {5, 2}, {7, 8}, {9, 6}}));
}

TEST(ChartThinning, KeepsTheExtremesAndTheSizeOfALongLine) {
  std::vector<Point> line;
  for (int i = 0; i < 1'000'000; ++i) line.push_back({double(i), std::sin(i * 0.01)});
  line[123'456].y = 17.0;
  line[654'321].y = -19.0;
  const std::vector<Point> thin = thinnedOut(line, 3000);
  EXPECT_LE(thin.size(), 3000u);
  EXPECT_GT(thin.size(), 2000u);
  EXPECT_NE(std::find(thin.begin(), thin.end(), line[123'456]), thin.end());
  EXPECT_NE(std::find(thin.begin(), thin.end(), line[654'321]), thin.end());
  for (std::size_t i = 1; i < thin.size(); ++i) ASSERT_LT(thin[i - 1].x, thin[i].x);
}

}  // namespace
}  // namespace brindlewort::tool
