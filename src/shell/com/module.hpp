#pragma once

#include <windows.h>

#include <string>

/// The library as the process has loaded it.
namespace brindlewort::com::module {

/// Where the library's image and its resources are.
HINSTANCE instance();
/// The file it was loaded from.
std::wstring path();

/// Something of the library is in use: an object, or a host's lock. Until as many releases it must stay
/// loaded.
void keep();
void release();
bool isInUse();

/// Keeps the library loaded for the life of an object.
class Use {
 public:
  Use() { keep(); }
  ~Use() { release(); }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;
};

}  // namespace brindlewort::com::module
