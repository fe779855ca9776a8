#include "shell/com/text.hpp"

#include <oleauto.h>

#include "platform/code_page.hpp"

namespace brindlewort::com {

std::string narrow(BSTR text) {
  return text ? platform::narrowText(text) : std::string();
}

BSTR wide(std::string_view text) {
  const std::size_t length = platform::wideLength(text);
  BSTR result = SysAllocStringLen(nullptr, static_cast<UINT>(length));
  if (result && !platform::writeWide(text, result, length)) {
    SysFreeString(result);
    result = nullptr;
  }
  return result;
}

HRESULT giveText(const std::optional<std::string>& text, BSTR* out) {
  if (!out) return E_POINTER;
  *out = text ? wide(*text) : nullptr;
  return S_OK;
}

}  // namespace brindlewort::com
