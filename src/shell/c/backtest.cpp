#include "services/backtest/backtest.hpp"

#include <new>

#include "brindlewort/brindlewort.h"
#include "functions/script_engine.hpp"
#include "series/julian_date.hpp"
#include "series/numbers.hpp"
#include "shell/c/handle.hpp"
#include "shell/help/script_help.hpp"

using namespace brindlewort;
using namespace brindlewort::c_face;

struct bw_backtest {
  CBacktest component;
};

bw_backtest* bw_backtest_create(void) {
  try {
    return new bw_backtest;
  } catch (...) {
    return nullptr;
  }
}

void bw_backtest_destroy(bw_backtest* h) {
  delete h;
}

int32_t bw_backtest_on_script_error(bw_backtest* h, bw_script_error_fn fn, void* user) {
  return onHandle(h, [&](bw_backtest& handle) {
    handle.component.ScriptError = nullptr;
    if (fn) handle.component.ScriptError = [fn, user](const std::string& text) { fn(user, text.c_str()); };
    return kSuccess;
  });
}

int32_t bw_backtest_set_random_seed(bw_backtest* h, int64_t seed) {
  return onHandle(h, [&](bw_backtest& handle) {
    handle.component.fixedSeed = seed;
    return kSuccess;
  });
}

int32_t bw_backtest_append_record(bw_backtest* h, double jdate, double open_price, double high_price,
                                  double low_price, double close_price, int32_t volume) {
  return onHandle(h, [&](bw_backtest& handle) {
    handle.component.AppendRecord(jdate, open_price, high_price, low_price, close_price, volume);
    return kSuccess;
  });
}

int32_t bw_backtest_append_records(bw_backtest* h, const double* rows, size_t count) {
  return onHandle(h, [&](bw_backtest& handle) {
    if (count == 0) return kSuccess;
    if (!rows) return kNullArgument;
    handle.component.makeRoom(count);
    for (const double* row = rows; row != rows + 6 * count; row += 6) {
      handle.component.AppendRecord(row[0], row[1], row[2], row[3], row[4], toInt32(row[5]));
    }
    return kSuccess;
  });
}

int32_t bw_backtest_edit_record(bw_backtest* h, double jdate, double open_price, double high_price,
                                double low_price, double close_price, int32_t volume, int32_t* result) {
  return onHandle(h, [&](bw_backtest& handle) {
    if (!result) return kNullArgument;
    return giveBool(
        handle.component.EditRecord(jdate, open_price, high_price, low_price, close_price, volume), result);
  });
}

int32_t bw_backtest_get_record_by_jdate(bw_backtest* h, double jdate, double* open_price, double* high_price,
                                        double* low_price, double* close_price, int32_t* volume,
                                        int32_t* result) {
  return onHandle(h, [&](bw_backtest& handle) {
    if (!result) return kNullArgument;
    return giveBar(handle.component.GetRecordByJDate(jdate), nullptr, open_price, high_price, low_price,
                   close_price, volume, result);
  });
}

int32_t bw_backtest_get_record_by_index(bw_backtest* h, int32_t index, double* jdate, double* open_price,
                                        double* high_price, double* low_price, double* close_price,
                                        int32_t* volume, int32_t* result) {
  return onHandle(h, [&](bw_backtest& handle) {
    if (!result) return kNullArgument;
    return giveBar(handle.component.GetRecordByIndex(index), jdate, open_price, high_price, low_price,
                   close_price, volume, result);
  });
}

int32_t bw_backtest_clear_records(bw_backtest* h) {
  return onHandle(h, [](bw_backtest& handle) {
    handle.component.ClearRecords();
    return kSuccess;
  });
}

int32_t bw_backtest_get_record_count(bw_backtest* h, int32_t* count) {
  return onHandle(h, [&](bw_backtest& handle) {
    if (!count) return kNullArgument;
    *count = handle.component.RecordCount();
    return kSuccess;
  });
}

int32_t bw_backtest_to_julian_date(bw_backtest* h, int32_t year, int32_t month, int32_t day, int32_t hour,
                                   int32_t minute, int32_t second, int32_t /*millisecond*/, double* jdate) {
  return onHandle(h, [&](bw_backtest&) {
    if (!jdate) return kNullArgument;
    *jdate = ToJulianDate(year, month, day, hour, minute, second);
    return kSuccess;
  });
}

int32_t bw_backtest_from_julian_date(bw_backtest* h, double jdate, char** text) {
  return onHandle(h,
                  [&](bw_backtest&) { return text ? giveText(FromJulianDate(jdate), text) : kNullArgument; });
}

int32_t bw_backtest_backtest(bw_backtest* h, const char* buy_script, const char* sell_script,
                             const char* exit_long_script, const char* exit_short_script, double slip_pct,
                             const char* max_open_days, char** text) {
  return onHandle(h, [&](bw_backtest& handle) {
    if (!text) return kNullArgument;
    return giveText(
        handle.component.Backtest(textOf(buy_script), textOf(sell_script), textOf(exit_long_script),
                                  textOf(exit_short_script), slip_pct, textOf(max_open_days)),
        text);
  });
}

int32_t bw_backtest_backtest_new(bw_backtest* h, const char* buy_script, const char* sell_script,
                                 const char* exit_long_script, const char* exit_short_script, double slip_pct,
                                 const char* max_open_days, char** text) {
  return onHandle(h, [&](bw_backtest& handle) {
    if (!text) return kNullArgument;
    return giveText(
        handle.component.Backtest_New(textOf(buy_script), textOf(sell_script), textOf(exit_long_script),
                                      textOf(exit_short_script), slip_pct, textOf(max_open_days)),
        text);
  });
}

int32_t bw_backtest_get_script_help(bw_backtest* h, char** text) {
  return onHandle(h, [&](bw_backtest& handle) {
    if (!text) return kNullArgument;
    const CScriptEngine* engine = handle.component.lastEngine();
    return giveText(scriptHelp(engine ? std::string_view(engine->currentFunction) : std::string_view()),
                    text);
  });
}
