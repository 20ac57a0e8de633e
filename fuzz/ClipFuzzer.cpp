#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/AskEverything.h"
#include "fuzz/FuzzInput.h"

// A whole clip, as a file in memory.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int file = memfd_create("clip", 0);
  if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) return 0;
  AskEverything("/proc/self/fd/" + std::to_string(file), 40, [](const char*, unsigned long long) {});
  return 0;
}
