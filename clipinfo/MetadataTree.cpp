#include "clipinfo/MetadataTree.h"

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <vector>

#include "clipinfo/PropertyTable.h"
#include "foundation/OxAutoLock.h"

namespace {

// Cameras write some ten levels and a few hundred references.
constexpr unsigned int kMostDepth = 40;
constexpr unsigned int kMostReferences = 20000;
constexpr unsigned int kMostPackets = 1000;  // before the primer pack, which comes first

constexpr _LocalTag kInstanceUIDTag = 0x3C0A;
constexpr _LocalTag kFirstDynamicTag = 0x8000;

OxSharedPtr<PrimerPack> FindPrimer(Clip& clip) {
  const OxSharedPtr<PartitionPack> partition = clip.Stream().GetHeaderPartitionPack();
  ParseMetaData& reader = clip.Reader();
  bool isPlaced = reader.SetOffset(static_cast<long long>(partition->HeaderOffset()), kOxStreamSeekFromStart);
  for (unsigned int i = 0; isPlaced && i < kMostPackets; ++i) {
    KLVPacket packet;
    if (reader.ReadKeyAndLength(&packet) != PacketHead::Read) return {};
    const bool isPrimer = packet.PacketType() == kKeyPrimerPack;
    const unsigned long long next = isPrimer ? packet.Offset() : packet.NextOffset();
    isPlaced = reader.SetOffset(static_cast<long long>(next), kOxStreamSeekFromStart);
    if (!isPrimer) continue;
    OxSharedPtr<PrimerPack> primer(new PrimerPack);
    return isPlaced && reader.ParsePacket(primer.get()) ? primer : OxSharedPtr<PrimerPack>();
  }
  return {};
}

// The tags of a set in the order of the file. Every stored set has an instance identifier, which leads to its reader.
std::vector<_LocalTag> TagsOf(STMetadataSets& set) {
  const OxAutoLock guard(&set);
  const OxSharedPtr<ParseMetaData> reader = set.GetParserForTag(kInstanceUIDTag);
  std::vector<_LocalTag> tags;
  _LocalTag tag = 0;
  unsigned int length = 0;
  bool isPlaced = reader && reader->SetOffset(0, kOxStreamSeekFromStart);
  while (isPlaced && reader->RestLength() > 0 && set.ReadTag(&tag) && set.ReadLength(&length)) {
    tags.push_back(tag);
    isPlaced = reader->SetOffset(length, kOxStreamSeekFromCurrent);
  }
  return tags;
}

std::string TagText(_LocalTag tag) {
  std::ostringstream text;
  text << std::uppercase << std::hex << std::setw(4) << std::setfill('0') << tag;
  return text.str();
}

}  // namespace

MetadataTree::MetadataTree(Clip& clip)
    : m_header(clip.Stream().GetHeaderMetadata()), m_primer(FindPrimer(clip)), m_referencesLeft(kMostReferences) {}

Json MetadataTree::Preface() {
  const OxSharedPtr<MxfUUID> uid = m_header->PrefaceInfoForTag(kInstanceUIDTag);
  Json preface = ReferenceJson(uid, 0);
  if (!preface.contains("items")) throw CommandError("no preface in the header metadata");
  return preface;
}

Json MetadataTree::SetJson(STMetadataSets& set, unsigned int depth) {
  const char* const name = StandardSetName(set.PacketType());
  Json items = Json::array();
  for (const _LocalTag tag : TagsOf(set)) items.push_back(ItemJson(set, tag, depth));
  return {{"set", name != nullptr ? Json(name) : Json()},
          {"key", set.key().Description()->UTF8String()},
          {"offset", NumberJson(set.Offset())},
          {"items", std::move(items)}};
}

Json MetadataTree::ItemJson(STMetadataSets& set, _LocalTag tag, unsigned int depth) {
  const char* const name = PropertyName(tag);
  OxSharedPtr<OxObject> value = PropertyValue(set, tag);
  Json item = {{"tag", TagText(tag)}, {"name", name != nullptr ? Json(name) : Json()}};
  if (tag >= kFirstDynamicTag && tag <= 0xFFFF && m_primer) {
    const OxSharedPtr<MxfUUID> label = m_primer->UIDAtTag(static_cast<unsigned short>(tag));
    if (label) item["label"] = LabelJson(label);
    if (!value) value = set.ValueForUUID(label, m_primer);
  }
  const bool isSet = value && isReference(tag);
  if (isSet) {
    AddSets(item, value, depth);
  } else if (value) {
    item["value"] = ValueJson(value);
  } else {
    item["bytes"] = ValueJson(set.EnumForTag(tag));
  }
  return item;
}

void MetadataTree::AddSets(Json& item, const OxSharedPtr<OxObject>& references, unsigned int depth) {
  Json sets = Json::array();
  const OxSharedPtr<OxArray> list = references;
  const unsigned long count = list ? list->Count() : 1;
  const unsigned long shown = std::min<unsigned long>(count, m_referencesLeft);
  m_referencesLeft -= static_cast<unsigned int>(shown);
  for (unsigned long i = 0; i < shown; ++i) {
    sets.push_back(ReferenceJson(list ? list->ObjectAtIndex(i) : references, depth + 1));
  }
  item["sets"] = std::move(sets);
  item["left_out"] = count - shown;
}

Json MetadataTree::ReferenceJson(const OxSharedPtr<MxfUUID>& reference, unsigned int depth) {
  const OxSharedPtr<STMetadataSets> set = m_header->MetadataForKey(reference);
  Json json = {{"instance_uid", reference ? Json(reference->Description()->UTF8String()) : Json()}};
  if (!set) {
    json["not_told"] = "missing";
  } else if (m_told.count(set.get()) != 0) {
    json["not_told"] = "told above";
  } else if (depth >= kMostDepth) {
    json["not_told"] = "too deep";
  } else {
    m_told.insert(set.get());
    json.update(SetJson(*set, depth));
  }
  return json;
}
