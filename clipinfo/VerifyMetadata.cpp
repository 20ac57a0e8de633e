#include "clipinfo/VerifyMetadata.h"

#include <algorithm>
#include <utility>

#include "clipinfo/Text.h"
#include "clipinfo/VerifySteps.h"
#include "klv/StreamFileSequenceInfo.h"

namespace {

constexpr unsigned long long kLargestSet = 1 << 20;
constexpr unsigned long long kMostBytes = 1 << 26;  // of all sets of a partition
constexpr unsigned long long kPrimerItem = 18;
constexpr unsigned int kSetCodingByte = 5;
constexpr unsigned char kSetCoding = 0x53;  // local set of 2-byte tags and lengths
constexpr unsigned int kTagOfInstanceUID = 0x3C0A;
constexpr unsigned int kFirstDynamicTag = 0x8000;

// Reads the header metadata of a partition and checks each packet by itself.
class MetadataReader {
 public:
  MetadataReader(VerifyFile& file, const VerifiedPartition& partition) : m_file(file), m_partition(partition) {}

  MetadataGraph Read() {
    m_graph.pack = m_partition.pack;
    ReadPrimer();
    for (const PacketPlace& place : m_partition.sets) {
      m_bytes += place.length;
      if (place.length > kLargestSet || m_bytes > kMostBytes) {
        m_file.findings.Add(FindingKind::Abandoned, place.offset, "more header metadata than a clip has");
      } else if (place.type == kKeyStreamFileSequenceInfo) {
        CheckSequenceInfo(place);
      } else {
        ReadSet(place);
      }
    }
    IndexSets();
    return std::move(m_graph);
  }

 private:
  void Add(FindingKind kind, const PacketPlace& place, std::string detail) {
    m_file.findings.Add(kind, place.offset, std::move(detail));
  }
  bool MoveTo(unsigned long long offset) {
    return m_file.Reader().SetOffset(static_cast<long long>(offset), kOxStreamSeekFromStart);
  }

  void ReadPrimer() {
    if (m_partition.primers.size() != 1) {
      m_file.findings.Add(FindingKind::Primer, m_partition.base, "there is not one primer pack");
    }
    if (!m_partition.primers.empty()) ReadPrimer(m_partition.primers.front());
  }

  void ReadPrimer(const PacketPlace& place) {
    unsigned int count = 0;
    unsigned int size = 0;
    const bool isHead =
        MoveTo(place.valueOffset) && m_file.Reader().GetUInt32(&count) && m_file.Reader().GetUInt32(&size);
    if (!isHead || size != kPrimerItem || place.length != 4 + 4 + kPrimerItem * count) {
      Add(FindingKind::Primer, place, "its length is not that of its items");
    }
    if (!isHead || place.length < 8) return;
    const unsigned long long most = std::min<unsigned long long>((place.length - 8) / kPrimerItem, 1 << 16);
    std::set<MxfUUID> labels;
    unsigned short tag = 0;
    MxfUUID label;
    for (unsigned long long i = 0; i < most && m_file.Reader().GetUInt16(&tag) && m_file.Reader().GetUUID(&label);
         ++i) {
      if (!m_graph.primer.emplace(tag, label).second) Add(FindingKind::Primer, place, TagText(tag) + " stands twice");
      if (!labels.insert(label).second)
        Add(FindingKind::Primer, place, "the label of " + TagText(tag) + " stands twice");
      CheckLabel(place, tag, label);
    }
  }

  // Labels of properties are those of the metadata dictionary (ST 335); behind a dynamic tag there may be a UUID of the
  // maker's own, which looks nothing like one. The Instance UID is in each set.
  void CheckLabel(const PacketPlace& place, unsigned short tag, const MxfUUID& label) {
    constexpr unsigned char kDictionary[] = {0x06, 0x0E, 0x2B, 0x34, 0x01, 0x01, 0x01};
    constexpr unsigned char kInstanceUID[] = {0x01, 0x01, 0x15, 0x02, 0x00, 0x00, 0x00, 0x00};
    unsigned int alike = 0;
    for (unsigned int i = 0; i < std::size(kDictionary); ++i) alike += label.ValueAtIndex(i) == kDictionary[i] ? 1 : 0;
    bool isInstanceUID = true;
    for (unsigned int i = 0; i < std::size(kInstanceUID); ++i) {
      isInstanceUID = isInstanceUID && label.ValueAtIndex(8 + i) == kInstanceUID[i];
    }
    // The variant of a UUID (RFC 4122), in either order of its halves.
    const bool isUUID = (label.ValueAtIndex(8) & 0xC0) == 0x80 || (label.ValueAtIndex(0) & 0xC0) == 0x80;
    const bool isOwn = tag >= kFirstDynamicTag && isUUID && alike < std::size(kDictionary) / 2;
    if (alike != std::size(kDictionary) && !isOwn) {
      Add(FindingKind::Primer, place, TagText(tag) + " has no property's label");
    }
    if ((tag == kTagOfInstanceUID) != isInstanceUID) {
      Add(FindingKind::Primer, place, TagText(tag) + (isInstanceUID ? " has" : " lacks") + " the label of InstanceUID");
    }
  }

  void ReadSet(const PacketPlace& place) {
    MetadataSet read;
    const OxSharedPtr<KLVPacket> packet(new KLVPacket);
    if (!m_file.PeekPacket(place.offset, m_partition.end, *packet)) return;
    read.kind = isStructuralSet(place.type) ? place.type & 0xFFFF : kNoStructuralSet;
    read.offset = place.offset;
    read.set = new STMetadataSets(packet);
    const bool isCoded = packet->key().ValueAtIndex(kSetCodingByte) == kSetCoding;
    if (!isCoded || read.set->Import(m_file.Stream()) != kStatusOK) {
      Add(FindingKind::SetMalformed, place, SetName(read.kind));
      return;
    }
    ReadTags(place, read.tags);
    read.uid = read.set->UUIDForTag(kTagOfInstanceUID);
    if (!read.uid) Add(FindingKind::SetProperty, place, std::string(SetName(read.kind)) + " without InstanceUID");
    m_graph.sets.push_back(std::move(read));
  }

  // The import has found them well-formed.
  void ReadTags(const PacketPlace& place, std::vector<unsigned short>& tags) {
    const auto end = static_cast<long long>(place.valueOffset + place.length);
    unsigned short tag = 0;
    unsigned short length = 0;
    if (!MoveTo(place.valueOffset)) return;
    while (m_file.Reader().offset() < end && m_file.Reader().GetUInt16(&tag) && m_file.Reader().GetUInt16(&length) &&
           m_file.Reader().SetOffset(length, kOxStreamSeekFromCurrent)) {
      tags.push_back(tag);
    }
  }

  void CheckSequenceInfo(const PacketPlace& place) {
    StreamFileSequenceInfo info;
    const bool isRead = MoveTo(place.offset) && m_file.Reader().ParsePacket(&info);
    if (!isRead || !info.InstanceUID() || !info.PackageUID() || !info.StartTimecode() || !info.StartPosition()) {
      Add(FindingKind::SetMalformed, place, "stream file sequence information");
    }
  }

  void IndexSets() {
    for (const MetadataSet& each : m_graph.sets) {
      if (each.kind == kPreface) m_graph.preface = &each;
      if (!each.uid || m_graph.byUID.emplace(*each.uid, &each).second) continue;
      m_file.findings.Add(FindingKind::SetDuplicate, each.offset, SetName(each.kind));
    }
  }

  VerifyFile& m_file;
  const VerifiedPartition& m_partition;
  MetadataGraph m_graph;
  unsigned long long m_bytes = 0;
};

}  // namespace

std::string TagText(unsigned int tag) {
  const unsigned char bytes[] = {static_cast<unsigned char>(tag >> 8), static_cast<unsigned char>(tag)};
  std::string text = "tag " + HexText(bytes, 2);
  text.erase(text.find('.'), 1);
  const char* const name = STMetadataSets::NameForTag(tag);
  return name == nullptr ? text : text + " (" + name + ')';
}

std::vector<MxfUUID> MetadataSet::References(_LocalTag tag, bool* isWhole) const {
  const OxSharedPtr<ParseMetaData> reader = set->GetParserForTag(tag);
  const unsigned int length = set->LengthForTag(tag);
  unsigned int count = 1;
  unsigned int size = length;
  bool isRead = static_cast<bool>(reader);
  if (isRead && length != MxfUUID::kSize) {
    isRead = reader->GetUInt32(&count) && reader->GetUInt32(&size) && length == 8 + 16ULL * count;
  }
  std::vector<MxfUUID> references;
  MxfUUID reference;
  isRead = isRead && (size == MxfUUID::kSize || count == 0);
  for (unsigned int i = 0; isRead && i < count && reader->GetUUID(&reference); ++i) references.push_back(reference);
  if (isWhole != nullptr) *isWhole = isRead;
  return references;
}

const MetadataSet* MetadataGraph::Find(const MxfUUID& uid) const {
  const auto found = byUID.find(uid);
  return found == byUID.end() ? nullptr : found->second;
}

std::vector<const MetadataSet*> MetadataGraph::Referenced(const MetadataSet& set, _LocalTag tag) const {
  std::vector<const MetadataSet*> found;
  for (const MxfUUID& uid : set.References(tag)) {
    const MetadataSet* const each = Find(uid);
    if (each != nullptr) found.push_back(each);
  }
  return found;
}

MetadataGraph ReadMetadata(VerifyFile& file, const VerifiedPartition& partition) {
  return MetadataReader(file, partition).Read();
}
