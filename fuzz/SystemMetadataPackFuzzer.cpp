#include "fuzz/FuzzInput.h"
#include "klv/SystemMetadataPack.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SystemMetadataPack pack;
  if (ParseAs(pack, data, size) && !pack.UnibersalLabel()) __builtin_trap();
  if (pack.CreationDateType() != 0 && (pack.CreationDateType() & ~3u) != 0x80) __builtin_trap();
  pack.init();
  return 0;
}
