#pragma once

namespace CLI {
class App;
}

namespace brindlewort::tool {

// Each adds one command to the tool. A command throws a ToolError when it cannot do its work, before it has
// written anything to standard output. These write first: output --follow and alert, which have answered the
// bars before the one at fault; backtest, whose picture may fail behind the report; and validate, whose answer
// is the fault; its ToolError has no text, only the exit code.

void addOutputCommand(CLI::App& app);
void addBacktestCommand(CLI::App& app);
void addAlertCommand(CLI::App& app);
void addValidateCommand(CLI::App& app);
void addFunctionsCommand(CLI::App& app);
void addHelpCommand(CLI::App& app);

}  // namespace brindlewort::tool
