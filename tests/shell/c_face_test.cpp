// The C face as a host in any language sees it: statuses, texts, null pointers.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "brindlewort/brindlewort.h"
#include "support/date_texts.hpp"

namespace {

using brindlewort::testing::localDates;

struct Destroy {
  void operator()(bw_script_output* h) const { bw_script_output_destroy(h); }
};
using Handle = std::unique_ptr<bw_script_output, Destroy>;

/// Bars that close at 1, 2, 3 and so on.
Handle rampOf(int bars) {
  Handle h(bw_script_output_create());
  for (int i = 1; i <= bars; ++i) {
    EXPECT_EQ(bw_script_output_append_record(h.get(), 2444299.5 + i, i, i + 1, i - 1, i, 100), 0);
  }
  return h;
}

std::string taken(char* text) {
  const std::string copy = text ? text : "(null)";
  bw_free(text);
  return copy;
}

TEST(CFace, ANullResultPointerIsMinusOne) {
  const Handle h = rampOf(10);
  EXPECT_EQ(bw_script_output_edit_record(h.get(), 1, 1, 1, 1, 1, 1, nullptr), -1);
  EXPECT_EQ(bw_script_output_get_script_output(h.get(), "1", 0, "", nullptr), -1);
  EXPECT_EQ(bw_script_output_get_record_count(h.get(), nullptr), -1);
  EXPECT_EQ(bw_script_output_from_julian_date(h.get(), 2444239.5, nullptr), -1);
  EXPECT_EQ(bw_script_output_get_series(h.get(), "A", nullptr, nullptr), -1);
  double o, hi, lo, c;
  int32_t volume;
  EXPECT_EQ(bw_script_output_get_record_by_jdate(h.get(), 1, &o, &hi, &lo, &c, &volume, nullptr), -1);
}

TEST(CFace, ANullScriptReadsAsEmpty) {
  const Handle h = rampOf(10);
  char* text = nullptr;
  EXPECT_EQ(bw_script_output_get_script_output(h.get(), nullptr, 0, nullptr, &text), 0);
  EXPECT_EQ(taken(text), "");
}

TEST(CFace, TooFewBarsGiveNeitherTextNorEvent) {
  const Handle h = rampOf(3);
  int events = 0;
  bw_script_output_on_script_error(
      h.get(), [](void* user, const char*) { ++*static_cast<int*>(user); }, &events);
  char* text = reinterpret_cast<char*>(&events);
  EXPECT_EQ(bw_script_output_get_script_output(h.get(), "CLOSE", 0, "", &text), 0);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(events, 0);
}

TEST(CFace, AnErrorIsToldByTheEventUntilItIsRemoved) {
  const Handle h = rampOf(10);
  std::string told;
  bw_script_output_on_script_error(
      h.get(), [](void* user, const char* text) { *static_cast<std::string*>(user) = text; }, &told);
  char* text = nullptr;
  EXPECT_EQ(bw_script_output_get_script_output(h.get(), "FOO", 0, "", &text), 0);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(told, "Error: Undefined variable 'FOO'");
  told.clear();
  bw_script_output_on_script_error(h.get(), nullptr, nullptr);
  EXPECT_EQ(bw_script_output_get_script_output(h.get(), "FOO", 0, "", &text), 0);
  EXPECT_EQ(told, "");
}

TEST(CFace, ALineFeedAloneEndsNoLineOfAScript) {
  const Handle h = rampOf(10);
  std::string told;
  bw_script_output_on_script_error(
      h.get(), [](void* user, const char* text) { *static_cast<std::string*>(user) = text; }, &told);
  char* text = nullptr;
  EXPECT_EQ(bw_script_output_get_script_output(h.get(), "SET A = CLOSE\nA > 0", 0, "", &text), 0);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(told, "Error: Undefined variable 'CLOSE\nA'");
  EXPECT_EQ(bw_script_output_get_script_output(h.get(), "SET A = CLOSE\r\nA > 0", 0, "", &text), 0);
  EXPECT_NE(taken(text), "(null)");
}

TEST(CFace, EditRecordReplacesTheFirstBarOfADate) {
  Handle h(bw_script_output_create());
  for (int i = 0; i < 10; ++i) bw_script_output_append_record(h.get(), 2444300.5, 1, 1, 1, 1, 1);
  int32_t found = 0;
  EXPECT_EQ(bw_script_output_edit_record(h.get(), 2444300.5, 5, 6, 4, 5, 2, &found), 0);
  EXPECT_EQ(found, -1);
  EXPECT_EQ(bw_script_output_edit_record(h.get(), 2444301.5, 5, 6, 4, 5, 2, &found), 0);
  EXPECT_EQ(found, 0);
  char* text = nullptr;
  bw_script_output_get_script_output(h.get(), "SET A = CLOSE", 0, "", &text);
  bw_free(text);
  const double* values = nullptr;
  size_t count = 0;
  ASSERT_EQ(bw_script_output_get_series(h.get(), "a", &values, &count), 0);
  // Row 0 is the filler.
  ASSERT_EQ(count, 11u);
  EXPECT_EQ(values[1], 5.0);
  EXPECT_EQ(values[2], 1.0);
}

TEST(CFace, EditJDateChangesTheDateAlone) {
  const Handle h = rampOf(7);
  int32_t found = 0;
  EXPECT_EQ(bw_script_output_edit_jdate(h.get(), 2444300.5, 2444239.5, &found), 0);
  EXPECT_EQ(found, -1);
  EXPECT_EQ(bw_script_output_edit_jdate(h.get(), 1.5, 2.5, &found), 0);
  EXPECT_EQ(found, 0);
  char* text = nullptr;
  bw_script_output_get_script_output(h.get(), "CLOSE", 0, "", &text);
  EXPECT_TRUE(taken(text).starts_with(localDates("Date\r\n1980-01-01 00:00:00\r\n")));
}

TEST(CFace, RecordQueriesDoNotSeeTheBarsOfAppendRecord) {
  const Handle h = rampOf(7);
  int32_t count = -5, found = -5, number = -5;
  EXPECT_EQ(bw_script_output_get_record_count(h.get(), &count), 0);
  EXPECT_EQ(count, 0);
  double jdate = 9, o = 9, hi = 9, lo = 9, c = 9;
  int32_t volume = 9;
  EXPECT_EQ(bw_script_output_get_record_by_index(h.get(), 1, &jdate, &o, &hi, &lo, &c, &volume, &found), 0);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(jdate, 9);
  EXPECT_EQ(bw_script_output_get_jdate(h.get(), 1, &jdate), 0);
  EXPECT_EQ(jdate, 0.0);
  EXPECT_EQ(bw_script_output_get_record_number_by_jdate(h.get(), 2444305.5, &number), 0);
  EXPECT_EQ(number, -5) << "nothing is written when the first bar is not earlier";
}

TEST(CFace, BulkRowsAreTheSingleCallsInTurn) {
  const Handle one = rampOf(9);
  std::vector<double> rows;
  for (int i = 1; i <= 9; ++i)
    rows.insert(rows.end(), {2444299.5 + i, 1.0 * i, i + 1.0, i - 1.0, 1.0 * i, 100.9});
  Handle bulk(bw_script_output_create());
  EXPECT_EQ(bw_script_output_append_records(bulk.get(), rows.data(), 9), 0);
  EXPECT_EQ(bw_script_output_append_records(bulk.get(), nullptr, 0), 0);
  EXPECT_EQ(bw_script_output_append_records(bulk.get(), nullptr, 1), -1);
  const char* script = "SET A = CLOSE + VOLUME";
  char *left = nullptr, *right = nullptr;
  bw_script_output_get_script_output(one.get(), script, 0, "", &left);
  bw_script_output_get_script_output(bulk.get(), script, 0, "", &right);
  EXPECT_EQ(taken(left), taken(right));
}

/// Three bars of a block, a row each of `width` numbers, the middle one of this volume.
std::vector<double> blockWithVolume(double volume, std::size_t width) {
  std::vector<double> rows;
  for (int i = 1; i <= 3; ++i) {
    rows.insert(rows.end(), {2444299.5 + i, 10, 11, 9, 10, i == 2 ? volume : 100});
    rows.resize(rows.size() + width - 6, 2444299.5 + i);
  }
  return rows;
}

/// What no bar can have as its volume.
const double kNoVolumes[] = {2147483648.0, -2147483649.0, 3e9, 1e300, std::nan(""), HUGE_VAL, -HUGE_VAL};

TEST(CFace, ABlockWithAVolumeBeyond32BitsIsRefusedAsAWhole) {
  bw_backtest* backtest = bw_backtest_create();
  bw_alert* alert = bw_alert_create();
  int32_t count = -1;
  for (const double volume : kNoVolumes) {
    EXPECT_EQ(bw_backtest_append_records(backtest, blockWithVolume(volume, 6).data(), 3), 1) << volume;
    EXPECT_EQ(bw_backtest_get_record_count(backtest, &count), 0);
    EXPECT_EQ(count, 0) << volume;
    EXPECT_EQ(bw_alert_append_records(alert, blockWithVolume(volume, 7).data(), 3), 1) << volume;
    EXPECT_EQ(bw_alert_get_record_count(alert, &count), 0);
    EXPECT_EQ(count, 0) << volume;
    // The bars of append_record are not counted; a run over the seven that were there is a line each.
    const Handle output = rampOf(7);
    EXPECT_EQ(bw_script_output_append_records(output.get(), blockWithVolume(volume, 6).data(), 3), 1)
        << volume;
    char* text = nullptr;
    EXPECT_EQ(bw_script_output_get_script_output(output.get(), "SET A = VOLUME\r\nA > 0", 0, "A", &text), 0);
    const std::string lines = taken(text);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 1 + 7) << lines;
  }
  bw_backtest_destroy(backtest);
  bw_alert_destroy(alert);
}

TEST(CFace, TheOutermostVolumesOf32BitsAreTaken) {
  for (const double volume : {2147483647.0, 2147483647.9, -2147483648.0, -2147483648.9, 0.0, 100.9}) {
    bw_backtest* backtest = bw_backtest_create();
    EXPECT_EQ(bw_backtest_append_records(backtest, blockWithVolume(volume, 6).data(), 3), 0) << volume;
    int32_t taken = 1, found = 0;
    EXPECT_EQ(bw_backtest_get_record_by_index(backtest, 2, nullptr, nullptr, nullptr, nullptr, nullptr,
                                              &taken, &found),
              0);
    EXPECT_EQ(found, -1);
    EXPECT_EQ(taken, static_cast<int32_t>(std::trunc(volume)));
    bw_backtest_destroy(backtest);
  }
}

TEST(CFace, GetSeriesTakesANameAsAColumnShowsItOrAsAScriptWritesIt) {
  const Handle h = rampOf(12);
  char* text = nullptr;
  const double* values = nullptr;
  size_t count = 0;
  EXPECT_EQ(bw_script_output_get_series(h.get(), "A", &values, &count), 1) << "before any run";
  bw_script_output_get_script_output(h.get(), "SET A = SMA(CLOSE, 3)", 0, "", &text);
  bw_free(text);
  for (const char* name : {"A", "a", "SMA(CLOSE, 3)", "sma(close,3)", " S M A (CLOSE,3)"}) {
    ASSERT_EQ(bw_script_output_get_series(h.get(), name, &values, &count), 0) << name;
    ASSERT_EQ(count, 13u);
    // The mean of the closes 2, 3, 4 is the first, at row 4.
    EXPECT_EQ(values[4], 3.0);
  }
  EXPECT_EQ(bw_script_output_get_series(h.get(), "B", &values, &count), 1);
  EXPECT_EQ(bw_script_output_get_series(h.get(), "3", &values, &count), 0);
  EXPECT_EQ(count, 0u) << "a number has no rows";
}

TEST(CFace, ClearRecordsRemovesTheBars) {
  const Handle h = rampOf(20);
  EXPECT_EQ(bw_script_output_clear_records(h.get()), 0);
  char* text = nullptr;
  EXPECT_EQ(bw_script_output_get_script_output(h.get(), "CLOSE", 0, "", &text), 0);
  EXPECT_EQ(text, nullptr);
}

TEST(CFace, JulianDates) {
  const Handle h = rampOf(0);
  double jdate = 0;
  EXPECT_EQ(bw_script_output_to_julian_date(h.get(), 1980, 1, 1, 0, 0, 0, 999, &jdate), 0);
  EXPECT_EQ(jdate, 2444239.5);
  char* text = nullptr;
  EXPECT_EQ(bw_script_output_from_julian_date(h.get(), 2444239.5, &text), 0);
  EXPECT_EQ(taken(text), localDates("1980-01-01 00:00:00"));
  EXPECT_EQ(bw_script_output_from_julian_date(h.get(), 0.0, &text), 0);
  EXPECT_EQ(taken(text), "No Date Time");
}

TEST(CFace, TheVersionIsAText) {
  EXPECT_EQ(std::string(bw_version()).find('.'), 1u);
}

}  // namespace
