#include "validate_command.hpp"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "commands.hpp"
#include "console.hpp"
#include "inputs.hpp"
#include "services/validate/validate.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

/// The build number for which a script without fault gives an empty text.
constexpr std::int32_t kNoBuildVersion = -1;

constexpr char kFooter[] = R"(
Script
  As the argument, as @FILE, by one of the options, or on standard input when it is given by none of these.

The answer
  The first fault of the script: of its text (brackets, blanks around operators, words that are no name of the
  language and of no SET statement), else of a run over made-up bars. Words are checked against a fixed list,
  so a few functions that the other commands compute are refused here.

Formats
  text  the fault, or that the script is valid
  json  one object: "valid", true or false, and "message", the fault or an empty text
)";

constexpr char kExamples[] = R"(
Examples
  brindlewort validate 'CLOSE > SMA(CLOSE, 14)'
  brindlewort validate @crossover.bws
  brindlewort validate --format json < crossover.bws)";

struct ValidateOptions {
  ScriptInput script;
  std::string format = "text";
};

/// An empty script is the validator's to tell, so that an editor gets its answer in one form.
std::string readScript(const ScriptInput& input) {
  try {
    return input.read();
  } catch (const ToolError& error) {
    if (error.code() != kExitScript) throw;
    return {};
  }
}

void runValidate(const ValidateOptions& options) {
  const std::string fault = CValidate().Validate(readScript(options.script), kNoBuildVersion);
  writeOutput(validationAnswer(fault, options.format == "json"));
  if (!fault.empty()) throw ToolError(kExitScript, "");
}

}  // namespace

std::string validationAnswer(const std::string& fault, bool asJson) {
  if (!asJson) return (fault.empty() ? "The script is valid." : fault) + '\n';
  const nlohmann::ordered_json answer = {{"valid", fault.empty()}, {"message", fault}};
  return answer.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

void addValidateCommand(CLI::App& app) {
  CLI::App* const command =
      app.add_subcommand("validate", "Tell what is wrong with a script, without any bars");
  const auto options = std::make_shared<ValidateOptions>();
  options->script.addAsArgumentTo(*command);
  command->add_option("--format", options->format, "Form of the answer")
      ->type_name("FORMAT")
      ->capture_default_str()
      ->check(CLI::IsMember({"text", "json"}));
  command->footer(kFooter + exitCodesHelp() + kExamples);
  command->callback([options] { runValidate(*options); });
}

}  // namespace brindlewort::tool
