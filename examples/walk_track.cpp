// walk_track CLIP ELEMENT: walks the essence of one element, edit unit by edit unit. Element 0 is the system item, 1 is
// the picture, then come sound and data.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "stream/MXFStream.h"

namespace {

constexpr unsigned char kRandomAccess = 0x80;  // of the index flags (SMPTE ST 377-1): decoding can start here

// Prints where the element of an edit unit lies, and reads it. False when the clip cannot give it.
bool Visit(MXFStream& clip, unsigned int editUnit, unsigned int element, std::vector<unsigned char>& buffer) {
  const _OxRange range = clip.RangeEssenceData(editUnit, element);
  if (range.length == 0) return false;
  // One buffer for the whole walk: it grows to the largest element and stays.
  if (buffer.size() < range.length) buffer.resize(range.length);
  const unsigned int size =
      clip.ReadEssenceData(editUnit, element, buffer.data(), static_cast<unsigned int>(buffer.size()));
  if (size != range.length) return false;

  signed char temporalOffset = 0, keyFrameOffset = 0;
  unsigned char flags = 0;
  if (!clip.GetEditUnitInfo(editUnit, temporalOffset, keyFrameOffset, flags)) return false;
  std::printf("%u: %u bytes at %llu, first %02X%02X, ", editUnit, size, range.location, buffer[0], buffer[1]);
  if ((flags & kRandomAccess) != 0) {
    std::printf("key frame\n");
  } else {
    std::printf("needs edit unit %lld\n", static_cast<long long>(editUnit) + keyFrameOffset);
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return std::fprintf(stderr, "usage: walk_track CLIP ELEMENT\n"), 2;
  const auto element = static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10));
  MXFStream clip(CreateOxString(argv[1]));
  const unsigned int status = clip.Parse();
  if (status != kStatusOK) return std::fprintf(stderr, "%s: %s\n", argv[1], StatusText(status)), 1;

  std::vector<unsigned char> buffer;
  for (unsigned int editUnit = 0; editUnit < clip.Duration(); ++editUnit) {
    if (!Visit(clip, editUnit, element, buffer)) {
      return std::fprintf(stderr, "%s: no element %u in edit unit %u\n", argv[1], element, editUnit), 1;
    }
  }
  return 0;
}
