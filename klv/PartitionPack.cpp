#include "klv/PartitionPack.h"

#include <algorithm>

#include "foundation/FieldBytes.h"

namespace {

constexpr unsigned int kFixedSize = 2 + 2 + 4 + 5 * 8 + 4 + 8 + 4 + 16;
constexpr unsigned long long kLabelsOffset =
    kFixedSize + 8;  // from the value's start to the first essence container label

}  // namespace

PartitionPack::PartitionPack() = default;

PartitionPack::PartitionPack(OxSharedPtr<KLVPacket> packet) : KLVPacket(packet) {}

PartitionPack::~PartitionPack() = default;

unsigned int PartitionPack::EssenceCount() const {
  return m_essenceContainers ? static_cast<unsigned int>(m_essenceContainers->Count()) : 0;
}

OxSharedPtr<MxfUUID> PartitionPack::EssenceAtIndex(unsigned int index) const {
  if (!m_essenceContainers) return {};
  return m_essenceContainers->ObjectAtIndex(index);
}

unsigned long long PartitionPack::HeaderOffset() const {
  return m_headerByteCount == 0 ? kNoOffset : m_thisPartition + m_kagSize;
}

unsigned long long PartitionPack::IndexOffset() const {
  return m_indexByteCount == 0 ? kNoOffset : m_thisPartition + m_kagSize + m_headerByteCount;
}

unsigned long long PartitionPack::ContentOffset() const {
  return m_thisPartition + m_kagSize + m_headerByteCount + m_indexByteCount;
}

bool PartitionPack::isImportable() {
  const unsigned int type = PacketType();
  return type >= kKeyHeaderPartitionPack && type <= kKeyFooterPartitionPack;
}

unsigned int PartitionPack::Import(OxSharedPtr<OxStream> stream, long long offset) {
  if (!stream) return kStatusNoInput;
  ParseMetaData reader(stream);
  const bool isRead = reader.SetOffset(offset, kOxStreamSeekFromStart) &&
                      DecodeFixed<kFixedSize>(reader, [this](auto& fields) { return ReadFixedPart(fields); }) &&
                      ReadLabels(reader);
  return isRead ? kStatusOK : kStatusUnreadable;
}

template <class Reader>
bool PartitionPack::ReadFixedPart(Reader& reader) {
  return ReadNumbers(reader) && (m_operationalPattern = reader.GetUUID());
}

template <class Reader>
bool PartitionPack::ReadNumbers(Reader& reader) {
  return reader.GetUInt16(&m_majorVersion) && reader.GetUInt16(&m_minorVersion) && reader.GetUInt32(&m_kagSize) &&
         reader.GetUInt64(&m_thisPartition) && reader.GetUInt64(&m_previousPartition) &&
         reader.GetUInt64(&m_footerPartition) && reader.GetUInt64(&m_headerByteCount) &&
         reader.GetUInt64(&m_indexByteCount) && reader.GetUInt32(&m_indexSID) && reader.GetUInt64(&m_bodyOffset) &&
         reader.GetUInt32(&m_bodySID);
}

bool PartitionPack::ReadLabels(ParseMetaData& reader) {
  m_essenceContainers = reader.GetUUIDArray(MostLabels());
  return static_cast<bool>(m_essenceContainers);
}

// How many labels the packet's own value has room for: a damaged count would turn gigabytes of essence into labels.
unsigned long long PartitionPack::MostLabels() const {
  if (!isPlaced()) return ~0ULL;
  return (Length() - std::min(Length(), kLabelsOffset)) / MxfUUID::kSize;
}
