#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "clipinfo/CommandLine.h"
#include "clipinfo/Commands.h"
#include "clipinfo/Faults.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  clipinfo A.MXF B.MXF                     what two clips are
  clipinfo -j 4 /media/card                what the clips of a card are, four at a time
  clipinfo info A.MXF --json | jq '.clips[].duration'
  clipinfo COMMAND --help                  the options of a command, with examples

Without a command name the first argument is a clip. A clip that is called like a command is written ./frames.

Exit status:
  0  done
  1  a clip or an output failed
  2  wrong arguments)";

// In the order of the help.
constexpr Runner (*kCommands[])(CLI::App&) = {DefineInfo,    DefineTree,   DefineFrames,
                                              DefineExtract, DefineVerify, DefineReport};

// The arguments in CLI11's order, from the last to the first, with the default command put in.
std::vector<std::string> ReversedArguments(const CLI::App& app, int argc, char** argv) {
  std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
  const std::string first = words.empty() ? "" : words.front();
  const bool isCommand =
      !app.get_subcommands([&first](const CLI::App* command) { return command->get_name() == first; }).empty();
  const bool isForApp = isCommand || app.get_option_no_throw(first) != nullptr;
  if (!isForApp) words.insert(words.begin(), "info");
  std::reverse(words.begin(), words.end());
  return words;
}

// A hidden option that prints a description of the command line instead of working.
void DefineDescription(CLI::App& app, const char* name, std::string (*describe)(const CLI::App&)) {
  app.add_flag_callback(name, [&app, describe] { throw CLI::CallForVersion(describe(app), 0); })->group("");
}

}  // namespace

void DefineRange(CLI::App& command, std::string& range) {
  command.add_option("--range", range, "Edit units A up to, but not with, B; either may be left out")->type_name("A:B");
}

void DefineJSON(CLI::App& command, bool& isJSON) { command.add_flag("--json", isJSON, kJsonHelp); }

// What could escape is a mistake in the options' definitions, which then shows at every start.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  // A closed pipe or a file that grows too large is an error like any other.
  for (const int signal : {SIGPIPE, SIGXFSZ}) static_cast<void>(std::signal(signal, SIG_IGN));
  CLI::App app("look into MXF clips: what they are, where each frame lies, the essence itself", "clipinfo");
  app.set_version_flag("--version", "clipinfo " CLIPINFO_VERSION);
  DefineDescription(app, "--man-page", ManPage);
  DefineDescription(app, "--bash-completion", BashCompletion);
  app.require_subcommand(1);
  std::vector<Runner> runners;
  for (const auto define : kCommands) runners.push_back(define(app));
  app.footer(kFooter);  // after the commands, which would take it over
  try {
    app.parse(ReversedArguments(app, argc, argv));
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitOK : kExitUsage;
  }
  const std::vector<CLI::App*> commands = app.get_subcommands(nullptr);  // in the order of the runners
  for (std::size_t i = 0; i < runners.size(); ++i) {
    if (commands[i]->parsed()) return runners[i]();
  }
  return kExitUsage;
}
