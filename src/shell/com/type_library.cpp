#include "shell/com/type_library.hpp"

#include <oleauto.h>
#include <wrl/client.h>

#include <utility>

#include "brindlewort_com.h"
#include "shell/com/module.hpp"

using Microsoft::WRL::ComPtr;

namespace brindlewort::com {

namespace {

constexpr WORD kMajorVersion = 1;
constexpr WORD kMinorVersion = 0;

SRWLOCK guard = SRWLOCK_INIT;  // of `loaded`; objects may be in several apartments
ITypeLib* loaded = nullptr;

class Guarded {
 public:
  Guarded() { AcquireSRWLockExclusive(&guard); }
  ~Guarded() { ReleaseSRWLockExclusive(&guard); }
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;
};

}  // namespace

HRESULT loadTypeLibrary(ITypeLib** library) {
  if (SUCCEEDED(LoadTypeLibEx(module::path().c_str(), REGKIND_NONE, library))) return S_OK;
  return LoadRegTypeLib(LIBID_BrindlewortLib, kMajorVersion, kMinorVersion, LOCALE_NEUTRAL, library);
}

HRESULT typeInfoOf(REFIID iid, ITypeInfo** info) {
  ComPtr<ITypeLib> library;
  {
    const Guarded lock;
    if (!loaded) {
      if (const HRESULT result = loadTypeLibrary(&loaded); FAILED(result)) return result;
    }
    library = loaded;
  }
  return library->GetTypeInfoOfGuid(iid, info);
}

void forgetTypeLibrary() {
  ITypeLib* forgotten;
  {
    const Guarded lock;
    forgotten = std::exchange(loaded, nullptr);
  }
  if (forgotten) forgotten->Release();
}

}  // namespace brindlewort::com
