#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "tests/support/ClipWriter.h"

// Writes what fuzzing starts from: make-seeds DIRECTORY makes DIRECTORY/TARGET/NAME from small clips of each layout and
// from short scripts.

namespace {

using clipwriter::Bytes;
using clipwriter::ClipOptions;

std::filesystem::path root;

void Write(const std::string& target, const std::string& name, const Bytes& bytes) {
  std::filesystem::create_directories(root / target);
  std::ofstream file(root / target / name, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) throw std::runtime_error("can't write " + name);
}

// Each packet to its target, one of a name; a set behind the primer pack that names its tags.
void WritePackets(const std::string& layout, const clipwriter::Clip& clip, const Bytes& file) {
  const std::map<std::string, const char*> targets = {
      {"HeaderPartition", "PartitionPack"},      {"BodyPartition", "PartitionPack"},
      {"FooterPartition", "PartitionPack"},      {"PrimerPack", "PrimerPack"},
      {"RandomIndexPack", "RandomIndexPack"},    {"StreamFileSequenceInfo", "StreamFileSequenceInfo"},
      {"IndexTableSegment", "IndexTableSegment"}};
  Bytes primer;
  for (const clipwriter::Field& field : clip.fields) {
    const auto head = file.begin() + static_cast<std::ptrdiff_t>(field.offset);
    const bool isPacket = field.kind == clipwriter::FieldKind::Length && field.width == 1 && *head == 0x83;
    if (!isPacket || *field.name == 0) continue;
    const Bytes packet(head - 16, head + 4 + (head[1] << 16 | head[2] << 8 | head[3]));
    const auto target = targets.find(field.name);
    Bytes seed = target == targets.end() ? primer : Bytes();
    if (field.name == std::string("PrimerPack")) primer = packet;
    seed.insert(seed.end(), packet.begin(), packet.end());
    Write(target == targets.end() ? "MetadataSet" : target->second, layout + ' ' + field.name, seed);
  }
}

ClipOptions TinyClip() {
  ClipOptions options;
  options.recordFields = true;
  options.kagSize = 256;
  options.partitionUnits = {3, 2};
  options.gopLength = 3;
  options.intraBytes = 90, options.predictedBytes = 60, options.bidirectionalBytes = 30;
  options.soundElements = 1, options.soundBytes = 40, options.dataBytes = 24;
  return options;
}

std::map<std::string, ClipOptions> TinyClips() {
  std::map<std::string, ClipOptions> clips = {{"partition-index", TinyClip()}};
  ClipOptions& header = clips["header-index"] = TinyClip();
  header.minorVersion = 3, header.index = clipwriter::IndexLayout::InHeader;
  header.partitionUnits = {6}, header.segmentUnits = 2;
  ClipOptions& walk = clips["no-random-index"] = TinyClip();
  walk.randomIndex = clipwriter::RandomIndex::Absent, walk.slices = 2, walk.staleSegments = 1;
  walk.picture = clipwriter::PictureSet::RGBA, walk.aesSound = false;
  ClipOptions& plain = clips["no-index"] = TinyClip();
  plain.index = clipwriter::IndexLayout::None, plain.picture = clipwriter::PictureSet::MPEG;
  plain.multipleDescriptor = false, plain.systemItem = false, plain.identifications = 2;
  return clips;
}

// Calls that fill one cache, then go over its blocks; partitions of which each has segments; one read after another.
void WriteScripts() {
  Bytes cache, partitions, reader = {24};
  for (unsigned char i = 0; i < 66; ++i) cache.insert(cache.end(), {1, i, 2, static_cast<unsigned char>(i / 2)});
  for (unsigned char i = 0; i < 4; ++i) {
    partitions.insert(partitions.end(), {2, i, i, 4, i, i, 1, 0});
    for (unsigned char n = 0; n < 3; ++n) {
      partitions.insert(partitions.end(), {8, i, n, static_cast<unsigned char>(9 * i + 3 * n), 3, 2, 0});
    }
  }
  for (unsigned char i = 0; i < 24; ++i) reader.push_back(i);
  for (unsigned char i = 0; i < 128; ++i) reader.push_back(i % 5 == 0 ? 0x82 : i % 3);
  Write("BlockCache", "more-blocks-than-it-has", cache);
  Write("BodyPartitionArray", "four-partitions", partitions);
  Write("ByteReader", "each-call", reader);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  root = argv[1];
  for (const auto& [name, options] : TinyClips()) {
    clipwriter::MemorySink file;
    const clipwriter::Clip clip = clipwriter::WriteClip(options, file);
    Write("Clip", name, file.bytes);
    const auto header = file.bytes.begin() + static_cast<std::ptrdiff_t>(clip.partitions[0].headerOffset);
    Write("HeaderMetadata", name, {header, header + static_cast<std::ptrdiff_t>(clip.partitions[0].headerBytes)});
    WritePackets(name, clip, file.bytes);
    const auto system = file.bytes.begin() + static_cast<std::ptrdiff_t>(clip.ElementAt(0, 0).offset);
    Write("SystemMetadataPack", name, {system, system + 16 + 4 + 57});
  }
  WriteScripts();
  return 0;
}
