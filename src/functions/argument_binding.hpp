#pragma once

#include <string>
#include <string_view>

namespace brindlewort {

/// True for a number text, also with blanks in it or in brackets; false for an empty one. What such a text is
/// worth the conversion decides: "1-2" and "--" pass.
bool LooksNumeric(std::string_view text);

/// The complaint about a negative number, or nothing. The empty text and zero are good.
std::string_view CheckNotNegative(std::string_view text);

/// The complaint about digits behind the point, or nothing. 14.00 is good, 14.05 is not.
std::string_view CheckWholeNumber(std::string_view text);

}  // namespace brindlewort
