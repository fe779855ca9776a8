#pragma once

#include <cstdint>
#include <string>

#include "script_trial.hpp"
#include "series/bar.hpp"
#include "services/alert/alert.hpp"

namespace brindlewort::tool {

/// An alert over bars that come one by one, with its events as lines of text.
class AlertWatch {
 public:
  enum class Form { kCsv, kJsonLines };
  struct Request {
    std::string script;
    std::string symbol;
    std::string name;
    Way way = Way::kWholeHistory;
    Form form = Form::kCsv;
  };

  /// Throws a ToolError for a script at fault, be it one that fails over made-up bars, and when there are
  /// more alerts on the machine than may be.
  explicit AlertWatch(Request request);
  AlertWatch(const AlertWatch&) = delete;
  AlertWatch& operator=(const AlertWatch&) = delete;

  /// Takes a bar: the next one, or the last one anew when it has that one's date. The answer is a line when
  /// the script has fired over the bars so far, else empty. Throws a ToolError when the script fails.
  std::string take(const Bar& bar);

  /// Told at the end of the bars: throws a ToolError when they were too few for the script.
  void finish() const;

 private:
  void requireSoundScript() const;
  void store(const Bar& bar);

  Request request_;
  CAlert component_;
  std::string event_, error_;  ///< of the call at hand
  std::int32_t wanted_;        ///< bars that the script asks for
  std::int32_t bars_ = 0;
  double lastDate_ = 0.0;
  bool computed_ = false;  ///< the script has been computed without a failure
};

/// An event as a line of CSV: symbol and name in quotation marks, date, price with four decimals.
std::string alertLine(const std::string& symbol, const std::string& name, double date, double price);
/// The same as a JSON object on a line of its own.
std::string alertJson(const std::string& symbol, const std::string& name, double date, double price);

}  // namespace brindlewort::tool
