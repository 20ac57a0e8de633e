#include "klv/PrimerPack.h"

#include <algorithm>
#include <string>

#include "foundation/FieldBytes.h"
#include "foundation/FormatText.h"

namespace {

constexpr unsigned long long kHeaderSize = 4 + 4;
constexpr unsigned int kItemSize = 2 + 16;
constexpr unsigned int kItemsAtOnce = 256;

}  // namespace

PrimerPack::PrimerPack() = default;

PrimerPack::PrimerPack(OxSharedPtr<KLVPacket> packet) : KLVPacket(packet) {}

PrimerPack::~PrimerPack() = default;

bool PrimerPack::UIDToTag(unsigned short* tag, const MxfUUID* label) const {
  if (tag == nullptr || label == nullptr) return false;
  *tag = 0;
  const auto entry = m_tags.find(*label);
  if (entry == m_tags.end()) return false;
  *tag = entry->second;
  return true;
}

OxSharedPtr<MxfUUID> PrimerPack::UIDAtTag(unsigned short tag) const {
  for (const auto& [label, labelTag] : m_tags) {
    if (labelTag == tag) return OxSharedPtr<MxfUUID>(new MxfUUID(label));
  }
  return {};
}

bool PrimerPack::isImportable() { return PacketType() == kKeyPrimerPack; }

unsigned int PrimerPack::Import(OxSharedPtr<OxStream> stream, long long offset) {
  m_tags.clear();
  if (!stream) return kStatusNoInput;
  ParseMetaData reader(stream);
  unsigned int count = 0;
  unsigned int itemSize = 0;
  // A primer that cannot be read leaves an empty map; most of the header metadata can do without it.
  if (!reader.SetOffset(offset, kOxStreamSeekFromStart) || !reader.GetUInt32(&count)) return kStatusOK;
  if (!reader.GetUInt32(&itemSize) || itemSize != kItemSize) return kStatusOK;
  if (isOverrun(reader, count) || !ReadItems(reader, count)) {
    m_tags.clear();
    return kStatusUnreadable;
  }
  return kStatusOK;
}

// Whether the items cannot all be there: the stream ends before, or a count that no camera writes runs over the
// packet's own value into whatever follows.
bool PrimerPack::isOverrun(const ParseMetaData& reader, unsigned int count) const {
  const unsigned long long size = static_cast<unsigned long long>(count) * kItemSize;
  if (size > reader.RestLength()) return true;
  return isPlaced() && count > ParseMetaData::kSuspiciousCount && kHeaderSize + size > Length();
}

bool PrimerPack::ReadItems(ParseMetaData& reader, unsigned int count) {
  unsigned char bytes[kItemsAtOnce * kItemSize];
  for (unsigned int rest = count; rest > 0;) {
    const unsigned int items = std::min(rest, kItemsAtOnce);
    if (!reader.GetBytes(bytes, items * kItemSize)) return false;
    FieldBytes fields(bytes);
    for (unsigned int i = 0; i < items; ++i) {
      unsigned short tag = 0;
      MxfUUID label;
      fields.GetUInt16(&tag);
      fields.GetUUID(&label);
      m_tags.emplace(label, tag);
    }
    rest -= items;
  }
  return true;
}

OxSharedPtr<OxStringMac> PrimerPack::Description() {
  std::string text = "{\n";
  for (const auto& [label, tag] : m_tags) {
    text += "\t";
    text += MxfUUID(label).Description()->UTF8String();
    text += FormatText(" = %04X\n", tag);
  }
  return CreateOxString(text + "}");
}
