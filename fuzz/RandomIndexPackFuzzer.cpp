#include "fuzz/FuzzInput.h"
#include "klv/RandomIndexPack.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  RandomIndexPack pack;
  static_cast<void>(ParseAs(pack, data, size));
  if (pack.Count() * 12ULL > size) __builtin_trap();
  unsigned long long offset = 0;
  for (unsigned int i = 0; i < pack.Count(); ++i) {
    if (!pack.GetOffsetAtIndex(i, offset)) __builtin_trap();
  }
  return 0;
}
