#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "series/bar.hpp"

namespace brindlewort::tool {

/// Why bars cannot be read, and where.
struct BarsCsvProblem {
  std::size_t line = 0;    ///< counted from 1; comment and empty lines count
  std::size_t column = 0;  ///< counted from 1; 0 when the line as a whole is meant
  std::string columnName;  ///< as the header writes it
  std::string expected;
  std::string found;

  /// One line: "<source>:<line>: column <n> (<name>): expected <what>, found <text>".
  std::string message(std::string_view source) const;
};

/// Reads price bars from CSV text that arrives in pieces of any size.
///
/// The first line that is neither empty nor a comment (lines starting with '#') is the header. It names, in
/// any order and case: one of Date, Datetime, Time, Timestamp; Open, High, Low, Close; and optionally Volume.
/// When no column has a date name, a first column without a name is the date. Further columns are ignored.
/// Each further line is a bar; see parseBarDate for the dates. Prices are decimal numbers that fill the
/// field; the volume may have a fraction, which is cut, and is 0 when its field is empty or there is no such
/// column.
class BarsCsvReader {
 public:
  explicit BarsCsvReader(std::function<void(const Bar&)> onBar);
  ~BarsCsvReader();
  BarsCsvReader(const BarsCsvReader&) = delete;
  BarsCsvReader& operator=(const BarsCsvReader&) = delete;

  /// Takes the next piece. False when the text cannot be read; problem() then tells why, and nothing more is
  /// read.
  bool feed(std::string_view piece);
  /// Tells that the text has ended. False as above.
  bool finish();

  const std::optional<BarsCsvProblem>& problem() const;
  /// How many bars were read so far.
  std::size_t bars() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace brindlewort::tool
