// Plays a session on the C face.

#include <brindlewort/brindlewort.h>

#include <memory>

#include "session.hpp"

namespace brindlewort::session {

template <>
struct Parameter<std::int32_t> : IntegerParameter<std::int32_t> {
  using IntegerParameter::IntegerParameter;
};
template <>
struct Parameter<std::uint8_t> : IntegerParameter<std::uint8_t> {
  using IntegerParameter::IntegerParameter;
};
template <>
struct Parameter<std::int32_t*> : IntegerResult<std::int32_t> {
  using IntegerResult::IntegerResult;
};

template <>
struct Parameter<const char*> {
  explicit Parameter(Arguments& words) : value(words.text()) {}
  const char* pass() { return value.c_str(); }
  void tell(Transcript&) {}
  std::string value;
};

template <>
struct Parameter<char**> {
  explicit Parameter(Arguments&) {}
  char** pass() { return &value; }
  void tell(Transcript& transcript) {
    transcript.text(value);
    bw_free(value);
  }
  char* value = nullptr;
};

template <>
struct Parameter<std::intptr_t*> {
  explicit Parameter(Arguments&) {}
  std::intptr_t* pass() { return &value; }
  void tell(Transcript& transcript) {
    transcript.list(value == -1 ? nullptr : reinterpret_cast<const void*>(value));
  }
  std::intptr_t value = kUnwritten;
};

namespace {

template <class Handle>
using Held = std::unique_ptr<Handle, void (*)(Handle*)>;

struct Components {
  Held<bw_alert> alert{nullptr, bw_alert_destroy};
  Held<bw_backtest> backtest{nullptr, bw_backtest_destroy};
  Held<bw_script_output> output{nullptr, bw_script_output_destroy};
  Held<bw_validate> validate{nullptr, bw_validate_destroy};
};

template <class Handle, class... Types>
Call member(const Held<Handle>& component, std::int32_t (*function)(Handle*, Types...)) {
  return [&component, function](Arguments& words, Transcript& transcript) {
    callMember<Types...>([&](Types... values) { return function(component.get(), values...); }, words,
                         transcript);
  };
}

void tellError(void* user, const char* description) {
  static_cast<Transcript*>(user)->line("  event ScriptError " + quoted(description));
}
void tellAlertError(void* user, const char* symbol, const char* alertName, const char* description) {
  static_cast<Transcript*>(user)->line("  event ScriptError " + quoted(symbol) + ' ' + quoted(alertName) +
                                       ' ' + quoted(description));
}
void tellAlert(void* user, const char* symbol, const char* alertName, double date, double price) {
  static_cast<Transcript*>(user)->line("  event Alert " + formatted(price) + ' ' + formatted(date) + ' ' +
                                       quoted(symbol) + ' ' + quoted(alertName));
}

void addAlert(Face& face, Components& all, Transcript& transcript) {
  const auto& alert = all.alert;
  face.constructors["Alert"] = [&all, &transcript] {
    all.alert.reset(bw_alert_create());
    bw_alert_on_alert(all.alert.get(), tellAlert, &transcript);
    bw_alert_on_script_error(all.alert.get(), tellAlertError, &transcript);
  };
  face.members.insert({
      {"Alert.AppendRecord", member(alert, bw_alert_append_record)},
      {"Alert.EditRecord", member(alert, bw_alert_edit_record)},
      {"Alert.GetRecordByJDate", member(alert, bw_alert_get_record_by_jdate)},
      {"Alert.GetRecordByIndex", member(alert, bw_alert_get_record_by_index)},
      {"Alert.ClearRecords", member(alert, bw_alert_clear_records)},
      {"Alert.RecordCount", member(alert, bw_alert_get_record_count)},
      {"Alert.Symbol", member(alert, bw_alert_get_symbol)},
      {"Alert.Symbol=", member(alert, bw_alert_set_symbol)},
      {"Alert.AlertScript", member(alert, bw_alert_get_alert_script)},
      {"Alert.AlertScript=", member(alert, bw_alert_set_alert_script)},
      {"Alert.ToJulianDate", member(alert, bw_alert_to_julian_date)},
      {"Alert.FromJulianDate", member(alert, bw_alert_from_julian_date)},
      {"Alert.AlertName", member(alert, bw_alert_get_alert_name)},
      {"Alert.AlertName=", member(alert, bw_alert_set_alert_name)},
      {"Alert.ScriptHelp", member(alert, bw_alert_get_script_help)},
      {"Alert.GetJDate", member(alert, bw_alert_get_jdate)},
      {"Alert.Evaluate", member(alert, bw_alert_evaluate)},
      {"Alert.EditJDate", member(alert, bw_alert_edit_jdate)},
      {"Alert.ProcessScripData", member(alert, bw_alert_process_scrip_data)},
      {"Alert.AppendRecord_Opt", member(alert, bw_alert_append_record_opt)},
      {"Alert.EditRecord_Opt", member(alert, bw_alert_edit_record_opt)},
      {"Alert.InitialiseTransientStore", member(alert, bw_alert_initialise_transient_store)},
      {"Alert.GetVariableValuesLog", member(alert, bw_alert_get_variable_values_log)},
  });
}

void addBacktest(Face& face, Components& all, Transcript& transcript) {
  const auto& backtest = all.backtest;
  face.constructors["Backtest"] = [&all, &transcript] {
    all.backtest.reset(bw_backtest_create());
    bw_backtest_on_script_error(all.backtest.get(), tellError, &transcript);
  };
  face.members.insert({
      {"Backtest.AppendRecord", member(backtest, bw_backtest_append_record)},
      {"Backtest.EditRecord", member(backtest, bw_backtest_edit_record)},
      {"Backtest.GetRecordByJDate", member(backtest, bw_backtest_get_record_by_jdate)},
      {"Backtest.GetRecordByIndex", member(backtest, bw_backtest_get_record_by_index)},
      {"Backtest.ClearRecords", member(backtest, bw_backtest_clear_records)},
      {"Backtest.RecordCount", member(backtest, bw_backtest_get_record_count)},
      {"Backtest.ToJulianDate", member(backtest, bw_backtest_to_julian_date)},
      {"Backtest.FromJulianDate", member(backtest, bw_backtest_from_julian_date)},
      {"Backtest.Backtest", member(backtest, bw_backtest_backtest)},
      {"Backtest.ScriptHelp", member(backtest, bw_backtest_get_script_help)},
      {"Backtest.Backtest_New", member(backtest, bw_backtest_backtest_new)},
  });
}

void addScriptOutput(Face& face, Components& all, Transcript& transcript) {
  const auto& output = all.output;
  face.constructors["ScriptOutput"] = [&all, &transcript] {
    all.output.reset(bw_script_output_create());
    bw_script_output_on_script_error(all.output.get(), tellError, &transcript);
  };
  face.members.insert({
      {"ScriptOutput.AppendRecord", member(output, bw_script_output_append_record)},
      {"ScriptOutput.EditRecord", member(output, bw_script_output_edit_record)},
      {"ScriptOutput.GetRecordByJDate", member(output, bw_script_output_get_record_by_jdate)},
      {"ScriptOutput.GetRecordByIndex", member(output, bw_script_output_get_record_by_index)},
      {"ScriptOutput.ClearRecords", member(output, bw_script_output_clear_records)},
      {"ScriptOutput.RecordCount", member(output, bw_script_output_get_record_count)},
      {"ScriptOutput.ToJulianDate", member(output, bw_script_output_to_julian_date)},
      {"ScriptOutput.FromJulianDate", member(output, bw_script_output_from_julian_date)},
      {"ScriptOutput.GetScriptOutput", member(output, bw_script_output_get_script_output)},
      {"ScriptOutput.ScriptHelp", member(output, bw_script_output_get_script_help)},
      {"ScriptOutput.GetJDate", member(output, bw_script_output_get_jdate)},
      {"ScriptOutput.GetRecordNumberByJDate", member(output, bw_script_output_get_record_number_by_jdate)},
      {"ScriptOutput.GetCustomIndFromCondition",
       member(output, bw_script_output_get_custom_ind_from_condition)},
      {"ScriptOutput.EditJDate", member(output, bw_script_output_edit_jdate)},
      {"ScriptOutput.GetScriptOutput_New", member(output, bw_script_output_get_script_output_new)},
      {"ScriptOutput.AppendRecord_New", member(output, bw_script_output_append_record_new)},
      {"ScriptOutput.EditRecord_New", member(output, bw_script_output_edit_record_new)},
      {"ScriptOutput.EditJDate_New", member(output, bw_script_output_edit_jdate_new)},
      {"ScriptOutput.ProcessScripData", member(output, bw_script_output_process_scrip_data)},
      {"ScriptOutput.InitialiseTransientStore", member(output, bw_script_output_initialise_transient_store)},
      {"ScriptOutput.SetDataRetrieveMode", member(output, bw_script_output_set_data_retrieve_mode)},
      {"ScriptOutput.AddOrRemoveBasicVectorSeries",
       member(output, bw_script_output_add_or_remove_basic_vector_series)},
      {"ScriptOutput.UpdateBasicVectorData", member(output, bw_script_output_update_basic_vector_data)},
      {"ScriptOutput.GetScriptOutput_PTR", member(output, bw_script_output_get_script_output_ptr)},
      {"ScriptOutput.GetCustomIndFromCondition_NEW",
       member(output, bw_script_output_get_custom_ind_from_condition_new)},
      {"ScriptOutput.GetVariableValuesLog", member(output, bw_script_output_get_variable_values_log)},
  });
}

void addValidate(Face& face, Components& all) {
  const auto& validate = all.validate;
  face.constructors["Validate"] = [&all] { all.validate.reset(bw_validate_create()); };
  face.members.insert({
      {"Validate.Validate", member(validate, bw_validate_validate)},
      {"Validate.Constant", member(validate, bw_validate_get_constant)},
      {"Validate.ScriptHelp", member(validate, bw_validate_get_script_help)},
  });
}

}  // namespace

}  // namespace brindlewort::session

int main(int argc, char** argv) {
  using namespace brindlewort::session;
  Components all;
  return playFiles(argc, argv, [&](Transcript& transcript) {
    Face face;
    addAlert(face, all, transcript);
    addBacktest(face, all, transcript);
    addScriptOutput(face, all, transcript);
    addValidate(face, all);
    return face;
  });
}
