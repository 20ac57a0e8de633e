#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "clipinfo/Clip.h"
#include "clipinfo/Commands.h"
#include "clipinfo/ElementKind.h"
#include "clipinfo/ElementReader.h"
#include "clipinfo/Faults.h"
#include "clipinfo/Json.h"
#include "clipinfo/OutputFile.h"
#include "clipinfo/Progress.h"
#include "clipinfo/Text.h"
#include "clipinfo/WaveFile.h"

namespace {

struct ExtractOptions {
  std::string path;
  unsigned int element = 0;
  bool isAll = false;
  bool isWave = false;
  bool isJson = false;
  std::string range;
  std::string output;  // a file, or - for the standard output; a directory for all elements
};

// Where one element goes, from the first edit unit to the last.
class ElementOutput {
 public:
  ElementOutput(Clip& clip, const ElementPlace& place, const std::string& path, const ExtractOptions& options)
      : m_place(place), m_path(path), m_reader(clip, place.index), m_file(path, options.path) {
    if (!options.isWave) return;
    // Edit units of sound differ by a sample or so (1601 and 1602 at 29.97 per second).
    const EditUnits units = clip.ParseRange(options.range);
    const bool isLong = place.size + place.size / 100 > WaveFile::kMostPlain / (units.end - units.begin);
    m_format = SoundFormatOf(clip, place);
    m_wave.emplace(m_file, *m_format, isLong);
  }

  // Returns the number of bytes.
  unsigned long long Copy(unsigned int editUnit) {
    const std::vector<unsigned char>& bytes = m_reader.Read(editUnit);
    try {
      Write(bytes);
    } catch (const CommandError& error) {
      throw CommandError("edit unit " + std::to_string(editUnit) + ": " + error.what());
    }
    m_bytes += bytes.size();
    return bytes.size();
  }
  void Finish() {
    if (m_wave) m_wave->Close();
    m_file.Finish();
  }
  [[nodiscard]] Json Document() {
    Json document = {{"element", m_place.index}, {"kind", m_place.kind.name},
                     {"number", m_place.number}, {"key", m_place.key.Description()->UTF8String()},
                     {"file", m_path},           {"bytes", NumberJson(m_bytes)},
                     {"wave", nullptr}};
    if (m_format) {
      document["wave"] = {{"channels", m_format->channels},
                          {"bits", m_format->bits},
                          {"samples_per_second", m_format->samplesPerSecond}};
    }
    return document;
  }

 private:
  void Write(const std::vector<unsigned char>& bytes) {
    if (m_wave) {
      m_wave->Write(bytes);
    } else {
      m_file.Write(bytes.data(), bytes.size());
    }
  }

  ElementPlace m_place;
  std::string m_path;
  ElementReader m_reader;
  OutputFile m_file;
  std::optional<SoundFormat> m_format;
  std::optional<WaveFile> m_wave;
  unsigned long long m_bytes = 0;
};
using ElementOutputs = std::vector<std::unique_ptr<ElementOutput>>;

void MakeDirectory(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directory(path, error);
  if (!std::filesystem::is_directory(path)) throw CommandError(Escaped(path) + ": cannot be made a directory");
}

// Everything that can be refused is, before the first byte is written.
ElementOutputs OpenAll(Clip& clip, const std::vector<ElementPlace>& places, const ExtractOptions& options) {
  MakeDirectory(options.output);
  ElementOutputs outputs;
  for (const ElementPlace& place : places) {
    ExtractOptions own = options;
    own.isWave = options.isWave && place.kind.isPCM;
    const std::filesystem::path path = std::filesystem::path(options.output) / FileNameOf(place, own.isWave);
    outputs.push_back(std::make_unique<ElementOutput>(clip, place, path.string(), own));
  }
  return outputs;
}

ElementOutputs Open(Clip& clip, const ExtractOptions& options, unsigned int firstUnit) {
  const std::vector<ElementPlace> places = ElementsAt(clip, firstUnit);
  if (options.isAll) return OpenAll(clip, places, options);
  if (options.element >= places.size()) {
    throw CommandError("edit unit " + std::to_string(firstUnit) + ": no element " + std::to_string(options.element) +
                       ", the index has " + std::to_string(places.size()));
  }
  ElementOutputs outputs;
  outputs.push_back(std::make_unique<ElementOutput>(clip, places[options.element], options.output, options));
  return outputs;
}

// After a fault no output file is left behind. What was written, as the members of a document.
void Extract(const ExtractOptions& options, Json& document) {
  Clip clip(options.path);
  const EditUnits units = clip.ParseRange(options.range);
  const ElementOutputs outputs = Open(clip, options, static_cast<unsigned int>(units.begin));
  Progress progress(units.end - units.begin);
  for (unsigned long long i = units.begin; i < units.end; ++i) {
    unsigned long long bytes = 0;
    for (const auto& output : outputs) bytes += output->Copy(static_cast<unsigned int>(i));
    progress.Step(bytes);
  }
  document["edit_units"] = {{"begin", units.begin}, {"end", units.end}};
  document["elements"] = Json::array();
  for (const auto& output : outputs) {
    output->Finish();
    document["elements"].push_back(output->Document());
  }
}

int Run(const ExtractOptions& options) {
  if (!options.isJson) {
    Json ignored;
    return RunOnClip(options.path, [&] { Extract(options, ignored); });
  }
  return PrintDocuments({{options.path}, 1}, "extract", [&](Json& clip, const std::string& /*path*/) {
    Extract(options, clip);
    return kExitOK;
  });
}

constexpr const char* kExamples = R"(Examples:
  clipinfo extract A.MXF --element 1 -o picture.m2v
  clipinfo extract A.MXF --element 2 --wav -o sound.wav
  clipinfo extract A.MXF --all --wav -o A.d     system.bin, picture-1.m2v, sound-1.wav, sound-2.wav ...
  clipinfo extract A.MXF --element 2 --range 250: -o - | md5sum)";

}  // namespace

Runner DefineExtract(CLI::App& app) {
  CLI::App* const extract = app.add_subcommand("extract", "Write the bytes of one element, or of all, to files");
  const auto options = std::make_shared<ExtractOptions>();
  extract->add_option("CLIP", options->path, "MXF file")->required()->type_name("");
  CLI::Option_group* const which = extract->add_option_group("Elements");
  which->add_option("--element", options->element, "0 system item, 1 picture, then sound, then data")->type_name("N");
  which->add_flag("--all", options->isAll, "Every element, each in a file named by its kind and number");
  which->require_option(1);
  extract->add_flag("--wav", options->isWave, "Write PCM sound as wave files (RF64 beyond 4 GiB)");
  extract->add_flag("--json", options->isJson, "Tell what was written as JSON, see docs/json.md");
  DefineRange(*extract, options->range);
  extract
      ->add_option("-o,--output", options->output,
                   "File to write, - for the standard output; with --all a directory, made if need be")
      ->required()
      ->type_name("PATH");
  extract->footer(kExamples);
  extract->callback([options] {
    if (!options->isJson || options->output != "-") return;
    throw CLI::ValidationError("--json", "the standard output takes the JSON or the essence, not both");
  });
  return [options] { return Run(*options); };
}
