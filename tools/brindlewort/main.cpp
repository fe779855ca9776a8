#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "commands.hpp"
#include "tool_error.hpp"

namespace {

using brindlewort::tool::kExitInput;
using brindlewort::tool::ToolError;

/// An empty text stands for one that is told already.
int fail(int code, const std::string& text) {
  if (!text.empty()) std::fprintf(stderr, "%s\n", text.c_str());
  return code;
}

/// What is wrong with a command line, and where help is.
std::string usageAdvice(const CLI::App& app, const CLI::ParseError& error, int argc, char** argv) {
  std::string name = app.get_name();
  for (const CLI::App* command : app.get_subcommands()) name += ' ' + command->get_name();
  const bool unknownCommand = app.get_subcommands().empty() && argc > 1;
  const std::string what =
      unknownCommand ? std::string("There is no command or option ") + argv[1] + '.' : error.what();
  return what + "\nTry '" + name + " --help'.";
}

int run(CLI::App& app, int argc, char** argv) {
  try {
    app.parse(argc, argv);
    return 0;
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e);  // a help or version text
    return fail(kExitInput, usageAdvice(app, e, argc, argv));
  } catch (const ToolError& e) {
    return fail(e.code(), e.what());
  } catch (const std::bad_alloc&) {
    return fail(kExitInput, "Out of memory. Give fewer bars.");
  }
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Technical-analysis scripts over price bars", "brindlewort");
  app.set_version_flag("--version", "brindlewort " BRINDLEWORT_VERSION, "Print the version and exit");
  app.get_formatter()->column_width(28);
  app.require_subcommand(1);
  brindlewort::tool::addOutputCommand(app);
  brindlewort::tool::addBacktestCommand(app);
  brindlewort::tool::addAlertCommand(app);
  brindlewort::tool::addValidateCommand(app);
  brindlewort::tool::addFunctionsCommand(app);
  brindlewort::tool::addHelpCommand(app);
  return run(app, argc, argv);
}
