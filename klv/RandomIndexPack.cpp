#include "klv/RandomIndexPack.h"

namespace {

constexpr unsigned long long kEntrySize = 4 + 8;

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
  for (unsigned long long remaining = Length(); remaining >= kEntrySize; remaining -= kEntrySize) {
    _RandomIndex entry{};
    if (!reader.GetUInt32(&entry.bodySID) || !reader.GetUInt64(&entry.byteOffset)) return false;
    m_entries.push_back(entry);
  }
  return true;
}
