#include "stream/BodyPartitionArray.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "foundation/FormatText.h"

namespace {

_BodyPartitionInfo NewPartition(unsigned long long fileOffset) { return {kBodyPartitionExists, fileOffset, 0, 0, {}}; }

// a + b, held to what 64 bits hold.
long long SaturatingSum(long long a, long long b) {
  long long sum = 0;
  if (!__builtin_add_overflow(a, b, &sum)) return sum;
  return b > 0 ? std::numeric_limits<long long>::max() : std::numeric_limits<long long>::min();
}

// The edit units [first, last].
struct Units {
  long long first;
  long long last;
};

// The edit units that a segment answers for: those it covers whose distance from the start of the partition's first
// segment, divided by that one's duration towards zero, is the segment's number. None when there is no such unit, or
// the division is undefined or cannot be done in 64 bits.
std::optional<Units> UnitsOf(const IndexTableSegment& first, unsigned int number, const IndexTableSegment& segment) {
  const long long length = first.IndexDuration();
  const long long start = segment.IndexStartPosition();
  if (length == 0 || segment.IndexDuration() <= 0 || start == BodyPartitionArray::kNoEditUnit) return std::nullopt;
  long long nearest = 0;  // distance; negative like the length
  long long unit = 0;
  if (__builtin_mul_overflow(length, number, &nearest) ||
      __builtin_add_overflow(first.IndexStartPosition(), nearest, &unit)) {
    return std::nullopt;
  }
  const long long farthest = SaturatingSum(nearest, length > 0 ? length - 1 : length + 1);
  const auto [low, high] = std::minmax(nearest, farthest);
  const Units units = {
      std::max(start, SaturatingSum(first.IndexStartPosition(), low)),
      std::min(SaturatingSum(start, segment.IndexDuration() - 1), SaturatingSum(first.IndexStartPosition(), high))};
  return units.first <= units.last ? std::optional(units) : std::nullopt;
}

}  // namespace

BodyPartitionArray::BodyPartitionArray() = default;

BodyPartitionArray::~BodyPartitionArray() = default;

void BodyPartitionArray::Clear() {
  m_partitions.clear();
  m_map.Clear();
}

void BodyPartitionArray::AddFront(unsigned long long fileOffset) {
  m_partitions.push_front(NewPartition(fileOffset));
  m_map.AddFrontEntry();
}

void BodyPartitionArray::AddBack(unsigned long long fileOffset) { m_partitions.push_back(NewPartition(fileOffset)); }

unsigned int BodyPartitionArray::SetFromRandomIndexPack(OxSharedPtr<RandomIndexPack> pack) {
  if (!pack) return kStatusNoInput;
  Clear();
  for (unsigned int i = 0; i < pack->Count(); ++i) {
    unsigned int sid = 0;
    unsigned long long offset = 0;
    if (!pack->GetBodySIDAtIndex(i, sid) || !pack->GetOffsetAtIndex(i, offset)) break;
    if (sid == kEssenceBodySID) AddBack(offset);
  }
  return kStatusOK;
}

unsigned int BodyPartitionArray::SetBodyPartitionData(unsigned int index, OxSharedPtr<PartitionPack> pack) {
  if (index >= m_partitions.size() || !pack) return kStatusRefused;
  _BodyPartitionInfo& partition = m_partitions[index];
  if (partition.fileOffset != pack->ThisPartition()) return kStatusRefused;
  partition.streamOffset = pack->BodyOffset();
  partition.essenceOffset = pack->ContentOffset();
  partition.infoFlag |= kBodyPartitionHasData;
  return kStatusOK;
}

unsigned int BodyPartitionArray::SetIndexTableSegment(unsigned int index, unsigned int segmentNumber,
                                                      OxSharedPtr<IndexTableSegment> segment) {
  if (index >= m_partitions.size() || !segment) return kStatusRefused;
  _BodyPartitionInfo& partition = m_partitions[index];
  if (!partition.segments.emplace(segmentNumber, segment).second) return kStatusRefused;
  partition.infoFlag |= kBodyPartitionHasIndex;
  segment->Watch();
  if (m_mappedChanges == IndexTableSegment::WatchedChanges()) MapSegments(index, segmentNumber);
  return kStatusOK;
}

// Maps a segment that was attached or, when it is the first, all of its partition: it decides where the others count.
void BodyPartitionArray::MapSegments(unsigned int index, unsigned int segmentNumber) const {
  const auto& segments = m_partitions[index].segments;
  const auto first = segments.find(0);
  if (first == segments.end()) return;
  const unsigned long long changes = std::exchange(m_mappedChanges, kNotMapped);  // until all is done
  for (auto i = segments.find(segmentNumber); i != segments.end(); ++i) {
    const std::optional<Units> units = UnitsOf(*first->second, i->first, *i->second);
    if (units) m_map.Add(units->first, units->last, index, i->first, i->second.get());
    if (segmentNumber != 0) break;
  }
  m_mappedChanges = changes;
}

const EditUnitMap& BodyPartitionArray::Map() const {
  const unsigned long long changes = IndexTableSegment::WatchedChanges();
  if (m_mappedChanges == changes) return m_map;
  m_mappedChanges = kNotMapped;
  m_map.Clear();
  for (unsigned int i = 0; i < m_partitions.size(); ++i) MapSegments(i, 0);
  m_mappedChanges = changes;
  return m_map;
}

const _BodyPartitionInfo* BodyPartitionArray::PartitionAt(unsigned int index) const {
  return index < m_partitions.size() ? &m_partitions[index] : nullptr;
}

bool BodyPartitionArray::FileOffsetAtIndex(unsigned int index, unsigned long long& offset) const {
  const _BodyPartitionInfo* partition = PartitionAt(index);
  if (partition == nullptr) return false;
  offset = partition->fileOffset;
  return true;
}

bool BodyPartitionArray::InfoFlagAtIndex(unsigned int index, unsigned char& flag) const {
  const _BodyPartitionInfo* partition = PartitionAt(index);
  if (partition == nullptr) return false;
  flag = partition->infoFlag;
  return true;
}

bool BodyPartitionArray::IndexTableSegmentCountAtBodyPartition(unsigned int index, unsigned int& count) const {
  const _BodyPartitionInfo* partition = PartitionAt(index);
  if (partition == nullptr) return false;
  count = static_cast<unsigned int>(partition->segments.size());
  return true;
}

bool BodyPartitionArray::IndexTableSegmentAtIndex(unsigned int index, unsigned int segmentNumber,
                                                  OxSharedPtr<IndexTableSegment>& segment) const {
  const _BodyPartitionInfo* partition = PartitionAt(index);
  if (partition == nullptr) return false;
  const auto entry = partition->segments.find(segmentNumber);
  if (entry == partition->segments.end()) return false;
  segment = entry->second;
  return true;
}

std::pair<long long, long long> BodyPartitionArray::EditUnitRangeAtIndex(unsigned int index,
                                                                         unsigned int segmentNumber) const {
  OxSharedPtr<IndexTableSegment> segment;
  if (!IndexTableSegmentAtIndex(index, segmentNumber, segment)) return {kNoEditUnit, 0};
  return {segment->IndexStartPosition(), segment->IndexDuration()};
}

bool BodyPartitionArray::GetContainIndexTableSegment(long long editUnit, unsigned int& index,
                                                     unsigned int& segmentNumber) const {
  const EditUnitMap& map = Map();
  const EditUnitMap::Piece* piece = map.Find(editUnit);
  if (piece == nullptr) return false;
  index = map.IndexOf(*piece);
  segmentNumber = piece->number;
  return true;
}

BodyPartitionArray::Place BodyPartitionArray::PlaceOf(long long editUnit) const {
  const EditUnitMap& map = Map();
  const EditUnitMap::Piece* piece = map.Find(editUnit);
  if (piece == nullptr) return {};
  const _BodyPartitionInfo& partition = m_partitions[map.IndexOf(*piece)];
  if (partition.infoFlag != kBodyPartitionComplete) return {};
  return {&partition, piece->segment};
}

bool BodyPartitionArray::GetTemporalOffset(long long editUnit, signed char& offset) const {
  const Place place = PlaceOf(editUnit);
  return place.segment != nullptr && place.segment->GetTemporalOffset(editUnit, offset);
}

bool BodyPartitionArray::GetKeyFrameOffset(long long editUnit, signed char& offset) const {
  const Place place = PlaceOf(editUnit);
  return place.segment != nullptr && place.segment->GetKeyFrameOffset(editUnit, offset);
}

bool BodyPartitionArray::GetFlags(long long editUnit, unsigned char& flags) const {
  const Place place = PlaceOf(editUnit);
  return place.segment != nullptr && place.segment->GetFlags(editUnit, flags);
}

bool BodyPartitionArray::GetStreamOffset(long long editUnit, unsigned int element, unsigned long long& offset) const {
  const Place place = PlaceOf(editUnit);
  unsigned long long streamOffset = 0;
  if (place.segment == nullptr || !place.segment->GetStreamOffset(editUnit, element, streamOffset)) return false;
  // Unsigned, so that a wrong offset in the file gives a place that no read accepts rather than undefined behaviour.
  offset = place.partition->essenceOffset - place.partition->streamOffset + streamOffset;
  return true;
}

bool BodyPartitionArray::GetEditUnitInfo(unsigned int editUnit, signed char& temporalOffset,
                                         signed char& keyFrameOffset, unsigned char& flags) const {
  const Place place = PlaceOf(editUnit);
  return place.segment != nullptr && place.segment->GetTemporalOffset(editUnit, temporalOffset) &&
         place.segment->GetKeyFrameOffset(editUnit, keyFrameOffset) && place.segment->GetFlags(editUnit, flags);
}

OxSharedPtr<OxStringMac> BodyPartitionArray::Description() {
  std::string text = "{\n";
  for (const _BodyPartitionInfo& partition : m_partitions) {
    text += FormatText("\tfileOffset = %016llX, streamOffset = %016llX, essenceOffset = %016llX\n",
                       partition.fileOffset, partition.streamOffset, partition.essenceOffset);
  }
  return CreateOxString(text + "}");
}
