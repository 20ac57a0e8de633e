#include "fuzz/FuzzInput.h"
#include "klv/StreamFileSequenceInfo.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  StreamFileSequenceInfo info;
  static_cast<void>(ParseAs(info, data, size));
  if (info.StartPosition()) static_cast<void>(info.StartPosition()->Description());
  if (info.PackageUID()) static_cast<void>(info.PackageUID()->Description());
  return 0;
}
