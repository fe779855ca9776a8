#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

/// Texts between a host, which has wide ones, and the components, which have those of the active code page.
namespace brindlewort::com {

/// A host's text up to its first zero; none reads as an empty one.
std::string narrow(BSTR text);

/// A new text that the receiver frees; an empty text gives an empty string. Null when it does not convert, or
/// memory runs out.
BSTR wide(std::string_view text);

/// A text result; null for a call that returns nothing, and for a text that does not convert.
HRESULT giveText(const std::optional<std::string>& text, BSTR* out);

}  // namespace brindlewort::com
