#include <memory>

#include "clipinfo/Clip.h"
#include "clipinfo/Commands.h"
#include "clipinfo/InfoDocument.h"
#include "clipinfo/InfoText.h"

namespace {

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
  CLI::App* const info = app.add_subcommand("info", "Print what the clips' headers hold; the default");
  const auto options = std::make_shared<InfoOptions>();
  options->clips.DefineOn(*info);
  DefineJSON(*info, options->isJSON);
  return [options] {
    return options->isJSON ? PrintDocuments(options->clips, "info", Describe) : ForEachClip(options->clips, Summarise);
  };
}
