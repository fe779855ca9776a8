// Bars, dates and events through the C face: each value comes back from where it was put.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "brindlewort/brindlewort.h"

namespace {

template <class Handle>
using Owned = std::unique_ptr<Handle, void (*)(Handle*)>;

Owned<bw_script_output> scriptOutput() {
  return {bw_script_output_create(), bw_script_output_destroy};
}
Owned<bw_alert> alert() {
  return {bw_alert_create(), bw_alert_destroy};
}
Owned<bw_backtest> backtest() {
  return {bw_backtest_create(), bw_backtest_destroy};
}

struct Record {
  double jdate = -1, open = -1, high = -1, low = -1, close = -1;
  int32_t volume = -1;
  bool operator==(const Record&) const = default;
};

constexpr double kDate = 2460000.5;

/// The bar of an index and of a date, by the functions of a component.
template <class Handle, class ByIndex, class ByDate>
void expectRecord(Handle* h, ByIndex byIndex, ByDate byDate, int32_t index, const Record& expected) {
  Record r;
  int32_t found = 0;
  EXPECT_EQ(byIndex(h, index, &r.jdate, &r.open, &r.high, &r.low, &r.close, &r.volume, &found), 0);
  EXPECT_EQ(found, -1);
  EXPECT_TRUE(r == expected) << r.jdate << " " << r.open << " " << r.high << " " << r.low << " " << r.close;
  Record d;
  d.jdate = expected.jdate;
  EXPECT_EQ(byDate(h, expected.jdate, &d.open, &d.high, &d.low, &d.close, &d.volume, &found), 0);
  EXPECT_EQ(found, -1);
  EXPECT_TRUE(d == expected);
  EXPECT_EQ(byDate(h, 1.0, &d.open, &d.high, &d.low, &d.close, &d.volume, &found), 0);
  EXPECT_EQ(found, 0);
  EXPECT_TRUE(d == expected) << "nothing is written where there is no bar";
}

TEST(CRecords, OfScriptOutput) {
  const auto h = scriptOutput();
  bw_script_output_initialise_transient_store(h.get(), 250);
  EXPECT_EQ(bw_script_output_append_record_new(h.get(), kDate, 12, 15, 9, 11, 700), 0);
  EXPECT_EQ(bw_script_output_append_record_new(h.get(), kDate + 1, 22, 25, 19, 21, 800), 0);
  expectRecord(h.get(), bw_script_output_get_record_by_index, bw_script_output_get_record_by_jdate, 1,
               {kDate, 12, 15, 9, 11, 700});
  int32_t done = 0;
  EXPECT_EQ(bw_script_output_edit_record_new(h.get(), kDate + 1, 32, 35, 29, 31, 900, &done), 0);
  EXPECT_EQ(done, -1);
  expectRecord(h.get(), bw_script_output_get_record_by_index, bw_script_output_get_record_by_jdate, 2,
               {kDate + 1, 32, 35, 29, 31, 900});
}

TEST(CRecords, OfBacktest) {
  const auto h = backtest();
  EXPECT_EQ(bw_backtest_append_record(h.get(), kDate, 12, 15, 9, 11, 700), 0);
  const double rows[] = {kDate + 1, 22, 25, 19, 21, 800, kDate + 2, 32, 35, 29, 31, 900};
  EXPECT_EQ(bw_backtest_append_records(h.get(), rows, 2), 0);
  expectRecord(h.get(), bw_backtest_get_record_by_index, bw_backtest_get_record_by_jdate, 1,
               {kDate, 12, 15, 9, 11, 700});
  expectRecord(h.get(), bw_backtest_get_record_by_index, bw_backtest_get_record_by_jdate, 3,
               {kDate + 2, 32, 35, 29, 31, 900});
  int32_t count = 0, done = 0;
  EXPECT_EQ(bw_backtest_get_record_count(h.get(), &count), 0);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(bw_backtest_edit_record(h.get(), kDate + 1, 42, 45, 39, 41, 950, &done), 0);
  EXPECT_EQ(done, -1);
  expectRecord(h.get(), bw_backtest_get_record_by_index, bw_backtest_get_record_by_jdate, 2,
               {kDate + 1, 42, 45, 39, 41, 950});
}

TEST(CRecords, OfAlert) {
  const auto h = alert();
  EXPECT_EQ(bw_alert_append_record(h.get(), kDate, 12, 15, 9, 11, 700, kDate + 0.25), 0);
  const double rows[] = {kDate + 1, 22, 25, 19, 21, 800, kDate + 1.25,
                         kDate + 2, 32, 35, 29, 31, 900, kDate + 2.25};
  EXPECT_EQ(bw_alert_append_records(h.get(), rows, 2), 0);
  expectRecord(h.get(), bw_alert_get_record_by_index, bw_alert_get_record_by_jdate, 1,
               {kDate, 12, 15, 9, 11, 700});
  expectRecord(h.get(), bw_alert_get_record_by_index, bw_alert_get_record_by_jdate, 3,
               {kDate + 2, 32, 35, 29, 31, 900});
  double date = 0;
  EXPECT_EQ(bw_alert_get_jdate(h.get(), 2, &date), 0);
  EXPECT_EQ(date, kDate + 1);
  int32_t done = 0;
  EXPECT_EQ(bw_alert_edit_jdate(h.get(), kDate, kDate - 3, &done), 0);
  EXPECT_EQ(done, -1);
  EXPECT_EQ(bw_alert_get_jdate(h.get(), 1, &date), 0);
  EXPECT_EQ(date, kDate - 3);
}

TEST(CRecords, ANullResultPointerIsMinusOneInEachCall) {
  const auto a = alert();
  bw_alert_append_record(a.get(), kDate, 12, 15, 9, 11, 700, kDate);
  Record r;
  EXPECT_EQ(bw_alert_edit_record(a.get(), kDate, 1, 1, 1, 1, 1, 1, nullptr), -1);
  EXPECT_EQ(bw_alert_edit_jdate(a.get(), kDate, kDate, nullptr), -1);
  EXPECT_EQ(bw_alert_get_jdate(a.get(), 1, nullptr), -1);
  EXPECT_EQ(bw_alert_get_record_count(a.get(), nullptr), -1);
  EXPECT_EQ(bw_alert_get_record_by_index(a.get(), 1, &r.jdate, &r.open, &r.high, &r.low, &r.close, &r.volume,
                                         nullptr),
            -1);
  EXPECT_EQ(
      bw_alert_get_record_by_jdate(a.get(), kDate, &r.open, &r.high, &r.low, &r.close, &r.volume, nullptr),
      -1);
  EXPECT_EQ(bw_alert_to_julian_date(a.get(), 2024, 1, 1, 0, 0, 0, 0, nullptr), -1);
  EXPECT_EQ(bw_alert_from_julian_date(a.get(), kDate, nullptr), -1);
  EXPECT_EQ(bw_alert_append_records(a.get(), nullptr, 1), -1);

  const auto b = backtest();
  EXPECT_EQ(bw_backtest_append_records(b.get(), nullptr, 1), -1);
  EXPECT_EQ(bw_backtest_edit_record(b.get(), kDate, 1, 1, 1, 1, 1, nullptr), -1);
  EXPECT_EQ(bw_backtest_backtest(b.get(), "1", "1", "1", "1", 0, "", nullptr), -1);

  const auto s = scriptOutput();
  const double* values = nullptr;
  size_t count = 0;
  EXPECT_EQ(bw_script_output_get_series(s.get(), "A", nullptr, &count), -1);
  EXPECT_EQ(bw_script_output_get_series(s.get(), "A", &values, nullptr), -1);
  EXPECT_EQ(bw_script_output_get_script_output_ptr(s.get(), "1", 0, "", nullptr), -1);
}

TEST(CRecords, ASeriesComesWithItsCount) {
  const auto h = scriptOutput();
  for (int i = 1; i <= 9; ++i)
    bw_script_output_append_record(h.get(), kDate + i, i, i + 2, i - 1, i + 1, 100);
  char* text = nullptr;
  ASSERT_EQ(bw_script_output_get_script_output(h.get(), "SET A = HIGH - OPEN\r\nA", 0, "", &text), 0);
  ASSERT_NE(text, nullptr);
  bw_free(text);
  const double* values = nullptr;
  size_t count = 0;
  ASSERT_EQ(bw_script_output_get_series(h.get(), "A", &values, &count), 0);
  ASSERT_EQ(count, 10u);  // a filler bar stands in front
  EXPECT_EQ(values[9], 2);
}

TEST(CRecords, APointerCallWithoutAScriptFails) {
  const auto h = scriptOutput();
  intptr_t list = 0;
  EXPECT_EQ(bw_script_output_get_script_output_ptr(h.get(), "", 0, "", &list), 1);
  EXPECT_EQ(list, -1);
}

// ---- Events -----------------------------------------------------------------------------------------------

struct Told {
  std::vector<std::string> lines;
  static void fired(void* user, const char* symbol, const char* name, double date, double price) {
    static_cast<Told*>(user)->lines.push_back(std::string(symbol) + " " + name + " " +
                                              std::to_string(date - kDate) + " " + std::to_string(price));
  }
  static void failed(void* user, const char* symbol, const char* name, const char* text) {
    static_cast<Told*>(user)->lines.push_back(std::string(symbol) + " " + name + " " + text);
  }
};

TEST(CRecords, AnAlertTellsTheLastTrade) {
  const auto h = alert();
  Told told;
  bw_alert_on_alert(h.get(), Told::fired, &told);
  bw_alert_on_script_error(h.get(), Told::failed, &told);
  bw_alert_set_symbol(h.get(), "ABC");
  bw_alert_set_alert_name(h.get(), "rises");
  std::vector<double> rows;
  for (int i = 0; i < 9; ++i) rows.insert(rows.end(), {kDate + i, 10, 14, 8, 11.0 + i, 100, kDate + i + 0.5});
  EXPECT_EQ(bw_alert_append_records(h.get(), rows.data(), 9), 0);
  EXPECT_TRUE(told.lines.empty());
  bw_alert_set_alert_script(h.get(), "CLOSE > OPEN");
  bw_alert_set_alert_script(h.get(), "NONSENSE > 1");
  EXPECT_EQ(told.lines, (std::vector<std::string>{"ABC rises 8.500000 19.000000",
                                                  "ABC rises Error: Undefined variable 'NONSENSE'"}));
}

TEST(CRecords, AScriptThatIsRefusedHasAStatusOfItsOwn) {
  const auto h = alert();
  bw_alert_initialise_transient_store(h.get(), 250);
  int32_t prepared = 7;
  EXPECT_EQ(bw_alert_process_scrip_data(h.get(), "", &prepared), 1);
  EXPECT_EQ(prepared, 0);
  EXPECT_EQ(bw_alert_process_scrip_data(h.get(), "CLOSE > OPEN", &prepared), 0);
  EXPECT_EQ(prepared, 1);
}

TEST(CRecords, ASeedGivesTheSameReportAgain) {
  const auto report = [](int64_t seed) {
    const auto h = backtest();
    bw_backtest_set_random_seed(h.get(), seed);
    for (int i = 0; i < 60; ++i) {
      const double close = 100 + (i * 37 % 23);
      bw_backtest_append_record(h.get(), kDate + i, close - 1, close + 2, close - 2, close, 100);
    }
    char* text = nullptr;
    EXPECT_EQ(bw_backtest_backtest(h.get(), "CLOSE > OPEN", "", "CLOSE < REF(CLOSE, 1)", "", 0, "", &text),
              0);
    const std::string copy = text ? text : "";
    bw_free(text);
    return copy;
  };
  EXPECT_NE(report(1), "");
  EXPECT_EQ(report(1), report(1));
  EXPECT_NE(report(1), report(2));
}

TEST(CRecords, EachScriptOfABacktestHasItsOwnPart) {
  const auto report = [](const char* buy, const char* sell, const char* exitLong, const char* exitShort) {
    const auto h = backtest();
    bw_backtest_set_random_seed(h.get(), 1);
    for (int i = 0; i < 40; ++i) {
      const double close = 100 + i % 7;
      bw_backtest_append_record(h.get(), kDate + i, close, close + 2, close - 2, close, 100);
    }
    char* text = nullptr;
    EXPECT_EQ(bw_backtest_backtest(h.get(), buy, sell, exitLong, exitShort, 0, "", &text), 0);
    const std::string copy = text ? text : "";
    bw_free(text);
    return copy;
  };
  // Bars close at 100 to 106 in turn. Long from 102 to 105, and short from 105 to 101.
  const std::string longs = report("CLOSE = 102", "", "CLOSE = 105", "");
  const std::string shorts = report("", "CLOSE = 105", "", "CLOSE = 101");
  EXPECT_NE(longs.find(",LONG,102.0000,"), std::string::npos) << longs;
  EXPECT_NE(longs.find(",EXIT LONG,105.0000,"), std::string::npos) << longs;
  EXPECT_NE(shorts.find(",SHORT,105.0000,"), std::string::npos) << shorts;
  EXPECT_NE(shorts.find(",EXIT SHORT,101.0000,"), std::string::npos) << shorts;
}

/// The engine has been set up behind the bar, so that its prices have no row to change.
TEST(CRecords, AnEditThatTheSeriesDoNotTakeFails) {
  const auto h = alert();
  EXPECT_EQ(bw_alert_append_record_opt(h.get(), kDate, 12, 15, 9, 11, 700, kDate), 0);
  bw_alert_initialise_transient_store(h.get(), 250);
  int32_t done = 2;
  EXPECT_EQ(bw_alert_edit_record_opt(h.get(), kDate, 12, 15, 9, 12, 700, kDate, &done), 1);
  EXPECT_EQ(done, 0);
}

}  // namespace
