#pragma once

#include <oaidl.h>
#include <windows.h>

/// The type information of the interfaces, a resource of the library.
namespace brindlewort::com {

/// The type library: the one within the library's own file, else the registered one. The caller releases it.
HRESULT loadTypeLibrary(ITypeLib** library);

/// What the type library says of an interface. The caller releases it.
HRESULT typeInfoOf(REFIID iid, ITypeInfo** info);

/// The type library stays loaded from the first typeInfoOf on. This lets go of it; the next use loads it
/// again.
void forgetTypeLibrary();

}  // namespace brindlewort::com
