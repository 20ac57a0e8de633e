#include "klv/PartitionPack.h"

#include "fuzz/Fuzz.h"

// A packet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return ImportAndAsk<PartitionPack>(data, size, [size](PartitionPack& pack) {
    MUST(pack.EssenceCount() <= size / 16);
    for (unsigned int i = 0; i < pack.EssenceCount(); ++i) MUST(pack.EssenceAtIndex(i));
    MUST(!pack.EssenceAtIndex(pack.EssenceCount()));
    MUST((pack.HeaderOffset() == PartitionPack::kNoOffset) >= (pack.HeaderByteCount() == 0));
    MUST((pack.IndexOffset() == PartitionPack::kNoOffset) >= (pack.IndexByteCount() == 0));
    const unsigned long long before = pack.ThisPartition() + pack.KAGSize() + pack.HeaderByteCount();
    MUST(pack.ContentOffset() == before + pack.IndexByteCount());
  });
}
