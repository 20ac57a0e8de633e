#include <algorithm>

#include "clipinfo/VerifySteps.h"

namespace {

constexpr unsigned int kFirstDynamicTag = 0x8000;
constexpr unsigned int kAnyDescriptor = 0;

// What a kind of set holds (ST 377-1): the properties that it must have, and the first bytes of the tags that belong in
// it besides those of each set (3C0A, 01xx) and the dynamic ones. Lists end at 0.
struct SetRow {
  unsigned int kind;
  const char* name;
  unsigned short required[8];
  unsigned char groups[10];
};
constexpr SetRow kSets[] = {
    {kPreface, "preface", {0x3B02, 0x3B03, 0x3B05, 0x3B06, 0x3B09, 0x3B0A, 0x3B0B}, {0x3B}},
    {kIdentification, "identification", {0x3C01, 0x3C02, 0x3C04, 0x3C05, 0x3C06, 0x3C09}, {0x3C}},
    {kContentStorage, "content storage", {0x1901}, {0x19}},
    {kEssenceContainerData, "essence container data", {0x2701, 0x3F07}, {0x27, 0x3F}},
    {kMaterialPackage, "material package", {0x4401, 0x4403, 0x4404, 0x4405}, {0x44}},
    {kSourcePackage, "source package", {0x4401, 0x4403, 0x4404, 0x4405, 0x4701}, {0x44, 0x47}},
    {kTrack, "track", {0x4801, 0x4803, 0x4804, 0x4B01, 0x4B02}, {0x48, 0x4B}},
    {0x0139, "event track", {0x4801, 0x4803, 0x4804}, {0x48, 0x49}},
    {0x013A, "static track", {0x4801, 0x4803, 0x4804}, {0x48}},
    {kSequence, "sequence", {0x0201, 0x0202, 0x1001}, {0x02, 0x10}},
    {kTimecodeComponent, "timecode component", {0x0201, 0x0202, 0x1501, 0x1502, 0x1503}, {0x02, 0x15}},
    {kSourceClip, "source clip", {0x0201, 0x0202, 0x1101, 0x1102, 0x1201}, {0x02, 0x11, 0x12}},
    {kMultipleDescriptor, "multiple descriptor", {0x3001, 0x3004, 0x3F01}, {0x2F, 0x30, 0x3F}},
    {0x0127, "picture descriptor", {0x3001, 0x3004, 0x3202, 0x3203, 0x320C, 0x320E}, {0x2F, 0x30, 0x32}},
    {0x0128, "CDCI descriptor", {0x3001, 0x3004, 0x3202, 0x3203, 0x320C, 0x320E}, {0x2F, 0x30, 0x32, 0x33}},
    {0x0129, "RGBA descriptor", {0x3001, 0x3004, 0x3202, 0x3203, 0x320C, 0x320E}, {0x2F, 0x30, 0x32, 0x34}},
    {0x0151, "MPEG descriptor", {0x3001, 0x3004, 0x3202, 0x3203, 0x320C, 0x320E}, {0x2F, 0x30, 0x32, 0x33}},
    {0x0142, "sound descriptor", {0x3001, 0x3004, 0x3D01, 0x3D03, 0x3D07}, {0x2F, 0x30, 0x3D}},
    {0x0147, "AES3 descriptor", {0x3001, 0x3004, 0x3D01, 0x3D03, 0x3D07}, {0x2F, 0x30, 0x3D}},
    {0x0148, "wave descriptor", {0x3001, 0x3004, 0x3D01, 0x3D03, 0x3D07}, {0x2F, 0x30, 0x3D}},
    {0x0143, "data descriptor", {0x3001, 0x3004}, {0x2F, 0x30, 0x3E}},
    {0x015C, "ancillary data descriptor", {0x3001, 0x3004}, {0x2F, 0x30, 0x3E}},
};

// Properties of ST 377-1 that have fixed tags and that the library does not answer for; size 0: any.
constexpr struct {
  unsigned short tag;
  unsigned int size;
} kOtherTags[] = {{0x2F01, 0},  {0x3005, 16}, {0x320F, 1},  {0x3218, 1},  {0x3309, 4},  {0x330A, 16},
                  {0x3B04, 16}, {0x3B07, 4},  {0x3B08, 16}, {0x3C03, 10}, {0x3C07, 10}, {0x3C08, 0},
                  {0x4402, 0},  {0x4406, 0},  {0x4802, 0},  {0x4B03, 8}};

// Width and height, rate and alignment: one without the other says nothing.
constexpr unsigned short kPairs[][2] = {{0x3202, 0x3203}, {0x3204, 0x3205}, {0x3206, 0x3207}, {0x3208, 0x3209},
                                        {0x320A, 0x320B}, {0x3406, 0x3407}, {0x3D09, 0x3D0A}, {0x3304, 0x3305},
                                        {0x3D10, 0x3D11}, {0x3301, 0x3302}, {0x3302, 0x3308}, {0x1101, 0x1102}};

// Which set refers to which. A set or target of 0 is any descriptor.
struct ReferenceRow {
  unsigned int kind;
  unsigned short tag;
  unsigned int targets[4];
  bool isBatch;
};
constexpr ReferenceRow kReferences[] = {
    {kPreface, 0x3B03, {kContentStorage}, false},
    {kPreface, 0x3B06, {kIdentification}, true},
    {kContentStorage, 0x1901, {kMaterialPackage, kSourcePackage}, true},
    {kContentStorage, 0x1902, {kEssenceContainerData}, true},
    {kMaterialPackage, 0x4403, {kTrack, 0x0139, 0x013A}, true},  // timeline, event and static tracks
    {kSourcePackage, 0x4403, {kTrack, 0x0139, 0x013A}, true},
    {kSourcePackage, 0x4701, {kAnyDescriptor}, false},
    {kTrack, 0x4803, {kSequence}, false},
    {kSequence, 0x1001, {kSourceClip, kTimecodeComponent, 0x0141, 0x0109}, true},  // and descriptive segments, fillers
    {kMultipleDescriptor, 0x3F01, {kAnyDescriptor}, true},
};

// The property of a descriptor that lists its sub-descriptors; its tag is a dynamic one.
constexpr unsigned char kSubDescriptors[] = {0x06, 0x01, 0x01, 0x04, 0x06, 0x10, 0x00, 0x00};
// The MPEG video properties (ST 381), which stand in picture descriptors.
constexpr unsigned char kVideoProperties[] = {0x04, 0x01, 0x06, 0x02, 0x01};
constexpr unsigned char kPictureGroup = 0x32;

const SetRow* RowOf(unsigned int kind) {
  const SetRow* const row =
      std::find_if(std::begin(kSets), std::end(kSets), [kind](const SetRow& each) { return each.kind == kind; });
  return row == std::end(kSets) ? nullptr : row;
}

template <class List, class Value>
bool Contains(const List& list, const Value& value) {
  return std::find(std::begin(list), std::end(list), value) != std::end(list);
}

bool Belongs(const SetRow& row, unsigned int tag) {
  const unsigned int group = tag >> 8;
  constexpr unsigned int kWaveDescriptor = 0x0148;
  const bool isOfAES3 = tag >= 0x3D0D && tag <= 0x3D13;  // which is a wave descriptor and more (ST 382)
  if (isOfAES3 && row.kind == kWaveDescriptor) return false;
  return tag == 0x3C0A || group == 0x01 || tag >= kFirstDynamicTag || Contains(row.groups, group);
}

bool isOtherTag(const MetadataSet& set, unsigned short tag) {
  for (const auto& other : kOtherTags) {
    if (other.tag == tag) return other.size == 0 || set.set->LengthForTag(tag) == other.size;
  }
  return false;
}

class GraphCheck {
 public:
  GraphCheck(VerifyFile& file, const MetadataGraph& graph) : m_file(file), m_graph(graph) {}

  void Run() {
    if (m_graph.preface == nullptr)
      m_file.findings.Add(FindingKind::HeaderMissing, m_graph.pack->Offset(), "no preface");
    for (const MetadataSet& each : m_graph.sets) {
      CheckTags(each);
      CheckProperties(each);
      CheckReferences(each);
    }
    CheckUnreferenced();
  }

 private:
  void Add(FindingKind kind, const MetadataSet& set, const std::string& detail) {
    m_file.findings.Add(kind, set.offset, std::string(SetName(set.kind)) + ": " + detail);
  }

  void CheckTags(const MetadataSet& each) {
    const SetRow* const row = RowOf(each.kind);
    for (const unsigned short tag : each.tags) {
      const bool isNamed = m_graph.primer.count(tag) != 0;
      const bool isStatic = STMetadataSets::NameForTag(tag) != nullptr || isOtherTag(each, tag);
      const bool isKnown = isNamed || (isStatic && tag < kFirstDynamicTag);
      const bool isPictures = row != nullptr && Contains(row->groups, kPictureGroup);
      const bool isMisplaced = isLabelled(tag, kVideoProperties) && !isPictures;
      if (!isKnown || isMisplaced || (row != nullptr && !Belongs(*row, tag))) Add(FindingKind::Tag, each, TagText(tag));
      // The library knows these by heart: a value of another size has no answer.
      const bool isAnswered = tag < kFirstDynamicTag && STMetadataSets::NameForTag(tag) != nullptr;
      if (isAnswered && !each.set->ValueForTag(tag)) {
        Add(FindingKind::SetProperty, each, TagText(tag) + " has a value of another size");
      }
    }
  }

  void CheckProperties(const MetadataSet& each) {
    for (const auto& pair : kPairs) {
      if (Contains(each.tags, pair[0]) != Contains(each.tags, pair[1])) {
        Add(FindingKind::SetProperty, each, TagText(pair[0]) + " and " + TagText(pair[1]) + " go together");
      }
    }
    CheckContainer(each);
    const SetRow* const row = RowOf(each.kind);
    if (row == nullptr) return;
    for (const unsigned short tag : row->required) {
      if (tag != 0 && !Contains(each.tags, tag)) Add(FindingKind::SetProperty, each, TagText(tag) + " is missing");
    }
  }

  // Lines and packets of the vertical interval have a descriptor each (ST 436).
  void CheckContainer(const MetadataSet& each) {
    constexpr unsigned char kInterval[] = {0x0D, 0x01, 0x03, 0x01, 0x02};
    constexpr unsigned int kLines = 0x0D, kPackets = 0x0E;
    const OxSharedPtr<MxfUUID> label = isDescriptor(each.kind) ? each.set->UUIDForTag(0x3004) : OxSharedPtr<MxfUUID>();
    for (unsigned int i = 0; label && i < std::size(kInterval); ++i) {
      if (label->ValueAtIndex(8 + i) != kInterval[i]) return;
    }
    const unsigned int mapping = label ? label->ValueAtIndex(13) : 0;
    const bool isFitting = mapping == kLines ? each.kind == 0x015B : mapping != kPackets || each.kind == 0x015C;
    if (!isFitting) Add(FindingKind::SetProperty, each, TagText(0x3004) + " is that of another descriptor");
  }

  void CheckReferences(const MetadataSet& each) {
    for (const unsigned short tag : each.tags) {
      for (const MxfUUID& uid : each.References(tag)) {
        if (!each.uid || uid != *each.uid) m_referenced.insert(uid);
      }
      if (isDescriptor(each.kind) && isLabelled(tag, kSubDescriptors)) CheckReference(each, tag, true, {});
    }
    for (const ReferenceRow& row : kReferences) {
      if (row.kind == each.kind && Contains(each.tags, row.tag))
        CheckReference(each, row.tag, row.isBatch, row.targets);
    }
  }

  // Whether the primer's label of a tag has these bytes behind the first eight.
  template <class Bytes>
  bool isLabelled(unsigned short tag, const Bytes& bytes) const {
    const auto found = m_graph.primer.find(tag);
    bool isEqual = tag >= kFirstDynamicTag && found != m_graph.primer.end();
    for (unsigned int i = 0; isEqual && i < std::size(bytes); ++i) {
      isEqual = found->second.ValueAtIndex(8 + i) == bytes[i];
    }
    return isEqual;
  }

  void CheckReference(const MetadataSet& each, unsigned short tag, bool isBatch, const unsigned int* targets) {
    bool isWhole = false;
    const std::vector<MxfUUID> uids = each.References(tag, &isWhole);
    if (!isWhole || isBatch == (each.set->LengthForTag(tag) == MxfUUID::kSize)) {
      Add(FindingKind::SetProperty, each, TagText(tag) + " is no list of references");
    }
    for (const MxfUUID& uid : uids) {
      const MetadataSet* const target = m_graph.Find(uid);
      if (target == nullptr || !isTarget(*target, targets)) {
        Add(FindingKind::Reference, each, TagText(tag) + " to " + MxfUUID(uid).Description()->UTF8String());
      }
    }
  }

  static bool isTarget(const MetadataSet& target, const unsigned int* targets) {
    if (targets == nullptr) return target.kind != kNoStructuralSet;
    if (targets[0] == kAnyDescriptor) return isDescriptor(target.kind);
    return target.kind != kNoStructuralSet && std::find(targets, targets + 4, target.kind) != targets + 4;
  }

  void CheckUnreferenced() {
    for (const MetadataSet& each : m_graph.sets) {
      const bool isRoot = each.kind == kPreface || each.kind == kNoStructuralSet;
      if (!isRoot && each.uid && m_referenced.count(*each.uid) == 0)
        Add(FindingKind::SetUnreferenced, each, "not used");
    }
  }

  VerifyFile& m_file;
  const MetadataGraph& m_graph;
  std::set<MxfUUID> m_referenced;
};

}  // namespace

const char* SetName(unsigned int kind) {
  const SetRow* const row = RowOf(kind);
  return row == nullptr ? "metadata set" : row->name;
}

// The descriptors of ST 377-1, ST 381, ST 382 and ST 436.
bool isDescriptor(unsigned int kind) {
  return (kind >= 0x0124 && kind <= 0x0129) || (kind >= 0x0142 && kind <= 0x0144) || kind == 0x0147 || kind == 0x0148 ||
         kind == 0x0151 || (kind >= 0x015B && kind <= 0x0163);
}

void CheckGraph(VerifyFile& file, const MetadataGraph& graph) { GraphCheck(file, graph).Run(); }
