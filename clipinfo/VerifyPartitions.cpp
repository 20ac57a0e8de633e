#include <map>

#include "clipinfo/VerifySteps.h"

namespace {

// A day's clip with a partition every second has fewer.
constexpr std::size_t kMostPartitions = 100000;
// A partition pack of thousands of labels.
constexpr unsigned long long kLongestPack = 1 << 16;
constexpr long long kOverallLengthSize = 4;  // of the random index pack: the last bytes of the file

class PartitionFinder {
 public:
  explicit PartitionFinder(VerifyFile& file) : m_file(file) {}

  [[nodiscard]] bool Find();

 private:
  void FindRandomIndex();
  [[nodiscard]] bool AddPartition(unsigned long long offset);
  [[nodiscard]] bool AddListed();
  [[nodiscard]] bool AddLinked();
  void AddWalked();
  void TakeFound();

  VerifyFile& m_file;
  std::map<unsigned long long, OxSharedPtr<PartitionPack>> m_found;  // by offset
};

bool PartitionFinder::Find() {
  FindRandomIndex();
  static_cast<void>(AddPartition(0));
  // Where the random index pack and the links agree, no one needs to look for more; the walk over the packets of each
  // partition meets what both leave out.
  const bool isListed = AddListed();
  const std::size_t listed = m_found.size();
  const bool isLinked = AddLinked();
  if (!isLinked || (isListed && m_found.size() != listed)) AddWalked();
  if (m_found.empty()) return false;
  const auto& [offset, first] = *m_found.begin();
  if (offset != 0 || first->PacketType() != kKeyHeaderPartitionPack) m_file.findings.Add(FindingKind::FileStart, 0);
  TakeFound();
  return true;
}

void PartitionFinder::FindRandomIndex() {
  unsigned int length = 0;
  const OxSharedPtr<RandomIndexPack> pack(new RandomIndexPack);
  const bool isFound = m_file.Reader().SetOffset(-kOverallLengthSize, kOxStreamSeekFromEnd) &&
                       m_file.Reader().GetUInt32(&length) &&
                       m_file.Reader().SetOffset(-static_cast<long long>(length), kOxStreamSeekFromEnd) &&
                       m_file.Reader().ParsePacket(pack.get()) && pack->NextOffset() == m_file.Length();
  if (isFound) m_file.randomIndex = pack;
}

// Whether there is a partition pack at an offset; it is kept once.
bool PartitionFinder::AddPartition(unsigned long long offset) {
  if (m_found.count(offset) != 0) return true;
  KLVPacket packet;
  if (m_found.size() >= kMostPartitions || !m_file.PeekPacket(offset, m_file.Length(), packet)) return false;
  if (RoleOf(packet) != PacketRole::Partition || packet.Length() > kLongestPack) return false;
  const OxSharedPtr<PartitionPack> pack(new PartitionPack);
  if (!m_file.Reader().SetOffset(static_cast<long long>(offset), kOxStreamSeekFromStart)) return false;
  // A pack that cannot be read whole keeps what was read of it; CheckPack tells.
  static_cast<void>(m_file.Reader().ParsePacket(pack.get()));
  m_found.emplace(offset, pack);
  return true;
}

bool PartitionFinder::AddListed() {
  if (!m_file.randomIndex) return false;
  bool isWhole = true;
  unsigned long long offset = 0;
  for (unsigned int i = 0; i < kMostPartitions && m_file.randomIndex->GetOffsetAtIndex(i, offset); ++i) {
    isWhole = AddPartition(offset) && isWhole;
  }
  return isWhole;
}

// From the footer backwards. Whether the links lead to the header.
bool PartitionFinder::AddLinked() {
  if (m_found.empty()) return false;
  unsigned long long offset = m_found.begin()->second->FooterPartition();
  while (offset != 0 && AddPartition(offset)) {
    const unsigned long long previous = m_found.at(offset)->PreviousPartition();
    if (previous == 0) return true;
    if (previous >= offset) return false;
    offset = previous;
  }
  return false;
}

// The partitions that a walk over all packets meets. Where it comes to a place without a packet it goes on at the next
// partition that is known by then.
void PartitionFinder::AddWalked() {
  const unsigned long long length = m_file.Length();
  unsigned long long position = 0;
  KLVPacket packet;
  while (position < length && m_found.size() < kMostPartitions) {
    if (m_file.PeekPacket(position, length, packet) && packet.PacketType() != kKeyNotSMPTE) {
      if (RoleOf(packet) == PacketRole::Partition) static_cast<void>(AddPartition(position));
      position = packet.NextOffset();
      continue;
    }
    const auto next = m_found.upper_bound(position);
    if (next == m_found.end()) return;
    position = next->first;
  }
}

void PartitionFinder::TakeFound() {
  for (const auto& [offset, pack] : m_found) {
    m_file.partitions.emplace_back();
    m_file.partitions.back().offset = offset;
    m_file.partitions.back().pack = pack;
  }
  unsigned long long end = m_file.randomIndex ? m_file.randomIndex->Offset() : m_file.Length();
  for (auto partition = m_file.partitions.rbegin(); partition != m_file.partitions.rend(); ++partition) {
    partition->end = end;
    end = partition->offset;
  }
}

}  // namespace

bool FindPartitions(VerifyFile& file) { return PartitionFinder(file).Find(); }
