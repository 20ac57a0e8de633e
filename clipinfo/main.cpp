#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "clipinfo/Clip.h"
#include "clipinfo/Commands.h"
#include "clipinfo/Text.h"

namespace {

constexpr int kExitOK = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

constexpr const char* kExamples = R"(Examples:
  clipinfo A.MXF B.MXF                     what the headers of two clips hold
  clipinfo frames A.MXF --range 0:25       flags, offsets and sizes of the first 25 edit units
  clipinfo frames A.MXF --json | jq '.[] | select(.random_access)'
  clipinfo extract A.MXF --element 1 -o picture.m2v
  clipinfo extract A.MXF --element 2 --range 250: -o - | md5sum

Without a command name the first argument is a clip. A clip that is called like a command is written ./frames.
Exit status: 0 done, 1 a clip or an output failed, 2 wrong arguments.)";

struct Arguments {
  std::vector<std::string> clips;
  FramesOptions frames;
  ExtractOptions extract;
};

// Runs a command on one clip; says what went wrong in one line.
template <class Command>
bool Run(const std::string& path, Command command) {
  std::string fault;
  try {
    command();
    if (!std::cout.flush()) fault = "standard output cannot be written";
  } catch (const std::bad_alloc&) {
    fault = "out of memory";
  } catch (const std::exception& error) {
    fault = error.what();
  } catch (const char* error) {  // the library's
    fault = Escaped(error);
  }
  if (fault.empty()) return true;
  std::cout.flush();
  std::cerr << "clipinfo: " << Escaped(path) << ": " << fault << '\n';
  return false;
}

void DefineRange(CLI::App& command, std::string& range) {
  command.add_option("--range", range, "Edit units A up to, but not with, B; either may be left out")->type_name("A:B");
}

CLI::App* DefineInfo(CLI::App& app, Arguments& arguments) {
  CLI::App* const info = app.add_subcommand("info", "Print what the clips' headers hold; the default");
  info->add_option("CLIP", arguments.clips, "MXF files")->required()->type_name("");
  return info;
}

CLI::App* DefineFrames(CLI::App& app, Arguments& arguments) {
  CLI::App* const frames = app.add_subcommand("frames", "Print a row for each edit unit");
  frames->add_option("CLIP", arguments.frames.path, "MXF file")->required()->type_name("");
  DefineRange(*frames, arguments.frames.range);
  CLI::Option* const csv = frames->add_flag_callback(
      "--csv", [&arguments] { arguments.frames.format = RowFormat::CSV; }, "Comma-separated values");
  frames
      ->add_flag_callback(
          "--json", [&arguments] { arguments.frames.format = RowFormat::JSON; },
          "An array of objects, one on each line")
      ->excludes(csv);
  return frames;
}

CLI::App* DefineExtract(CLI::App& app, Arguments& arguments) {
  CLI::App* const extract = app.add_subcommand("extract", "Write the bytes of one element of each edit unit");
  extract->add_option("CLIP", arguments.extract.path, "MXF file")->required()->type_name("");
  extract->add_option("--element", arguments.extract.element, "0 system item, 1 picture, then sound, then data")
      ->required()
      ->type_name("N");
  DefineRange(*extract, arguments.extract.range);
  extract->add_option("-o,--output", arguments.extract.output, "File to write, - for the standard output")
      ->required()
      ->type_name("FILE");
  return extract;
}

bool RunInfoOnAll(const std::vector<std::string>& clips) {
  bool isDone = true;
  for (const std::string& path : clips) {
    if (!Run(path, [&path] { RunInfo(std::cout, path); })) isDone = false;
  }
  return isDone;
}

// The arguments in CLI11's order, from the last to the first, with the default command put in.
std::vector<std::string> ReversedArguments(const CLI::App& app, int argc, char** argv) {
  std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
  const std::string first = words.empty() ? "" : words.front();
  const bool isCommand =
      !app.get_subcommands([&first](const CLI::App* command) { return command->get_name() == first; }).empty();
  const bool isForApp = isCommand || first == "-h" || first == "--help" || first == "--version";
  if (!isForApp) words.insert(words.begin(), "info");
  std::reverse(words.begin(), words.end());
  return words;
}

}  // namespace

// What could escape is a mistake in the options' definitions above, which then shows at every start.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  // A closed pipe or a file that grows too large is an error like any other.
  for (const int signal : {SIGPIPE, SIGXFSZ}) static_cast<void>(std::signal(signal, SIG_IGN));
  Arguments arguments;
  CLI::App app("Looks into MXF clips: what the header says, where each frame lies, the essence itself.", "clipinfo");
  app.set_version_flag("--version", "clipinfo " CLIPINFO_VERSION);
  app.footer(kExamples);
  app.require_subcommand(1);
  const CLI::App* const info = DefineInfo(app, arguments);
  const CLI::App* const frames = DefineFrames(app, arguments);
  DefineExtract(app, arguments);
  try {
    app.parse(ReversedArguments(app, argc, argv));
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitOK : kExitUsage;
  }
  bool isDone = false;
  if (info->parsed()) {
    isDone = RunInfoOnAll(arguments.clips);
  } else if (frames->parsed()) {
    isDone = Run(arguments.frames.path, [&] { RunFrames(std::cout, arguments.frames); });
  } else {
    isDone = Run(arguments.extract.path, [&] { RunExtract(arguments.extract); });
  }
  return isDone ? kExitOK : kExitFailed;
}
