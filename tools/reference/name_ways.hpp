#pragma once

#include <string_view>

#include "functions/function_table.hpp"

namespace brindlewort::reference {

/// The ways on which a script can call a function by one of its names.
struct Ways {
  bool wholeHistory = false;
  bool incremental = false;

  bool operator==(const Ways&) const = default;
};
inline constexpr Ways kBothWays{true, true};

/// Found by a script that calls the name, on each way: a name of the table may still be out of reach, when
/// what a way does to the text of a script takes it apart.
Ways waysOf(const FunctionRow& row, std::string_view name);

}  // namespace brindlewort::reference
