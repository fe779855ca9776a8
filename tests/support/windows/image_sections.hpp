#pragma once

#include <cstddef>

namespace brindlewort::testing {

/// A section of a program or library that this process has loaded, as its header tells it.
struct ImageSection {
  bool found = false;
  std::size_t bytes = 0;
  bool isWritable = false;
  bool isShared = false;  ///< one piece of memory for all processes that have the image loaded
};

/// `image` is a file name without its folder; null means the program itself.
ImageSection imageSection(const char* image, const char* section);

}  // namespace brindlewort::testing
