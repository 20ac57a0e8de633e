#include <algorithm>

#include "clipinfo/VerifySteps.h"

namespace {

// What is looked at. The header metadata of a camera has fewer than a hundred sets, the index of a clip of 24 hours a
// few thousand segments.
constexpr std::size_t kMostSets = 20000;
constexpr std::size_t kMostSegments = 200000;

// A walk over the packets of a partition up to its essence. Where header metadata and index lie is taken from the
// packets; what the partition pack says of it is compared afterwards.
class SectionWalk {
 public:
  SectionWalk(VerifyFile& file, VerifiedPartition& partition) : m_file(file), m_partition(partition) {}

  void Run() {
    if (!PassPack()) return;
    while (m_position < m_partition.end && Step()) {
    }
    m_partition.content = std::min(m_position, m_partition.end);
    CheckSize(FindingKind::PartitionHeaderBytes, m_partition.pack->HeaderByteCount(), m_headerEnd - m_partition.base);
    CheckSize(FindingKind::PartitionIndexBytes, m_partition.pack->IndexByteCount(), m_indexEnd - m_headerEnd);
  }

 private:
  [[nodiscard]] unsigned long long Limited(unsigned long long size) const {
    return std::min(size, m_partition.end - m_partition.base);
  }
  // Where the essence begins as the pack says, at most the partition's end.
  [[nodiscard]] unsigned long long SaidContent() const {
    const unsigned long long header = Limited(m_partition.pack->HeaderByteCount());
    return std::min(m_partition.end, m_partition.base + header + Limited(m_partition.pack->IndexByteCount()));
  }

  bool PassPack() {
    m_partition.content = m_partition.base = m_partition.end;
    if (!m_file.ReadPacket(m_partition.offset, m_partition.end, m_packet)) return false;
    m_position = m_packet.NextOffset();
    if (m_file.PeekPacket(m_position, m_partition.end, m_packet) && RoleOf(m_packet) == PacketRole::Fill) {
      m_position = m_packet.NextOffset();
    }
    m_partition.base = m_headerEnd = m_indexEnd = m_position;
    return true;
  }

  // False where the sections end.
  bool Step() {
    if (!m_file.ReadPacket(m_position, m_partition.end, m_packet)) return Skip();
    const PacketRole role = RoleOf(m_packet);
    // An unknown packet among the metadata is damage; behind them it is an element with a damaged key.
    const bool isElement = role == PacketRole::Unknown && m_position >= SaidContent();
    if (role == PacketRole::Essence || isElement || isRandomIndex(role)) return false;
    Keep(role);
    m_position = m_packet.NextOffset();
    if (role != PacketRole::Fill) m_isInIndex = role == PacketRole::Index;
    m_indexEnd = m_position;
    if (!m_isInIndex) m_headerEnd = m_position;
    return true;
  }

  // Behind a damaged length only the pack tells where to go on.
  bool Skip() {
    const unsigned long long header = m_partition.base + Limited(m_partition.pack->HeaderByteCount());
    const unsigned long long content = SaidContent();
    if (m_position >= content) return false;
    m_position = m_indexEnd = m_position < header ? header : content;
    m_headerEnd = std::max(m_headerEnd, header);
    return true;
  }

  // The random index pack, when the last bytes of the file do not lead to it.
  bool isRandomIndex(PacketRole role) {
    if (role != PacketRole::RandomIndex || m_file.randomIndex || m_packet.NextOffset() != m_file.Length()) return false;
    m_file.findings.Add(FindingKind::RandomIndexLength, m_file.Length() - 4);
    m_file.randomIndex = new RandomIndexPack;
    static_cast<void>(m_file.Reader().SetOffset(static_cast<long long>(m_position), kOxStreamSeekFromStart) &&
                      m_file.Reader().ParsePacket(m_file.randomIndex.get()));
    m_partition.end = m_position;
    return true;
  }

  void Keep(PacketRole role) {
    const PacketPlace place = {m_packet.PacketType(), m_packet.Offset(), m_packet.ValueOffset(), m_packet.Length()};
    if (role == PacketRole::Fill) {
      m_file.CheckFill(m_packet, m_partition);
    } else if (role == PacketRole::Header) {
      KeepIn(place.type == kKeyPrimerPack ? m_partition.primers : m_partition.sets, kMostSets, place);
    } else if (role == PacketRole::Index) {
      KeepIn(m_partition.segments, kMostSegments, place);
    } else {
      m_file.findings.Add(
          role == PacketRole::Partition ? FindingKind::PartitionUnlisted : FindingKind::PacketUnexpected, place.offset,
          KeyText(m_packet));
    }
  }

  void KeepIn(std::vector<PacketPlace>& places, std::size_t most, const PacketPlace& place) {
    if (places.size() < most) {
      places.push_back(place);
    } else {
      m_file.findings.Add(FindingKind::Abandoned, place.offset, "more metadata sets or index segments than a clip has");
    }
  }

  void CheckSize(FindingKind kind, unsigned long long said, unsigned long long found) {
    if (said != found) m_file.findings.Add(kind, m_partition.offset, InsteadOf("it", said, found));
  }

  VerifyFile& m_file;
  VerifiedPartition& m_partition;
  KLVPacket m_packet;
  unsigned long long m_position = 0;
  unsigned long long m_headerEnd = 0;
  unsigned long long m_indexEnd = 0;
  bool m_isInIndex = false;
};

}  // namespace

void CheckSections(VerifyFile& file) {
  for (VerifiedPartition& partition : file.partitions) SectionWalk(file, partition).Run();
}
