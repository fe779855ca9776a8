#pragma once

#include <windows.h>

namespace brindlewort::com {

/// Enters the classes and the type library in the registry. The first failure ends it and is the result.
HRESULT registerServer();

/// Takes them out again; what is not there is no failure. Goes on after one, which is the result.
HRESULT unregisterServer();

}  // namespace brindlewort::com
