#include "clipinfo/CommandLine.h"

std::vector<const CLI::App*> ShownCommands(const CLI::App& app) {
  // An option group is a command without a name, and a hidden one is of no group.
  return app.get_subcommands(
      [](const CLI::App* command) { return !command->get_name().empty() && !command->get_group().empty(); });
}

std::vector<const CLI::Option*> ShownOptions(const CLI::App& command) {
  std::vector<const CLI::Option*> options =
      command.get_options([](const CLI::Option* option) { return !option->get_group().empty(); });
  for (const CLI::App* group : command.get_subcommands([](const CLI::App* sub) { return sub->get_name().empty(); })) {
    for (const CLI::Option* option : ShownOptions(*group)) {
      if (option != group->get_help_ptr()) options.push_back(option);
    }
  }
  return options;
}
