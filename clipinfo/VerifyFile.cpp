#include "clipinfo/VerifyFile.h"

#include <utility>

namespace {

// KLV fill (ST 377-1); byte 7, the registry's version, is 1 or 2.
constexpr unsigned char kFillKey[] = {0x06, 0x0E, 0x2B, 0x34, 0x01, 0x01, 0x01, 0x00,
                                      0x03, 0x01, 0x02, 0x10, 0x01, 0x00, 0x00, 0x00};

bool isFill(const MxfUUID& key) {
  for (unsigned int i = 0; i < MxfUUID::kSize; ++i) {
    if (i != 7 && key.ValueAtIndex(i) != kFillKey[i]) return false;
  }
  return true;
}

}  // namespace

PacketRole RoleOf(const KLVPacket& packet) {
  const unsigned int type = packet.PacketType();
  if (isStructuralSet(type)) return PacketRole::Header;
  switch (type) {
    case kKeyHeaderPartitionPack:
    case kKeyBodyPartitionPack:
    case kKeyFooterPartitionPack:
      return PacketRole::Partition;
    case kKeyRandomIndexPack:
      return PacketRole::RandomIndex;
    case kKeyPrimerPack:
    case kKeyStreamFileSequenceInfo:
    case kKeyLocalSet:  // descriptive metadata and sets of a maker's own
      return PacketRole::Header;
    case kKeyIndexTableSegment:
      return PacketRole::Index;
    case kKeySystemMetadataPack:
    case kKeySystemItemLocalSet:
      return PacketRole::Essence;
    default:
      if (KeyKind(type) == kKeyEssence) return PacketRole::Essence;
      return isFill(packet.key()) ? PacketRole::Fill : PacketRole::Unknown;
  }
}

std::string KeyText(const KLVPacket& packet) { return std::string("key ") + packet.key().Description()->UTF8String(); }

VerifyFile::VerifyFile(OxSharedPtr<OxStream> stream, VerifyFindings& found)
    : findings(found), m_stream(std::move(stream)), m_reader(m_stream) {}

bool VerifyFile::PeekPacket(unsigned long long offset, unsigned long long end, KLVPacket& packet) {
  return m_reader.SetOffset(static_cast<long long>(offset), kOxStreamSeekFromStart) &&
         m_reader.ReadKeyAndLength(&packet) == PacketHead::Read && packet.NextOffset() <= end;
}

bool VerifyFile::isPlausible(unsigned long long offset, unsigned long long end) {
  KLVPacket packet;
  if (offset == end) return true;
  return PeekPacket(offset, m_stream->Length(), packet) && packet.PacketType() != kKeyNotSMPTE;
}

// A packet whose key is damaged and whose length is not is still a packet.
bool VerifyFile::ReadPacket(unsigned long long offset, unsigned long long end, KLVPacket& packet,
                            std::optional<unsigned long long> editUnit) {
  const bool isHead = PeekPacket(offset, m_stream->Length(), packet);
  if (!isHead || (packet.PacketType() == kKeyNotSMPTE && !isPlausible(packet.NextOffset(), end))) {
    findings.Add(FindingKind::PacketMissing, offset, {}, editUnit);
    return false;
  }
  if (packet.NextOffset() <= end) return true;
  findings.Add(FindingKind::PacketOverrun, offset, InsteadOf("its end", packet.NextOffset(), end) + " at most",
               editUnit);
  return false;
}

void VerifyFile::CheckFill(const KLVPacket& packet, const VerifiedPartition& partition) {
  const unsigned int kag = partition.pack->KAGSize();
  const unsigned long long rest = kag > 1 ? (packet.NextOffset() - partition.offset) % kag : 0;
  if (rest == 0 || packet.NextOffset() == partition.end) return;
  findings.Add(FindingKind::Fill, packet.Offset(),
               std::to_string(rest) + " bytes behind a multiple of " + std::to_string(kag));
}
