#include "fuzz/FuzzInput.h"
#include "klv/PrimerPack.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  PrimerPack primer;
  static_cast<void>(ParseAs(primer, data, size));
  unsigned short tag = 0;
  const OxSharedPtr<MxfUUID> label = primer.UIDAtTag(size > 28 ? static_cast<unsigned short>(data[28]) : tag);
  if (label && !primer.UIDToTag(&tag, label.get())) __builtin_trap();
  static_cast<void>(primer.Description());
  return 0;
}
