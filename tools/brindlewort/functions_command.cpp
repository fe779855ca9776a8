#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "commands.hpp"
#include "console.hpp"
#include "function_listing.hpp"
#include "near_names.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

void runFunctions(const std::string& name) {
  if (name.empty()) {
    writeOutput(listFunctions(functionTable()));
  } else if (const std::optional<std::string> text = describeFunction(functionTable(), name)) {
    writeOutput(*text);
  } else {
    throw ToolError(kExitUsage, unknownName("function", name, functionNames(functionTable()),
                                            "'brindlewort functions' lists all there are."));
  }
}

}  // namespace

void addFunctionsCommand(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("functions", "List the functions of the script language");
  const auto name = std::make_shared<std::string>();
  command->add_option("NAME", *name, "Tell about this function at length")->type_name("");
  command->callback([name] { runFunctions(*name); });
}

}  // namespace brindlewort::tool
