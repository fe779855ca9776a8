#include "series/bar.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::kInf;
using testing::kNaN;

Bar barOf(double date, double close) {
  Bar bar;
  bar.JDate = date;
  bar.ClosePrice = close;
  return bar;
}

/// Bars of these dates; the close is the row.
BarStore storeOf(const std::vector<double>& dates) {
  BarStore store;
  for (const double date : dates) store.AppendRecord(barOf(date, static_cast<double>(store.size())));
  return store;
}

TEST(Bar, IsOneBlockOfEightDoublesInTheOrderOfTheHost) {
  EXPECT_EQ(sizeof(Bar), 8 * sizeof(double));
  EXPECT_EQ(offsetof(Bar, JDate), 0 * sizeof(double));
  EXPECT_EQ(offsetof(Bar, OpenPrice), 1 * sizeof(double));
  EXPECT_EQ(offsetof(Bar, HighPrice), 2 * sizeof(double));
  EXPECT_EQ(offsetof(Bar, LowPrice), 3 * sizeof(double));
  EXPECT_EQ(offsetof(Bar, ClosePrice), 4 * sizeof(double));
  EXPECT_EQ(offsetof(Bar, Volume), 5 * sizeof(double));
  EXPECT_EQ(offsetof(Bar, dJDateOfLTT), 6 * sizeof(double));
  EXPECT_EQ(offsetof(Bar, dLastTradedPrice), 7 * sizeof(double));
}

TEST(BarStore, KeepsTheOrderOfTheHost) {
  const BarStore store = storeOf({30.0, 10.0, 20.0});
  ASSERT_EQ(store.RecordCount(), 3);
  EXPECT_EQ(store[0].JDate, 30.0);
  EXPECT_EQ(store[1].JDate, 10.0);
  EXPECT_EQ(store.back().JDate, 20.0);
}

TEST(BarStore, OfTwoBarsWithOneDateEverySearchTakesTheFirst) {
  BarStore store = storeOf({10.0, 20.0, 20.0, 30.0});
  EXPECT_EQ(store.RecordCount(), 4);
  EXPECT_EQ(store.findDate(20.0), 1);
  EXPECT_TRUE(store.EditRecord(barOf(20.0, 99.0)));
  EXPECT_EQ(store[1].ClosePrice, 99.0);
  EXPECT_EQ(store[2].ClosePrice, 2.0);
}

TEST(BarStore, DatesAreComparedExactly) {
  BarStore store = storeOf({2444239.5});
  EXPECT_EQ(store.findDate(std::nextafter(2444239.5, 0.0)), BarStore::kNotFound);
  EXPECT_EQ(store.findDate(2444239.5), 0);
  store.AppendRecord(barOf(kNaN, 1.0));
  EXPECT_EQ(store.findDate(kNaN), BarStore::kNotFound);
}

TEST(BarStore, EditRecordReplacesTheWholeBar) {
  BarStore store;
  Bar before = barOf(10.0, 1.0);
  before.dJDateOfLTT = 9.5;
  before.dLastTradedPrice = 1.0;
  store.AppendRecord(before);
  EXPECT_TRUE(store.EditRecord(barOf(10.0, 2.0)));
  EXPECT_EQ(store[0].ClosePrice, 2.0);
  EXPECT_EQ(store[0].dJDateOfLTT, 0.0);
  EXPECT_EQ(store[0].dLastTradedPrice, 0.0);
}

TEST(BarStore, EditRecordOfAnUnknownDateChangesNothing) {
  BarStore store = storeOf({10.0});
  EXPECT_FALSE(store.EditRecord(barOf(11.0, 5.0)));
  EXPECT_EQ(store.RecordCount(), 1);
  EXPECT_EQ(store[0].ClosePrice, 0.0);
}

TEST(BarStore, EditJDateMovesOnlyTheFirstDate) {
  BarStore store = storeOf({10.0, 20.0, 20.0, 30.0});
  EXPECT_TRUE(store.EditJDate(20.0, 40.0));
  EXPECT_EQ(store[1].JDate, 40.0);
  EXPECT_EQ(store[1].ClosePrice, 1.0);
  EXPECT_EQ(store[2].JDate, 20.0);
  EXPECT_EQ(store[3].JDate, 30.0);
}

TEST(BarStore, EditJDateOfAnUnknownDateChangesNothing) {
  BarStore store = storeOf({10.0, 20.0});
  EXPECT_FALSE(store.EditJDate(15.0, 40.0));
  EXPECT_EQ(store[0].JDate, 10.0);
  EXPECT_EQ(store[1].JDate, 20.0);
}

TEST(BarStore, NumbersCountFromOne) {
  const BarStore store = storeOf({10.0, 20.0, 30.0});
  EXPECT_EQ(store.byNumber(0), nullptr);
  EXPECT_EQ(store.byNumber(4), nullptr);
  EXPECT_EQ(store.byNumber(-1), nullptr);
  EXPECT_EQ(store.byNumber(std::numeric_limits<std::int32_t>::min()), nullptr);
  EXPECT_EQ(store.byNumber(std::numeric_limits<std::int32_t>::max()), nullptr);
  ASSERT_NE(store.byNumber(1), nullptr);
  EXPECT_EQ(store.byNumber(1)->JDate, 10.0);
  EXPECT_EQ(store.byNumber(3), &store.back());
  EXPECT_EQ(BarStore().byNumber(1), nullptr);
}

TEST(BarStore, LastRowBeforeADate) {
  const BarStore store = storeOf({10.0, 20.0, 30.0});
  EXPECT_EQ(store.lastRowBefore(30.0), 1);
  EXPECT_EQ(store.lastRowBefore(25.0), 1);
  EXPECT_EQ(store.lastRowBefore(31.0), 2);
  EXPECT_EQ(store.lastRowBefore(10.0), BarStore::kNotFound);
  EXPECT_EQ(store.lastRowBefore(5.0), BarStore::kNotFound);
  EXPECT_EQ(store.lastRowBefore(kNaN), BarStore::kNotFound);
  EXPECT_EQ(BarStore().lastRowBefore(10.0), BarStore::kNotFound);
}

TEST(BarStore, LastRowBeforeStopsAtTheFirstLaterBar) {
  const BarStore store = storeOf({10.0, 50.0, 20.0});
  EXPECT_EQ(store.lastRowBefore(30.0), 0);
}

TEST(BarStore, ClearLeavesNoBars) {
  BarStore store = storeOf({10.0, 20.0});
  store.ClearRecords();
  EXPECT_EQ(store.RecordCount(), 0);
  EXPECT_TRUE(store.empty());
  EXPECT_EQ(store.findDate(10.0), BarStore::kNotFound);
}

TEST(BarStore, ADateIsFoundInRisingAndInUnorderedBarsAlike) {
  // Rising bars are searched by halving, others one after the other; the first match wins in both.
  BarStore rising = storeOf({10.0, 20.0, 30.0});
  EXPECT_EQ(rising.findDate(30.0), 2);
  EXPECT_EQ(rising.findDate(10.0), 0);
  EXPECT_EQ(rising.findDate(15.0), BarStore::kNotFound);
  EXPECT_EQ(rising.findDate(kNaN), BarStore::kNotFound);
  EXPECT_TRUE(rising.EditJDate(20.0, 40.0));  // 10, 40, 30: no longer rising
  EXPECT_EQ(rising.findDate(30.0), 2);
  EXPECT_EQ(rising.findDate(40.0), 1);
  EXPECT_EQ(storeOf({20.0, 10.0, 20.0}).findDate(20.0), 0);
  EXPECT_EQ(storeOf({10.0, 20.0, 20.0}).findDate(20.0), 1);
  BarStore cleared = storeOf({20.0, 10.0});
  cleared.ClearRecords();
  EXPECT_EQ(cleared.findDate(10.0), BarStore::kNotFound);
}

TEST(BarStore, AReplacedBarIsFoundByItsNewDate) {
  BarStore store = storeOf({10.0, 20.0, 30.0});
  store.replace(0, Bar{25.0});  // 25, 20, 30: no longer rising
  EXPECT_EQ(store.findDate(10.0), BarStore::kNotFound);
  EXPECT_EQ(store.findDate(20.0), 1);
  EXPECT_EQ(store.findDate(25.0), 0);
  EXPECT_EQ(store.RecordCount(), 3);
}

TEST(BarStore, ABarMovedBeforeTheOneInFrontOfItIsFound) {
  BarStore store = storeOf({1, 2, 3});
  ASSERT_TRUE(store.EditJDate(2, 0.5));
  EXPECT_EQ(store.findDate(0.5), 1);
  EXPECT_EQ(store.findDate(3), 2);
}

TEST(BarStore, ABarThatFitsItsNeighboursDoesNotPutUnorderedBarsInOrder) {
  BarStore store = storeOf({5, 1, 3, 4});
  ASSERT_TRUE(store.EditJDate(4, 6));
  EXPECT_EQ(store.findDate(1), 1);
  EXPECT_EQ(store.findDate(5), 0);
}

TEST(BarStore, TheLastBarCanBeTakenAway) {
  BarStore store = storeOf({10.0, 20.0});
  store.dropFrom(store.size() - 1);
  EXPECT_EQ(store.RecordCount(), 1);
  EXPECT_EQ(store.findDate(20.0), BarStore::kNotFound);
}

TEST(BarStore, AVolumeIsReadBackCut) {
  EXPECT_EQ(volumeToInt32(1234.9), 1234);
  EXPECT_EQ(volumeToInt32(-1234.9), -1234);
  EXPECT_EQ(volumeToInt32(2147483647.0), 2147483647);
  for (const double x : {2147483648.0, -2147483649.0, 1e300, kInf, -kInf, kNaN}) {
    EXPECT_EQ(volumeToInt32(x), std::numeric_limits<std::int32_t>::min());
  }
}

}  // namespace
}  // namespace brindlewort
