#include "clipinfo/VerifyEssence.h"

#include <algorithm>

#include "clipinfo/VerifySteps.h"
#include "clipinfo/VerifySystemItem.h"

namespace {

using Keys = std::vector<MxfUUID>;

constexpr unsigned int kMostResyncs = 1000;  // of a clip; one is needed for each damaged length
constexpr unsigned long long kProbedUnits = 4;
constexpr unsigned int kSearchSize = 1 << 16;
constexpr unsigned long long kSmallestPacket = 16 + 1;
constexpr long long kFurthestAnchor = 32;  // content packages that may be lost at once

bool isSystemPack(unsigned int type) { return type == kKeySystemMetadataPack; }

PackageElement ElementOf(const KLVPacket& packet) {
  return {packet.key(), packet.PacketType(), packet.Offset(), packet.ValueOffset(), packet.Length()};
}

// Follows the packets of each partition's essence and puts them together to content packages; compares each with the
// first ones, the index and the count of edit units.
class EssenceWalk {
 public:
  EssenceWalk(VerifyFile& file, const EssenceFacts& facts, VerifyIndex& index, const PackageSink& sink)
      : m_file(file), m_facts(facts), m_index(index), m_sink(sink), m_system(file) {}

  void Run() {
    FindShape();
    CheckTracks();
    for (const VerifiedPartition& partition : m_file.partitions) {
      if (!partition.hasEssence()) continue;
      Walk(partition);
      m_streamOffset += partition.end - partition.content;
    }
    if (m_facts.duration >= 0 && m_unit != static_cast<unsigned long long>(m_facts.duration)) {
      m_file.findings.Add(FindingKind::Duration, m_file.Length(),
                          InsteadOf("it", m_unit, static_cast<unsigned long long>(m_facts.duration)));
    }
  }

 private:
  // From the first content package or, where that is damaged, from one of the next.
  void FindShape() {
    for (const VerifiedPartition& partition : m_file.partitions) {
      if (!partition.hasEssence() || partition.pack->BodySID() == 0) continue;
      m_partition = &partition;
      for (unsigned long long unit = 0; m_shape.size() < 2 && unit < kProbedUnits; ++unit) {
        const unsigned long long from = unit == 0 ? partition.content : IndexedOffset(unit, 0).value_or(partition.end);
        if (from >= partition.content && from < partition.end) m_shape = ProbeShape(m_file, partition, from);
      }
      if (!m_shape.empty()) return;
    }
  }

  // Each essence element belongs to a track of its number, and each track to an element (ST 379).
  void CheckTracks() {
    std::set<unsigned int> numbers;
    for (const MxfUUID& key : m_shape) {
      if (KeyKind(ULKey(KeyBytes(key).data()).GetKeyType()) == kKeyEssence) numbers.insert(TrackNumber(key));
    }
    if (m_shape.empty() || numbers == m_facts.trackNumbers || m_facts.trackNumbers.empty()) return;
    m_file.findings.Add(FindingKind::EssenceTrack, m_file.partitions.front().offset,
                        std::to_string(numbers.size()) + " elements, " + std::to_string(m_facts.trackNumbers.size()) +
                            " tracks, or other numbers");
  }

  void Walk(const VerifiedPartition& partition) {
    m_partition = &partition;
    m_lastOffset = partition.content;
    unsigned long long position = partition.content;
    while (position < partition.end) {
      if (!m_file.ReadPacket(position, partition.end, m_packet, m_unit)) {
        m_package.isBroken = true;
        if (!Resync(position)) break;
        Close();
        continue;
      }
      Take();
      m_lastOffset = position;
      position = m_packet.NextOffset();
    }
    Close();
  }

  void Take() {
    const PacketRole role = RoleOf(m_packet);
    if (role == PacketRole::Fill) {
      m_file.CheckFill(m_packet, *m_partition);
    } else if (m_partition->pack->BodySID() == 0 || (role != PacketRole::Essence && role != PacketRole::Unknown)) {
      m_file.findings.Add(
          role == PacketRole::Partition ? FindingKind::PartitionUnlisted : FindingKind::PacketUnexpected,
          m_packet.Offset(), KeyText(m_packet));
    } else {
      const bool isFirst = !m_shape.empty() && m_packet.key() == m_shape.front();
      if (isFirst || m_package.elements.size() == std::max<std::size_t>(1, m_shape.size())) Close();
      m_package.elements.push_back(ElementOf(m_packet));
    }
  }

  // The next content package behind the last packet that was read; that one's length is the damaged one.
  bool Resync(unsigned long long& position) {
    if (m_shape.empty() || ++m_resyncs > kMostResyncs) {
      m_file.findings.Add(FindingKind::Abandoned, position, {}, m_unit);
      return false;
    }
    const unsigned long long from = m_lastOffset + kSmallestPacket;
    const unsigned long long found = FindKey(from, m_partition->end);
    position = m_lastOffset = found;
    return found != m_partition->end;
  }

  unsigned long long FindKey(unsigned long long from, unsigned long long end) {
    const std::vector<unsigned char> key = KeyBytes(m_shape.front());
    std::vector<unsigned char> bytes(kSearchSize);
    for (; from + key.size() <= end; from += kSearchSize - key.size() + 1) {
      const auto size = static_cast<unsigned int>(std::min<unsigned long long>(kSearchSize, end - from));
      if (!m_file.Reader().SetOffset(static_cast<long long>(from), kOxStreamSeekFromStart) ||
          !m_file.Reader().GetBytes(bytes.data(), size)) {
        return end;
      }
      const auto last = bytes.begin() + size;
      const auto found = std::search(bytes.begin(), last, key.begin(), key.end());
      if (found != last) return from + static_cast<unsigned long long>(found - bytes.begin());
    }
    return end;
  }

  void Close() {
    if (m_package.elements.empty()) {
      m_package.isBroken = false;
      return;
    }
    Anchor();
    m_package.editUnit = m_unit;
    if (!m_package.isBroken) CheckShape();
    CheckIndex();
    if (isSystemPack(m_package.elements.front().type)) m_system.Check(m_package);
    if (m_sink) m_sink(m_package);
    m_package = {};
    ++m_unit;
  }

  // The file offset of an element as the index says.
  std::optional<unsigned long long> IndexedOffset(unsigned long long unit, std::size_t element) {
    const IndexSegment* const segment = m_index.SegmentOf(static_cast<long long>(unit));
    if (segment == nullptr) return {};
    return segment->ElementOffset(static_cast<long long>(unit), element) - m_streamOffset + m_partition->content;
  }

  // Where content packages were lost, or counted twice, the index tells which edit unit this is.
  void Anchor() {
    const unsigned long long offset = m_package.elements.front().offset;
    const std::optional<unsigned long long> said = IndexedOffset(m_unit, 0);
    if (!said || *said == offset) return;
    for (long long step = -kFurthestAnchor; step <= kFurthestAnchor; ++step) {
      const long long unit = static_cast<long long>(m_unit) + step;
      if (unit < 0 || IndexedOffset(static_cast<unsigned long long>(unit), 0) != offset) continue;
      m_file.findings.Add(FindingKind::ElementMissing, offset,
                          std::to_string(step) + " content packages before this one", m_unit);
      m_unit = static_cast<unsigned long long>(unit);
      return;
    }
  }

  void CheckShape() {
    const std::vector<PackageElement>& elements = m_package.elements;
    if (elements.size() != m_shape.size()) {
      m_file.findings.Add(FindingKind::ElementMissing, elements.front().offset,
                          InsteadOf("their number", elements.size(), m_shape.size()), m_unit);
    }
    for (std::size_t i = 0; i < elements.size() && i < m_shape.size(); ++i) {
      if (elements[i].key == m_shape[i]) continue;
      MxfUUID key = elements[i].key;
      m_file.findings.Add(FindingKind::ElementKey, elements[i].offset,
                          "element " + std::to_string(i) + ": " + key.Description()->UTF8String(), m_unit);
      return;
    }
  }

  // The set behind the system metadata pack is part of the system item, not an element of the index.
  void CheckIndex() {
    const IndexSegment* const segment = m_index.SegmentOf(static_cast<long long>(m_unit));
    if (segment == nullptr) return;  // told where the index was checked
    if (!segment->entries.empty()) m_package.flags = segment->Flags(static_cast<long long>(m_unit));
    const std::size_t indexed = segment->ElementCount();
    const bool isOnlyFirst = segment->deltas.empty();
    std::size_t number = 0;
    for (const PackageElement& element : m_package.elements) {
      if (element.type == kKeySystemItemLocalSet) continue;
      const std::size_t i = number++;
      CheckReordering(*segment, element, i);
      const std::optional<unsigned long long> said = i < indexed ? IndexedOffset(m_unit, i) : std::nullopt;
      if (!said || *said == element.offset) continue;
      m_file.findings.Add(FindingKind::IndexPlace, element.offset,
                          "element " + std::to_string(i) + " at " + OffsetText(*said), m_unit);
      return;
    }
    if (isOnlyFirst || m_package.isBroken || number == indexed) return;
    m_file.findings.Add(FindingKind::IndexPlace, m_package.elements.front().offset,
                        InsteadOf("the number of elements", indexed, number), m_unit);
  }

  // Pictures alone are stored in another order than they are shown in; PosTableIndex -1 says so (ST 377-1).
  void CheckReordering(const IndexSegment& segment, const PackageElement& element, std::size_t number) {
    const bool isFirst = static_cast<long long>(m_unit) == segment.start;
    if (!isFirst || segment.entries.empty() || number >= segment.deltas.size()) return;
    const bool isReordered = segment.deltas[number].posTableIndex == -1;
    const bool isPicture = element.type == kKeyPictureEssence;
    if (isPicture ? isReordered || !segment.hasTemporalOffsets() : !isReordered) return;
    m_file.findings.Add(FindingKind::IndexSegment, segment.offset,
                        "PosTableIndex of element " + std::to_string(number) + " does not fit what it is");
  }

  VerifyFile& m_file;
  const EssenceFacts& m_facts;
  VerifyIndex& m_index;
  const PackageSink& m_sink;
  SystemItemCheck m_system;
  Keys m_shape;  // the keys of a content package
  const VerifiedPartition* m_partition = nullptr;
  KLVPacket m_packet;
  ContentPackage m_package;
  unsigned long long m_unit = 0;
  unsigned long long m_streamOffset = 0;  // of the partition's first essence, in the essence stream
  unsigned long long m_lastOffset = 0;    // of the last packet that was read
  unsigned int m_resyncs = 0;
};

}  // namespace

void CheckEssence(VerifyFile& file, const EssenceFacts& facts, VerifyIndex& index, const PackageSink& sink) {
  EssenceWalk(file, facts, index, sink).Run();
}
