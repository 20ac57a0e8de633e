#include "klv/IndexTableSegment.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <string>

#include "foundation/FormatText.h"
#include "foundation/OxAutoLock.h"

namespace {

constexpr _LocalTag kEditUnitByteCountTag = 0x3F05;
constexpr _LocalTag kIndexSIDTag = 0x3F06;
constexpr _LocalTag kBodySIDTag = 0x3F07;
constexpr _LocalTag kSliceCountTag = 0x3F08;
constexpr _LocalTag kDeltaEntryArrayTag = 0x3F09;
constexpr _LocalTag kIndexEntryArrayTag = 0x3F0A;
constexpr _LocalTag kIndexEditRateTag = 0x3F0B;
constexpr _LocalTag kIndexStartPositionTag = 0x3F0C;
constexpr _LocalTag kIndexDurationTag = 0x3F0D;
constexpr _LocalTag kPosTableCountTag = 0x3F0E;

constexpr unsigned long long kArrayHeaderSize = 4 + 4;
constexpr unsigned int kDeltaEntrySize = 1 + 1 + 4;

constexpr std::size_t kPosTableSize = 4 + 4;

std::atomic<unsigned long long> s_watchedChanges{0};

}  // namespace

// Reads an item of the local set from its start. The item must hold at least the bytes of the type; longer is fine.
class IndexTableSegment::ItemReader {
 public:
  explicit ItemReader(LocalSets& set) : m_set(set) {}

  template <class Value>
  bool Get(_LocalTag tag, bool (ParseMetaData::*read)(Value*), Value* value) {
    if (m_set.LengthForTag(tag) < sizeof(Value)) return false;
    const OxSharedPtr<ParseMetaData> reader = m_set.GetParserForTag(tag);
    return reader && (reader.get()->*read)(value);
  }
  bool Has(_LocalTag tag) { return static_cast<bool>(m_set.GetParserForTag(tag)); }

 private:
  LocalSets& m_set;
};

IndexTableSegment::IndexTableSegment() = default;

IndexTableSegment::IndexTableSegment(OxSharedPtr<KLVPacket> packet) : KLVPacket(packet) {}

IndexTableSegment::~IndexTableSegment() = default;

IndexTableSegment::ChangeWatch& IndexTableSegment::ChangeWatch::operator=(const ChangeWatch&) noexcept {
  Note();
  return *this;
}

void IndexTableSegment::ChangeWatch::Note() const noexcept {
  if (isOn) ++s_watchedChanges;
}

unsigned long long IndexTableSegment::WatchedChanges() { return s_watchedChanges; }

void IndexTableSegment::init() {
  m_watch.Note();
  m_indexEditRate = {};
  m_indexStartPosition = 0;
  m_indexDuration = 0;
  m_editUnitByteCount = 0;
  m_indexSID = 0;
  m_bodySID = 0;
  m_sliceCount = 0;
  m_posTableCount = 0;
  m_deltaEntries.clear();
  m_indexEntries.Clear();
}

bool IndexTableSegment::isImportable() { return PacketType() == kKeyIndexTableSegment; }

unsigned int IndexTableSegment::Import(OxSharedPtr<OxStream> stream, long long offset) {
  init();
  const OxSharedPtr<LocalSets> localSets(new LocalSets);
  const ULKey setKey = key();
  localSets->SetKey(&setKey);
  localSets->SetOffset(Offset());
  localSets->SetLength(Length());
  localSets->SetValueOffset(ValueOffset());
  unsigned int status = localSets->Import(stream, offset);
  if (status == kStatusOK) status = ImportItems(localSets);
  if (status != kStatusOK) init();
  return status;
}

unsigned int IndexTableSegment::ImportItems(OxSharedPtr<LocalSets> localSets) {
  ItemReader items(*localSets);
  if (!ReadNumbers(items)) return kStatusUnreadable;
  // Without delta entries a segment still answers for the first element of each edit unit.
  static_cast<void>(ImportDeltaEntryArray(localSets));
  return ImportIndexEntryArray(localSets);
}

bool IndexTableSegment::ReadNumbers(ItemReader& items) {
  m_posTableCount = 0;
  return items.Get(kIndexEditRateTag, &ParseMetaData::GetRational, &m_indexEditRate) &&
         items.Get(kIndexStartPositionTag, &ParseMetaData::GetInt64, &m_indexStartPosition) &&
         items.Get(kIndexDurationTag, &ParseMetaData::GetInt64, &m_indexDuration) &&
         items.Get(kEditUnitByteCountTag, &ParseMetaData::GetUInt32, &m_editUnitByteCount) &&
         items.Get(kIndexSIDTag, &ParseMetaData::GetUInt32, &m_indexSID) &&
         items.Get(kBodySIDTag, &ParseMetaData::GetUInt32, &m_bodySID) &&
         items.Get(kSliceCountTag, &ParseMetaData::GetUInt8, &m_sliceCount) &&
         // Not a slip: the slice count is what the cameras write here.
         (!items.Has(kPosTableCountTag) || items.Get(kPosTableCountTag, &ParseMetaData::GetUInt8, &m_sliceCount));
}

unsigned int IndexTableSegment::ImportDeltaEntryArray(OxSharedPtr<LocalSets> localSets) {
  m_deltaEntries.clear();
  if (!localSets) return kStatusUnreadable;
  const OxAutoLock guard(localSets);
  const OxSharedPtr<ParseMetaData> reader = localSets->GetParserForTag(kDeltaEntryArrayTag);
  const bool isRead = reader && ReadDeltaEntries(*reader, localSets->LengthForTag(kDeltaEntryArrayTag));
  return isRead ? kStatusOK : kStatusUnreadable;
}

bool IndexTableSegment::ReadDeltaEntries(ParseMetaData& reader, unsigned long long size) {
  unsigned int count = 0;
  unsigned int entrySize = 0;
  if (size < kArrayHeaderSize || !reader.GetUInt32(&count) || !reader.GetUInt32(&entrySize)) return false;
  if (entrySize != kDeltaEntrySize) return false;
  const unsigned long long whole = (size - kArrayHeaderSize) / kDeltaEntrySize;
  m_deltaEntries.reserve(std::min<unsigned long long>(count, whole));
  for (unsigned long long i = 0; i < count; ++i) {
    _DeltaEntry entry{};
    if (i >= whole ||  // the next bytes belong to another item
        !reader.GetInt8(&entry.PosTableIndex) || !reader.GetUInt8(&entry.Slice) ||
        !reader.GetUInt32(&entry.ElementDelta)) {
      return false;
    }
    m_deltaEntries.push_back(entry);
  }
  return true;
}

unsigned int IndexTableSegment::ImportIndexEntryArray(OxSharedPtr<LocalSets> localSets) {
  m_indexEntries.Clear();
  if (!localSets) return kStatusUnreadable;
  const OxAutoLock guard(localSets);
  const OxSharedPtr<ParseMetaData> reader = localSets->GetParserForTag(kIndexEntryArrayTag);
  const bool isRead = reader && ReadIndexEntries(*reader, localSets->LengthForTag(kIndexEntryArrayTag));
  return isRead ? kStatusOK : kStatusUnreadable;
}

bool IndexTableSegment::ReadIndexEntries(ParseMetaData& reader, unsigned long long size) {
  unsigned int count = 0;
  unsigned int entrySize = 0;
  if (size < kArrayHeaderSize || !reader.GetUInt32(&count) || count == 0 || !reader.GetUInt32(&entrySize)) return false;
  const unsigned long long bytes = static_cast<unsigned long long>(count) * entrySize;
  if (entrySize != m_posTableCount * kPosTableSize + m_sliceCount * IndexEntries::kStoredSliceSize +
                       IndexEntries::kStoredHeadSize ||
      size - kArrayHeaderSize != bytes) {
    return false;
  }
  try {
    const OxSharedPtr<OxMemoryStream> stored = reader.CopyMemoryStream(bytes);
    if (stored) m_indexEntries.Assign(stored->Bytes(), count, m_sliceCount);
    return static_cast<bool>(stored);
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool IndexTableSegment::isContainIndex(long long editUnit) const {
  // In unsigned arithmetic, because start + duration may be more than 64 bits can hold.
  return editUnit >= m_indexStartPosition && m_indexDuration > 0 &&
         static_cast<unsigned long long>(editUnit) - static_cast<unsigned long long>(m_indexStartPosition) <
             static_cast<unsigned long long>(m_indexDuration);
}

bool IndexTableSegment::FindEntry(long long editUnit, std::size_t& entry) const {
  // Before the start it wraps to a number that no segment is as long as.
  entry = static_cast<unsigned long long>(editUnit) - static_cast<unsigned long long>(m_indexStartPosition);
  return entry < m_indexEntries.Count() && isContainIndex(editUnit);
}

bool IndexTableSegment::GetTemporalOffset(long long editUnit, signed char& offset) const {
  std::size_t entry = 0;
  if (!FindEntry(editUnit, entry)) return false;
  offset = m_indexEntries.TemporalOffset(entry);
  return true;
}

bool IndexTableSegment::GetKeyFrameOffset(long long editUnit, signed char& offset) const {
  std::size_t entry = 0;
  if (!FindEntry(editUnit, entry)) return false;
  offset = m_indexEntries.KeyFrameOffset(entry);
  return true;
}

bool IndexTableSegment::GetFlags(long long editUnit, unsigned char& flags) const {
  std::size_t entry = 0;
  if (!FindEntry(editUnit, entry)) return false;
  flags = m_indexEntries.Flags(entry);
  return true;
}

bool IndexTableSegment::GetStreamOffset(long long editUnit, unsigned int element, unsigned long long& offset) const {
  std::size_t entry = 0;
  if (!FindEntry(editUnit, entry)) return false;
  if (element == 0 && m_deltaEntries.empty()) {
    offset = m_indexEntries.StreamOffset(entry);
    return true;
  }
  if (element >= m_deltaEntries.size()) return false;
  const _DeltaEntry& delta = m_deltaEntries[element];
  const bool isInSlice = delta.Slice != 0 && delta.Slice <= m_sliceCount;
  const unsigned int sliceOffset = isInSlice ? m_indexEntries.SliceOffset(entry, delta.Slice - std::size_t{1}) : 0;
  offset = delta.ElementDelta + m_indexEntries.StreamOffset(entry) + sliceOffset;
  return true;
}

OxSharedPtr<OxStringMac> IndexTableSegment::Description() {
  std::string text = "{\n";
  const unsigned long long units =
      m_indexDuration > 0
          ? std::min<unsigned long long>(static_cast<unsigned long long>(m_indexDuration), m_indexEntries.Count())
          : 0;
  // Wraps where the segment reaches beyond the last possible edit unit; such units are in no segment.
  for (unsigned long long i = 0; i < units; ++i) {
    text += UnitText(static_cast<long long>(static_cast<unsigned long long>(m_indexStartPosition) + i));
  }
  return CreateOxString(text + "}");
}

std::string IndexTableSegment::UnitText(long long editUnit) const {
  signed char temporalOffset = 0;
  signed char keyFrameOffset = 0;
  unsigned char flags = 0;
  if (!GetTemporalOffset(editUnit, temporalOffset) || !GetKeyFrameOffset(editUnit, keyFrameOffset) ||
      !GetFlags(editUnit, flags)) {
    return {};
  }
  std::string text =
      FormatText("\t{UNIT(%lld) = T:%d K:%d F:%02hhX O:", editUnit, temporalOffset, keyFrameOffset, flags);
  for (unsigned int i = 0; i < DeltaEntryCount(); ++i) {
    unsigned long long offset = 0;
    if (!GetStreamOffset(editUnit, i, offset)) continue;
    text += FormatText(offset <= 0xFFFFFFFF ? "%08llX" : "%016llX", offset);
    if (i + 1 < DeltaEntryCount()) text += ", ";
  }
  return text + "}\n";
}
