#include "exit_codes.hpp"

namespace brindlewort::tool {

std::string exitCodesHelp() {
  std::string text = "\nExit codes\n";
  for (const ExitMeaning& meaning : kExitMeanings) {
    text += "  " + std::to_string(meaning.code) + "  " + std::string(meaning.text) + '\n';
  }
  return text;
}

}  // namespace brindlewort::tool
