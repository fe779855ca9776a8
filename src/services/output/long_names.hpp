#pragma once

#include <string>
#include <string_view>

namespace brindlewort {

/// Replaces the long names of functions in an upper-cased script by their short names, anywhere in the text
/// and in the order of the table, whose rows repeat and overlap: "NEGATIVEVOLUMEINDEX" becomes "PVI".
std::string withShortNames(std::string_view script);

}  // namespace brindlewort
