#include "klv/StreamFileSequenceInfo.h"

#include "fuzz/Fuzz.h"

// A packet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return ImportAndAsk<StreamFileSequenceInfo>(data, size, [](StreamFileSequenceInfo& info) {
    MUST(!info.PackageUID() || info.PackageUID()->Length() == UMID::kBasicSize ||
         info.PackageUID()->Length() == UMID::kExtendedSize);
    for (const OxSharedPtr<OxObject>& item :
         {OxSharedPtr<OxObject>(info.InstanceUID()), OxSharedPtr<OxObject>(info.PackageUID()),
          OxSharedPtr<OxObject>(info.StartTimecode()), OxSharedPtr<OxObject>(info.StartPosition())}) {
      static_cast<void>(DigestOf(item));
    }
  });
}
