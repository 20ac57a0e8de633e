#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "tests/support/ClipWriter.h"

// seed-writer FOLDER: writes small clips of every layout, and each of their packets, as seeds for the targets.
namespace {

namespace fs = std::filesystem;
using clipwriter::Bytes;
using clipwriter::ClipOptions;
using clipwriter::IndexLayout;

void Save(const fs::path& path, const Bytes& bytes, std::size_t first, std::size_t size) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()) + first, static_cast<std::streamsize>(size));
}

// Each packet up to the first essence, whose key and four-byte length the writer always uses in the header.
void SavePackets(const fs::path& folder, const std::string& name, const Bytes& bytes) {
  for (std::size_t at = 0, count = 0; at + 20 <= bytes.size() && count < 80; ++count) {
    std::size_t head = 17;
    std::size_t length = bytes[at + 16];
    if (length >= 0x80) {
      const std::size_t digits = length & 0x7F;
      length = 0;
      for (std::size_t i = 0; i < digits && i < 8; ++i) length = length << 8 | bytes[at + 17 + i];
      head += digits;
    }
    if (length < 8000) Save(folder / (name + "-" + std::to_string(count)), bytes, at, head + length);
    at += head + length;
  }
}

ClipOptions Small(IndexLayout index) {
  ClipOptions options;
  options.index = index;
  options.minorVersion = index == IndexLayout::InHeader ? 3 : 2;
  options.partitionUnits =
      index == IndexLayout::InHeader ? std::vector<std::uint32_t>{6} : std::vector<std::uint32_t>{3, 2};
  options.segmentUnits = 2;
  options.kagSize = 256;
  options.intraBytes = options.predictedBytes = options.bidirectionalBytes = 40;
  options.soundElements = 1;
  options.soundBytes = 16;
  options.dataBytes = 8;
  return options;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: seed-writer FOLDER\n";
    return 2;
  }
  const fs::path folder = argv[1];
  fs::create_directories(folder / "clips");
  fs::create_directories(folder / "packets");
  fs::create_directories(folder / "headers");
  int number = 0;
  for (const IndexLayout index : {IndexLayout::PerPartition, IndexLayout::InHeader}) {
    for (const clipwriter::RandomIndex randomIndex :
         {clipwriter::RandomIndex::Present, clipwriter::RandomIndex::Absent, clipwriter::RandomIndex::WrongFirst}) {
      ClipOptions options = Small(index);
      options.randomIndex = randomIndex;
      options.picture = number % 2 == 0 ? clipwriter::PictureSet::CDCI : clipwriter::PictureSet::RGBA;
      clipwriter::MemorySink sink;
      const clipwriter::Clip clip = clipwriter::WriteClip(options, sink);
      const std::string name = std::to_string(number++);
      Save(folder / "clips" / name, sink.bytes, 0, sink.bytes.size());
      const clipwriter::Partition& header = clip.partitions.front();
      Save(folder / "headers" / name, sink.bytes, header.headerOffset, header.headerBytes);
      SavePackets(folder / "packets", name, sink.bytes);
    }
  }
  return 0;
}
