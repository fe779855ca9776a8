#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "commands.hpp"
#include "console.hpp"
#include "near_names.hpp"
#include "tool_error.hpp"
#include "topics.hpp"

namespace brindlewort::tool {
namespace {

std::vector<CLI::App*> commandsOf(CLI::App& app) {
  return app.get_subcommands([](const CLI::App* command) { return !command->get_name().empty(); });
}

/// The help of the tool itself; App::help() would give that of the command at hand.
std::string toolHelp(const CLI::App& app) {
  return app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
}

std::string listOfTopics() {
  return "\nManual pages of the script language, by 'brindlewort help NAME':\n" +
         inLines(pageNames(), "  ", kLineWidth) +
         "A name that only 'brindlewort functions' lists has a section of the reference page instead.\n"
         "\nWords and signs of the language, by the same:\n" +
         inLines(wordNames(), "  ", kLineWidth);
}

[[noreturn]] void failForName(CLI::App& app, const std::string& name) {
  std::vector<std::string> commands;
  for (const CLI::App* command : commandsOf(app)) commands.push_back(command->get_name());
  std::vector<std::string_view> names(commands.begin(), commands.end());
  for (const std::string_view topic : topicNames()) names.push_back(topic);
  throw ToolError(kExitUsage, unknownName("command, function or word", name, names,
                                          "'brindlewort help' lists all there are."));
}

void runHelp(CLI::App& app, const std::string& name) {
  if (name.empty()) return writeOutput(toolHelp(app) + listOfTopics());
  for (const CLI::App* command : commandsOf(app)) {
    if (command->get_name() == name) return writeOutput(command->help(app.get_name()));
  }
  const std::string text = topicText(name);
  if (text.empty()) failForName(app, name);
  writeOutput(text);
}

}  // namespace

void addHelpCommand(CLI::App& app) {
  CLI::App* const help =
      app.add_subcommand("help", "Print the help of a command, or the manual page of a function");
  const auto name = std::make_shared<std::string>();
  help->add_option("NAME", *name, "The command, the function or the word of the language to tell about")
      ->type_name("");
  help->callback([&app, name] { runHelp(app, *name); });
}

}  // namespace brindlewort::tool
