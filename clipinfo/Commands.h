#ifndef CLIPPARSER_CLIPINFO_COMMANDS_H
#define CLIPPARSER_CLIPINFO_COMMANDS_H

#include <functional>
#include <string>

// The header takes longer to compile than most sources here; those that define options include it.
namespace CLI {
class App;
}

// The commands, one source each. A Define function adds its command to the program's arguments and returns what runs it
// once they are parsed; that returns the program's exit status and has told what went wrong.
using Runner = std::function<int()>;

Runner DefineInfo(CLI::App& app);
Runner DefineTree(CLI::App& app);
Runner DefineFrames(CLI::App& app);
Runner DefineExtract(CLI::App& app);
Runner DefineVerify(CLI::App& app);
Runner DefineReport(CLI::App& app);

// Adds --range A:B: edit units of a clip, see Clip::ParseRange.
void DefineRange(CLI::App& command, std::string& range);
// Adds --json.
constexpr const char* kJsonHelp = "Print JSON; docs/json.md describes it";
void DefineJSON(CLI::App& command, bool& isJSON);

#endif  // CLIPPARSER_CLIPINFO_COMMANDS_H
