#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "commands.hpp"
#include "console.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {

void addHelpCommand(CLI::App& app) {
  CLI::App* const help = app.add_subcommand("help", "Print the help of the tool or of a command");
  const auto name = std::make_shared<std::string>();
  help->add_option("COMMAND", *name, "The command to tell about")->type_name("");
  help->callback([&app, name] {
    if (name->empty()) return writeOutput(app.help());
    const auto named =
        app.get_subcommands([&](const CLI::App* command) { return command->get_name() == *name; });
    if (named.empty()) {
      throw ToolError(kExitInput,
                      "There is no command " + *name + ". 'brindlewort help' lists the commands.");
    }
    writeOutput(named.front()->help(app.get_name()));
  });
}

}  // namespace brindlewort::tool
