#include "stream/BodyPartitionArray.h"

#include <limits>
#include <optional>
#include <string>

#include "foundation/FormatText.h"

namespace {

_BodyPartitionInfo NewPartition(unsigned long long fileOffset) { return {kBodyPartitionExists, fileOffset, 0, 0, {}}; }

// The number of the segment that would hold an edit unit if all were as long as the first. None where the division is
// undefined or the number cannot be a segment's.
std::optional<unsigned int> SegmentNumberFor(long long editUnit, const IndexTableSegment& first) {
  long long distance = 0;
  if (__builtin_sub_overflow(editUnit, first.IndexStartPosition(), &distance)) return std::nullopt;
  const long long length = first.IndexDuration();
  if (length == 0 || (length == -1 && distance == std::numeric_limits<long long>::min())) return std::nullopt;
  const long long number = distance / length;
  if (number < 0 || number > std::numeric_limits<unsigned int>::max()) return std::nullopt;
  return static_cast<unsigned int>(number);
}

}  // namespace

BodyPartitionArray::BodyPartitionArray() = default;

BodyPartitionArray::~BodyPartitionArray() = default;

void BodyPartitionArray::Clear() { m_partitions.clear(); }

void BodyPartitionArray::AddFront(unsigned long long fileOffset) { m_partitions.push_front(NewPartition(fileOffset)); }

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
  return kStatusOK;
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
  for (unsigned int i = 0; i < m_partitions.size(); ++i) {
    const auto& segments = m_partitions[i].segments;
    const auto first = segments.find(0);
    if (first == segments.end()) continue;
    const std::optional<unsigned int> number = SegmentNumberFor(editUnit, *first->second);
    const auto segment = number ? segments.find(*number) : segments.end();
    if (segment == segments.end() || segment->second->IndexStartPosition() == kNoEditUnit) continue;
    if (!segment->second->isContainIndex(editUnit)) continue;
    index = i;
    segmentNumber = *number;
    return true;
  }
  return false;
}

BodyPartitionArray::Place BodyPartitionArray::PlaceOf(long long editUnit) const {
  unsigned int index = 0;
  unsigned int segmentNumber = 0;
  if (!GetContainIndexTableSegment(editUnit, index, segmentNumber)) return {};
  const _BodyPartitionInfo& partition = m_partitions[index];
  if (partition.infoFlag != kBodyPartitionComplete) return {};
  return {&partition, partition.segments.at(segmentNumber).get()};
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
