#pragma once

#include <string>
#include <string_view>

namespace brindlewort::com {

/// What a component gives as its `ScriptHelp`: the entry of the library's string table for the function that
/// its engine called last, cut to what a buffer of 10,000 characters holds. Empty before any call, and for a
/// function without an entry.
std::string scriptHelp(std::string_view currentFunction);

}  // namespace brindlewort::com
