#include "metadata/STTrack.h"

#include <new>
#include <utility>

namespace {

constexpr _LocalTag kTrackIDTag = 0x4801;
constexpr _LocalTag kTrackNumberTag = 0x4804;
constexpr _LocalTag kEditRateTag = 0x4B01;
constexpr _LocalTag kOriginTag = 0x4B02;
constexpr _LocalTag kDataDefinitionTag = 0x0201;
constexpr _LocalTag kDurationTag = 0x0202;

}  // namespace

STTrack::STTrack() : m_components(new (std::nothrow) OxMutableArray), m_descriptors(new (std::nothrow) OxMutableArray) {
  if (!m_components || !m_descriptors) throw static_cast<const char*>("STTrack Init Error");
}

STTrack::~STTrack() = default;

void STTrack::SetPrimerPack(OxSharedPtr<PrimerPack> primer) { m_primer = std::move(primer); }

unsigned int STTrack::SetTrack(OxSharedPtr<STMetadataSets> track) {
  if (!track) return kStatusNoInput;
  try {
    const bool isSet = GetValue(track->ValueForTag(kTrackIDTag), m_trackID) &&
                       GetValue(track->ValueForTag(kTrackNumberTag), m_trackNumber) &&
                       GetValue(track->ValueForTag(kEditRateTag), m_editRate) &&
                       GetValue(track->ValueForTag(kOriginTag), m_origin);
    return isSet ? kStatusOK : kStatusUnreadable;
  } catch (...) {
    return kStatusUnreadable;
  }
}

unsigned int STTrack::SetSequence(OxSharedPtr<STMetadataSets> sequence) {
  if (!sequence) return kStatusNoInput;
  try {
    m_dataDefinition = sequence->ValueForTag(kDataDefinitionTag);
    const bool isSet = m_dataDefinition && GetValue(sequence->ValueForTag(kDurationTag), m_duration);
    return isSet ? kStatusOK : kStatusUnreadable;
  } catch (...) {
    return kStatusUnreadable;
  }
}

void STTrack::AddComponentAndDescriptor(OxSharedPtr<STMetadataSets> component, OxSharedPtr<STMetadataSets> descriptor) {
  m_components->AddObject(component);
  m_descriptors->AddObject(descriptor);
}

void STTrack::ClearComponentAndDescriptor() {
  m_components->RemoveAllObjects();
  m_descriptors->RemoveAllObjects();
}

// Asks the component first, then the descriptor. An empty array or text is an answer; only an empty pointer is none.
template <class Ask>
OxSharedPtr<OxObject> STTrack::AskPair(unsigned int index, Ask ask) const {
  for (const auto& list : {m_components, m_descriptors}) {
    const OxSharedPtr<STMetadataSets> set = list->ObjectAtIndex(index);
    if (!set) continue;
    OxSharedPtr<OxObject> value = ask(*set);
    if (value) return value;
  }
  return {};
}

OxSharedPtr<OxObject> STTrack::ValueForTag(_LocalTag tag, unsigned int index) const {
  return AskPair(index, [tag](STMetadataSets& set) { return set.ValueForTag(tag); });
}

OxSharedPtr<OxObject> STTrack::ValueForUUID(OxSharedPtr<MxfUUID> label, unsigned int index) const {
  if (!m_primer) return {};
  return AskPair(index, [&](STMetadataSets& set) { return set.ValueForUUID(label, m_primer); });
}
