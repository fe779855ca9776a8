#include "functions/series_operations.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "support/series_checks.hpp"
#include "support/time_zone.hpp"

namespace brindlewort {
namespace {

using testing::kNull;
using testing::Rows;
namespace Tf = CTechnicalFunctions;

/// An output that starts all null, as the engine makes it.
struct Output {
  explicit Output(std::size_t count) : rows(count, kNull) {}
  Target target() { return {rows, &slot}; }
  /// A further bar has come.
  void grow() { rows.push_back(kNull); }
  Rows rows;
  std::int32_t slot = -1;
};

Operand series(const Rows& rows) {
  return {rows, rows.empty() ? 0.0 : rows.back()};
}
Operand number(double x) {
  return {{}, x};
}

// ---- CROSSOVER ----

TEST(CrossOver, IsOneWhereTheFirstRisesAboveTheSecond) {
  const Rows a = {1, 2, 3, 2, 4}, b = {2, 2, 2, 2, 2};
  Output out(5);
  EXPECT_EQ(Tf::CrossOver(series(a), series(b), out.target()), kDone);
  EXPECT_EQ(out.rows, (Rows{kNull, 0, 1, 0, 1}));
  EXPECT_EQ(out.slot, 5);
}

TEST(CrossOver, StartsOneBehindTheLongerHead) {
  const Rows a = {kNull, kNull, 1, 3}, b = {kNull, 2, 2, 2};
  Output out(4);
  Tf::CrossOver(series(a), series(b), out.target());
  EXPECT_EQ(out.rows, (Rows{kNull, kNull, kNull, 1}));
}

TEST(CrossOver, StayingEqualAtFourDecimalsIsNoCrossing) {
  const Rows a = {1.00001, 1.00002, 1.0001}, b = {1.00001, 1.00001, 1.00001};
  Output out(3);
  Tf::CrossOver(series(a), series(b), out.target());
  EXPECT_EQ(out.rows, (Rows{kNull, 0, 1}));
}

TEST(CrossOver, ZerosAndNullsBehindTheHeadAreNumbers) {
  const Rows a = {0, 1, kNull, 1}, b = {0, 0, 0, 0};
  Output out(4);
  Tf::CrossOver(series(a), series(b), out.target());
  EXPECT_EQ(out.rows, (Rows{kNull, 1, 0, 1}));
}

TEST(CrossOver, ANumberStandsInAllRows) {
  const Rows a = {1, 3};
  Output out(2);
  Tf::CrossOver(series(a), number(2), out.target());
  EXPECT_EQ(out.rows, (Rows{kNull, 1}));
  Output none(2);
  EXPECT_EQ(Tf::CrossOver(number(1), number(2), none.target()), kNothingDone);
  EXPECT_EQ(none.rows, (Rows{kNull, kNull}));
  EXPECT_EQ(none.slot, -1);
}

TEST(CrossOver, ResumesAtTheLastRow) {
  Rows a = {1, 1, 1}, b = {2, 2, 2};
  Output out(3);
  Tf::CrossOver(series(a), series(b), out.target());
  a = {9, 1, 3, 1};  // row 0 is not looked at again
  b.push_back(2);
  out.grow();
  Tf::CrossOver(series(a), series(b), out.target());
  EXPECT_EQ(out.rows, (Rows{kNull, 0, 1, 0}));
}

// ---- REF ----

TEST(Reference, LooksBackAFixedNumberOfRows) {
  Output out(4);
  EXPECT_EQ(Tf::Reference(Rows{5, 6, 7, 8}, {2, {}}, out.target()), kDone);
  EXPECT_EQ(out.rows, (Rows{kNull, kNull, 5, 6}));
}

TEST(Reference, ZeroRowsBackIsTheSource) {
  Output out(3);
  Tf::Reference(Rows{5, kNull, 7}, {0, {}}, out.target());
  EXPECT_EQ(out.rows, (Rows{5, kNull, 7}));
}

TEST(Reference, AsManyRowsBackAsThereAreHasNoRow) {
  Output out(3);
  EXPECT_EQ(Tf::Reference(Rows{5, 6, 7}, {3, {}}, out.target()), kNothingDone);
  EXPECT_EQ(out.slot, -1);
}

TEST(Reference, EachRowsOwnOffsetKeepsTheFraction) {
  const Rows offsets = {0, 1.9, 5, 1};  // 5 reaches before the first row
  Output out(4);
  Tf::Reference(Rows{1.25, 2.5, 3.75, 4.5}, {1, offsets}, out.target());
  EXPECT_EQ(out.rows, (Rows{kNull, 1.25, kNull, 3.75}));
}

TEST(Reference, AnOffsetTowardLaterRowsStopsAtTheEnd) {
  const Rows offsets = {-1, -1, 0};
  Output out(3);
  Tf::Reference(Rows{1, 2, 3}, {0, offsets}, out.target());
  EXPECT_EQ(out.rows, (Rows{2, 3, 3}));
  Output end(2);
  Tf::Reference(Rows{1, 2}, {0, Rows{0, -1}}, end.target());
  EXPECT_EQ(end.rows, (Rows{1, kNull}));
}

TEST(Reference, ASourceWithoutRowsGivesNothing) {
  Output out(3);
  EXPECT_EQ(Tf::Reference({}, {0, {}}, out.target()), kNothingDone);
}

// ---- IF ----

TEST(IfThenElse, ANullConditionSelectsTheTruePart) {
  const Rows condition = {1, 0, kNull, 0.5}, yes = {1, 2, 3, 4}, no = {5, 6, 7, 8};
  Output out(4);
  Tf::IfThenElse(series(condition), series(yes), series(no), out.target());
  EXPECT_EQ(out.rows, (Rows{1, 6, 3, 4}));
}

TEST(IfThenElse, NumbersStandInAllRows) {
  const Rows condition = {1, 0};
  Output out(2);
  Tf::IfThenElse(series(condition), number(7), number(9), out.target());
  EXPECT_EQ(out.rows, (Rows{7, 9}));
  Output all(2);
  Tf::IfThenElse(number(0), number(7), number(9), all.target());
  EXPECT_EQ(all.rows, (Rows{9, 9}));
}

// ---- LASTIF, REPEATIF, COUNTIF, SUMIF ----

TEST(RunCount, CountsTheRowsSinceTheConditionHeld) {
  Output out(5);
  Tf::RunCount(Rows{0, 0, 1, 0, 0}, false, out.target());
  EXPECT_EQ(out.rows, (Rows{1, 2, 0, 1, 2}));  // the first two rows depend on the data
}

TEST(RunCount, CountsTheRowsForWhichTheConditionHasHeld) {
  Output out(5);
  Tf::RunCount(Rows{1, kNull, 1, 0, 1}, true, out.target());
  EXPECT_EQ(out.rows, (Rows{1, 2, 3, 0, 1}));  // a null behind the head is true
}

TEST(RunCount, StartsBehindTheHead) {
  Output out(4);
  Tf::RunCount(Rows{kNull, kNull, 0, 0}, false, out.target());
  EXPECT_EQ(out.rows, (Rows{kNull, kNull, 1, 2}));
}

TEST(RunCount, ResumesFromTheRowBeforeTheStart) {
  Output out(3);
  Tf::RunCount(Rows{1, 1, 1}, true, out.target());
  out.grow();
  Tf::RunCount(Rows{0, 0, 1, 1}, true, out.target());  // earlier rows are not looked at again
  EXPECT_EQ(out.rows, (Rows{1, 2, 3, 4}));
  Output edited(3);
  Tf::RunCount(Rows{1, 1, 1}, true, edited.target());
  Tf::RunCount(Rows{1, 1, 0}, true, edited.target());
  EXPECT_EQ(edited.rows, (Rows{1, 2, 0}));
}

TEST(CountIf, DoesNotCountTheHead) {
  Output out(5);
  Tf::CountIf(Rows{kNull, 1, 0, kNull, 2}, out.target());
  EXPECT_EQ(out.rows, (Rows{kNull, 1, 1, 2, 3}));
}

TEST(CountIf, AnEditOfTheLastRowDoesNotCountTwice) {
  Output out(3);
  Tf::CountIf(Rows{1, 1, 1}, out.target());
  Tf::CountIf(Rows{1, 1, 1}, out.target());
  EXPECT_EQ(out.rows, (Rows{1, 2, 3}));
  Tf::CountIf(Rows{1, 1, 0}, out.target());
  EXPECT_EQ(out.rows, (Rows{1, 2, 2}));
}

TEST(CountIf, AnAllNullConditionGivesNothing) {
  Output out(2);
  EXPECT_EQ(Tf::CountIf(Rows{kNull, kNull}, out.target()), kNothingDone);
  EXPECT_EQ(out.slot, -1);
}

TEST(SumIf, StartsBehindTheHeadOfTheVector) {
  Output out(4);
  Tf::SumIf(Rows{kNull, 1, 0, 1}, Rows{kNull, 10, 20, 30}, out.target());
  EXPECT_EQ(out.rows, (Rows{kNull, 10, 10, 40}));
  Output early(3);  // the head of the condition counts as true
  Tf::SumIf(Rows{kNull, kNull, 0}, Rows{1, 2, 4}, early.target());
  EXPECT_EQ(early.rows, (Rows{1, 3, 3}));
}

TEST(SumIf, ResumesFromTheLastButOneRow) {
  Output out(2);
  Tf::SumIf(Rows{1, 1}, Rows{1, 2}, out.target());
  out.grow();
  Tf::SumIf(Rows{1, 1, 1}, Rows{100, 5, 7}, out.target());
  EXPECT_EQ(out.rows, (Rows{1, 6, 13}));
}

// ---- LOOP ----

Rows loop(const Operand& one, const Operand& two, Count first, Count second, std::int32_t op,
          std::size_t rows) {
  Output out(rows);
  Tf::LoopSeries(one, two, first, second, op, out.target());
  return out.rows;
}

TEST(LoopSeries, EachRowSeesTheRowsBefore) {
  const Rows one = {1, 2, 3, 4}, two = {10, 20, 30, 40};
  EXPECT_EQ(loop(series(one), series(two), 1, 0, 1, 4), (Rows{1, 21, 51, 91}));
  EXPECT_EQ(loop(series(one), series(two), 1, 0, 2, 4), (Rows{1, -19, -49, -89}));
  EXPECT_EQ(loop(series(one), series(two), 1, 1, 3, 4), (Rows{1, 10, 200, 6000}));
}

TEST(LoopSeries, AnOffsetOfZeroTakesTheCopyOfTheFirst) {
  const Rows one = {1, 2, 3}, two = {10, 20, 30};
  EXPECT_EQ(loop(series(one), series(two), 0, 0, 1, 3), (Rows{11, 22, 33}));
}

TEST(LoopSeries, ADivisorOfZeroOrNullGivesNull) {
  const Rows one = {8, 8, 8}, two = {2, 0, kNull};
  EXPECT_EQ(loop(series(one), series(two), 0, 0, 4, 3), (Rows{4, kNull, kNull}));
}

TEST(LoopSeries, ANullOfTheSecondGivesNullForEachOperator) {
  const Rows one = {8, 8, 8}, two = {2, kNull, 2};
  EXPECT_EQ(loop(series(one), series(two), 1, 1, 1, 3), (Rows{8, 10, kNull}));
  EXPECT_EQ(loop(series(one), series(two), 1, 1, 2, 3), (Rows{8, 6, kNull}));
  EXPECT_EQ(loop(series(one), series(two), 1, 1, 3, 3), (Rows{8, 16, kNull}));
}

TEST(LoopSeries, AnotherOperatorLeavesTheCopy) {
  const Rows one = {1, 2, 3}, two = {10, 20, 30};
  for (std::int32_t op : {0, 5, -1, 1000}) EXPECT_EQ(loop(series(one), series(two), 1, 1, op, 3), one);
}

TEST(LoopSeries, NumbersStandInAllRows) {
  const Rows two = {1, 1, 1};
  EXPECT_EQ(loop(number(5), series(two), 1, 0, 1, 3), (Rows{5, 6, 7}));
  const Rows one = {1, 2, 3};
  EXPECT_EQ(loop(series(one), number(2), 0, 0, 3, 3), (Rows{2, 4, 6}));
}

TEST(LoopSeries, StartsBehindTheLongerHead) {
  const Rows one = {kNull, 2, 3}, two = {kNull, kNull, 30};
  EXPECT_EQ(loop(series(one), series(two), 0, 0, 1, 3), (Rows{kNull, kNull, 33}));
}

// ---- mathematics and rounding ----

double half(double x) {
  return x / 2.0;
}

TEST(MathFunction, NullsStay) {
  const Rows source = {kNull, 4, kNull, 6};
  Output out(4);
  Tf::MathFunction(series(source), half, out.target());
  EXPECT_EQ(out.rows, (Rows{kNull, 2, kNull, 3}));
}

TEST(MathFunction, ANumberGivesAllRows) {
  Output out(3);
  Tf::MathFunction(number(4), half, out.target());
  EXPECT_EQ(out.rows, (Rows{2, 2, 2}));
}

TEST(RandomSeries, DrawsBetweenZeroAndTheLastValue) {
  const Rows source = {1000, kNull, 5};
  Output out(3);
  Tf::RandomSeries(series(source), 7, out.target());
  EXPECT_GE(out.rows[0], 0.0);
  EXPECT_LE(out.rows[0], 5.0);
  EXPECT_EQ(out.rows[1], kNull);
  Output same(3);
  Tf::RandomSeries(series(source), 7, same.target());
  EXPECT_EQ(out.rows, same.rows);
  Output zero(2);
  Tf::RandomSeries(number(0), 7, zero.target());
  EXPECT_EQ(zero.rows, (Rows{0, 0}));
}

TEST(RoundSeries, RoundsEachRowThatIsNoNull) {
  const Rows source = {kNull, 2.345, 2.34499, kNull, 0.00001};
  Output out(5);
  Tf::RoundSeries(series(source), {RoundMode::kNearest, false, 2, 0.0}, out.target());
  EXPECT_EQ(out.rows[0], kNull);
  EXPECT_DOUBLE_EQ(out.rows[1], 2.35 + 1e-10);
  EXPECT_DOUBLE_EQ(out.rows[2], 2.34 + 1e-10);
  EXPECT_EQ(out.rows[3], kNull);
  EXPECT_EQ(out.rows[4], 0.0);
}

// ---- SUM, AVERAGE, MAX, MIN ----

TEST(SumSeries, TheHeadTakesTheFirstTotal) {
  const Rows source = {1, 2, 4, 8};
  Output out(4);
  bool headWritten = false;
  Tf::SumSeries(source, 3, out.target(), &headWritten);
  EXPECT_TRUE(headWritten);
  EXPECT_EQ(out.rows, (Rows{7, 7, 7, 14}));
}

TEST(SumSeries, RowsBetweenTheFilledHeadAndTheFirstTotalStayNull) {
  const Rows source = {kNull, kNull, 1, 2, 3};
  Output out(5);
  bool headWritten = false;
  Tf::SumSeries(source, 2, out.target(), &headWritten);
  EXPECT_EQ(out.rows, (Rows{3, 3, kNull, 3, 5}));
}

TEST(SumSeries, ANullBehindTheHeadIsANumber) {
  Output out(3);
  bool headWritten = false;
  Tf::SumSeries(Rows{1, kNull, 2}, 2, out.target(), &headWritten);
  EXPECT_EQ(out.rows, (Rows{1 + kNull, 1 + kNull, kNull + 2}));
}

TEST(SumSeries, TheHeadIsFilledAgainWheneverItsRowIsComputed) {
  Output out(2);
  bool headWritten = false;
  Tf::SumSeries(Rows{1, 2}, 2, out.target(), &headWritten);
  EXPECT_EQ(out.rows, (Rows{3, 3}));
  Tf::SumSeries(Rows{1, 5}, 2, out.target(), &headWritten);
  EXPECT_TRUE(headWritten);
  EXPECT_EQ(out.rows, (Rows{6, 6}));
  out.grow();
  Tf::SumSeries(Rows{1, 7, 9}, 2, out.target(), &headWritten);
  EXPECT_TRUE(headWritten);  // row 1 was the last one
  EXPECT_EQ(out.rows, (Rows{8, 8, 16}));
  out.grow();
  Tf::SumSeries(Rows{100, 7, 9, 1}, 2, out.target(), &headWritten);
  EXPECT_FALSE(headWritten);
  EXPECT_EQ(out.rows, (Rows{8, 8, 16, 10}));
}

TEST(SumSeries, APeriodAboveTheRowsGivesNothing) {
  Output out(2);
  bool headWritten = true;
  EXPECT_EQ(Tf::SumSeries(Rows{1, 2}, 3, out.target(), &headWritten), kNothingDone);
  EXPECT_FALSE(headWritten);
  EXPECT_EQ(out.rows, (Rows{kNull, kNull}));
}

TEST(AverageSeries, DividesByThePeriod) {
  Output out(4);
  bool headWritten = false;
  Tf::AverageSeries(Rows{1, 2, 6, 10}, 3, out.target(), &headWritten);
  EXPECT_EQ(out.rows, (Rows{3, 3, 3, 6}));
}

Rows extreme(const Rows& source, Count p, bool greatest) {
  Output out(source.size());
  Tf::WindowExtreme(source, p, greatest, out.target());
  return out.rows;
}

TEST(WindowExtreme, TheHeadIsNotFilled) {
  EXPECT_EQ(extreme({3, 1, 2, 5}, 2, true), (Rows{kNull, 3, 2, 5}));
  EXPECT_EQ(extreme({3, 1, 2, 5}, 2, false), (Rows{kNull, 1, 1, 2}));
}

TEST(WindowExtreme, PassesOverNullsButNotOverTheNewestRow) {
  EXPECT_EQ(extreme({3, kNull, 1}, 2, true), (Rows{kNull, 3, 1}));
  EXPECT_EQ(extreme({3, kNull, 1}, 2, false), (Rows{kNull, kNull, 1}));
}

TEST(WindowExtreme, OfRowsEqualAtFourDecimalsTheNewestStands) {
  EXPECT_EQ(extreme({1.00002, 1.00001}, 2, true), (Rows{kNull, 1.00001}));
  EXPECT_EQ(extreme({1.00001, 1.00002}, 2, false), (Rows{kNull, 1.00002}));
  // Of equal rows that the newest is not among, the oldest.
  EXPECT_EQ(extreme({2.00001, 2.00002, 1}, 3, true), (Rows{kNull, kNull, 2.00001}));
}

// ---- MAXOF, MINOF ----

TEST(ExtremeOf, StartsBehindTheLaterHeadOfTheTwo) {
  const Rows one = {kNull, 1, 2}, two = {3, 0, 5};
  const Operand vectors[] = {series(one), series(two)};
  Output most(3), least(3);
  Tf::MaxOfSeries(vectors, most.target());
  Tf::MinOfSeries(vectors, least.target());
  EXPECT_EQ(most.rows, (Rows{kNull, 1, 5}));
  EXPECT_EQ(least.rows, (Rows{kNull, 0, 2}));
  EXPECT_EQ(most.slot, 3);
}

TEST(ExtremeOf, FurtherVectorsStartBehindTheirOwnHead) {
  const Rows one = {1, 1, 1}, two = {2, 2, 2}, three = {kNull, 9, 0};
  const Operand vectors[] = {series(one), series(two), series(three)};
  Output most(3), least(3);
  Tf::MaxOfSeries(vectors, most.target());
  Tf::MinOfSeries(vectors, least.target());
  EXPECT_EQ(most.rows, (Rows{2, 9, 2}));
  EXPECT_EQ(least.rows, (Rows{1, 1, 0}));
}

TEST(ExtremeOf, EqualValuesAreTheSecondVectors) {
  const Rows one = {1.00001, 5}, two = {1.00002, 5}, three = {1.00003, 5};
  const Operand vectors[] = {series(one), series(two), series(three)};
  Output most(2), least(2);
  Tf::MaxOfSeries(vectors, most.target());
  Tf::MinOfSeries(vectors, least.target());
  EXPECT_EQ(most.rows, two);
  EXPECT_EQ(least.rows, two);
}

TEST(ExtremeOf, EachPassResumesByTheSlotFromBeforeTheCall) {
  const Rows one = {1, 1, 1}, two = {2, 2, 2}, three = {3, 3, 3};
  const Operand first[] = {series(one), series(two), series(three)};
  Output out(3);
  Tf::MaxOfSeries(first, out.target());
  const Rows later1 = {9, 9, 1, 1}, later2 = {9, 9, 2, 2}, later3 = {9, 9, 4, 5};
  const Operand second[] = {series(later1), series(later2), series(later3)};
  out.grow();
  Tf::MaxOfSeries(second, out.target());
  EXPECT_EQ(out.rows, (Rows{3, 3, 4, 5}));
}

// ---- dates ----

constexpr double kDay = 2451544.5;  // 1 January 2000, midnight

TEST(DatePart, GivesAPartOfAnEarlierBarsDate) {
  const testing::ScopedTimeZone zone(testing::kUniversalZone);
  const Rows dates = {kDay, kDay + 1, kDay + 31.5};
  Output day(3), month(3), hour(3);
  Tf::DatePart(dates, {0, {}}, 4, day.target());
  Tf::DatePart(dates, {1, {}}, 4, month.target());
  Tf::DatePart(dates, {0, {}}, 3, hour.target());
  EXPECT_EQ(day.rows, (Rows{1, 2, 1}));
  EXPECT_EQ(month.rows, (Rows{kNull, 1, 2}));
  EXPECT_EQ(hour.rows, (Rows{0, 0, 12}));
}

TEST(DatePart, ResumesFromTheOffsetAtTheEarliest) {
  const testing::ScopedTimeZone zone(testing::kUniversalZone);
  Output out(2);
  Tf::DatePart(Rows{kDay, kDay + 1}, {0, {}}, 4, out.target());
  out.grow();
  out.grow();
  // The offset has grown to three rows meanwhile: the rows before are not written again.
  Tf::DatePart(Rows{kDay, kDay + 1, kDay + 2, kDay + 3}, {3, {}}, 4, out.target());
  EXPECT_EQ(out.rows, (Rows{1, 2, kNull, 1}));
}

TEST(DateDiff, IsCutTowardZero) {
  const Rows dates = {kDay, kDay + 1.75, kDay + 2};
  Output days(3), back(3), hours(3);
  Tf::DateDiff(dates, {0, {}}, {1, {}}, 4, days.target());
  Tf::DateDiff(dates, {1, {}}, {0, {}}, 4, back.target());
  Tf::DateDiff(dates, {0, {}}, {1, {}}, 3, hours.target());
  EXPECT_EQ(days.rows, (Rows{kNull, 1, 0}));
  EXPECT_EQ(back.rows, (Rows{kNull, -1, 0}));
  EXPECT_EQ(hours.rows, (Rows{kNull, 42, 6}));
}

TEST(DateDiff, FillerDatesGiveNull) {
  const Rows dates = {2444239.5, 2444240.5, kDay};
  Output out(3);
  Tf::DateDiff(dates, {0, {}}, {1, {}}, 4, out.target());
  EXPECT_EQ(out.rows, (Rows{kNull, kNull, kNull}));
}

TEST(DateDiff, EachRowsOwnOffset) {
  const Rows dates = {kDay, kDay + 1, kDay + 3}, offsets = {0, 1, 2};
  Output out(3);
  Tf::DateDiff(dates, {0, {}}, {2, offsets}, 4, out.target());
  EXPECT_EQ(out.rows, (Rows{0, 1, 3}));
}

}  // namespace
}  // namespace brindlewort
