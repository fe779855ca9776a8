#include "shell/com/script_help.hpp"

#include "shell/com/module.hpp"
#include "shell/help/help_ids.hpp"

namespace brindlewort::com {

std::string scriptHelp(std::string_view currentFunction) {
  const int id = helpId(currentFunction);
  if (id == 0) return {};
  std::string text(kMaxHelpText, '\0');
  const int length =
      LoadStringA(module::instance(), static_cast<UINT>(id), text.data(), static_cast<int>(kMaxHelpText));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

}  // namespace brindlewort::com
