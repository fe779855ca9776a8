#pragma once

#include <string>
#include <string_view>

#include "functions/function_table.hpp"

namespace brindlewort {

/// A call of `name`, one of the row's, with arguments that make sense on the way: kWholeHistory or
/// kIncremental. No argument is above 100, so that some hundred bars are enough for it.
std::string sampleCall(const FunctionRow& row, std::string_view name, Path path);

}  // namespace brindlewort
