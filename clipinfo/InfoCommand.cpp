#include <CLI/CLI.hpp>
#include <memory>

#include "clipinfo/Clip.h"
#include "clipinfo/Commands.h"
#include "clipinfo/InfoDocument.h"
#include "clipinfo/InfoText.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  clipinfo A.MXF                      what the clip is
  clipinfo info -j 4 /media/card      the clips of a card, four at a time
  clipinfo info --json A.MXF | jq '.clips[].packages[0].tracks[].kind'

Exit status:
  0  every clip was told of
  1  a clip could not be opened
  2  wrong arguments)";

struct InfoOptions {
  ClipList clips;
  bool isJSON = false;
};

int Describe(Json& document, const std::string& path) {
  Clip clip(path);
  AddInfo(document, clip);
  return kExitOK;
}

int Summarise(std::ostream& out, std::ostream& fault, const std::string& path) {
  Json document = {{"path", path}};
  const std::string reason = FaultOf([&] { static_cast<void>(Describe(document, path)); });
  if (reason.empty()) {
    PrintInfo(out, document);
    return kExitOK;
  }
  PrintFault(fault, path, reason);
  return kExitFailed;
}

}  // namespace

Runner DefineInfo(CLI::App& app) {
  CLI::App* const info =
      app.add_subcommand("info", "Print what clips are: duration, essence, partitions, tracks; the default command");
  const auto options = std::make_shared<InfoOptions>();
  options->clips.DefineOn(*info);
  info->footer(kFooter);
  DefineJSON(*info, options->isJSON);
  return [options] {
    return options->isJSON ? PrintDocuments(options->clips, "info", Describe) : ForEachClip(options->clips, Summarise);
  };
}
