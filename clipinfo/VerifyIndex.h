#ifndef CLIPPARSER_CLIPINFO_VERIFYINDEX_H
#define CLIPPARSER_CLIPINFO_VERIFYINDEX_H

#include <map>
#include <optional>
#include <vector>

#include "clipinfo/VerifyFile.h"
#include "clipinfo/VerifyMetadata.h"

// An index table segment as it lies in the file (ST 377-1), entries and all.
struct IndexSegment {
  struct Delta {
    signed char posTableIndex;
    unsigned char slice;
    unsigned int elementDelta;
  };

  unsigned long long offset = 0;  // in the file
  _Rational editRate{};
  long long start = 0;     // edit units
  long long duration = 0;  // edit units
  unsigned int editUnitByteCount = 0;
  unsigned int indexSID = 0;
  unsigned int bodySID = 0;
  unsigned char sliceCount = 0;
  unsigned char posTableCount = 0;
  std::vector<Delta> deltas;
  unsigned int entrySize = 0;
  std::vector<unsigned char> entries;

  [[nodiscard]] bool Covers(long long editUnit) const { return editUnit >= start && editUnit - start < duration; }
  // Of an edit unit that the segment covers.
  [[nodiscard]] int TemporalOffset(long long editUnit) const;
  [[nodiscard]] int KeyFrameOffset(long long editUnit) const;
  [[nodiscard]] unsigned char Flags(long long editUnit) const;
  [[nodiscard]] unsigned long long StreamOffset(long long editUnit) const;
  // Where an element of the content package begins in the essence stream.
  [[nodiscard]] unsigned long long ElementOffset(long long editUnit, std::size_t element) const;
  [[nodiscard]] bool hasTemporalOffsets() const;
  [[nodiscard]] std::size_t ElementCount() const { return deltas.empty() ? 1 : deltas.size(); }

 private:
  [[nodiscard]] const unsigned char* Entry(long long editUnit) const;
};

// Reads a segment. What is malformed is told to `findings`, if any; nothing when it cannot be used.
[[nodiscard]] std::optional<IndexSegment> ReadIndexSegment(VerifyFile& file, const PacketPlace& place,
                                                           VerifyFindings* findings);

// The index of one essence stream: which segment covers which edit units. The segments themselves are read again when
// they are asked, since an index may be larger than memory ought to be.
class VerifyIndex {
 public:
  explicit VerifyIndex(VerifyFile& file) : m_file(file) {}

  void Add(const IndexSegment& segment, const PacketPlace& place);
  // The segment that covers an edit unit, valid until the next question; null when there is none.
  [[nodiscard]] const IndexSegment* SegmentOf(long long editUnit);
  [[nodiscard]] bool isEmpty() const { return m_segments.empty(); }
  // The edit unit behind the last one, and behind the last one before the first gap.
  [[nodiscard]] long long End() const;
  [[nodiscard]] long long EndOfFirstRun() const;

 private:
  struct Cover {
    long long duration;
    PacketPlace place;
  };

  VerifyFile& m_file;
  std::map<long long, Cover> m_segments;  // by the first edit unit
  std::optional<IndexSegment> m_current;
};

#endif  // CLIPPARSER_CLIPINFO_VERIFYINDEX_H
