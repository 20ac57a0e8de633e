#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "clipinfo/Clip.h"
#include "clipinfo/Commands.h"
#include "clipinfo/Faults.h"
#include "clipinfo/Json.h"
#include "clipinfo/RowWriter.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  clipinfo frames A.MXF --range 0:25          flags, offsets and sizes of the first 25 edit units
  clipinfo frames A.MXF --csv > frames.csv    for a spreadsheet
  clipinfo frames A.MXF --json | jq '.clips[].rows[] | select(.random_access)'

Exit status:
  0  every row was printed
  1  the clip could not be opened, or rows are missing or incomplete
  2  wrong arguments)";

struct FramesOptions {
  std::string path;
  std::string range;
  RowFormat format = RowFormat::Text;
};

[[noreturn]] void FailAt(const Clip& clip, unsigned int editUnit) {
  throw CommandError("edit unit " + std::to_string(editUnit) + ": " + clip.NoIndexText() +
                     "; --range lists those before and after it");
}

// `row.elements` has its size already.
void ReadRow(Clip& clip, unsigned int editUnit, FrameRow& row) {
  MXFStream& stream = clip.Stream();
  row.editUnit = editUnit;
  if (!stream.GetEditUnitInfo(editUnit, row.temporalOffset, row.keyFrameOffset, row.flags)) {
    FailAt(clip, editUnit);
  }
  for (unsigned int i = 0; i < row.elements.size(); ++i) {
    unsigned long long offset = 0;
    const bool isFound = stream.GetEssenceOffset(editUnit, i, offset) == kStatusOK;
    row.elements[i] = isFound ? clip.ElementAt(offset) : Element();
  }
}

bool isWhole(const FrameRow& row) {
  for (const Element& element : row.elements) {
    if (!element.isRead) return false;
  }
  return true;
}

// The rows before a fault are printed.
void PrintFrames(std::ostream& out, const FramesOptions& options, bool& isBegun) {
  Clip clip(options.path);
  const EditUnits units = clip.ParseRange(options.range);
  const auto first = static_cast<unsigned int>(units.begin);
  FrameRow row;
  // Asked for once: a question for an element that does not exist costs a search in the index.
  row.elements.resize(clip.ElementCount(first));
  if (row.elements.empty()) FailAt(clip, first);

  const std::unique_ptr<RowWriter> writer = MakeRowWriter(options.format, out, options.path);
  unsigned long long incomplete = 0;
  writer->Begin(static_cast<unsigned int>(row.elements.size()));
  isBegun = true;
  for (unsigned long long unit = units.begin; unit < units.end && out; ++unit) {
    ReadRow(clip, static_cast<unsigned int>(unit), row);
    writer->Row(row);
    if (!isWhole(row)) ++incomplete;
  }
  writer->End(incomplete);
  if (incomplete == 0) return;
  throw CommandError(std::to_string(incomplete) + " edit units have elements that are unreadable; verify tells where");
}

int RunFrames(const FramesOptions& options) {
  bool isBegun = false;
  return RunOnClip(options.path, [&] {
    try {
      PrintFrames(std::cout, options, isBegun);
    } catch (const CommandError& error) {
      if (options.format == RowFormat::JSON && !isBegun) {
        const Frame frame = EnvelopeFrame("frames");
        std::cout << frame.head << JsonText(FailedClip(options.path, error.what()), 2) << frame.tail;
      }
      throw;
    }
  });
}

}  // namespace

Runner DefineFrames(CLI::App& app) {
  CLI::App* const frames =
      app.add_subcommand("frames", "Print a row for each edit unit: index flags, and where its elements lie");
  const auto options = std::make_shared<FramesOptions>();
  frames->add_option("CLIP", options->path, "MXF file")->required()->type_name("");
  frames->footer(kFooter);
  DefineRange(*frames, options->range);
  CLI::Option* const csv = frames->add_flag_callback(
      "--csv", [options] { options->format = RowFormat::CSV; }, "Comma-separated values");
  frames
      ->add_flag_callback(
          "--json", [options] { options->format = RowFormat::JSON; }, kJsonHelp)
      ->excludes(csv);
  return [options] { return RunFrames(*options); };
}
