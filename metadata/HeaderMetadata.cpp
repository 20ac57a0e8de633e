#include "metadata/HeaderMetadata.h"

#include <new>
#include <optional>
#include <utility>
#include <vector>

namespace {

constexpr _LocalTag kStructuralComponentsTag = 0x1001;
constexpr _LocalTag kSourcePackageIDTag = 0x1101;
constexpr _LocalTag kSourceTrackIDTag = 0x1102;
constexpr _LocalTag kPackagesTag = 0x1901;
constexpr _LocalTag kEssenceContainerDataTag = 0x1902;
constexpr _LocalTag kLinkedTrackIDTag = 0x3006;
constexpr _LocalTag kContentStorageTag = 0x3B03;
constexpr _LocalTag kIdentificationsTag = 0x3B06;
constexpr _LocalTag kInstanceUIDTag = 0x3C0A;
constexpr _LocalTag kFileDescriptorsTag = 0x3F01;
constexpr _LocalTag kPackageUIDTag = 0x4401;
constexpr _LocalTag kTracksTag = 0x4403;
constexpr _LocalTag kDescriptorTag = 0x4701;
constexpr _LocalTag kSequenceTag = 0x4803;

// The value of a tag as a Wanted; empty when there is no set, no such item, or it is something else.
template <class Wanted>
OxSharedPtr<Wanted> ValueAs(const OxSharedPtr<STMetadataSets>& set, _LocalTag tag) {
  return set ? OxSharedPtr<Wanted>(set->ValueForTag(tag)) : OxSharedPtr<Wanted>();
}

OxSharedPtr<OxObject> ValueAt(const OxSharedPtr<OxMutableArray>& sets, unsigned int index, _LocalTag tag) {
  return ValueAs<OxObject>(sets->ObjectAtIndex(index), tag);
}

unsigned int CountOf(const OxSharedPtr<OxMutableArray>& sets) { return static_cast<unsigned int>(sets->Count()); }

std::optional<unsigned int> LinkedTrackID(const OxSharedPtr<STMetadataSets>& descriptor) {
  unsigned int trackID = 0;
  return GetValue(ValueAs<OxObject>(descriptor, kLinkedTrackIDTag), trackID) ? std::optional(trackID) : std::nullopt;
}

}  // namespace

// Finds the descriptors of many components in a time that grows with the components and the descriptors, not with their
// product. Lives for one question, so that the header metadata itself stays unchanged while it is read.
class HeaderMetadata::DescriptorResolver {
 public:
  explicit DescriptorResolver(const HeaderMetadata& metadata) : m_metadata(metadata) {}

  OxSharedPtr<STMetadataSets> Descriptor(const OxSharedPtr<STMetadataSets>& component) {
    const auto umid = ValueAs<UMID>(component, kSourcePackageIDTag);
    unsigned int trackID = 0;
    if (!umid || !GetValue(ValueAs<OxObject>(component, kSourceTrackIDTag), trackID)) return {};
    return Descriptor(umid, trackID);
  }

  OxSharedPtr<STMetadataSets> Descriptor(const OxSharedPtr<UMID>& umid, unsigned int trackID) {
    const OxSharedPtr<STMetadataSets> package = m_metadata.SourcePackageForUMID(umid);
    const auto descriptor = m_metadata.MetadataForKey(ValueAs<MxfUUID>(package, kDescriptorTag));
    if (!descriptor) return {};
    if (descriptor->PacketType() != kKeyMultipleDescriptor) {
      return isMatchDescriptor(descriptor, trackID) ? descriptor : OxSharedPtr<STMetadataSets>();
    }
    const ByTrack& subDescriptors = SubDescriptorsOf(descriptor);
    const auto sub = subDescriptors.find(trackID);
    return sub != subDescriptors.end() ? sub->second : OxSharedPtr<STMetadataSets>();
  }

 private:
  using ByTrack = std::map<unsigned int, OxSharedPtr<STMetadataSets>>;

  // The sub-descriptors of a multiple descriptor by the track that they are linked to; of several for one track, the
  // first. Made once for each multiple descriptor, however many packages share it.
  const ByTrack& SubDescriptorsOf(const OxSharedPtr<STMetadataSets>& multiple) {
    const auto [entry, isNew] = m_subDescriptors.try_emplace(multiple.get());
    if (!isNew) return entry->second;
    for (const auto& sub : m_metadata.SetsOf(ValueAs<OxArray>(multiple, kFileDescriptorsTag))) {
      if (const auto trackID = LinkedTrackID(sub)) entry->second.emplace(*trackID, sub);
    }
    return entry->second;
  }

  const HeaderMetadata& m_metadata;
  std::map<STMetadataSets*, ByTrack> m_subDescriptors;
};

HeaderMetadata::HeaderMetadata()
    : m_identifications(new (std::nothrow) OxMutableArray),
      m_materialPackages(new (std::nothrow) OxMutableArray),
      m_essenceContainerData(new (std::nothrow) OxMutableArray) {
  if (!m_identifications || !m_materialPackages || !m_essenceContainerData) {
    throw static_cast<const char*>("HeaderMetadata init error");
  }
}

HeaderMetadata::~HeaderMetadata() = default;

void HeaderMetadata::SetPrimerPack(OxSharedPtr<PrimerPack> primer) {
  if (primer) m_primer = std::move(primer);
}

unsigned int HeaderMetadata::AddMetadata(OxSharedPtr<STMetadataSets> set) {
  if (!set) return kStatusNoInput;
  const auto instanceUID = ValueAs<MxfUUID>(set, kInstanceUIDTag);
  const unsigned int type = set->PacketType();
  if (!instanceUID || !isStructuralSet(type)) return kStatusUnreadable;
  m_sets.emplace(*instanceUID, set);
  if (type == kKeyPreface) m_preface = set;
  return kStatusUnreadable;
}

OxSharedPtr<STMetadataSets> HeaderMetadata::MetadataForKey(OxSharedPtr<MxfUUID> key) const {
  const auto set = key ? m_sets.find(*key) : m_sets.end();
  return set != m_sets.end() ? OxSharedPtr<STMetadataSets>(set->second) : OxSharedPtr<STMetadataSets>();
}

std::vector<OxSharedPtr<STMetadataSets>> HeaderMetadata::SetsOf(const OxSharedPtr<OxArray>& references) const {
  std::vector<OxSharedPtr<STMetadataSets>> sets;
  const unsigned long count = references ? references->Count() : 0;
  for (unsigned long i = 0; i < count; ++i) {
    OxSharedPtr<STMetadataSets> set = MetadataForKey(references->ObjectAtIndex(i));
    if (set) sets.push_back(std::move(set));
  }
  return sets;
}

unsigned int HeaderMetadata::Analyze() {
  const unsigned int status = SetIdentification();
  return status != kStatusOK ? status : SetContentStorage();
}

unsigned int HeaderMetadata::SetIdentification() {
  m_identifications->RemoveAllObjects();
  if (!m_preface) return kStatusOK;
  const auto references = ValueAs<OxArray>(m_preface, kIdentificationsTag);
  if (!references) return kStatusUnreadable;
  for (const auto& set : SetsOf(references)) m_identifications->AddObject(set);
  return kStatusOK;
}

unsigned int HeaderMetadata::SetContentStorage() {
  m_materialPackages->RemoveAllObjects();
  m_sourcePackages.clear();
  m_essenceContainerData->RemoveAllObjects();
  if (!m_preface) return kStatusOK;
  const auto reference = ValueAs<MxfUUID>(m_preface, kContentStorageTag);
  if (!reference) return kStatusUnreadable;
  const OxSharedPtr<STMetadataSets> storage = MetadataForKey(reference);
  for (const auto& package : SetsOf(ValueAs<OxArray>(storage, kPackagesTag))) {
    const unsigned int type = package->PacketType();
    if (type == kKeyMaterialPackage) m_materialPackages->AddObject(package);
    if (type == kKeySourcePackage) AddSourcePackage(package);
  }
  for (const auto& data : SetsOf(ValueAs<OxArray>(storage, kEssenceContainerDataTag))) {
    m_essenceContainerData->AddObject(data);
  }
  return kStatusOK;
}

void HeaderMetadata::AddSourcePackage(const OxSharedPtr<STMetadataSets>& package) {
  const auto umid = ValueAs<UMID>(package, kPackageUIDTag);
  if (umid) m_sourcePackages.emplace(*umid, package);  // the first one of a UMID stays
}

OxSharedPtr<OxObject> HeaderMetadata::PrefaceInfoForTag(_LocalTag tag) const {
  return ValueAs<OxObject>(m_preface, tag);
}

OxSharedPtr<OxArray> HeaderMetadata::Identifications() const { return m_identifications; }

unsigned int HeaderMetadata::IdentificationCount() const { return CountOf(m_identifications); }

OxSharedPtr<OxObject> HeaderMetadata::IdentificationInfoForTag(_LocalTag tag, unsigned int index) const {
  return ValueAt(m_identifications, index, tag);
}

unsigned int HeaderMetadata::EssenceContainerDataCount() const { return CountOf(m_essenceContainerData); }

OxSharedPtr<OxObject> HeaderMetadata::EssenceContainerDataForTag(_LocalTag tag, unsigned int index) const {
  return ValueAt(m_essenceContainerData, index, tag);
}

unsigned int HeaderMetadata::MaterialPackageCount() const { return CountOf(m_materialPackages); }

OxSharedPtr<STMetadataSets> HeaderMetadata::MaterialPackage(unsigned int index) const {
  return m_materialPackages->ObjectAtIndex(index);
}

OxSharedPtr<UMID> HeaderMetadata::MaterialPackageUMID() const {
  return ValueAs<UMID>(MaterialPackage(0), kPackageUIDTag);
}

unsigned int HeaderMetadata::TrackCount(unsigned int package) const {
  const OxSharedPtr<STMetadataSets> set = MaterialPackage(package);
  return set ? set->UUIDCountForTag(kTracksTag) : 0;
}

OxSharedPtr<STTrack> HeaderMetadata::TrackForIndex(unsigned int track, unsigned int package) const {
  const OxSharedPtr<STMetadataSets> set = MaterialPackage(package);
  return set ? CreateTrack(set->UUIDAtIndexForTag(kTracksTag, track)) : OxSharedPtr<STTrack>();
}

OxSharedPtr<STTrack> HeaderMetadata::CreateTrack(OxSharedPtr<MxfUUID> trackUID) const {
  if (!trackUID || !m_primer) return {};
  const OxSharedPtr<STMetadataSets> trackSet = MetadataForKey(trackUID);
  const OxSharedPtr<STMetadataSets> sequence = MetadataForKey(ValueAs<MxfUUID>(trackSet, kSequenceTag));
  const auto components = ValueAs<OxArray>(sequence, kStructuralComponentsTag);
  if (!components) return {};
  OxSharedPtr<STTrack> track(new STTrack);
  track->SetPrimerPack(m_primer);
  if (track->SetTrack(trackSet) != kStatusOK || track->SetSequence(sequence) != kStatusOK) return {};
  DescriptorResolver resolver(*this);
  for (unsigned long i = 0; i < components->Count(); ++i) {
    const OxSharedPtr<STMetadataSets> component = MetadataForKey(components->ObjectAtIndex(i));
    track->AddComponentAndDescriptor(component, resolver.Descriptor(component));
  }
  return track;
}

OxSharedPtr<STMetadataSets> HeaderMetadata::SourcePackageForUMID(OxSharedPtr<UMID> umid) const {
  const auto package = umid ? m_sourcePackages.find(*umid) : m_sourcePackages.end();
  return package != m_sourcePackages.end() ? package->second : OxSharedPtr<STMetadataSets>();
}

OxSharedPtr<STMetadataSets> HeaderMetadata::GetDescriptor(OxSharedPtr<STMetadataSets> component) const {
  return DescriptorResolver(*this).Descriptor(component);
}

OxSharedPtr<STMetadataSets> HeaderMetadata::GetDescriptor(OxSharedPtr<UMID> sourcePackage, unsigned int trackID) const {
  return DescriptorResolver(*this).Descriptor(sourcePackage, trackID);
}

bool HeaderMetadata::isMatchDescriptor(OxSharedPtr<STMetadataSets> descriptor, unsigned int trackID) {
  return LinkedTrackID(descriptor) == std::optional(trackID);
}
