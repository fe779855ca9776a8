#include "shell/com/components.hpp"

#include "brindlewort_com.h"
#include "shell/com/resources.h"

namespace brindlewort::com {

std::span<const ComponentClass> componentClasses() {
  static const ComponentClass kClasses[] = {
      {__uuidof(::Alert), makeAlert, IDR_ALERT},
      {__uuidof(::Backtest), makeBacktest, IDR_BACKTEST},
      {__uuidof(::ScriptOutput), makeScriptOutput, IDR_SCRIPT_OUTPUT},
      {__uuidof(::Validate), makeValidate, IDR_VALIDATE},
  };
  return kClasses;
}

}  // namespace brindlewort::com
