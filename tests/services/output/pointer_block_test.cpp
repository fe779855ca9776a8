// What a host may read through the pointers, and how long.

#include "services/output/pointer_block.hpp"

#include <gtest/gtest.h>

#include <new>

#include "support/living_script.hpp"

namespace brindlewort {
namespace {

using testing::kNull;
using testing::LivingScript;
using testing::Rows;

using List = PointerBlock::List;

const List* listOf(LivingScript& script, const std::string& sets = "") {
  const std::intptr_t address = script.component.GetScriptOutput_PTR("A", 0, sets);
  return address == -1 ? nullptr : reinterpret_cast<const List*>(address);
}

Rows rowsOf(const List& list, std::size_t i) {
  return Rows(list.items[i].values, list.items[i].values + list.items[i].count);
}

/// What a host has written down of a list: the places that it was shown.
struct Seen {
  explicit Seen(const List& list) : rows(list.items, list.items + list.count) {}
  /// The rows of the place, read again.
  Rows read(std::size_t i) const { return Rows(rows[i].values, rows[i].values + rows[i].count); }
  std::vector<PointerBlock::Rows> rows;
};

TEST(PointerBlock, ShowsTheSeriesInTheOrderOfTheirNames) {
  LivingScript script("SET B = CLOSE\r\nSET A = SMA(CLOSE, 2)\r\n1");
  script.ramp(7);
  const List* list = listOf(script);
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->count, 3u);  // B, the call, A
  EXPECT_EQ(rowsOf(*list, 0), (Rows{1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(rowsOf(*list, 1), (Rows{kNull, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5}));
  EXPECT_EQ(rowsOf(*list, 2), rowsOf(*list, 1));
}

TEST(PointerBlock, OutputSetsGiveTheOrder) {
  LivingScript script("SET B = CLOSE\r\nSET A = CLOSE + 1\r\nSET C = CLOSE\r\n1");
  script.ramp(7);
  const List* list = listOf(script, "A,NONE,B");
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->count, 2u);
  EXPECT_EQ(rowsOf(*list, 0).back(), 8.0);
  EXPECT_EQ(rowsOf(*list, 1).back(), 7.0);
}

TEST(PointerBlock, ShowsTheLiveRows) {
  LivingScript script("SET A = CLOSE\r\nA");
  script.ramp(7);
  const List* list = listOf(script);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->items[0].values, script.component.findSeries("A")->data());
}

TEST(PointerBlock, FailureIsMinusOne) {
  LivingScript failing("SET A = FOO\r\nA");
  failing.ramp(8);
  EXPECT_EQ(failing.component.GetScriptOutput_PTR("A", 0, ""), -1);
  EXPECT_EQ(failing.error, "");  // no event
  LivingScript few("SET A = CLOSE\r\nA");
  few.ramp(6);
  EXPECT_EQ(few.component.GetScriptOutput_PTR("A", 0, ""), -1);
  LivingScript script("SET A = CLOSE\r\nA");
  script.ramp(8);
  EXPECT_EQ(script.component.GetScriptOutput_PTR("", 0, ""), -1);
  EXPECT_NE(script.component.GetScriptOutput_PTR("A", 0, ""), -1);
}

TEST(PointerBlock, AScriptWithoutSeriesGivesAnEmptyList) {
  LivingScript script("CLOSE > 1");
  script.ramp(8);
  const List* list = listOf(script);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->count, 0u);
  LivingScript named("SET A = CLOSE\r\nA");
  named.ramp(8);
  ASSERT_NE(listOf(named, "NONE"), nullptr);
  EXPECT_EQ(listOf(named, "NONE")->count, 0u);
}

TEST(PointerBlock, ARunByPointerLeavesTheSeriesOfTheText) {
  LivingScript script("SET A = CLOSE\r\nA");
  script.ramp(7);
  listOf(script);
  EXPECT_TRUE(script.run(7)->ends_with(",7.0000\r\n"));
}

// ---- how long it holds ----

TEST(PointerBlock, HoldsWhileBarsComeAndChange) {
  LivingScript script("SET A = CLOSE\r\nSET B = SMA(CLOSE, 2)\r\n1");
  script.ramp(7);
  const List* list = listOf(script);
  ASSERT_NE(list, nullptr);
  const Seen seen(*list);
  // Enough for the rows to move in memory several times.
  for (int i = 0; i < 2000; ++i) {
    script.ramp(1);
    if (i % 3 == 0) script.edit(5);
    ASSERT_EQ(list->items[0].count, static_cast<std::size_t>(8 + i));
    ASSERT_EQ(list->items[0].values, script.component.findSeries("A")->data());
    ASSERT_EQ(list->items[0].values[0], 1.0);
  }
  EXPECT_EQ(seen.read(0), (Rows{1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(seen.read(2), (Rows{kNull, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5}));
  EXPECT_EQ(list->items[0].values[7], kNull);  // not computed yet
}

TEST(PointerBlock, ListsAVariableWhoseEntryAFunctionHasMade) {
  LivingScript script("SET DATE = DATEDIFF(5, 0, 1)\r\nCLOSE");
  script.ramp(6);
  for (int run = 0; run < 3; ++run) {
    const List* list = listOf(script.ramp(1));
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->count, 2u) << run;
    EXPECT_EQ(list->items[0].values, script.component.findSeries("DATEDIFF(5,0,1)")->data());
    EXPECT_EQ(list->items[1].values, script.component.findSeries("DATE")->data());
  }
}

/// What is kept has a second owner, until the host is promised nothing any more.
TEST(PointerBlock, KeepsRowsThatHaveToMoveToGrow) {
  StoreEntry entry;
  entry.values.assign(4, 1.0);
  while (!entry.values.full()) entry.values.push_back(1.0);
  PointerBlock block;
  block.show({&entry});
  EXPECT_TRUE(entry.values.unique());
  block.beforeGrowth();
  EXPECT_FALSE(entry.values.unique());
  block.endOfPromise();
  EXPECT_TRUE(entry.values.unique());
}

TEST(PointerBlock, KeepsAllRowsThroughAChangeByWhichEntriesMayGo) {
  StoreEntry entry;
  entry.values.assign(4, 1.0);
  PointerBlock block;
  block.show({&entry});
  block.freeze([&] { EXPECT_FALSE(entry.values.unique()); });
  EXPECT_FALSE(entry.values.unique());
}

TEST(PointerBlock, HoldsWhileTheHostFeedsItsSeries) {
  LivingScript script("SET X = X\r\nSET A = X + 1\r\n1");
  script.component.AddOrRemoveBasicVectorSeries("X", 1);
  for (int i = 1; i <= 8; ++i) {
    script.closes({1.0 * i});
    script.component.UpdateBasicVectorData("X", i, 22);
  }
  const List* list = listOf(script);
  ASSERT_NE(list, nullptr);
  const Seen seen(*list);
  for (int i = 0; i < 500; ++i) script.component.UpdateBasicVectorData("X", 3, i % 2 ? 11 : 22);
  for (std::size_t i = 0; i < seen.rows.size(); ++i) EXPECT_EQ(seen.read(i).size(), 8u);
  EXPECT_EQ(list->items[0].values, script.component.findSeries("A")->data());
}

TEST(PointerBlock, HoldsWhenSeriesAreRemoved) {
  LivingScript script("SET A = CLOSE\r\nSET B = CLOSE + 1\r\n1");
  for (const char* name : {"X", "Y"}) script.component.AddOrRemoveBasicVectorSeries(name, 10);
  script.ramp(7);
  const List* list = listOf(script);
  ASSERT_NE(list, nullptr);
  const Seen seen(*list);
  script.component.AddOrRemoveBasicVectorSeries("X", -987654321);
  EXPECT_EQ(seen.read(0), (Rows{1, 2, 3, 4, 5, 6, 7}));
  script.ramp(100);
  script.component.AddOrRemoveBasicVectorSeries("Y", -987654321);
  ASSERT_EQ(list->count, 2u);
  EXPECT_EQ(rowsOf(*list, 0), (Rows{1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(rowsOf(*list, 1), (Rows{2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(seen.read(1), rowsOf(*list, 1));
}

TEST(PointerBlock, HoldsWhenAnotherScriptIsPrepared) {
  for (std::int32_t mode : {101, 102}) {
    LivingScript script("SET A = CLOSE\r\n1", 250, mode);
    script.ramp(7);
    const List* list = listOf(script);
    ASSERT_NE(list, nullptr);
    ASSERT_TRUE(script.component.ProcessScripData("SET B = OPEN\r\n1"));
    script.ramp(100);
    EXPECT_EQ(rowsOf(*list, 0).front(), 1.0);
    EXPECT_EQ(list->items[0].values[6], 7.0);
  }
}

TEST(PointerBlock, HoldsWhenAllIsClearedAndSetUpAnew) {
  LivingScript script("SET A = CLOSE\r\n1");
  script.ramp(7);
  const List* list = listOf(script);
  ASSERT_NE(list, nullptr);
  const Seen seen(*list);
  script.component.ClearRecords();
  EXPECT_EQ(rowsOf(*list, 0), (Rows{1, 2, 3, 4, 5, 6, 7}));
  script.component.InitialiseTransientStore(50);
  script.ramp(100);
  EXPECT_EQ(rowsOf(*list, 0), (Rows{1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(seen.read(0), rowsOf(*list, 0));
}

TEST(PointerBlock, HoldsWhileTheOtherWayRuns) {
  LivingScript script("SET A = CLOSE\r\n1");
  for (int i = 0; i < 12; ++i) script.component.AppendRecord(testing::kFirstDay + i, 5, 5, 5, 5, 5);
  script.ramp(7);
  const List* list = listOf(script);
  ASSERT_NE(list, nullptr);
  ASSERT_TRUE(script.component.GetScriptOutput("SET A = CLOSE + 1\r\nA", 0, ""));
  EXPECT_EQ(rowsOf(*list, 0), (Rows{1, 2, 3, 4, 5, 6, 7}));
}

TEST(PointerBlock, TheNextListTakesItsPlace) {
  LivingScript script("SET A = CLOSE\r\nSET B = CLOSE + 1\r\n1");
  script.ramp(7);
  ASSERT_NE(listOf(script), nullptr);
  script.ramp(300);
  const List* list = listOf(script, "B");
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->count, 1u);
  EXPECT_EQ(list->items[0].count, 307u);
  EXPECT_EQ(list->items[0].values[306], 308.0);
}

TEST(PointerBlock, MemoryDoesNotGrowWithTheRuns) {
  // Each list frees what the one before has kept; seen by the leak check of a sanitized build, and here by
  // the place of the list, which stays.
  LivingScript script("SET A = CLOSE\r\n1");
  script.ramp(7);
  const List* first = listOf(script);
  for (int i = 0; i < 200; ++i) {
    script.ramp(10);
    EXPECT_EQ(listOf(script), first);
  }
}

// ---- the block itself ----

TEST(PointerBlock, KeepsThePlaceOfRowsThatMoveToGrow) {
  StoreEntry entry;
  entry.values.push_back(1.0);
  PointerBlock block;
  const List& list = block.show({&entry});
  const double* before = list.items[0].values;
  for (int i = 2; i <= 1000; ++i) {
    {
      const PointerBlock::Follow follow(block);
      block.beforeGrowth();
      entry.values.push_back(i);
    }
    ASSERT_EQ(list.items[0].count, static_cast<std::size_t>(i));
    ASSERT_EQ(list.items[0].values, entry.values.data());
  }
  EXPECT_NE(list.items[0].values, before);
  EXPECT_EQ(before[0], 1.0);
}

TEST(PointerBlock, FrozenRowsOutliveTheirEntries) {
  PointerBlock block;
  const List* list = nullptr;
  {
    StoreEntry entry;
    entry.values.assign(3, 7.0);
    list = &block.show({&entry});
    block.freeze([] {});
  }
  EXPECT_EQ(rowsOf(*list, 0), Rows(3, 7.0));
}

TEST(PointerBlock, AChangeThatFailsFreezesNothing) {
  PointerBlock block;
  StoreEntry entry;
  entry.values.assign(3, 7.0);
  const List& list = block.show({&entry});
  EXPECT_THROW(block.freeze([] { throw std::bad_alloc(); }), std::bad_alloc);
  EXPECT_TRUE(entry.values.unique());
  {
    const PointerBlock::Follow follow(block);
    block.beforeGrowth();
    entry.values.push_back(8.0);
  }
  EXPECT_EQ(rowsOf(list, 0), (Rows{7.0, 7.0, 7.0, 8.0}));
}

}  // namespace
}  // namespace brindlewort
