#include "klv/KLVPacket.h"

#include <algorithm>
#include <new>
#include <utility>

#include "foundation/FieldBytes.h"

KLVPacket::KLVPacket() = default;

KLVPacket::KLVPacket(OxSharedPtr<KLVPacket> other) {
  if (!other) return;
  m_key = other->m_key;
  m_offset = other->m_offset;
  m_length = other->m_length;
  m_valueOffset = other->m_valueOffset;
}

KLVPacket::~KLVPacket() = default;

void KLVPacket::SetKey(const MxfUUID* key) { m_key.SetKey(key); }

bool KLVPacket::isImportable() { return false; }

unsigned int KLVPacket::Import(OxSharedPtr<OxStream> stream) {
  return Import(std::move(stream), static_cast<long long>(m_valueOffset));
}

unsigned int KLVPacket::Import(OxSharedPtr<OxStream>, long long) { return kStatusOK; }

// The packet operations of the byte reader. They stand here because they know packets, which the reader's own layer
// does not.

namespace {

constexpr unsigned int kMostLengthBytes = 4;
constexpr unsigned int kLongestHead = MxfUUID::kSize + 1 + kMostLengthBytes;

}  // namespace

// In one read, as far as they lie in one block of the file; what that does not settle, field by field.
bool ParseMetaData::GetKeyAndLength(MxfUUID& key, unsigned int& length) {
  unsigned char head[kLongestHead];
  const unsigned long long count = std::min<unsigned long long>(RestOfBlock(*this), kLongestHead);
  if (count <= MxfUUID::kSize) return GetUUID(&key) && GetBER(&length);
  if (!PeekBytes(head, count)) return false;  // nor could the key alone be read
  const unsigned char* berBytes = head + MxfUUID::kSize;
  const unsigned int lengthBytes = *berBytes < 0x80 ? 0 : *berBytes & 0x7Fu;
  const unsigned int size = MxfUUID::kSize + 1 + lengthBytes;
  if (*berBytes == 0x80 || size > count) return GetUUID(&key) && GetBER(&length);
  key.SetKey(head);
  length = lengthBytes == 0 ? *berBytes : LoadBigEndian<unsigned int>(berBytes + 1, lengthBytes);
  m_position += size;
  return true;
}

PacketHead ParseMetaData::ReadKeyAndLength(KLVPacket* packet) {
  if (packet == nullptr || !m_stream) return PacketHead::Failed;
  const unsigned long long start = m_position;
  MxfUUID key;
  unsigned int length = 0;
  if (!GetKeyAndLength(key, length)) {
    m_position = start;
    return PacketHead::Failed;
  }
  if (length > RestLength()) return PacketHead::PastEnd;
  packet->SetKey(&key);
  packet->SetOffset(start);
  packet->SetLength(length);
  packet->SetValueOffset(m_position);
  return PacketHead::Read;
}

bool ParseMetaData::ParseKeyAndLength(KLVPacket* packet) { return ReadKeyAndLength(packet) != PacketHead::Failed; }

bool ParseMetaData::ParseKeyAndLength(OxSharedPtr<KLVPacket> packet) { return ParseKeyAndLength(packet.get()); }

bool ParseMetaData::ParsePacket(KLVPacket* packet) {
  if (packet == nullptr || !m_stream) return false;
  const unsigned long long start = m_position;
  // A value that runs past the end fails here: the packet would still hold what an earlier one left in it.
  const bool isParsed =
      ReadKeyAndLength(packet) == PacketHead::Read && packet->isImportable() && ParsePacketValue(packet);
  if (!isParsed) m_position = start;
  return isParsed;
}

bool ParseMetaData::ParsePacket(OxSharedPtr<KLVPacket> packet) { return ParsePacket(packet.get()); }

bool ParseMetaData::ParsePacketValue(KLVPacket* packet) {
  if (packet == nullptr || !m_stream) return false;
  const unsigned long long start = m_position;
  const unsigned long long length = packet->Length();
  if (start > m_stream->Length() || length > RestLength()) return false;
  try {
    if (!isLowHalfOK(packet->Import(m_stream, static_cast<long long>(start)))) return false;
  } catch (const std::bad_alloc&) {  // a value that asks for more memory than there is cannot be decoded
    return false;
  } catch (const char*) {  // nor can one whose import cannot make its own reader
    return false;
  }
  m_position = start + length;
  return true;
}

bool ParseMetaData::ParsePacketValue(OxSharedPtr<KLVPacket> packet) { return ParsePacketValue(packet.get()); }
