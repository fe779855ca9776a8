#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The columns of an output: which there are, and which the user asks for.
namespace brindlewort::tool {

/// The column names in the heading of a component's text: Date,"A","B".
std::vector<std::string> columnNames(std::string_view heading);

/// The names of `sets`, as --sets gives them, that are not among `columns`; in capitals. Blanks make no
/// difference. Throws a ToolError when `sets` is not empty and has no name in it.
std::vector<std::string> missingColumns(std::string_view sets, const std::vector<std::string>& columns);

/// Ends the command that was asked for columns that are not there. `columns` are those of the script.
[[noreturn]] void failForColumns(std::string_view sets, const std::vector<std::string>& missing,
                                 const std::vector<std::string>& columns);

/// Why a script without columns prints dates alone, and what to type instead.
std::string noColumnsText(std::string_view script);

}  // namespace brindlewort::tool
