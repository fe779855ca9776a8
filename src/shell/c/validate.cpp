#include "services/validate/validate.hpp"

#include "brindlewort/brindlewort.h"
#include "functions/script_engine.hpp"
#include "shell/c/component_calls.hpp"
#include "shell/help/script_help.hpp"

using namespace brindlewort;
using namespace brindlewort::c_face;

struct bw_validate : HandleState {
  CValidate component;
};

bw_validate* bw_validate_create(void) {
  return create<bw_validate>();
}

void bw_validate_destroy(bw_validate* h) {
  delete h;
}

int32_t bw_validate_validate(bw_validate* h, const char* script, int32_t build_version, char** text) {
  return onHandle(h, [&](bw_validate& handle) {
    if (!text) return kNullArgument;
    *text = nullptr;
    handle.component.Validate(textOf(script), build_version,
                              [text](const std::string& answer) { *text = copyText(answer); });
    return kSuccess;
  });
}

int32_t bw_validate_get_constant(bw_validate* h, const char* name, char** text) {
  return giveText(h, text, [&](bw_validate& handle) { return handle.component.Constant(textOf(name)); });
}

int32_t bw_validate_get_script_help(bw_validate* h, char** text) {
  return giveText(h, text,
                  [](bw_validate& handle) { return scriptHelp(handle.component.engine().currentFunction); });
}
