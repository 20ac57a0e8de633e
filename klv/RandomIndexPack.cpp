#include "klv/RandomIndexPack.h"

#include <algorithm>

#include "foundation/FieldBytes.h"

namespace {

constexpr unsigned long long kEntrySize = 4 + 8;
constexpr unsigned long long kEntriesAtOnce = 512;

}  // namespace

RandomIndexPack::RandomIndexPack() = default;

RandomIndexPack::RandomIndexPack(OxSharedPtr<KLVPacket> packet) : KLVPacket(packet) {}

RandomIndexPack::~RandomIndexPack() = default;

bool RandomIndexPack::GetBodySIDAtIndex(unsigned int index, unsigned int& sid) const {
  if (index >= m_entries.size()) return false;
  sid = m_entries[index].bodySID;
  return true;
}

bool RandomIndexPack::GetOffsetAtIndex(unsigned int index, unsigned long long& offset) const {
  if (index >= m_entries.size()) return false;
  offset = m_entries[index].byteOffset;
  return true;
}

bool RandomIndexPack::isImportable() { return PacketType() == kKeyRandomIndexPack; }

unsigned int RandomIndexPack::Import(OxSharedPtr<OxStream> stream, long long offset) {
  m_entries.clear();
  if (!stream) return kStatusUnreadable;
  ParseMetaData reader(stream);
  // A position that is refused leaves the reader at the start, where the entries are then looked for.
  static_cast<void>(reader.SetOffset(offset, kOxStreamSeekFromStart));
  if (ReadEntries(reader)) return kStatusOK;
  m_entries.clear();
  return kStatusUnreadable;
}

bool RandomIndexPack::ReadEntries(ParseMetaData& reader) {
  if (Length() > reader.RestLength()) return false;
  unsigned char bytes[kEntriesAtOnce * kEntrySize];
  for (unsigned long long rest = Length() / kEntrySize; rest > 0;) {
    const auto count = static_cast<unsigned int>(std::min(rest, kEntriesAtOnce));
    if (!reader.GetBytes(bytes, static_cast<unsigned int>(count * kEntrySize))) return false;
    FieldBytes fields(bytes);
    for (unsigned int i = 0; i < count; ++i) {
      _RandomIndex& entry = m_entries.emplace_back();
      fields.GetUInt32(&entry.bodySID);
      fields.GetUInt64(&entry.byteOffset);
    }
    rest -= count;
  }
  return true;
}
