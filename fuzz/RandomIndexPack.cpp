#include "klv/RandomIndexPack.h"

#include "fuzz/Fuzz.h"

// A packet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return ImportAndAsk<RandomIndexPack>(data, size, [size](RandomIndexPack& pack) {
    unsigned int sid = 0;
    unsigned long long offset = 0;
    MUST(pack.Count() <= size / 12);
    for (unsigned int i = 0; i < pack.Count(); ++i) {
      MUST(pack.GetBodySIDAtIndex(i, sid) && pack.GetOffsetAtIndex(i, offset));
    }
    MUST(!pack.GetBodySIDAtIndex(pack.Count(), sid) && !pack.GetOffsetAtIndex(pack.Count(), offset));
  });
}
