#include <algorithm>

#include "clipinfo/VerifySteps.h"

namespace {

// The flags of an index entry (ST 377-1, ST 381).
constexpr unsigned char kRandomAccess = 0x80;
constexpr unsigned char kPrediction = 0x30;
constexpr unsigned char kBackwardPrediction = 0x10;
constexpr long long kFurthest = 128;  // that a temporal offset leads

// What is the same in each segment of an index.
struct SegmentShape {
  unsigned char sliceCount;
  unsigned char posTableCount;
  std::size_t deltaCount;

  explicit SegmentShape(const IndexSegment& segment)
      : sliceCount(segment.sliceCount), posTableCount(segment.posTableCount), deltaCount(segment.deltas.size()) {}
  [[nodiscard]] bool isEqual(const SegmentShape& other) const {
    return sliceCount == other.sliceCount && posTableCount == other.posTableCount && deltaCount == other.deltaCount;
  }
};

class IndexCheck {
 public:
  IndexCheck(VerifyFile& file, const EssenceFacts& facts) : m_file(file), m_facts(facts), m_index(file) {}

  VerifyIndex Run() {
    for (const VerifiedPartition& partition : m_file.partitions) {
      for (const PacketPlace& place : partition.segments) AddSegment(partition, place);
    }
    if (m_index.isEmpty()) {
      if (!m_facts.indexSIDs.empty()) m_file.findings.Add(FindingKind::IndexMissing, m_file.Length());
    } else {
      CheckEntries();
    }
    return std::move(m_index);
  }

 private:
  void AddSegment(const VerifiedPartition& partition, const PacketPlace& place) {
    const std::optional<IndexSegment> segment = ReadIndexSegment(m_file, place, &m_file.findings);
    if (!segment) return;
    CheckStreams(partition, *segment);
    if (!m_shape) m_shape.emplace(*segment);
    if (!m_shape->isEqual(SegmentShape(*segment))) {
      m_file.findings.Add(FindingKind::IndexSegment, place.offset, "other slices or elements than the first segment");
    }
    const auto [known, isNew] = m_starts.emplace(segment->start, place.offset);
    if (!isNew) m_file.findings.Add(FindingKind::SupersededIndex, known->second);
    known->second = place.offset;
    if (segment->entries.empty()) {
      m_file.findings.Add(FindingKind::NotAnswered, place.offset, "an index table segment without entries");
    }
    m_index.Add(*segment, place);
  }

  void CheckStreams(const VerifiedPartition& partition, const IndexSegment& segment) {
    const auto add = [&](const std::string& detail) {
      m_file.findings.Add(FindingKind::IndexStreams, segment.offset, detail);
    };
    if (segment.indexSID != partition.pack->IndexSID()) {
      add(InsteadOf("IndexSID", segment.indexSID, partition.pack->IndexSID()));
    }
    const bool isKnown = m_facts.bodySIDs.empty() || m_facts.bodySIDs.count(segment.bodySID) != 0;
    if (!isKnown) add("BodySID " + std::to_string(segment.bodySID) + " is no essence container's");
    const long long ours = static_cast<long long>(segment.editRate.numerator) * m_facts.editRate.denominator;
    const long long theirs = static_cast<long long>(m_facts.editRate.numerator) * segment.editRate.denominator;
    if (segment.editRate.denominator == 0 || ours != theirs) add("another edit rate than the tracks");
  }

  // From the first edit unit on, as far as the index goes without a gap.
  void CheckEntries() {
    const long long end = m_index.EndOfFirstRun();
    m_end = m_facts.duration >= 0 ? std::min(end, m_facts.duration) : end;
    long long unit = 0;
    while (const IndexSegment* const segment = m_index.SegmentOf(unit)) {
      unit = segment->entries.empty() ? segment->start + segment->duration : CheckSegment(*segment, unit);
    }
    if (unit != m_index.End()) TellCoverage(m_file.Length(), "no segment covers it, or two do", unit);
    if (m_facts.duration >= 0 && m_index.End() != m_facts.duration) {
      TellCoverage(m_file.Length(),
                   "it ends at " + std::to_string(m_index.End()) + " instead of " + std::to_string(m_facts.duration),
                   unit);
    }
  }

  // Up to the next segment; the edit unit behind the last one.
  long long CheckSegment(const IndexSegment& segment, long long unit) {
    const auto next = m_starts.upper_bound(segment.start);
    m_isShown.resize(std::max(m_isShown.size(), static_cast<std::size_t>(unit + segment.duration + kFurthest)));
    for (; segment.Covers(unit); ++unit) {
      if (next != m_starts.end() && next->first == unit) {
        TellCoverage(segment.offset, "two segments cover it", unit);
        break;
      }
      CheckEntry(segment, unit);
    }
    return unit;
  }

  void TellCoverage(unsigned long long offset, const std::string& detail, long long unit) {
    m_file.findings.Add(FindingKind::IndexCoverage, offset, detail, static_cast<unsigned long long>(unit));
  }
  void Tell(const IndexSegment& segment, long long unit, const std::string& detail) {
    m_file.findings.Add(FindingKind::IndexEntry, segment.offset, detail, static_cast<unsigned long long>(unit));
  }

  void CheckEntry(const IndexSegment& segment, long long unit) {
    if (unit > 0 && segment.StreamOffset(unit) <= m_lastOffset) Tell(segment, unit, "StreamOffset does not grow");
    m_lastOffset = segment.StreamOffset(unit);
    CheckKeyFrame(segment, unit);
    CheckTemporalOffset(segment, unit);
  }

  // The key-frame offset leads back to the key frame that an edit unit depends on: the last one or, for pictures that
  // are shown before it (open GOP), the one before that.
  void CheckKeyFrame(const IndexSegment& segment, long long unit) {
    const unsigned char flags = segment.Flags(unit);
    const int offset = segment.KeyFrameOffset(unit);
    if ((flags & kPrediction) == 0) {
      if (offset != 0) Tell(segment, unit, "key-frame offset " + std::to_string(offset) + " of a key frame");
      m_keyBefore = m_key;
      m_key = unit;
      return;
    }
    if ((flags & kRandomAccess) != 0) Tell(segment, unit, "random access to a predicted picture");
    const bool isLeading = (flags & kBackwardPrediction) != 0 && m_keyBefore >= 0 && unit + offset == m_keyBefore;
    if ((m_key < 0 || unit + offset != m_key) && !isLeading) {
      Tell(segment, unit, "key-frame offset " + std::to_string(offset) + " leads to no key frame of its own");
    }
  }

  // The edit unit shown at place n is stored at n + its temporal offset, so each is shown once. A recording may stop
  // before the last pictures that are to be shown.
  void CheckTemporalOffset(const IndexSegment& segment, long long unit) {
    const std::string detail = "temporal offset " + std::to_string(segment.TemporalOffset(unit));
    const long long stored = unit + segment.TemporalOffset(unit);
    constexpr long long kMostPending = 3;
    if (stored >= m_end && unit >= m_end - kMostPending && stored < m_end + kMostPending) {
      m_file.findings.Add(FindingKind::OpenEnd, segment.offset, detail, static_cast<unsigned long long>(unit));
    } else if (stored < 0 || stored >= m_end) {
      Tell(segment, unit, detail + " leads out of the clip");
    } else if (m_isShown[static_cast<std::size_t>(stored)]) {
      Tell(segment, unit, detail + " shows a picture twice");
    } else {
      m_isShown[static_cast<std::size_t>(stored)] = true;
    }
  }

  VerifyFile& m_file;
  const EssenceFacts& m_facts;
  VerifyIndex m_index;
  std::optional<SegmentShape> m_shape;
  std::map<long long, unsigned long long> m_starts;  // the file offset of the segment that begins at an edit unit
  unsigned long long m_lastOffset = 0;
  long long m_key = -1;
  long long m_keyBefore = -1;
  long long m_end = 0;  // of the clip, as far as the index goes
  std::vector<bool> m_isShown;
};

}  // namespace

VerifyIndex CheckIndex(VerifyFile& file, const EssenceFacts& facts) { return IndexCheck(file, facts).Run(); }
