#ifndef CLIPPARSER_TESTS_SUPPORT_ASKEVERYTHING_H
#define CLIPPARSER_TESTS_SUPPORT_ASKEVERYTHING_H

#include <algorithm>
#include <cstring>
#include <deque>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "foundation/UUIDDefine.h"
#include "stream/MXFStream.h"

// Puts every public query to a clip, for tests that damage a file, a disk or a thread and want to see what becomes of
// each answer. Nothing here judges: each answer is a number, and two clips are alike when their numbers are.
//
//   std::map<About, unsigned long long> answers;
//   AskEverything(clip, [&](const About& about, unsigned long long number) { answers[about] = number; });

// Which query, and its first and second argument.
struct About {
  const char* query;
  unsigned long long first = 0, second = 0;

  std::string Text() const {
    return std::string(query) + '(' + std::to_string(first) + ", " + std::to_string(second) + ')';
  }
  friend bool operator==(const About& a, const About& b) { return !(a < b) && !(b < a); }
  friend bool operator<(const About& a, const About& b) {
    const int order = std::strcmp(a.query, b.query);
    return order != 0 ? order < 0 : std::tie(a.first, a.second) < std::tie(b.first, b.second);
  }
};

struct AskLimits {
  unsigned int units = 64;       // the first and the last of them, and those just outside the clip
  unsigned int elements = 6;     // of each edit unit
  unsigned int items = 8;        // of each list in the header
  unsigned int bytes = 1 << 20;  // the buffer for an element

  unsigned int Of(unsigned long long count) const {
    return static_cast<unsigned int>(std::min<unsigned long long>(count, items));
  }
};

constexpr unsigned long long kNoAnswer = ~0ULL;  // the number for a failure

inline unsigned long long DigestOf(const void* data, std::size_t size) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  unsigned long long digest = 0xCBF29CE484222325;
  for (std::size_t i = 0; i < size; ++i) digest = (digest ^ bytes[i]) * 0x100000001B3;
  return digest;
}

inline unsigned long long DigestOf(const OxSharedPtr<OxObject>& object) {
  if (!object) return kNoAnswer;
  if (const OxSharedPtr<OxArray> array = object) {
    std::vector<unsigned long long> items;
    for (unsigned long i = 0; i < array->Count(); ++i) items.push_back(DigestOf(array->ObjectAtIndex(i)));
    return DigestOf(items.data(), items.size() * sizeof(items[0]));
  }
  if (const OxSharedPtr<OxVector<tagRGBALayout>> layout = object) return DigestOf(layout->data(), layout->size() * 2);
  const OxSharedPtr<OxStringMac> text = object->Description();
  return DigestOf(text->UTF8String(), text->ByteCount());
}

// Every tag that has an answer, and two private ones.
inline const std::vector<_LocalTag>& AllTags() {
  static const std::vector<_LocalTag> tags = [] {
    std::vector<_LocalTag> known = {0x8007, 0x8080};
    for (_LocalTag tag = 0; tag <= 0xFFFF; ++tag) {
      if (STMetadataSets::NameForTag(tag) != nullptr) known.push_back(tag);
    }
    return known;
  }();
  return tags;
}

inline const std::vector<OxSharedPtr<MxfUUID>>& AllProperties() {
  static const std::vector<OxSharedPtr<MxfUUID>> labels = {
      FBC_UL_MER_SingleSequence, FBC_UL_MER_ConstantBframes,  FBC_UL_MER_CodedContentScanning,
      FBC_UL_MER_LowDelay,       FBC_UL_MER_ClosedGOP,        FBC_UL_MER_IdenticalGOPIndicator,
      FBC_UL_MER_MaxGOP,         FBC_UL_MER_BPictureCount,    FBC_UL_MER_ProfileAndLevel,
      FBC_UL_MER_BitRate,        FBC_UL_OperationalPattern_1a};  // the last is no property
  return labels;
}

template <class Answer>
class HeaderAsker {
 public:
  HeaderAsker(Answer& answer, const AskLimits& limits) : m_answer(answer), m_limits(limits) {}

  void Ask(const HeaderMetadata& header) {
    m_answer({"IdentificationCount"}, header.IdentificationCount());
    m_answer({"EssenceContainerDataCount"}, header.EssenceContainerDataCount());
    m_answer({"MaterialPackageCount"}, header.MaterialPackageCount());
    m_answer({"MaterialPackageUMID"}, DigestOf(header.MaterialPackageUMID()));
    for (const _LocalTag tag : AllTags()) {
      Value({"PrefaceInfoForTag", tag}, header.PrefaceInfoForTag(tag));
      for (unsigned int i = 0; i < m_limits.Of(header.IdentificationCount()); ++i) {
        Value({"IdentificationInfoForTag", tag, i}, header.IdentificationInfoForTag(tag, i));
      }
      for (unsigned int i = 0; i < m_limits.Of(header.EssenceContainerDataCount()); ++i) {
        Value({"EssenceContainerDataForTag", tag, i}, header.EssenceContainerDataForTag(tag, i));
      }
    }
    for (unsigned int package = 0; package <= m_limits.Of(header.MaterialPackageCount()); ++package) {
      m_answer({"TrackCount", package}, header.TrackCount(package));
      for (unsigned int i = 0; i <= m_limits.Of(header.TrackCount(package)); ++i) {
        Track({"TrackForIndex", i, package}, header.TrackForIndex(i, package));
      }
    }
    ReferredSets(header);
  }

 private:
  // Remembers the references in a value, so that the sets behind them are asked as well.
  void Value(const About& about, const OxSharedPtr<OxObject>& value) {
    m_answer(about, DigestOf(value));
    Remember(value);
    if (const OxSharedPtr<OxArray> array = value) {
      for (unsigned int i = 0; i < m_limits.Of(array->Count()); ++i) Remember(array->ObjectAtIndex(i));
    }
  }
  void Remember(const OxSharedPtr<MxfUUID>& reference) {
    if (reference && m_seen.size() < m_limits.items * m_limits.items && m_seen.insert(*reference).second) {
      m_references.push_back(reference);
    }
  }

  void Track(const About& about, const OxSharedPtr<STTrack>& track) {
    m_answer(about, track ? 1 : kNoAnswer);
    if (!track) return;
    const unsigned long long where = about.second << 32 | about.first;
    m_answer({"TrackID", where}, track->TrackID());
    m_answer({"TrackNumber", where}, track->TrackNumber());
    const _Rational rate = track->EditRate();
    m_answer({"EditRate", where}, DigestOf(&rate, sizeof(rate)));
    m_answer({"Origin", where}, static_cast<unsigned long long>(track->Origin()));
    m_answer({"track's Duration", where}, static_cast<unsigned long long>(track->Duration()));
    m_answer({"DataDefinition", where}, DigestOf(track->DataDefinition()));
    m_answer({"ComponentCount", where}, track->ComponentCount());
    for (unsigned int i = 0; i <= m_limits.Of(track->ComponentCount()); ++i) {
      for (const _LocalTag tag : AllTags()) Value({"track's ValueForTag", where, tag}, track->ValueForTag(tag, i));
      for (const auto& label : AllProperties()) {
        Value({"track's ValueForUUID", where, DigestOf(label)}, track->ValueForUUID(label, i));
      }
    }
  }

  // Each set is numbered in the order in which a reference led to it.
  void ReferredSets(const HeaderMetadata& header) {
    for (unsigned int number = 0; !m_references.empty(); ++number) {
      const OxSharedPtr<MxfUUID> reference = m_references.front();
      m_references.pop_front();
      const OxSharedPtr<STMetadataSets> set = header.MetadataForKey(reference);
      m_answer({"MetadataForKey", number}, set ? set->PacketType() : kNoAnswer);
      if (!set) continue;
      for (const _LocalTag tag : AllTags()) Value({"ValueForTag", number, tag}, set->ValueForTag(tag));
      m_answer({"GetDescriptor", number}, DigestOf(header.GetDescriptor(set)));
      m_answer({"SourcePackageForUMID", number}, DigestOf(header.SourcePackageForUMID(set->UMIDForTag(0x4401))));
      Track({"CreateTrack", number, 0xFFFF}, header.CreateTrack(reference));
    }
  }

  Answer& m_answer;
  const AskLimits m_limits;
  std::set<MxfUUID> m_seen;
  std::deque<OxSharedPtr<MxfUUID>> m_references;
};

template <class Answer>
class Asker {
 public:
  Asker(MXFStream& clip, Answer& answer, const AskLimits& limits)
      : m_clip(clip), m_answer(answer), m_limits(limits), m_buffer(new unsigned char[limits.bytes]) {}

  void Units() {
    m_answer({"GetEssenceDescriptor"}, m_clip.GetEssenceDescriptor());
    m_answer({"Duration"}, static_cast<unsigned long long>(m_clip.Duration()));
    const auto duration = static_cast<unsigned int>(std::clamp(m_clip.Duration(), 0LL, 0xFFFFFFFFLL));
    for (unsigned int unit = 0; unit < std::min(duration, m_limits.units); ++unit) Unit(unit);
    if (duration > m_limits.units) Unit(duration - 1);
    Unit(duration);
    Unit(0xFFFFFFFF);
  }

  void Camera() {
    unsigned char bits[4] = {}, date[16] = {}, channel = 0xEE;
    m_answer({"GetUserBit"}, m_clip.GetUserBit(bits) == kStatusOK ? DigestOf(bits, 4) : kNoAnswer);
    m_answer({"GetPackageCreationDate"},
             m_clip.GetPackageCreationDate(date) == kStatusOK ? DigestOf(date, 16) : kNoAnswer);
    m_answer({"GetAudioChannel"}, m_clip.GetAudioChannel(&channel) == kStatusOK ? channel : kNoAnswer);
    OxSharedPtr<OxNumber> state, rate;
    m_answer({"GetImageStabilizer status"}, m_clip.GetImageStabilizer(&state));
    m_answer({"GetImageStabilizer"}, state ? state->UInt64Value() : kNoAnswer);
    m_answer({"GetVideoBitRate status"}, m_clip.GetVideoBitRate(&rate));
    m_answer({"GetVideoBitRate"}, rate ? rate->UInt64Value() : kNoAnswer);
    SequenceInfo("GetStreamFileSequenceInfo", m_clip.GetStreamFileSequenceInfo());
  }

  void Partitions() {
    const OxSharedPtr<PartitionPack> pack = m_clip.GetHeaderPartitionPack();
    for (const unsigned long long offset : {pack ? pack->ThisPartition() : 0, pack ? pack->FooterPartition() : 0}) {
      const OxSharedPtr<OxArray> segments = m_clip.GetIndexFromPartition(offset);
      m_answer({"GetIndexFromPartition", offset}, segments ? segments->Count() : kNoAnswer);
      for (unsigned int i = 0; segments && i < m_limits.Of(segments->Count()); ++i)
        Segment(segments->ObjectAtIndex(i), i);
      SequenceInfo("GetStreamFileSequenceInfoAtOffset",
                   m_clip.GetStreamFileSequenceInfoAtOffset(static_cast<long long>(offset)));
    }
    if (pack) {
      m_answer({"ContentOffset"}, pack->ContentOffset());
      m_answer({"OperationalPattern"}, DigestOf(pack->OperationalPattern()));
      m_answer({"EssenceCount"}, pack->EssenceCount());
      m_answer({"EssenceAtIndex"}, DigestOf(pack->EssenceAtIndex(0)));
    }
    for (unsigned int i = 0; i < m_limits.items; ++i) {
      m_answer({"ReadBodyPartitionInfo", i}, m_clip.ReadBodyPartitionInfo(i));
      m_answer({"ReadIndexTableAtPartition", i}, m_clip.ReadIndexTableAtPartition(i));
      m_answer({"ReadIndexTable", i}, m_clip.ReadIndexTable(i));
      m_answer({"ReadIndexTabelFromHeaderPartition", i}, m_clip.ReadIndexTabelFromHeaderPartition(i));
      m_answer({"ReadIndexTableFromPartition", i}, m_clip.ReadIndexTableFromPartition(i));
    }
  }

 private:
  static unsigned int Place(signed char offset) { return static_cast<unsigned int>(offset + 128); }

  void Unit(unsigned int unit) {
    signed char temporal = 0, key = 0;
    unsigned char flags = 0;
    m_answer({"GetFlagsAtIndex", unit}, m_clip.GetFlagsAtIndex(unit, flags) ? flags : kNoAnswer);
    m_answer({"GetTemporalOffsetAtIndex", unit},
             m_clip.GetTemporalOffsetAtIndex(unit, temporal) ? Place(temporal) : kNoAnswer);
    m_answer({"GetKeyOffsetAtIndex", unit}, m_clip.GetKeyOffsetAtIndex(unit, key) ? Place(key) : kNoAnswer);
    const bool isKnown = m_clip.GetEditUnitInfo(unit, temporal, key, flags);
    m_answer({"GetEditUnitInfo", unit}, isKnown ? Place(temporal) << 16 | Place(key) << 8 | flags : kNoAnswer);
    for (unsigned int element = 0; element < m_limits.elements; ++element) Element(unit, element);
    const std::vector<unsigned char> data = m_clip.GetDataItem(unit);
    m_answer({"GetDataItem", unit}, data.empty() ? kNoAnswer : DigestOf(data.data(), data.size()));
  }

  void Element(unsigned int unit, unsigned int element) {
    unsigned long long offset = 0;
    const unsigned int status = m_clip.GetEssenceOffset(unit, element, offset);
    m_answer({"GetEssenceOffset", unit, element}, status == kStatusOK ? offset : kNoAnswer);
    const _OxRange range = m_clip.RangeEssenceData(unit, element);
    m_answer({"RangeEssenceData location", unit, element}, range.location);
    m_answer({"RangeEssenceData length", unit, element}, range.length);
    const unsigned int count = m_clip.ReadEssenceData(unit, element, m_buffer.get(), m_limits.bytes);
    m_answer({"ReadEssenceData size", unit, element}, count);
    m_answer({"ReadEssenceData", unit, element}, DigestOf(m_buffer.get(), count));
  }

  void SequenceInfo(const char* query, const OxSharedPtr<StreamFileSequenceInfo>& info) {
    m_answer({query, 0}, info ? DigestOf(info->InstanceUID()) : kNoAnswer);
    m_answer({query, 1}, info ? DigestOf(info->PackageUID()) : kNoAnswer);
    m_answer({query, 2}, info ? DigestOf(info->StartTimecode()) : kNoAnswer);
    m_answer({query, 3}, info ? DigestOf(info->StartPosition()) : kNoAnswer);
  }

  void Segment(const OxSharedPtr<IndexTableSegment>& segment, unsigned int number) {
    const long long start = segment->IndexStartPosition();
    m_answer({"IndexStartPosition", number}, static_cast<unsigned long long>(start));
    m_answer({"IndexDuration", number}, static_cast<unsigned long long>(segment->IndexDuration()));
    m_answer({"DeltaEntryCount", number}, segment->DeltaEntryCount());
    for (const long long unit : {start, start / 2, 0LL, 1LL}) {
      unsigned long long offset = 0;
      const bool isThere = segment->GetStreamOffset(unit, 1, offset);
      m_answer({"GetStreamOffset", number, static_cast<unsigned long long>(unit)}, isThere ? offset : kNoAnswer);
    }
  }

  MXFStream& m_clip;
  Answer& m_answer;
  const AskLimits m_limits;
  std::unique_ptr<unsigned char[]> m_buffer;
};

// `answer(const About&, unsigned long long number)` is called for each query, in an order that depends on the answers
// alone. The queries for edit units come first, so that each loads its own index; the last ones load every index.
template <class Answer>
void AskEverything(MXFStream& clip, Answer answer, const AskLimits& limits = {}) {
  Asker<Answer> asker(clip, answer, limits);
  asker.Units();
  asker.Camera();
  HeaderAsker<Answer>(answer, limits).Ask(*clip.GetHeaderMetadata());
  asker.Partitions();
}

// The same for header metadata alone.
template <class Answer>
void AskHeader(const HeaderMetadata& header, Answer answer, const AskLimits& limits = {}) {
  HeaderAsker<Answer>(answer, limits).Ask(header);
}

#endif  // CLIPPARSER_TESTS_SUPPORT_ASKEVERYTHING_H
