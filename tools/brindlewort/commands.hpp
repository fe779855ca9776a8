#pragma once

namespace CLI {
class App;
}

namespace brindlewort::tool {

// Each adds one command to the tool. A command throws a ToolError when it cannot do its work, before it has
// written anything to standard output.

void addOutputCommand(CLI::App& app);
void addFunctionsCommand(CLI::App& app);
void addHelpCommand(CLI::App& app);

}  // namespace brindlewort::tool
