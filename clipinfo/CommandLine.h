#ifndef CLIPPARSER_CLIPINFO_COMMANDLINE_H
#define CLIPPARSER_CLIPINFO_COMMANDLINE_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

// Descriptions of the command line, made from the definitions that parse it and print its help: none can fall behind.

// A page for man(1), in the man macros of groff.
[[nodiscard]] std::string ManPage(const CLI::App& app);
// A script for bash that completes commands, options and the names of clips.
[[nodiscard]] std::string BashCompletion(const CLI::App& app);

// What both tell of: the commands, and the options of the program or of a command, those of its groups included.
[[nodiscard]] std::vector<const CLI::App*> ShownCommands(const CLI::App& app);
[[nodiscard]] std::vector<const CLI::Option*> ShownOptions(const CLI::App& command);
[[nodiscard]] inline bool isWithValue(const CLI::Option& option) { return option.get_items_expected_max() != 0; }

#endif  // CLIPPARSER_CLIPINFO_COMMANDLINE_H
