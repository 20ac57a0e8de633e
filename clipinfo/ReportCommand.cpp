#include <CLI/CLI.hpp>
#include <memory>
#include <sstream>
#include <utility>

#include "clipinfo/Clip.h"
#include "clipinfo/Commands.h"
#include "clipinfo/Faults.h"
#include "clipinfo/InfoDocument.h"
#include "clipinfo/OutputFile.h"
#include "clipinfo/Report.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  clipinfo report A.MXF -o A.html          a page about the clip, to be opened in a browser
  clipinfo report A.MXF -o - > A.html

The page needs nothing but itself: no network, no script. Damage is told in it and does not make the command fail.
Exit status:
  0  the page is written
  1  the clip or the output failed
  2  wrong arguments)";

struct ReportOptions {
  std::string path;
  std::string output;
};

void AddPicture(PictureProfile& pictures, const ContentPackage& package) {
  for (const PackageElement& element : package.elements) {
    if (element.type != kKeyPictureEssence) continue;
    pictures.Add(element.length, package.flags);
    return;
  }
}

void WriteReportFile(const ReportOptions& options) {
  Report report(options.path);
  {
    Clip clip(options.path);
    AddInfo(report.info, clip);
  }
  OutputFile file(options.output, options.path);  // before the work, so that a wrong name is told at once
  report.verification = VerifyClip(options.path, [&report](const EssenceFacts&, const ContentPackage& package,
                                                           ParseMetaData&) { AddPicture(report.pictures, package); });
  report.pictures.Finish();
  std::ostringstream page;
  WriteReport(page, report);
  const std::string text = page.str();
  file.Write(reinterpret_cast<const unsigned char*>(text.data()), text.size());
  file.Finish();
}

}  // namespace

Runner DefineReport(CLI::App& app) {
  CLI::App* const report = app.add_subcommand("report", "Write a page about a clip, for a browser");
  const auto options = std::make_shared<ReportOptions>();
  report->add_option("CLIP", options->path, "MXF file")->required()->type_name("");
  report->add_option("-o,--output", options->output, "The page; - is the standard output")
      ->required()
      ->type_name("FILE");
  report->footer(kFooter);
  return [options] { return RunOnClip(options->path, [&] { WriteReportFile(*options); }); };
}
