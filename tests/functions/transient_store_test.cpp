#include "functions/transient_store.hpp"

#include <gtest/gtest.h>

#include "indicators/moving_averages.hpp"
#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::Rows;

struct Fixture : ::testing::Test {
  Fixture() { variables.setLimit(10); }
  VariableStore variables;
  TransientStore store{variables, 5};
};
using TransientStoreTest = Fixture;

std::string normalised(std::string text) {
  NormalizeKey(text);
  return text;
}

TEST(NormalizeKey, TakesTheBlanksBesideSigns) {
  EXPECT_EQ(normalised("SMA( CLOSE, 5 )"), "SMA(CLOSE,5)");
  EXPECT_EQ(normalised("(A) = (B)"), "(A)=(B)");
  EXPECT_EQ(normalised("A , B"), "A,B");
  EXPECT_EQ(normalised(" (A) "), "(A)");
  EXPECT_EQ(normalised("A AND B"), "A AND B");
}

TEST(NormalizeKey, TakesAllOfThem) {
  EXPECT_EQ(normalised("SMA(CLOSE  , 5)"), "SMA(CLOSE,5)");
  EXPECT_EQ(normalised("SMA(   CLOSE,    5   )   =   1"), "SMA(CLOSE,5)=1");
  EXPECT_EQ(normalised("(   )"), "");  // of brackets alone the number in them is left, which is none
  EXPECT_EQ(normalised("(   A   )"), "(A)");
  EXPECT_EQ(normalised("A   AND   B"), "A   AND   B");
}

TEST(NormalizeKey, ANumberInBracketsIsTheNumber) {
  EXPECT_EQ(normalised("(14)"), "14");
  EXPECT_EQ(normalised("((1.5))"), "1.5");
  EXPECT_EQ(normalised("(A)"), "(A)");
}

TEST(ParameterText, JoinsNamesNumbersAndTypes) {
  EXPECT_EQ(parameterText({std::string_view("CLOSE"), Count{14}, 0.5, KeyPart::maType(2)}),
            "CLOSE,14.00000000000000000000,0.50000000000000000000,EXPONENTIAL");
  EXPECT_EQ(parameterText({}), "");
}

TEST_F(TransientStoreTest, AFieldIsMadeAllNullAndUncomputed) {
  const WorkField field = store.field("CMO", {std::string_view("CLOSE"), Count{9}});
  EXPECT_TRUE(testing::sameRows(Rows(5, NULL_VALUE), View(field.rows)));
  EXPECT_EQ(*field.slot, -1);
  EXPECT_EQ(field.name, "CMO(CLOSE,9.00000000000000000000)");
}

TEST_F(TransientStoreTest, EachListOfParametersHasAFieldOfItsOwn) {
  store.field("CMO", {std::string_view("CLOSE"), Count{9}}).rows[2] = 7.0;
  EXPECT_EQ(store.field("CMO", {std::string_view("CLOSE"), Count{9}}).rows[2], 7.0);
  EXPECT_EQ(store.field("CMO", {std::string_view("CLOSE"), Count{10}}).rows[2], NULL_VALUE);
  EXPECT_EQ(store.field("CMO", {std::string_view("OPEN"), Count{9}}).rows[2], NULL_VALUE);
  EXPECT_EQ(variables.size(), 3u);
}

TEST_F(TransientStoreTest, APriceFieldWithoutNumbersIsNamedAfterItsPrices) {
  const WorkField field =
      store.field("TP", {std::string_view("HIGH"), std::string_view("LOW"), std::string_view("CLOSE")});
  EXPECT_EQ(field.name, "TP(HIGH,LOW,CLOSE)");
}

TEST_F(TransientStoreTest, BaseFieldsAreFoundByTheirNameAlone) {
  variables.append({"HIGH", 0.0, Series(5, 3.0), -1, kDataVariable});
  EXPECT_EQ(store.getTransientField("HIGH", "", false, 0), 0);
  EXPECT_EQ(store.getTransientField("X", "ignored", false, 2), 1);
  EXPECT_EQ(variables[1].values.size(), 2u);
}

TEST_F(TransientStoreTest, PastTheReserveASpareFieldIsHandedOutAndNothingMoves) {
  const ScriptVariable* first = nullptr;
  for (int i = 0; !variables.full(); ++i) {
    variables.append({"V" + std::to_string(i), 0.0, {}, -1, kComputedVariable});
    if (!first) first = &variables[0];
  }
  EXPECT_FALSE(store.exhausted());
  EXPECT_EQ(store.getTransientField("MORE", "", false, 0), -1);
  const WorkField spare = store.field("MORE", {Count{1}});
  EXPECT_EQ(spare.rows.size(), 5u);
  EXPECT_TRUE(store.exhausted());
  EXPECT_EQ(first, &variables[0]);
}

TEST_F(TransientStoreTest, WorkSeriesOfAnOperationResume) {
  // The triangular average keeps its first stage in the store.
  Rows close = {1, 2, 3, 4, 5};
  Rows out(5, NULL_VALUE);
  std::int32_t slot = -1;
  ASSERT_EQ(CTechnicalFunctions::TriangularMovingAverage(store, {close, "CLOSE"}, 3, {out, &slot}), kDone);
  ASSERT_EQ(variables.size(), 1u);
  EXPECT_EQ(variables[0].slot, 5);
  EXPECT_EQ(slot, 5);
  // Odd 3: both windows have 2 rows. First stage 1.5 2.5 3.5 4.5 from row 1, second 2 3 4 from row 2.
  EXPECT_TRUE(testing::sameRows(Rows{NULL_VALUE, NULL_VALUE, 2, 3, 4}, out));
}

}  // namespace
}  // namespace brindlewort
