#include <cstdio>

#include "foundation/UUIDDefine.h"
#include "stream/MXFStream.h"

// Opens a clip through the installed library and prints its duration and picture width; a clip that is not there is
// refused without ado. Narrowing the value takes a run-time type that host and library share.
int main(int, char** arguments) {
  MXFStream absent(CreateOxString("/nonexistent.mxf"));
  if (absent.Parse() != kStatusUnreadable) return 1;
  MXFStream clip(CreateOxString(arguments[1]));
  if (clip.Parse() != kStatusOK || !clip.GetHeaderMetadata()) return 1;
  const OxSharedPtr<STTrack> picture = clip.GetHeaderMetadata()->TrackForIndex(1, 0);
  unsigned int width = 0;
  if (!picture || *picture->DataDefinition() != *FBC_UL_PictureEssenceTrack) return 1;
  if (!GetValue(picture->ValueForTag(0x3203, 0), width)) return 1;
  std::printf("%lld edit units, %u wide\n", clip.Duration(), width);
  return 0;
}
