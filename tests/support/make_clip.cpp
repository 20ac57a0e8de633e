#include <CLI/CLI.hpp>
#include <cstdint>
#include <iostream>
#include <string>

#include "tests/support/ClipWriter.h"

// Writes a sample clip: make-clip [OPTION...] OUTPUT
int main(int argc, char** argv) {
  clipwriter::ClipOptions options;
  std::string output;
  std::uint32_t units = 25;
  std::uint32_t partitions = 3;
  std::uint32_t pictureBytes = options.intraBytes;
  bool isHeaderIndex = false;
  bool isWithoutRandomIndex = false;
  CLI::App app("Writes a synthetic camera clip");
  app.add_option("OUTPUT", output)->required();
  app.add_option("--units", units, "Edit units in all")->check(CLI::PositiveNumber);
  app.add_option("--partitions", partitions, "Body partitions")->check(CLI::PositiveNumber);
  app.add_option("--picture-bytes", pictureBytes, "Bytes of an intra-coded picture; the others are smaller");
  app.add_option("--data-bytes", options.dataBytes, "Bytes of a data element");
  app.add_option("--slices", options.slices, "Slices of an index entry");
  app.add_flag("--header-index", isHeaderIndex, "Version 1.3, with the index in the header partition");
  app.add_flag("--no-rip", isWithoutRandomIndex, "Without a random index pack");
  CLI11_PARSE(app, argc, argv);

  options.partitionUnits.assign(isHeaderIndex ? 1 : partitions, 0);
  const auto count = static_cast<std::uint32_t>(options.partitionUnits.size());
  for (std::uint32_t i = 0; i < count; ++i) options.partitionUnits[i] = units / count + (i < units % count ? 1 : 0);
  options.intraBytes = pictureBytes;
  options.predictedBytes = pictureBytes / 2;
  options.bidirectionalBytes = pictureBytes / 4;
  options.minorVersion = isHeaderIndex ? 3 : 2;
  options.index = isHeaderIndex ? clipwriter::IndexLayout::InHeader : clipwriter::IndexLayout::PerPartition;
  if (isWithoutRandomIndex) options.randomIndex = clipwriter::RandomIndex::Absent;
  try {
    clipwriter::WriteClipFile(options, output);
  } catch (const std::exception& error) {
    std::cerr << "make-clip: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
