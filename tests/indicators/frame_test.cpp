#include "indicators/frame.hpp"

#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::kNaN;
using testing::kNull;
using testing::Rows;

TEST(FirstValueIndex, CountsTheNullsAtTheHead) {
  EXPECT_EQ(0, firstValueIndex(Rows{}));
  EXPECT_EQ(0, firstValueIndex(Rows{5, kNull, 6}));
  EXPECT_EQ(2, firstValueIndex(Rows{kNull, kNull, 5, kNull}));
  EXPECT_EQ(3, firstValueIndex(Rows{kNull, kNull, kNull}));
}

TEST(FirstValueIndex, ANullBehindAValueDoesNotCount) {
  EXPECT_EQ(1, firstValueIndex(Rows{kNull, 0.0, kNull, 5}));
  EXPECT_EQ(1, firstValueIndex(Rows{kNull, -2.0, kNull, kNull}));
  EXPECT_EQ(0, firstValueIndex(Rows{0.0, kNull, kNull}));
  EXPECT_EQ(0, firstValueIndex(Rows{-0.5, kNull, 0.0, kNull}));
}

TEST(FirstValueIndex, AFirstValueOfExactlyMinusOneGoesOnCounting) {
  EXPECT_EQ(2, firstValueIndex(Rows{kNull, -1.0, kNull, 5, kNull}));
  EXPECT_EQ(3, firstValueIndex(Rows{-1.0, kNull, kNull, kNull}));
  EXPECT_EQ(1, firstValueIndex(Rows{kNull, -1.0000001, kNull}));
}

TEST(FirstValueIndex, OnlyTheFirstValueMayBeMinusOne) {
  EXPECT_EQ(0, firstValueIndex(Rows{-3.0, -1.0, kNull, kNull}));
  EXPECT_EQ(0, firstValueIndex(Rows{0.0, -1.0, kNull}));
  EXPECT_EQ(1, firstValueIndex(Rows{-1.0, -5.0, kNull}));
}

TEST(FirstValueIndex, ANonNumberIsAValueThatIsNotPositive) {
  EXPECT_EQ(1, firstValueIndex(Rows{kNull, kNaN, kNull, 5}));
}

TEST(FirstValueIndex, StopsAtTheFirstPositiveValue) {
  EXPECT_EQ(1, firstValueIndex(Rows{kNull, 1e-300, -1.0, kNull}));
  EXPECT_EQ(1, firstValueIndex(Rows{kNull, testing::kInf, kNull}));
}

TEST(MaTypeName, HasAWordForEachTypeAndSimpleForTheRest) {
  const std::string_view expected[] = {"SIMPLE",     "EXPONENTIAL", "TIME_SERIES", "VARIABLE",
                                       "TRIANGULAR", "WEIGHTED",    "VIDYA",       "WWS"};
  for (Count type = 1; type <= 8; ++type) EXPECT_EQ(expected[type - 1], maTypeName(type));
  for (Count type : {Count{0}, Count{-1}, Count{9}, Count{10}, Count{INT32_MIN}, Count{INT32_MAX}}) {
    EXPECT_EQ("SIMPLE", maTypeName(type));
  }
}

TEST(Ranges, BatchLeavesOutAPeriodOfAllRows) {
  EXPECT_FALSE(batchRange(0, 5));
  EXPECT_TRUE(batchRange(1, 5));
  EXPECT_TRUE(batchRange(4, 5));
  EXPECT_FALSE(batchRange(5, 5));
  EXPECT_FALSE(batchRange(1, 1));
  EXPECT_FALSE(batchRange(0, 0));
}

TEST(Ranges, ResumableAllowsAPeriodOfAllRows) {
  EXPECT_FALSE(resumableRange(0, 5));
  EXPECT_TRUE(resumableRange(1, 5));
  EXPECT_TRUE(resumableRange(5, 5));
  EXPECT_FALSE(resumableRange(6, 5));
  EXPECT_FALSE(resumableRange(1, 0));
}

class StartRow : public ::testing::Test {
 protected:
  Count start(std::int32_t slot, Count first) { return startRow({Out(rows_), &(slot_ = slot)}, first); }
  Rows rows_ = Rows(10, kNull);
  std::int32_t slot_ = -1;
};

TEST_F(StartRow, AFirstCallStartsAtTheFirstRow) {
  EXPECT_EQ(0, start(-1, 0));
  EXPECT_EQ(7, start(-1, 7));
}

TEST_F(StartRow, AResumedCallStartsAtTheLastRowComputed) {
  EXPECT_EQ(9, start(10, 3));
  EXPECT_EQ(3, start(4, 3));
}

TEST_F(StartRow, AResumedCallNeverStartsBeforeTheFirstRow) {
  EXPECT_EQ(8, start(4, 8));  // the period has grown since
  EXPECT_EQ(0, start(0, 0));
}

TEST(Finish, SetsTheSlotToTheRowCount) {
  Rows rows(4, kNull);
  std::int32_t slot = -1;
  EXPECT_EQ(kDone, finish({rows, &slot}, 4));
  EXPECT_EQ(4, slot);
}

TEST(RowsOf, AreThoseOfTheInputCappedByTheOutput) {
  const Rows in(6, 1.0);
  Rows out(4, kNull);
  std::int32_t slot = -1;
  EXPECT_EQ(4, rowsOf(Source{in, "IN"}, Target{out, &slot}));
  EXPECT_EQ(2, rowsOf(Source{View(in).first(2), "IN"}, Target{out, &slot}));
  EXPECT_EQ(0, rowsOf(Source{{}, "IN"}, Target{out, &slot}));
}

}  // namespace
}  // namespace brindlewort
