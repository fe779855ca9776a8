#include "services/output/script_output.hpp"

#include <cstddef>

#include "brindlewort/brindlewort.h"
#include "services/output/pointer_block.hpp"
#include "shell/c/component_calls.hpp"
#include "shell/help/script_help.hpp"

using namespace brindlewort;
using namespace brindlewort::c_face;

struct bw_script_output : HandleState {
  CScriptOutput component;
};

namespace {

/// The text of a run of the incremental way. The run has never been when no memory is left for the text.
template <class Answer>
int32_t giveRunText(bw_script_output* h, char** text, Answer answer) {
  bool hasRun = false;
  const int32_t status = giveText(h, text, [&](bw_script_output& handle) {
    auto of = answer(handle.component);
    hasRun = true;
    return of;
  });
  if (status == kFailure && hasRun) h->component.takeBackRun();
  return status;
}

}  // namespace

bw_script_output* bw_script_output_create(void) {
  return create<bw_script_output>();
}

void bw_script_output_destroy(bw_script_output* h) {
  delete h;
}

int32_t bw_script_output_on_script_error(bw_script_output* h, bw_script_error_fn fn, void* user) {
  return onScriptError(h, fn, user);
}

int32_t bw_script_output_cancel(bw_script_output* h) {
  return cancelCall(h);
}

int32_t bw_script_output_append_record(bw_script_output* h, double jdate, double open_price,
                                       double high_price, double low_price, double close_price,
                                       int32_t volume) {
  return appendRecord(h, jdate, open_price, high_price, low_price, close_price, volume);
}

int32_t bw_script_output_append_records(bw_script_output* h, const double* rows, size_t count) {
  return appendRecords(h, rows, count);
}

int32_t bw_script_output_edit_record(bw_script_output* h, double jdate, double open_price, double high_price,
                                     double low_price, double close_price, int32_t volume, int32_t* result) {
  return editRecord(h, jdate, open_price, high_price, low_price, close_price, volume, result);
}

int32_t bw_script_output_get_record_by_jdate(bw_script_output* h, double jdate, double* open_price,
                                             double* high_price, double* low_price, double* close_price,
                                             int32_t* volume, int32_t* result) {
  if (anyNull(open_price, high_price, low_price, close_price, volume, result)) return kNullArgument;
  return getRecordByJDate(h, jdate, open_price, high_price, low_price, close_price, volume, result);
}

int32_t bw_script_output_get_record_by_index(bw_script_output* h, int32_t index, double* jdate,
                                             double* open_price, double* high_price, double* low_price,
                                             double* close_price, int32_t* volume, int32_t* result) {
  if (anyNull(jdate, open_price, high_price, low_price, close_price, volume, result)) return kNullArgument;
  return getRecordByIndex(h, index, jdate, open_price, high_price, low_price, close_price, volume, result);
}

int32_t bw_script_output_clear_records(bw_script_output* h) {
  return clearRecords(h);
}

int32_t bw_script_output_get_record_count(bw_script_output* h, int32_t* count) {
  return getRecordCount(h, count);
}

int32_t bw_script_output_get_jdate(bw_script_output* h, int32_t index, double* jdate) {
  return getJDate(h, index, jdate);
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
  return editJDate(h, old_jdate, new_jdate, result);
}

int32_t bw_script_output_to_julian_date(bw_script_output* h, int32_t year, int32_t month, int32_t day,
                                        int32_t hour, int32_t minute, int32_t second, int32_t /*millisecond*/,
                                        double* jdate) {
  return toJulianDate(h, year, month, day, hour, minute, second, jdate);
}

int32_t bw_script_output_from_julian_date(bw_script_output* h, double jdate, char** text) {
  return fromJulianDate(h, jdate, text);
}

int32_t bw_script_output_get_script_output(bw_script_output* h, const char* script, int32_t map_count,
                                           const char* output_sets, char** text) {
  return giveText(h, text, [&](bw_script_output& handle) {
    return handle.component.GetScriptOutput(textOf(script), map_count, textOf(output_sets));
  });
}

int32_t bw_script_output_get_custom_ind_from_condition(bw_script_output* h, const char* script, char** text) {
  return giveText(h, text, [&](bw_script_output& handle) {
    return handle.component.GetCustomIndFromCondition(textOf(script));
  });
}

// ---- The incremental way

int32_t bw_script_output_initialise_transient_store(bw_script_output* h, int32_t variables_size) {
  return onHandle(h, [&](bw_script_output& handle) {
    handle.component.InitialiseTransientStore(variables_size);
    return kSuccess;
  });
}

int32_t bw_script_output_process_scrip_data(bw_script_output* h, const char* script, int32_t* result) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (!result) return kNullArgument;
    return giveBool(handle.component.ProcessScripData(textOf(script)), result, kPlainTrue);
  });
}

int32_t bw_script_output_set_data_retrieve_mode(bw_script_output* h, int32_t mode) {
  return onHandle(h, [&](bw_script_output& handle) {
    handle.component.SetDataRetrieveMode(mode);
    return kSuccess;
  });
}

int32_t bw_script_output_add_or_remove_basic_vector_series(bw_script_output* h, const char* name,
                                                           int32_t size) {
  return onHandle(h, [&](bw_script_output& handle) {
    handle.component.AddOrRemoveBasicVectorSeries(textOf(name), size);
    return kSuccess;
  });
}

int32_t bw_script_output_update_basic_vector_data(bw_script_output* h, const char* name, double value,
                                                  uint8_t add_or_update) {
  return onHandle(h, [&](bw_script_output& handle) {
    handle.component.UpdateBasicVectorData(textOf(name), value, add_or_update);
    return kSuccess;
  });
}

int32_t bw_script_output_get_variable_values_log(bw_script_output* h, const char* path) {
  return onHandle(h, [&](bw_script_output& handle) {
    handle.component.GetVariableValuesLog(textOf(path));
    return kSuccess;
  });
}

int32_t bw_script_output_append_record_new(bw_script_output* h, double jdate, double open_price,
                                           double high_price, double low_price, double close_price,
                                           int32_t volume) {
  return onHandle(h, [&](bw_script_output& handle) {
    handle.component.AppendRecord_New(jdate, open_price, high_price, low_price, close_price, volume);
    return kSuccess;
  });
}

int32_t bw_script_output_edit_record_new(bw_script_output* h, double jdate, double open_price,
                                         double high_price, double low_price, double close_price,
                                         int32_t volume, int32_t* result) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (!result) return kNullArgument;
    const std::optional<bool> edited =
        handle.component.EditRecord_New(jdate, open_price, high_price, low_price, close_price, volume);
    giveBool(edited.value_or(false), result);
    return edited ? kSuccess : kFailure;
  });
}

int32_t bw_script_output_edit_jdate_new(bw_script_output* h, double old_jdate, double new_jdate,
                                        int32_t* result) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (!result) return kNullArgument;
    return giveBool(handle.component.EditJDate_New(old_jdate, new_jdate), result);
  });
}

int32_t bw_script_output_get_script_output_new(bw_script_output* h, const char* script, int32_t map_count,
                                               const char* output_sets, char** text) {
  return giveRunText(h, text, [&](CScriptOutput& component) {
    return component.GetScriptOutput_New(textOf(script), map_count, textOf(output_sets));
  });
}

int32_t bw_script_output_get_custom_ind_from_condition_new(bw_script_output* h, const char* script,
                                                           char** text) {
  return giveRunText(h, text, [&](CScriptOutput& component) {
    return component.GetCustomIndFromCondition_NEW(textOf(script));
  });
}

static_assert(sizeof(bw_series) == sizeof(PointerBlock::Rows) &&
                  sizeof(bw_series_list) == sizeof(PointerBlock::List) &&
                  offsetof(bw_series, count) == offsetof(PointerBlock::Rows, count) &&
                  offsetof(bw_series_list, items) == offsetof(PointerBlock::List, items),
              "a host reads the component's list through the types of the C face");

int32_t bw_script_output_get_script_output_ptr(bw_script_output* h, const char* script, int32_t map_count,
                                               const char* output_sets, intptr_t* data_ptr) {
  return onHandle(h, [&](bw_script_output& handle) {
    if (!data_ptr) return kNullArgument;
    *data_ptr = -1;
    *data_ptr = handle.component.GetScriptOutput_PTR(textOf(script), map_count, textOf(output_sets));
    return *data_ptr == -1 ? kFailure : kSuccess;
  });
}

int32_t bw_script_output_get_script_help(bw_script_output* h, char** text) {
  return giveText(h, text,
                  [](bw_script_output& handle) { return scriptHelp(handle.component.lastFunction()); });
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
