// A script over real bars: daily and hourly prices that stand beside the repository, or where
// BRINDLEWORT_TEST_DATA points. Skipped where there are none.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "bars_csv.hpp"
#include "series/julian_date.hpp"
#include "series/null_value.hpp"
#include "services/backtest/backtest.hpp"
#include "services/output/script_output.hpp"

namespace brindlewort::tool {
namespace {

constexpr const char* kCrossover =
    "SET A = SMA(CLOSE, 14)\r\nSET B = EMA(CLOSE, 26)\r\nA > B AND CLOSE > REF(CLOSE, 1)";

std::filesystem::path dataFolder() {
  if (const char* folder = std::getenv("BRINDLEWORT_TEST_DATA")) return folder;
  return std::filesystem::path(BRINDLEWORT_SOURCE_DIR) / ".." / "shared" / "data";
}

/// The component with the bars of a file, or nothing when the file is absent.
std::optional<CScriptOutput> componentOver(const std::string& file) {
  std::ifstream in(dataFolder() / file, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream text;
  text << in.rdbuf();
  CScriptOutput output;
  BarsCsvReader reader([&](const Bar& bar) {
    output.AppendRecord(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                        volumeToInt32(bar.Volume));
  });
  EXPECT_TRUE(reader.feed(text.str()) && reader.finish());
  return output;
}

/// A sum from the newest row to the oldest, as the simple average's first window is added.
double sumNewestFirst(std::vector<double> oldestFirst) {
  double sum = 0.0;
  for (auto x = oldestFirst.rbegin(); x != oldestFirst.rend(); ++x) sum += *x;
  return sum;
}

TEST(RealBars, DailyCrossoverPrintsALinePerBar) {
  auto output = componentOver("daily.csv");
  if (!output) GTEST_SKIP() << "no daily.csv in " << dataFolder();
  const auto text = output->GetScriptOutput(kCrossover, 0, "A,B");
  ASSERT_TRUE(text.has_value());
  EXPECT_EQ(std::count(text->begin(), text->end(), '\n'), 1 + 2148);
  EXPECT_TRUE(text->starts_with("Date,\"A\",\"B\"\r\n2004-08-19 00:00:00,-987654321,-987654321\r\n"));

  // Row i is bar i. The first average stands at row 15 and covers bars 2 to 15.
  const Series& a = *output->findSeries("A");
  EXPECT_EQ(a[14], NULL_VALUE);
  EXPECT_EQ(a[15], sumNewestFirst({108.31, 109.4, 104.87, 106, 107.91, 106.15, 102.01, 102.37, 100.25, 101.51,
                                   100.01, 101.58, 102.3, 102.31}) /
                       14);
  // The exponential average is seeded with the mean of bars 1 to 26; row 26 reads bar 27 with the weights
  // the other way round, and row 27 is the first of the recursion.
  double seed = 0.0;
  for (double close : {100.34, 108.31, 109.4,  104.87, 106.0,  107.91, 106.15, 102.01, 102.37,
                       100.25, 101.51, 100.01, 101.58, 102.3,  102.31, 105.33, 107.5,  111.49,
                       112.0,  113.97, 117.49, 119.36, 117.84, 118.38, 120.82, 119.83}) {
    seed += close;
  }
  seed /= 26;
  const double k = 2.0 / 27;
  const Series& b = *output->findSeries("B");
  EXPECT_EQ(b[25], NULL_VALUE);
  const double row26 = 118.26 * (1 - k) + seed * k;
  EXPECT_EQ(b[26], row26);
  EXPECT_EQ(b[27], row26 * (1 - k) + 118.26 * k);
}

TEST(RealBars, DailyCrossoverFiresWhereBothConditionsHold) {
  auto output = componentOver("daily.csv");
  if (!output) GTEST_SKIP() << "no daily.csv in " << dataFolder();
  // Without fillers the first bar is row-less, and bar n stands in row n - 2; the list begins at the
  // lookback, 54, and names row i - 1 by i + 1, which is the bar's number.
  const auto list = output->GetScriptOutput(kCrossover, -1, "");
  ASSERT_TRUE(list.has_value());
  const Series a = *output->findSeries("A"), b = *output->findSeries("B"),
               close = *output->findSeries("CLOSE");
  std::string expected;
  for (std::size_t row = 53; row < close.size(); ++row) {
    if (a[row] > b[row] && close[row] > close[row - 1]) expected += std::to_string(row + 2) + ",";
  }
  EXPECT_EQ(*list, expected);
  EXPECT_FALSE(expected.empty());
}

TEST(RealBars, HourlyCrossoverPrintsALinePerBar) {
  auto output = componentOver("hourly.csv");
  if (!output) GTEST_SKIP() << "no hourly.csv in " << dataFolder();
  const auto text = output->GetScriptOutput(kCrossover, 0, "A,B");
  ASSERT_TRUE(text.has_value());
  EXPECT_EQ(std::count(text->begin(), text->end(), '\n'), 1 + 5000);
  EXPECT_TRUE(text->starts_with("Date,\"A\",\"B\"\r\n2017-04-19 09:00:00,-987654321,-987654321\r\n"));
  EXPECT_EQ((*output->findSeries("A"))[15],
            sumNewestFirst({1.0726, 1.07192, 1.07202, 1.0705, 1.07128, 1.07064, 1.07102, 1.07122, 1.07202,
                            1.07162, 1.07114, 1.0711, 1.07154, 1.07149}) /
                14);
}

/// The strategy of the demo. Each entry and exit was looked up in the file by hand: an entry is the close of the day on
/// which the mean of 10 rises above that of 30; the stop stands 5 percent below it and follows the highest high.
TEST(RealBars, TheDemoStrategyTradesOverDailyBars) {
  std::ifstream in(dataFolder() / "daily.csv", std::ios::binary);
  if (!in) GTEST_SKIP() << "no daily.csv in " << dataFolder();
  std::ostringstream text;
  text << in.rdbuf();
  CBacktest backtest;
  BarsCsvReader reader([&](const Bar& bar) {
    backtest.AppendRecord(bar.JDate, bar.OpenPrice, bar.HighPrice, bar.LowPrice, bar.ClosePrice,
                          volumeToInt32(bar.Volume));
  });
  ASSERT_TRUE(reader.feed(text.str()) && reader.finish());
  const BacktestRun run = backtest.runBacktest({"CROSSOVER(SMA(CLOSE, 10), SMA(CLOSE, 30)) = TRUE", "",
                                                "CROSSOVER(SMA(CLOSE, 30), SMA(CLOSE, 10)) = TRUE", "", 0.0,
                                                "StopLoss=5;TrailingStop=1;ProfitTarget=0;NoActivity=0;"});
  EXPECT_EQ(run.buys, 33u);
  EXPECT_EQ(run.longExits, 33u);
  ASSERT_EQ(run.trades.size(), 2u * 33u);

  struct Expected {
    double entryDate, entryPrice, exitDate, exitPrice;
  };
  const Expected kTrades[] = {
      // 0.95 * 185.02 + (203.64 of 2005-01-03 - 185.02) = 194.389; the low of 2005-01-04 is 193.48.
      {ToJulianDate(2004, 12, 20, 0, 0, 0), 185.02, ToJulianDate(2005, 1, 4, 0, 0, 0), 194.389},
      // 0.95 * 196.03 + (201.60 of the day itself - 196.03) = 191.7985; its low is 189.46.
      {ToJulianDate(2005, 2, 7, 0, 0, 0), 196.03, ToJulianDate(2005, 2, 9, 0, 0, 0), 191.7985},
      // 0.95 * 193.76 + (195.10 of 2005-04-08 - 193.76) = 185.412; the low of 2005-04-15 is 184.66.
      {ToJulianDate(2005, 4, 7, 0, 0, 0), 193.76, ToJulianDate(2005, 4, 15, 0, 0, 0), 185.412},
  };
  for (std::size_t i = 0; i < std::size(kTrades); ++i) {
    const SignalRecord& entry = run.trades[2 * i];
    const SignalRecord& exit = run.trades[2 * i + 1];
    EXPECT_EQ(entry.JDate, kTrades[i].entryDate);
    EXPECT_EQ(entry.Price, kTrades[i].entryPrice);
    EXPECT_EQ(exit.JDate, kTrades[i].exitDate);
    EXPECT_NEAR(exit.Price, kTrades[i].exitPrice, 1e-9);
    EXPECT_EQ(exit.Signal, kTradeTrailingStop);
  }
}

}  // namespace
}  // namespace brindlewort::tool
