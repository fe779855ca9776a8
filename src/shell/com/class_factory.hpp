#pragma once

#include <unknwn.h>
#include <windows.h>

#include "shell/com/components.hpp"
#include "shell/com/module.hpp"

namespace brindlewort::com {

/// Makes the components of one class.
class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(const ComponentClass& made) : made_(made) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  STDMETHODIMP LockServer(BOOL lock) override;

 private:
  const module::Use use_;
  const ComponentClass& made_;
  LONG references_ = 1;
};

}  // namespace brindlewort::com
