// Every function of the C face, called without a handle, or without a place for a result: the status is -1,
// and nothing is written.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "brindlewort/brindlewort.h"

namespace {

/// Where a call may write, and what stands there before it.
template <class Value>
struct Place {
  static Value start() {
    if constexpr (std::is_pointer_v<Value>) {
      return nullptr;
    } else {
      return 7;
    }
  }
  Value value = start();
  operator Value*() { return &value; }
  bool untouched() const { return value == start(); }
};

/// An argument that the function could work with if it had a handle.
template <class Value>
struct Given {
  Value value = 1;
  operator Value() { return value; }
  bool untouched() const { return true; }
};
template <>
struct Given<const char*> {
  operator const char*() { return "CLOSE"; }
  bool untouched() const { return true; }
};
/// A block of bars.
template <>
struct Given<const double*> {
  double rows[7] = {1, 1, 1, 1, 1, 1, 1};
  operator const double*() { return rows; }
  bool untouched() const { return true; }
};
/// Callbacks and what is handed to them.
template <class Pointer>
struct Nothing {
  operator Pointer() { return nullptr; }
  bool untouched() const { return true; }
};

template <class Argument>
auto argumentOf() {
  if constexpr (!std::is_pointer_v<Argument> || std::is_same_v<Argument, const char*> ||
                std::is_same_v<Argument, const double*>) {
    return Given<Argument>{};
  } else if constexpr (std::is_void_v<std::remove_pointer_t<Argument>> ||
                       std::is_function_v<std::remove_pointer_t<Argument>>) {
    return Nothing<Argument>{};
  } else {
    return Place<std::remove_pointer_t<Argument>>{};
  }
}

template <class Handle, class... Arguments>
void callWithoutHandle(const char* name, int32_t (*function)(Handle*, Arguments...)) {
  std::tuple<decltype(argumentOf<Arguments>())...> arguments;
  std::apply(
      [&](auto&... argument) {
        EXPECT_EQ(function(nullptr, argument...), -1) << name;
        EXPECT_TRUE((true && ... && argument.untouched())) << name << " has written";
      },
      arguments);
}

/// Queries of records by out-pointers skip those that are null, save the last.
bool skipsNullPlaces(std::string_view name) {
  return name.starts_with("bw_backtest_get_record_by_") || name.starts_with("bw_alert_get_record_by_");
}

/// The argument itself, or a null pointer in the stead of a place.
template <class Argument, class Holder>
Argument givenOrNull(Holder& holder, bool isNull) {
  if constexpr (std::is_pointer_v<Argument>) {
    if (isNull) return nullptr;
  }
  return holder;
}

template <class Handle, class... Arguments, std::size_t... i>
void callWithoutPlaces(const char* name, int32_t (*function)(Handle*, Arguments...), Handle* handle,
                       std::index_sequence<i...>) {
  constexpr bool isPlace[] = {
      std::is_same_v<decltype(argumentOf<Arguments>()), Place<std::remove_pointer_t<Arguments>>>..., false};
  for (std::size_t missing = 0; missing < sizeof...(Arguments); ++missing) {
    const bool isSkipped = skipsNullPlaces(name) && missing + 1 < sizeof...(Arguments);
    if (!isPlace[missing] || isSkipped) continue;
    std::tuple<decltype(argumentOf<Arguments>())...> arguments;
    EXPECT_EQ(function(handle, givenOrNull<Arguments>(std::get<i>(arguments), i == missing)...), -1)
        << name << ", argument " << missing + 1;
    EXPECT_TRUE((true && ... && std::get<i>(arguments).untouched())) << name << " has written";
  }
}
template <class Handle, class... Arguments>
void callWithoutPlaces(const char* name, int32_t (*function)(Handle*, Arguments...), Handle* handle) {
  callWithoutPlaces(name, function, handle, std::index_sequence_for<Arguments...>{});
}

struct Handles {
  bw_script_output* output = bw_script_output_create();
  bw_backtest* backtest = bw_backtest_create();
  bw_alert* alert = bw_alert_create();
  bw_validate* validate = bw_validate_create();

  Handles() = default;
  Handles(const Handles&) = delete;
  Handles& operator=(const Handles&) = delete;
  ~Handles() {
    bw_script_output_destroy(output);
    bw_backtest_destroy(backtest);
    bw_alert_destroy(alert);
    bw_validate_destroy(validate);
  }
  template <class Handle>
  Handle* of() const {
    if constexpr (std::is_same_v<Handle, bw_script_output>) {
      return output;
    } else if constexpr (std::is_same_v<Handle, bw_backtest>) {
      return backtest;
    } else if constexpr (std::is_same_v<Handle, bw_alert>) {
      return alert;
    } else {
      return validate;
    }
  }
};
template <class Handle, class... Arguments>
Handle* handleFor(int32_t (*)(Handle*, Arguments...), const Handles& handles) {
  return handles.of<Handle>();
}

struct FaceFunction {
  const char* name;
  void (*withoutHandle)();
  void (*withoutPlaces)(const Handles& handles);
};
// clang-format off
#define TAKES_A_HANDLE(function)                                                                          \
  {#function, [] { callWithoutHandle(#function, &function); },                                            \
   [](const Handles& handles) { callWithoutPlaces(#function, &function, handleFor(&function, handles)); }}
#define TAKES_NONE(function) {#function, [] {}, [](const Handles&) {}}
// clang-format on

const FaceFunction kFunctions[] = {
    TAKES_NONE(bw_version),
    TAKES_NONE(bw_free),
    TAKES_NONE(bw_script_output_create),
    TAKES_NONE(bw_script_output_destroy),
    TAKES_A_HANDLE(bw_script_output_on_script_error),
    TAKES_A_HANDLE(bw_script_output_cancel),
    TAKES_A_HANDLE(bw_script_output_append_record),
    TAKES_A_HANDLE(bw_script_output_append_records),
    TAKES_A_HANDLE(bw_script_output_edit_record),
    TAKES_A_HANDLE(bw_script_output_get_record_by_jdate),
    TAKES_A_HANDLE(bw_script_output_get_record_by_index),
    TAKES_A_HANDLE(bw_script_output_clear_records),
    TAKES_A_HANDLE(bw_script_output_get_record_count),
    TAKES_A_HANDLE(bw_script_output_get_jdate),
    TAKES_A_HANDLE(bw_script_output_get_record_number_by_jdate),
    TAKES_A_HANDLE(bw_script_output_edit_jdate),
    TAKES_A_HANDLE(bw_script_output_to_julian_date),
    TAKES_A_HANDLE(bw_script_output_from_julian_date),
    TAKES_A_HANDLE(bw_script_output_get_script_output),
    TAKES_A_HANDLE(bw_script_output_get_custom_ind_from_condition),
    TAKES_A_HANDLE(bw_script_output_initialise_transient_store),
    TAKES_A_HANDLE(bw_script_output_process_scrip_data),
    TAKES_A_HANDLE(bw_script_output_set_data_retrieve_mode),
    TAKES_A_HANDLE(bw_script_output_add_or_remove_basic_vector_series),
    TAKES_A_HANDLE(bw_script_output_update_basic_vector_data),
    TAKES_A_HANDLE(bw_script_output_get_variable_values_log),
    TAKES_A_HANDLE(bw_script_output_append_record_new),
    TAKES_A_HANDLE(bw_script_output_edit_record_new),
    TAKES_A_HANDLE(bw_script_output_edit_jdate_new),
    TAKES_A_HANDLE(bw_script_output_get_script_output_new),
    TAKES_A_HANDLE(bw_script_output_get_custom_ind_from_condition_new),
    TAKES_A_HANDLE(bw_script_output_get_script_output_ptr),
    TAKES_A_HANDLE(bw_script_output_get_series),
    TAKES_A_HANDLE(bw_script_output_get_script_help),
    TAKES_NONE(bw_backtest_create),
    TAKES_NONE(bw_backtest_destroy),
    TAKES_A_HANDLE(bw_backtest_on_script_error),
    TAKES_A_HANDLE(bw_backtest_cancel),
    TAKES_A_HANDLE(bw_backtest_set_random_seed),
    TAKES_A_HANDLE(bw_backtest_append_record),
    TAKES_A_HANDLE(bw_backtest_append_records),
    TAKES_A_HANDLE(bw_backtest_edit_record),
    TAKES_A_HANDLE(bw_backtest_get_record_by_jdate),
    TAKES_A_HANDLE(bw_backtest_get_record_by_index),
    TAKES_A_HANDLE(bw_backtest_clear_records),
    TAKES_A_HANDLE(bw_backtest_get_record_count),
    TAKES_A_HANDLE(bw_backtest_to_julian_date),
    TAKES_A_HANDLE(bw_backtest_from_julian_date),
    TAKES_A_HANDLE(bw_backtest_get_script_help),
    TAKES_A_HANDLE(bw_backtest_backtest),
    TAKES_A_HANDLE(bw_backtest_backtest_new),
    TAKES_NONE(bw_alert_create),
    TAKES_NONE(bw_alert_destroy),
    TAKES_A_HANDLE(bw_alert_on_alert),
    TAKES_A_HANDLE(bw_alert_on_script_error),
    TAKES_A_HANDLE(bw_alert_cancel),
    TAKES_A_HANDLE(bw_alert_append_record),
    TAKES_A_HANDLE(bw_alert_append_records),
    TAKES_A_HANDLE(bw_alert_edit_record),
    TAKES_A_HANDLE(bw_alert_get_record_by_jdate),
    TAKES_A_HANDLE(bw_alert_get_record_by_index),
    TAKES_A_HANDLE(bw_alert_clear_records),
    TAKES_A_HANDLE(bw_alert_get_record_count),
    TAKES_A_HANDLE(bw_alert_to_julian_date),
    TAKES_A_HANDLE(bw_alert_from_julian_date),
    TAKES_A_HANDLE(bw_alert_get_script_help),
    TAKES_A_HANDLE(bw_alert_get_jdate),
    TAKES_A_HANDLE(bw_alert_edit_jdate),
    TAKES_A_HANDLE(bw_alert_get_symbol),
    TAKES_A_HANDLE(bw_alert_set_symbol),
    TAKES_A_HANDLE(bw_alert_get_alert_name),
    TAKES_A_HANDLE(bw_alert_set_alert_name),
    TAKES_A_HANDLE(bw_alert_get_alert_script),
    TAKES_A_HANDLE(bw_alert_set_alert_script),
    TAKES_A_HANDLE(bw_alert_evaluate),
    TAKES_A_HANDLE(bw_alert_initialise_transient_store),
    TAKES_A_HANDLE(bw_alert_process_scrip_data),
    TAKES_A_HANDLE(bw_alert_append_record_opt),
    TAKES_A_HANDLE(bw_alert_edit_record_opt),
    TAKES_A_HANDLE(bw_alert_get_variable_values_log),
    TAKES_NONE(bw_validate_create),
    TAKES_NONE(bw_validate_destroy),
    TAKES_A_HANDLE(bw_validate_validate),
    TAKES_A_HANDLE(bw_validate_get_constant),
    TAKES_A_HANDLE(bw_validate_get_script_help),
};

/// What the public header declares: the name in front of the bracket behind each mark of an export, comments left out.
std::set<std::string> declaredFunctions() {
  std::ifstream file(BRINDLEWORT_HEADER, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  for (std::size_t at; (at = text.find("/*")) != std::string::npos;) {
    text.erase(at, text.find("*/", at) + 2 - at);
  }
  constexpr std::string_view kMark = "\nBW_API ";
  std::set<std::string> names;
  for (std::size_t at = 0; (at = text.find(kMark, at)) != std::string::npos; at += kMark.size()) {
    const std::size_t bracket = text.find('(', at);
    const std::size_t name = text.rfind("bw_", bracket);
    if (bracket != std::string::npos && name > at) names.insert(text.substr(name, bracket - name));
  }
  return names;
}

TEST(NullHandles, EveryFunctionOfTheHeaderIsTriedHere) {
  std::set<std::string> tried;
  for (const FaceFunction& function : kFunctions)
    EXPECT_TRUE(tried.insert(function.name).second) << function.name;
  const std::set<std::string> declared = declaredFunctions();
  EXPECT_GE(declared.size(), 80u) << BRINDLEWORT_HEADER;
  std::set<std::string> missing;
  std::ranges::set_difference(declared, tried, std::inserter(missing, missing.end()));
  for (const std::string& name : missing) ADD_FAILURE() << "kFunctions lacks " << name;
  EXPECT_EQ(tried.size(), declared.size());
}

TEST(NullHandles, AreMinusOneForEveryFunction) {
  for (const FaceFunction& function : kFunctions) function.withoutHandle();
}

TEST(NullPlaces, AreMinusOneForEveryFunctionThatDoesNotSkipThem) {
  const Handles handles;
  for (const FaceFunction& function : kFunctions) function.withoutPlaces(handles);
}

TEST(NullHandles, MayBeDestroyed) {
  bw_script_output_destroy(nullptr);
  bw_backtest_destroy(nullptr);
  bw_alert_destroy(nullptr);
  bw_validate_destroy(nullptr);
  bw_free(nullptr);
}

}  // namespace
