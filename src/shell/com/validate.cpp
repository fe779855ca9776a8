#include "services/validate/validate.hpp"

#include "brindlewort_com.h"
#include "functions/script_engine.hpp"
#include "shell/com/component.hpp"
#include "shell/com/components.hpp"
#include "shell/com/script_help.hpp"
#include "shell/com/text.hpp"

namespace brindlewort::com {

namespace {

class ValidateComponent final : public Component<IValidate> {
 public:
  explicit ValidateComponent(IUnknown* outer) : Component(outer) {}

  STDMETHODIMP Validate(BSTR ValidateScript, int BuildVersion, BSTR* Answer) override {
    return call([&] {
      return Answer ? giveText(logic_.Validate(narrow(ValidateScript), BuildVersion), Answer) : E_POINTER;
    });
  }
  STDMETHODIMP get_Constant(BSTR name, BSTR* Text) override {
    return call([&] { return giveText(logic_.Constant(narrow(name)), Text); });
  }
  STDMETHODIMP get_ScriptHelp(BSTR* Text) override {
    return call([&] { return giveText(scriptHelp(logic_.engine().currentFunction), Text); });
  }

 private:
  CValidate logic_;
};

}  // namespace

HRESULT makeValidate(IUnknown* outer, REFIID iid, void** object) {
  return makeComponent<ValidateComponent>(outer, iid, object);
}

}  // namespace brindlewort::com
