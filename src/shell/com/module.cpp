#include "shell/com/module.hpp"

namespace brindlewort::com::module {

namespace {

HINSTANCE loadedAt = nullptr;
volatile LONG uses = 0;

}  // namespace

HINSTANCE instance() {
  return loadedAt;
}

std::wstring path() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = static_cast<DWORD>(path.size());
    const DWORD written = GetModuleFileNameW(loadedAt, path.data(), size);
    if (written < size) {
      path.resize(written);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

void keep() {
  InterlockedIncrement(&uses);
}

void release() {
  InterlockedDecrement(&uses);
}

bool isInUse() {
  return uses != 0;
}

}  // namespace brindlewort::com::module

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
  if (reason == DLL_PROCESS_ATTACH) {
    brindlewort::com::module::loadedAt = instance;
    DisableThreadLibraryCalls(instance);
  }
  return TRUE;
}
