#include "clipinfo/Summary.h"

#include <algorithm>
#include <iomanip>
#include <set>
#include <vector>

namespace {

constexpr long long kOverallLengthSize = 4;  // of the random index pack: the last bytes of the file
constexpr unsigned int kStatusByte = 14;     // of a partition pack's key

template <class Packet>
OxSharedPtr<Packet> PacketAt(ParseMetaData& reader, long long offset, int origin) {
  OxSharedPtr<Packet> packet(new Packet);
  return reader.SetOffset(offset, origin) && reader.ParsePacket(packet.get()) ? packet : OxSharedPtr<Packet>();
}

OxSharedPtr<PartitionPack> PartitionPackAt(Clip& clip, unsigned long long offset) {
  return PacketAt<PartitionPack>(clip.Reader(), static_cast<long long>(offset), kOxStreamSeekFromStart);
}

OxSharedPtr<RandomIndexPack> FindRandomIndexPack(ParseMetaData& reader) {
  unsigned int length = 0;
  const bool isRead = reader.SetOffset(-kOverallLengthSize, kOxStreamSeekFromEnd) && reader.GetUInt32(&length);
  if (!isRead) return {};
  return PacketAt<RandomIndexPack>(reader, -static_cast<long long>(length), kOxStreamSeekFromEnd);
}

std::vector<unsigned long long> ListedOffsets(const RandomIndexPack& pack) {
  std::vector<unsigned long long> offsets;
  unsigned long long offset = 0;
  for (unsigned int i = 0; pack.GetOffsetAtIndex(i, offset); ++i) offsets.push_back(offset);
  return offsets;
}

// From the footer backwards to the partition that says there is none before it. Links that lead back to where the walk
// has been end it.
std::vector<unsigned long long> LinkedOffsets(Clip& clip) {
  const OxSharedPtr<PartitionPack> header = clip.Stream().GetHeaderPartitionPack();
  std::vector<unsigned long long> offsets;
  std::set<unsigned long long> visited = {header->Offset()};
  unsigned long long offset = header->FooterPartition();
  while (offset != 0 && visited.insert(offset).second) {
    offsets.push_back(offset);
    const OxSharedPtr<PartitionPack> pack = PartitionPackAt(clip, offset);
    offset = pack ? pack->PreviousPartition() : 0;
  }
  offsets.push_back(header->Offset());
  std::reverse(offsets.begin(), offsets.end());
  return offsets;
}

const char* KindText(const PartitionPack& pack) {
  if (pack.PacketType() == kKeyHeaderPartitionPack) return "header";
  return pack.PacketType() == kKeyBodyPartitionPack ? "body" : "footer";
}

const char* ClosureText(const PartitionPack& pack) {
  constexpr const char* kTexts[] = {"", "open, incomplete", "closed, incomplete", "open, complete", "closed, complete"};
  const unsigned char status = pack.key().ValueAtIndex(kStatusByte);
  return status < std::size(kTexts) ? kTexts[status] : "";
}

void PrintPartition(std::ostream& out, const PartitionPack& pack, unsigned long long offset) {
  out << "  " << std::left << std::setw(8) << KindText(pack) << std::setw(20) << ClosureText(pack) << std::right
      << std::setw(15) << offset << std::setw(10) << pack.BodySID() << std::setw(11) << pack.IndexSID() << std::setw(14)
      << pack.HeaderByteCount() << std::setw(13) << pack.IndexByteCount() << '\n';
}

}  // namespace

void PrintPartitions(std::ostream& out, Clip& clip) {
  const OxSharedPtr<RandomIndexPack> pack = FindRandomIndexPack(clip.Reader());
  PrintRow(out, 0, "Partitions",
           pack ? "from the random index pack" : "no random index pack; from the footer backwards");
  out << "  kind    status                       offset  body SID  index SID  header bytes  index bytes\n";
  for (const unsigned long long offset : pack ? ListedOffsets(*pack) : LinkedOffsets(clip)) {
    const OxSharedPtr<PartitionPack> partition = PartitionPackAt(clip, offset);
    if (partition) {
      PrintPartition(out, *partition, offset);
    } else {
      out << "  " << kUnreadable << std::setw(32) << offset << '\n';
    }
  }
}
