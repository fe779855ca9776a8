#include "shell/com/text.hpp"

#include <oleauto.h>

#include "platform/code_page.hpp"

namespace brindlewort::com {

std::string narrow(BSTR text) {
  return text ? platform::narrowText(text) : std::string();
}

namespace {

/// Null, and a success, for what does not convert.
HRESULT widen(std::string_view text, BSTR* out) {
  const std::size_t length = platform::wideLength(text);
  *out = SysAllocStringLen(nullptr, static_cast<UINT>(length));
  if (!*out) return E_OUTOFMEMORY;
  if (!platform::writeWide(text, *out, length)) {
    SysFreeString(*out);
    *out = nullptr;
  }
  return S_OK;
}

}  // namespace

BSTR wide(std::string_view text) {
  BSTR result = nullptr;
  widen(text, &result);
  return result;
}

HRESULT giveText(const std::optional<std::string>& text, BSTR* out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  return text ? widen(*text, out) : S_OK;
}

}  // namespace brindlewort::com
