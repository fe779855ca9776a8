#include "services/backtest/backtest.hpp"

#include "brindlewort/brindlewort.h"
#include "functions/script_engine.hpp"
#include "shell/c/component_calls.hpp"
#include "shell/help/script_help.hpp"

using namespace brindlewort;
using namespace brindlewort::c_face;

struct bw_backtest : HandleState {
  CBacktest component;
};

namespace {

int32_t run(bw_backtest* h, decltype(&CBacktest::Backtest) way, const char* buy, const char* sell,
            const char* exitLong, const char* exitShort, double slipPct, const char* maxOpenDays,
            char** text) {
  return giveText(h, text, [&](bw_backtest& handle) {
    return (handle.component.*way)(textOf(buy), textOf(sell), textOf(exitLong), textOf(exitShort), slipPct,
                                   textOf(maxOpenDays));
  });
}

}  // namespace

bw_backtest* bw_backtest_create(void) {
  return create<bw_backtest>();
}

void bw_backtest_destroy(bw_backtest* h) {
  delete h;
}

int32_t bw_backtest_on_script_error(bw_backtest* h, bw_script_error_fn fn, void* user) {
  return onScriptError(h, fn, user);
}

int32_t bw_backtest_set_random_seed(bw_backtest* h, int64_t seed) {
  return onHandle(h, [&](bw_backtest& handle) {
    handle.component.fixedSeed = seed;
    return kSuccess;
  });
}

int32_t bw_backtest_cancel(bw_backtest* h) {
  return cancelCall(h);
}

int32_t bw_backtest_append_record(bw_backtest* h, double jdate, double open_price, double high_price,
                                  double low_price, double close_price, int32_t volume) {
  return appendRecord(h, jdate, open_price, high_price, low_price, close_price, volume);
}

int32_t bw_backtest_append_records(bw_backtest* h, const double* rows, size_t count) {
  return appendRecords(h, rows, count);
}

int32_t bw_backtest_edit_record(bw_backtest* h, double jdate, double open_price, double high_price,
                                double low_price, double close_price, int32_t volume, int32_t* result) {
  return editRecord(h, jdate, open_price, high_price, low_price, close_price, volume, result);
}

int32_t bw_backtest_get_record_by_jdate(bw_backtest* h, double jdate, double* open_price, double* high_price,
                                        double* low_price, double* close_price, int32_t* volume,
                                        int32_t* result) {
  return getRecordByJDate(h, jdate, open_price, high_price, low_price, close_price, volume, result);
}

int32_t bw_backtest_get_record_by_index(bw_backtest* h, int32_t index, double* jdate, double* open_price,
                                        double* high_price, double* low_price, double* close_price,
                                        int32_t* volume, int32_t* result) {
  return getRecordByIndex(h, index, jdate, open_price, high_price, low_price, close_price, volume, result);
}

int32_t bw_backtest_clear_records(bw_backtest* h) {
  return clearRecords(h);
}

int32_t bw_backtest_get_record_count(bw_backtest* h, int32_t* count) {
  return getRecordCount(h, count);
}

int32_t bw_backtest_to_julian_date(bw_backtest* h, int32_t year, int32_t month, int32_t day, int32_t hour,
                                   int32_t minute, int32_t second, int32_t millisecond, double* jdate) {
  return onHandle(h, [&](bw_backtest&) {
    if (!jdate) return kNullArgument;
    *jdate = ToJulianDateWithMilliseconds(year, month, day, hour, minute, second, millisecond);
    return kSuccess;
  });
}

int32_t bw_backtest_from_julian_date(bw_backtest* h, double jdate, char** text) {
  return fromJulianDate(h, jdate, text);
}

int32_t bw_backtest_backtest(bw_backtest* h, const char* buy_script, const char* sell_script,
                             const char* exit_long_script, const char* exit_short_script, double slip_pct,
                             const char* max_open_days, char** text) {
  return run(h, &CBacktest::Backtest, buy_script, sell_script, exit_long_script, exit_short_script, slip_pct,
             max_open_days, text);
}

int32_t bw_backtest_backtest_new(bw_backtest* h, const char* buy_script, const char* sell_script,
                                 const char* exit_long_script, const char* exit_short_script, double slip_pct,
                                 const char* max_open_days, char** text) {
  return run(h, &CBacktest::Backtest_New, buy_script, sell_script, exit_long_script, exit_short_script,
             slip_pct, max_open_days, text);
}

int32_t bw_backtest_get_script_help(bw_backtest* h, char** text) {
  return giveText(h, text, [&](bw_backtest& handle) {
    const CScriptEngine* engine = handle.component.lastEngine();
    return scriptHelp(engine ? std::string_view(engine->currentFunction) : std::string_view());
  });
}
