#pragma once

#include <unknwn.h>
#include <windows.h>

#include <span>

/// The classes that a host can create.
namespace brindlewort::com {

struct ComponentClass {
  const CLSID& clsid;
  /// `outer` is the object that embeds the new one, or null; it must ask for IUnknown.
  HRESULT (*make)(IUnknown* outer, REFIID iid, void** object);
  WORD registration;  ///< the resource that holds its registration script
};

std::span<const ComponentClass> componentClasses();

HRESULT makeAlert(IUnknown* outer, REFIID iid, void** object);
HRESULT makeBacktest(IUnknown* outer, REFIID iid, void** object);
HRESULT makeScriptOutput(IUnknown* outer, REFIID iid, void** object);
HRESULT makeValidate(IUnknown* outer, REFIID iid, void** object);

}  // namespace brindlewort::com
