#include "klv/PrimerPack.h"

#include "fuzz/Fuzz.h"

// A packet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return ImportAndAsk<PrimerPack>(data, size, [](PrimerPack& pack) {
    for (const OxSharedPtr<MxfUUID>& label : AllProperties()) {
      unsigned short tag = 1;
      const bool isKnown = pack.UIDToTag(&tag, label.get());
      MUST(isKnown ? static_cast<bool>(pack.UIDAtTag(tag)) : tag == 0);
    }
    for (const unsigned int tag : AllTags()) {
      const OxSharedPtr<MxfUUID> label = pack.UIDAtTag(static_cast<unsigned short>(tag));
      unsigned short same = 0;
      MUST(!label || (pack.UIDToTag(&same, label.get()) && same == tag));
    }
  });
}
