#pragma once

#include <windows.h>

#include <new>

namespace brindlewort::com {

/// Runs the body of a host's call: nothing that is thrown inside reaches the host.
template <class Work>
HRESULT guarded(Work work) noexcept {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace brindlewort::com
