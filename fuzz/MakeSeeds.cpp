#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "foundation/ULKey.h"
#include "tests/support/ClipWriter.h"

// Writes what fuzzing starts from: make-seeds DIRECTORY makes DIRECTORY/TARGET/NAME from small clips of each layout.

namespace {

using clipwriter::Bytes;
using clipwriter::ClipOptions;

class Seeds {
 public:
  explicit Seeds(std::filesystem::path root) : m_root(std::move(root)) {}
  void Write(const std::string& target, const std::string& name, const Bytes& bytes) const {
    std::filesystem::create_directories(m_root / target);
    std::ofstream file(m_root / target / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error("can't write " + name);
  }

 private:
  std::filesystem::path m_root;
};

const char* TargetOf(unsigned int keyType) {
  if (keyType >= kKeyHeaderPartitionPack && keyType <= kKeyFooterPartitionPack) return "PartitionPack";
  if (keyType == kKeyPrimerPack) return "PrimerPack";
  if (keyType == kKeyRandomIndexPack) return "RandomIndexPack";
  if (keyType == kKeySystemMetadataPack) return "SystemMetadataPack";
  if (keyType == kKeyStreamFileSequenceInfo) return "StreamFileSequenceInfo";
  if (keyType == kKeyIndexTableSegment) return "IndexTableSegment";
  return isStructuralSet(keyType) ? "MetadataSet" : nullptr;
}

// Each packet of a clip to its target, one of a kind; a set behind the primer pack that names its tags.
void WritePackets(const Seeds& seeds, const std::string& name, const Bytes& clip) {
  Bytes primer;
  for (std::size_t at = 0, next = 0; at + 20 < clip.size(); at = next) {
    std::size_t length = clip[at + 16], head = 17;
    if (length >= 0x80) {
      head += length - 0x80, length = 0;
      for (std::size_t i = at + 17; i < at + head; ++i) length = length << 8 | clip[i];
    }
    next = at + head + length;
    const unsigned int type = ULKey(&clip[at]).GetKeyType();
    const Bytes packet(&clip[at], &clip[at] + head + length);
    if (type == kKeyPrimerPack) primer = packet;
    if (const char* target = TargetOf(type)) {
      Bytes seed = isStructuralSet(type) ? primer : Bytes();
      seed.insert(seed.end(), packet.begin(), packet.end());
      seeds.Write(target, name + "-" + std::to_string(type), seed);
    }
  }
}

ClipOptions TinyClip() {
  ClipOptions options;
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
void WriteScripts(const Seeds& seeds) {
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
  seeds.Write("BlockCache", "more-blocks-than-it-has", cache);
  seeds.Write("BodyPartitionArray", "four-partitions", partitions);
  seeds.Write("ByteReader", "each-call", reader);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const Seeds seeds(argv[1]);
  for (const auto& [name, options] : TinyClips()) {
    clipwriter::MemorySink file;
    const clipwriter::Clip clip = clipwriter::WriteClip(options, file);
    seeds.Write("Clip", name, file.bytes);
    const auto header = file.bytes.begin() + static_cast<std::ptrdiff_t>(clip.partitions[0].headerOffset);
    seeds.Write("HeaderMetadata", name, {header, header + static_cast<std::ptrdiff_t>(clip.partitions[0].headerBytes)});
    WritePackets(seeds, name, file.bytes);
  }
  WriteScripts(seeds);
  return 0;
}
