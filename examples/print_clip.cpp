// print_clip CLIP: opens a clip and prints what it is: who made it, when, how long it is and what its tracks carry.
#include <cstdio>

#include "foundation/UUIDDefine.h"
#include "stream/MXFStream.h"

namespace {

// Tags of the properties that are asked for below (SMPTE ST 377-1).
constexpr _LocalTag kCompanyName = 0x3C01, kProductName = 0x3C02, kModificationDate = 0x3C06;
constexpr _LocalTag kStoredHeight = 0x3202, kStoredWidth = 0x3203;
constexpr _LocalTag kSamplingRate = 0x3D03, kQuantizationBits = 0x3D01;

// A value as text, whatever its class; a dash when the clip does not have it.
OxStringMac Text(const OxSharedPtr<OxObject>& value) { return value ? *value->Description() : OxStringMac("-", 0); }

void PrintPicture(const STTrack& track) {
  unsigned int width = 0, height = 0;
  std::printf("picture");
  if (GetValue(track.ValueForTag(kStoredWidth, 0), width) && GetValue(track.ValueForTag(kStoredHeight, 0), height)) {
    std::printf(", %u x %u", width, height);
  }
}

void PrintSound(const STTrack& track) {
  _Rational rate{};
  unsigned int bits = 0;
  std::printf("sound");
  if (GetValue(track.ValueForTag(kSamplingRate, 0), rate)) std::printf(", %d/%d Hz", rate.numerator, rate.denominator);
  if (GetValue(track.ValueForTag(kQuantizationBits, 0), bits)) std::printf(", %u bits", bits);
}

// A track's values come from its first component or, when that has none, from the essence descriptor behind it.
void PrintTrack(const STTrack& track) {
  std::printf("track %u: ", track.TrackID());
  const MxfUUID& carried = *track.DataDefinition();
  if (carried == *FBC_UL_PictureEssenceTrack) {
    PrintPicture(track);
  } else if (carried == *FBC_UL_SoundEssenceTrack) {
    PrintSound(track);
  } else {
    std::printf("%s", carried == *FBC_UL_12MTimecodeTrack ? "timecode" : "something else");
  }
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return std::fprintf(stderr, "usage: print_clip CLIP\n"), 2;
  MXFStream clip(CreateOxString(argv[1]));
  const unsigned int status = clip.Parse();
  if (status != kStatusOK) return std::fprintf(stderr, "%s: %s\n", argv[1], StatusText(status)), 1;

  const OxSharedPtr<HeaderMetadata> header = clip.GetHeaderMetadata();
  std::printf("made by %s %s, %s\n", Text(header->IdentificationInfoForTag(kCompanyName, 0)).UTF8String(),
              Text(header->IdentificationInfoForTag(kProductName, 0)).UTF8String(),
              Text(header->IdentificationInfoForTag(kModificationDate, 0)).UTF8String());
  std::printf("%lld edit units\n", clip.Duration());
  for (unsigned int i = 0; i < header->TrackCount(0); ++i) {
    if (const OxSharedPtr<STTrack> track = header->TrackForIndex(i, 0)) PrintTrack(*track);
  }
  return 0;
}
