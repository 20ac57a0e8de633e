#include <algorithm>
#include <set>
#include <string>

#include "clipinfo/Summary.h"
#include "foundation/UUIDDefine.h"

namespace {

// A header of a few megabytes can name the same tracks and components millions of times. No camera writes as many.
constexpr unsigned int kMostTracks = 1000;
constexpr unsigned int kMostComponents = 100;

constexpr _LocalTag kStartPositionTag = 0x1201;
constexpr _LocalTag kSourcePackageTag = 0x1101;
constexpr _LocalTag kSourceTrackTag = 0x1102;
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

constexpr Item kPackageItems[] = {{kPackageUIDTag, "UMID"}, {0x4405, "created"}, {0x4404, "modified"}};
constexpr Item kPictureItems[] = {{0x320E, "aspect ratio"},    {0x3201, "coding"},
                                  {0x3210, "gamma"},           {0x3219, "primaries"},
                                  {0x3301, "component bits"},  {kSampleRateTag, "frame rate"},
                                  {kContainerTag, "container"}};
constexpr Item kSoundItems[] = {
    {0x3D03, "sampling rate"}, {0x3D01, "bits"}, {0x3D07, "channels"}, {kContainerTag, "container"}};
constexpr Item kDataItems[] = {{kContainerTag, "container"}};

// Widths and heights that go together.
struct SizeItem {
  const char* name;
  _LocalTag width;
  _LocalTag height;
};
constexpr SizeItem kSizes[] = {
    {"stored size", 0x3203, 0x3202}, {"sampled size", 0x3205, 0x3204}, {"display size", 0x3209, 0x3208}};

// --- Descriptors ---

std::string LayoutText(const Ask& ask) {
  constexpr const char* kLayouts[] = {"full frame", "separate fields", "single field", "mixed fields",
                                      "segmented frame"};
  unsigned char layout = 0;
  if (!GetValue(ask(kFrameLayoutTag), layout)) return kNotPresent;
  return layout < std::size(kLayouts) ? kLayouts[layout] : "unknown (" + std::to_string(layout) + ")";
}

// The height is that of one field where a frame is stored as two (ST 377-1, frame layouts 1 and 4).
bool isStoredAsFields(const Ask& ask) {
  unsigned char layout = 0;
  return GetValue(ask(kFrameLayoutTag), layout) && (layout == 1 || layout == 4);
}

std::string SizeText(const Ask& ask, const SizeItem& item) {
  unsigned int width = 0;
  unsigned int height = 0;
  if (!GetValue(ask(item.width), width) || !GetValue(ask(item.height), height)) return kNotPresent;
  const std::string size = std::to_string(width) + "x";
  if (!isStoredAsFields(ask)) return size + std::to_string(height);
  return size + std::to_string(2ULL * height) + " (two fields of " + std::to_string(height) + " lines)";
}

void PrintPicture(std::ostream& out, unsigned int indent, const Ask& ask) {
  for (const SizeItem& item : kSizes) PrintRow(out, indent, item.name, SizeText(ask, item));
  PrintRow(out, indent, "frame layout", LayoutText(ask));
  PrintItems(out, indent, kPictureItems, ask);
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

void PrintDescriptor(std::ostream& out, unsigned int indent, Kind kind, const Ask& ask) {
  const bool isPresent = ask(kContainerTag) || ask(kSampleRateTag);
  PrintRow(out, indent, "descriptor", isPresent ? "" : kNotPresent);
  if (!isPresent) return;
  if (kind == Kind::Picture) PrintPicture(out, indent + 1, ask);
  if (kind == Kind::Sound) PrintItems(out, indent + 1, kSoundItems, ask);
  if (kind == Kind::Data) PrintItems(out, indent + 1, kDataItems, ask);
}

// False when the component is not a timecode.
bool ReadTimebase(const Ask& ask, Timebase& timebase) {
  unsigned short base = 0;
  unsigned char isDropFrame = 0;
  if (!GetValue(ask(kTimecodeBaseTag), base)) return false;
  timebase = {base, GetValue(ask(kDropFrameTag), isDropFrame) && isDropFrame != 0};
  return true;
}

std::string TimecodeOf(const Ask& ask) {
  long long start = 0;
  Timebase timebase;
  if (!GetValue(ask(kStartTimecodeTag), start)) return kNotPresent;
  const bool isCounted = ReadTimebase(ask, timebase);
  return "start " + TimecodeText(start, timebase) + ", base " +
         (isCounted ? std::to_string(timebase.base) : kNotPresent) + (timebase.isDropFrame ? ", drop frame" : "");
}

std::string SourceClipText(const Ask& ask) {
  const std::string package = ValueText(ask(kSourcePackageTag));
  const bool isNone = package.find_first_not_of("0.") == std::string::npos;  // ST 377-1: the chain of sources ends here
  return "track " + ValueText(ask(kSourceTrackTag)) + " from " + ValueText(ask(kStartPositionTag)) + ", duration " +
         ValueText(ask(kComponentDurationTag)) + ", of package " + (isNone ? "none, this is the source" : package);
}

void PrintComponent(std::ostream& out, const Ask& ask) {
  if (ask(kStartTimecodeTag) || ask(kTimecodeBaseTag)) {
    PrintRow(out, 2, "timecode", TimecodeOf(ask) + ", duration " + ValueText(ask(kComponentDurationTag)));
  } else if (ask(kSourcePackageTag)) {
    PrintRow(out, 2, "source clip", SourceClipText(ask));
  } else {
    PrintRow(out, 2, "component", "neither timecode nor source clip");
  }
}

Ask AskComponent(const STTrack& track, unsigned int index) {
  return [&track, index](_LocalTag tag) { return track.ValueForTag(tag, index); };
}

std::string TrackText(const STTrack& track) {
  // Of an essence track, the last four bytes of its elements' keys (ST 379).
  const unsigned int number = track.TrackNumber();
  const unsigned char bytes[] = {static_cast<unsigned char>(number >> 24), static_cast<unsigned char>(number >> 16),
                                 static_cast<unsigned char>(number >> 8), static_cast<unsigned char>(number)};
  return ", number " + std::to_string(number) + (number != 0 ? " (" + HexText(bytes, 4) + ")" : "") + ", edit rate " +
         RationalText(track.EditRate()) + ", origin " + std::to_string(track.Origin()) + ", duration " +
         std::to_string(track.Duration());
}

// The tracks of a material package have the descriptor of what their source clip points at, those of a source package
// the one that the package links to them.
void PrintTrack(std::ostream& out, const STTrack& track, const OxSharedPtr<STMetadataSets>& ownDescriptor) {
  const KindRow* const row = KindOf(track);
  const Kind kind = row != nullptr ? row->kind : Kind::Data;
  PrintRow(out, 1, "Track " + std::to_string(track.TrackID()),
           (row != nullptr ? row->name : ValueText(track.DataDefinition())) + TrackText(track));
  const unsigned int shown = std::min(track.ComponentCount(), kMostComponents);
  for (unsigned int i = 0; i < shown; ++i) {
    const Ask ask = AskComponent(track, i);
    PrintComponent(out, ask);
    if (kind != Kind::Timecode && !ownDescriptor) PrintDescriptor(out, 2, kind, ask);
  }
  if (track.ComponentCount() > shown) {
    PrintRow(out, 2, "more components", std::to_string(track.ComponentCount() - shown));
  }
  if (kind != Kind::Timecode && ownDescriptor)
    PrintDescriptor(out, 2, kind, [&](_LocalTag tag) { return ownDescriptor->ValueForTag(tag); });
}

// --- Packages ---

void PrintTracks(std::ostream& out, const HeaderMetadata& header, STMetadataSets& package, unsigned int& left) {
  const OxSharedPtr<OxArray> tracks = package.ValueForTag(kTracksTag);
  if (!tracks) PrintRow(out, 1, "tracks", kNotPresent);
  for (unsigned long i = 0; tracks && i < tracks->Count(); ++i) {
    if (left == 0) return PrintRow(out, 1, "more tracks", std::to_string(tracks->Count() - i));
    --left;
    const OxSharedPtr<STTrack> track = header.CreateTrack(tracks->ObjectAtIndex(i));
    if (!track) {
      PrintRow(out, 1, "Track", kUnreadable);
      continue;
    }
    OxSharedPtr<STMetadataSets> descriptor;
    if (package.PacketType() == kKeySourcePackage) {
      descriptor = header.GetDescriptor(package.ValueForTag(kPackageUIDTag), track->TrackID());
    }
    PrintTrack(out, *track, descriptor);
  }
}

void PrintPackage(std::ostream& out, const HeaderMetadata& header, STMetadataSets& package, unsigned int& tracksLeft) {
  const bool isMaterial = package.PacketType() == kKeyMaterialPackage;
  PrintRow(out, 0, isMaterial ? "Material package" : "Source package", "");
  PrintItems(out, 1, kPackageItems, [&package](_LocalTag tag) { return package.ValueForTag(tag); });
  PrintTracks(out, header, package, tracksLeft);
}

}  // namespace

void PrintPackages(std::ostream& out, const HeaderMetadata& header) {
  const OxSharedPtr<STMetadataSets> storage = header.MetadataForKey(header.PrefaceInfoForTag(kContentStorageTag));
  const OxSharedPtr<OxArray> packages = storage ? storage->ValueForTag(kPackagesTag) : OxSharedPtr<OxObject>();
  std::set<STMetadataSets*> printed;
  unsigned int tracksLeft = kMostTracks;
  for (unsigned long i = 0; packages && i < packages->Count(); ++i) {
    const OxSharedPtr<STMetadataSets> package = header.MetadataForKey(packages->ObjectAtIndex(i));
    if (!package) {
      PrintRow(out, 0, "Package", kUnreadable);
    } else if (printed.insert(package.get()).second) {
      PrintPackage(out, header, *package, tracksLeft);
    }
  }
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
