#include "clipinfo/ElementKind.h"

#include <algorithm>
#include <map>

#include "foundation/UUIDDefine.h"

namespace {

constexpr unsigned int kMostElements = 100;  // of a content package: keys number those of a kind with seven bits
constexpr unsigned int kMostTracks = 1000;
constexpr int kMostChannels = 64;
constexpr int kHighestRate = 768000;

constexpr unsigned int kItemTypeByte = 12;
constexpr unsigned int kElementTypeByte = 14;

struct KindRow {
  unsigned char itemType;
  unsigned char elementType;  // 0: any other
  ElementKind kind;
};
constexpr KindRow kKinds[] = {
    {0x15, 0x05, {"picture", ".m2v", false}},                                         // MPEG video, frame wrapped
    {0x15, 0x00, {"picture", ".bin", false}}, {0x16, 0x01, {"sound", ".pcm", true}},  // wave, frame wrapped
    {0x16, 0x02, {"sound", ".pcm", true}},                                            // wave, clip wrapped
    {0x16, 0x03, {"sound", ".pcm", true}},                                            // AES3, frame wrapped
    {0x16, 0x04, {"sound", ".pcm", true}},                                            // AES3, clip wrapped
    {0x16, 0x00, {"sound", ".bin", false}},   {0x17, 0x02, {"data", ".anc", false}},  // ancillary data
    {0x17, 0x00, {"data", ".bin", false}},
};

// The number by which tracks know their elements: the last four bytes of the key.
unsigned int TrackNumberOf(const MxfUUID& key) {
  unsigned int number = 0;
  for (unsigned int i = kItemTypeByte; i < kItemTypeByte + 4; ++i) number = number << 8 | key.ValueAtIndex(i);
  return number;
}

OxSharedPtr<STTrack> SoundTrackOf(const HeaderMetadata& header, const ElementPlace& place) {
  OxSharedPtr<STTrack> byPlace;
  unsigned int sounds = 0;
  const unsigned int count = std::min(header.TrackCount(0), kMostTracks);
  for (unsigned int i = 0; i < count; ++i) {
    OxSharedPtr<STTrack> track = header.TrackForIndex(i, 0);
    const OxSharedPtr<MxfUUID> definition = track ? track->DataDefinition() : OxSharedPtr<MxfUUID>();
    if (!definition || !(*definition == *FBC_UL_SoundEssenceTrack)) continue;
    if (track->TrackNumber() == TrackNumberOf(place.key)) return track;
    if (++sounds == place.number) byPlace = track;
  }
  return byPlace;
}

// A whole positive number of at most `most`; 0 when the descriptor has none.
int PositiveOf(const STTrack& track, _LocalTag tag, int most) {
  unsigned int value = 0;
  if (!GetValue(track.ValueForTag(tag, 0), value) || value > static_cast<unsigned int>(most)) return 0;
  return static_cast<int>(value);
}

int WholeRateOf(const STTrack& track) {
  _Rational rate{};
  if (!GetValue(track.ValueForTag(0x3D03, 0), rate) || rate.denominator <= 0) return 0;
  const bool isWhole = rate.numerator > 0 && rate.numerator % rate.denominator == 0;
  const int whole = isWhole ? rate.numerator / rate.denominator : 0;
  return whole <= kHighestRate ? whole : 0;
}

}  // namespace

ElementKind KindOf(const Element& element) {
  if (element.type == kKeySystemMetadataPack) return {"system", ".bin", false};
  const unsigned char itemType = element.key.ValueAtIndex(kItemTypeByte);
  const unsigned char elementType = element.key.ValueAtIndex(kElementTypeByte);
  for (const KindRow& row : kKinds) {
    if (row.itemType == itemType && (row.elementType == elementType || row.elementType == 0)) return row.kind;
  }
  return {"other", ".bin", false};
}

std::vector<ElementPlace> ElementsAt(Clip& clip, unsigned int editUnit) {
  std::vector<ElementPlace> places;
  std::map<std::string, unsigned int> counts;
  const std::string where = "edit unit " + std::to_string(editUnit) + ": ";
  for (unsigned long long offset = 0;
       clip.Stream().GetEssenceOffset(editUnit, static_cast<unsigned int>(places.size()), offset) == kStatusOK;) {
    if (places.size() == kMostElements) throw CommandError(where + "more elements than a content package has");
    const Element element = clip.ElementAt(offset);
    const ElementKind kind = KindOf(element);
    places.push_back({static_cast<unsigned int>(places.size()), ++counts[kind.name], kind, element.key, element.size});
  }
  if (places.empty()) throw CommandError(where + clip.NoIndexText());
  return places;
}

std::string FileNameOf(const ElementPlace& place, bool isWave) {
  const std::string name = place.kind.name;
  return (name == "system" ? name : name + '-' + std::to_string(place.number)) +
         (isWave ? ".wav" : place.kind.extension);
}

SoundFormat SoundFormatOf(Clip& clip, const ElementPlace& place) {
  const std::string what = "element " + std::to_string(place.index) + ": ";
  if (!place.kind.isPCM) throw CommandError(what + "is no PCM sound; leave --wav out to write its bytes");
  const OxSharedPtr<STTrack> track = SoundTrackOf(*clip.Stream().GetHeaderMetadata(), place);
  if (!track) throw CommandError(what + "no sound track of the header belongs to it");
  SoundFormat format;
  format.bits = PositiveOf(*track, 0x3D01, 24);
  format.channels = PositiveOf(*track, 0x3D07, kMostChannels);
  format.samplesPerSecond = WholeRateOf(*track);
  if (format.bits != 16 && format.bits != 24) throw CommandError(what + "the descriptor tells neither 16 nor 24 bits");
  if (format.channels == 0) throw CommandError(what + "the descriptor does not tell the number of channels");
  if (format.samplesPerSecond == 0) throw CommandError(what + "the descriptor does not tell the sampling rate");
  return format;
}
