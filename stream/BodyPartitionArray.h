#ifndef CLIPPARSER_STREAM_BODYPARTITIONARRAY_H
#define CLIPPARSER_STREAM_BODYPARTITIONARRAY_H

#include <deque>
#include <map>
#include <utility>

#include "klv/IndexTableSegment.h"
#include "klv/PartitionPack.h"
#include "klv/RandomIndexPack.h"
#include "stream/EditUnitMap.h"

// The body SID under which the cameras write their essence; partitions of other streams are not taken up.
constexpr unsigned int kEssenceBodySID = 2;

// The info flags of a body partition.
constexpr unsigned char kBodyPartitionExists = 0x01;
constexpr unsigned char kBodyPartitionHasData = 0x02 | 0x04;  // set together
constexpr unsigned char kBodyPartitionHasIndex = 0x08;
constexpr unsigned char kBodyPartitionComplete = kBodyPartitionExists | kBodyPartitionHasData | kBodyPartitionHasIndex;

// One body partition.
struct _BodyPartitionInfo {
  unsigned char infoFlag;            // kBodyPartition... values, added up
  unsigned long long fileOffset;     // of the partition pack
  unsigned long long streamOffset;   // the pack's BodyOffset: where its essence begins in the essence stream
  unsigned long long essenceOffset;  // the pack's ContentOffset: where its essence begins in the file
  std::map<unsigned int, OxSharedPtr<IndexTableSegment>> segments;  // by number within the partition
};

// The body partitions of a clip in file order, with the index table segments that were attached to them so far. Turns
// an edit unit into a place in the file: the index gives a place in the essence stream; less the partition's stream
// offset, plus its essence offset, that is the place in the file.
//
// Queries answer for partitions whose flag is kBodyPartitionComplete. The first partition in file order with a
// segment that covers the edit unit decides, complete or not. Failed queries leave their outputs untouched unless
// stated otherwise.
// Threads: not synchronised; MXFStream holds its reader's lock around every use.
class CLIPPARSER_EXPORT BodyPartitionArray : public OxObject {
 public:
  // The start that EditUnitRangeAtIndex gives for a segment that does not exist.
  static constexpr long long kNoEditUnit = 0x7FFFFFFFFFFFFFFF;

  BodyPartitionArray();
  ~BodyPartitionArray() override;

  // Body partitions in the array.
  [[nodiscard]] unsigned int Count() const { return static_cast<unsigned int>(m_partitions.size()); }
  // Removes all partitions with their segments.
  void Clear();
  // Add a partition whose pack lies at a file offset, as the first or last one. Nothing is read yet.
  void AddFront(unsigned long long fileOffset);
  void AddBack(unsigned long long fileOffset);

  // Replaces the partitions by those of the pack whose body SID is kEssenceBodySID.
  //   kStatusOK       done, also when the pack is empty
  //   kStatusNoInput  no pack given; nothing changed
  unsigned int SetFromRandomIndexPack(OxSharedPtr<RandomIndexPack> pack);
  // kStatusOK, or kStatusRefused with nothing changed: the index is out of range, no pack is given, or the pack is not
  // the one at the partition's file offset.
  unsigned int SetBodyPartitionData(unsigned int index, OxSharedPtr<PartitionPack> pack);
  // kStatusOK, or kStatusRefused with nothing changed: the index is out of range, no segment is given, or the number is
  // taken.
  unsigned int SetIndexTableSegment(unsigned int index, unsigned int segmentNumber,
                                    OxSharedPtr<IndexTableSegment> segment);

  // False when the index is out of range or the segment number not in the partition.
  [[nodiscard]] bool FileOffsetAtIndex(unsigned int index, unsigned long long& offset) const;
  [[nodiscard]] bool InfoFlagAtIndex(unsigned int index, unsigned char& flag) const;
  [[nodiscard]] bool IndexTableSegmentCountAtBodyPartition(unsigned int index, unsigned int& count) const;
  [[nodiscard]] bool IndexTableSegmentAtIndex(unsigned int index, unsigned int segmentNumber,
                                              OxSharedPtr<IndexTableSegment>& segment) const;
  // Start and duration of a segment, in edit units; (kNoEditUnit, 0) when there is no such segment.
  [[nodiscard]] std::pair<long long, long long> EditUnitRangeAtIndex(unsigned int index,
                                                                     unsigned int segmentNumber) const;

  // The first segment that covers an edit unit. All segments of a partition are taken to be as long as its segment 0.
  [[nodiscard]] bool GetContainIndexTableSegment(long long editUnit, unsigned int& index,
                                                 unsigned int& segmentNumber) const;

  // What the index says of an edit unit (ST 377-1): display order, key frame, flags. False when no segment covers it.
  [[nodiscard]] bool GetTemporalOffset(long long editUnit, signed char& offset) const;
  [[nodiscard]] bool GetKeyFrameOffset(long long editUnit, signed char& offset) const;
  [[nodiscard]] bool GetFlags(long long editUnit, unsigned char& flags) const;
  // The file offset of an element of an edit unit.
  [[nodiscard]] bool GetStreamOffset(long long editUnit, unsigned int element, unsigned long long& offset) const;
  // All three at once. After a failure the outputs before the one that failed are written.
  [[nodiscard]] bool GetEditUnitInfo(unsigned int editUnit, signed char& temporalOffset, signed char& keyFrameOffset,
                                     unsigned char& flags) const;

  // A number that the clip keeps here: how far apart the segments of an index in the header partition are. 0: not
  // known yet.
  [[nodiscard]] unsigned long long IndexTableSegmentByteCount() const { return m_segmentByteCount; }
  void SetIndexTableSegmentByteCount(unsigned long long count) { m_segmentByteCount = count; }

  // One line with the three offsets of each partition, between braces.
  OxSharedPtr<OxStringMac> Description() override;

 private:
  // A complete partition and its segment that covers an edit unit; nulls when there is none.
  struct Place {
    const _BodyPartitionInfo* partition = nullptr;
    const IndexTableSegment* segment = nullptr;
  };

  [[nodiscard]] const _BodyPartitionInfo* PartitionAt(unsigned int index) const;
  [[nodiscard]] Place PlaceOf(long long editUnit) const;
  void MapSegments(unsigned int index, unsigned int segmentNumber) const;
  // The map as it should be.
  [[nodiscard]] const EditUnitMap& Map() const;

  static constexpr unsigned long long kNotMapped = ~0ULL;

  std::deque<_BodyPartitionInfo> m_partitions;  // grows at either end
  // Made anew from the partitions when an attached segment was changed, though only a host that reuses one does that.
  mutable EditUnitMap m_map;
  mutable unsigned long long m_mappedChanges = IndexTableSegment::WatchedChanges();  // when the map was made
  unsigned long long m_segmentByteCount = 0;
};

#endif  // CLIPPARSER_STREAM_BODYPARTITIONARRAY_H
