#include "fuzz/FuzzInput.h"
#include "klv/IndexTableSegment.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  IndexTableSegment segment;
  if (!ParseAs(segment, data, size)) return 0;
  const auto start = static_cast<unsigned long long>(segment.IndexStartPosition());
  const auto duration = static_cast<unsigned long long>(segment.IndexDuration());
  for (const unsigned long long unit : {start - 1, start, start + 1, start + duration - 1, start + duration}) {
    signed char small = 0;
    unsigned char flags = 0;
    unsigned long long offset = 0;
    const auto editUnit = static_cast<long long>(unit);
    const bool isAnswered = segment.GetFlags(editUnit, flags);
    if (isAnswered && !segment.isContainIndex(editUnit)) __builtin_trap();
    if (segment.GetTemporalOffset(editUnit, small) != isAnswered) __builtin_trap();
    for (unsigned int i = 0; i <= segment.DeltaEntryCount(); ++i) {
      static_cast<void>(segment.GetStreamOffset(editUnit, i, offset));
    }
  }
  if (size < 4096) static_cast<void>(segment.Description());
  return 0;
}
