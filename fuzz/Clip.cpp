#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/Fuzz.h"
#include "stream/MXFStream.h"

// A file. Held in memory, opened by path, parsed, and asked everything.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const int file = ::memfd_create("clip", 0);
  MUST(file >= 0 && ::ftruncate(file, 0) == 0 && ::write(file, data, size) == static_cast<ssize_t>(size));
  {
    MXFStream clip(CreateOxString("/proc/self/fd/" + std::to_string(file)));
    static_cast<void>(clip.Parse());  // queries after a failed one must be as safe
    AskLimits limits;
    limits.units = 12, limits.elements = 5, limits.items = 3, limits.bytes = 1 << 17;
    AskEverything(
        clip, [](const About&, unsigned long long) {}, limits);
  }
  ::close(file);
  return 0;
}
