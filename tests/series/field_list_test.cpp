#include "series/field_list.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "support/series_checks.hpp"

namespace brindlewort {
namespace {

using testing::Rows;
using testing::sameRows;

std::vector<Field> fieldsOfLengths(const std::vector<std::int32_t>& lengths) {
  std::vector<Field> fields;
  for (const std::int32_t length : lengths) CFeedkit::addField(fields, "F", length - 1);
  return fields;
}

TEST(FieldList, AFieldHasOneRowMoreThanItsSize) {
  std::vector<Field> fields;
  const Field* field = CFeedkit::addField(fields, "X", 9);
  EXPECT_EQ(field->name, "X");
  EXPECT_TRUE(sameRows(Rows(10, 0.0), field->values.view()));
  EXPECT_EQ(field, &fields.back());
}

TEST(FieldList, SizeMinusOneIsAnEmptySeries) {
  std::vector<Field> fields;
  EXPECT_TRUE(CFeedkit::addField(fields, "X", -1)->values.empty());
  EXPECT_TRUE(CFeedkit::addField(fields, "Y", -2)->values.empty());
  EXPECT_TRUE(CFeedkit::addField(fields, "Z", std::numeric_limits<std::int32_t>::min())->values.empty());
  EXPECT_EQ(fields.size(), 3u);
}

TEST(FieldList, OfTwoFieldsWithOneNameTheOlderIsFound) {
  std::vector<Field> fields;
  CFeedkit::addField(fields, "X", 0);
  CFeedkit::addField(fields, "X", 4);
  ASSERT_EQ(fields.size(), 2u);
  EXPECT_EQ(CFeedkit::findField(fields, "X"), &fields[0]);
}

TEST(FieldList, NamesAreComparedExactly) {
  std::vector<Field> fields;
  CFeedkit::addField(fields, "Close", 0);
  EXPECT_EQ(CFeedkit::findField(fields, "CLOSE"), nullptr);
  EXPECT_EQ(CFeedkit::findField(fields, "Clos"), nullptr);
  EXPECT_EQ(CFeedkit::findField(fields, ""), nullptr);
  EXPECT_EQ(CFeedkit::findField(fields, "Close"), &fields[0]);
}

TEST(FieldList, WhatIsFoundCanBeWritten) {
  std::vector<Field> fields;
  CFeedkit::addField(fields, "X", 1);
  CFeedkit::findField(fields, "X")->values.set(1, 5.0);
  EXPECT_TRUE(sameRows(Rows{0.0, 5.0}, fields[0].values.view()));
}

TEST(FieldList, RecordCountIsTheLengthOfTheCloses) {
  std::vector<Field> fields;
  EXPECT_EQ(CFeedkit::recordCount(fields), 0u);
  CFeedkit::addField(fields, "O", 6);
  EXPECT_EQ(CFeedkit::recordCount(fields), 0u);
  CFeedkit::addField(fields, "C", 3);
  EXPECT_EQ(CFeedkit::recordCount(fields), 4u);
}

TEST(FieldList, EqualLengthsLeaveTheLastFieldOut) {
  EXPECT_TRUE(CFeedkit::haveEqualLengths({}));
  EXPECT_TRUE(CFeedkit::haveEqualLengths(fieldsOfLengths({3})));
  EXPECT_TRUE(CFeedkit::haveEqualLengths(fieldsOfLengths({3, 5})));
  EXPECT_TRUE(CFeedkit::haveEqualLengths(fieldsOfLengths({3, 3, 5})));
  EXPECT_FALSE(CFeedkit::haveEqualLengths(fieldsOfLengths({3, 5, 3})));
  EXPECT_FALSE(CFeedkit::haveEqualLengths(fieldsOfLengths({5, 3, 3})));
  EXPECT_TRUE(CFeedkit::haveEqualLengths(fieldsOfLengths({3, 3, 3})));
}

TEST(FieldList, FieldsCopyAsValues) {
  std::vector<Field> fields;
  CFeedkit::addField(fields, "X", 0);
  Field copy = fields[0];
  copy.values.set(0, 7.0);
  copy.name = "Y";
  EXPECT_EQ(fields[0].values[0], 0.0);
  EXPECT_EQ(fields[0].name, "X");
}

TEST(ScriptVariable, StartsAsAComputedScalarThatWasNeverComputed) {
  const ScriptVariable variable;
  EXPECT_EQ(variable.value, 0.0);
  EXPECT_TRUE(variable.values.empty());
  EXPECT_EQ(variable.slot, -1);
  EXPECT_EQ(variable.kind, 1002);
  EXPECT_EQ(kDataVariable, 1001);
}

TEST(ScriptVariable, AssignmentCopiesNameValueAndRows) {
  ScriptVariable first;
  first.name = "A";
  first.value = 2.0;
  first.values = Series(2, 2.0);
  ScriptVariable second;
  second = first;
  second.values.set(0, 3.0);
  EXPECT_EQ(second.name, "A");
  EXPECT_EQ(second.value, 2.0);
  EXPECT_TRUE(sameRows(Rows{2.0, 2.0}, first.values.view()));
  EXPECT_TRUE(sameRows(Rows{3.0, 2.0}, second.values.view()));
}

}  // namespace
}  // namespace brindlewort
