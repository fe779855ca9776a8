#pragma once

#include <optional>
#include <span>
#include <string>

#include "services/output/script_output.hpp"

namespace brindlewort::tool {

/// The component's text with LF in place of its CR LF.
std::string withUnixLineEnds(std::string text);

/// One JSON object: "Date" (texts), "JDate" (Julian day numbers), then a member per column with its numbers
/// in full precision, null where a bar has no value.
std::string toJson(const OutputTable& table);

/// A column's name and its value for one bar; nothing for a missing value.
struct NamedValue {
  std::string name;
  std::optional<double> value;
};

/// One bar as a JSON object on a line of its own: "Date", "JDate", and a member per column, null where there
/// is no value.
std::string toJsonLine(double jDate, std::span<const NamedValue> values);

/// Columns aligned under their names, numbers cut to four decimals, blank where a bar has no value. The times
/// are left out when every bar shown is dated at midnight.
std::string toAlignedTable(const OutputTable& table);

}  // namespace brindlewort::tool
