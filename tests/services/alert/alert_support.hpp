#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "services/alert/alert.hpp"

namespace brindlewort::testing {

/// A count that only this process has, so that tests running at once do not use up each other's limit.
inline platform::AlertCount& countOfThisTest() {
  static platform::AlertCount& count = *new platform::AlertCount("/brindlewort/count/of/a/test");
  return count;
}

/// An event as a line: "SYM/name fired 7.5 21", "SYM/name failed Error: ...".
using Events = std::vector<std::string>;

inline std::string numberText(double value) {
  std::string text = std::to_string(value);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

/// A component that writes its events down.
struct Watcher {
  explicit Watcher(platform::AlertCount& count = countOfThisTest()) : alert(count) {
    alert.setSymbol("SYM");
    alert.setAlertName("name");
    alert.Alert = [this](const std::string& symbol, const std::string& name, double date, double price) {
      events.push_back(symbol + "/" + name + " fired " + numberText(date) + " " + numberText(price));
    };
    alert.ScriptError = [this](const std::string& symbol, const std::string& name, const std::string& text) {
      events.push_back(symbol + "/" + name + " failed " + text);
    };
  }
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;

  /// Bar number `day`, all of it at one price, with its last trade at `day` and a half.
  void append(int day, double price) { alert.AppendRecord(day, price, price, price, price, 100, day + 0.5); }
  bool edit(int day, double price) {
    return alert.EditRecord(day, price, price, price, price, 100, day + 0.5);
  }
  bool appendOpt(int day, double price) {
    return alert.AppendRecord_Opt(day, price, price, price, price, 100, day + 0.5);
  }
  std::optional<bool> editOpt(int day, double price) {
    return alert.EditRecord_Opt(day, price, price, price, price, 100, day + 0.5);
  }
  void appendAll(const std::vector<double>& prices) {
    for (double price : prices) append(alert.RecordCount() + 1, price);
  }
  void appendAllOpt(const std::vector<double>& prices) {
    for (double price : prices) appendOpt(alert.RecordCount() + 1, price);
  }
  /// The incremental way with one script.
  void startLiving(const std::string& script) {
    alert.InitialiseTransientStore(250);
    alert.ProcessScripData(script);
    alert.setAlertScript(script);
  }
  /// The events since the last question.
  Events take() { return std::exchange(events, {}); }

  Events events;
  CAlert alert;
};

inline std::string fired(const std::string& dateAndPrice) {
  return "SYM/name fired " + dateAndPrice;
}
inline std::string failed(const std::string& text) {
  return "SYM/name failed " + text;
}

}  // namespace brindlewort::testing
