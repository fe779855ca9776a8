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
#include "series/null_value.hpp"
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

}  // namespace
}  // namespace brindlewort::tool
