#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Wide text and the narrow text of the system's active code page. Windows only: elsewhere hosts give narrow
/// text themselves.
namespace brindlewort::platform {

/// The narrow text of a wide one that ends with a zero. Characters that the code page lacks become its
/// stand-in. Empty when the system cannot convert it.
std::string narrowText(const wchar_t* wide);

/// How many wide characters a narrow text takes; 0 for an empty text, and for one that cannot be converted.
std::size_t wideLength(std::string_view narrow);

/// Writes the text to `out`, which has room for `length` characters; false when it comes out otherwise than
/// so long. No zero is written behind it.
bool writeWide(std::string_view narrow, wchar_t* out, std::size_t length);

}  // namespace brindlewort::platform
