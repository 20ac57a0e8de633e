#include "klv/IndexTableSegment.h"

#include "fuzz/Fuzz.h"

// A packet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return ImportAndAsk<IndexTableSegment>(data, size, [](IndexTableSegment& segment) {
    const long long start = segment.IndexStartPosition();
    const long long units[] = {start, start / 2, segment.IndexDuration(), 0, 1, 2, 3, 50, 1LL << 32, -1};
    for (const long long unit : units) {
      signed char temporal = 0, key = 0;
      unsigned char flags = 0;
      unsigned long long offset = 0;
      const bool isThere = segment.GetFlags(unit, flags);
      MUST(!isThere || segment.isContainIndex(unit));
      MUST(segment.GetTemporalOffset(unit, temporal) == isThere && segment.GetKeyFrameOffset(unit, key) == isThere);
      MUST(segment.GetStreamOffset(unit, 0, offset) == isThere);
      const unsigned int elements = std::max(segment.DeltaEntryCount(), 1u);
      MUST(segment.GetStreamOffset(unit, elements - 1, offset) == isThere);
      MUST(!segment.GetStreamOffset(unit, elements, offset) && !segment.GetStreamOffset(unit, 0xFFFFFFFF, offset));
    }
  });
}
