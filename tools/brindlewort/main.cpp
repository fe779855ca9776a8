#include <CLI/CLI.hpp>
#include <cstdio>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "commands.hpp"
#include "console.hpp"
#include "near_names.hpp"
#include "tool_error.hpp"

namespace {

using namespace brindlewort::tool;

/// An empty text stands for one that is told already.
ExitCode fail(ExitCode code, const std::string& text) {
  if (!text.empty()) tell(text);
  return code;
}

std::string unknownCommand(const CLI::App& app, const std::string& name) {
  std::vector<std::string> commands;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    commands.push_back(command->get_name());
  }
  const std::vector<std::string_view> names(commands.begin(), commands.end());
  return unknownName("command or option", name, names, "Try '" + app.get_name() + " --help'.");
}

/// What is wrong with a command line, and where help is.
std::string usageAdvice(const CLI::App& app, const CLI::ParseError& error, int argc, char** argv) {
  if (app.get_subcommands().empty() && argc > 1) return unknownCommand(app, argv[1]);
  std::string name = app.get_name();
  for (const CLI::App* command : app.get_subcommands()) name += ' ' + command->get_name();
  return std::string(error.what()) + "\nTry '" + name + " --help'.";
}

/// A help or version text, which the parser gives as an error that is none.
ExitCode writeHelp(const CLI::App& app, const CLI::ParseError& request) {
  std::ostringstream text;
  app.exit(request, text, text);
  writeOutput(text.str());
  return kExitOk;
}

ExitCode parseAndRun(CLI::App& app, int argc, char** argv) {
  try {
    app.parse(argc, argv);
    return kExitOk;
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return writeHelp(app, e);
    return fail(kExitUsage, usageAdvice(app, e, argc, argv));
  }
}

/// Runs a piece of the tool; what it throws becomes a text and an exit code.
template <class Work>
ExitCode guarded(Work work) {
  try {
    return work();
  } catch (const ToolError& e) {
    return fail(e.code(), e.what());
  } catch (const std::bad_alloc&) {
    return fail(kExitFile, "Out of memory. Give fewer bars.");
  }
}

/// Nothing that was written may be lost in silence.
ExitCode closeStreams() {
  closeOutput();
  return std::ferror(stderr) ? kExitFile : kExitOk;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Technical-analysis scripts over price bars", "brindlewort");
  app.set_version_flag("--version", "brindlewort " BRINDLEWORT_VERSION, "Print the version and exit");
  app.get_formatter()->column_width(28);
  app.footer(exitCodesHelp());
  app.require_subcommand(1);
  addOutputCommand(app);
  addBacktestCommand(app);
  addAlertCommand(app);
  addValidateCommand(app);
  addFunctionsCommand(app);
  addHelpCommand(app);
  const ExitCode code = guarded([&] { return parseAndRun(app, argc, argv); });
  const ExitCode closing = guarded(closeStreams);
  return code == kExitOk ? closing : code;
}
