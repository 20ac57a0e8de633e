// make-clip: writes a synthetic camera clip, for scripts, benches and people with a hex dump.

#include <cstdint>
#include <cstdio>
#include <exception>
#include <map>
#include <stdexcept>
#include <string>

#include "ClipWriter.h"

namespace {

const char kUsage[] =
    "usage: make-clip [--units N] [--partitions N] [--version 1.2|1.3] [--header-index] [--segment-units N]\n"
    "                 [--picture-bytes N] [--sound N] [--data-bytes N] [--kag N] [--no-rip] [--drop-frame] [--rgba]\n"
    "                 [--keys | --holes] OUTPUT\n"
    "N is 25 units in 3 partitions, I frames of 12000 bytes (P half, B a quarter of it), 2 sound elements, KAG 512.\n"
    "--keys leaves the values of the elements as holes, --holes all edit units but the first and the last.\n";

void WriteFrom(int argc, char** argv) {
  clipwriter::ClipOptions clip;
  std::uint32_t units = 25, partitions = 3;
  std::string output;
  const std::map<std::string, std::uint32_t*> numbers = {{"--units", &units},
                                                         {"--partitions", &partitions},
                                                         {"--segment-units", &clip.segmentUnits},
                                                         {"--kag", &clip.kagSize},
                                                         {"--picture-bytes", &clip.intraBytes},
                                                         {"--sound", &clip.soundElements},
                                                         {"--data-bytes", &clip.dataBytes}};
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const auto number = numbers.find(argument);
    if (number != numbers.end() && i + 1 < argc) {
      *number->second = static_cast<std::uint32_t>(std::stoul(argv[++i]));
    } else if (argument == "--version" && i + 1 < argc) {
      clip.minorVersion = argv[++i] == std::string("1.3") ? 3 : 2;
    } else if (argument == "--header-index") {
      clip.index = clipwriter::IndexLayout::InHeader;
      clip.minorVersion = 3;
      partitions = 1;
    } else if (argument == "--no-rip") {
      clip.randomIndex = clipwriter::RandomIndex::Absent;
    } else if (argument == "--drop-frame") {
      clip.rateNumerator = 30000;
      clip.rateDenominator = 1001;
      clip.dropFrame = true;
    } else if (argument == "--rgba") {
      clip.picture = clipwriter::PictureSet::RGBA;
    } else if (argument == "--keys" || argument == "--holes") {
      clip.essence = argument == "--keys" ? clipwriter::Essence::Keys : clipwriter::Essence::Holes;
    } else if (argument.empty() || argument[0] == '-' || !output.empty()) {
      throw std::invalid_argument("not understood: " + argument);
    } else {
      output = argument;
    }
  }
  if (output.empty() || partitions == 0 || clip.kagSize == 0) throw std::invalid_argument("nothing to write");
  clip.predictedBytes = clip.intraBytes / 2;
  clip.bidirectionalBytes = clip.intraBytes / 4;
  clip.partitionUnits.assign(partitions, units / partitions);
  for (std::uint32_t i = 0; i < units % partitions; ++i) ++clip.partitionUnits[i];
  clipwriter::WriteClipFile(clip, output);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    WriteFrom(argc, argv);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make-clip: %s\n%s", error.what(), kUsage);
    return 1;
  }
}
