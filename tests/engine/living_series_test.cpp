// The data of the incremental way: how bars and the host's own values flow into the living series.

#include <gtest/gtest.h>

#include <limits>

#include "functions/script_engine.hpp"
#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::kNull;
using testing::Rows;

Bar barOf(double close, double volume = 100.0) {
  Bar bar;
  bar.JDate = 2451544.5 + close;
  bar.OpenPrice = close - 1.0;
  bar.HighPrice = close + 1.0;
  bar.LowPrice = close - 2.0;
  bar.ClosePrice = close;
  bar.Volume = volume;
  return bar;
}

/// An engine that is set up.
struct Living : CScriptEngine {
  explicit Living(std::int32_t entries = 250) { InitialiseTransientStore(entries); }
  void append(double close) {
    kept.push_back(barOf(close));
    EXPECT_EQ(ApplyBarChange(kept.back(), kNewBar), 0);
  }
  std::string run() {
    bars.use(kept);
    return RunFast(false, false);
  }
  bool prepare(const std::string& script) {
    std::string error;
    return ProcessScripData(script, error);
  }
  Rows rows(const std::string& name) const {
    const ScriptVariable* entry = variables.get(name);
    return entry ? Rows(entry->values.view().begin(), entry->values.view().end()) : Rows{};
  }
  std::vector<Bar> kept;
};

// ---- setting up ----

TEST(InitialiseTransientStore, MakesTheSixFieldsAndTheFivePrices) {
  Living engine;
  ASSERT_EQ(engine.fields.size(), 6u);
  const std::string fields[] = {"D", "O", "H", "L", "C", "V"};
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(engine.fields[i].name, fields[i]);
    EXPECT_TRUE(engine.fields[i].values.empty());
  }
  ASSERT_EQ(engine.variables.size(), 5u);
  const std::string prices[] = {"OPEN", "HIGH", "LOW", "CLOSE", "VOLUME"};
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(engine.variables[i].name, prices[i]);
    EXPECT_EQ(engine.variables[i].kind, kDataVariable);
    EXPECT_TRUE(engine.variables[i].values.empty());
  }
  EXPECT_NE(engine.constants.get("PI"), nullptr);
}

/// The main expression is one entry; each statement makes two: its expression and its name.
std::string scriptOfEntries(int entries) {
  std::string script;
  for (int i = 0; i < (entries - 6) / 2; ++i) script += "SET A" + std::to_string(i) + " = CLOSE\r\n";
  return script + "1";
}

std::string textOverEntries(std::int32_t reserved, int wanted) {
  Living engine(reserved);
  for (int i = 1; i <= 8; ++i) engine.append(i);
  EXPECT_TRUE(engine.prepare(scriptOfEntries(wanted)));
  return engine.run();
}

TEST(InitialiseTransientStore, BelowTenReserves250) {
  for (std::int32_t asked : {5, 9, 0, -1, std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_EQ(textOverEntries(asked, 250), "ALERT") << asked;
    EXPECT_EQ(textOverEntries(asked, 252), kTooComplex) << asked;
  }
}

TEST(InitialiseTransientStore, FromTenOnReservesWhatIsAsked) {
  EXPECT_EQ(textOverEntries(10, 10), "ALERT");
  EXPECT_EQ(textOverEntries(10, 12), kTooComplex);
  EXPECT_EQ(textOverEntries(400, 400), "ALERT");
  EXPECT_EQ(textOverEntries(400, 402), kTooComplex);
}

TEST(InitialiseTransientStore, EntriesAreAsManyAsThereIsRoomForTheirRows) {
  const auto textOver = [](int bars, int entries) {
    Living engine(10'000);
    engine.mostRowsHeld = 2'000;
    for (int i = 1; i <= bars; ++i) engine.append(i);
    EXPECT_TRUE(engine.prepare(scriptOfEntries(entries)));
    return engine.run();
  };
  EXPECT_EQ(textOver(10, 200), "ALERT");
  EXPECT_EQ(textOver(10, 202), kTooComplex);
  EXPECT_EQ(textOver(20, 100), "ALERT");
  EXPECT_EQ(textOver(20, 102), kTooComplex);
}

TEST(InitialiseTransientStore, NoScriptNamesMoreThanFiveHundredAndOne) {
  EXPECT_EQ(textOverEntries(2000, 502), "ALERT");
  EXPECT_EQ(textOverEntries(2000, 504), kTooComplex);
}

TEST(InitialiseTransientStore, AgainStartsFromNothing) {
  Living engine;
  engine.append(1);
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  engine.InitialiseTransientStore(20);
  EXPECT_EQ(engine.variables.size(), 5u);
  EXPECT_EQ(engine.fields.size(), 6u);
  EXPECT_TRUE(engine.rows("CLOSE").empty());
  EXPECT_EQ(engine.variables.get("X"), nullptr);
}

// ---- bars ----

TEST(ApplyBarChange, ANewBarIsANewRowOfEachPriceAndField) {
  Living engine;
  engine.append(10);
  engine.append(11);
  EXPECT_EQ(engine.rows("OPEN"), (Rows{9, 10}));
  EXPECT_EQ(engine.rows("HIGH"), (Rows{11, 12}));
  EXPECT_EQ(engine.rows("LOW"), (Rows{8, 9}));
  EXPECT_EQ(engine.rows("CLOSE"), (Rows{10, 11}));
  EXPECT_EQ(engine.rows("VOLUME"), (Rows{100, 100}));
  const Rows fields[] = {{2451554.5, 2451555.5}, {9, 10}, {11, 12}, {8, 9}, {10, 11}, {100, 100}};
  for (std::size_t i = 0; i < 6; ++i)
    EXPECT_TRUE(testing::sameRows(fields[i], engine.fields[i].values.view())) << i;
  EXPECT_EQ(engine.variables.get("CLOSE")->value, 11.0);
}

TEST(ApplyBarChange, AChangedBarOverwritesTheLastRow) {
  Living engine;
  engine.append(10);
  engine.append(11);
  EXPECT_EQ(engine.ApplyBarChange(barOf(20), CScriptEngine::kChangedLastBar), 0);
  EXPECT_EQ(engine.rows("CLOSE"), (Rows{10, 20}));
  EXPECT_TRUE(testing::sameRows(Rows{2451554.5, 2451564.5}, engine.fields[0].values.view()));
  EXPECT_TRUE(testing::sameRows(Rows{10, 20}, engine.fields[4].values.view()));
}

TEST(ApplyBarChange, OtherModesDoNothing) {
  Living engine;
  engine.append(10);
  for (std::int32_t mode : {0, 3, -1, 11}) EXPECT_EQ(engine.ApplyBarChange(barOf(20), mode), -1) << mode;
  EXPECT_EQ(engine.rows("CLOSE"), (Rows{10}));
  EXPECT_EQ(engine.fields[0].values.size(), 1u);
}

TEST(ApplyBarChange, AChangeBeforeTheFirstBarFails) {
  Living engine;
  EXPECT_EQ(engine.ApplyBarChange(barOf(20), CScriptEngine::kChangedLastBar), -1);
  EXPECT_TRUE(engine.rows("CLOSE").empty());
}

TEST(ApplyBarChange, TheVolumeIsCutToAnInteger) {
  Living engine;
  ASSERT_EQ(engine.ApplyBarChange(barOf(1, 12.9), CScriptEngine::kNewBar), 0);
  EXPECT_EQ(engine.rows("VOLUME"), (Rows{12}));
  EXPECT_EQ(engine.fields[5].values[0], 12.0);
  const double infinity = std::numeric_limits<double>::infinity();
  ASSERT_EQ(engine.ApplyBarChange(barOf(1, infinity), CScriptEngine::kChangedLastBar), 0);
  EXPECT_EQ(engine.rows("VOLUME"), (Rows{-2147483648.0}));
}

TEST(ApplyBarChange, ZerosTakeTheLevelOfTheFirstRealPrice) {
  Living engine;
  for (int i = 0; i < 3; ++i) engine.ApplyBarChange(Bar{}, CScriptEngine::kNewBar);
  EXPECT_EQ(engine.rows("CLOSE"), (Rows{0, 0, 0}));
  engine.append(5);
  EXPECT_EQ(engine.rows("CLOSE"), (Rows{5, 5, 5, 5}));
  EXPECT_EQ(engine.rows("VOLUME"), (Rows{100, 100, 100, 100}));
  engine.append(6);
  EXPECT_EQ(engine.rows("CLOSE"), (Rows{5, 5, 5, 5, 6}));
}

TEST(ApplyBarChange, AComputedEntryGetsANullRow) {
  Living engine;
  for (int i = 1; i <= 8; ++i) engine.append(i);
  engine.prepare("SET A = CLOSE + 1\r\nA");
  EXPECT_EQ(engine.run(), "ALERT");
  EXPECT_EQ(engine.rows("A").back(), 9.0);
  engine.append(9);
  EXPECT_EQ(engine.rows("A").size(), 9u);
  EXPECT_EQ(engine.rows("A").back(), kNull);
  EXPECT_EQ(engine.variables.get("A")->value, kNull);
  engine.run();
  EXPECT_EQ(engine.rows("A"), (Rows{2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST(ApplyBarChange, NumbersStayNumbers) {
  Living engine;
  for (int i = 1; i <= 8; ++i) engine.append(i);
  engine.prepare("SMA(CLOSE, 3) > 2");
  engine.run();
  ASSERT_NE(engine.variables.get("3"), nullptr);
  engine.append(9);
  EXPECT_TRUE(engine.rows("3").empty());
  EXPECT_EQ(engine.variables.get("3")->value, 3.0);
}

TEST(ApplyBarChange, WithoutSettingUpNothingIsKept) {
  CScriptEngine engine;
  EXPECT_EQ(engine.ApplyBarChange(barOf(1), CScriptEngine::kNewBar), 0);
  EXPECT_EQ(engine.ApplyBarChange(barOf(1), CScriptEngine::kChangedLastBar), 0);
  EXPECT_TRUE(engine.variables.empty());
  EXPECT_TRUE(engine.fields.empty());
}

// ---- series of the host ----

TEST(BasicVectorSeries, ANewOneAnswersItsNumberInTheStore) {
  Living engine;
  EXPECT_EQ(engine.AddOrRemoveBasicVectorSeries("X", 10), 5);
  EXPECT_EQ(engine.AddOrRemoveBasicVectorSeries("Y", 1), 6);
  EXPECT_EQ(engine.variables.get("X")->kind, kDataVariable);
  EXPECT_TRUE(engine.rows("X").empty());
}

TEST(BasicVectorSeries, ASizeBelowOneAddsNothing) {
  Living engine;
  for (std::int32_t size : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_EQ(engine.AddOrRemoveBasicVectorSeries("X", size), -1) << size;
  }
  EXPECT_EQ(engine.variables.size(), 5u);
}

TEST(BasicVectorSeries, AnyOtherSizeOnlyMakesRoom) {
  Living engine;
  EXPECT_EQ(engine.AddOrRemoveBasicVectorSeries("X", std::numeric_limits<std::int32_t>::max()), 5);
  EXPECT_TRUE(engine.rows("X").empty());
}

TEST(BasicVectorSeries, NoneIsAddedToAFullStore) {
  Living engine(10);
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(engine.AddOrRemoveBasicVectorSeries("X" + std::to_string(i), 1), 5 + i);
  EXPECT_EQ(engine.AddOrRemoveBasicVectorSeries("X5", 1), -1);
  EXPECT_EQ(engine.variables.size(), 10u);
}

TEST(BasicVectorSeries, TheNullValueAsSizeRemoves) {
  Living engine;
  engine.append(1);
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  engine.AddOrRemoveBasicVectorSeries("Y", 10);
  engine.UpdateBasicVectorData("Y", 7, 11);
  EXPECT_EQ(engine.AddOrRemoveBasicVectorSeries("X", -987654321), -1);
  EXPECT_EQ(engine.variables.get("X"), nullptr);
  ASSERT_EQ(engine.variables.size(), 6u);
  EXPECT_EQ(engine.variables[5].name, "Y");
  EXPECT_EQ(engine.rows("Y"), (Rows{7}));
  EXPECT_EQ(engine.rows("CLOSE"), (Rows{1}));
}

TEST(BasicVectorSeries, RemovingReserves250AtLeast) {
  Living engine(10);
  for (int i = 1; i <= 8; ++i) engine.append(i);
  engine.AddOrRemoveBasicVectorSeries("NONE", -987654321);
  engine.prepare(scriptOfEntries(250));
  EXPECT_EQ(engine.run(), "ALERT");
}

TEST(UpdateBasicVectorData, ElevenAddsAndTwentyTwoChangesTheLast) {
  Living engine;
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  engine.UpdateBasicVectorData("X", 1.5, 11);
  engine.UpdateBasicVectorData("X", 2.5, 11);
  engine.UpdateBasicVectorData("X", 3.5, 22);
  EXPECT_EQ(engine.rows("X"), (Rows{1.5, 3.5}));
  EXPECT_EQ(engine.variables.get("X")->value, 3.5);
}

TEST(UpdateBasicVectorData, ANullRepeatsTheLastValue) {
  Living engine;
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  engine.UpdateBasicVectorData("X", kNull, 11);
  EXPECT_EQ(engine.rows("X"), (Rows{kNull}));
  engine.UpdateBasicVectorData("X", 4, 22);
  engine.UpdateBasicVectorData("X", kNull, 11);
  EXPECT_EQ(engine.rows("X"), (Rows{4, 4}));
}

TEST(UpdateBasicVectorData, ANullUpdateTakesTheLastButOne) {
  Living engine;
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  engine.UpdateBasicVectorData("X", 4, 11);
  engine.UpdateBasicVectorData("X", kNull, 22);
  EXPECT_EQ(engine.rows("X"), (Rows{kNull}));  // there is none before
  engine.UpdateBasicVectorData("X", 4, 22);
  engine.UpdateBasicVectorData("X", 5, 11);
  engine.UpdateBasicVectorData("X", kNull, 22);
  EXPECT_EQ(engine.rows("X"), (Rows{4, 4}));
}

TEST(UpdateBasicVectorData, TheFirstPositiveValueFillsTheZerosBefore) {
  Living engine;
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  for (double x : {0.0, 0.0, -1.0, 3.0, 4.0}) engine.UpdateBasicVectorData("X", x, 11);
  EXPECT_EQ(engine.rows("X"), (Rows{3, 3, 3, 3, 4}));
  engine.AddOrRemoveBasicVectorSeries("Y", 10);
  for (double x : {0.0, 0.0}) engine.UpdateBasicVectorData("Y", x, 11);
  engine.UpdateBasicVectorData("Y", 6.0, 22);
  EXPECT_EQ(engine.rows("Y"), (Rows{6, 6}));
}

TEST(UpdateBasicVectorData, OtherNumbersAndUnknownNamesDoNothing) {
  Living engine;
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  engine.UpdateBasicVectorData("X", 1, 11);
  for (int number : {0, 1, 2, 12, 21, 255})
    engine.UpdateBasicVectorData("X", 5, static_cast<std::uint8_t>(number));
  engine.UpdateBasicVectorData("NONE", 5, 11);
  EXPECT_EQ(engine.rows("X"), (Rows{1}));
  EXPECT_EQ(engine.variables.size(), 6u);
}

TEST(UpdateBasicVectorData, AnUpdateBeforeTheFirstRowDoesNothing) {
  Living engine;
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  engine.UpdateBasicVectorData("X", 5, 22);
  EXPECT_TRUE(engine.rows("X").empty());
}

TEST(UpdateBasicVectorData, TheFirstOfTwoSeriesOfANameIsFed) {
  Living engine;
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  engine.UpdateBasicVectorData("X", 5, 11);
  EXPECT_EQ(engine.variables[5].values.size(), 1u);
  EXPECT_TRUE(engine.variables[6].values.empty());
}

TEST(BasicVectorSeries, IsFedAlthoughARunHasFailedForWantOfIt) {
  Living engine;
  for (int i = 1; i <= 7; ++i) engine.append(i);
  engine.prepare("SMA(X, 2) > 0");
  EXPECT_EQ(engine.run(), "Error: Undefined variable 'X'");
  ASSERT_NE(engine.variables.get("X"), nullptr);  // the text of the argument
  engine.prepare("SET A = X + 1\r\nSET B = SMA(X, 2)\r\nX");
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  for (int i = 1; i <= 7; ++i) engine.UpdateBasicVectorData("X", 10.0 * i, 11);
  EXPECT_EQ(engine.run(), "ALERT");
  EXPECT_EQ(engine.rows("A"), (Rows{11, 21, 31, 41, 51, 61, 71}));
  EXPECT_EQ(engine.rows("B"), (Rows{kNull, 15, 25, 35, 45, 55, 65}));
  engine.append(8);
  engine.UpdateBasicVectorData("X", 80, 22);
  EXPECT_EQ(engine.run(), "ALERT");
  EXPECT_EQ(engine.rows("A").back(), 81);
  EXPECT_EQ(engine.rows("B").back(), 75);
}

TEST(BasicVectorSeries, ValuesOfAScriptAreNeitherFedNorRemoved) {
  Living engine;
  for (int i = 1; i <= 7; ++i) engine.append(i);
  engine.prepare("SET A = CLOSE\r\nSMA(A, 2)");
  EXPECT_EQ(engine.run(), "ALERT");
  for (std::uint8_t how : {11, 22}) engine.UpdateBasicVectorData("A", 100, how);
  EXPECT_EQ(engine.rows("A"), (Rows{1, 2, 3, 4, 5, 6, 7}));
  const std::size_t entries = engine.variables.size();
  for (const char* name : {"A", "SMA(A,2)", "(SMA(A,2))"}) {
    EXPECT_EQ(engine.AddOrRemoveBasicVectorSeries(name, -987654321), -1);
  }
  EXPECT_EQ(engine.variables.size(), entries);
  EXPECT_EQ(engine.run(), "ALERT");
  EXPECT_EQ(engine.rows("SMA(A,2)"), (Rows{kNull, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5}));
}

TEST(BasicVectorSeries, ABarGivesItARowToo) {
  Living engine;
  engine.append(1);
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  engine.append(2);
  EXPECT_EQ(engine.rows("X"), (Rows{kNull}));
  engine.UpdateBasicVectorData("X", 5, 22);
  EXPECT_EQ(engine.rows("X"), (Rows{5}));
  EXPECT_EQ(engine.ApplyBarChange(barOf(3), CScriptEngine::kChangedLastBar), 0);
  EXPECT_EQ(engine.rows("X"), (Rows{kNull}));
}

TEST(BasicVectorSeries, WithoutRowsItEndsTheChangeOfABar) {
  Living engine;
  engine.append(1);
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  EXPECT_EQ(engine.ApplyBarChange(barOf(3), CScriptEngine::kChangedLastBar), -1);
  EXPECT_EQ(engine.rows("CLOSE"), (Rows{3}));  // stands before it in the store
}

TEST(BasicVectorSeries, IsAVariableOfTheScript) {
  Living engine;
  engine.AddOrRemoveBasicVectorSeries("X", 10);
  for (int i = 1; i <= 8; ++i) {
    engine.append(i);
    engine.UpdateBasicVectorData("X", 100.0 * i, 22);
  }
  engine.prepare("SET A = X + CLOSE\r\nA");
  EXPECT_EQ(engine.run(), "ALERT");
  // The first positive value came when the first row was null, which is below 0.
  EXPECT_EQ(engine.rows("A"), (Rows{101, 202, 303, 404, 505, 606, 707, 808}));
}

// ---- clearing ----

TEST(ClearIncremental, DropsEverythingThatWasSetUp) {
  Living engine;
  for (int i = 1; i <= 8; ++i) engine.append(i);
  engine.prepare("SET A = CLOSE\r\nA");
  engine.run();
  engine.ClearIncremental();
  EXPECT_TRUE(engine.variables.empty());
  EXPECT_TRUE(engine.constants.empty());
  EXPECT_TRUE(engine.fields.empty());
  EXPECT_TRUE(engine.fastSeries.empty());
  EXPECT_EQ(engine.preparedScript, "");
  EXPECT_EQ(engine.bars.size(), 0u);
  engine.kept.clear();
  engine.InitialiseTransientStore(50);
  for (int i = 1; i <= 8; ++i) engine.append(i);
  engine.prepare("CLOSE > 7");
  EXPECT_EQ(engine.run(), "ALERT");
}

}  // namespace
}  // namespace brindlewort
