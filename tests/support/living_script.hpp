#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "services/output/script_output.hpp"
#include "support/series_checks.hpp"

/// Scripts that stay prepared while bars come.
namespace brindlewort::testing {

inline constexpr double kFirstDay = 2451544.5;  // 1 January 2000, midnight

/// A component with a prepared script. Bar i, from 0, is of day i.
class LivingScript {
 public:
  explicit LivingScript(std::string script, std::int32_t entries = 250, std::int32_t mode = 101)
      : text_(std::move(script)) {
    component.ScriptError = [this](const std::string& description) { error = description; };
    component.InitialiseTransientStore(entries);
    component.SetDataRetrieveMode(mode);
    component.ProcessScripData(text_);
  }
  LivingScript(const LivingScript&) = delete;

  LivingScript& bar(double open, double high, double low, double close, std::int32_t volume = 100) {
    component.AppendRecord_New(kFirstDay + component.RecordCount(), open, high, low, close, volume);
    return *this;
  }
  /// Bars that open one below their close and reach one above it and two below.
  LivingScript& closes(std::initializer_list<double> values) {
    for (double close : values) bar(close - 1.0, close + 1.0, close - 2.0, close);
    return *this;
  }
  /// Bars that close at 1, 2, 3 and so on.
  LivingScript& ramp(int bars) {
    for (int i = 0; i < bars; ++i) closes({component.RecordCount() + 1.0});
    return *this;
  }
  /// Changes the last bar.
  LivingScript& edit(double close) {
    component.EditRecord_New(kFirstDay + component.RecordCount() - 1, close - 1.0, close + 1.0, close - 2.0,
                             close, 100);
    return *this;
  }

  /// Runs the prepared script; `error` is that of this run.
  std::optional<std::string> run(std::int32_t mapCount = 0, const std::string& sets = "") {
    error.clear();
    return component.GetScriptOutput_New(text_, mapCount, sets);
  }
  /// The rows of a series of the last run; none for an unknown name.
  Rows rows(const std::string& name) const {
    const Series* series = component.findSeries(name);
    if (!series) return {};
    return Rows(series->view().begin(), series->view().end());
  }
  bool knows(const std::string& name) const { return component.findSeries(name) != nullptr; }

  CScriptOutput component;
  std::string error;

 private:
  std::string text_;
};

/// The rows of `SET A = expression` over bars that close at these values.
inline Rows rowsOver(const std::string& expression, std::initializer_list<double> closes) {
  LivingScript script("SET A = " + expression + "\r\nA");
  script.closes(closes).run();
  EXPECT_EQ(script.error, "") << expression;
  return script.rows("A");
}

/// The error of `SET A = expression` over bars that close at 1, 2, 3 and so on; empty when there is none.
inline std::string errorOf(const std::string& expression, int bars = 60) {
  LivingScript script("SET A = " + expression + "\r\n1");
  script.ramp(bars).run();
  return script.error;
}

}  // namespace brindlewort::testing
