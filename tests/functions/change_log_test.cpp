#include "functions/change_log.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

TEST(ChangeLog, KnowsNothingAtFirst) {
  EXPECT_EQ(ChangeLog().since(0), ChangeLog::kNone);
}

TEST(ChangeLog, NamesTheFirstRowThatChangedAfterAMoment) {
  ChangeLog log;
  log.note(3, 10);
  log.note(5, 20);
  EXPECT_EQ(log.since(2), 10u);
  EXPECT_EQ(log.since(4), 20u);
}

TEST(ChangeLog, AChangeOfTheMomentItselfIsNotAfterIt) {
  ChangeLog log;
  log.note(3, 10);
  EXPECT_EQ(log.since(3), ChangeLog::kNone);
}

TEST(ChangeLog, AnEarlierRowCoversTheChangesBefore) {
  ChangeLog log;
  log.note(3, 10);
  log.note(5, 4);
  EXPECT_EQ(log.since(2), 4u);
  EXPECT_EQ(log.since(4), 4u);
  EXPECT_EQ(log.since(5), ChangeLog::kNone);
}

TEST(ChangeLog, TheLastFourGrowingChangesAreExact) {
  ChangeLog log;
  for (std::uint64_t moment = 1; moment <= 4; ++moment) log.note(moment, 10 * moment);
  for (std::uint64_t moment = 0; moment < 4; ++moment) EXPECT_EQ(log.since(moment), 10 * (moment + 1));
}

TEST(ChangeLog, OlderChangesBecomeOneThatReachesAsFarBack) {
  ChangeLog log;
  for (std::uint64_t moment = 1; moment <= 5; ++moment) log.note(moment, 10 * moment);
  EXPECT_EQ(log.since(0), 10u);
  EXPECT_EQ(log.since(1), 10u);  // the exact answer is 20; an earlier row than needed is allowed
  EXPECT_EQ(log.since(2), 30u);
  EXPECT_EQ(log.since(4), 50u);
}

TEST(ChangeLog, NeverNamesALaterRowThanTheFirstThatChanged) {
  for (std::uint64_t seed = 1; seed <= 200; ++seed) {
    testing::Random random(seed);
    ChangeLog log;
    std::vector<std::size_t> rowAt;  // of the change at moment i + 1
    for (int change = 0; change < 40; ++change) {
      rowAt.push_back(static_cast<std::size_t>(random.below(30)));
      log.note(rowAt.size(), rowAt.back());
      for (std::size_t moment = 0; moment <= rowAt.size(); ++moment) {
        std::size_t exact = ChangeLog::kNone;
        for (std::size_t i = moment; i < rowAt.size(); ++i) exact = std::min(exact, rowAt[i]);
        ASSERT_LE(log.since(moment), exact) << "seed " << seed << ", after " << moment;
        ASSERT_EQ(log.since(moment) == ChangeLog::kNone, exact == ChangeLog::kNone);
        // What came with the last change is always exact.
        if (moment + 1 == rowAt.size()) {
          ASSERT_EQ(log.since(moment), exact);
        }
      }
    }
  }
}

}  // namespace
}  // namespace brindlewort
