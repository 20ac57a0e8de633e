#include <algorithm>
#include <set>
#include <vector>

#include "clipinfo/InfoDocument.h"

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

Json ClosureJson(const PartitionPack& pack) {
  constexpr const char* kTexts[] = {nullptr, "open, incomplete", "closed, incomplete", "open, complete",
                                    "closed, complete"};
  const unsigned char status = pack.key().ValueAtIndex(kStatusByte);
  const char* const text = status < std::size(kTexts) ? kTexts[status] : nullptr;
  return text != nullptr ? Json(text) : Json();
}

Json PartitionJson(const PartitionPack& pack, unsigned long long offset) {
  return {{"offset", NumberJson(offset)},
          {"kind", KindText(pack)},
          {"status", ClosureJson(pack)},
          {"body_sid", pack.BodySID()},
          {"index_sid", pack.IndexSID()},
          {"header_bytes", NumberJson(pack.HeaderByteCount())},
          {"index_bytes", NumberJson(pack.IndexByteCount())},
          {"body_offset", NumberJson(pack.BodyOffset())}};
}

}  // namespace

Json PartitionsJson(Clip& clip) {
  const OxSharedPtr<RandomIndexPack> pack = FindRandomIndexPack(clip.Reader());
  Json list = Json::array();
  for (const unsigned long long offset : pack ? ListedOffsets(*pack) : LinkedOffsets(clip)) {
    const OxSharedPtr<PartitionPack> partition = PartitionPackAt(clip, offset);
    list.push_back(partition ? PartitionJson(*partition, offset)
                             : Json{{"offset", NumberJson(offset)}, {"kind", nullptr}});
  }
  return {{"source", pack ? "random index pack" : "partition links"}, {"list", std::move(list)}};
}
