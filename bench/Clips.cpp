#include "bench/Clips.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <random>
#include <stdexcept>

namespace bench {
namespace {

using clipwriter::ClipOptions;
using clipwriter::Essence;
using clipwriter::IndexLayout;

constexpr std::uint32_t kHeaderSegmentUnits = 600;

ClipOptions Options(std::uint32_t units, std::uint32_t partitions, Essence essence) {
  ClipOptions options;
  options.partitionUnits.assign(partitions, units / partitions);
  options.essence = essence;
  options.intraBytes = 180000;
  options.predictedBytes = 80000;
  options.bidirectionalBytes = 40000;
  return options;
}

ClipOptions HeaderIndexOptions() {
  ClipOptions options = Options(7200, 1, Essence::Holes);
  options.minorVersion = 3;
  options.index = IndexLayout::InHeader;
  options.segmentUnits = kHeaderSegmentUnits;
  return options;
}

ClipOptions CrowdedOptions() {
  ClipOptions options = Options(25, 1, Essence::Holes);
  options.crowd = 4093;  // with the clip's own packages 4,095: more do not fit in one item of a set
  return options;
}

}  // namespace

BenchClip::BenchClip(const std::string& path, const ClipOptions& options) : m_path(path), m_layout(options) {
  if (!std::filesystem::exists(path)) clipwriter::WriteClipFile(options, path);
}

std::unique_ptr<MXFStream> BenchClip::Open() const {
  auto clip = std::make_unique<MXFStream>(CreateOxString(m_path));
  if (clip->Parse() != kStatusOK) throw std::runtime_error(m_path + " cannot be opened");
  return clip;
}

std::unique_ptr<MXFStream> BenchClip::OpenWithIndexes(std::size_t partitions) const {
  auto clip = Open();
  std::vector<unsigned int> units = FirstUnits();
  units.resize(std::min(units.size(), partitions));
  for (const unsigned int unit : units) {
    unsigned long long offset = 0;
    if (clip->GetEssenceOffset(unit, kPicture, offset) != kStatusOK) throw std::runtime_error(m_path + ": no index");
  }
  return clip;
}

std::vector<unsigned int> BenchClip::FirstUnits() const {
  std::vector<unsigned int> units;
  const bool isInHeader = m_layout.options.index == IndexLayout::InHeader;
  if (isInHeader) {
    for (unsigned int unit = 0; unit < Units(); unit += kHeaderSegmentUnits) units.push_back(unit);
    return units;
  }
  for (std::size_t i = 1; i <= BodyPartitions(); ++i) {
    units.push_back(static_cast<unsigned int>(m_layout.partitions[i].firstUnit));
  }
  return units;
}

std::vector<Range> BenchClip::Elements(const std::vector<unsigned int>& units, unsigned int first) const {
  std::vector<Range> ranges;
  for (const unsigned int unit : units) {
    for (unsigned int element = first; element < kElementCount; ++element) {
      const clipwriter::Element place = m_layout.ElementAt(unit, element);
      const std::uint64_t end = place.valueOffset + place.valueLength;
      ranges.push_back({place.offset, static_cast<std::size_t>(end - place.offset)});
    }
  }
  return ranges;
}

std::vector<Range> BenchClip::OpeningRanges() const {
  const std::uint64_t list = m_layout.randomIndexOffset;
  std::vector<Range> ranges = {{list, static_cast<std::size_t>(m_layout.length - list)}};
  const clipwriter::Partition& header = m_layout.partitions[0];
  ranges.push_back({0, static_cast<std::size_t>(header.headerOffset + header.headerBytes)});
  ranges.push_back(PartitionPack(1));
  if (m_layout.options.index == IndexLayout::InHeader) {
    ranges.push_back({header.indexOffset, static_cast<std::size_t>(header.indexBytes / FirstUnits().size())});
  } else {
    ranges.push_back(PackAndIndex(2));
  }
  return ranges;
}

std::vector<Range> BenchClip::OpeningAndIndexRanges() const {
  std::vector<Range> ranges = OpeningRanges();
  for (std::size_t i = 2; i <= BodyPartitions(); ++i) {
    ranges.push_back(PartitionPack(i));
    ranges.push_back(PackAndIndex(i + 1));
  }
  return ranges;
}

Range BenchClip::PartitionPack(std::size_t partition) const {
  const clipwriter::Partition& place = m_layout.partitions[partition];
  return {place.offset, static_cast<std::size_t>(place.headerOffset - place.offset)};
}

Range BenchClip::PackAndIndex(std::size_t partition) const {
  const clipwriter::Partition& place = m_layout.partitions[partition];
  return {place.offset, static_cast<std::size_t>(place.indexOffset + place.indexBytes - place.offset)};
}

Clips::Clips(const std::string& folder)
    : a(folder + "/a.mxf", Options(600, 3, Essence::Keys)),
      b(folder + "/b.mxf", Options(7200, 30, Essence::Full)),
      c(folder + "/c.mxf", Options(7200, 600, Essence::Keys)),
      d(folder + "/d.mxf", Options(1000000, 10000, Essence::Holes)),
      e(folder + "/e.mxf", HeaderIndexOptions()),
      f(folder + "/f.mxf", CrowdedOptions()) {}

std::vector<unsigned int> EveryUnit(const BenchClip& clip) {
  std::vector<unsigned int> units(clip.Units());
  std::iota(units.begin(), units.end(), 0);
  return units;
}

std::vector<unsigned int> RandomUnits(const BenchClip& clip, std::size_t count) {
  std::mt19937 random(1);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same numbers in each run
  std::vector<unsigned int> units(count);
  for (unsigned int& unit : units) unit = static_cast<unsigned int>(random() % clip.Units());
  return units;
}

void ReadElements(MXFStream& clip, unsigned int unit, unsigned int first, std::vector<unsigned char>& buffer) {
  const auto size = static_cast<unsigned int>(buffer.size());
  for (unsigned int element = first; element < kElementCount; ++element) {
    if (clip.ReadEssenceData(unit, element, buffer.data(), size) == 0) throw std::runtime_error("no essence");
  }
}

}  // namespace bench
