#include "services/output/script_output.hpp"

#include <new>

#include "brindlewort/brindlewort.h"
#include "series/julian_date.hpp"
#include "series/numbers.hpp"
#include "shell/c/handle.hpp"

using namespace brindlewort;
using namespace brindlewort::c_face;

struct bw_script_output {
  CScriptOutput component;
};

namespace {

/// A text result: null when the call returns nothing.
std::int32_t giveText(const std::optional<std::string>& text, char** out) {
  *out = nullptr;
  if (!text) return kSuccess;
  *out = copyText(*text);
  return *out ? kSuccess : kFailure;
}

std::int32_t giveBool(bool value, std::int32_t* out) {
  *out = value ? kTrue : 0;
  return kSuccess;
}

}  // namespace

bw_script_output* bw_script_output_create(void) {
  return new (std::nothrow) bw_script_output;
}

void bw_script_output_destroy(bw_script_output* h) {
  delete h;
}

int32_t bw_script_output_on_script_error(bw_script_output* h, bw_script_error_fn fn, void* user) {
  return onHandle(h, [&](bw_script_output& handle) {
    handle.component.ScriptError = nullptr;
    if (fn) handle.component.ScriptError = [fn, user](const std::string& text) { fn(user, text.c_str()); };
    return kSuccess;
  });
}

int32_t bw_script_output_append_record(bw_script_output* h, double jdate, double open_price,
                                       double high_price, double low_price, double close_price,
                                       int32_t volume) {
  return onHandle(h, [&](bw_script_output& handle) {
    handle.component.AppendRecord(jdate, open_price, high_price, low_price, close_price, volume);
    return kSuccess;
  });
}

int32_t bw_script_output_append_records(bw_script_output* h, const double* rows, size_t count) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (count == 0) return kSuccess;
    if (!rows) return kNullArgument;
    handle.component.makeRoom(count);
    for (const double* row = rows; row != rows + 6 * count; row += 6) {
      handle.component.AppendRecord(row[0], row[1], row[2], row[3], row[4], toInt32(row[5]));
    }
    return kSuccess;
  });
}

int32_t bw_script_output_edit_record(bw_script_output* h, double jdate, double open_price, double high_price,
                                     double low_price, double close_price, int32_t volume, int32_t* result) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (!result) return kNullArgument;
    return giveBool(
        handle.component.EditRecord(jdate, open_price, high_price, low_price, close_price, volume), result);
  });
}

int32_t bw_script_output_get_record_by_jdate(bw_script_output* h, double jdate, double* open_price,
                                             double* high_price, double* low_price, double* close_price,
                                             int32_t* volume, int32_t* result) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (anyNull(open_price, high_price, low_price, close_price, volume, result)) return kNullArgument;
    const Bar* bar = handle.component.GetRecordByJDate(jdate);
    if (bar) {
      *open_price = bar->OpenPrice;
      *high_price = bar->HighPrice;
      *low_price = bar->LowPrice;
      *close_price = bar->ClosePrice;
      *volume = volumeToInt32(bar->Volume);
    }
    return giveBool(bar != nullptr, result);
  });
}

int32_t bw_script_output_get_record_by_index(bw_script_output* h, int32_t index, double* jdate,
                                             double* open_price, double* high_price, double* low_price,
                                             double* close_price, int32_t* volume, int32_t* result) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (anyNull(jdate, open_price, high_price, low_price, close_price, volume, result)) return kNullArgument;
    const Bar* bar = handle.component.GetRecordByIndex(index);
    if (bar) {
      *jdate = bar->JDate;
      *open_price = bar->OpenPrice;
      *high_price = bar->HighPrice;
      *low_price = bar->LowPrice;
      *close_price = bar->ClosePrice;
      *volume = volumeToInt32(bar->Volume);
    }
    return giveBool(bar != nullptr, result);
  });
}

int32_t bw_script_output_clear_records(bw_script_output* h) {
  return onHandle(h, [](bw_script_output& handle) {
    handle.component.ClearRecords();
    return kSuccess;
  });
}

int32_t bw_script_output_get_record_count(bw_script_output* h, int32_t* count) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (!count) return kNullArgument;
    *count = handle.component.RecordCount();
    return kSuccess;
  });
}

int32_t bw_script_output_get_jdate(bw_script_output* h, int32_t index, double* jdate) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (!jdate) return kNullArgument;
    *jdate = handle.component.GetJDate(index);
    return kSuccess;
  });
}

int32_t bw_script_output_get_record_number_by_jdate(bw_script_output* h, double jdate, int32_t* number) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (!number) return kNullArgument;
    if (const auto found = handle.component.GetRecordNumberByJDate(jdate)) *number = *found;
    return kSuccess;
  });
}

int32_t bw_script_output_edit_jdate(bw_script_output* h, double old_jdate, double new_jdate,
                                    int32_t* result) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (!result) return kNullArgument;
    return giveBool(handle.component.EditJDate(old_jdate, new_jdate), result);
  });
}

int32_t bw_script_output_to_julian_date(bw_script_output* h, int32_t year, int32_t month, int32_t day,
                                        int32_t hour, int32_t minute, int32_t second, int32_t /*millisecond*/,
                                        double* jdate) {
  return onHandle(h, [&](bw_script_output&) {
    if (!jdate) return kNullArgument;
    *jdate = ToJulianDate(year, month, day, hour, minute, second);
    return kSuccess;
  });
}

int32_t bw_script_output_from_julian_date(bw_script_output* h, double jdate, char** text) {
  return onHandle(
      h, [&](bw_script_output&) { return text ? giveText(FromJulianDate(jdate), text) : kNullArgument; });
}

int32_t bw_script_output_get_script_output(bw_script_output* h, const char* script, int32_t map_count,
                                           const char* output_sets, char** text) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (!text) return kNullArgument;
    return giveText(handle.component.GetScriptOutput(textOf(script), map_count, textOf(output_sets)), text);
  });
}

int32_t bw_script_output_get_custom_ind_from_condition(bw_script_output* h, const char* script, char** text) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (!text) return kNullArgument;
    return giveText(handle.component.GetCustomIndFromCondition(textOf(script)), text);
  });
}

int32_t bw_script_output_get_series(bw_script_output* h, const char* name, const double** values,
                                    size_t* count) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (anyNull(values, count)) return kNullArgument;
    const Series* series = handle.component.findSeries(textOf(name));
    if (!series) return kFailure;
    *values = series->data();
    *count = series->size();
    return kSuccess;
  });
}
