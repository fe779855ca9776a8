#include "services/alert/alert.hpp"

#include <vector>

#include "brindlewort/brindlewort.h"
#include "shell/c/component_calls.hpp"
#include "shell/help/script_help.hpp"

using namespace brindlewort;
using namespace brindlewort::c_face;

struct bw_alert : HandleState {
  CAlert component;
};

namespace {

template <class Set>
int32_t setText(bw_alert* h, const char* text, Set set) {
  return onHandle(h, [&](bw_alert& handle) {
    (handle.component.*set)(textOf(text));
    return kSuccess;
  });
}

template <class Get>
int32_t getText(bw_alert* h, char** text, Get get) {
  return giveText(h, text, [&](bw_alert& handle) { return (handle.component.*get)(); });
}

}  // namespace

bw_alert* bw_alert_create(void) {
  return create<bw_alert>();
}

void bw_alert_destroy(bw_alert* h) {
  delete h;
}

int32_t bw_alert_on_alert(bw_alert* h, bw_alert_fn fn, void* user) {
  return onHandle(h, [&](bw_alert& handle) {
    decltype(CAlert::Alert) tell;
    if (fn) {
      tell = [&handle, fn, user](const std::string& symbol, const std::string& name, double date,
                                 double price) {
        callHost(handle, fn, user, symbol.c_str(), name.c_str(), date, price);
      };
    }
    handle.component.Alert = std::move(tell);
    return kSuccess;
  });
}

int32_t bw_alert_on_script_error(bw_alert* h, bw_alert_error_fn fn, void* user) {
  return onHandle(h, [&](bw_alert& handle) {
    decltype(CAlert::ScriptError) tell;
    if (fn) {
      tell = [&handle, fn, user](const std::string& symbol, const std::string& name,
                                 const std::string& text) {
        callHost(handle, fn, user, symbol.c_str(), name.c_str(), text.c_str());
      };
    }
    handle.component.ScriptError = std::move(tell);
    return kSuccess;
  });
}

int32_t bw_alert_cancel(bw_alert* h) {
  return cancelCall(h);
}

int32_t bw_alert_append_record(bw_alert* h, double jdate, double open_price, double high_price,
                               double low_price, double close_price, int32_t volume, double last_trade_date) {
  return onHandle(h, [&](bw_alert& handle) {
    handle.component.AppendRecord(jdate, open_price, high_price, low_price, close_price, volume,
                                  last_trade_date);
    return kSuccess;
  });
}

int32_t bw_alert_append_records(bw_alert* h, const double* rows, size_t count) {
  return onHandle(h, [&](bw_alert& handle) {
    if (count == 0) return kSuccess;
    if (!rows) return kNullArgument;
    constexpr size_t kWidth = kRowWidth + 1;
    if (!volumesFit(rows, count, kWidth)) return kFailure;
    std::vector<Bar> bars(count);
    for (Bar& bar : bars) {
      bar = {rows[0], rows[1], rows[2], rows[3], rows[4], rows[5], rows[6], rows[4]};
      rows += kWidth;
    }
    handle.component.AppendRecords(bars);
    return kSuccess;
  });
}

int32_t bw_alert_edit_record(bw_alert* h, double jdate, double open_price, double high_price,
                             double low_price, double close_price, int32_t volume, double last_trade_date,
                             int32_t* result) {
  return onHandle(h, [&](bw_alert& handle) {
    if (!result) return kNullArgument;
    return giveBool(handle.component.EditRecord(jdate, open_price, high_price, low_price, close_price, volume,
                                                last_trade_date),
                    result);
  });
}

int32_t bw_alert_get_record_by_jdate(bw_alert* h, double jdate, double* open_price, double* high_price,
                                     double* low_price, double* close_price, int32_t* volume,
                                     int32_t* result) {
  return getRecordByJDate(h, jdate, open_price, high_price, low_price, close_price, volume, result);
}

int32_t bw_alert_get_record_by_index(bw_alert* h, int32_t index, double* jdate, double* open_price,
                                     double* high_price, double* low_price, double* close_price,
                                     int32_t* volume, int32_t* result) {
  return getRecordByIndex(h, index, jdate, open_price, high_price, low_price, close_price, volume, result);
}

int32_t bw_alert_clear_records(bw_alert* h) {
  return clearRecords(h);
}

int32_t bw_alert_get_record_count(bw_alert* h, int32_t* count) {
  return getRecordCount(h, count);
}

int32_t bw_alert_to_julian_date(bw_alert* h, int32_t year, int32_t month, int32_t day, int32_t hour,
                                int32_t minute, int32_t second, int32_t /*millisecond*/, double* jdate) {
  return toJulianDate(h, year, month, day, hour, minute, second, jdate);
}

int32_t bw_alert_from_julian_date(bw_alert* h, double jdate, char** text) {
  return fromJulianDate(h, jdate, text);
}

int32_t bw_alert_get_script_help(bw_alert* h, char** text) {
  return giveText(h, text, [](bw_alert& handle) { return scriptHelp(handle.component.lastFunction()); });
}

int32_t bw_alert_get_jdate(bw_alert* h, int32_t index, double* jdate) {
  return getJDate(h, index, jdate);
}

int32_t bw_alert_edit_jdate(bw_alert* h, double old_jdate, double new_jdate, int32_t* result) {
  return editJDate(h, old_jdate, new_jdate, result);
}

int32_t bw_alert_get_symbol(bw_alert* h, char** text) {
  return getText(h, text, &CAlert::Symbol);
}
int32_t bw_alert_set_symbol(bw_alert* h, const char* text) {
  return setText(h, text, &CAlert::setSymbol);
}
int32_t bw_alert_get_alert_name(bw_alert* h, char** text) {
  return getText(h, text, &CAlert::AlertName);
}
int32_t bw_alert_set_alert_name(bw_alert* h, const char* text) {
  return setText(h, text, &CAlert::setAlertName);
}
int32_t bw_alert_get_alert_script(bw_alert* h, char** text) {
  return getText(h, text, &CAlert::AlertScript);
}
int32_t bw_alert_set_alert_script(bw_alert* h, const char* text) {
  return setText(h, text, &CAlert::setAlertScript);
}

int32_t bw_alert_evaluate(bw_alert* h, const char* script, int32_t* result) {
  return onHandle(h, [&](bw_alert& handle) {
    if (!result) return kNullArgument;
    return giveBool(handle.component.Evaluate(textOf(script)), result, kPlainTrue);
  });
}

int32_t bw_alert_initialise_transient_store(bw_alert* h, int32_t variables_size) {
  return onHandle(h, [&](bw_alert& handle) {
    handle.component.InitialiseTransientStore(variables_size);
    return kSuccess;
  });
}

int32_t bw_alert_process_scrip_data(bw_alert* h, const char* script, int32_t* result) {
  return onHandle(h, [&](bw_alert& handle) {
    if (!result) return kNullArgument;
    const bool prepared = handle.component.ProcessScripData(textOf(script));
    giveBool(prepared, result, kPlainTrue);
    return prepared ? kSuccess : kFailure;
  });
}

int32_t bw_alert_append_record_opt(bw_alert* h, double jdate, double open_price, double high_price,
                                   double low_price, double close_price, int32_t volume,
                                   double last_trade_date) {
  return onHandle(h, [&](bw_alert& handle) {
    const bool taken = handle.component.AppendRecord_Opt(jdate, open_price, high_price, low_price,
                                                         close_price, volume, last_trade_date);
    return taken ? kSuccess : kFailure;
  });
}

int32_t bw_alert_edit_record_opt(bw_alert* h, double jdate, double open_price, double high_price,
                                 double low_price, double close_price, int32_t volume, double last_trade_date,
                                 int32_t* result) {
  return onHandle(h, [&](bw_alert& handle) {
    if (!result) return kNullArgument;
    const std::optional<bool> edited = handle.component.EditRecord_Opt(
        jdate, open_price, high_price, low_price, close_price, volume, last_trade_date);
    giveBool(edited.value_or(false), result);
    return edited ? kSuccess : kFailure;
  });
}

int32_t bw_alert_get_variable_values_log(bw_alert* h, const char* path) {
  return onHandle(h, [&](bw_alert& handle) {
    handle.component.GetVariableValuesLog(textOf(path));
    return kSuccess;
  });
}
