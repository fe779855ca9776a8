// Hosts that have set a locale, or change their time zone.

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

#include "support/all_components.hpp"
#include "support/time_zone.hpp"

namespace brindlewort {
namespace {

using testing::AllComponents;
using testing::ScopedTimeZone;

std::string answers() {
  return AllComponents(testing::wanderingBars(40)).answers();
}

/// Sets a locale in which 1.5 is written "1,5": one that was made with the tests, or one of the system. False
/// where there is none.
bool setLocaleWithComma() {
#ifdef BRINDLEWORT_TEST_LOCALES
  setenv("LOCPATH", BRINDLEWORT_TEST_LOCALES, 1);
#endif
  for (const char* name : {"comma", "de_DE.UTF-8", "de-DE", "German"}) {
    if (std::setlocale(LC_ALL, name)) return true;
  }
  return false;
}

TEST(HostLocale, TheLocaleOfTheCLibraryChangesNoResult) {
  const std::string plain = answers();
  if (!setLocaleWithComma())
    GTEST_SKIP() << "this system has no locale with a decimal comma, and no localedef";
  char number[8];
  std::snprintf(number, sizeof number, "%.1f", 1.5);
  const std::string said = answers();
  std::setlocale(LC_ALL, "C");
  EXPECT_STREQ(number, "1,5");
  EXPECT_TRUE(said == plain);
}

TEST(HostLocale, TheGlobalLocaleOfCppChangesNoResult) {
  struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::string plain = answers();
  const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
  std::ostringstream number;
  number << 12345.5;
  const std::string said = answers();
  std::locale::global(before);
  EXPECT_EQ(number.str(), "12.345,5");
  EXPECT_TRUE(said == plain);
}

// ---- Time zones

TEST(HostTimeZone, ResultsWithoutDatesInThemDoNotDependOnIt) {
  std::vector<std::string> said;
  for (const char* zone :
       {testing::kUniversalZone, testing::kSummerTimeZone, testing::kEasternSummerTimeZone}) {
    const ScopedTimeZone scope(zone);
    said.push_back(answers());
  }
  EXPECT_TRUE(said[1] == said[0]);
  EXPECT_TRUE(said[2] == said[0]);
}

/// Hours since the bar before, of daily bars. Where summer time begins, on 14 March 2004 in this zone, a day
/// has 23.
const std::string kHours = "SET H = DATEDIFF(0, 1, 3)\r\nH > 0";
constexpr std::size_t kBars = 100;
constexpr std::size_t kBarBehindShortDay = 79;  // the first is of 27 December 2003

std::vector<double> hoursOfAllBars() {
  CScriptOutput output;
  output.AppendRecords(testing::wanderingBars(kBars));
  if (!output.GetScriptOutput(kHours, 0, "H")) return {};
  const auto rows = output.GetSeries("H");
  return rows ? std::vector<double>(rows->begin(), rows->end()) : std::vector<double>();
}

/// The same bar by bar; from the `change`-th on in universal time.
std::vector<double> livingHours(std::size_t change) {
  const std::vector<Bar> bars = testing::wanderingBars(kBars);
  CScriptOutput output;
  output.InitialiseTransientStore(250);
  output.ProcessScripData(kHours);
  const bw_series_list* list = nullptr;
  const auto add = [&](std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < to; ++i) {
      output.AppendRecord_New(bars[i]);
      list = output.GetScriptOutput_PTR(kHours, 0, "H");
    }
  };
  {
    const ScopedTimeZone zone(testing::kSummerTimeZone);
    add(0, change);
  }
  const ScopedTimeZone zone(testing::kUniversalZone);
  add(change, kBars);
  if (!list || list->count != 1) return {};
  return {list->items[0].values, list->items[0].values + list->items[0].count};
}

TEST(HostTimeZone, DateDifferencesCountInTheZoneOfTheCall) {
  for (const bool summerTime : {false, true, false}) {
    const ScopedTimeZone zone(summerTime ? testing::kSummerTimeZone : testing::kUniversalZone);
    const std::vector<double> hours = hoursOfAllBars();
    ASSERT_EQ(hours.size(), kBars + 1);  // row 0 is the filler bar
    EXPECT_EQ(hours[kBarBehindShortDay + 1], summerTime ? 23 : 24);
    EXPECT_EQ(hours[kBarBehindShortDay], 24);
  }
}

TEST(HostTimeZone, RowsThatAreComputedStay) {
  const std::vector<double> changedLater = livingHours(kBarBehindShortDay + 5);
  ASSERT_EQ(changedLater.size(), kBars);
  EXPECT_EQ(changedLater[kBarBehindShortDay], 23);
  EXPECT_EQ(changedLater[kBarBehindShortDay + 10], 24);
  const std::vector<double> changedBefore = livingHours(kBarBehindShortDay - 5);
  ASSERT_EQ(changedBefore.size(), kBars);
  EXPECT_EQ(changedBefore[kBarBehindShortDay], 24);
}

}  // namespace
}  // namespace brindlewort
