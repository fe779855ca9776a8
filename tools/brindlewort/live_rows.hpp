#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "series/bar.hpp"
#include "services/output/script_output.hpp"

namespace brindlewort::tool {

/// The output of a script over bars that come one by one: a row each, made by the incremental way.
class LiveRows {
 public:
  enum class Form { kCsv, kJsonLines };
  struct Request {
    std::string script;
    std::string sets;       ///< the columns wanted, as CScriptOutput takes them
    std::int32_t from = 0;  ///< first bar to show, counted from 1
    Form form = Form::kCsv;
  };

  /// Throws a ToolError for a script at fault, be it one that fails over made-up bars, and for columns that
  /// it does not have: nobody has to wait for the bars of a long period to learn of a slip of the pen.
  explicit LiveRows(Request request);

  /// False for a script whose rows are dates alone.
  bool hasColumns() const { return hasColumns_; }

  /// Takes a bar: the next one, or the last one anew when it has that one's date. The answer is what is to be
  /// printed: the row, with the heading in front where that is new. Empty as long as the script has too few
  /// bars, and for a bar in front of the first to show. Throws a ToolError when the script fails.
  std::string take(const Bar& bar);

  /// Told at the end of the bars: throws a ToolError when they were too few for a single row.
  void finish() const;

 private:
  void store(const Bar& bar);
  std::string row(std::string_view text);
  std::string jsonRow(std::string_view heading) const;
  [[noreturn]] void fail() const;

  Request request_;
  CScriptOutput component_;
  std::string error_;  ///< of the call at hand
  std::int32_t bars_ = 0;
  double lastDate_ = 0.0;
  bool hasColumns_ = false;
  bool computed_ = false;  ///< the script has given a row
  std::string heading_;    ///< as printed last
};

}  // namespace brindlewort::tool
