#include <cstdlib>

#include "brindlewort/brindlewort.h"

const char* bw_version(void) {
  return BRINDLEWORT_VERSION;
}

void bw_free(void* text) {
  std::free(text);
}
