#include "support/windows/image_sections.hpp"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstring>

namespace brindlewort::testing {

ImageSection imageSection(const char* image, const char* section) {
  const auto* base = reinterpret_cast<const char*>(GetModuleHandleA(image));
  if (base == nullptr) return {};
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_SECTION_HEADER* first = IMAGE_FIRST_SECTION(headers);
  for (const IMAGE_SECTION_HEADER* at = first; at != first + headers->FileHeader.NumberOfSections; ++at) {
    if (std::strncmp(reinterpret_cast<const char*>(at->Name), section, IMAGE_SIZEOF_SHORT_NAME) != 0)
      continue;
    return {true, at->Misc.VirtualSize, (at->Characteristics & IMAGE_SCN_MEM_WRITE) != 0,
            (at->Characteristics & IMAGE_SCN_MEM_SHARED) != 0};
  }
  return {};
}

}  // namespace brindlewort::testing
