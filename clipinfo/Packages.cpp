#include <algorithm>
#include <set>
#include <string>

#include "clipinfo/InfoDocument.h"
#include "foundation/UUIDDefine.h"

namespace {

// A header of a few megabytes can name the same tracks and components millions of times. No camera writes as many.
constexpr unsigned int kMostTracks = 1000;
constexpr unsigned int kMostComponents = 100;

constexpr _LocalTag kSourcePackageTag = 0x1101;
constexpr _LocalTag kComponentDurationTag = 0x0202;
constexpr _LocalTag kStartTimecodeTag = 0x1501;
constexpr _LocalTag kTimecodeBaseTag = 0x1502;
constexpr _LocalTag kDropFrameTag = 0x1503;
constexpr _LocalTag kContentStorageTag = 0x3B03;
constexpr _LocalTag kPackagesTag = 0x1901;
constexpr _LocalTag kPackageUIDTag = 0x4401;
constexpr _LocalTag kTracksTag = 0x4403;
constexpr _LocalTag kSampleRateTag = 0x3001;
constexpr _LocalTag kContainerTag = 0x3004;
constexpr _LocalTag kFrameLayoutTag = 0x320C;

// Whatever answers for the tags of a set, component or descriptor.
using Ask = std::function<OxSharedPtr<OxObject>(_LocalTag)>;

struct Item {
  const char* name;
  _LocalTag tag;
};
constexpr Item kPackageItems[] = {{"umid", kPackageUIDTag}, {"created", 0x4405}, {"modified", 0x4404}};
constexpr Item kSourceClipItems[] = {{"source_package", kSourcePackageTag},
                                     {"source_track", 0x1102},
                                     {"start_position", 0x1201},
                                     {"duration", kComponentDurationTag}};
constexpr Item kPictureItems[] = {
    {"sample_rate", kSampleRateTag}, {"aspect_ratio", 0x320E},  {"coding", 0x3201}, {"transfer", 0x3210},
    {"primaries", 0x3219},           {"component_bits", 0x3301}};
constexpr Item kSoundItems[] = {{"sampling_rate", 0x3D03}, {"bits", 0x3D01}, {"channels", 0x3D07}};

// Widths and heights that go together.
struct SizeItem {
  const char* name;
  _LocalTag width;
  _LocalTag height;
};
constexpr SizeItem kSizes[] = {{"stored", 0x3203, 0x3202}, {"sampled", 0x3205, 0x3204}, {"display", 0x3209, 0x3208}};

template <class Items>
void AddItems(Json& json, const Items& items, const Ask& ask) {
  for (const Item& item : items) json[item.name] = ValueJson(ask(item.tag));
}

// --- Descriptors ---

Json LayoutJson(const Ask& ask) {
  constexpr const char* kLayouts[] = {"full frame", "separate fields", "single field", "mixed fields",
                                      "segmented frame"};
  unsigned char layout = 0;
  if (!GetValue(ask(kFrameLayoutTag), layout)) return nullptr;
  return {{"value", layout}, {"name", layout < std::size(kLayouts) ? Json(kLayouts[layout]) : Json()}};
}

Json SizeJson(const Ask& ask, const SizeItem& item) {
  unsigned int width = 0;
  unsigned int height = 0;
  if (!GetValue(ask(item.width), width) || !GetValue(ask(item.height), height)) return nullptr;
  return {{"width", width}, {"height", height}};
}

void AddPicture(Json& descriptor, const Ask& ask) {
  for (const SizeItem& item : kSizes) descriptor[item.name] = SizeJson(ask, item);
  descriptor["frame_layout"] = LayoutJson(ask);
  AddItems(descriptor, kPictureItems, ask);
}

// --- Tracks ---

enum class Kind { Timecode, Picture, Sound, Data };

struct KindRow {
  Kind kind;
  const char* name;
  MxfUUID definition;
};

// The kind of a track by its data definition; null for one that is not known.
const KindRow* KindOf(const STTrack& track) {
  static const KindRow kKinds[] = {
      {Kind::Timecode, "timecode", *FBC_UL_12MTimecodeTrack},
      {Kind::Picture, "picture", *FBC_UL_PictureEssenceTrack},
      {Kind::Sound, "sound", *FBC_UL_SoundEssenceTrack},
      {Kind::Data, "data", {0x060E2B34, 0x04010101, 0x01030202, 0x03000000}}};  // RP 224; not in the catalogue
  const OxSharedPtr<MxfUUID> definition = track.DataDefinition();
  for (const KindRow& row : kKinds) {
    if (definition && *definition == row.definition) return &row;
  }
  return nullptr;
}

Json DescriptorJson(Kind kind, const Ask& ask) {
  if (!ask(kContainerTag) && !ask(kSampleRateTag)) return nullptr;
  Json descriptor = {{"container", ValueJson(ask(kContainerTag))}};
  if (kind == Kind::Picture) AddPicture(descriptor, ask);
  if (kind == Kind::Sound) AddItems(descriptor, kSoundItems, ask);
  return descriptor;
}

// False when the component is not a timecode.
bool ReadTimebase(const Ask& ask, Timebase& timebase) {
  unsigned short base = 0;
  unsigned char isDropFrame = 0;
  if (!GetValue(ask(kTimecodeBaseTag), base)) return false;
  timebase = {base, GetValue(ask(kDropFrameTag), isDropFrame) && isDropFrame != 0};
  return true;
}

Json StartJson(const Ask& ask) {
  long long start = 0;
  if (!GetValue(ask(kStartTimecodeTag), start)) return nullptr;
  Timebase timebase;
  static_cast<void>(ReadTimebase(ask, timebase));  // without a base the timecode is a plain number
  return TimecodeJson(start, timebase);
}

Json ComponentJson(const Ask& ask) {
  if (ask(kStartTimecodeTag) || ask(kTimecodeBaseTag)) {
    return {{"kind", "timecode"}, {"start", StartJson(ask)}, {"duration", ValueJson(ask(kComponentDurationTag))}};
  }
  if (!ask(kSourcePackageTag)) return {{"kind", nullptr}};
  Json component = {{"kind", "source clip"}};
  AddItems(component, kSourceClipItems, ask);
  return component;
}

Ask AskComponent(const STTrack& track, unsigned int index) {
  return [&track, index](_LocalTag tag) { return track.ValueForTag(tag, index); };
}

// The tracks of a material package have the descriptor of what their source clip points at, those of a source package
// the one that the package links to them.
void AddComponents(Json& json, const STTrack& track, Kind kind, const OxSharedPtr<STMetadataSets>& ownDescriptor) {
  Json components = Json::array();
  const unsigned int shown = std::min(track.ComponentCount(), kMostComponents);
  for (unsigned int i = 0; i < shown; ++i) {
    const Ask ask = AskComponent(track, i);
    Json component = ComponentJson(ask);
    if (kind != Kind::Timecode && !ownDescriptor) component["descriptor"] = DescriptorJson(kind, ask);
    components.push_back(std::move(component));
  }
  json["components"] = std::move(components);
  json["components_left_out"] = track.ComponentCount() - shown;
  if (kind == Kind::Timecode || !ownDescriptor) return;
  json["descriptor"] = DescriptorJson(kind, [&](_LocalTag tag) { return ownDescriptor->ValueForTag(tag); });
}

Json TrackJson(const STTrack& track, const OxSharedPtr<STMetadataSets>& ownDescriptor) {
  const KindRow* const row = KindOf(track);
  const Json kind = row != nullptr ? Json(row->name) : Json();
  Json json = {{"id", track.TrackID()},
               {"kind", kind},
               {"data_definition", LabelJson(track.DataDefinition())},
               {"number", track.TrackNumber()},
               {"edit_rate", RationalJson(track.EditRate())},
               {"origin", NumberJson(track.Origin())},
               {"duration", NumberJson(track.Duration())}};
  AddComponents(json, track, row != nullptr ? row->kind : Kind::Data, ownDescriptor);
  return json;
}

// --- Packages ---

void AddTracks(Json& json, const HeaderMetadata& header, STMetadataSets& package, unsigned int& left) {
  const OxSharedPtr<OxArray> references = package.ValueForTag(kTracksTag);
  const unsigned long count = references ? references->Count() : 0;
  const unsigned long shown = std::min<unsigned long>(count, left);
  left -= static_cast<unsigned int>(shown);
  Json tracks = Json::array();
  for (unsigned long i = 0; i < shown; ++i) {
    const OxSharedPtr<STTrack> track = header.CreateTrack(references->ObjectAtIndex(i));
    OxSharedPtr<STMetadataSets> descriptor;
    if (track && package.PacketType() == kKeySourcePackage) {
      descriptor = header.GetDescriptor(package.ValueForTag(kPackageUIDTag), track->TrackID());
    }
    tracks.push_back(track ? TrackJson(*track, descriptor) : Json());
  }
  json["tracks"] = std::move(tracks);
  json["tracks_left_out"] = count - shown;
}

Json PackageJson(const HeaderMetadata& header, STMetadataSets& package, unsigned int& tracksLeft) {
  Json json = {{"kind", package.PacketType() == kKeyMaterialPackage ? "material" : "source"}};
  AddItems(json, kPackageItems, [&package](_LocalTag tag) { return package.ValueForTag(tag); });
  AddTracks(json, header, package, tracksLeft);
  return json;
}

}  // namespace

Json PackagesJson(const HeaderMetadata& header) {
  const OxSharedPtr<STMetadataSets> storage = header.MetadataForKey(header.PrefaceInfoForTag(kContentStorageTag));
  const OxSharedPtr<OxArray> packages = storage ? storage->ValueForTag(kPackagesTag) : OxSharedPtr<OxObject>();
  Json json = Json::array();
  std::set<STMetadataSets*> told;
  bool isUnreadableTold = false;
  unsigned int tracksLeft = kMostTracks;
  for (unsigned long i = 0; packages && i < packages->Count(); ++i) {
    const OxSharedPtr<STMetadataSets> package = header.MetadataForKey(packages->ObjectAtIndex(i));
    if (package && told.insert(package.get()).second) {
      json.push_back(PackageJson(header, *package, tracksLeft));
    } else if (!package && !isUnreadableTold) {
      json.push_back(nullptr);
      isUnreadableTold = true;
    }
  }
  return json;
}

Timebase ClipTimebase(const HeaderMetadata& header) {
  Timebase timebase;
  const unsigned int tracks = std::min(header.TrackCount(0), kMostTracks);
  for (unsigned int i = 0; i < tracks; ++i) {
    const OxSharedPtr<STTrack> track = header.TrackForIndex(i, 0);
    if (track && ReadTimebase(AskComponent(*track, 0), timebase)) return timebase;
  }
  const OxSharedPtr<STTrack> first = header.TrackForIndex(0, 0);
  return first ? TimebaseOf(first->EditRate()) : timebase;
}
