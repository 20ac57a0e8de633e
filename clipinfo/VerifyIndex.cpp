#include "clipinfo/VerifyIndex.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "klv/LocalSets.h"

namespace {

// An index entry, byte by byte; the items of a segment.
constexpr unsigned int kFixedEntry = 1 + 1 + 1 + 8;
constexpr unsigned int kStreamOffset = 3;
constexpr unsigned int kSliceSize = 4;
constexpr unsigned int kPosTableSize = 8;
constexpr unsigned int kDeltaSize = 1 + 1 + 4;
constexpr unsigned int kArrayHead = 4 + 4;
constexpr unsigned long long kLargestSegment = 1 << 18;  // two arrays of at most 65,535 bytes and some numbers

// Tag and size of the items that ST 377-1 knows; size 0: an array. What the library needs is required.
struct ItemRow {
  unsigned short tag;
  unsigned int size;
  bool isRequired;
};
constexpr ItemRow kItems[] = {{0x3C0A, 16, true}, {0x3F05, 4, true},  {0x3F06, 4, true},  {0x3F07, 4, true},
                              {0x3F08, 1, true},  {0x3F09, 0, true},  {0x3F0A, 0, false}, {0x3F0B, 8, true},
                              {0x3F0C, 8, true},  {0x3F0D, 8, true},  {0x3F0E, 1, false}, {0x3F0F, 8, false},
                              {0x3F10, 8, false}, {0x3F11, 1, false}, {0x3F12, 1, false}, {0x3F13, 1, false}};

unsigned long long Number(const unsigned char* bytes, unsigned int size) {
  unsigned long long value = 0;
  for (unsigned int i = 0; i < size; ++i) value = value << 8 | bytes[i];
  return value;
}

int Signed(unsigned char byte) { return byte < 0x80 ? byte : byte - 0x100; }

class SegmentReader {
 public:
  SegmentReader(VerifyFile& file, const PacketPlace& place, VerifyFindings* findings)
      : m_file(file), m_place(place), m_findings(findings) {}

  std::optional<IndexSegment> Read() {
    const OxSharedPtr<KLVPacket> packet(new KLVPacket);
    if (!m_file.PeekPacket(m_place.offset, m_file.Length(), *packet)) return {};
    if (m_place.length > kLargestSegment) {
      Tell("it is longer than its items may be");
      return {};
    }
    m_set = new LocalSets(packet);
    m_segment.offset = m_place.offset;
    if (m_set->TagType() != 3 || m_set->LengthType() != 3 || m_set->Import(m_file.Stream()) != kStatusOK) {
      Tell("no local set of two-byte tags and lengths");
      return {};
    }
    CheckItems();
    ReadNumbers();
    ReadDeltas();
    ReadEntries();
    if (!m_isUsable) return {};
    return std::move(m_segment);
  }

 private:
  void Tell(const std::string& detail) {
    if (m_findings != nullptr) m_findings->Add(FindingKind::IndexSegment, m_place.offset, detail);
  }

  void CheckItems() {
    unsigned int known = 0;
    for (const ItemRow& row : kItems) {
      const bool isThere = static_cast<bool>(m_set->GetParserForTag(row.tag));
      if (row.isRequired && !isThere) Tell(TagText(row.tag) + " is missing");
      if (isThere && row.size != 0 && m_set->LengthForTag(row.tag) != row.size) {
        Tell(TagText(row.tag) + " has another size");
      }
      known += isThere ? kItemHead + m_set->LengthForTag(row.tag) : 0;
    }
    if (known != m_place.length) Tell("it holds properties that no one knows");
  }

  unsigned long long Item(_LocalTag tag, unsigned int size) {
    unsigned char bytes[8] = {};
    const OxSharedPtr<ParseMetaData> reader = m_set->GetParserForTag(tag);
    return reader && m_set->LengthForTag(tag) == size && reader->GetBytes(bytes, size) ? Number(bytes, size) : 0;
  }

  void ReadNumbers() {
    const unsigned long long rate = Item(0x3F0B, 8);
    m_segment.editRate = {static_cast<int>(rate >> 32), static_cast<int>(rate & 0xFFFFFFFF)};
    m_segment.start = static_cast<long long>(Item(0x3F0C, 8));
    m_segment.duration = static_cast<long long>(Item(0x3F0D, 8));
    m_segment.editUnitByteCount = static_cast<unsigned int>(Item(0x3F05, 4));
    m_segment.indexSID = static_cast<unsigned int>(Item(0x3F06, 4));
    m_segment.bodySID = static_cast<unsigned int>(Item(0x3F07, 4));
    m_segment.sliceCount = static_cast<unsigned char>(Item(0x3F08, 1));
    m_segment.posTableCount = static_cast<unsigned char>(Item(0x3F0E, 1));
    constexpr long long kMost = 1LL << 40;  // beyond any clip; sums stay in range
    m_isUsable =
        m_segment.start >= 0 && m_segment.start < kMost && m_segment.duration > 0 && m_segment.duration < kMost;
    if (!m_isUsable) Tell("start or duration is out of range");
  }

  // The entries of an array, when its head and its size agree.
  std::vector<unsigned char> Array(_LocalTag tag, unsigned int& count, unsigned int& size) {
    const OxSharedPtr<ParseMetaData> reader = m_set->GetParserForTag(tag);
    const unsigned int length = m_set->LengthForTag(tag);
    count = size = 0;
    if (!reader) return {};
    const bool isHead = length >= kArrayHead && reader->GetUInt32(&count) && reader->GetUInt32(&size);
    if (!isHead || static_cast<unsigned long long>(count) * size != length - kArrayHead) {
      Tell(TagText(tag) + ": count and size of the entries do not fit its length");
      m_isUsable = false;
      return {};
    }
    std::vector<unsigned char> bytes(length - kArrayHead);
    if (!bytes.empty() && !reader->GetBytes(bytes.data(), length - kArrayHead)) return {};
    return bytes;
  }

  void ReadDeltas() {
    unsigned int count = 0;
    unsigned int size = 0;
    const std::vector<unsigned char> bytes = Array(0x3F09, count, size);
    if (count != 0 && size != kDeltaSize) {
      Tell(TagText(0x3F09) + ": entries of " + std::to_string(size) + " bytes");
      m_isUsable = false;
      return;
    }
    for (std::size_t at = 0; at + kDeltaSize <= bytes.size(); at += kDeltaSize) {
      m_segment.deltas.push_back({static_cast<signed char>(bytes[at]), bytes[at + 1],
                                  static_cast<unsigned int>(Number(bytes.data() + at + 2, 4))});
    }
  }

  void ReadEntries() {
    unsigned int count = 0;
    unsigned int size = 0;
    m_segment.entries = Array(0x3F0A, count, size);
    const bool isConstant = m_segment.editUnitByteCount != 0;
    if (isConstant != m_segment.entries.empty()) {
      Tell(isConstant ? "entries besides an EditUnitByteCount" : "neither entries nor an EditUnitByteCount");
      m_isUsable = m_isUsable && !m_segment.entries.empty();
    }
    if (m_segment.entries.empty()) return;
    m_segment.entrySize = size;
    TakeSlices(size);
    if (size != kFixedEntry + kSliceSize * m_segment.sliceCount + kPosTableSize * m_segment.posTableCount) {
      Tell("entries of " + std::to_string(size) + " bytes do not fit SliceCount and PosTableCount");
      m_isUsable = false;
    }
    if (count != static_cast<unsigned long long>(m_segment.duration)) {
      Tell(std::to_string(count) + " entries for " + std::to_string(m_segment.duration) + " edit units");
      m_isUsable = false;
    }
    for (const IndexSegment::Delta& delta : m_segment.deltas) CheckDelta(delta);
  }

  // The cameras write the number of slices as PosTableCount.
  void TakeSlices(unsigned int size) {
    if (m_segment.posTableCount == 0 || size != kFixedEntry + kSliceSize * m_segment.posTableCount) return;
    m_segment.sliceCount = m_segment.posTableCount;
    m_segment.posTableCount = 0;
  }

  void CheckDelta(const IndexSegment::Delta& delta) {
    if (delta.slice > m_segment.sliceCount) Tell("a delta entry in slice " + std::to_string(delta.slice));
    if (delta.posTableIndex < -1 || delta.posTableIndex > m_segment.posTableCount) {
      Tell("a delta entry with PosTableIndex " + std::to_string(delta.posTableIndex));
    }
  }

  static constexpr unsigned int kItemHead = 2 + 2;

  VerifyFile& m_file;
  const PacketPlace& m_place;
  VerifyFindings* m_findings;
  OxSharedPtr<LocalSets> m_set;
  IndexSegment m_segment;
  bool m_isUsable = true;
};

}  // namespace

const unsigned char* IndexSegment::Entry(long long editUnit) const {
  return entries.data() + static_cast<std::size_t>(editUnit - start) * entrySize;
}

int IndexSegment::TemporalOffset(long long editUnit) const { return entries.empty() ? 0 : Signed(Entry(editUnit)[0]); }

int IndexSegment::KeyFrameOffset(long long editUnit) const { return entries.empty() ? 0 : Signed(Entry(editUnit)[1]); }

unsigned char IndexSegment::Flags(long long editUnit) const {
  return entries.empty() ? static_cast<unsigned char>(0) : Entry(editUnit)[2];
}

unsigned long long IndexSegment::StreamOffset(long long editUnit) const {
  if (entries.empty()) return static_cast<unsigned long long>(editUnit) * editUnitByteCount;
  return Number(Entry(editUnit) + kStreamOffset, 8);
}

unsigned long long IndexSegment::ElementOffset(long long editUnit, std::size_t element) const {
  unsigned long long place = StreamOffset(editUnit);
  if (element >= deltas.size()) return place;
  const Delta& delta = deltas[element];
  const bool isInSlice = !entries.empty() && delta.slice != 0 && delta.slice <= sliceCount;
  if (isInSlice)
    place += Number(Entry(editUnit) + kFixedEntry + std::size_t{kSliceSize} * (delta.slice - 1u), kSliceSize);
  return place + delta.elementDelta;
}

bool IndexSegment::hasTemporalOffsets() const {
  for (std::size_t at = 0; at < entries.size(); at += entrySize) {
    if (entries[at] != 0) return true;
  }
  return false;
}

std::optional<IndexSegment> ReadIndexSegment(VerifyFile& file, const PacketPlace& place, VerifyFindings* findings) {
  return SegmentReader(file, place, findings).Read();
}

void VerifyIndex::Add(const IndexSegment& segment, const PacketPlace& place) {
  m_segments[segment.start] = {segment.duration, place};
}

// The last segment that begins at or before the edit unit.
const IndexSegment* VerifyIndex::SegmentOf(long long editUnit) {
  const auto after = m_segments.upper_bound(editUnit);
  if (after == m_segments.begin()) return nullptr;
  const auto found = std::prev(after);
  if (editUnit - found->first >= found->second.duration) return nullptr;
  const bool isCurrent = m_current && m_current->offset == found->second.place.offset;
  if (!isCurrent) m_current = ReadIndexSegment(m_file, found->second.place, nullptr);
  return m_current && m_current->Covers(editUnit) ? &*m_current : nullptr;
}

long long VerifyIndex::End() const {
  return m_segments.empty() ? 0 : m_segments.rbegin()->first + m_segments.rbegin()->second.duration;
}

long long VerifyIndex::EndOfFirstRun() const {
  long long end = 0;
  for (const auto& [start, cover] : m_segments) {
    if (start > end) break;
    end = std::max(end, start + cover.duration);
  }
  return end;
}
