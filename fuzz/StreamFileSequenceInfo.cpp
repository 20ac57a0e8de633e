#include "klv/StreamFileSequenceInfo.h"

#include "fuzz/Fuzz.h"

// A packet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return ImportAndAsk<StreamFileSequenceInfo>(data, size, [](StreamFileSequenceInfo& info) {
    Render(info.InstanceUID(), info.PackageUID(), info.StartTimecode(), info.StartPosition());
    MUST(!info.PackageUID() || info.PackageUID()->Length() >= UMID::kBasicSize);
  });
}
