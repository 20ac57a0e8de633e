#include <limits>
#include <memory>
#include <vector>

#include "clipinfo/Clip.h"
#include "clipinfo/Commands.h"
#include "clipinfo/Faults.h"
#include "clipinfo/OutputFile.h"
#include "clipinfo/Progress.h"

namespace {

struct ExtractOptions {
  std::string path;
  unsigned int element = 0;
  std::string range;
  std::string output;  // a path, or - for the standard output
};

constexpr unsigned long long kNoLocation = 0x7FFFFFFFFFFFFFFF;  // what RangeEssenceData says on failure

[[noreturn]] void FailAt(unsigned int editUnit, const std::string& reason) {
  throw CommandError("edit unit " + std::to_string(editUnit) + ": " + reason);
}

class Extractor {
 public:
  Extractor(Clip& clip, unsigned int element) : m_clip(clip), m_element(element) {}

  // The element's bytes of an edit unit, valid until the next call. None is an answer; failures throw.
  const std::vector<unsigned char>& Read(unsigned int editUnit) {
    const unsigned long long size = SizeOf(editUnit);
    if (size > std::numeric_limits<unsigned int>::max()) FailAt(editUnit, "the element is too large");
    m_bytes.resize(size);
    if (size == 0) return m_bytes;
    const auto wanted = static_cast<unsigned int>(size);
    if (m_clip.Stream().ReadEssenceData(editUnit, m_element, m_bytes.data(), wanted) != wanted) {
      FailAt(editUnit, "the element cannot be read");
    }
    return m_bytes;
  }

 private:
  [[nodiscard]] unsigned long long SizeOf(unsigned int editUnit) {
    const _OxRange range = m_clip.Stream().RangeEssenceData(editUnit, m_element);
    return range.location != kNoLocation ? range.length : SystemItemSize(editUnit);
  }

  // The system metadata pack and the package metadata set that may follow it: they are read as one.
  [[nodiscard]] unsigned long long SystemItemSize(unsigned int editUnit) {
    unsigned long long offset = 0;
    if (m_clip.Stream().GetEssenceOffset(editUnit, m_element, offset) != kStatusOK) FailAt(editUnit, Reason(editUnit));
    const Element pack = m_clip.ElementAt(offset);
    if (!pack.isRead) FailAt(editUnit, "the element is not whole in the file");
    if (pack.type != kKeySystemMetadataPack) FailAt(editUnit, "the element is neither essence nor a system item");
    const Element set = m_clip.ElementAt(pack.next);
    return set.isRead && set.type == kKeySystemItemLocalSet ? pack.size + set.size : pack.size;
  }

  [[nodiscard]] std::string Reason(unsigned int editUnit) {
    const unsigned int count = m_clip.ElementCount(editUnit);
    if (count == 0) return m_clip.NoIndexText();
    return "no element " + std::to_string(m_element) + ", the index has " + std::to_string(count);
  }

  Clip& m_clip;
  unsigned int m_element;
  std::vector<unsigned char> m_bytes;
};

// After a fault no output file is left behind.
void ExtractElement(const ExtractOptions& options) {
  Clip clip(options.path);
  const EditUnits units = clip.ParseRange(options.range);
  Extractor extractor(clip, options.element);
  OutputFile output(options.output, options.path);
  Progress progress(units.end - units.begin);
  for (unsigned long long i = units.begin; i < units.end; ++i) {
    const auto editUnit = static_cast<unsigned int>(i);
    const std::vector<unsigned char>& bytes = extractor.Read(editUnit);
    try {
      output.Write(bytes.data(), bytes.size());
    } catch (const CommandError& error) {
      FailAt(editUnit, error.what());
    }
    progress.Step(bytes.size());
  }
  output.Finish();
}

}  // namespace

Runner DefineExtract(CLI::App& app) {
  CLI::App* const extract = app.add_subcommand("extract", "Write the bytes of one element of each edit unit");
  const auto options = std::make_shared<ExtractOptions>();
  extract->add_option("CLIP", options->path, "MXF file")->required()->type_name("");
  extract->add_option("--element", options->element, "0 system item, 1 picture, then sound, then data")
      ->required()
      ->type_name("N");
  DefineRange(*extract, options->range);
  extract->add_option("-o,--output", options->output, "File to write, - for the standard output")
      ->required()
      ->type_name("FILE");
  return [options] { return RunOnClip(options->path, [&] { ExtractElement(*options); }); };
}
