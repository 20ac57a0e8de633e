#include "fuzz/FuzzInput.h"
#include "klv/PartitionPack.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  PartitionPack pack;
  static_cast<void>(ParseAs(pack, data, size));
  static_cast<void>(pack.HeaderOffset() + pack.IndexOffset() + pack.ContentOffset());
  for (unsigned int i = 0; i <= pack.EssenceCount(); ++i) static_cast<void>(pack.EssenceAtIndex(i));
  return 0;
}
