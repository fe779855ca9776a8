#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "foreign_file.hpp"
#include "series/bar.hpp"

namespace brindlewort::tool {

/// Why bars cannot be read, and where.
struct BarsCsvProblem {
  std::size_t line = 0;    ///< counted from 1; comment and empty lines count
  std::size_t column = 0;  ///< counted from 1; 0 when the line as a whole is meant
  std::string columnName;  ///< as the header writes it
  std::string expected;
  std::string found;
  const ForeignFile* foreign = nullptr;  ///< the kind of a file that is no text; null for text

  /// One line: "<source>:<line>: column <n> (<name>): expected <what>, found <text>", or
  /// "<source>: this is <kind>." for a file that is no text.
  std::string message(std::string_view source) const;
};

/// Reads price bars from CSV text that arrives in pieces of any size.
///
/// The first line that is neither empty nor a comment (lines starting with '#') is the header. It names, in
/// any order and case: one of Date, Datetime, Time, Timestamp; Open, High, Low, Close; and optionally Volume.
/// When no column has a date name, a first column without a name is the date. Further columns are ignored.
/// Each further line is a bar; see parseBarDate for the dates. Prices are decimal numbers that fill the
/// field; the volume may have a fraction, which is cut, and is 0 when its field is empty or there is no such
/// column. A line has at most kLongestLine bytes, the header at most kMostColumns columns.
class BarsCsvReader {
 public:
  static constexpr std::size_t kLongestLine = std::size_t{1} << 20;
  static constexpr std::size_t kMostColumns = 1000;

  /// `onBar` is told of each bar. With `onBadLine` a line behind the header that is no bar is told and
  /// skipped, and no quotation marks reach over a line end; without it such a line ends the reading. Neither
  /// may throw.
  explicit BarsCsvReader(std::function<void(const Bar&)> onBar,
                         std::function<void(const BarsCsvProblem&)> onBadLine = {});
  ~BarsCsvReader();
  BarsCsvReader(const BarsCsvReader&) = delete;
  BarsCsvReader& operator=(const BarsCsvReader&) = delete;

  /// Takes the next piece. False when the text cannot be read; problem() then tells why, and nothing more is
  /// read.
  bool feed(std::string_view piece);
  /// Tells that the text has ended. False as above.
  bool finish();

  const std::optional<BarsCsvProblem>& problem() const;
  /// The line that is being read, counted from 1; within `onBar` that of the bar.
  std::size_t line() const;
  /// How many bars were read so far.
  std::size_t bars() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace brindlewort::tool
